#include "canvas/PlaceMark.h"

#include <QGraphicsView>
#include <QPainter>

namespace {

constexpr int ShownMilliseconds = 2000;
/// In view pixels.
constexpr int Radius = 18;
constexpr int CrossStart = 6;
constexpr int CrossEnd = 26;
constexpr int Extent = CrossEnd + 4;

} // namespace

PlaceMark::PlaceMark(QGraphicsView& view)
    : m_view(view)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &PlaceMark::Repaint);
}

void PlaceMark::Show(QPointF place)
{
    Repaint();
    m_place = place;
    m_timer.start(ShownMilliseconds);
    Repaint();
}

void PlaceMark::Repaint()
{
    const QPoint middle = m_view.mapFromScene(m_place);
    m_view.viewport()->update(QRect(middle - QPoint(Extent, Extent), QSize(2, 2) * Extent));
}

void PlaceMark::Draw(QPainter& painter) const
{
    if (!IsShown()) {
        return;
    }
    const QPointF middle = painter.worldTransform().map(m_place);
    painter.save();
    painter.resetTransform();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setOpacity(1);
    painter.translate(middle);
    // White on black is seen on every ground.
    for (const QPen& pen : {QPen(Qt::black, 5), QPen(Qt::white, 2)}) {
        painter.setPen(pen);
        painter.drawEllipse(QPoint(), Radius, Radius);
        for (const QPoint direction : {QPoint(1, 0), QPoint(0, 1), QPoint(-1, 0), QPoint(0, -1)}) {
            painter.drawLine(direction * CrossStart, direction * CrossEnd);
        }
    }
    painter.restore();
}
