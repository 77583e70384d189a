#include "layers/raster/DiscShape.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace raster {
namespace {

quint64 SquareRoot(quint64 n)
{
    auto root = static_cast<quint64>(std::sqrt(static_cast<double>(n)));
    while (root * root > n) {
        --root;
    }
    while ((root + 1) * (root + 1) <= n) {
        ++root;
    }
    return root;
}

/// The largest sum of squares, at most limit, that the float comparison lets pass. Sums are exact
/// integers first and are rounded to floats, never downward past one another, so that everything
/// below the largest passes too.
quint64 LargestSquare(float radius, quint64 limit)
{
    if (!(radius > 0)) {
        return 0;
    }
    const float square = radius * radius;
    quint64 passes = 0;
    quint64 fails = limit + 1;
    while (fails - passes > 1) {
        const quint64 middle = passes + (fails - passes) / 2;
        if (square >= static_cast<float>(middle)) {
            passes = middle;
        } else {
            fails = middle;
        }
    }
    return passes;
}

quint64 SquareOfDiagonal(QSize picture)
{
    const auto width = static_cast<quint64>(picture.width());
    const auto height = static_cast<quint64>(picture.height());
    return width * width + height * height;
}

int LongestOffset(QSize picture)
{
    return std::max({picture.width(), picture.height(), 1}) - 1;
}

/// For distances of 0 to at most longest the half chord of the disc, which is cut off at longest.
std::vector<int> HalfChords(quint64 square, int longest)
{
    quint64 half = SquareRoot(square);
    const quint64 last = std::min(half, static_cast<quint64>(longest));
    std::vector<int> chords;
    chords.reserve(static_cast<std::size_t>(last) + 1);
    for (quint64 distance = 0; distance <= last; ++distance) {
        while (half * half + distance * distance > square) {
            --half;
        }
        chords.push_back(static_cast<int>(std::min(half, last)));
    }
    return chords;
}

} // namespace

DiscShape::DiscShape(float radius, QSize picture)
    : DiscShape(
          HalfChords(LargestSquare(radius, SquareOfDiagonal(picture)), LongestOffset(picture)))
{
}

DiscShape::DiscShape(std::vector<int> halfChords)
    : m_halfChords(std::move(halfChords))
{
}

bool DiscShape::Covers(QSize picture) const
{
    const int farthest = picture.height() - 1;
    return Radius() >= farthest && HalfChord(farthest) >= picture.width() - 1;
}

} // namespace raster
