#include "layers/raster/Morphology.h"

#include "layers/raster/Mask.h"
#include "layers/raster/SetOperations.h"

#include "tests/support/LiteralMorphology.h"

#include <QtTest>

using raster::BlankMask;
using raster::Complement;
using raster::Dilate;
using raster::Erode;

/// The reach of a pixel is stored in the narrowest type that the number of rows allows. Tests the
/// largest reach of each type, and one more.
class tst_MorphologyReach : public QObject
{
    Q_OBJECT

private slots:
    void SinglePixelsGrowToTheDisc_data();
    void SinglePixelsGrowToTheDisc();
};

namespace {

/// Whether dilating a pixel gives the disc around it, and whether eroding a hole in a full mask
/// does the same.
bool GrowsToTheDisc(QSize size, QPoint pixel, float radius)
{
    QImage mask = BlankMask(size);
    mask.setPixel(pixel, raster::MaskSet);
    QImage disc = BlankMask(size);
    for (int y = 0; y < size.height(); ++y) {
        uchar* row = disc.scanLine(y);
        for (int x = 0; x < size.width(); ++x) {
            if (literal::IsInDisc(radius, x - pixel.x(), y - pixel.y())) {
                row[x] = raster::MaskSet;
            }
        }
    }
    return Dilate(mask, radius) == disc && Erode(Complement(mask), radius) == Complement(disc);
}

/// The pixels of the corners, and one in the middle of the mask.
QVector<QPoint> Places(QSize size)
{
    const QRect all(QPoint(0, 0), size);
    return {all.topLeft(), all.topRight(), all.bottomLeft(), all.bottomRight(), all.center()};
}

void AddRow(QSize size, int radius)
{
    QTest::addRow("%d x %d, radius %d", size.width(), size.height(), radius) << size << radius;
}

} // namespace

void tst_MorphologyReach::SinglePixelsGrowToTheDisc_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("radius");
    for (const int radius : {253, 254, 255, 256}) {
        AddRow({3, 700}, radius);
    }
    for (const int radius : {32765, 32766, 32767, 32768}) {
        AddRow({2, 40000}, radius);
    }
    // Masks lower than the disc, and so wide that the disc does not cover them.
    for (const int height : {254, 255, 256, 257}) {
        AddRow({400, height}, 300);
    }
}

void tst_MorphologyReach::SinglePixelsGrowToTheDisc()
{
    QFETCH(QSize, size);
    QFETCH(int, radius);
    const QVector<QPoint> places = Places(size);
    for (const QPoint& place : places) {
        QVERIFY(GrowsToTheDisc(size, place, static_cast<float>(radius)));
    }
}

QTEST_APPLESS_MAIN(tst_MorphologyReach)

#include "tst_MorphologyReach.moc"
