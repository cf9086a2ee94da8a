#pragma once

#include <QDialog>

#include <memory>

class ConfigPage;
class ConfigPageView;
class Configurable;
class Configuration;
class QPushButton;

/// Edits one profile on a set of pages. Works on a copy, `ConfigPage::conf`, that it owns while it
/// is open, and hands it to a receiver on "Apply". One at a time: use `edit`.
class ConfigDialog : public QDialog
{
    Q_OBJECT

public:
    /// Builds the dialog. `edited` and `told`, the receiver of applied values, are borrowed;
    /// `page` is the row shown first, -1 for the one last shown with this profile.
    ConfigDialog(Configuration *edited, Configurable *told, QWidget *parent, int page);
    ~ConfigDialog() override;

    /// Builds the dialog and runs it modally until it is closed. As the pages share one working
    /// copy, there is no second one: an open dialog of the same profile turns to `page` instead,
    /// one of another profile stays as it is.
    static void edit(Configuration *profile, Configurable *receiver, QWidget *parent,
                     int page = -1);

    /// Every way to close leads here: remembers the page and saves the edited profile.
    void done(int result) override;

public Q_SLOTS:
    void apply();
    void configChanged();
    void close();

private:
    void addPages();
    void addPage(const QString &label, const QString &icon, ConfigPage *page);
    void turnTo(const Configuration *edited, int page);
    void releaseCopy();

    Configuration *profile;
    Configurable *receiver;
    bool global; ///< the edited profile is the global one
    std::unique_ptr<Configuration> workingCopy;
    ConfigPageView *view = nullptr;
    QPushButton *applyButton;
};
