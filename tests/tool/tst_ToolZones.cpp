#include "tests/support/Files.h"
#include "tests/tool/SampleProject.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace {

const char Header[] = "type,territory,number,usage,x,z,radius,static-min,static-max,dynamic-min,"
                      "dynamic-max,depth,problems\n";

} // namespace

/// quillmap-tool zones.
class tst_ToolZones : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_sample = std::make_unique<SampleProject>(); }
    void TheTableIsAligned();
    void TheTableIsCsvOrJson();
    void FiltersLeaveRows_data();
    void FiltersLeaveRows();
    void RowsAreTakenIntoTheProject();
    void JsonIsTakenIntoTheProject();
    void TheRestOfTheDocumentStays();
    void ATableThatSaysTheSameWritesNothing_data();
    void ATableThatSaysTheSameWritesNothing();
    void RefusedRowsEndWithOne();
    void WrongInputsWriteNothing_data();
    void WrongInputsWriteNothing();
    void WrongArgumentsEndWithTwo_data();
    void WrongArgumentsEndWithTwo();
    void WhatCannotBeWrittenStays();
    void OptionsAreCombined();

private:
    ProgramRun Zones(const QStringList& options) const
    {
        return m_sample->Run(QStringList{"zones", "sample.xml"} + options);
    }
    ProgramRun Set(const QByteArray& sheet) const
    {
        WriteBytes(m_sample->Path("sheet"), sheet);
        return Zones({"--set", "sheet"});
    }
    QByteArray Document() const { return ReadBytes(m_sample->Path("sample.xml")); }

    std::unique_ptr<SampleProject> m_sample;
};

void tst_ToolZones::TheTableIsAligned()
{
    const ProgramRun run = Zones({});
    QCOMPARE(run.output,
             "type  territory  number  usage        x    z  radius  static-min  static-max  "
             "dynamic-min  dynamic-max  depth  problems\n"
             "Deer  North           1  Graze      400  200     100           1           2  "
             "          3            4      2\n"
             "Deer  North           2  Migration  800    0      50           0           1  "
             "          0            5     30  partly outside of the world\n");
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(Zones({"--quiet"}).output, QString());
    m_sample->Replace("name=\"North\"", "name=\"No&#9;&#10;rth\"");
    QCOMPARE(Zones({}).output.count('\n'), 3);
}

void tst_ToolZones::TheTableIsCsvOrJson()
{
    const ProgramRun csv = Zones({"--csv", "--quiet"});
    QCOMPARE(csv.output, Header + QString("Deer,North,1,Graze,400,200,100,1,2,3,4,2,\n"
                                          "Deer,North,2,Migration,800,0,50,0,1,0,5,30,"
                                          "partly outside of the world\n"));
    QCOMPARE(csv.exitCode, 0);
    const ProgramRun json = Zones({"--json"});
    QCOMPARE(json.exitCode, 0);
    const QJsonArray zones = QJsonDocument::fromJson(json.output.toUtf8())["zones"].toArray();
    QCOMPARE(zones.size(), 2);
    QCOMPARE(zones.at(1).toObject()["usage"].toString(), "Migration");
    QCOMPARE(zones.at(1).toObject()["static-max"].toDouble(), 1.0);
    QCOMPARE(zones.at(1).toObject().size(), 13);
}

void tst_ToolZones::FiltersLeaveRows_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("numbers");
    QTest::newRow("none") << "" << QStringList{"1", "2"};
    QTest::newRow("word") << "migr" << QStringList{"2"};
    QTest::newRow("columns") << "radius>=100 type:deer" << QStringList{"1"};
    QTest::newRow("problems") << "problems:partly" << QStringList{"2"};
    QTest::newRow("nothing") << "wolf" << QStringList();
    QTest::newRow("outside") << "outside" << QStringList();
    QTest::newRow("overlap") << "overlap" << QStringList();
    QTest::newRow("begins with a hyphen") << "-1" << QStringList();
}

void tst_ToolZones::FiltersLeaveRows()
{
    QFETCH(QString, filter);
    QFETCH(QStringList, numbers);
    const ProgramRun run = Zones({"--csv", "--filter", filter});
    QStringList left;
    const QStringList lines = run.output.split('\n', Qt::SkipEmptyParts).mid(1);
    for (const QString& line : lines) {
        left.append(line.section(',', 2, 2));
    }
    QCOMPARE(left, numbers);
    QCOMPARE(run.exitCode, 0);
}

void tst_ToolZones::RowsAreTakenIntoTheProject()
{
    m_sample->Replace("<territory-type name=\"Wolf\"/>",
                      "<territory-type name=\"Wolf\"><territory name=\"Den\" color=\"5\"/>"
                      "</territory-type>");
    const ProgramRun run = Set("type,territory,number,x,radius,usage\n"
                               "Deer,North,2,700,60,\n"
                               "Wolf,Den,,,,\n");
    QCOMPARE(run.log, QStringList{"sheet: row 3: x is missing; z is missing."});
    const ProgramRun added = Set("type,territory,number,x,radius,usage,z\n"
                                 "Deer,North,2,700,60,,\n"
                                 "Wolf,Den,,100,,Water,300\n");
    QCOMPARE(added.log, QStringList());
    QCOMPARE(added.output, "sample.xml: zones changed 1, zones added 1\n");
    QCOMPARE(added.exitCode, 0);
    QCOMPARE(Zones({"--csv"}).output,
             Header +
                 QString("Deer,North,1,Graze,400,200,100,1,2,3,4,2,\n"
                         "Deer,North,2,Migration,700,0,60,0,1,0,5,30,partly outside of the world\n"
                         "Wolf,Den,1,Water,100,300,300,0,0,0,0,2,partly outside of the world\n"));
}

void tst_ToolZones::JsonIsTakenIntoTheProject()
{
    QByteArray table = Zones({"--json"}).output.toUtf8();
    table.replace("\"dynamic-max\": 4", "\"dynamic-max\": 44");
    const ProgramRun run = Set(table);
    QCOMPARE(run.output, "sample.xml: zones changed 1, zones added 0\n");
    QVERIFY(Zones({"--csv"}).output.contains(",3,44,2,\n"));
}

void tst_ToolZones::TheRestOfTheDocumentStays()
{
    // The texts of the editor's own saves stay as they are.
    Set("type,territory,number,x\nDeer,North,1,300\n");
    const QByteArray before =
        Document()
            .replace("    <global>", "    <selected row=\"1\"/>\n    <global>")
            .replace("    <!--Layers-->", "    <brush color=\"7\" size=\"3\"/>\n    <!--Layers-->");
    WriteBytes(m_sample->Path("sample.xml"), before);
    QVERIFY(before.contains("<selected") && before.contains("<brush"));
    QVERIFY(before.contains("name=\"Tier4\""));
    QVERIFY(before.contains("x=\"300\""));
    WriteBytes(m_sample->Path("layers/Shore.tga"), "no bitmap");
    const auto files = FilesBelow(m_sample->Path(QString()));

    const ProgramRun run = Set("type,territory,number,x\nDeer,North,1,400\n");

    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(Document(), QByteArray(before).replace("x=\"300\"", "x=\"400\""));
    auto after = FilesBelow(m_sample->Path(QString()));
    after["sample.xml"] = files["sample.xml"];
    after["sheet"] = files["sheet"];
    QCOMPARE(after, files);
}

void tst_ToolZones::ATableThatSaysTheSameWritesNothing_data()
{
    QTest::addColumn<QString>("format");
    QTest::newRow("csv") << "--csv";
    QTest::newRow("json") << "--json";
}

void tst_ToolZones::ATableThatSaysTheSameWritesNothing()
{
    QFETCH(QString, format);
    // No control of the editor accepts these.
    m_sample->Replace("smin=\"1\"", "smin=\"1000\"");
    m_sample->Replace("r=\"50\"", "r=\"-3.25\"");
    m_sample->Replace("x=\"800\"", "x=\"nan\"");
    const QByteArray before = Document();
    const ProgramRun run = Set(Zones({format}).output.toUtf8());
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.output, "sample.xml: zones changed 0, zones added 0\n");
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(Document(), before);
}

void tst_ToolZones::RefusedRowsEndWithOne()
{
    const QByteArray before = Document();
    const ProgramRun run = Set("type,territory,number,radius,static-min\n"
                               "Deer,North,1,20000000,\n"
                               "Deer,North,2,70,\n"
                               "Deer,South,1,70,\n"
                               "Deer,North,,70,\n");
    QCOMPARE(run.output, QString());
    QCOMPARE(run.log, (QStringList{"sheet: row 2: radius 20000000 is above 32768.",
                                   "sheet: row 4: type 'Deer' has no territory 'South'.",
                                   "sheet: row 5: x is missing; z is missing."}));
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(Document(), before);
}

void tst_ToolZones::WrongInputsWriteNothing_data()
{
    QTest::addColumn<QByteArray>("sheet");
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("nothing") << QByteArray() << "sheet: it holds no rows." << 3;
    QTest::newRow("cut json") << QByteArray("[") << "sheet: it is no JSON: unterminated array."
                              << 3;
    QTest::newRow("no table") << QByteArray("hello\n")
                              << "sheet: row 1: there is no column 'hello'." << 1;
}

void tst_ToolZones::WrongInputsWriteNothing()
{
    QFETCH(QByteArray, sheet);
    QFETCH(QString, error);
    QFETCH(int, exitCode);
    const QByteArray before = Document();
    const ProgramRun run = Set(sheet);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.log, QStringList{error});
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(Document(), before);

    const ProgramRun missing = Zones({"--set", "missing.csv"});
    QCOMPARE(missing.log, QStringList{"missing.csv: does not exist."});
    QCOMPARE(missing.exitCode, 3);
    CheckIsUnreadable({"zones"}, "missing.xml", QByteArray(), "missing.xml: does not exist.");
}

void tst_ToolZones::WrongArgumentsEndWithTwo_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("error");
    QTest::newRow("two formats") << QStringList{"--csv", "--json"}
                                 << "--csv and --json exclude each other.";
    QTest::newRow("set and print")
        << QStringList{"--set", "sheet", "--csv"} << "with --set no table is printed.";
    QTest::newRow("set and filter")
        << QStringList{"--set", "sheet", "--filter", "deer"} << "with --set no table is printed.";
    QTest::newRow("unfinished filter") << QStringList{"--filter", "deer radius>"}
                                       << "the term 'radius>' of the filter is unfinished.";
}

void tst_ToolZones::WrongArgumentsEndWithTwo()
{
    QFETCH(QStringList, options);
    QFETCH(QString, error);
    const ProgramRun run = Zones(options);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.log, (QStringList{"quillmap-tool: " + error,
                                   "quillmap-tool: try 'quillmap-tool zones --help'."}));
    QCOMPARE(run.exitCode, 2);
}

void tst_ToolZones::WhatCannotBeWrittenStays()
{
    WriteBytes(m_sample->Path("sheet"), "type,territory,number,x\nDeer,North,1,300\n");
    const QByteArray before = Document();
    // No file may be longer than 512 bytes.
    const ProgramRun run =
        m_sample->RunLimited("ulimit -f 1", {"zones", "sample.xml", "--set", "sheet"});
    QCOMPARE(run.exitCode, 4);
    QCOMPARE(run.log.size(), 1);
    QVERIFY(run.log.first().startsWith("sample.xml: cannot be written: "));
    QCOMPARE(Document(), before);
}

void tst_ToolZones::OptionsAreCombined()
{
    const ProgramRun run =
        m_sample->RunLimited(":", {"zones", "--json", "--filter", "number=2", "-q", "sample.xml"});
    const QJsonArray zones = QJsonDocument::fromJson(run.output.toUtf8())["zones"].toArray();
    QCOMPARE(zones.size(), 1);
    // From the standard input, through a pipe.
    const ProgramRun piped = m_sample->RunLimited(
        "printf 'type,territory,number,x\\nDeer,North,1,300\\n' | exec \"$0\" \"$@\"; exit $?",
        {"zones", "sample.xml", "--set", "-"});
    QCOMPARE(piped.log, QStringList());
    QCOMPARE(piped.output, "sample.xml: zones changed 1, zones added 0\n");
    QVERIFY(Document().contains("x=\"300\""));
    const ProgramRun refused = m_sample->RunLimited(
        "printf 'type,territory,number,x\\nDeer,North,9,300\\n' | exec \"$0\" \"$@\"; exit $?",
        {"zones", "sample.xml", "--set", "-"});
    QCOMPARE(refused.log, QStringList{"standard input: row 2: territory 'North' has no zone 9."});
    QCOMPARE(refused.exitCode, 1);
}

QTEST_APPLESS_MAIN(tst_ToolZones)
#include "tst_ToolZones.moc"
