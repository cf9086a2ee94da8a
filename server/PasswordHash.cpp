#include "server/PasswordHash.h"

#include <array>

#include <sodium.h>

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

bool fitsPasswordHash(const QByteArray &password, const QByteArray &hash)
{
    return ::sodium_init() >= 0
        && ::crypto_pwhash_str_verify(hash.constData(), password.constData(),
                                      std::size_t(password.size()))
        == 0;
}

QByteArray hashOfNobody()
{
    // Base64 of 16 bytes of salt and 32 of the result, all of them 0.
    constexpr int saltDigits = 22;
    constexpr int resultDigits = 43;
    return "$argon2id$v=19$m=65536,t=2,p=1$" + QByteArray(saltDigits, 'A') + '$'
        + QByteArray(resultDigits, 'A');
}
