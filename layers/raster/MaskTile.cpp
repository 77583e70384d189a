#include "layers/raster/MaskTile.h"

#include "layers/raster/WideVectors.h"

#include <cstring>

namespace raster {

namespace {

enum Kind : uchar
{
    OneValue,
    TwoValues,
    AnyValues,
};

constexpr int GroupRows = 8;
constexpr int BitBytes = TilePixels / GroupRows;
constexpr QSize WholeTile(TileSide, TileSide);

struct Range
{
    uchar lowest;
    uchar highest;
};

// The loops below run over 64 bytes at a time, so that the compiler makes vectors of them.

QUILLMAP_WIDE_VECTORS
Range RangeOf(const uchar* pixels)
{
    uchar lowest[TileSide];
    uchar highest[TileSide];
    std::memcpy(lowest, pixels, TileSide);
    std::memcpy(highest, pixels, TileSide);
    for (int y = 1; y < TileSide; ++y) {
        const uchar* row = pixels + y * TileSide;
        for (int x = 0; x < TileSide; ++x) {
            lowest[x] = row[x] < lowest[x] ? row[x] : lowest[x];
            highest[x] = row[x] > highest[x] ? row[x] : highest[x];
        }
    }
    Range range{lowest[0], highest[0]};
    for (int x = 1; x < TileSide; ++x) {
        range.lowest = lowest[x] < range.lowest ? lowest[x] : range.lowest;
        range.highest = highest[x] > range.highest ? highest[x] : range.highest;
    }
    return range;
}

/// False when there are other values than the two.
QUILLMAP_WIDE_VECTORS
bool PackBits(const uchar* pixels, Range range, uchar* bits)
{
    const uchar lowest = range.lowest;
    const uchar highest = range.highest;
    uchar others[TileSide] = {};
    for (int group = 0; group < TileSide / GroupRows; ++group) {
        uchar columns[TileSide] = {};
        for (int k = 0; k < GroupRows; ++k) {
            const auto bit = static_cast<uchar>(1 << k);
            const uchar* row = pixels + (group * GroupRows + k) * TileSide;
            for (int x = 0; x < TileSide; ++x) {
                const auto isHighest = static_cast<uchar>(-static_cast<int>(row[x] == highest));
                columns[x] = static_cast<uchar>(columns[x] | (isHighest & bit));
            }
            for (int x = 0; x < TileSide; ++x) {
                const auto fromHighest = static_cast<uchar>(row[x] ^ highest);
                const auto fromLowest = static_cast<uchar>(row[x] ^ lowest);
                const uchar rest = fromHighest < fromLowest ? fromHighest : fromLowest;
                others[x] = static_cast<uchar>(others[x] | rest);
            }
        }
        std::memcpy(bits + group * TileSide, columns, TileSide);
    }
    uchar other = 0;
    for (const uchar more : others) {
        other = static_cast<uchar>(other | more);
    }
    return other == 0;
}

QUILLMAP_WIDE_VECTORS
void UnpackBits(const uchar* bits, Range range, uchar* to, qint64 stride)
{
    for (int group = 0; group < TileSide / GroupRows; ++group) {
        uchar columns[TileSide];
        std::memcpy(columns, bits + group * TileSide, TileSide);
        for (int k = 0; k < GroupRows; ++k) {
            const auto bit = static_cast<uchar>(1 << k);
            for (int x = 0; x < TileSide; ++x) {
                to[x] = (columns[x] & bit) == bit ? range.highest : range.lowest;
            }
            to += stride;
        }
    }
}

} // namespace

int TileColumns(QSize size)
{
    return (size.width() + TileSide - 1) / TileSide;
}

int TileRows(QSize size)
{
    return (size.height() + TileSide - 1) / TileSide;
}

QRect TileRect(QSize size, int number)
{
    const int columns = TileColumns(size);
    const QPoint corner(number % columns * TileSide, number / columns * TileSide);
    return QRect(corner, WholeTile) & QRect(QPoint(0, 0), size);
}

void MaskTile::Load(const uchar* from, qint64 stride, QSize size)
{
    if (size == WholeTile) {
        for (int y = 0; y < TileSide; ++y) {
            const uchar* row = from + y * stride;
            std::memcpy(pixels + y * TileSide, row, TileSide);
            // Rows lie too far apart for the processor to foresee the next tile's.
            Prefetch(row + 2 * TileSide);
        }
        return;
    }
    std::memset(pixels, from[0], TilePixels);
    for (int y = 0; y < size.height(); ++y) {
        std::memcpy(pixels + y * TileSide, from + y * stride,
                    static_cast<std::size_t>(size.width()));
    }
}

void MaskTile::Store(uchar* to, qint64 stride, QSize size) const
{
    for (int y = 0; y < size.height(); ++y) {
        std::memcpy(to + y * stride, pixels + y * TileSide, static_cast<std::size_t>(size.width()));
    }
}

int PackedTileLength(uchar kind)
{
    switch (kind) {
    case OneValue:
        return 1 + 1;
    case TwoValues:
        return 1 + 2 + BitBytes;
    case AnyValues:
        return 1 + TilePixels;
    default:
        return 0;
    }
}

int PackTile(const MaskTile& tile, uchar* packed)
{
    const Range range = RangeOf(tile.pixels);
    packed[1] = range.lowest;
    if (range.lowest == range.highest) {
        packed[0] = OneValue;
    } else if (PackBits(tile.pixels, range, packed + 3)) {
        packed[0] = TwoValues;
        packed[2] = range.highest;
    } else {
        packed[0] = AnyValues;
        std::memcpy(packed + 1, tile.pixels, TilePixels);
    }
    return PackedTileLength(packed[0]);
}

void UnpackTile(const uchar* packed, uchar* to, qint64 stride)
{
    if (packed[0] == TwoValues) {
        UnpackBits(packed + 3, {packed[1], packed[2]}, to, stride);
        return;
    }
    for (int y = 0; y < TileSide; ++y) {
        if (packed[0] == OneValue) {
            std::memset(to + y * stride, packed[1], TileSide);
        } else {
            std::memcpy(to + y * stride, packed + 1 + y * TileSide, TileSide);
        }
    }
}

void StoreTile(const uchar* packed, const QRect& rect, uchar* mask, qint64 stride)
{
    uchar* to = mask + rect.y() * stride + rect.x();
    if (rect.size() == WholeTile) {
        UnpackTile(packed, to, stride);
    } else {
        MaskTile tile;
        UnpackTile(packed, tile.pixels, TileSide);
        tile.Store(to, stride, rect.size());
    }
}

} // namespace raster
