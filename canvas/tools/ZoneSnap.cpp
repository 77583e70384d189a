#include "canvas/tools/ZoneSnap.h"

#include <algorithm>
#include <cmath>
#include <utility>

ZoneSnap::ZoneSnap(std::vector<SnapCircle> others)
    : m_others(std::move(others))
{
    // Files may hold places that are no numbers. They have no order.
    m_others.erase(std::remove_if(m_others.begin(), m_others.end(),
                                  [](const SnapCircle& circle) {
                                      return !std::isfinite(circle.centre.x()) ||
                                             !std::isfinite(circle.centre.y()) ||
                                             !std::isfinite(circle.radius);
                                  }),
                   m_others.end());
    std::sort(m_others.begin(), m_others.end(),
              [](const SnapCircle& a, const SnapCircle& b) { return a.centre.x() < b.centre.x(); });
    for (const SnapCircle& other : m_others) {
        m_largest = std::max(m_largest, other.radius);
    }
}

QPointF ZoneSnap::Snapped(const SnapCircle& dragged, qreal reach) const
{
    QPointF best = dragged.centre;
    qreal shortest = reach;
    const qreal farthest = dragged.radius + m_largest + reach;
    auto other =
        std::lower_bound(m_others.begin(), m_others.end(), dragged.centre.x() - farthest,
                         [](const SnapCircle& circle, qreal x) { return circle.centre.x() < x; });
    for (; other != m_others.end() && other->centre.x() <= dragged.centre.x() + farthest; ++other) {
        const QPointF way = dragged.centre - other->centre;
        const qreal distance = std::hypot(way.x(), way.y());
        for (const qreal target :
             {qreal(0), dragged.radius + other->radius, std::abs(dragged.radius - other->radius)}) {
            const qreal jump = std::abs(distance - target);
            // On the centre there is no direction to the rim.
            if (jump < shortest && (distance > 0 || target <= 0)) {
                shortest = jump;
                best = target > 0 ? other->centre + way * (target / distance) : other->centre;
            }
        }
    }
    return best;
}
