#pragma once

#include <QString>
#include <QVector>

class QXmlStreamReader;
class QXmlStreamWriter;

/// The names of the area flags that layers can carry: usages (what an area is used for) and values
/// (how valuable it is). A flag is known by its index alone, which is its bit in the flags of a
/// layer and in the fields of the area map.
class AreaFlagTypes
{
public:
    /// Flags of one kind that a layer and a map can hold.
    static constexpr int MaxCount = 32;

    /// Taken as they stand; duplicates and empty names are kept.
    QVector<QString> usages;
    QVector<QString> values;

    /// False when a kind has more types than a map can hold.
    bool FitMap() const { return usages.size() <= MaxCount && values.size() <= MaxCount; }

    /// Reads the "areas" element whose start tag the reader stands on. False when the reader has an
    /// error; what was read before it is kept.
    bool ReadXml(QXmlStreamReader& xml);
    /// Reads a definition file, whatever its root element. A file that cannot be opened leaves the
    /// types as they are; a malformed one leaves those before the fault. Both log an error.
    bool ReadFile(const QString& fileName);
    void WriteXml(QXmlStreamWriter& xml) const;

private:
    void ReadNames(QXmlStreamReader& xml, QLatin1String until);
};
