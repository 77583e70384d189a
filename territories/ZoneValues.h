#pragma once

#include "territories/SpawnCounts.h"

#include <QString>

class QXmlStreamReader;

/// What a zone says, apart from its place: the values that are edited, copied, stored and compared.
struct ZoneValues
{
    enum Usage
    {
        Rest = 1,
        Graze = 2,
        Water = 3,
        HuntingGround = 4,
        DynamicEvent = 5,
    };

    SpawnCounts counts;
    /// Metres.
    float radius = 0;
    /// A Usage.
    int usage = Rest;
    /// Meaningful for DynamicEvent only.
    QString eventName;
    /// The stacking order. Zones bring it into their range; files may hold any number.
    int depth = 0;

    /// The keyword of the usage as files hold it; of an event its name.
    QString Name() const;
    /// Any name that is no keyword is that of an event.
    void SetName(const QString& name);

    /// Takes the attributes of the "zone" element that the reader stands on. A missing or malformed
    /// number is 0.
    void ReadXml(const QXmlStreamReader& xml);
};

bool operator==(const ZoneValues& a, const ZoneValues& b);
inline bool operator!=(const ZoneValues& a, const ZoneValues& b)
{
    return !(a == b);
}
