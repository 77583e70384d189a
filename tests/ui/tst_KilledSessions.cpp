#include "document/Document.h"
#include "document/journal/JournalReader.h"
#include "document/journal/Recovery.h"
#include "tests/support/Files.h"
#include "tests/support/Random.h"
#include "tests/support/SessionState.h"
#include "tests/support/WindowFixture.h"

#include <QAbstractButton>
#include <QDir>
#include <QFrame>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <optional>

namespace {

/// What a session may lose, in milliseconds; somewhat more where many tests share the machine, as
/// without QUILLMAP_KILLS.
constexpr qint64 MostLost = 1000;
constexpr qint64 MostLostInShortRun = 2000;
/// The kills are in so many milliseconds from the first deed on.
constexpr int Longest = 2500;
/// Or about so many from the beginning of a save or a load on, which take a small part of the day.
constexpr int FileWork = 30;

const char* const KillsVariable = "QUILLMAP_KILLS";

using Lines = QVector<SessionLine>;

/// The states at the moment that long ago, and all later ones.
Lines Latest(const Lines& lines, qint64 since)
{
    const auto later = std::find_if(lines.begin(), lines.end(), [since](const SessionLine& line) {
        return line.milliseconds > since;
    });
    const auto first = later == lines.begin() ? later : later - 1;
    return Lines(first, lines.end());
}

bool HasState(const Lines& lines, const QByteArray& state)
{
    return std::any_of(lines.begin(), lines.end(),
                       [&](const SessionLine& line) { return line.state == state; });
}

/// What the project's files may hold: the state saved last, or the one that was being saved.
QList<QByteArray> OnDisk(const Lines& lines, const QString& path)
{
    QList<QByteArray> states;
    for (const SessionLine& line : lines) {
        if (line.path != path) {
            continue;
        }
        if (line.moment == SessionMoment::Saved) {
            states = {line.state};
        } else if (line.moment == SessionMoment::SaveBegins) {
            states.append(line.state);
        }
    }
    return states;
}

/// The user has agreed to lose the work, or it is on the disk. onDisk: the states of the projects'
/// files, by path.
bool MayBeWithoutJournal(const Lines& latest, const QMap<QString, QByteArray>& onDisk)
{
    return std::any_of(latest.begin(), latest.end(), [&onDisk](const SessionLine& line) {
        return line.moment == SessionMoment::LoadBegins || onDisk.value(line.path) == line.state;
    });
}

/// Nothing was unsaved in all that time.
bool MustBeWithoutJournal(const Lines& latest)
{
    return std::all_of(latest.begin(), latest.end(),
                       [](const SessionLine& line) { return line.moment == SessionMoment::Saved; });
}

QByteArray Described(const Lines& lines, qint64 kill)
{
    QByteArray text;
    for (const SessionLine& line : lines) {
        SessionLine relative = line;
        relative.milliseconds -= kill;
        text += ToBytes(relative);
    }
    return text;
}

} // namespace

/// A program that works in the editor's window is killed at random moments, and its work is
/// restored. QUILLMAP_KILLS sets how often.
class tst_KilledSessions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void LoseAtMostASecond();

private:
    /// What a killed program left.
    struct Left
    {
        QString data;
        QString projects;
        qint64 kill = 0;
        Lines lines;
    };
    struct Counts
    {
        int restored = 0;
        /// Kills in a save and in a load.
        int saving = 0;
        int loading = 0;
        /// The age of the oldest edit that was lost, in milliseconds.
        qint64 oldest = 0;
    };

    static int Kills();
    static void AwaitFileWork(const QString& file);
    std::optional<Left> KillOnce(const QString& folder, Random& random);
    void CheckFiles(WindowFixture& user, const Left& left);
    void Restore(WindowFixture& user, const Left& left, const Lines& latest);
    void Check(WindowFixture& user, const Left& left, bool restoresFirst);

    Counts m_counts;
    QString m_toLoad;
    /// The states of the projects' files, by path.
    QMap<QString, QByteArray> m_onDisk;
};

void tst_KilledSessions::initTestCase()
{
#ifdef QUILLMAP_PORTABLE
    QSKIP("Locks of killed programs stay for a while.");
#endif
    QCoreApplication::setApplicationName("quillmap");
}

int tst_KilledSessions::Kills()
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue(KillsVariable, &isSet);
    constexpr int few = 6;
    return isSet ? wanted : few;
}

/// Until the session begins to save or to load, or has not done so for a while.
void tst_KilledSessions::AwaitFileWork(const QString& file)
{
    constexpr int mostTries = 4000;
    QFile states(file);
    QVERIFY(states.open(QIODevice::ReadOnly));
    states.seek(states.size());
    for (int i = 0; i < mostTries; ++i) {
        const QByteArray added = states.readAll();
        for (const SessionMoment moment : {SessionMoment::SaveBegins, SessionMoment::LoadBegins}) {
            if (added.contains(QByteArray(" ") + static_cast<char>(moment) + ' ')) {
                return;
            }
        }
        QTest::qSleep(1);
    }
}

std::optional<tst_KilledSessions::Left> tst_KilledSessions::KillOnce(const QString& folder,
                                                                     Random& random)
{
    const QString file = folder + "/states";
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", folder);
    environment.insert("QUILLMAP_SEED", QString::number(random.Bits()));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(folder + "/errors");
    process.start(WORK_FOREVER_PROGRAM, {file});
    Left left;
    for (QString* path : {&left.data, &left.projects}) {
        while (!process.canReadLine() && process.waitForReadyRead()) {}
        *path = QFile::decodeName(process.readLine().trimmed());
    }
    QTest::qSleep(1 + random.Below(Longest));
    if (random.Below(2) == 0) {
        AwaitFileWork(file);
        QTest::qSleep(1 + random.Below(FileWork));
    }
    left.kill = SharedClock();
    process.kill();
    const bool isKilled = process.waitForFinished() &&
                          process.exitStatus() == QProcess::CrashExit &&
                          process.exitCode() == SIGKILL;
    if (!isKilled || left.projects.isEmpty()) {
        qWarning("%s", ReadBytes(folder + "/errors").constData());
        return std::nullopt;
    }
    QList<QByteArray> lines = ReadBytes(file).split('\n');
    // What stands behind the last line's end.
    lines.removeLast();
    for (const QByteArray& line : qAsConst(lines)) {
        left.lines.append(ToSessionLine(line));
    }
    return left;
}

/// The files of both projects load, and are wholly old or wholly new.
void tst_KilledSessions::CheckFiles(WindowFixture& user, const Left& left)
{
    for (const char* project : {"first/first.xml", "second/second.xml"}) {
        m_toLoad = QDir(left.projects).filePath(project);
        user.Trigger("actionLoad");
        const QList<QByteArray> states = OnDisk(left.lines, m_toLoad);
        const QByteArray state = StateHash(user.window->GetDocument());
        QCOMPARE(user.window->GetDocument().Path(), m_toLoad);
        // One that was never opened is as it was.
        QVERIFY2(states.isEmpty() || states.contains(state),
                 state + " is on the disk\n" + Described(left.lines, left.kill));
        m_onDisk.insert(m_toLoad, state);
    }
}

void tst_KilledSessions::Check(WindowFixture& user, const Left& left, bool restoresFirst)
{
    const bool isShort = qEnvironmentVariableIsEmpty(KillsVariable);
    const Lines latest = Latest(left.lines, left.kill - (isShort ? MostLostInShortRun : MostLost));
    const QStringList folders = Recovery::DeadJournals();
    QVERIFY(folders.size() <= 1);
    QString reason = "there is none";
    if (folders.isEmpty() || !JournalReader::Open(folders.first(), &reason)) {
        CheckFiles(user, left);
        QVERIFY2(MayBeWithoutJournal(latest, m_onDisk),
                 "No journal: " + reason.toUtf8() + '\n' + Described(latest, left.kill));
        return;
    }
    QVERIFY2(!MustBeWithoutJournal(latest), Described(latest, left.kill));
    if (restoresFirst) {
        Restore(user, left, latest);
    }
    // Loading finishes or takes back what a killed save was about.
    CheckFiles(user, left);
    if (!restoresFirst) {
        Restore(user, left, latest);
    }
    QVERIFY(!QDir(folders.first()).exists());
}

void tst_KilledSessions::Restore(WindowFixture& user, const Left& left, const Lines& latest)
{
    const auto before = FilesBelow(left.projects);
    const auto restoreButton = [&user] {
        return user.Child<QFrame>("barNotice")->findChild<QAbstractButton*>("btnNoticeRestore");
    };
    QTRY_VERIFY(restoreButton() && restoreButton()->isVisible());
    QTest::mouseClick(restoreButton(), Qt::LeftButton);

    const QByteArray state = StateHash(user.window->GetDocument());
    QVERIFY2(HasState(latest, state), state + " was restored\n" + Described(left.lines, left.kill));
    QVERIFY(user.IsModified());
    QCOMPARE(FilesBelow(left.projects), before);
    ++m_counts.restored;
    for (auto line = latest.end(); line != latest.begin(); --line) {
        if ((line - 1)->state == state) {
            const qint64 until = line == latest.end() ? left.kill : line->milliseconds;
            m_counts.oldest = qMax(m_counts.oldest, left.kill - until);
            break;
        }
    }
}

void tst_KilledSessions::LoseAtMostASecond()
{
    const int kills = Kills();
    Random random;
    WindowFixture user;
    user.answers.SetOtherwise([this](QWidget& dialog) { AnswerLoad(dialog, m_toLoad); });
    for (int i = 0; i < kills || (m_counts.restored == 0 && i < 10 * kills); ++i) {
        const QTemporaryDir folder;
        const std::optional<Left> left = KillOnce(folder.path(), random);
        QVERIFY(left);
        m_counts.saving += left->lines.last().moment == SessionMoment::SaveBegins ? 1 : 0;
        m_counts.loading += left->lines.last().moment == SessionMoment::LoadBegins ? 1 : 0;
        qputenv("XDG_DATA_HOME", QFile::encodeName(left->data));
        user.Restart();
        m_onDisk.clear();
        Check(user, *left, random.Below(2) == 0);
        if (QTest::currentTestFailed()) {
            qWarning("It was kill %d.", i + 1);
            return;
        }
        user.window.reset();
        WindowFixture::SetModified(false);
    }
    qInfo("%d times restored, %d kills in a save and %d in a load, at most %d ms lost",
          m_counts.restored, m_counts.saving, m_counts.loading, static_cast<int>(m_counts.oldest));
    QVERIFY(m_counts.restored > 0);
}

QTEST_MAIN(tst_KilledSessions)
#include "tst_KilledSessions.moc"
