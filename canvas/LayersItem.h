#pragma once

#include "canvas/TileCache.h"

#include <QGraphicsPixmapItem>
#include <QImage>
#include <QSize>
#include <QVector>

/// The visible layers below the one being edited, as one picture in the scene. The picture is not
/// kept: what is exposed is composed from the masks, and a cache keeps what is on the screen.
class LayersItem : public QGraphicsPixmapItem
{
public:
    explicit LayersItem(QSize size);

    /// Draws a mask beneath those drawn before, at the top left corner when it has another size.
    /// opacity: 0 to 1.
    void Add(const QImage& mask, QRgb rgb, qreal opacity);
    void Clear();
    /// Scales what was drawn to the new size in layer pixels, without smoothing.
    void SetSize(QSize size);

    /// The whole picture, composed for whoever asks.
    QPixmap pixmap() const;

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    struct Picture
    {
        QImage mask;
        /// Premultiplied.
        QRgb color = 0;
    };

    void PictureChanged();
    void Scale(QSize size);
    QImage Compose(const QTransform& toDevice, const QRect& device) const;

    QSize m_size;
    /// Topmost first.
    QVector<Picture> m_pictures;
    TileCache m_tiles;
};
