#include "tests/support/Files.h"
#include "tests/support/Program.h"
#include "tests/support/Random.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

/// A program that does nothing but save or export the example is killed at random moments.
/// QUILLMAP_KILLS sets how often.
class tst_KilledSaves : public QObject
{
    Q_OBJECT

private slots:
    void EachFileIsWhollyTheOldOrTheNewOne_data();
    void EachFileIsWhollyTheOldOrTheNewOne();
    void ExportedFilesBelongTogether();
    void FilesThatCannotBeReplacedAreWrittenAgain();

private:
    using Files = QMap<QString, QByteArray>;

    static void MakeProject(const QString& folder);
    /// The content of the folder after so many runs.
    static Files Saved(const QByteArray& way, const char* count);
    static void KillOnce(const QString& folder, const QByteArray& way, int milliseconds,
                         const QStringList& user = {});
    /// The exit code of the tool.
    static int Export(const QStringList& arguments);
    /// How often to kill.
    static int Kills();
};

/// The example, and a second document whose output is entirely different.
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

int tst_KilledSaves::Export(const QStringList& arguments)
{
    return RunProgram(TOOL_PROGRAM, arguments, QDir::tempPath(),
                      QProcessEnvironment::systemEnvironment())
        .exitCode;
}

int tst_KilledSaves::Kills()
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("QUILLMAP_KILLS", &isSet);
    constexpr int few = 12;
    return isSet ? wanted : few;
}

void tst_KilledSaves::KillOnce(const QString& folder, const QByteArray& way, int milliseconds,
                               const QStringList& user)
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(SAVE_FOREVER_PROGRAM, QStringList{folder + "/highlands.xml", way, "0"} + user);
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
    const int kills = Kills();
    const Files first = Saved(way, "1");
    QElapsedTimer sinceStart;
    sinceStart.start();
    const Files second = Saved(way, "2");
    // Measures a run, so that the kills hit all of it even on a slow machine.
    const auto longest = static_cast<int>(sinceStart.elapsed());
    QVERIFY(first != second);
    const QTemporaryDir folder;
    MakeProject(folder.path());
    const Files before = FilesBelow(folder.path());
    Random random;
    int interrupted = 0;
    for (int i = 0; i < kills || (interrupted == 0 && i < 10 * kills); ++i) {
        // The program ends at once if it cannot load the files of the run before.
        KillOnce(folder.path(), way, 1 + random.Below(longest));

        bool hasFirst = false;
        bool hasSecond = false;
        // Files that were being written may be left.
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
    // Otherwise it was never killed during a save.
    QVERIFY(interrupted > 0);
    // What the last ones left goes with the next one.
    const ProgramRun run =
        RunProgram(SAVE_FOREVER_PROGRAM, {folder.filePath("highlands.xml"), way, "2"},
                   folder.path(), QProcessEnvironment::systemEnvironment());
    QCOMPARE(run.exitCode, 0);
#ifndef QUILLMAP_PORTABLE
    // Only Linux has files without a name: elsewhere, names of a killed process may stay.
    QCOMPARE(FilesBelow(folder.path()).keys(), second.keys());
#endif
}

/// The map and the types of the example, and of another document, are exported to one folder.
void tst_KilledSaves::ExportedFilesBelongTogether()
{
    const QTemporaryDir folder;
    MakeProject(folder.path());
    const QString out = folder.filePath("out");
    const auto arguments = [&](bool isOther) {
        return QStringList{"export",
                           folder.filePath(isOther ? "other/highlands.xml" : "highlands.xml"), "-o",
                           out};
    };
    Files bitmaps = FilesBelow(folder.filePath("layers"));
    for (auto it = bitmaps.begin(); it != bitmaps.end(); ++it) {
        WriteBytes(folder.filePath("other/layers/") + it.key(), it.value());
    }
    // Without a type: its export writes none of the files of the others.
    WriteBytes(folder.filePath("bare.xml"), "<qm-config><global/></qm-config>");
    Files exported[2];
    int longest = 0;
    for (const bool isOther : {false, true}) {
        QElapsedTimer sinceStart;
        sinceStart.start();
        QCOMPARE(Export(arguments(isOther)), 0);
        longest = static_cast<int>(sinceStart.elapsed());
        exported[isOther ? 1 : 0] = FilesBelow(out);
    }
    QVERIFY(exported[0] != exported[1]);
    Random random;
    for (int i = 0; i < Kills(); ++i) {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(TOOL_PROGRAM, arguments(i % 2 == 0));
        QTest::qSleep(random.Below(longest));
        process.kill();
        QVERIFY(process.waitForFinished());

        QCOMPARE(Export({"export", folder.filePath("bare.xml"), "-o", out}), 0);
        QVERIFY(QFile::remove(out + "/bare.map"));
        // Leftovers may remain in folders that this run did not write to.
        Files left = FilesBelow(out);
        const QStringList names = left.keys();
        for (const QString& name : names) {
            if (name.contains("/.quillmap-")) {
                left.remove(name);
            }
        }
        QVERIFY2(left == exported[0] || left == exported[1], qPrintable(names.join(' ')));
    }
    QCOMPARE(Export(arguments(false)), 0);
    QCOMPARE(FilesBelow(out), exported[0]);
}

/// In folders that take no new file a kill in the midst of writing may leave some of both. Nothing
/// is left beside, and the next save makes the files whole.
void tst_KilledSaves::FilesThatCannotBeReplacedAreWrittenAgain()
{
    const Files first = Saved("all", "1");
    const Files second = Saved("all", "2");
    const QStringList nobody = geteuid() == 0 ? QStringList{"65534"} : QStringList();
    const QTemporaryDir root;
    QVERIFY(QFile::setPermissions(root.path(), QFile::Permissions(0x7755)));
    const QString folder = root.filePath("project");
    const auto setPermissions = [&](QFile::Permissions ofFolders) {
        QVERIFY(QFile::setPermissions(folder, ofFolders));
        for (auto it = first.begin(); it != first.end(); ++it) {
            const bool isFolder = it.key().endsWith('/');
            QVERIFY(QFile::setPermissions(folder + '/' + it.key(),
                                          isFolder ? ofFolders : QFile::Permissions(0x6666)));
        }
    };
    Random random;
    for (int i = 0; i < Kills() / 4; ++i) {
        for (auto it = first.begin(); it != first.end(); ++it) {
            if (!it.key().endsWith('/')) {
                WriteBytes(folder + '/' + it.key(), it.value());
            }
        }
        setPermissions(QFile::Permissions(0x5555));
        constexpr int longest = 1000;
        KillOnce(folder, "all", random.Below(longest), nobody);
        QCOMPARE(FilesBelow(folder).keys(), first.keys());

        setPermissions(QFile::Permissions(0x7777));
        MakeProject(folder);
        setPermissions(QFile::Permissions(0x5555));
        const ProgramRun run = RunProgram(
            SAVE_FOREVER_PROGRAM, QStringList{folder + "/highlands.xml", "all", "2"} + nobody,
            folder, QProcessEnvironment::systemEnvironment());
        QCOMPARE(run.exitCode, 0);
        QVERIFY(FilesBelow(folder) == second);
        setPermissions(QFile::Permissions(0x7777));
    }
}

QTEST_GUILESS_MAIN(tst_KilledSaves)
#include "tst_KilledSaves.moc"
