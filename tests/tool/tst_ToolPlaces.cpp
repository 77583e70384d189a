#include "layers/MapProbe.h"
#include "tests/support/Files.h"
#include "tests/support/LiteralTarga.h"
#include "tests/support/Masks.h"
#include "tests/tool/SampleProject.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <cmath>

/// Probe, tool and exported map must say the same of every place.
class tst_ToolPlaces : public QObject
{
    Q_OBJECT

private slots:
    void ProbeToolAndMapAgree();
};

namespace {

/// QUILLMAP_PROJECTS sets how many; the tool runs three times for each.
int Projects()
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("QUILLMAP_PROJECTS", &isSet);
    constexpr int few = 40;
    return isSet ? wanted : few;
}

constexpr int PlacesOfProject = 500;

struct RandomZone
{
    QString type;
    QString territory;
    int number;
    float x;
    float z;
    float radius;
};

/// A project with random sizes, types, layers and zones, in the folder of a sample.
class RandomProject
{
public:
    explicit RandomProject(Random& random)
        : m_random(random)
        , m_size(random.Between(1, 70))
        , m_world(random.Between(1, 4000))
        , m_usageCount(TypeCount())
        , m_valueCount(TypeCount())
    {
        const QByteArray layers = Layers();
        const QByteArray types = Types();
        WriteBytes(m_folder.Path("random.xml"),
                   "<qm-config><global><layer size=\"" + QByteArray::number(m_size) +
                       "\"/><world size=\"" + QByteArray::number(m_world) +
                       "\"/></global><areas><usages>" + Names("usage", m_usageCount) +
                       "</usages><values>" + Names("value", m_valueCount) +
                       "</values></areas><layers>" + layers + "</layers><territory-type-list>" +
                       types + "</territory-type-list></qm-config>");
    }

    const SampleProject& Folder() const { return m_folder; }
    int Size() const { return m_size; }
    int World() const { return m_world; }
    int UsageCount() const { return m_usageCount; }
    int ValueCount() const { return m_valueCount; }
    const QVector<raster::FlaggedMask>& Masks() const { return m_masks; }
    const QVector<RandomZone>& Zones() const { return m_zones; }

    QString Coordinate()
    {
        // A tenth lies outside; some lie on the edges of pixels.
        const int millimetres = m_world * 1000;
        const int margin = millimetres / 20;
        const int value = m_random.Between(-margin, millimetres + margin);
        return m_random.Below(8) == 0 ? QString::number(value / 1000)
                                      : QString::number(value / 1000.0, 'f', 3);
    }
    QString PixelNumber() { return QString::number(m_random.Between(-2, m_size + 1)); }

private:
    int TypeCount() { return m_random.Below(5) == 0 ? 0 : m_random.Between(1, 32); }

    static QByteArray Names(const QByteArray& kind, int count)
    {
        QByteArray names;
        for (int i = 0; i < count; ++i) {
            names += '<' + kind + " name=\"" + kind + QByteArray::number(i) + "\"/>";
        }
        return names;
    }

    QByteArray Layers()
    {
        QByteArray layers;
        for (int i = m_random.Below(7); i > 0; --i) {
            const QByteArray name = "L" + QByteArray::number(i);
            const quint32 usages = m_random.Below(3) == 0 ? 0 : m_random.Bits();
            const quint32 values = m_random.Below(3) == 0 ? 0 : m_random.Bits() & m_random.Bits();
            m_masks.append({RandomMask(m_random, {m_size, m_size}), usages, values});
            WriteBytes(m_folder.Path("layers/" + name + ".tga"),
                       literal::WriteTarga(m_masks.last().mask, m_random.Below(2) == 0));
            layers += "<layer usage_flags=\"" + QByteArray::number(usages) + "\" value_flags=\"" +
                      QByteArray::number(values) + "\" visible=\"" +
                      QByteArray::number(m_random.Below(2)) + "\" name=\"" + name + "\"/>";
        }
        return layers;
    }

    QByteArray Types()
    {
        QByteArray types;
        for (int type = m_random.Below(4); type > 0; --type) {
            const QByteArray typeName = "Type" + QByteArray::number(type);
            types += "<territory-type name=\"" + typeName + "\">";
            for (int territory = m_random.Below(4); territory > 0; --territory) {
                const QByteArray name = "Territory" + QByteArray::number(territory);
                types += "<territory name=\"" + name + "\">";
                const int zones = m_random.Below(8);
                for (int number = 1; number <= zones; ++number) {
                    types += Zone({typeName, name, number, Number(-m_world / 9, m_world),
                                   Number(0, m_world + m_world / 9), Number(0, m_world / 3)});
                }
                types += "</territory>";
            }
            types += "</territory-type>";
        }
        return types;
    }

    QByteArray Zone(const RandomZone& zone)
    {
        m_zones.append(zone);
        const auto text = [](float number) { return QByteArray::number(double(number), 'g', 9); };
        return "<zone name=\"Rest\" x=\"" + text(zone.x) + "\" z=\"" + text(zone.z) + "\" r=\"" +
               text(zone.radius) + "\"/>";
    }

    float Number(int first, int last)
    {
        return float(m_random.Between(first, last)) + float(m_random.Below(4)) / 4;
    }

    SampleProject m_folder;
    Random& m_random;
    int m_size;
    int m_world;
    int m_usageCount;
    int m_valueCount;
    QVector<raster::FlaggedMask> m_masks;
    QVector<RandomZone> m_zones;
};

/// The little-endian integers of a map.
class MapInts
{
public:
    explicit MapInts(const QByteArray& bytes)
        : m_bytes(bytes)
    {
    }

    quint32 At(int index) const
    {
        quint32 value = 0;
        for (int i = 3; i >= 0; --i) {
            value = value * 256 + static_cast<uchar>(m_bytes.at(4 * index + i));
        }
        return value;
    }

private:
    QByteArray m_bytes;
};

/// The field of a pixel in the section whose bit count is the integer with this index, which
/// becomes that of the next section.
QJsonValue DecodedField(const MapInts& ints, int& section, QPoint pixel)
{
    const int size = int(ints.At(0));
    const int bits = int(ints.At(section++));
    if (bits == 0) {
        return QJsonValue::Null;
    }
    const int pixelsPerWord = 32 / bits;
    const int wordsPerRow = size / pixelsPerWord;
    const int word = section + (size - 1 - pixel.y()) * wordsPerRow + pixel.x() / pixelsPerWord;
    section += wordsPerRow * size;
    if (pixel.x() >= wordsPerRow * pixelsPerWord) {
        return QJsonValue::Null;
    }
    quint64 shifted = ints.At(word);
    for (int i = pixel.x() % pixelsPerWord; i < pixelsPerWord - 1; ++i) {
        shifted >>= bits;
    }
    return qint64(shifted % (quint64(1) << bits));
}

QJsonValue JsonField(const std::optional<quint32>& field)
{
    return field ? QJsonValue(qint64(*field)) : QJsonValue();
}

QJsonArray PlacesOf(const ProgramRun& run)
{
    return QJsonDocument::fromJson(run.output.toUtf8())["places"].toArray();
}

QJsonArray CoveringZones(const QVector<RandomZone>& zones, double x, double z)
{
    QJsonArray covering;
    for (const RandomZone& zone : zones) {
        const double dx = x - double(zone.x);
        const double dz = z - double(zone.z);
        if (dx * dx + dz * dz <= double(zone.radius) * double(zone.radius)) {
            covering.append(QJsonObject{{"type", zone.type},
                                        {"territory", zone.territory},
                                        {"number", zone.number},
                                        {"distance", std::sqrt(dx * dx + dz * dz)}});
        }
    }
    return covering;
}

/// The layers that the pixel shows to be set, by name and grey.
QJsonArray SetLayers(const QVector<raster::FlaggedMask>& masks, QPoint pixel)
{
    QJsonArray layers;
    for (int i = 0; i < masks.size(); ++i) {
        const int grey = masks.at(i).mask.pixelIndex(pixel);
        if (grey != 0) {
            layers.append(QJsonArray{QString("L%1").arg(masks.size() - i), grey});
        }
    }
    return layers;
}

QJsonArray NamesAndGreys(const QJsonArray& layers)
{
    QJsonArray names;
    for (const QJsonValue& layer : layers) {
        names.append(QJsonArray{layer["name"], layer["grey"]});
    }
    return names;
}

/// What is compared over all projects, so that none of it is missing from all of them.
struct Totals
{
    int inside = 0;
    int words = 0;
    int flagged = 0;
    int zones = 0;
};

void ComparePlace(const RandomProject& project, const MapProbe& probe, const MapInts& map,
                  const QJsonObject& ofProject, const QJsonObject& ofMap, Totals& totals)
{
    const double x = ofProject["x"].toDouble();
    const double z = ofProject["z"].toDouble();
    const MapPlace place = probe.At(x, z);
    QCOMPARE(ofProject["zones"].toArray(), CoveringZones(project.Zones(), x, z));
    totals.zones += ofProject["zones"].toArray().size();
    for (const char* key : {"x", "z", "pixel-x", "pixel-y"}) {
        QCOMPARE(ofMap[key], ofProject[key]);
    }
    const double size = project.Size();
    const bool isInside = x >= 0 && x <= project.World() && z >= 0 && z <= project.World();
    QCOMPARE(place.pixel.has_value(), isInside);
    QCOMPARE(ofProject["pixel-x"].isNull(), !isInside);
    if (!isInside) {
        for (const QJsonObject& answer : {ofProject, ofMap}) {
            QVERIFY(answer["usage"]["word"].isNull() && answer["value"]["word"].isNull());
            QCOMPARE(answer["layers"], QJsonValue(QJsonArray()));
        }
        return;
    }
    const QPoint pixel(qMin(int(x * size / project.World()), project.Size() - 1),
                       qMin(int(size - z * size / project.World()), project.Size() - 1));
    QCOMPARE(*place.pixel, pixel);
    QCOMPARE(QPoint(ofProject["pixel-x"].toInt(), ofProject["pixel-y"].toInt()), pixel);
    const LayersHere here = probe.Layers(project.Masks(), place);
    int section = 4;
    for (const char* kind : {"usage", "value"}) {
        const QJsonValue decoded = DecodedField(map, section, pixel);
        QCOMPARE(JsonField(QByteArray(kind) == "usage" ? here.usage : here.value), decoded);
        QCOMPARE(ofProject[kind]["word"], decoded);
        QCOMPARE(ofMap[kind]["word"], decoded);
        totals.words += decoded.isNull() ? 0 : 1;
        totals.flagged += decoded.toDouble() != 0 ? 1 : 0;
    }
    QCOMPARE(NamesAndGreys(ofProject["layers"].toArray()), SetLayers(project.Masks(), pixel));
    ++totals.inside;
}

} // namespace

void tst_ToolPlaces::ProbeToolAndMapAgree()
{
    Random random;
    Totals totals;
    for (int i = 0; i < Projects(); ++i) {
        RandomProject project(random);
        const bool asPixels = random.Below(3) == 0;
        QByteArray places;
        for (int place = 0; place < PlacesOfProject; ++place) {
            const QString first = asPixels ? project.PixelNumber() : project.Coordinate();
            const QString second = asPixels ? project.PixelNumber() : project.Coordinate();
            places += (first + ' ' + second + '\n').toUtf8();
        }
        const SampleProject& folder = project.Folder();
        WriteBytes(folder.Path("places.txt"), places);
        QCOMPARE(folder.Run({"export", "random.xml"}).exitCode, 0);
        const auto ask = [&](const QString& file) {
            QStringList arguments = {"at", file, "--json"};
            if (asPixels) {
                arguments.append("--pixel");
            }
            return PlacesOf(folder.RunLimited("exec < places.txt", arguments));
        };
        const QJsonArray ofProject = ask("random.xml");
        const QJsonArray ofMap = ask("random.map");
        QCOMPARE(ofProject.size(), PlacesOfProject);
        QCOMPARE(ofMap.size(), PlacesOfProject);
        const MapProbe probe({project.Size(), project.Size()}, {project.World(), project.World()},
                             raster::FieldBits(project.UsageCount()),
                             raster::FieldBits(project.ValueCount()));
        const MapInts map(ReadBytes(folder.Path("random.map")));
        for (int place = 0; place < PlacesOfProject; ++place) {
            ComparePlace(project, probe, map, ofProject.at(place).toObject(),
                         ofMap.at(place).toObject(), totals);
            if (QTest::currentTestFailed()) {
                qWarning("%s", qPrintable(QString("Project %1 of %2 pixels, place %3")
                                              .arg(i)
                                              .arg(project.Size())
                                              .arg(place)));
                return;
            }
        }
    }
    const int all = Projects() * PlacesOfProject;
    QVERIFY(totals.inside > all / 2 && totals.inside < all);
    QVERIFY(totals.words > totals.inside / 2);
    QVERIFY(totals.flagged > totals.words / 20);
    QVERIFY(totals.zones > all / 20);
}

QTEST_APPLESS_MAIN(tst_ToolPlaces)
#include "tst_ToolPlaces.moc"
