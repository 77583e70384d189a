#include "app/FileGroup.h"

#include "app/Leftovers.h"
#include "app/OutputFile.h"
#include "platform/Files.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using Files = QMap<QString, QByteArray>;
using Step = std::function<bool(const QString& folder)>;

const Files& Old()
{
    static const Files files{{"a", "old a"}, {"c/", {}}, {"c/d", "old d"}, {"c/e", "old e"}};
    return files;
}

const Files& New()
{
    static const Files files{
        {"a", "new a"}, {"b", "new b"}, {"c/", {}}, {"c/d", "new d"}, {"c/e", "new e"}};
    return files;
}

void MakeOld(const QString& folder)
{
    for (auto it = Old().begin(); it != Old().end(); ++it) {
        if (!it.key().endsWith('/')) {
            WriteBytes(folder + '/' + it.key(), it.value());
        }
    }
}

bool AddNew(FileGroup& group, const QString& folder)
{
    for (auto it = New().begin(); it != New().end(); ++it) {
        if (!it.key().endsWith('/')) {
            QFile* file = group.Add(folder + '/' + it.key());
            if (!file || file->write(it.value()) != it.value().size()) {
                return false;
            }
        }
    }
    return true;
}

bool ReplaceAll(const QString& folder)
{
    FileGroup group;
    return AddNew(group, folder) && group.Commit();
}

/// By files that join the group when they are committed.
bool ReplaceAllOutputFiles(const QString& folder)
{
    OutputGroup group;
    for (auto it = New().begin(); it != New().end(); ++it) {
        OutputFile file(folder + '/' + it.key());
        if (!it.key().endsWith('/') &&
            (!file.Open() || !file.Write(it.value()) || !file.Commit())) {
            return false;
        }
    }
    return group.Commit();
}

/// The last of the files is kept from its place.
bool FailToReplaceAll(const QString& folder)
{
    FileGroup group;
    return AddNew(group, folder) && QFile::remove(folder + "/c/e") && QDir(folder).mkdir("c/e") &&
           !group.Commit();
}

bool ReplaceOne(const QString& folder)
{
    OutputFile file(folder + "/a");
    return file.Open() && file.Write("new a") && file.Commit();
}

bool Tidy(const QString& folder)
{
    TidyFolder(folder + "/c");
    TidyFolder(folder);
    return true;
}

/// What a reader of a name finds is always a whole file.
bool AreWhole(const Files& files)
{
    for (auto it = New().begin(); it != New().end(); ++it) {
        if (files.contains(it.key())
                ? files[it.key()] != it.value() && files[it.key()] != Old().value(it.key())
                : Old().contains(it.key())) {
            return false;
        }
    }
    return true;
}

} // namespace

Q_DECLARE_METATYPE(Step)

class tst_FileGroup : public QObject
{
    Q_OBJECT

private slots:
    void AKillAtAnyStepIsMended_data();
    void AKillAtAnyStepIsMended();
    void KillsOfTheMenderAreMended();
    void AKilledOverwritingIsRepeated();
    void WhatALivingProgramMakesIsLeftAlone();
    void AnEmptyLockFileIsOfADeadProgram();
    void OtherNamesAreLeftAlone();
    void RecordsLeadNowhereElse_data();
    void RecordsLeadNowhereElse();
    void ManyFilesNeedFewOpenOnes();
};

void tst_FileGroup::AKillAtAnyStepIsMended_data()
{
    QTest::addColumn<Step>("step");
    QTest::addColumn<bool>("areFilesNamed");
    QTest::addColumn<Files>("after");
    Files onlyA = Old();
    onlyA["a"] = New()["a"];
    Files obstructed = Old();
    obstructed.remove("c/e");
    obstructed["c/e/"] = QByteArray();
    for (const bool areFilesNamed : {false, true}) {
        const char* way = areFilesNamed ? "named" : "unnamed";
        QTest::addRow("one file, %s", way) << Step(ReplaceOne) << areFilesNamed << onlyA;
        QTest::addRow("several, %s", way) << Step(ReplaceAll) << areFilesNamed << New();
        QTest::addRow("output files, %s", way)
            << Step(ReplaceAllOutputFiles) << areFilesNamed << New();
        QTest::addRow("failing, %s", way) << Step(FailToReplaceAll) << areFilesNamed << obstructed;
    }
}

void tst_FileGroup::AKillAtAnyStepIsMended()
{
    QFETCH(Step, step);
    QFETCH(bool, areFilesNamed);
    QFETCH(Files, after);
    const std::unique_ptr<NoUnnamedFiles> named =
        areFilesNamed ? std::make_unique<NoUnnamedFiles>() : nullptr;
    bool isKilled = true;
    int number = 0;
    for (; isKilled; ++number) {
        const QTemporaryDir folder;
        MakeOld(folder.path());
        isKilled = IsKilled(number, [&] { return step(folder.path()); });
        if (!after.contains("c/e/")) {
            QVERIFY2(AreWhole(FilesBelow(folder.path())), qPrintable(QString::number(number)));
        }
        // From either of the folders, all files are put in their places or back.
        TidyFolder(folder.filePath(number % 2 == 0 ? "c" : "."));
        Files files = FilesBelow(folder.path());
        for (auto it = files.begin(); it != files.end();) {
            it = it.key().contains(".quillmap-") ? files.erase(it) : std::next(it);
        }
        Files beforeObstacle = after;
        beforeObstacle.remove("c/e/");
        QVERIFY2(files == Old() || files == after || files == beforeObstacle,
                 qPrintable(QString::number(number)));
        TidyFolder(folder.filePath(number % 2 == 0 ? "." : "c"));
        QCOMPARE(FilesBelow(folder.path()), files);
        QVERIFY(isKilled || files == after);
    }
    // It was killed, and more often where there is more to do.
    QVERIFY(number > (after.size() > Old().size() ? 10 : 1));
}

void tst_FileGroup::KillsOfTheMenderAreMended()
{
#ifdef QUILLMAP_PORTABLE
    constexpr int stride = 7; // lock files have names too, so there are many steps
#else
    constexpr int stride = 2;
#endif
    for (const Step& step : {Step(ReplaceAll), Step(FailToReplaceAll)}) {
        bool isFirstKilled = true;
        for (int first = 0; isFirstKilled; first += stride) {
            bool isSecondKilled = true;
            for (int second = 0; isSecondKilled; second += stride) {
                const QTemporaryDir folder;
                MakeOld(folder.path());
                isFirstKilled = IsKilled(first, [&] { return step(folder.path()); });
                isSecondKilled = IsKilled(second, [&] { return Tidy(folder.path()); });
                Tidy(folder.path());
                const Files files = FilesBelow(folder.path());
                const bool isOld = files.value("a") == Old()["a"] && files["c/d"] == Old()["c/d"] &&
                                   !files.contains("b");
                QVERIFY2(isOld || files == New(),
                         qPrintable(QStringLiteral("%1 %2").arg(first).arg(second)));
                const QStringList names = files.keys();
                QVERIFY(names.filter(".quillmap-").isEmpty());
            }
        }
    }
}

/// Where no other file can take the place of the old one.
void tst_FileGroup::AKilledOverwritingIsRepeated()
{
    if (geteuid() != 0) {
        QSKIP("Only root can make a file that another user cannot replace.");
    }
    const QTemporaryDir folder;
    WriteBytes(folder.filePath("a"), "new? old?");
    QVERIFY(QFile::setPermissions(folder.filePath("a"), QFile::Permissions(0x6666)));
    const StickyFolder sticky(folder.path());
    LeaveKilledSave(folder.path(), "a", "new a");
    TidyFolder(folder.path());
    QCOMPARE(FilesBelow(folder.path()), (Files{{"a", "new a"}}));
}

void tst_FileGroup::WhatALivingProgramMakesIsLeftAlone()
{
    const QTemporaryDir folder;
    WriteBytes(folder.filePath(".quillmap-abcdefgh.new"), "file");
    WriteBytes(folder.filePath(".quillmap-abcdefgh.group/new-0"), "file");
    const Files before = FilesBelow(folder.path());
    {
        const auto file = platform::TryLock(folder.filePath(".quillmap-abcdefgh.new"));
        const auto group = platform::TryLock(folder.filePath(".quillmap-abcdefgh.group"));
        QVERIFY(file && group);
        TidyFolder(folder.path());
        Files left = FilesBelow(folder.path());
        left.remove(".quillmap-abcdefgh.new.lock");
        left.remove(".quillmap-abcdefgh.group.lock");
        QCOMPARE(left, before);
    }
    TidyFolder(folder.path());
    QCOMPARE(FilesBelow(folder.path()), Files());
}

/// A program may be killed between making its lock file and writing its name into it.
void tst_FileGroup::AnEmptyLockFileIsOfADeadProgram()
{
#ifndef QUILLMAP_PORTABLE
    QSKIP("Linux has locks without files.");
#endif
    const QTemporaryDir folder;
    const auto makeLock = [&](const QString& name, int age) {
        WriteBytes(folder.filePath(name), {});
        QFile lock(folder.filePath(name));
        QVERIFY(lock.open(QIODevice::ReadWrite));
        QVERIFY(lock.setFileTime(QDateTime::currentDateTime().addSecs(-age),
                                 QFileDevice::FileModificationTime));
    };
    for (const char* name : {".quillmap-abcdefgh.new", ".quillmap-bcdefghi.new"}) {
        WriteBytes(folder.filePath(name), "file");
    }
    makeLock(".quillmap-abcdefgh.new.lock", 5);
    makeLock(".quillmap-abcdefgh.new.lock.rmlock", 5);
    // Its maker may be about to write its name.
    makeLock(".quillmap-bcdefghi.new.lock", -5);
    TidyFolder(folder.path());
    QCOMPARE(FilesBelow(folder.path()).keys(),
             (QStringList{".quillmap-bcdefghi.new", ".quillmap-bcdefghi.new.lock"}));
}

void tst_FileGroup::OtherNamesAreLeftAlone()
{
    const QTemporaryDir folder;
    WriteBytes(folder.filePath("far/file"), "far");
    for (const char* name :
         {".quillmap-notes", ".quillmap-abcdefgh.newer", ".quillmap-ABCDEFGH.new",
          "x.quillmap-abcdefgh.new", ".quillmap-abcdefgh.group/mine"}) {
        WriteBytes(folder.filePath(name), "of the user");
    }
    QVERIFY(QFile::link(folder.filePath("far"), folder.filePath(".quillmap-bcdefghi.group")));
    const Files before = FilesBelow(folder.path());
    TidyFolder(folder.path());
    QCOMPARE(FilesBelow(folder.path()), before);
}

void tst_FileGroup::RecordsLeadNowhereElse_data()
{
    QTest::addColumn<QByteArray>("workplace");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("name upward") << QByteArray(".quillmap-abcdefgh.group") << QByteArray("../far");
    QTest::newRow("the folder itself")
        << QByteArray(".quillmap-abcdefgh.group") << QByteArray("..");
    QTest::newRow("other folder") << QByteArray("../home") << QByteArray("far");
    QTest::newRow("by a link") << QByteArray("link/.quillmap-abcdefgh.group") << QByteArray("far");
}

void tst_FileGroup::RecordsLeadNowhereElse()
{
    QFETCH(QByteArray, workplace);
    QFETCH(QByteArray, name);
    const QTemporaryDir folder;
    WriteBytes(folder.filePath("far"), "far");
    WriteBytes(folder.filePath("home/new-0"), "planted");
    const QString project = folder.filePath("project");
    WriteBytes(project + "/.quillmap-abcdefgh.group/new-0", "planted");
    WriteBytes(project + "/.quillmap-abcdefgh.group/record", "[{\"workplace\":\"" + workplace +
                                                                 "\",\"name\":\"" + name +
                                                                 "\",\"replaces\":true}]");
    QVERIFY(QFile::link(folder.filePath("home"), project + "/link"));
    TidyFolder(project);
    QCOMPARE(FilesBelow(folder.path()).keys(),
             (QStringList{"far", "home/", "home/new-0", "project/", "project/link/"}));
    QCOMPARE(ReadBytes(folder.filePath("far")), QByteArray("far"));
}

void tst_FileGroup::ManyFilesNeedFewOpenOnes()
{
    const QTemporaryDir folder;
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit few = before;
    few.rlim_cur = 256;
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &few), 0);
    {
        FileGroup group;
        for (int i = 0; i < 500; ++i) {
            QFile* file = group.Add(folder.filePath(QString::number(i)));
            QVERIFY2(file, group.Error().message().c_str());
            QVERIFY(file->write(QByteArray::number(i)) > 0);
        }
        QVERIFY(group.Commit());
    }
    setrlimit(RLIMIT_NOFILE, &before);
    QCOMPARE(FilesBelow(folder.path()).size(), 500);
    QCOMPARE(ReadBytes(folder.filePath("499")), QByteArray("499"));
}

QTEST_GUILESS_MAIN(tst_FileGroup)
#include "tst_FileGroup.moc"
