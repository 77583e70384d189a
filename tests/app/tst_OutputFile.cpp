#include "app/OutputFile.h"

#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"

#include <QtTest>

#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Lock = std::shared_ptr<void> (*)(const QString&);

std::shared_ptr<void> LockFolder(const QString& path)
{
    return std::make_shared<ReadOnlyFolder>(path);
}

std::shared_ptr<void> MakeSticky(const QString& path)
{
    return std::make_shared<StickyFolder>(path);
}

} // namespace

Q_DECLARE_METATYPE(Lock)

class tst_OutputFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void ANewFileAppearsWithTheCommit();
    void TheOldFileIsReplacedWithTheCommit();
    void TextModeChangesNoByteHere();
    void WithoutCommitTheOldFileStays();
    void AFileInAMissingFolderCannotBeOpened();
    void ADirectoryCannotBeOpened();
    void WithoutANameNothingCanBeOpened();
    void AWriteThatIsTakenInPartFails();
    void AFailedFlushFails();
    void AfterAFailedWriteNothingMoreIsWritten();
    void AFileThatCannotBePutInPlaceFailsTheCommit();
    void ALinkIsWrittenThrough();
    void APipeIsWrittenInPlace();
    void APipeThatNobodyReadsCannotBeOpened();
    void AFullDeviceFailsTheCommit();
    void AFileThatCannotBeReplacedIsWrittenInPlace_data();
    void AFileThatCannotBeReplacedIsWrittenInPlace();
    void AFullDiskLeavesAFileThatCannotBeReplaced_data();
    void AFullDiskLeavesAFileThatCannotBeReplaced();
    void AReadOnlyFileWhoseFolderTakesNoNewFileStaysAsItIs();
    void ANewFileInAFolderThatTakesNoneCannotBeOpened();

private:
    QString Target() const { return m_folder->filePath("target"); }
    QStringList FilesInFolder() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_OutputFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

QStringList tst_OutputFile::FilesInFolder() const
{
    return QDir(m_folder->path()).entryList(QDir::Files | QDir::System, QDir::Name);
}

void tst_OutputFile::ANewFileAppearsWithTheCommit()
{
    OutputFile file(Target());
    QVERIFY(file.Open());
    QVERIFY(file.Write("ab", 2));
    QVERIFY(file.Write("cd"));
    QVERIFY(!QFile::exists(Target()));
    QVERIFY(file.Commit());
    QCOMPARE(ReadBytes(Target()), QByteArray("abcd"));
    QCOMPARE(FilesInFolder(), QStringList{"target"});
}

void tst_OutputFile::TheOldFileIsReplacedWithTheCommit()
{
    WriteBytes(Target(), "the old content");
    OutputFile file(Target());
    QVERIFY(file.Open());
    QVERIFY(file.Write("new"));
    QCOMPARE(ReadBytes(Target()), QByteArray("the old content"));
    QVERIFY(file.Commit());
    QCOMPARE(ReadBytes(Target()), QByteArray("new"));
}

void tst_OutputFile::TextModeChangesNoByteHere()
{
    const QByteArray bytes("a\nb\r\n\0\n", 7);
    OutputFile file(Target());
    QVERIFY(file.Open(QIODevice::Text));
    QVERIFY(file.Write(bytes));
    QVERIFY(file.Commit());
    QCOMPARE(ReadBytes(Target()), bytes);
}

void tst_OutputFile::WithoutCommitTheOldFileStays()
{
    WriteBytes(Target(), "old");
    {
        OutputFile file(Target());
        QVERIFY(file.Open());
        QVERIFY(file.Write("new"));
    }
    QCOMPARE(ReadBytes(Target()), QByteArray("old"));
    QCOMPARE(FilesInFolder(), QStringList{"target"});
}

void tst_OutputFile::AFileInAMissingFolderCannotBeOpened()
{
    OutputFile file(m_folder->filePath("missing/target"));
    QVERIFY(!file.Open());
    QVERIFY(!file.ErrorString().isEmpty());
    QVERIFY(!QFile::exists(m_folder->filePath("missing")));
}

void tst_OutputFile::ADirectoryCannotBeOpened()
{
    QVERIFY(QDir().mkdir(Target()));
    OutputFile file(Target());
    QVERIFY(!file.Open());
    QVERIFY(QFileInfo(Target()).isDir());
}

void tst_OutputFile::WithoutANameNothingCanBeOpened()
{
    OutputFile file({});
    QVERIFY(!file.Open());
    QVERIFY(!file.Commit());
}

void tst_OutputFile::AWriteThatIsTakenInPartFails()
{
    WriteBytes(Target(), "old");
    OutputFile file(Target());
    QVERIFY(file.Open());
    const FileSizeLimit limit(40000);
    QVERIFY(!file.Write(QByteArray(100000, 'x')));
    QVERIFY(!file.Commit());
    QCOMPARE(ReadBytes(Target()), QByteArray("old"));
    QCOMPARE(FilesInFolder(), QStringList{"target"});
}

void tst_OutputFile::AFailedFlushFails()
{
    WriteBytes(Target(), "old");
    OutputFile file(Target());
    QVERIFY(file.Open());
    const FileSizeLimit limit(4);
    // So few bytes stay in the buffer, and only the commit finds that there is no room.
    QVERIFY(file.Write("123456789"));
    QVERIFY(!file.Commit());
    QCOMPARE(ReadBytes(Target()), QByteArray("old"));
    QCOMPARE(FilesInFolder(), QStringList{"target"});
}

void tst_OutputFile::AfterAFailedWriteNothingMoreIsWritten()
{
    OutputFile file(Target());
    QVERIFY(file.Open());
    {
        const FileSizeLimit limit(40000);
        QVERIFY(!file.Write(QByteArray(100000, 'x')));
    }
    QVERIFY(!file.Write("there is room for this"));
    QVERIFY(!file.Commit());
    QCOMPARE(FilesInFolder(), QStringList());
}

void tst_OutputFile::AFileThatCannotBePutInPlaceFailsTheCommit()
{
    WriteBytes(Target(), "old");
    OutputFile file(Target());
    QVERIFY(file.Open());
    QVERIFY(file.Write("new"));
    const RenamesFail fail;
    QVERIFY(!file.Commit());
    QCOMPARE(ReadBytes(Target()), QByteArray("old"));
    QCOMPARE(FilesInFolder(), QStringList{"target"});
}

void tst_OutputFile::ALinkIsWrittenThrough()
{
    WriteBytes(m_folder->filePath("pointed"), "old");
    QVERIFY(QFile::link("pointed", Target()));
    OutputFile file(Target());
    QVERIFY(file.Open());
    QVERIFY(file.Write("new"));
    QVERIFY(file.Commit());
    QVERIFY(QFileInfo(Target()).isSymLink());
    QCOMPARE(ReadBytes(m_folder->filePath("pointed")), QByteArray("new"));
}

void tst_OutputFile::APipeIsWrittenInPlace()
{
    const QByteArray path = QFile::encodeName(Target());
    QCOMPARE(mkfifo(path.constData(), 0600), 0);
    // More than a pipe can hold, so that the writer must wait for the reader.
    const QByteArray bytes(1000000, 'x');
    QFile pipe;
    QVERIFY(pipe.open(open(path.constData(), O_RDONLY | O_NONBLOCK), QIODevice::ReadOnly,
                      QFileDevice::AutoCloseHandle));
    OutputFile file(Target());
    QVERIFY(file.Open());
    QCOMPARE(fcntl(pipe.handle(), F_SETFL, O_RDONLY), 0);
    QByteArray received;
    std::thread reader([&] { received = pipe.readAll(); });
    const bool isWritten = file.Write(bytes) && file.Commit();
    reader.join();
    QVERIFY(isWritten);
    QVERIFY(received == bytes);
    QVERIFY(!QFileInfo(Target()).isFile());
}

void tst_OutputFile::APipeThatNobodyReadsCannotBeOpened()
{
#ifdef QUILLMAP_PORTABLE
    QSKIP("Only Linux opens a pipe without waiting for a reader.");
#endif
    QCOMPARE(mkfifo(QFile::encodeName(Target()).constData(), 0600), 0);
    OutputFile file(Target());
    QVERIFY(!file.Open());
    QVERIFY(!file.Commit());
    QVERIFY(QFileInfo::exists(Target()));
}

void tst_OutputFile::AFullDeviceFailsTheCommit()
{
    OutputFile file("/dev/full");
    QVERIFY(file.Open());
    QVERIFY(file.Write("bytes"));
    QVERIFY(!file.Commit());
    QVERIFY(!QFileInfo("/dev/full").isFile());
}

void tst_OutputFile::AFileThatCannotBeReplacedIsWrittenInPlace_data()
{
    QTest::addColumn<Lock>("lock");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isInGroup");
    for (const auto& [lock, name] : {std::pair(Lock(LockFolder), "read-only folder"),
                                     std::pair(Lock(MakeSticky), "sticky folder")}) {
        QTest::addRow("%s, longer", name) << lock << QByteArray(100000, 'x') << false;
        QTest::addRow("%s, shorter", name) << lock << QByteArray("new") << false;
        QTest::addRow("%s, empty", name) << lock << QByteArray() << false;
        QTest::addRow("%s, in a group", name) << lock << QByteArray("new") << true;
    }
}

void tst_OutputFile::AFileThatCannotBeReplacedIsWrittenInPlace()
{
    QFETCH(Lock, lock);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isInGroup);
    if (lock == MakeSticky && geteuid() != 0) {
        QSKIP("Only root can make a file that another user cannot replace.");
    }
    WriteBytes(Target(), "the old content");
    QVERIFY(QFile::setPermissions(Target(), QFile::Permissions(0x6666)));
    // Keeps the file from being replaced by one of equal bytes.
    QFile reader(Target());
    QVERIFY(reader.open(QIODevice::ReadOnly));
    const std::shared_ptr<void> folder = lock(m_folder->path());

    const auto group = isInGroup ? std::make_unique<OutputGroup>() : nullptr;
    OutputFile file(Target());
    QVERIFY2(file.Open(), qPrintable(file.ErrorString()));
    QVERIFY(file.Write(bytes));
    QCOMPARE(ReadBytes(Target()), QByteArray("the old content"));
    QVERIFY2(file.Commit(), qPrintable(file.ErrorString()));
    QVERIFY(!group || group->Commit());

    QCOMPARE(ReadBytes(Target()), bytes);
    QCOMPARE(reader.readAll(), bytes);
}

void tst_OutputFile::AFullDiskLeavesAFileThatCannotBeReplaced_data()
{
    QTest::addColumn<bool>("isTemporaryFolderFull");
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("isWritten");
    QTest::newRow("no room for the made file") << true << 50000 << false;
    QTest::newRow("no room behind the end") << false << 50000 << false;
    QTest::newRow("no more room needed") << false << 10000 << true;
}

void tst_OutputFile::AFullDiskLeavesAFileThatCannotBeReplaced()
{
    QFETCH(bool, isTemporaryFolderFull);
    QFETCH(int, length);
    QFETCH(bool, isWritten);
    if (geteuid() != 0) {
        QSKIP("Only root can make a small disk.");
    }
    const QString disk = m_folder->filePath("disk");
    const QString path = disk + "/target";
    QVERIFY(QDir().mkdir(disk));
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7777)));
    const SmallDisk small(disk, 128 * 1024);
    QVERIFY(small.IsThere());
    const QByteArray old(20000, 'o');
    WriteBytes(path, old);
    QVERIFY(QFile::setPermissions(path, QFile::Permissions(0x6666)));
    FillUp(disk);
    const QByteArray before = qgetenv("TMPDIR");
    if (isTemporaryFolderFull) {
        const QString temporary = disk + "/temporary";
        QVERIFY(QDir().mkdir(temporary));
        QVERIFY(QFile::setPermissions(temporary, QFile::Permissions(0x7777)));
        qputenv("TMPDIR", QFile::encodeName(temporary));
    }
    const ReadOnlyFolder folder(disk);

    OutputFile file(path);
    QVERIFY2(file.Open(), qPrintable(file.ErrorString()));
    const QByteArray bytes(length, 'n');
    QCOMPARE(file.Write(bytes) && file.Commit(), isWritten);
    QCOMPARE(file.ErrorString(), isWritten ? QString() : QString("No space left on device"));
    QCOMPARE(ReadBytes(path) == (isWritten ? bytes : old), true);
    before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before);
}

void tst_OutputFile::AReadOnlyFileWhoseFolderTakesNoNewFileStaysAsItIs()
{
    WriteBytes(Target(), "the old content");
    QVERIFY(QFile::setPermissions(Target(), QFile::Permissions(0x4444)));
    const ReadOnlyFolder readOnly(m_folder->path());
    OutputFile file(Target());
    QVERIFY(!file.Open());
    QVERIFY(!file.Commit());
    QCOMPARE(ReadBytes(Target()), QByteArray("the old content"));
}

void tst_OutputFile::ANewFileInAFolderThatTakesNoneCannotBeOpened()
{
    const ReadOnlyFolder readOnly(m_folder->path());
    OutputFile file(Target());
    QVERIFY(!file.Open());
    QVERIFY(!QFile::exists(Target()));
}

QTEST_GUILESS_MAIN(tst_OutputFile)

#include "tst_OutputFile.moc"
