#include "layers/raster/RowReach.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace raster {
namespace {

/// Distances in a busy row are looked for up to here.
constexpr int FarDistance = 15;
/// Marks a distance that is not known (yet); the largest step added to it still fits a byte.
constexpr uchar UnknownDistance = 128;
/// A row whose runs and gaps are shorter on average is busy.
constexpr int BusyRunLength = 24;
constexpr int RunsBeforeJudging = 8;

/// The first index from start on that holds value, or width.
int Find(const uchar* pixels, int start, int width, uchar value)
{
    const auto count = static_cast<std::size_t>(width - start);
    const void* found = std::memchr(pixels + start, value, count);
    return found ? static_cast<int>(static_cast<const uchar*>(found) - pixels) : width;
}

/// Lets distances of up to twice step spread from either side.
void SpreadDistances(const uchar* from, int width, int step, uchar* __restrict to)
{
    for (int x = 0; x < width; ++x) {
        const auto beside = std::min(from[x - step], from[x + step]);
        to[x] = std::min(from[x], static_cast<uchar>(beside + step));
    }
}

uchar Largest(const uchar* values, int count)
{
    uchar largest = 0;
    for (int i = 0; i < count; ++i) {
        largest = std::max(largest, values[i]);
    }
    return largest;
}

void AddFrom(const uchar* distances, int width, int distance, uchar drop, uchar* __restrict drops)
{
    for (int x = 0; x < width; ++x) {
        drops[x] += static_cast<uchar>(distances[x] >= distance ? drop : 0);
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
    for (int distance = 0; distance <= m_radius; ++distance) {
        const int rows = std::min(disc.HalfChord(distance), picture.height() - 1) + 1;
        m_outward[static_cast<std::size_t>(distance)] = static_cast<T>(rows);
    }
    m_inward.assign(m_outward.rbegin(), m_outward.rend());
}

template <typename T>
const T* RowReach<T>::Of(const uchar* pixels, uchar flip)
{
    const T* reach = Remember(pixels, flip);
    m_edges.resize(m_remembered.back());
    m_remembered.pop_back();
    return reach;
}

template <typename T>
const T* RowReach<T>::Remember(const uchar* pixels, uchar flip)
{
    const auto set = static_cast<uchar>(~flip);
    const std::size_t firstEdge = m_edges.size();
    m_remembered.push_back(firstEdge);
    // A busy row is mostly followed by another one.
    if (m_isBusy || !FindRuns(pixels, set, false)) {
        m_edges.resize(firstEdge);
        m_isBusy = FillByDistances(pixels, set);
        if (m_isBusy) {
            return m_reach.data();
        }
        FindRuns(pixels, set, true);
    }
    FillByRuns(firstEdge);
    if (m_edges.size() - firstEdge > static_cast<std::size_t>(m_width / 8)) {
        m_edges.resize(firstEdge);
    }
    return m_reach.data();
}

template <typename T>
const T* RowReach<T>::Recall(const uchar* pixels, uchar flip)
{
    const std::size_t firstEdge = m_remembered.back();
    m_remembered.pop_back();
    if (firstEdge == m_edges.size()) {
        return Of(pixels, flip);
    }
    FillByRuns(firstEdge);
    m_edges.resize(firstEdge);
    return m_reach.data();
}

/// Natural shapes have a few long runs in a row. False when the runs turn out to be too short for
/// that and it is not patient.
template <typename T>
bool RowReach<T>::FindRuns(const uchar* pixels, uchar set, bool isPatient)
{
    int judgedAt = 0;
    for (int gap = 0, runs = 1; gap < m_width; ++runs) {
        const int run = Find(pixels, gap, m_width, set);
        gap = Find(pixels, run, m_width, static_cast<uchar>(~set));
        m_edges.push_back(run);
        m_edges.push_back(gap);
        if (!isPatient && runs % RunsBeforeJudging == 0) {
            if (gap - judgedAt < RunsBeforeJudging * BusyRunLength) {
                return false;
            }
            judgedAt = gap;
        }
    }
    return true;
}

/// The insides of runs are one value, and their surroundings are copied.
template <typename T>
void RowReach<T>::FillByRuns(std::size_t firstEdge)
{
    T* reach = m_reach.data();
    int gap = 0;
    for (std::size_t edge = firstEdge; edge < m_edges.size(); edge += 2) {
        const int run = m_edges[edge];
        FillGap(reach + gap, run - gap, gap > 0, run < m_width);
        gap = m_edges[edge + 1];
        std::fill(reach + run, reach + gap, m_outward.front());
    }
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
/// powers of two, and from it the value. False when some pixel is too far from any set one.
template <typename T>
bool RowReach<T>::FillByDistances(const uchar* pixels, uchar set)
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
        SpreadDistances(distances, width, step, nearer);
        std::swap(distances, nearer);
        farthest = Largest(distances, width);
    }
    if (farthest > FarDistance) {
        return false;
    }
    uchar* drops = nearer;
    std::fill_n(drops, width, uchar(0));
    for (int distance = 1; distance <= farthest; ++distance) {
        const auto index = static_cast<std::size_t>(distance);
        const int here = distance <= m_radius ? m_outward[index] : 0;
        const int before = distance <= m_radius + 1 ? m_outward[index - 1] : 0;
        if (here != before) {
            AddFrom(distances, width, distance, static_cast<uchar>(before - here), drops);
        }
    }
    const T top = m_outward.front();
    std::transform(drops, drops + width, m_reach.begin(),
                   [top](uchar drop) { return static_cast<T>(top - drop); });
    return true;
}

template class RowReach<uchar>;
template class RowReach<qint16>;
template class RowReach<qint32>;

} // namespace raster
