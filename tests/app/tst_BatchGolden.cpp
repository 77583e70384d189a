#include "tests/support/Files.h"
#include "tests/support/Program.h"

#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>
#include <QTest>

namespace {

using FileMap = QMap<QString, QByteArray>;

/// Every file below the folder, by its path in there.
FileMap FilesBelow(const QString& folder)
{
    FileMap files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        files.insert(QDir(folder).relativeFilePath(path), ReadBytes(path));
    }
    return files;
}

/// The lines of a file of the case, with {FOLDER} as the folder of the run.
QStringList Lines(const QString& path, const QString& folder)
{
    const QString text = QString::fromUtf8(ReadBytes(path)).replace("{FOLDER}", folder);
    return text.split('\n', Qt::SkipEmptyParts);
}

} // namespace

/// Runs each folder of tests/golden/batch; its README says what the files in there are.
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
        WriteBytes(folder.filePath(it.key()), it.value());
    }
    const ProgramRun run =
        RunProgram(QUILLMAP_PROGRAM, Lines(path + "/arguments.txt", folder.path()), folder.path(),
                   QProcessEnvironment::systemEnvironment());
    QCOMPARE(WithoutTimes(run.log), Lines(path + "/expected-stderr.txt", folder.path()));
    QCOMPARE(QByteArray::number(run.exitCode), ReadBytes(path + "/expected-exit.txt").trimmed());

    FileMap expected = project;
    const FileMap written = FilesBelow(path + "/expected");
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
