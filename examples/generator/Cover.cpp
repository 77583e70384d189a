#include "Cover.h"

#include "Noise.h"
#include "Parcels.h"
#include "Raster.h"

namespace generator {

namespace {

constexpr std::uint32_t Seed = 800;

float NoiseAt(int x, int y, float width, int octaves, std::uint32_t seed)
{
    return FractalNoise(static_cast<float>(x) / width, static_cast<float>(y) / width, octaves,
                        Seed + seed);
}

/// All values on which the cover of a cell depends.
struct Ground
{
    float height;
    float steepness;
    float toSea;
    float toFresh;
    float toRoad;
    float toSettlement;
    float moisture;
};

class Grower
{
public:
    Grower(const Terrain& terrain, const Water& water, const Sites& sites, const Roads& roads)
        : m_terrain(terrain)
        , m_water(water)
        , m_sites(sites)
        , m_roads(roads)
    {
    }

    Cover Grow()
    {
        m_cover.toSettlement = Field(WorldPixels);
        m_cover.moisture = Field(WorldPixels);
        ForEachCell(m_terrain.height, [this](int x, int y, int cell) {
            m_cover.toSettlement[cell] = DistanceToSettlement(m_sites, CentreOf(x, y));
            m_cover.moisture[cell] =
                Clamp01(0.5F + 0.6F * NoiseAt(x, y, 260.0F, 4, 0) +
                        0.3F * (1.0F - SmoothStep(0.0F, 70.0F, m_water.toFresh[cell])));
        });
        FenceCompounds();
        GrowPlants();
        BareGround();
        return std::move(m_cover);
    }

private:
    void FenceCompounds()
    {
        Field fenced(WorldPixels);
        for (const Compound& compound : m_sites.compounds) {
            DrawRectangle(fenced, compound.ground);
        }
        m_cover.isCompound = Mask(WorldPixels);
        for (int cell = 0; cell < fenced.Count(); ++cell) {
            m_cover.isCompound[cell] = fenced[cell] > 0.5F ? 1 : 0;
        }
        m_toCompound = DistanceTo(m_cover.isCompound);
    }

    Ground GroundAt(int x, int y, int cell) const
    {
        return {m_terrain.height[cell], SteepnessAt(m_terrain.height, x, y),
                m_terrain.toSea[cell],  m_water.toFresh[cell],
                m_roads.toRoad[cell],   m_cover.toSettlement[cell],
                m_cover.moisture[cell]};
    }

    /// Chooses whole parcels around the settlements where the ground is flat and low.
    static bool IsFarmland(const Ground& ground, int x, int y)
    {
        if (ground.toSettlement > 170.0F || ground.toSettlement < 0.0F || ground.height > 330.0F) {
            return false;
        }
        const Parcel parcel = ParcelAt(CentreOf(x, y));
        const float chance = static_cast<float>(parcel.id & 0xFFFFU) / 65536.0F;
        const float reach = 40.0F + 85.0F * NoiseAt(x, y, 120.0F, 3, 10) + 34.0F * chance;
        return ground.toSettlement < reach && ground.steepness < 0.13F && ground.toFresh > 3.0F &&
               ground.toSea > 7.0F && ground.toRoad > 1.2F && ground.height < 300.0F;
    }

    static bool IsSwamp(const Ground& ground, int x, int y)
    {
        const float wet = 1.1F * NoiseAt(x, y, 110.0F, 5, 20) + 0.5F * (ground.moisture - 0.5F) -
                          SmoothStep(25.0F, 110.0F, ground.height) -
                          SmoothStep(0.03F, 0.12F, ground.steepness) -
                          0.6F * SmoothStep(10.0F, 90.0F, ground.toFresh);
        return wet > -0.02F && ground.toSettlement > 18.0F && ground.toRoad > 3.0F &&
               ground.toSea > 4.0F;
    }

    static bool IsForest(const Ground& ground, int x, int y)
    {
        const float treeLine = 560.0F + 130.0F * NoiseAt(x, y, 60.0F, 4, 30);
        const float density =
            1.05F * NoiseAt(x, y, 150.0F, 6, 40) + 0.45F * NoiseAt(x, y, 42.0F, 4, 45) +
            0.9F * (ground.moisture - 0.5F) + 0.35F * SmoothStep(0.06F, 0.25F, ground.steepness) -
            0.8F * SmoothStep(0.70F, 1.0F, ground.steepness) -
            2.0F * SmoothStep(-60.0F, 60.0F, ground.height - treeLine) -
            0.6F * (1.0F - SmoothStep(4.0F, 16.0F, ground.toSea)) -
            0.7F * (1.0F - SmoothStep(4.0F, 34.0F, ground.toSettlement));
        return density > 0.03F && ground.toRoad > 1.6F && ground.toFresh > 1.5F;
    }

    void GrowPlants()
    {
        m_cover.farmland = Mask(WorldPixels);
        m_cover.swamp = Mask(WorldPixels);
        m_cover.forest = Mask(WorldPixels);
        ForEachCell(m_terrain.height, [this](int x, int y, int cell) {
            if (m_terrain.sea[cell] || m_water.lake[cell] || m_toCompound[cell] < 3.0F) {
                return;
            }
            const Ground ground = GroundAt(x, y, cell);
            m_cover.farmland[cell] = IsFarmland(ground, x, y);
            m_cover.swamp[cell] = IsSwamp(ground, x, y);
            m_cover.forest[cell] = m_toCompound[cell] > 6.0F && IsForest(ground, x, y);
        });
        DropSmallPatches(m_cover.farmland, 60);
        DropSmallPatches(m_cover.swamp, 160);
        for (int cell = 0; cell < m_cover.forest.Count(); ++cell) {
            m_cover.swamp[cell] = m_cover.swamp[cell] && !m_cover.farmland[cell];
            m_cover.forest[cell] =
                m_cover.forest[cell] && !m_cover.farmland[cell] && !m_cover.swamp[cell];
        }
        DropSmallPatches(m_cover.forest, 40);
        m_cover.toForest = DistanceTo(m_cover.forest);
        m_cover.toOpen = DistanceTo(Inverse(m_cover.forest));
    }

    void BareGround()
    {
        m_cover.sand = Field(WorldPixels);
        m_cover.rock = Field(WorldPixels);
        m_cover.snow = Field(WorldPixels);
        ForEachCell(m_terrain.height, [this](int x, int y, int cell) {
            if (m_terrain.sea[cell]) {
                return;
            }
            const Ground ground = GroundAt(x, y, cell);
            const float beach = 3.4F + 3.6F * NoiseAt(x, y, 70.0F, 3, 50);
            m_cover.sand[cell] = (1.0F - SmoothStep(beach * 0.6F, beach + 0.8F, ground.toSea)) *
                                 (1.0F - SmoothStep(0.18F, 0.40F, ground.steepness));
            const float crags = 0.14F * NoiseAt(x, y, 18.0F, 4, 60);
            m_cover.rock[cell] =
                std::max(SmoothStep(0.92F, 1.38F, ground.steepness + 2.0F * crags),
                         SmoothStep(720.0F, 940.0F, ground.height + 1100.0F * crags) * 0.9F);
            const float chill = ground.height + 110.0F * NoiseAt(x, y, 55.0F, 5, 70) -
                                120.0F * SmoothStep(0.8F, 1.3F, ground.steepness);
            m_cover.snow[cell] = SmoothStep(760.0F, 850.0F, chill);
        });
    }

    const Terrain& m_terrain;
    const Water& m_water;
    const Sites& m_sites;
    const Roads& m_roads;
    Field m_toCompound;
    Cover m_cover;
};

} // namespace

Cover GrowCover(const Terrain& terrain, const Water& water, const Sites& sites, const Roads& roads)
{
    return Grower(terrain, water, sites, roads).Grow();
}

} // namespace generator
