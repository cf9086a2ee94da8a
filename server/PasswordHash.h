#pragma once

#include <QByteArray>

#include <optional>

// Passwords kept as what Argon2id (RFC 9106) makes of them, with its parameters and salt in the
// text form that other programs know: "$argon2id$v=19$m=65536,t=2,p=1$...". To make or check one
// takes a tenth of a second and 64 MiB, which is what guessing costs too. For any thread.

/// Another one each time. Empty when there is no memory for it.
QByteArray newPasswordHash(const QByteArray &password);

/// Whether `hash` was made of `password`. None when there is no memory to find out.
std::optional<bool> fitsPasswordHash(const QByteArray &password, const QByteArray &hash);

/// One that nothing fits, and that takes as long to check as others.
QByteArray hashOfNobody();
