#pragma once

#include "World.h"

namespace generator {

struct Building
{
    enum Kind
    {
        House,
        Hall,
        Hangar,
        Dome,
    };
    Kind kind;
    Rectangle ground;
    /// Picks the colour of the roof.
    std::uint32_t look;
};

/// Buildings, streets and runways, for the picture.
struct BuiltUp
{
    std::vector<Building> buildings;
    /// How much of each pixel is a town's street or an airfield's runway, and runway marking.
    Field street;
    Field runway;
    Field marking;
};

BuiltUp BuildUp(const World& world);

} // namespace generator
