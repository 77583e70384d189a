#include "territories/rules/ZonePairs.h"

#include "territories/Pi.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// Metres.
constexpr double FarthestPlace = 1e9;

double Distance(const WorldCircle& a, const WorldCircle& b)
{
    return std::hypot(a.x - b.x, a.z - b.z);
}

/// The area between the outline of a circle and a chord of it, at a distance from its centre; more
/// than half of the circle for a negative distance.
double SegmentArea(double radius, double distance)
{
    const double cosine = std::clamp(distance / radius, -1.0, 1.0);
    return radius * radius * (std::acos(cosine) - cosine * std::sqrt(1 - cosine * cosine));
}

bool AreEqual(const WorldCircle& a, const WorldCircle& b)
{
    return a.x == b.x && a.z == b.z && a.radius == b.radius;
}

/// Circles without area can only be equal, and no world holds those beyond this many metres. A grid
/// would have all of them in a few cells.
bool HasGridPlace(const WorldCircle& circle)
{
    return circle.radius > 0 && circle.radius < FarthestPlace &&
           std::abs(circle.x) < FarthestPlace && std::abs(circle.z) < FarthestPlace;
}

} // namespace

double SharedArea(const WorldCircle& a, const WorldCircle& b)
{
    const double small = std::min(a.radius, b.radius);
    const double large = std::max(a.radius, b.radius);
    const double distance = Distance(a, b);
    if (!(small > 0) || distance >= small + large) {
        return 0;
    }
    if (distance + small <= large) {
        return 1;
    }
    // The chord through both crossings, as seen from the centre of the larger circle.
    const double chord = (distance * distance + large * large - small * small) / (2 * distance);
    const double area = SegmentArea(large, chord) + SegmentArea(small, distance - chord);
    return std::clamp(area / (Pi * small * small), 0.0, 1.0);
}

/// Zones by place and size. Each level holds circles of about one size in cells about as large as
/// they.
class ZonePairs::Grid
{
public:
    /// Indexes must ascend.
    void Insert(int index, const WorldCircle& circle)
    {
        Level& level = m_levels[LevelOf(circle.radius)];
        level.largest = std::max(level.largest, circle.radius);
        level.latest = index;
        level.cells[KeyOf(circle)].push_back(index);
    }

    /// Calls visit with the indexes of each cell that may hold circles around the centre of this
    /// one, or with centres in it; first those that are nearest in place and size. Leaves out what
    /// holds no index above that of least().
    template <typename Visit, typename Least>
    void ForEachCell(const WorldCircle& circle, Visit visit, Least least) const
    {
        const std::size_t own = LevelOf(circle.radius);
        const auto cell = m_levels[own].cells.constFind(KeyOf(circle));
        const Cell* nearest = cell == m_levels[own].cells.constEnd() ? nullptr : &*cell;
        if (nearest) {
            visit(*nearest);
        }
        const auto visitOthers = [&](const Cell& each) {
            if (&each != nearest && each.back() > least()) {
                visit(each);
            }
        };
        VisitLevel(own, circle, visitOthers);
        for (std::size_t i = 0; i < m_levels.size(); ++i) {
            if (i != own && m_levels[i].latest > least()) {
                VisitLevel(i, circle, visitOthers);
            }
        }
    }

private:
    /// Ascending indexes.
    using Cell = std::vector<int>;
    struct Level
    {
        double largest = 0;
        int latest = -1;
        QHash<quint64, Cell> cells;
    };
    /// Level i holds radii from 2^i to 2^(i+1), and the first one also smaller ones. There is one
    /// for each radius that has a place in the grid: a level with much larger circles than its
    /// cells would be searched as a whole for each zone.
    static constexpr int LevelCount = 30;
    static_assert(1 << (LevelCount - 1) < FarthestPlace && FarthestPlace <= 1 << LevelCount);

    static std::size_t LevelOf(double radius)
    {
        return radius < 1 ? 0U : static_cast<std::size_t>(std::ilogb(radius));
    }
    static double SideOf(std::size_t level) { return std::ldexp(1.0, static_cast<int>(level) + 1); }
    static qint64 CellAt(double metres, double side)
    {
        constexpr double limit = 1 << 30;
        return static_cast<qint64>(std::clamp(std::floor(metres / side), -limit, limit));
    }
    static quint64 Key(qint64 column, qint64 row)
    {
        return static_cast<quint64>(static_cast<quint32>(column)) << 32U |
               static_cast<quint32>(row);
    }

    static quint64 KeyOf(const WorldCircle& circle)
    {
        const double side = SideOf(LevelOf(circle.radius));
        return Key(CellAt(circle.x, side), CellAt(circle.z, side));
    }

    template <typename Visit>
    void VisitLevel(std::size_t number, const WorldCircle& circle, const Visit& visit) const
    {
        const Level& level = m_levels[number];
        const double side = SideOf(number);
        const double reach = std::max(circle.radius, level.largest);
        const qint64 left = CellAt(circle.x - reach, side);
        const qint64 right = CellAt(circle.x + reach, side);
        const qint64 bottom = CellAt(circle.z - reach, side);
        const qint64 top = CellAt(circle.z + reach, side);
        if ((right - left + 1) * (top - bottom + 1) > level.cells.size()) {
            for (const Cell& cell : level.cells) {
                visit(cell);
            }
            return;
        }
        for (qint64 row = bottom; row <= top; ++row) {
            for (qint64 column = left; column <= right; ++column) {
                const auto cell = level.cells.constFind(Key(column, row));
                if (cell != level.cells.constEnd()) {
                    visit(*cell);
                }
            }
        }
    }

    std::array<Level, LevelCount> m_levels;
};

ZonePairs::ZonePairs(double share)
    : m_share(share)
{
}

ZonePairs::~ZonePairs() = default;

bool ZonePairs::FindPair(int earlier, int later, ZonePair& pair) const
{
    const Circle& a = m_circles[static_cast<std::size_t>(earlier)];
    const Circle& b = m_circles[static_cast<std::size_t>(later)];
    pair = {ZonePair::Relation::Equal, earlier, 1};
    if (a.counts == b.counts && AreEqual(a.circle, b.circle)) {
        return true;
    }
    const double distance = Distance(a.circle, b.circle);
    const bool haveAreas = a.circle.radius > 0 && b.circle.radius > 0;
    // More than half of a circle is in another one only if its centre is.
    if (!haveAreas || distance >= std::max(a.circle.radius, b.circle.radius)) {
        return false;
    }
    if (distance + b.circle.radius <= a.circle.radius) {
        pair.relation = ZonePair::Relation::Inside;
        return true;
    }
    if (distance + a.circle.radius <= b.circle.radius) {
        pair.relation = ZonePair::Relation::Around;
        return true;
    }
    pair.relation = ZonePair::Relation::Overlapping;
    pair.share = SharedArea(a.circle, b.circle);
    return pair.share > m_share;
}

ZonePairs::Same ZonePairs::SameZone(const ZoneValues& values, const WorldCircle& circle)
{
    const SpawnCounts& counts = values.counts;
    return {values.Name(),     counts.staticMin, counts.staticMax, counts.dynamicMin,
            counts.dynamicMax, circle.x,         circle.z,         circle.radius};
}

std::vector<ZonePair> ZonePairs::Add(const ZoneValues& values, const WorldCircle& circle)
{
    const auto index = static_cast<int>(m_circles.size());
    std::vector<ZonePair> pairs;
    m_circles.push_back({values.counts, circle});
    if (!std::isfinite(circle.x) || !std::isfinite(circle.z) || !std::isfinite(circle.radius)) {
        return pairs;
    }
    if (!HasGridPlace(circle)) {
        std::vector<int>& equal = m_withoutPlace[SameZone(values, circle)];
        const std::size_t count = std::min(equal.size(), static_cast<std::size_t>(MaxPairs));
        for (auto earlier = equal.end() - static_cast<std::ptrdiff_t>(count);
             earlier != equal.end(); ++earlier) {
            pairs.push_back({ZonePair::Relation::Equal, *earlier, 1});
        }
        equal.push_back(index);
        return pairs;
    }
    std::shared_ptr<Grid>& grid = m_grids[values.Name()];
    if (!grid) {
        grid = std::make_shared<Grid>();
    }
    // The earliest of the pairs when there is room for later ones only; or -1.
    const auto least = [&pairs] {
        return pairs.size() == static_cast<std::size_t>(MaxPairs) ? pairs.front().earlier : -1;
    };
    const auto visit = [&](const std::vector<int>& cell) {
        for (auto earlier = cell.rbegin(); earlier != cell.rend() && *earlier > least();
             ++earlier) {
            ZonePair pair;
            if (!FindPair(*earlier, index, pair)) {
                continue;
            }
            if (least() >= 0) {
                pairs.erase(pairs.begin());
            }
            const auto place = std::upper_bound(
                pairs.begin(), pairs.end(), *earlier,
                [](int value, const ZonePair& each) { return value < each.earlier; });
            pairs.insert(place, pair);
        }
    };
    grid->ForEachCell(circle, visit, least);
    grid->Insert(index, circle);
    return pairs;
}

namespace {

void AddPairFinding(const FindingSpot& zone, const QString& other, const ZonePair& pair,
                    Findings& findings)
{
    switch (pair.relation) {
    case ZonePair::Relation::Equal:
        AddFinding(findings, zone, "zone-equal", Severity::Warning,
                   QStringLiteral("it is equal to ") + other + QLatin1Char('.'),
                   "Remove one of them.");
        break;
    case ZonePair::Relation::Inside:
        AddFinding(findings, zone, "zone-contained", Severity::Warning,
                   QStringLiteral("it lies in ") + other +
                       QStringLiteral(", which has the same usage."),
                   "Move it, or remove one of them.");
        break;
    case ZonePair::Relation::Around:
        AddFinding(findings, zone, "zone-contained", Severity::Warning,
                   QStringLiteral("in it lies ") + other +
                       QStringLiteral(", which has the same usage."),
                   "Move it, or remove one of them.");
        break;
    case ZonePair::Relation::Overlapping:
        AddFinding(findings, zone, "zone-overlap", Severity::Warning,
                   QStringLiteral("it overlaps ") + other +
                       QStringLiteral(", which has the same usage, by %1 % of the smaller one.")
                           .arg(static_cast<int>(pair.share * 100)),
                   "Move one of them, or remove it.");
        break;
    }
}

} // namespace

void PairRules::Add(const FindingSpot& zone, const ZoneValues& values, const WorldCircle& circle,
                    Findings& findings)
{
    m_places.push_back(zone.place);
    const std::vector<ZonePair> pairs = m_pairs.Add(values, circle);
    for (const ZonePair& pair : pairs) {
        AddPairFinding(zone, m_places[static_cast<std::size_t>(pair.earlier)], pair, findings);
    }
}
