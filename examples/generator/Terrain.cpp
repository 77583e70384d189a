#include "Terrain.h"

#include "Coastline.h"
#include "Erosion.h"
#include "Noise.h"
#include "Raster.h"

namespace generator {

namespace {

constexpr float HighestPeak = 1240.0F;

Field MakeUplift(int size)
{
    const float scale = static_cast<float>(WorldPixels) / static_cast<float>(size);
    Field uplift(size);
    ForEachCell(uplift, [&](int x, int y, int cell) {
        uplift[cell] = UpliftAt(
            {(static_cast<float>(x) + 0.5F) * scale, (static_cast<float>(y) + 0.5F) * scale});
    });
    return uplift;
}

void LayFloor(Field& height, const Mask& sea)
{
    for (int cell = 0; cell < height.Count(); ++cell) {
        height[cell] = sea[cell] ? 0.0F : std::max(height[cell], 0.0F);
    }
}

void ScaleToPeak(Field& height)
{
    float highest = 1;
    for (int cell = 0; cell < height.Count(); ++cell) {
        highest = std::max(highest, height[cell]);
    }
    for (int cell = 0; cell < height.Count(); ++cell) {
        // Flatten low land into plains. The order of heights does not change, so the valleys stay.
        const float scaled = height[cell] * HighestPeak / highest;
        height[cell] = scaled * (0.30F + 0.70F * SmoothStep(0.0F, 300.0F, scaled));
    }
}

/// Adds forms too small for the coarse steps, larger ones where the land is high.
void Roughen(Field& height, const Mask& sea)
{
    constexpr std::uint32_t seed = 300;
    ForEachCell(height, [&](int x, int y, int cell) {
        if (sea[cell]) {
            return;
        }
        const auto px = static_cast<float>(x);
        const auto py = static_cast<float>(y);
        const float wild = SmoothStep(40.0F, 500.0F, height[cell]);
        const float bumps = FractalNoise(px / 40.0F, py / 40.0F, 5, seed);
        const float crags = RidgedNoise(px / 22.0F, py / 22.0F, 3, seed + 20U) - 0.5F;
        height[cell] += (1.2F + 9.0F * wild) * bumps + 16.0F * wild * crags;
        height[cell] = std::max(height[cell], 0.4F);
    });
}

/// The coarse land in steps from 256 cells a side up to the full size.
Field RaiseLand(const Mask& sea)
{
    constexpr int coarsest = 256;
    Field height(coarsest);
    ForEachCell(height,
                [&](int x, int y, int cell) { height[cell] = 10.0F * Random01(x, y, 301); });
    const ErosionRun runs[] = {
        {140, 8.0F, 0.035F, 0.03F}, {40, 4.0F, 0.020F, 0.04F}, {14, 2.0F, 0.012F, 0.05F}};
    for (const ErosionRun& run : runs) {
        const Mask coarseSea = MakeSea(height.Size());
        LayFloor(height, coarseSea);
        Erode(height, MakeUplift(height.Size()), coarseSea, run);
        height = Enlarged(height);
    }
    LayFloor(height, sea);
    ScaleToPeak(height);
    return height;
}

/// A shelf that falls away from the shore, with banks on it.
void SinkSeaFloor(Terrain& terrain)
{
    constexpr std::uint32_t seed = 310;
    ForEachCell(terrain.height, [&](int x, int y, int cell) {
        if (!terrain.sea[cell]) {
            return;
        }
        const auto px = static_cast<float>(x);
        const auto py = static_cast<float>(y);
        const float away =
            terrain.toLand[cell] * (1.0F + 0.9F * FractalNoise(px / 210.0F, py / 210.0F, 6, seed));
        const float banks = 1.0F + 0.3F * FractalNoise(px / 90.0F, py / 90.0F, 4, seed + 20U);
        const float shelf = 34.0F * SmoothStep(-12.0F, 80.0F, away) * banks;
        terrain.height[cell] = -0.4F - 0.06F * std::clamp(away, 0.0F, 30.0F) - shelf -
                               90.0F * SmoothStep(60.0F, 420.0F, away);
    });
}

} // namespace

Terrain MakeTerrain()
{
    Terrain terrain;
    terrain.sea = MakeSea(WorldPixels);
    terrain.height = RaiseLand(terrain.sea);
    Roughen(terrain.height, terrain.sea);
    Erode(terrain.height, Field(WorldPixels), terrain.sea, {3, 0.0F, 0.006F, 0.06F});
    terrain.toSea = DistanceTo(terrain.sea);
    terrain.toLand = DistanceTo(Inverse(terrain.sea));
    SinkSeaFloor(terrain);
    return terrain;
}

float SteepnessAt(const Field& height, int x, int y)
{
    const float east = height.Near(x + 1, y) - height.Near(x - 1, y);
    const float south = height.Near(x, y + 1) - height.Near(x, y - 1);
    return Length({east, south}) / (2.0F * MetresPerPixel);
}

} // namespace generator
