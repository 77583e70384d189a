#include "PaintWater.h"

#include "Noise.h"
#include "Raster.h"

namespace generator {

namespace {

constexpr std::uint32_t Seed = 1200;

constexpr Colour Surf = {0.90F, 0.95F, 0.94F};
constexpr Colour Shallow = {0.53F, 0.75F, 0.71F};
constexpr Colour Shelf = {0.27F, 0.54F, 0.62F};
constexpr Colour Open = {0.14F, 0.36F, 0.50F};
constexpr Colour Deep = {0.08F, 0.24F, 0.39F};
constexpr Colour LakeShore = {0.36F, 0.56F, 0.58F};
constexpr Colour LakeDeep = {0.13F, 0.31F, 0.42F};
constexpr Colour RiverWater = {0.24F, 0.44F, 0.52F};

float NoiseAt(int x, int y, float width, int octaves, std::uint32_t seed)
{
    return FractalNoise(static_cast<float>(x) / width, static_cast<float>(y) / width, octaves,
                        Seed + seed);
}

Colour SeaColour(const World& world, int x, int y, int cell)
{
    const float depth = -world.terrain.height[cell] * (1.0F + 0.10F * NoiseAt(x, y, 34.0F, 4, 0));
    Colour colour = Mix(Shallow, Shelf, SmoothStep(0.5F, 9.0F, depth));
    colour = Mix(colour, Open, SmoothStep(8.0F, 42.0F, depth));
    colour = Mix(colour, Deep, SmoothStep(40.0F, 115.0F, depth));
    // Swell, longer along the wind than across it.
    const float swell = FractalNoise(static_cast<float>(x + y) / 7.0F,
                                     static_cast<float>(x - y) / 22.0F, 2, Seed + 10U);
    colour = colour * (1.0F + 0.022F * swell);
    const float breakers = 1.6F + 1.3F * NoiseAt(x, y, 24.0F, 3, 20);
    const float surf =
        1.0F - SmoothStep(0.6F, std::max(breakers, 0.9F), world.terrain.toLand[cell]);
    return Mix(colour, Surf, 0.65F * surf);
}

} // namespace

void PaintWater(Canvas& canvas, const World& world)
{
    const Field toShore = DistanceTo(Inverse(world.water.lake));
    ForEachCell(canvas, [&](int x, int y, int cell) {
        if (world.terrain.sea[cell]) {
            canvas[cell] = SeaColour(world, x, y, cell);
            return;
        }
        canvas[cell] = Mix(canvas[cell], RiverWater, 0.92F * world.water.river[cell]);
        if (world.water.lake[cell]) {
            const Colour lake = Mix(LakeShore, LakeDeep, SmoothStep(0.5F, 9.0F, toShore[cell]));
            canvas[cell] = lake * (1.0F + 0.03F * NoiseAt(x, y, 12.0F, 3, 30));
        }
    });
}

} // namespace generator
