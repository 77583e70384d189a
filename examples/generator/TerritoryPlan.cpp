#include "TerritoryPlan.h"

#include "Noise.h"
#include "Species.h"

#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"

#include <QMap>

#include <memory>

namespace generator {

namespace {

/// Places with a lower share do not suit.
constexpr float LeastFit = 0.12F;

struct Circle
{
    Point centre;
    float radius;
};

/// The share of the smaller of two circles that the other one covers, approximately.
float Overlap(const Circle& a, const Circle& b)
{
    const float gap = Length(a.centre - b.centre) - a.radius - b.radius;
    return Clamp01(-gap / (2.0F * std::min(a.radius, b.radius)));
}

/// Rounds to a whole pixel, like zones that are placed with the mouse.
Point OnPixel(Point place)
{
    return {std::floor(place.x), std::floor(place.y)};
}

class Placer
{
public:
    explicit Placer(const World& world)
        : m_habitat(world)
    {
    }

    void Place(const Species& species, std::uint32_t seed, TerritoryType& type)
    {
        RandomSequence random(seed);
        std::vector<Point> homes;
        QMap<QString, int> numbers;
        for (int i = 0; i < species.territoryCount; ++i) {
            const Point home = FindHome(species, homes, random);
            homes.push_back(home);
            const QString place = m_habitat.Describe(home);
            auto territory = std::make_unique<Territory>(
                QStringLiteral("%1 %2 %3")
                    .arg(QLatin1String(species.name), place, QString::number(++numbers[place])));
            territory->SetRgba(species.color);
            FillTerritory(species, home, random, *territory);
            territory->SetVisible(true);
            territory->setCheckState(Qt::Checked);
            territory->SetZonesEditable(false);
            type.AddTerritory(territory.release());
        }
    }

private:
    /// The best of many places. Places far from other territories of the species are better.
    Point FindHome(const Species& species, const std::vector<Point>& homes, RandomSequence& random)
    {
        constexpr int tries = 3000;
        constexpr float margin = 120.0F;
        const float spacing = 1.9F * species.reach;
        Point best;
        float bestFit = -1;
        for (int i = 0; i < tries; ++i) {
            const Point place = {random.Between(margin, WorldPixels - margin),
                                 random.Between(margin, WorldPixels - margin)};
            float nearest = 1e6F;
            for (const Point home : homes) {
                nearest = std::min(nearest, Length(home - place));
            }
            const float fit = FitAround(species, place) * SmoothStep(0.5F, 1.0F, nearest / spacing);
            if (fit > bestFit) {
                bestFit = fit;
                best = place;
            }
        }
        return best;
    }

    /// Rates a home by how well its surroundings suit the zones.
    float FitAround(const Species& species, Point place) const
    {
        float fit = species.suits(m_habitat, place);
        if (fit < LeastFit) {
            return fit * 0.01F;
        }
        for (const ZoneDemand& demand : species.demands) {
            float best = 0;
            for (int turn = 0; turn < 16; ++turn) {
                const float way = species.reach * (turn % 2 ? 0.4F : 0.8F);
                const Point there = place + DirectionOf(static_cast<float>(turn) / 16.0F) * way;
                best = std::max(best, demand.suits(m_habitat, there));
            }
            fit *= 0.35F + 0.65F * best;
        }
        return fit;
    }

    void FillTerritory(const Species& species, Point home, RandomSequence& random,
                       Territory& territory)
    {
        std::vector<Circle> taken;
        for (const ZoneDemand& demand : species.demands) {
            for (int i = 0; i < demand.count; ++i) {
                const float metres = 10.0F * std::floor(random.Between(demand.minRadiusMetres,
                                                                       demand.maxRadiusMetres) /
                                                        10.0F);
                const Circle circle =
                    FindCircle(demand, home, species.reach, metres / MetresPerPixel, taken, random);
                if (circle.radius > 0) {
                    taken.push_back(circle);
                    territory.AddZone(MakeZone(demand, circle, metres, random, territory));
                }
            }
        }
    }

    /// The radius is 0 if no place suits.
    Circle FindCircle(const ZoneDemand& demand, Point home, float reach, float radius,
                      const std::vector<Circle>& taken, RandomSequence& random) const
    {
        constexpr int tries = 900;
        Circle best = {};
        float bestFit = LeastFit;
        for (int i = 0; i < tries; ++i) {
            const float way = reach * std::sqrt(random.Next01());
            const Circle circle = {OnPixel(home + DirectionOf(random.Next01()) * way), radius};
            float fit = demand.suits(m_habitat, circle.centre) * random.Between(0.8F, 1.0F);
            for (const Circle& other : taken) {
                fit *= 1.0F - 0.85F * Overlap(circle, other);
            }
            if (fit > bestFit) {
                bestFit = fit;
                best = circle;
            }
        }
        return best;
    }

    static Zone* MakeZone(const ZoneDemand& demand, const Circle& circle, float metres,
                          RandomSequence& random, Territory& territory)
    {
        auto zone = std::make_unique<Zone>(&territory, metres);
        zone->setPos(static_cast<qreal>(circle.centre.x), static_cast<qreal>(circle.centre.y));
        zone->SetUsage(demand.usage);
        if (demand.eventName) {
            zone->SetEventName(QLatin1String(demand.eventName));
        }
        const int staticMax = random.Whole(demand.maxStatic / 2, demand.maxStatic);
        const int dynamicMax = random.Whole((demand.maxDynamic + 1) / 2, demand.maxDynamic);
        zone->SetStaticMin(random.Whole(0, staticMax));
        zone->SetStaticMax(staticMax);
        zone->SetDynamicMin(random.Whole(0, dynamicMax));
        zone->SetDynamicMax(dynamicMax);
        return zone.release();
    }

    Habitat m_habitat;
};

} // namespace

void PlaceTerritories(const World& world, TerritoryTypeList& types)
{
    Placer placer(world);
    std::uint32_t seed = 1400;
    for (const Species& species : AllSpecies()) {
        auto type = std::make_unique<TerritoryType>(QString::fromLatin1(species.name));
        placer.Place(species, seed++, *type);
        type->setCheckState(Qt::Checked);
        types.AddType(type.release());
    }
}

} // namespace generator
