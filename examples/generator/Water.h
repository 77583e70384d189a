#pragma once

#include "Shapes.h"
#include "Terrain.h"

namespace generator {

struct River
{
    Line line;
    /// The width in pixels at each point of the line.
    std::vector<float> widths;
};

/// The fresh water of the island.
struct Water
{
    Mask lake;
    std::vector<River> rivers;
    /// How much of each pixel is river.
    Field river;
    /// Pixels to the nearest lake or river.
    Field toFresh;
};

/// Dams valleys to make lakes, which levels the terrain there, and makes the rivers.
Water MakeWater(Terrain& terrain);

} // namespace generator
