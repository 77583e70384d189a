#include "layers/raster/TargaBands.h"

#include "layers/raster/Mask.h"
#include "tests/support/Masks.h"
#include "tests/support/Random.h"
#include "tests/support/TargaFiles.h"

#include <QTest>

#include <algorithm>

using raster::TargaBands;
using raster::TargaError;

namespace {

raster::ByteReader ReaderOf(const QByteArray& file)
{
    return [file](qint64 offset, uchar* to, qint64 count) {
        const qint64 present = qBound<qint64>(0, file.size() - offset, count);
        std::copy_n(file.constData() + offset, present, reinterpret_cast<char*>(to));
        return present;
    };
}

QByteArray Header(QSize size, bool isRunLength, bool isTopDown)
{
    return TargaHeader(isRunLength ? RunLengthType : RawType, size, isTopDown ? TopDown : BottomUp);
}

uchar RandomValue(Random& random)
{
    switch (random.Below(3)) {
    case 0:
        return raster::MaskClear;
    case 1:
        return raster::MaskSet;
    default:
        return static_cast<uchar>(random.Below(256));
    }
}

/// Packets of either kind that cross row ends, or plain bytes.
QByteArray RandomFile(Random& random, QSize size, bool isRunLength, bool isTopDown)
{
    QByteArray file = Header(size, isRunLength, isTopDown);
    const int pixels = size.width() * size.height();
    for (int pixel = 0; pixel < pixels;) {
        if (!isRunLength) {
            file += static_cast<char>(RandomValue(random));
            ++pixel;
            continue;
        }
        const int count = 1 + random.Below(128);
        const bool isRun = random.Below(2) == 0;
        file += static_cast<char>((count - 1) | (isRun ? 0x80 : 0));
        for (int i = 0; i < (isRun ? 1 : count); ++i) {
            file += static_cast<char>(RandomValue(random));
        }
        pixel += count;
    }
    return file;
}

/// The bands put together; the first is the lowest.
QImage Whole(TargaBands& bands, QSize size)
{
    QImage whole = raster::BlankMask(size);
    int bottom = size.height();
    for (int band = 0; band < bands.Count(); ++band) {
        const QImage rows = bands.Decode(band);
        if (rows.width() != size.width() || rows.height() > bottom) {
            return {};
        }
        bottom -= rows.height();
        for (int y = 0; y < rows.height(); ++y) {
            std::copy_n(rows.constScanLine(y), size.width(), whole.scanLine(bottom + y));
        }
    }
    return bottom == 0 ? whole : QImage();
}

raster::PixelCounts Counted(const QImage& mask)
{
    raster::PixelCounts counts;
    for (int y = 0; y < mask.height(); ++y) {
        const uchar* row = mask.constScanLine(y);
        for (int x = 0; x < mask.width(); ++x) {
            counts.Add(row[x], 1);
        }
    }
    return counts;
}

void CompareCounts(TargaBands& bands, const raster::PixelCounts& expected)
{
    raster::PixelCounts counts;
    QVERIFY(bands.CountPixels(counts));
    QCOMPARE(counts.clear, expected.clear);
    QCOMPARE(counts.set, expected.set);
    QCOMPARE(counts.other, expected.other);
}

} // namespace

class tst_TargaBands : public QObject
{
    Q_OBJECT

private slots:
    void BandsMakeTheWholeImage_data();
    void BandsMakeTheWholeImage();
    void CutOffFilesAreFilledAlike_data() { BandsMakeTheWholeImage_data(); }
    void CutOffFilesAreFilledAlike();
    void BytesBehindTheLastPixelAreLeftOut();
    void FilesThatShrinkFail_data();
    void FilesThatShrinkFail();
    void RefusesWhatTheDecoderRefuses();
    void ClearBandsAreKnown_data();
    void ClearBandsAreKnown();
    void BandsOutsideAreNull();
    void SizeIsThatOfTheHeader();
};

void tst_TargaBands::BandsMakeTheWholeImage_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("isRunLength");
    QTest::addColumn<bool>("isTopDown");
    for (const QSize size :
         {QSize(1, 1), QSize(5, 63), QSize(7, 64), QSize(300, 65), QSize(33, 200), QSize(1, 500)}) {
        for (const bool isRunLength : {true, false}) {
            for (const bool isTopDown : {true, false}) {
                QTest::addRow("%dx%d %s %s", size.width(), size.height(),
                              isRunLength ? "packets" : "raw", isTopDown ? "down" : "up")
                    << size << isRunLength << isTopDown;
            }
        }
    }
}

void tst_TargaBands::BandsMakeTheWholeImage()
{
    QFETCH(QSize, size);
    QFETCH(bool, isRunLength);
    QFETCH(bool, isTopDown);
    Random random;
    const QByteArray file = RandomFile(random, size, isRunLength, isTopDown);

    TargaBands bands(ReaderOf(file), file.size(), size);

    QCOMPARE(bands.Error(), TargaError::None);
    QVERIFY(!bands.IsCutOff());
    QCOMPARE(bands.Count(), (size.height() + 63) / 64);
    QCOMPARE(Whole(bands, size), Decoded(file, size).mask);
    CompareCounts(bands, Counted(Decoded(file, size).mask));
}

void tst_TargaBands::CutOffFilesAreFilledAlike()
{
    QFETCH(QSize, size);
    QFETCH(bool, isRunLength);
    QFETCH(bool, isTopDown);
    Random random;
    const QByteArray file = RandomFile(random, size, isRunLength, isTopDown);
    for (int i = 0; i < 60; ++i) {
        const QByteArray cut = file.left(18 + random.Below(file.size() - 18));

        TargaBands bands(ReaderOf(cut), cut.size(), size);

        QVERIFY(isRunLength || bands.IsCutOff());
        QCOMPARE(Whole(bands, size), Decoded(cut, size).mask);
        CompareCounts(bands, Counted(Decoded(cut, size).mask));
    }
}

void tst_TargaBands::BytesBehindTheLastPixelAreLeftOut()
{
    const QSize size(4, 2);
    const QByteArray file = Header(size, true, true) + QByteArray("\x83\xff\x83\x00", 4);
    qint64 lastByte = 0;
    const raster::ByteReader read = ReaderOf(file + QByteArray(1 << 20, '\x80'));
    const auto spy = [&](qint64 offset, uchar* to, qint64 count) {
        const qint64 present = read(offset, to, count);
        lastByte = offset + present;
        return present;
    };
    TargaBands bands(spy, file.size() + (1 << 20), size);
    lastByte = 0;

    QCOMPARE(Whole(bands, size), Decoded(file, size).mask);
    QCOMPARE(lastByte, qint64(file.size()));
}

void tst_TargaBands::FilesThatShrinkFail_data()
{
    QTest::addColumn<bool>("isRunLength");
    QTest::newRow("packets") << true;
    QTest::newRow("raw") << false;
}

void tst_TargaBands::FilesThatShrinkFail()
{
    QFETCH(bool, isRunLength);
    const QSize size(100, 100);
    Random random;
    const QByteArray file = RandomFile(random, size, isRunLength, false);
    qint64 bytesLeft = file.size();
    const raster::ByteReader read = ReaderOf(file);
    const auto shrinking = [&](qint64 offset, uchar* to, qint64 count) {
        return read(offset, to, qBound<qint64>(0, bytesLeft - offset, count));
    };
    TargaBands bands(shrinking, file.size(), size);
    QVERIFY(!bands.Decode(0).isNull());

    bytesLeft = file.size() / 2;
    QVERIFY(bands.Decode(1).isNull());
    QVERIFY(bands.HasFailed());
    raster::PixelCounts counts;
    // The counts of packets are already known.
    QCOMPARE(bands.CountPixels(counts), isRunLength);

    TargaBands shorter(shrinking, file.size(), size);
    QCOMPARE(shorter.HasFailed(), isRunLength);
    bytesLeft = 0;
    TargaBands empty(shrinking, file.size(), size);
    QVERIFY(empty.HasFailed());
    QCOMPARE(empty.Count(), 0);
    QVERIFY(empty.Decode(0).isNull());
}

void tst_TargaBands::RefusesWhatTheDecoderRefuses()
{
    const QByteArray good = Header({4, 4}, true, true);
    QByteArray withId = good;
    withId[0] = 1;
    QByteArray coloured = good;
    coloured[2] = 2;

    const auto errorOf = [](const QByteArray& file, QSize size) {
        return TargaBands(ReaderOf(file), file.size(), size).Error();
    };
    QCOMPARE(errorOf(good, {4, 4}), TargaError::None);
    QCOMPARE(errorOf(withId, {4, 4}), TargaError::TypeMismatch);
    QCOMPARE(errorOf(coloured, {4, 4}), TargaError::ColourFormat);
    QCOMPARE(errorOf(good, {4, 5}), TargaError::WrongSize);
    QCOMPARE(errorOf(Header({0, 0}, true, true), {0, 0}), TargaError::NoImage);
    QCOMPARE(errorOf({}, {4, 4}), TargaError::ColourFormat);
    QCOMPARE(TargaBands(ReaderOf(withId), withId.size(), {4, 4}).Count(), 0);
}

void tst_TargaBands::ClearBandsAreKnown_data()
{
    QTest::addColumn<bool>("isTopDown");
    QTest::newRow("down") << true;
    QTest::newRow("up") << false;
}

void tst_TargaBands::ClearBandsAreKnown()
{
    QFETCH(bool, isTopDown);
    const QSize size(128, 200);
    for (int setRow = 0; setRow < 200; ++setRow) {
        QByteArray file = Header(size, true, isTopDown);
        for (int row = 0; row < 200; ++row) {
            file += row == setRow ? QByteArray("\xff\x01", 2) : QByteArray("\xff\x00", 2);
        }
        TargaBands bands(ReaderOf(file), file.size(), size);
        for (int band = 0; band < bands.Count(); ++band) {
            const int fromBottom = isTopDown ? 199 - setRow : setRow;
            QCOMPARE(bands.IsClear(band), fromBottom / 64 != band);
        }
    }
    const QByteArray cut = Header(size, true, isTopDown) + QByteArray("\x80\xff", 2);
    TargaBands bands(ReaderOf(cut), cut.size(), size);
    QVERIFY(!bands.IsClear(0) && !bands.IsClear(3));
}

void tst_TargaBands::BandsOutsideAreNull()
{
    const QByteArray file = Header({4, 4}, true, true);
    TargaBands bands(ReaderOf(file), file.size(), {4, 4});
    QVERIFY(!bands.Decode(0).isNull());
    QVERIFY(bands.Decode(-1).isNull());
    QVERIFY(bands.Decode(1).isNull());
}

void tst_TargaBands::SizeIsThatOfTheHeader()
{
    QCOMPARE(raster::TargaSize(ReaderOf(Header({300, 70}, true, true))), QSize(300, 70));
    QCOMPARE(raster::TargaSize(ReaderOf(Header({300, 70}, true, true).left(17))), QSize(0, 0));
}

QTEST_APPLESS_MAIN(tst_TargaBands)
#include "tst_TargaBands.moc"
