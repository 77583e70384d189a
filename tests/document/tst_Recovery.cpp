#include "document/journal/Recovery.h"
#include "document/journal/SessionLock.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/JournalSession.h"
#include "tests/support/Masks.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <functional>
#include <memory>

namespace {

constexpr QSize Size(70, 40);

/// Each state differs from the others.
bool RunSession(JournalSession& session)
{
    return session.Begin() && session.AddBlankLayer() && session.Commit("<one/>") &&
           session.Paint(3, FullMask(Size)) && session.Commit({}) && session.Commit("<two/>") &&
           session.Commit("<three/>") && session.Writer().Compact();
}

/// When the journal was written last.
void SetMinutesAgo(const QString& folder, int minutes)
{
    QFile log(journal::LogPath(folder));
    QVERIFY(log.open(QIODevice::ReadWrite));
    QVERIFY(log.setFileTime(QDateTime::currentDateTime().addSecs(-60 * minutes),
                            QFileDevice::FileModificationTime));
}

/// The journal of a session that has ended without its end, as after a kill.
QString MakeDead(const QString& projectPath, int minutesAgo = 0)
{
    JournalSession session(Size, projectPath);
    [&] { QVERIFY(RunSession(session)); }();
    SetMinutesAgo(session.Writer().Folder(), minutesAgo);
    return session.Writer().Folder();
}

/// Copying is what a move to another disk is.
struct FullOtherDisk
{
    RenamesFail otherDisk;
    FileSizeLimit full{50};
};

} // namespace

Q_DECLARE_METATYPE(std::function<std::shared_ptr<void>(const QString&)>)

class tst_Recovery : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void FindsDeadJournalsNewestFirst();
    void AJournalIsAliveAsLongAsItsWriter();
    void KeepsWhatItCannotRead();
    void RemovesWhatWasNeverCommitted();
    void AKillAtAnyMomentLeavesACommit();
    void AKillDuringTheEndLeavesNothing();
    void DiscardsOnlyJournals_data();
    void DiscardsOnlyJournals();
    void LeavesOthersFilesInAJournal();
    void MovesAJournal_data();
    void MovesAJournal();
    void AMoveThatFailsLeavesTheJournal_data();
    void AMoveThatFailsLeavesTheJournal();
    void AProjectIsOpenInOneSession();
    void ALockIsGoneWithItsProcess();
    void ALockIsImpossibleWithoutAFolder();

private:
    QString File(const QString& name) const { return m_folder->filePath(name); }

    std::unique_ptr<DataFolder> m_data;
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_Recovery::init()
{
    m_data.reset();
    m_data = std::make_unique<DataFolder>();
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_Recovery::FindsDeadJournalsNewestFirst()
{
    QVERIFY(Recovery::DeadJournals().isEmpty());
    QVERIFY(!QFileInfo::exists(Recovery::Folder()));
    const QString b = MakeDead("/p/b.xml", 5);
    const QString c = MakeDead("/p/c.xml", 7);
    const QString a = MakeDead("/p/a.xml", 3);
    QCOMPARE(Recovery::DeadJournals(), (QStringList{a, b, c}));
    QVERIFY(Recovery::Discard(b));
    QCOMPARE(Recovery::DeadJournals(), (QStringList{a, c}));
}

void tst_Recovery::AJournalIsAliveAsLongAsItsWriter()
{
    JournalSession living(Size);
    QVERIFY(RunSession(living));
    const QString folder = living.Writer().Folder();
    QVERIFY(Recovery::DeadJournals().isEmpty());
    QVERIFY(!Recovery::Discard(folder));
    QCOMPARE(*RestoredState(folder) == living.States().last(), true);
    // Looking at it has not taken its lock.
    QVERIFY(living.Commit("<four/>"));
    QVERIFY(Recovery::DeadJournals().isEmpty());
}

void tst_Recovery::KeepsWhatItCannotRead()
{
    const QString folder = MakeDead("/p/a.xml");
    WriteBytes(journal::LogPath(folder), QByteArray(1000, 'x'));
    QCOMPARE(Recovery::DeadJournals(), QStringList{folder});
    QString reason;
    QVERIFY(!JournalReader::Open(folder, &reason));
    QCOMPARE(reason, "The journal holds no whole state of the project.");
    QVERIFY(QFileInfo::exists(folder));
}

void tst_Recovery::RemovesWhatWasNeverCommitted()
{
    {
        JournalSession session(Size);
        QVERIFY(session.Begin() && session.AddBlankLayer());
        QVERIFY(Recovery::DeadJournals().isEmpty());
        QVERIFY(session.Commit("<one/>"));
        JournalSession other(Size);
        QVERIFY(other.Begin() && other.AddBlankLayer());
    }
    QVERIFY(QDir().mkdir(Recovery::Folder() + "/empty"));
    QCOMPARE(Recovery::DeadJournals().size(), 1);
    QCOMPARE(QDir(Recovery::Folder()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
}

void tst_Recovery::AKillAtAnyMomentLeavesACommit()
{
    QVector<QByteArray> states;
    {
        JournalSession whole(Size);
        QVERIFY(RunSession(whole));
        states = whole.States();
        whole.Writer().End();
    }
    QVERIFY(Recovery::DeadJournals().isEmpty());
    const auto run = [] {
        JournalSession session(Size);
        return RunSession(session);
    };
    int found = -1;
    bool isKilled = true;
    for (int number = 0; isKilled; ++number) {
        isKilled = IsKilled(number, run);
        const QStringList dead = Recovery::DeadJournals();
        QVERIFY(dead.size() <= 1);
        if (!dead.isEmpty()) {
            const int state = states.indexOf(RestoredState(dead.first()).value());
            QVERIFY(state >= found);
            found = state;
            QVERIFY(Recovery::Discard(dead.first()));
        }
        QVERIFY(QDir(Recovery::Folder()).isEmpty());
    }
    QCOMPARE(found, states.size() - 1);
}

void tst_Recovery::AKillDuringTheEndLeavesNothing()
{
    bool isKilled = true;
    for (int number = 0; isKilled; ++number) {
        isKilled = IsKilled(number, [number] {
            DieBeforeStep(-1);
            JournalSession session(Size);
            const bool isDone = RunSession(session);
            DieBeforeStep(number);
            session.Writer().End();
            return isDone;
        });
        const QStringList dead = Recovery::DeadJournals();
        // Before the first step nothing has happened.
        QCOMPARE(dead.size(), number == 0 ? 1 : 0);
        QVERIFY(dead.isEmpty() || Recovery::Discard(dead.first()));
        QVERIFY(QDir(Recovery::Folder()).isEmpty());
    }
}

void tst_Recovery::DiscardsOnlyJournals_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isDiscarded");

    // "R" stands for the folder of journals, "J" for the journal.
    QTest::newRow("journal") << "J" << true;
    QTest::newRow("with a slash") << "J/" << true;
    QTest::newRow("all") << "R" << false;
    QTest::newRow("nothing") << "" << false;
    QTest::newRow("root") << "/" << false;
    QTest::newRow("missing") << "R/missing" << false;
    QTest::newRow("file") << "J/log" << false;
    QTest::newRow("elsewhere") << "O" << false;
    QTest::newRow("leads elsewhere") << "R/../../O" << false;
    QTest::newRow("link to elsewhere") << "R/link" << false;
    QTest::newRow("link to a journal") << "R/again" << false;
    QTest::newRow("without a lock") << "R/unlocked" << false;
}

void tst_Recovery::DiscardsOnlyJournals()
{
    QFETCH(QString, path);
    QFETCH(bool, isDiscarded);
    const QString elsewhere = MakeDead("/p/a.xml");
    const QString outside = m_data->Path() + "/O";
    QVERIFY(QFile::rename(elsewhere, outside));
    const QString root = Recovery::Folder();
    const QString dead = MakeDead("/p/a.xml");
    QVERIFY(QFile::link(outside, root + "/link"));
    QVERIFY(QFile::link(dead, root + "/again"));
    WriteBytes(root + "/unlocked/log", "x");
    const QMap<QString, QByteArray> before = FilesBelow(m_data->Path());
    path = path.startsWith('R')   ? root + path.mid(1)
           : path.startsWith('J') ? dead + path.mid(1)
           : path == "O"          ? outside
                                  : path;

    QCOMPARE(Recovery::DeadJournals(), QStringList{dead});
    QCOMPARE(Recovery::Discard(path), isDiscarded);
    QCOMPARE(QFileInfo::exists(dead), !isDiscarded);
    if (!isDiscarded) {
        QCOMPARE(FilesBelow(m_data->Path()), before);
    }
}

void tst_Recovery::LeavesOthersFilesInAJournal()
{
    const QString dead = MakeDead("/p/a.xml");
    WriteBytes(dead + "/letter.txt", "mine");
    WriteBytes(File("target.tga"), "mine");
    QVERIFY(QFile::link(File("target.tga"), dead + "/base-9.tga"));
    QVERIFY(!Recovery::Discard(dead));
    QCOMPARE(FilesBelow(dead), (QMap<QString, QByteArray>{{"letter.txt", "mine"}}));
    QCOMPARE(ReadBytes(File("target.tga")), "mine");
    QVERIFY(Recovery::DeadJournals().isEmpty());
}

void tst_Recovery::MovesAJournal_data()
{
    QTest::addColumn<bool>("isOtherDisk");
    QTest::newRow("on the same disk") << false;
    QTest::newRow("to another disk") << true;
}

void tst_Recovery::MovesAJournal()
{
    QFETCH(bool, isOtherDisk);
    JournalSession session(Size);
    QVERIFY(RunSession(session));
    const QString folder = session.Writer().Folder();
    SetMinutesAgo(folder, 90);
    const QDateTime time = JournalReader::Open(folder)->LastChange();
    const QString target = File("versions/key/id");
    {
        const auto fault = isOtherDisk ? std::make_unique<RenamesFail>() : nullptr;
        QVERIFY(session.Writer().MoveTo(target));
    }
    QVERIFY(!QFileInfo::exists(folder));
    QVERIFY(!QFileInfo::exists(target + "/lock"));
    QCOMPARE(*RestoredState(target) == session.States().last(), true);
    QCOMPARE(JournalReader::Open(target)->LastChange(), time);
    const QFile::Permissions others =
        QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    QVERIFY((QFile::permissions(target) & others) == 0);
    QVERIFY((QFile::permissions(journal::LogPath(target)) & others) == 0);
    QVERIFY(session.Writer().Folder().isEmpty() && !session.Writer().IsReady());
    QVERIFY(!session.Writer().MoveTo(File("versions/b")));
    QVERIFY(session.Begin());
}

void tst_Recovery::AMoveThatFailsLeavesTheJournal_data()
{
    using Fault = std::function<std::shared_ptr<void>(const QString& target)>;
    QTest::addColumn<Fault>("fault");

    QTest::newRow("there is something") << Fault([](const QString& target) {
        WriteBytes(target + "/a", "mine");
        return std::shared_ptr<void>();
    });
    QTest::newRow("there is a link") << Fault([](const QString& target) {
        QDir().mkpath(QFileInfo(target).path());
        [&] { QVERIFY(QFile::link("/nowhere", target)); }();
        return std::shared_ptr<void>();
    });
    QTest::newRow("a file is in the way") << Fault([](const QString& target) {
        WriteBytes(QFileInfo(target).path(), "mine");
        return std::shared_ptr<void>();
    });
    QTest::newRow("the other disk is full")
        << Fault([](const QString&) { return std::make_shared<FullOtherDisk>(); });
}

void tst_Recovery::AMoveThatFailsLeavesTheJournal()
{
    QFETCH(std::function<std::shared_ptr<void>(const QString&)>, fault);
    JournalSession session(Size);
    QVERIFY(RunSession(session));
    const QString folder = session.Writer().Folder();
    const QString target = File("key/id");
    {
        const std::shared_ptr<void> there = fault(target);
        const QMap<QString, QByteArray> before = FilesBelow(m_folder->path());
        QVERIFY(!session.Writer().MoveTo(target));
        QMap<QString, QByteArray> after = FilesBelow(m_folder->path());
        if (before.isEmpty()) {
            // The folder above the target may have been made.
            after.remove("key/");
        }
        QCOMPARE(after, before);
    }
    QCOMPARE(*RestoredState(folder) == session.States().last(), true);
    QCOMPARE(Recovery::DeadJournals(), QStringList{folder});
    QVERIFY(Recovery::Discard(folder));
}

void tst_Recovery::AProjectIsOpenInOneSession()
{
    const QString project = File("p/project.xml");
    WriteBytes(project, "<root/>");
    QVERIFY(QFile::link(File("p"), File("link")));
    {
        const SessionLock first(project);
        QCOMPARE(first.GetState(), SessionLock::State::Held);
        QCOMPARE(SessionLock(project).GetState(), SessionLock::State::Taken);
        QCOMPARE(SessionLock(File("link/../link/project.xml")).GetState(),
                 SessionLock::State::Taken);
        QCOMPARE(SessionLock(File("p/other.xml")).GetState(), SessionLock::State::Held);
        QCOMPARE(FilesBelow(File("p")).keys(), QStringList{"project.xml"});
    }
    QCOMPARE(SessionLock(project).GetState(), SessionLock::State::Held);
    // The locks leave no files.
    const QMap<QString, QByteArray> files = FilesBelow(m_data->Path());
    for (auto it = files.begin(); it != files.end(); ++it) {
        QVERIFY2(it.key().endsWith('/'), qPrintable(it.key()));
    }
}

void tst_Recovery::ALockIsGoneWithItsProcess()
{
    const QString project = File("project.xml");
    for (int number = 0; number < 20; ++number) {
        IsKilled(number, [&project] {
            const SessionLock lock(project);
            return lock.GetState() == SessionLock::State::Held;
        });
        QCOMPARE(SessionLock(project).GetState(), SessionLock::State::Held);
    }
}

void tst_Recovery::ALockIsImpossibleWithoutAFolder()
{
    QCOMPARE(SessionLock(QString()).GetState(), SessionLock::State::Impossible);
    const ReadOnlyFolder readOnly(m_data->Path());
    QCOMPARE(SessionLock(File("project.xml")).GetState(), SessionLock::State::Impossible);
}

QTEST_GUILESS_MAIN(tst_Recovery)
#include "tst_Recovery.moc"
