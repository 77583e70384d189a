#include "territories/ZoneArrangement.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

using Coordinate = double (*)(const QPointF& centre);

double X(const QPointF& centre)
{
    return centre.x();
}

double Z(const QPointF& centre)
{
    return centre.y();
}

struct Range
{
    double smallest;
    double largest;

    double Middle() const { return smallest + (largest - smallest) / 2; }
};

Range RangeOf(const std::vector<QPointF>& centres, Coordinate coordinate)
{
    const auto [smallest, largest] = std::minmax_element(
        centres.begin(), centres.end(),
        [coordinate](const QPointF& a, const QPointF& b) { return coordinate(a) < coordinate(b); });
    return {coordinate(*smallest), coordinate(*largest)};
}

std::vector<QPointF> WithX(std::vector<QPointF> centres, double x)
{
    for (QPointF& centre : centres) {
        centre.setX(x);
    }
    return centres;
}

std::vector<QPointF> WithZ(std::vector<QPointF> centres, double z)
{
    for (QPointF& centre : centres) {
        centre.setY(z);
    }
    return centres;
}

/// The indices of the centres, by ascending key; equal ones as they are.
template <typename Key>
std::vector<std::size_t> OrderBy(const std::vector<QPointF>& centres, Key key)
{
    std::vector<std::size_t> order(centres.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return key(centres[a]) < key(centres[b]);
    });
    return order;
}

std::vector<QPointF> Distributed(std::vector<QPointF> centres, bool isAlongX)
{
    const Coordinate coordinate = isAlongX ? X : Z;
    const Range range = RangeOf(centres, coordinate);
    const std::vector<std::size_t> order = OrderBy(centres, coordinate);
    const auto steps = static_cast<double>(order.size() - 1);
    for (std::size_t i = 1; i + 1 < order.size(); ++i) {
        const double share = static_cast<double>(i) / steps;
        const double place = range.smallest + (range.largest - range.smallest) * share;
        QPointF& centre = centres[order[i]];
        (isAlongX ? centre.rx() : centre.ry()) = place;
    }
    return centres;
}

std::vector<QPointF> OnCircle(std::vector<QPointF> centres, double radius)
{
    const auto count = static_cast<double>(centres.size());
    const QPointF middle = std::accumulate(centres.begin(), centres.end(), QPointF()) / count;
    const auto angle = [middle](const QPointF& centre) {
        return std::atan2(centre.y() - middle.y(), centre.x() - middle.x());
    };
    const std::vector<std::size_t> order = OrderBy(centres, angle);
    const double first = angle(centres[order.front()]);
    for (std::size_t i = 0; i < order.size(); ++i) {
        const double direction = first + 2 * M_PI * static_cast<double>(i) / count;
        centres[order[i]] = middle + radius * QPointF(std::cos(direction), std::sin(direction));
    }
    return centres;
}

} // namespace

std::vector<QPointF> Arranged(const std::vector<QPointF>& centres, ZoneArrangement arrangement,
                              double radius)
{
    if (centres.empty()) {
        return {};
    }
    switch (arrangement) {
    case ZoneArrangement::AlignLeft:
        return WithX(centres, RangeOf(centres, X).smallest);
    case ZoneArrangement::AlignCentreX:
        return WithX(centres, RangeOf(centres, X).Middle());
    case ZoneArrangement::AlignRight:
        return WithX(centres, RangeOf(centres, X).largest);
    case ZoneArrangement::AlignTop:
        return WithZ(centres, RangeOf(centres, Z).largest);
    case ZoneArrangement::AlignCentreZ:
        return WithZ(centres, RangeOf(centres, Z).Middle());
    case ZoneArrangement::AlignBottom:
        return WithZ(centres, RangeOf(centres, Z).smallest);
    case ZoneArrangement::DistributeX:
        return Distributed(centres, true);
    case ZoneArrangement::DistributeZ:
        return Distributed(centres, false);
    case ZoneArrangement::Circle:
        return OnCircle(centres, radius);
    }
    return centres;
}
