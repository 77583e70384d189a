#pragma once

#include <QRect>
#include <QSize>

/// Squares of mask pixels, packed into few bytes: what a MaskDelta is made of.
namespace raster {

constexpr int TileSide = 64;
constexpr int TilePixels = TileSide * TileSide;

/// Tiles are numbered row by row from the top left; those at the right and the bottom are cut off.
int TileColumns(QSize size);
int TileRows(QSize size);
inline int TileCount(QSize size)
{
    return TileColumns(size) * TileRows(size);
}
/// In mask pixels; cut off at the mask's border.
QRect TileRect(QSize size, int number);

/// The pixels of one tile, row by row. A tile that is cut off is filled up with its first pixel.
struct MaskTile
{
    alignas(64) uchar pixels[TilePixels];

    /// Leaves the pixels as they are: they are filled right afterwards.
    MaskTile();

    /// Copies size.width() pixels of each of size.height() rows, which begin stride bytes apart.
    void Load(const uchar* from, qint64 stride, QSize size);
    /// The reverse.
    void Store(uchar* to, qint64 stride, QSize size) const;
};

inline MaskTile::MaskTile() = default;

/// A packed tile is a byte for its kind and then
///   0: the one value of all pixels;
///   1: the lower and the higher of two values, and 512 bytes of bits. Bit k of byte 64 g + x is
///      set where the pixel x of row 8 g + k has the higher value. Columns of bits come from whole
///      rows of pixels without moving anything sideways.
///   2: the pixels.
/// The lowest kind that serves is taken, so equal tiles are equal bytes.
constexpr int MaxPackedTile = 1 + TilePixels;

/// The length by its kind; 0 for a byte that is no kind.
int PackedTileLength(uchar kind);
/// Writes up to MaxPackedTile bytes and returns how many.
int PackTile(const MaskTile& tile, uchar* packed);
/// Writes 64 rows of 64 pixels that begin stride bytes apart.
void UnpackTile(const uchar* packed, uchar* to, qint64 stride);
/// Unpacks a tile into a mask, at a TileRect of it. stride: from one row of the mask to the next.
void StoreTile(const uchar* packed, const QRect& rect, uchar* mask, qint64 stride);

} // namespace raster
