#pragma once

#include <QString>

/// The texts of the labels below the map. All arithmetic is in 32 bits, and numbers have up to six
/// digits.
namespace StatusTexts {

/// Rich text: the zoom factor in per cent.
QString Zoom(float factor);
/// How many metres a layer pixel covers. axis: "X" or "Z".
QString Scale(const QString& axis, float metresPerPixel);
/// How many metres one step of the rulers covers.
QString RulerStep(const QString& axis, float metresPerPixel);
/// The world position in metres of a place that is so many view pixels from the ruler's origin.
QString Position(const QString& axis, int viewPixels, float zoom, float metresPerPixel);

} // namespace StatusTexts
