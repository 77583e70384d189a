#pragma once

#include "Habitat.h"

#include <QColor>

namespace generator {

/// The zones of one usage in a territory of a species.
struct ZoneDemand
{
    int usage;
    /// The name of the event, for dynamic events.
    const char* eventName;
    int count;
    float minRadiusMetres;
    float maxRadiusMetres;
    /// The largest numbers of static and dynamic creatures in a zone.
    int maxStatic;
    int maxDynamic;
    float (*suits)(const Habitat& habitat, Point place);
};

struct Species
{
    const char* name;
    QRgb color;
    int territoryCount;
    /// How far its zones lie from the middle of a territory, in pixels.
    float reach;
    float (*suits)(const Habitat& habitat, Point place);
    std::vector<ZoneDemand> demands;
};

std::vector<Species> AllSpecies();

} // namespace generator
