#pragma once

#include "app/ProjectDocument.h"
#include "layers/AreaFlagTypes.h"
#include "layers/rules/SettingsRules.h"
#include "territories/ZoneValues.h"

#include <QColor>
#include <QDir>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

class QXmlStreamReader;
class TerritoryTypeList;

/// The content of a project document as plain values. Unlike opening a project in the editor,
/// reading it creates no folders and loads no bitmaps.
struct LayerData
{
    QString name;
    quint32 usageFlags = 0;
    quint32 valueFlags = 0;
    QColor color;
    bool isVisible = false;
};

/// Sums over zones. 64 bits hold the sums of any numbers in a file.
struct SpawnTotals
{
    qint64 staticMin = 0;
    qint64 staticMax = 0;
    qint64 dynamicMin = 0;
    qint64 dynamicMax = 0;

    void operator+=(const SpawnTotals& more);
};

struct ZoneData
{
    ZoneValues values;
    /// World metres.
    float x = 0;
    float z = 0;
};

struct TerritoryData
{
    QString name;
    QRgb color = 0;
    bool isVisible = false;
    QVector<ZoneData> zones;

    SpawnTotals Totals() const;
};

struct TerritoryTypeData
{
    QString name;
    QVector<TerritoryData> territories;
};

struct ProjectData
{
    /// As the user passed it.
    QString path;
    QDir folder;
    /// The file name up to its first dot.
    QString name;
    QString backgroundFile;
    QColor backgroundColor;
    /// Pixels.
    QSize layerSize;
    /// Metres.
    QSize worldSize;
    AreaFlagTypes flagTypes;
    /// In the order of the list, the topmost first.
    QVector<LayerData> layers;
    QVector<TerritoryTypeData> types;

    QString BitmapPath(const LayerData& layer) const;
    QString BackgroundPath() const;
    /// All files of the project: the document, the bitmaps and the background.
    QStringList Files() const;
    /// What is wrong with the size of the layers; empty if nothing is.
    QString LayerSizeError() const { return ::LayerSizeError(layerSize); }
};

/// Reads the document, and also sets the process-wide ProjectSettings from it. Returns false after
/// printing an error if it cannot be read, is malformed or is not a project.
bool ReadProject(const QString& path, ProjectData& project);

/// Reads everything that the document holds, as the editor does, so that it can be written again.
/// Also sets the process-wide ProjectSettings. None after a printed error, as ReadProject.
std::optional<ProjectValues> ReadProjectValues(const QString& path);

/// Reads the territory types as the editor does. Needs the ProjectSettings that ReadProject sets.
/// Returns false after printing an error.
bool ReadTypeList(const QString& path, TerritoryTypeList& types);

/// Reads the names of flags from an area types file, a project or any other document that holds
/// them. Returns false after printing an error.
bool ReadFlagTypes(const QString& path, AreaFlagTypes& types);

/// Reads the territory types of a document, or a single type as an exported file holds it. The
/// reader must be on the start tag of "territory-type-list" or "territory-type".
QVector<TerritoryTypeData> ReadTerritoryTypes(QXmlStreamReader& xml);
TerritoryTypeData ReadTerritoryType(QXmlStreamReader& xml);
