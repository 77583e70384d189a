#include "Water.h"

#include "Flow.h"
#include "Lakes.h"
#include "Noise.h"
#include "Raster.h"

namespace generator {

namespace {

/// The number of cells that must drain through a place to make a river there.
constexpr float MinArea = 7000.0F;

float WidthOf(float area)
{
    return 0.9F + 3.4F * std::sqrt(area / 300000.0F);
}

bool IsSource(const Flow& flow, int cell)
{
    const int size = flow.area.Size();
    return std::none_of(std::begin(Steps), std::end(Steps), [&](const Step& step) {
        const int near = cell + step.y * size + step.x;
        return flow.receiver[near] == cell && flow.area[near] >= MinArea;
    });
}

/// Bends a river a little; the same place always bends the same way, so rivers still meet.
Point Meandered(Point place)
{
    constexpr std::uint32_t seed = 450;
    return place + Point{FractalNoise(place.x / 11.0F, place.y / 11.0F, 2, seed),
                         FractalNoise(place.x / 11.0F, place.y / 11.0F, 2, seed + 10U)} *
                       4.0F;
}

/// Follows the water from a source down to the sea or to an existing river.
River Trace(const Flow& flow, const Mask& sea, Mask& taken, int source)
{
    const int size = flow.area.Size();
    River river;
    int overlap = 3;
    for (int cell = source; overlap > 0; cell = flow.receiver[cell]) {
        river.line.push_back(Meandered(CentreOf(cell % size, cell / size)));
        river.widths.push_back(WidthOf(flow.area[cell]));
        // A few steps into the other water, so that no gap shows once both are smoothed.
        overlap -= taken[cell] || sea[cell] ? 1 : 0;
        taken[cell] = 1;
        if (flow.receiver[cell] == cell) {
            break;
        }
    }
    // In the overlap the widths are those of the other river.
    for (std::size_t i = river.widths.size(); i-- > 1 && i + 4 > river.widths.size();) {
        river.widths[i] = std::min(river.widths[i], river.widths[i / 2] * 1.5F);
    }
    river.line = Smoothed(std::move(river.line), 12);
    return river;
}

/// The outflow of each lake: the cell through which most water drains.
std::vector<int> FindOutlets(const Mask& lake, const Flow& flow)
{
    const Patches patches = FindPatches(lake);
    std::vector<int> outlets(patches.cellCounts.size(), -1);
    for (int cell = 0; cell < lake.Count(); ++cell) {
        if (lake[cell]) {
            int& outlet = outlets[static_cast<std::size_t>(patches.number[cell])];
            outlet = outlet < 0 || flow.area[cell] > flow.area[outlet] ? cell : outlet;
        }
    }
    return outlets;
}

std::vector<River> TraceRivers(const Terrain& terrain, const Mask& lake)
{
    constexpr std::size_t leastLength = 24;
    const Flow flow = RouteFlow(terrain.height, terrain.sea);
    Mask taken(terrain.height.Size());
    std::vector<River> rivers;
    // Every lake has an outflow, even a small one.
    for (const int outlet : FindOutlets(lake, flow)) {
        if (outlet >= 0 && !taken[outlet]) {
            rivers.push_back(Trace(flow, terrain.sea, taken, outlet));
        }
    }
    // The highest sources come first, because they make the long rivers that the others join.
    for (auto cell = flow.order.rbegin(); cell != flow.order.rend(); ++cell) {
        if (flow.area[*cell] >= MinArea && !terrain.sea[*cell] && !taken[*cell] &&
            IsSource(flow, *cell)) {
            River river = Trace(flow, terrain.sea, taken, *cell);
            if (river.line.size() > leastLength) {
                rivers.push_back(std::move(river));
            }
        }
    }
    return rivers;
}

} // namespace

Water MakeWater(Terrain& terrain)
{
    Water water;
    water.lake = MakeLakes(terrain);
    water.rivers = TraceRivers(terrain, water.lake);
    water.river = Field(terrain.height.Size());
    for (const River& river : water.rivers) {
        DrawLine(water.river, river.line, river.widths);
    }
    Mask fresh = water.lake;
    for (int cell = 0; cell < fresh.Count(); ++cell) {
        if (water.river[cell] > 0.5F && !terrain.sea[cell]) {
            fresh[cell] = 1;
        }
    }
    water.toFresh = DistanceTo(fresh);
    return water;
}

} // namespace generator
