#pragma once

#include "layers/raster/TileCounts.h"

#include <QRect>
#include <QSize>

#include <functional>
#include <map>
#include <optional>
#include <vector>

class QImage;

/// How many pixels something covers, and where.
struct PixelNumbers
{
    /// Every index but 0 counts, as in the exported map.
    qint64 pixels = 0;
    /// Those of them that are not 255, which the editor does not draw. Known of layers only.
    qint64 greys = 0;
    /// The smallest rectangle around them, in layer pixels; empty without any.
    QRect bounds;
};

/// A layer that is counted.
struct CountedLayer
{
    int id = 0;
    quint32 usageFlags = 0;
    quint32 valueFlags = 0;
};

/// The numbers of pixels of layers and of the flags that they give the exported map, and the
/// overlap of two layers.
///
/// The counts are kept by tiles. What was touched is counted again, tile by tile, when Count is
/// called; so the cost of a change is that of its own tiles. No mask is held: Count asks for them.
/// A layer of 16384 x 16384 pixels takes 130 KB, a flag 34 KB.
class LayerNumbers
{
public:
    /// The mask of the layer with this id; null when there is none. It is read before Count ends,
    /// and not kept. What lies beyond the layers' size does not count.
    using MaskOf = std::function<const QImage*(int id)>;

    /// size: of the layers; one that no mask can have is none. Bits: of a field of either section
    /// of the map, see raster::FieldBits. Layers that are known by their ids keep their counts, as
    /// long as the size stays and each section of the map holds the same columns.
    void SetLayers(QSize size, int usageBits, int valueBits,
                   const std::vector<CountedLayer>& layers);
    /// Flags are counted too, as they are at first.
    void SetCountsFlags(bool countsFlags);
    /// The two layers whose overlap is counted too, by their ids; unknown ids for none. Returns
    /// whether they are others than before.
    bool SetOverlap(int firstId, int secondId);
    /// Forgets all layers.
    void Clear();

    /// These layer pixels changed, or may have; the rectangle may reach beyond the border. Unknown
    /// ids are ignored.
    void Touch(int id, const QRect& rect);
    void TouchAll(int id);

    /// Counts what was touched until the time is up. Returns whether nothing is left.
    bool Count(const MaskOf& maskOf, const std::function<bool()>& isTimeUp);
    bool IsCounted() const;

    /// These give nothing for what is not counted, and while something is to be counted again.
    std::optional<PixelNumbers> OfLayer(int id) const;
    /// The pixels that have the bit in the map. Bits that its fields do not have are nowhere, and
    /// pixels right of the last whole word of a row have none.
    std::optional<PixelNumbers> OfUsage(int bit) const { return OfFlag(m_usages, bit); }
    std::optional<PixelNumbers> OfValue(int bit) const { return OfFlag(m_values, bit); }
    std::optional<qint64> Overlap() const;

    /// The memory that the counts take.
    qint64 ByteCount() const;

private:
    /// A set of tiles.
    class Tiles
    {
    public:
        explicit Tiles(int count = 0)
            : m_has(static_cast<std::size_t>(count), true)
            , m_left(count)
        {
        }
        void Add(int tile);
        /// Takes the first tile out; -1 when there is none.
        int TakeFirst();
        bool IsEmpty() const { return m_left == 0; }

    private:
        std::vector<bool> m_has;
        int m_left;
        /// No tile before it is in the set.
        int m_first = 0;
    };
    struct LayerTiles
    {
        std::vector<raster::PartCount> counts;
        Tiles stale;
        qint64 pixels = 0;
        qint64 greys = 0;
        /// Around what it covers in so many columns, as far as it was asked for: there are few such
        /// numbers, those of the layer and of the sections of the map.
        mutable std::map<int, QRect> bounds;
    };
    /// Layers whose pixels are counted together. The same layers are counted once only, however
    /// many flags they have in common.
    struct Group
    {
        raster::Combining combining = raster::Combining::Any;
        /// Ascending, of layers that there are.
        std::vector<int> ids;
        /// The tiles right of so many columns do not count.
        int columns = 0;

        bool operator<(const Group& other) const;
    };
    struct GroupTiles
    {
        /// Of tiles that lie within the columns.
        std::vector<quint16> counts;
        Tiles stale;
        qint64 pixels = 0;
    };

    bool SetGrid(QSize size, int usageBits, int valueBits);
    int Columns() const { return static_cast<int>(m_lefts.size()) - 1; }
    int Rows() const;
    int TileCount() const { return Columns() * Rows(); }
    QRect TileRect(int tile) const;
    int ColumnOf(int x) const;
    /// The number of columns that a section holds.
    int ColumnsOf(int bits) const;
    void SetGroups();
    Group GroupOf(quint32 CountedLayer::*flags, int bit, int bits) const;
    raster::MaskPart PartOf(const MaskOf& maskOf, int id, int tile) const;
    void CountLayerTile(const MaskOf& maskOf, int id, LayerTiles& layer, int tile);
    int CountGroupTile(const MaskOf& maskOf, const Group& group, int tile) const;
    QRect BoundsOf(const LayerTiles& layer, int columns) const;
    std::optional<PixelNumbers> OfGroup(const Group& group) const;
    std::optional<PixelNumbers> OfFlag(const std::vector<Group>& flags, int bit) const;

    QSize m_size{0, 0};
    int m_usageBits = 0;
    int m_valueBits = 0;
    bool m_countsFlags = true;
    int m_overlapFirst = -1;
    int m_overlapSecond = -1;
    std::vector<CountedLayer> m_list;
    /// Where the columns of tiles begin, and the width. Columns begin also where the sections of
    /// the map end, so that no tile is partly in the map.
    std::vector<int> m_lefts{0};
    std::map<int, LayerTiles> m_layers;
    std::map<Group, GroupTiles> m_groups;
    /// By bit.
    std::vector<Group> m_usages;
    std::vector<Group> m_values;
    std::optional<Group> m_overlap;
};
