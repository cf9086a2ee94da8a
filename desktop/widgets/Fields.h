#pragma once

#include "desktop/widgets/BrokenWords.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QToolButton>

class QLabel;
class QVBoxLayout;

/// A check box that can be hit anywhere, not just on its text.
class SwitchBox : public BrokenWords<QCheckBox>
{
public:
    using BrokenWords::BrokenWords;

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

/// A caption for `field`, which is read out under the same words.
QLabel *newCaption(const QString &text, QWidget *field);

/// Lays `page` out as a frame under `title`, no higher than it needs, and as narrow as its content
/// can be; gives the layout inside.
QVBoxLayout *addFrame(QWidget *page, const QString &title);
