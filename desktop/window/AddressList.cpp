#include "desktop/window/AddressList.h"

#include "config/Profiles.h"
#include "desktop/settings/ProfileDialog.h"
#include "desktop/settings/SettingsDialog.h"
#include "desktop/widgets/InputDialog.h"
#include "desktop/widgets/LinkLabel.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/Touch.h"
#include "desktop/widgets/TurningRow.h"
#include "desktop/window/AddressHero.h"
#include "desktop/window/AddressTable.h"
#include "desktop/window/PermissionButton.h"
#include "desktop/window/Reachability.h"
#include "desktop/window/RowKeeper.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/StartQuestions.h"
#include "desktop/window/StartStop.h"

#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

AddressList::AddressList(Profiles *choice, RowKeeper *ofRows, bool forRoot, QWidget *parent)
    : QWidget(parent)
    , profiles(choice)
    , keeper(ofRows)
    , rows(ofRows->rows())
    , rootMode(forRoot)
{
    buildWidgets();
    buildRowMenu();
    connectRows();
    showRunning(rows->isRunning());
    showNetwork();
}

void AddressList::buildWidgets()
{
    m_table = new AddressTable(rows, this);
    caption = new QLabel(tr("Listen Addresses"), this);
    caption->setBuddy(m_table);
    m_startButton = new Finger<QPushButton>(this);
    m_startButton->setIconSize(buttonPicture);
    m_permission = new PermissionButton(profiles, rows, this);
    m_hero = new AddressHero(this);
    m_statusLabel = new QLabel(this);
    m_statusLabel->setWordWrap(true);
    m_statusLabel->setTextInteractionFlags(Qt::TextSelectableByMouse
                                           | Qt::TextSelectableByKeyboard);
    toApplication = new LinkLabel(this);
    toApplication->setLink(tr("Give browsers the web application..."), QStringLiteral("settings"));

    auto *buttons = new TurningRow;
    buttons->add(m_startButton, 0);
    buttons->add(m_permission, 0);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(caption);
    layout->addWidget(m_table, 1);
    layout->addWidget(buttons);
    layout->addWidget(m_hero);
    layout->addWidget(m_statusLabel);
    layout->addWidget(toApplication);
}

void AddressList::buildRowMenu()
{
    rowMenu = new QMenu(this);
    sizeForFingers(rowMenu);
    rowMenu->addAction(tr("Settings"), this, &AddressList::editProfile);
    rowMenu->addAction(tr("Change Config"), this, &AddressList::changeProfile);
    rowMenu->addAction(tr("Add new port"), this, &AddressList::addNewPort);
    rowMenu->addAction(tr("Change port"), this, &AddressList::changePort);
    rowMenu->addAction(tr("Remove"), this, &AddressList::removeRow);
}

void AddressList::connectRows()
{
    const auto showMode = [this] { caption->setVisible(rows->mode()->isExpert()); };
    showMode();
    connect(rows->mode(), &GlobalMode::modeChanged, this, showMode);
    connect(rows, &ServerRows::runningChanged, this, &AddressList::showRunning);
    connect(keeper, &RowKeeper::loaded, this, &AddressList::showNetwork);
    connect(m_startButton, &QPushButton::clicked, this, &AddressList::startOrStop);
    connect(m_permission, &PermissionButton::settingsWanted, this, &AddressList::edit);
    connect(m_permission, &PermissionButton::profileShown, this, &AddressList::showSwitch);
    connect(toApplication, &QLabel::linkActivated, this,
            [this] { edit(m_permission->profile(), SettingsDialog::serverRow); });
    connect(m_hero, &AddressHero::othersChanged, this, &AddressList::showStatus);
    connect(m_table, &AddressTable::cellChosen, this, &AddressList::cellChosen);
}

void AddressList::showRunning(bool running)
{
    m_startButton->setIcon(startStopIcon(running));
    m_startButton->setText(startStopText(running));
    if (!running)
        reach.clear();
    showStatus();
    showSwitch();
}

void AddressList::showStatus()
{
    QList<ServerRow *> running = rows->shownRows();
    running.erase(std::remove_if(running.begin(), running.end(),
                                 [](const ServerRow *row) { return !row->isListening(); }),
                  running.end());
    m_hero->showRows(running);
    if (!rows->isRunning()) {
        m_statusLabel->setText(reach);
        return;
    }
    const QString text = tr("<center>Accessible on local network") + m_hero->othersText();
    // That it is the local network alone stands above already.
    const bool more = reach != Reachability::localText();
    m_statusLabel->setText(text + QLatin1String("</center>") + (more ? reach : QString()));
}

void AddressList::showSwitch()
{
    toApplication->setVisible(rows->isRunning()
                              && m_permission->profile()->faceMode != FaceStandard);
}

void AddressList::showReach(const QString &text)
{
    reach = text;
    showStatus();
}

void AddressList::showNetwork()
{
    const QString lost = tr("<center><b>Network not found</b></center>");
    if (!keeper->hasNetwork())
        showReach(lost);
    else if (!rows->isRunning())
        showReach(Reachability::localText());
    else
        showReach(reach == lost ? QString() : reach); // it is back
}

bool AddressList::askForStop(const QString &question)
{
    const QList<ServerRow *> &all = rows->all();
    const bool asks = std::any_of(all.begin(), all.end(), [](const ServerRow *row) {
        return row->isListening() && row->profile()->warningMode == Qt::Checked;
    });
    return !asks || askYesNo(window(), tr("The server is running.") + QLatin1Char('\n') + question);
}

// --- the expert's row menu ----------------------------------------------------------------------

void AddressList::startOrStop()
{
    if (mayCut(rows->all(), window()))
        rows->startOrStop();
}

void AddressList::cellChosen(int index, int column)
{
    if (!rows->mode()->isExpert() || !rows->at(index))
        return;
    if (column != AddressTable::StatusColumn)
        m_table->popup(rowMenu, index, column);
    else
        toggleRow(rows, rows->at(index), window());
}

void AddressList::edit(Profile *profile, int page)
{
    SettingsDialog::edit(profile, { profile == profiles->global(), rootMode }, rows, window(),
                         page);
    m_permission->showProfile();
}

void AddressList::editProfile()
{
    if (const ServerRow *row = rows->current())
        edit(row->profile());
}

void AddressList::changeProfile()
{
    ServerRow *row = rows->current();
    if (!row)
        return;
    ProfileDialog dialog(profiles, row, window());
    connect(&dialog, &ProfileDialog::renamed, keeper, &RowKeeper::followRename);
    dialog.exec();
}

std::optional<int> AddressList::askPort(const QString &title, const ServerRow *row,
                                        const ServerRow *except)
{
    const auto text = InputDialog::ask(title, QString::number(row->server()->port), window());
    if (!text)
        return {};
    const int port = text->trimmed().toInt();
    const QString refusal = rows->portRefusal(row->address(), port, except);
    if (refusal.isEmpty())
        return port;
    showBox(window(), QMessageBox::Warning, refusal);
    return {};
}

void AddressList::addNewPort()
{
    const QPointer<ServerRow> row = rows->current();
    const auto port = row ? askPort(tr("New port"), row, nullptr) : std::nullopt;
    if (port && row)
        rows->addPort(row)->setPort(*port);
}

void AddressList::changePort()
{
    const QPointer<ServerRow> row = rows->current();
    const auto port = row ? askPort(tr("Port"), row, row) : std::nullopt;
    if (port && row)
        row->setPort(*port);
}

void AddressList::removeRow()
{
    const QPointer<ServerRow> row = rows->current();
    const bool sure = row
        && (!row->isListening()
            || askYesNo(window(),
                        tr("The server is running.") + QLatin1Char('\n')
                            + tr("Do you want to remove it?")));
    if (sure && row)
        keeper->remove(row);
}
