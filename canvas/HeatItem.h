#pragma once

#include <QGraphicsItem>
#include <QImage>

/// The colours of a HeatMap over the layers and below the zones. The mouse goes through it.
class HeatItem : public QGraphicsItem
{
public:
    HeatItem();

    /// The picture covers the rectangle, in scene units.
    void Show(const QImage& picture, const QRectF& rect);

    QRectF boundingRect() const override { return m_rect; }
    /// Empty, so that nothing is found at a place because of it.
    QPainterPath shape() const override { return {}; }
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    QImage m_picture;
    QRectF m_rect;
};
