#include "canvas/OverlayItem.h"

#include <QPainter>
#include <QPainterPath>

OverlayItem::OverlayItem()
{
    setShapeMode(BoundingRectShape);
}

void OverlayItem::Show(const QColor& color, QSize size)
{
    prepareGeometryChange();
    m_color = color;
    m_size = size;
    update();
}

QRectF OverlayItem::boundingRect() const
{
    return m_size.isEmpty() ? QRectF() : QRectF(QPointF(), QSizeF(m_size));
}

QPainterPath OverlayItem::shape() const
{
    QPainterPath path;
    path.addRect(boundingRect());
    return path;
}

void OverlayItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/,
                        QWidget* /*widget*/)
{
    painter->fillRect(boundingRect(), m_color);
}
