#include "ui/widgets/VerticalScrollArea.h"

#include <QEvent>
#include <QLayout>
#include <QScrollBar>

namespace {

/// What the form needs below the widget, with the spaces between.
int HeightBelow(QWidget* last, const QLayout* layout)
{
    int height = 0;
    const int index = last && layout ? layout->indexOf(last) : -1;
    for (int i = index + 1; index >= 0 && i < layout->count(); ++i) {
        const QLayoutItem* item = layout->itemAt(i);
        height += item->isEmpty() ? 0 : item->sizeHint().height() + layout->spacing();
    }
    return height;
}

} // namespace

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
    const int height =
        widget()->sizeHint().height() - HeightBelow(m_last, widget()->layout()) - m_butFor;
    return {minimumSizeHint().width(), height + 2 * frameWidth()};
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
