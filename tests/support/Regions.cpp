#include "tests/support/Regions.h"

#include "layers/raster/Mask.h"

#include <algorithm>

raster::Region RegionWhere(QSize size, const std::function<bool(int, int)>& isIn)
{
    raster::Region region;
    for (int y = 0; y < size.height(); ++y) {
        bool wasIn = false;
        for (int x = 0; x < size.width(); ++x) {
            const bool isInNow = isIn(x, y);
            if (isInNow && !wasIn) {
                region.push_back({y, x, x});
            }
            if (isInNow) {
                region.back().end = static_cast<quint16>(x + 1);
            }
            wasIn = isInNow;
        }
    }
    return region;
}

raster::Region RegionOf(const QImage& mask)
{
    return RegionWhere(mask.size(), [&mask](int x, int y) {
        return mask.constScanLine(y)[x] != raster::MaskClear;
    });
}

QSize RandomSize(Random& random)
{
    if (random.Below(8) == 0) {
        return {random.Between(150, 2200), random.Between(1, 3)};
    }
    return {random.Between(1, 150), random.Between(1, 30)};
}

QString Difference(const raster::Region& actual, const raster::Region& expected)
{
    const auto text = [](const raster::Region& region, std::size_t i) {
        return i < region.size() ? QStringLiteral("row %1 from %2 to before %3")
                                       .arg(region[i].y)
                                       .arg(region[i].begin)
                                       .arg(region[i].end)
                                 : QStringLiteral("nothing");
    };
    const auto [is, shouldBe] =
        std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (is == actual.end() && shouldBe == expected.end()) {
        return {};
    }
    const auto i = static_cast<std::size_t>(is - actual.begin());
    return QStringLiteral("span %1 is %2, not %3").arg(i).arg(text(actual, i), text(expected, i));
}
