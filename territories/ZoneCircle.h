#pragma once

#include <QColor>

class QPainter;

/// The look of a zone on the map, without its icon.
struct ZoneCircle
{
    /// In scene units. May be 0, negative or NaN.
    qreal radius = 0;
    QColor fill;
    /// The grey of the outline, 0 to 255.
    int grey = 0;
};

/// Draws the circle around the painter's origin, with an outline of two scene units.
///
/// On a map of thousands of zones, outlines take most of the time. So a small circle that is drawn
/// repeatedly at the same place within a pixel, as in every repaint, is kept as a picture. The
/// pictures take a few megabytes at most, and give the same pixels as drawing.
void DrawZoneCircle(QPainter& painter, const ZoneCircle& circle);
