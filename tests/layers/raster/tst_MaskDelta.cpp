#include "layers/raster/MaskDelta.h"

#include "layers/raster/Mask.h"
#include "layers/raster/SpillFile.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Random.h"

#include <QBuffer>
#include <QTemporaryFile>
#include <QTest>
#include <QtEndian>

#include <cstring>
#include <limits>
#include <numeric>

using raster::MaskDelta;
using raster::SpillFile;

namespace {

constexpr QSize Sizes[] = {{1, 1},   {63, 63},   {64, 64},  {65, 65},  {64, 1},
                           {1, 130}, {200, 70},  {3, 300},  {128, 64}, {129, 191},
                           {64, 65}, {255, 257}, {320, 192}};

/// All bytes, those that pad the rows too.
QByteArray Bytes(const QImage& mask)
{
    return {reinterpret_cast<const char*>(mask.constBits()), static_cast<int>(mask.sizeInBytes())};
}

/// A mask with rows that are longer than their pixels, and of any bytes there.
QImage PaddedMask(Random& random, const QImage& mask)
{
    const int stride = (mask.width() + 3 + 4 * random.Below(5)) & ~3;
    auto* memory = new QByteArray(stride * mask.height(), '\x5A');
    for (int y = 0; y < mask.height(); ++y) {
        std::memcpy(memory->data() + y * stride, mask.constScanLine(y),
                    static_cast<std::size_t>(mask.width()));
    }
    QImage padded(
        reinterpret_cast<uchar*>(memory->data()), mask.width(), mask.height(), stride,
        QImage::Format_Indexed8, [](void* bytes) { delete static_cast<QByteArray*>(bytes); },
        memory);
    padded.setColorTable(raster::GreyTable());
    return padded;
}

/// A deep copy.
QImage CopyOf(const QImage& mask)
{
    QImage copy = raster::UnfilledCopy(mask);
    for (int y = 0; y < mask.height(); ++y) {
        std::memcpy(copy.scanLine(y), mask.constScanLine(y),
                    static_cast<std::size_t>(mask.width()));
    }
    return copy;
}

QRect RandomRect(Random& random, QSize size)
{
    const QPoint corner(random.Between(-20, size.width()), random.Between(-20, size.height()));
    return {corner,
            QSize(1 + random.Below(size.width() + 40), 1 + random.Below(size.height() + 40))};
}

/// One value, two values or any values.
void Change(Random& random, QImage& mask, const QRect& rect)
{
    const QRect part = rect & mask.rect();
    const int kind = random.Below(3);
    const auto a = static_cast<uchar>(random.Below(2) == 0 ? 255 : random.Below(256));
    const auto b = static_cast<uchar>(random.Below(2) == 0 ? 0 : random.Below(256));
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            const auto any = static_cast<uchar>(random.Below(256));
            mask.scanLine(y)[x] = kind == 0 ? a : kind == 1 ? (any % 2 == 0 ? a : b) : any;
        }
    }
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

/// A change of a mask, and what a delta knows of it.
struct Edit
{
    Edit(Random& random, const QImage& start, int steps)
        : before(CopyOf(start))
        , mask(start)
    {
        for (int i = 0; i < steps; ++i) {
            const QRect rect = RandomRect(random, mask.size());
            isTouched = delta.Touch(mask, rect) && isTouched;
            Change(random, mask, rect);
        }
        after = CopyOf(mask);
    }

    QImage before;
    QImage after;
    QImage mask;
    MaskDelta delta;
    bool isTouched = true;
};

Edit RandomEdit(Random& random, QSize size)
{
    return {random, RandomMask(random, size), 1 + random.Below(4)};
}

QByteArray Written(const MaskDelta& delta)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return delta.Write(buffer) ? buffer.data() : QByteArray();
}

std::optional<MaskDelta> ReadBack(QByteArray bytes, QSize size)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return MaskDelta::Read(buffer, size);
}

/// Fails where it is told to, as a disk does.
class BadDevice : public QBuffer
{
public:
    struct Faults
    {
        bool opens = true;
        bool seeks = true;
        qint64 writable = std::numeric_limits<qint64>::max();
        qint64 readable = std::numeric_limits<qint64>::max();
    };

    explicit BadDevice(std::shared_ptr<Faults> faults)
        : m_faults(std::move(faults))
    {
    }

    bool open(OpenMode mode) override { return m_faults->opens && QBuffer::open(mode); }
    bool seek(qint64 position) override { return m_faults->seeks && QBuffer::seek(position); }

protected:
    qint64 readData(char* to, qint64 count) override
    {
        count = qMin(count, m_faults->readable);
        m_faults->readable -= count;
        return QBuffer::readData(to, count);
    }
    qint64 writeData(const char* from, qint64 count) override
    {
        count = qMin(count, m_faults->writable);
        m_faults->writable -= count;
        return count > 0 ? QBuffer::writeData(from, count) : -1;
    }

private:
    std::shared_ptr<Faults> m_faults;
};

std::shared_ptr<SpillFile> MemoryFile()
{
    return std::make_shared<SpillFile>(std::make_unique<QBuffer>());
}

/// The bytes of a delta with these records of a mask of 65 x 65 pixels.
QByteArray FileOf(const QByteArray& records, quint32 width = 65, quint32 height = 65)
{
    QByteArray file(16, '\0');
    qToLittleEndian(width, file.data());
    qToLittleEndian(height, file.data() + 4);
    qToLittleEndian(quint64(records.size()), file.data() + 8);
    return file + records;
}

QByteArray Record(quint32 number, const QByteArray& packed)
{
    QByteArray record(4, '\0');
    qToLittleEndian(number, record.data());
    return record + packed;
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
    void RepeatsAChange();
    void TakesLittleMemory();
    void LeavesEverythingWithoutMemory();
    void ComesBackFromAFile();
    void UsesRoomInTheFileAgain();
    void KeepsEverythingWhenTheFileFails_data();
    void KeepsEverythingWhenTheFileFails();
    void RefusesASpilledDeltaThatSomebodyChanged();
    void ReadsWhatItWrote();
    void RefusesBytesThatItDoesNotWrite_data();
    void RefusesBytesThatItDoesNotWrite();
    void ReadsAnyBytes();
};

void tst_MaskDelta::SwapsBackAndForth()
{
    Random random;
    for (int round = 0; round < 15; ++round) {
        for (const QSize size : Sizes) {
            Edit edit(random, PaddedMask(random, RandomMask(random, size)), 1 + random.Below(4));
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
        for (const QSize size : Sizes) {
            Edit edit = RandomEdit(random, size);
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
    for (const QSize size : Sizes) {
        Edit edit = RandomEdit(random, size);
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
        for (const QSize size : Sizes) {
            Edit edit = RandomEdit(random, size);
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

void tst_MaskDelta::RepeatsAChange()
{
    Random random;
    for (const QSize size : Sizes) {
        Edit edit = RandomEdit(random, size);
        if (random.Below(2) == 0) {
            QVERIFY(edit.delta.SpillTo(MemoryFile()));
        }
        const auto present = edit.delta.Present(edit.mask);
        QVERIFY(present);
        auto repeated = ReadBack(Written(*present), size);
        QVERIFY(repeated);
        QVERIFY(repeated->Swap(edit.before));
        QCOMPARE(edit.before, edit.after);
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
    QVERIFY(filled->SpillTo(MemoryFile()));
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
}

void tst_MaskDelta::ComesBackFromAFile()
{
    Random random;
    const auto file = std::make_shared<SpillFile>(std::make_unique<QTemporaryFile>());
    std::vector<Edit> edits;
    for (const QSize size : Sizes) {
        edits.push_back(RandomEdit(random, size));
    }
    edits.push_back({random, RandomMask(random, {500, 500}), 3});
    for (Edit& edit : edits) {
        QVERIFY(edit.delta.SpillTo(file));
        QVERIFY(edit.delta.IsSpilled() || edit.delta.IsEmpty());
    }
    for (int i = 0; i < 100; ++i) {
        Edit& edit = edits[static_cast<std::size_t>(random.Below(static_cast<int>(edits.size())))];
        const QByteArray written = Written(edit.delta);
        QVERIFY(edit.delta.Swap(edit.mask));
        QVERIFY(!edit.delta.IsSpilled());
        QCOMPARE(edit.mask, edit.before);
        if (random.Below(2) == 0) {
            QVERIFY(edit.delta.SpillTo(file));
        }
        QVERIFY(edit.delta.Touch(edit.mask, edit.mask.rect()));
        QVERIFY(edit.delta.Swap(edit.mask));
        QCOMPARE(edit.mask, edit.after);
        QVERIFY(edit.delta.SpillTo(file));
        if (!edit.delta.IsEmpty()) {
            QVERIFY(!written.isEmpty());
        }
    }
    edits.clear();
    QCOMPARE(file->Length(), 0);
}

void tst_MaskDelta::UsesRoomInTheFileAgain()
{
    SpillFile file(std::make_unique<QBuffer>());
    QCOMPARE(file.Take(10), 0);
    QCOMPARE(file.Take(20), 10);
    QCOMPARE(file.Take(5), 30);
    QCOMPARE(file.Take(5), 35);
    file.GiveBack(0, 10);
    file.GiveBack(30, 5);
    QCOMPARE(file.Take(12), 40);
    QCOMPARE(file.Take(4), 0);
    QCOMPARE(file.Take(5), 4);
    QCOMPARE(file.Take(5), 30);
    file.GiveBack(4, 5);
    file.GiveBack(10, 20);
    QCOMPARE(file.Take(26), 4);
    QCOMPARE(file.Length(), 52);
    file.GiveBack(35, 5);
    file.GiveBack(40, 12);
    QCOMPARE(file.Length(), 35);
    file.GiveBack(0, 4);
    file.GiveBack(30, 5);
    file.GiveBack(4, 26);
    QCOMPARE(file.Length(), 0);
}

void tst_MaskDelta::KeepsEverythingWhenTheFileFails_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<int>("after");
    QTest::newRow("cannot be opened") << "open" << 0;
    QTest::newRow("cannot be positioned") << "seek" << 0;
    for (const int after : {0, 15, 16, 17, 500, 5000}) {
        QTest::addRow("writes %d bytes", after) << "write" << after;
        QTest::addRow("reads %d bytes", after) << "read" << after;
    }
    QTest::newRow("cannot be positioned later") << "seek later" << 0;
}

void tst_MaskDelta::KeepsEverythingWhenTheFileFails()
{
    QFETCH(const QString, what);
    QFETCH(const int, after);
    Random random;
    QImage start(300, 300, QImage::Format_Indexed8);
    start.setColorTable(raster::GreyTable());
    Change(random, start, {0, 0, 300, 150});
    Change(random, start, {0, 150, 300, 150});
    start.bits()[0] = 1;
    start.bits()[1] = 2;
    start.bits()[2] = 3;
    MaskDelta delta;
    QImage mask = CopyOf(start);
    QVERIFY(delta.Touch(mask, mask.rect()));
    mask.fill(77);
    QVERIFY(delta.DropUnchanged(mask));
    const QByteArray written = Written(delta);

    auto faults = std::make_shared<BadDevice::Faults>();
    const auto file = std::make_shared<SpillFile>(std::make_unique<BadDevice>(faults));
    faults->opens = what != "open";
    faults->seeks = what != "seek";
    faults->writable = what == "write" ? qMin(after, written.size() - 1) : faults->writable;
    const bool canSpill = what == "read" || what == "seek later";
    QCOMPARE(delta.SpillTo(file), canSpill);
    QCOMPARE(delta.IsSpilled(), canSpill);
    QCOMPARE(file->Length() > 0, canSpill);
    if (canSpill) {
        faults->seeks = what != "seek later";
        const qint64 readable = qMin(after, written.size() - 1);
        const QImage filled = CopyOf(mask);
        const auto fail = [&] { faults->readable = what == "read" ? readable : 0; };
        fail();
        QVERIFY(!delta.Swap(mask));
        fail();
        QVERIFY(!delta.Present(mask));
        fail();
        QVERIFY(!delta.Touch(mask, mask.rect()));
        fail();
        QVERIFY(delta.DropUnchanged(mask));
        fail();
        QCOMPARE(Written(delta), QByteArray());
        QVERIFY(delta.IsSpilled());
        QCOMPARE(mask, filled);
        *faults = BadDevice::Faults();
    }
    QCOMPARE(Written(delta), written);
    QVERIFY(delta.Swap(mask));
    QCOMPARE(mask, start);
}

void tst_MaskDelta::RefusesASpilledDeltaThatSomebodyChanged()
{
    QByteArray bytes;
    const auto file = std::make_shared<SpillFile>(std::make_unique<QBuffer>(&bytes));
    QImage mask = raster::BlankMask({100, 100});
    MaskDelta delta;
    QVERIFY(delta.Touch(mask, mask.rect()));
    mask.fill(1);
    QVERIFY(delta.SpillTo(file));
    // The number of the first tile.
    bytes[19] = '\x7F';
    QVERIFY(!delta.Swap(mask));
    QVERIFY(delta.IsSpilled());
    bytes[19] = '\0';
    QCOMPARE(*delta.Swap(mask), mask.rect());
}

void tst_MaskDelta::ReadsWhatItWrote()
{
    Random random;
    for (int round = 0; round < 10; ++round) {
        for (const QSize size : Sizes) {
            Edit edit = RandomEdit(random, size);
            if (!edit.delta.DropUnchanged(edit.mask)) {
                continue;
            }
            const QByteArray written = Written(edit.delta);
            for (int length = 0; length < written.size(); length += 1 + length / 9) {
                QVERIFY(!ReadBack(written.left(length), size));
            }
            QVERIFY(!ReadBack(written, size + QSize(1, 0)));
            QVERIFY(!ReadBack(written, QSize(0, 0)));
            auto read = ReadBack(written + "more", size);
            QVERIFY(read);
            QCOMPARE(Written(*read), written);
            QVERIFY(read->Swap(edit.mask));
            QCOMPARE(edit.mask, edit.before);
        }
    }
    // More than one block of memory, with records across their borders.
    const QImage many = PaddedMask(random, RandomMask(random, {1100, 1100}));
    Edit edit(random, many, 0);
    QVERIFY(edit.delta.Touch(many, many.rect()));
    const QByteArray written = Written(edit.delta);
    auto read = ReadBack(written, many.size());
    QVERIFY(read);
    QCOMPARE(Written(*read), written);
    QVERIFY(read->Swap(edit.mask));
    QCOMPARE(edit.mask, edit.before);
}

void tst_MaskDelta::RefusesBytesThatItDoesNotWrite_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("isGood");
    const QByteArray one("\0\x05", 2);
    const QByteArray bits(512, '\x0F');
    QByteArray pixels(4096, '\1');
    pixels[1] = '\2';
    pixels[2] = '\3';
    const auto record = [](quint32 number, const QByteArray& packed) {
        return Record(number, packed);
    };
    QTest::newRow("one value") << FileOf(record(0, one)) << true;
    QTest::newRow("two values") << FileOf(record(0, "\1\2\3" + bits)) << true;
    QTest::newRow("any values") << FileOf(record(0, "\2" + pixels)) << true;
    QTest::newRow("any order") << FileOf(record(3, one) + record(0, one)) << true;
    QTest::newRow("other width") << FileOf(record(0, one), 66, 65) << false;
    QTest::newRow("other height") << FileOf(record(0, one), 65, 0xFFFFFFFF) << false;
    QTest::newRow("tile beyond the mask") << FileOf(record(4, one)) << false;
    QTest::newRow("huge tile") << FileOf(record(0x7FFFFFFF, one)) << false;
    QTest::newRow("negative tile") << FileOf(record(0xFFFFFFFF, one)) << false;
    QTest::newRow("twice") << FileOf(record(1, one) + record(1, one)) << false;
    QTest::newRow("unknown kind") << FileOf(record(0, "\3\5")) << false;
    QTest::newRow("number only") << FileOf(record(0, "")) << false;
    QTest::newRow("half a number") << FileOf(record(0, one) + QByteArray(2, '\0')) << false;
    QTest::newRow("half a tile") << FileOf(record(0, "\2" + pixels.left(4095))) << false;
    QTest::newRow("two equal values") << FileOf(record(0, "\1\3\3" + bits)) << false;
    QTest::newRow("two values upside down") << FileOf(record(0, "\1\3\2" + bits)) << false;
    QTest::newRow("two values, one unused")
        << FileOf(record(0, "\1\2\3" + QByteArray(512, '\xFF'))) << false;
    QTest::newRow("any values, one used")
        << FileOf(record(0, "\2" + QByteArray(4096, '\1'))) << false;
    // Of the tile at the right border the mask has one column only.
    QTest::newRow("values beyond the border") << FileOf(record(1, "\2" + pixels)) << false;
    for (const quint64 length :
         {quint64(7), quint64(1) << 20, quint64(1) << 40, ~quint64(0), quint64(1) << 63}) {
        QByteArray file = FileOf(record(0, one));
        qToLittleEndian(length, file.data() + 8);
        QTest::addRow("%llu bytes", length) << file << false;
    }
}

void tst_MaskDelta::RefusesBytesThatItDoesNotWrite()
{
    QFETCH(const QByteArray, file);
    QFETCH(const bool, isGood);
    const auto delta = ReadBack(file, {65, 65});
    QCOMPARE(delta.has_value(), isGood);
    if (delta) {
        QCOMPARE(Written(*delta), file);
    }
}

void tst_MaskDelta::ReadsAnyBytes()
{
    Random random;
    for (int round = 0; round < 300; ++round) {
        const QSize size = Sizes[random.Below(int(std::size(Sizes)))];
        Edit edit = RandomEdit(random, size);
        QByteArray bytes = Written(edit.delta);
        for (int i = 1 + random.Below(4); i > 0; --i) {
            bytes[random.Below(bytes.size())] = static_cast<char>(random.Below(256));
        }
        auto delta = ReadBack(bytes, size);
        if (delta) {
            QVERIFY(bytes.startsWith(Written(*delta)));
            QVERIFY(delta->Swap(edit.mask));
            QVERIFY(delta->Swap(edit.mask));
            QCOMPARE(edit.mask, edit.after);
        }
    }
}

QTEST_GUILESS_MAIN(tst_MaskDelta)
#include "tst_MaskDelta.moc"
