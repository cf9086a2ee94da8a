#include "standard/http/Nonces.h"

#include "server/Secret.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>
#include <QRandomGenerator>

#include <algorithm>

namespace standard {

namespace {

constexpr char separator = '-';
constexpr int signatureSize = 32; ///< hexadecimal digits
constexpr quint32 window = 64; ///< counts that may overtake each other

} // namespace

Nonces::Nonces()
    : key(newSecret())
{
}

QByteArray Nonces::make(qint64 now) const
{
    // With 32 bits, once in a hundred times two of ten thousand made in one moment are alike.
    const QByteArray salt = QByteArray::number(QRandomGenerator::system()->generate64(), 16);
    const QByteArray time = QByteArray::number(now, 16) + separator + salt;
    return time + separator + signatureOf(time);
}

QByteArray Nonces::signatureOf(const QByteArray &time) const
{
    return QMessageAuthenticationCode::hash(time, key, QCryptographicHash::Sha256)
        .toHex()
        .left(signatureSize);
}

bool Nonces::use(const QByteArray &nonce, quint32 count, qint64 now)
{
    const QByteArray time = nonce.left(qMax(0, int(nonce.lastIndexOf(separator))));
    if (!isSameSecret(nonce.mid(time.size() + 1), signatureOf(time)))
        return false;
    const qint64 made = time.left(qMax(0, int(time.indexOf(separator)))).toLongLong(nullptr, 16);
    forgetOld(now);
    if (now - made > lifetime)
        return false;
    if (!used.contains(nonce)) {
        if (made <= forgotten)
            return false;
        order.push_back({ made, nonce });
    }
    return take(used[nonce], count);
}

/// Those that are too many may still hold, so from then on none of their time does.
void Nonces::forgetOld(qint64 now)
{
    while (!order.empty() && (now - order.front().made > lifetime || order.size() >= maxUsed)) {
        forgotten = std::max(forgotten, order.front().made);
        used.remove(order.front().nonce);
        order.pop_front();
    }
}

bool Nonces::take(Counts &counts, quint32 count)
{
    if (count > counts.highest) {
        const quint32 step = count - counts.highest;
        counts.below = step < window ? counts.below << step : 0;
        counts.below |= 1;
        counts.highest = count;
        return true;
    }
    const quint32 back = counts.highest - count;
    if (back >= window || (counts.below >> back & 1) != 0)
        return false;
    counts.below |= quint64(1) << back;
    return true;
}

} // namespace standard
