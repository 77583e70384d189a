#include "canvas/HeatItem.h"

#include <QPainter>

namespace {

/// Above the layer being edited, below all zones.
constexpr qreal HeatZ = 0.9;
constexpr qreal HeatOpacity = 0.65;

} // namespace

HeatItem::HeatItem()
{
    setZValue(HeatZ);
    setOpacity(HeatOpacity);
    setAcceptedMouseButtons(Qt::NoButton);
}

void HeatItem::Show(const QImage& picture, const QRectF& rect)
{
    prepareGeometryChange();
    m_picture = picture;
    m_rect = rect;
    update();
}

void HeatItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/,
                     QWidget* /*widget*/)
{
    painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter->drawImage(m_rect, m_picture);
}
