#include "tests/support/Files.h"
#include "tool/OutputSet.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

class tst_OutputSet : public QObject
{
    Q_OBJECT

private slots:
    void AllFilesTakeTheirPlaces();
    void FailureAtTheLastPutsAllBack();
    void TwoNamesOfOneFileArePutBack();
    void NothingIsLeftWithoutCommit();

private:
    /// Makes the files. Each contains its name.
    static void Make(OutputSet& output, const QStringList& names)
    {
        for (const QString& name : names) {
            QFile* file = output.Add(name);
            [&] { QVERIFY(file && file->write(name.toUtf8()) == name.size()); }();
        }
    }
};

void tst_OutputSet::AllFilesTakeTheirPlaces()
{
    const QTemporaryDir folder;
    WriteBytes(folder.filePath("b"), "old");
    {
        OutputSet output(folder.path());
        Make(output, {"a", "b", "c/d"});
        // Until Commit the old files are in place.
        QCOMPARE(ReadBytes(folder.filePath("b")), QByteArray("old"));
        QVERIFY(output.Commit());
    }
    QCOMPARE(FilesBelow(folder.path()),
             (QMap<QString, QByteArray>{{"a", "a"}, {"b", "b"}, {"c/", {}}, {"c/d", "c/d"}}));
}

void tst_OutputSet::FailureAtTheLastPutsAllBack()
{
    const QTemporaryDir folder;
    WriteBytes(folder.filePath("b"), "old");
    const QMap<QString, QByteArray> before = FilesBelow(folder.path());
    {
        OutputSet output(folder.path());
        Make(output, {"a", "b", "c/d"});
        output.Add("obstacle");
        WriteBytes(folder.filePath("obstacle/x"), "in the way");
        QVERIFY(!output.Commit());
    }
    QCOMPARE(ReadBytes(folder.filePath("obstacle/x")), QByteArray("in the way"));
    QVERIFY(QDir(folder.filePath("obstacle")).removeRecursively());
    QCOMPARE(FilesBelow(folder.path()), before);
}

void tst_OutputSet::TwoNamesOfOneFileArePutBack()
{
    const QTemporaryDir folder;
    WriteBytes(folder.filePath("a"), "old");
    QCOMPARE(symlink("a", qPrintable(folder.filePath("link"))), 0);
    {
        OutputSet output(folder.path());
        Make(output, {"a", "link"});
        output.Add("obstacle");
        QVERIFY(QDir(folder.path()).mkdir("obstacle"));
        QVERIFY(!output.Commit());
    }
    QCOMPARE(ReadBytes(folder.filePath("a")), QByteArray("old"));
    QCOMPARE(FilesBelow(folder.path()).keys(), (QStringList{"a", "link", "obstacle/"}));
}

void tst_OutputSet::NothingIsLeftWithoutCommit()
{
    const QTemporaryDir folder;
    {
        OutputSet output(folder.filePath("new/folder"));
        Make(output, {"a", "c/d"});
    }
    QCOMPARE(FilesBelow(folder.path()), (QMap<QString, QByteArray>()));
}

QTEST_APPLESS_MAIN(tst_OutputSet)
#include "tst_OutputSet.moc"
