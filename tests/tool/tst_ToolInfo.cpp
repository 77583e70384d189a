#include "layers/raster/Mask.h"
#include "layers/raster/TargaCodec.h"
#include "tests/support/Files.h"
#include "tests/support/LiteralTarga.h"
#include "tests/tool/SampleProject.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

class tst_ToolInfo : public QObject
{
    Q_OBJECT

private slots:
    void FilesAreDescribed_data();
    void FilesAreDescribed();
    void ProjectAsJson();
    void LargeBitmapsAreCounted();
    void ManyLayersAreCounted();
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
           "dynamic-max 9\n";
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
    const SampleProject project;
    WriteBytes(project.Path("types.xml"), "<areas><usage name=\"A\"/><usage name=\"B\"/></areas>");
    QCOMPARE(project.Run({"export", "sample.xml"}).exitCode, 0);
    const ProgramRun run = project.Run({"info", file});
    QCOMPARE(run.output, text);
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(project.Run({"info", "--quiet", file}).output, QString());
}

/// More than the tool keeps of one file, so that it reads again and again.
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

/// More layers than the tool composes at once.
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
    QCOMPARE(run.exitCode, 0);
}

void tst_ToolInfo::UnreadableFilesEndWithThree_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << "x.map" << QByteArray() << "does not exist.";
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
    const SampleProject project;
    if (!bytes.isNull()) {
        WriteBytes(project.Path(file), bytes);
    }
    const ProgramRun run = project.Run({"info", file});
    QCOMPARE(run.output, QString());
    QCOMPARE(run.log, QStringList{file + ": " + error});
    QCOMPARE(run.exitCode, 3);
}

QTEST_APPLESS_MAIN(tst_ToolInfo)
#include "tst_ToolInfo.moc"
