#include "layers/raster/MaskFingerprint.h"

#include "layers/raster/Mask.h"
#include "layers/raster/MaskTile.h"

#include "tests/support/Masks.h"

#include <QtTest>

#include <algorithm>

using raster::MaskFingerprint;

class tst_MaskFingerprint : public QObject
{
    Q_OBJECT

private slots:
    void TheHashIsThatOfOtherPrograms();
    void EqualMasksHaveEqualNumbers();
    void FollowsChangesByRectangle();
    void ReadsOnlyWhatWasTouched();
    void ReadsInSlices();
    void WhatIsNoMaskHasNone();

private:
    static quint64 Anew(const QImage& mask) { return MaskFingerprint().Of(mask); }
};

void tst_MaskFingerprint::TheHashIsThatOfOtherPrograms()
{
    uchar bytes[96];
    for (int i = 0; i < 96; ++i) {
        bytes[i] = static_cast<uchar>(i * 7);
    }

    QCOMPARE(raster::Hash64(bytes, 32, 0), Q_UINT64_C(0x91b0cb0931a8c629));
    QCOMPARE(raster::Hash64(bytes, 96, 5), Q_UINT64_C(0x9936a724ba1402f7));
}

void tst_MaskFingerprint::EqualMasksHaveEqualNumbers()
{
    Random random;
    for (int i = 0; i < 50; ++i) {
        const QSize size(1 + random.Below(200), 1 + random.Below(200));
        const QImage mask = RandomMask(random, size);
        QImage other = mask.copy();
        QCOMPARE(Anew(other), Anew(mask));
        const int y = random.Below(size.height());
        other.scanLine(y)[random.Below(size.width())] ^= uchar(1 << random.Below(8));
        QVERIFY(Anew(other) != Anew(mask));
    }
    // Clear masks of other sizes, and tiles that changed places.
    QVERIFY(Anew(raster::BlankMask({64, 128})) != Anew(raster::BlankMask({128, 64})));
    QImage left = raster::BlankMask({128, 64});
    QImage right = left.copy();
    std::fill_n(left.scanLine(3) + 5, 9, raster::MaskSet);
    std::fill_n(right.scanLine(3) + 64 + 5, 9, raster::MaskSet);
    QVERIFY(Anew(left) != Anew(right));
}

void tst_MaskFingerprint::FollowsChangesByRectangle()
{
    Random random;
    QImage mask = RandomMask(random, {300, 170});
    MaskFingerprint fingerprint;
    fingerprint.Of(mask);
    for (int i = 0; i < 200; ++i) {
        const QRect rect(random.Below(300) - 20, random.Below(170) - 20, 1 + random.Below(80),
                         1 + random.Below(80));
        const QRect part = rect & mask.rect();
        for (int y = part.top(); y <= part.bottom(); ++y) {
            std::fill_n(mask.scanLine(y) + part.left(), part.width(),
                        static_cast<uchar>(random.Below(256)));
        }
        fingerprint.Touch(rect);
        if (random.Below(3) == 0) {
            QCOMPARE(fingerprint.Of(mask), Anew(mask));
        }
    }
    mask.fill(9);
    fingerprint.TouchAll();
    QCOMPARE(fingerprint.Of(mask), Anew(mask));
}

void tst_MaskFingerprint::ReadsOnlyWhatWasTouched()
{
    QImage mask = raster::BlankMask({200, 200});
    MaskFingerprint fingerprint;
    const quint64 blank = fingerprint.Of(mask);
    mask.scanLine(0)[0] = 1;

    fingerprint.Touch({64, 64, 1, 1});
    QCOMPARE(fingerprint.Of(mask), blank);
    fingerprint.TouchTile(0);
    QCOMPARE(fingerprint.Of(mask), Anew(mask));
}

void tst_MaskFingerprint::ReadsInSlices()
{
    Random random;
    const QImage mask = RandomMask(random, {200, 130});
    MaskFingerprint fingerprint;
    int slices = 1;
    while (!fingerprint.Read(mask, [] { return true; })) {
        ++slices;
    }
    // One for each tile, and one that finds nothing left.
    QCOMPARE(slices, raster::TileCount(mask.size()) + 1);
    QCOMPARE(fingerprint.Of(mask), Anew(mask));
}

void tst_MaskFingerprint::WhatIsNoMaskHasNone()
{
    QCOMPARE(Anew(QImage()), Q_UINT64_C(0));
    QCOMPARE(Anew(QImage(5, 5, QImage::Format_ARGB32)), Q_UINT64_C(0));
}

QTEST_GUILESS_MAIN(tst_MaskFingerprint)
#include "tst_MaskFingerprint.moc"
