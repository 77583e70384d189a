#include "layers/raster/Shapes.h"

#include "layers/raster/Mask.h"
#include "layers/raster/PixelBits.h"
#include "layers/raster/SpanWriter.h"
#include "layers/raster/WideVectors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace raster {
namespace {

double Centre(int pixel)
{
    return pixel + 0.5;
}

/// The first of count pixels whose centre is at or beyond the place; count if there is none.
int FirstPixelFrom(double place, int count)
{
    const double from = place - 0.5;
    if (from <= 0) {
        return 0;
    }
    if (!(from <= count - 1)) {
        return count;
    }
    const auto pixel = static_cast<int>(from);
    return pixel < from ? pixel + 1 : pixel;
}

bool IsUsable(double coordinate)
{
    return std::abs(coordinate) <= LargestCoordinate; // false for what is no number
}

bool IsUsable(QPointF point)
{
    return IsUsable(point.x()) && IsUsable(point.y());
}

bool IsUsable(const QRectF& rectangle)
{
    return IsUsable(rectangle.topLeft()) && IsUsable(rectangle.bottomRight());
}

/// What make() returns. Empty for sizes of no mask, and without memory.
template <typename Make>
Region RegionIn(QSize mask, Make make)
{
    return IsMaskSize(mask) ? RegionOrNone(make) : Region();
}

/// Columns of a row, from begin to before end; none if end is not beyond begin.
struct Columns
{
    int begin;
    int end;
};

/// The first column for which isBeyond(column) is true, as it is for all that follow.
template <typename IsBeyond>
int FirstColumn(int width, IsBeyond isBeyond)
{
    int first = 0;
    for (int count = width; count > 0;) {
        const int half = count / 2;
        if (isBeyond(first + half)) {
            count = half;
        } else {
            first += half + 1;
            count -= half + 1;
        }
    }
    return first;
}

/// The columns of a convex shape. side(column) is negative left of the shape, 0 in it and positive
/// right of it; a row that misses the shape has both sides, or one only.
template <typename Side>
Columns ColumnsOf(int width, Side side)
{
    return {FirstColumn(width, [&side](int column) { return side(column) >= 0; }),
            FirstColumn(width, [&side](int column) { return side(column) > 0; })};
}

/// The side of a row through a shape that is widest at the middle.
int SideOf(double offsetFromMiddle, bool isIn)
{
    if (isIn) {
        return 0;
    }
    return offsetFromMiddle < 0 ? -1 : 1;
}

Columns Common(Columns a, Columns b)
{
    return {std::max(a.begin, b.begin), std::min(a.end, b.end)};
}

/// Adds columns that do not begin before the ones that were added last.
void AddColumns(Region& region, int y, Columns columns)
{
    if (columns.begin >= columns.end) {
        return;
    }
    if (!region.empty() && region.back().y == y && region.back().end >= columns.begin) {
        region.back().end = static_cast<quint16>(std::max<int>(region.back().end, columns.end));
    } else {
        region.push_back({y, columns.begin, columns.end});
    }
}

/// A thick line without its ends, and the discs at its ends.
class Capsule
{
public:
    Capsule(QPointF from, QPointF to, double width)
        : m_from(from)
        , m_to(to)
        , m_along(to - from)
        , m_radius(width / 2)
    {
    }

    Columns Disc(QPointF middle, int y, int width) const
    {
        const double dy = Centre(y) - middle.y();
        return ColumnsOf(width, [&](int column) {
            const double dx = Centre(column) - middle.x();
            return SideOf(dx, dx * dx + dy * dy <= m_radius * m_radius);
        });
    }
    Columns Side(int y, int width) const
    {
        const double dy = Centre(y) - m_from.y();
        const double lengthSquared = QPointF::dotProduct(m_along, m_along);
        if (lengthSquared <= 0) {
            return {0, 0};
        }
        // The signs that make the places along the line and beside it grow from left to right.
        const double forward = m_along.x() < 0 ? -1 : 1;
        const double downward = m_along.y() < 0 ? -1 : 1;
        const Columns between = ColumnsOf(width, [&](int column) {
            const double dx = Centre(column) - m_from.x();
            const double done = dx * m_along.x() + dy * m_along.y();
            return SideOf(forward * done, done >= 0 && done <= lengthSquared);
        });
        const Columns near = ColumnsOf(width, [&](int column) {
            const double dx = Centre(column) - m_from.x();
            const double aside = dx * m_along.y() - dy * m_along.x();
            return SideOf(downward * aside, aside * aside <= m_radius * m_radius * lengthSquared);
        });
        return Common(between, near);
    }
    void AddRow(Region& region, int y, int width) const
    {
        std::array<Columns, 3> parts{Disc(m_from, y, width), Disc(m_to, y, width), Side(y, width)};
        std::sort(parts.begin(), parts.end(),
                  [](Columns a, Columns b) { return a.begin < b.begin; });
        for (const Columns part : parts) {
            AddColumns(region, y, part);
        }
    }

private:
    QPointF m_from;
    QPointF m_to;
    QPointF m_along;
    double m_radius;
};

/// A polygon's edge, from its upper end downward.
struct Edge
{
    double x;
    double y;
    double slope;
    /// The rows whose centres it passes.
    int firstRow;
    int endRow;
};

std::vector<Edge> EdgesOf(const QVector<QPointF>& corners, int height)
{
    std::vector<Edge> edges;
    QPointF before = corners.isEmpty() ? QPointF() : corners.last();
    for (const QPointF& corner : corners) {
        const bool isDownward = before.y() < corner.y();
        const QPointF top = isDownward ? before : corner;
        const QPointF bottom = isDownward ? corner : before;
        const int firstRow = FirstPixelFrom(top.y(), height);
        const int endRow = FirstPixelFrom(bottom.y(), height);
        if (firstRow < endRow) {
            const double slope = (bottom.x() - top.x()) / (bottom.y() - top.y());
            edges.push_back({top.x(), top.y(), slope, firstRow, endRow});
        }
        before = corner;
    }
    std::sort(edges.begin(), edges.end(),
              [](const Edge& a, const Edge& b) { return a.firstRow < b.firstRow; });
    return edges;
}

/// What the sweep needs of the edges of a row, one array for each value, so that the compiler makes
/// vectors of the loops over them.
class ActiveEdges
{
public:
    explicit ActiveEdges(std::size_t most)
        : m_x(most)
        , m_y(most)
        , m_slope(most)
        , m_endRow(most)
        , m_from(most)
        , m_pixels(most)
    {
    }

    bool IsEmpty() const { return m_count == 0; }
    void Add(const Edge& edge)
    {
        Set(m_count++, edge.x, edge.y, edge.slope, edge.endRow);
        m_nextEnd = std::min(m_nextEnd, edge.endRow);
    }
    /// Drops those that end before the row.
    void DropBefore(int row)
    {
        if (row < m_nextEnd) {
            return;
        }
        m_nextEnd = std::numeric_limits<int>::max();
        std::size_t kept = 0;
        for (std::size_t i = 0; i < m_count; ++i) {
            if (m_endRow[i] > row) {
                m_nextEnd = std::min(m_nextEnd, m_endRow[i]);
                Set(kept++, m_x[i], m_y[i], m_slope[i], m_endRow[i]);
            }
        }
        m_count = kept;
    }
    /// Calls visit(pixel) for the first pixel of the row right of each edge; width if there is
    /// none.
    template <typename Visit>
    void ForEachCrossing(int row, int width, Visit visit)
    {
        FindPixels({m_x.data(), m_y.data(), m_slope.data()}, m_count, Centre(row), width,
                   m_from.data(), m_pixels.data());
        for (std::size_t i = 0; i < m_count; ++i) {
            visit(m_pixels[i]);
        }
    }

private:
    void Set(std::size_t i, double x, double y, double slope, int endRow)
    {
        m_x[i] = x;
        m_y[i] = y;
        m_slope[i] = slope;
        m_endRow[i] = endRow;
    }
    struct Values
    {
        const double* x;
        const double* y;
        const double* slope;
    };
    static void FindPixels(Values edges, std::size_t count, double centre, double end,
                           double* __restrict from, int* __restrict pixels);

    std::vector<double> m_x;
    std::vector<double> m_y;
    std::vector<double> m_slope;
    std::vector<int> m_endRow;
    /// Where the edges cross the row, less the half pixel up to a centre.
    std::vector<double> m_from;
    std::vector<int> m_pixels;
    std::size_t m_count = 0;
    int m_nextEnd = std::numeric_limits<int>::max();
};

QUILLMAP_WIDE_VECTORS
void ActiveEdges::FindPixels(Values edges, std::size_t count, double centre, double end,
                             double* __restrict from, int* __restrict pixels)
{
    for (std::size_t i = 0; i < count; ++i) {
        const double beyond = edges.x[i] + edges.slope[i] * (centre - edges.y[i]) - 0.5;
        // The steepest slopes may give no number; that becomes the row's end.
        from[i] = std::max(0.0, std::min(end, beyond));
    }
    // In a loop of its own, because in one loop the compiler makes no vectors.
    for (std::size_t i = 0; i < count; ++i) {
        const int pixel = static_cast<int>(from[i]);
        pixels[i] = pixel < from[i] ? pixel + 1 : pixel;
    }
}

/// Fills a polygon by the edge flags of Ackland and Weste (1981): in a row of bits, each edge turns
/// the bit of the first pixel to its right over. So the crossings of a row need no sorting, and two
/// in the same place undo each other.
class EdgeFlags
{
public:
    EdgeFlags(const QVector<QPointF>& corners, QSize mask)
        : m_edges(EdgesOf(corners, mask.height()))
        , m_active(m_edges.size())
        , m_width(mask.width())
        , m_flags(static_cast<std::size_t>(m_width / WordLength + 1))
    {
    }

    Region Pixels()
    {
        Region region;
        region.reserve(LikelyRunCount());
        SpanWriter writer(region);
        auto next = m_edges.cbegin();
        int y = m_edges.empty() ? 0 : next->firstRow;
        for (; next != m_edges.cend() || !m_active.IsEmpty(); ++y) {
            m_active.DropBefore(y);
            for (; next != m_edges.cend() && next->firstRow <= y; ++next) {
                m_active.Add(*next);
            }
            m_active.ForEachCrossing(y, m_width, [this](int pixel) {
                const auto at = static_cast<unsigned>(pixel);
                m_flags[at / WordLength] ^= quint64(1) << (at % WordLength);
            });
            writer.BeginRow(y);
            writer.AddEdges(0, m_flags.data(), static_cast<int>(m_flags.size()));
            std::fill(m_flags.begin(), m_flags.end(), quint64(0));
        }
        return region;
    }

private:
    /// As many as there are when no crossings coincide, up to 24 MiB of them.
    std::size_t LikelyRunCount() const
    {
        constexpr std::size_t most = std::size_t(4) << 20;
        std::size_t crossings = 0;
        for (const Edge& edge : m_edges) {
            crossings += static_cast<std::size_t>(edge.endRow - edge.firstRow);
        }
        return std::min(crossings / 2, most);
    }

    std::vector<Edge> m_edges;
    ActiveEdges m_active;
    int m_width;
    std::vector<quint64> m_flags;
};

} // namespace

Region RectangleRegion(QRectF rectangle, QSize mask)
{
    return RegionIn(mask, [&] {
        Region region;
        if (!IsUsable(rectangle)) {
            return region;
        }
        const QRectF sides = rectangle.normalized();
        const Columns columns{FirstPixelFrom(sides.left(), mask.width()),
                              FirstPixelFrom(sides.right(), mask.width())};
        const int endRow = FirstPixelFrom(sides.bottom(), mask.height());
        for (int y = FirstPixelFrom(sides.top(), mask.height()); y < endRow; ++y) {
            AddColumns(region, y, columns);
        }
        return region;
    });
}

Region EllipseRegion(QRectF rectangle, QSize mask)
{
    return RegionIn(mask, [&] {
        Region region;
        const QRectF sides = rectangle.normalized();
        if (!IsUsable(rectangle) || sides.isEmpty()) {
            return region;
        }
        const QPointF middle = sides.center();
        const double squareA = sides.width() * sides.width() / 4;
        const double squareB = sides.height() * sides.height() / 4;
        const int lastRow =
            std::min(FirstPixelFrom(sides.bottom(), mask.height()), mask.height() - 1);
        for (int y = FirstPixelFrom(sides.top(), mask.height()); y <= lastRow; ++y) {
            const double dy = Centre(y) - middle.y();
            const double rest = squareA * squareB - dy * dy * squareA;
            AddColumns(region, y, ColumnsOf(mask.width(), [&](int column) {
                           const double dx = Centre(column) - middle.x();
                           return SideOf(dx, dx * dx * squareB <= rest);
                       }));
        }
        return region;
    });
}

Region PolygonRegion(const QVector<QPointF>& corners, QSize mask)
{
    return RegionIn(mask, [&] {
        const bool isUsable = std::all_of(corners.cbegin(), corners.cend(),
                                          [](QPointF corner) { return IsUsable(corner); });
        return isUsable ? EdgeFlags(corners, mask).Pixels() : Region();
    });
}

Region LineRegion(QPointF from, QPointF to, double width, QSize mask)
{
    return RegionIn(mask, [&] {
        Region region;
        if (!IsUsable(from) || !IsUsable(to) || !IsUsable(width) || width <= 0) {
            return region;
        }
        const Capsule capsule(from, to, width);
        const double top = std::min(from.y(), to.y()) - width / 2;
        const double bottom = std::max(from.y(), to.y()) + width / 2;
        const int lastRow = std::min(FirstPixelFrom(bottom, mask.height()), mask.height() - 1);
        for (int y = FirstPixelFrom(top, mask.height()); y <= lastRow; ++y) {
            capsule.AddRow(region, y, mask.width());
        }
        return region;
    });
}

} // namespace raster
