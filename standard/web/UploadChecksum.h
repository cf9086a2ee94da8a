#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QtGlobal>

#include <memory>
#include <optional>

namespace standard {

/// Tells whether bytes are those that their sender had, by Upload-Checksum.
class UploadChecksum
{
public:
    /// The names of the algorithms, between commas.
    static QByteArray algorithms();

    /// From "sha256 " and the checksum in base64. None when that can't be understood.
    static std::optional<UploadChecksum> parse(const QByteArray &field);

    void add(const char *data, qint64 size);

    bool fits() const { return hash->result() == expected; }

private:
    UploadChecksum() = default;

    std::unique_ptr<QCryptographicHash> hash;
    QByteArray expected;
};

} // namespace standard
