#pragma once

#include "Shapes.h"
#include "Terrain.h"
#include "Water.h"

namespace generator {

struct Settlement
{
    Point centre;
    /// Approximately, in pixels.
    float radius;
    bool isTown;
};

struct Compound
{
    enum Kind
    {
        Airfield,
        Barracks,
        Radar,
    };
    Kind kind;
    Rectangle ground;
};

struct Sites
{
    std::vector<Settlement> settlements;
    std::vector<Compound> compounds;
};

/// Towns and villages on flat ground near water, and military compounds away from them. The terrain
/// is levelled under what needs it.
Sites ChooseSites(Terrain& terrain, const Water& water);

/// The distance in pixels to the edge of the nearest settlement; negative inside. The edges are
/// ragged.
float DistanceToSettlement(const Sites& sites, Point place);

} // namespace generator
