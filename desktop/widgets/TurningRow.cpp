#include "desktop/widgets/TurningRow.h"

#include <QBoxLayout>
#include <QEvent>

TurningRow::TurningRow(QWidget *parent)
    : QWidget(parent)
    , m_row(new QBoxLayout(QBoxLayout::LeftToRight, this))
{
    m_row->setContentsMargins(0, 0, 0, 0);
}

void TurningRow::add(QWidget *widget, int stretch)
{
    m_row->addWidget(widget, stretch);
}

QSize TurningRow::minimumSizeHint() const
{
    int widest = 0;
    for (int i = 0; i < m_row->count(); ++i)
        widest = qMax(widest, m_row->itemAt(i)->minimumSize().width());
    return { widest, QWidget::minimumSizeHint().height() };
}

bool TurningRow::event(QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)
        turn();
    return QWidget::event(event);
}

void TurningRow::turn()
{
    int wanted = -m_row->spacing();
    for (int i = 0; i < m_row->count(); ++i) {
        if (!m_row->itemAt(i)->isEmpty())
            wanted += m_row->itemAt(i)->sizeHint().width() + m_row->spacing();
    }
    const auto direction = wanted <= width() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
    if (m_row->direction() != direction)
        m_row->setDirection(direction);
}
