#include "Lakes.h"

#include "Flow.h"
#include "Noise.h"
#include "Raster.h"
#include "Shapes.h"

namespace generator {

namespace {

struct Lake
{
    std::vector<int> cells;
    float level = 0;
    Point outlet;
    float score = 0;
};

constexpr std::size_t LakeCount = 11;
constexpr std::size_t MinCells = 700;
constexpr std::size_t MaxCells = 9000;

/// The water behind a dam: all cells upstream that are below the level. Empty if there are too
/// many.
Lake Dam(const Terrain& terrain, const Flow& flow, int outlet, float depth)
{
    const int size = terrain.height.Size();
    Lake lake = {{outlet}, terrain.height[outlet] + depth, CentreOf(outlet % size, outlet / size)};
    for (std::size_t i = 0; i < lake.cells.size(); ++i) {
        const int cell = lake.cells[i];
        for (const Step& step : Steps) {
            const int near = cell + step.y * size + step.x;
            if (flow.receiver[near] == cell && terrain.height[near] < lake.level) {
                lake.cells.push_back(near);
            }
        }
        if (lake.cells.size() > MaxCells) {
            return {};
        }
    }
    return lake;
}

/// The share of the lake's cells beside which the land is lower than the water. It is large for a
/// lake that would lie on a slope instead of in a valley.
float OpenShare(const Lake& lake, const Terrain& terrain)
{
    int open = 0;
    const int size = terrain.height.Size();
    std::vector<int> sorted = lake.cells;
    std::sort(sorted.begin(), sorted.end());
    for (const int cell : lake.cells) {
        open += std::any_of(std::begin(Steps), std::end(Steps), [&](const Step& step) {
            const int near = cell + step.y * size + step.x;
            return terrain.height[near] < lake.level &&
                   !std::binary_search(sorted.begin(), sorted.end(), near);
        });
    }
    return static_cast<float>(open) / std::sqrt(static_cast<float>(lake.cells.size()));
}

/// Rates a lake: it should be large, round and enclosed by land.
float ScoreOf(const Lake& lake, const Terrain& terrain)
{
    const int size = terrain.height.Size();
    int left = size;
    int right = 0;
    int top = size;
    int bottom = 0;
    for (const int cell : lake.cells) {
        left = std::min(left, cell % size);
        right = std::max(right, cell % size);
        top = std::min(top, cell / size);
        bottom = std::max(bottom, cell / size);
    }
    const int longSide = std::max(right - left, bottom - top) + 1;
    const auto cellCount = static_cast<float>(lake.cells.size());
    const float roundness = cellCount / static_cast<float>(longSide * longSide);
    return std::sqrt(cellCount) * roundness / (0.15F + OpenShare(lake, terrain));
}

std::vector<Lake> FindLakes(const Terrain& terrain)
{
    constexpr std::uint32_t seed = 400;
    const Flow flow = RouteFlow(terrain.height, terrain.sea);
    std::vector<Lake> lakes;
    ForEachCell(terrain.height, [&](int x, int y, int cell) {
        const float area = flow.area[cell];
        const float height = terrain.height[cell];
        if (area < 7500.0F || area > 90000.0F || height < 14.0F || height > 560.0F ||
            terrain.toSea[cell] < 70.0F || Random01(x, y, seed) > 0.35F) {
            return;
        }
        const float depth = 7.0F + 0.03F * height + 14.0F * Random01(x, y, seed + 1U);
        Lake lake = Dam(terrain, flow, cell, depth);
        if (lake.cells.size() >= MinCells) {
            lake.score = ScoreOf(lake, terrain);
            lakes.push_back(std::move(lake));
        }
    });
    std::stable_sort(lakes.begin(), lakes.end(),
                     [](const Lake& a, const Lake& b) { return a.score > b.score; });
    return lakes;
}

bool IsNearAny(const Lake& lake, const std::vector<Lake>& chosen)
{
    constexpr float spacing = 190.0F;
    return std::any_of(chosen.begin(), chosen.end(), [&lake](const Lake& other) {
        return Length(other.outlet - lake.outlet) < spacing;
    });
}

/// The water level of each cell of the lakes; 0 elsewhere.
Field MakeLevels(const std::vector<Lake>& lakes)
{
    Field levels(WorldPixels);
    for (const Lake& lake : lakes) {
        for (const int cell : lake.cells) {
            levels[cell] = lake.level;
        }
    }
    return levels;
}

float HighestAround(const Field& levels, int x, int y)
{
    float highest = 0;
    ForEachCellAround(levels.Size(), CentreOf(x, y), 5.0F, [&](int nearX, int nearY) {
        highest = std::max(highest, levels.At(nearX, nearY));
    });
    return highest;
}

/// Rounds the shores, which otherwise follow the flow of the water cell by cell.
void RoundShores(Field& levels, const Terrain& terrain)
{
    constexpr std::uint32_t seed = 410;
    const Field before = levels;
    Field share(levels.Size());
    for (int cell = 0; cell < share.Count(); ++cell) {
        share[cell] = before[cell] > 0 ? 1.0F : 0.0F;
    }
    share = Blurred(share, 3);
    ForEachCell(levels, [&](int x, int y, int cell) {
        const float ragged = 0.28F * FractalNoise(static_cast<float>(x) / 13.0F,
                                                  static_cast<float>(y) / 13.0F, 3, seed);
        const bool isLake = share[cell] > 0.01F && share[cell] + ragged > 0.45F;
        levels[cell] = isLake && !terrain.sea[cell] ? HighestAround(before, x, y) : 0.0F;
    });
}

/// Levels the terrain to the water and lifts the shore to it. Otherwise the water at a dam would be
/// above the land beside it.
void LevelTerrain(Terrain& terrain, const Field& levels)
{
    constexpr float reach = 5.0F;
    ForEachCell(levels, [&](int x, int y, int cell) {
        if (levels[cell] <= 0) {
            return;
        }
        terrain.height[cell] = levels[cell];
        const Point centre = CentreOf(x, y);
        ForEachCellAround(levels.Size(), centre, reach, [&](int nearX, int nearY) {
            const float away = Length(CentreOf(nearX, nearY) - centre);
            if (levels.At(nearX, nearY) <= 0 && !terrain.sea.At(nearX, nearY) && away <= reach) {
                const float brim = levels[cell] - 0.9F * std::max(away - 2.0F, 0.0F);
                float& height = terrain.height.At(nearX, nearY);
                height = std::max(height, brim);
            }
        });
    });
}

} // namespace

Mask MakeLakes(Terrain& terrain)
{
    std::vector<Lake> chosen;
    for (Lake& lake : FindLakes(terrain)) {
        if (chosen.size() < LakeCount && !IsNearAny(lake, chosen)) {
            chosen.push_back(std::move(lake));
        }
    }
    Field levels = MakeLevels(chosen);
    RoundShores(levels, terrain);
    Mask isLake(levels.Size());
    for (int cell = 0; cell < levels.Count(); ++cell) {
        isLake[cell] = levels[cell] > 0 ? 1 : 0;
    }
    DropSmallPatches(isLake, 200);
    for (int cell = 0; cell < levels.Count(); ++cell) {
        levels[cell] = isLake[cell] ? std::max(levels[cell], 1.0F) : 0.0F;
    }
    LevelTerrain(terrain, levels);
    return isLake;
}

} // namespace generator
