#include "server/PasswordHash.h"

#include <array>
#include <optional>

#include <sodium.h>
#include <sys/mman.h>

namespace {

/// What it takes to check one, in bytes; the text has KiB.
std::size_t memoryFor(const QByteArray &hash)
{
    const QByteArray key = "$m=";
    const int begin = int(hash.indexOf(key)) + int(key.size());
    return hash.mid(begin, hash.indexOf(',', begin) - begin).toUInt() * std::size_t(1024);
}

bool canBeHad(std::size_t bytes)
{
    if (bytes == 0)
        return true;
    void *memory =
        ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory != MAP_FAILED && ::munmap(memory, bytes) == 0;
}

} // namespace

QByteArray newPasswordHash(const QByteArray &password)
{
    std::array<char, crypto_pwhash_STRBYTES> text{};
    const bool made = ::sodium_init() >= 0
        && ::crypto_pwhash_str(text.data(), password.constData(), std::size_t(password.size()),
                               crypto_pwhash_OPSLIMIT_INTERACTIVE,
                               crypto_pwhash_MEMLIMIT_INTERACTIVE)
            == 0;
    return made ? QByteArray(text.data()) : QByteArray();
}

std::optional<bool> fitsPasswordHash(const QByteArray &password, const QByteArray &hash)
{
    if (::sodium_init() < 0)
        return {};
    if (::crypto_pwhash_str_verify(hash.constData(), password.constData(),
                                   std::size_t(password.size()))
        == 0)
        return true;
    // The library says the same where it had no memory.
    return canBeHad(memoryFor(hash)) ? std::optional(false) : std::nullopt;
}

QByteArray hashOfNobody()
{
    // Base64 of 16 bytes of salt and 32 of the result, all of them 0.
    constexpr int saltDigits = 22;
    constexpr int resultDigits = 43;
    return "$argon2id$v=19$m=65536,t=2,p=1$" + QByteArray(saltDigits, 'A') + '$'
        + QByteArray(resultDigits, 'A');
}
