#include "tests/support/Files.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/Masks.h"
#include "tests/tool/SampleProject.h"

#include <QFile>
#include <QTest>

#include <unistd.h>

/// How all commands treat the files that they are given.
class tst_ToolFiles : public QObject
{
    Q_OBJECT

private slots:
    void InputsAreNotOverwritten_data();
    void InputsAreNotOverwritten();
    void MapsOfAnyWidthAreRead_data();
    void MapsOfAnyWidthAreRead();
    void DocumentsAreKnownByTheirElements();
    void CutOffBitmapsAreShownWithAWord_data();
    void CutOffBitmapsAreShownWithAWord();
};

void tst_ToolFiles::InputsAreNotOverwritten_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("target");
    const auto row = [](const QStringList& arguments, const QString& target) {
        QTest::newRow(qPrintable(arguments.join(' '))) << arguments << target;
    };
    row({"render", "sample.xml", "-o", "sample.xml"}, "sample.xml");
    row({"render", "sample.xml", "-o", "layers/Shore.tga"}, "layers/Shore.tga");
    row({"render", "sample.xml", "-o", "back.png"}, "back.png");
    row({"render", "sample.xml", "-o", "link.png"}, "link.png");
    row({"render", "layers/Shore.tga", "-o", "./layers/Shore.tga"}, "./layers/Shore.tga");
    row({"render", "a.map", "-o", "a.map"}, "a.map");
    row({"compare", "a.map", "b.map", "-o", "b.map"}, "b.map");
    row({"compare", "sample.xml", "twin.xml", "-o", "twin.xml"}, "twin.xml");
    row({"compare", "sample.xml", "twin.xml", "-o", "layers/Village.tga"}, "layers/Village.tga");
    row({"export", "project.map"}, "project.map");
    row({"export", "territoryTypes/Deer.xml", "-o", "."}, "territoryTypes/Deer.xml");
}

void tst_ToolFiles::InputsAreNotOverwritten()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, target);
    const SampleProject project;
    const QByteArray document = ReadBytes(project.Path("sample.xml"));
    WriteBytes(project.Path("twin.xml"), document);
    WriteBytes(project.Path("project.map"), document);
    WriteBytes(project.Path("territoryTypes/Deer.xml"), document);
    WriteBytes(project.Path("territoryTypes/layers/Shore.tga"),
               ReadBytes(project.Path("layers/Shore.tga")));
    WriteBytes(project.Path("territoryTypes/layers/Village.tga"),
               ReadBytes(project.Path("layers/Village.tga")));
    QCOMPARE(project.Run({"export", "sample.xml", "-o", "maps"}).exitCode, 0);
    for (const char* map : {"a.map", "b.map"}) {
        QVERIFY(QFile::copy(project.Path("maps/sample.map"), project.Path(map)));
    }
    QCOMPARE(symlink("layers/Village.tga", qPrintable(project.Path("link.png"))), 0);
    const QMap<QString, QByteArray> files = FilesBelow(project.Path("."));

    const ProgramRun run = project.Run(arguments);

    QCOMPARE(run.log, QStringList{target + ": is read by this command."});
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(FilesBelow(project.Path(".")), files);
}

void tst_ToolFiles::MapsOfAnyWidthAreRead_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("file");
    // These widths have the same bytes as the beginning of a document.
    for (const int width : {60, 15392, 15370, 65279, 65534}) {
        for (const char* file : {"a.map", "a.bin"}) {
            QTest::addRow("%d in %s", width, file) << width << QString(file);
        }
    }
}

void tst_ToolFiles::MapsOfAnyWidthAreRead()
{
    QFETCH(int, width);
    QFETCH(QString, file);
    const SampleProject project;
    const QImage mask = MaskFromArt({QString(width, '#')});
    WriteBytes(project.Path(file), literal::WriteMap({{mask, 1, 0}}, mask.size(), {80, 80}, 1, 0));

    const ProgramRun info = project.Run({"info", file});

    QVERIFY(info.output.contains(QString("kind: map\nwidth: %1\nheight: 1\n").arg(width)));
    QCOMPARE(info.exitCode, 0);
    QCOMPARE(project.Run({"compare", file, file}).exitCode, 0);
    QCOMPARE(project.Run({"render", file, "-o", "p.png", "--size", "64"}).exitCode, 0);
}

void tst_ToolFiles::DocumentsAreKnownByTheirElements()
{
    SampleProject project;
    project.Replace("<?xml version=\"1.0\" encoding=\"UTF-8\"?>", QByteArray(200, '\n'));
    WriteBytes(project.Path("project.map"), ReadBytes(project.Path("sample.xml")));
    for (const char* file : {"sample.xml", "project.map"}) {
        QVERIFY(project.Run({"info", file}).output.contains("kind: project\n"));
    }
}

void tst_ToolFiles::CutOffBitmapsAreShownWithAWord_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("info") << QStringList{"info", "sample.xml"} << 0;
    QTest::newRow("compare") << QStringList{"compare", "sample.xml", "other/sample.xml"} << 1;
    QTest::newRow("layers") << QStringList{"render", "sample.xml", "-o", "p.png"} << 0;
    QTest::newRow("flags") << QStringList{"render", "sample.xml", "-o", "p.png", "--flag", "Town"}
                           << 0;
}

void tst_ToolFiles::CutOffBitmapsAreShownWithAWord()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    const SampleProject project;
    WriteBytes(project.Path("other/sample.xml"), ReadBytes(project.Path("sample.xml")));
    for (const char* layer : {"layers/Shore.tga", "layers/Village.tga"}) {
        WriteBytes(project.Path(QString("other/") + layer), ReadBytes(project.Path(layer)));
    }
    const QString path = project.Path("layers/Village.tga");
    const QByteArray bytes = ReadBytes(path);
    // The packet of the last pixel, which is set, is missing.
    WriteBytes(path, bytes.left(bytes.size() - 2));

    const ProgramRun run = project.Run(arguments);

    QCOMPARE(run.log, QStringList{path + ": ends before its last pixel, and its rest is filled."});
    QCOMPARE(run.exitCode, exitCode);
    const ProgramRun exported = project.Run({"export", "sample.xml", "-o", "out"});
    QCOMPARE(exported.log, QStringList{path + ": ends before its last pixel."});
    QCOMPARE(exported.exitCode, 3);
    QVERIFY(!QFile::exists(project.Path("out")));
}

QTEST_APPLESS_MAIN(tst_ToolFiles)
#include "tst_ToolFiles.moc"
