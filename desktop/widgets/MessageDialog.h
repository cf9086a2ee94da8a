#pragma once

#include <QDialog>

class QTextBrowser;

/// A text under a title, plain or HTML; long ones scroll. A child of the window it belongs to.
class MessageDialog : public QDialog
{
    Q_OBJECT

public:
    MessageDialog(const QString &title, const QString &text, QWidget *parent);

    /// Shows the page "help/" + `name` + ".html" in the folder of the user's language and returns
    /// when it is closed. A page that can't be read is named instead.
    static void help(const QString &languageFolder, const QString &name, QWidget *parent);

    QString text() const;

private:
    QTextBrowser *browser;
};
