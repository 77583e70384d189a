#pragma once

#include "canvas/TileCache.h"

#include <QGraphicsPixmapItem>
#include <QImage>
#include <QSize>
#include <QVector>

/// Shows the visible layers below the one that is being edited. The exposed part is composed from
/// the masks, and a cache keeps the part that is on the screen. There is no picture of the whole.
class LayersItem : public QGraphicsPixmapItem
{
public:
    explicit LayersItem(QSize size);

    /// Adds a mask beneath those added before. A mask of another size lies in the top left corner.
    /// opacity: 0 to 1. id: for Release and Replace.
    void Add(const QImage& mask, QRgb rgb, qreal opacity, int id = -1);
    /// Lets the mask that was added with this id go, because its pixels are about to change in
    /// place. It is not drawn until Replace.
    void Release(int id);
    /// Takes the mask instead of the one that was added with this id. changed: the pixels that
    /// differ from it. False when there is none.
    bool Replace(int id, const QImage& mask, const QRect& changed);
    void Clear();
    /// Scales the masks to the new size in layer pixels, without smoothing.
    void SetSize(QSize size);

    /// Composes the whole picture.
    QPixmap pixmap() const;

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    struct Picture
    {
        QImage mask;
        /// The colour is premultiplied.
        QRgb color = 0;
        int id = -1;
    };

    Picture* PictureOf(int id);
    void PictureChanged();
    void Scale(QSize size);
    QImage Compose(const QTransform& toDevice, const QRect& device) const;

    QSize m_size;
    /// Topmost first.
    QVector<Picture> m_pictures;
    TileCache m_tiles;
};
