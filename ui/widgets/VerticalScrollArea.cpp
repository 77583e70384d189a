#include "ui/widgets/VerticalScrollArea.h"

#include <QEvent>
#include <QScrollBar>

VerticalScrollArea::VerticalScrollArea(QWidget* parent)
    : QScrollArea(parent)
{
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

QSize VerticalScrollArea::sizeHint() const
{
    if (!widget()) {
        return QScrollArea::sizeHint();
    }
    return {minimumSizeHint().width(), widget()->sizeHint().height() + 2 * frameWidth()};
}

QSize VerticalScrollArea::minimumSizeHint() const
{
    const QSize minimum = QScrollArea::minimumSizeHint();
    if (!widget()) {
        return minimum;
    }
    const int width = widget()->minimumSizeHint().width() +
                      verticalScrollBar()->sizeHint().width() + 2 * frameWidth();
    return {width, minimum.height()};
}

bool VerticalScrollArea::eventFilter(QObject* watched, QEvent* event)
{
    // A new minimum size of the form changes ours too.
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return QScrollArea::eventFilter(watched, event);
}
