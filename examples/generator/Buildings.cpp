#include "Buildings.h"

#include "Noise.h"

namespace generator {

namespace {

constexpr std::uint32_t Seed = 900;

bool IsFree(const World& world, Point place, float margin)
{
    return world.terrain.toSea.Near(place) > margin && world.water.toFresh.Near(place) > margin &&
           world.roads.toRoad.Near(place) > 1.4F;
}

/// Aligns a building with the nearest road.
Point RoadAxis(const Field& toRoad, Point place)
{
    const float east = toRoad.Near(place + Point{1, 0}) - toRoad.Near(place - Point{1, 0});
    const float south = toRoad.Near(place + Point{0, 1}) - toRoad.Near(place - Point{0, 1});
    const float length = Length({east, south});
    return length > 1e-3F ? Point{-south / length, east / length} : Point{1.0F, 0.0F};
}

void AddVillage(BuiltUp& builtUp, const World& world, const Settlement& village)
{
    constexpr int spacing = 3;
    const Field& toRoad = world.roads.toRoad;
    ForEachCellAround(WorldPixels, village.centre, village.radius + 8.0F, [&](int x, int y) {
        if (x % spacing || y % spacing || world.cover.toSettlement.At(x, y) > 0.0F) {
            return;
        }
        const float away = toRoad.At(x, y);
        const float chance = Random01(x, y, Seed);
        const float wanted = away < 6.0F ? 0.75F : 0.28F;
        const Point place =
            CentreOf(x, y) +
            Point{Random01(x, y, Seed + 1U) - 0.5F, Random01(x, y, Seed + 2U) - 0.5F} * 1.6F;
        if (chance > wanted || !IsFree(world, place, 3.0F)) {
            return;
        }
        const float length = 0.9F + 0.7F * Random01(x, y, Seed + 3U);
        builtUp.buildings.push_back({Building::House,
                                     {place, RoadAxis(toRoad, place), length, 0.75F},
                                     Hash(x, y, Seed + 4U)});
    });
}

/// Blocks of houses between straight streets.
void AddTown(BuiltUp& builtUp, const World& world, const Settlement& town)
{
    constexpr int lot = 3;
    constexpr int blockLength = 7;
    constexpr int blockWidth = 3;
    const int seedX = static_cast<int>(town.centre.x);
    const Rectangle plan = {town.centre, DirectionOf(Random01(seedX, 0, Seed + 10U)), 1, 1};
    const int reach = static_cast<int>(town.radius + 12.0F) / lot;
    for (int row = -reach; row <= reach; ++row) {
        for (int column = -reach; column <= reach; ++column) {
            const Point place =
                plan.ToWorld({static_cast<float>(column * lot), static_cast<float>(row * lot)});
            const float inside = -world.cover.toSettlement.Near(place);
            if (inside < 0.0F || !IsFree(world, place, 2.5F)) {
                continue;
            }
            if (column % blockLength == 0 || row % blockWidth == 0) {
                const bool isAlong = row % blockWidth == 0;
                const Point axis = isAlong ? plan.axis : Point{-plan.axis.y, plan.axis.x};
                DrawRectangle(builtUp.street, {place, axis, 0.5F * lot, 0.42F});
            } else if (Random01(row, column, Seed + 11U) < 0.55F + 0.02F * inside) {
                const bool isHall = Random01(row, column, Seed + 12U) < 0.06F;
                const float length = isHall ? 2.1F : 1.0F + 0.4F * Random01(row, column, Seed);
                builtUp.buildings.push_back(
                    {isHall ? Building::Hall : Building::House,
                     {place, plan.axis, length, isHall ? 1.4F : 0.85F},
                     Hash(row, column, Seed + 13U + static_cast<std::uint32_t>(seedX))});
            }
        }
    }
}

void AddAirfield(BuiltUp& builtUp, const Rectangle& ground)
{
    const float runway = -0.35F * ground.halfWidth;
    const float taxiway = 0.25F * ground.halfWidth;
    const auto strip = [&](Field& field, Point from, Point to, float width) {
        DrawLine(field, {ground.ToWorld(from), ground.ToWorld(to)}, width);
    };
    const float end = 0.92F * ground.halfLength;
    strip(builtUp.runway, {-end, runway}, {end, runway}, 5.2F);
    strip(builtUp.runway, {-end, taxiway}, {end, taxiway}, 2.0F);
    for (const float at : {-0.92F, -0.3F, 0.3F, 0.92F}) {
        strip(builtUp.runway, {at * ground.halfLength, runway}, {at * ground.halfLength, taxiway},
              2.0F);
    }
    const int dashes = static_cast<int>((2.0F * end - 7.0F) / 6.0F) + 1;
    for (int dash = 0; dash < dashes; ++dash) {
        const float at = -end + 3.0F + 6.0F * static_cast<float>(dash);
        strip(builtUp.marking, {at, runway}, {at + 3.0F, runway}, 0.7F);
    }
    for (int i = 0; i < 6; ++i) {
        const float at = (-0.55F + 0.18F * static_cast<float>(i)) * ground.halfLength;
        builtUp.buildings.push_back(
            {Building::Hangar,
             {ground.ToWorld({at, 0.68F * ground.halfWidth}), ground.axis, 3.4F, 2.6F},
             Hash(i, 0, Seed + 20U)});
    }
    const Point tower = ground.ToWorld({0.62F * ground.halfLength, 0.6F * ground.halfWidth});
    builtUp.buildings.push_back({Building::Hall, {tower, ground.axis, 1.6F, 1.4F}, 3});
}

void AddBarracks(BuiltUp& builtUp, const Rectangle& ground)
{
    constexpr int rows = 4;
    constexpr int columns = 5;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const int key = row * columns + column + static_cast<int>(ground.centre.x);
            const bool isYard = row == 2 && column >= 2;
            if (isYard || Random01(key, 0, Seed + 30U) < 0.12F) {
                continue;
            }
            const Point place =
                ground.ToWorld({(-0.68F + 0.34F * static_cast<float>(column)) * ground.halfLength,
                                (-0.62F + 0.42F * static_cast<float>(row)) * ground.halfWidth});
            builtUp.buildings.push_back(
                {Building::Hangar, {place, ground.axis, 2.3F, 1.1F}, Hash(key, 1, Seed + 30U)});
        }
    }
    DrawLine(builtUp.street,
             {ground.ToWorld({-0.85F * ground.halfLength, 0.01F * ground.halfWidth}),
              ground.ToWorld({0.85F * ground.halfLength, 0.01F * ground.halfWidth})},
             1.2F);
}

void AddRadar(BuiltUp& builtUp, const Rectangle& ground)
{
    for (const float at : {-0.45F, 0.35F}) {
        builtUp.buildings.push_back(
            {Building::Dome,
             {ground.ToWorld({at * ground.halfLength, -0.2F * ground.halfWidth}), ground.axis, 2.2F,
              2.2F},
             0});
    }
    builtUp.buildings.push_back(
        {Building::Hangar,
         {ground.ToWorld({0.0F, 0.6F * ground.halfWidth}), ground.axis, 2.4F, 1.0F},
         1});
}

} // namespace

BuiltUp BuildUp(const World& world)
{
    BuiltUp builtUp = {{}, Field(WorldPixels), Field(WorldPixels), Field(WorldPixels)};
    for (const Settlement& settlement : world.sites.settlements) {
        if (settlement.isTown) {
            AddTown(builtUp, world, settlement);
        } else {
            AddVillage(builtUp, world, settlement);
        }
    }
    for (const Compound& compound : world.sites.compounds) {
        switch (compound.kind) {
        case Compound::Airfield:
            AddAirfield(builtUp, compound.ground);
            break;
        case Compound::Barracks:
            AddBarracks(builtUp, compound.ground);
            break;
        case Compound::Radar:
            AddRadar(builtUp, compound.ground);
            break;
        }
    }
    return builtUp;
}

} // namespace generator
