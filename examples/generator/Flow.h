#pragma once

#include "Grid.h"

namespace generator {

/// The flow of the water from each cell.
struct Flow
{
    /// The cell that a cell drains into; its own index for the outlets.
    Grid<int> receiver;
    /// The number of cells that drain through this one, itself included.
    Field area;
    /// All cells, each after the one into which it drains.
    std::vector<int> order;
};

/// Routes the water of a height field to the outlets. Water leaves hollows over their lowest edge.
/// Every cell reaches an outlet if there is one.
Flow RouteFlow(const Field& height, const Mask& outlets);

} // namespace generator
