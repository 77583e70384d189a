#include "layers/raster/TargaCodec.h"

#include "layers/raster/Mask.h"

#include "tests/support/LiteralTarga.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/TargaFiles.h"

#include <QtTest>

using raster::TargaError;
using raster::TargaPacking;
using raster::TargaResult;

Q_DECLARE_METATYPE(raster::TargaError)

class tst_TargaCodecReading : public QObject
{
    Q_OBJECT

private slots:
    void FilesThatAreNoMaskOfTheSizeAreRefused_data();
    void FilesThatAreNoMaskOfTheSizeAreRefused();
    void HeaderFieldsWithoutMeaningAreIgnored_data();
    void HeaderFieldsWithoutMeaningAreIgnored();
    void RowsAreStoredFromTheTopOnlyWhenTheDescriptorSaysSo_data();
    void RowsAreStoredFromTheTopOnlyWhenTheDescriptorSaysSo();
    void SixteenBitPixelsAreReadByteByByte();
    void MasksHaveTheGreyTable();
    void PacketsAreDecoded_data();
    void PacketsAreDecoded();
    void MissingRawBytesAreThoseOfTheRowBefore_data();
    void MissingRawBytesAreThoseOfTheRowBefore();
    void FilesCutOffAnywhereAreReadLikeTheLiteralReaderDoes_data();
    void FilesCutOffAnywhereAreReadLikeTheLiteralReaderDoes();
    void RandomPacketsAreReadLikeTheLiteralReaderDoes();
    void BytesBehindThoseOfTheMaskAreIgnored();
    void LargeMasksAreDecodedInPlace_data();
    void LargeMasksAreDecodedInPlace();
    void ClearPixelsTakeNoMemory_data();
    void ClearPixelsTakeNoMemory();
    void SizesWithoutAnImageGiveNone_data();
    void SizesWithoutAnImageGiveNone();
    void TheHeaderAloneTellsWhatIsRefused_data();
    void TheHeaderAloneTellsWhatIsRefused();
    void TheMostBytesAreThoseOfOnePacketAPixel_data();
    void TheMostBytesAreThoseOfOnePacketAPixel();
};

void tst_TargaCodecReading::FilesThatAreNoMaskOfTheSizeAreRefused_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<TargaError>("error");
    const QByteArray good = TargaHeader(RawType, {4, 2});
    const auto with = [&good](int offset, char byte) {
        QByteArray header = good;
        header[offset] = byte;
        return header;
    };
    QTest::newRow("good") << good << TargaError::None;
    QTest::newRow("identification") << with(0, 1) << TargaError::TypeMismatch;
    QTest::newRow("colour map") << with(1, 1) << TargaError::TypeMismatch;
    for (int type = 0; type < 256; ++type) {
        QTest::newRow(("type " + QByteArray::number(type)).constData())
            << with(2, static_cast<char>(type))
            << (type % 4 == 3 ? TargaError::None : TargaError::ColourFormat);
    }
    QTest::newRow("too narrow") << with(12, 3) << TargaError::WrongSize;
    QTest::newRow("too wide") << with(13, 1) << TargaError::WrongSize;
    QTest::newRow("too low") << with(14, 1) << TargaError::WrongSize;
    QTest::newRow("too high") << with(15, 1) << TargaError::WrongSize;
    QTest::newRow("sides swapped") << TargaHeader(RawType, {2, 4}) << TargaError::WrongSize;
    QTest::newRow("identification before colour")
        << QByteArray::fromHex("0100020000") << TargaError::TypeMismatch;
    QTest::newRow("colour before size") << TargaHeader(2, {9, 9}) << TargaError::ColourFormat;
    QTest::newRow("empty") << QByteArray() << TargaError::ColourFormat;
    QTest::newRow("only the type") << QByteArray::fromHex("000003") << TargaError::WrongSize;
    QTest::newRow("only half of the height") << good.left(15) << TargaError::None;
}

void tst_TargaCodecReading::FilesThatAreNoMaskOfTheSizeAreRefused()
{
    QFETCH(QByteArray, header);
    QFETCH(TargaError, error);
    const TargaResult result = Decoded(header, {4, 2});
    QCOMPARE(result.error, error);
    QCOMPARE(result.mask.isNull(), error != TargaError::None);
}

void tst_TargaCodecReading::HeaderFieldsWithoutMeaningAreIgnored_data()
{
    QTest::addColumn<int>("offset");
    for (const int offset : {3, 4, 5, 6, 7, 8, 9, 10, 11, 16}) {
        QTest::newRow(("byte " + QByteArray::number(offset)).constData()) << offset;
    }
}

void tst_TargaCodecReading::HeaderFieldsWithoutMeaningAreIgnored()
{
    QFETCH(int, offset);
    const QImage mask = MaskFromArt({"#..", ".#."});
    QByteArray file = Encoded(mask, TargaPacking::RunLength);
    file[offset] = '\xff';
    QCOMPARE(Decoded(file, mask.size()).mask, mask);
}

void tst_TargaCodecReading::RowsAreStoredFromTheTopOnlyWhenTheDescriptorSaysSo_data()
{
    QTest::addColumn<char>("imageType");
    QTest::addColumn<char>("descriptor");
    QTest::addColumn<bool>("isTopDown");
    for (const char type : {RawType, RunLengthType, char(7), char(15)}) {
        const QByteArray name = "type " + QByteArray::number(type);
        QTest::newRow((name + ", 00").constData()) << type << '\x00' << false;
        QTest::newRow((name + ", 20").constData()) << type << '\x20' << true;
        QTest::newRow((name + ", df").constData()) << type << '\xdf' << false;
        QTest::newRow((name + ", ff").constData()) << type << '\xff' << true;
    }
}

void tst_TargaCodecReading::RowsAreStoredFromTheTopOnlyWhenTheDescriptorSaysSo()
{
    QFETCH(char, imageType);
    QFETCH(char, descriptor);
    QFETCH(bool, isTopDown);
    const QStringList art = {"#....", ".##..", "+...#"};
    const QImage mask = MaskFromArt(art);
    const bool isRunLength = (imageType & 8) != 0;
    QByteArray file = literal::WriteTarga(mask, isRunLength);
    file[2] = imageType;
    file[17] = descriptor;
    const QStringList flipped = {"+...#", ".##..", "#...."};
    QCOMPARE(ArtFromMask(Decoded(file, mask.size()).mask), isTopDown ? art : flipped);
}

void tst_TargaCodecReading::SixteenBitPixelsAreReadByteByByte()
{
    QByteArray file = TargaHeader(RawType, {2, 2}) + QByteArray::fromHex("01020304 05060708");
    file[16] = 16;
    const TargaResult result = Decoded(file, {2, 2});
    QCOMPARE(result.error, TargaError::None);
    QCOMPARE(Indices(result.mask).toHex(), QByteArray("01020304"));
}

void tst_TargaCodecReading::MasksHaveTheGreyTable()
{
    const QImage mask = Decoded(TargaHeader(RawType, {3, 3}), {3, 3}).mask;
    QCOMPARE(mask.format(), QImage::Format_Indexed8);
    QCOMPARE(mask.colorTable(), raster::GreyTable());
}

void tst_TargaCodecReading::PacketsAreDecoded_data()
{
    QTest::addColumn<QByteArray>("packets");
    QTest::addColumn<QByteArray>("indices");
    // All masks are 4 x 2 pixels.
    QTest::newRow("one run") << QByteArray::fromHex("87 09") << QByteArray("0909090909090909");
    QTest::newRow("one raw packet")
        << QByteArray::fromHex("07 0102030405060708") << QByteArray("0102030405060708");
    QTest::newRow("run and raw") << QByteArray::fromHex("82 ff 04 0102030405")
                                 << QByteArray("ffffff0102030405");
    QTest::newRow("clear after set")
        << QByteArray::fromHex("80 ff 86 00") << QByteArray("ff00000000000000");
    QTest::newRow("a run past the end is cut off")
        << QByteArray::fromHex("83 01 ff 02") << QByteArray("0101010102020202");
    QTest::newRow("raw pixels past the end are cut off")
        << QByteArray::fromHex("83 01 05 020304050607") << QByteArray("0101010102030405");
    QTest::newRow("the last run goes on")
        << QByteArray::fromHex("80 01 80 02") << QByteArray("0102020202020202");
    QTest::newRow("the last raw pixel goes on")
        << QByteArray::fromHex("01 0102") << QByteArray("0102020202020202");
    QTest::newRow("a raw packet that ends early")
        << QByteArray::fromHex("07 010203") << QByteArray("0102030303030303");
    QTest::newRow("a run without its value")
        << QByteArray::fromHex("80 05 81") << QByteArray("0505050505050505");
    QTest::newRow("a raw packet without pixels")
        << QByteArray::fromHex("80 05 03") << QByteArray("0505050505050505");
    QTest::newRow("a first run without its value")
        << QByteArray::fromHex("ff") << QByteArray("0000000000000000");
    QTest::newRow("no packet") << QByteArray() << QByteArray("0000000000000000");
}

void tst_TargaCodecReading::PacketsAreDecoded()
{
    QFETCH(QByteArray, packets);
    QFETCH(QByteArray, indices);
    const TargaResult result = Decoded(TargaHeader(RunLengthType, {4, 2}) + packets, {4, 2});
    QCOMPARE(result.error, TargaError::None);
    QCOMPARE(Indices(result.mask).toHex(), indices);
}

void tst_TargaCodecReading::MissingRawBytesAreThoseOfTheRowBefore_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("indices");
    // All masks are 3 x 3 pixels.
    QTest::newRow("all there") << QByteArray::fromHex("010203 040506 070809")
                               << QByteArray("010203040506070809");
    QTest::newRow("a part of the last row")
        << QByteArray::fromHex("010203 040506 07") << QByteArray("010203040506070506");
    QTest::newRow("a part of the second row")
        << QByteArray::fromHex("010203 0405") << QByteArray("010203040503040503");
    QTest::newRow("one row") << QByteArray::fromHex("010203") << QByteArray("010203010203010203");
    QTest::newRow("a part of the first row")
        << QByteArray::fromHex("0102") << QByteArray("010200010200010200");
    QTest::newRow("none") << QByteArray() << QByteArray("000000000000000000");
}

void tst_TargaCodecReading::MissingRawBytesAreThoseOfTheRowBefore()
{
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, indices);
    const QImage mask = Decoded(TargaHeader(RawType, {3, 3}) + data, {3, 3}).mask;
    QCOMPARE(Indices(mask).toHex(), indices);
}

void tst_TargaCodecReading::FilesCutOffAnywhereAreReadLikeTheLiteralReaderDoes_data()
{
    QTest::addColumn<bool>("isRunLength");
    QTest::addColumn<char>("descriptor");
    QTest::newRow("raw, top down") << false << TopDown;
    QTest::newRow("raw, bottom up") << false << BottomUp;
    QTest::newRow("run-length, top down") << true << TopDown;
    QTest::newRow("run-length, bottom up") << true << BottomUp;
}

void tst_TargaCodecReading::FilesCutOffAnywhereAreReadLikeTheLiteralReaderDoes()
{
    QFETCH(bool, isRunLength);
    QFETCH(char, descriptor);
    Random random;
    for (const QSize size : {QSize(1, 1), QSize(16, 9), QSize(13, 11), QSize(33, 17)}) {
        QByteArray file = literal::WriteTarga(RandomMask(random, size), isRunLength);
        file[17] = descriptor;
        for (int length = 0; length <= file.size(); ++length) {
            const QByteArray part = file.left(length);
            QCOMPARE(Decoded(part, size).mask, literal::ReadTarga(part, size));
        }
    }
}

void tst_TargaCodecReading::RandomPacketsAreReadLikeTheLiteralReaderDoes()
{
    Random random;
    for (int i = 0; i < 2000; ++i) {
        const QSize size{random.Between(1, 40), random.Between(1, 20)};
        QByteArray file = TargaHeader(static_cast<char>(3 + 4 * random.Below(4)), size,
                                      random.Below(2) == 0 ? TopDown : BottomUp);
        for (int count = random.Below(size.width() * size.height() * 2); count > 0; --count) {
            // Short packets and clear pixels are frequent, so that all branches are tested.
            const int byte = random.Below(2) == 0 ? random.Below(256) : 128 * random.Below(2);
            file.append(static_cast<char>(byte + random.Below(2) * random.Below(20)));
        }
        QCOMPARE(Decoded(file, size).mask, literal::ReadTarga(file, size));
    }
}

void tst_TargaCodecReading::BytesBehindThoseOfTheMaskAreIgnored()
{
    const QImage mask = MaskFromArt({"##..#", ".#+#."});
    for (const TargaPacking packing : {TargaPacking::Raw, TargaPacking::RunLength}) {
        const QByteArray file = Encoded(mask, packing) + "trailing bytes";
        QCOMPARE(Decoded(file, mask.size()).mask, mask);
    }
}

void tst_TargaCodecReading::LargeMasksAreDecodedInPlace_data()
{
    QTest::addColumn<char>("imageType");
    QTest::addColumn<char>("descriptor");
    QTest::newRow("raw, top-down") << RawType << TopDown;
    QTest::newRow("raw, bottom-up") << RawType << BottomUp;
    QTest::newRow("run-length, top-down") << RunLengthType << TopDown;
    QTest::newRow("run-length, bottom-up") << RunLengthType << BottomUp;
}

void tst_TargaCodecReading::LargeMasksAreDecodedInPlace()
{
    QFETCH(char, imageType);
    QFETCH(char, descriptor);
    // Such rows are padded in memory.
    const QSize size(65535, 4000);
    const MemoryLimit limit(320 * AMebibyte);
    const TargaResult result = Decoded(TargaHeader(imageType, size, descriptor), size);
    QCOMPARE(result.error, TargaError::None);
    QCOMPARE(result.mask.size(), size);
}

void tst_TargaCodecReading::ClearPixelsTakeNoMemory_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<QByteArray>("packets");
    QTest::addColumn<char>("imageType");
    QTest::addColumn<char>("descriptor");
    const QByteArray packets = QByteArray("\xff\0", 2).repeated(1 << 16);
    for (const int width : {32764, 32765}) {
        for (const char descriptor : {TopDown, BottomUp}) {
            const QByteArray name =
                QByteArray::number(width) + (descriptor == TopDown ? ", top-down" : ", bottom-up");
            QTest::newRow((name + ", run-length").constData())
                << width << packets << RunLengthType << descriptor;
            QTest::newRow((name + ", raw").constData())
                << width << QByteArray() << RawType << descriptor;
        }
    }
}

void tst_TargaCodecReading::ClearPixelsTakeNoMemory()
{
    QFETCH(int, width);
    QFETCH(QByteArray, packets);
    QFETCH(char, imageType);
    QFETCH(char, descriptor);
    const QSize size(width, 4000);
    const quint64 before = ResidentMemory();
    const TargaResult result = Decoded(TargaHeader(imageType, size, descriptor) + packets, size);
    QVERIFY(ResidentMemory() < before + 40 * AMebibyte);
    QCOMPARE(result.mask.size(), size);
}

void tst_TargaCodecReading::SizesWithoutAnImageGiveNone_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<TargaError>("error");
    QTest::newRow("nothing") << QSize(0, 0) << TargaError::NoImage;
    QTest::newRow("no width") << QSize(0, 5) << TargaError::NoImage;
    QTest::newRow("no height") << QSize(5, 0) << TargaError::NoImage;
    QTest::newRow("negative") << QSize(-1, -1) << TargaError::WrongSize;
    QTest::newRow("longer than files can say") << QSize(65536, 1) << TargaError::WrongSize;
}

void tst_TargaCodecReading::SizesWithoutAnImageGiveNone()
{
    QFETCH(QSize, size);
    QFETCH(TargaError, error);
    const TargaResult result = Decoded(TargaHeader(RawType, size), size);
    QCOMPARE(result.error, error);
    QVERIFY(result.mask.isNull());
}

void tst_TargaCodecReading::TheHeaderAloneTellsWhatIsRefused_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<TargaError>("error");
    const QByteArray good = TargaHeader(RawType, {5, 3});
    QTest::newRow("good") << good << TargaError::None;
    QTest::newRow("good, and more") << good + "bytes" << TargaError::None;
    QTest::newRow("no bytes") << QByteArray() << TargaError::ColourFormat;
    QTest::newRow("cut off") << good.left(12) << TargaError::WrongSize;
    QTest::newRow("image identification")
        << good.mid(2, 1) + good.mid(1) << TargaError::TypeMismatch;
    QTest::newRow("another size") << TargaHeader(RawType, {5, 4}) << TargaError::WrongSize;
}

void tst_TargaCodecReading::TheHeaderAloneTellsWhatIsRefused()
{
    QFETCH(QByteArray, header);
    QFETCH(TargaError, error);
    const auto* bytes = reinterpret_cast<const uchar*>(header.constData());
    QCOMPARE(raster::CheckTargaHeader(bytes, header.size(), {5, 3}), error);
}

void tst_TargaCodecReading::TheMostBytesAreThoseOfOnePacketAPixel_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("usual") << QSize(2048, 2048) << qint64(8388626);
    QTest::newRow("none") << QSize(0, 0) << qint64(18);
    QTest::newRow("negative") << QSize(-5, -5) << qint64(18);
    QTest::newRow("one side negative") << QSize(-5, 5) << qint64(18);
    QTest::newRow("largest") << QSize(65535, 65535) << qint64(8589672468);
    QTest::newRow("larger than an image can be")
        << QSize(2147483647, 2147483647) << qint64(9223372028264841236);
}

void tst_TargaCodecReading::TheMostBytesAreThoseOfOnePacketAPixel()
{
    QFETCH(QSize, size);
    QFETCH(qint64, bytes);
    QCOMPARE(raster::TargaMaxBytes(size), bytes);
}

QTEST_GUILESS_MAIN(tst_TargaCodecReading)

#include "tst_TargaCodecReading.moc"
