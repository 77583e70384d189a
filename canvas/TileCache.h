#pragma once

#include "canvas/DeviceImage.h"

#include <QHash>
#include <QImage>
#include <QPair>
#include <QTransform>

#include <vector>

/// Keeps the visible part of an item as small images in device pixels (tiles), so that panning and
/// repainting compose only newly exposed parts. The tiles are fixed to the item. They are dropped
/// when the scale changes, and when there are too many for the size of the screen.
///
/// On a screen with a fractional scale, such as 125 %, scrolling moves the item by fractions of a
/// device pixel, and each fraction gives slightly different pixels. There are only a few fractions,
/// so each has tiles of its own.
class TileCache
{
public:
    /// Drops all tiles, because the item has changed.
    void Clear();

    /// Drops the tiles that show a part of the rectangle, given in the item's coordinates.
    void Drop(const QRectF& changed);

    /// Draws the exposed part of the item, given in the item's coordinates. Calls make for missing
    /// tiles.
    void Draw(QPainter& painter, const QRectF& exposed, const MakeDeviceImage& make);

private:
    struct Phase
    {
        /// Maps the item's coordinates to device pixels, without the whole pixels of the
        /// translation.
        QTransform transform;
        /// Indexed by column and row.
        QHash<QPair<int, int>, QImage> tiles;
    };

    Phase& PhaseFor(const QTransform& transform);
    void DropOldTiles();

    /// The most recently used one comes first.
    std::vector<Phase> m_phases;
    /// The largest number of tiles in one drawing since the item or the scale changed.
    int m_mostDrawn = 0;
};
