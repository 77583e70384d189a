#pragma once

#include <QSizeF>
#include <QVector>

/// The steps in which the map is zoomed. A zoom is the number of view pixels for each layer pixel.
namespace ZoomSteps {

/// The wheel goes from LowestOfWheel to Highest in steps of 0.25. The zoom actions go two steps
/// further down, to 1/8 and 1/16.
constexpr float Highest = 12.5F;
constexpr float LowestOfWheel = 0.25F;
constexpr float Lowest = 0.0625F;

/// The step of the wheel after this zoom, inward or outward. A zoom below the wheel's steps counts
/// as the lowest of them, and a zoom between two steps goes to the next one.
float NextOfWheel(float zoom, bool isIn);
/// The step of the zoom actions after this zoom.
float Next(float zoom, bool isIn);
/// The largest step at which an area of layer pixels fits into so many view pixels; Lowest if there
/// is none.
float ToFit(QSizeF area, QSizeF room);
/// The steps of the wheel, ascending.
QVector<float> OfWheel();

} // namespace ZoomSteps
