#include "layers/raster/CrossMaximum.h"

#include <algorithm>

namespace raster {
namespace {

/// The maximum of flipped bytes is the minimum of the bytes, so both cost one instruction.
struct Largest
{
    uchar operator()(uchar a, uchar b) const { return std::max(a, b); }
};

struct Smallest
{
    uchar operator()(uchar a, uchar b) const { return std::min(a, b); }
};

template <typename Choice>
void ChooseInRow(const uchar* above, const uchar* row, const uchar* below, int width,
                 uchar* __restrict to)
{
    const Choice choose;
    const int last = width - 1;
    to[0] = choose(choose(above[0], below[0]), choose(row[0], row[std::min(1, last)]));
    for (int x = 1; x < last; ++x) {
        to[x] = choose(choose(choose(above[x], below[x]), row[x]), choose(row[x - 1], row[x + 1]));
    }
    to[last] =
        choose(choose(above[last], below[last]), choose(row[last], row[std::max(0, last - 1)]));
}

template <typename Choice>
void ChooseInCross(const QImage& mask, QImage& result)
{
    const int last = mask.height() - 1;
    for (int y = 0; y <= last; ++y) {
        ChooseInRow<Choice>(mask.constScanLine(std::max(y - 1, 0)), mask.constScanLine(y),
                            mask.constScanLine(std::min(y + 1, last)), mask.width(),
                            result.scanLine(y));
    }
}

} // namespace

void DilateByCross(const QImage& mask, uchar flip, QImage& result)
{
    if (flip == 0) {
        ChooseInCross<Largest>(mask, result);
    } else {
        ChooseInCross<Smallest>(mask, result);
    }
}

} // namespace raster
