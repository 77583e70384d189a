#pragma once

#include "Cover.h"
#include "Roads.h"
#include "Sites.h"
#include "Terrain.h"
#include "Water.h"

namespace generator {

/// All data of the island. The picture, the layers and the territories are made from it, so they
/// agree.
struct World
{
    Terrain terrain;
    Water water;
    Sites sites;
    Roads roads;
    Cover cover;
};

World MakeWorld();

} // namespace generator
