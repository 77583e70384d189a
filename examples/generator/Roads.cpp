#include "Roads.h"

#include "Noise.h"
#include "PathFinder.h"
#include "Raster.h"

namespace generator {

namespace {

constexpr int PathScale = PathFinder::PixelsPerCell;

/// The distance in pixels from the fence of a compound to the start of its track.
constexpr float GateWay = 6.0F;

/// The cost of crossing a path cell, per pixel. Negative where there can be no road.
Field MakeGroundCost(const Terrain& terrain, const Water& water, const Sites& sites)
{
    constexpr std::uint32_t seed = 600;
    Field cost(WorldPixels / PathScale);
    Field fenced(WorldPixels);
    for (const Compound& compound : sites.compounds) {
        DrawRectangle(fenced, compound.ground);
    }
    ForEachCell(cost, [&](int x, int y, int cell) {
        const int worldX = x * PathScale + PathScale / 2;
        const int worldY = y * PathScale + PathScale / 2;
        if (terrain.toSea.At(worldX, worldY) < 4.0F || water.lake.At(worldX, worldY) ||
            fenced.At(worldX, worldY) > 0.0F) {
            cost[cell] = -1.0F;
            return;
        }
        const float bridge = water.toFresh.At(worldX, worldY) < 3.0F ? 4.0F : 0.0F;
        const float banks = 1.0F - SmoothStep(2.0F, 9.0F, water.toFresh.At(worldX, worldY));
        const float shore = 1.0F - SmoothStep(4.0F, 12.0F, terrain.toSea.At(worldX, worldY));
        const float whims =
            FractalNoise(static_cast<float>(x) / 14.0F, static_cast<float>(y) / 14.0F, 3, seed);
        cost[cell] = 1.0F + bridge + banks + shore + 0.35F * whims;
    });
    return cost;
}

/// The vertex of the roads that is nearest to a place; the place itself when none is near.
Point SnapToRoads(const std::vector<Road>& roads, Point place)
{
    Point nearest = place;
    float least = 24.0F;
    for (const Road& road : roads) {
        for (const Point vertex : road.line) {
            const float distance = Length(vertex - place);
            if (distance < least) {
                least = distance;
                nearest = vertex;
            }
        }
    }
    return nearest;
}

class Builder
{
public:
    Builder(const Terrain& terrain, const Water& water, const Sites& sites)
        : m_finder(terrain.height, MakeGroundCost(terrain, water, sites))
        , m_isRoad(WorldPixels / PathScale)
    {
    }

    /// Joins the place to the nearest road by path; the first place starts the network.
    void JoinNetwork(Point place, bool isTrack)
    {
        if (m_roads.empty() && !m_hasStart) {
            m_isRoad[PathFinder::CellAt(place)] = 1;
            m_hasStart = true;
            return;
        }
        Add(m_finder.FindPath(place, [this](int cell) { return m_isRoad[cell] != 0; }), isTrack);
    }

    /// Adds a second way between two places, if the way through the network is much longer.
    void AddLink(Point from, Point to)
    {
        const int target = PathFinder::CellAt(to);
        const std::vector<int> path = m_finder.FindPath(
            from, [target](int cell) { return cell == target; }, &m_isRoad);
        std::vector<int> stretch;
        for (const int cell : path) {
            stretch.push_back(cell);
            if (m_isRoad[cell]) {
                Add(stretch, false);
                stretch = {cell};
            }
        }
    }

    /// The track from a gate into a compound.
    void AddDrive(const Line& line)
    {
        m_roads.push_back({{SnapToRoads(m_roads, line.front()), line.back()}, true});
    }

    std::vector<Road> Take() { return std::move(m_roads); }

private:
    void Add(const std::vector<int>& path, bool isTrack)
    {
        if (path.size() < 3) {
            return;
        }
        Line line;
        for (const int cell : path) {
            line.push_back(PathFinder::PlaceOf(cell));
            m_isRoad[cell] = 1;
        }
        line.front() = SnapToRoads(m_roads, line.front());
        line.back() = SnapToRoads(m_roads, line.back());
        m_roads.push_back({Smoothed(std::move(line), 4), isTrack});
    }

    PathFinder m_finder;
    Mask m_isRoad;
    std::vector<Road> m_roads;
    bool m_hasStart = false;
};

/// Also links each settlement to its nearest neighbours, because a tree of roads alone would make
/// long detours.
void LinkNeighbours(Builder& builder, const std::vector<Settlement>& settlements)
{
    for (std::size_t i = 0; i < settlements.size(); ++i) {
        const float reach = settlements[i].isTown ? 560.0F : 300.0F;
        for (std::size_t j = 0; j < settlements.size(); ++j) {
            const bool isTownPair = settlements[i].isTown && settlements[j].isTown;
            const float distance = Length(settlements[i].centre - settlements[j].centre);
            if ((i < j || isTownPair) && distance < (isTownPair ? 700.0F : reach * 0.8F)) {
                builder.AddLink(settlements[i].centre, settlements[j].centre);
            }
        }
    }
}

} // namespace

Roads BuildRoads(const Terrain& terrain, const Water& water, const Sites& sites)
{
    Builder builder(terrain, water, sites);
    for (const Settlement& settlement : sites.settlements) {
        builder.JoinNetwork(settlement.centre, false);
    }
    LinkNeighbours(builder, sites.settlements);
    for (const Compound& compound : sites.compounds) {
        const Rectangle& ground = compound.ground;
        const Point gate = ground.ToWorld({0.0F, ground.halfWidth + GateWay});
        builder.JoinNetwork(gate, true);
        builder.AddDrive({gate, ground.ToWorld({0.0F, 0.4F * ground.halfWidth})});
    }
    Roads roads = {builder.Take(), Field(WorldPixels), Field(WorldPixels), Field()};
    for (const Road& road : roads.roads) {
        DrawLine(road.isTrack ? roads.track : roads.paved, road.line, road.isTrack ? 0.8F : 1.3F);
    }
    Mask isRoad(WorldPixels);
    for (int cell = 0; cell < isRoad.Count(); ++cell) {
        isRoad[cell] = std::max(roads.paved[cell], roads.track[cell]) > 0.4F ? 1 : 0;
    }
    roads.toRoad = DistanceTo(isRoad);
    return roads;
}

} // namespace generator
