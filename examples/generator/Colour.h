#pragma once

#include "Grid.h"

namespace generator {

/// Red, green and blue from 0 to 1, in the colour space of the screen.
struct Colour
{
    float red = 0;
    float green = 0;
    float blue = 0;
};

inline Colour operator*(Colour colour, float factor)
{
    return {colour.red * factor, colour.green * factor, colour.blue * factor};
}

inline Colour Mix(Colour a, Colour b, float t)
{
    return {Mix(a.red, b.red, t), Mix(a.green, b.green, t), Mix(a.blue, b.blue, t)};
}

using Canvas = Grid<Colour>;

} // namespace generator
