#include "territories/ZoneNumbers.h"

#include "territories/Pi.h"

#include <cmath>

namespace {

/// What decides the usage; events are told apart by their names.
std::pair<int, QString> UsageOf(const ZoneValues& values)
{
    const bool isEvent = values.usage == ZoneValues::DynamicEvent;
    return {values.usage, isEvent ? values.eventName : QString()};
}

} // namespace

void ZoneSums::Add(const ZoneValues& values)
{
    constexpr double squareMetres = 1e6;
    const auto radius = static_cast<double>(values.radius);
    ++zones;
    creaturesMin += qint64(values.counts.staticMin) + values.counts.dynamicMin;
    creaturesMax += qint64(values.counts.staticMax) + values.counts.dynamicMax;
    // A comparison with NaN is false.
    if (radius > 0 && !std::isinf(radius)) {
        squareKm += Pi * radius * radius / squareMetres;
    }
}

ZoneSums& ZoneSums::operator+=(const ZoneSums& more)
{
    zones += more.zones;
    creaturesMin += more.creaturesMin;
    creaturesMax += more.creaturesMax;
    squareKm += more.squareKm;
    return *this;
}

std::optional<double> ZoneSums::PerSquareKm(qint64 creatures) const
{
    return squareKm > 0 ? std::optional<double>(static_cast<double>(creatures) / squareKm)
                        : std::nullopt;
}

void ZoneNumbers::Add(const ZoneValues& values)
{
    m_all.Add(values);
    m_usages[UsageOf(values)].Add(values);
}

ZoneNumbers& ZoneNumbers::operator+=(const ZoneNumbers& more)
{
    m_all += more.m_all;
    for (const auto& [usage, sums] : more.m_usages) {
        m_usages[usage] += sums;
    }
    return *this;
}

std::vector<ZoneNumbers::UsageSums> ZoneNumbers::Usages() const
{
    std::vector<UsageSums> usages;
    for (const auto& [usage, sums] : m_usages) {
        ZoneValues values;
        values.usage = usage.first;
        values.eventName = usage.second;
        usages.push_back({values.Name(), sums});
    }
    return usages;
}
