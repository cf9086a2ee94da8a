#include "standard/web/UploadChecksum.h"

#include <QList>

#include <array>

namespace standard {

namespace {

struct AlgorithmRow
{
    const char *name;
    QCryptographicHash::Algorithm algorithm;
};

constexpr std::array<AlgorithmRow, 2> algorithmRows{ {
    { "sha1", QCryptographicHash::Sha1 }, // clients may count on it
    { "sha256", QCryptographicHash::Sha256 },
} };

} // namespace

QByteArray UploadChecksum::algorithms()
{
    QByteArray names;
    for (const AlgorithmRow &row : algorithmRows)
        names += (names.isEmpty() ? "" : ",") + QByteArray(row.name);
    return names;
}

std::optional<UploadChecksum> UploadChecksum::parse(const QByteArray &field)
{
    const QList<QByteArray> words = field.split(' ');
    for (const AlgorithmRow &row : algorithmRows) {
        if (words.front() != row.name || words.size() != 2)
            continue;
        UploadChecksum checksum;
        checksum.hash = std::make_unique<QCryptographicHash>(row.algorithm);
        checksum.expected = QByteArray::fromBase64(words[1]);
        if (checksum.expected.size() == QCryptographicHash::hashLength(row.algorithm))
            return checksum;
    }
    return {};
}

void UploadChecksum::add(const char *data, qint64 size)
{
    hash->addData(QByteArray::fromRawData(data, int(size)));
}

} // namespace standard
