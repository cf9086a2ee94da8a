#include "desktop/widgets/Fields.h"

#include <QAbstractItemView>
#include <QFile>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QScroller>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace {

constexpr int shortestChoice = 12; // letters

class TallRows : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index).expandedTo({ 0, fingerSize });
    }
};

/// Draws an eye, struck through while the password is hidden.
class EyeButton : public Finger<QToolButton>
{
public:
    explicit EyeButton(QWidget *parent)
        : Finger(parent)
    {
        setCheckable(true);
        setAutoRaise(true);
        setAccessibleName(PasswordField::tr("Show password"));
        setToolTip(accessibleName());
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QToolButton::paintEvent(event);

        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(rect().center());
        const QBrush ink = palette().buttonText();
        painter.setPen(QPen(ink, 2));
        painter.drawPath(lids());
        painter.drawEllipse(QPointF(0, 0), 3, 3);
        if (!isChecked())
            painter.drawLine(-9, 9, 9, -9);
    }

private:
    static QPainterPath lids()
    {
        QPainterPath path(QPointF(-12, 0));
        path.quadTo(0, -14, 12, 0);
        path.quadTo(0, 14, -12, 0);
        return path;
    }
};

QHBoxLayout *tightRow(QWidget *owner)
{
    auto *row = new QHBoxLayout(owner);
    row->setContentsMargins(0, 0, 0, 0);
    return row;
}

} // namespace

ChoiceBox::ChoiceBox(QWidget *parent)
    : Finger(parent)
{
    setItemDelegate(new TallRows(this));
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(shortestChoice);
}

PasswordField::PasswordField(QWidget *parent)
    : QWidget(parent)
    , m_edit(new Finger<QLineEdit>(this))
{
    m_edit->setEchoMode(QLineEdit::Password);
    auto *eye = new EyeButton(this);
    connect(eye, &QToolButton::toggled, m_edit, [this](bool show) {
        m_edit->setEchoMode(show ? QLineEdit::Normal : QLineEdit::Password);
    });

    QHBoxLayout *row = tightRow(this);
    row->addWidget(m_edit, 1);
    row->addWidget(eye);
    setFocusProxy(m_edit);
}

StepField::StepField(int minimum, int maximum, QWidget *parent)
    : QWidget(parent)
    , m_spinBox(new Finger<QSpinBox>(this))
{
    m_spinBox->setRange(minimum, maximum);
    m_spinBox->setCorrectionMode(QAbstractSpinBox::CorrectToNearestValue);
    m_spinBox->setButtonSymbols(QAbstractSpinBox::NoButtons);
    QToolButton *less = addButton(QString(QChar(0x2212)), tr("Less"));
    QToolButton *more = addButton(QStringLiteral("+"), tr("More"));
    connect(less, &QToolButton::clicked, m_spinBox, &QSpinBox::stepDown);
    connect(more, &QToolButton::clicked, m_spinBox, &QSpinBox::stepUp);

    QHBoxLayout *row = tightRow(this);
    row->addWidget(m_spinBox, 1);
    row->addWidget(less);
    row->addWidget(more);
    setFocusProxy(m_spinBox);
}

QToolButton *StepField::addButton(const QString &text, const QString &name)
{
    auto *button = new Finger<QToolButton>(this);
    button->setText(text);
    button->setAccessibleName(name);
    button->setAutoRepeat(true);
    button->setFocusPolicy(Qt::NoFocus); // the arrow keys do the same in the spin box
    return button;
}

OkCancelButtons::OkCancelButtons(QDialog *dialog)
    : QDialogButtonBox(dialog)
    , m_ok(new Finger<QPushButton>(tr("OK")))
{
    addButton(m_ok, AcceptRole);
    addButton(new Finger<QPushButton>(tr("Cancel")), RejectRole);
    m_ok->setDefault(true);
    connect(this, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    connect(this, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
}

QIcon fileIcon(const QString &path)
{
    return QFile::exists(path) ? QIcon(path) : QIcon();
}

QLabel *newCaption(const QString &text, QWidget *field)
{
    QWidget *control = field->focusProxy() ? field->focusProxy() : field;
    control->setAccessibleName(text);
    auto *caption = new QLabel(text);
    caption->setBuddy(control);
    return caption;
}

QVBoxLayout *addFrame(QWidget *page, const QString &title)
{
    auto *frame = new QGroupBox(title);
    frame->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(frame);
    layout->addStretch();
    return new QVBoxLayout(frame);
}

void scrollByFinger(QAbstractScrollArea *area)
{
    QScroller::grabGesture(area->viewport(), QScroller::TouchGesture);
}

void sizeForFingers(QFileDialog *dialog)
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
    // A small screen has no room for the buttons that change the kind of list.
    for (const char *name : { "listModeButton", "detailModeButton" }) {
        if (auto *button = dialog->findChild<QWidget *>(QLatin1String(name)))
            button->hide();
    }
    dialog->setStyleSheet(
        QStringLiteral("QAbstractItemView::item { min-height: %1px; }").arg(fingerSize));
}

void warn(QWidget *parent, const QString &text)
{
    QMessageBox box(QMessageBox::Warning, {}, text, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Ok)->setMinimumSize(2 * fingerSize, fingerSize);
    box.exec();
}

void fitToScreen(QWidget *window, const QSize &wanted)
{
    const int titleBar = window->style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const QSize room = window->screen()->availableSize() - QSize(0, titleBar);
    window->resize(wanted.boundedTo(room));
}
