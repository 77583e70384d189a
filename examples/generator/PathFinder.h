#pragma once

#include "Shapes.h"

#include <functional>

namespace generator {

/// Finds the ways that people would take over a terrain, on a raster coarser than the world's.
class PathFinder
{
public:
    static constexpr int PixelsPerCell = 4;

    /// height has the full size. groundCost is the cost of crossing a path cell, negative where
    /// nobody can go.
    PathFinder(const Field& height, Field groundCost);

    static int CellAt(Point place);
    /// The centre of the cell.
    static Point PlaceOf(int cell);

    /// The cheapest way from a place to the first cell of the goal, both included; empty if there
    /// is none. Cells of beaten cost less.
    std::vector<int> FindPath(Point from, const std::function<bool(int)>& isGoal,
                              const Mask* beaten = nullptr) const;

private:
    float StepCost(int from, int to, float length) const;

    Field m_height;
    Field m_groundCost;
};

} // namespace generator
