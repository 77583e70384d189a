#include "tests/support/Files.h"
#include "tests/support/Program.h"
#include "tests/support/Random.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// A program that does nothing but save or export the example is killed at random moments.
/// QUILLMAP_KILLS sets how often.
class tst_KilledSaves : public QObject
{
    Q_OBJECT

private slots:
    void EachFileIsWhollyTheOldOrTheNewOne_data();
    void EachFileIsWhollyTheOldOrTheNewOne();

private:
    using Files = QMap<QString, QByteArray>;

    static void MakeProject(const QString& folder);
    /// What the folder holds after so many runs.
    static Files Saved(const QByteArray& way, const char* count);
    static void KillOnce(const QString& folder, const QByteArray& way, int milliseconds);
};

/// The example, and a document beside it that makes a wholly different output.
void tst_KilledSaves::MakeProject(const QString& folder)
{
    Files files = FilesBelow(QUILLMAP_EXAMPLE_FOLDER);
    for (auto it = files.begin(); it != files.end(); ++it) {
        if (it.key().endsWith(".tga") || it.key() == "highlands.xml") {
            WriteBytes(folder + '/' + it.key(), it.value());
        }
    }
    QByteArray document = files["highlands.xml"];
    document.replace("15360", "12000").replace(" r=\"", " r=\"1");
    WriteBytes(folder + "/other/highlands.xml", document);
}

tst_KilledSaves::Files tst_KilledSaves::Saved(const QByteArray& way, const char* count)
{
    const QTemporaryDir folder;
    MakeProject(folder.path());
    const ProgramRun run =
        RunProgram(SAVE_FOREVER_PROGRAM, {folder.filePath("highlands.xml"), way, count},
                   folder.path(), QProcessEnvironment::systemEnvironment());
    [&] { QCOMPARE(run.exitCode, 0); }();
    return FilesBelow(folder.path());
}

void tst_KilledSaves::KillOnce(const QString& folder, const QByteArray& way, int milliseconds)
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(SAVE_FOREVER_PROGRAM, {folder + "/highlands.xml", way, "0"});
    QVERIFY(process.waitForReadyRead());
    QTest::qSleep(milliseconds);
    process.kill();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
}

void tst_KilledSaves::EachFileIsWhollyTheOldOrTheNewOne_data()
{
    QTest::addColumn<QByteArray>("way");
    for (const char* way : {"save", "all", "batch"}) {
        QTest::newRow(way) << QByteArray(way);
    }
}

void tst_KilledSaves::EachFileIsWhollyTheOldOrTheNewOne()
{
    QFETCH(QByteArray, way);
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("QUILLMAP_KILLS", &isSet);
    const int kills = isSet ? wanted : 12;
    const Files first = Saved(way, "1");
    QElapsedTimer sinceStart;
    sinceStart.start();
    const Files second = Saved(way, "2");
    // So that all of a run is met, however slow the machine is.
    const auto longest = static_cast<int>(sinceStart.elapsed());
    QVERIFY(first != second);
    const QTemporaryDir folder;
    MakeProject(folder.path());
    const Files before = FilesBelow(folder.path());
    Random random;
    int interrupted = 0;
    for (int i = 0; i < kills || (interrupted == 0 && i < 10 * kills); ++i) {
        // It ends at once when what the last one left cannot be loaded.
        KillOnce(folder.path(), way, 1 + random.Below(longest));

        bool hasFirst = false;
        bool hasSecond = false;
        // What was being written may lie beside.
        for (auto it = first.begin(); it != first.end(); ++it) {
            if (it.key().endsWith('/')) {
                continue;
            }
            const QByteArray left = ReadBytes(folder.filePath(it.key()));
            const bool isFirst = left == it.value();
            const bool isSecond = left == second[it.key()];
            QVERIFY2(isFirst || isSecond || left == before[it.key()], qPrintable(it.key()));
            hasFirst = hasFirst || (isFirst && !isSecond);
            hasSecond = hasSecond || (isSecond && !isFirst);
        }
        interrupted += hasFirst && hasSecond ? 1 : 0;
    }
    // Else it was never killed while it saved.
    QVERIFY(interrupted > 0);
}

QTEST_GUILESS_MAIN(tst_KilledSaves)
#include "tst_KilledSaves.moc"
