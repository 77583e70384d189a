#pragma once

#include <QString>

#include <vector>

/// How a ruler's pixels stand for the world.
struct RulerScale
{
    /// The pixel along the ruler at which the world's 0 lies.
    float origin = 0;
    /// Metres per scene unit.
    float unit = 1;
    /// Pixels per scene unit.
    float zoom = 1;
    /// Labels are negated.
    bool flipSign = false;
};

/// One tick of a ruler.
struct RulerTick
{
    /// Pixels along the ruler.
    double position = 0;
    /// Pixels across the ruler at which the tick begins; it ends at the far edge.
    double gap = 0;
    /// The world value in metres; empty for a plain tick.
    QString label = {};
};

/// The ticks of a ruler of this length and thickness in pixels, in the order in which they are
/// painted. A scale that gives no finite spacing of at least a pixel has no ticks, and one that
/// gives no finite values has no labels.
std::vector<RulerTick> RulerTicks(const RulerScale& scale, double length, double thickness);
