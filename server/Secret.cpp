#include "server/Secret.h"

#include <QRandomGenerator>

#include <array>

bool isSameSecret(const QByteArray &given, const QByteArray &secret)
{
    auto difference = static_cast<unsigned>(given.size() ^ secret.size());
    for (int i = 0; i < given.size(); ++i) {
        const char other = secret.isEmpty() ? '\0' : secret.at(i % int(secret.size()));
        difference |= static_cast<unsigned char>(given.at(i) ^ other);
    }
    return difference == 0;
}

QByteArray newSecret()
{
    std::array<quint32, 8> random;
    QRandomGenerator::system()->fillRange(random.data(), int(random.size()));
    QByteArray text;
    for (const quint32 number : random)
        text += QByteArray::number(number, 16);
    return text;
}
