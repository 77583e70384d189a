#pragma once

#include "territories/ZoneValues.h"

#include <QString>
#include <QtGlobal>

#include <map>
#include <optional>
#include <utility>
#include <vector>

/// Sums over some zones. 64 bits hold the sums of any numbers that files have.
struct ZoneSums
{
    qint64 zones = 0;
    /// Static and dynamic ones together.
    qint64 creaturesMin = 0;
    qint64 creaturesMax = 0;
    /// The areas of the circles. Ground that several circles cover counts once for each. A circle
    /// whose radius is negative or no number has none.
    double squareKm = 0;

    /// The radius is in metres.
    void Add(const ZoneValues& values);
    ZoneSums& operator+=(const ZoneSums& more);
    /// Creatures for each square kilometre; nothing without an area.
    std::optional<double> MinPerSquareKm() const { return PerSquareKm(creaturesMin); }
    std::optional<double> MaxPerSquareKm() const { return PerSquareKm(creaturesMax); }

private:
    std::optional<double> PerSquareKm(qint64 creatures) const;
};

/// Sums over the zones of a territory, a type or a project, as a whole and by usage.
class ZoneNumbers
{
public:
    void Add(const ZoneValues& values);
    ZoneNumbers& operator+=(const ZoneNumbers& more);

    const ZoneSums& All() const { return m_all; }
    /// By the words that files hold for them (ZoneValues::Name); each event is a usage. Those of
    /// the editor's list come first, then the events by their names.
    struct UsageSums
    {
        QString name;
        ZoneSums sums;
    };
    std::vector<UsageSums> Usages() const;

private:
    ZoneSums m_all;
    /// By usage and name of the event.
    std::map<std::pair<int, QString>, ZoneSums> m_usages;
};
