#include "LayerMasks.h"

#include "Noise.h"
#include "Raster.h"

namespace generator {

namespace {

constexpr std::uint32_t Seed = 1300;

float NoiseAt(int x, int y, float width, int octaves, std::uint32_t seed)
{
    return FractalNoise(static_cast<float>(x) / width, static_cast<float>(y) / width, octaves,
                        Seed + seed);
}

/// Rounds edges to about radius pixels, and removes small patches and holes.
Mask Rounded(const Mask& mask, int radius, int minCells)
{
    Field share(mask.Size());
    for (int cell = 0; cell < mask.Count(); ++cell) {
        share[cell] = mask[cell] ? 1.0F : 0.0F;
    }
    share = Blurred(share, radius);
    Mask rounded(mask.Size());
    for (int cell = 0; cell < mask.Count(); ++cell) {
        rounded[cell] = share[cell] > 0.5F ? 1 : 0;
    }
    DropSmallPatches(rounded, minCells);
    return rounded;
}

Mask Grown(const Mask& mask, float radius)
{
    const Field distance = DistanceTo(mask);
    Mask grown(mask.Size());
    for (int cell = 0; cell < mask.Count(); ++cell) {
        grown[cell] = distance[cell] <= radius ? 1 : 0;
    }
    return grown;
}

} // namespace

LayerMasks::LayerMasks(const World& world)
    : m_world(world)
{
}

template <typename Chooser>
Mask LayerMasks::Where(Chooser chooses) const
{
    Mask mask(WorldPixels);
    ForEachCell(mask, [&](int x, int y, int cell) { mask[cell] = chooses(x, y, cell) ? 1 : 0; });
    return mask;
}

Mask LayerMasks::Coast() const
{
    return Where([this](int x, int y, int cell) {
        const float width = 1.0F + 0.9F * NoiseAt(x, y, 80.0F, 4, 0);
        return m_world.terrain.sea[cell] ? m_world.terrain.toLand[cell] < 7.0F
                                         : m_world.terrain.toSea[cell] < 17.0F * width;
    });
}

Mask LayerMasks::Harbours() const
{
    const Mask nearTowns = Where([this](int x, int y, int cell) {
        const bool isTown =
            std::any_of(m_world.sites.settlements.begin(), m_world.sites.settlements.end(),
                        [&](const Settlement& settlement) {
                            return settlement.isTown && Length(settlement.centre - CentreOf(x, y)) <
                                                            settlement.radius + 34.0F;
                        });
        return isTown && m_world.terrain.toLand[cell] < 26.0F && m_world.terrain.toSea[cell] < 9.0F;
    });
    return Rounded(nearTowns, 2, 200);
}

Mask LayerMasks::FishingGrounds() const
{
    const Mask banks = Where([this](int x, int y, int cell) {
        const float away = m_world.terrain.toLand[cell];
        const float offshore =
            SmoothStep(24.0F, 70.0F, away) * (1.0F - SmoothStep(110.0F, 210.0F, away));
        return offshore > 0.1F && NoiseAt(x, y, 210.0F, 6, 10) > 0.70F - 0.60F * offshore;
    });
    return Rounded(banks, 3, 3500);
}

Mask LayerMasks::FreshWater() const
{
    return Where([this](int /*x*/, int /*y*/, int cell) {
        return !m_world.terrain.sea[cell] && m_world.water.toFresh[cell] < 2.5F;
    });
}

Mask LayerMasks::Swamps() const
{
    return Rounded(Grown(m_world.cover.swamp, 3.0F), 3, 500);
}

Mask LayerMasks::Forest() const
{
    return Rounded(m_world.cover.forest, 2, 250);
}

Mask LayerMasks::DeepForest() const
{
    const Mask deep = Where([this](int x, int y, int cell) {
        const float ragged = 14.0F * NoiseAt(x, y, 70.0F, 4, 20);
        return m_world.cover.toOpen[cell] > 3.0F &&
               m_world.cover.toSettlement[cell] > 120.0F + ragged &&
               m_world.roads.toRoad[cell] > 44.0F + ragged;
    });
    return Rounded(deep, 4, 1500);
}

Mask LayerMasks::Meadows() const
{
    const Cover& cover = m_world.cover;
    const Mask open = Where([&](int x, int y, int cell) {
        return !m_world.terrain.sea[cell] && m_world.terrain.toSea[cell] > 8.0F &&
               !m_world.water.lake[cell] && !cover.forest[cell] && !cover.farmland[cell] &&
               !cover.swamp[cell] && !cover.isCompound[cell] && cover.toSettlement[cell] > 4.0F &&
               m_world.terrain.height[cell] < 420.0F &&
               SteepnessAt(m_world.terrain.height, x, y) < 0.45F;
    });
    return Rounded(open, 3, 400);
}

Mask LayerMasks::Farmland() const
{
    return Rounded(m_world.cover.farmland, 2, 250);
}

Mask LayerMasks::Settlements(bool isTown) const
{
    Mask mask(WorldPixels);
    for (const Settlement& settlement : m_world.sites.settlements) {
        if (settlement.isTown != isTown) {
            continue;
        }
        ForEachCellAround(
            WorldPixels, settlement.centre, settlement.radius + 14.0F, [&](int x, int y) {
                mask.At(x, y) = mask.At(x, y) ||
                                (m_world.cover.toSettlement.At(x, y) < 2.5F &&
                                 !m_world.terrain.sea.At(x, y) && !m_world.water.lake.At(x, y));
            });
    }
    return Rounded(mask, 1, 60);
}

Mask LayerMasks::Villages() const
{
    return Settlements(false);
}

Mask LayerMasks::Towns() const
{
    return Settlements(true);
}

Mask LayerMasks::Roads() const
{
    return Where([this](int /*x*/, int /*y*/, int cell) {
        return m_world.roads.toRoad[cell] < 2.2F && !m_world.cover.isCompound[cell];
    });
}

Mask LayerMasks::NorthHills() const
{
    const Mask hills = Where([this](int x, int y, int cell) {
        const float south = static_cast<float>(y) + 120.0F * NoiseAt(x, y, 260.0F, 3, 30);
        return m_world.terrain.height[cell] > 270.0F + 80.0F * NoiseAt(x, y, 60.0F, 3, 40) &&
               south < 1060.0F;
    });
    return Rounded(hills, 5, 2500);
}

Mask LayerMasks::SnowPeaks() const
{
    return Rounded(
        Where([this](int /*x*/, int /*y*/, int cell) { return m_world.cover.snow[cell] > 0.5F; }),
        3, 250);
}

Mask LayerMasks::Compounds(bool isAirfield) const
{
    constexpr float fenceWay = 6.0F;
    Field ground(WorldPixels);
    for (const Compound& compound : m_world.sites.compounds) {
        if ((compound.kind == Compound::Airfield) == isAirfield) {
            DrawRectangle(ground, compound.ground);
        }
    }
    return Grown(Where([&](int /*x*/, int /*y*/, int cell) { return ground[cell] > 0.5F; }),
                 fenceWay);
}

Mask LayerMasks::MilitaryZones() const
{
    return Compounds(false);
}

Mask LayerMasks::Airfields() const
{
    return Compounds(true);
}

Mask LayerMasks::Isles() const
{
    const Mask& sea = m_world.terrain.sea;
    const Patches patches = FindPatches(sea);
    return Where([&](int /*x*/, int /*y*/, int cell) {
        constexpr int largestIsle = 60000;
        const auto number = static_cast<std::size_t>(patches.number[cell]);
        return !sea[cell] && patches.cellCounts[number] < largestIsle;
    });
}

} // namespace generator
