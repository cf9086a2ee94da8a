#include "desktop/widgets/Prompts.h"

#include "desktop/widgets/Fields.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QFileDialog>
#include <QMenu>

namespace {

constexpr QSize usualDialogSize(640, 440);

void prepare(QMessageBox *box)
{
    // Paths and the texts of services are shown to the letter.
    box->setTextFormat(Qt::PlainText);
    box->setModal(true);
    const QList<QAbstractButton *> buttons = box->buttons();
    for (QAbstractButton *button : buttons)
        button->setMinimumSize(2 * fingerSize, fingerSize);
}

} // namespace

QMessageBox *showBox(QWidget *parent, QMessageBox::Icon icon, const QString &text)
{
    auto *box = new QMessageBox(icon, QString(), text, QMessageBox::Ok, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    prepare(box);
    box->show();
    return box;
}

bool askYesNo(QWidget *parent, const QString &question)
{
    QMessageBox box(QMessageBox::Question, QString(), question, QMessageBox::Yes | QMessageBox::No,
                    parent);
    box.setDefaultButton(QMessageBox::Yes);
    prepare(&box);
    return box.exec() == QMessageBox::Yes;
}

QString choosePath(QWidget *parent, PathKind kind, const QString &title, const QString &start)
{
    QFileDialog dialog(parent, title, start);
    if (kind == PathKind::Folder) {
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setOption(QFileDialog::ShowDirsOnly);
    } else {
        // Shown is "All (*.*)", but the pattern behind it counts: names without a dot are files,
        // too.
        dialog.setFileMode(QFileDialog::ExistingFile);
        dialog.setOption(QFileDialog::HideNameFilterDetails);
        dialog.setNameFilter(QCoreApplication::translate("MainWindow", "All (*.*)")
                             + QLatin1String("(*)"));
    }
    sizeForFingers(&dialog);
    fitToScreen(&dialog, usualDialogSize);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

void sizeForFingers(QMenu *menu)
{
    constexpr int padding = 6;
    menu->setStyleSheet(
        QStringLiteral("QMenu::item { min-height: %1px; padding: %2px 24px %2px 32px; }"
                       "QMenu::item:selected { background: palette(highlight);"
                       " color: palette(highlighted-text); }")
            .arg(fingerSize - 2 * padding)
            .arg(padding));
}
