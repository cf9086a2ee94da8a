#pragma once

#include <QDialog>

class ColorPage;
class DesktopPage;
class FontPage;
class Look;
class PageView;
class QLayout;
class QPushButton;
class StylePage;

/// The "Look&Feel Settings": style, colours and font size of the whole program.
/// Run it with `exec()`; closing it without "Apply" brings back the look applied last.
class LookDialog : public QDialog
{
    Q_OBJECT

public:
    /// `edited` is borrowed.
    LookDialog(Look *edited, QWidget *parent);

    /// Every way to close leads here: drops what was tried and remembers the page.
    void done(int result) override;

private:
    void addPages();
    QLayout *newButtons();
    void apply();
    void showPage(int row);
    void warnAboutColors();
    void enableApply();

    Look *look;
    PageView *view;
    StylePage *styles;
    ColorPage *colors;
    FontPage *fonts;
    DesktopPage *desktop;
    QPushButton *applyButton;
};
