#include "desktop/widgets/InputDialog.h"

#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/Fields.h"

#include <QLabel>
#include <QVBoxLayout>

InputDialog::InputDialog(const QString &title, const QString &text, QWidget *parent)
    : QDialog(parent)
    , line(new Finger<QLineEdit>)
{
    setWindowTitle(title);
    line->setText(text);
    line->selectAll();

    auto *layout = new QVBoxLayout(this);
    // Named in the window as well: a small screen may show no title bars.
    layout->addWidget(newCaption(title, line));
    layout->addWidget(line);
    layout->addStretch();
    layout->addWidget(new OkCancelButtons(this));
}

QString InputDialog::text() const
{
    return line->text();
}

std::optional<QString> InputDialog::ask(const QString &title, const QString &text, QWidget *parent)
{
    InputDialog dialog(title, text, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.text();
}
