#pragma once

#include "Grid.h"

namespace generator {

using Line = std::vector<Point>;

/// Coverage fields hold which share of each pixel a shape covers, 0 to 1. Drawing keeps the larger
/// of the old and the new value.
void DrawLine(Field& coverage, const Line& line, float width);
/// Draws a line with a width at each of its points.
void DrawLine(Field& coverage, const Line& line, const std::vector<float>& widths);

/// A rectangle that lies along a unit vector.
struct Rectangle
{
    Point centre;
    Point axis;
    float halfLength;
    float halfWidth;

    /// Along the axis, and across it to the right.
    Point ToLocal(Point place) const;
    Point ToWorld(Point local) const;
};
void DrawRectangle(Field& coverage, const Rectangle& rectangle);

/// Calls body(x, y) for the cells of the square around a place, those outside the world left out.
template <typename Body>
void ForEachCellAround(int size, Point place, float reach, Body body)
{
    const int left = std::max(static_cast<int>(std::floor(place.x - reach)), 0);
    const int top = std::max(static_cast<int>(std::floor(place.y - reach)), 0);
    const int right = std::min(static_cast<int>(std::floor(place.x + reach)), size - 1);
    const int bottom = std::min(static_cast<int>(std::floor(place.y + reach)), size - 1);
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            body(x, y);
        }
    }
}

inline Point CentreOf(int x, int y)
{
    return {static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F};
}

/// Rounds the corners of a line; its ends stay.
Line Smoothed(Line line, int passes);

/// A unit vector. Numbers from 0 to 1 go once around the circle.
Point DirectionOf(float turn);

} // namespace generator
