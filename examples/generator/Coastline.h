#pragma once

#include "Grid.h"

namespace generator {

/// The sea around the island, at a size that divides the world's.
Mask MakeSea(int size);

/// How fast the land rises at a place of the world, 0 to 1; high along the mountain ranges.
float UpliftAt(Point place);

} // namespace generator
