#include "layers/raster/MaskDelta.h"

#include "layers/raster/Mask.h"
#include "layers/raster/SpillFile.h"
#include "tests/support/MaskEdit.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Random.h"

#include <QBuffer>
#include <QTest>

#include <memory>
#include <numeric>

using raster::MaskDelta;
using raster::SpillFile;

namespace {

/// All bytes, those that pad the rows too.
QByteArray Bytes(const QImage& mask)
{
    return {reinterpret_cast<const char*>(mask.constBits()), static_cast<int>(mask.sizeInBytes())};
}

QRect Difference(const QImage& a, const QImage& b)
{
    QRect difference;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (a.constScanLine(y)[x] != b.constScanLine(y)[x]) {
                difference |= QRect(x, y, 1, 1);
            }
        }
    }
    return difference;
}

} // namespace

class tst_MaskDelta : public QObject
{
    Q_OBJECT

private slots:
    void SwapsBackAndForth();
    void TellsTheSmallestChangedRectangle();
    void KeepsATileAsItWasFirst();
    void RefusesOtherMasks();
    void DropsWhatDidNotChange();
    void TouchesAgainAfterItDropped();
    void ComparesWholeMasks();
    void TakesLittleMemory();
    void LeavesEverythingWithoutMemory();
};

void tst_MaskDelta::SwapsBackAndForth()
{
    Random random;
    for (int round = 0; round < 15; ++round) {
        for (const QSize size : MaskSizes) {
            MaskEdit edit(random, PaddedMask(random, RandomMask(random, size)),
                          1 + random.Below(4));
            QVERIFY(edit.isTouched);
            QVERIFY(edit.mask.isDetached());
            const uchar* const pixels = edit.mask.constBits();
            const QByteArray bytesAfter = Bytes(edit.mask);
            for (int i = 0; i < 2; ++i) {
                QVERIFY(edit.delta.Swap(edit.mask));
                QCOMPARE(Indices(edit.mask), Indices(edit.before));
                QVERIFY(edit.delta.Swap(edit.mask));
                QCOMPARE(Bytes(edit.mask), bytesAfter);
            }
            QCOMPARE(edit.mask.constBits(), pixels);
        }
    }
}

void tst_MaskDelta::TellsTheSmallestChangedRectangle()
{
    Random random;
    for (int round = 0; round < 20; ++round) {
        for (const QSize size : MaskSizes) {
            MaskEdit edit = RandomMaskEdit(random, size);
            const QRect expected = Difference(edit.before, edit.after);
            QCOMPARE(*edit.delta.Swap(edit.mask), expected);
            QCOMPARE(*edit.delta.Swap(edit.mask), expected);
        }
    }
    QImage mask = raster::BlankMask({100, 100});
    MaskDelta delta;
    QCOMPARE(*delta.Swap(mask), QRect());
    QVERIFY(delta.Touch(mask, mask.rect()));
    QCOMPARE(*delta.Swap(mask), QRect());
}

void tst_MaskDelta::KeepsATileAsItWasFirst()
{
    QImage mask = raster::BlankMask({130, 10});
    MaskDelta delta;
    QVERIFY(delta.Touch(mask, {60, 5, 1, 1}));
    const qint64 oneTile = delta.ByteCount();
    mask.fill(7);
    QVERIFY(delta.Touch(mask, {0, 0, 64, 10}));
    QCOMPARE(delta.ByteCount(), oneTile);
    QVERIFY(delta.Touch(mask, {-5, -5, 5, 5}));
    QVERIFY(delta.Touch(mask, QRect()));
    QCOMPARE(*delta.Swap(mask), QRect(0, 0, 64, 10));
    QCOMPARE(int(mask.constScanLine(9)[63]), 0);
    QCOMPARE(int(mask.constScanLine(9)[64]), 7);
}

void tst_MaskDelta::RefusesOtherMasks()
{
    QImage mask = raster::BlankMask({70, 70});
    MaskDelta delta;
    QVERIFY(delta.Touch(mask, mask.rect()));
    QImage other = FullMask({70, 71});
    QVERIFY(!delta.Touch(other, other.rect()));
    QVERIFY(!delta.Swap(other));
    QVERIFY(!delta.Present(other));
    QVERIFY(delta.DropUnchanged(other));
    QCOMPARE(other, FullMask({70, 71}));
    QImage argb(70, 70, QImage::Format_ARGB32);
    QVERIFY(!MaskDelta().Touch(argb, argb.rect()));
    QVERIFY(!MaskDelta::Between(mask, other));
    QVERIFY(!MaskDelta::Between(argb, argb));
    QVERIFY(!MaskDelta::Between({}, {}));
}

void tst_MaskDelta::DropsWhatDidNotChange()
{
    Random random;
    for (const QSize size : MaskSizes) {
        MaskEdit edit = RandomMaskEdit(random, size);
        const bool isChanged = !Difference(edit.before, edit.after).isEmpty();
        QCOMPARE(edit.delta.DropUnchanged(edit.mask), isChanged);
        QCOMPARE(edit.delta.IsEmpty(), !isChanged);
        QVERIFY(edit.delta.Swap(edit.mask));
        QCOMPARE(edit.mask, edit.before);
    }
    const QImage mask = RandomMask(random, {500, 500});
    MaskDelta delta;
    QVERIFY(!delta.DropUnchanged(mask));
    QVERIFY(delta.Touch(mask, mask.rect()));
    QVERIFY(!delta.DropUnchanged(mask));
    QVERIFY(delta.IsEmpty());
    QCOMPARE(delta.ByteCount(), MaskDelta().ByteCount());
}

void tst_MaskDelta::TouchesAgainAfterItDropped()
{
    QImage mask = raster::BlankMask({200, 64});
    MaskDelta delta;
    QVERIFY(delta.Touch(mask, mask.rect()));
    mask.scanLine(0)[70] = 1;
    QVERIFY(delta.DropUnchanged(mask));
    QVERIFY(delta.Touch(mask, mask.rect()));
    mask.fill(9);
    QCOMPARE(*delta.Swap(mask), mask.rect());
    QCOMPARE(mask, raster::BlankMask({200, 64}));
}

void tst_MaskDelta::ComparesWholeMasks()
{
    Random random;
    for (int round = 0; round < 20; ++round) {
        for (const QSize size : MaskSizes) {
            MaskEdit edit = RandomMaskEdit(random, size);
            auto delta = MaskDelta::Between(PaddedMask(random, edit.before), edit.after);
            QVERIFY(delta);
            QCOMPARE(delta->IsEmpty(), edit.before == edit.after);
            QVERIFY(delta->DropUnchanged(edit.after) != delta->IsEmpty());
            QVERIFY(delta->Swap(edit.mask));
            QCOMPARE(edit.mask, edit.before);
            QVERIFY(delta->Swap(edit.mask));
            QCOMPARE(edit.mask, edit.after);
        }
    }
}

void tst_MaskDelta::TakesLittleMemory()
{
    const QSize size(2048, 2048);
    constexpr qint64 tiles = 32 * 32;
    QImage mask = raster::BlankMask(size);
    MaskDelta clear;
    QVERIFY(clear.Touch(mask, mask.rect()));
    mask.scanLine(0)[0] = 1;
    QVERIFY(clear.DropUnchanged(mask));
    QVERIFY(clear.ByteCount() < 300);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            mask.scanLine(y)[x] = (x ^ y) & 1 ? 255 : 3;
        }
    }
    QImage after = CopyOf(mask);
    after.fill(255);
    auto filled = MaskDelta::Between(mask, after);
    QVERIFY(filled);
    QVERIFY(filled->ByteCount() < tiles * (64 * 64 / 8 + 8) + 8192);
    QVERIFY(filled->Swap(after));
    QCOMPARE(after, mask);
    QVERIFY(filled->ByteCount() < tiles * 8 + 1024);
    QVERIFY(filled->Swap(after));
    QVERIFY(filled->SpillTo(std::make_shared<SpillFile>(std::make_unique<QBuffer>())));
    QVERIFY(filled->ByteCount() < 256);
}

void tst_MaskDelta::LeavesEverythingWithoutMemory()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("The sanitizers take address space as they go.");
#endif
    QByteArray greys(8192, '\0');
    std::iota(greys.begin(), greys.end(), '\0');
    QImage mask = raster::BlankMask({8192, 8192});
    for (int y = 0; y < mask.height(); ++y) {
        std::copy(greys.cbegin(), greys.cend(), mask.scanLine(y));
    }
    MaskDelta delta;
    {
        const MemoryLimit limit(8 * AMebibyte);
        QVERIFY(!delta.Touch(mask, mask.rect()));
        QVERIFY(!MaskDelta::Between(mask, raster::BlankMask(mask.size())));
    }
    const QImage blank = raster::BlankMask(mask.size());
    auto filled = MaskDelta::Between(blank, mask);
    QVERIFY(filled);
    const QImage copy = CopyOf(mask);
    {
        const MemoryLimit limit(8 * AMebibyte);
        QVERIFY(!filled->Swap(mask));
        QVERIFY(!filled->Present(mask));
    }
    QVERIFY(mask == copy);
    QVERIFY(filled->Swap(mask));
    QVERIFY(mask == blank);
    const QImage sharing = mask;
    {
        const MemoryLimit limit(8 * AMebibyte);
        QVERIFY(!filled->Swap(mask));
    }
    QVERIFY(mask == sharing);
}

QTEST_GUILESS_MAIN(tst_MaskDelta)
#include "tst_MaskDelta.moc"
