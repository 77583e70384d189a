#pragma once

#include <vector>

struct WorldScale;
struct ZoneRecord;

/// The circle of a zone, as plain numbers.
struct ProbedZone
{
    /// World metres, as files hold them.
    float x = 0;
    float z = 0;
    float radius = 0;
    /// The caller's index of the territory.
    int owner = 0;
    /// The place of the zone in its territory, from 1, as `check` and the files count.
    int number = 0;
};

/// A zone that covers a place.
struct ZoneHere
{
    /// Its index in the list.
    int index = 0;
    /// Metres from its centre.
    double distance = 0;
};

/// The zones of a project in one block of memory, so that thousands of them are searched while the
/// mouse moves. Whoever keeps the list fills it again after zones have changed.
using ProbedZones = std::vector<ProbedZone>;

/// The circle of a zone of the map's scene.
ProbedZone ProbedZoneOf(const ZoneRecord& zone, const WorldScale& scale, int owner, int number);

/// The zones that cover the place (world metres), in the order of the list. A circle covers its own
/// outline; one with a negative radius or without numbers covers nothing. Places outside of the
/// world may be covered too.
std::vector<ZoneHere> ZonesAt(const ProbedZones& zones, double x, double z);
