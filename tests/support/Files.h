#pragma once

#include <QDir>
#include <QFile>
#include <QTest>

/// Makes `path` hold `content`, in folders that are made; fails the test when that can't be.
inline void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}

/// What `path` holds; nothing when it can't be read.
inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
