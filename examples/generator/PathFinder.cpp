#include "PathFinder.h"

#include <queue>

namespace generator {

namespace {

constexpr int CellsAcross = WorldPixels / PathFinder::PixelsPerCell;

/// Steps of three lengths. With the eight neighbours only, paths would be long straight diagonals.
constexpr float Knight = 2.23606798F;
constexpr Step PathSteps[] = {
    {1, 0, 1.0F},     {-1, 0, 1.0F},     {0, 1, 1.0F},      {0, -1, 1.0F},
    {1, 1, Diagonal}, {-1, 1, Diagonal}, {1, -1, Diagonal}, {-1, -1, Diagonal},
    {2, 1, Knight},   {2, -1, Knight},   {-2, 1, Knight},   {-2, -1, Knight},
    {1, 2, Knight},   {1, -2, Knight},   {-1, 2, Knight},   {-1, -2, Knight},
};

struct Open
{
    float cost;
    int cell;

    /// The cheapest cell comes first. Among equals the lower index comes first, so that all
    /// machines find the same path.
    bool operator<(const Open& other) const
    {
        return cost != other.cost ? cost > other.cost : cell > other.cell;
    }
};

std::vector<int> WayTo(int goal, const Grid<int>& from)
{
    std::vector<int> way;
    for (int cell = goal; cell >= 0; cell = from[cell]) {
        way.push_back(cell);
    }
    std::reverse(way.begin(), way.end());
    return way;
}

} // namespace

PathFinder::PathFinder(const Field& height, Field groundCost)
    : m_height(CellsAcross)
    , m_groundCost(std::move(groundCost))
{
    ForEachCell(m_height, [&](int /*x*/, int /*y*/, int cell) {
        m_height[cell] = height.Near(PlaceOf(cell));
    });
}

int PathFinder::CellAt(Point place)
{
    return static_cast<int>(place.y) / PixelsPerCell * CellsAcross +
           static_cast<int>(place.x) / PixelsPerCell;
}

Point PathFinder::PlaceOf(int cell)
{
    return CentreOf(cell % CellsAcross, cell / CellsAcross) * static_cast<float>(PixelsPerCell);
}

float PathFinder::StepCost(int from, int to, float length) const
{
    constexpr float easyGrade = 0.05F;
    const float metres = length * PixelsPerCell * MetresPerPixel;
    const float grade = std::abs(m_height[to] - m_height[from]) / metres / easyGrade;
    return length * 0.5F * (m_groundCost[from] + m_groundCost[to]) + length * grade * grade;
}

// Shortest paths (Edsger Dijkstra, 1959).
std::vector<int> PathFinder::FindPath(Point from, const std::function<bool(int)>& isGoal,
                                      const Mask* beaten) const
{
    constexpr float beatenShare = 0.45F;
    Field cost(CellsAcross, 1e9F);
    Grid<int> previous(CellsAcross, -1);
    std::priority_queue<Open> open;
    const int start = CellAt(from);
    cost[start] = 0;
    open.push({0, start});
    while (!open.empty()) {
        const Open nearest = open.top();
        open.pop();
        if (nearest.cost > cost[nearest.cell]) {
            continue;
        }
        if (isGoal(nearest.cell)) {
            return WayTo(nearest.cell, previous);
        }
        for (const Step& step : PathSteps) {
            const int x = nearest.cell % CellsAcross + step.x;
            const int y = nearest.cell / CellsAcross + step.y;
            if (!cost.Holds(x, y) || m_groundCost.At(x, y) < 0) {
                continue;
            }
            const int next = y * CellsAcross + x;
            const bool isBeaten = beaten && (*beaten)[next] && (*beaten)[nearest.cell];
            const float newCost = nearest.cost + StepCost(nearest.cell, next, step.length) *
                                                     (isBeaten ? beatenShare : 1.0F);
            if (newCost < cost[next]) {
                cost[next] = newCost;
                previous[next] = nearest.cell;
                open.push({newCost, next});
            }
        }
    }
    return {};
}

} // namespace generator
