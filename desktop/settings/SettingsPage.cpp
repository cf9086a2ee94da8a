#include "desktop/settings/SettingsPage.h"

#include "desktop/widgets/Fields.h"
#include "desktop/widgets/MessageDialog.h"

#include <QEvent>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace {

// Pixels.
constexpr int rowSpace = 2; ///< between a field and its help
constexpr int comfortableField = 280;
constexpr int frameRoom = 60; ///< more than the frame around a form takes

/// Whether it stands in one line or several.
int captionWidth(QLayoutItem *item)
{
    const auto *label = qobject_cast<const QLabel *>(item->widget());
    return label ? widthOf(label->text(), label->fontMetrics()) : item->sizeHint().width();
}

/// How wide a page has to be for captions beside the fields of `form`.
int widthWithCaptionsBeside(const QFormLayout *form)
{
    int caption = 0;
    int field = comfortableField;
    for (int row = 0; row < form->rowCount(); ++row) {
        QLayoutItem *captionItem = form->itemAt(row, QFormLayout::LabelRole);
        const QLayoutItem *fieldItem = form->itemAt(row, QFormLayout::FieldRole);
        caption = qMax(caption, captionWidth(captionItem));
        field = qMax(field, fieldItem->minimumSize().width());
    }
    return caption + field + frameRoom;
}

void placeCaptions(QFormLayout *form, bool above)
{
    form->setRowWrapPolicy(above ? QFormLayout::WrapAllRows : QFormLayout::DontWrapRows);
    for (int row = 0; row < form->rowCount(); ++row) {
        auto *caption = qobject_cast<QLabel *>(form->itemAt(row, QFormLayout::LabelRole)->widget());
        caption->setMinimumHeight(above ? 0 : fingerSize); // level with the field
        caption->setWordWrap(above);
    }
}

/// A button that looks like a link, in whatever colours the desktop has.
class LinkButton : public Finger<QToolButton>
{
public:
    LinkButton()
    {
        QFont underlined = font();
        underlined.setUnderline(true);
        setFont(underlined);
        takeLinkColor();
    }

protected:
    void changeEvent(QEvent *event) override
    {
        Finger<QToolButton>::changeEvent(event);
        if (event->type() == QEvent::PaletteChange)
            takeLinkColor();
    }

private:
    void takeLinkColor()
    {
        QPalette colors = palette();
        const QColor ink = colors.color(QPalette::Link);
        if (colors.color(QPalette::ButtonText) == ink)
            return;
        colors.setColor(QPalette::ButtonText, ink);
        setPalette(colors);
    }
};

} // namespace

SettingsPage::SettingsPage(Profile *copy, const QString &title)
    : workingCopy(copy)
    , m_body(addFrame(this, title))
{
}

QFormLayout *SettingsPage::addForm()
{
    auto *form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_body->addLayout(form);
    return form;
}

void SettingsPage::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    const auto forms = findChildren<QFormLayout *>();
    for (QFormLayout *form : forms)
        placeCaptions(form, width() < widthWithCaptionsBeside(form));
}

void SettingsPage::addRow(QFormLayout *form, const QString &label, QWidget *field,
                          const QString &helpName, QWidget *extra)
{
    auto *row = new QHBoxLayout;
    row->setSpacing(rowSpace);
    row->addWidget(field, 1);
    if (extra)
        row->addWidget(extra);
    if (!helpName.isEmpty())
        row->addWidget(helpLink(helpName, label));
    form->addRow(newCaption(label, field), row);
}

QCheckBox *SettingsPage::addCheckBox(const QString &label, qint32 ProfileValues::*field)
{
    auto *box = new SwitchBox(label);
    bind(box, field);
    m_body->addWidget(box);
    return box;
}

void SettingsPage::addHelpLink(const QString &helpName)
{
    m_body->addWidget(helpLink(helpName, {}), 0, Qt::AlignRight);
}

QWidget *SettingsPage::helpLink(const QString &name, const QString &topic)
{
    auto *link = new LinkButton;
    link->setText(tr("Help"));
    link->setAccessibleName(topic.isEmpty() ? tr("Help") : tr("Help: %1").arg(topic));
    link->setAutoRaise(true);
    link->setCursor(Qt::PointingHandCursor);

    connect(link, &QToolButton::clicked, this,
            [this, name] { MessageDialog::help(workingCopy->directories().language, name, this); });
    return link;
}

void SettingsPage::bind(QCheckBox *box, qint32 ProfileValues::*field)
{
    box->setChecked(workingCopy->*field == Qt::Checked);
    connect(box, &QCheckBox::stateChanged, this, [this, field](int state) { store(field, state); });
}

void SettingsPage::bind(QSpinBox *box, qint32 ProfileValues::*field)
{
    box->setValue(workingCopy->*field);
    connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this, field](int value) { store(field, value); });
}

void SettingsPage::bind(QLineEdit *edit, QString ProfileValues::*field)
{
    edit->setText(workingCopy->*field);
    connect(edit, &QLineEdit::textChanged, this,
            [this, field](const QString &text) { store(field, text); });
}
