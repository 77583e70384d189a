#include "layers/raster/TileCounts.h"

#include "layers/raster/Mask.h"
#include "tests/support/Masks.h"

#include <QtTest>

#include <algorithm>

using raster::Combining;
using raster::CountSide;
using raster::MaskPart;

namespace {

/// A place of a mask, and what lies within the layers beyond it.
QRect RandomRect(Random& random, const QImage& mask)
{
    const QPoint corner(random.Below(mask.width()), random.Below(mask.height()));
    const QSize size(random.Between(1, CountSide), random.Between(1, CountSide));
    return QRect(corner, size) & mask.rect();
}

MaskPart PartOf(const QImage& mask, const QRect& rect)
{
    return {mask.constScanLine(rect.top()) + rect.left(), mask.bytesPerLine(), rect.size()};
}

bool IsCovered(const QImage& mask, const QRect& rect, int x, int y)
{
    return x < rect.width() && y < rect.height() &&
           mask.pixelIndex(rect.topLeft() + QPoint(x, y)) != 0;
}

} // namespace

class tst_TileCounts : public QObject
{
    Q_OBJECT

private slots:
    void PartsAreCounted();
    void PartsAreCombined();
    void WholeSquaresAreCounted();
};

void tst_TileCounts::PartsAreCounted()
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        const QImage mask = RandomMask(random, {random.Between(1, 200), random.Between(1, 200)});
        const QRect rect = RandomRect(random, mask);
        int covered = 0;
        int greys = 0;
        QRect bounds;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                const int value = mask.pixelIndex(x, y);
                covered += value != 0 ? 1 : 0;
                greys += value != 0 && value != 255 ? 1 : 0;
                bounds |= value != 0 ? QRect(QPoint(x, y) - rect.topLeft(), QSize(1, 1)) : QRect();
            }
        }
        const raster::PartCount count = raster::CountPart(PartOf(mask, rect));
        QCOMPARE(int(count.covered), covered);
        QCOMPARE(int(count.greys), greys);
        if (covered > 0) {
            QCOMPARE(QRect(QPoint(count.left, count.top), QPoint(count.right, count.bottom)),
                     bounds);
        }
    }
}

/// Parts may have different sizes; what lies beyond is clear.
void tst_TileCounts::PartsAreCombined()
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        const int count = random.Between(1, 4);
        QVector<QImage> masks;
        QVector<QRect> rects;
        std::vector<MaskPart> parts;
        for (int k = 0; k < count; ++k) {
            masks.append(RandomMask(random, {random.Between(1, 200), random.Between(1, 200)}));
            rects.append(RandomRect(random, masks.constLast()));
            parts.push_back(PartOf(masks.constLast(), rects.constLast()));
        }
        int any = 0;
        int all = 0;
        for (int y = 0; y < CountSide; ++y) {
            for (int x = 0; x < CountSide; ++x) {
                int covered = 0;
                for (int k = 0; k < count; ++k) {
                    covered += IsCovered(masks[k], rects[k], x, y) ? 1 : 0;
                }
                any += covered > 0 ? 1 : 0;
                all += covered == count ? 1 : 0;
            }
        }
        QCOMPARE(raster::CountCombined(parts, Combining::Any), any);
        QCOMPARE(raster::CountCombined(parts, Combining::All), all);
    }
}

/// The sums by column leave no byte.
void tst_TileCounts::WholeSquaresAreCounted()
{
    const QSize size(CountSide, CountSide);
    QImage mask = FullMask(size);
    const raster::PartCount set = raster::CountPart(PartOf(mask, mask.rect()));
    QCOMPARE(int(set.covered), CountSide * CountSide);
    QCOMPARE(int(set.greys), 0);
    mask.fill(1);
    const raster::PartCount grey = raster::CountPart(PartOf(mask, mask.rect()));
    QCOMPARE(int(grey.covered), CountSide * CountSide);
    QCOMPARE(int(grey.greys), CountSide * CountSide);
    const MaskPart part = PartOf(mask, mask.rect());
    QCOMPARE(raster::CountCombined({part, part}, Combining::All), CountSide * CountSide);
}

QTEST_APPLESS_MAIN(tst_TileCounts)
#include "tst_TileCounts.moc"
