#include "document/KnownFiles.h"
#include "tests/support/Files.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class tst_KnownFiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void OthersFilesAreNotKnown();
    void TellsWhetherAFileChanged_data();
    void TellsWhetherAFileChanged();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_KnownFiles::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_KnownFiles::OthersFilesAreNotKnown()
{
    KnownFiles files;
    files.Note(m_folder->filePath("a"));
    QVERIFY(files.Knows(m_folder->filePath("a")));
    QVERIFY(!files.Knows(m_folder->filePath("b")));
    QVERIFY(!files.HasChanged(m_folder->filePath("b")));
    QCOMPARE(files.Paths(), QStringList{m_folder->filePath("a")});
    files.Clear();
    QVERIFY(!files.Knows(m_folder->filePath("a")));
}

void tst_KnownFiles::TellsWhetherAFileChanged_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<int>("secondsLater");
    QTest::addColumn<bool>("hasChanged");

    // A null array stands for no file.
    QTest::newRow("nothing happened") << QByteArray("one") << QByteArray("one") << 0 << false;
    QTest::newRow("another length") << QByteArray("one") << QByteArray("three") << 0 << true;
    QTest::newRow("later") << QByteArray("one") << QByteArray("two") << 1 << true;
    QTest::newRow("empty") << QByteArray("one") << QByteArray("") << 0 << true;
    QTest::newRow("removed") << QByteArray("one") << QByteArray() << 0 << true;
    QTest::newRow("made") << QByteArray() << QByteArray("one") << 0 << true;
    QTest::newRow("made, and empty") << QByteArray() << QByteArray("") << 0 << true;
    QTest::newRow("still none") << QByteArray() << QByteArray() << 0 << false;
}

void tst_KnownFiles::TellsWhetherAFileChanged()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(int, secondsLater);
    QFETCH(bool, hasChanged);
    const QString path = m_folder->filePath("file");
    const QDateTime time = QDateTime::currentDateTime().addDays(-1);
    const auto write = [&path](const QByteArray& bytes, const QDateTime& when) {
        QFile::remove(path);
        if (!bytes.isNull()) {
            WriteBytes(path, bytes);
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.setFileTime(when, QFileDevice::FileModificationTime));
        }
    };
    write(before, time);
    KnownFiles files;
    files.Note(path);

    write(after, time.addSecs(secondsLater));

    QCOMPARE(files.HasChanged(path), hasChanged);
    files.Note(path);
    QVERIFY(!files.HasChanged(path));
}

QTEST_GUILESS_MAIN(tst_KnownFiles)
#include "tst_KnownFiles.moc"
