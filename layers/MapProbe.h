#pragma once

#include "layers/raster/ComposeFields.h"
#include "layers/raster/FieldLayout.h"

#include <QPoint>
#include <QPointF>
#include <QSize>
#include <QVector>

#include <optional>
#include <vector>

/// A place of the world.
struct MapPlace
{
    /// World metres: x to the right from the left edge, z upward from the bottom edge.
    double x = 0;
    double z = 0;
    /// The layer pixel in which the place lies; row 0 is the top. Nothing outside of the world.
    std::optional<QPoint> pixel;
};

/// A layer whose mask is set at a place.
struct LayerHere
{
    /// Its index among the masks.
    int row = 0;
    /// 1 to 255. Every one counts in the map; the editor draws 255 only.
    int grey = 0;
};

/// What the layers give a place.
struct LayersHere
{
    /// In the order of the masks. A layer without flags is there too.
    std::vector<LayerHere> layers;
    /// The field of the pixel in either section of the area map. Bits that belong to no type are
    /// kept as far as the field has room for them. Nothing where the map holds nothing: outside of
    /// the world, right of the last whole word of a row, and in a section without types.
    std::optional<quint32> usage;
    std::optional<quint32> value;
};

/// Finds what a map has at a place. It keeps numbers only, and is as quick to make as to copy.
///
/// The editor asks it about the masks of its layers, the tool about files. See ZoneProbe for zones.
class MapProbe
{
public:
    /// Layer pixels, world metres, and the bits of a field in both sections; see raster::FieldBits.
    MapProbe(QSize layerSize, QSize worldSize, int usageBits, int valueBits);

    const raster::FieldLayout& UsageLayout() const { return m_usages; }
    const raster::FieldLayout& ValueLayout() const { return m_values; }

    /// World metres. The four edges belong to the world. What is no number, and every place of a
    /// world or layer without a size, is outside.
    MapPlace At(double x, double z) const;
    /// The centre of a layer pixel, which may lie outside.
    MapPlace AtPixel(QPoint pixel) const;
    /// Scene units, i.e. layer pixels with fractions, y downward.
    MapPlace AtScene(QPointF place) const;

    /// What the masks give the place.
    LayersHere Layers(const QVector<raster::FlaggedMask>& masks, const MapPlace& place) const;
    /// The same one mask after the other: what no layer gives, and what the mask with this index
    /// adds to it. firstRow: the row of the map that is the mask's topmost one. Pixels outside a
    /// mask are clear. Without 8 bits a pixel it is no mask and adds nothing.
    LayersHere NoLayers(const MapPlace& place) const;
    void AddLayer(int row, const raster::FlaggedMask& flagged, int firstRow, const MapPlace& place,
                  LayersHere& here) const;

private:
    std::optional<QPoint> PixelAt(double sceneX, double sceneY) const;

    QSize m_layerSize;
    QSize m_worldSize;
    raster::FieldLayout m_usages;
    raster::FieldLayout m_values;
};
