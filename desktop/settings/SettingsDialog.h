#pragma once

#include <QDialog>

#include <memory>

class SettingsPage;
class PageView;
class Configurable;
class Profile;
class QPushButton;

/// What beside the profile's values decides which settings are offered and how they act.
struct SettingsScope
{
    bool global = false; ///< the edited profile is the global one
    bool rootMode = false; ///< the program was started to use ports up to 1024
};

/// Edits one profile on a set of pages, which work on a copy, and hands the copy to a receiver on
/// "Apply". One at a time: use `edit`.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    enum Row { folderRow, accessRow, serverRow }; ///< of its pages

    /// Builds the dialog. `edited` and `told`, the receiver of applied values, are borrowed;
    /// `page` is the row shown first, -1 for the one last shown with this profile.
    SettingsDialog(Profile *edited, SettingsScope offered, Configurable *told, QWidget *parent,
                   int page);
    ~SettingsDialog() override;

    /// Builds the dialog and runs it modally until it is closed. There is no second one: an open
    /// dialog of the same profile turns to `page` instead, one of another profile stays as it is.
    static void edit(Profile *profile, SettingsScope scope, Configurable *receiver, QWidget *parent,
                     int page = -1);

    /// Every way to close but the end of the program: asks first what is to become of values that
    /// were not applied.
    void reject() override;

    /// Every way to close leads here: remembers the page and saves the edited profile, but one
    /// whose file can't be used only when it was applied.
    void done(int result) override;

private:
    void takeOverTyped();
    void apply();
    void enableApply();
    void addPages();
    void addPage(const QString &label, const QString &icon, SettingsPage *page);
    void turnTo(const Profile *edited, int page);

    Profile *profile;
    Configurable *receiver;
    SettingsScope scope;
    std::unique_ptr<Profile> workingCopy;
    bool isApplied = false;
    PageView *view;
    QPushButton *applyButton;
};
