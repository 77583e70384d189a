#include "layers/LayerNumbers.h"

#include "layers/raster/FieldLayout.h"
#include "layers/raster/Mask.h"

#include <QImage>

#include <algorithm>
#include <tuple>
#include <utility>

using raster::Combining;
using raster::CountSide;
using raster::MaskPart;

void LayerNumbers::Tiles::Add(int tile)
{
    const auto index = static_cast<std::size_t>(tile);
    if (!m_has[index]) {
        m_has[index] = true;
        ++m_left;
        m_first = std::min(m_first, tile);
    }
}

int LayerNumbers::Tiles::TakeFirst()
{
    if (m_left == 0) {
        return -1;
    }
    while (!m_has[static_cast<std::size_t>(m_first)]) {
        ++m_first;
    }
    m_has[static_cast<std::size_t>(m_first)] = false;
    --m_left;
    return m_first;
}

bool LayerNumbers::Group::operator<(const Group& other) const
{
    return std::tie(combining, ids, columns) < std::tie(other.combining, other.ids, other.columns);
}

void LayerNumbers::Clear()
{
    m_list.clear();
    m_layers.clear();
    SetGroups();
}

void LayerNumbers::SetLayers(QSize size, int usageBits, int valueBits,
                             const std::vector<CountedLayer>& layers)
{
    const QSize counted = raster::IsMaskSize(size) ? size : QSize(0, 0);
    const auto fieldBits = [](int bits) { return raster::IsFieldSize(bits) ? bits : 0; };
    const int usages = fieldBits(usageBits);
    const int values = fieldBits(valueBits);
    if (SetGrid(counted, usages, values)) {
        m_layers.clear();
        m_groups.clear();
    }
    std::map<int, LayerTiles> known = std::exchange(m_layers, {});
    for (const CountedLayer& layer : layers) {
        const auto found = known.find(layer.id);
        if (found != known.end()) {
            m_layers[layer.id] = std::move(found->second);
        } else {
            LayerTiles& added = m_layers[layer.id];
            added.counts.resize(static_cast<std::size_t>(TileCount()));
            added.stale = Tiles(TileCount());
        }
    }
    m_list = layers;
    SetGroups();
}

void LayerNumbers::SetCountsFlags(bool countsFlags)
{
    if (countsFlags != m_countsFlags) {
        m_countsFlags = countsFlags;
        SetGroups();
    }
}

bool LayerNumbers::SetOverlap(int firstId, int secondId)
{
    if (firstId == m_overlapFirst && secondId == m_overlapSecond) {
        return false;
    }
    m_overlapFirst = firstId;
    m_overlapSecond = secondId;
    SetGroups();
    return true;
}

/// Returns whether the tiles are others than before.
bool LayerNumbers::SetGrid(QSize size, int usageBits, int valueBits)
{
    const std::vector<int> lefts = std::exchange(m_lefts, {size.width()});
    const QSize sizeBefore = std::exchange(m_size, size);
    m_usageBits = usageBits;
    m_valueBits = valueBits;
    for (int x = 0; x < m_size.width(); x += CountSide) {
        m_lefts.push_back(x);
    }
    for (const int bits : {usageBits, valueBits}) {
        m_lefts.push_back(raster::FieldLayout(bits, m_size.width()).FieldsPerRow());
    }
    std::sort(m_lefts.begin(), m_lefts.end());
    m_lefts.erase(std::unique(m_lefts.begin(), m_lefts.end()), m_lefts.end());
    return size != sizeBefore || m_lefts != lefts;
}

int LayerNumbers::Rows() const
{
    return (m_size.height() + CountSide - 1) / CountSide;
}

QRect LayerNumbers::TileRect(int tile) const
{
    const auto column = static_cast<std::size_t>(tile % Columns());
    const int top = tile / Columns() * CountSide;
    return {m_lefts[column], top, m_lefts[column + 1] - m_lefts[column],
            std::min(CountSide, m_size.height() - top)};
}

/// x lies within the layers.
int LayerNumbers::ColumnOf(int x) const
{
    const auto right = std::upper_bound(m_lefts.begin(), m_lefts.end(), x);
    return static_cast<int>(right - m_lefts.begin()) - 1;
}

int LayerNumbers::ColumnsOf(int bits) const
{
    const int width = raster::FieldLayout(bits, m_size.width()).FieldsPerRow();
    return static_cast<int>(std::lower_bound(m_lefts.begin(), m_lefts.end(), width) -
                            m_lefts.begin());
}

LayerNumbers::Group LayerNumbers::GroupOf(quint32 CountedLayer::*flags, int bit, int bits) const
{
    Group group{Combining::Any, {}, ColumnsOf(bits)};
    for (const CountedLayer& layer : m_list) {
        if ((layer.*flags & (1U << bit)) != 0) {
            group.ids.push_back(layer.id);
        }
    }
    std::sort(group.ids.begin(), group.ids.end());
    return group;
}

/// Finds out anew which layers are counted together. Groups that stay keep their counts.
void LayerNumbers::SetGroups()
{
    std::map<Group, GroupTiles> known = std::exchange(m_groups, {});
    const auto add = [this, &known](const Group& group) {
        if (group.ids.empty() || m_groups.count(group) != 0) {
            return;
        }
        const auto found = known.find(group);
        if (found != known.end()) {
            m_groups[group] = std::move(found->second);
        } else {
            GroupTiles& added = m_groups[group];
            added.counts.resize(static_cast<std::size_t>(TileCount()));
            added.stale = Tiles(TileCount());
        }
    };
    m_usages.clear();
    m_values.clear();
    for (int bit = 0; m_countsFlags && bit < m_usageBits; ++bit) {
        m_usages.push_back(GroupOf(&CountedLayer::usageFlags, bit, m_usageBits));
        add(m_usages.back());
    }
    for (int bit = 0; m_countsFlags && bit < m_valueBits; ++bit) {
        m_values.push_back(GroupOf(&CountedLayer::valueFlags, bit, m_valueBits));
        add(m_values.back());
    }
    m_overlap.reset();
    if (m_layers.count(m_overlapFirst) != 0 && m_layers.count(m_overlapSecond) != 0) {
        const auto ids = std::minmax(m_overlapFirst, m_overlapSecond);
        m_overlap = Group{Combining::All, {ids.first, ids.second}, Columns()};
        add(*m_overlap);
    }
}

void LayerNumbers::Touch(int id, const QRect& rect)
{
    const auto layer = m_layers.find(id);
    const QRect part = rect & QRect(QPoint(), m_size);
    if (layer == m_layers.end() || part.isEmpty()) {
        return;
    }
    const int firstColumn = ColumnOf(part.left());
    const int lastColumn = ColumnOf(part.right());
    for (int row = part.top() / CountSide; row <= part.bottom() / CountSide; ++row) {
        for (int column = firstColumn; column <= lastColumn; ++column) {
            layer->second.stale.Add(row * Columns() + column);
        }
    }
}

void LayerNumbers::TouchAll(int id)
{
    Touch(id, QRect(QPoint(), m_size));
}

bool LayerNumbers::IsCounted() const
{
    const auto isStale = [](const auto& entry) { return !entry.second.stale.IsEmpty(); };
    return std::none_of(m_layers.begin(), m_layers.end(), isStale) &&
           std::none_of(m_groups.begin(), m_groups.end(), isStale);
}

bool LayerNumbers::Count(const MaskOf& maskOf, const std::function<bool()>& isTimeUp)
{
    for (auto& [id, layer] : m_layers) {
        while (!layer.stale.IsEmpty()) {
            if (isTimeUp()) {
                return false;
            }
            CountLayerTile(maskOf, id, layer, layer.stale.TakeFirst());
        }
    }
    for (auto& [group, tiles] : m_groups) {
        while (!tiles.stale.IsEmpty()) {
            if (isTimeUp()) {
                return false;
            }
            const int tile = tiles.stale.TakeFirst();
            const int count = CountGroupTile(maskOf, group, tile);
            quint16& kept = tiles.counts[static_cast<std::size_t>(tile)];
            tiles.pixels += count - kept;
            kept = static_cast<quint16>(count);
        }
    }
    return true;
}

MaskPart LayerNumbers::PartOf(const MaskOf& maskOf, int id, int tile) const
{
    const QImage* mask = maskOf(id);
    if (!mask || mask->depth() != 8) {
        return {};
    }
    const QRect rect = TileRect(tile) & mask->rect();
    if (rect.isEmpty()) {
        return {};
    }
    return {mask->constScanLine(rect.top()) + rect.left(), mask->bytesPerLine(), rect.size()};
}

void LayerNumbers::CountLayerTile(const MaskOf& maskOf, int id, LayerTiles& layer, int tile)
{
    const raster::PartCount count = raster::CountPart(PartOf(maskOf, id, tile));
    raster::PartCount& kept = layer.counts[static_cast<std::size_t>(tile)];
    layer.pixels += count.covered - kept.covered;
    layer.greys += count.greys - kept.greys;
    layer.bounds.clear();
    const bool wasClear = std::exchange(kept, count).covered == 0;
    if (wasClear && count.covered == 0) {
        return;
    }
    for (auto& [group, tiles] : m_groups) {
        if (std::binary_search(group.ids.begin(), group.ids.end(), id)) {
            tiles.stale.Add(tile);
        }
    }
}

/// Most tiles of a layer are entirely clear or entirely covered, and then their pixels need not be
/// read once more.
int LayerNumbers::CountGroupTile(const MaskOf& maskOf, const Group& group, int tile) const
{
    if (tile % Columns() >= group.columns) {
        return 0;
    }
    const QSize size = TileRect(tile).size();
    const int area = size.width() * size.height();
    // What decides the count, and what does not matter.
    const int decisive = group.combining == Combining::Any ? area : 0;
    const int neutral = area - decisive;
    int lastCount = neutral;
    std::vector<int> mixed;
    for (const int id : group.ids) {
        const int covered = m_layers.at(id).counts[static_cast<std::size_t>(tile)].covered;
        if (covered == decisive) {
            return decisive;
        }
        if (covered != neutral) {
            mixed.push_back(id);
            lastCount = covered;
        }
    }
    if (mixed.size() < 2) {
        return lastCount;
    }
    std::vector<MaskPart> parts;
    parts.reserve(mixed.size());
    for (const int id : mixed) {
        parts.push_back(PartOf(maskOf, id, tile));
    }
    return raster::CountCombined(parts, group.combining);
}

/// Around what the layer covers in the first columns.
QRect LayerNumbers::BoundsOf(const LayerTiles& layer, int columns) const
{
    const auto known = layer.bounds.find(columns);
    if (known != layer.bounds.end()) {
        return known->second;
    }
    QRect bounds;
    for (int row = 0; row < Rows(); ++row) {
        for (int column = 0; column < columns; ++column) {
            const int tile = row * Columns() + column;
            const raster::PartCount& count = layer.counts[static_cast<std::size_t>(tile)];
            if (count.covered != 0) {
                const QPoint corner(m_lefts[static_cast<std::size_t>(column)], row * CountSide);
                bounds |= QRect(corner + QPoint(count.left, count.top),
                                corner + QPoint(count.right, count.bottom));
            }
        }
    }
    layer.bounds[columns] = bounds;
    return bounds;
}

std::optional<PixelNumbers> LayerNumbers::OfLayer(int id) const
{
    const auto found = m_layers.find(id);
    if (found == m_layers.end() || !found->second.stale.IsEmpty()) {
        return {};
    }
    const LayerTiles& layer = found->second;
    return PixelNumbers{layer.pixels, layer.greys, BoundsOf(layer, Columns())};
}

std::optional<PixelNumbers> LayerNumbers::OfGroup(const Group& group) const
{
    PixelNumbers numbers;
    for (const int id : group.ids) {
        const LayerTiles& layer = m_layers.at(id);
        if (!layer.stale.IsEmpty()) {
            return {};
        }
        numbers.bounds |= BoundsOf(layer, group.columns);
    }
    if (!group.ids.empty()) {
        const GroupTiles& tiles = m_groups.at(group);
        if (!tiles.stale.IsEmpty()) {
            return {};
        }
        numbers.pixels = tiles.pixels;
    }
    return numbers;
}

std::optional<PixelNumbers> LayerNumbers::OfFlag(const std::vector<Group>& flags, int bit) const
{
    if (!m_countsFlags) {
        return {};
    }
    const bool isInMap = bit >= 0 && bit < static_cast<int>(flags.size());
    return isInMap ? OfGroup(flags[static_cast<std::size_t>(bit)]) : PixelNumbers();
}

std::optional<qint64> LayerNumbers::Overlap() const
{
    const std::optional<PixelNumbers> numbers = m_overlap ? OfGroup(*m_overlap) : std::nullopt;
    return numbers ? std::optional<qint64>(numbers->pixels) : std::nullopt;
}

qint64 LayerNumbers::ByteCount() const
{
    qint64 tiles = TileCount();
    constexpr qint64 bitsOfByte = 8;
    const auto layerBytes = static_cast<qint64>(sizeof(raster::PartCount));
    const auto groupBytes = static_cast<qint64>(sizeof(quint16));
    return static_cast<qint64>(m_layers.size()) * (tiles * layerBytes + tiles / bitsOfByte) +
           static_cast<qint64>(m_groups.size()) * (tiles * groupBytes + tiles / bitsOfByte);
}
