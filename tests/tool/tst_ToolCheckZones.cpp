#include "tests/tool/BrokenProject.h"

#include <QTest>

namespace {

/// Adds a zone after the first one, which is at (400, 200) with a radius of 100 m.
Break AddingZone(const QByteArray& place, const QByteArray& name = "Graze",
                 const QByteArray& before = "<zone name=\"Migration\"")
{
    return Replacing(before, "<zone name=\"" + name +
                                 "\" smin=\"1\" smax=\"2\" dmin=\"3\" dmax=\"4\" " + place +
                                 " d=\"9\"/>" + before);
}

} // namespace

/// quillmap-tool check, the rules of territories and zones.
class tst_ToolCheckZones : public QObject
{
    Q_OBJECT

private slots:
    void EachRuleIsFound_data();
    void EachRuleIsFound();
    void TheOverlapIsSet();
    void WrongOverlapsAreRefused_data();
    void WrongOverlapsAreRefused();
};

void tst_ToolCheckZones::EachRuleIsFound_data()
{
    QTest::addColumn<Break>("doBreak");
    QTest::addColumn<QStringList>("findings");

    const auto row = [](const QByteArray& name, const Break& doBreak, const QStringList& findings) {
        QTest::newRow(name.constData()) << doBreak << findings;
    };
    const QString zone = "zone 1 of territory 'North' of type 'Deer': ";
    const QString more = " Lower the minimum or raise the maximum. [zone-min-above-max]";
    row("static minimum", Replacing("smin=\"1\"", "smin=\"3\""),
        {"error: " + zone + "the static minimum 3 is above the maximum 2." + more});
    row("dynamic minimum", Replacing("dmin=\"3\"", "dmin=\"5\""),
        {"error: " + zone + "the dynamic minimum 5 is above the maximum 4." + more});
    const QString radius =
        " m is outside 50 to 32768 m. Change the radius in the zone properties. [zone-radius]";
    row("small radius", Replacing("r=\"100\"", "r=\"49.9\""),
        {"warning: " + zone + "its radius of 49.9" + radius});
    row("large radius",
        [](SampleProject& project) {
            project.Replace("world size=\"800\"", "world size=\"80000\"");
            project.Replace("x=\"400\" z=\"200\" r=\"100\"", "x=\"40000\" z=\"40000\" r=\"32769\"");
        },
        {"warning: " + zone + "its radius of 32769" + radius});
    row("radius is no number", Replacing("r=\"100\"", "r=\"nan\""),
        {"warning: " + zone + "its radius of nan" + radius});
    row("event like a usage", Replacing("name=\"Graze\"", "name=\"hunting ground\""),
        {"warning: " + zone +
         "its dynamic event 'hunting ground' is named like the usage 'HuntingGround', and is "
         "another one. Choose the usage, or rename the event. [event-like-usage]"});
    row("event without name", Replacing("name=\"Graze\"", ""),
        {"error: " + zone + "its dynamic event has no name. Name the event. [event-without-name]"});
    row("outside", Replacing("x=\"400\"", "x=\"801\""),
        {"error: " + zone +
         "its centre (801, 200) lies outside the world. Move or remove it. [zone-outside-world]"});
    row("below", Replacing("z=\"200\"", "z=\"-0.5\""),
        {"error: " + zone +
         "its centre (400, -0.5) lies outside the world. Move or remove it. [zone-outside-world]"});
    for (const char* number : {"nan", "inf"}) {
        row(QByteArray("place is no number: ") + number,
            Replacing("x=\"400\"", QByteArray("x=\"") + number + "\""),
            {"error: " + zone + "its place (" + number +
             ", 200) is no number. Move or remove it. [zone-place]"});
    }
    row("partly outside", Replacing("x=\"400\"", "x=\"750\""),
        {"warning: " + zone +
         "it reaches 50 m beyond the edge of the world. Move it, or make it smaller. "
         "[zone-partly-outside]"});
    row("touches the edge", Replacing("x=\"400\"", "x=\"700.5\""), {});
    const QString second = "warning: zone 2 of territory 'North' of type 'Deer': ";
    const QString first = "zone 1 of territory 'North' of type 'Deer'";
    const QString same = ", which has the same usage. Move it, or remove one of them. "
                         "[zone-contained]";
    row("equal zones", AddingZone("x=\"400\" z=\"200\" r=\"100\""),
        {second + "it is equal to " + first + ". Remove one of them. [zone-equal]"});
    row("zone in another", AddingZone("x=\"420\" z=\"200\" r=\"80\""),
        {second + "it lies in " + first + same});
    row("zone around another", AddingZone("x=\"420\" z=\"200\" r=\"120\""),
        {second + "in it lies " + first + same});
    row("overlapping zones", AddingZone("x=\"410\" z=\"200\" r=\"100\""),
        {second + "it overlaps " + first +
         ", which has the same usage, by 93 % of the smaller one. Move one of them, or remove it. "
         "[zone-overlap]"});
    row("zones that overlap less", AddingZone("x=\"440\" z=\"200\" r=\"100\""), {});
    row("zone of another usage", AddingZone("x=\"400\" z=\"200\" r=\"60\"", "Water"), {});
    row("equal zones of two territories",
        [](SampleProject& project) {
            project.Replace("</territory>",
                            "</territory><territory name=\"South\" visible=\"1\"></territory>");
            AddingZone("x=\"400\" z=\"200\" r=\"100\"", "Graze",
                       "</territory>\n    </territory-type>")(project);
        },
        {"warning: zone 1 of territory 'South' of type 'Deer': it is equal to " + first +
         ". Remove one of them. [zone-equal]"});
    row("equal zones of two types",
        [](SampleProject& project) {
            project.Replace("<territory-type name=\"Wolf\"/>",
                            "<territory-type name=\"Wolf\"><territory name=\"Den\" "
                            "visible=\"1\"></territory></territory-type>");
            AddingZone("x=\"400\" z=\"200\" r=\"100\"", "Graze",
                       "</territory></territory-type>")(project);
        },
        {});
    row("hidden territory", Replacing("name=\"North\" visible=\"1\"", "name=\"North\""),
        {"warning: territory 'North' of type 'Deer': it is hidden, and exported all the same. Show "
         "it, or remove it. [invisible-territory]"});
}

void tst_ToolCheckZones::EachRuleIsFound()
{
    QFETCH(Break, doBreak);
    QFETCH(QStringList, findings);
    CheckFindings(doBreak, findings);
}

void tst_ToolCheckZones::TheOverlapIsSet()
{
    SampleProject project;
    // The circles share nearly 75 % of their areas.
    AddingZone("x=\"440\" z=\"200\" r=\"100\"")(project);
    const auto isFound = [&project](const QStringList& options) {
        const ProgramRun run =
            project.Run(QStringList{"check"} + options + QStringList{"sample.xml"});
        return run.output.contains("by 74 % of the smaller one");
    };
    QVERIFY(!isFound({}));
    QVERIFY(!isFound({"--overlap", "80"}));
    QVERIFY(!isFound({"--overlap=75"}));
    QVERIFY(isFound({"--overlap=74"}));
    QVERIFY(isFound({"--overlap", "50"}));
}

void tst_ToolCheckZones::WrongOverlapsAreRefused_data()
{
    QTest::addColumn<QString>("overlap");
    for (const char* overlap : {"49", "101", "-60", "", "x", "60.5", "60 %", "nan"}) {
        QTest::newRow(overlap) << QString(overlap);
    }
}

void tst_ToolCheckZones::WrongOverlapsAreRefused()
{
    QFETCH(QString, overlap);
    const SampleProject project;
    const ProgramRun run = project.Run({"check", "--overlap=" + overlap, "sample.xml"});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.log, (QStringList{"quillmap-tool: an overlap is 50 to 100.",
                                   "quillmap-tool: try 'quillmap-tool check --help'."}));
}

QTEST_APPLESS_MAIN(tst_ToolCheckZones)
#include "tst_ToolCheckZones.moc"
