#include "tests/support/Files.h"
#include "tests/support/Program.h"
#include "tests/support/Random.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// A folder's files without what is left of those that were being written.
QMap<QString, QByteArray> Finished(const QString& folder, const QStringList& names)
{
    QMap<QString, QByteArray> files;
    for (const QString& name : names) {
        files.insert(name, ReadBytes(folder + '/' + name));
    }
    return files;
}

void CopyFolder(const QMap<QString, QByteArray>& files, const QString& to)
{
    for (auto it = files.begin(); it != files.end(); ++it) {
        if (!it.key().endsWith('/')) {
            WriteBytes(to + '/' + it.key(), it.value());
        }
    }
}

} // namespace

/// A program that does nothing but save the example is killed at random moments. QUILLMAP_KILLS
/// sets how often.
class tst_KilledSaves : public QObject
{
    Q_OBJECT

private slots:
    void EachFileIsWhollyTheOldOrTheNewOne();

private:
    /// What the files hold after each of two saves, which differ in every file.
    QVector<QMap<QString, QByteArray>> SavedTwice(const QMap<QString, QByteArray>& project);
    void KillOnce(const QString& folder, int milliseconds);
};

QVector<QMap<QString, QByteArray>>
tst_KilledSaves::SavedTwice(const QMap<QString, QByteArray>& project)
{
    QVector<QMap<QString, QByteArray>> saved;
    for (const char* saves : {"1", "2"}) {
        const QTemporaryDir folder;
        CopyFolder(project, folder.path());
        const ProgramRun run =
            RunProgram(SAVE_FOREVER_PROGRAM, {folder.filePath("highlands.xml"), saves},
                       folder.path(), QProcessEnvironment::systemEnvironment());
        [&] { QCOMPARE(run.exitCode, 0); }();
        saved.append(Finished(folder.path(), project.keys()));
    }
    return saved;
}

void tst_KilledSaves::KillOnce(const QString& folder, int milliseconds)
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(SAVE_FOREVER_PROGRAM, {folder + "/highlands.xml", "0"});
    QVERIFY(process.waitForReadyRead());
    QTest::qSleep(milliseconds);
    process.kill();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
}

void tst_KilledSaves::EachFileIsWhollyTheOldOrTheNewOne()
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("QUILLMAP_KILLS", &isSet);
    const int kills = isSet ? wanted : 25;
    QMap<QString, QByteArray> project = FilesBelow(QUILLMAP_EXAMPLE_FOLDER);
    const QStringList names = project.keys();
    for (const QString& name : names) {
        if (!name.endsWith(".tga") && name != "highlands.xml") {
            project.remove(name);
        }
    }
    const QVector<QMap<QString, QByteArray>> saved = SavedTwice(project);
    const QTemporaryDir folder;
    CopyFolder(project, folder.path());
    Random random;
    int interrupted = 0;
    for (int i = 0; i < kills; ++i) {
        // It ends at once when what the last one left cannot be loaded.
        KillOnce(folder.path(), 1 + random.Below(700));

        const QMap<QString, QByteArray> left = Finished(folder.path(), project.keys());
        bool hasOld = false;
        bool hasNew = false;
        for (auto it = left.begin(); it != left.end(); ++it) {
            const bool isFirst = it.value() == saved[0][it.key()];
            const bool isSecond = it.value() == saved[1][it.key()];
            QVERIFY2(isFirst || isSecond || it.value() == project[it.key()], qPrintable(it.key()));
            hasOld = hasOld || isFirst;
            hasNew = hasNew || isSecond;
        }
        interrupted += hasOld && hasNew ? 1 : 0;
    }
    // Else it was never killed while it saved.
    QVERIFY(interrupted > 0);
}

QTEST_GUILESS_MAIN(tst_KilledSaves)
#include "tst_KilledSaves.moc"
