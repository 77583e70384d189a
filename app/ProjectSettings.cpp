#include "app/ProjectSettings.h"

#include "app/Xml.h"
#include "layers/raster/Mask.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

ProjectSettings& ProjectSettings::Instance()
{
    static ProjectSettings settings;
    return settings;
}

void ProjectSettings::SetSizes(int newLayerWidth, int newLayerHeight, int newWorldWidth,
                               int newWorldHeight)
{
    layerWidth = newLayerWidth;
    layerHeight = newLayerHeight;
    worldWidth = newWorldWidth;
    worldHeight = newWorldHeight;
    const auto layerX = static_cast<float>(layerWidth);
    const auto layerZ = static_cast<float>(layerHeight);
    const auto worldX = static_cast<float>(worldWidth);
    const auto worldZ = static_cast<float>(worldHeight);
    metresPerPixelX = worldX / layerX;
    metresPerPixelZ = worldZ / layerZ;
    pixelsPerMetreX = layerX / worldX;
    pixelsPerMetreZ = layerZ / worldZ;
}

void ProjectSettings::ReadXml(QXmlStreamReader& xml)
{
    constexpr int defaultLayerSize = 2048;
    constexpr int defaultWorldSize = 15360;
    int layerSize = defaultLayerSize;
    int worldSize = defaultWorldSize;
    backgroundFile.clear();
    backgroundColor.setRgba(DefaultBackground);
    const XmlHandlers handlers = {
        {QLatin1String("background"),
         [this](QXmlStreamReader& element) {
             backgroundFile = TextAttribute(element, QLatin1String("file"));
             backgroundColor.setRgba(
                 UIntAttribute(element, QLatin1String("rgba"), DefaultBackground));
             return true;
         }},
        {QLatin1String("layer"),
         [&](QXmlStreamReader& element) {
             layerSize = IntAttribute(element, QLatin1String("size"), defaultLayerSize);
             return true;
         }},
        {QLatin1String("world"),
         [&](QXmlStreamReader& element) {
             worldSize = IntAttribute(element, QLatin1String("size"), defaultWorldSize);
             return true;
         }},
    };
    WalkXml(xml, handlers, QLatin1String("global"));
    SetSizes(layerSize, layerSize, worldSize, worldSize);
    modified = false;
}

void ProjectSettings::WriteXml(QXmlStreamWriter& xml) const
{
    xml.writeStartElement(QStringLiteral("global"));
    xml.writeEmptyElement(QStringLiteral("background"));
    WriteTextAttribute(xml, QLatin1String("file"), backgroundFile);
    xml.writeAttribute(QStringLiteral("rgba"), QString::number(backgroundColor.rgba()));
    xml.writeEmptyElement(QStringLiteral("layer"));
    xml.writeAttribute(QStringLiteral("size"), QString::number(layerWidth));
    xml.writeEmptyElement(QStringLiteral("world"));
    xml.writeAttribute(QStringLiteral("size"), QString::number(worldWidth));
    xml.writeEndElement();
    areaFlagTypes.WriteXml(xml);
}

QImage ProjectSettings::BlankLayerImage() const
{
    return raster::BlankMask(LayerSize());
}

QString ProjectSettings::BackgroundPath() const
{
    return projectDir.path() + QLatin1Char('/') + backgroundFile;
}

QString ProjectSettings::ProjectFilePath() const
{
    return projectDir.path() + QLatin1Char('/') + projectFileName;
}

QString ProjectSettings::MapPath() const
{
    return PathBelow(QStringLiteral("map"), projectName + QStringLiteral(".map"));
}

QString ProjectSettings::LayerPath(const QString& layerName) const
{
    return PathBelow(QStringLiteral("layers"), layerName + QStringLiteral(".tga"));
}

QString ProjectSettings::TerritoryTypePath(const QString& typeName) const
{
    return PathBelow(QStringLiteral("territoryTypes"), typeName + QStringLiteral(".xml"));
}

QString ProjectSettings::PathBelow(const QString& folder, const QString& fileName) const
{
    projectDir.mkdir(folder);
    return projectDir.path() + QLatin1Char('/') + folder + QLatin1Char('/') + fileName;
}
