#include "canvas/TileCache.h"

#include <QPainter>

#include <cmath>

namespace {

/// Device pixels.
constexpr int TileSize = 128;
/// 64 MiB, the screens of several windows.
constexpr int MaxTiles = 1024;

int TileAt(int pixel)
{
    return static_cast<int>(std::floor(pixel / double(TileSize)));
}

} // namespace

void TileCache::Draw(QPainter& painter, const QRectF& exposed, const MakeDeviceImage& make)
{
    const QTransform toDevice = painter.deviceTransform();
    const QPoint origin(static_cast<int>(std::floor(toDevice.dx())),
                        static_cast<int>(std::floor(toDevice.dy())));
    const QTransform transform = toDevice * QTransform::fromTranslate(-origin.x(), -origin.y());
    if (transform != m_transform || m_tiles.size() > MaxTiles) {
        m_tiles.clear();
        m_transform = transform;
    }
    const QRect device = transform.mapRect(exposed).toAlignedRect();
    painter.save();
    UseDevicePixels(painter);
    for (int row = TileAt(device.top()); row <= TileAt(device.bottom()); ++row) {
        for (int column = TileAt(device.left()); column <= TileAt(device.right()); ++column) {
            const QPoint topLeft(column * TileSize, row * TileSize);
            QImage& tile = m_tiles[{column, row}];
            if (tile.isNull()) {
                tile = make(transform, {topLeft, QSize(TileSize, TileSize)});
            }
            painter.drawImage(origin + topLeft, tile);
        }
    }
    painter.restore();
}
