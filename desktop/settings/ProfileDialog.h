#pragma once

#include <QDialog>

class Profile;
class ProfileUser;
class QComboBox;

/// Chooses the profile that a server item runs with, and makes and removes profiles.
/// Run it with `exec()`; it gives up by itself when the item goes away meanwhile.
class ProfileDialog : public QDialog
{
    Q_OBJECT

public:
    /// `user`, a server item, is borrowed; on OK it takes the chosen profile.
    ProfileDialog(ProfileUser *user, QWidget *parent);

    /// Why no profile can be stored under `name`, translated; empty when one can.
    static QString refusal(const QString &name);

    void accept() override;

private Q_SLOTS:
    void newProfile();
    void removeProfile();

private:
    void addProfile(Profile *profile);
    Profile *chosenProfile() const;

    ProfileUser *item;
    QComboBox *profiles;
};
