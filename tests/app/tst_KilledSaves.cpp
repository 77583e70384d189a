#include "tests/support/Files.h"
#include "tests/support/Program.h"
#include "tests/support/Random.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

#include <algorithm>

namespace {

using Files = QMap<QString, QByteArray>;

/// What is written together, and the file whose reader mends it after a kill.
struct Part
{
    /// Files, and folders with a slash at the end.
    QStringList folders;
    QString read;
};

/// Whether one of the states has all of these files as they are, or has none of those missing.
bool IsOfOneState(const Files& files, const QStringList& names, const QVector<Files>& states)
{
    return std::any_of(states.begin(), states.end(), [&](const Files& state) {
        return std::all_of(names.begin(), names.end(), [&](const QString& name) {
            return files.value(name) == state.value(name);
        });
    });
}

} // namespace

Q_DECLARE_METATYPE(Part)

/// A program that does nothing but save or export the example is killed at random moments.
/// QUILLMAP_KILLS sets how often.
class tst_KilledSaves : public QObject
{
    Q_OBJECT

private slots:
    void FilesOfOneRunBelongTogether_data();
    void FilesOfOneRunBelongTogether();
    void ExportedFilesBelongTogether();
    void FilesThatCannotBeReplacedAreWrittenAgain();

private:
    static void MakeProject(const QString& folder);
    /// The content of the folder after so many runs.
    static Files Saved(const QByteArray& way, const char* count);
    static void KillOnce(const QString& folder, const QByteArray& way, int milliseconds,
                         const QStringList& user = {});
    /// The exit code of the tool.
    static int RunTool(const QStringList& arguments);
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

Files tst_KilledSaves::Saved(const QByteArray& way, const char* count)
{
    const QTemporaryDir folder;
    MakeProject(folder.path());
    const ProgramRun run =
        RunProgram(SAVE_FOREVER_PROGRAM, {folder.filePath("highlands.xml"), way, count},
                   folder.path(), QProcessEnvironment::systemEnvironment());
    [&] { QCOMPARE(run.exitCode, 0); }();
    return FilesBelow(folder.path());
}

int tst_KilledSaves::RunTool(const QStringList& arguments)
{
    return RunProgram(TOOL_PROGRAM, arguments, QDir::tempPath(),
                      QProcessEnvironment::systemEnvironment())
        .exitCode;
}

int tst_KilledSaves::Kills()
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("QUILLMAP_KILLS", &isSet);
    constexpr int few = 6;
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
    QVERIFY(process.waitForFinished(LongestRun));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
}

void tst_KilledSaves::FilesOfOneRunBelongTogether_data()
{
    QTest::addColumn<QByteArray>("way");
    QTest::addColumn<QVector<Part>>("parts");
    const Part project = {{"highlands.xml", "layers/"}, "highlands.xml"};
    QTest::newRow("save") << QByteArray("save") << QVector<Part>{project};
    QTest::newRow("all") << QByteArray("all")
                         << QVector<Part>{project,
                                          {{"map/"}, "map/highlands.map"},
                                          {{"territoryTypes/"}, "territoryTypes/Deer.xml"}};
    QTest::newRow("batch") << QByteArray("batch")
                           << QVector<Part>{
                                  {{"Output/", "territoryTypes/"}, "Output/highlands.map"}};
}

void tst_KilledSaves::FilesOfOneRunBelongTogether()
{
    QFETCH(QByteArray, way);
    QFETCH(QVector<Part>, parts);
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
    const QVector<Files> states = {FilesBelow(folder.path()), first, second};
    Random random;
    const QStringList allNames = first.keys();
    int interrupted = 0;
    for (int i = 0; i < kills || (interrupted == 0 && i < 10 * kills); ++i) {
        // The program ends at once if it cannot load the files of the run before.
        KillOnce(folder.path(), way, 1 + random.Below(longest));

        const Files left = FilesBelow(folder.path());
        const QStringList names = left.keys();
        interrupted += names.filter(".quillmap-").isEmpty() ? 0 : 1;
        for (const QString& name : allNames) {
            QVERIFY2(IsOfOneState(left, {name}, states), qPrintable(name));
        }
        for (const Part& part : parts) {
            // This file may be missing at first.
            RunTool({"info", "--quiet", folder.filePath(part.read)});
            const QStringList written = allNames.filter(
                QRegularExpression(QStringLiteral("^(%1)[^/]*$").arg(part.folders.join('|'))));
            QVERIFY(written.size() > 1 || part.read.startsWith("map/"));
            QVERIFY2(IsOfOneState(FilesBelow(folder.path()), written, states),
                     qPrintable(part.read));
        }
    }
    // Otherwise it was never killed during a save.
    QVERIFY(interrupted > 0);
#ifdef QUILLMAP_PORTABLE
    // So old are lock files that are empty because their makers were killed.
    QTest::qSleep(1100);
#endif
    // What the last ones left goes with the next one.
    const ProgramRun run =
        RunProgram(SAVE_FOREVER_PROGRAM, {folder.filePath("highlands.xml"), way, "2"},
                   folder.path(), QProcessEnvironment::systemEnvironment());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(FilesBelow(folder.path()).keys(), second.keys());
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
        QCOMPARE(RunTool(arguments(isOther)), 0);
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
        QTest::qSleep(1 + random.Below(longest));
        process.kill();
        QVERIFY(process.waitForFinished(LongestRun));

        QCOMPARE(RunTool({"export", folder.filePath("bare.xml"), "-o", out}), 0);
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
    QCOMPARE(RunTool(arguments(false)), 0);
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
        KillOnce(folder, "all", 1 + random.Below(longest), nobody);
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
