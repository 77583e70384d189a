#include "layers/raster/Flood.h"

#include "layers/raster/Mask.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Regions.h"

#include <QtTest>

using raster::Region;

class tst_Flood : public QObject
{
    Q_OBJECT

private slots:
    void AreasEndWhereAMaskChanges();
    void AreasOfAnyShapeAreFilledToTheirEnds_data();
    void AreasOfAnyShapeAreFilledToTheirEnds();
    void EqualPixelsNeedNoConnection();
    void CornersDoNotConnect();
    void GreysAreAreasOfTheirOwn();
    void WhatIsNoMaskGivesNothing_data();
    void WhatIsNoMaskGivesNothing();
    void MasksOfOtherSizesGiveNothing();
    void TheMasksStayAsTheyAre();
    void WithoutMemoryItIsEmpty();
};

namespace {

/// Noise of a few values, of which the first takes that part of 10.
QImage NoiseMask(Random& random, QSize size, int part)
{
    constexpr uchar others[] = {raster::MaskSet, 1, 128};
    QImage mask = raster::BlankMask(size);
    for (int y = 0; y < size.height(); ++y) {
        uchar* row = mask.scanLine(y);
        for (int x = 0; x < size.width(); ++x) {
            row[x] = random.Below(10) < part ? raster::MaskClear : others[random.Below(3)];
        }
    }
    return mask;
}

/// Noise, or mostly large areas.
QImage AnyMask(Random& random, QSize size)
{
    const bool isNoise = random.Below(3) > 0;
    return isNoise ? NoiseMask(random, size, random.Between(4, 9)) : RandomMask(random, size);
}

/// Two in three times upright, so that the fill turns more often.
QSize AnySize(Random& random)
{
    const QSize size = RandomSize(random);
    return random.Below(3) > 0 ? size.transposed() : size;
}

QPoint AnyPixel(Random& random, QSize size)
{
    const int x = random.Below(size.width());
    return {x, random.Below(size.height())};
}

bool IsLikeSeed(const QVector<QImage>& masks, QPoint at, QPoint seed)
{
    return std::all_of(masks.cbegin(), masks.cend(), [at, seed](const QImage& mask) {
        return mask.pixelIndex(at) == mask.pixelIndex(seed);
    });
}

/// Pixel by pixel, each with its four neighbours.
Region LiteralArea(const QVector<QImage>& masks, QPoint seed)
{
    QImage reached = raster::BlankMask(masks.constFirst().size());
    std::vector<QPoint> waiting{seed};
    while (!waiting.empty()) {
        const QPoint at = waiting.back();
        waiting.pop_back();
        if (!reached.rect().contains(at) || reached.pixelIndex(at) != 0 ||
            !IsLikeSeed(masks, at, seed)) {
            continue;
        }
        reached.setPixel(at, 1);
        for (const QPoint step : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
            waiting.push_back(at + step);
        }
    }
    return RegionOf(reached);
}

/// Teeth of that width, as far apart, with a back at the left.
QImage Comb(QSize size, int toothWidth)
{
    QImage mask = FullMask(size);
    for (int y = 0; y < size.height(); ++y) {
        const bool isGap = y / toothWidth % 2 != 0;
        std::fill_n(mask.scanLine(y), isGap ? std::min(toothWidth, size.width()) : size.width(), 7);
    }
    return mask;
}

/// A path of that width from the top left corner to the middle, and walls as wide.
QImage Spiral(int side, int width)
{
    QImage mask = FullMask({side, side});
    QRect rest = mask.rect();
    const auto draw = [&mask](const QRect& part) {
        for (int y = part.top(); y <= part.bottom(); ++y) {
            std::fill_n(mask.scanLine(y) + part.left(), std::max(part.width(), 0), 7);
        }
    };
    for (int lead = 0; rest.width() >= 2 * width && rest.height() >= 2 * width; lead = 2 * width) {
        draw({rest.left() - lead, rest.top(), rest.width() + lead, width});
        draw({rest.right() - width + 1, rest.top(), width, rest.height()});
        draw({rest.left(), rest.bottom() - width + 1, rest.width(), width});
        draw({rest.left(), rest.top() + 2 * width, width, rest.height() - 2 * width});
        rest.adjust(2 * width, 2 * width, -2 * width, -2 * width);
    }
    return mask;
}

} // namespace

void tst_Flood::AreasEndWhereAMaskChanges()
{
    Random random;
    for (int round = 0; round < 3000; ++round) {
        const QSize size = AnySize(random);
        QVector<QImage> masks;
        for (int i = random.Between(1, 3); i > 0; --i) {
            masks.append(AnyMask(random, size));
        }
        const QPoint seed = AnyPixel(random, size);
        QCOMPARE(Difference(raster::AreaAt(masks, seed), LiteralArea(masks, seed)), QString());
    }
}

void tst_Flood::AreasOfAnyShapeAreFilledToTheirEnds_data()
{
    QTest::addColumn<QImage>("mask");
    for (const int width : {1, 2, 5, 64}) {
        const QByteArray suffix = " of " + QByteArray::number(width);
        QTest::newRow("spiral" + suffix) << Spiral(500, width);
        QTest::newRow("comb" + suffix) << Comb({500, 300}, width);
    }
    QTest::newRow("blank") << raster::BlankMask({500, 300});
    QTest::newRow("one row") << raster::BlankMask({500, 1});
    QTest::newRow("one column") << raster::BlankMask({1, 500});
    QTest::newRow("one pixel") << raster::BlankMask({1, 1});
}

void tst_Flood::AreasOfAnyShapeAreFilledToTheirEnds()
{
    QFETCH(QImage, mask);
    for (const int angle : {0, 90, 180, 270}) {
        const QImage turned = mask.transformed(QTransform().rotate(angle));
        const Region expected = RegionWhere(
            turned.size(), [&](int x, int y) { return turned.pixelIndex(x, y) != 255; });
        const raster::Span& last = expected.back();
        for (const QPoint seed :
             {QPoint(expected.front().begin, expected.front().y), QPoint(last.end - 1, last.y)}) {
            QCOMPARE(Difference(raster::AreaAt({turned}, seed), expected), QString());
        }
    }
}

void tst_Flood::EqualPixelsNeedNoConnection()
{
    Random random;
    for (int round = 0; round < 500; ++round) {
        const QSize size = AnySize(random);
        const QImage mask = AnyMask(random, size);
        const QPoint seed = AnyPixel(random, size);
        const Region expected = RegionWhere(size, [&mask, seed](int x, int y) {
            return mask.pixelIndex(x, y) == mask.pixelIndex(seed);
        });
        QCOMPARE(Difference(raster::EqualPixels(mask, seed), expected), QString());
    }
}

void tst_Flood::CornersDoNotConnect()
{
    const QImage mask = MaskFromArt({"#.#", ".#.", "##."});
    QCOMPARE(Difference(raster::AreaAt({mask}, {1, 1}), {{1, 1, 2}, {2, 0, 2}}), QString());
    QCOMPARE(Difference(raster::AreaAt({mask}, {0, 0}), {{0, 0, 1}}), QString());
    QCOMPARE(
        Difference(raster::EqualPixels(mask, {0, 0}), {{0, 0, 1}, {0, 2, 3}, {1, 1, 2}, {2, 0, 2}}),
        QString());
}

void tst_Flood::GreysAreAreasOfTheirOwn()
{
    const QImage mask = MaskFromArt({"#++.", "#+.."});
    QCOMPARE(Difference(raster::AreaAt({mask}, {1, 1}), {{0, 1, 3}, {1, 1, 2}}), QString());
    QCOMPARE(Difference(raster::AreaAt({mask}, {3, 0}), {{0, 3, 4}, {1, 2, 4}}), QString());
}

void tst_Flood::WhatIsNoMaskGivesNothing_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<QPoint>("seed");
    QTest::newRow("null") << QImage() << QPoint(0, 0);
    QTest::newRow("32 bits") << QImage(4, 4, QImage::Format_ARGB32) << QPoint(0, 0);
    QTest::newRow("8-bit grey") << QImage(4, 4, QImage::Format_Grayscale8) << QPoint(0, 0);
    QTest::newRow("1 bit") << QImage(4, 4, QImage::Format_Mono) << QPoint(0, 0);
    const QImage mask = raster::BlankMask({4, 3});
    QTest::newRow("left of it") << mask << QPoint(-1, 0);
    QTest::newRow("above it") << mask << QPoint(0, -1);
    QTest::newRow("right of it") << mask << QPoint(4, 0);
    QTest::newRow("below it") << mask << QPoint(0, 3);
    QTest::newRow("far away") << mask << QPoint(2147483647, -2147483647);
}

void tst_Flood::WhatIsNoMaskGivesNothing()
{
    QFETCH(QImage, image);
    QFETCH(QPoint, seed);
    QVERIFY(raster::AreaAt({image}, seed).empty());
    QVERIFY(raster::AreaAt({raster::BlankMask({9, 9}), image}, seed).empty());
    QVERIFY(raster::EqualPixels(image, seed).empty());
}

void tst_Flood::MasksOfOtherSizesGiveNothing()
{
    const QImage mask = raster::BlankMask({4, 3});
    QVERIFY(raster::AreaAt({}, {0, 0}).empty());
    QVERIFY(raster::AreaAt({mask, raster::BlankMask({4, 4})}, {0, 0}).empty());
    QVERIFY(raster::AreaAt({raster::BlankMask({5, 3}), mask}, {0, 0}).empty());
    QCOMPARE(raster::PixelCount(raster::AreaAt({mask, mask}, {0, 0})), qint64(12));
}

void tst_Flood::TheMasksStayAsTheyAre()
{
    Random random;
    const QVector<QImage> masks{RandomMask(random, {90, 40}), RandomMask(random, {90, 40})};
    const QVector<QImage> before{masks.at(0).copy(), masks.at(1).copy()};
    QVERIFY(!raster::AreaAt(masks, {40, 20}).empty());
    QVERIFY(!raster::EqualPixels(masks.at(0), {40, 20}).empty());
    QCOMPARE(masks, before);
}

void tst_Flood::WithoutMemoryItIsEmpty()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("The sanitizers take address space as they go.");
#endif
    const QImage blank = raster::BlankMask({16384, 16384});
    // Each tooth is a span of twelve bytes in each row.
    const QImage comb = Comb({4096, 4096}, 1).transformed(QTransform().rotate(90));
    {
        // Too little for the bits of the pixels, then for the spans.
        const MemoryLimit limit(24 * AMebibyte);
        QVERIFY(raster::AreaAt({blank}, {5, 5}).empty());
        QVERIFY(raster::EqualPixels(blank, {5, 5}).empty());
        QVERIFY(raster::AreaAt({comb}, {0, 0}).empty());
        QVERIFY(raster::EqualPixels(comb, {0, 0}).empty());
    }
    QCOMPARE(raster::PixelCount(raster::AreaAt({comb}, {0, 0})), qint64(2048 * 4096 + 2048));
}

QTEST_GUILESS_MAIN(tst_Flood)
#include "tst_Flood.moc"
