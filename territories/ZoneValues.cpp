#include "territories/ZoneValues.h"

#include "app/Xml.h"

#include <array>

namespace {

/// The keywords of the fixed usages from Rest on.
constexpr std::array<const char*, 4> UsageNames = {"Rest", "Graze", "Water", "HuntingGround"};

bool IsFixedUsage(int usage)
{
    return usage >= ZoneValues::Rest && usage < ZoneValues::DynamicEvent;
}

QLatin1String UsageName(int usage)
{
    return QLatin1String(UsageNames[static_cast<std::size_t>(usage - ZoneValues::Rest)]);
}

} // namespace

ZoneValues ZoneValues::OfNewZone()
{
    ZoneValues values;
    values.radius = 300.0F;
    return values;
}

QString ZoneValues::Name() const
{
    return IsFixedUsage(usage) ? QString(UsageName(usage)) : eventName;
}

void ZoneValues::SetName(const QString& name)
{
    usage = Rest;
    while (IsFixedUsage(usage) && name != UsageName(usage)) {
        ++usage;
    }
    eventName = usage == DynamicEvent ? name : QString();
}

void ZoneValues::ReadXml(const QXmlStreamReader& xml)
{
    SetName(TextAttribute(xml, QLatin1String("name")));
    counts.staticMin = IntAttribute(xml, QLatin1String("smin"), 0);
    counts.staticMax = IntAttribute(xml, QLatin1String("smax"), 0);
    counts.dynamicMin = IntAttribute(xml, QLatin1String("dmin"), 0);
    counts.dynamicMax = IntAttribute(xml, QLatin1String("dmax"), 0);
    radius = FloatAttribute(xml, QLatin1String("r"), 0);
    depth = IntAttribute(xml, QLatin1String("d"), 0);
}

bool operator==(const ZoneValues& a, const ZoneValues& b)
{
    return a.counts == b.counts && a.radius == b.radius && a.usage == b.usage &&
           a.eventName == b.eventName && a.depth == b.depth;
}
