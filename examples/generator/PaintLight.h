#pragma once

#include "Buildings.h"
#include "Colour.h"

namespace generator {

/// Lights the land from the north-west: slopes, tree tops and roofs, and the shadows of all three.
void PaintLight(Canvas& canvas, const World& world);

/// Roofs with a lit and a dark side, and their shadows on the ground.
void PaintBuildings(Canvas& canvas, const BuiltUp& builtUp);

} // namespace generator
