#pragma once

#include "config/Profile.h"

#include <QWidget>

class QCheckBox;
class QFormLayout;
class QLineEdit;
class QSpinBox;
class QVBoxLayout;

/// The base of the settings pages, which all edit one working copy. A child of the settings
/// dialog, which owns that copy and lets it go after its pages.
class SettingsPage : public QWidget
{
    Q_OBJECT

Q_SIGNALS:
    /// A control wrote its value into the working copy.
    void controlChanged();

protected:
    /// `copy` is borrowed.
    SettingsPage(Profile *copy, const QString &title);

    /// Where the controls of the page go, under its title.
    QVBoxLayout *body() const { return m_body; }

    void resizeEvent(QResizeEvent *event) override;

    /// Appends a form to the page. Its labels stand above the fields where the page is narrow.
    QFormLayout *addForm();

    /// Appends `field` to `form`, named by `label` for the eye and for screen readers, followed
    /// by `extra` and, when a help page is named, a link to it.
    void addRow(QFormLayout *form, const QString &label, QWidget *field,
                const QString &helpName = {}, QWidget *extra = nullptr);

    /// Appends a check box that edits a check state.
    QCheckBox *addCheckBox(const QString &label, qint32 ProfileValues::*field);

    /// Appends a link to a help page that speaks of the whole page.
    void addHelpLink(const QString &helpName);

    /// These show a field of the working copy and write it as soon as the control changes.
    void bind(QCheckBox *box, qint32 ProfileValues::*field);
    void bind(QSpinBox *box, qint32 ProfileValues::*field);
    void bind(QLineEdit *edit, QString ProfileValues::*field);

    /// Writes one value into the working copy and tells so.
    template <typename T> void store(T ProfileValues::*field, const T &value)
    {
        workingCopy->*field = value;
        Q_EMIT controlChanged();
    }

    Profile *const workingCopy;

private:
    QWidget *helpLink(const QString &name, const QString &topic);

    QVBoxLayout *m_body;
};
