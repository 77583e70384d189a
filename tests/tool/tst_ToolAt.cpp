#include "tests/support/Files.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/LiteralTarga.h"
#include "tests/support/Masks.h"
#include "tests/tool/SampleProject.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

/// What the command tells of places, and what it takes for a place.
class tst_ToolAt : public QObject
{
    Q_OBJECT

private slots:
    void PlacesAreDescribed_data();
    void PlacesAreDescribed();
    void PlacesOfMapsAreDescribed_data();
    void PlacesOfMapsAreDescribed();
    void PlacesAsJson();
    void NothingIsAnAnswer_data();
    void NothingIsAnAnswer();
    void PlacesComeFromTheStandardInput_data();
    void PlacesComeFromTheStandardInput();
    void WrongLinesEndWithThree_data();
    void WrongLinesEndWithThree();
    void TooManyPlacesEndWithThree();
    void ClosedInputEndsWithThree();
    void WrongArgumentsEndWithTwo_data();
    void WrongArgumentsEndWithTwo();
    void UnreadableFilesEndWithThree_data();
    void UnreadableFilesEndWithThree();
    void BrokenProjectsEndWithThree_data();
    void BrokenProjectsEndWithThree();
    void WorldsWithoutASizeHaveNoPlace_data();
    void WorldsWithoutASizeHaveNoPlace();
    void WordsBeyondFourGigabytesAreFound();
};

namespace {

/// A file of places and the shell command that makes it the standard input.
constexpr const char* FromFile = "exec < places.txt";

QJsonObject JsonOf(const ProgramRun& run)
{
    return QJsonDocument::fromJson(run.output.toUtf8()).object();
}

QJsonObject Field(const QJsonValue& word, const QJsonArray& flags)
{
    return {{"word", word}, {"flags", flags}};
}

} // namespace

void tst_ToolAt::PlacesAreDescribed_data()
{
    QTest::addColumn<QStringList>("place");
    QTest::addColumn<QString>("text");
    const QString shore = "  layer 'Shore': grey 255, visible yes, usages Coast, values Tier1\n";
    const QString nothing = "  usage: none (word 0)\n  value: none (word 0)\n";
    QTest::newRow("two layers")
        << QStringList{"50", "350"}
        << "X 50, Z 350: pixel 0, 4\n  usage: Coast + Town + Farm (word 7)\n"
           "  value: Tier1 + Tier2 + Tier4 (word 11)\n" +
               shore +
               "  layer 'Village': grey 7, visible no, usages Town + Farm, values Tier2 + Tier4\n";
    QTest::newRow("zone") << QStringList{"430", "160"}
                          << "X 430, Z 160: pixel 4, 6\n" + nothing +
                                 "  zone 1 of territory 'North' of type 'Deer': 50 m from its "
                                 "centre\n";
    QTest::newRow("origin") << QStringList{"0", "0"}
                            << "X 0, Z 0: pixel 0, 7\n  usage: Coast (word 1)\n"
                               "  value: Tier1 (word 1)\n" +
                                   shore;
    QTest::newRow("right edge") << QStringList{"800", "0"}
                                << "X 800, Z 0: pixel 7, 7\n" + nothing +
                                       "  zone 2 of territory 'North' of type 'Deer': 0 m from "
                                       "its centre\n";
    QTest::newRow("pixel") << QStringList{"--pixel", "3", "4"}
                           << "X 350, Z 350: pixel 3, 4\n  usage: Coast (word 1)\n"
                              "  value: Tier1 (word 1)\n" +
                                  shore;
    QTest::newRow("outside, in a zone")
        << QStringList{"840", "-30"}
        << "X 840, Z -30: outside of the world\n"
           "  zone 2 of territory 'North' of type 'Deer': 50 m from its centre\n";
    QTest::newRow("pixel outside")
        << QStringList{"--pixel", "-1", "8"} << "X -50, Z -50: outside of the world\n";
    QTest::newRow("far away") << QStringList{"1e300", "-.5"}
                              << "X 1e+300, Z -0.5: outside of the world\n";
}

void tst_ToolAt::PlacesAreDescribed()
{
    QFETCH(QStringList, place);
    QFETCH(QString, text);
    SampleProject project;
    project.Replace(R"(visible="1" name="Village")", R"(visible="0" name="Village")");
    QImage village = MaskFromArt(QVector<QString>(8, "........").toList());
    village.scanLine(4)[0] = 7;
    WriteBytes(project.Path("layers/Village.tga"), literal::WriteTarga(village, true));
    const ProgramRun run = project.Run(QStringList{"at", "sample.xml"} + place);
    QCOMPARE(run.output, text);
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(project.Run(QStringList{"at", "--quiet", "sample.xml"} + place).output, QString());
}

void tst_ToolAt::PlacesOfMapsAreDescribed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("text");
    QTest::newRow("without names") << QStringList{"50", "350"}
                                   << "X 50, Z 350: pixel 0, 4\n"
                                      "  usage: bit 0 + bit 1 + bit 2 (word 7)\n"
                                      "  value: bit 0 + bit 1 + bit 3 (word 11)\n";
    QTest::newRow("names of the project")
        << QStringList{"50", "350", "--types", "sample.xml"}
        << "X 50, Z 350: pixel 0, 4\n  usage: Coast + Town + Farm (word 7)\n"
           "  value: Tier1 + Tier2 + Tier4 (word 11)\n";
    QTest::newRow("too few names")
        << QStringList{"--types", "few.xml", "50", "350"}
        << "X 50, Z 350: pixel 0, 4\n  usage: Shallows + bit 1 + bit 2 (word 7)\n"
           "  value: bit 0 + bit 1 + bit 3 (word 11)\n";
    QTest::newRow("corner") << QStringList{"800", "0"}
                            << "X 800, Z 0: pixel 7, 7\n  usage: none (word 0)\n"
                               "  value: none (word 0)\n";
}

void tst_ToolAt::PlacesOfMapsAreDescribed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, text);
    const SampleProject project;
    WriteBytes(project.Path("few.xml"), "<areas><usage name=\"Shallows\"/></areas>");
    QCOMPARE(project.Run({"export", "sample.xml"}).exitCode, 0);
    const ProgramRun run = project.Run(QStringList{"at", "sample.map"} + arguments);
    QCOMPARE(run.output, text);
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_ToolAt::PlacesAsJson()
{
    const SampleProject project;
    WriteBytes(project.Path("places.txt"), "50 350\n840 -30\n");
    const ProgramRun run = project.RunLimited(FromFile, {"at", "--json", "--quiet", "sample.xml"});
    const QJsonObject shore{{"name", "Shore"},
                            {"grey", 255},
                            {"visible", true},
                            {"usages", QJsonArray{"Coast"}},
                            {"values", QJsonArray{"Tier1"}}};
    const QJsonObject village{{"name", "Village"},
                              {"grey", 255},
                              {"visible", true},
                              {"usages", QJsonArray{"Town", "Farm"}},
                              {"values", QJsonArray{"Tier2", "Tier4"}}};
    const QJsonObject inside{{"x", 50},
                             {"z", 350},
                             {"pixel-x", 0},
                             {"pixel-y", 4},
                             {"usage", Field(7, {"Coast", "Town", "Farm"})},
                             {"value", Field(11, {"Tier1", "Tier2", "Tier4"})},
                             {"layers", QJsonArray{shore, village}},
                             {"zones", QJsonArray()}};
    const QJsonObject zone{
        {"type", "Deer"}, {"territory", "North"}, {"number", 2}, {"distance", 50}};
    const QJsonObject outside{{"x", 840},
                              {"z", -30},
                              {"pixel-x", QJsonValue::Null},
                              {"pixel-y", QJsonValue::Null},
                              {"usage", Field(QJsonValue::Null, {})},
                              {"value", Field(QJsonValue::Null, {})},
                              {"layers", QJsonArray()},
                              {"zones", QJsonArray{zone}}};
    QCOMPARE(JsonOf(run), (QJsonObject{{"places", QJsonArray{inside, outside}}}));
    QCOMPARE(run.exitCode, 0);
}

void tst_ToolAt::NothingIsAnAnswer_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("usageTypes");
    QTest::addColumn<QString>("usage");
    const QString right =
        "nothing, because the map has no fields right of the last whole word of a row";
    QTest::newRow("no types") << 8 << 0 << "nothing, because there are no types";
    QTest::newRow("last whole word") << 8 << 3 << "bit 0 (word 1)";
    QTest::newRow("right of the last whole word") << 9 << 3 << right;
    QTest::newRow("no whole word") << 7 << 1 << right;
}

void tst_ToolAt::NothingIsAnAnswer()
{
    QFETCH(int, width);
    QFETCH(int, usageTypes);
    QFETCH(QString, usage);
    const SampleProject project;
    const QImage mask = MaskFromArt({QString(width, '#')});
    WriteBytes(project.Path("a.map"),
               literal::WriteMap({{mask, 1, 1}}, mask.size(), {width, 1}, usageTypes, 32));
    const QString last = QString::number(width - 1);
    const ProgramRun run = project.Run({"at", "a.map", "--pixel", last, "0"});
    QCOMPARE(run.output, QString("X %1.5, Z 0.5: pixel %1, 0\n  usage: %2\n"
                                 "  value: bit 0 (word 1)\n")
                             .arg(last, usage));
    QCOMPARE(run.exitCode, 0);
}

void tst_ToolAt::PlacesComeFromTheStandardInput_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QStringList>("places");
    QTest::newRow("none") << QByteArray("") << QStringList();
    QTest::newRow("one without an end of line") << QByteArray("5 6") << QStringList{"X 5, Z 6"};
    QTest::newRow("two") << QByteArray("5 6\n1e300 -1\n")
                         << QStringList{"X 5, Z 6", "X 1e+300, Z -1"};
    QTest::newRow("empty lines and blanks")
        << QByteArray("\n \n\t5 \t 6 \r\n\n7 8\n\n") << QStringList{"X 5, Z 6", "X 7, Z 8"};
}

void tst_ToolAt::PlacesComeFromTheStandardInput()
{
    QFETCH(QByteArray, input);
    QFETCH(QStringList, places);
    const SampleProject project;
    WriteBytes(project.Path("places.txt"), input);
    const ProgramRun run = project.RunLimited(FromFile, {"at", "sample.xml"});
    QStringList found;
    const QStringList lines = run.output.split('\n');
    for (const QString& line : lines) {
        if (line.startsWith('X')) {
            found.append(line.section(':', 0, 0));
        }
    }
    QCOMPARE(found, places);
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
    const ProgramRun asJson = project.RunLimited(FromFile, {"at", "--json", "sample.xml"});
    QCOMPARE(JsonOf(asJson)["places"].toArray().size(), places.size());
}

void tst_ToolAt::WrongLinesEndWithThree_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("error");
    const QString two = "two numbers are needed, and nothing else.";
    const QStringList none;
    QTest::newRow("letters") << QByteArray("a b") << none << "'a' is no number of metres.";
    QTest::newRow("second") << QByteArray("1 1,5") << none << "'1,5' is no number of metres.";
    QTest::newRow("NaN") << QByteArray("5 nan") << none << "'nan' is no number of metres.";
    QTest::newRow("infinite") << QByteArray("-inf 5") << none << "'-inf' is no number of metres.";
    QTest::newRow("beyond all numbers")
        << QByteArray("1e999 5") << none << "'1e999' is no number of metres.";
    QTest::newRow("one number") << QByteArray("5") << none << two;
    QTest::newRow("three numbers") << QByteArray("5 6 7") << none << two;
    QTest::newRow("null bytes") << QByteArray("5\0006", 3) << none << two;
    QTest::newRow("a megabyte") << QByteArray(1 << 20, '1') << none << "is too long.";
    QTest::newRow("two long numbers")
        << QByteArray(500, '0') + ' ' + QByteArray(500, '0') << none << "is too long.";
    QTest::newRow("part of a pixel")
        << QByteArray("1.5 2") << QStringList{"--pixel"} << "'1.5' is no number of a pixel.";
    QTest::newRow("pixel beyond all masks") << QByteArray("1 2147483648") << QStringList{"--pixel"}
                                            << "'2147483648' is no number of a pixel.";
}

void tst_ToolAt::WrongLinesEndWithThree()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, options);
    QFETCH(QString, error);
    const SampleProject project;
    WriteBytes(project.Path("places.txt"), "1 2\n\n" + line + "\n3 4\n");
    const ProgramRun run = project.RunLimited(FromFile, QStringList{"at", "sample.xml"} + options);
    QCOMPARE(run.log, QStringList{"standard input: line 3: " + error});
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 3);
}

void tst_ToolAt::TooManyPlacesEndWithThree()
{
    const SampleProject project;
    WriteBytes(project.Path("places.txt"), QByteArray("1 2\n").repeated(1000001));
    const ProgramRun run = project.RunLimited(FromFile, {"at", "sample.xml"});
    QCOMPARE(run.log,
             QStringList{"standard input: line 1000001: there are more than 1000000 places."});
    QCOMPARE(run.exitCode, 3);
}

void tst_ToolAt::ClosedInputEndsWithThree()
{
    const SampleProject project;
    const ProgramRun run = project.RunLimited("exec < .", {"at", "sample.xml"});
    QCOMPARE(run.log, QStringList{"standard input: cannot be read."});
    QCOMPARE(run.exitCode, 3);
}

void tst_ToolAt::WrongArgumentsEndWithTwo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const QString needed = "PROJECT|MAP [X Z] is needed, and nothing else.";
    QTest::newRow("nothing") << QStringList() << needed;
    QTest::newRow("half a place") << QStringList{"sample.xml", "5"} << needed;
    QTest::newRow("too much") << QStringList{"sample.xml", "5", "6", "7"} << needed;
    QTest::newRow("letters") << QStringList{"sample.xml", "a", "6"}
                             << "'a' is no number of metres.";
    QTest::newRow("NaN") << QStringList{"sample.xml", "5", "NaN"}
                         << "'NaN' is no number of metres.";
    QTest::newRow("infinite") << QStringList{"sample.xml", "inf", "6"}
                              << "'inf' is no number of metres.";
    QTest::newRow("nearly a number")
        << QStringList{"sample.xml", "-5m", "6"} << "'-5m' is no number of metres.";
    QTest::newRow("part of a pixel")
        << QStringList{"sample.xml", "--pixel", "5", "6.5"} << "'6.5' is no number of a pixel.";
    QTest::newRow("unknown option")
        << QStringList{"sample.xml", "--x", "6"} << "Unknown option 'x'.";
    QTest::newRow("bitmap") << QStringList{"layers/Shore.tga", "5", "6"}
                            << "a project or a map is needed.";
    QTest::newRow("types of a project")
        << QStringList{"sample.xml", "5", "6", "--types", "sample.xml"} << "--types is for maps.";
}

void tst_ToolAt::WrongArgumentsEndWithTwo()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const SampleProject project;
    const ProgramRun run = project.Run(QStringList{"at"} + arguments);
    QCOMPARE(run.log, (QStringList{"quillmap-tool: " + error,
                                   "quillmap-tool: try 'quillmap-tool at --help'."}));
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 2);
}

void tst_ToolAt::UnreadableFilesEndWithThree_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const QStringList place = {"5", "6"};
    const auto row = [&place](const char* name, const QString& file, const QString& error) {
        QTest::newRow(name) << (QStringList{file} + place) << file + ": " + error;
    };
    row("missing", "x.map", "does not exist.");
    row("map cut off", "short.map", "is no area map: 100 bytes instead of 280.");
    row("map without a header", "empty.map", "is too short for an area map.");
    row("map of 0 pixels", "zero.map", "is no area map: 0x0 pixels.");
    row("map of -1 pixels", "minus.map", "is no area map: -1x-1 pixels.");
    row("document cut off", "short.xml", "line 1: Premature end of document.");
    QTest::newRow("types missing")
        << QStringList{"good.map", "5", "6", "--types", "x.xml"} << "x.xml: does not exist.";
    QTest::newRow("types cut off") << QStringList{"good.map", "5", "6", "--types", "short.xml"}
                                   << "short.xml: line 1: Premature end of document.";
}

void tst_ToolAt::UnreadableFilesEndWithThree()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const SampleProject project;
    const QImage mask = MaskFromArt(QVector<QString>(8, "........").toList());
    const QByteArray map = literal::WriteMap({{mask, 1, 1}}, mask.size(), {80, 80}, 32, 0);
    WriteBytes(project.Path("good.map"), map);
    WriteBytes(project.Path("short.map"), map.left(100));
    WriteBytes(project.Path("empty.map"), "");
    WriteBytes(project.Path("zero.map"), Ints({0, 0, 80, 80, 1, 1}));
    WriteBytes(project.Path("minus.map"), Ints({-1, -1, 80, 80, 1, 1}));
    WriteBytes(project.Path("short.xml"), "<qm-config><global>");
    const ProgramRun run = project.Run(QStringList{"at"} + arguments);
    QCOMPARE(run.log, QStringList{error});
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 3);
}

void tst_ToolAt::BrokenProjectsEndWithThree_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("error");
    const QByteArray size = "<layer size=\"8\"/>";
    QTest::newRow("layers of 0 pixels") << size << QByteArray("<layer size=\"0\"/>")
                                        << "sample.xml: layers cannot have 0x0 pixels.";
    QTest::newRow("layers of -1 pixels") << size << QByteArray("<layer size=\"-1\"/>")
                                         << "sample.xml: layers cannot have -1x-1 pixels.";
    QTest::newRow("missing bitmap") << QByteArray("\"Village\"") << QByteArray("\"Other\"")
                                    << "FOLDER/layers/Other.tga: does not exist.";
    QTest::newRow("too many types")
        << QByteArray("</usages>") << QByteArray("<usage name=\"a\"/>").repeated(30) + "</usages>"
        << "sample.xml: an area map holds at most 32 usage and 32 value flag types.";
}

void tst_ToolAt::BrokenProjectsEndWithThree()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QString, error);
    SampleProject project;
    project.Replace(before, after);
    const ProgramRun run = project.Run({"at", "sample.xml", "5", "6"});
    QCOMPARE(run.log,
             QStringList{error.replace("FOLDER", QDir(project.Path(".")).canonicalPath())});
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 3);
}

void tst_ToolAt::WorldsWithoutASizeHaveNoPlace_data()
{
    QTest::addColumn<QByteArray>("size");
    QTest::newRow("0") << QByteArray("<world size=\"0\"/>");
    QTest::newRow("-1") << QByteArray("<world size=\"-1\"/>");
}

void tst_ToolAt::WorldsWithoutASizeHaveNoPlace()
{
    QFETCH(QByteArray, size);
    SampleProject project;
    project.Replace("<world size=\"800\"/>", size);
    const ProgramRun run = project.Run({"at", "sample.xml", "5", "6"});
    QCOMPARE(run.output, QString("X 5, Z 6: outside of the world\n"));
    QCOMPARE(run.exitCode, 0);
}

/// A map of 17 gigabytes, nearly all of which no disk has to hold.
void tst_ToolAt::WordsBeyondFourGigabytesAreFound()
{
    constexpr qint64 length = 65535;
    const SampleProject project;
    const QString path = project.Path("large.map");
    WriteBytes(path, Ints({length, length, length, length, 32}));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    constexpr qint64 begin = 20;
    constexpr qint64 end = begin + 4 * length * length;
    if (!file.resize(end + 4)) {
        QSKIP("The disk has no files of that length.");
    }
    // The last word but one: the top row's last column but one.
    file.seek(end - 8);
    file.write(Ints({0x80000001}));
    file.close();
    const ProgramRun run = project.Run({"at", "large.map", "--pixel", "65533", "0"});
    QCOMPARE(run.output, QString("X 65533.5, Z 65534.5: pixel 65533, 0\n"
                                 "  usage: bit 0 + bit 31 (word 2147483649)\n"
                                 "  value: nothing, because there are no types\n"));
    QCOMPARE(run.exitCode, 0);
}

QTEST_APPLESS_MAIN(tst_ToolAt)
#include "tst_ToolAt.moc"
