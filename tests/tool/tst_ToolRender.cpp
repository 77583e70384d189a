#include "tests/support/Files.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/Masks.h"
#include "tests/tool/SampleProject.h"

#include <QImage>
#include <QTest>

#include <sys/stat.h>

namespace {

constexpr QRgb White = 0xFFFFFFFF;
constexpr QRgb Black = 0xFF000000;
constexpr QRgb Red = 0xFFFF0000;
constexpr QRgb Green = 0xFF00FF00;

/// One character a pixel, '?' for other colours.
QStringList Art(const QImage& picture)
{
    const QMap<QRgb, QChar> characters = {{White, '.'}, {Black, ' '}, {Red, 'r'}, {Green, 'g'}};
    QStringList rows;
    for (int y = 0; y < picture.height(); ++y) {
        QString row;
        for (int x = 0; x < picture.width(); ++x) {
            row += characters.value(picture.pixel(x, y), '?');
        }
        rows.append(row);
    }
    return rows;
}

QByteArray Map()
{
    const QImage mask = MaskFromArt({"#......."});
    return literal::WriteMap({{mask, 1, 0}}, mask.size(), {80, 10}, 3, 0);
}

} // namespace

/// The sample's background is white, "Shore" red and "Village" green.
class tst_ToolRender : public QObject
{
    Q_OBJECT

private slots:
    void ProjectLooksAsInTheEditor();
    void UpperLayersCoverLowerOnes();
    void OpacityAndBackgroundColorAreMixed();
    void ChosenLayersAreShown();
    void SizeIsThatOfTheLongerSide_data();
    void SizeIsThatOfTheLongerSide();
    void ZonesAreShown();
    void FlagsHaveTheColoursOfTheLegend();
    void MapShowsItsUsages();
    void MapWithoutUsagesShowsItsValues();
    void ColoursOfTheLegendDiffer();
    void LegendLeavesSmallPicturesAlone();
    void FlagsHaveSeveralNames();
    void BitmapIsWhiteOnBlack();
    void TallBitmapsAreWhole();
    void WrongOptionsEndWithTwo_data();
    void WrongOptionsEndWithTwo();
    void UnreadableFilesEndWithThree_data();
    void UnreadableFilesEndWithThree();
    void UnreadableLayersEndWithThree();
    void UnreadableBackgroundsEndWithThree_data();
    void UnreadableBackgroundsEndWithThree();
    void UnwrittenPicturesEndWithFour_data();
    void UnwrittenPicturesEndWithFour();
};

void tst_ToolRender::ProjectLooksAsInTheEditor()
{
    const SampleProject project;
    const ProgramRun run = project.Run({"render", "sample.xml", "-o", "p.png"});
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(Art(QImage(project.Path("p.png"))),
             (QStringList{".......g", "........", "........", "........", "rrrr....", "........",
                          "........", "r......."}));
}

void tst_ToolRender::UpperLayersCoverLowerOnes()
{
    const SampleProject project;
    project.Paint("Village", QVector<QString>(8, "########").toList());
    QCOMPARE(project.Run({"render", "sample.xml", "-o", "p.png"}).exitCode, 0);
    QCOMPARE(Art(QImage(project.Path("p.png"))).at(4), QString("rrrrgggg"));
}

void tst_ToolRender::OpacityAndBackgroundColorAreMixed()
{
    SampleProject project;
    // Half black over the white picture, and a quarter of blue over that.
    project.Replace("rgba=\"2\"", "rgba=\"2147483648\"");
    project.Replace("color=\"4294901760\"", "color=\"1073742079\"");
    QCOMPARE(project.Run({"render", "sample.xml", "-o", "p.png"}).exitCode, 0);
    const QImage picture(project.Path("p.png"));
    QCOMPARE(picture.pixelColor(7, 7), QColor(127, 127, 127));
    QCOMPARE(picture.pixelColor(0, 7), QColor(95, 95, 159));
}

void tst_ToolRender::ChosenLayersAreShown()
{
    SampleProject project;
    project.Replace("visible=\"1\" name=\"Village\"", "name=\"Village\"");
    QCOMPARE(project.Run({"render", "sample.xml", "-o", "p.png"}).exitCode, 0);
    QCOMPARE(Art(QImage(project.Path("p.png"))).value(0), QString("........"));
    QCOMPARE(project.Run({"render", "sample.xml", "-o", "p.png", "--layers", "Village"}).exitCode,
             0);
    QCOMPARE(Art(QImage(project.Path("p.png"))),
             (QStringList{".......g", "........", "........", "........", "gg......", "........",
                          "........", "........"}));
    project.Run({"render", "sample.xml", "-o", "p.png", "--layers", "Village,Shore"});
    QCOMPARE(Art(QImage(project.Path("p.png"))).at(4), QString("rrrr...."));
    project.Run(
        {"render", "sample.xml", "-o", "p.png", "--layers", "Village", "--layers", "Shore"});
    QCOMPARE(Art(QImage(project.Path("p.png"))).at(0), QString(".......g"));
    QCOMPARE(Art(QImage(project.Path("p.png"))).at(4), QString("rrrr...."));
    project.Replace("\"Shore\"", "\"A,B\"");
    QVERIFY(QFile::rename(project.Path("layers/Shore.tga"), project.Path("layers/A,B.tga")));
    project.Run({"render", "sample.xml", "-o", "p.png", "--layers", "A,B"});
    QCOMPARE(Art(QImage(project.Path("p.png"))).at(4), QString("rrrr...."));
    QCOMPARE(Art(QImage(project.Path("p.png"))).at(0), QString("........"));
}

void tst_ToolRender::SizeIsThatOfTheLongerSide_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<QStringList>("art");
    QTest::newRow("half") << "4" << QStringList{"....", "....", "....", "...."};
    QTest::newRow("one") << "1" << QStringList{"."};
    QTest::newRow("twice") << "16"
                           << (QStringList{"..............gg", "..............gg"} +
                               QVector<QString>(6, QString(16, '.')).toList() +
                               QVector<QString>(2, "rrrrrrrr........").toList() +
                               QVector<QString>(4, QString(16, '.')).toList() +
                               QVector<QString>(2, "rr..............").toList());
}

void tst_ToolRender::SizeIsThatOfTheLongerSide()
{
    QFETCH(QString, size);
    QFETCH(QStringList, art);
    const SampleProject project;
    QCOMPARE(project.Run({"render", "sample.xml", "-o", "p.png", "--size", size}).exitCode, 0);
    QCOMPARE(Art(QImage(project.Path("p.png"))), art);
}

void tst_ToolRender::ZonesAreShown()
{
    SampleProject project;
    const QStringList arguments = {"render", "sample.xml", "-o",     "p.png",
                                   "--size", "800",        "--zones"};
    QCOMPARE(project.Run(arguments).exitCode, 0);
    // A zone at (400, 200) m with a radius of one layer pixel and an outline of two layer pixels.
    const QImage picture(project.Path("p.png"));
    QCOMPARE(picture.pixelColor(420, 450), QColor(2, 2, 2));
    QCOMPARE(picture.pixelColor(420, 390), QColor(Qt::white));
    project.Replace("name=\"North\" visible=\"1\"", "name=\"North\"");
    QCOMPARE(project.Run(arguments).exitCode, 0);
    QCOMPARE(QImage(project.Path("p.png")).pixelColor(420, 450), QColor(Qt::white));
}

void tst_ToolRender::FlagsHaveTheColoursOfTheLegend()
{
    const SampleProject project;
    const ProgramRun run = project.Run({"render", "sample.xml", "-o", "p.png", "--size", "800",
                                        "--flag", "Coast", "--flag", "value:3"});
    QCOMPARE(run.output, QString("#e69f00 Coast\n#56b4e9 value:3\n"));
    const QImage picture(project.Path("p.png"));
    // Two thirds of the legend's colour over white.
    QCOMPARE(picture.pixelColor(350, 450), QColor(238, 191, 85));
    QCOMPARE(picture.pixelColor(750, 50), QColor(142, 205, 240));
    QCOMPARE(picture.pixelColor(750, 750), QColor(Qt::white));
    QCOMPARE(picture.pixelColor(10, 10), QColor(0xE6, 0x9F, 0x00));
}

void tst_ToolRender::MapShowsItsUsages()
{
    const SampleProject project;
    QCOMPARE(project.Run({"export", "sample.xml"}).exitCode, 0);
    const ProgramRun run = project.Run({"render", "sample.map", "-o", "p.png", "--size", "800"});
    // No pixel has the fourth bit of the field.
    QCOMPARE(run.output, QString("#e69f00 usage:0\n#56b4e9 usage:1\n#009e73 usage:2\n"));
    const QImage picture(project.Path("p.png"));
    QCOMPARE(picture.size(), QSize(800, 800));
    // Two thirds of the colour over the grey, and two thirds of the third colour over the second.
    QCOMPARE(picture.pixelColor(750, 750), QColor(48, 48, 48));
    QCOMPARE(picture.pixelColor(750, 50), QColor(24, 150, 134));
    QCOMPARE(picture.pixelColor(50, 750), QColor(169, 122, 16));
}

void tst_ToolRender::MapWithoutUsagesShowsItsValues()
{
    const SampleProject project;
    const QImage mask = MaskFromArt({QString(32, '#')});
    WriteBytes(project.Path("a.map"), literal::WriteMap({{mask, 0, 2}}, {32, 1}, {80, 80}, 0, 2));
    const ProgramRun run = project.Run({"render", "a.map", "-o", "p.png"});
    QCOMPARE(run.output, QString("#56b4e9 value:1\n"));
    QCOMPARE(QImage(project.Path("p.png")).pixelColor(0, 0), QColor(73, 136, 171));
}

/// Any number of flags get different colours.
void tst_ToolRender::ColoursOfTheLegendDiffer()
{
    SampleProject project;
    QByteArray usages;
    QStringList arguments = {"render", "sample.xml", "-o", "p.png"};
    for (int i = 3; i < 32; ++i) {
        usages += "<usage name=\"u" + QByteArray::number(i) + "\"/>";
    }
    project.Replace("</usages>", usages + "</usages>");
    for (int i = 0; i < 64; ++i) {
        arguments +=
            {"--flag", i < 32 ? QString("usage:%1").arg(i) : QString("value:%1").arg(i % 4)};
    }
    const ProgramRun run = project.Run(arguments);
    QSet<QString> colors;
    const QStringList lines = run.output.split('\n', Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        colors.insert(line.section(' ', 0, 0));
    }
    QCOMPARE(colors.size(), 64);
}

void tst_ToolRender::LegendLeavesSmallPicturesAlone()
{
    const SampleProject project;
    const QStringList arguments = {"render", "sample.xml", "-o",    "p.png",
                                   "--flag", "Coast",      "--size"};
    QCOMPARE(project.Run(arguments + QStringList{"40"}).output, QString("#e69f00 Coast\n"));
    QCOMPARE(QImage(project.Path("p.png")).pixelColor(8, 8), QColor(Qt::white));
    QCOMPARE(project.Run(arguments + QStringList{"400"}).output, QString("#e69f00 Coast\n"));
    QCOMPARE(QImage(project.Path("p.png")).pixelColor(8, 8), QColor(0xE6, 0x9F, 0x00));
}

/// If a usage and a value have the same name, the usage is meant.
void tst_ToolRender::FlagsHaveSeveralNames()
{
    SampleProject project;
    project.Replace("\"Tier3\"", "\"Town\"");
    const auto isShown = [&project](const QString& flag) {
        const ProgramRun run = project.Run({"render", "sample.xml", "-o", "p.png", "--flag", flag});
        return run.exitCode == 0 &&
               QImage(project.Path("p.png")).pixelColor(7, 0) != QColor(Qt::white);
    };
    QVERIFY(isShown("Town"));
    QVERIFY(isShown("usage:Town"));
    QVERIFY(isShown("usage:1"));
    QVERIFY(isShown("value:Tier4"));
    QVERIFY(!isShown("value:Town"));
    QVERIFY(!isShown("value:2"));
}

void tst_ToolRender::BitmapIsWhiteOnBlack()
{
    const SampleProject project;
    QCOMPARE(project.Run({"render", "layers/Shore.tga", "-o", "p.png"}).exitCode, 0);
    const QString clear(8, ' ');
    QCOMPARE(Art(QImage(project.Path("p.png"))),
             (QStringList{clear, clear, clear, clear, "....    ", clear, clear, ".       "}));
}

/// Several bands of rows, at picture sizes that do not divide their heights.
void tst_ToolRender::TallBitmapsAreWhole()
{
    const SampleProject project;
    QStringList rows;
    for (int y = 0; y < 200; ++y) {
        rows.append(y % 2 == 0 ? "#" : ".");
    }
    project.Paint("Tall", rows);
    for (const int length : {200, 67, 333, 1}) {
        const QString size = QString::number(length);
        QCOMPARE(project.Run({"render", "layers/Tall.tga", "-o", "p.png", "--size", size}).exitCode,
                 0);
        const QImage picture(project.Path("p.png"));
        QCOMPARE(picture.height(), length);
        for (int y = 0; y < length; ++y) {
            const int row = static_cast<int>((y + 0.5) * 200 / length);
            QCOMPARE(picture.pixel(0, y), row % 2 == 0 ? White : Black);
        }
    }
}

void tst_ToolRender::WrongOptionsEndWithTwo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const QStringList& arguments, const QString& error) {
        QTest::newRow(name) << arguments << error;
    };
    row("no picture", {"sample.xml"}, "the option -o is needed.");
    row("size", {"sample.xml", "-o", "p", "--size", "0"}, "a size is 1 to 16384.");
    row("empty size", {"sample.xml", "-o", "p", "--size", ""}, "a size is 1 to 16384.");
    row("large size", {"sample.xml", "-o", "p", "--size", "16385"}, "a size is 1 to 16384.");
    row("size in letters", {"sample.xml", "-o", "p", "--size", "big"}, "a size is 1 to 16384.");
    row("bit beyond the flags", {"sample.xml", "-o", "p", "--flag", "usage:4"},
        "there is no flag 'usage:4'.");
    row("flag", {"sample.xml", "-o", "p", "--flag", "usage:32"}, "there is no flag 'usage:32'.");
    row("layer", {"sample.xml", "-o", "p", "--layers", "Shore,x"}, "there is no layer 'x'.");
    row("zones", {"layers/Shore.tga", "-o", "p", "--zones"},
        "only projects have layers and zones.");
    row("map flag by name", {"a.map", "-o", "p", "--flag", "Coast"},
        "there is no flag 'Coast', a map knows them as usage:BIT and value:BIT.");
    row("map layers", {"a.map", "-o", "p", "--layers", "Shore"},
        "only projects have layers and zones.");
    row("file of another kind", {"types.xml", "-o", "p"},
        "a project, map or layer bitmap is needed.");
    row("bitmap flag", {"layers/Shore.tga", "-o", "p", "--flag", "x"},
        "a layer bitmap has no flags.");
}

void tst_ToolRender::WrongOptionsEndWithTwo()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const SampleProject project;
    WriteBytes(project.Path("types.xml"), "<areas><usage name=\"A\"/></areas>");
    WriteBytes(project.Path("a.map"), Map());
    const ProgramRun run = project.Run(QStringList{"render"} + arguments);
    QCOMPARE(run.log, (QStringList{"quillmap-tool: " + error,
                                   "quillmap-tool: try 'quillmap-tool render --help'."}));
    QCOMPARE(run.exitCode, 2);
    QVERIFY(!QFile::exists(project.Path("p")));
}

void tst_ToolRender::UnreadableFilesEndWithThree_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    QTest::newRow("broken project") << "a.xml" << QByteArray("<qm-config><layers></qm-config>")
                                    << "line 1: Opening and ending tag mismatch.";
    QTest::newRow("layers without pixels")
        << "a.xml" << QByteArray("<qm-config><global><layer size=\"0\"/></global></qm-config>")
        << "layers cannot have 0x0 pixels.";
    QTest::newRow("map that ends early")
        << "a.map" << Map().left(22) << "is too short for an area map.";
    QTest::newRow("map without pixels")
        << "a.map" << QByteArray(24, '\0') << "is no area map: 0x0 pixels.";
    QTest::newRow("bitmap that ends early")
        << "a.tga" << QByteArray(17, '\0') << "is no greyscale TGA file without colour map.";
    QTest::newRow("no file") << "" << QByteArray() << "does not exist.";
}

void tst_ToolRender::UnreadableFilesEndWithThree()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    const SampleProject project;
    if (!file.isEmpty()) {
        WriteBytes(project.Path(file), bytes);
    }
    const QString name = file.isEmpty() ? "none.xml" : file;
    const ProgramRun run = project.Run({"render", name, "-o", "p.png"});
    QCOMPARE(run.log, QStringList{name + ": " + error});
    QCOMPARE(run.exitCode, 3);
    QVERIFY(!QFile::exists(project.Path("p.png")));
}

void tst_ToolRender::UnreadableLayersEndWithThree()
{
    const SampleProject project;
    QFile::remove(project.Path("layers/Village.tga"));
    const ProgramRun run = project.Run({"render", "sample.xml", "-o", "p.png"});
    QCOMPARE(run.log, QStringList{project.Path("layers/Village.tga") + ": does not exist."});
    QCOMPARE(run.exitCode, 3);
    QVERIFY(!QFile::exists(project.Path("p.png")));
}

void tst_ToolRender::UnreadableBackgroundsEndWithThree_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const QByteArray& bytes, const char* error) {
        QTest::newRow(name) << bytes << QString(error);
    };
    row("missing", QByteArray(), "does not exist.");
    row("pipe", "pipe", "is no file.");
    row("text", "text", "is no picture that can be read.");
    row("cut off", "most", "is a picture that is cut off.");
#ifndef QUILLMAP_PORTABLE
    // The library that unpacks pictures has its say on other systems than Linux.
    row("damaged", "damaged", "is no picture that can be read.");
#endif
    row("of few bytes and very large",
        QByteArray(
            "\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\x75\x30\0\0\x75\x30\1\0\0\0\0\x4e\x5c\xc5\x17"
            "\0\0\0\0IDAT\x35\xaf\x06\x1e\0\0\0\0IEND\xae\x42\x60\x82",
            57),
        "has 30000x30000 pixels, which are too many.");
}

void tst_ToolRender::UnreadableBackgroundsEndWithThree()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    const SampleProject project;
    const QString path = project.Path("back.png");
    const QByteArray good = ReadBytes(path);
    QFile::remove(path);
    if (bytes == "pipe") {
        QCOMPARE(mkfifo(qPrintable(path), 0600), 0);
    } else if (bytes == "most") {
        WriteBytes(path, good.left(good.size() - 1));
    } else if (bytes == "damaged") {
        QByteArray damaged = good;
        damaged[damaged.indexOf("IDAT") + 5] = '\xaa';
        WriteBytes(path, damaged);
    } else if (!bytes.isNull()) {
        WriteBytes(path, bytes);
    }
    const ProgramRun run = project.Run({"render", "sample.xml", "-o", "p.png"});
    QCOMPARE(run.log, QStringList{path + ": " + error});
    QCOMPARE(run.exitCode, 3);
    QVERIFY(!QFile::exists(project.Path("p.png")));
}

void tst_ToolRender::UnwrittenPicturesEndWithFour_data()
{
    QTest::addColumn<QString>("limit");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const char* limit, const char* target,
                        const char* reason) {
        QTest::newRow(name) << QString(limit) << QString(target) << QString(reason);
    };
    row("no folder", ":", "none/p.png", "No such file or directory.");
    row("full", "ulimit -f 0", "layers/p.png", "File too large.");
    row("full in the midst", "ulimit -f 1", "layers/p.png", "File too large.");
    row("folder", ":", "layers", "Is a directory.");
#ifndef QUILLMAP_PORTABLE
    // Only Linux opens a pipe without waiting for a reader.
    row("pipe that nobody reads", ":", "pipe", "No such device or address.");
#endif
}

void tst_ToolRender::UnwrittenPicturesEndWithFour()
{
    QFETCH(QString, limit);
    QFETCH(QString, target);
    QFETCH(QString, reason);
    const SampleProject project;
    QCOMPARE(mkfifo(qPrintable(project.Path("pipe")), 0600), 0);
    const QMap<QString, QByteArray> files = FilesBelow(project.Path("layers"));
    const ProgramRun run = project.RunLimited(
        limit, {"render", "sample.xml", "-o", target, "--size", "800", "--zones"});
    QCOMPARE(run.log, QStringList{target + ": cannot be written: " + reason});
    QCOMPARE(run.exitCode, 4);
    QCOMPARE(FilesBelow(project.Path("layers")), files);
}

QTEST_APPLESS_MAIN(tst_ToolRender)
#include "tst_ToolRender.moc"
