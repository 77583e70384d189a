#include "PaintLight.h"

#include "Noise.h"
#include "Raster.h"

#include <array>

namespace generator {

namespace {

/// The unit vector to the sun; x to the east, y to the south.
constexpr float SunX = -0.50F;
constexpr float SunY = -0.50F;
constexpr float SunZ = 0.7071F;
/// Slopes are drawn steeper than they are, as on relief maps.
constexpr float Exaggeration = 1.5F;

/// The terrain with its tree tops.
Field MakeSurface(const World& world)
{
    constexpr std::uint32_t seed = 1100;
    constexpr float treeSpacing = 2.7F;
    Field surface = world.terrain.height;
    ForEachCell(surface, [&](int x, int y, int cell) {
        if (world.terrain.sea[cell]) {
            surface[cell] = 0;
        } else if (world.cover.forest[cell]) {
            const CellSample tree = CellNoise(static_cast<float>(x) / treeSpacing,
                                              static_cast<float>(y) / treeSpacing, seed);
            const float tall = 5.0F + 4.0F * static_cast<float>(tree.id & 0xFFU) / 256.0F;
            surface[cell] += 1.5F + tall * Clamp01(1.1F - 1.2F * tree.first);
        }
    });
    return surface;
}

/// How deep each cell lies in the shadow of the land to its north-west, in metres.
Field MakeShadow(const Field& surface)
{
    constexpr float sunSlope = 0.62F;
    const float fall = Diagonal * MetresPerPixel * sunSlope;
    Field top(surface.Size(), -1e6F);
    Field shadow(surface.Size());
    ForEachCell(surface, [&](int x, int y, int cell) {
        const float before = x > 0 && y > 0 ? top.At(x - 1, y - 1) - fall : -1e6F;
        shadow[cell] = std::max(before - surface[cell], 0.0F);
        top[cell] = std::max(before, surface[cell]);
    });
    return shadow;
}

float LightAt(const Field& surface, int x, int y)
{
    const float scale = 0.5F * Exaggeration / MetresPerPixel;
    const float east = scale * (surface.Near(x + 1, y) - surface.Near(x - 1, y));
    const float south = scale * (surface.Near(x, y + 1) - surface.Near(x, y - 1));
    const float towards = SunZ - east * SunX - south * SunY;
    return std::max(towards, 0.0F) / std::sqrt(1.0F + east * east + south * south) / SunZ;
}

constexpr Colour Sunlight = {1.04F, 1.0F, 0.92F};
constexpr Colour Skylight = {0.80F, 0.92F, 1.15F};

} // namespace

void PaintLight(Canvas& canvas, const World& world)
{
    constexpr float ambient = 0.36F;
    const Field surface = MakeSurface(world);
    const Field shadow = Blurred(MakeShadow(surface), 1);
    const Field around = Blurred(world.terrain.height, 14);
    ForEachCell(canvas, [&](int x, int y, int cell) {
        if (world.terrain.sea[cell]) {
            return;
        }
        const float lit = 1.0F - 0.6F * SmoothStep(0.0F, 14.0F, shadow[cell]);
        const float sun = (1.0F - ambient) * LightAt(surface, x, y) * lit;
        // Hollows get less light from the sky than crests.
        const float open =
            std::clamp((world.terrain.height[cell] - around[cell]) / 90.0F, -0.5F, 0.5F);
        const float sky = ambient * (1.0F + 0.6F * open);
        const Colour colour = canvas[cell];
        canvas[cell] = {colour.red * (Sunlight.red * sun + Skylight.red * sky),
                        colour.green * (Sunlight.green * sun + Skylight.green * sky),
                        colour.blue * (Sunlight.blue * sun + Skylight.blue * sky)};
    });
}

namespace {

constexpr std::array<Colour, 6> HouseRoofs = {{
    {0.62F, 0.30F, 0.22F},
    {0.70F, 0.38F, 0.26F},
    {0.55F, 0.27F, 0.21F},
    {0.48F, 0.36F, 0.30F},
    {0.45F, 0.44F, 0.45F},
    {0.72F, 0.45F, 0.30F},
}};
constexpr Colour HallRoof = {0.58F, 0.60F, 0.63F};
constexpr Colour HangarRoof = {0.48F, 0.52F, 0.45F};
constexpr Colour DomeRoof = {0.93F, 0.94F, 0.95F};

Colour RoofOf(const Building& building)
{
    switch (building.kind) {
    case Building::Hall:
        return HallRoof;
    case Building::Hangar:
        return HangarRoof;
    case Building::Dome:
        return DomeRoof;
    case Building::House:
        break;
    }
    return HouseRoofs[building.look % HouseRoofs.size()];
}

float CoverageAt(const Building& building, Point place)
{
    const Point local = building.ground.ToLocal(place);
    if (building.kind == Building::Dome) {
        return Clamp01(building.ground.halfLength + 0.5F - Length(local));
    }
    return Clamp01(building.ground.halfLength + 0.5F - std::abs(local.x)) *
           Clamp01(building.ground.halfWidth + 0.5F - std::abs(local.y));
}

/// The side of the ridge that faces the sun is bright.
float RoofLight(const Building& building, Point place)
{
    const Point away = place - building.ground.centre;
    if (building.kind == Building::Dome) {
        return 0.88F - 0.10F * (away.x + away.y);
    }
    const Point axis = building.ground.axis;
    const Point side = Point{-axis.y, axis.x} * building.ground.ToLocal(place).y;
    return side.x + side.y < 0 ? 1.15F : 0.78F;
}

} // namespace

void PaintBuildings(Canvas& canvas, const BuiltUp& builtUp)
{
    constexpr float shadowWay = 1.1F;
    for (const Building& building : builtUp.buildings) {
        const float reach = building.ground.halfLength + building.ground.halfWidth + 3.0F;
        ForEachCellAround(canvas.Size(), building.ground.centre, reach, [&](int x, int y) {
            const Point shift = {shadowWay, shadowWay};
            const float share = CoverageAt(building, CentreOf(x, y) - shift);
            canvas.At(x, y) = canvas.At(x, y) * (1.0F - 0.45F * share);
        });
        ForEachCellAround(canvas.Size(), building.ground.centre, reach, [&](int x, int y) {
            const Point place = CentreOf(x, y);
            const Colour roof = RoofOf(building) * RoofLight(building, place);
            canvas.At(x, y) = Mix(canvas.At(x, y), roof, CoverageAt(building, place));
        });
    }
}

} // namespace generator
