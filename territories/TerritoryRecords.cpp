#include "territories/TerritoryRecords.h"

#include "app/ProjectSettings.h"
#include "app/Xml.h"

#include <QXmlStreamWriter>

QString MetresText(double metres)
{
    return QString::number(metres, 'g', 6);
}

double InSinglePrecision(double value)
{
    // Optimising compilers drop a cast there and back; what is volatile they keep.
    const volatile auto rounded = static_cast<float>(value);
    return static_cast<double>(rounded);
}

WorldScale::WorldScale(const ProjectSettings& settings)
    : metresPerPixelX(settings.MetresPerPixelX())
    , metresPerPixelZ(settings.MetresPerPixelZ())
    , pixelsPerMetreX(settings.PixelsPerMetreX())
    , pixelsPerMetreZ(settings.PixelsPerMetreZ())
    , layerHeight(settings.LayerHeight())
    , worldWidth(settings.WorldWidth())
    , worldHeight(settings.WorldHeight())
{
}

QPointF InScene(float x, float z, const WorldScale& scale)
{
    // Single precision, and z counts from the map's bottom edge.
    const float sceneX = scale.pixelsPerMetreX * x;
    const float sceneY = static_cast<float>(scale.layerHeight) - scale.pixelsPerMetreZ * z;
    return {static_cast<qreal>(sceneX), static_cast<qreal>(sceneY)};
}

WorldCircle InWorld(const ZoneRecord& zone, const WorldScale& scale)
{
    const auto metresX = static_cast<double>(scale.metresPerPixelX);
    const auto metresZ = static_cast<double>(scale.metresPerPixelZ);
    return {InSinglePrecision(metresX * zone.place.x()),
            InSinglePrecision(scale.worldHeight - metresZ * zone.place.y()),
            static_cast<double>(scale.metresPerPixelX * zone.radius)};
}

double AsWritten(double metres)
{
    return static_cast<double>(MetresText(metres).toFloat());
}

WorldCircle AsWritten(const WorldCircle& circle)
{
    return {AsWritten(circle.x), AsWritten(circle.z), AsWritten(circle.radius)};
}

void Write(QXmlStreamWriter& xml, const ZoneRecord& zone, const WorldScale& scale, bool exportMode)
{
    const SpawnCounts& counts = zone.values.counts;
    const WorldCircle circle = InWorld(zone, scale);
    xml.writeEmptyElement(QStringLiteral("zone"));
    WriteTextAttribute(xml, QLatin1String("name"), zone.values.Name());
    xml.writeAttribute(QStringLiteral("smin"), QString::number(counts.staticMin));
    xml.writeAttribute(QStringLiteral("smax"), QString::number(counts.staticMax));
    xml.writeAttribute(QStringLiteral("dmin"), QString::number(counts.dynamicMin));
    xml.writeAttribute(QStringLiteral("dmax"), QString::number(counts.dynamicMax));
    xml.writeAttribute(QStringLiteral("x"), MetresText(circle.x));
    xml.writeAttribute(QStringLiteral("z"), MetresText(circle.z));
    xml.writeAttribute(QStringLiteral("r"), MetresText(circle.radius));
    if (!exportMode) {
        xml.writeAttribute(QStringLiteral("d"), QString::number(zone.values.depth));
    }
}

void Write(QXmlStreamWriter& xml, const TerritoryRecord& territory, const WorldScale& scale,
           bool exportMode)
{
    xml.writeStartElement(QStringLiteral("territory"));
    if (!exportMode) {
        WriteTextAttribute(xml, QLatin1String("name"), territory.name);
        xml.writeAttribute(QStringLiteral("visible"), QString::number(territory.isVisible ? 1 : 0));
    }
    xml.writeAttribute(QStringLiteral("color"), QString::number(territory.color));
    for (const ZoneRecord& zone : territory.zones) {
        Write(xml, zone, scale, exportMode);
    }
    xml.writeEndElement();
}

void Write(QXmlStreamWriter& xml, const TypeRecord& type, const WorldScale& scale)
{
    xml.writeStartElement(QStringLiteral("territory-type"));
    WriteTextAttribute(xml, QLatin1String("name"), type.name);
    for (const TerritoryRecord& territory : type.territories) {
        Write(xml, territory, scale, false);
    }
    xml.writeEndElement();
}

void Write(QXmlStreamWriter& xml, const std::vector<TypeRecord>& types, const WorldScale& scale)
{
    if (types.empty()) {
        return;
    }
    xml.writeComment(QStringLiteral("Territories"));
    xml.writeStartElement(QStringLiteral("territory-type-list"));
    for (const TypeRecord& type : types) {
        Write(xml, type, scale);
    }
    xml.writeEndElement();
}
