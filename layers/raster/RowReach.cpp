#include "layers/raster/RowReach.h"

#include "layers/raster/WideVectors.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace raster {
namespace {

/// Distances in a busy row are looked for up to here.
constexpr int FarDistance = 15;
/// Marks a distance that is not known (yet); the largest step added to it still fits a byte.
constexpr uchar UnknownDistance = 128;
/// A row is busy whose runs, each with the gap before it, are shorter on average: below that their
/// ends cost more to find and to fill around than distances for all pixels.
constexpr int BusyPeriod = 32;
constexpr int RunsBeforeJudging = 16;

/// The first index from start on that holds value, or width.
int Find(const uchar* pixels, int start, int width, uchar value)
{
    const auto count = static_cast<std::size_t>(width - start);
    const void* found = std::memchr(pixels + start, value, count);
    return found ? static_cast<int>(static_cast<const uchar*>(found) - pixels) : width;
}

/// Lets distances of up to twice step spread from either side. Gives the largest that is left.
QUILLMAP_WIDE_VECTORS
uchar SpreadDistances(const uchar* from, int width, int step, uchar* __restrict to)
{
    uchar largest = 0;
    for (int x = 0; x < width; ++x) {
        const auto beside = std::min(from[x - step], from[x + step]);
        const auto nearest = std::min(from[x], static_cast<uchar>(beside + step));
        to[x] = nearest;
        largest = std::max(largest, nearest);
    }
    return largest;
}

QUILLMAP_WIDE_VECTORS
void AddFrom(const uchar* distances, int width, int distance, uchar drop, uchar* __restrict drops)
{
    for (int x = 0; x < width; ++x) {
        drops[x] += static_cast<uchar>(distances[x] >= distance ? drop : 0);
    }
}

template <typename T>
QUILLMAP_WIDE_VECTORS void Subtract(T top, const uchar* drops, int width, T* __restrict reach)
{
    for (int x = 0; x < width; ++x) {
        reach[x] = static_cast<T>(top - drops[x]);
    }
}

} // namespace

template <typename T>
bool RowReach<T>::Holds(const DiscShape& disc, QSize picture)
{
    const int rows = std::min(disc.HalfChord(0), picture.height() - 1) + 1;
    return rows <= std::numeric_limits<T>::max();
}

template <typename T>
RowReach<T>::RowReach(const DiscShape& disc, QSize picture)
    : m_width(picture.width())
    , m_radius(disc.Radius())
    , m_outward(static_cast<std::size_t>(disc.Radius()) + 1)
    , m_distances(static_cast<std::size_t>(picture.width()) + 2 * (FarDistance + 1))
    , m_nearer(m_distances.size())
    , m_reach(static_cast<std::size_t>(picture.width()))
{
    Q_ASSERT(m_radius > FarDistance);
    for (int distance = 0; distance <= m_radius; ++distance) {
        const int rows = std::min(disc.HalfChord(distance), picture.height() - 1) + 1;
        m_outward[static_cast<std::size_t>(distance)] = static_cast<T>(rows);
    }
    m_inward.assign(m_outward.rbegin(), m_outward.rend());
}

template <typename T>
const T* RowReach<T>::Of(const uchar* pixels, uchar flip)
{
    const auto set = static_cast<uchar>(~flip);
    if (FindRuns(pixels, set)) {
        return Of(EdgeStack::Edges{m_edges.data(), m_edges.data() + m_edges.size()});
    }
    m_edges.clear();
    FillByDistances(pixels, set);
    return m_reach.data();
}

/// Natural shapes have a few long runs in a row. False when the runs turn out to be too short for
/// that.
template <typename T>
bool RowReach<T>::FindRuns(const uchar* pixels, uchar set)
{
    m_edges.clear();
    int judgedAt = 0;
    for (int gap = 0, runs = 1; gap < m_width; ++runs) {
        const int run = Find(pixels, gap, m_width, set);
        gap = Find(pixels, run, m_width, static_cast<uchar>(~set));
        m_edges.push_back(run);
        m_edges.push_back(gap);
        if (runs % RunsBeforeJudging == 0) {
            if (gap - judgedAt < RunsBeforeJudging * BusyPeriod) {
                return false;
            }
            judgedAt = gap;
        }
    }
    return true;
}

/// The insides of runs are one value, and their surroundings are copied.
template <typename T>
const T* RowReach<T>::Of(EdgeStack::Edges edges)
{
    T* reach = m_reach.data();
    int gap = 0;
    for (const int* edge = edges.begin; edge != edges.end; edge += 2) {
        const int run = edge[0];
        FillGap(reach + gap, run - gap, gap > 0, run < m_width);
        gap = edge[1];
        std::fill(reach + run, reach + gap, m_outward.front());
    }
    return reach;
}

/// Fills the clear pixels between two runs, of which the picture's edges may cut off either.
template <typename T>
void RowReach<T>::FillGap(T* reach, int length, bool hasLeft, bool hasRight) const
{
    const int toLeft = hasRight ? (hasLeft ? (length + 1) / 2 : 0) : length;
    const int fromLeft = hasLeft ? std::min(toLeft, m_radius) : 0;
    const int fromRight = hasRight ? std::min(length - toLeft, m_radius) : 0;
    std::copy_n(m_outward.data() + 1, fromLeft, reach);
    std::fill_n(reach + fromLeft, length - fromLeft - fromRight, T(0));
    std::copy_n(m_inward.data() + m_radius - fromRight, fromRight, reach + length - fromRight);
}

/// For rows of many short runs: the distance to the nearest set pixel, from both sides in steps of
/// powers of two, and from it the value. The middles of gaps that are longer than that remain.
template <typename T>
void RowReach<T>::FillByDistances(const uchar* pixels, uchar set)
{
    constexpr int margin = FarDistance + 1;
    const int width = m_width;
    std::fill(m_distances.begin(), m_distances.end(), UnknownDistance);
    std::fill(m_nearer.begin(), m_nearer.end(), UnknownDistance);
    uchar* distances = m_distances.data() + margin;
    uchar* nearer = m_nearer.data() + margin;
    for (int x = 0; x < width; ++x) {
        distances[x] = pixels[x] == set ? 0 : UnknownDistance;
    }
    int farthest = UnknownDistance;
    for (int step = 1; step <= FarDistance && farthest > FarDistance; step *= 2) {
        farthest = SpreadDistances(distances, width, step, nearer);
        std::swap(distances, nearer);
    }
    uchar* drops = nearer;
    std::fill_n(drops, width, uchar(0));
    for (int distance = 1; distance <= std::min(farthest, FarDistance); ++distance) {
        const auto index = static_cast<std::size_t>(distance);
        const int drop = m_outward[index - 1] - m_outward[index];
        if (drop != 0) {
            AddFrom(distances, width, distance, static_cast<uchar>(drop), drops);
        }
    }
    Subtract(m_outward.front(), drops, width, m_reach.data());
    if (farthest > FarDistance) {
        FillUnknown(distances);
    }
}

/// What is too far from a set pixel on either side has known distances up to FarDistance around it,
/// except at the picture's edges: with these it is a gap.
template <typename T>
void RowReach<T>::FillUnknown(const uchar* distances)
{
    int first = Find(distances, 0, m_width, UnknownDistance);
    while (first < m_width) {
        const int end = Find(distances, first, m_width, FarDistance);
        const int gap = first > 0 ? first - FarDistance : 0;
        const int run = end < m_width ? end + FarDistance : m_width;
        FillGap(m_reach.data() + gap, run - gap, gap > 0, run < m_width);
        first = Find(distances, end, m_width, UnknownDistance);
    }
}

template class RowReach<uchar>;
template class RowReach<qint16>;
template class RowReach<qint32>;

} // namespace raster
