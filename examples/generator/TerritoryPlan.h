#pragma once

#include "World.h"

class TerritoryTypeList;

namespace generator {

/// Places the territories of all species where the land suits them. The project's sizes must be
/// set.
void PlaceTerritories(const World& world, TerritoryTypeList& types);

} // namespace generator
