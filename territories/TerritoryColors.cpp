#include "territories/TerritoryColors.h"

#include <algorithm>
#include <limits>

namespace {

int Difference(const QColor& a, const QColor& b)
{
    const int red = a.red() - b.red();
    const int green = a.green() - b.green();
    const int blue = a.blue() - b.blue();
    return red * red + green * green + blue * blue;
}

} // namespace

QColor ColorOfItsOwn(const QVector<QColor>& taken)
{
    constexpr int hues = 360;
    // The golden angle: hues in a row are far apart.
    constexpr int hueStep = 137;
    QColor best;
    int largest = -1;
    for (const int value : {230, 160, 255}) {
        const int saturation = value == 255 ? 130 : 255;
        for (int i = 0; i < hues; ++i) {
            const QColor candidate = QColor::fromHsv(i * hueStep % hues, saturation, value).toRgb();
            int nearest = std::numeric_limits<int>::max();
            for (const QColor& color : taken) {
                nearest = std::min(nearest, Difference(candidate, color));
            }
            if (nearest > largest) {
                largest = nearest;
                best = candidate;
            }
        }
    }
    return best;
}
