#pragma once

#include "Sites.h"

namespace generator {

struct Road
{
    Line line;
    /// Tracks lead to compounds and back lanes; the others are paved.
    bool isTrack;
};

struct Roads
{
    std::vector<Road> roads;
    /// How much of each pixel is road.
    Field paved;
    Field track;
    /// Pixels to the nearest road of either kind.
    Field toRoad;
};

/// Joins the sites by roads that avoid slopes and water.
Roads BuildRoads(const Terrain& terrain, const Water& water, const Sites& sites);

} // namespace generator
