#pragma once

#include "territories/ZoneValues.h"

#include <QPointF>
#include <QRgb>
#include <QString>

#include <vector>

class ProjectSettings;
class QXmlStreamWriter;

// What zones, territories and their types say, as plain values: no item, no row. They are taken in
// one go from the objects of the project, and written from then on, also on another thread.

/// How places in the scene become world metres, and the other way round.
struct WorldScale
{
    explicit WorldScale(const ProjectSettings& settings);

    float metresPerPixelX;
    float metresPerPixelZ;
    float pixelsPerMetreX;
    float pixelsPerMetreZ;
    /// Pixels.
    int layerHeight;
    /// Metres.
    int worldWidth;
    int worldHeight;
};

/// The place in the scene of a place in the world (metres), as zones have it that are read from a
/// file.
QPointF InScene(float x, float z, const WorldScale& scale);

struct ZoneRecord
{
    /// The depth too.
    ZoneValues values;
    /// Scene units, i.e. layer pixels, as is the radius of the circle on the map.
    QPointF place;
    float radius = 0;
};

/// The circle of a zone as files hold it, before its numbers become text: 32-bit numbers, world
/// metres.
struct WorldCircle
{
    double x = 0;
    double z = 0;
    double radius = 0;
};
WorldCircle InWorld(const ZoneRecord& zone, const WorldScale& scale);
/// World metres as files hold them: six significant digits.
QString MetresText(double metres);
/// What is read back of metres after files have written them.
double AsWritten(double metres);
/// The circle after its numbers became text, and numbers again when the text was read.
WorldCircle AsWritten(const WorldCircle& circle);

struct TerritoryRecord
{
    QString name;
    QRgb color = 0;
    bool isVisible = false;
    /// By ascending id.
    std::vector<ZoneRecord> zones;
};

struct TypeRecord
{
    QString name;
    /// By ascending id.
    std::vector<TerritoryRecord> territories;
};

/// Write the "zone", the "territory" and the "territory-type" element. Export mode leaves out what
/// only the editor needs.
void Write(QXmlStreamWriter& xml, const ZoneRecord& zone, const WorldScale& scale, bool exportMode);
void Write(QXmlStreamWriter& xml, const TerritoryRecord& territory, const WorldScale& scale,
           bool exportMode);
void Write(QXmlStreamWriter& xml, const TypeRecord& type, const WorldScale& scale);
/// Writes the "territory-type-list" element, and nothing when there is no type.
void Write(QXmlStreamWriter& xml, const std::vector<TypeRecord>& types, const WorldScale& scale);

/// The nearest 32-bit number.
double InSinglePrecision(double value);
