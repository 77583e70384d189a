#include "canvas/ZonePreview.h"

#include <QPainter>
#include <QPolygonF>
#include <QStyleOptionGraphicsItem>

namespace {

/// Above all zones, below the brush.
constexpr qreal PreviewZ = 900;
/// With more circles in sight only their centres are drawn, because circles take too long.
constexpr int MostCircles = 1500;

} // namespace

ZonePreview::ZonePreview(const QColor& color)
    : m_color(color)
{
    m_color.setAlpha(255);
    setZValue(PreviewZ);
    setFlag(ItemUsesExtendedStyleOption);
    setAcceptedMouseButtons(Qt::NoButton);
}

void ZonePreview::Show(const std::vector<QPointF>& places, qreal radius)
{
    prepareGeometryChange();
    m_places = places;
    m_radius = radius;
    qreal left = 0;
    qreal top = 0;
    qreal right = 0;
    qreal bottom = 0;
    for (const QPointF& place : places) {
        const bool isFirst = &place == &places.front();
        left = isFirst ? place.x() : qMin(left, place.x());
        top = isFirst ? place.y() : qMin(top, place.y());
        right = isFirst ? place.x() : qMax(right, place.x());
        bottom = isFirst ? place.y() : qMax(bottom, place.y());
    }
    // Dots keep their size at every zoom, down to a sixteenth.
    constexpr qreal dot = 80;
    const qreal margin = radius + dot;
    m_bounds = places.empty() ? QRectF()
                              : QRectF(left, top, right - left, bottom - top)
                                    .adjusted(-margin, -margin, margin, margin);
}

void ZonePreview::paint(QPainter* painter, const QStyleOptionGraphicsItem* option,
                        QWidget* /*widget*/)
{
    const qreal margin = m_radius + 1;
    const QRectF seen = option->exposedRect.adjusted(-margin, -margin, margin, margin);
    QPolygonF centres;
    for (const QPointF& place : m_places) {
        if (seen.contains(place)) {
            centres.append(place);
        }
    }
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    // White below the colour is seen on every ground.
    constexpr qreal inner = 2;
    constexpr qreal outer = 4;
    for (const QPen& wanted : {QPen(Qt::white, outer), QPen(m_color, inner)}) {
        QPen pen = wanted;
        pen.setCosmetic(true);
        pen.setCapStyle(Qt::RoundCap);
        painter->setPen(pen);
        if (centres.size() <= MostCircles) {
            for (const QPointF& centre : qAsConst(centres)) {
                painter->drawEllipse(centre, m_radius, m_radius);
            }
        }
        pen.setWidthF(pen.widthF() * 2);
        painter->setPen(pen);
        painter->drawPoints(centres);
    }
}
