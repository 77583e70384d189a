#pragma once

#include "app/Finding.h"
#include "territories/TerritoryRecords.h"
#include "territories/ZoneValues.h"

#include <QHash>
#include <QString>

#include <map>
#include <memory>
#include <tuple>
#include <vector>

/// What a zone has in common with an earlier one of its type and usage.
struct ZonePair
{
    enum class Relation
    {
        /// All that is exported is the same.
        Equal,
        /// The later zone lies in the earlier one.
        Inside,
        /// The earlier zone lies in the later one.
        Around,
        Overlapping,
    };

    Relation relation = Relation::Equal;
    /// The index of the earlier zone, in the order in which they were added.
    int earlier = 0;
    /// The part of the smaller circle's area that both cover, from 0 to 1.
    double share = 0;
};

/// The part of the smaller circle's area that both cover, from 0 to 1. Circles without area share
/// nothing.
double SharedArea(const WorldCircle& a, const WorldCircle& b);

/// Finds zones of one type and usage that are equal, lie in one another, or overlap by more than a
/// share. Zones of different usages may overlap as they like.
///
/// Zones are added one by one, in the order of the file, so that a caller can stop between two of
/// them. Finding the pairs of a zone takes about as long among 20,000 zones as among 200, because
/// zones are kept in grids by their size. At most MaxPairs pairs are given for each zone, those
/// with the zones that come last before it: 20,000 zones on one spot make 200 million pairs.
class ZonePairs
{
public:
    static constexpr double DefaultShare = 0.8;
    static constexpr int MaxPairs = 8;

    /// share: from 0.5 to 1.
    explicit ZonePairs(double share = DefaultShare);
    ~ZonePairs();
    Q_DISABLE_COPY(ZonePairs)

    /// Adds the next zone, and returns its pairs with earlier ones by ascending index. circle: as
    /// files hold it (see AsWritten). A place or radius that is no number belongs to no pair.
    std::vector<ZonePair> Add(const ZoneValues& values, const WorldCircle& circle);

private:
    class Grid;
    struct Circle
    {
        SpawnCounts counts;
        WorldCircle circle;
    };

    /// What equal zones have in common: name, counts and circle.
    using Same = std::tuple<QString, int, int, int, int, double, double, double>;

    static Same SameZone(const ZoneValues& values, const WorldCircle& circle);
    bool FindPair(int earlier, int later, ZonePair& pair) const;

    double m_share;
    std::vector<Circle> m_circles;
    /// By usage.
    QHash<QString, std::shared_ptr<Grid>> m_grids;
    /// Zones that are in no grid, by ascending index.
    std::map<Same, std::vector<int>> m_withoutPlace;
};

/// The rules of two zones of one type. Make one for each type.
class PairRules
{
public:
    explicit PairRules(double share = ZonePairs::DefaultShare)
        : m_pairs(share)
    {
    }

    /// Adds the next zone of the type, in the order of the file, and appends a finding for each
    /// pair with an earlier one. The findings are about the later zone.
    void Add(const FindingSpot& zone, const ZoneValues& values, const WorldCircle& circle,
             Findings& findings);

private:
    ZonePairs m_pairs;
    /// What the zones are called, in the order in which they were added.
    std::vector<QString> m_places;
};
