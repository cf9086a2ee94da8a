#pragma once

#include <QDialog>

#include <optional>

class QLineEdit;

/// Asks for one line of text. A child of the window it belongs to.
class InputDialog : public QDialog
{
    Q_OBJECT

public:
    /// `text` stands in the line at first.
    InputDialog(const QString &title, const QString &text, QWidget *parent);

    QString text() const;

    /// Runs the dialog; the line as typed on OK, nothing on Cancel.
    static std::optional<QString> ask(const QString &title, const QString &text, QWidget *parent);

private:
    QLineEdit *line;
};
