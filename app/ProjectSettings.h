#pragma once

#include "layers/AreaFlagTypes.h"

#include <QColor>
#include <QDir>
#include <QImage>
#include <QString>

class QXmlStreamReader;
class QXmlStreamWriter;

/// Where the open project lives, how large its world and its layers are, and whether it has unsaved
/// changes. There is one for the whole process; it is stored as the "global" element of the project
/// document, with the "areas" element behind it.
class ProjectSettings
{
public:
    /// ARGB of a project that stores no background colour: one that hides nothing.
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

    /// Layer sizes in pixels, world sizes in metres. Sizes of 0 make the factors infinite or not a
    /// number, as a project that holds such sizes is taken at its word.
    void SetSizes(int newLayerWidth, int newLayerHeight, int newWorldWidth, int newWorldHeight);
    QSize LayerSize() const { return {layerWidth, layerHeight}; }

    /// The reader stands on the start element "global".
    void ReadXml(QXmlStreamReader& xml);
    void WriteXml(QXmlStreamWriter& xml) const;

    /// A clear mask of the layer size; null where there can be none.
    QImage BlankLayerImage() const;

    QString BackgroundPath() const;
    QString ProjectFilePath() const;
    /// These three create the sub-folder that they name below projectDir; a failure shows when the
    /// file is opened.
    QString MapPath() const;
    QString LayerPath(const QString& layerName) const;
    QString TerritoryTypePath(const QString& typeName) const;

private:
    ProjectSettings() = default;
    QString PathBelow(const QString& folder, const QString& fileName) const;
};
