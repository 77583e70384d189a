#pragma once

#include "Colour.h"
#include "World.h"

namespace generator {

/// The sea by its depth, with surf along the shore, and the lakes and rivers.
void PaintWater(Canvas& canvas, const World& world);

} // namespace generator
