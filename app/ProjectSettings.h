#pragma once

#include "layers/AreaFlagTypes.h"

#include <QColor>
#include <QDir>
#include <QImage>
#include <QString>

class QXmlStreamReader;
class QXmlStreamWriter;

/// The place of the open project, the sizes of its world and its layers, and whether it has unsaved
/// changes. There is one object in the process. It is stored as the "global" element of the project
/// document, followed by the "areas" element.
class ProjectSettings
{
public:
    /// The ARGB of a project that stores no background colour. It is transparent and hides nothing.
    static constexpr quint32 DefaultBackground = 2;

    static ProjectSettings& Instance();

    AreaFlagTypes areaFlagTypes;
    /// Relative to projectDir, with "/" separators; may be empty.
    QString backgroundFile;
    QString projectFileName;
    /// The document's file name up to its first dot.
    QString projectName;
    QDir projectDir;
    QColor backgroundColor;
    float metresPerPixelX = 0;
    float metresPerPixelZ = 0;
    float pixelsPerMetreX = 0;
    float pixelsPerMetreZ = 0;
    /// Size of every layer in pixels.
    int layerWidth = 0;
    int layerHeight = 0;
    /// Size of the world in metres.
    int worldWidth = 0;
    int worldHeight = 0;
    bool modified = false;

    /// Layer sizes in pixels, world sizes in metres. Sizes of 0 are not corrected; they make the
    /// factors infinite or NaN.
    void SetSizes(int newLayerWidth, int newLayerHeight, int newWorldWidth, int newWorldHeight);
    QSize LayerSize() const { return {layerWidth, layerHeight}; }

    /// The reader must be on the start tag of "global".
    void ReadXml(QXmlStreamReader& xml);
    void WriteXml(QXmlStreamWriter& xml) const;

    /// A clear mask of the layer size. Null if a mask cannot have that size or there is no memory.
    QImage BlankLayerImage() const;

    QString BackgroundPath() const;
    QString ProjectFilePath() const;
    /// These three functions create their sub-folder of projectDir. If that fails, opening the file
    /// fails later.
    QString MapPath() const;
    QString LayerPath(const QString& layerName) const;
    QString TerritoryTypePath(const QString& typeName) const;

private:
    ProjectSettings() = default;
    QString PathBelow(const QString& folder, const QString& fileName) const;
};
