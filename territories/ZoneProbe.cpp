#include "territories/ZoneProbe.h"

#include "territories/TerritoryRecords.h"

#include <cmath>

ProbedZone ProbedZoneOf(const ZoneRecord& zone, const WorldScale& scale, int owner, int number)
{
    const WorldCircle circle = InWorld(zone, scale);
    return {static_cast<float>(circle.x), static_cast<float>(circle.z),
            static_cast<float>(circle.radius), owner, number};
}

std::vector<ZoneHere> ZonesAt(const ProbedZones& zones, double x, double z)
{
    std::vector<ZoneHere> covering;
    int index = 0;
    for (const ProbedZone& zone : zones) {
        const double dx = x - static_cast<double>(zone.x);
        const double dz = z - static_cast<double>(zone.z);
        const auto radius = static_cast<double>(zone.radius);
        const double square = dx * dx + dz * dz;
        if (square <= radius * radius && radius >= 0) {
            covering.push_back({index, std::sqrt(square)});
        }
        ++index;
    }
    return covering;
}
