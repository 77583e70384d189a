#include "layers/raster/Mask.h"
#include "layers/raster/MaskDelta.h"
#include "layers/raster/SpillFile.h"
#include "tests/support/MaskEdit.h"
#include "tests/support/Masks.h"
#include "tests/support/Random.h"

#include <QBuffer>
#include <QTemporaryFile>
#include <QTest>
#include <QtEndian>

#include <limits>
#include <memory>
#include <optional>

using raster::MaskDelta;
using raster::SpillFile;

namespace {

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

/// Deltas that are moved to a file, written and read.
class tst_MaskDeltaFiles : public QObject
{
    Q_OBJECT

private slots:
    void RepeatsAChange();
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

void tst_MaskDeltaFiles::RepeatsAChange()
{
    Random random;
    for (const QSize size : MaskSizes) {
        MaskEdit edit = RandomMaskEdit(random, size);
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

void tst_MaskDeltaFiles::ComesBackFromAFile()
{
    Random random;
    const auto file = std::make_shared<SpillFile>(std::make_unique<QTemporaryFile>());
    std::vector<MaskEdit> edits;
    for (const QSize size : MaskSizes) {
        edits.push_back(RandomMaskEdit(random, size));
    }
    edits.push_back({random, RandomMask(random, {500, 500}), 3});
    for (MaskEdit& edit : edits) {
        QVERIFY(edit.delta.SpillTo(file));
        QVERIFY(edit.delta.IsSpilled() || edit.delta.IsEmpty());
    }
    for (int i = 0; i < 100; ++i) {
        MaskEdit& edit =
            edits[static_cast<std::size_t>(random.Below(static_cast<int>(edits.size())))];
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

void tst_MaskDeltaFiles::UsesRoomInTheFileAgain()
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

void tst_MaskDeltaFiles::KeepsEverythingWhenTheFileFails_data()
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

void tst_MaskDeltaFiles::KeepsEverythingWhenTheFileFails()
{
    QFETCH(const QString, what);
    QFETCH(const int, after);
    Random random;
    QImage start(300, 300, QImage::Format_Indexed8);
    start.setColorTable(raster::GreyTable());
    ChangeMask(random, start, {0, 0, 300, 150});
    ChangeMask(random, start, {0, 150, 300, 150});
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

void tst_MaskDeltaFiles::RefusesASpilledDeltaThatSomebodyChanged()
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

void tst_MaskDeltaFiles::ReadsWhatItWrote()
{
    Random random;
    for (int round = 0; round < 10; ++round) {
        for (const QSize size : MaskSizes) {
            MaskEdit edit = RandomMaskEdit(random, size);
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
    MaskEdit edit(random, many, 0);
    QVERIFY(edit.delta.Touch(many, many.rect()));
    const QByteArray written = Written(edit.delta);
    auto read = ReadBack(written, many.size());
    QVERIFY(read);
    QCOMPARE(Written(*read), written);
    QVERIFY(read->Swap(edit.mask));
    QCOMPARE(edit.mask, edit.before);
}

void tst_MaskDeltaFiles::RefusesBytesThatItDoesNotWrite_data()
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

void tst_MaskDeltaFiles::RefusesBytesThatItDoesNotWrite()
{
    QFETCH(const QByteArray, file);
    QFETCH(const bool, isGood);
    const auto delta = ReadBack(file, {65, 65});
    QCOMPARE(delta.has_value(), isGood);
    if (delta) {
        QCOMPARE(Written(*delta), file);
    }
}

void tst_MaskDeltaFiles::ReadsAnyBytes()
{
    Random random;
    for (int round = 0; round < 300; ++round) {
        const QSize size = MaskSizes[random.Below(int(std::size(MaskSizes)))];
        MaskEdit edit = RandomMaskEdit(random, size);
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

QTEST_GUILESS_MAIN(tst_MaskDeltaFiles)
#include "tst_MaskDeltaFiles.moc"
