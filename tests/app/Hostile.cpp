// Loaded before a program, this takes it over as a hostile client or picture might, once it is
// confined: at its first client or while it decodes. Then it tells what it could do with the folder
// HOSTILE_FOLDER and the port HOSTILE_PORT of this machine.

#include <cstdlib>
#include <cstring>
#include <string>

#include <arpa/inet.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool opens(const char *name, int flags)
{
    const std::string path = std::string(::getenv("HOSTILE_FOLDER")) + name;
    return ::open(path.c_str(), flags | O_CLOEXEC, 0600) >= 0;
}

bool connects()
{
    sockaddr_in peer = {};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(std::uint16_t(std::atoi(::getenv("HOSTILE_PORT"))));
    peer.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return ::connect(fd, reinterpret_cast<sockaddr *>(&peer), sizeof peer) == 0;
}

bool starts()
{
    const char *arguments[] = { "/bin/true", nullptr };
    return ::posix_spawn(nullptr, arguments[0], nullptr, nullptr, const_cast<char **>(arguments),
                         nullptr)
        == 0;
}

void tell(const char *what, bool worked = true)
{
    if (worked)
        static_cast<void>(!::write(STDERR_FILENO, what, std::strlen(what)));
}

void attack()
{
    static bool began = false;
    if (began)
        return;
    began = true;
    tell("could:");
    tell(" read", opens("/secret", O_RDONLY));
    tell(" write", opens("/written", O_WRONLY | O_CREAT));
    tell(" start", starts());
    tell(" connect", connects());
    tell(".");
}

template <typename Function> Function next(Function, const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" int accept4(int fd, sockaddr *address, socklen_t *size, int flags)
{
    attack();
    return next(&accept4, "accept4")(fd, address, size, flags);
}

extern "C" int jpeg_read_header(void *picture, int strict)
{
    attack();
    return next(&jpeg_read_header, "jpeg_read_header")(picture, strict);
}
