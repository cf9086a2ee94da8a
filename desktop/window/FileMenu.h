#pragma once

#include "config/Profile.h"

#include <QMenu>

#include <array>

/// The menu of what can be shared: a folder or file to be looked for, and the recent ones.
/// A child of the main window.
class FileMenu : public QMenu
{
    Q_OBJECT
public:
    explicit FileMenu(QWidget *parent);

    /// Where the search for a file or folder begins.
    void setStart(const QString &folder) { start = folder; }

    /// By their whole paths, as far as the window's width has room.
    void showRecent(const QStringList &paths);

public Q_SLOTS:
    void browseFolder();
    void browseFile();

Q_SIGNALS:
    /// Never empty, but it may be gone.
    void chosen(const QString &path);

private:
    void addSearch(const QString &text, const char *keys, void (FileMenu::*search)());
    void fitRecent();
    void choose(const QString &path);

    QString start;
    std::array<QAction *, Profile::maxRecentFiles> recent = {};
};

/// How a recent file is named in the menu: long paths lack their middle. `room` is in pixels.
QString recentFileLabel(const QString &path, const QFontMetrics &metrics, int room);
