#include "app/OutputFile.h"

#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"

#include <QtTest>

#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class OutputFileTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void aNewFileAppearsWithTheCommit();
    void theOldFileIsReplacedWithTheCommit();
    void textModeChangesNoByteHere();
    void withoutCommitTheOldFileStays();
    void aFileInAMissingFolderCannotBeOpened();
    void aDirectoryCannotBeOpened();
    void withoutANameNothingCanBeOpened();
    void aWriteThatIsTakenInPartFails();
    void aFailedFlushFails();
    void afterAFailedWriteNothingMoreIsWritten();
    void aFileThatCannotBePutInPlaceFailsTheCommit();
    void aLinkIsWrittenThrough();
    void aPipeIsWrittenInPlace();
    void aPipeThatNobodyReadsCannotBeOpened();
    void aFullDeviceFailsTheCommit();
    void aFileWhoseFolderTakesNoNewFileStaysAsItIs();
    void aNewFileInAFolderThatTakesNoneCannotBeOpened();

private:
    QString Target() const { return m_folder->filePath("target"); }
    QStringList FilesInFolder() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void OutputFileTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

QStringList OutputFileTest::FilesInFolder() const
{
    return QDir(m_folder->path()).entryList(QDir::Files | QDir::System, QDir::Name);
}

void OutputFileTest::aNewFileAppearsWithTheCommit()
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

void OutputFileTest::theOldFileIsReplacedWithTheCommit()
{
    WriteBytes(Target(), "the old content");
    OutputFile file(Target());
    QVERIFY(file.Open());
    QVERIFY(file.Write("new"));
    QCOMPARE(ReadBytes(Target()), QByteArray("the old content"));
    QVERIFY(file.Commit());
    QCOMPARE(ReadBytes(Target()), QByteArray("new"));
}

void OutputFileTest::textModeChangesNoByteHere()
{
    const QByteArray bytes("a\nb\r\n\0\n", 7);
    OutputFile file(Target());
    QVERIFY(file.Open(QIODevice::Text));
    QVERIFY(file.Write(bytes));
    QVERIFY(file.Commit());
    QCOMPARE(ReadBytes(Target()), bytes);
}

void OutputFileTest::withoutCommitTheOldFileStays()
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

void OutputFileTest::aFileInAMissingFolderCannotBeOpened()
{
    OutputFile file(m_folder->filePath("missing/target"));
    QVERIFY(!file.Open());
    QVERIFY(!file.ErrorString().isEmpty());
    QVERIFY(!QFile::exists(m_folder->filePath("missing")));
}

void OutputFileTest::aDirectoryCannotBeOpened()
{
    QVERIFY(QDir().mkdir(Target()));
    OutputFile file(Target());
    QVERIFY(!file.Open());
    QVERIFY(QFileInfo(Target()).isDir());
}

void OutputFileTest::withoutANameNothingCanBeOpened()
{
    OutputFile file({});
    QVERIFY(!file.Open());
    QVERIFY(!file.Commit());
}

void OutputFileTest::aWriteThatIsTakenInPartFails()
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

void OutputFileTest::aFailedFlushFails()
{
    WriteBytes(Target(), "old");
    OutputFile file(Target());
    QVERIFY(file.Open());
    const FileSizeLimit limit(4);
    // So little is buffered, and only the commit tells that there is no room for it.
    QVERIFY(file.Write("123456789"));
    QVERIFY(!file.Commit());
    QCOMPARE(ReadBytes(Target()), QByteArray("old"));
    QCOMPARE(FilesInFolder(), QStringList{"target"});
}

void OutputFileTest::afterAFailedWriteNothingMoreIsWritten()
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

void OutputFileTest::aFileThatCannotBePutInPlaceFailsTheCommit()
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

void OutputFileTest::aLinkIsWrittenThrough()
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

void OutputFileTest::aPipeIsWrittenInPlace()
{
    const QByteArray path = QFile::encodeName(Target());
    QCOMPARE(mkfifo(path.constData(), 0600), 0);
    // More than a pipe holds, so that the writer has to wait for the reader.
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

void OutputFileTest::aPipeThatNobodyReadsCannotBeOpened()
{
    QCOMPARE(mkfifo(QFile::encodeName(Target()).constData(), 0600), 0);
    OutputFile file(Target());
    QVERIFY(!file.Open());
    QVERIFY(!file.Commit());
    QVERIFY(QFileInfo::exists(Target()));
}

void OutputFileTest::aFullDeviceFailsTheCommit()
{
    OutputFile file("/dev/full");
    QVERIFY(file.Open());
    QVERIFY(file.Write("bytes"));
    QVERIFY(!file.Commit());
    QVERIFY(!QFileInfo("/dev/full").isFile());
}

void OutputFileTest::aFileWhoseFolderTakesNoNewFileStaysAsItIs()
{
    WriteBytes(Target(), "the old content");
    QVERIFY(QFile::setPermissions(Target(), QFile::Permissions(0x6666)));
    const ReadOnlyFolder readOnly(m_folder->path());
    OutputFile file(Target());
    QVERIFY(!file.Open());
    QVERIFY(!file.Commit());
    QCOMPARE(ReadBytes(Target()), QByteArray("the old content"));
}

void OutputFileTest::aNewFileInAFolderThatTakesNoneCannotBeOpened()
{
    const ReadOnlyFolder readOnly(m_folder->path());
    OutputFile file(Target());
    QVERIFY(!file.Open());
    QVERIFY(!QFile::exists(Target()));
}

QTEST_GUILESS_MAIN(OutputFileTest)

#include "tst_OutputFile.moc"
