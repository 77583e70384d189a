#include "layers/raster/Morphology.h"

#include "layers/raster/DiscShape.h"
#include "layers/raster/Mask.h"
#include "layers/raster/SetOperations.h"

#include "tests/support/LiteralMorphology.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Random.h"

#include <QtTest>

#include <algorithm>
#include <limits>

using literal::Step;
using raster::BlankMask;
using raster::Close;
using raster::Complement;
using raster::Dilate;
using raster::Erode;
using raster::Open;

class tst_Morphology : public QObject
{
    Q_OBJECT

private slots:
    void APixelGrowsToADisc_data();
    void APixelGrowsToADisc();
    void AFullMaskIsNotErodedFromTheBorders_data();
    void AFullMaskIsNotErodedFromTheBorders();
    void AnEmptyMaskStaysEmpty();
    void RadiiBelowAPixelChangeNothing_data();
    void RadiiBelowAPixelChangeNothing();
    void RadiiBeyondTheDiagonalChangeNothingMore();
    void GreyMasksBeyondTheDiagonalBecomeTheirExtremes_data();
    void GreyMasksBeyondTheDiagonalBecomeTheirExtremes();
    void OpeningRemovesWhatIsSmaller();
    void ClosingFillsWhatIsSmaller();
    void ResultsKeepTheColours();
    void OtherFormatsGiveNull_data();
    void OtherFormatsGiveNull();

    void DiscsEqualTheScanOfTheirOffsets();
    void SmallMasksEqualTheLiteralResult_data();
    void SmallMasksEqualTheLiteralResult();
    void LongMasksEqualTheLiteralResult_data();
    void LongMasksEqualTheLiteralResult();
    void ARowOfManyShortRunsGrowsToArcs_data();
    void ARowOfManyShortRunsGrowsToArcs();
    void BusyRowsOfHighMasksEqualTheLiteralResult();
    void SinglePixelsAtCornersEqualTheLiteralResult();
    void AllRadiiEqualTheLiteralResult();
    void GreyMasksThatLookBinaryAreNoticed();
    void OpenAndCloseAreTheirSteps();
    void FloatsAreComparedAtLargeRadii();
    void VeryHighMasksAreServed();
    void SweepsDoWithoutMemoryForEdges();
    void WithoutMemoryTheResultIsNull();
};

namespace {

constexpr quint64 Mebibyte = quint64(1) << 20;
constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinity = std::numeric_limits<float>::infinity();

QImage Filled(QSize size, uchar index)
{
    QImage mask = BlankMask(size);
    mask.fill(index);
    return mask;
}

QImage WithPixel(QSize size, QPoint pixel)
{
    QImage mask = BlankMask(size);
    mask.setPixel(pixel, raster::MaskSet);
    return mask;
}

/// The kinds of random masks.
enum class Content
{
    Noise,
    Sparse,
    Blocks,
    Grey,
    /// Noise and long gaps in the same row.
    HalfNoise,
    /// Lines whose distance is near that at which a row counts as busy.
    Lines,
    Even,
};

uchar RandomPixel(Random& random, Content content, int x, int y)
{
    switch (content) {
    case Content::Noise:
        return random.Below(2) != 0 ? 255 : 0;
    case Content::Sparse:
        return random.Below(60) == 0 ? 255 : 0;
    case Content::Blocks:
        return ((x / 7 + y / 5) % 3) != 0 ? 0 : 255;
    case Content::Grey:
        return static_cast<uchar>(random.Below(256));
    case Content::HalfNoise:
        return x % 100 < 50 && random.Below(2) != 0 ? 255 : 0;
    case Content::Lines:
        return x % (20 + y % 12) == 0 ? 255 : 0;
    case Content::Even:
        break;
    }
    return 0;
}

QImage RandomContent(Random& random, QSize size)
{
    const auto content = static_cast<Content>(random.Below(7));
    QImage mask = BlankMask(size);
    for (int y = 0; y < size.height(); ++y) {
        uchar* row = mask.scanLine(y);
        for (int x = 0; x < size.width(); ++x) {
            row[x] = RandomPixel(random, content, x, y);
        }
    }
    return random.Below(3) == 0 ? Complement(mask) : mask;
}

QString Describe(const QImage& mask, float radius)
{
    return QStringLiteral("%1x%2, radius %3")
        .arg(mask.width())
        .arg(mask.height())
        .arg(static_cast<double>(radius));
}

/// Whether dilation and erosion match the definition. Prints the case if they do not.
bool EqualsLiteral(const QImage& mask, float radius)
{
    const bool isEqual = Dilate(mask, radius) == literal::Apply(Step::Dilate, mask, radius) &&
                         Erode(mask, radius) == literal::Apply(Step::Erode, mask, radius);
    if (!isEqual) {
        qWarning("%s", qPrintable(Describe(mask, radius)));
    }
    return isEqual;
}

} // namespace

void tst_Morphology::APixelGrowsToADisc_data()
{
    QTest::addColumn<float>("radius");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("1") << 1.0F << QStringList{".......", ".......", "...#...", "..###..",
                                              "...#...", ".......", "......."};
    QTest::newRow("2") << 2.0F << QStringList{".......", "...#...", "..###..", ".#####.",
                                              "..###..", "...#...", "......."};
    QTest::newRow("3") << 3.0F << QStringList{"...#...", ".#####.", ".#####.", "#######",
                                              ".#####.", ".#####.", "...#..."};
}

void tst_Morphology::APixelGrowsToADisc()
{
    QFETCH(float, radius);
    QFETCH(QStringList, rows);
    const QImage pixel = WithPixel({7, 7}, {3, 3});
    QCOMPARE(ArtFromMask(Dilate(pixel, radius)), rows);
    QCOMPARE(Erode(Complement(pixel), radius), Complement(Dilate(pixel, radius)));
}

void tst_Morphology::AFullMaskIsNotErodedFromTheBorders_data()
{
    QTest::addColumn<float>("radius");
    for (const float radius : {1.0F, 2.0F, 5.0F, 13.0F, 30.0F, 200.0F}) {
        QTest::addRow("%g", static_cast<double>(radius)) << radius;
    }
}

void tst_Morphology::AFullMaskIsNotErodedFromTheBorders()
{
    QFETCH(float, radius);
    const QImage full = Filled({37, 29}, raster::MaskSet);
    QCOMPARE(Erode(full, radius), full);
    QCOMPARE(Dilate(full, radius), full);
}

void tst_Morphology::AnEmptyMaskStaysEmpty()
{
    const QImage empty = BlankMask({37, 29});
    for (const float radius : {1.0F, 3.0F, 25.0F, 300.0F}) {
        QCOMPARE(Dilate(empty, radius), empty);
        QCOMPARE(Erode(empty, radius), empty);
    }
}

void tst_Morphology::RadiiBelowAPixelChangeNothing_data()
{
    QTest::addColumn<float>("radius");
    for (const float radius : {0.0F, -5.0F, 0.99F, NotANumber, -Infinity}) {
        QTest::addRow("%g", static_cast<double>(radius)) << radius;
    }
}

void tst_Morphology::RadiiBelowAPixelChangeNothing()
{
    QFETCH(float, radius);
    const QImage mask = MaskFromArt({"#..", ".#+"});
    for (const QImage& result :
         {Dilate(mask, radius), Erode(mask, radius), Open(mask, radius), Close(mask, radius)}) {
        QCOMPARE(result, mask);
    }
}

void tst_Morphology::RadiiBeyondTheDiagonalChangeNothingMore()
{
    const QImage pixel = WithPixel({40, 30}, {0, 0});
    const QImage full = Filled({40, 30}, raster::MaskSet);
    for (const float radius : {50.0F, 51.0F, 30000.0F, 1e20F, Infinity}) {
        QCOMPARE(Dilate(pixel, radius), full);
        QCOMPARE(Erode(pixel, radius), BlankMask({40, 30}));
    }
    QVERIFY(Dilate(pixel, 48) != full);
}

void tst_Morphology::GreyMasksBeyondTheDiagonalBecomeTheirExtremes_data()
{
    QTest::addColumn<QSize>("size");
    // Visiting, for each row, all rows that it reaches would exceed the test's time limit.
    QTest::newRow("as high as masks get") << QSize(100, 65535);
    QTest::newRow("a row") << QSize(1001, 1);
    QTest::newRow("a column") << QSize(1, 1001);
}

/// Pixels outside do not count: the mask holds neither 0 nor 255.
void tst_Morphology::GreyMasksBeyondTheDiagonalBecomeTheirExtremes()
{
    QFETCH(QSize, size);
    QImage mask = Filled(size, 100);
    mask.scanLine(size.height() - 1)[0] = 7;
    mask.scanLine(0)[size.width() - 1] = 201;
    for (const float radius : {66000.0F, Infinity}) {
        QCOMPARE(Dilate(mask, radius), Filled(size, 201));
        QCOMPARE(Erode(mask, radius), Filled(size, 7));
        QCOMPARE(Open(mask, radius), Filled(size, 7));
    }
}

void tst_Morphology::OpeningRemovesWhatIsSmaller()
{
    const QImage mask = MaskFromArt({"#.......", "....#...", "...###..", "....#...", "........"});
    QCOMPARE(ArtFromMask(Open(mask, 1)),
             QStringList({"........", "....#...", "...###..", "....#...", "........"}));
}

void tst_Morphology::ClosingFillsWhatIsSmaller()
{
    const QImage mask = MaskFromArt({"#######", "#######", "###.###", "#######", "#######"});
    QCOMPARE(Close(mask, 1), Filled(mask.size(), raster::MaskSet));
}

void tst_Morphology::ResultsKeepTheColours()
{
    QImage mask = WithPixel({50, 50}, {10, 10});
    mask.setColor(7, qRgb(1, 2, 3));
    for (const QImage& result :
         {Dilate(mask, 1), Dilate(mask, 5), Erode(mask, 30), Open(mask, 3), Close(mask, 2)}) {
        QCOMPARE(result.format(), QImage::Format_Indexed8);
        QCOMPARE(result.colorTable(), mask.colorTable());
    }
}

void tst_Morphology::OtherFormatsGiveNull_data()
{
    QTest::addColumn<QImage>("image");
    QTest::newRow("null") << QImage();
    QTest::newRow("32 bits") << QImage(8, 8, QImage::Format_ARGB32_Premultiplied);
    QTest::newRow("8 bits, not indexed") << QImage(8, 8, QImage::Format_Grayscale8);
}

void tst_Morphology::OtherFormatsGiveNull()
{
    QFETCH(QImage, image);
    for (const QImage& result :
         {Dilate(image, 0), Erode(image, 0), Dilate(image, 3), Open(image, 3), Close(image, 3)}) {
        QVERIFY(result.isNull());
    }
}

void tst_Morphology::DiscsEqualTheScanOfTheirOffsets()
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        const float radius = static_cast<float>(random.Below(60)) / 4;
        const QVector<QPoint> offsets = literal::Disc(radius);
        const QImage mask = RandomContent(random, {random.Between(1, 30), random.Between(1, 20)});
        QCOMPARE(Dilate(mask, radius), literal::Apply(Step::Dilate, mask, offsets));
        QCOMPARE(Erode(mask, radius), literal::Apply(Step::Erode, mask, offsets));
    }
}

void tst_Morphology::SmallMasksEqualTheLiteralResult_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("longestSide");
    QTest::addColumn<int>("smallestRadius");
    QTest::addColumn<int>("largestRadius");
    QTest::newRow("next neighbours") << 1000 << 22 << 0 << 3;
    QTest::newRow("packed rows") << 600 << 30 << 0 << 20;
    // Only pictures with longer sides than the smallest of these radii are not filled as a whole.
    QTest::newRow("sweeps") << 120 << 60 << 21 << 50;
}

void tst_Morphology::SmallMasksEqualTheLiteralResult()
{
    QFETCH(int, count);
    QFETCH(int, longestSide);
    QFETCH(int, smallestRadius);
    QFETCH(int, largestRadius);
    Random random;
    for (int i = 0; i < count; ++i) {
        const QSize size(random.Between(1, longestSide), random.Between(1, longestSide));
        const QImage mask = RandomContent(random, size);
        const int parts = random.Below(2) == 0 ? 1 : 64;
        const int radius = random.Between(parts * smallestRadius, parts * largestRadius);
        QVERIFY(EqualsLiteral(mask, static_cast<float>(radius) / static_cast<float>(parts)));
    }
}

void tst_Morphology::LongMasksEqualTheLiteralResult_data()
{
    QTest::addColumn<QSize>("largest");
    QTest::addColumn<int>("largestRadius");
    // More than one vector of packed pixels, rows of many runs, and a reach beyond one byte.
    QTest::newRow("wide") << QSize(500, 3) << 60;
    QTest::newRow("high") << QSize(3, 700) << 400;
    QTest::newRow("very wide") << QSize(2000, 1) << 700;
}

void tst_Morphology::LongMasksEqualTheLiteralResult()
{
    QFETCH(QSize, largest);
    QFETCH(int, largestRadius);
    Random random;
    for (int i = 0; i < 40; ++i) {
        const QSize size(random.Between(1, largest.width()), random.Between(1, largest.height()));
        const QImage mask = RandomContent(random, size);
        QVERIFY(EqualsLiteral(mask, static_cast<float>(random.Below(largestRadius))));
    }
}

void tst_Morphology::ARowOfManyShortRunsGrowsToArcs_data()
{
    QTest::addColumn<int>("radius");
    QTest::addColumn<int>("period");
    QTest::addColumn<QPoint>("gap");
    for (const int radius : {25, 32, 60}) {
        const auto row = [radius](const char* name) -> QTestData& {
            return QTest::addRow("%s, radius %d", name, radius) << radius;
        };
        row("the whole row") << 20 << QPoint(0, 0);
        row("the longest gaps that count as short") << 24 << QPoint(0, 0);
        row("a long gap before them") << 10 << QPoint(0, 300);
        row("a gap of twice the known distances") << 10 << QPoint(1100, 1172);
        row("a long gap amidst them") << 10 << QPoint(1100, 1500);
        row("a long gap behind them") << 10 << QPoint(1300, 2000);
    }
}

/// Only one row is set, so each column of the result shows how far the row reaches there.
void tst_Morphology::ARowOfManyShortRunsGrowsToArcs()
{
    QFETCH(int, radius);
    QFETCH(int, period);
    QFETCH(QPoint, gap);
    QImage mask = BlankMask({2000, 2 * radius + 10});
    QImage expected = mask.copy();
    const int centerY = radius + 5;
    for (int center = period / 2; center < mask.width(); center += period) {
        if (center >= gap.x() && center < gap.y()) {
            continue;
        }
        mask.setPixel(center, centerY, raster::MaskSet);
        const int first = std::max(center - radius, 0);
        const int last = std::min(center + radius, mask.width() - 1);
        for (int y = 0; y < mask.height(); ++y) {
            for (int x = first; x <= last; ++x) {
                if (literal::IsInDisc(float(radius), x - center, y - centerY)) {
                    expected.scanLine(y)[x] = raster::MaskSet;
                }
            }
        }
    }
    QCOMPARE(Dilate(mask, float(radius)), expected);
    QCOMPARE(Erode(Complement(mask), float(radius)), Complement(expected));
}

/// Rows of many short runs that reach further than a byte counts. The rest is clear, or the literal
/// result would take minutes.
void tst_Morphology::BusyRowsOfHighMasksEqualTheLiteralResult()
{
    Random random;
    for (int i = 0; i < 12; ++i) {
        QImage mask = BlankMask({random.Between(100, 400), random.Between(300, 900)});
        for (int rows = random.Between(1, 3); rows > 0; --rows) {
            uchar* row = mask.scanLine(random.Below(mask.height()));
            const int period = random.Between(3, 31);
            for (int x = random.Below(period); x < mask.width(); x += period) {
                row[x] = raster::MaskSet;
            }
            std::fill_n(row + random.Below(mask.width() / 2), mask.width() / 3, uchar(0));
        }
        const auto radius = static_cast<float>(random.Between(256, 600));
        const QImage expected = literal::Apply(Step::Dilate, mask, radius);
        QCOMPARE(Dilate(mask, radius), expected);
        QCOMPARE(Erode(Complement(mask), radius), Complement(expected));
    }
}

void tst_Morphology::SinglePixelsAtCornersEqualTheLiteralResult()
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        const QSize size(random.Between(1, 50), random.Between(1, 50));
        const QRect all(QPoint(0, 0), size);
        const float radius = static_cast<float>(random.Below(80));
        for (const QPoint& corner :
             {all.topLeft(), all.topRight(), all.bottomLeft(), all.bottomRight()}) {
            const QImage pixel = WithPixel(size, corner);
            const QImage grown = Dilate(pixel, radius);
            for (int y = 0; y < size.height(); ++y) {
                for (int x = 0; x < size.width(); ++x) {
                    const bool isInDisc = literal::IsInDisc(radius, x - corner.x(), y - corner.y());
                    QCOMPARE(grown.constScanLine(y)[x], uchar(isInDisc ? 255 : 0));
                }
            }
            QCOMPARE(Erode(Complement(pixel), radius), Complement(grown));
        }
    }
}

void tst_Morphology::AllRadiiEqualTheLiteralResult()
{
    Random random;
    for (int radius = 0; radius <= 60; ++radius) {
        QVERIFY(EqualsLiteral(RandomContent(random, {31, 23}), static_cast<float>(radius)));
    }
}

void tst_Morphology::GreyMasksThatLookBinaryAreNoticed()
{
    // A single pixel that is neither set nor clear, far from the beginning.
    for (const uchar index : {uchar(1), uchar(128), uchar(254)}) {
        QImage mask = WithPixel({41, 41}, {5, 5});
        mask.scanLine(40)[40] = index;
        for (const float radius : {1.0F, 2.0F, 9.0F, 21.0F, 50.0F}) {
            QVERIFY(EqualsLiteral(mask, radius));
            QVERIFY(EqualsLiteral(Complement(mask), radius));
        }
    }
}

void tst_Morphology::OpenAndCloseAreTheirSteps()
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        const QImage mask = RandomContent(random, {random.Between(1, 24), random.Between(1, 24)});
        const float radius = static_cast<float>(random.Below(30));
        const QImage eroded = literal::Apply(Step::Erode, mask, radius);
        const QImage dilated = literal::Apply(Step::Dilate, mask, radius);
        QCOMPARE(Open(mask, radius), literal::Apply(Step::Dilate, eroded, radius));
        QCOMPARE(Close(mask, radius), literal::Apply(Step::Erode, dilated, radius));
    }
}

void tst_Morphology::FloatsAreComparedAtLargeRadii()
{
    // 5801 * 5801 + 1 * 1 is more than 5801 * 5801, but both are the same float.
    const QImage grown = Dilate(WithPixel({5803, 3}, {0, 0}), 5801);
    for (int y = 0; y < grown.height(); ++y) {
        for (int x = 0; x < grown.width(); ++x) {
            const bool isSet = grown.constScanLine(y)[x] == raster::MaskSet;
            QCOMPARE(isSet, literal::IsInDisc(5801, x, y));
        }
    }
    QVERIFY(grown.constScanLine(1)[5801] == raster::MaskSet);
}

void tst_Morphology::VeryHighMasksAreServed()
{
    // A reach beyond 16 bits.
    const QSize size(2, 40000);
    const QImage grown = Dilate(WithPixel(size, {0, 100}), 33000);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const bool isSet = grown.constScanLine(y)[x] == raster::MaskSet;
            QCOMPARE(isSet, literal::IsInDisc(33000, x, y - 100));
        }
    }
}

void tst_Morphology::SweepsDoWithoutMemoryForEdges()
{
    QImage mask = BlankMask({8192, 4100});
    for (int y = 0; y < mask.height(); ++y) {
        uchar* row = mask.scanLine(y);
        for (int x = y % 7; x < mask.width(); x += 40) {
            row[x] = raster::MaskSet;
        }
    }
    mask = Complement(mask);
    const QImage eroded = Erode(mask, 300);
    // The result, and a quarter of a byte a pixel.
    const MemoryLimit limit(44 * Mebibyte);
    QCOMPARE(Erode(mask, 300), eroded);
}

void tst_Morphology::WithoutMemoryTheResultIsNull()
{
    const QImage mask = WithPixel({8192, 8192}, {1, 1});
#ifdef __SANITIZE_ADDRESS__
    return; // The sanitizer ends the program when there is no memory.
#endif
    const MemoryLimit limit(Mebibyte);
    QVERIFY(Dilate(mask, 40).isNull());
    QVERIFY(Close(mask, 40).isNull());
}

QTEST_APPLESS_MAIN(tst_Morphology)

#include "tst_Morphology.moc"
