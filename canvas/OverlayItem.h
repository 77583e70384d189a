#pragma once

#include <QColor>
#include <QGraphicsPixmapItem>
#include <QSize>

/// A plain colour over the world picture.
class OverlayItem : public QGraphicsPixmapItem
{
public:
    OverlayItem();

    /// size is in layer pixels.
    void Show(const QColor& color, QSize size);
    const QColor& Color() const { return m_color; }

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    QColor m_color = Qt::transparent;
    QSize m_size;
};
