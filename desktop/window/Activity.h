#pragma once

#include "desktop/window/DeedLog.h"
#include "desktop/window/LogFile.h"
#include "server/Service.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

class ActivityDialog;
class QWidget;
class ServerRows;

/// What visitors do: the last of it for the window, all of it for the log file, unless the user has
/// switched that off. A part of the main window.
class Activity : public QObject
{
    Q_OBJECT
public:
    /// `servers` are borrowed and outlive it.
    Activity(ServerRows *servers, std::shared_ptr<const ServerSetup> common);
    ~Activity() override;

    /// Notes what was done since the last call, or the part of it that is told.
    void note(const std::vector<Deed> &done, bool isAll);

    /// Notes something else that the user should know.
    void addNote(const QString &text);

    /// Shows visitors and transfers over `parent`; once more when they are shown.
    void show(QWidget *parent);

    /// Whether a log file is kept. Remembered.
    static bool keepsLog();
    static void keepLog(bool wanted);

private:
    void log(const QByteArray &lines);
    void writeNext();

    ServerRows *rows;
    std::shared_ptr<const ServerSetup> setup;
    DeedLog deeds;
    const LogFile file;
    QByteArray unwritten; ///< lines for it
    bool lacksLines = false; ///< since the last of them
    bool isWriting = false;
    bool isFailing = false; ///< and was told
    QPointer<ActivityDialog> dialog;
};
