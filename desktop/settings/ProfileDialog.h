#pragma once

#include <QDialog>

class Profile;
class Profiles;
class ProfileUser;
class QComboBox;

/// Chooses the profile that a server item runs with, and makes, renames and removes profiles.
/// Run it with `exec()`; it gives up by itself when the item goes away meanwhile.
class ProfileDialog : public QDialog
{
    Q_OBJECT

public:
    /// Both are borrowed; `user` is a server item: on OK it takes the chosen profile.
    ProfileDialog(Profiles *choice, ProfileUser *user, QWidget *parent);

    /// Why no profile can be stored under `name`, translated; empty when one can.
    static QString refusal(const Profiles &profiles, const QString &name);

    void accept() override;

Q_SIGNALS:
    void renamed(const QString &from, const QString &to);

private:
    QString askName(const QString &proposed);
    void addCopyOf(const Profile *origin, const QString &proposed);
    void duplicateProfile();
    void renameProfile();
    void removeProfile();
    Profile *chosenProfile() const;
    const Profile *readableProfile();

    ProfileUser *item;
    Profiles *profiles;
    QComboBox *list;
};
