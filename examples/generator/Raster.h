#pragma once

#include "Grid.h"

namespace generator {

/// Exact distance in pixels to the nearest set cell; 0 in the set itself.
Field DistanceTo(const Mask& mask);

/// The mean over a square of 2 * radius + 1 cells, applied three times, which is close to a
/// Gaussian blur.
Field Blurred(const Field& field, int radius);

/// Twice the size, through cubic curves.
Field Enlarged(const Field& field);

/// The number of each cell's patch of equal mask value, and the number of cells of each patch.
struct Patches
{
    Grid<int> number;
    std::vector<int> cellCounts;
};
Patches FindPatches(const Mask& mask);

/// Inverts the patches, set or clear, that have fewer cells.
void DropSmallPatches(Mask& mask, int minCells);

Mask Inverse(const Mask& mask);

} // namespace generator
