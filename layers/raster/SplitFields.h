#pragma once

#include <QImage>
#include <QSize>
#include <QVector>

#include <functional>

namespace raster {

/// The pixels whose field has the bit of one flag set.
struct FlagMask
{
    int flag = 0;
    QImage mask;
};

struct WordBlock
{
    const quint32* words = nullptr;
    qint64 count = 0;
};

/// Hands out the words of an area map section in order, in blocks of any size; an empty block is
/// the end.
using WordSource = std::function<WordBlock()>;

/// An area map section; the words that its source does not have count as 0.
struct PackedFields
{
    WordSource nextWords;
    /// 1, 2, 4, 8, 16 or 32.
    int bits = 1;
    /// The raster's size in pixels.
    QSize size;
};

struct SplitResult
{
    QVector<FlagMask> masks;
    /// Flags that are set somewhere, but whose masks found no memory.
    int missingCount = 0;
};

/// One mask of the fields' size for each flag below flagCount that is set somewhere, in the order
/// in which the flags first occur: rows from the first of the file (the bottom row of the image),
/// pixels left to right, lower flag first.
SplitResult SplitFields(const PackedFields& fields, int flagCount);

} // namespace raster
