#include "server/Secret.h"

bool isSameSecret(const QByteArray &given, const QByteArray &secret)
{
    auto difference = static_cast<unsigned>(given.size() ^ secret.size());
    for (int i = 0; i < given.size(); ++i) {
        const char other = secret.isEmpty() ? '\0' : secret.at(i % int(secret.size()));
        difference |= static_cast<unsigned char>(given.at(i) ^ other);
    }
    return difference == 0;
}
