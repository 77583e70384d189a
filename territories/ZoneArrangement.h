#pragma once

#include <QPointF>

#include <vector>

/// Ways to arrange zones by their centres. Left is where X is smallest, the top where Z is largest.
enum class ZoneArrangement
{
    AlignLeft,
    /// In the middle between the outermost centres.
    AlignCentreX,
    AlignRight,
    AlignTop,
    AlignCentreZ,
    AlignBottom,
    /// In equal steps between the outermost centres, which stay.
    DistributeX,
    DistributeZ,
    /// In equal steps on a circle around the mean of the centres, in their present order around it.
    /// The first of that order stays in its direction.
    Circle,
};

/// Where the centres come to be; x and y are X and Z in world metres, in the order given. radius:
/// of the circle, in metres.
std::vector<QPointF> Arranged(const std::vector<QPointF>& centres, ZoneArrangement arrangement,
                              double radius = 0);
