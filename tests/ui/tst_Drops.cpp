#include "document/Document.h"
#include "tests/support/Drags.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"
#include "ui/widgets/NoticeBar.h"

#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

/// Files that are dropped onto the window.
class tst_Drops : public QObject
{
    Q_OBJECT

private slots:
    void AProjectLoadsAnywhere_data();
    void AProjectLoadsAnywhere();
    void AsksBeforeItDiscardsWork_data();
    void AsksBeforeItDiscardsWork();
    void TakesOneFileOfItsKinds_data();
    void TakesOneFileOfItsKinds();
    void RefusesWhileSomethingIsUnderWay_data();
    void RefusesWhileSomethingIsUnderWay();
    void APictureBecomesTheBackground();
    void AnOfferEndsWithItsProject();
    void LeavesDragsOfTextAlone();

private:
    static QString Title(const WindowFixture& fixture)
    {
        return fixture.window->windowTitle().section(' ', 0, 0);
    }
    static Qt::DropAction Drop(QWidget& widget, const QString& path)
    {
        return DropLinks(widget, {QUrl::fromLocalFile(path)});
    }
    static QWidget& Target(const WindowFixture& fixture, const QString& name)
    {
        if (name.isEmpty()) {
            return *fixture.window;
        }
        auto* widget = fixture.window->findChild<QWidget*>(name);
        auto* area = qobject_cast<QAbstractScrollArea*>(widget);
        return area ? *area->viewport() : *widget;
    }
};

void tst_Drops::AProjectLoadsAnywhere_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("isOpen");

    for (const char* target : {"", "paintView", "treeLayers", "treeTerTypes", "toolBar", "menuBar",
                               "messageListView", "gboWorldPos", "floating dock"}) {
        QTest::addRow("'%s'", target) << target << true;
    }
    // Nothing can be edited, and the map is disabled.
    QTest::newRow("map without a project") << "paintView" << false;
    QTest::newRow("dock without a project") << "treeLayers" << false;
}

void tst_Drops::AProjectLoadsAnywhere()
{
    QFETCH(QString, target);
    QFETCH(bool, isOpen);
    WindowFixture fixture;
    if (isOpen) {
        fixture.Load(fixture.WriteProject("one"));
    }
    const QString path = fixture.WriteProject("two");
    fixture.Trigger("actionViewTerritoryTypes");
    fixture.Child<QWidget>("DockTerTypes")->show();
    if (target == "floating dock") {
        target = "messageListView";
        auto* dock = fixture.Child<QDockWidget>("DockStatus");
        dock->setFloating(true);
        QVERIFY(QTest::qWaitForWindowExposed(dock));
    }

    // A move would remove the file.
    QCOMPARE(Drop(Target(fixture, target), path), Qt::CopyAction);

    QTRY_COMPARE(Title(fixture), QString("two"));
    QVERIFY(fixture.window->GetDocument().CanTravel());
}

void tst_Drops::AsksBeforeItDiscardsWork_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("title");
    QTest::newRow("Yes") << "Yes"
                         << "two";
    QTest::newRow("No") << "No"
                        << "one";
}

void tst_Drops::AsksBeforeItDiscardsWork()
{
    QFETCH(QString, answer);
    QFETCH(QString, title);
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject("one"));
    const QString path = fixture.WriteProject("two");
    fixture.SetModified(true);
    fixture.answers.AddButton(answer);

    QCOMPARE(Drop(*fixture.View().viewport(), path), Qt::CopyAction);

    QTRY_COMPARE(fixture.answers.Asked().size(), 2);
    QVERIFY(fixture.answers.Asked().at(1).startsWith("Load configuration: "));
    QTRY_COMPARE(Title(fixture), title);
}

void tst_Drops::TakesOneFileOfItsKinds_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("isOpen");
    QTest::addColumn<bool>("isTaken");

    QTest::newRow("project") << QStringList("a.xml") << true << true;
    QTest::newRow("project in capitals") << QStringList("a.XML") << true << true;
    QTest::newRow("picture") << QStringList("a.png") << true << true;
    QTest::newRow("jpg") << QStringList("a.JPG") << true << true;
    QTest::newRow("bmp") << QStringList("a.bmp") << true << true;
    QTest::newRow("picture without a project") << QStringList("a.png") << false << false;
    QTest::newRow("other file") << QStringList("a.txt") << true << false;
    QTest::newRow("map") << QStringList("a.map") << true << false;
    QTest::newRow("two projects") << QStringList{"a.xml", "b.xml"} << true << false;
    QTest::newRow("project and picture") << QStringList{"a.xml", "a.png"} << true << false;
    QTest::newRow("folder") << QStringList("folder.xml/") << true << false;
    QTest::newRow("missing file") << QStringList("missing.xml?") << true << false;
    QTest::newRow("page of the web") << QStringList("http://a.b/c.xml") << true << false;
}

void tst_Drops::TakesOneFileOfItsKinds()
{
    QFETCH(QStringList, names);
    QFETCH(bool, isOpen);
    QFETCH(bool, isTaken);
    WindowFixture fixture;
    if (isOpen) {
        fixture.Load(fixture.WriteProject());
    }
    QList<QUrl> links;
    for (const QString& name : names) {
        const QString path = fixture.Path(QString(name).remove('?'));
        if (name.endsWith('/')) {
            QDir().mkpath(path);
        } else if (!name.startsWith("http:") && !name.endsWith('?')) {
            WriteBytes(path, "<qm-config/>");
        }
        links += name.startsWith("http:") ? QUrl(name) : QUrl::fromLocalFile(path);
    }

    for (QWidget* target : {static_cast<QWidget*>(fixture.window.get()), fixture.View().viewport(),
                            fixture.Child<QWidget>("toolBar")}) {
        QCOMPARE(DropLinks(*target, links) != Qt::IgnoreAction, isTaken);
    }
}

void tst_Drops::RefusesWhileSomethingIsUnderWay_data()
{
    QTest::addColumn<QString>("work");
    QTest::newRow("files") << "files";
    QTest::newRow("stroke") << "stroke";
    QTest::newRow("dialog") << "dialog";
}

void tst_Drops::RefusesWhileSomethingIsUnderWay()
{
    QFETCH(QString, work);
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject("one"));
    const QString path = fixture.WriteProject("two");
    QWidget& map = *fixture.View().viewport();
    Qt::DropAction answer = Qt::CopyAction;
    if (work == "dialog") {
        fixture.answers.Add([&](QWidget& dialog) {
            answer = Drop(map, path);
            dialog.close();
        });
        fixture.Trigger("actionLoad");
    } else if (work == "stroke") {
        fixture.Trigger("actionTogglePaintMode");
        QTest::mousePress(&map, Qt::LeftButton);
        answer = Drop(map, path);
        QTest::mouseRelease(&map, Qt::LeftButton);
    } else {
        fixture.window->GetDocument().SetFilesBusy(true);
        answer = Drop(map, path);
        fixture.window->GetDocument().SetFilesBusy(false);
    }

    QCOMPARE(answer, Qt::IgnoreAction);
    QCOMPARE(Drop(map, path), Qt::CopyAction);
    fixture.SetModified(false);
    QTRY_COMPARE(Title(fixture), QString("two"));
}

void tst_Drops::APictureBecomesTheBackground()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    const QString path = fixture.Path("small/x.png");
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(Qt::green);
    QVERIFY(picture.save(path));

    QCOMPARE(Drop(*fixture.View().viewport(), path), Qt::CopyAction);

    QTRY_VERIFY(fixture.Child<QPushButton>("btnNoticeUseBackground"));
    QCOMPARE(fixture.Child<QLabel>("lblNotice")->text(), QString("Use 'x.png' as background?"));
    QVERIFY(ProjectSettings::Instance().BackgroundFile().isEmpty());
    QTest::mouseClick(fixture.Child<QPushButton>("btnNoticeUseBackground"), Qt::LeftButton);
    QCOMPARE(ProjectSettings::Instance().BackgroundFile(), QString("x.png"));
    QVERIFY(fixture.IsModified());
    QVERIFY(fixture.Child<NoticeBar>("barNotice")->isHidden());
    fixture.Trigger("actionUndo");
    QVERIFY(ProjectSettings::Instance().BackgroundFile().isEmpty());
}

void tst_Drops::AnOfferEndsWithItsProject()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    WriteBytes(fixture.Path("x.png"), "a picture");
    const auto* bar = fixture.Child<NoticeBar>("barNotice");
    Drop(*fixture.window, fixture.Path("x.png"));
    QTRY_VERIFY(!bar->isHidden());
    fixture.Trigger("actionQuickSave");
    QVERIFY(!bar->isHidden());
    fixture.Load(path);
    QVERIFY(bar->isHidden());
}

void tst_Drops::LeavesDragsOfTextAlone()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    QLineEdit line(fixture.window.get());
    line.show();
    QMimeData data;
    data.setText("word");
    QDragEnterEvent enter({1, 1}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&line, &enter);
    QDropEvent drop({1, 1}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&line, &drop);
    QCOMPARE(line.text(), QString("word"));
    // A link would be text, too.
    QCOMPARE(Drop(line, fixture.Path("a.txt")), Qt::IgnoreAction);
    QCOMPARE(line.text(), QString("word"));
}

QTEST_MAIN(tst_Drops)
#include "tst_Drops.moc"
