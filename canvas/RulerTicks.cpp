#include "canvas/RulerTicks.h"

#include <algorithm>
#include <cmath>

namespace {

/// Ticks at every multiple of a step in scene units.
struct TickSet
{
    int step;
    /// As a share of the ruler's thickness.
    double gap;
    bool isLabelled;
};

using TickSets = std::vector<TickSet>;

/// The smallest distance of ticks in pixels. It also limits their number.
constexpr double ClosestSpacing = 1;
/// Room for a label in pixels: for each character of the ruler's font, and beside it.
constexpr double CharacterWidth = 7;
constexpr double LabelMargin = 4;
/// Below this zoom labels may be wider than the steps between them.
constexpr float FarZoom = 0.25F;
/// Ticks farther away are left out, because their labels' positions might not fit an int.
constexpr double FarthestPosition = 1e6;
/// The largest number of steps from the origin that can be counted.
constexpr double MostSteps = 1e9;

/// How many times as wide the steps must be from far away, so that the ticks do not become a grey
/// area: a power of two.
int Coarseness(float zoom)
{
    constexpr float closest = FarZoom / 2;
    constexpr int most = 1 << 16;
    int by = 1;
    while (zoom * static_cast<float>(by) <= closest && by < most) {
        by *= 2;
    }
    return by;
}

TickSets TickSetsFor(float zoom)
{
    if (zoom >= 6.0F) {
        return {{25, 0.5, true}, {50, 0.25, false}, {100, 0, false}};
    }
    if (zoom >= 3.0F) {
        return {{25, 0.5, false}, {50, 0.25, true}, {100, 0, false}};
    }
    if (zoom > 0.5F) {
        return {{25, 0.5, false}, {50, 0.25, false}, {100, 0, true}};
    }
    if (zoom > FarZoom) {
        return {{25, 0.5, false}, {50, 0.25, false}, {100, 0, false}, {200, 0, true}};
    }
    const int by = Coarseness(zoom);
    return {
        {25 * by, 0.5, false}, {50 * by, 0.25, false}, {100 * by, 0, false}, {400 * by, 0, true}};
}

/// Goes through one set of ticks along a ruler.
class TickWalk
{
public:
    TickWalk(const RulerScale& scale, const TickSet& set, double thickness,
             std::vector<RulerTick>& ticks)
        : m_scale(scale)
        , m_set(set)
        , m_thickness(thickness)
        , m_ticks(ticks)
        , m_origin(static_cast<double>(scale.origin))
        , m_spacing(set.step * static_cast<double>(scale.zoom))
    {
    }

    void Run(double end)
    {
        if (!std::isfinite(m_origin) || !std::isfinite(m_spacing) || m_spacing < ClosestSpacing) {
            return;
        }
        if (m_origin < 0) {
            Forward(std::trunc(-m_origin / m_spacing), end);
        } else if (m_origin > end) {
            Backward(-std::trunc((m_origin - end) / m_spacing));
        } else {
            Forward(0, end);
            Backward(-1);
        }
    }

private:
    double Position(double n) const { return m_origin + n * m_spacing; }

    void Forward(double first, double end)
    {
        for (double n = first; n < MostSteps && Position(n) <= end; ++n) {
            Add(n);
        }
    }

    void Backward(double first)
    {
        for (double n = first; n > -MostSteps && Position(n) >= 0; --n) {
            Add(n);
        }
    }

    void Add(double n)
    {
        if (std::abs(Position(n)) < FarthestPosition) {
            m_ticks.push_back({Position(n), m_thickness * m_set.gap, Label(n)});
        }
    }

    QString Label(double n) const
    {
        const double value = n * m_set.step * static_cast<double>(m_scale.unit);
        if (!m_set.isLabelled || !std::isfinite(value)) {
            return {};
        }
        // Avoids the label "-0".
        const double shown = m_scale.flipSign && value != 0 ? -value : value;
        return QString::number(shown, 'g', 6);
    }

    const RulerScale& m_scale;
    const TickSet& m_set;
    double m_thickness;
    std::vector<RulerTick>& m_ticks;
    double m_origin;
    double m_spacing;
};

bool DoLabelsFit(const std::vector<RulerTick>& ticks, double spacing)
{
    return std::all_of(ticks.begin(), ticks.end(), [spacing](const RulerTick& tick) {
        return tick.label.size() * CharacterWidth + LabelMargin <= spacing;
    });
}

/// Doubles the step until the labels do not overlap.
std::vector<RulerTick> FarLabels(const RulerScale& scale, TickSet set, double length,
                                 double thickness)
{
    constexpr int longestStep = 1 << 28;
    std::vector<RulerTick> ticks;
    do {
        ticks.clear();
        TickWalk(scale, set, thickness, ticks).Run(length);
        const double spacing = set.step * static_cast<double>(scale.zoom);
        if (!ticks.empty() && DoLabelsFit(ticks, spacing)) {
            break;
        }
        set.step *= 2;
    } while (set.step < longestStep);
    return ticks;
}

} // namespace

std::vector<RulerTick> RulerTicks(const RulerScale& scale, double length, double thickness)
{
    std::vector<RulerTick> ticks;
    if (!(length > 0) || !(thickness > 0)) {
        return ticks;
    }
    for (const TickSet& set : TickSetsFor(scale.zoom)) {
        if (set.isLabelled && scale.zoom < FarZoom) {
            const std::vector<RulerTick> labels = FarLabels(scale, set, length, thickness);
            ticks.insert(ticks.end(), labels.begin(), labels.end());
        } else {
            TickWalk(scale, set, thickness, ticks).Run(length);
        }
    }
    return ticks;
}
