#pragma once

#include "Buildings.h"
#include "Colour.h"

namespace generator {

/// The colours of the land in flat light.
void PaintGround(Canvas& canvas, const World& world, const BuiltUp& builtUp);

} // namespace generator
