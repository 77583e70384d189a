#pragma once

#include "canvas/DeviceImage.h"

#include <QHash>
#include <QImage>
#include <QPair>
#include <QTransform>

/// Keeps what an item shows on the screen as small images in device pixels, so that panning and
/// repainting make only what was not shown before. They lie still with regard to the item, and are
/// dropped when the scale changes and when they become many.
class TileCache
{
public:
    /// The item looks different.
    void Clear() { m_tiles.clear(); }

    /// Draws the exposed part of the item, given in its coordinates, and has missing tiles made.
    void Draw(QPainter& painter, const QRectF& exposed, const MakeDeviceImage& make);

private:
    /// Tiles by column and row.
    QHash<QPair<int, int>, QImage> m_tiles;
    /// The item's coordinates to device pixels, without whole pixels of translation.
    QTransform m_transform;
};
