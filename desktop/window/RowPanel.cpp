#include "desktop/window/RowPanel.h"

#include "config/Profiles.h"
#include "desktop/widgets/LinkLabel.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/Touch.h"
#include "desktop/window/FileMenu.h"
#include "desktop/window/RowKeeper.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/StartQuestions.h"
#include "desktop/window/StartStop.h"
#include "desktop/window/WindowText.h"

#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace {

QString shownPath(const QString &path)
{
    const bool bare = QFileInfo(path).isDir() && !path.endsWith(QLatin1Char('/'));
    return bare ? path + QLatin1Char('/') : path;
}

/// Where the search for something else to share begins.
QString folderOf(const QFileInfo &shared)
{
    if (!shared.isReadable())
        return QDir::rootPath();
    return shared.isDir() ? shared.absoluteFilePath() : shared.absolutePath();
}

QPushButton *pictureButton(const QIcon &picture, const QString &name, QWidget *parent)
{
    auto *button = new Finger<QPushButton>(parent);
    button->setIcon(picture);
    button->setIconSize(buttonPicture);
    button->setAccessibleName(name);
    button->setToolTip(name);
    return button;
}

QPushButton *menuOpener(const QString &text, QMenu *menu, QWidget *parent)
{
    auto *button = new Finger<QPushButton>(parent);
    button->setText(text);
    button->setMenu(menu);
    return button;
}

QHBoxLayout *rowOf(const QList<QWidget *> &widgets)
{
    auto *row = new QHBoxLayout;
    for (QWidget *widget : widgets)
        row->addWidget(widget);
    return row;
}

} // namespace

RowPanel::RowPanel(Profiles *choice, RowKeeper *ofRows, QMenu *mainMenu, QWidget *parent)
    : QWidget(parent)
    , profiles(choice)
    , keeper(ofRows)
    , fileMenu(new FileMenu(parent))
{
    makeWidgets(mainMenu);
    layOut();
    connectWidgets();
    fileMenu->showRecent(profiles->global()->recentFiles);
    showCurrent(keeper->rows()->current());
}

void RowPanel::makeWidgets(QMenu *mainMenu)
{
    fileButton = menuOpener(WindowText::tr("&File"), fileMenu, this);
    startButton = pictureButton(startStopIcon(false), startStopText(false), this);
    settingsButton = pictureButton(QIcon(QStringLiteral(":/icons/preferences-system.png")),
                                   WindowText::tr("Settings of the selected address"), this);
    menuButton = menuOpener(WindowText::tr("&Menu"), mainMenu, this);
    sharedLink = new LinkLabel(this);
}

void RowPanel::layOut()
{
    QHBoxLayout *buttons = rowOf({ fileButton, startButton, settingsButton, menuButton });
    buttons->setStretchFactor(fileButton, 1);
    buttons->setStretchFactor(menuButton, 1);
    auto *caption = new QLabel(WindowText::tr("Shared Content:"));
    caption->setBuddy(sharedLink);
    QHBoxLayout *shared = rowOf({ caption, sharedLink });
    shared->setStretchFactor(sharedLink, 1);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(buttons);
    layout->addLayout(shared);
}

void RowPanel::connectWidgets()
{
    ServerRows *rows = keeper->rows();
    connect(rows, &ServerRows::currentChanged, this, &RowPanel::showCurrent);
    connect(settingsButton, &QPushButton::clicked, this, &RowPanel::settingsWanted);
    connect(startButton, &QPushButton::clicked, this,
            [this, rows] { toggleRow(rows, rows->current(), window()); });
    connect(sharedLink, &QLabel::linkActivated, this, [rows] {
        if (const ServerRow *row = rows->current())
            QDesktopServices::openUrl(QUrl(row->url()));
    });
    connect(fileMenu, &FileMenu::chosen, this, [this](const QString &path) { share(path); });
}

QList<QWidget *> RowPanel::tabOrder() const
{
    return { fileButton, startButton, settingsButton, menuButton, sharedLink };
}

void RowPanel::showMode(bool expert)
{
    // In simple mode the large button does for all.
    startButton->setVisible(expert);
}

bool RowPanel::share(const QString &path, ServerRow *row)
{
    if (const QString refusal = shareRefusal(path); !refusal.isEmpty()) {
        showBox(window(), QMessageBox::Warning, refusal);
        return false;
    }
    keeper->share(path, row);
    sharedLink->setLink(shownPath(path), {});
    showCurrent(keeper->rows()->current());
    profiles->global()->amend([&path](Profile &global) { global.addRecentFile(path); });
    fileMenu->showRecent(profiles->global()->recentFiles);
    return true;
}

void RowPanel::showCurrent(ServerRow *row)
{
    startButton->setEnabled(row);
    settingsButton->setEnabled(row);
    fileMenu->setStart(row ? folderOf(row->server()->shared()) : QDir::rootPath());
    const bool running = row && row->isListening();
    const QString action = startStopText(running);
    startButton->setIcon(startStopIcon(running));
    startButton->setAccessibleName(action);
    startButton->setToolTip(action);
    if (row)
        sharedLink->setLink(shownPath(row->server()->shared().absoluteFilePath()), row->url());
}
