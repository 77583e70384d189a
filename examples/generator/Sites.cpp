#include "Sites.h"

#include "Noise.h"

#include <array>

namespace generator {

namespace {

constexpr int TownCount = 5;
constexpr int VillageCount = 25;

/// The candidates: places on a coarse raster, with their ratings.
struct Candidate
{
    Point place;
    float flatness;
    float score;
};

float MeanSteepness(const Terrain& terrain, Point place, int reach)
{
    float sum = 0;
    int count = 0;
    for (int dy = -reach; dy <= reach; dy += reach / 2) {
        for (int dx = -reach; dx <= reach; dx += reach / 2) {
            const int x = static_cast<int>(place.x) + dx;
            const int y = static_cast<int>(place.y) + dy;
            sum += terrain.sea.Near(x, y) ? 0.3F : SteepnessAt(terrain.height, x, y);
            ++count;
        }
    }
    return sum / static_cast<float>(count);
}

std::vector<Candidate> FindCandidates(const Terrain& terrain, const Water& water)
{
    constexpr int raster = 8;
    constexpr std::uint32_t seed = 500;
    std::vector<Candidate> candidates;
    for (int y = 64; y < WorldPixels - 64; y += raster) {
        for (int x = 64; x < WorldPixels - 64; x += raster) {
            const Point place = CentreOf(x, y);
            const float toSea = terrain.toSea.At(x, y);
            const float toFresh = water.toFresh.At(x, y);
            if (toSea < 9.0F || toFresh < 4.0F) {
                continue;
            }
            const float flatness =
                1.0F - SmoothStep(0.03F, 0.16F, MeanSteepness(terrain, place, 12));
            const float fresh = 1.0F - SmoothStep(8.0F, 60.0F, toFresh);
            const float harbour = 1.0F - SmoothStep(14.0F, 50.0F, toSea);
            const float low = 1.0F - SmoothStep(120.0F, 480.0F, terrain.height.At(x, y));
            const float score = flatness * (0.35F + 0.55F * fresh + 0.30F * harbour) *
                                (0.25F + 0.75F * low) * Mix(0.7F, 1.0F, Random01(x, y, seed));
            candidates.push_back({place, flatness, score});
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.score > b.score; });
    return candidates;
}

float NearestCentre(const std::vector<Settlement>& settlements, Point place)
{
    float nearest = 1e6F;
    for (const Settlement& settlement : settlements) {
        nearest = std::min(nearest, Length(settlement.centre - place));
    }
    return nearest;
}

void Settle(std::vector<Settlement>& settlements, const std::vector<Candidate>& candidates,
            bool isTown)
{
    const float spacing = isTown ? 430.0F : 150.0F;
    const int wanted = isTown ? TownCount : VillageCount;
    int count = 0;
    for (const Candidate& candidate : candidates) {
        if (count < wanted && NearestCentre(settlements, candidate.place) > spacing) {
            const float chance = Random01(static_cast<int>(candidate.place.x), count, 510);
            const float radius = isTown ? 30.0F + 12.0F * chance : 11.0F + 9.0F * chance;
            settlements.push_back({candidate.place, radius, isTown});
            ++count;
        }
    }
}

/// The direction in which the ground is most level.
Point LevelAxis(const Terrain& terrain, Point place, float halfLength)
{
    constexpr int turns = 24;
    Point best = {1.0F, 0.0F};
    float least = 1e9F;
    for (int turn = 0; turn < turns; ++turn) {
        const Point axis = DirectionOf(0.5F * static_cast<float>(turn) / turns);
        float fall = 0;
        for (int mark = -8; mark <= 8; ++mark) {
            const float along = static_cast<float>(mark) / 8.0F * halfLength;
            fall +=
                std::abs(terrain.height.Near(place + axis * along) - terrain.height.Near(place));
        }
        if (fall < least) {
            least = fall;
            best = axis;
        }
    }
    return best;
}

bool IsFree(const Terrain& terrain, const Water& water, const Rectangle& ground)
{
    // A raster that extends a tenth beyond the edge.
    for (int column = -11; column <= 11; ++column) {
        for (int row = -11; row <= 11; row += 2) {
            const Point place =
                ground.ToWorld({static_cast<float>(column) * 0.1F * ground.halfLength,
                                static_cast<float>(row) * 0.1F * ground.halfWidth});
            if (terrain.toSea.Near(place) < 5.0F || water.toFresh.Near(place) < 4.0F) {
                return false;
            }
        }
    }
    return true;
}

/// The requirements of a kind of compound.
struct Demand
{
    Compound::Kind kind;
    float halfLength;
    float halfWidth;
    float minToSettlement;
    float maxToSettlement;
    float minHeight;
    float maxHeight;
};
constexpr std::array<Demand, 8> Demands = {{
    {Compound::Airfield, 74.0F, 24.0F, 80.0F, 330.0F, 8.0F, 160.0F},
    {Compound::Airfield, 56.0F, 19.0F, 90.0F, 330.0F, 8.0F, 260.0F},
    {Compound::Barracks, 26.0F, 18.0F, 55.0F, 220.0F, 8.0F, 320.0F},
    {Compound::Barracks, 22.0F, 16.0F, 55.0F, 220.0F, 8.0F, 320.0F},
    {Compound::Barracks, 20.0F, 15.0F, 70.0F, 420.0F, 60.0F, 480.0F},
    {Compound::Barracks, 18.0F, 14.0F, 90.0F, 420.0F, 60.0F, 520.0F},
    {Compound::Radar, 9.0F, 8.0F, 70.0F, 600.0F, 240.0F, 620.0F},
    {Compound::Radar, 9.0F, 8.0F, 70.0F, 600.0F, 240.0F, 620.0F},
}};

float NearestCompound(const std::vector<Compound>& compounds, Point place)
{
    float nearest = 1e6F;
    for (const Compound& compound : compounds) {
        nearest = std::min(nearest, Length(compound.ground.centre - place));
    }
    return nearest;
}

/// Levels the ground for buildings. A radar is on the top of a hill instead.
float ScoreFor(const Demand& demand, const Terrain& terrain, const Candidate& candidate)
{
    if (demand.kind != Compound::Radar) {
        return candidate.flatness;
    }
    const float height = terrain.height.Near(candidate.place);
    float around = 0;
    for (int turn = 0; turn < 8; ++turn) {
        const Point away = DirectionOf(static_cast<float>(turn) / 8.0F) * 40.0F;
        around += 0.125F * terrain.height.Near(candidate.place + away);
    }
    return Clamp01((height - around) / 120.0F);
}

void Occupy(Sites& sites, const Demand& demand, const std::vector<Candidate>& candidates,
            const Terrain& terrain, const Water& water)
{
    constexpr float spacing = 260.0F;
    Compound best = {demand.kind, {}};
    float bestScore = 0.05F;
    for (const Candidate& candidate : candidates) {
        const float toCentre = NearestCentre(sites.settlements, candidate.place);
        const float height = terrain.height.Near(candidate.place);
        const float score = ScoreFor(demand, terrain, candidate);
        if (toCentre < demand.minToSettlement || toCentre > demand.maxToSettlement ||
            height < demand.minHeight || height > demand.maxHeight || score <= bestScore ||
            NearestCompound(sites.compounds, candidate.place) < spacing) {
            continue;
        }
        const Rectangle ground = {candidate.place,
                                  LevelAxis(terrain, candidate.place, demand.halfLength),
                                  demand.halfLength, demand.halfWidth};
        if (IsFree(terrain, water, ground)) {
            best.ground = ground;
            bestScore = score;
        }
    }
    if (best.ground.halfLength > 0) {
        sites.compounds.push_back(best);
    }
}

void Level(Field& height, const Rectangle& ground)
{
    constexpr float bank = 14.0F;
    const float level = height.Near(ground.centre);
    ForEachCellAround(height.Size(), ground.centre, ground.halfLength + ground.halfWidth + bank,
                      [&](int x, int y) {
                          const Point local = ground.ToLocal(CentreOf(x, y));
                          const Point out = {std::max(std::abs(local.x) - ground.halfLength, 0.0F),
                                             std::max(std::abs(local.y) - ground.halfWidth, 0.0F)};
                          const float share = 1.0F - SmoothStep(0.0F, bank, Length(out));
                          height.At(x, y) = Mix(height.At(x, y), level, share);
                      });
}

} // namespace

Sites ChooseSites(Terrain& terrain, const Water& water)
{
    Sites sites;
    const std::vector<Candidate> candidates = FindCandidates(terrain, water);
    Settle(sites.settlements, candidates, true);
    Settle(sites.settlements, candidates, false);
    for (const Demand& demand : Demands) {
        Occupy(sites, demand, candidates, terrain, water);
    }
    for (const Compound& compound : sites.compounds) {
        Level(terrain.height, compound.ground);
    }
    return sites;
}

float DistanceToSettlement(const Sites& sites, Point place)
{
    constexpr std::uint32_t seed = 520;
    float nearest = 1e6F;
    for (const Settlement& settlement : sites.settlements) {
        nearest = std::min(nearest, Length(settlement.centre - place) - settlement.radius);
    }
    return nearest < 60.0F
               ? nearest + 9.0F * FractalNoise(place.x / 22.0F, place.y / 22.0F, 3, seed)
               : nearest;
}

} // namespace generator
