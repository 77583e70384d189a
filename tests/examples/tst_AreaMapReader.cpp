#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "tests/support/Files.h"
#include "tests/support/Masks.h"
#include "tests/support/Program.h"
#include "tests/support/ProjectFixture.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// Runs the reader of examples/readers on maps that the programs write.
class tst_AreaMapReader : public QObject
{
    Q_OBJECT

private slots:
    void ReadsTheBatchMapOfTheExample();
    void ReadsEveryFlagOfTheExample();
    void ReadsEveryPixelOfAnyMap_data();
    void ReadsEveryPixelOfAnyMap();
    void TellsWhatAMapHolds();
    void RefusesWhatIsNoMap_data();
    void RefusesWhatIsNoMap();
    void NamesFilesThatItCannotReadOrWrite();
};

namespace {

ProgramRun RunReader(const QStringList& arguments)
{
    return RunProgram(QStringLiteral(QUILLMAP_PYTHON),
                      QStringList{QStringLiteral(QUILLMAP_READER)} + arguments, {},
                      QProcessEnvironment::systemEnvironment());
}

QJsonObject ReadAsJson(const QStringList& arguments)
{
    const ProgramRun run = RunReader(arguments + QStringList{"--json"});
    if (run.exitCode != 0) {
        qWarning("%s", qPrintable(run.log.join('\n')));
    }
    return QJsonDocument::fromJson(run.output.toUtf8()).object();
}

QJsonObject Section(int bits, const QVector<int>& pixels)
{
    QJsonArray array;
    for (const int count : pixels) {
        array.append(count);
    }
    return {{"bits", bits}, {"pixels", array}};
}

QVector<QString> Names(int count)
{
    QVector<QString> names;
    for (int i = 0; i < count; ++i) {
        names.append(QString::number(i));
    }
    return names;
}

/// 255 where one of the layers with the flag is set, for the columns that the map holds.
QByteArray ExpectedMask(const LayerList& layers, quint32 (Layer::*flags)() const, int flag,
                        int storedWidth)
{
    const QSize size = ProjectSettings::Instance().LayerSize();
    QByteArray expected(size.width() * size.height(), '\0');
    const QVector<Layer*> all = layers.Layers();
    for (const Layer* layer : all) {
        if (((layer->*flags)() >> static_cast<quint32>(flag) & 1U) == 0) {
            continue;
        }
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < storedWidth; ++x) {
                if (layer->Image().pixelIndex(x, y) != raster::MaskClear) {
                    expected[y * size.width() + x] = '\xFF';
                }
            }
        }
    }
    return expected;
}

struct FlagKind
{
    QString picture;
    QString key;
    quint32 (Layer::*flags)() const;
    int bits;
};

/// Whether the reader finds exactly the layers' pixels, flag by flag.
void CompareWithLayers(const LayerList& layers, int usageBits, int valueBits)
{
    const QTemporaryDir folder;
    const QString map = folder.filePath("a.map");
    QVERIFY(layers.SaveMap(map));
    const QJsonObject read = ReadAsJson({map, "--pictures", folder.path()});
    const ProjectSettings& settings = ProjectSettings::Instance();
    QCOMPARE(read["layer"].toArray(), QJsonArray({settings.LayerWidth(), settings.LayerHeight()}));
    QCOMPARE(read["world"].toArray(), QJsonArray({settings.WorldWidth(), settings.WorldHeight()}));
    const QByteArray header = QStringLiteral("P5\n%1 %2\n255\n")
                                  .arg(settings.LayerWidth())
                                  .arg(settings.LayerHeight())
                                  .toLatin1();
    for (const FlagKind& kind : {FlagKind{"usage", "usages", &Layer::UsageFlags, usageBits},
                                 FlagKind{"value", "values", &Layer::ValueFlags, valueBits}}) {
        QVector<int> counts;
        const int pixelsPerWord = kind.bits > 0 ? 32 / kind.bits : 1;
        const int storedWidth = settings.LayerWidth() / pixelsPerWord * pixelsPerWord;
        for (int flag = 0; flag < kind.bits; ++flag) {
            const QByteArray expected = ExpectedMask(layers, kind.flags, flag, storedWidth);
            counts.append(expected.count('\xFF'));
            const QString picture = QStringLiteral("%1-%2.pgm").arg(kind.picture).arg(flag);
            QVERIFY2(ReadBytes(folder.filePath(picture)) == header + expected, qPrintable(picture));
        }
        QCOMPARE(read[kind.key].toObject(), Section(kind.bits, counts));
    }
}

/// The map that formats.md shows: 16 x 2 pixels, three usage types, two value types.
QByteArray SmallMap()
{
    return QByteArray::fromHex("1000000002000000A000000014000000"
                               "04000000"
                               "5555550500000000"
                               "7777777722222222"
                               "02000000"
                               "00005515"
                               "AAAAFFFF");
}

} // namespace

void tst_AreaMapReader::ReadsTheBatchMapOfTheExample()
{
    const QTemporaryDir copy;
    const QMap<QString, QByteArray> files = FilesBelow(QStringLiteral(QUILLMAP_EXAMPLE_FOLDER));
    for (auto file = files.cbegin(); file != files.cend(); ++file) {
        if (!file.key().endsWith('/')) {
            WriteBytes(copy.filePath(file.key()), file.value());
        }
    }
    const ProgramRun batch =
        RunProgram(QStringLiteral(QUILLMAP_PROGRAM),
                   {"--no-gui", "--config", "highlands.xml", "--output", "Written"}, copy.path(),
                   QProcessEnvironment::systemEnvironment());
    QCOMPARE(batch.exitCode, 0);
    const QJsonObject expected = {{"layer", QJsonArray({2048, 2048})},
                                  {"world", QJsonArray({15360, 15360})},
                                  {"usages", Section(0, {})},
                                  {"values", Section(0, {})}};
    QCOMPARE(ReadAsJson({copy.filePath("Written/highlands.map")}), expected);
}

void tst_AreaMapReader::ReadsEveryFlagOfTheExample()
{
    const ProjectFixture restoresTheSettings;
    ProjectSettings::Instance().SetDir(QDir(QStringLiteral(QUILLMAP_EXAMPLE_FOLDER)));
    QFile document(QStringLiteral(QUILLMAP_EXAMPLE_FOLDER "/highlands.xml"));
    QVERIFY(document.open(QIODevice::ReadOnly));
    LayerList layers;
    ProjectReader reader(document);
    QVERIFY(reader.Read({[](QXmlStreamReader&) {},
                         [&layers](QXmlStreamReader& xml) { return layers.ReadXml(xml); },
                         [](QXmlStreamReader&) { return true; }}));
    QCOMPARE(layers.Layers().size(), 17);
    CompareWithLayers(layers, 8, 4);
}

void tst_AreaMapReader::ReadsEveryPixelOfAnyMap_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("usageTypes");
    QTest::addColumn<int>("usageBits");
    QTest::addColumn<int>("valueTypes");
    QTest::addColumn<int>("valueBits");
    QTest::newRow("whole words") << QSize(64, 5) << 1 << 1 << 2 << 2;
    QTest::newRow("columns without room") << QSize(43, 7) << 3 << 4 << 6 << 8;
    QTest::newRow("narrower than a word") << QSize(7, 9) << 1 << 1 << 9 << 16;
    QTest::newRow("as many types as there can be") << QSize(33, 40) << 32 << 32 << 32 << 32;
    QTest::newRow("one kind alone") << QSize(16, 3) << 0 << 0 << 5 << 8;
}

void tst_AreaMapReader::ReadsEveryPixelOfAnyMap()
{
    QFETCH(QSize, size);
    QFETCH(int, usageTypes);
    QFETCH(int, usageBits);
    QFETCH(int, valueTypes);
    QFETCH(int, valueBits);
    const ProjectFixture project(size, {1000, 700});
    ProjectSettings::Instance().SetFlagTypes({Names(usageTypes), Names(valueTypes)});
    Random random;
    LayerList layers;
    const auto flagsOf = [&random](int count) {
        return static_cast<quint32>(random.Bits() & ((quint64(1) << count) - 1));
    };
    for (int i = 0; i < 5; ++i) {
        auto layer = std::make_unique<Layer>(flagsOf(usageTypes), flagsOf(valueTypes), &layers);
        layer->SetImage(RandomMask(random, size), Qt::white);
        QVERIFY(layers.AddLayer(std::move(layer)));
    }
    CompareWithLayers(layers, usageBits, valueBits);
}

void tst_AreaMapReader::TellsWhatAMapHolds()
{
    const QTemporaryDir folder;
    const QString map = folder.filePath("a.map");
    WriteBytes(map, SmallMap());
    const ProgramRun run = RunReader({map});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.output, QString("16 x 2 pixels\n"
                                 "160 x 20 m\n"
                                 "usages: 4 bits a pixel\n"
                                 "  flag 0: 15 pixels\n"
                                 "  flag 1: 16 pixels\n"
                                 "  flag 2: 15 pixels\n"
                                 "  flag 3: 0 pixels\n"
                                 "values: 2 bits a pixel\n"
                                 "  flag 0: 15 pixels\n"
                                 "  flag 1: 16 pixels\n"));
}

void tst_AreaMapReader::RefusesWhatIsNoMap_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message");
    const QByteArray map = SmallMap();
    QTest::newRow("empty") << QByteArray("") << "the file ends in the header";
    QTest::newRow("cut header") << map.left(15) << "the file ends in the header";
    QTest::newRow("cut bit count")
        << map.left(18) << "the file ends in the bit count of the usage section";
    QTest::newRow("cut words") << map.left(35) << "the file ends in the usage section";
    QTest::newRow("without values")
        << map.left(36) << "the file ends in the bit count of the value section";
    QTest::newRow("cut values") << map.chopped(1) << "the file ends in the value section";
    QTest::newRow("too long") << map + 'a' << "something follows the value section";
    QTest::newRow("odd bit count")
        << QByteArray(map).replace(16, 1, "\x03") << "the usage section cannot have 3 bits a pixel";
    QTest::newRow("negative bit count") << QByteArray(map).replace(36, 4, "\xFF\xFF\xFF\xFF")
                                        << "the value section cannot have -1 bits a pixel";
    QTest::newRow("more promised than there is")
        << QByteArray(map).replace(0, 8, "\xFF\xFF\0\0\xFF\xFF\0\0", 8)
        << "the file ends in the usage section";
    QTest::newRow("wider than a map can be")
        << QByteArray(map).replace(0, 4, "\xFF\xFF\xFF\x7F")
        << "a map with flags cannot have 2147483647 x 2 pixels";
    QTest::newRow("endless rows without a word")
        << QByteArray(map).replace(0, 8, "\x01\0\0\0\xFF\xFF\xFF\x7F", 8)
        << "a map with flags cannot have 1 x 2147483647 pixels";
}

void tst_AreaMapReader::RefusesWhatIsNoMap()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    const QTemporaryDir folder;
    const QString map = folder.filePath("a.map");
    WriteBytes(map, bytes);
    const ProgramRun run = RunReader({map});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.log, QStringList{map + ": " + message});
}

void tst_AreaMapReader::NamesFilesThatItCannotReadOrWrite()
{
    const QTemporaryDir folder;
    const QString map = folder.filePath("a.map");
    const ProgramRun missing = RunReader({map});
    QCOMPARE(missing.exitCode, 3);
    QCOMPARE(missing.log, QStringList{map + ": No such file or directory"});
    WriteBytes(map, SmallMap());
    const ProgramRun noFolder = RunReader({map, "--pictures", map});
    QCOMPARE(noFolder.exitCode, 3);
    QCOMPARE(noFolder.log, QStringList{map + ": File exists"});
}

QTEST_GUILESS_MAIN(tst_AreaMapReader)
#include "tst_AreaMapReader.moc"
