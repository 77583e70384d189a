#pragma once

#include "Roads.h"
#include "Sites.h"

namespace generator {

/// What covers the ground: plants, fields, sand and rock.
struct Cover
{
    Mask forest;
    Mask farmland;
    Mask swamp;
    /// Shares of the ground, 0 to 1.
    Field sand;
    Field rock;
    Field snow;
    /// 0 dry to 1 moist.
    Field moisture;
    /// The distances in pixels to the nearest cell of forest and to the nearest cell without
    /// forest.
    Field toForest;
    Field toOpen;
    /// Pixels to the edge of the nearest settlement; below 0 inside.
    Field toSettlement;
    Mask isCompound;
};

Cover GrowCover(const Terrain& terrain, const Water& water, const Sites& sites, const Roads& roads);

} // namespace generator
