#pragma once

#include <QColor>

class QPainter;

/// How a zone looks on the map, but for its icon.
struct ZoneCircle
{
    /// In scene units; also when it is no positive number.
    qreal radius = 0;
    QColor fill;
    /// Of the outline, 0 to 255.
    int grey = 0;
};

/// Draws the circle around the painter's origin, with an outline of two scene units.
///
/// Outlines are what a map of thousands of zones takes longest for. So a small circle that is drawn
/// at the same place of a pixel again, as whenever a map is repainted, is kept as a picture of it,
/// within some megabytes; which pixels come out does not depend on that.
void DrawZoneCircle(QPainter& painter, const ZoneCircle& circle);
