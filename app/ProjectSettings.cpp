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

void ProjectSettings::SetSizesOnly(int newLayerWidth, int newLayerHeight, int newWorldWidth,
                                   int newWorldHeight)
{
    m_layerWidth = newLayerWidth;
    m_layerHeight = newLayerHeight;
    m_worldWidth = newWorldWidth;
    m_worldHeight = newWorldHeight;
}

void ProjectSettings::SetSizes(int newLayerWidth, int newLayerHeight, int newWorldWidth,
                               int newWorldHeight)
{
    SetSizesOnly(newLayerWidth, newLayerHeight, newWorldWidth, newWorldHeight);
    const auto layerX = static_cast<float>(m_layerWidth);
    const auto layerZ = static_cast<float>(m_layerHeight);
    const auto worldX = static_cast<float>(m_worldWidth);
    const auto worldZ = static_cast<float>(m_worldHeight);
    m_metresPerPixelX = worldX / layerX;
    m_metresPerPixelZ = worldZ / layerZ;
    m_pixelsPerMetreX = layerX / worldX;
    m_pixelsPerMetreZ = layerZ / worldZ;
}

void ProjectSettings::ReadXml(QXmlStreamReader& xml)
{
    constexpr int defaultLayerSize = 2048;
    constexpr int defaultWorldSize = 15360;
    int layerSize = defaultLayerSize;
    int worldSize = defaultWorldSize;
    m_backgroundFile.clear();
    m_backgroundColor.setRgba(DefaultBackground);
    const XmlHandlers handlers = {
        {QLatin1String("background"),
         [this](QXmlStreamReader& element) {
             m_backgroundFile = TextAttribute(element, QLatin1String("file"));
             m_backgroundColor.setRgba(
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
    m_isModified = false;
}

void ProjectSettings::WriteXml(QXmlStreamWriter& xml) const
{
    xml.writeStartElement(QStringLiteral("global"));
    xml.writeEmptyElement(QStringLiteral("background"));
    WriteTextAttribute(xml, QLatin1String("file"), m_backgroundFile);
    xml.writeAttribute(QStringLiteral("rgba"), QString::number(m_backgroundColor.rgba()));
    xml.writeEmptyElement(QStringLiteral("layer"));
    xml.writeAttribute(QStringLiteral("size"), QString::number(m_layerWidth));
    xml.writeEmptyElement(QStringLiteral("world"));
    xml.writeAttribute(QStringLiteral("size"), QString::number(m_worldWidth));
    xml.writeEndElement();
    m_flagTypes.WriteXml(xml);
}

QImage ProjectSettings::BlankLayerImage() const
{
    return raster::BlankMask(LayerSize());
}

QString ProjectSettings::BackgroundPath() const
{
    return m_dir.path() + QLatin1Char('/') + m_backgroundFile;
}

QString ProjectSettings::ProjectFilePath() const
{
    return m_dir.path() + QLatin1Char('/') + m_fileName;
}

QString ProjectSettings::MapPath() const
{
    return PathBelow(QStringLiteral("map"), m_name + QStringLiteral(".map"));
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
    m_dir.mkdir(folder);
    return m_dir.path() + QLatin1Char('/') + folder + QLatin1Char('/') + fileName;
}
