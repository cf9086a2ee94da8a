#pragma once

#include "config/Permission.h"
#include "desktop/widgets/Touch.h"

#include <QPushButton>

class Profile;
class Profiles;
class QActionGroup;
class QMenu;
class ServerRows;

/// Says in plain words what visitors may do with what the current row shares and how they come in,
/// and changes it. A child of the address list.
class PermissionButton : public Finger<QPushButton>
{
    Q_OBJECT
public:
    /// Both are borrowed.
    PermissionButton(const Profiles *choice, ServerRows *servers, QWidget *parent);

    /// Shows what the profile says now.
    void showProfile();

Q_SIGNALS:
    /// There is more to say than this has words for: `page` of the settings of the profile.
    void settingsWanted(Profile *profile, int page);

private:
    void buildMenu();
    void open();
    void choose(Permission wanted);
    Profile *profile() const;

    const Profiles *profiles;
    ServerRows *rows;
    QMenu *words;
    QActionGroup *permissions;
    QAction *login;
};
