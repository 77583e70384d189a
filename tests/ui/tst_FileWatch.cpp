#include "document/FileWatch.h"

#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"
#include "ui/widgets/NoticeBar.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

/// What the window tells when other programs change the files of the open project.
class tst_FileWatch : public QObject
{
    Q_OBJECT

private slots:
    void TellsWhatOthersDid_data();
    void TellsWhatOthersDid();
    void WaitsForSlowWriters();
    void SeesWhatWasWrittenBeforeItBegan();
    void SeesAnotherFolderInItsPlace();
    void IsSilentAboutTheProgramsOwnFiles_data();
    void IsSilentAboutTheProgramsOwnFiles();
    void TellsAChangeOnce();
    void WithdrawsWhatIsBackAsItWas();
    void WaitsWhileSomethingIsUnderWay();
    void Reloads_data();
    void Reloads();
    void AReloadKeepsAViewedProjectReadOnly();

private:
    static QString Told(const WindowFixture& fixture)
    {
        return fixture.Child<NoticeBar>("barNotice")->isHidden()
                   ? QString()
                   : fixture.Child<QLabel>("lblNotice")->text();
    }
    static bool OffersReload(const WindowFixture& fixture)
    {
        return fixture.Child<QPushButton>("btnNoticeReload") != nullptr;
    }
    /// Loads a project with a background and three layers.
    static void Open(WindowFixture& fixture)
    {
        const QString path = fixture.WriteProject();
        QByteArray text = ReadBytes(path);
        text.replace("<background file=\"\"", "<background file=\"../world.png\"");
        text.replace("</layers>", "<layer usage_flags=\"0\" value_flags=\"0\" color=\"0\" "
                                  "visible=\"0\" name=\"green\"/></layers>");
        WriteBytes(path, text);
        QVERIFY(QFile::copy(fixture.Path("small/layers/red.tga"),
                            fixture.Path("small/layers/green.tga")));
        QImage picture(8, 8, QImage::Format_RGB32);
        picture.fill(Qt::green);
        QVERIFY(picture.save(fixture.Path("world.png")));
        fixture.Load(path);
        QCOMPARE(fixture.window->GetDocument().Layers().Layers().size(), 3);
    }
    /// Writes to the file itself, with as many bytes more.
    static void Append(const QString& path, int bytes = 1)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Append));
        file.write(QByteArray(bytes, ' '));
    }
    /// Puts another file in the place of the old one.
    static void Replace(const QString& path)
    {
        WriteBytes(path + ".new", ReadBytes(path) + ' ');
        QVERIFY(QFile::remove(path));
        QVERIFY(QFile::rename(path + ".new", path));
    }
};

void tst_FileWatch::TellsWhatOthersDid_data()
{
    QTest::addColumn<QStringList>("deeds");
    QTest::addColumn<QString>("notice");
    QTest::addColumn<bool>("offersReload");

    QTest::newRow("document written") << QStringList("append small/small.xml")
                                      << "'small.xml' was changed by another program." << true;
    QTest::newRow("document replaced") << QStringList("replace small/small.xml")
                                       << "'small.xml' was changed by another program." << true;
    QTest::newRow("document removed") << QStringList("remove small/small.xml")
                                      << "'small.xml' was removed by another program." << false;
    QTest::newRow("one bitmap") << QStringList("append small/layers/red.tga")
                                << "1 bitmap was changed by another program: red." << true;
    QTest::newRow("two bitmaps") << QStringList{"replace small/layers/red.tga",
                                                "append small/layers/blue.tga"}
                                 << "2 bitmaps were changed by another program: blue, red." << true;
    QTest::newRow("a bitmap removed") << QStringList("remove small/layers/red.tga")
                                      << "1 bitmap was removed by another program: red." << false;
    QTest::newRow("one bitmap changed, another removed")
        << QStringList{"append small/layers/green.tga", "remove small/layers/red.tga"}
        << "1 bitmap was changed by another program: green. "
           "1 bitmap was removed by another program: red."
        << false;
    QTest::newRow("folder of the bitmaps gone")
        << QStringList("remove small/layers")
        << "3 bitmaps were removed by another program: blue, green, red." << false;
    QTest::newRow("background") << QStringList("replace world.png")
                                << "'world.png' was changed by another program." << true;
    QTest::newRow("background removed") << QStringList("remove world.png")
                                        << "'world.png' was removed by another program." << false;
    QTest::newRow("background removed, bitmap changed")
        << QStringList{"remove world.png", "append small/layers/red.tga"}
        << "1 bitmap was changed by another program: red. "
           "'world.png' was removed by another program."
        << true;
    QTest::newRow("all at once") << QStringList{"append small/small.xml", "append world.png",
                                                "append small/layers/red.tga"}
                                 << "'small.xml' was changed by another program. "
                                    "'world.png' was changed by another program. "
                                    "1 bitmap was changed by another program: red."
                                 << true;
}

void tst_FileWatch::TellsWhatOthersDid()
{
    QFETCH(QStringList, deeds);
    QFETCH(QString, notice);
    QFETCH(bool, offersReload);
    WindowFixture fixture;
    Open(fixture);

    for (const QString& deed : deeds) {
        const QString path = fixture.Path(deed.section(' ', 1));
        if (deed.startsWith("append")) {
            Append(path);
        } else if (deed.startsWith("replace")) {
            Replace(path);
        } else if (QFileInfo(path).isDir()) {
            QVERIFY(QDir(path).removeRecursively());
        } else {
            QVERIFY(QFile::remove(path));
        }
    }

    QTRY_COMPARE(Told(fixture), notice);
    QCOMPARE(OffersReload(fixture), offersReload);
    QVERIFY(!fixture.IsModified());
}

void tst_FileWatch::WaitsForSlowWriters()
{
    WindowFixture fixture;
    Open(fixture);
    const QString path = fixture.Path("small/layers/red.tga");
    // Begins anew, as a program does that writes the file in place, and takes a while.
    WriteBytes(path, "x");
    int parts = 0;
    QTimer writer;
    connect(&writer, &QTimer::timeout, &writer, [&] {
        QVERIFY2(Told(fixture).isEmpty(), "The file is still being written.");
        Append(path);
        if (++parts == 12) {
            writer.stop();
        }
    });
    writer.start(200);
    QTRY_COMPARE(parts, 12);
    QTRY_COMPARE(Told(fixture), QString("1 bitmap was changed by another program: red."));
}

void tst_FileWatch::SeesWhatWasWrittenBeforeItBegan()
{
    WindowFixture fixture;
    Open(fixture);
    Append(fixture.Path("small/layers/red.tga"));
    FileWatch watch(fixture.window->GetDocument());
    const QSignalSpy spy(&watch, &FileWatch::Changed);
    QTRY_COMPARE(spy.size(), 1);
}

/// A folder that was moved away takes its watches along.
void tst_FileWatch::SeesAnotherFolderInItsPlace()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    const QString all = "'small.xml' was removed by another program. "
                        "2 bitmaps were removed by another program: blue, red.";
    const QString folder = fixture.Path("small");

    QVERIFY(QDir().rename(folder, folder + ".old"));
    QTRY_COMPARE(Told(fixture), all);
    QVERIFY(QDir().rename(folder + ".old", folder));
    QTRY_COMPARE(Told(fixture), QString());

    QVERIFY(QDir().rename(folder, folder + ".old"));
    QTRY_COMPARE(Told(fixture), all);
    for (const char* name : {"small.xml", "layers/red.tga", "layers/blue.tga"}) {
        WriteBytes(folder + '/' + name, ReadBytes(folder + ".old/" + name) + ' ');
    }
    const QString changed = QString(all).replace("removed", "changed");
    QTRY_COMPARE(Told(fixture), changed);
    QVERIFY(QFile::remove(folder + "/layers/red.tga"));
    QTRY_COMPARE(Told(fixture), QString("'small.xml' was changed by another program. "
                                        "1 bitmap was changed by another program: blue. "
                                        "1 bitmap was removed by another program: red."));
}

void tst_FileWatch::IsSilentAboutTheProgramsOwnFiles_data()
{
    QTest::addColumn<QString>("action");
    QTest::newRow("save") << "actionQuickSave";
    QTest::newRow("save elsewhere") << "actionSave";
    QTest::newRow("save and export") << "actionSaveAll";
    QTest::newRow("save that fails at the document") << "fail";
}

void tst_FileWatch::IsSilentAboutTheProgramsOwnFiles()
{
    QFETCH(QString, action);
    WindowFixture fixture;
    Open(fixture);
    LayerList& layers = fixture.window->GetDocument().Layers();
    layers.model()->setData(layers.model()->index(0, 0), "crimson", Qt::EditRole);
    QString folder = "small/";
    if (action == "actionQuickSave") {
        fixture.Trigger("actionQuickSave");
    } else if (action == "fail") {
        // The bitmaps fit, the document does not.
        QStandardItemModel* types = fixture.window->GetDocument().Types().model();
        types->setData(types->index(0, 0), QString(6000, 'x'), Qt::EditRole);
        const FileSizeLimit limit(5000);
        fixture.Trigger("actionQuickSave");
        // The journal does not fit either, which is told first.
        fixture.Child<NoticeBar>("barNotice")->Withdraw("unsafe");
    } else {
        folder = "copy/";
        QDir().mkpath(fixture.Path("copy"));
        fixture.TriggerWithFile(qPrintable(action), fixture.Path("copy/small.xml"));
    }
    QCOMPARE(fixture.IsModified(), action == "fail");

    // The look that finds this one finds all others.
    Append(fixture.Path(folder + "layers/blue.tga"));
    QTRY_COMPARE(Told(fixture), QString("1 bitmap was changed by another program: blue."));
}

void tst_FileWatch::TellsAChangeOnce()
{
    WindowFixture fixture;
    Open(fixture);
    const auto dismiss = [&fixture] {
        QTest::mouseClick(fixture.Child<QWidget>("btnNoticeClose"), Qt::LeftButton);
    };
    const auto* bar = fixture.Child<NoticeBar>("barNotice");
    Append(fixture.Path("small/layers/red.tga"));
    QTRY_VERIFY(!bar->isHidden());
    dismiss();
    QVERIFY(bar->isHidden());

    // Something else in the folder is a reason to look again, but not to tell again.
    FileWatch other(fixture.window->GetDocument());
    bool hasLooked = false;
    connect(&other, &FileWatch::Changed, &other, [&](const ForeignChanges&) { hasLooked = true; });
    WriteBytes(fixture.Path("small/layers/note.txt"), "x");
    QTRY_VERIFY(hasLooked);
    QVERIFY(bar->isHidden());

    // The same file again is another change.
    Append(fixture.Path("small/layers/red.tga"));
    QTRY_COMPARE(Told(fixture), QString("1 bitmap was changed by another program: red."));
}

void tst_FileWatch::WithdrawsWhatIsBackAsItWas()
{
    WindowFixture fixture;
    Open(fixture);
    const QString path = fixture.Path("small/layers/red.tga");
    QVERIFY(QFile::rename(path, path + ".old"));
    QTRY_COMPARE(Told(fixture), QString("1 bitmap was removed by another program: red."));
    QVERIFY(QFile::rename(path + ".old", path));
    QTRY_COMPARE(Told(fixture), QString());

    // A save is what the files should be, too.
    Append(path);
    QTRY_COMPARE(Told(fixture), QString("1 bitmap was changed by another program: red."));
    fixture.Trigger("actionQuickSave");
    QCOMPARE(Told(fixture), QString());
}

void tst_FileWatch::WaitsWhileSomethingIsUnderWay()
{
    WindowFixture fixture;
    Open(fixture);
    Document& document = fixture.window->GetDocument();
    const QString path = fixture.Path("small/small.xml");
    // The same file, seen by a document that is never busy.
    Document idle;
    idle.SetPath(path);
    FileWatch watch(idle);
    int tellings = 0;
    connect(&watch, &FileWatch::Changed, &watch, [&tellings] { ++tellings; });

    document.SetHandBusy(true);
    for (int i = 1; i <= 2; ++i) {
        Append(path);
        QTRY_COMPARE(tellings, i);
    }
    QVERIFY(Told(fixture).isEmpty());
    document.SetHandBusy(false);
    QTRY_COMPARE(Told(fixture), QString("'small.xml' was changed by another program."));
}

void tst_FileWatch::Reloads_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("isLoaded");
    QTest::newRow("without unsaved work") << "" << true;
    QTest::newRow("discarding unsaved work") << "Yes" << true;
    QTest::newRow("keeping unsaved work") << "No" << false;
}

void tst_FileWatch::Reloads()
{
    QFETCH(QString, answer);
    QFETCH(bool, isLoaded);
    WindowFixture fixture;
    Open(fixture);
    const QString path = fixture.Path("small/small.xml");
    WriteBytes(path, ReadBytes(path).replace("Deer", "Roe deer"));
    QTRY_VERIFY(OffersReload(fixture));
    if (!answer.isEmpty()) {
        fixture.SetModified(true);
        fixture.answers.AddButton(answer);
    }

    QTest::mouseClick(fixture.Child<QPushButton>("btnNoticeReload"), Qt::LeftButton);

    QCOMPARE(fixture.window->GetDocument().Types().model()->index(0, 0).data().toString(),
             QString(isLoaded ? "Roe deer" : "Deer"));
    QCOMPARE(Told(fixture).isEmpty(), isLoaded);
    QVERIFY(fixture.window->GetDocument().CanTravel());
}

void tst_FileWatch::AReloadKeepsAViewedProjectReadOnly()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Restart(path);
    // That the project is open for viewing.
    QTest::mouseClick(fixture.Child<QToolButton>("btnNoticeClose"), Qt::LeftButton);
    WriteBytes(path, ReadBytes(path).replace("Deer", "Roe deer"));
    QTRY_VERIFY(OffersReload(fixture));
    QTest::mouseClick(fixture.Child<QPushButton>("btnNoticeReload"), Qt::LeftButton);
    QCOMPARE(fixture.window->GetDocument().Types().model()->index(0, 0).data().toString(),
             QString("Roe deer"));
    QVERIFY(!fixture.Action("actionSave")->isEnabled());
    QVERIFY(!fixture.window->GetDocument().CanTravel());
}

QTEST_MAIN(tst_FileWatch)
#include "tst_FileWatch.moc"
