#include "layers/raster/RowReach.h"

#include "layers/raster/PixelBits.h"
#include "layers/raster/WideVectors.h"

#include <QtAlgorithms>

#include <algorithm>
#include <cstring>
#include <limits>

namespace raster {
namespace {

/// In a busy row distances are computed up to the larger of these two that is below the radius.
constexpr int FarDistance = 15;
constexpr int VeryFarDistance = 31;
/// The number of unknown distances on each side of a row.
constexpr int Margin = VeryFarDistance + 1;
/// Marks a distance that is not known (yet) by its highest bit. Adding the largest step does not
/// overflow a byte.
constexpr uchar UnknownDistance = 128;
/// A row is busy if its runs, each with the gap before it, are shorter than this on average. In
/// such a row it is faster to compute the distances of all pixels than to find the runs' ends and
/// fill between them.
constexpr int BusyPeriod = 28;
/// So many edges are found in any row before it may count as busy.
constexpr int EdgesBeforeJudging = 16;

/// Values are written in chunks of this length. Values written beyond the end are overwritten by
/// the next ones.
template <typename T>
constexpr int ChunkLength = 64 / static_cast<int>(sizeof(T));

/// The highest bits of a word's bytes or fewer; the missing ones count as equal to the last one.
quint64 HighestBitsOf(const uchar* bytes, int count)
{
    if (count == WordLength) {
        return HighestBits(bytes);
    }
    uchar word[WordLength];
    std::fill(std::copy_n(bytes, count, word), word + WordLength, bytes[count - 1]);
    return HighestBits(word);
}

/// Finds the bytes at which the highest bit changes, beginning with the first byte that has it (or
/// does not have it, if flipped is all ones). Returns false if there are too many such edges.
bool FindEdges(const uchar* bytes, int width, quint64 flipped, std::vector<int>& edges)
{
    quint64 before = 0;
    edges.clear();
    for (int start = 0; start < width; start += WordLength) {
        const int count = std::min(width - start, WordLength);
        const quint64 bits = HighestBitsOf(bytes + start, count) ^ flipped;
        for (quint64 ends = bits ^ (bits << 1 | before); ends != 0; ends &= ends - 1) {
            edges.push_back(start + static_cast<int>(qCountTrailingZeroBits(ends)));
        }
        if (static_cast<int>(edges.size()) > EdgesBeforeJudging + 2 * start / BusyPeriod) {
            return false;
        }
        before = bits >> (WordLength - 1);
    }
    // Ends a run at the row's end, and ends the list with an empty run.
    edges.resize(edges.size() + 2 - edges.size() % 2, width);
    return true;
}

/// Copies count values and up to a chunk more.
template <typename T>
void CopyChunks(const T* from, int count, T* __restrict to)
{
    for (int i = 0; i < count; i += ChunkLength<T>) {
        std::memcpy(to + i, from + i, sizeof(T) * ChunkLength<T>);
    }
}

/// Writes count values and up to a chunk more.
template <typename T>
void FillChunks(T value, int count, T* __restrict to)
{
    for (int i = 0; i < count; i += ChunkLength<T>) {
        for (int j = 0; j < ChunkLength<T>; ++j) {
            to[i + j] = value;
        }
    }
}

/// Spreads distances from both sides, up to twice step. Returns the largest distance that remains.
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
void AddFrom(const uchar* distances, int width, uchar distance, uchar drop, uchar* __restrict drops)
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
    , m_farDistance(disc.Radius() > VeryFarDistance ? VeryFarDistance : FarDistance)
    , m_outward(static_cast<std::size_t>(disc.Radius() + 1 + ChunkLength<T>))
    , m_distances(static_cast<std::size_t>(picture.width()) + 2 * Margin, UnknownDistance)
    , m_nearer(m_distances)
    , m_reach(static_cast<std::size_t>(picture.width() + ChunkLength<T>))
{
    Q_ASSERT(m_radius > FarDistance);
    for (int distance = 0; distance <= m_radius; ++distance) {
        const int rows = std::min(disc.HalfChord(distance), picture.height() - 1) + 1;
        m_outward[static_cast<std::size_t>(distance)] = static_cast<T>(rows);
    }
    m_inward.assign(m_outward.rbegin() + ChunkLength<T>, m_outward.rend());
    m_inward.resize(m_outward.size());
}

template <typename T>
const T* RowReach<T>::Of(const uchar* pixels, uchar flip)
{
    const auto set = static_cast<uchar>(~flip);
    // Rows of natural shapes have few, long runs, so edges are tried first.
    if (FindEdges(pixels, m_width, set == 0 ? ~quint64(0) : 0, m_edges)) {
        return Of(EdgeStack::Edges{m_edges.data(), m_edges.data() + m_edges.size()});
    }
    m_edges.clear();
    return OfBusy(pixels, flip);
}

template <typename T>
const T* RowReach<T>::OfBusy(const uchar* pixels, uchar flip)
{
    FillByDistances(pixels, static_cast<uchar>(~flip));
    return m_reach.data();
}

/// Fills each run with one value, and copies the values around it from m_outward and m_inward.
template <typename T>
QUILLMAP_WIDE_VECTORS const T* RowReach<T>::Of(EdgeStack::Edges edges)
{
    T* reach = m_reach.data();
    const T inside = m_outward.front();
    int gap = 0;
    for (const int* edge = edges.begin; edge != edges.end; edge += 2) {
        const int run = edge[0];
        FillGap(gap, run);
        gap = edge[1];
        FillChunks(inside, gap - run, reach + run);
    }
    return reach;
}

/// Fills the clear pixels between two runs, and up to a chunk after them. gap is 0 if there is no
/// run on the left, and run is the width if there is none on the right.
template <typename T>
void RowReach<T>::FillGap(int gap, int run)
{
    T* reach = m_reach.data();
    const int length = run - gap;
    const int toLeft = run < m_width ? (gap > 0 ? (length + 1) / 2 : 0) : length;
    const int fromLeft = gap > 0 ? std::min(toLeft, m_radius) : 0;
    const int fromRight = run < m_width ? std::min(length - toLeft, m_radius) : 0;
    CopyChunks(m_outward.data() + 1, fromLeft, reach + gap);
    FillChunks(T(0), length - fromLeft - fromRight, reach + gap + fromLeft);
    CopyChunks(m_inward.data() + m_radius - fromRight, fromRight, reach + run - fromRight);
}

/// For rows of many short runs. Computes the distance to the nearest set pixel, in steps of powers
/// of two from both sides, and the value from the distance. FillUnknown does the middle of gaps
/// that are longer than these distances.
template <typename T>
void RowReach<T>::FillByDistances(const uchar* pixels, uchar set)
{
    const int width = m_width;
    uchar* distances = m_distances.data() + Margin;
    uchar* nearer = m_nearer.data() + Margin;
    for (int x = 0; x < width; ++x) {
        distances[x] = pixels[x] == set ? 0 : UnknownDistance;
    }
    int farthest = UnknownDistance;
    for (int step = 1; step <= m_farDistance && farthest > m_farDistance; step *= 2) {
        farthest = SpreadDistances(distances, width, step, nearer);
        std::swap(distances, nearer);
    }
    uchar* drops = nearer;
    std::fill_n(drops, width, uchar(0));
    for (int distance = 1; distance <= std::min(farthest, m_farDistance); ++distance) {
        const auto index = static_cast<std::size_t>(distance);
        const int drop = m_outward[index - 1] - m_outward[index];
        if (drop != 0) {
            AddFrom(distances, width, static_cast<uchar>(distance), static_cast<uchar>(drop),
                    drops);
        }
    }
    Subtract(m_outward.front(), drops, width, m_reach.data());
    if (farthest > m_farDistance) {
        FillUnknown(distances);
    }
}

/// Fills the pixels whose distance is still unknown. Together with the known distances around them,
/// up to m_farDistance on each side, they form a gap between two runs.
template <typename T>
void RowReach<T>::FillUnknown(const uchar* distances)
{
    // Each unknown stretch lies in a gap so long that FindEdges never finds too many.
    static_assert(BusyPeriod < 2 * FarDistance);
    FindEdges(distances, m_width, 0, m_unknown);
    for (std::size_t i = 0; i < m_unknown.size() && m_unknown[i] < m_width; i += 2) {
        const int first = m_unknown[i];
        const int end = m_unknown[i + 1];
        const int gap = first > 0 ? first - m_farDistance : 0;
        const int run = end < m_width ? end + m_farDistance : m_width;
        T known[ChunkLength<T>];
        std::memcpy(known, m_reach.data() + run, sizeof(known));
        FillGap(gap, run);
        std::memcpy(m_reach.data() + run, known, sizeof(known));
    }
}

template class RowReach<uchar>;
template class RowReach<qint16>;
template class RowReach<qint32>;

} // namespace raster
