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
/// and changes it. Says, too, when other rows that are shown differ. A child of the address list.
class PermissionButton : public Finger<QPushButton>
{
    Q_OBJECT
public:
    /// Both are borrowed.
    PermissionButton(const Profiles *choice, ServerRows *servers, QWidget *parent);

    /// That of the current row, else the global one.
    Profile *profile() const;

    /// Shows what the profile says now.
    void showProfile();

    /// As wide as the unbroken words, however they are broken now: rows of widgets turn by that.
    QSize sizeHint() const override;

    /// As narrow as the longest word.
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// There is more to say than this has words for: `page` of the settings of the profile.
    void settingsWanted(Profile *profile, int page);
    void profileShown(); ///< which may be another one now, or say something else

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void buildMenu();
    void showWords();
    int frameWidth() const;
    void open();
    void choose(Permission wanted);

    const Profiles *profiles;
    ServerRows *rows;
    QString unbroken; ///< what it says, in two lines
    QMenu *words;
    QActionGroup *permissions;
    QAction *login;
};
