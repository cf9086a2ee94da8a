#include "desktop/window/PermissionButton.h"

#include "config/Profiles.h"
#include "desktop/settings/SettingsDialog.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"

#include <QActionGroup>
#include <QMenu>

#include <algorithm>
#include <array>
#include <memory>

namespace {

struct Words
{
    Permission permission;
    const char *state; ///< on the button
    const char *choice; ///< in the menu
};

constexpr std::array allWords{
    Words{ Permission::Look, QT_TRANSLATE_NOOP("PermissionButton", "Visitors may look"),
           QT_TRANSLATE_NOOP("PermissionButton", "Look") },
    Words{ Permission::LookAndAdd,
           QT_TRANSLATE_NOOP("PermissionButton", "Visitors may look and add"),
           QT_TRANSLATE_NOOP("PermissionButton", "Look and add") },
    Words{ Permission::ChangeEverything,
           QT_TRANSLATE_NOOP("PermissionButton", "Visitors may change everything"),
           QT_TRANSLATE_NOOP("PermissionButton", "Change everything") },
    Words{ Permission::AddOnly, QT_TRANSLATE_NOOP("PermissionButton", "Visitors may add only"),
           QT_TRANSLATE_NOOP("PermissionButton", "Add only") },
    Words{ Permission::AsSet, QT_TRANSLATE_NOOP("PermissionButton", "Visitors may do as set"),
           nullptr },
};

const Words &wordsOf(Permission permission)
{
    return allWords.at(std::size_t(permission));
}

QString loginWord(const Profile &profile)
{
    if (profile.admitsEveryone())
        return PermissionButton::tr("Reached by everyone");
    return profile.authMode == AuthBasic ? PermissionButton::tr("With a name and password")
                                         : PermissionButton::tr("With a password");
}

/// What visitors of a row with this profile may do, and how they come in.
QString stateWords(const Profile &profile)
{
    return PermissionButton::tr(wordsOf(permissionOf(profile)).state) + QLatin1Char('\n')
        + loginWord(profile);
}

} // namespace

PermissionButton::PermissionButton(const Profiles *choice, ServerRows *servers, QWidget *parent)
    : BrokenWords(parent)
    , profiles(choice)
    , rows(servers)
    , words(new QMenu(this))
    , permissions(new QActionGroup(this))
{
    buildMenu();
    connect(this, &QPushButton::clicked, this, &PermissionButton::open);
    connect(rows, &ServerRows::currentChanged, this, &PermissionButton::showProfile);
    const auto follow = [this](const ServerRow *row) {
        for (const auto signal : { &ServerRow::changed, &ServerRow::stateChanged })
            connect(row, signal, this, &PermissionButton::showProfile);
    };
    const QList<ServerRow *> &all = rows->all();
    std::for_each(all.begin(), all.end(), follow);
    connect(rows, &ServerRows::rowAdded, this, follow);
    connect(rows, &ServerRows::rowRemoved, this, &PermissionButton::showProfile);
    connect(rows->mode(), &GlobalMode::modeChanged, this, &PermissionButton::showProfile);
    showProfile();
}

void PermissionButton::buildMenu()
{
    sizeForFingers(words);
    for (const Words &each : allWords) {
        if (!each.choice)
            continue;
        QAction *action = words->addAction(tr(each.choice));
        action->setCheckable(true);
        permissions->addAction(action);
        connect(action, &QAction::triggered, this,
                [this, permission = each.permission] { choose(permission); });
        if (each.permission == Permission::LookAndAdd)
            addRemark = words->addAction(tr("File managers may replace, too"));
    }
    addRemark->setEnabled(false);
    words->addSeparator();
    login = words->addAction(QString());
    connect(login, &QAction::triggered, this,
            [this] { Q_EMIT settingsWanted(profile(), SettingsDialog::accessRow); });
}

void PermissionButton::showProfile()
{
    const Profile &shown = *profile();
    login->setText(loginWord(shown) + QLatin1String("..."));
    const QString state = stateWords(shown);
    // They are all started by the button beside.
    const QList<ServerRow *> all = rows->shownRows();
    const bool othersDiffer = std::any_of(all.begin(), all.end(), [&state](const ServerRow *row) {
        return stateWords(*row->profile()) != state;
    });
    setWords(othersDiffer ? state + QLatin1Char('\n') + tr("Other addresses differ") : state);
    Q_EMIT profileShown();
}

// --- the menu -----------------------------------------------------------------------------------

void PermissionButton::open()
{
    const Profile &shown = *profile();
    const Permission permission = permissionOf(shown);
    if (permission == Permission::AsSet || !shown.isUsable())
        return Q_EMIT settingsWanted(profile(),
                                     shown.accountRights.isEmpty() ? SettingsDialog::folderRow
                                                                   : SettingsDialog::accessRow);
    const QList<QAction *> choices = permissions->actions();
    choices.at(int(permission))->setChecked(true);
    // Programs that get the standard answers beside classic ones know no adding without replacing.
    addRemark->setVisible(shown.faceMode == FaceAuto);
    words->popup(mapToGlobal(rect().bottomLeft()));
}

void PermissionButton::choose(Permission wanted)
{
    Profile *changed = profile();
    const bool isRefused = wanted == Permission::AddOnly && changed->faceMode != FaceStandard
        && !askYesNo(window(),
                     tr("Only the standard answers take files and show none. Answer all programs "
                        "by the standards?"));
    if (isRefused)
        return;
    const std::unique_ptr<Profile> copy = changed->clone();
    permit(wanted, copy.get());
    rows->profileEdited(copy.get());
    showProfile();
    if (!changed->save())
        warn(window(), tr("Can't write file: ") + changed->fileInTheWay());
}

/// That of the current row, else the one that the next row gets.
Profile *PermissionButton::profile() const
{
    const ServerRow *row = rows->current();
    return row ? row->profile() : profiles->global();
}
