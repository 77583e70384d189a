#include "layers/raster/StructuringElement.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
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

quint64 SquaredLength(QPoint offset)
{
    const auto dx = static_cast<quint64>(std::abs(qint64(offset.x())));
    const auto dy = static_cast<quint64>(std::abs(qint64(offset.y())));
    return dx * dx + dy * dy;
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

qint64 OffsetCount(const std::vector<int>& halfChords)
{
    qint64 count = 0;
    for (const int half : halfChords) {
        count += 2 * (2 * qint64(half) + 1);
    }
    return count - (2 * qint64(halfChords.front()) + 1);
}

bool AreDistinct(const QVector<QPoint>& offsets, int radius)
{
    const int length = 2 * radius + 1;
    std::vector<bool> seen(static_cast<std::size_t>(length) * static_cast<std::size_t>(length));
    for (const QPoint& offset : offsets) {
        const qint64 index = qint64(offset.y() + radius) * length + offset.x() + radius;
        if (seen[static_cast<std::size_t>(index)]) {
            return false;
        }
        seen[static_cast<std::size_t>(index)] = true;
    }
    return true;
}

} // namespace

QVector<QPoint> Disc(float radius)
{
    // What is cut off there is a square already, of more offsets than a vector holds.
    constexpr int longest = 9300;
    constexpr qint64 largestByteCount = std::numeric_limits<int>::max() - sizeof(QArrayData);
    const quint64 limit = SquareOfDiagonal(QSize(longest, longest));
    const std::vector<int> halfChords = HalfChords(LargestSquare(radius, limit), longest);
    const qint64 count = OffsetCount(halfChords);
    if (count > largestByteCount / qint64(sizeof(QPoint))) {
        throw std::bad_alloc();
    }
    const int last = static_cast<int>(halfChords.size()) - 1;
    QVector<QPoint> offsets;
    offsets.reserve(static_cast<int>(count));
    for (int dy = -last; dy <= last; ++dy) {
        const int half = halfChords[static_cast<std::size_t>(std::abs(dy))];
        for (int dx = -half; dx <= half; ++dx) {
            offsets.append(QPoint(dx, dy));
        }
    }
    return offsets;
}

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

std::optional<DiscShape> DiscShape::FromOffsets(const QVector<QPoint>& offsets, QSize picture)
{
    quint64 square = 0;
    for (const QPoint& offset : offsets) {
        square = std::max(square, SquaredLength(offset));
    }
    // A disc holds every offset that is no longer than its longest one: when there are as many
    // different ones as that, they are all there.
    const quint64 radius = SquareRoot(square);
    if (static_cast<quint64>(offsets.size()) <= 2 * radius) {
        return std::nullopt;
    }
    const auto last = static_cast<int>(radius);
    if (OffsetCount(HalfChords(square, last)) != offsets.size() || !AreDistinct(offsets, last)) {
        return std::nullopt;
    }
    return DiscShape(HalfChords(square, LongestOffset(picture)));
}

} // namespace raster
