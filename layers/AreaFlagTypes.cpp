#include "layers/AreaFlagTypes.h"

#include "app/Log.h"
#include "app/Xml.h"

#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

QString AreaFlagTypes::BitName(int bit, const QVector<QString>& names)
{
    return names.value(bit, QStringLiteral("bit %1").arg(bit));
}

QStringList AreaFlagTypes::BitNames(quint32 flags, const QVector<QString>& names)
{
    QStringList texts;
    for (int bit = 0; bit < MaxCount; ++bit) {
        if ((flags >> bit & 1U) != 0) {
            texts.append(BitName(bit, names));
        }
    }
    return texts;
}

bool AreaFlagTypes::ReadXml(QXmlStreamReader& xml)
{
    ReadNames(xml, QLatin1String("areas"));
    return !xml.hasError();
}

bool AreaFlagTypes::ReadFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        LogError(QStringLiteral("Failed to open area types file for reading."));
        return false;
    }
    QXmlStreamReader xml(&file);
    ReadNames(xml, {});
    if (xml.hasError()) {
        LogError(QStringLiteral("XML parse error '%1' in area types definition file.")
                     .arg(xml.errorString()));
        return false;
    }
    return true;
}

void AreaFlagTypes::ReadNames(QXmlStreamReader& xml, QLatin1String until)
{
    usages.clear();
    values.clear();
    const auto appendTo = [](QVector<QString>& names) {
        return [&names](QXmlStreamReader& element) {
            names.append(TextAttribute(element, QLatin1String("name")));
            return true;
        };
    };
    WalkXml(
        xml,
        {{QLatin1String("usage"), appendTo(usages)}, {QLatin1String("value"), appendTo(values)}},
        until);
}

namespace {

void WriteNames(QXmlStreamWriter& xml, const QString& group, const QString& element,
                const QVector<QString>& names)
{
    xml.writeStartElement(group);
    for (const QString& name : names) {
        xml.writeEmptyElement(element);
        WriteTextAttribute(xml, QLatin1String("name"), name);
    }
    xml.writeEndElement();
}

} // namespace

void AreaFlagTypes::WriteXml(QXmlStreamWriter& xml) const
{
    xml.writeStartElement(QStringLiteral("areas"));
    WriteNames(xml, QStringLiteral("usages"), QStringLiteral("usage"), usages);
    WriteNames(xml, QStringLiteral("values"), QStringLiteral("value"), values);
    xml.writeEndElement();
}
