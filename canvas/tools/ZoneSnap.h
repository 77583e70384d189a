#pragma once

#include <QPointF>

#include <vector>

/// A zone as it lies on the map, in scene units.
struct SnapCircle
{
    QPointF centre;
    qreal radius = 0;
};

/// What a dragged zone snaps to: the centres and rims of others. It is made once for a drag, and
/// asked at each move of the mouse.
class ZoneSnap
{
public:
    explicit ZoneSnap(std::vector<SnapCircle> others);

    /// Where the dragged circle comes to rest: on another centre, or so that its rim touches
    /// another rim from outside or inside, whatever is nearest. It stays where it is when nothing
    /// is within reach (scene units).
    QPointF Snapped(const SnapCircle& dragged, qreal reach) const;

private:
    /// By ascending x of the centre.
    std::vector<SnapCircle> m_others;
    qreal m_largest = 0;
};
