#include "tests/support/Files.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/LiteralTarga.h"
#include "tests/support/Masks.h"
#include "tests/support/Random.h"
#include "tests/tool/SampleProject.h"

#include <QDir>
#include <QTest>

#include <unistd.h>

namespace {

const char SampleTypeFile[] =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<territory-type>
    <territory color="4278190335">
        <zone name="Graze" smin="1" smax="2" dmin="3" dmax="4" x="400" z="200" r="100"/>
        <zone name="Migration" smin="0" smax="1" dmin="0" dmax="5" x="800" z="0" r="50"/>
    </territory>
</territory-type>
)";

QImage Bitmap(const SampleProject& project, const QString& layer, QSize size)
{
    return literal::ReadTarga(ReadBytes(project.Path("layers/" + layer + ".tga")), size);
}

QByteArray SampleMap(const SampleProject& project)
{
    return literal::WriteMap(
        {{Bitmap(project, "Shore", {8, 8}), 1, 1}, {Bitmap(project, "Village", {8, 8}), 6, 10}},
        {8, 8}, {800, 800}, 3, 4);
}

} // namespace

class tst_ToolExport : public QObject
{
    Q_OBJECT

private slots:
    void WritesMapAndTypes();
    void WritesIntoTheCurrentFolder();
    void ReplacesOldFiles();
    void QuietSaysNothing();
    void LargeLayersEqualTheLiteralMap();
    void ProjectWithoutFlagTypesHasAShortMap();
    void NothingIsWrittenWhenTheInputIsBroken_data();
    void NothingIsWrittenWhenTheInputIsBroken();
    void NothingIsLeftWhenTheOutputFails_data();
    void NothingIsLeftWhenTheOutputFails();
    void FullDisksAreReported_data();
    void FullDisksAreReported();
    void LinksAreFollowed();
    void UnwrittenOutputEndsWithFour();
};

void tst_ToolExport::WritesMapAndTypes()
{
    const SampleProject project;
    const QMap<QString, QByteArray> before = FilesBelow(project.Path("."));

    const ProgramRun run = project.Run({"export", "sample.xml", "-o", "a/out"});

    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.output, QString("a/out/sample.map\na/out/territoryTypes/Deer.xml\n"
                                 "a/out/territoryTypes/Wolf.xml\n"));
    QCOMPARE(run.exitCode, 0);
    const QMap<QString, QByteArray> written = FilesBelow(project.Path("a/out"));
    QCOMPARE(written.keys(), (QStringList{"sample.map", "territoryTypes/",
                                          "territoryTypes/Deer.xml", "territoryTypes/Wolf.xml"}));
    QCOMPARE(written["sample.map"], SampleMap(project));
    QCOMPARE(written["territoryTypes/Deer.xml"], QByteArray(SampleTypeFile));
    QVERIFY(QDir(project.Path("a")).removeRecursively());
    QCOMPARE(FilesBelow(project.Path(".")), before);
}

void tst_ToolExport::WritesIntoTheCurrentFolder()
{
    const SampleProject project;
    const ProgramRun run = project.Run({"export", "sample.xml"});
    QCOMPARE(run.output, QString("sample.map\nterritoryTypes/Deer.xml\nterritoryTypes/Wolf.xml\n"));
    QCOMPARE(ReadBytes(project.Path("sample.map")), SampleMap(project));
}

void tst_ToolExport::ReplacesOldFiles()
{
    const SampleProject project;
    WriteBytes(project.Path("sample.map"), "old");
    WriteBytes(project.Path("territoryTypes/Deer.xml"), "old");
    WriteBytes(project.Path("territoryTypes/Other.xml"), "other");
    QCOMPARE(project.Run({"export", "sample.xml"}).exitCode, 0);
    QCOMPARE(ReadBytes(project.Path("sample.map")), SampleMap(project));
    QCOMPARE(ReadBytes(project.Path("territoryTypes/Deer.xml")), QByteArray(SampleTypeFile));
    QCOMPARE(ReadBytes(project.Path("territoryTypes/Other.xml")), QByteArray("other"));
}

void tst_ToolExport::QuietSaysNothing()
{
    const SampleProject project;
    const ProgramRun run = project.Run({"export", "--quiet", "sample.xml"});
    QCOMPARE(run.output, QString());
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
}

/// Several bands of rows, and a width that leaves a remainder in the map.
void tst_ToolExport::LargeLayersEqualTheLiteralMap()
{
    SampleProject project;
    const QSize size(203, 203);
    project.Replace("<layer size=\"8\"/>", "<layer size=\"203\"/>");
    Random random;
    QVector<literal::MapLayer> layers = {{RandomMask(random, size), 1, 1},
                                         {RandomMask(random, size), 6, 10}};
    WriteBytes(project.Path("layers/Shore.tga"), literal::WriteTarga(layers[0].image, true));
    WriteBytes(project.Path("layers/Village.tga"), literal::WriteTarga(layers[1].image, false));
    QCOMPARE(project.Run({"export", "sample.xml"}).exitCode, 0);
    QCOMPARE(ReadBytes(project.Path("sample.map")),
             literal::WriteMap(layers, size, {800, 800}, 3, 4));
}

void tst_ToolExport::ProjectWithoutFlagTypesHasAShortMap()
{
    const SampleProject project;
    WriteBytes(project.Path("bare.old.xml"), "<qm-config><global/></qm-config>");
    QCOMPARE(project.Run({"export", "bare.old.xml"}).output, QString("bare.map\n"));
    QCOMPARE(ReadBytes(project.Path("bare.map")),
             literal::WriteMap({}, {2048, 2048}, {15360, 15360}, 0, 0));
}

void tst_ToolExport::NothingIsWrittenWhenTheInputIsBroken_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QStringList>("errors");
    QTest::addColumn<int>("exitCode");
    QByteArray usages;
    for (int i = 0; i < 30; ++i) {
        usages += "<usage name=\"a\"/>";
    }
    QTest::newRow("missing bitmap") << QByteArray("\"Village\"") << QByteArray("\"Other\"")
                                    << QStringList{"FOLDER/layers/Other.tga: does not exist."} << 3;
    QTest::newRow("bitmaps of another size")
        << QByteArray("<layer size=\"8\"") << QByteArray("<layer size=\"16\"")
        << QStringList{"FOLDER/layers/Shore.tga: has 8x8 pixels instead of 16x16.",
                       "FOLDER/layers/Village.tga: has 8x8 pixels instead of 16x16."}
        << 3;
    QTest::newRow("no layer size")
        << QByteArray("<layer size=\"8\"") << QByteArray("<layer size=\"many\"")
        << QStringList{"sample.xml: layers cannot have 0x0 pixels."} << 3;
    QTest::newRow("name leads out")
        << QByteArray("\"Village\"") << QByteArray("\"../layers/Village\"")
        << QStringList{"FOLDER/layers/../layers/Village.tga: lies outside the project."} << 3;
    QTest::newRow("too many flag types")
        << QByteArray("</usages>") << usages + "</usages>"
        << QStringList{"sample.xml: an area map holds at most 32 usage and 32 value flag types."}
        << 3;
    QTest::newRow("types of one name")
        << QByteArray("\"Wolf\"") << QByteArray("\"Deer\"")
        << QStringList{"sample.xml: two territory types are named 'Deer' and would be written into "
                       "one file."}
        << 3;
    QTest::newRow("type that leads out")
        << QByteArray("\"Wolf\"") << QByteArray("\"../../Wolf\"")
        << QStringList{"sample.xml: territory type '../../Wolf' cannot be exported under this "
                       "name."}
        << 3;
}

void tst_ToolExport::NothingIsWrittenWhenTheInputIsBroken()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QStringList, errors);
    QFETCH(int, exitCode);
    SampleProject project;
    project.Replace(before, after);
    errors.replaceInStrings("FOLDER", QDir(project.Path(".")).canonicalPath());
    const QMap<QString, QByteArray> files = FilesBelow(project.Path("."));

    const ProgramRun run = project.Run({"export", "sample.xml", "-o", "out"});

    QCOMPARE(run.log, errors);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(FilesBelow(project.Path(".")), files);
}

void tst_ToolExport::NothingIsLeftWhenTheOutputFails_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("error");
    QTest::newRow("file for the folder")
        << "sample.xml/out"
        << ""
        << "sample.xml: the folder cannot be created: File exists.";
    QTest::newRow("folder for the map") << "out"
                                        << "out/sample.map/x"
                                        << "out/sample.map: cannot be written: it is no file.";
    QTest::newRow("folder for a type")
        << "out"
        << "out/territoryTypes/Wolf.xml/x"
        << "out/territoryTypes/Wolf.xml: cannot be written: it is no file.";
    QTest::newRow("link to nowhere")
        << "nowhere"
        << ""
        << "nowhere/sample.map: cannot be written: it leads to a folder that "
           "does not exist.";
    QTest::newRow("file for the types")
        << "out"
        << "out/territoryTypes"
        << "out/territoryTypes: the folder cannot be created: File exists.";
}

void tst_ToolExport::NothingIsLeftWhenTheOutputFails()
{
    QFETCH(QString, folder);
    QFETCH(QString, obstacle);
    QFETCH(QString, error);
    const SampleProject project;
    WriteBytes(project.Path("out/old.txt"), "old");
    if (!obstacle.isEmpty()) {
        WriteBytes(project.Path(obstacle), "obstacle");
    }
    if (!obstacle.startsWith("out/sample.map")) {
        WriteBytes(project.Path("out/sample.map"), "old map");
    }
    QVERIFY(QDir().mkdir(project.Path("nowhere")));
    QCOMPARE(symlink("none/x.map", qPrintable(project.Path("nowhere/sample.map"))), 0);
    const QMap<QString, QByteArray> files = FilesBelow(project.Path("."));

    const ProgramRun run = project.Run({"export", "-o", folder, "sample.xml"});

    QCOMPARE(run.log, QStringList{error});
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 4);
    QCOMPARE(FilesBelow(project.Path(".")), files);
}

void tst_ToolExport::FullDisksAreReported_data()
{
    QTest::addColumn<QString>("limit");
    QTest::addColumn<QString>("file");
    QTest::newRow("full") << "ulimit -f 0"
                          << "territoryTypes/Deer.xml";
    QTest::newRow("full in the midst") << "ulimit -f 1"
                                       << "sample.map";
}

void tst_ToolExport::FullDisksAreReported()
{
    QFETCH(QString, limit);
    QFETCH(QString, file);
    SampleProject project;
    // The map has more bytes than the larger limit.
    const QStringList rows = QVector<QString>(64, QString(64, '#')).toList();
    project.Replace("<layer size=\"8\"/>", "<layer size=\"64\"/>");
    project.Paint("Shore", rows);
    project.Paint("Village", rows);
    const QMap<QString, QByteArray> files = FilesBelow(project.Path("."));
    const ProgramRun run = project.RunLimited(limit, {"export", "-o", "new/out", "sample.xml"});
    QCOMPARE(run.log, QStringList{"new/out/" + file + ": cannot be written: File too large."});
    QCOMPARE(run.exitCode, 4);
    QCOMPARE(FilesBelow(project.Path(".")), files);
}

/// After a link, ".." means the folder above the link's target, as everywhere else.
void tst_ToolExport::LinksAreFollowed()
{
    const SampleProject project;
    QVERIFY(QDir().mkpath(project.Path("far/away")));
    WriteBytes(project.Path("far/old.map"), "old");
    QVERIFY(
        QFile::setPermissions(project.Path("far/old.map"), QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(symlink("far/away", qPrintable(project.Path("link"))), 0);
    QCOMPARE(symlink("../new.xml", qPrintable(project.Path("far/away/Deer.xml"))), 0);
    QVERIFY(QDir().mkpath(project.Path("far/out")));
    QCOMPARE(symlink("../old.map", qPrintable(project.Path("far/out/sample.map"))), 0);
    QCOMPARE(symlink("../away", qPrintable(project.Path("far/out/territoryTypes"))), 0);

    const ProgramRun run = project.Run({"export", "sample.xml", "-o", "link/../out"});

    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.output, QString("link/../out/sample.map\nlink/../out/territoryTypes/Deer.xml\n"
                                 "link/../out/territoryTypes/Wolf.xml\n"));
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(ReadBytes(project.Path("far/old.map")), SampleMap(project));
    QCOMPARE(QFile::permissions(project.Path("far/old.map")) & ~QFile::Permissions(0xF00),
             QFile::ReadOwner | QFile::WriteOwner);
    QCOMPARE(ReadBytes(project.Path("far/new.xml")), QByteArray(SampleTypeFile));
    QVERIFY(QFileInfo(project.Path("far/out/sample.map")).isSymLink());
    QCOMPARE(FilesBelow(project.Path("far")).keys(),
             (QStringList{"away/", "away/Deer.xml", "away/Wolf.xml", "new.xml", "old.map", "out/",
                          "out/sample.map", "out/territoryTypes/"}));
}

void tst_ToolExport::UnwrittenOutputEndsWithFour()
{
    const SampleProject project;
    const ProgramRun run = project.RunLimited("exec >/dev/full", {"check", "sample.xml"});
    QCOMPARE(run.log, QStringList{"standard output: cannot be written."});
    QCOMPARE(run.exitCode, 4);
}

QTEST_APPLESS_MAIN(tst_ToolExport)
#include "tst_ToolExport.moc"
