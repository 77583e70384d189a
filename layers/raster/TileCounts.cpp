#include "layers/raster/TileCounts.h"

#include "layers/raster/Mask.h"
#include "layers/raster/WideVectors.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace raster {
namespace {

/// Sums by column: a part has too few rows to leave the range of a byte.
using Columns = uchar[CountSide];

/// CountSide pixels of a row; those beyond the part are clear. room is where they go if the part
/// has not all of them.
const uchar* RowOf(const MaskPart& part, int y, Columns& room)
{
    const int width = y < part.size.height() ? part.size.width() : 0;
    if (width == CountSide) {
        return part.pixels + y * part.stride;
    }
    std::memset(room, MaskClear, CountSide);
    if (width > 0) {
        std::memcpy(room, part.pixels + y * part.stride, static_cast<std::size_t>(width));
    }
    return room;
}

bool IsClear(const uchar* row)
{
    quint64 any = 0;
    for (int x = 0; x < CountSide; x += static_cast<int>(sizeof any)) {
        quint64 word = 0;
        std::memcpy(&word, row + x, sizeof word);
        any |= word;
    }
    return any == 0;
}

// The loops below run over CountSide bytes without branches, so that the compiler makes vectors of
// them.

QUILLMAP_WIDE_VECTORS
void AddRow(const uchar* row, uchar* covered, uchar* greys)
{
    for (int x = 0; x < CountSide; ++x) {
        const uchar pixel = row[x];
        covered[x] = static_cast<uchar>(covered[x] + (pixel != MaskClear ? 1 : 0));
        // Adding 1 turns 255 and 0 into 0 and 1.
        greys[x] = static_cast<uchar>(greys[x] + (static_cast<uchar>(pixel + 1) > 1 ? 1 : 0));
    }
}

/// flip: 1 to note clear pixels, 0 to note the others.
QUILLMAP_WIDE_VECTORS
void NoteRow(const uchar* row, uchar flip, uchar* noted)
{
    for (int x = 0; x < CountSide; ++x) {
        noted[x] = static_cast<uchar>(noted[x] | ((row[x] != MaskClear ? 1 : 0) ^ flip));
    }
}

QUILLMAP_WIDE_VECTORS
void AddNoted(const uchar* noted, uchar flip, uchar* covered)
{
    for (int x = 0; x < CountSide; ++x) {
        covered[x] = static_cast<uchar>(covered[x] + (noted[x] ^ flip));
    }
}

int Sum(const Columns& columns)
{
    return std::accumulate(columns, columns + CountSide, 0);
}

} // namespace

PartCount CountPart(const MaskPart& part)
{
    PartCount count;
    Columns covered = {};
    Columns greys = {};
    Columns room;
    bool isAnyCovered = false;
    for (int y = 0; y < part.size.height(); ++y) {
        const uchar* row = RowOf(part, y, room);
        // Rows lie too far apart for the processor to foresee the next square's.
        Prefetch(part.pixels + y * part.stride + CountSide);
        Prefetch(part.pixels + y * part.stride + CountSide + CountSide / 2);
        if (IsClear(row)) {
            continue;
        }
        AddRow(row, covered, greys);
        count.top = isAnyCovered ? count.top : static_cast<quint8>(y);
        count.bottom = static_cast<quint8>(y);
        isAnyCovered = true;
    }
    if (!isAnyCovered) {
        return count;
    }
    count.covered = static_cast<quint16>(Sum(covered));
    count.greys = static_cast<quint16>(Sum(greys));
    int left = 0;
    while (covered[left] == 0) {
        ++left;
    }
    int right = CountSide - 1;
    while (covered[right] == 0) {
        --right;
    }
    count.left = static_cast<quint8>(left);
    count.right = static_cast<quint8>(right);
    return count;
}

int CountCombined(const std::vector<MaskPart>& parts, Combining combining)
{
    int height = 0;
    for (const MaskPart& part : parts) {
        height = std::max(height, part.size.height());
    }
    // All are set where none is clear.
    const uchar flip = combining == Combining::All ? 1 : 0;
    Columns covered = {};
    Columns room;
    for (int y = 0; y < height; ++y) {
        Columns noted = {};
        for (const MaskPart& part : parts) {
            NoteRow(RowOf(part, y, room), flip, noted);
        }
        AddNoted(noted, flip, covered);
    }
    return Sum(covered);
}

} // namespace raster
