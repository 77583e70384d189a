#include "tests/support/ZoneRecords.h"

#include "app/ProjectSettings.h"
#include "tests/support/Random.h"

WorldScale SetZoneWorld()
{
    ProjectSettings::Instance().SetSizes(2048, 2048, 15360, 15360);
    return WorldScale(ProjectSettings::Instance());
}

ZoneRecord ZoneAt(float x, float z, float radius, const WorldScale& scale, const QString& name)
{
    ZoneRecord zone;
    zone.values.SetName(name);
    zone.values.radius = radius;
    zone.values.depth = ZoneValues::MinDepth;
    zone.place = InScene(x, z, scale);
    zone.radius = scale.pixelsPerMetreX * radius;
    return zone;
}

namespace {

ZoneRecord AnyZone(Random& random, const WorldScale& scale)
{
    const QStringList names = {QStringLiteral("Rest"),
                               QStringLiteral("Graze"),
                               QStringLiteral("Water"),
                               QStringLiteral("HuntingGround"),
                               QStringLiteral("Wolf, \"grey\"\n2"),
                               QStringLiteral("grazing"),
                               QString()};
    const auto metres = [&random](int first, int last) {
        return static_cast<float>(random.Between(first, last)) / 8;
    };
    ZoneRecord zone = ZoneAt(metres(-8000, 130000), metres(-8000, 130000), metres(-80, 8000), scale,
                             names.at(random.Below(names.size())));
    zone.values.counts = {random.Between(-5, 30), random.Between(-5, 30), random.Between(0, 2000),
                          random.Between(0, 2000)};
    zone.values.depth = random.Between(2, 255);
    return zone;
}

} // namespace

std::vector<TypeRecord> AnyZones(Random& random, const WorldScale& scale, int zoneCount)
{
    std::vector<TypeRecord> types;
    for (const char* type : {"Deer", "Great Lake", "Wolf, \"grey\"", "a:b"}) {
        types.push_back({QString::fromLatin1(type), {}});
        for (const char* territory : {"North", "Water\tside", "Empty", "Type>5"}) {
            types.back().territories.push_back({QString::fromLatin1(territory), 1, true, {}});
        }
    }
    for (int i = 0; i < zoneCount; ++i) {
        auto& territories = types.at(static_cast<std::size_t>(random.Below(4))).territories;
        const auto index = static_cast<std::size_t>(random.Below(4));
        if (index != 2) {
            territories.at(index).zones.push_back(AnyZone(random, scale));
        }
    }
    return types;
}
