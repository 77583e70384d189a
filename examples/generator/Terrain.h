#pragma once

#include "Grid.h"

namespace generator {

/// The bare island.
struct Terrain
{
    /// Metres above the sea; the sea floor is negative.
    Field height;
    Mask sea;
    /// Pixels to the nearest sea cell, for land, and to the nearest land cell, for the sea.
    Field toSea;
    Field toLand;
};

Terrain MakeTerrain();

/// Rise over run of a height field at a cell of the full size.
float SteepnessAt(const Field& height, int x, int y);

} // namespace generator
