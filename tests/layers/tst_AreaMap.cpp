#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"

#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Models.h"
#include "tests/support/ProjectFixture.h"

#include <QBuffer>
#include <QStandardItemModel>
#include <QtEndian>
#include <QtTest>

#include <limits>

class AreaMapTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void withoutFlagTypesAMapIs24Bytes();
    void theBitCountIsThePowerOfTwoThatHoldsTheTypes_data();
    void theBitCountIsThePowerOfTwoThatHoldsTheTypes();
    void aUsualMapHasTheExpectedSize();
    void fieldsAreStoredBottomUpAndLeftmostHighest();
    void layersCountWhateverTheirVisibility();
    void layersWithoutUsageFlagsStayOutOfTheUsages();
    void overlappingLayersAreOred();
    void theRemainderOfARowIsLeftOut();
    void sizesOfNothingAreWrittenWithoutWords_data();
    void sizesOfNothingAreWrittenWithoutWords();
    void sizesThatNoMaskHasAreRefusedBeforeTheFileIsOpened_data();
    void sizesThatNoMaskHasAreRefusedBeforeTheFileIsOpened();
    void theLargestSizesAreWritten_data();
    void theLargestSizesAreWritten();
    void withoutFlagTypesAMapOfAnySizeIsItsHeader_data();
    void withoutFlagTypesAMapOfAnySizeIsItsHeader();
    void aMapWithoutMemoryLeavesTheOldOne();
    void savingSaysWhatItDoes();
    void aMapThatCannotBeOpenedIsAnError();
    void tooManyFlagTypesAreRefusedBeforeTheFileIsOpened_data();
    void tooManyFlagTypesAreRefusedBeforeTheFileIsOpened();
    void aFullDiskLeavesTheOldMap_data();
    void aFullDiskLeavesTheOldMap();
    void aFullDeviceFails();
    void aMapThatCannotBePutInPlaceFails();
    void mapsAreWhatTheLiteralWriterWrites();

    void anEmptyFileMakesNoLayerAndNoSize();
    void missingHeaderIntegersAreMinusOne_data();
    void missingHeaderIntegersAreMinusOne();
    void sizesBecomeTheProjectsButNotItsScale();
    void combinedFlagsBecomeLayersOfTheirOwn();
    void importedLayersAreWhiteHiddenAndNamed_data();
    void importedLayersAreWhiteHiddenAndNamed();
    void usagesComeBeforeValuesAndFirstPixelsFirst();
    void bitsWithoutATypeAreIgnored();
    void theFormerLayersStayAndAllPicturesAreRenewed();
    void importingSaysWhatItDoes();
    void tooManyFlagTypesAreRefusedBeforeAnythingIsRead_data();
    void tooManyFlagTypesAreRefusedBeforeAnythingIsRead();
    void aBitCountThatIsNoPowerOfTwoEndsItsSection_data();
    void aBitCountThatIsNoPowerOfTwoEndsItsSection();
    void sizesWithoutAnImageEndTheSection_data();
    void sizesWithoutAnImageEndTheSection();
    void moreWordsThanTheFileHoldsCountAsClear();
    void layersWithoutMemoryAreLeftOut();
    void aLargeMapWithoutFlagsNeedsNoMemory();
    void aDeviceThatFailsInTheHeaderFailsTheImport_data();
    void aDeviceThatFailsInTheHeaderFailsTheImport();
    void aDeviceThatFailsInASectionKeepsWhatWasRead();
    void sequentialDevicesAreReadPieceByPiece();
    void mapsCutOffAnywhereAreReadLikeTheLiteralReaderDoes();
    void mapsAreImportedLikeTheLiteralReaderDoes();

private:
    QString File() const { return m_project->Path("area.map"); }

    std::unique_ptr<ProjectFixture> m_project;
    LogSpy m_log;
};

namespace {

constexpr quint64 AMebibyte = 1 << 20;

QVector<QString> Names(const QString& prefix, int count)
{
    QVector<QString> names;
    for (int i = 0; i < count; ++i) {
        names.append(prefix + QString::number(i));
    }
    return names;
}

void SetTypes(int usageCount, int valueCount)
{
    AreaFlagTypes& types = ProjectSettings::Instance().areaFlagTypes;
    types.usages = Names("usage", usageCount);
    types.values = Names("value", valueCount);
}

void SetLayerSize(QSize size)
{
    ProjectSettings::Instance().SetSizes(size.width(), size.height(), 15360, 10240);
}

Layer* Add(LayerList& layers, const QImage& mask, quint32 usageFlags, quint32 valueFlags)
{
    auto* layer = new Layer(usageFlags, valueFlags, &layers, "layer");
    layer->SetImage(mask, Qt::red);
    layers.AddLayer(layer);
    return layer;
}

QImage FullMask(QSize size)
{
    QImage mask = raster::BlankMask(size);
    mask.fill(255);
    return mask;
}

QByteArray Ints(const QVector<qint64>& values)
{
    QByteArray bytes;
    for (const qint64 value : values) {
        const auto word = qToLittleEndian(static_cast<quint32>(value));
        bytes.append(reinterpret_cast<const char*>(&word), sizeof word);
    }
    return bytes;
}

bool Import(LayerList& layers, const QByteArray& map)
{
    QBuffer device;
    device.setData(map);
    device.open(QIODevice::ReadOnly);
    return layers.ImportMap(device);
}

QStringList NamesOf(const LayerList& layers)
{
    return RowTexts(*layers.model());
}

QVector<int> ProjectSizes()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    return {settings.layerWidth, settings.layerHeight, settings.worldWidth, settings.worldHeight};
}

/// Hands out bytes in pieces and then fails, or has no more.
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

constexpr const char* TooManyTypes =
    "Error: An area map holds at most 32 usage and 32 value flag types.";

void AddTooManyTypes()
{
    QTest::addColumn<int>("usageCount");
    QTest::addColumn<int>("valueCount");
    QTest::newRow("33 usages") << 33 << 0;
    QTest::newRow("33 values") << 32 << 33;
    QTest::newRow("1000 of each") << 1000 << 1000;
}

struct RandomMap
{
    QSize size;
    int usageCount;
    int valueCount;
    QVector<literal::MapLayer> layers;
};

RandomMap MakeRandomMap(Random& random)
{
    const QSize size(random.Between(1, 80), random.Between(1, 20));
    RandomMap map{size, random.Below(33), random.Below(33), {}};
    for (int count = random.Below(6); count > 0; --count) {
        const QSize layerSize = random.Below(4) == 0 ? size.transposed() : size;
        const quint32 usages = random.Below(3) == 0 ? 0 : random.Bits();
        const quint32 values = random.Below(3) == 0 ? 0 : random.Bits();
        map.layers.append({RandomMask(random, layerSize), usages, values});
    }
    return map;
}

QByteArray LiteralBytes(const RandomMap& map)
{
    return literal::WriteMap(map.layers, map.size, {15360, 10240}, map.usageCount, map.valueCount);
}

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

void AreaMapTest::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(8, 2), QSize(15360, 10240));
    m_log.Take();
}

void AreaMapTest::cleanup()
{
    m_project.reset();
}

void AreaMapTest::withoutFlagTypesAMapIs24Bytes()
{
    LayerList layers;
    Add(layers, FullMask({8, 2}), 1, 1);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()), Ints({8, 2, 15360, 10240, 0, 0}));
}

void AreaMapTest::theBitCountIsThePowerOfTwoThatHoldsTheTypes_data()
{
    QTest::addColumn<int>("typeCount");
    QTest::addColumn<int>("bits");
    for (int count = 0; count <= 32; ++count) {
        const int bits = count <= 2    ? count
                         : count <= 4  ? 4
                         : count <= 8  ? 8
                         : count <= 16 ? 16
                                       : 32;
        QTest::newRow(QByteArray::number(count).constData()) << count << bits;
    }
}

void AreaMapTest::theBitCountIsThePowerOfTwoThatHoldsTheTypes()
{
    QFETCH(int, typeCount);
    QFETCH(int, bits);
    SetLayerSize({64, 3});
    SetTypes(typeCount, 32);
    LayerList layers;
    QVERIFY(layers.SaveMap(File()));
    const QByteArray map = ReadBytes(File());
    QCOMPARE(map.mid(16, 4), Ints({bits}));
    const int usageBytes = bits * 64 / 8 * 3;
    QCOMPARE(map.size(), 16 + 4 + usageBytes + 4 + 4 * 64 * 3);
    QCOMPARE(map.mid(20 + usageBytes, 4), Ints({32}));
}

void AreaMapTest::aUsualMapHasTheExpectedSize()
{
    SetLayerSize({2048, 2048});
    SetTypes(5, 3);
    LayerList layers;
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(QFileInfo(File()).size(), qint64(16 + (4 + 4 * 512 * 2048) + (4 + 4 * 256 * 2048)));
}

void AreaMapTest::fieldsAreStoredBottomUpAndLeftmostHighest()
{
    SetTypes(5, 1);
    SetLayerSize({32, 2});
    QImage mask = raster::BlankMask({32, 2});
    mask.scanLine(0)[0] = raster::MaskSet;
    LayerList layers;
    Add(layers, mask, 0x12, 1);
    QVERIFY(layers.SaveMap(File()));
    QVector<qint64> expected = {32, 2, 15360, 10240, 8};
    expected += QVector<qint64>(8, 0) + QVector<qint64>{0x12000000} + QVector<qint64>(7, 0);
    expected += {1, 0, 0x80000000};
    QCOMPARE(ReadBytes(File()).toHex(), Ints(expected).toHex());
    // The fourth byte of the word, as words are little-endian.
    QCOMPARE(ReadBytes(File()).at(20 + 32 + 3), '\x12');
}

void AreaMapTest::layersCountWhateverTheirVisibility()
{
    SetTypes(2, 0);
    SetLayerSize({16, 1});
    LayerList layers;
    Add(layers, MaskFromArt({"#..............."}), 1, 0)->SetVisible(true);
    Add(layers, MaskFromArt({".+.............."}), 2, 0)->SetVisible(false);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()).mid(20, 4).toHex(), Ints({0x60000000}).toHex());
}

void AreaMapTest::layersWithoutUsageFlagsStayOutOfTheUsages()
{
    SetTypes(1, 1);
    SetLayerSize({32, 1});
    LayerList layers;
    Add(layers, FullMask({32, 1}), 0, 1)->SetVisible(true);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()).mid(16).toHex(), Ints({1, 0, 1, 0xFFFFFFFF}).toHex());
}

void AreaMapTest::overlappingLayersAreOred()
{
    SetTypes(3, 0);
    SetLayerSize({8, 1});
    LayerList layers;
    Add(layers, MaskFromArt({"##......"}), 1, 0);
    Add(layers, MaskFromArt({".##....."}), 4, 0);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()).mid(16, 8).toHex(), Ints({4, 0x15400000}).toHex());
}

void AreaMapTest::theRemainderOfARowIsLeftOut()
{
    SetTypes(3, 5);
    SetLayerSize({11, 2});
    LayerList layers;
    Add(layers, FullMask({11, 2}), 1, 1);
    QVERIFY(layers.SaveMap(File()));
    const QVector<qint64> usages = {4, 0x11111111, 0x11111111};
    const QVector<qint64> values = {8, 0x01010101, 0x01010101, 0x01010101, 0x01010101};
    QCOMPARE(ReadBytes(File()).mid(16).toHex(), Ints(usages + values).toHex());
}

void AreaMapTest::sizesOfNothingAreWrittenWithoutWords_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("zero") << QSize(0, 0);
    QTest::newRow("negative") << QSize(-5, -5);
    QTest::newRow("one negative") << QSize(64, -5);
    const int smallest = std::numeric_limits<int>::min();
    QTest::newRow("smallest integers") << QSize(smallest, smallest);
}

void AreaMapTest::sizesOfNothingAreWrittenWithoutWords()
{
    QFETCH(QSize, size);
    SetTypes(5, 3);
    SetLayerSize(size);
    LayerList layers;
    Add(layers, FullMask({8, 2}), 1, 1);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()), Ints({size.width(), size.height(), 15360, 10240, 8, 4}));
}

void AreaMapTest::sizesThatNoMaskHasAreRefusedBeforeTheFileIsOpened_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("usageCount");
    QTest::addColumn<int>("valueCount");
    const int largest = std::numeric_limits<int>::max();
    for (const QSize size : {QSize(1, largest), QSize(largest, 1), QSize(1000000000, 1),
                             QSize(largest, largest), QSize(65536, 1), QSize(1, 65536)}) {
        const QByteArray name =
            QByteArray::number(size.width()) + 'x' + QByteArray::number(size.height());
        QTest::newRow((name + ", 1 type").constData()) << size << 1 << 0;
        QTest::newRow((name + ", 32 types").constData()) << size << 0 << 32;
    }
}

void AreaMapTest::sizesThatNoMaskHasAreRefusedBeforeTheFileIsOpened()
{
    // The sizes are those of the file that was imported last, whatever it said.
    QFETCH(QSize, size);
    QFETCH(int, usageCount);
    QFETCH(int, valueCount);
    SetTypes(usageCount, valueCount);
    SetLayerSize(size);
    LayerList layers;
    Add(layers, FullMask({8, 2}), 1, 1);
    QVERIFY(!layers.SaveMap(m_project->Path("missing/area.map")));
    QCOMPARE(m_log.Messages(),
             QStringList{QString("Error: An area map with flag types cannot have %1x%2 pixels.")
                             .arg(size.width())
                             .arg(size.height())});
}

void AreaMapTest::theLargestSizesAreWritten_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("widest") << QSize(65535, 1);
    QTest::newRow("highest") << QSize(1, 65535);
}

void AreaMapTest::theLargestSizesAreWritten()
{
    QFETCH(QSize, size);
    SetTypes(32, 0);
    SetLayerSize(size);
    LayerList layers;
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(QFileInfo(File()).size(), qint64(24 + 4 * 65535));
}

void AreaMapTest::withoutFlagTypesAMapOfAnySizeIsItsHeader_data()
{
    QTest::addColumn<QSize>("size");
    const int largest = std::numeric_limits<int>::max();
    QTest::newRow("zero") << QSize(0, 0);
    QTest::newRow("negative") << QSize(-1, -1);
    QTest::newRow("widest") << QSize(largest, 1);
    QTest::newRow("highest") << QSize(1, largest);
    QTest::newRow("largest") << QSize(largest, largest);
}

void AreaMapTest::withoutFlagTypesAMapOfAnySizeIsItsHeader()
{
    QFETCH(QSize, size);
    SetLayerSize(size);
    LayerList layers;
    Add(layers, FullMask({8, 2}), 1, 1);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()), Ints({size.width(), size.height(), 15360, 10240, 0, 0}));
}

void AreaMapTest::aMapWithoutMemoryLeavesTheOldOne()
{
    WriteBytes(File(), "old");
    SetTypes(32, 0);
    SetLayerSize({16384, 16384});
    LayerList layers;
    {
        const MemoryLimit limit(640 * AMebibyte);
        QVERIFY(!layers.SaveMap(File()));
    }
    QCOMPARE(ReadBytes(File()), QByteArray("old"));
}

void AreaMapTest::savingSaysWhatItDoes()
{
    LayerList layers;
    const QString path = m_project->Path("100%1.map");
    QVERIFY(layers.SaveMap(path));
    QCOMPARE(m_log.Messages(),
             (QStringList{"Info: Processing binary map ...",
                          "Success: Zone binary map saved to file '" + path + "'."}));
}

void AreaMapTest::aMapThatCannotBeOpenedIsAnError()
{
    LayerList layers;
    for (const QString& path :
         {m_project->Path("missing/%1.map"), m_project->Path("."), QString()}) {
        QVERIFY(!layers.SaveMap(path));
        QCOMPARE(m_log.Take(),
                 QStringList{"Error: Failed to open file '" + path + "' for writing."});
    }
}

void AreaMapTest::tooManyFlagTypesAreRefusedBeforeTheFileIsOpened_data()
{
    AddTooManyTypes();
}

void AreaMapTest::tooManyFlagTypesAreRefusedBeforeTheFileIsOpened()
{
    QFETCH(int, usageCount);
    QFETCH(int, valueCount);
    SetTypes(usageCount, valueCount);
    LayerList layers;
    QVERIFY(!layers.SaveMap(m_project->Path("missing/area.map")));
    QCOMPARE(m_log.Messages(), QStringList{TooManyTypes});
}

void AreaMapTest::aFullDiskLeavesTheOldMap_data()
{
    QTest::addColumn<int>("room");
    for (const int room : {0, 3, 15, 17, 20, 20000, 65000}) {
        QTest::newRow(QByteArray::number(room).constData()) << room;
    }
}

void AreaMapTest::aFullDiskLeavesTheOldMap()
{
    QFETCH(int, room);
    WriteBytes(File(), "old");
    SetTypes(8, 8);
    SetLayerSize({256, 128});
    LayerList layers;
    Add(layers, FullMask({256, 128}), 1, 1);
    {
        const FileSizeLimit limit(static_cast<quint64>(room));
        QVERIFY(!layers.SaveMap(File()));
    }
    QCOMPARE(m_log.Messages(), QStringList{"Info: Processing binary map ..."});
    QCOMPARE(ReadBytes(File()), QByteArray("old"));
}

void AreaMapTest::aFullDeviceFails()
{
    LayerList layers;
    QVERIFY(!layers.SaveMap("/dev/full"));
    QCOMPARE(m_log.Messages(), QStringList{"Info: Processing binary map ..."});
}

void AreaMapTest::aMapThatCannotBePutInPlaceFails()
{
    WriteBytes(File(), "old");
    LayerList layers;
    {
        const RenamesFail fail;
        QVERIFY(!layers.SaveMap(File()));
    }
    QCOMPARE(m_log.Messages(), QStringList{"Info: Processing binary map ..."});
    QCOMPARE(ReadBytes(File()), QByteArray("old"));
}

void AreaMapTest::mapsAreWhatTheLiteralWriterWrites()
{
    Random random;
    for (int i = 0; i < 150; ++i) {
        const RandomMap map = MakeRandomMap(random);
        SetLayerSize(map.size);
        SetTypes(map.usageCount, map.valueCount);
        LayerList layers;
        for (const literal::MapLayer& layer : map.layers) {
            Add(layers, layer.image, layer.usageFlags, layer.valueFlags);
        }
        QVERIFY(layers.SaveMap(File()));
        QCOMPARE(ReadBytes(File()), LiteralBytes(map));
    }
}

void AreaMapTest::anEmptyFileMakesNoLayerAndNoSize()
{
    SetTypes(5, 3);
    LayerList layers;
    QVERIFY(Import(layers, {}));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(ProjectSizes(), (QVector<int>{-1, -1, -1, -1}));
}

void AreaMapTest::missingHeaderIntegersAreMinusOne_data()
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

void AreaMapTest::missingHeaderIntegersAreMinusOne()
{
    QFETCH(int, byteCount);
    QFETCH(QVector<int>, sizes);
    SetTypes(5, 3);
    LayerList layers;
    QVERIFY(Import(layers, Ints({8, 2, 100, 200, 0}).left(byteCount)));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(ProjectSizes(), sizes);
}

void AreaMapTest::sizesBecomeTheProjectsButNotItsScale()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const float metresPerPixelX = settings.metresPerPixelX;
    const float pixelsPerMetreZ = settings.pixelsPerMetreZ;
    LayerList layers;
    QVERIFY(Import(layers, Ints({16, 4, 100, 200, 0, 0})));
    QCOMPARE(ProjectSizes(), (QVector<int>{16, 4, 100, 200}));
    QCOMPARE(settings.metresPerPixelX, metresPerPixelX);
    QCOMPARE(settings.pixelsPerMetreZ, pixelsPerMetreZ);
}

void AreaMapTest::combinedFlagsBecomeLayersOfTheirOwn()
{
    SetTypes(3, 0);
    const QImage mask = MaskFromArt({"##......", "...##..."});
    LayerList saved;
    Add(saved, mask, 5, 0);
    QVERIFY(saved.SaveMap(File()));
    LayerList layers;
    QVERIFY(Import(layers, ReadBytes(File())));
    QCOMPARE(NamesOf(layers), (QStringList{"usage0", "usage2"}));
    QCOMPARE(layers.LayerAt(0)->UsageFlags(), 1U);
    QCOMPARE(layers.LayerAt(1)->UsageFlags(), 4U);
    QCOMPARE(layers.LayerAt(0)->Image(), mask);
    QCOMPARE(layers.LayerAt(1)->Image(), mask);
}

void AreaMapTest::importedLayersAreWhiteHiddenAndNamed_data()
{
    QTest::addColumn<bool>("isGuiRunning");
    QTest::newRow("without a window") << false;
    QTest::newRow("with a window") << true;
}

void AreaMapTest::importedLayersAreWhiteHiddenAndNamed()
{
    QFETCH(bool, isGuiRunning);
    const auto window = isGuiRunning ? std::make_unique<QWidget>() : nullptr;
    SetTypes(32, 32);
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

void AreaMapTest::usagesComeBeforeValuesAndFirstPixelsFirst()
{
    SetTypes(8, 8);
    LayerList layers;
    // The first file row is the bottom row of the image.
    QVERIFY(Import(layers, Ints({4, 2, 100, 100, 8, 0x00002002, 0x01000081, 8, 0x00000003, 0})));
    QCOMPARE(NamesOf(layers),
             (QStringList{"usage5", "usage1", "usage0", "usage7", "value0", "value1"}));
    QCOMPARE(ArtFromMask(layers.LayerByName("usage5")->Image()), (QStringList{"....", "..#."}));
    QCOMPARE(ArtFromMask(layers.LayerByName("usage0")->Image()), (QStringList{"#..#", "...."}));
}

void AreaMapTest::bitsWithoutATypeAreIgnored()
{
    SetTypes(2, 0);
    LayerList layers;
    QVERIFY(Import(layers, Ints({1, 1, 100, 100, 32, 0xFFFFFFFE, 32, 0xFFFFFFFF})));
    QCOMPARE(NamesOf(layers), QStringList{"usage1"});
}

void AreaMapTest::theFormerLayersStayAndAllPicturesAreRenewed()
{
    SetTypes(1, 0);
    LayerList layers;
    const Layer* former = Add(layers, FullMask({8, 2}), 1, 0);
    const quint64 revision = former->PictureRevision();
    QVERIFY(Import(layers, Ints({1, 1, 100, 100, 32, 1, 0})));
    QCOMPARE(NamesOf(layers), (QStringList{"layer", "usage0"}));
    QVERIFY(former->PictureRevision() != revision);
}

void AreaMapTest::importingSaysWhatItDoes()
{
    LayerList layers;
    QVERIFY(Import(layers, Ints({8, 2, 100, 100, 0, 0})));
    QCOMPARE(m_log.Messages(),
             (QStringList{"Info: Importing map, please wait ...", "Info: Import done"}));
}

void AreaMapTest::tooManyFlagTypesAreRefusedBeforeAnythingIsRead_data()
{
    AddTooManyTypes();
}

void AreaMapTest::tooManyFlagTypesAreRefusedBeforeAnythingIsRead()
{
    QFETCH(int, usageCount);
    QFETCH(int, valueCount);
    SetTypes(usageCount, valueCount);
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

void AreaMapTest::aBitCountThatIsNoPowerOfTwoEndsItsSection_data()
{
    QTest::addColumn<int>("bits");
    for (const int bits : {3, 5, 7, 31, 33, 64, 2147483647, -1, -8, -2147483647 - 1}) {
        QTest::newRow(QByteArray::number(bits).constData()) << bits;
    }
}

void AreaMapTest::aBitCountThatIsNoPowerOfTwoEndsItsSection()
{
    QFETCH(int, bits);
    SetTypes(8, 8);
    LayerList layers;
    QVERIFY(Import(layers, Ints({1, 1, 100, 100, bits, 32, 2})));
    const QString error = "Error: The area map has an invalid number of bits per pixel: %1.";
    QCOMPARE(m_log.Messages(), (QStringList{"Info: Importing map, please wait ...", error.arg(bits),
                                            "Info: Import done"}));
    QCOMPARE(NamesOf(layers), QStringList{"value1"});
}

void AreaMapTest::sizesWithoutAnImageEndTheSection_data()
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

void AreaMapTest::sizesWithoutAnImageEndTheSection()
{
    QFETCH(int, width);
    QFETCH(int, height);
    SetTypes(8, 8);
    LayerList layers;
    QVERIFY(Import(layers, Ints({width, height, 100, 100, 8, 0})));
    const QString error = "Error: The area map has an invalid size: %1x%2 pixels.";
    QCOMPARE(m_log.Messages(), (QStringList{"Info: Importing map, please wait ...",
                                            error.arg(width).arg(height), "Info: Import done"}));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(ProjectSizes(), (QVector<int>{width, height, 100, 100}));
}

void AreaMapTest::moreWordsThanTheFileHoldsCountAsClear()
{
    SetTypes(32, 32);
    LayerList layers;
    QVERIFY(Import(layers, Ints({65535, 1000, 100, 100, 32, 0, 4})));
    QCOMPARE(NamesOf(layers), QStringList{"usage2"});
    const QImage image = layers.LayerAt(0)->Image();
    QCOMPARE(image.size(), QSize(65535, 1000));
    QCOMPARE(image.pixelIndex(1, 999), 255);
    QCOMPARE(image.pixelIndex(0, 999), 0);
    QCOMPARE(image.pixelIndex(2, 999), 0);
}

void AreaMapTest::layersWithoutMemoryAreLeftOut()
{
    SetTypes(32, 32);
    // Each layer takes a quarter of a gigabyte of address space; how many find room in the rest
    // depends on the allocator.
    const QByteArray map = Ints({16384, 16384, 100, 100, 32, 0xFFFFFFFF});
    const QString error = "Error: There is no memory for %1 layers of the area map.";
    LayerList layers;
    {
        const MemoryLimit limit(640 * AMebibyte);
        QVERIFY(Import(layers, map));
    }
    const int count = layers.Layers().size();
    QVERIFY(count > 0 && count < 32);
    QCOMPARE(NamesOf(layers), QStringList(Names("usage", count).toList()));
    QCOMPARE(m_log.Take(), (QStringList{"Info: Importing map, please wait ...",
                                        error.arg(32 - count), "Info: Import done"}));
    const MemoryLimit limit(64 * AMebibyte);
    QVERIFY(Import(layers, map));
    QCOMPARE(m_log.Take().at(1), error.arg(32));
    QCOMPARE(layers.Layers().size(), count);
}

void AreaMapTest::aLargeMapWithoutFlagsNeedsNoMemory()
{
    SetTypes(32, 0);
    WriteBytes(File(), Ints({8192, 16384, 100, 100, 32}));
    // Half a gigabyte of clear words, which take no room on the disk.
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

void AreaMapTest::aDeviceThatFailsInTheHeaderFailsTheImport_data()
{
    QTest::addColumn<int>("byteCount");
    for (const int count : {0, 4, 8, 12}) {
        QTest::newRow(QByteArray::number(count).constData()) << count;
    }
}

void AreaMapTest::aDeviceThatFailsInTheHeaderFailsTheImport()
{
    QFETCH(int, byteCount);
    SlowDevice device(Ints({1, 1, 100, 100}).left(byteCount), 1000);
    LayerList layers;
    QVERIFY(!layers.ImportMap(device));
    QCOMPARE(m_log.Messages(), QStringList{"Info: Importing map, please wait ..."});
    QCOMPARE(ProjectSizes(), (QVector<int>{8, 2, 15360, 10240}));
}

void AreaMapTest::aDeviceThatFailsInASectionKeepsWhatWasRead()
{
    SetTypes(8, 8);
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

void AreaMapTest::sequentialDevicesAreReadPieceByPiece()
{
    Random random;
    SetTypes(8, 3);
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

void AreaMapTest::mapsCutOffAnywhereAreReadLikeTheLiteralReaderDoes()
{
    Random random;
    SetTypes(3, 5);
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

void AreaMapTest::mapsAreImportedLikeTheLiteralReaderDoes()
{
    Random random;
    for (int i = 0; i < 100; ++i) {
        const RandomMap map = MakeRandomMap(random);
        const QByteArray bytes = LiteralBytes(map);
        // Mostly other types than those that the map was written with.
        const int usageCount = random.Below(33);
        const int valueCount = random.Below(33);
        SetTypes(usageCount, valueCount);
        LayerList layers;
        QVERIFY(Import(layers, bytes));
        QVERIFY(AreEqual(layers, literal::ReadMap(bytes, usageCount, valueCount)));
    }
}

QTEST_MAIN(AreaMapTest)

#include "tst_AreaMap.moc"
