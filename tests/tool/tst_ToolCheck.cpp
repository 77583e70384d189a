#include "tests/support/Files.h"
#include "tests/tool/BrokenProject.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace {

QStringList Lines(const QString& text)
{
    return text.split('\n', Qt::SkipEmptyParts);
}

/// Says that Village is all that the operand is not, and computes it so.
void DeriveVillage(SampleProject& project, const QByteArray& operand)
{
    WriteBytes(project.Path("sample.derived.xml"),
               "<qm-derived><formula layer=\"Village\" operation=\"complement\" "
               "fingerprint=\"0000000000000001\"><operand name=\"" +
                   operand + "\" fingerprint=\"0000000000000001\"/></formula></qm-derived>");
    project.Run({"derive", "sample.xml"});
}

QStringList Rows(int count, const QString& row)
{
    return QVector<QString>(count, row).toList();
}

QByteArray Flags(const QByteArray& kind, int count)
{
    QByteArray flags;
    for (int i = 0; i < count; ++i) {
        flags += "<" + kind + " name=\"More" + QByteArray::number(i) + "\"/>";
    }
    return flags + "</" + kind + "s>";
}

} // namespace

class tst_ToolCheck : public QObject
{
    Q_OBJECT

private slots:
    void GoodProjectHasNoFinding();
    void ExampleHasNoFinding();
    void EachRuleIsFound_data();
    void EachRuleIsFound();
    void NameOfTheMapIsChecked_data();
    void NameOfTheMapIsChecked();
    void StrictCountsWarnings();
    void QuietSaysNothing();
    void FindingsAsJson();
    void LeavesTheProjectAlone();
    void UnreadableProjectsEndWithThree_data();
    void UnreadableProjectsEndWithThree();
    void NamesCannotForgeLines();
};

void tst_ToolCheck::GoodProjectHasNoFinding()
{
    const CleanProject project;
    const ProgramRun run = project.Run({"check", "--strict", "sample.xml"});
    QCOMPARE(run.output, QString("0 errors, 0 warnings.\n"));
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_ToolCheck::ExampleHasNoFinding()
{
    const CleanProject project;
    const ProgramRun run =
        project.Run({"check", "--strict", QUILLMAP_EXAMPLE_FOLDER "/highlands.xml"});
    QCOMPARE(run.output, QString("0 errors, 0 warnings.\n"));
    QCOMPARE(run.exitCode, 0);
}

void tst_ToolCheck::EachRuleIsFound_data()
{
    QTest::addColumn<Break>("doBreak");
    QTest::addColumn<QStringList>("findings");

    const auto row = [](const QByteArray& name, const Break& doBreak, const QStringList& findings) {
        QTest::newRow(name.constData()) << doBreak << findings;
    };
    const QString duplicate = " Rename one of them. [duplicate-name]";
    const QString alike = " Rename one of them. [duplicate-name-by-case]";
    const QString refused = " Give it a name that a file can have. [refused-name]";
    const QString orphan = "warning: bitmap 'Village.tga': no layer has it. Remove it from the "
                           "folder 'layers'. [orphan-bitmap]";
    row("layers of one name", Replacing("name=\"Village\"", "name=\"Shore\""),
        {"error: layer 'Shore': another layer has the same name; both read one bitmap." + duplicate,
         orphan});
    row("layers alike but for case",
        [](SampleProject& project) {
            project.Replace("name=\"Village\"", "name=\"SHORE\"");
            QFile::rename(project.Path("layers/Village.tga"), project.Path("layers/SHORE.tga"));
        },
        {"warning: layer 'SHORE': another layer has the same name but for upper and lower case." +
         alike});
    row("types of one name", Replacing("name=\"Wolf\"", "name=\"Deer\""),
        {"error: territory type 'Deer': another territory type has the same name; both are "
         "exported into one file." +
         duplicate});
    row("territories of one name",
        Replacing("</territory>", "</territory><territory name=\"North\" visible=\"1\"/>"),
        {"warning: territory 'North' of type 'Deer': another territory has the same name; nobody "
         "can tell them apart." +
         duplicate});
    row("flags of one name", Replacing("\"Farm\"", "\"Coast\""),
        {"warning: usage flag 'Coast': another usage flag has the same name; nobody can tell them "
         "apart." +
         duplicate});
    row("value flags alike but for case", Replacing("\"Tier4\"", "\"tier1\""),
        {"warning: value flag 'tier1': another value flag has the same name but for upper and "
         "lower case." +
         alike});
    row("forbidden character", Replacing("\"Wolf\"", "\"Wo|f\""),
        {"error: territory type 'Wo|f': the name holds one of < > : \" / \\ | ? *." + refused});
    row("empty name", Replacing("\"Wolf\"", "\" \""),
        {"error: territory type ' ': the name is empty." + refused});
    row("name that leads out", Replacing("name=\"Village\"", "name=\"../Village\""),
        {"error: layer '../Village': the name leads out of the project." + refused, orphan});
    row("control character", Replacing("\"Wolf\"", "\"Wo&#9;f\""),
        {"error: territory type 'Wo f': the name holds a control character." + refused});
    row("long name", Replacing("\"Wolf\"", "\"" + QByteArray(252, 'w') + "\""),
        {"error: territory type '" + QString(252, 'w') + "': the name is too long for a file." +
         refused});
    row("device name", Replacing("\"Wolf\"", "\"aux.1\""),
        {"warning: territory type 'aux.1': some file systems keep the name for a device." +
         refused});
    const QString dropped = "': some systems drop a dot or a space at the end of a name." + refused;
    row("space at the end", Replacing("\"Wolf\"", "\"Wolf \""),
        {"warning: territory type 'Wolf " + dropped});
    row("dot at the end",
        [](SampleProject& project) {
            project.Replace("name=\"Village\"", "name=\"Village.\"");
            QFile::rename(project.Path("layers/Village.tga"), project.Path("layers/Village..tga"));
        },
        {"warning: layer 'Village." + dropped});
    const QString outOfOrder =
        " The editor leaves the layer out; put a bitmap of the layer size in its place. ";
    row("missing bitmap",
        [](SampleProject& project) { QFile::remove(project.Path("layers/Village.tga")); },
        {"error: layer 'Village': its bitmap does not exist." + outOfOrder + "[bitmap-missing]"});
    row("bitmap of another size", [](SampleProject& project) { project.Paint("Village", {"#."}); },
        {"error: layer 'Village': its bitmap has 2x1 pixels instead of 8x8." + outOfOrder +
         "[bitmap-size]"});
    row("no bitmap",
        [](SampleProject& project) { WriteBytes(project.Path("layers/Village.tga"), "text"); },
        {"error: layer 'Village': its bitmap is no greyscale TGA file without colour map." +
         outOfOrder + "[bitmap-unreadable]"});
    row("folder for a bitmap",
        [](SampleProject& project) {
            QFile::remove(project.Path("layers/Village.tga"));
            QDir().mkdir(project.Path("layers/Village.tga"));
        },
        {"error: layer 'Village': its bitmap is no file." + outOfOrder + "[bitmap-unreadable]"});
    row("bitmap cut off",
        [](SampleProject& project) {
            const QString path = project.Path("layers/Village.tga");
            const QByteArray bytes = ReadBytes(path);
            WriteBytes(path, bytes.left(bytes.size() - 2));
        },
        {"error: layer 'Village': its bitmap ends before its last pixel. Restore the bitmap from a "
         "backup. [bitmap-cut-off]"});
    row("orphan bitmap", [](SampleProject& project) { project.Paint("Old", {"#"}); },
        {"warning: bitmap 'Old.tga': no layer has it. Remove it from the folder 'layers'. "
         "[orphan-bitmap]"});
    row("lost columns",
        [](SampleProject& project) {
            project.Replace("<layer size=\"8\"/>", "<layer size=\"9\"/>");
            const QStringList rows = Rows(9, "#........");
            project.Paint("Shore", rows);
            project.Paint("Village", rows);
        },
        {"error: project: the usage flags of the rightmost 1 of 9 columns have no place in the "
         "map. Choose a layer size that is a multiple of 8. [lost-map-columns]",
         "error: project: the value flags of the rightmost 1 of 9 columns have no place in the "
         "map. Choose a layer size that is a multiple of 8. [lost-map-columns]",
         "warning: project: some programs lose or shift columns of bitmaps that are 9 pixels wide. "
         "Choose a layer size that is a multiple of 4. [lost-bitmap-columns]"});
    row("too many usages", Replacing("</usages>", Flags("usage", 30)),
        {"error: project: there are 33 usage flag types, and a map holds 32. Remove those that are "
         "not needed. [too-many-flag-types]"});
    row("too many values", Replacing("</values>", Flags("value", 30)),
        {"error: project: there are 34 value flag types, and a map holds 32. Remove those that are "
         "not needed. [too-many-flag-types]"});
    row("no flags", Replacing("usage_flags=\"1\" value_flags=\"1\"", ""),
        {"warning: layer 'Shore': it has no flags and leaves no trace in the map. Check its flags "
         "in the layer properties. [layer-without-flags]"});
    row("no pixels", [](SampleProject& project) { project.Paint("Shore", Rows(8, "........")); },
        {"warning: layer 'Shore': nothing is painted in it. Paint it or remove it. "
         "[layer-without-pixels]"});
    row("unnamed bits",
        Replacing("usage_flags=\"1\" value_flags=\"1\"",
                  "usage_flags=\"41\" value_flags=\"2147483649\""),
        {"error: layer 'Shore': no flag type names usage bit 3, 5. Add the missing flag types, or "
         "save the layer's flags anew. [unnamed-flag]",
         "error: layer 'Shore': no flag type names value bit 31. Add the missing flag types, or "
         "save the layer's flags anew. [unnamed-flag]"});
    row("mask values", [](SampleProject& project) { project.Paint("Shore", Rows(8, "+#......")); },
        {"warning: layer 'Shore': 8 pixels are neither 0 nor 255: the map has them, and the editor "
         "does not show them. Make them 0 or 255. [mask-value]"});
    const QString background = " Load a background image in the editor. [missing-background]";
    row("no background", [](SampleProject& project) { QFile::remove(project.Path("back.png")); },
        {"warning: background 'back.png': it does not exist." + background});
    row("background is no picture",
        [](SampleProject& project) { WriteBytes(project.Path("back.png"), "text"); },
        {"warning: background 'back.png': it is no picture that can be read." + background});
    row("folder for the background",
        [](SampleProject& project) {
            QFile::remove(project.Path("back.png"));
            QDir().mkdir(project.Path("back.png"));
        },
        {"warning: background 'back.png': it is no file." + background});
    row("background cut off",
        [](SampleProject& project) {
            const QByteArray bytes = ReadBytes(project.Path("back.png"));
            WriteBytes(project.Path("back.png"), bytes.left(bytes.size() - 1));
        },
        {"warning: background 'back.png': it is a picture that is cut off." + background});
    const QString recompute = " Recompute it in the editor, or run 'quillmap-tool derive'. "
                              "[derived-out-of-date]";
    const QStringList other = {"#.......", "########", "........", "........",
                               "........", "........", "........", "........"};
    row("layer that is computed", [](SampleProject& project) { DeriveVillage(project, "Shore"); },
        {});
    row("computed layer out of date",
        [=](SampleProject& project) {
            DeriveVillage(project, "Shore");
            project.Paint("Shore", other);
        },
        {"warning: layer 'Village': what it is computed from has changed since." + recompute});
    row("computed layer edited by hand",
        [=](SampleProject& project) {
            DeriveVillage(project, "Shore");
            project.Paint("Village", other);
        },
        {});
    const QString restore = " Bring that layer back, or compute this one from others. "
                            "[derived-broken]";
    row("computed layer broken", [](SampleProject& project) { DeriveVillage(project, "Lake"); },
        {"warning: layer 'Village': a layer that it is computed from is missing." + restore});
    row("computed layer without the bitmap of its operand",
        [=](SampleProject& project) {
            DeriveVillage(project, "Shore");
            QFile::remove(project.Path("layers/Shore.tga"));
        },
        {"error: layer 'Shore': its bitmap does not exist." + outOfOrder + "[bitmap-missing]",
         "warning: layer 'Village': a layer that it is computed from is missing." + restore});
    row("no formulas",
        [](SampleProject& project) { WriteBytes(project.Path("sample.derived.xml"), "<x/>"); },
        {"warning: formulas 'sample.derived.xml': they cannot be used: line 1: there is no element "
         "\"qm-derived\". Remove the file, or restore it from a backup. [derived-unreadable]"});
    row("no world", Replacing("world size=\"800\"", "world size=\"0\""),
        {"error: project: the world cannot be 0x0 metres large. Choose a size of at least 1. "
         "[world-size]"});
    row("layers too large",
        [](SampleProject& project) {
            project.Replace("<layer size=\"8\"/>", "<layer size=\"65536\"/>");
        },
        {"error: project: layers cannot have 65536x65536 pixels. Choose a size from 1 to 65535. "
         "[layer-size]"});
}

void tst_ToolCheck::EachRuleIsFound()
{
    QFETCH(Break, doBreak);
    QFETCH(QStringList, findings);
    CheckFindings(doBreak, findings);
}

void tst_ToolCheck::NameOfTheMapIsChecked_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("finding");
    QTest::newRow("device") << "con.v1.xml"
                            << "warning: project 'con': some file systems keep the name for a "
                               "device. Give it a name that a file can have. [refused-name]";
    QTest::newRow("nothing before the dot")
        << ".xml"
        << "error: project '': the name is empty. Give it a name that a file can have. "
           "[refused-name]";
}

void tst_ToolCheck::NameOfTheMapIsChecked()
{
    QFETCH(QString, file);
    QFETCH(QString, finding);
    const CleanProject project;
    QVERIFY(QFile::copy(project.Path("sample.xml"), project.Path(file)));
    const ProgramRun run = project.Run({"check", file});
    QCOMPARE(Lines(run.output).value(0), file + ": " + finding);
}

void tst_ToolCheck::StrictCountsWarnings()
{
    const CleanProject project;
    project.Paint("Old", {"#"});
    QCOMPARE(project.Run({"check", "sample.xml"}).exitCode, 0);
    QCOMPARE(project.Run({"check", "--strict", "sample.xml"}).exitCode, 1);
}

void tst_ToolCheck::QuietSaysNothing()
{
    CleanProject project;
    project.Replace("smin=\"1\"", "smin=\"3\"");
    for (const char* option : {"-q", "--quiet"}) {
        const ProgramRun run = project.Run({"check", option, "sample.xml"});
        QCOMPARE(run.output, QString());
        QCOMPARE(run.log, QStringList());
        QCOMPARE(run.exitCode, 1);
    }
}

void tst_ToolCheck::FindingsAsJson()
{
    const CleanProject project;
    project.Paint("Old", {"#"});
    const ProgramRun run = project.Run({"check", "--json", "--quiet", "sample.xml"});
    const QJsonObject expected{
        {"file", "sample.xml"},
        {"findings", QJsonArray{QJsonObject{{"rule", "orphan-bitmap"},
                                            {"severity", "warning"},
                                            {"place", "bitmap 'Old.tga'"},
                                            {"text", "no layer has it."},
                                            {"advice", "Remove it from the folder 'layers'."}}}},
    };
    QCOMPARE(QJsonDocument::fromJson(run.output.toUtf8()).object(), expected);
    QCOMPARE(run.exitCode, 0);
}

void tst_ToolCheck::LeavesTheProjectAlone()
{
    const CleanProject project;
    QVERIFY(QDir(project.Path("layers")).removeRecursively());
    const QMap<QString, QByteArray> before = FilesBelow(project.Path("."));
    QCOMPARE(project.Run({"check", "sample.xml"}).exitCode, 1);
    QCOMPARE(FilesBelow(project.Path(".")), before);
}

void tst_ToolCheck::UnreadableProjectsEndWithThree_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << "none.xml" << QByteArray() << "none.xml: does not exist.";
    QTest::newRow("folder") << "layers" << QByteArray() << "layers: is no file.";
    QTest::newRow("empty") << "x.xml" << QByteArray("")
                           << "x.xml: line 1: Premature end of document.";
    QTest::newRow("cut off") << "x.xml" << QByteArray("<a>\n<global/>\n<layers>")
                             << "x.xml: line 3: Premature end of document.";
    QTest::newRow("another document")
        << "x.xml" << QByteArray("<areas/>")
        << "x.xml: is no project: there is no element \"global\" in it.";
}

void tst_ToolCheck::UnreadableProjectsEndWithThree()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    CheckIsUnreadable({"check", "export"}, file, bytes, error);
}

void tst_ToolCheck::NamesCannotForgeLines()
{
    CleanProject project;
    project.Replace("name=\"Graze\"", "name=\"rest\"");
    project.Replace("name=\"North\"", "name=\"a&#10;b&#27;[2J\"");
    // XML does not allow an escape character, and a line break in a name must not break the line of
    // output.
    QCOMPARE(project.Run({"check", "sample.xml"}).exitCode, 3);
    project.Replace("&#27;", "&#155;");
    project.Replace("name=\"Wolf\"", "name=\"|&#x202E;fl&#x2066;oW&#x200F;\"");
    const ProgramRun run = project.Run({"check", "sample.xml"});
    QCOMPARE(Lines(run.output).size(), 3);
    QVERIFY(run.output.contains("zone 1 of territory 'a b [2J' of type 'Deer'"));
    QVERIFY(run.output.contains("territory type '| fl oW ':"));
}

QTEST_APPLESS_MAIN(tst_ToolCheck)
#include "tst_ToolCheck.moc"
