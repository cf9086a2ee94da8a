#pragma once

#include <QByteArray>

/// Whether `given` is the secret. Takes the same time wherever the two differ, so that it can't be
/// used to guess one of them.
bool isSameSecret(const QByteArray &given, const QByteArray &secret);

/// One that nobody can guess, as text.
QByteArray newSecret();
