#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QIcon>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QToolButton>

class QAbstractScrollArea;
class QFileDialog;
class QLabel;
class QVBoxLayout;

/// The least height and width of what a finger is to hit, in pixels.
constexpr int fingerSize = 44;

/// A control that no layout makes smaller than a finger needs.
template <typename Base> class Finger : public Base
{
public:
    using Base::Base;

    QSize sizeHint() const override { return large(Base::sizeHint()); }
    QSize minimumSizeHint() const override { return large(Base::minimumSizeHint()); }

private:
    static QSize large(const QSize &hint) { return hint.expandedTo({ fingerSize, fingerSize }); }
};

/// A check box that can be hit anywhere, not just on its text.
class SwitchBox : public Finger<QCheckBox>
{
public:
    using Finger::Finger;

protected:
    bool hitButton(const QPoint &pos) const override { return rect().contains(pos); }
};

/// A combo box whose list has rows for fingers and which never asks for more room than a small
/// screen has, however long its entries are.
class ChoiceBox : public Finger<QComboBox>
{
public:
    explicit ChoiceBox(QWidget *parent = nullptr);
};

/// A line edit that hides what is typed, and a button that shows it.
class PasswordField : public QWidget
{
    Q_OBJECT

public:
    explicit PasswordField(QWidget *parent = nullptr);

    QLineEdit *edit() const { return m_edit; }

private:
    QLineEdit *m_edit;
};

/// A spin box whose buttons stand beside it, each large enough for a finger.
class StepField : public QWidget
{
    Q_OBJECT

public:
    StepField(int minimum, int maximum, QWidget *parent = nullptr);

    QSpinBox *spinBox() const { return m_spinBox; }

private:
    QToolButton *addButton(const QString &text, const QString &name);

    QSpinBox *m_spinBox;
};

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

/// The icon in the file `path`; a null one when there is no such file.
QIcon fileIcon(const QString &path);

/// A caption for `field`, which is read out under the same words.
QLabel *newCaption(const QString &text, QWidget *field);

/// Lays `page` out as a frame under `title`, no higher than it needs; gives the layout inside.
QVBoxLayout *addFrame(QWidget *page, const QString &title);

/// Lets fingers drag the content of `area`.
void scrollByFinger(QAbstractScrollArea *area);

/// Makes the parts of `dialog` large enough for fingers, but for those that the desktop brings.
void sizeForFingers(QFileDialog *dialog);

/// Shows `text`, to the letter, in a box with an OK button and waits until it is closed.
void warn(QWidget *parent, const QString &text);

/// Gives `window` the size `wanted`, or as much of it as its screen has.
void fitToScreen(QWidget *window, const QSize &wanted);
