#include "desktop/widgets/LinkLabel.h"

#include "desktop/widgets/Touch.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

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
    return { fingerSize, qMax(fingerSize, fontMetrics().height()) };
}

void LinkLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    showLink();
}

void LinkLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        clear(); // the colour of the link is that of when the text was set
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange)
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
