#include "Habitat.h"

#include "Raster.h"

namespace generator {

Habitat::Habitat(const World& world)
    : m_world(world)
    , m_toLake(DistanceTo(world.water.lake))
    , m_toSwamp(DistanceTo(world.cover.swamp))
    , m_steepness(WorldPixels)
{
    ForEachCell(m_steepness, [this](int x, int y, int cell) {
        m_steepness[cell] = SteepnessAt(m_world.terrain.height, x, y);
    });
    m_steepness = Blurred(m_steepness, 4);
}

bool Habitat::IsOnLand(Point place) const
{
    return m_world.terrain.toSea.Near(place) > 6.0F && !m_world.water.lake.Near(place) &&
           !m_world.cover.isCompound.Near(place);
}

float Habitat::Shelter(Point place) const
{
    return IsOnLand(place) ? SmoothStep(0.0F, 10.0F, m_world.cover.toOpen.Near(place)) *
                                 (1.0F - 0.7F * SmoothStep(0.4F, 0.8F, m_steepness.Near(place)))
                           : 0.0F;
}

float Habitat::Shore(Point place) const
{
    const float toFresh = m_world.water.toFresh.Near(place);
    const bool isOnSea = m_world.terrain.toSea.Near(place) < 6.0F;
    return isOnSea ? 0.0F : 1.0F - SmoothStep(3.0F, 12.0F, toFresh);
}

float Habitat::Grass(Point place) const
{
    const Cover& cover = m_world.cover;
    if (!IsOnLand(place) || cover.forest.Near(place) || cover.farmland.Near(place)) {
        return 0;
    }
    const float bare = std::max(cover.rock.Near(place), cover.snow.Near(place));
    return (1.0F - bare) * (1.0F - SmoothStep(0.15F, 0.5F, m_steepness.Near(place))) *
           SmoothStep(0.0F, 6.0F, cover.toForest.Near(place)) *
           SmoothStep(4.0F, 20.0F, cover.toSettlement.Near(place));
}

float Habitat::Pasture(Point place) const
{
    const Cover& cover = m_world.cover;
    const float toSettlement = cover.toSettlement.Near(place);
    if (!IsOnLand(place) || cover.forest.Near(place) || toSettlement < 5.0F) {
        return 0;
    }
    const float farmed = cover.farmland.Near(place) ? 1.0F : 0.5F;
    return farmed * (1.0F - SmoothStep(70.0F, 190.0F, toSettlement)) *
           (1.0F - SmoothStep(0.08F, 0.25F, m_steepness.Near(place)));
}

float Habitat::ForestEdge(Point place) const
{
    if (!IsOnLand(place)) {
        return 0;
    }
    const float away = m_world.cover.toForest.Near(place) + m_world.cover.toOpen.Near(place);
    return (1.0F - SmoothStep(4.0F, 24.0F, away)) *
           SmoothStep(8.0F, 40.0F, m_world.cover.toSettlement.Near(place));
}

float Habitat::Wilderness(Point place) const
{
    return IsOnLand(place) ? SmoothStep(50.0F, 200.0F, m_world.cover.toSettlement.Near(place)) *
                                 SmoothStep(10.0F, 70.0F, m_world.roads.toRoad.Near(place))
                           : 0.0F;
}

float Habitat::Heights(Point place) const
{
    const float height = m_world.terrain.height.Near(place);
    return IsOnLand(place)
               ? SmoothStep(120.0F, 320.0F, height) * (1.0F - SmoothStep(560.0F, 800.0F, height))
               : 0.0F;
}

QString Habitat::Feature(Point place) const
{
    const float height = m_world.terrain.height.Near(place);
    if (m_toLake.Near(place) < 40.0F) {
        return QStringLiteral("lake");
    }
    if (m_world.cover.farmland.Near(place)) {
        return QStringLiteral("fields");
    }
    if (m_toSwamp.Near(place) < 12.0F) {
        return QStringLiteral("marsh");
    }
    if (m_world.terrain.toSea.Near(place) < 45.0F) {
        return QStringLiteral("shore");
    }
    if (height > 420.0F) {
        return QStringLiteral("ridge");
    }
    if (height > 170.0F) {
        return QStringLiteral("hills");
    }
    if (m_world.cover.toOpen.Near(place) > 2.0F) {
        return QStringLiteral("woods");
    }
    return m_world.water.toFresh.Near(place) < 30.0F ? QStringLiteral("valley")
                                                     : QStringLiteral("plain");
}

QString Habitat::Describe(Point place) const
{
    constexpr float west = 760.0F;
    constexpr float east = 1290.0F;
    constexpr float north = 780.0F;
    constexpr float south = 1260.0F;
    const QString vertical = place.y < north   ? QStringLiteral("north")
                             : place.y > south ? QStringLiteral("south")
                                               : QString();
    const QString horizontal = place.x < west   ? QStringLiteral("west")
                               : place.x > east ? QStringLiteral("east")
                                                : QString();
    const bool isCorner = !vertical.isEmpty() && !horizontal.isEmpty();
    QString side = isCorner ? vertical + QLatin1Char('-') + horizontal : vertical + horizontal;
    if (side.isEmpty()) {
        side = QStringLiteral("central");
    }
    return side + QLatin1Char(' ') + Feature(place);
}

} // namespace generator
