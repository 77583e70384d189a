#include "layers/raster/Mask.h"
#include "layers/raster/TargaCodec.h"
#include "tests/support/Files.h"
#include "tests/support/LiteralTarga.h"
#include "tests/tool/SampleProject.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace {

/// The project with its map and types exported, and a file of area types, types.xml.
class EveryKindOfFile : public SampleProject
{
public:
    EveryKindOfFile()
    {
        WriteBytes(Path("types.xml"), "<areas><usage name=\"A\"/><usage name=\"B\"/></areas>");
        QCOMPARE(Run({"export", "sample.xml"}).exitCode, 0);
    }
};

} // namespace

class tst_ToolInfo : public QObject
{
    Q_OBJECT

private slots:
    void FilesAreDescribed_data();
    void FilesAreDescribed();
    void FlagsOfMapsAreNamed();
    void OnlyMapsNeedNames();
    void KilledSavesAreCompletedFirst();
    void ProjectAsJson();
    void BoundsEndWhereTheMapEnds();
    void LargeBitmapsAreCounted();
    void ManyLayersAreCounted();
    void FilesAsJson_data();
    void FilesAsJson();
    void TellsWhatItCanOfBrokenProjects_data();
    void TellsWhatItCanOfBrokenProjects();
    void SumsDoNotWrap();
    void UnreadableFilesEndWithThree_data();
    void UnreadableFilesEndWithThree();
};

void tst_ToolInfo::FilesAreDescribed_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("text");
    QTest::newRow("project")
        << "sample.xml"
        << "file: sample.xml\nkind: project\nwidth: 8\nheight: 8\nworld-width: 800\n"
           "world-height: 800\nbackground: back.png\nlayers: 2\n"
           "  Shore: visible yes, usages Coast, values Tier1, pixels 5, km2 0.05, percent 7.81\n"
           "  Village: visible yes, usages Town + Farm, values Tier2 + Tier4, pixels 3, km2 0.03, "
           "percent 4.69\n"
           "usage-flags: 3\n"
           "  Coast: bit 0, pixels 5, km2 0.05, percent 7.81\n"
           "  Town: bit 1, pixels 3, km2 0.03, percent 4.69\n"
           "  Farm: bit 2, pixels 3, km2 0.03, percent 4.69\n"
           "value-flags: 4\n"
           "  Tier1: bit 0, pixels 5, km2 0.05, percent 7.81\n"
           "  Tier2: bit 1, pixels 3, km2 0.03, percent 4.69\n"
           "  Tier3: bit 2, pixels 0, km2 0, percent 0\n"
           "  Tier4: bit 3, pixels 3, km2 0.03, percent 4.69\n"
           "territory-types: 2\n"
           "  Deer: territories 1, zones 2, static-min 1, static-max 3, dynamic-min 3, dynamic-max "
           "9\n"
           "  Wolf: territories 0, zones 0, static-min 0, static-max 0, dynamic-min 0, dynamic-max "
           "0\n"
           "all-territories: territories 1, zones 2, static-min 1, static-max 3, dynamic-min 3, "
           "dynamic-max 9\n"
           "layer-bounds: 2\n"
           "  Shore: greys 0, x-min 0, x-max 400, z-min 0, z-max 400\n"
           "  Village: greys 0, x-min 0, x-max 800, z-min 300, z-max 800\n"
           "usage-bounds: 3\n"
           "  Coast: x-min 0, x-max 400, z-min 0, z-max 400\n"
           "  Town: x-min 0, x-max 800, z-min 300, z-max 800\n"
           "  Farm: x-min 0, x-max 800, z-min 300, z-max 800\n"
           "value-bounds: 3\n"
           "  Tier1: x-min 0, x-max 400, z-min 0, z-max 400\n"
           "  Tier2: x-min 0, x-max 800, z-min 300, z-max 800\n"
           "  Tier4: x-min 0, x-max 800, z-min 300, z-max 800\n"
           "zone-numbers: 6\n"
           "  Deer: of type, zones 2, creatures-min 4, creatures-max 12, circles-km2 0.039, "
           "min-per-km2 101.86, max-per-km2 305.58\n"
           "  Deer / North: of territory, zones 2, creatures-min 4, creatures-max 12, circles-km2 "
           "0.039, min-per-km2 101.86, max-per-km2 305.58\n"
           "  Wolf: of type, zones 0, creatures-min 0, creatures-max 0, circles-km2 0\n"
           "  Graze: of usage, zones 1, creatures-min 4, creatures-max 6, circles-km2 0.031, "
           "min-per-km2 127.32, max-per-km2 190.99\n"
           "  Migration: of usage, zones 1, creatures-min 0, creatures-max 6, circles-km2 0.008, "
           "min-per-km2 0, max-per-km2 763.94\n"
           "  all zones: of project, zones 2, creatures-min 4, creatures-max 12, circles-km2 "
           "0.039, "
           "min-per-km2 101.86, max-per-km2 305.58\n";
    QTest::newRow("map") << "sample.map"
                         << "file: sample.map\nkind: map\nwidth: 8\nheight: 8\nworld-width: 800\n"
                            "world-height: 800\nusage-bits: 4\nvalue-bits: 4\nusage-flags: 3\n"
                            "  bit 0: pixels 5, km2 0.05, percent 7.81\n"
                            "  bit 1: pixels 3, km2 0.03, percent 4.69\n"
                            "  bit 2: pixels 3, km2 0.03, percent 4.69\n"
                            "value-flags: 3\n"
                            "  bit 0: pixels 5, km2 0.05, percent 7.81\n"
                            "  bit 1: pixels 3, km2 0.03, percent 4.69\n"
                            "  bit 3: pixels 3, km2 0.03, percent 4.69\n";
    QTest::newRow("bitmap") << "layers/Shore.tga"
                            << "file: layers/Shore.tga\nkind: layer bitmap\nwidth: 8\nheight: 8\n"
                               "cut-off: no\nset: 5\nclear: 59\nother: 0\npercent: 7.81\n";
    QTest::newRow("territory type")
        << "territoryTypes/Deer.xml"
        << "file: territoryTypes/Deer.xml\nkind: territory type\nterritories: 1\n"
           "  1: zones 2, static-min 1, static-max 3, dynamic-min 3, dynamic-max 9\n"
           "all-territories: territories 1, zones 2, static-min 1, static-max 3, dynamic-min 3, "
           "dynamic-max "
           "9\n";
    QTest::newRow("area types") << "types.xml"
                                << "file: types.xml\nkind: area types\nusages: A + B\nvalues: "
                                   "none\n";
}

void tst_ToolInfo::FilesAreDescribed()
{
    QFETCH(QString, file);
    QFETCH(QString, text);
    const EveryKindOfFile project;
    const ProgramRun run = project.Run({"info", file});
    QCOMPARE(run.output, text);
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(project.Run({"info", "--quiet", file}).output, QString());
}

void tst_ToolInfo::FlagsOfMapsAreNamed()
{
    const EveryKindOfFile project;
    const ProgramRun run = project.Run({"info", "sample.map", "--types", "types.xml"});
    const QString named = "usage-flags: 3\n"
                          "  A: bit 0, pixels 5, km2 0.05, percent 7.81\n"
                          "  B: bit 1, pixels 3, km2 0.03, percent 4.69\n"
                          "  bit 2: pixels 3, km2 0.03, percent 4.69\n"
                          "value-flags: 3\n"
                          "  bit 0: pixels 5, km2 0.05, percent 7.81\n";
    QVERIFY2(run.output.contains(named), qPrintable(run.output));
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
    const ProgramRun ofProject = project.Run({"info", "sample.map", "--types", "sample.xml"});
    QVERIFY(ofProject.output.contains("  Tier3: bit 2, pixels 0, km2 0, percent 0\n"));
    const ProgramRun missing = project.Run({"info", "sample.map", "--types", "x.xml"});
    QCOMPARE(missing.log, QStringList{"x.xml: does not exist."});
    QCOMPARE(missing.exitCode, 3);
}

void tst_ToolInfo::OnlyMapsNeedNames()
{
    const EveryKindOfFile project;
    for (const char* file : {"sample.xml", "types.xml", "layers/Shore.tga"}) {
        const ProgramRun run = project.Run({"info", file, "--types", "types.xml"});
        QCOMPARE(run.log, (QStringList{"quillmap-tool: --types is for maps.",
                                       "quillmap-tool: try 'quillmap-tool info --help'."}));
        QCOMPARE(run.output, QString());
        QCOMPARE(run.exitCode, 2);
    }
}

/// Fields of 8 bits leave the last two pixels of a row without a word, those of 1 bit the last six.
void tst_ToolInfo::BoundsEndWhereTheMapEnds()
{
    const SampleProject project;
    QImage mask = raster::BlankMask({70, 70});
    mask.setPixel(5, 66, 1);
    mask.setPixel(30, 3, 255);
    mask.setPixel(66, 10, 255);
    mask.setPixel(69, 0, 255);
    WriteBytes(project.Path("layers/wide.tga"), literal::WriteTarga(mask, false));
    WriteBytes(project.Path("wide.xml"),
               "<qm-config><global><layer size=\"70\"/><world size=\"700\"/></global>"
               "<areas><usages><usage name=\"A\"/><usage name=\"B\"/><usage name=\"C\"/>"
               "<usage name=\"D\"/><usage name=\"E\"/></usages>"
               "<values><value name=\"X\"/></values></areas>"
               "<layers><layer usage_flags=\"2\" value_flags=\"1\" name=\"wide\"/></layers>"
               "</qm-config>");
    const ProgramRun run = project.Run({"info", "wide.xml"});
    QVERIFY2(run.output.contains("\nlayer-bounds: 1\n"
                                 "  wide: greys 1, x-min 50, x-max 700, z-min 30, z-max 700\n"
                                 "usage-bounds: 1\n"
                                 "  B: x-min 50, x-max 670, z-min 30, z-max 670\n"
                                 "value-bounds: 1\n"
                                 "  X: x-min 50, x-max 310, z-min 30, z-max 670\n"),
             qPrintable(run.output));
}

/// A bitmap larger than the tool keeps in memory, so that the tool reads it again for each band.
void tst_ToolInfo::LargeBitmapsAreCounted()
{
    const SampleProject project;
    QImage mask = raster::BlankMask({1200, 1000});
    for (const QPoint pixel : {QPoint(0, 0), QPoint(1199, 500), QPoint(600, 999)}) {
        mask.setPixel(pixel, raster::MaskSet);
    }
    WriteBytes(project.Path("large.tga"), literal::WriteTarga(mask, false));
    const ProgramRun run = project.Run({"info", "large.tga"});
    QVERIFY2(run.output.contains("\nset: 3\nclear: 1199997\nother: 0\n"), qPrintable(run.output));
}

/// More layers than the tool composes in one group.
void tst_ToolInfo::ManyLayersAreCounted()
{
    constexpr int size = 1024;
    constexpr int layers = 260;
    const SampleProject project;
    QByteArray document = "<qm-config><global><layer size=\"1024\"/><world size=\"1024\"/></global>"
                          "<areas><usages><usage name=\"A\"/><usage name=\"B\"/></usages></areas>"
                          "<layers>";
    const auto bitmap = [](const QVector<QPoint>& pixels) {
        QImage mask = raster::BlankMask({size, size});
        for (const QPoint pixel : pixels) {
            mask.setPixel(pixel, raster::MaskSet);
        }
        QByteArray bytes;
        raster::EncodeTarga(mask, raster::TargaPacking::RunLength,
                            [&bytes](const char* data, qint64 count) {
                                bytes.append(data, static_cast<int>(count));
                                return true;
                            });
        return bytes;
    };
    WriteBytes(project.Path("layers/first.tga"), bitmap({{0, 0}}));
    WriteBytes(project.Path("layers/last.tga"), bitmap({{1, 0}, {2, size - 1}}));
    for (int i = 1; i < layers; ++i) {
        const QString name = i == layers - 1 ? "last" : "L" + QString::number(i);
        QFile::link("first.tga", project.Path("layers/" + name + ".tga"));
        document += "<layer usage_flags=\"" + QByteArray(name == "last" ? "3" : "1") +
                    "\" name=\"" + name.toUtf8() + "\"/>";
    }
    WriteBytes(project.Path("many.xml"), document + "</layers></qm-config>");
    const ProgramRun run = project.Run({"info", "many.xml"});
    QCOMPARE(run.log, QStringList());
    QVERIFY2(run.output.contains("  A: bit 0, pixels 3,"), qPrintable(run.output));
    QVERIFY2(run.output.contains("  B: bit 1, pixels 2,"), qPrintable(run.output));
}

void tst_ToolInfo::KilledSavesAreCompletedFirst()
{
    const SampleProject project;
    const QString path = project.Path("sample.xml");
    LeaveKilledSave(project.Path({}), "sample.xml", ReadBytes(path));
    WriteBytes(path, "<qm-config/>");
    QVERIFY(project.Run({"info", "sample.xml"}).output.contains("\nlayers: 2\n"));
}

void tst_ToolInfo::ProjectAsJson()
{
    const SampleProject project;
    const ProgramRun run = project.Run({"info", "--json", "sample.xml"});
    const QJsonObject info = QJsonDocument::fromJson(run.output.toUtf8()).object();
    QCOMPARE(info["width"], QJsonValue(8));
    const QJsonObject village{{"name", "Village"},
                              {"visible", true},
                              {"usages", QJsonArray{"Town", "Farm"}},
                              {"values", QJsonArray{"Tier2", "Tier4"}},
                              {"pixels", 3},
                              {"km2", 0.03},
                              {"percent", 4.69}};
    QCOMPARE(info["layers"].toArray().at(1).toObject(), village);
    const QJsonObject all{{"territories", 1}, {"zones", 2},       {"static-min", 1},
                          {"static-max", 3},  {"dynamic-min", 3}, {"dynamic-max", 9}};
    QCOMPARE(info["all-territories"].toObject(), all);
    QCOMPARE(run.exitCode, 0);
}

void tst_ToolInfo::FilesAsJson_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QJsonObject>("info");
    const auto flag = [](const char* name, int pixels, double km2, double percent) {
        return QJsonObject{{"name", name}, {"pixels", pixels}, {"km2", km2}, {"percent", percent}};
    };
    QTest::newRow("map") << "sample.map"
                         << QJsonObject{{"file", "sample.map"},
                                        {"kind", "map"},
                                        {"width", 8},
                                        {"height", 8},
                                        {"world-width", 800},
                                        {"world-height", 800},
                                        {"usage-bits", 4},
                                        {"value-bits", 4},
                                        {"usage-flags", QJsonArray{flag("bit 0", 5, 0.05, 7.81),
                                                                   flag("bit 1", 3, 0.03, 4.69),
                                                                   flag("bit 2", 3, 0.03, 4.69)}},
                                        {"value-flags", QJsonArray{flag("bit 0", 5, 0.05, 7.81),
                                                                   flag("bit 1", 3, 0.03, 4.69),
                                                                   flag("bit 3", 3, 0.03, 4.69)}}};
    QTest::newRow("bitmap") << "layers/Shore.tga"
                            << QJsonObject{{"file", "layers/Shore.tga"},
                                           {"kind", "layer bitmap"},
                                           {"width", 8},
                                           {"height", 8},
                                           {"cut-off", false},
                                           {"set", 5},
                                           {"clear", 59},
                                           {"other", 0},
                                           {"percent", 7.81}};
    const QJsonObject sums{
        {"zones", 2}, {"static-min", 1}, {"static-max", 3}, {"dynamic-min", 3}, {"dynamic-max", 9}};
    QJsonObject first = sums;
    first["number"] = 1;
    QJsonObject all = sums;
    all["territories"] = 1;
    QTest::newRow("territory type") << "territoryTypes/Deer.xml"
                                    << QJsonObject{{"file", "territoryTypes/Deer.xml"},
                                                   {"kind", "territory type"},
                                                   {"territories", QJsonArray{first}},
                                                   {"all-territories", all}};
    QTest::newRow("area types") << "types.xml"
                                << QJsonObject{{"file", "types.xml"},
                                               {"kind", "area types"},
                                               {"usages", QJsonArray{"A", "B"}},
                                               {"values", QJsonArray()}};
}

void tst_ToolInfo::FilesAsJson()
{
    QFETCH(QString, file);
    QFETCH(QJsonObject, info);
    const EveryKindOfFile project;
    const ProgramRun run = project.Run({"info", "--json", "--quiet", file});
    QCOMPARE(QJsonDocument::fromJson(run.output.toUtf8()).object(), info);
    QCOMPARE(run.exitCode, 0);
}

void tst_ToolInfo::TellsWhatItCanOfBrokenProjects_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("village");
    QByteArray usages;
    for (int i = 0; i < 30; ++i) {
        usages += "<usage name=\"a\"/>";
    }
    QTest::newRow("missing bitmap")
        << QByteArray("\"Village\"") << QByteArray("\"Other\"")
        << "FOLDER/layers/Other.tga: does not exist."
        << "  Other: visible yes, usages Town + Farm, values Tier2 + Tier4\n";
    QTest::newRow("too many flag types")
        << QByteArray("</usages>") << usages + "</usages>"
        << "sample.xml: an area map holds at most 32 usage and 32 value flag types."
        << "  Village: visible yes, usages Town + Farm, values Tier2 + Tier4, pixels 3, km2 0.03, "
           "percent 4.69\n";
}

void tst_ToolInfo::TellsWhatItCanOfBrokenProjects()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QString, error);
    QFETCH(QString, village);
    SampleProject project;
    project.Replace(before, after);
    const ProgramRun run = project.Run({"info", "sample.xml"});
    QCOMPARE(run.log,
             QStringList{error.replace("FOLDER", QDir(project.Path(".")).canonicalPath())});
    QVERIFY(run.output.contains("  Shore: visible yes, usages Coast, values Tier1, pixels 5, "
                                "km2 0.05, percent 7.81\n" +
                                village));
    // The numbers of pixels with a flag are unknown.
    QVERIFY(run.output.contains("\n  Coast: bit 0\n"));
    QCOMPARE(run.exitCode, 3);
}

void tst_ToolInfo::SumsDoNotWrap()
{
    SampleProject project;
    project.Replace("dmax=\"4\"", "dmax=\"2147483647\"");
    project.Replace("dmax=\"5\"", "dmax=\"2147483647\"");
    QVERIFY(project.Run({"info", "sample.xml"}).output.contains("dynamic-max 4294967294\n"));
}

void tst_ToolInfo::UnreadableFilesEndWithThree_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << "x.map" << QByteArray() << "does not exist.";
    QTest::newRow("name in another encoding")
        << QString(QChar::ReplacementCharacter) << QByteArray()
        << "does not exist, or its name is no UTF-8.";
    QTest::newRow("text") << "x.txt" << QByteArray("some text")
                          << "is no project, map, layer bitmap, territory type or area types file.";
    QTest::newRow("another document")
        << "x.xml" << QByteArray("<html/>")
        << "is no project, map, layer bitmap, territory type or area types file.";
    QTest::newRow("short map") << "x.map" << QByteArray(23, '\0')
                               << "is too short for an area map.";
    QTest::newRow("long map") << "x.map" << QByteArray("\1\0\0\0\1", 5) + QByteArray(20, '\0')
                              << "is no area map: 25 bytes instead of 24.";
    QTest::newRow("map without flags of a size that no map has")
        << "x.map" << QByteArray(4, '\1') + QByteArray(20, '\0')
        << "is no area map: 16843009x0 pixels.";
    QTest::newRow("empty bitmap") << "x.TGA" << QByteArray("")
                                  << "is no greyscale TGA file without colour map.";
    QTest::newRow("type cut off") << "x.xml" << QByteArray("<territory-type>\n<territory>")
                                  << "line 2: Premature end of document.";
    QTest::newRow("area types cut off")
        << "x.xml" << QByteArray("<areas>\n") << "line 2: Premature end of document.";
}

void tst_ToolInfo::UnreadableFilesEndWithThree()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    CheckIsUnreadable({"info"}, file, bytes, file + ": " + error);
}

QTEST_APPLESS_MAIN(tst_ToolInfo)
#include "tst_ToolInfo.moc"
