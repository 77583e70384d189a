#pragma once

#include <QString>

#include <vector>

/// Maps a ruler's pixels to the world.
struct RulerScale
{
    /// The pixel along the ruler at which the world's 0 lies.
    float origin = 0;
    /// Metres per scene unit.
    float unit = 1;
    /// Pixels per scene unit.
    float zoom = 1;
    /// True if the labels are negated.
    bool flipSign = false;
};

/// One tick of a ruler.
struct RulerTick
{
    /// Pixels along the ruler.
    double position = 0;
    /// The pixel across the ruler at which the tick begins. It ends at the far edge.
    double gap = 0;
    /// The world value in metres; empty for a plain tick.
    QString label = {};
};

/// The ticks of a ruler of this length and thickness in pixels, in the order of painting. There are
/// no ticks if their spacing would be less than a pixel or not finite, and no labels if their
/// values would not be finite. From a zoom of 1/8 downward the steps are wider, and below 1/4
/// labels are so far apart that none reaches the next.
std::vector<RulerTick> RulerTicks(const RulerScale& scale, double length, double thickness);
