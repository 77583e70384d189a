#include "canvas/ZoomSteps.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float Step = 0.25F;

} // namespace

namespace ZoomSteps {

float NextOfWheel(float zoom, bool isIn)
{
    const float steps = std::max(zoom, LowestOfWheel) / Step;
    const float next = isIn ? std::floor(steps) + 1 : std::ceil(steps) - 1;
    return std::clamp(next * Step, LowestOfWheel, Highest);
}

float Next(float zoom, bool isIn)
{
    if (zoom > LowestOfWheel || (isIn && zoom >= LowestOfWheel)) {
        return NextOfWheel(zoom, isIn);
    }
    // 1/16, 1/8, 1/4: one is half of the next.
    float next = isIn ? LowestOfWheel : Lowest;
    if (isIn) {
        while (next / 2 > zoom && next > Lowest) {
            next /= 2;
        }
    } else {
        while (next * 2 < zoom) {
            next *= 2;
        }
    }
    return next;
}

float ToFit(QSizeF area, QSizeF room)
{
    float zoom = Highest;
    const auto fits = [&] {
        const auto scale = static_cast<qreal>(zoom);
        return area.width() * scale <= room.width() && area.height() * scale <= room.height();
    };
    while (zoom > Lowest && !fits()) {
        zoom = Next(zoom, false);
    }
    return zoom;
}

QVector<float> OfWheel()
{
    QVector<float> steps{LowestOfWheel};
    while (steps.last() < Highest) {
        steps.append(NextOfWheel(steps.last(), true));
    }
    return steps;
}

} // namespace ZoomSteps
