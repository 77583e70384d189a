#pragma once

#include "canvas/DeviceImage.h"

#include <QHash>
#include <QImage>
#include <QPair>
#include <QTransform>

#include <vector>

/// Keeps what an item shows on the screen as small images in device pixels, so that panning and
/// repainting make only what was not shown before. They lie still with regard to the item, and are
/// dropped when the scale changes and when they become many, for the size of the screen.
///
/// Where a screen has a fraction of a device pixel to each pixel, as at 125 %, scrolling moves the
/// item by fractions too, and each fraction looks a little different. There are only a few, so each
/// has tiles of its own.
class TileCache
{
public:
    /// The item looks different.
    void Clear();

    /// Draws the exposed part of the item, given in its coordinates, and has missing tiles made.
    void Draw(QPainter& painter, const QRectF& exposed, const MakeDeviceImage& make);

private:
    struct Phase
    {
        /// The item's coordinates to device pixels, without whole pixels of translation.
        QTransform transform;
        /// By column and row.
        QHash<QPair<int, int>, QImage> tiles;
    };

    Phase& PhaseFor(const QTransform& transform);
    void DropOldTiles();

    /// The one that was used last is the first.
    std::vector<Phase> m_phases;
    /// The most tiles that were drawn at once since the last change of item or scale.
    int m_mostDrawn = 0;
};
