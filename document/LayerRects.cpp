#include "document/LayerRects.h"

#include "app/ProjectSettings.h"
#include "layers/raster/MaskTile.h"

#include <QRegion>

#include <algorithm>
#include <cstring>
#include <functional>
#include <iterator>
#include <numeric>

namespace {

/// More rectangles are not worth their bookkeeping.
constexpr int MaxRects = 64;

QSize LayerSize()
{
    return ProjectSettings::Instance().LayerSize();
}

double Area(const QRect& rect)
{
    return double(rect.width()) * rect.height();
}

} // namespace

QRect WholeLayer()
{
    return {QPoint(), LayerSize()};
}

LayerRects Grown(const LayerRects& rects, int reach)
{
    LayerRects grown;
    QRect bounds;
    double area = 0;
    for (const QRect& rect : rects) {
        grown.append(rect.adjusted(-reach, -reach, reach, reach) & WholeLayer());
        bounds |= grown.constLast();
        // What is read for it is wider once more.
        area += Area(grown.constLast().adjusted(-reach, -reach, reach, reach));
    }
    const bool isOne =
        grown.size() > MaxRects || area >= Area(bounds.adjusted(-reach, -reach, reach, reach));
    return isOne && !grown.isEmpty() ? LayerRects{bounds} : grown;
}

void Append(LayerRects& rects, const LayerRects& added)
{
    rects += added;
    if (rects.size() > MaxRects) {
        const QRect bounds =
            std::accumulate(rects.cbegin(), rects.cend(), QRect(), std::bit_or<QRect>());
        rects = {bounds};
    }
}

LayerRects RectsOf(std::vector<int> tiles)
{
    std::sort(tiles.begin(), tiles.end());
    LayerRects rects;
    for (const int tile : tiles) {
        const QRect rect = raster::TileRect(LayerSize(), tile);
        const bool goesOn = !rects.isEmpty() && rects.constLast().top() == rect.top() &&
                            rects.constLast().right() + 1 == rect.left();
        if (goesOn) {
            rects.last().setRight(rect.right());
        } else {
            rects.append(rect);
        }
    }
    return rects;
}

LayerRects Outside(const LayerRects& rects, const LayerRects& others)
{
    if (others.isEmpty()) {
        return rects;
    }
    QRegion region;
    for (const QRect& rect : rects) {
        region += rect;
    }
    for (const QRect& rect : others) {
        region -= rect;
    }
    LayerRects outside;
    std::copy(region.begin(), region.end(), std::back_inserter(outside));
    return outside;
}

QRect Difference(const QImage& mask, QPoint place, const QImage& pixels)
{
    const auto width = static_cast<std::size_t>(pixels.width());
    QRect differing;
    for (int y = 0; y < pixels.height(); ++y) {
        const uchar* before = mask.constScanLine(place.y() + y) + place.x();
        const uchar* after = pixels.constScanLine(y);
        if (std::memcmp(before, after, width) == 0) {
            continue;
        }
        const auto first = std::mismatch(before, before + width, after).first - before;
        std::ptrdiff_t last = pixels.width() - 1;
        while (before[last] == after[last]) {
            --last;
        }
        differing |= QRect(QPoint(static_cast<int>(first), y), QPoint(static_cast<int>(last), y));
    }
    return differing.isEmpty() ? QRect() : differing.translated(place);
}
