#pragma once

#include <QByteArray>
#include <QString>

/// A file of lines that its owner alone can read. Begins anew when it has become large; the one
/// before stays beside it as "NAME.1". For any thread, one at a time.
class LogFile
{
public:
    static constexpr qint64 maxSize = qint64(4) * 1024 * 1024; ///< bytes

    explicit LogFile(QString fileName)
        : path(std::move(fileName))
    {
    }

    const QString &fileName() const { return path; }

    /// Appends lines; makes file and folder. False when that fails, which leaves what is there.
    bool append(const QByteArray &lines) const;

private:
    QString path;
};
