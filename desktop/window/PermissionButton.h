#pragma once

#include "config/Permission.h"
#include "desktop/widgets/BrokenWords.h"

#include <QPushButton>

class Profile;
class Profiles;
class QActionGroup;
class QMenu;
class ServerRows;

/// Says in plain words what visitors may do with what the current row shares and how they come in,
/// and changes it. Says, too, when other rows that are shown differ. A child of the address list.
class PermissionButton : public BrokenWords<QPushButton>
{
    Q_OBJECT
public:
    /// Both are borrowed.
    PermissionButton(const Profiles *choice, ServerRows *servers, QWidget *parent);

    /// That of the current row, else the global one.
    Profile *profile() const;

    /// Shows what the profile says now.
    void showProfile();

Q_SIGNALS:
    /// There is more to say than this has words for: `page` of the settings of the profile.
    void settingsWanted(Profile *profile, int page);
    void profileShown(); ///< which may be another one now, or say something else

private:
    void buildMenu();
    void open();
    void choose(Permission wanted);

    const Profiles *profiles;
    ServerRows *rows;
    QMenu *words;
    QActionGroup *permissions;
    QAction *login;
    QAction *addRemark;
};
