#pragma once

#include "files/FileDescriptor.h"

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// Has a certificate of this machine's authority renewed when its addresses change and before it
/// runs out, by a program of its own: to be started before the process is confined. The program
/// ends with this.
class Renewing : public QObject
{
    Q_OBJECT
public:
    explicit Renewing(const QString &certificate);

Q_SIGNALS:
    void renewed(); ///< or found to be right
    void failed();

private:
    void read();

    FileDescriptor life; ///< closed: the program ends
    FileDescriptor news;
    std::unique_ptr<QSocketNotifier> arrived;
};
