#pragma once

#include <QImage>
#include <QSize>
#include <QVector>

#include <functional>

namespace raster {

/// The mask of the pixels whose field has the flag's bit set.
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

/// Returns the words of an area map section in order, in blocks of any size. An empty block means
/// the end.
using WordSource = std::function<WordBlock()>;

/// An area map section. Words that are missing from the source count as 0.
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
    /// The number of flags that are set somewhere, but for whose masks there was no memory.
    int missingCount = 0;
};

/// Makes one mask of the section's size for each flag below flagCount that is set somewhere. The
/// masks are in the order in which the flags first occur: rows from the first of the file (the
/// bottom row of the image), pixels left to right, lower flag first.
SplitResult SplitFields(const PackedFields& fields, int flagCount);

} // namespace raster
