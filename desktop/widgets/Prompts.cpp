#include "desktop/widgets/Prompts.h"

#include "desktop/widgets/Touch.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>

#include <utility>

namespace {

constexpr QSize usualChooserSize(640, 440);

/// Makes room for fingers. Buttons stand below each other where the screen is too narrow for them
/// side by side; names in their texts may be longer still.
void placeButtons(QMessageBox *box)
{
    constexpr int gap = 12; // pixels, between and beside buttons
    const int room = box->screen()->availableSize().width() - 2 * gap;
    int wanted = -gap;
    const QList<QAbstractButton *> buttons = box->buttons();
    for (QAbstractButton *button : buttons) {
        const QSize hint = button->sizeHint().expandedTo({ 2 * fingerSize, fingerSize });
        button->setMinimumSize(qMin(hint.width(), room), hint.height());
        wanted += button->minimumWidth() + gap;
    }
    if (auto *row = box->findChild<QDialogButtonBox *>())
        row->setOrientation(wanted <= room ? Qt::Horizontal : Qt::Vertical);
}

/// Keeps the letters of paths and of what services say.
void prepare(QMessageBox *box)
{
    box->setTextFormat(Qt::PlainText);
    box->setModal(true);
    placeButtons(box);
}

/// All but the dialogs that the desktop brings itself.
void prepare(QFileDialog *dialog)
{
    const auto parts = dialog->findChildren<QWidget *>();
    for (QWidget *part : parts) {
        if (qobject_cast<QAbstractButton *>(part))
            part->setMinimumSize(fingerSize, fingerSize);
        else if (qobject_cast<QLineEdit *>(part) || qobject_cast<QComboBox *>(part))
            part->setMinimumHeight(fingerSize);
        else if (auto *view = qobject_cast<QAbstractItemView *>(part))
            scrollByFinger(view);
    }
    // The toolkit's captions belong to no control.
    for (const auto &[name, caption] : { std::pair("lookInCombo", QFileDialog::LookIn),
                                         std::pair("fileTypeCombo", QFileDialog::FileType) }) {
        if (auto *box = dialog->findChild<QWidget *>(QLatin1String(name)))
            box->setAccessibleName(dialog->labelText(caption));
    }
    // A small screen has no room for the buttons that change the kind of list.
    for (const char *name : { "listModeButton", "detailModeButton" }) {
        if (auto *button = dialog->findChild<QWidget *>(QLatin1String(name)))
            button->hide();
    }
    dialog->setStyleSheet(
        QStringLiteral("QAbstractItemView::item { min-height: %1px; }").arg(fingerSize));
}

/// Shown is "All (*.*)", but the pattern behind it counts: names without a dot are files, too.
void offerAllFiles(QFileDialog *dialog)
{
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setNameFilter(QCoreApplication::translate("Prompts", "All (*.*)")
                          + QLatin1String("(*)"));
}

} // namespace

QMessageBox *newBox(QWidget *parent, QMessageBox::Icon icon, const QString &text)
{
    auto *box = new QMessageBox(icon, QString(), text, QMessageBox::Ok, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    prepare(box);
    return box;
}

QMessageBox *showBox(QWidget *parent, QMessageBox::Icon icon, const QString &text)
{
    QMessageBox *box = newBox(parent, icon, text);
    box->show();
    return box;
}

QPushButton *addBoxButton(QMessageBox *box, const QString &text)
{
    QPushButton *button = box->addButton(text, QMessageBox::ActionRole);
    placeButtons(box);
    return button;
}

void warn(QWidget *parent, const QString &text)
{
    QMessageBox box(QMessageBox::Warning, QString(), text, QMessageBox::Ok, parent);
    prepare(&box);
    box.exec();
}

bool askYesNo(QWidget *parent, const QString &question)
{
    QMessageBox box(QMessageBox::Question, QString(), question, QMessageBox::Yes | QMessageBox::No,
                    parent);
    box.setDefaultButton(QMessageBox::Yes);
    prepare(&box);
    return box.exec() == QMessageBox::Yes;
}

int askOneOf(QWidget *parent, const QString &question, const QStringList &answers)
{
    QMessageBox box(QMessageBox::Question, QString(), question, QMessageBox::Cancel, parent);
    QList<QAbstractButton *> buttons;
    for (const QString &answer : answers)
        buttons.append(box.addButton(answer, QMessageBox::AcceptRole));
    box.setDefaultButton(qobject_cast<QPushButton *>(buttons.constFirst()));
    box.setEscapeButton(QMessageBox::Cancel);
    prepare(&box);
    box.exec();
    return int(buttons.indexOf(box.clickedButton()));
}

QString choosePath(QWidget *parent, PathKind kind, const QString &title, const QString &start,
                   const QString &filter)
{
    QFileDialog dialog(parent, title, start, filter);
    if (kind == PathKind::Folder) {
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly);
    } else {
        dialog.setFileMode(QFileDialog::ExistingFile);
        if (filter.isEmpty())
            offerAllFiles(&dialog);
    }
    prepare(&dialog);
    fitToScreen(&dialog, usualChooserSize);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}
