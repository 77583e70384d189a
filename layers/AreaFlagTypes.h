#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

class QXmlStreamReader;
class QXmlStreamWriter;

/// The names of the area flags that layers can carry: usages (what an area is used for) and values
/// (how valuable it is). Only a flag's index identifies it: the index is its bit in the flags of a
/// layer and in the fields of the area map.
class AreaFlagTypes
{
public:
    /// The largest number of flags of one kind in a layer and a map.
    static constexpr int MaxCount = 32;

    /// Names are not checked: they may be empty or occur twice.
    QVector<QString> usages;
    QVector<QString> values;

    /// False if there are more types of a kind than a map can hold.
    bool FitMap() const { return usages.size() <= MaxCount && values.size() <= MaxCount; }

    /// What a bit is called: the name of its type, or such as "bit 5" if it has none.
    static QString BitName(int bit, const QVector<QString>& names);
    /// The same for all bits of the flags, the lowest first.
    static QStringList BitNames(quint32 flags, const QVector<QString>& names);

    /// Reads the "areas" element; the reader must be on its start tag. Returns false if the reader
    /// has an error; the types before the error are kept.
    bool ReadXml(QXmlStreamReader& xml);
    /// Reads a definition file with any root element. If the file cannot be opened, the types do
    /// not change. If it is malformed, the types before the error are kept. Both cases log an
    /// error.
    bool ReadFile(const QString& fileName);
    void WriteXml(QXmlStreamWriter& xml) const;

private:
    void ReadNames(QXmlStreamReader& xml, QLatin1String until);
};
