#include "layers/MapProbe.h"

#include <algorithm>

MapProbe::MapProbe(QSize layerSize, QSize worldSize, int usageBits, int valueBits)
    : m_layerSize(layerSize)
    , m_worldSize(worldSize)
    , m_usages(usageBits, layerSize.width())
    , m_values(valueBits, layerSize.width())
{
}

MapPlace MapProbe::At(double x, double z) const
{
    const double sceneX = x * m_layerSize.width() / m_worldSize.width();
    const double sceneY = m_layerSize.height() - z * m_layerSize.height() / m_worldSize.height();
    return {x, z, PixelAt(sceneX, sceneY)};
}

MapPlace MapProbe::AtPixel(QPoint pixel) const
{
    // In this order no sum leaves the range of int.
    return AtScene({pixel.x() + 0.5, pixel.y() + 0.5});
}

MapPlace MapProbe::AtScene(QPointF place) const
{
    return {place.x() * m_worldSize.width() / m_layerSize.width(),
            m_worldSize.height() - place.y() * m_worldSize.height() / m_layerSize.height(),
            PixelAt(place.x(), place.y())};
}

std::optional<QPoint> MapProbe::PixelAt(double sceneX, double sceneY) const
{
    // A comparison with NaN is false.
    const bool isInside = sceneX >= 0 && sceneX <= m_layerSize.width() && sceneY >= 0 &&
                          sceneY <= m_layerSize.height();
    if (!isInside || m_layerSize.isEmpty()) {
        return {};
    }
    return QPoint(std::min(static_cast<int>(sceneX), m_layerSize.width() - 1),
                  std::min(static_cast<int>(sceneY), m_layerSize.height() - 1));
}

LayersHere MapProbe::Layers(const QVector<raster::FlaggedMask>& masks, const MapPlace& place,
                            int firstRow) const
{
    LayersHere here;
    if (!place.pixel) {
        return here;
    }
    const int x = place.pixel->x();
    const int y = place.pixel->y() - firstRow;
    quint32 usageFlags = 0;
    quint32 valueFlags = 0;
    for (int row = 0; row < masks.size(); ++row) {
        const raster::FlaggedMask& flagged = masks.at(row);
        const bool isThere = flagged.mask.depth() == 8 && flagged.mask.valid(x, y);
        const int grey = isThere ? flagged.mask.constScanLine(y)[x] : 0;
        if (grey != 0) {
            here.layers.push_back({row, grey});
            usageFlags |= flagged.usageFlags;
            valueFlags |= flagged.valueFlags;
        }
    }
    if (m_usages.Holds(x)) {
        here.usage = m_usages.Kept(usageFlags);
    }
    if (m_values.Holds(x)) {
        here.value = m_values.Kept(valueFlags);
    }
    return here;
}
