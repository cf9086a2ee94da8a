#pragma once

#include <QByteArray>
#include <QHash>
#include <QtGlobal>

#include <deque>

namespace standard {

/// The nonces of Digest logins: each holds for a while, and each count of a nonce once. One serves
/// a whole program.
class Nonces
{
public:
    static constexpr qint64 lifetime = qint64(10) * 60 * 1000; ///< milliseconds
    static constexpr int maxUsed = 10000;

    Nonces();

    /// A new one. `now` is in milliseconds of any clock, the same for all calls.
    QByteArray make(qint64 now) const;

    /// Whether `nonce` is one of ours, still holds, and was not used with `count` before. To be
    /// asked once for who has proved to know the password: it remembers the count.
    bool use(const QByteArray &nonce, quint32 count, qint64 now);

private:
    /// The counts that were used: requests on several connections may overtake each other.
    struct Counts
    {
        quint32 highest = 0;
        quint64 below = 0; ///< bit n: `highest` - n was used
    };

    QByteArray signatureOf(const QByteArray &time) const;
    void forgetOld(qint64 now);
    static bool take(Counts &counts, quint32 count);

    QByteArray key;
    QHash<QByteArray, Counts> used;
    struct Use
    {
        qint64 made;
        QByteArray nonce;
    };
    std::deque<Use> order; ///< of first use
    qint64 forgotten = -1; ///< what was made until then may have been forgotten
};

} // namespace standard
