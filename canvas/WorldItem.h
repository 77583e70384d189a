#pragma once

#include <QGraphicsPixmapItem>
#include <QImage>
#include <QSize>

#include <vector>

/// The world picture. It looks as if it were scaled to the layer size without smoothing, but is
/// kept at its own size: each drawing looks up which pixel of the picture a screen pixel shows.
class WorldItem : public QGraphicsPixmapItem
{
public:
    WorldItem();

    /// Shows the picture at a size in layer pixels. Returns false and changes nothing when the
    /// picture is null, when a side of the size is below 1 or above raster::MaxMaskLength, and when
    /// there is no memory. The resolution and the device pixel ratio of the picture do not count.
    bool Show(QImage picture, QSize size);
    /// Shows no picture.
    void Clear();

    /// The picture scaled to the layer size, made at each call; null without a picture.
    QPixmap pixmap() const;

    QRectF boundingRect() const override { return {QPointF(), QSizeF(m_size)}; }
    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    void Take(const QImage& picture, QSize size);
    QImage Sampled(const QTransform& toDevice, const QRect& device) const;

    /// In the format of a QPixmap: Format_RGB32 or Format_ARGB32_Premultiplied.
    QImage m_picture;
    /// Layer pixels; empty without a picture.
    QSize m_size = {0, 0};
    /// The picture's column for each column of the layers, and its row for each row; -1 where
    /// scaling leaves the pixel blank.
    std::vector<int> m_columns;
    std::vector<int> m_rows;
};
