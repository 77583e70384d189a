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

    const AreaFlagTypes& FlagTypes() const { return m_flagTypes; }
    void SetFlagTypes(const AreaFlagTypes& types) { m_flagTypes = types; }
    /// The picture behind the map, relative to Dir, with "/" separators; may be empty.
    const QString& BackgroundFile() const { return m_backgroundFile; }
    void SetBackgroundFile(const QString& file) { m_backgroundFile = file; }
    const QColor& BackgroundColor() const { return m_backgroundColor; }
    void SetBackgroundColor(const QColor& color) { m_backgroundColor = color; }

    /// The document's file name, and that name up to its first dot; empty for a project that was
    /// never saved.
    const QString& FileName() const { return m_fileName; }
    void SetFileName(const QString& name) { m_fileName = name; }
    const QString& Name() const { return m_name; }
    void SetName(const QString& name) { m_name = name; }
    /// The document's folder.
    const QDir& Dir() const { return m_dir; }
    void SetDir(const QDir& dir) { m_dir = dir; }

    /// Whether there are unsaved changes.
    bool IsModified() const { return m_isModified; }
    void SetModified(bool isModified) { m_isModified = isModified; }

    float MetresPerPixelX() const { return m_metresPerPixelX; }
    float MetresPerPixelZ() const { return m_metresPerPixelZ; }
    float PixelsPerMetreX() const { return m_pixelsPerMetreX; }
    float PixelsPerMetreZ() const { return m_pixelsPerMetreZ; }
    /// The size of every layer in pixels.
    int LayerWidth() const { return m_layerWidth; }
    int LayerHeight() const { return m_layerHeight; }
    /// The size of the world in metres.
    int WorldWidth() const { return m_worldWidth; }
    int WorldHeight() const { return m_worldHeight; }

    /// Layer sizes in pixels, world sizes in metres. Sizes of 0 make the factors infinite or not a
    /// number, as a project that holds such sizes is taken at its word.
    void SetSizes(int newLayerWidth, int newLayerHeight, int newWorldWidth, int newWorldHeight);
    /// The same, but the factors between pixels and metres stay.
    void SetSizesOnly(int newLayerWidth, int newLayerHeight, int newWorldWidth, int newWorldHeight);
    QSize LayerSize() const { return {m_layerWidth, m_layerHeight}; }

    /// The reader must be on the start tag of "global".
    void ReadXml(QXmlStreamReader& xml);
    void WriteXml(QXmlStreamWriter& xml) const;

    /// A clear mask of the layer size. Null if a mask cannot have that size or there is no memory.
    QImage BlankLayerImage() const;

    QString BackgroundPath() const;
    QString ProjectFilePath() const;
    /// These three functions create their sub-folder of Dir. If that fails, opening the file
    /// fails later.
    QString MapPath() const;
    QString LayerPath(const QString& layerName) const;
    QString TerritoryTypePath(const QString& typeName) const;

private:
    ProjectSettings() = default;
    QString PathBelow(const QString& folder, const QString& fileName) const;

    AreaFlagTypes m_flagTypes;
    QString m_backgroundFile;
    QString m_fileName;
    QString m_name;
    QDir m_dir;
    QColor m_backgroundColor;
    float m_metresPerPixelX = 0;
    float m_metresPerPixelZ = 0;
    float m_pixelsPerMetreX = 0;
    float m_pixelsPerMetreZ = 0;
    int m_layerWidth = 0;
    int m_layerHeight = 0;
    int m_worldWidth = 0;
    int m_worldHeight = 0;
    bool m_isModified = false;
};
