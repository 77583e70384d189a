#include "layers/MapProbe.h"

#include "layers/raster/Mask.h"

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

LayersHere MapProbe::Layers(const QVector<raster::FlaggedMask>& masks, const MapPlace& place) const
{
    LayersHere here = NoLayers(place);
    for (int row = 0; row < masks.size(); ++row) {
        AddLayer(row, masks.at(row), 0, place, here);
    }
    return here;
}

LayersHere MapProbe::NoLayers(const MapPlace& place) const
{
    LayersHere here;
    if (place.pixel && m_usages.Holds(place.pixel->x())) {
        here.usage = 0;
    }
    if (place.pixel && m_values.Holds(place.pixel->x())) {
        here.value = 0;
    }
    return here;
}

void MapProbe::AddLayer(int row, const raster::FlaggedMask& flagged, int firstRow,
                        const MapPlace& place, LayersHere& here) const
{
    const QPoint pixel = place.pixel.value_or(QPoint(-1, -1)) - QPoint(0, firstRow);
    const QImage& mask = flagged.mask;
    if (mask.depth() != 8 || !mask.valid(pixel)) {
        return;
    }
    const int grey = mask.constScanLine(pixel.y())[pixel.x()];
    if (grey == raster::MaskClear) {
        return;
    }
    here.layers.push_back({row, grey});
    if (here.usage) {
        *here.usage |= m_usages.Kept(flagged.usageFlags);
    }
    if (here.value) {
        *here.value |= m_values.Kept(flagged.valueFlags);
    }
}
