#include "layers/raster/TargaCodec.h"

#include "layers/raster/Mask.h"

#include "tests/support/LiteralTarga.h"
#include "tests/support/Masks.h"
#include "tests/support/TargaFiles.h"

#include <QtTest>

using raster::TargaError;
using raster::TargaPacking;
using raster::TargaResult;

class tst_TargaCodecWriting : public QObject
{
    Q_OBJECT

private slots:
    void TheHeaderSaysWhatFollows_data();
    void TheHeaderSaysWhatFollows();
    void RunsAreWrittenInPacketsOfAtMost128Pixels_data();
    void RunsAreWrittenInPacketsOfAtMost128Pixels();
    void RunsGoOnAcrossRowEnds();
    void RawDataHasNoPadding();
    void LargeMasksAreHandedOnInBlocks();
    void ANullMaskIsWrittenAsItsHeader();
    void TheWriterStopsWhenTheSinkDoes_data();
    void TheWriterStopsWhenTheSinkDoes();
    void TheWriterWritesWhatTheLiteralOneDoes();
    void WhatIsWrittenIsReadBackTheSame();
};

namespace {

QImage MaskOfIndices(QSize size, const QByteArray& indices)
{
    QImage mask = raster::BlankMask(size);
    for (int i = 0; i < indices.size(); ++i) {
        mask.scanLine(i / size.width())[i % size.width()] = static_cast<uchar>(indices.at(i));
    }
    return mask;
}

QSize RandomSize(Random& random)
{
    return {random.Between(1, 40), random.Between(1, 20)};
}

} // namespace

void tst_TargaCodecWriting::TheHeaderSaysWhatFollows_data()
{
    QTest::addColumn<int>("packing");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QByteArray>("header");
    const int raw = int(TargaPacking::Raw);
    const int runLength = int(TargaPacking::RunLength);
    QTest::newRow("raw") << raw << QSize(2, 1)
                         << QByteArray::fromHex("0000 03 0000 0000 00 0000 0000 0200 0100 08 20");
    QTest::newRow("run-length") << runLength << QSize(2, 1)
                                << QByteArray::fromHex(
                                       "0000 0b 0000 0000 00 0000 0000 0200 0100 08 20");
    QTest::newRow("two-byte sizes")
        << runLength << QSize(0x0123, 0x0456)
        << QByteArray::fromHex("0000 0b 0000 0000 00 0000 0000 2301 5604 08 20");
    QTest::newRow("longest sides")
        << runLength << QSize(65535, 1)
        << QByteArray::fromHex("0000 0b 0000 0000 00 0000 0000 ffff 0100 08 20");
}

void tst_TargaCodecWriting::TheHeaderSaysWhatFollows()
{
    QFETCH(int, packing);
    QFETCH(QSize, size);
    QFETCH(QByteArray, header);
    const QByteArray file = Encoded(raster::BlankMask(size), TargaPacking(packing));
    QCOMPARE(file.left(18).toHex(), header.toHex());
}

void tst_TargaCodecWriting::RunsAreWrittenInPacketsOfAtMost128Pixels_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QByteArray>("indices");
    QTest::addColumn<QByteArray>("packets");
    QTest::newRow("one pixel") << QSize(1, 1) << QByteArray(1, '\xff')
                               << QByteArray::fromHex("80ff");
    QTest::newRow("alternating") << QSize(4, 1) << QByteArray::fromHex("00ff00ff")
                                 << QByteArray::fromHex("8000 80ff 8000 80ff");
    QTest::newRow("indices other than set and clear")
        << QSize(4, 1) << QByteArray::fromHex("01017ffe") << QByteArray::fromHex("8101 807f 80fe");
    QTest::newRow("a run of 128") << QSize(128, 1) << QByteArray(128, '\xff')
                                  << QByteArray::fromHex("ffff");
    QTest::newRow("a run of 129") << QSize(129, 1) << QByteArray(129, '\xff')
                                  << QByteArray::fromHex("ffff 80ff");
    QTest::newRow("a run of 300") << QSize(300, 1) << QByteArray(300, '\xff')
                                  << QByteArray::fromHex("ffff ffff abff");
    QTest::newRow("a run of 300 in between")
        << QSize(304, 1) << QByteArray(2, '\0') + QByteArray(300, '\xff') + QByteArray(2, '\0')
        << QByteArray::fromHex("8100 ffff ffff abff 8100");
}

void tst_TargaCodecWriting::RunsAreWrittenInPacketsOfAtMost128Pixels()
{
    QFETCH(QSize, size);
    QFETCH(QByteArray, indices);
    QFETCH(QByteArray, packets);
    const QByteArray file = Encoded(MaskOfIndices(size, indices), TargaPacking::RunLength);
    QCOMPARE(file.mid(18).toHex(), packets.toHex());
}

void tst_TargaCodecWriting::RunsGoOnAcrossRowEnds()
{
    const QImage mask = MaskFromArt({"..###", "####.", "....."});
    QCOMPARE(Encoded(mask, TargaPacking::RunLength).mid(18).toHex(), QByteArray("810086ff8500"));
}

void tst_TargaCodecWriting::RawDataHasNoPadding()
{
    const QImage narrow = MaskFromArt({"..###", "####.", "....."});
    QCOMPARE(Encoded(narrow, TargaPacking::Raw).mid(18), Indices(narrow));
    const QImage aligned = MaskFromArt({"..##", "+##."});
    QCOMPARE(Encoded(aligned, TargaPacking::Raw).mid(18), Indices(aligned));
}

void tst_TargaCodecWriting::LargeMasksAreHandedOnInBlocks()
{
    // Alternating pixels give the longest data, with a packet for each pixel.
    QImage mask = raster::BlankMask({512, 512});
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = y % 2; x < mask.width(); x += 2) {
            mask.scanLine(y)[x] = raster::MaskSet;
        }
    }
    int calls = 0;
    QByteArray file;
    QVERIFY(
        raster::EncodeTarga(mask, TargaPacking::RunLength, [&](const char* bytes, qint64 count) {
            ++calls;
            file.append(bytes, static_cast<int>(count));
            return true;
        }));
    QVERIFY2(calls > 2 && calls < 10, QByteArray::number(calls).constData());
    QCOMPARE(file, literal::WriteTarga(mask, true));
    QCOMPARE(Decoded(file, mask.size()).mask, mask);
}

void tst_TargaCodecWriting::ANullMaskIsWrittenAsItsHeader()
{
    QCOMPARE(Encoded({}, TargaPacking::RunLength), TargaHeader(RunLengthType, {0, 0}));
    QCOMPARE(Encoded({}, TargaPacking::Raw), TargaHeader(RawType, {0, 0}));
}

void tst_TargaCodecWriting::TheWriterStopsWhenTheSinkDoes_data()
{
    QTest::addColumn<int>("packing");
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(64, 2), QSize(63, 3), QSize(768, 1024)}) {
        const QByteArray name = QByteArray::number(size.width());
        QTest::newRow((name + " raw").constData()) << int(TargaPacking::Raw) << size;
        QTest::newRow((name + " run-length").constData()) << int(TargaPacking::RunLength) << size;
    }
}

void tst_TargaCodecWriting::TheWriterStopsWhenTheSinkDoes()
{
    QFETCH(int, packing);
    QFETCH(QSize, size);
    QImage mask = raster::BlankMask(size);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            mask.scanLine(y)[x] = static_cast<uchar>(x);
        }
    }
    int callCount = 0;
    const auto countCalls = [&callCount](const char*, qint64) {
        ++callCount;
        return true;
    };
    QVERIFY(raster::EncodeTarga(mask, TargaPacking(packing), countCalls));
    QVERIFY(callCount >= 2);
    for (int failing = 1; failing <= callCount; ++failing) {
        int call = 0;
        const auto failOnce = [&](const char*, qint64) { return ++call != failing; };
        QVERIFY(!raster::EncodeTarga(mask, TargaPacking(packing), failOnce));
        QCOMPARE(call, failing);
    }
}

void tst_TargaCodecWriting::TheWriterWritesWhatTheLiteralOneDoes()
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        const QImage mask = RandomMask(random, RandomSize(random));
        QCOMPARE(Encoded(mask, TargaPacking::RunLength), literal::WriteTarga(mask, true));
        QCOMPARE(Encoded(mask, TargaPacking::Raw), literal::WriteTarga(mask, false));
    }
}

void tst_TargaCodecWriting::WhatIsWrittenIsReadBackTheSame()
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        const QImage mask = RandomMask(random, RandomSize(random));
        for (const TargaPacking packing : {TargaPacking::Raw, TargaPacking::RunLength}) {
            const TargaResult result = Decoded(Encoded(mask, packing), mask.size());
            QCOMPARE(result.error, TargaError::None);
            QCOMPARE(result.mask, mask);
        }
    }
}

QTEST_GUILESS_MAIN(tst_TargaCodecWriting)

#include "tst_TargaCodecWriting.moc"
