#include "canvas/CurrentLayerItem.h"

#include "canvas/LayerPainter.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionGraphicsItem>

CurrentLayerItem::CurrentLayerItem(const LayerPainter& painter)
    : m_painter(painter)
{
    setShapeMode(BoundingRectShape);
    setFlag(ItemUsesExtendedStyleOption);
}

void CurrentLayerItem::PictureChanged()
{
    prepareGeometryChange();
    m_bounds = QRectF(QPointF(), QSizeF(m_painter.Size()));
    update();
}

QPainterPath CurrentLayerItem::shape() const
{
    QPainterPath path;
    path.addRect(m_bounds);
    return path;
}

void CurrentLayerItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option,
                             QWidget* /*widget*/)
{
    m_painter.Paint(*painter, option->exposedRect);
}
