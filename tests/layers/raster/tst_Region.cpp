#include "layers/raster/Region.h"

#include "layers/raster/Mask.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Regions.h"

#include <QtTest>

using raster::Region;

class tst_Region : public QObject
{
    Q_OBJECT

private slots:
    void TellsBoundsAndCount();
    void TheRegionStopsAtAMask();
    void WhatAMaskLacksIsClear_data();
    void WhatAMaskLacksIsClear();
    void FillsItsPixelsOnly();
    void FillsInPlace();
    void FillsNothingBeyondTheMask();
    void FillsNoOtherFormat();
    void WithoutMemoryItIsEmpty();
};

void tst_Region::TellsBoundsAndCount()
{
    Random random;
    for (int round = 0; round < 500; ++round) {
        const QImage mask = RandomMask(random, RandomSize(random));
        const Region region = RegionOf(mask);
        QCOMPARE(raster::Bounds(region), raster::SetBounds(mask));
        const QByteArray indices = Indices(mask);
        QCOMPARE(raster::PixelCount(region), qint64(indices.size() - indices.count('\0')));
    }
    QVERIFY(raster::Bounds({}).isEmpty());
    QCOMPARE(raster::PixelCount({}), qint64(0));
    QCOMPARE(raster::PixelCount(Region(40000, {0, 0, 65535})), qint64(40000) * 65535);
}

void tst_Region::TheRegionStopsAtAMask()
{
    Random random;
    for (int round = 0; round < 1000; ++round) {
        const QSize size = RandomSize(random);
        const QImage drawn = RandomMask(random, size);
        const QImage mask = RandomMask(random, size);
        const Region region = RegionOf(drawn);
        for (const bool isInside : {true, false}) {
            const Region expected = RegionWhere(size, [&](int x, int y) {
                return drawn.pixelIndex(x, y) != 0 && (mask.pixelIndex(x, y) != 0) == isInside;
            });
            QCOMPARE(Difference(raster::Restricted(region, mask, isInside), expected), QString());
        }
    }
}

void tst_Region::WhatAMaskLacksIsClear_data()
{
    QTest::addColumn<QImage>("mask");
    QTest::addColumn<QSize>("known");
    QTest::newRow("null") << QImage() << QSize(0, 0);
    QTest::newRow("no mask") << QImage(200, 3, QImage::Format_ARGB32) << QSize(0, 0);
    QTest::newRow("8-bit grey") << QImage(200, 3, QImage::Format_Grayscale8) << QSize(0, 0);
    QTest::newRow("narrower") << FullMask({70, 3}) << QSize(70, 3);
    QTest::newRow("a word narrower") << FullMask({136, 3}) << QSize(136, 3);
    QTest::newRow("lower") << FullMask({200, 2}) << QSize(200, 2);
    QTest::newRow("larger") << FullMask({201, 4}) << QSize(200, 3);
}

void tst_Region::WhatAMaskLacksIsClear()
{
    QFETCH(QImage, mask);
    QFETCH(QSize, known);
    const QRect set(QPoint(0, 0), known);
    const QSize size(200, 3);
    const Region region = RegionOf(FullMask(size));
    const auto isSet = [set](int x, int y) { return set.contains(x, y); };
    const auto isClear = [set](int x, int y) { return !set.contains(x, y); };
    QCOMPARE(Difference(raster::Restricted(region, mask, true), RegionWhere(size, isSet)),
             QString());
    QCOMPARE(Difference(raster::Restricted(region, mask, false), RegionWhere(size, isClear)),
             QString());
}

void tst_Region::FillsItsPixelsOnly()
{
    Random random;
    for (int round = 0; round < 500; ++round) {
        const QSize size = RandomSize(random);
        const QImage drawn = RandomMask(random, size);
        QImage mask = RandomMask(random, size);
        const auto value = static_cast<uchar>(random.Below(256));
        QByteArray expected = Indices(mask);
        const QByteArray pixels = Indices(drawn);
        for (int i = 0; i < expected.size(); ++i) {
            expected[i] = pixels.at(i) != '\0' ? static_cast<char>(value) : expected.at(i);
        }
        raster::Fill(mask, RegionOf(drawn), value);
        QCOMPARE(Indices(mask), expected);
    }
}

void tst_Region::FillsInPlace()
{
    QImage mask = raster::BlankMask({100, 5});
    const uchar* const pixels = mask.constBits();
    raster::Fill(mask, {{1, 2, 70}}, 9);
    QCOMPARE(mask.constBits(), pixels);
    QCOMPARE(int(mask.constScanLine(1)[69]), 9);
}

void tst_Region::FillsNothingBeyondTheMask()
{
    // The bytes around the mask are part of the same image.
    QImage whole = raster::BlankMask({40, 9});
    QImage mask(whole.scanLine(3) + 8, 16, 3, whole.bytesPerLine(), QImage::Format_Indexed8);
    raster::Fill(mask, {{-1, 0, 16}, {0, -3, 4}, {1, 5, 40}, {2, 16, 20}, {3, 0, 16}}, 1);
    QCOMPARE(ArtFromMask(whole.copy(8, 2, 17, 5)),
             (QStringList{".................", "++++.............", ".....+++++++++++.",
                          ".................", "................."}));
    QCOMPARE(Indices(whole).count('\1'), 4 + 11);
}

void tst_Region::FillsNoOtherFormat()
{
    QImage image(8, 8, QImage::Format_ARGB32);
    image.fill(Qt::red);
    const QImage before = image.copy();
    raster::Fill(image, {{0, 0, 8}}, 1);
    QCOMPARE(image, before);
    QImage null;
    raster::Fill(null, {{0, 0, 8}}, 1);
    QVERIFY(null.isNull());
}

void tst_Region::WithoutMemoryItIsEmpty()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("The sanitizers take address space as they go.");
#endif
    // Every second pixel takes a span of twelve bytes.
    QImage stripes = raster::BlankMask({4096, 4096});
    for (int y = 0; y < stripes.height(); ++y) {
        uchar* row = stripes.scanLine(y);
        for (int x = 0; x < stripes.width(); x += 2) {
            row[x] = 1;
        }
    }
    Region rows;
    for (int y = 0; y < stripes.height(); ++y) {
        rows.push_back({y, 0, stripes.width()});
    }
    {
        const MemoryLimit limit(32 * AMebibyte);
        QVERIFY(raster::Restricted(rows, stripes, true).empty());
    }
    QCOMPARE(raster::PixelCount(raster::Restricted(rows, stripes, true)), qint64(2048 * 4096));
}

QTEST_GUILESS_MAIN(tst_Region)
#include "tst_Region.moc"
