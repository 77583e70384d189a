#include "tests/support/PaintCounter.h"

#include <QEvent>
#include <QWidget>

PaintCounter::PaintCounter(QWidget* widget)
{
    widget->installEventFilter(this);
}

bool PaintCounter::eventFilter(QObject* watched, QEvent* event)
{
    m_count += event->type() == QEvent::Paint ? 1 : 0;
    return QObject::eventFilter(watched, event);
}
