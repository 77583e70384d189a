#include "canvas/TileCache.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

/// In device pixels.
constexpr int TileSize = 128;
/// These take 64 MiB, which is enough for several windows.
constexpr int UsualMaxTiles = 1024;
/// Quarters of a pixel in both directions, as on a screen at 125 %.
constexpr std::size_t MaxPhases = 16;

int TileAt(int pixel)
{
    return static_cast<int>(std::floor(pixel / double(TileSize)));
}

QTransform WithoutTranslation(const QTransform& transform)
{
    return {transform.m11(), transform.m12(), transform.m21(), transform.m22(), 0, 0};
}

} // namespace

void TileCache::Clear()
{
    m_phases.clear();
    m_mostDrawn = 0;
}

void TileCache::Drop(const QRectF& changed)
{
    for (Phase& phase : m_phases) {
        // A pixel more on each side covers all ways of rounding.
        const QRect device =
            phase.transform.mapRect(changed).toAlignedRect().adjusted(-1, -1, 1, 1);
        for (auto tile = phase.tiles.begin(); tile != phase.tiles.end();) {
            const QPoint topLeft(tile.key().first * TileSize, tile.key().second * TileSize);
            const bool isHit = device.intersects({topLeft, QSize(TileSize, TileSize)});
            tile = isHit ? phase.tiles.erase(tile) : std::next(tile);
        }
    }
}

TileCache::Phase& TileCache::PhaseFor(const QTransform& transform)
{
    if (!m_phases.empty() &&
        WithoutTranslation(m_phases.front().transform) != WithoutTranslation(transform)) {
        Clear();
    }
    const auto found =
        std::find_if(m_phases.begin(), m_phases.end(),
                     [&transform](const Phase& phase) { return phase.transform == transform; });
    if (found == m_phases.end()) {
        m_phases.insert(m_phases.begin(), {transform, {}});
    } else {
        std::rotate(m_phases.begin(), found, found + 1);
    }
    DropOldTiles();
    return m_phases.front();
}

void TileCache::DropOldTiles()
{
    // On a very large screen the limit grows, so that panning needs few new tiles there too.
    const int maxTiles = std::max(UsualMaxTiles, 2 * m_mostDrawn);
    int count = 0;
    for (std::size_t i = 0; i < m_phases.size(); ++i) {
        count += m_phases[i].tiles.size();
        if (i == MaxPhases || count > maxTiles) {
            // If the phase in use is too large by itself, its tiles are dropped.
            m_phases.resize(std::max<std::size_t>(i, 1));
            if (i == 0) {
                m_phases.front().tiles.clear();
            }
        }
    }
}

void TileCache::Draw(QPainter& painter, const QRectF& exposed, const MakeDeviceImage& make)
{
    const QTransform toDevice = painter.deviceTransform();
    const QPoint origin(static_cast<int>(std::floor(toDevice.dx())),
                        static_cast<int>(std::floor(toDevice.dy())));
    const QTransform transform = toDevice * QTransform::fromTranslate(-origin.x(), -origin.y());
    Phase& phase = PhaseFor(transform);
    const QRect device = transform.mapRect(exposed).toAlignedRect();
    int drawn = 0;
    painter.save();
    UseDevicePixels(painter);
    for (int row = TileAt(device.top()); row <= TileAt(device.bottom()); ++row) {
        for (int column = TileAt(device.left()); column <= TileAt(device.right()); ++column) {
            const QPoint topLeft(column * TileSize, row * TileSize);
            QImage& tile = phase.tiles[{column, row}];
            if (tile.isNull()) {
                tile = make(transform, {topLeft, QSize(TileSize, TileSize)});
            }
            painter.drawImage(origin + topLeft, tile);
            ++drawn;
        }
    }
    painter.restore();
    m_mostDrawn = std::max(m_mostDrawn, drawn);
}
