#include "PaintGround.h"

#include "Noise.h"
#include "Parcels.h"

#include <array>

namespace generator {

namespace {

constexpr std::uint32_t Seed = 1000;

constexpr Colour MoistGrass = {0.43F, 0.54F, 0.27F};
constexpr Colour DryGrass = {0.62F, 0.61F, 0.36F};
constexpr Colour Heath = {0.55F, 0.50F, 0.35F};
constexpr Colour Moor = {0.47F, 0.45F, 0.33F};
constexpr Colour Rock = {0.56F, 0.54F, 0.51F};
constexpr Colour DarkRock = {0.43F, 0.40F, 0.38F};
constexpr Colour Snow = {0.95F, 0.97F, 1.0F};
constexpr Colour Sand = {0.86F, 0.80F, 0.62F};
constexpr Colour Conifer = {0.18F, 0.30F, 0.18F};
constexpr Colour Broadleaf = {0.28F, 0.41F, 0.19F};
constexpr Colour Reed = {0.41F, 0.43F, 0.27F};
constexpr Colour Pool = {0.22F, 0.31F, 0.30F};
constexpr Colour Gravel = {0.66F, 0.63F, 0.56F};
constexpr Colour Garden = {0.53F, 0.56F, 0.36F};
constexpr Colour Pavement = {0.63F, 0.61F, 0.56F};
constexpr Colour Asphalt = {0.80F, 0.77F, 0.70F};
constexpr Colour Earth = {0.69F, 0.60F, 0.45F};
constexpr Colour Tarmac = {0.36F, 0.36F, 0.38F};
constexpr Colour White = {0.95F, 0.95F, 0.93F};
constexpr Colour Hedge = {0.32F, 0.40F, 0.21F};

constexpr std::array<Colour, 8> Crops = {{
    {0.74F, 0.67F, 0.42F}, // ripe wheat
    {0.67F, 0.63F, 0.40F}, // stubble
    {0.50F, 0.58F, 0.30F}, // pasture
    {0.43F, 0.54F, 0.28F}, // young corn
    {0.58F, 0.61F, 0.33F}, // hay
    {0.57F, 0.49F, 0.35F}, // ploughed
    {0.51F, 0.43F, 0.31F}, // ploughed and wet
    {0.70F, 0.66F, 0.36F}, // rape
}};

float NoiseAt(int x, int y, float width, int octaves, std::uint32_t seed)
{
    return FractalNoise(static_cast<float>(x) / width, static_cast<float>(y) / width, octaves,
                        Seed + seed);
}

Colour Meadow(const World& world, int x, int y, int cell)
{
    const float height = world.terrain.height[cell];
    const float speckle = 0.10F * NoiseAt(x, y, 9.0F, 3, 0);
    const float dry = Clamp01(0.75F - world.cover.moisture[cell] + NoiseAt(x, y, 60.0F, 4, 10));
    Colour colour = Mix(MoistGrass, DryGrass, dry);
    const float bare = height + 90.0F * NoiseAt(x, y, 45.0F, 4, 20);
    colour = Mix(colour, Heath, SmoothStep(260.0F, 480.0F, bare));
    colour = Mix(colour, Moor, SmoothStep(480.0F, 700.0F, bare));
    return colour * (1.0F + speckle);
}

Colour FieldColour(int x, int y)
{
    const Parcel parcel = ParcelAt(CentreOf(x, y));
    const float shade = 0.92F + 0.16F * static_cast<float>((parcel.id >> 8U) & 0xFFU) / 256.0F;
    const Colour crop = Crops[parcel.id % Crops.size()];
    // Faint furrows every few pixels, as seen from high above.
    const float wave = parcel.furrow * 0.8F;
    const float furrow = 0.97F + 0.06F * std::abs(2.0F * (wave - std::floor(wave)) - 1.0F);
    const float grain = 1.0F + 0.05F * NoiseAt(x, y, 5.0F, 2, 30);
    const Colour colour = crop * (shade * furrow * grain);
    return Mix(Hedge, colour, SmoothStep(0.25F, 1.0F, parcel.toEdge));
}

Colour Trees(const World& world, int x, int y, int cell)
{
    const float mixture = 0.5F + 1.1F * NoiseAt(x, y, 75.0F, 4, 40) -
                          SmoothStep(180.0F, 460.0F, world.terrain.height[cell]) +
                          0.3F * world.cover.moisture[cell];
    const float tree = 0.85F + 0.3F * Random01(x / 2, y / 2, Seed + 41U);
    return Mix(Conifer, Broadleaf, Clamp01(mixture)) * tree;
}

Colour Bog(int x, int y)
{
    const float wet = NoiseAt(x, y, 13.0F, 4, 50);
    return Mix(Reed * (1.0F + 0.15F * NoiseAt(x, y, 4.0F, 2, 60)), Pool,
               SmoothStep(0.08F, 0.22F, wet));
}

Colour Bare(const World& world, Colour colour, int x, int y, int cell)
{
    const Cover& cover = world.cover;
    const float bands = 0.5F + 0.9F * NoiseAt(x, y, 14.0F, 4, 70);
    const Colour stone = Mix(DarkRock, Rock, Clamp01(bands));
    colour = Mix(colour, stone, cover.rock[cell]);
    colour = Mix(colour, Snow, cover.snow[cell]);
    const float ripple = 1.0F + 0.05F * NoiseAt(x, y, 6.0F, 2, 80);
    return Mix(colour, Sand * ripple, cover.sand[cell]);
}

Colour Natural(const World& world, int x, int y, int cell)
{
    const Cover& cover = world.cover;
    if (cover.farmland[cell]) {
        return FieldColour(x, y);
    }
    if (cover.swamp[cell]) {
        return Bog(x, y);
    }
    const Colour open = Bare(world, Meadow(world, x, y, cell), x, y, cell);
    if (cover.forest[cell]) {
        const float edge = SmoothStep(0.0F, 2.0F, cover.toOpen[cell]);
        return Mix(open, Trees(world, x, y, cell), 0.6F + 0.4F * edge);
    }
    // Single trees around the woods.
    const float scatter = 0.10F * (1.0F - SmoothStep(1.0F, 14.0F, cover.toForest[cell]));
    return Random01(x, y, Seed + 90U) <
                   scatter * (1.0F - cover.sand[cell]) * (1.0F - cover.rock[cell])
               ? Mix(open, Trees(world, x, y, cell), 0.6F)
               : open;
}

} // namespace

void PaintGround(Canvas& canvas, const World& world, const BuiltUp& builtUp)
{
    ForEachCell(canvas, [&](int x, int y, int cell) {
        if (world.terrain.sea[cell]) {
            canvas[cell] = Sand;
            return;
        }
        Colour colour = Natural(world, x, y, cell);
        const float built = 1.0F - SmoothStep(-4.0F, 1.0F, world.cover.toSettlement[cell]);
        const float yards = 0.5F + 0.8F * NoiseAt(x, y, 5.0F, 2, 95);
        colour = Mix(colour, Mix(Garden, Gravel, Clamp01(yards)), 0.75F * built);
        if (world.cover.isCompound[cell]) {
            const float worn = 0.45F + 0.5F * NoiseAt(x, y, 16.0F, 4, 98);
            colour = Mix(Gravel, colour, Clamp01(worn));
        }
        colour = Mix(colour, Pavement, 0.8F * builtUp.street[cell]);
        colour = Mix(colour, Earth, 0.75F * world.roads.track[cell]);
        colour = Mix(colour, Asphalt, 0.85F * world.roads.paved[cell]);
        colour = Mix(colour, Tarmac, 0.95F * builtUp.runway[cell]);
        canvas[cell] = Mix(colour, White, 0.9F * builtUp.marking[cell]);
    });
}

} // namespace generator
