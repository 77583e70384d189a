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
    /// What the editor lets users enter. Files may hold any numbers. Metres.
    static constexpr float MinRadius = 50.0F;
    static constexpr float MaxRadius = 32768.0F;
    static constexpr int MinDepth = 2;
    static constexpr int MaxDepth = 255;
    /// The least is 0.
    static constexpr int MaxCount = 999;

    SpawnCounts counts;
    /// Metres.
    float radius = 0;
    /// A Usage.
    int usage = Rest;
    /// Meaningful for DynamicEvent only.
    QString eventName;
    /// The stacking order. Zones bring it into their range; files may hold any number.
    int depth = 0;

    /// Those of a new zone, as long as the user has chosen no others.
    static ZoneValues OfNewZone();

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
