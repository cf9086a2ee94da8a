#include "desktop/widgets/Labels.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

#include <utility>

namespace {

constexpr int leastHeight = 44; // what a finger needs

} // namespace

StateLabel::StateLabel(QIcon on, QIcon off, QWidget *parent)
    : QLabel(parent)
    , onIcon(std::move(on))
    , offIcon(std::move(off))
{
    showState();
}

void StateLabel::setOn(bool on)
{
    m_on = on;
    showState();
}

void StateLabel::showState()
{
    const int size = style()->pixelMetric(QStyle::PM_LargeIconSize, nullptr, this);
    setPixmap((m_on ? onIcon : offIcon).pixmap(size));
    setAccessibleName(m_on ? tr("On") : tr("Off"));
}

LinkLabel::LinkLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::RichText);
    setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    setFocusPolicy(Qt::StrongFocus);
}

void LinkLabel::setLink(const QString &text, const QString &linkTarget)
{
    plain = text;
    target = linkTarget;
    setToolTip(plain.toHtmlEscaped());
    setAccessibleName(plain);
    updateGeometry();
    showLink();
}

void LinkLabel::showLink()
{
    const QString shown = fontMetrics().elidedText(plain, Qt::ElideMiddle, contentsRect().width());
    setText(
        QStringLiteral("<a href=\"%1\">%2</a>").arg(target.toHtmlEscaped(), shown.toHtmlEscaped()));
}

QSize LinkLabel::sizeHint() const
{
    return QSize(fontMetrics().horizontalAdvance(plain), fontMetrics().height())
        .expandedTo(minimumSizeHint());
}

QSize LinkLabel::minimumSizeHint() const
{
    return { leastHeight, qMax(leastHeight, fontMetrics().height()) };
}

void LinkLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    showLink();
}

void LinkLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        showLink();
}

void LinkLabel::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        Q_EMIT linkActivated(target);
    else
        QLabel::keyPressEvent(event);
}

void LinkLabel::paintEvent(QPaintEvent *event)
{
    QLabel::paintEvent(event);
    if (!hasFocus())
        return;
    QPainter painter(this);
    QStyleOptionFocusRect option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

StateLinkLabel::StateLinkLabel(const QIcon &on, const QIcon &off, QWidget *parent)
    : QWidget(parent)
    , m_picture(new StateLabel(on, off, this))
    , m_link(new LinkLabel(this))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_picture);
    row->addWidget(m_link, 1);
}
