#pragma once

#include <QGraphicsPixmapItem>

class LayerPainter;

/// Shows the layer that is being edited: the working picture, which the painter owns.
class CurrentLayerItem : public QGraphicsPixmapItem
{
public:
    explicit CurrentLayerItem(const LayerPainter& painter);

    /// Call it when the painter has another picture.
    void PictureChanged();

    QRectF boundingRect() const override { return m_bounds; }
    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    const LayerPainter& m_painter;
    QRectF m_bounds;
};
