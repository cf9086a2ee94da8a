#pragma once

#include <QDialog>
#include <QPalette>
#include <QSettings>

class PageView;
class FontPage;
class ColorPage;
class StylePage;
class QLayout;
class QListWidgetItem;
class QPushButton;

/// The "Look&Feel Settings": style, colours and font size of the whole program.
/// Run it with `exec()`; closing it without "Apply" brings back the look applied last.
class LookDialog : public QDialog
{
    Q_OBJECT

public:
    explicit LookDialog(QWidget *parent);

    /// Every way to close leads here: drops what was tried and remembers the page.
    void done(int result) override;

public Q_SLOTS:
    void apply();
    void close();
    void changePage(QListWidgetItem *current, QListWidgetItem *previous);
    void controlChanged();

private:
    QLayout *newButtons();
    void warnAboutColors();
    void holdLook();

    QSettings settings;
    QString heldStyle; ///< the style applied last, or at opening
    QPalette heldPalette; ///< the palette that goes with it
    PageView *view;
    ColorPage *colors;
    FontPage *fonts;
    StylePage *styles;
    QPushButton *applyButton;
};
