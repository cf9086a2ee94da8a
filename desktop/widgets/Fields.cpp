#include "desktop/widgets/Fields.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace {

constexpr int shortestChoice = 8; // letters
constexpr int shortestNumber = 110; // pixels
constexpr int sideMargin = 4; ///< pixels, in frames: small screens have no more for large letters

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

/// Its title, unlike the toolkit's, is shortened where the content needs less room.
class Frame : public QGroupBox
{
public:
    explicit Frame(const QString &title)
        : QGroupBox(title)
        , whole(title)
    {
        setAccessibleName(title);
    }

    QSize minimumSizeHint() const override
    {
        const int content = layout() ? layout()->totalMinimumSize().width() : 0;
        return { content, QGroupBox::minimumSizeHint().height() };
    }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QGroupBox::resizeEvent(event);
        setTitle(fontMetrics().elidedText(whole, Qt::ElideRight, width()));
    }

private:
    const QString whole;
};

QHBoxLayout *tightRow(QWidget *owner)
{
    auto *row = new QHBoxLayout(owner);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
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
    m_spinBox->setMinimumWidth(shortestNumber); // the largest one may scroll
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
    auto *frame = new Frame(title);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    // Aligned it is as high as it needs at the width that it has, with texts that wrap.
    layout->addWidget(frame, 0, Qt::AlignTop);
    auto *content = new QVBoxLayout(frame);
    QMargins margins = content->contentsMargins();
    margins.setLeft(sideMargin);
    margins.setRight(sideMargin);
    content->setContentsMargins(margins);
    return content;
}
