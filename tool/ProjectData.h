#pragma once

#include "layers/AreaFlagTypes.h"
#include "territories/SpawnCounts.h"

#include <QColor>
#include <QDir>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>

class QXmlStreamReader;
class TerritoryTypeList;

/// What a project document says, as plain values: reading it creates no folder, loads no bitmap and
/// is no open project of the editor.
struct LayerData
{
    QString name;
    quint32 usageFlags = 0;
    quint32 valueFlags = 0;
    QColor color;
    bool isVisible = false;
};

/// Sums over zones, whatever numbers these hold.
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
    QString name;
    SpawnCounts counts;
    /// World metres.
    float x = 0;
    float z = 0;
    float radius = 0;
    int depth = 0;
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
    /// As given.
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
    /// All that is read of the project: the document, the bitmaps and the background.
    QStringList Files() const;
    /// What is wrong with the size of the layers; empty when nothing is.
    QString LayerSizeError() const;
};

/// As in "800x600".
QString SizeText(QSize size);

/// Opens the document and takes it for the open project as well, as far as its settings go. False
/// after a printed error when it cannot be read, is malformed or is no project.
bool ReadProject(const QString& path, ProjectData& project);

/// Reads the territory types as the editor does; zones depend on the settings that ReadProject
/// took. False after a printed error.
bool ReadTypeList(const QString& path, TerritoryTypeList& types);

/// Reads what the document says of territories, from the "territory-type-list" or
/// "territory-type" element that the reader stands on; the second as its own file has it.
QVector<TerritoryTypeData> ReadTerritoryTypes(QXmlStreamReader& xml);
TerritoryTypeData ReadTerritoryType(QXmlStreamReader& xml);
