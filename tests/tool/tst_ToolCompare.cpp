#include "tests/support/Files.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/Masks.h"
#include "tests/tool/SampleProject.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <functional>

namespace {

using Change = std::function<void(SampleProject&)>;

Change Replacing(const QByteArray& before, const QByteArray& after)
{
    return [=](SampleProject& project) { project.Replace(before, after); };
}

QByteArray Map(const QStringList& rows, quint32 usageFlags, int usageTypes)
{
    const QImage mask = MaskFromArt(rows);
    return literal::WriteMap({{mask, usageFlags, 1}}, mask.size(), {80, 80}, usageTypes, 1);
}

} // namespace

Q_DECLARE_METATYPE(Change)

class tst_ToolCompare : public QObject
{
    Q_OBJECT

private slots:
    void EqualMapsEndWithZero();
    void MapsDifferByFlag();
    void FlagsOfMapsAreNamed();
    void MapsOfOtherBitsAreCompared();
    void MapsOfOtherSizesAreNotCompared();
    void ProjectsDiffer_data();
    void ProjectsDiffer();
    void OrderOfTerritoriesIsCompared();
    void DifferencesAsJson();
    void MapIsWhatTheProjectExports();
    void MapDiffersFromTheProject();
    void MapOfAnotherSizeDiffersFromTheProject();
    void ProjectWithoutBitmapIsNotCompared();
    void PictureShowsWhereFlagsDiffer();
    void UnwrittenPictureEndsWithFour();
    void OtherFilesCannotBeCompared_data();
    void OtherFilesCannotBeCompared();
};

void tst_ToolCompare::EqualMapsEndWithZero()
{
    const SampleProject project;
    WriteBytes(project.Path("a.map"), Map(QStringList{"........"}, 1, 6));
    const ProgramRun run = project.Run({"compare", "a.map", "a.map"});
    QCOMPARE(run.output, QString("a: a.map\nb: a.map\nequal: yes\ndifferences: 0\n"));
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(project.Run({"compare", "--quiet", "a.map", "a.map"}).output, QString());
}

void tst_ToolCompare::MapsDifferByFlag()
{
    const SampleProject project;
    QStringList rows = QVector<QString>(100, QString(32, '.')).toList();
    WriteBytes(project.Path("a.map"), Map(rows, 5, 6));
    rows[10][3] = '#';
    rows[90][8] = '#';
    WriteBytes(project.Path("b.map"), Map(rows, 5, 6));
    const ProgramRun run = project.Run({"compare", "a.map", "b.map"});
    QCOMPARE(run.output,
             QString("a: a.map\nb: b.map\nequal: no\ndifferences: 3\n"
                     "  usage flag 0: only-a 0, only-b 2, left 3, top 10, right 8, bottom 90\n"
                     "  usage flag 2: only-a 0, only-b 2, left 3, top 10, right 8, bottom 90\n"
                     "  value flag 0: only-a 0, only-b 2, left 3, top 10, right 8, bottom 90\n"));
    QCOMPARE(run.exitCode, 1);
}

void tst_ToolCompare::FlagsOfMapsAreNamed()
{
    const SampleProject project;
    WriteBytes(project.Path("a.map"), Map({QString(32, '.')}, 5, 6));
    WriteBytes(project.Path("b.map"), Map({QString(32, '#')}, 9, 6));
    const ProgramRun run = project.Run({"compare", "--types", "sample.xml", "a.map", "b.map"});
    QVERIFY2(run.output.contains("\n  usage flag 0 'Coast': only-a 0, only-b 32,"),
             qPrintable(run.output));
    QVERIFY2(run.output.contains("\n  usage flag 3: only-a 0, only-b 32,"), qPrintable(run.output));
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(project.Run({"compare", "--types", "x.xml", "a.map", "b.map"}).exitCode, 3);
    QCOMPARE(project.Run({"compare", "--types", "sample.xml", "sample.xml", "sample.xml"}).exitCode,
             2);
}

void tst_ToolCompare::MapsOfOtherBitsAreCompared()
{
    const SampleProject project;
    const QStringList rows = {"#......." + QString(24, '.')};
    WriteBytes(project.Path("a.map"), Map(rows, 1, 3));
    WriteBytes(project.Path("b.map"), Map(rows, 33, 6));
    const ProgramRun run = project.Run({"compare", "a.map", "b.map"});
    QCOMPARE(run.output,
             QString("a: a.map\nb: b.map\nequal: no\ndifferences: 2\n"
                     "  usage bits: a 4, b 8\n"
                     "  usage flag 5: only-a 0, only-b 1, left 0, top 0, right 0, bottom 0\n"));
    QCOMPARE(run.exitCode, 1);
}

void tst_ToolCompare::MapsOfOtherSizesAreNotCompared()
{
    const SampleProject project;
    WriteBytes(project.Path("a.map"), Map({QString(32, '.')}, 1, 1));
    WriteBytes(project.Path("b.map"), Map({QString(32, '.'), QString(32, '#')}, 1, 1));
    const ProgramRun run = project.Run({"compare", "a.map", "b.map"});
    QCOMPARE(run.output, QString("a: a.map\nb: b.map\nequal: no\ndifferences: 1\n"
                                 "  layer size: a 32x1, b 32x2\n"));
    QCOMPARE(run.exitCode, 1);
    const ProgramRun painted = project.Run({"compare", "-q", "-o", "d.png", "a.map", "b.map"});
    QCOMPARE(painted.log, QStringList{"d.png: there is no picture of two sizes."});
    QCOMPARE(painted.exitCode, 4);
}

void tst_ToolCompare::ProjectsDiffer_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QStringList>("differences");
    const auto row = [](const char* name, const Change& change, const QStringList& differences) {
        QTest::newRow(name) << change << differences;
    };
    row("nothing", [](SampleProject&) {}, {});
    row("world", Replacing("world size=\"800\"", "world size=\"900\""),
        {"world size: a 800x800, b 900x900"});
    row("background", Replacing("back.png\" rgba=\"2\"", "new.png\" rgba=\"3\""),
        {"background: a back.png, b new.png", "background color: a #00000002, b #00000003"});
    row("flag types", Replacing("\"Town\"", "\"City\""),
        {"usage flag types: a Coast, Town, Farm, b Coast, City, Farm"});
    row("layer flags", Replacing("usage_flags=\"1\"", "usage_flags=\"3\""),
        {"usage flags of layer 'Shore': a 1, b 3",
         "usage flag 1 'Town': only-a 0, only-b 3, left 0, top 4, right 3, bottom 7"});
    row("layer look", Replacing("color=\"4294901760\" visible=\"1\"", "color=\"2\""),
        {"color of layer 'Shore': a #ffff0000, b #00000002",
         "visibility of layer 'Shore': a shown, b hidden"});
    row("layer name",
        [](SampleProject& project) {
            project.Replace("\"Shore\"", "\"Beach\"");
            QFile::rename(project.Path("layers/Shore.tga"), project.Path("layers/Beach.tga"));
        },
        {"layer 'Shore': a present, b absent", "layer 'Beach': a absent, b present"});
    row("layer order",
        [](SampleProject& project) {
            project.Replace("<layers>", "<layers><layer usage_flags=\"6\" value_flags=\"10\" "
                                        "color=\"4278255360\" visible=\"1\" name=\"Village\"/>");
            project.Replace("visible=\"1\" name=\"Village\"/>\n  </layers>",
                            "name=\"Twin\"/></layers>");
            project.Replace("<layer usage_flags=\"6\" value_flags=\"10\" color=\"4278255360\" "
                            "name=\"Twin\"/>",
                            "");
        },
        {"order of layers: a Shore, Village, b Village, Shore"});
    row("pixels",
        [](SampleProject& project) {
            project.Paint("Shore", {"........", "........", "........", "........", ".####...",
                                    "........", "........", "+......."});
        },
        {"pixels of layer 'Shore': only-a 1, only-b 1, changed 1, left 0, top 4, right 4, bottom 7",
         "usage flag 0 'Coast': only-a 1, only-b 1, left 0, top 4, right 4, bottom 4",
         "value flag 0 'Tier1': only-a 1, only-b 1, left 0, top 4, right 4, bottom 4"});
    row("type", Replacing("\"Wolf\"", "\"Bear\""),
        {"territory type 'Wolf': a present, b absent",
         "territory type 'Bear': a absent, b present"});
    row("territory", Replacing("\"North\" visible=\"1\" color=\"4278190335\"", "\"North\""),
        {"color of territory type 'Deer', territory 'North': a #ff0000ff, b #00000000",
         "visibility of territory type 'Deer', territory 'North': a shown, b hidden"});
    row("territory name", Replacing("\"North\"", "\"South\""),
        {"territory type 'Deer', territory 'North': a present, b absent",
         "territory type 'Deer', territory 'South': a absent, b present"});
    row("zone", Replacing("x=\"400\"", "x=\"401\""),
        {"zones of territory type 'Deer', territory 'North': only-a 1, only-b 1"});
    row("type order",
        [](SampleProject& project) {
            project.Replace("<territory-type name=\"Wolf\"/>", "");
            project.Replace("<territory-type name=\"Deer\">",
                            "<territory-type name=\"Wolf\"/><territory-type name=\"Deer\">");
        },
        {"order of territory types: a Deer, Wolf, b Wolf, Deer"});
    row("zone order",
        [](SampleProject& project) {
            project.Replace("<zone name=\"Graze\" smin=\"1\" smax=\"2\" dmin=\"3\" dmax=\"4\" "
                            "x=\"400\" z=\"200\" r=\"100\" d=\"2\"/>",
                            "");
            project.Replace("</territory>",
                            "<zone name=\"Graze\" smin=\"1\" smax=\"2\" dmin=\"3\" dmax=\"4\" "
                            "x=\"400\" z=\"200\" r=\"100\" d=\"2\"/></territory>");
        },
        {"order of zones of territory type 'Deer', territory 'North': first 1"});
    row("layer size",
        [](SampleProject& project) {
            project.Replace("<layer size=\"8\"/>", "<layer size=\"1\"/>");
            project.Paint("Shore", {"#"});
            project.Paint("Village", {"#"});
        },
        {"layer size: a 8x8, b 1x1"});
}

void tst_ToolCompare::ProjectsDiffer()
{
    QFETCH(Change, change);
    QFETCH(QStringList, differences);
    const SampleProject a;
    SampleProject b;
    change(b);
    const ProgramRun run = a.Run({"compare", "sample.xml", b.Path("sample.xml")});
    QString expected = "a: sample.xml\nb: " + b.Path("sample.xml") +
                       (differences.isEmpty() ? "\nequal: yes" : "\nequal: no") +
                       QString("\ndifferences: %1\n").arg(differences.size());
    for (const QString& difference : qAsConst(differences)) {
        expected += "  " + difference + "\n";
    }
    QCOMPARE(run.output, expected);
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, differences.isEmpty() ? 0 : 1);
}

void tst_ToolCompare::OrderOfTerritoriesIsCompared()
{
    SampleProject a;
    SampleProject b;
    a.Replace("</territory>", "</territory><territory name=\"South\" visible=\"1\"/>");
    b.Replace("<territory name=\"North\"",
              "<territory name=\"South\" visible=\"1\"/><territory name=\"North\"");
    const ProgramRun run = a.Run({"compare", "sample.xml", b.Path("sample.xml")});
    QVERIFY(run.output.endsWith("differences: 1\n  order of territories of territory type 'Deer': "
                                "a North, South, b South, North\n"));
    QCOMPARE(run.exitCode, 1);
}

void tst_ToolCompare::DifferencesAsJson()
{
    const SampleProject a;
    SampleProject b;
    b.Replace("x=\"400\"", "x=\"401\"");
    const ProgramRun run = a.Run({"compare", "--json", "sample.xml", b.Path("sample.xml")});
    const QJsonObject expected{
        {"a", "sample.xml"},
        {"b", b.Path("sample.xml")},
        {"equal", false},
        {"differences",
         QJsonArray{QJsonObject{{"place", "zones of territory type 'Deer', territory 'North'"},
                                {"only-a", 1},
                                {"only-b", 1}}}}};
    QCOMPARE(QJsonDocument::fromJson(run.output.toUtf8()).object(), expected);
    QCOMPARE(run.exitCode, 1);
}

void tst_ToolCompare::MapIsWhatTheProjectExports()
{
    const SampleProject project;
    QCOMPARE(project.Run({"export", "sample.xml"}).exitCode, 0);
    for (const QStringList& files :
         {QStringList{"sample.xml", "sample.map"}, QStringList{"sample.map", "sample.xml"}}) {
        const ProgramRun run = project.Run(QStringList{"compare"} + files);
        QCOMPARE(run.output,
                 QString("a: %1\nb: %2\nequal: yes\ndifferences: 0\n").arg(files[0], files[1]));
        QCOMPARE(run.log, QStringList());
        QCOMPARE(run.exitCode, 0);
    }
}

void tst_ToolCompare::MapDiffersFromTheProject()
{
    const SampleProject project;
    project.Run({"export", "sample.xml"});
    project.Paint("Shore", {"........", "........", "........", "........", "#####...", "........",
                            ".....#..", "........"});
    const ProgramRun run = project.Run({"compare", "sample.xml", "sample.map", "-o", "d.png"});
    const QString where = ": only-a 2, only-b 1, left 0, top 4, right 5, bottom 7, first-x 4, "
                          "first-y 4\n";
    QCOMPARE(run.output, "a: sample.xml\nb: sample.map\nequal: no\ndifferences: 3\n"
                         "  all flags" +
                             where + "  usage flag 0 'Coast'" + where + "  value flag 0 'Tier1'" +
                             where);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(QImage(project.Path("d.png")).pixel(5, 6), 0xFFFF0000);
    const ProgramRun turned = project.Run({"compare", "--json", "sample.map", "sample.xml"});
    const QJsonArray differences =
        QJsonDocument::fromJson(turned.output.toUtf8()).object()["differences"].toArray();
    const QJsonObject expected{
        {"place", "all flags"}, {"only-a", 1}, {"only-b", 2},  {"left", 0},   {"top", 4},
        {"right", 5},           {"bottom", 7}, {"first-x", 4}, {"first-y", 4}};
    QCOMPARE(differences.first().toObject(), expected);
    QCOMPARE(turned.exitCode, 1);
}

void tst_ToolCompare::MapOfAnotherSizeDiffersFromTheProject()
{
    SampleProject project;
    WriteBytes(project.Path("a.map"), Map({QString(32, '#')}, 1, 6));
    const ProgramRun run = project.Run({"compare", "sample.xml", "a.map"});
    QCOMPARE(run.output, QString("a: sample.xml\nb: a.map\nequal: no\ndifferences: 4\n"
                                 "  layer size: a 8x8, b 32x1\n"
                                 "  world size: a 800x800, b 80x80\n"
                                 "  usage bits: a 4, b 8\n"
                                 "  value bits: a 4, b 1\n"));
    QCOMPARE(run.exitCode, 1);
    project.Run({"export", "sample.xml"});
    project.Replace("world size=\"800\"", "world size=\"900\"");
    const ProgramRun larger = project.Run({"compare", "sample.xml", "sample.map"});
    QVERIFY2(larger.output.endsWith("differences: 1\n  world size: a 900x900, b 800x800\n"),
             qPrintable(larger.output));
}

void tst_ToolCompare::ProjectWithoutBitmapIsNotCompared()
{
    const SampleProject project;
    project.Run({"export", "sample.xml"});
    QFile::remove(project.Path("layers/Shore.tga"));
    const ProgramRun run = project.Run({"compare", "sample.xml", "sample.map"});
    QCOMPARE(run.output, QString());
    QCOMPARE(run.log.size(), 1);
    QCOMPARE(run.exitCode, 3);
}

void tst_ToolCompare::PictureShowsWhereFlagsDiffer()
{
    const SampleProject project;
    const QVector<quint32> fieldsA = {0, 1, 1, 0, 1};
    const QVector<quint32> fieldsB = {0, 1, 0, 1, 2};
    for (const bool isA : {true, false}) {
        const QVector<quint32>& fields = isA ? fieldsA : fieldsB;
        QVector<literal::MapLayer> layers;
        for (int x = 0; x < fields.size(); ++x) {
            QString row(32, '.');
            row[x] = '#';
            layers.append({MaskFromArt({row}), fields[x], 0});
        }
        WriteBytes(project.Path(isA ? "a.map" : "b.map"),
                   literal::WriteMap(layers, {32, 1}, {80, 80}, 2, 0));
    }
    QCOMPARE(project.Run({"compare", "-o", "d.png", "a.map", "b.map"}).exitCode, 1);
    const QImage picture(project.Path("d.png"));
    QCOMPARE(picture.size(), QSize(32, 1));
    const QVector<QRgb> colors = {0xFF000000, 0xFF808080, 0xFFFF0000, 0xFF0060FF, 0xFFFF00FF};
    for (int x = 0; x < colors.size(); ++x) {
        QCOMPARE(picture.pixel(x, 0), colors[x]);
    }
}

void tst_ToolCompare::UnwrittenPictureEndsWithFour()
{
    const SampleProject project;
    const ProgramRun run =
        project.Run({"compare", "-q", "-o", "none/d.png", "sample.xml", "sample.xml"});
    QCOMPARE(run.log, QStringList{"none/d.png: cannot be written: No such file or directory."});
    QCOMPARE(run.exitCode, 4);
}

void tst_ToolCompare::OtherFilesCannotBeCompared_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("log");
    QTest::addColumn<int>("exitCode");
    const QString tryHelp = "quillmap-tool: try 'quillmap-tool compare --help'.";
    QTest::newRow("no name") << QStringList{"a.map", "a.map", "-o", ""}
                             << QStringList{"quillmap-tool: the picture has no name.", tryHelp}
                             << 2;
    const QString needed =
        "quillmap-tool: two maps, two projects, or a project and a map are needed.";
    QTest::newRow("map and bitmap")
        << QStringList{"a.map", "layers/Shore.tga"} << QStringList{needed, tryHelp} << 2;
    QTest::newRow("bitmaps") << QStringList{"layers/Shore.tga", "layers/Shore.tga"}
                             << QStringList{needed, tryHelp} << 2;
    QTest::newRow("project and a map that is cut off")
        << QStringList{"sample.xml", "cut.map"}
        << QStringList{"cut.map: is no area map: 31 bytes instead of 32."} << 3;
    QTest::newRow("types of a project")
        << QStringList{"sample.xml", "a.map", "--types", "sample.xml"}
        << QStringList{"quillmap-tool: --types is for maps.", tryHelp} << 2;
    QTest::newRow("picture in place of the map")
        << QStringList{"sample.xml", "a.map", "-o", "a.map"}
        << QStringList{"a.map: is read by this command."} << 2;
    QTest::newRow("both missing") << QStringList{"x", "y"}
                                  << QStringList{"x: does not exist.", "y: does not exist."} << 3;
    QTest::newRow("cut off") << QStringList{"a.map", "cut.map"}
                             << QStringList{"cut.map: is no area map: 31 bytes instead of 32."}
                             << 3;
    QTest::newRow("too short") << QStringList{"empty.map", "a.map"}
                               << QStringList{"empty.map: is too short for an area map."} << 3;
    QTest::newRow("bits") << QStringList{"bits.map", "a.map"}
                          << QStringList{"bits.map: is no area map: 3 bits per pixel."} << 3;
    QTest::newRow("size") << QStringList{"size.map", "a.map"}
                          << QStringList{"size.map: is no area map: -1x1 pixels."} << 3;
}

void tst_ToolCompare::OtherFilesCannotBeCompared()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, log);
    QFETCH(int, exitCode);
    const SampleProject project;
    const QByteArray map = Map({QString(32, '#')}, 1, 1);
    WriteBytes(project.Path("a.map"), map);
    WriteBytes(project.Path("cut.map"), map.left(31));
    WriteBytes(project.Path("empty.map"), "");
    QByteArray bits = map;
    bits[16] = 3;
    WriteBytes(project.Path("bits.map"), bits);
    WriteBytes(project.Path("size.map"), QByteArray(4, '\xff') + map.mid(4));
    const ProgramRun run = project.Run(QStringList{"compare"} + files);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.log, log);
    QCOMPARE(run.exitCode, exitCode);
}

QTEST_APPLESS_MAIN(tst_ToolCompare)
#include "tst_ToolCompare.moc"
