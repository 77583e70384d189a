#include "tests/support/Files.h"
#include "tests/support/Program.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

using FileMap = QMap<QString, QByteArray>;

/// The lines of a file of the case, including empty ones. {FOLDER} is replaced by the folder of the
/// run.
QStringList Lines(const QString& path, const QString& folder)
{
    QString text = QString::fromUtf8(ReadBytes(path)).replace("{FOLDER}", folder);
    if (text.isEmpty()) {
        return {};
    }
    if (text.endsWith('\n')) {
        text.chop(1);
    }
    return text.split('\n');
}

/// The content of a folder of the case, and the empty folders that git cannot store there.
FileMap FilesAndFolders(const QString& folder, const QStringList& emptyFolders)
{
    FileMap files = FilesBelow(folder);
    for (const QString& name : emptyFolders) {
        files.insert(name, {});
    }
    return files;
}

} // namespace

/// Runs the case in each folder of tests/golden/batch. The README there describes the files.
class tst_BatchGolden : public QObject
{
    Q_OBJECT

private slots:
    void CaseRunsAsExpected_data();
    void CaseRunsAsExpected();
};

void tst_BatchGolden::CaseRunsAsExpected_data()
{
    QTest::addColumn<QString>("path");
    const QDir cases(QUILLMAP_GOLDEN "/batch");
    const QStringList names = cases.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    QVERIFY(!names.isEmpty());
    for (const QString& name : names) {
        QTest::newRow(name.toUtf8()) << cases.filePath(name);
    }
}

void tst_BatchGolden::CaseRunsAsExpected()
{
    QFETCH(QString, path);
    const QTemporaryDir folder;
    const FileMap project = FilesBelow(path + "/project");
    QVERIFY(!project.isEmpty());
    for (auto it = project.begin(); it != project.end(); ++it) {
        if (it.key().endsWith('/')) {
            QVERIFY(QDir(folder.path()).mkpath(it.key()));
        } else {
            WriteBytes(folder.filePath(it.key()), it.value());
        }
    }
    const ProgramRun run =
        RunProgram(QUILLMAP_PROGRAM, Lines(path + "/arguments.txt", folder.path()), folder.path(),
                   QProcessEnvironment::systemEnvironment());
    QCOMPARE(WithoutTimes(run.log), Lines(path + "/expected-stderr.txt", folder.path()));
    QCOMPARE(QByteArray::number(run.exitCode), ReadBytes(path + "/expected-exit.txt").trimmed());

    FileMap expected = project;
    const FileMap written = FilesAndFolders(
        path + "/expected", Lines(path + "/expected-empty-folders.txt", folder.path()));
    for (auto it = written.begin(); it != written.end(); ++it) {
        expected.insert(it.key(), it.value());
    }
    const FileMap actual = FilesBelow(folder.path());
    QCOMPARE(actual.keys(), expected.keys());
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        QVERIFY2(actual.value(it.key()) == it.value(), qPrintable("other bytes: " + it.key()));
    }
}

QTEST_GUILESS_MAIN(tst_BatchGolden)
#include "tst_BatchGolden.moc"
