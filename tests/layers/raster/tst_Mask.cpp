#include "layers/raster/Mask.h"

#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"

#include <QtTest>

class tst_Mask : public QObject
{
    Q_OBJECT

private slots:
    void TheGreyTableHoldsAllOpaqueGreys();
    void BlankMasksAreClearAndGrey_data();
    void BlankMasksAreClearAndGrey();
    void SizesWithoutAMaskGiveANullImage_data();
    void SizesWithoutAMaskGiveANullImage();
    void WithoutMemoryTheMaskIsNull();
    void PixelsThatEqualTheColourAreSet_data();
    void PixelsThatEqualTheColourAreSet();
    void MasksAreReturnedAsTheyAre();
    void ImagesOfOtherDepthsGiveNoMask_data();
    void ImagesOfOtherDepthsGiveNoMask();
    void ThePictureShowsSetPixelsInTheColour();
    void ThePictureOfNoMaskIsNull_data();
    void ThePictureOfNoMaskIsNull();
    void PictureAndMaskAreInverse();
    void BoundsHoldWhatIsSet_data();
    void BoundsHoldWhatIsSet();
    void GeometryIsFormatAndSize_data();
    void GeometryIsFormatAndSize();
    void WithoutMemorySharedMasksStay();
};

void tst_Mask::TheGreyTableHoldsAllOpaqueGreys()
{
    const QVector<QRgb>& table = raster::GreyTable();
    QCOMPARE(table.size(), 256);
    for (int i = 0; i < 256; ++i) {
        QCOMPARE(table.at(i), 0xFF000000U + static_cast<QRgb>(i) * 0x010101U);
    }
}

void tst_Mask::BlankMasksAreClearAndGrey_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("padded rows") << QSize(5, 3);
    QTest::newRow("aligned rows") << QSize(64, 3);
    QTest::newRow("longest row") << QSize(65535, 1);
    QTest::newRow("longest column") << QSize(1, 65535);
}

void tst_Mask::BlankMasksAreClearAndGrey()
{
    QFETCH(QSize, size);
    const QImage mask = raster::BlankMask(size);
    QCOMPARE(mask.format(), QImage::Format_Indexed8);
    QCOMPARE(mask.size(), size);
    QCOMPARE(mask.colorTable(), raster::GreyTable());
    const uchar* bytes = mask.constBits();
    QVERIFY(std::all_of(bytes, bytes + mask.sizeInBytes(), [](uchar byte) { return byte == 0; }));
}

void tst_Mask::SizesWithoutAMaskGiveANullImage_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("invalid") << QSize();
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("no width") << QSize(0, 4);
    QTest::newRow("no height") << QSize(4, 0);
    QTest::newRow("negative") << QSize(-4, -4);
    QTest::newRow("too wide") << QSize(65536, 1);
    QTest::newRow("too high") << QSize(1, 65536);
    QTest::newRow("largest integers") << QSize(2147483647, 2147483647);
}

void tst_Mask::SizesWithoutAMaskGiveANullImage()
{
    QFETCH(QSize, size);
    QVERIFY(raster::BlankMask(size).isNull());
}

void tst_Mask::WithoutMemoryTheMaskIsNull()
{
    const MemoryLimit limit(64 * AMebibyte);
    QVERIFY(raster::BlankMask({16384, 16384}).isNull());
    QVERIFY(!raster::BlankMask({16, 16}).isNull());
}

void tst_Mask::PixelsThatEqualTheColourAreSet_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("RGB32") << QImage::Format_RGB32;
    QTest::newRow("ARGB32") << QImage::Format_ARGB32;
    QTest::newRow("ARGB32 premultiplied") << QImage::Format_ARGB32_Premultiplied;
}

void tst_Mask::PixelsThatEqualTheColourAreSet()
{
    QFETCH(QImage::Format, format);
    constexpr QRgb colour = 0xFF102030;
    QImage source(5, 2, format);
    source.fill(Qt::black);
    auto* top = reinterpret_cast<QRgb*>(source.scanLine(0));
    auto* bottom = reinterpret_cast<QRgb*>(source.scanLine(1));
    top[0] = colour;
    top[1] = 0xFF102031;
    top[2] = 0xFE102030;
    top[3] = 0x00000000;
    top[4] = colour;
    bottom[2] = colour;
    const QImage mask = raster::ImageToMask(source, colour);
    QCOMPARE(ArtFromMask(mask), (QStringList{"#...#", "..#.."}));
    QCOMPARE(mask.colorTable(), raster::GreyTable());
}

void tst_Mask::MasksAreReturnedAsTheyAre()
{
    QImage mask = MaskFromArt({"#+.", ".#."});
    mask.setColor(0, 0xFF123456);
    const QImage result = raster::ImageToMask(mask, 0xFFFFFFFF);
    QCOMPARE(result.cacheKey(), mask.cacheKey());
}

void tst_Mask::ImagesOfOtherDepthsGiveNoMask_data()
{
    QTest::addColumn<QImage>("image");
    QTest::newRow("null") << QImage();
    QTest::newRow("1 bit") << QImage(4, 4, QImage::Format_Mono);
    QTest::newRow("8-bit grey") << QImage(4, 4, QImage::Format_Grayscale8);
    QTest::newRow("16 bits") << QImage(4, 4, QImage::Format_RGB16);
    QTest::newRow("24 bits") << QImage(4, 4, QImage::Format_RGB888);
    QTest::newRow("64 bits") << QImage(4, 4, QImage::Format_RGBA64);
}

void tst_Mask::ImagesOfOtherDepthsGiveNoMask()
{
    QFETCH(QImage, image);
    QVERIFY(raster::ImageToMask(image, 0xFFFFFFFF).isNull());
}

void tst_Mask::ThePictureShowsSetPixelsInTheColour()
{
    constexpr QRgb colour = 0xFF102030;
    QImage mask = MaskFromArt({"#+.#.", "....#"});
    mask.scanLine(1)[0] = 254;
    const QImage picture = raster::MaskToDisplay(mask, colour);
    QCOMPARE(picture.format(), QImage::Format_ARGB32_Premultiplied);
    QCOMPARE(picture.size(), mask.size());
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            QCOMPARE(picture.pixel(x, y), mask.pixelIndex(x, y) == 255 ? colour : 0U);
        }
    }
}

void tst_Mask::ThePictureOfNoMaskIsNull_data()
{
    QTest::addColumn<QImage>("image");
    QTest::newRow("null") << QImage();
    QTest::newRow("32 bits") << QImage(4, 4, QImage::Format_ARGB32);
    QTest::newRow("8-bit grey") << QImage(4, 4, QImage::Format_Grayscale8);
}

void tst_Mask::ThePictureOfNoMaskIsNull()
{
    QFETCH(QImage, image);
    QVERIFY(raster::MaskToDisplay(image, 0xFFFFFFFF).isNull());
}

void tst_Mask::PictureAndMaskAreInverse()
{
    const QImage mask = MaskFromArt({"#..#.", ".##.#", "....."});
    for (const QRgb colour : {0xFF000000U, 0xFFFFFFFFU, 0xFF00FF01U}) {
        QCOMPARE(raster::ImageToMask(raster::MaskToDisplay(mask, colour), colour), mask);
    }
}

void tst_Mask::BoundsHoldWhatIsSet_data()
{
    QTest::addColumn<QStringList>("art");
    QTest::addColumn<QRect>("bounds");
    QTest::newRow("clear") << QStringList{".....", "....."} << QRect();
    QTest::newRow("set") << QStringList{"##", "##"} << QRect(0, 0, 2, 2);
    QTest::newRow("one pixel") << QStringList{".....", "...#.", "....."} << QRect(3, 1, 1, 1);
    QTest::newRow("corners") << QStringList{"....#", ".....", "#...."} << QRect(0, 0, 5, 3);
    QTest::newRow("narrow to wide")
        << QStringList{".....", "..#..", ".#...", "...#.", "....."} << QRect(1, 1, 3, 3);
    QTest::newRow("wide to narrow") << QStringList{".#.#.", "..#..", "....."} << QRect(1, 0, 3, 2);
}

void tst_Mask::BoundsHoldWhatIsSet()
{
    QFETCH(QStringList, art);
    QTEST(raster::SetBounds(MaskFromArt(art)), "bounds");
    QImage grey = raster::BlankMask({9, 7});
    grey.setPixel(8, 6, 1);
    QCOMPARE(raster::SetBounds(grey), QRect(8, 6, 1, 1));
    QVERIFY(raster::SetBounds(QImage()).isEmpty());
    QVERIFY(raster::SetBounds(QImage(4, 3, QImage::Format_Grayscale8)).isEmpty());
}

void tst_Mask::GeometryIsFormatAndSize_data()
{
    QTest::addColumn<QImage>("other");
    QTest::addColumn<bool>("isSame");
    // All are compared with a mask of 4 x 3 pixels.
    QTest::newRow("equal") << raster::BlankMask({4, 3}) << true;
    QTest::newRow("other pixels") << MaskFromArt({"####", "####", "####"}) << true;
    QTest::newRow("other width") << raster::BlankMask({5, 3}) << false;
    QTest::newRow("other height") << raster::BlankMask({4, 2}) << false;
    QTest::newRow("other format") << QImage(4, 3, QImage::Format_Grayscale8) << false;
    QTest::newRow("null") << QImage() << false;
}

void tst_Mask::GeometryIsFormatAndSize()
{
    QFETCH(QImage, other);
    QFETCH(bool, isSame);
    const QImage mask = raster::BlankMask({4, 3});
    QCOMPARE(raster::SameGeometry(mask, other), isSame);
    QCOMPARE(raster::SameGeometry(other, mask), isSame);
    QVERIFY(!raster::SameGeometry(QImage(), QImage()));
}

void tst_Mask::WithoutMemorySharedMasksStay()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("The sanitizers take address space as they go.");
#endif
    QImage mask = raster::BlankMask({16384, 4096});
    const QImage other = mask;
    {
        const MemoryLimit limit(16 * AMebibyte);
        QVERIFY(!raster::Unshare(mask));
    }
    QCOMPARE(mask.constBits(), other.constBits());
    QVERIFY(raster::Unshare(mask));
    QVERIFY(mask.isDetached());
    QCOMPARE(mask, other);
    const uchar* pixels = mask.constBits();
    QVERIFY(raster::Unshare(mask));
    QCOMPARE(mask.constBits(), pixels);
    QImage none;
    QVERIFY(!raster::Unshare(none));
}

QTEST_GUILESS_MAIN(tst_Mask)

#include "tst_Mask.moc"
