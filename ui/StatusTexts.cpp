#include "ui/StatusTexts.h"

#include <cmath>

namespace {

constexpr float RulerStepPixels = 25.0F;
constexpr float PerCent = 100.0F;

QString Number(float value)
{
    return QStringLiteral("%1").arg(static_cast<double>(value));
}

} // namespace

namespace StatusTexts {

QString Zoom(float factor)
{
    return QStringLiteral("<strong>%1%</strong>")
        .arg(static_cast<int>(std::round(factor * PerCent)));
}

QString Scale(const QString& axis, float metresPerPixel)
{
    return QStringLiteral("%1: 1 px = %2 m").arg(axis, Number(metresPerPixel));
}

QString RulerStep(const QString& axis, float metresPerPixel)
{
    return QStringLiteral("%1 step = %2 m").arg(axis, Number(metresPerPixel * RulerStepPixels));
}

QString Position(const QString& axis, int viewPixels, float zoom, float metresPerPixel)
{
    return QStringLiteral("%1 = %2").arg(
        axis, Number(static_cast<float>(viewPixels) / zoom * metresPerPixel));
}

} // namespace StatusTexts
