#pragma once

#include "Terrain.h"

namespace generator {

/// Fills the valleys that make the best lakes, and levels the terrain to the water.
Mask MakeLakes(Terrain& terrain);

} // namespace generator
