#pragma once

#include <QDialogButtonBox>
#include <QPushButton>

#include <initializer_list>

class QDialog;
class QHBoxLayout;

/// A button of a dialog that Enter does not press; it presses the dialog's default one.
QPushButton *newButton(const QString &text);

/// The same with words of any length: they go on in further lines on small screens.
QPushButton *newBrokenButton(const QString &words);

/// These buttons side by side at the right, for the foot of a dialog.
QHBoxLayout *newButtonRow(std::initializer_list<QPushButton *> buttons);

/// "OK" and "Cancel" of a dialog, which they accept and reject.
class OkCancelButtons : public QDialogButtonBox
{
    Q_OBJECT

public:
    explicit OkCancelButtons(QDialog *dialog);

    QPushButton *ok() const { return m_ok; }

private:
    QPushButton *m_ok;
};
