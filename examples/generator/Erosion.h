#pragma once

#include "Grid.h"

namespace generator {

struct ErosionRun
{
    int steps;
    /// How much the land rises in a step where uplift is 1, in metres.
    float rise;
    /// How hard running water cuts.
    float cut;
    /// The share by which a step evens out slopes, below 0.2.
    float creep;
};

/// Lets the land rise and running water carve it, step by step.
void Erode(Field& height, const Field& uplift, const Mask& sea, const ErosionRun& run);

} // namespace generator
