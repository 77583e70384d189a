#pragma once

#include "territories/TerritoryRecords.h"

#include <vector>

class Random;

/// A world of 15360 m with layers of 2048 pixels, set in the ProjectSettings.
WorldScale SetZoneWorld();

/// A zone at a place in metres.
ZoneRecord ZoneAt(float x, float z, float radius, const WorldScale& scale,
                  const QString& name = QStringLiteral("Rest"));

/// Types with some territories each, empty ones too, with any zones: names with separators and
/// quotes, places beyond the world, numbers that no control of the editor accepts. No two
/// territories of a type have the same name.
std::vector<TypeRecord> AnyZones(Random& random, const WorldScale& scale, int zoneCount);
