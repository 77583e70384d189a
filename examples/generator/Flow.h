#pragma once

#include "Grid.h"

namespace generator {

/// Where the water of each cell runs.
struct Flow
{
    /// The cell that a cell drains into; its own index for the outlets.
    Grid<int> receiver;
    /// Cells that drain through this one, itself included.
    Field area;
    /// All cells, each behind the one it drains into.
    std::vector<int> order;
};

/// Routes the water of a height field to the cells of outlets, across hollows over their lowest
/// brims. Every cell reaches an outlet when there is one.
Flow RouteFlow(const Field& height, const Mask& outlets);

} // namespace generator
