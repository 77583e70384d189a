#include "layers/LayerList.h"

#include "layers/Layer.h"
#include "layers/raster/Mask.h"

#include "tests/support/AreaMaps.h"
#include "tests/support/Files.h"
#include "tests/support/LayerLists.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/ProjectFixture.h"

#include <QBuffer>
#include <QtTest>

#include <limits>

class tst_AreaMapImport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AnEmptyFileMakesNoLayerAndNoSize();
    void MissingHeaderIntegersAreMinusOne_data();
    void MissingHeaderIntegersAreMinusOne();
    void SizesBecomeTheProjectsButNotItsScale();
    void CombinedFlagsBecomeLayersOfTheirOwn();
    void ImportedLayersAreWhiteHiddenAndNamed_data();
    void ImportedLayersAreWhiteHiddenAndNamed();
    void UsagesComeBeforeValuesAndFirstPixelsFirst();
    void BitsWithoutATypeAreIgnored();
    void TheFormerLayersStay();
    void ImportingSaysWhatItDoes();
    void TooManyFlagTypesAreRefusedBeforeAnythingIsRead_data();
    void TooManyFlagTypesAreRefusedBeforeAnythingIsRead();
    void ABitCountThatIsNoPowerOfTwoEndsItsSection_data();
    void ABitCountThatIsNoPowerOfTwoEndsItsSection();
    void SizesWithoutAnImageEndTheSection_data();
    void SizesWithoutAnImageEndTheSection();
    void MoreWordsThanTheFileHoldsCountAsClear();
    void LayersWithoutMemoryAreLeftOut();
    void ALargeMapWithoutFlagsNeedsNoMemory();
    void ADeviceThatFailsInTheHeaderFailsTheImport_data();
    void ADeviceThatFailsInTheHeaderFailsTheImport();
    void ADeviceThatFailsInASectionKeepsWhatWasRead();
    void SequentialDevicesAreReadPieceByPiece();
    void MapsCutOffAnywhereAreReadLikeTheLiteralReaderDoes();
    void MapsAreImportedLikeTheLiteralReaderDoes();

private:
    QString File() const { return m_project->Path("area.map"); }

    std::unique_ptr<ProjectFixture> m_project;
    LogSpy m_log;
};

namespace {

bool Import(LayerList& layers, const QByteArray& map)
{
    QBuffer device;
    device.setData(map);
    device.open(QIODevice::ReadOnly);
    return layers.ImportMap(device);
}

QVector<int> ProjectSizes()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    return {settings.LayerWidth(), settings.LayerHeight(), settings.WorldWidth(),
            settings.WorldHeight()};
}

/// A device that returns bytes in pieces, and then fails or ends.
class SlowDevice : public QIODevice
{
public:
    SlowDevice(const QByteArray& bytes, int pieceSize)
        : m_bytes(bytes)
        , m_pieceSize(pieceSize)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        if (m_bytes.isEmpty()) {
            return -1;
        }
        const int count =
            static_cast<int>(qMin<qint64>(qMin(maxSize, qint64(m_pieceSize)), m_bytes.size()));
        std::copy_n(m_bytes.constData(), count, data);
        m_bytes.remove(0, count);
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    int m_pieceSize;
};

bool AreEqual(const LayerList& layers, const QVector<literal::MapLayer>& expected)
{
    const QVector<Layer*> actual = layers.Layers();
    return std::equal(actual.begin(), actual.end(), expected.begin(), expected.end(),
                      [](const Layer* layer, const literal::MapLayer& other) {
                          return layer->Image() == other.image &&
                                 layer->UsageFlags() == other.usageFlags &&
                                 layer->ValueFlags() == other.valueFlags;
                      });
}

} // namespace

void tst_AreaMapImport::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(8, 2), QSize(15360, 10240));
    m_log.Take();
}

void tst_AreaMapImport::cleanup()
{
    m_project.reset();
}

void tst_AreaMapImport::AnEmptyFileMakesNoLayerAndNoSize()
{
    SetFlagTypes(5, 3);
    LayerList layers;
    QVERIFY(Import(layers, {}));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(ProjectSizes(), (QVector<int>{-1, -1, -1, -1}));
}

void tst_AreaMapImport::MissingHeaderIntegersAreMinusOne_data()
{
    QTest::addColumn<int>("byteCount");
    QTest::addColumn<QVector<int>>("sizes");
    QTest::newRow("3") << 3 << QVector<int>{-1, -1, -1, -1};
    QTest::newRow("4") << 4 << QVector<int>{8, -1, -1, -1};
    QTest::newRow("10") << 10 << QVector<int>{8, 2, -1, -1};
    QTest::newRow("15") << 15 << QVector<int>{8, 2, 100, -1};
    QTest::newRow("16") << 16 << QVector<int>{8, 2, 100, 200};
    QTest::newRow("19") << 19 << QVector<int>{8, 2, 100, 200};
    QTest::newRow("20") << 20 << QVector<int>{8, 2, 100, 200};
}

void tst_AreaMapImport::MissingHeaderIntegersAreMinusOne()
{
    QFETCH(int, byteCount);
    QFETCH(QVector<int>, sizes);
    SetFlagTypes(5, 3);
    LayerList layers;
    QVERIFY(Import(layers, Ints({8, 2, 100, 200, 0}).left(byteCount)));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(ProjectSizes(), sizes);
}

void tst_AreaMapImport::SizesBecomeTheProjectsButNotItsScale()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const float metresPerPixelX = settings.MetresPerPixelX();
    const float pixelsPerMetreZ = settings.PixelsPerMetreZ();
    LayerList layers;
    QVERIFY(Import(layers, Ints({16, 4, 100, 200, 0, 0})));
    QCOMPARE(ProjectSizes(), (QVector<int>{16, 4, 100, 200}));
    QCOMPARE(settings.MetresPerPixelX(), metresPerPixelX);
    QCOMPARE(settings.PixelsPerMetreZ(), pixelsPerMetreZ);
}

void tst_AreaMapImport::CombinedFlagsBecomeLayersOfTheirOwn()
{
    SetFlagTypes(3, 0);
    const QImage mask = MaskFromArt({"##......", "...##..."});
    LayerList saved;
    AddLayer(saved, mask, 5, 0);
    QVERIFY(saved.SaveMap(File()));
    LayerList layers;
    QVERIFY(Import(layers, ReadBytes(File())));
    QCOMPARE(NamesOf(layers), (QStringList{"usage0", "usage2"}));
    QCOMPARE(layers.LayerAt(0)->UsageFlags(), 1U);
    QCOMPARE(layers.LayerAt(1)->UsageFlags(), 4U);
    QCOMPARE(layers.LayerAt(0)->Image(), mask);
    QCOMPARE(layers.LayerAt(1)->Image(), mask);
}

void tst_AreaMapImport::ImportedLayersAreWhiteHiddenAndNamed_data()
{
    QTest::addColumn<bool>("isGuiRunning");
    QTest::newRow("without a window") << false;
    QTest::newRow("with a window") << true;
}

void tst_AreaMapImport::ImportedLayersAreWhiteHiddenAndNamed()
{
    QFETCH(bool, isGuiRunning);
    const auto window = isGuiRunning ? std::make_unique<QWidget>() : nullptr;
    SetFlagTypes(32, 32);
    LayerList layers;
    QVERIFY(Import(layers, Ints({1, 1, 100, 100, 32, 0x80000000, 32, 0x80000000})));
    QCOMPARE(NamesOf(layers), (QStringList{"usage31", "value31"}));
    for (int row = 0; row < 2; ++row) {
        const Layer* layer = layers.LayerAt(row);
        QCOMPARE(layer->Color(), QColor(Qt::white));
        QVERIFY(!layer->IsVisible());
        QCOMPARE(layer->Code(), QString());
        QCOMPARE(layer->List(), &layers);
        QCOMPARE(layer->Image().colorTable(), raster::GreyTable());
        QCOMPARE(layer->Pixmap().isNull(), !isGuiRunning);
    }
    QCOMPARE(layers.LayerAt(0)->UsageFlags(), 0x80000000U);
    QCOMPARE(layers.LayerAt(0)->ValueFlags(), 0U);
    QCOMPARE(layers.LayerAt(1)->UsageFlags(), 0U);
    QCOMPARE(layers.LayerAt(1)->ValueFlags(), 0x80000000U);
}

void tst_AreaMapImport::UsagesComeBeforeValuesAndFirstPixelsFirst()
{
    SetFlagTypes(8, 8);
    LayerList layers;
    // The first file row is the bottom row of the image.
    QVERIFY(Import(layers, Ints({4, 2, 100, 100, 8, 0x00002002, 0x01000081, 8, 0x00000003, 0})));
    QCOMPARE(NamesOf(layers),
             (QStringList{"usage5", "usage1", "usage0", "usage7", "value0", "value1"}));
    QCOMPARE(ArtFromMask(layers.LayerByName("usage5")->Image()), (QStringList{"....", "..#."}));
    QCOMPARE(ArtFromMask(layers.LayerByName("usage0")->Image()), (QStringList{"#..#", "...."}));
}

void tst_AreaMapImport::BitsWithoutATypeAreIgnored()
{
    SetFlagTypes(2, 0);
    LayerList layers;
    QVERIFY(Import(layers, Ints({1, 1, 100, 100, 32, 0xFFFFFFFE, 32, 0xFFFFFFFF})));
    QCOMPARE(NamesOf(layers), QStringList{"usage1"});
}

void tst_AreaMapImport::TheFormerLayersStay()
{
    SetFlagTypes(1, 0);
    LayerList layers;
    AddLayer(layers, FullMask({8, 2}), 1, 0);
    QVERIFY(Import(layers, Ints({1, 1, 100, 100, 32, 1, 0})));
    QCOMPARE(NamesOf(layers), (QStringList{"layer", "usage0"}));
}

void tst_AreaMapImport::ImportingSaysWhatItDoes()
{
    LayerList layers;
    QVERIFY(Import(layers, Ints({8, 2, 100, 100, 0, 0})));
    QCOMPARE(m_log.Messages(),
             (QStringList{"Info: Importing map, please wait ...", "Info: Import done"}));
}

void tst_AreaMapImport::TooManyFlagTypesAreRefusedBeforeAnythingIsRead_data()
{
    AddTooManyTypes();
}

void tst_AreaMapImport::TooManyFlagTypesAreRefusedBeforeAnythingIsRead()
{
    QFETCH(int, usageCount);
    QFETCH(int, valueCount);
    SetFlagTypes(usageCount, valueCount);
    QBuffer device;
    device.setData(Ints({1, 1, 100, 100, 32, 1, 32, 1}));
    device.open(QIODevice::ReadOnly);
    LayerList layers;
    QVERIFY(!layers.ImportMap(device));
    QCOMPARE(m_log.Messages(), QStringList{TooManyTypes});
    QCOMPARE(device.pos(), qint64(0));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(ProjectSizes(), (QVector<int>{8, 2, 15360, 10240}));
}

void tst_AreaMapImport::ABitCountThatIsNoPowerOfTwoEndsItsSection_data()
{
    QTest::addColumn<int>("bits");
    for (const int bits : {3, 5, 7, 31, 33, 64, 2147483647, -1, -8, -2147483647 - 1}) {
        QTest::newRow(QByteArray::number(bits).constData()) << bits;
    }
}

void tst_AreaMapImport::ABitCountThatIsNoPowerOfTwoEndsItsSection()
{
    QFETCH(int, bits);
    SetFlagTypes(8, 8);
    LayerList layers;
    QVERIFY(Import(layers, Ints({1, 1, 100, 100, bits, 32, 2})));
    const QString error = "Error: The area map has an invalid number of bits per pixel: %1.";
    QCOMPARE(m_log.Messages(), (QStringList{"Info: Importing map, please wait ...", error.arg(bits),
                                            "Info: Import done"}));
    QCOMPARE(NamesOf(layers), QStringList{"value1"});
}

void tst_AreaMapImport::SizesWithoutAnImageEndTheSection_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    const int largest = std::numeric_limits<int>::max();
    const int smallest = std::numeric_limits<int>::min();
    QTest::newRow("zero") << 0 << 0;
    QTest::newRow("no width") << 0 << 8;
    QTest::newRow("no height") << 8 << 0;
    QTest::newRow("negative") << -8 << -8;
    QTest::newRow("missing") << -1 << -1;
    QTest::newRow("smallest") << smallest << smallest;
    QTest::newRow("largest") << largest << largest;
    QTest::newRow("widest") << largest << 1;
    QTest::newRow("highest") << 1 << largest;
}

void tst_AreaMapImport::SizesWithoutAnImageEndTheSection()
{
    QFETCH(int, width);
    QFETCH(int, height);
    SetFlagTypes(8, 8);
    LayerList layers;
    QVERIFY(Import(layers, Ints({width, height, 100, 100, 8, 0})));
    const QString error = "Error: The area map has an invalid size: %1x%2 pixels.";
    QCOMPARE(m_log.Messages(), (QStringList{"Info: Importing map, please wait ...",
                                            error.arg(width).arg(height), "Info: Import done"}));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(ProjectSizes(), (QVector<int>{width, height, 100, 100}));
}

void tst_AreaMapImport::MoreWordsThanTheFileHoldsCountAsClear()
{
    SetFlagTypes(32, 32);
    LayerList layers;
    QVERIFY(Import(layers, Ints({65535, 1000, 100, 100, 32, 0, 4})));
    QCOMPARE(NamesOf(layers), QStringList{"usage2"});
    const QImage image = layers.LayerAt(0)->Image();
    QCOMPARE(image.size(), QSize(65535, 1000));
    QCOMPARE(image.pixelIndex(1, 999), 255);
    QCOMPARE(image.pixelIndex(0, 999), 0);
    QCOMPARE(image.pixelIndex(2, 999), 0);
}

void tst_AreaMapImport::LayersWithoutMemoryAreLeftOut()
{
    SetFlagTypes(32, 32);
    // Each layer takes a quarter of a gigabyte of address space. How many fit into the rest depends
    // on the allocator.
    const QByteArray map = Ints({16384, 16384, 100, 100, 32, 0xFFFFFFFF});
    const QString error = "Error: There is no memory for %1 layers of the area map.";
    LayerList layers;
    {
        const MemoryLimit limit(640 * AMebibyte);
        QVERIFY(Import(layers, map));
    }
    const int count = layers.Layers().size();
    QVERIFY(count > 0 && count < 32);
    QCOMPARE(NamesOf(layers), QStringList(FlagNames("usage", count).toList()));
    QCOMPARE(m_log.Take(), (QStringList{"Info: Importing map, please wait ...",
                                        error.arg(32 - count), "Info: Import done"}));
    const MemoryLimit limit(64 * AMebibyte);
    QVERIFY(Import(layers, map));
    QCOMPARE(m_log.Take().at(1), error.arg(32));
    QCOMPARE(layers.Layers().size(), count);
}

void tst_AreaMapImport::ALargeMapWithoutFlagsNeedsNoMemory()
{
    SetFlagTypes(32, 0);
    WriteBytes(File(), Ints({8192, 16384, 100, 100, 32}));
    // Half a gigabyte of clear words in a sparse file.
    QVERIFY(QFile::resize(File(), 20 + 4 * 8192 * qint64(16384)));
    QFile device(File());
    QVERIFY(device.open(QIODevice::ReadOnly));
    LayerList layers;
    const MemoryLimit limit(64 * AMebibyte);
    QVERIFY(layers.ImportMap(device));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(m_log.Messages(),
             (QStringList{"Info: Importing map, please wait ...", "Info: Import done"}));
}

void tst_AreaMapImport::ADeviceThatFailsInTheHeaderFailsTheImport_data()
{
    QTest::addColumn<int>("byteCount");
    for (const int count : {0, 4, 8, 12}) {
        QTest::newRow(QByteArray::number(count).constData()) << count;
    }
}

void tst_AreaMapImport::ADeviceThatFailsInTheHeaderFailsTheImport()
{
    QFETCH(int, byteCount);
    SlowDevice device(Ints({1, 1, 100, 100}).left(byteCount), 1000);
    LayerList layers;
    QVERIFY(!layers.ImportMap(device));
    QCOMPARE(m_log.Messages(), QStringList{"Info: Importing map, please wait ..."});
    QCOMPARE(ProjectSizes(), (QVector<int>{8, 2, 15360, 10240}));
}

void tst_AreaMapImport::ADeviceThatFailsInASectionKeepsWhatWasRead()
{
    SetFlagTypes(8, 8);
    const QByteArray map = Ints({2, 2, 100, 100, 32, 1, 2, 4, 8, 32, 1});
    LayerList layers;
    SlowDevice failingInTheValues(map, 1000);
    QVERIFY(layers.ImportMap(failingInTheValues));
    QCOMPARE(NamesOf(layers), (QStringList{"usage0", "usage1", "usage2", "usage3", "value0"}));
    layers.Clear();
    SlowDevice failingInTheUsages(map.left(28), 1000);
    QVERIFY(layers.ImportMap(failingInTheUsages));
    QCOMPARE(NamesOf(layers), (QStringList{"usage0", "usage1"}));
    layers.Clear();
    SlowDevice failingBehindTheHeader(map.left(16), 1000);
    QVERIFY(layers.ImportMap(failingBehindTheHeader));
    QVERIFY(layers.IsEmpty());
}

void tst_AreaMapImport::SequentialDevicesAreReadPieceByPiece()
{
    Random random;
    SetFlagTypes(8, 3);
    SetLayerSize({64, 9});
    const literal::MapLayer layer{RandomMask(random, {64, 9}), 0x55, 5};
    const QByteArray map = literal::WriteMap({layer}, {64, 9}, {100, 100}, 8, 3);
    for (const int pieceSize : {4, 7, 100}) {
        LayerList layers;
        SlowDevice device(map, pieceSize);
        QVERIFY(layers.ImportMap(device));
        QVERIFY(AreEqual(layers, literal::ReadMap(map, 8, 3)));
    }
}

void tst_AreaMapImport::MapsCutOffAnywhereAreReadLikeTheLiteralReaderDoes()
{
    Random random;
    SetFlagTypes(3, 5);
    const QSize size(11, 5);
    const QByteArray map = literal::WriteMap(
        {{RandomMask(random, size), 5, 0}, {FullMask(size), 2, 0x11}}, size, {100, 100}, 3, 5);
    for (int length = 16; length <= map.size(); ++length) {
        LayerList layers;
        QVERIFY(Import(layers, map.left(length)));
        QVERIFY2(AreEqual(layers, literal::ReadMap(map.left(length), 3, 5)),
                 QByteArray::number(length).constData());
    }
}

void tst_AreaMapImport::MapsAreImportedLikeTheLiteralReaderDoes()
{
    Random random;
    for (int i = 0; i < 100; ++i) {
        const RandomMap map(random);
        const QByteArray bytes = map.LiteralBytes();
        // Usually these are other types than those with which the map was written.
        const int usageCount = random.Below(33);
        const int valueCount = random.Below(33);
        SetFlagTypes(usageCount, valueCount);
        LayerList layers;
        QVERIFY(Import(layers, bytes));
        QVERIFY(AreEqual(layers, literal::ReadMap(bytes, usageCount, valueCount)));
    }
}

QTEST_MAIN(tst_AreaMapImport)

#include "tst_AreaMapImport.moc"
