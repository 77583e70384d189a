#pragma once

#include <QString>

/// What the labels below the map say. All arithmetic is in 32 bits, numbers with up to
/// six digits.
namespace StatusTexts {

/// Rich text: the zoom factor in per cent.
QString Zoom(float factor);
/// How many metres a layer pixel is; axis: "X" or "Z".
QString Scale(const QString& axis, float metresPerPixel);
/// How many metres one step of the rulers is.
QString RulerStep(const QString& axis, float metresPerPixel);
/// The world position in metres of a place that many view pixels from the ruler's origin.
QString Position(const QString& axis, int viewPixels, float zoom, float metresPerPixel);

} // namespace StatusTexts
