#include "desktop/widgets/MessageDialog.h"

#include "desktop/widgets/Touch.h"

#include <QFile>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

constexpr QSize messageSize(640, 480);

} // namespace

MessageDialog::MessageDialog(const QString &title, const QString &text, QWidget *parent)
    : QDialog(parent)
    , browser(new QTextBrowser)
{
    setWindowTitle(title);
    browser->setOpenExternalLinks(true);
    browser->setAccessibleName(title);
    browser->setText(text);
    scrollByFinger(browser);

    auto *closeButton = new Finger<QPushButton>(tr("&Close"));
    connect(closeButton, &QPushButton::clicked, this, &QDialog::accept);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(browser);
    layout->addWidget(closeButton, 0, Qt::AlignRight);
    fitToScreen(this, messageSize);
}

void MessageDialog::help(const QString &languageFolder, const QString &name, QWidget *parent)
{
    QFile file(languageFolder + QLatin1String("help/") + name + QLatin1String(".html"));
    const QString text = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll())
                                                        : tr("Can't read file: ") + file.fileName();

    MessageDialog(tr("Help"), text, parent).exec();
}

QString MessageDialog::text() const
{
    return browser->toPlainText();
}
