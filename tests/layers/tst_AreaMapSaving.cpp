#include "layers/LayerList.h"

#include "layers/Layer.h"
#include "layers/raster/Mask.h"

#include "tests/support/AreaMaps.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/LayerLists.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/ProjectFixture.h"

#include <QtTest>

#include <limits>

class tst_AreaMapSaving : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void WithoutFlagTypesAMapIs24Bytes();
    void TheBitCountIsThePowerOfTwoThatHoldsTheTypes_data();
    void TheBitCountIsThePowerOfTwoThatHoldsTheTypes();
    void AUsualMapHasTheExpectedSize();
    void FieldsAreStoredBottomUpAndLeftmostHighest();
    void LayersCountWhateverTheirVisibility();
    void LayersWithoutUsageFlagsStayOutOfTheUsages();
    void OverlappingLayersAreOred();
    void TheRemainderOfARowIsLeftOut();
    void SizesOfNothingAreWrittenWithoutWords_data();
    void SizesOfNothingAreWrittenWithoutWords();
    void SizesThatNoMaskHasAreRefusedBeforeTheFileIsOpened_data();
    void SizesThatNoMaskHasAreRefusedBeforeTheFileIsOpened();
    void TheLargestSizesAreWritten_data();
    void TheLargestSizesAreWritten();
    void WithoutFlagTypesAMapOfAnySizeIsItsHeader_data();
    void WithoutFlagTypesAMapOfAnySizeIsItsHeader();
    void AMapWithoutMemoryLeavesTheOldOne();
    void SavingSaysWhatItDoes();
    void AMapThatCannotBeOpenedIsAnError();
    void TooManyFlagTypesAreRefusedBeforeTheFileIsOpened_data();
    void TooManyFlagTypesAreRefusedBeforeTheFileIsOpened();
    void AFullDiskLeavesTheOldMap_data();
    void AFullDiskLeavesTheOldMap();
    void AFullDeviceFails();
    void AMapThatCannotBePutInPlaceFails();
    void MapsAreWhatTheLiteralWriterWrites();

private:
    QString File() const { return m_project->Path("area.map"); }

    std::unique_ptr<ProjectFixture> m_project;
    LogSpy m_log;
};

void tst_AreaMapSaving::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(8, 2), QSize(15360, 10240));
    m_log.Take();
}

void tst_AreaMapSaving::cleanup()
{
    m_project.reset();
}

void tst_AreaMapSaving::WithoutFlagTypesAMapIs24Bytes()
{
    LayerList layers;
    AddLayer(layers, FullMask({8, 2}), 1, 1);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()), Ints({8, 2, 15360, 10240, 0, 0}));
}

void tst_AreaMapSaving::TheBitCountIsThePowerOfTwoThatHoldsTheTypes_data()
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

void tst_AreaMapSaving::TheBitCountIsThePowerOfTwoThatHoldsTheTypes()
{
    QFETCH(int, typeCount);
    QFETCH(int, bits);
    SetLayerSize({64, 3});
    SetFlagTypes(typeCount, 32);
    LayerList layers;
    QVERIFY(layers.SaveMap(File()));
    const QByteArray map = ReadBytes(File());
    QCOMPARE(map.mid(16, 4), Ints({bits}));
    const int usageBytes = bits * 64 / 8 * 3;
    QCOMPARE(map.size(), 16 + 4 + usageBytes + 4 + 4 * 64 * 3);
    QCOMPARE(map.mid(20 + usageBytes, 4), Ints({32}));
}

void tst_AreaMapSaving::AUsualMapHasTheExpectedSize()
{
    SetLayerSize({2048, 2048});
    SetFlagTypes(5, 3);
    LayerList layers;
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(QFileInfo(File()).size(), qint64(16 + (4 + 4 * 512 * 2048) + (4 + 4 * 256 * 2048)));
}

void tst_AreaMapSaving::FieldsAreStoredBottomUpAndLeftmostHighest()
{
    SetFlagTypes(5, 1);
    SetLayerSize({32, 2});
    QImage mask = raster::BlankMask({32, 2});
    mask.scanLine(0)[0] = raster::MaskSet;
    LayerList layers;
    AddLayer(layers, mask, 0x12, 1);
    QVERIFY(layers.SaveMap(File()));
    QVector<qint64> expected = {32, 2, 15360, 10240, 8};
    expected += QVector<qint64>(8, 0) + QVector<qint64>{0x12000000} + QVector<qint64>(7, 0);
    expected += {1, 0, 0x80000000};
    QCOMPARE(ReadBytes(File()).toHex(), Ints(expected).toHex());
    // This is the fourth byte of the word, because words are little-endian.
    QCOMPARE(ReadBytes(File()).at(20 + 32 + 3), '\x12');
}

void tst_AreaMapSaving::LayersCountWhateverTheirVisibility()
{
    SetFlagTypes(2, 0);
    SetLayerSize({16, 1});
    LayerList layers;
    AddLayer(layers, MaskFromArt({"#..............."}), 1, 0)->SetVisible(true);
    AddLayer(layers, MaskFromArt({".+.............."}), 2, 0)->SetVisible(false);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()).mid(20, 4).toHex(), Ints({0x60000000}).toHex());
}

void tst_AreaMapSaving::LayersWithoutUsageFlagsStayOutOfTheUsages()
{
    SetFlagTypes(1, 1);
    SetLayerSize({32, 1});
    LayerList layers;
    AddLayer(layers, FullMask({32, 1}), 0, 1)->SetVisible(true);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()).mid(16).toHex(), Ints({1, 0, 1, 0xFFFFFFFF}).toHex());
}

void tst_AreaMapSaving::OverlappingLayersAreOred()
{
    SetFlagTypes(3, 0);
    SetLayerSize({8, 1});
    LayerList layers;
    AddLayer(layers, MaskFromArt({"##......"}), 1, 0);
    AddLayer(layers, MaskFromArt({".##....."}), 4, 0);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()).mid(16, 8).toHex(), Ints({4, 0x15400000}).toHex());
}

void tst_AreaMapSaving::TheRemainderOfARowIsLeftOut()
{
    SetFlagTypes(3, 5);
    SetLayerSize({11, 2});
    LayerList layers;
    AddLayer(layers, FullMask({11, 2}), 1, 1);
    QVERIFY(layers.SaveMap(File()));
    const QVector<qint64> usages = {4, 0x11111111, 0x11111111};
    const QVector<qint64> values = {8, 0x01010101, 0x01010101, 0x01010101, 0x01010101};
    QCOMPARE(ReadBytes(File()).mid(16).toHex(), Ints(usages + values).toHex());
}

void tst_AreaMapSaving::SizesOfNothingAreWrittenWithoutWords_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("zero") << QSize(0, 0);
    QTest::newRow("negative") << QSize(-5, -5);
    QTest::newRow("one negative") << QSize(64, -5);
    const int smallest = std::numeric_limits<int>::min();
    QTest::newRow("smallest integers") << QSize(smallest, smallest);
}

void tst_AreaMapSaving::SizesOfNothingAreWrittenWithoutWords()
{
    QFETCH(QSize, size);
    SetFlagTypes(5, 3);
    SetLayerSize(size);
    LayerList layers;
    AddLayer(layers, FullMask({8, 2}), 1, 1);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()), Ints({size.width(), size.height(), 15360, 10240, 8, 4}));
}

void tst_AreaMapSaving::SizesThatNoMaskHasAreRefusedBeforeTheFileIsOpened_data()
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

void tst_AreaMapSaving::SizesThatNoMaskHasAreRefusedBeforeTheFileIsOpened()
{
    // The sizes come from the last imported file and may have any value.
    QFETCH(QSize, size);
    QFETCH(int, usageCount);
    QFETCH(int, valueCount);
    SetFlagTypes(usageCount, valueCount);
    SetLayerSize(size);
    LayerList layers;
    AddLayer(layers, FullMask({8, 2}), 1, 1);
    QVERIFY(!layers.SaveMap(m_project->Path("missing/area.map")));
    QCOMPARE(m_log.Messages(),
             QStringList{QString("Error: An area map with flag types cannot have %1x%2 pixels.")
                             .arg(size.width())
                             .arg(size.height())});
}

void tst_AreaMapSaving::TheLargestSizesAreWritten_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("widest") << QSize(65535, 1);
    QTest::newRow("highest") << QSize(1, 65535);
}

void tst_AreaMapSaving::TheLargestSizesAreWritten()
{
    QFETCH(QSize, size);
    SetFlagTypes(32, 0);
    SetLayerSize(size);
    LayerList layers;
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(QFileInfo(File()).size(), qint64(24 + 4 * 65535));
}

void tst_AreaMapSaving::WithoutFlagTypesAMapOfAnySizeIsItsHeader_data()
{
    QTest::addColumn<QSize>("size");
    const int largest = std::numeric_limits<int>::max();
    QTest::newRow("zero") << QSize(0, 0);
    QTest::newRow("negative") << QSize(-1, -1);
    QTest::newRow("widest") << QSize(largest, 1);
    QTest::newRow("highest") << QSize(1, largest);
    QTest::newRow("largest") << QSize(largest, largest);
}

void tst_AreaMapSaving::WithoutFlagTypesAMapOfAnySizeIsItsHeader()
{
    QFETCH(QSize, size);
    SetLayerSize(size);
    LayerList layers;
    AddLayer(layers, FullMask({8, 2}), 1, 1);
    QVERIFY(layers.SaveMap(File()));
    QCOMPARE(ReadBytes(File()), Ints({size.width(), size.height(), 15360, 10240, 0, 0}));
}

void tst_AreaMapSaving::AMapWithoutMemoryLeavesTheOldOne()
{
    WriteBytes(File(), "old");
    SetFlagTypes(32, 0);
    SetLayerSize({16384, 16384});
    LayerList layers;
    {
        const MemoryLimit limit(640 * AMebibyte);
        QVERIFY(!layers.SaveMap(File()));
    }
    QCOMPARE(ReadBytes(File()), QByteArray("old"));
}

void tst_AreaMapSaving::SavingSaysWhatItDoes()
{
    LayerList layers;
    const QString path = m_project->Path("100%1.map");
    QVERIFY(layers.SaveMap(path));
    QCOMPARE(m_log.Messages(),
             (QStringList{"Info: Processing binary map ...",
                          "Success: Zone binary map saved to file '" + path + "'."}));
}

void tst_AreaMapSaving::AMapThatCannotBeOpenedIsAnError()
{
    LayerList layers;
    for (const QString& path :
         {m_project->Path("missing/%1.map"), m_project->Path("."), QString()}) {
        QVERIFY(!layers.SaveMap(path));
        QCOMPARE(m_log.Take(),
                 QStringList{"Error: Failed to open file '" + path + "' for writing."});
    }
}

void tst_AreaMapSaving::TooManyFlagTypesAreRefusedBeforeTheFileIsOpened_data()
{
    AddTooManyTypes();
}

void tst_AreaMapSaving::TooManyFlagTypesAreRefusedBeforeTheFileIsOpened()
{
    QFETCH(int, usageCount);
    QFETCH(int, valueCount);
    SetFlagTypes(usageCount, valueCount);
    LayerList layers;
    QVERIFY(!layers.SaveMap(m_project->Path("missing/area.map")));
    QCOMPARE(m_log.Messages(), QStringList{TooManyTypes});
}

void tst_AreaMapSaving::AFullDiskLeavesTheOldMap_data()
{
    QTest::addColumn<int>("room");
    for (const int room : {0, 3, 15, 17, 20, 20000, 65000}) {
        QTest::newRow(QByteArray::number(room).constData()) << room;
    }
}

void tst_AreaMapSaving::AFullDiskLeavesTheOldMap()
{
    QFETCH(int, room);
    WriteBytes(File(), "old");
    SetFlagTypes(8, 8);
    SetLayerSize({256, 128});
    LayerList layers;
    AddLayer(layers, FullMask({256, 128}), 1, 1);
    {
        const FileSizeLimit limit(static_cast<quint64>(room));
        QVERIFY(!layers.SaveMap(File()));
    }
    QCOMPARE(m_log.Messages(), QStringList{"Info: Processing binary map ..."});
    QCOMPARE(ReadBytes(File()), QByteArray("old"));
}

void tst_AreaMapSaving::AFullDeviceFails()
{
    LayerList layers;
    QVERIFY(!layers.SaveMap("/dev/full"));
    QCOMPARE(m_log.Messages(), QStringList{"Info: Processing binary map ..."});
}

void tst_AreaMapSaving::AMapThatCannotBePutInPlaceFails()
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

void tst_AreaMapSaving::MapsAreWhatTheLiteralWriterWrites()
{
    Random random;
    for (int i = 0; i < 150; ++i) {
        const RandomMap map(random);
        SetLayerSize(map.size);
        SetFlagTypes(map.usageCount, map.valueCount);
        LayerList layers;
        for (const literal::MapLayer& layer : map.layers) {
            AddLayer(layers, layer.image, layer.usageFlags, layer.valueFlags);
        }
        QVERIFY(layers.SaveMap(File()));
        QCOMPARE(ReadBytes(File()), map.LiteralBytes());
    }
}

QTEST_MAIN(tst_AreaMapSaving)

#include "tst_AreaMapSaving.moc"
