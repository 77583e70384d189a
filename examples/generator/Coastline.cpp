#include "Coastline.h"

#include "Noise.h"
#include "Raster.h"

#include <array>

namespace generator {

namespace {

/// Places of the outline are in half worlds from the centre, x to the east and y to the south.
struct Lobe
{
    Point centre;
    Point radii;
    /// Negative for a bay.
    float strength = 1;
};
constexpr std::array<Lobe, 11> Lobes = {{
    {{-0.08F, -0.16F}, {0.72F, 0.56F}, 1.0F},   // the main body
    {{0.42F, 0.22F}, {0.42F, 0.40F}, 1.0F},     // the eastern plain
    {{-0.46F, 0.30F}, {0.34F, 0.40F}, 0.95F},   // the western cape
    {{0.10F, 0.66F}, {0.17F, 0.20F}, 0.9F},     // the southern foot
    {{-0.02F, 0.52F}, {0.26F, 0.26F}, -0.75F},  // the great bay
    {{0.78F, -0.16F}, {0.20F, 0.16F}, -0.6F},   // the eastern bay
    {{-0.84F, -0.02F}, {0.22F, 0.13F}, -0.55F}, // the western inlet
    {{0.72F, -0.66F}, {0.15F, 0.11F}, 0.9F},    // an isle in the north-east
    {{-0.74F, 0.78F}, {0.11F, 0.09F}, 0.9F},    // an isle in the south-west
    {{0.56F, 0.82F}, {0.09F, 0.06F}, 0.9F},     // islets in the south-east
    {{0.72F, 0.74F}, {0.06F, 0.08F}, 0.9F},
}};

Point FromCentre(Point place)
{
    // The outline extends beyond 1. Scale it, so that there is open sea all around the island.
    constexpr float half = 1.09F;
    constexpr float scale = 2.0F * half / WorldPixels;
    return {place.x * scale - half, place.y * scale - half};
}

Point Warped(Point at, float frequency, float width, std::uint32_t seed)
{
    return at + Point{FractalNoise(at.x * frequency, at.y * frequency, 4, seed),
                      FractalNoise(at.x * frequency, at.y * frequency, 4, seed + 50U)} *
                    width;
}

/// Above 0 on land.
float Landness(Point place)
{
    constexpr std::uint32_t seed = 100;
    const Point plain = FromCentre(place);
    const Point at = Warped(plain, 2.6F, 0.20F, seed);
    float land = -0.12F;
    float bays = 0;
    for (const Lobe& lobe : Lobes) {
        const Point away = at - lobe.centre;
        const float distance = (Length({away.x / lobe.radii.x, away.y / lobe.radii.y}) - 1.0F) *
                               std::min(lobe.radii.x, lobe.radii.y);
        const float share = Clamp01(0.5F - 2.2F * distance);
        if (lobe.strength > 0) {
            // A soft maximum merges lobes where they meet.
            land = std::max(land, share * lobe.strength) + 0.25F * std::min(Clamp01(land), share);
        } else {
            bays += share * lobe.strength;
        }
    }
    const float rim = std::max(std::abs(plain.x), std::abs(plain.y));
    return land + bays - 0.42F + 0.50F * FractalNoise(at.x * 4.5F, at.y * 4.5F, 7, seed + 20U) -
           2.0F * SmoothStep(0.84F, 1.04F, rim);
}

/// A range of mountains along a broken line.
struct Range
{
    Point from;
    Point to;
    float width = 0;
    float height = 0;
};
constexpr std::array<Range, 8> Ranges = {{
    {{-0.56F, -0.30F}, {-0.30F, -0.44F}, 0.17F, 0.80F},
    {{-0.30F, -0.44F}, {0.04F, -0.36F}, 0.20F, 1.00F},
    {{0.04F, -0.36F}, {0.34F, -0.46F}, 0.17F, 0.85F},
    {{0.04F, -0.36F}, {0.16F, -0.06F}, 0.13F, 0.60F},
    {{-0.30F, -0.44F}, {-0.34F, -0.10F}, 0.11F, 0.45F},
    {{-0.56F, 0.34F}, {-0.40F, 0.52F}, 0.10F, 0.30F},
    {{0.52F, 0.36F}, {0.66F, 0.16F}, 0.09F, 0.26F},
    {{0.72F, -0.66F}, {0.76F, -0.66F}, 0.07F, 0.22F},
}};

float DistanceToLine(Point at, Point from, Point to)
{
    const Point way = to - from;
    const Point there = at - from;
    const float t = Clamp01((there.x * way.x + there.y * way.y) / (way.x * way.x + way.y * way.y));
    return Length(there - way * t);
}

} // namespace

Mask MakeSea(int size)
{
    const float scale = static_cast<float>(WorldPixels) / static_cast<float>(size);
    Mask sea(size);
    ForEachCell(sea, [&](int x, int y, int cell) {
        const Point place = {(static_cast<float>(x) + 0.5F) * scale,
                             (static_cast<float>(y) + 0.5F) * scale};
        sea[cell] = Landness(place) > 0 ? 0 : 1;
    });
    // First remove rocks that are too small, then ponds of sea water, including those in such
    // rocks.
    Mask kept = sea;
    DropSmallPatches(kept, static_cast<int>(420.0F / (scale * scale)));
    for (int cell = 0; cell < sea.Count(); ++cell) {
        sea[cell] = sea[cell] || kept[cell] ? 1 : 0;
    }
    const Patches patches = FindPatches(sea);
    for (int cell = 0; cell < sea.Count(); ++cell) {
        sea[cell] = sea[cell] && patches.number[cell] == patches.number[0] ? 1 : 0;
    }
    return sea;
}

float UpliftAt(Point place)
{
    constexpr std::uint32_t seed = 200;
    constexpr float plains = 0.035F;
    const Point at = Warped(FromCentre(place), 2.6F, 0.09F, seed);
    float highest = 0;
    for (const Range& range : Ranges) {
        const float away = DistanceToLine(at, range.from, range.to) / range.width;
        highest = std::max(highest, range.height / (1.0F + away * away * away));
    }
    const float broken = 0.55F + 0.75F * RidgedNoise(at.x * 4.0F, at.y * 4.0F, 3, seed + 20U);
    const float hills = 0.05F * Clamp01(FractalNoise(at.x * 3.5F, at.y * 3.5F, 3, seed + 30U));
    return plains + hills + highest * broken;
}

} // namespace generator
