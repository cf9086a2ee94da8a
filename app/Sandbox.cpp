#include "app/Sandbox.h"

#include <QFile>

#include <algorithm>
#include <array>

#include <dlfcn.h>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/auxv.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr quint64 mayLook = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr quint64 mayChange = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR
    | LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR
    | LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO
    | LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;
constexpr quint64 mayExecute = LANDLOCK_ACCESS_FS_EXECUTE;

// What older headers of the kernel don't name; the numbers are fixed.
constexpr quint64 mayMove = quint64(1) << 13; ///< and link, from one folder to another
constexpr quint64 mayTruncate = quint64(1) << 14;
constexpr quint64 mayControl = quint64(1) << 15; ///< devices
constexpr quint64 mayConnect = quint64(1) << 1; ///< by TCP
constexpr quint64 mayMeet = quint64(1) << 0; ///< other processes at abstract sockets
constexpr quint64 maySignal = quint64(1) << 1; ///< other processes

constexpr quint64 ofFiles = mayExecute | LANDLOCK_ACCESS_FS_READ_FILE
    | LANDLOCK_ACCESS_FS_WRITE_FILE | mayTruncate | mayControl;

/// The beginning of landlock_ruleset_attr, which grows from version to version: what is forbidden
/// unless a rule allows it.
struct Ruleset
{
    quint64 files = 0;
    quint64 network = 0;
    quint64 scopes = 0;
};

/// What came with which version of the interface. The first one is not enough: it lets nobody move
/// a file to another folder.
struct Version
{
    int number;
    Ruleset adds;
};

constexpr int firstUsable = 2;
constexpr std::array versions{
    Version{ firstUsable, { mayLook | mayChange | mayExecute | mayMove, 0, 0 } },
    Version{ 3, { mayTruncate, 0, 0 } },
    Version{ 4, { 0, mayConnect, 0 } },
    Version{ 5, { mayControl, 0, 0 } },
    Version{ 6, { 0, 0, mayMeet | maySignal } },
};

/// A descriptor that closes itself. The program of the previews has no room for more.
struct Opened
{
    explicit Opened(int opened)
        : fd(opened)
    {
    }
    ~Opened()
    {
        if (fd >= 0)
            ::close(fd);
    }
    Q_DISABLE_COPY_MOVE(Opened)

    const int fd;
};

int versionOfKernel()
{
    return int(::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION));
}

Ruleset knownTo(int version)
{
    Ruleset known;
    for (const Version &each : versions) {
        if (each.number > version)
            break;
        known.files |= each.adds.files;
        known.network |= each.adds.network;
        known.scopes |= each.adds.scopes;
    }
    return known;
}

bool allow(int ruleset, const QString &path, quint64 access)
{
    const Opened place(::open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC));
    struct stat status = {};
    if (place.fd < 0 || ::fstat(place.fd, &status) != 0)
        return true;
    landlock_path_beneath_attr rule = {};
    rule.allowed_access = S_ISDIR(status.st_mode) ? access : access & ofFiles;
    rule.parent_fd = place.fd;
    return ::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0;
}

bool allowAll(int ruleset, const QStringList &paths, quint64 access)
{
    return std::all_of(paths.begin(), paths.end(), [ruleset, access](const QString &path) {
        return allow(ruleset, path, access);
    });
}

/// The program that the kernel starts in place of every other, to load its libraries.
QString programLoader()
{
    Dl_info loader = {};
    // The kernel tells the place as a number. NOLINTNEXTLINE(performance-no-int-to-ptr)
    const auto *place = reinterpret_cast<const void *>(::getauxval(AT_BASE));
    const bool found = ::dladdr(place, &loader) != 0;
    return found ? QFile::decodeName(loader.dli_fname) : QString();
}

bool addRules(int ruleset, const SandboxRules &rules, quint64 handled)
{
    // Moving must be allowed by a rule even where nothing else of files is forbidden.
    if (rules.files == SandboxRules::Files::All && !allow(ruleset, QStringLiteral("/"), mayMove))
        return false;
    const QStringList programs =
        rules.programs.isEmpty() ? QStringList() : rules.programs + QStringList{ programLoader() };
    return allowAll(ruleset, rules.readable, handled & mayLook)
        && allowAll(ruleset, rules.writable, handled & ~mayExecute)
        && allowAll(ruleset, programs, handled & (mayExecute | LANDLOCK_ACCESS_FS_READ_FILE));
}

} // namespace

Confinement confine(const SandboxRules &rules)
{
    Ruleset handled = knownTo(versionOfKernel());
    if (handled.files == 0)
        return Confinement::None;
    if (rules.files == SandboxRules::Files::All)
        handled.files = mayExecute | mayMove;
    // A kernel that knows less takes the longer record as long as the rest is zero.
    const Opened ruleset(int(::syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0)));
    const bool confined = ruleset.fd >= 0 && addRules(ruleset.fd, rules, handled.files)
        && ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && ::syscall(SYS_landlock_restrict_self, ruleset.fd, 0) == 0;
    if (!confined)
        return Confinement::None;
    return handled.network == 0 ? Confinement::Files : Confinement::FilesAndNetwork;
}
