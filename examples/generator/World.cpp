#include "World.h"

namespace generator {

World MakeWorld()
{
    World world;
    world.terrain = MakeTerrain();
    world.water = MakeWater(world.terrain);
    world.sites = ChooseSites(world.terrain, world.water);
    world.roads = BuildRoads(world.terrain, world.water, world.sites);
    world.cover = GrowCover(world.terrain, world.water, world.sites, world.roads);
    return world;
}

} // namespace generator
