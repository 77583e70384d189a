#pragma once

#include <QColor>
#include <QGraphicsItem>

#include <vector>

/// Shows on the map where zones would be placed, above all zones. Clicks go through it. Destroying
/// it takes it off the map.
class ZonePreview : public QGraphicsItem
{
public:
    explicit ZonePreview(const QColor& color);

    /// places, radius: in scene units.
    void Show(const std::vector<QPointF>& places, qreal radius);
    const std::vector<QPointF>& Places() const { return m_places; }

    QRectF boundingRect() const override { return m_bounds; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option,
               QWidget* widget = nullptr) override;

private:
    QColor m_color;
    std::vector<QPointF> m_places;
    qreal m_radius = 0;
    QRectF m_bounds;
};
