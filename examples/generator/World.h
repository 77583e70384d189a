#pragma once

#include "Cover.h"
#include "Roads.h"
#include "Sites.h"
#include "Terrain.h"
#include "Water.h"

namespace generator {

/// All that is known of the island. The picture, the layers and the territories are made of it, and
/// so they agree.
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
