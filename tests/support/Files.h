#pragma once

#include <QDir>
#include <QFile>
#include <QTest>

inline QString operator""_q(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, int(size));
}

/// Makes `path` hold `content`, in folders that are made; fails the test when that can't be.
inline void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}

/// The names in a folder, hidden ones as well, with blanks between.
inline QString namesIn(const QString &folder)
{
    const auto all = QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot;
    return QDir(folder).entryList(all).join(QLatin1Char(' '));
}

/// What `path` holds; nothing when it can't be read.
inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
