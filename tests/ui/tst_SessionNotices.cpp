#include "document/Document.h"
#include "document/Formulas.h"
#include "document/LiveLayers.h"
#include "document/edits/FormulaEdits.h"
#include "document/edits/LayerEdits.h"
#include "document/journal/JournalReader.h"
#include "document/journal/Recovery.h"
#include "document/journal/SessionLock.h"
#include "layers/Formula.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/Files.h"
#include "tests/support/JournalSession.h"
#include "tests/support/WindowFixture.h"
#include "ui/widgets/NoticeBar.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QDir>
#include <QLabel>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <QTest>

namespace {

const char* const Question = "Discard unsaved work: The unsaved work that was found will be lost."
                             "\n\nAre you sure you want to discard it?";

QString NoticeOf(const WindowFixture& fixture)
{
    const auto* bar = fixture.Child<NoticeBar>("barNotice");
    return bar->isHidden() ? QString() : bar->findChild<QLabel*>("lblNotice")->text();
}

void Click(const WindowFixture& fixture, const char* button)
{
    auto* widget = fixture.Child<NoticeBar>("barNotice")->findChild<QAbstractButton*>(button);
    QVERIFY2(widget, button);
    QTest::mouseClick(widget, Qt::LeftButton);
}

void RenameFirstLayer(const WindowFixture& fixture, const QString& name)
{
    LayerList& layers = fixture.window->GetDocument().Layers();
    layers.model()->setData(layers.model()->index(0, 0), name, Qt::EditRole);
}

/// The folders of all journals, of dead and of living sessions.
QStringList Journals()
{
    const QDir folder(Recovery::Folder());
    const QStringList names = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QStringList journals;
    for (const QString& name : names) {
        journals.append(folder.filePath(name));
    }
    return journals;
}

/// The copy of a folder that a living session keeps is that of a dead one: the file with which the
/// portable build tells the lock's owner stays behind.
void CopyFolder(const QString& from, const QString& to)
{
    QVERIFY(QDir().mkpath(to));
    QStringList names = QDir(from).entryList(QDir::Files);
    names.removeAll("lock.lock");
    for (const QString& name : qAsConst(names)) {
        QVERIFY(QFile::copy(from + '/' + name, to + '/' + name));
    }
}

} // namespace

/// What a session that died left, in the bar above the map, and other sessions that live.
class tst_SessionNotices : public QObject
{
    Q_OBJECT

private slots:
    void KeepsNothingWithoutAChange();
    void RestoresWhatADeadSessionLeft();
    void RestoresLiveLayers();
    void RestoresUnderNoNameWhatChangedMeanwhile_data();
    void RestoresUnderNoNameWhatChangedMeanwhile();
    void AsksBeforeItReplacesUnsavedWork();
    void LaterLeavesTheWorkForTheNextStart();
    void DiscardsWhenTheUserAgrees_data();
    void DiscardsWhenTheUserAgrees();
    void RemovesWhatRestoresNothing_data();
    void RemovesWhatRestoresNothing();
    void FindsASessionThatDiesLater();
    void WithdrawsWhatAnotherSessionTook();
    void ADiscardedSessionIsAnEarlierVersion();
    void TellsOfAnotherWindow();
    void TellsThatWorkCannotBeKept();

private:
    /// Makes a session that renames the first layer to "green" and dies. Returns the files that a
    /// save would have written then.
    /// work: what the session does before that.
    static WindowFixture::SavedFiles LeaveWork(
        WindowFixture& fixture, const std::function<void()>& work = [] {});
};

WindowFixture::SavedFiles tst_SessionNotices::LeaveWork(WindowFixture& fixture,
                                                        const std::function<void()>& work)
{
    WindowFixture::SavedFiles saved;
    QTemporaryDir kept;
    [&] {
        fixture.Load(fixture.WriteProject());
        work();
        RenameFirstLayer(fixture, "leaf");
        QTRY_COMPARE(Journals().size(), 1);
        // The bitmaps are copied after the first commit. The next commit refers to the copies.
        const QDir journal(Journals().constFirst());
        QTRY_COMPARE(journal.entryList({"base-*.tga"}).size(), 2);
        RenameFirstLayer(fixture, "green");
        QTRY_VERIFY(JournalReader::Open(Journals().constFirst()) &&
                    JournalReader::Open(Journals().constFirst())->Text().contains("green"));
        saved = fixture.SavedBytes();
        CopyFolder(Journals().constFirst(), kept.filePath("journal"));
        fixture.SetModified(false);
        fixture.window.reset();
        QCOMPARE(Journals().size(), 0);
        CopyFolder(kept.filePath("journal"), Recovery::Folder() + "/dead");
    }();
    return saved;
}

void tst_SessionNotices::KeepsNothingWithoutAChange()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    QTest::qWait(1);
    QCOMPARE(Journals().size(), 0);
    auto* mark = fixture.Child<QLabel>("lblUnsaved");
    QVERIFY(mark->isHidden());

    RenameFirstLayer(fixture, "green");
    QTRY_COMPARE(Journals().size(), 1);
    QVERIFY(!mark->isHidden());
    QCOMPARE(QFileInfo(Journals().constFirst()).permissions() &
                 (QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::ExeOther),
             QFileDevice::Permissions());

    fixture.Trigger("actionQuickSave");
    QTRY_COMPARE(Journals().size(), 0);
    QVERIFY(mark->isHidden());
}

void tst_SessionNotices::RestoresWhatADeadSessionLeft()
{
    WindowFixture fixture;
    const WindowFixture::SavedFiles saved = LeaveWork(fixture);
    const QString path = fixture.Path("small/small.xml");
    const QByteArray before = ReadBytes(path);

    fixture.Restart();
    QTRY_VERIFY(!NoticeOf(fixture).isEmpty());
    static const QRegularExpression expected(
        "^Unsaved work on 'small', last change \\d\\d:\\d\\d, was found\\.$");
    QVERIFY2(expected.match(NoticeOf(fixture)).hasMatch(), qPrintable(NoticeOf(fixture)));
    Click(fixture, "btnNoticeRestore");

    QVERIFY(fixture.SavedBytes() == saved);
    QVERIFY(fixture.IsModified());
    QCOMPARE(fixture.window->GetDocument().Path(), path);
    QCOMPARE(fixture.window->windowTitle(), QString("small - Tarvo Ledger Tool"));
    QCOMPARE(NoticeOf(fixture), QString());
    QCOMPARE(ReadBytes(path), before);
    QVERIFY(!QFileInfo::exists(fixture.Path("small/layers/green.tga")));
    // The work is in the journal of this session now.
    QCOMPARE(Recovery::DeadJournals(), QStringList());
    QCOMPARE(Journals().size(), 1);
    QVERIFY(!fixture.window->GetDocument().CanUndo());

    fixture.Trigger("actionQuickSave");
    QVERIFY(ReadBytes(path).contains("green"));
    QVERIFY(!fixture.IsModified());
}

void tst_SessionNotices::RestoresLiveLayers()
{
    WindowFixture fixture;
    const auto document = [&fixture]() -> Document& { return fixture.window->GetDocument(); };
    LeaveWork(fixture, [&document] {
        Layer* red = document().Layers().LayerByName("red");
        const QString code = Formula{OperationDilation, {red->Id()}, 50}.Code();
        document().Do(Edits::AddComputedLayer(document().Layers(), "ring", code,
                                              EvaluateAtLayerSize(document().Layers(), code)));
        document().Do(Edits::MakeLayerLive(*document().Layers().LayerByName("ring"), {}));
    });
    fixture.Restart();
    QTRY_VERIFY(!NoticeOf(fixture).isEmpty());
    Click(fixture, "btnNoticeRestore");

    const Layer* ring = document().Layers().LayerByName("ring");
    QCOMPARE(document().LayerFormulas().Describe(*ring),
             QString("Dilation of green, 50 m, up to date"));
    QVERIFY(document().Live().IsFollowing(*ring));
}

void tst_SessionNotices::RestoresUnderNoNameWhatChangedMeanwhile_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("isRemoved");

    QTest::newRow("the document") << "small/small.xml" << false;
    QTest::newRow("a bitmap") << "small/layers/red.tga" << false;
    QTest::newRow("no document") << "small/small.xml" << true;
    QTest::newRow("no project") << "small" << true;
}

void tst_SessionNotices::RestoresUnderNoNameWhatChangedMeanwhile()
{
    QFETCH(QString, file);
    QFETCH(bool, isRemoved);
    WindowFixture fixture;
    WindowFixture::SavedFiles saved = LeaveWork(fixture);
    const QString path = fixture.Path(file);
    if (isRemoved) {
        QVERIFY(QFileInfo(path).isDir() ? QDir(path).removeRecursively() : QFile::remove(path));
    } else {
        WriteBytes(path, "somebody else's");
    }

    fixture.Restart();
    QTRY_VERIFY(!NoticeOf(fixture).isEmpty());
    Click(fixture, "btnNoticeRestore");

    QCOMPARE(NoticeOf(fixture), QString("The files of 'small' changed meanwhile, or are gone. The "
                                        "restored work has no file yet."));
    QCOMPARE(fixture.window->GetDocument().Path(), QString());
    QVERIFY(fixture.window->windowTitle().startsWith("Unsaved"));
    QVERIFY(fixture.IsModified());
    const QVector<Layer*> layers = fixture.window->GetDocument().Layers().Layers();
    QCOMPARE(layers.size(), 2);
    QCOMPARE(layers[0]->text(), QString("green"));
    QCOMPARE(layers[1]->text(), QString("blue"));
    const WindowFixture::SavedFiles restored = fixture.SavedBytes();
    QCOMPARE(restored.size(), saved.size());
    for (auto each = saved.cbegin(); each != saved.cend(); ++each) {
        if (each.key().endsWith(".tga")) {
            QCOMPARE(restored.value(each.key()), each.value());
        }
    }
    QVERIFY(isRemoved ? !QFileInfo::exists(path) : ReadBytes(path) == "somebody else's");
}

void tst_SessionNotices::AsksBeforeItReplacesUnsavedWork()
{
    WindowFixture fixture;
    LeaveWork(fixture);
    fixture.Restart();
    QTRY_VERIFY(!NoticeOf(fixture).isEmpty());
    fixture.SetModified(true);
    fixture.answers.AddButton("No");

    Click(fixture, "btnNoticeRestore");

    QVERIFY(!NoticeOf(fixture).isEmpty());
    QCOMPARE(Recovery::DeadJournals().size(), 1);
    QVERIFY(fixture.window->GetDocument().Layers().IsEmpty());
    fixture.SetModified(false);
}

void tst_SessionNotices::LaterLeavesTheWorkForTheNextStart()
{
    WindowFixture fixture;
    LeaveWork(fixture);
    fixture.Restart();
    QTRY_VERIFY(!NoticeOf(fixture).isEmpty());
    Click(fixture, "btnNoticeLater");
    QCOMPARE(NoticeOf(fixture), QString());
    QCOMPARE(Recovery::DeadJournals().size(), 1);

    fixture.Restart();
    QTRY_VERIFY(!NoticeOf(fixture).isEmpty());
}

void tst_SessionNotices::DiscardsWhenTheUserAgrees_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("left");

    QTest::newRow("yes") << "Yes" << 0;
    QTest::newRow("no") << "No" << 1;
}

void tst_SessionNotices::DiscardsWhenTheUserAgrees()
{
    QFETCH(QString, button);
    QFETCH(int, left);
    WindowFixture fixture;
    LeaveWork(fixture);
    fixture.Restart();
    QTRY_VERIFY(!NoticeOf(fixture).isEmpty());
    fixture.answers.AddButton(button);

    Click(fixture, "btnNoticeDiscard");

    QCOMPARE(fixture.answers.Asked().constLast(), QString(Question));
    QCOMPARE(Recovery::DeadJournals().size(), left);
    QCOMPARE(NoticeOf(fixture).isEmpty(), left == 0);
}

void tst_SessionNotices::RemovesWhatRestoresNothing_data()
{
    QTest::addColumn<bool>("isDamaged");

    QTest::newRow("killed before its first commit") << false;
    QTest::newRow("damaged") << true;
}

void tst_SessionNotices::RemovesWhatRestoresNothing()
{
    QFETCH(bool, isDamaged);
    WindowFixture fixture;
    LeaveWork(fixture);
    const QString dead = Recovery::Folder() + "/dead";
    CopyFolder(dead, Recovery::Folder() + "/older");
    const QByteArray log = ReadBytes(dead + "/log");
    // The first record is that of a layer.
    WriteBytes(dead + "/log", isDamaged ? 'x' + log : log.left(10));
    QCOMPARE(Recovery::DeadJournals().size(), 2);

    fixture.Restart();
    // The older one comes last.
    QTRY_VERIFY(!NoticeOf(fixture).isEmpty());
    QCOMPARE(QFileInfo::exists(dead), isDamaged);
    Click(fixture, "btnNoticeLater");
    QCOMPARE(NoticeOf(fixture), QString());
}

void tst_SessionNotices::FindsASessionThatDiesLater()
{
    WindowFixture fixture;
    LeaveWork(fixture);
    const QString dead = Recovery::Folder() + "/dead";
    const QString away = fixture.Path("away");
    CopyFolder(dead, away);
    QVERIFY(QDir(dead).removeRecursively());
    fixture.Restart();
    QTest::qWait(1);
    QCOMPARE(NoticeOf(fixture), QString());

    CopyFolder(away, dead);

    QTRY_VERIFY(!NoticeOf(fixture).isEmpty());
}

void tst_SessionNotices::WithdrawsWhatAnotherSessionTook()
{
    WindowFixture fixture;
    LeaveWork(fixture);
    fixture.Restart();
    QTRY_VERIFY(!NoticeOf(fixture).isEmpty());

    QVERIFY(Recovery::Discard(Recovery::DeadJournals().constFirst()));

    QTRY_COMPARE(NoticeOf(fixture), QString());
}

void tst_SessionNotices::ADiscardedSessionIsAnEarlierVersion()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    RenameFirstLayer(fixture, "green");
    fixture.answers.AddButton("Yes");
    fixture.Load(fixture.WriteProject("other"));
    fixture.Load(fixture.Path("small/small.xml"));
    fixture.answers.Add([](QWidget& dialog) {
        auto* list = dialog.findChild<QAbstractItemView*>("viewVersions");
        list->setCurrentIndex(list->model()->index(0, 0));
        QTest::mouseClick(dialog.findChild<QAbstractButton*>("btnOpenCopy"), Qt::LeftButton);
    });

    fixture.Trigger("actionVersions");

    QCOMPARE(fixture.window->GetDocument().Layers().LayerAt(0)->text(), QString("green"));
    QCOMPARE(fixture.window->GetDocument().Path(), QString());
    QVERIFY(fixture.IsModified());
    fixture.SetModified(false);
}

void tst_SessionNotices::TellsOfAnotherWindow()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    auto other = std::make_unique<SessionLock>(path);
    QCOMPARE(other->GetState(), SessionLock::State::Held);

    fixture.Load(path);
    QTRY_COMPARE(NoticeOf(fixture),
                 QString("'small' is open in another window, too. The one that saves last replaces "
                         "what the other one saved."));
    other.reset();
    QTRY_COMPARE(NoticeOf(fixture), QString());
    // Now it is this window's.
    QCOMPARE(SessionLock(path).GetState(), SessionLock::State::Taken);
    fixture.Load(fixture.WriteProject("other"));
    QTRY_COMPARE(SessionLock(path).GetState(), SessionLock::State::Held);
}

void tst_SessionNotices::TellsThatWorkCannotBeKept()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    WriteBytes(QFileInfo(Recovery::Folder()).path() + "/x", "");
    QDir(Recovery::Folder()).removeRecursively();
    WriteBytes(Recovery::Folder(), "no folder");

    RenameFirstLayer(fixture, "green");
    QTRY_VERIFY(NoticeOf(fixture).startsWith("Unsaved work is not kept safe from a crash: "));
    RenameFirstLayer(fixture, "yellow");
    fixture.Trigger("actionQuickSave");
    QCOMPARE(NoticeOf(fixture), QString());
    QVERIFY(QFile::remove(Recovery::Folder()));
    RenameFirstLayer(fixture, "brown");
    QTRY_COMPARE(Journals().size(), 1);
    fixture.SetModified(false);
}

QTEST_MAIN(tst_SessionNotices)
#include "tst_SessionNotices.moc"
