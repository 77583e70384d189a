#include "ui/RecentProjects.h"

#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"

#include <QMenu>
#include <QSettings>
#include <QTest>

/// The menu "Recent projects" of the window.
class tst_RecentProjects : public QObject
{
    Q_OBJECT

private slots:
    void TellsEqualNamesApart_data();
    void TellsEqualNamesApart();
    void IsEmptyAtFirst();
    void HoldsWhatWasLoadedOrSaved();
    void KeepsTheLastTen();
    void GreysWhatIsMissing();
    void PassesOverForeignSettings();
    void AClickLoads_data();
    void AClickLoads();
    void OutlivesARefusedClose();

private:
    /// What the menu shows when it is opened. Entries that cannot be chosen are in brackets.
    static QStringList Shown(const WindowFixture& fixture)
    {
        auto* menu = fixture.Child<QMenu>("menuRecent");
        emit menu->aboutToShow();
        QStringList texts;
        const QList<QAction*> actions = menu->actions();
        for (const QAction* action : actions) {
            texts += action->isEnabled() ? action->text() : '[' + action->text() + ']';
        }
        return texts;
    }
    static void Choose(const WindowFixture& fixture, int entry)
    {
        emit fixture.Child<QMenu>("menuRecent")->aboutToShow();
        fixture.Child<QMenu>("menuRecent")->actions().at(entry)->trigger();
    }
};

void tst_RecentProjects::TellsEqualNamesApart_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QStringList>("labels");

    QTest::newRow("none") << QStringList() << QStringList();
    QTest::newRow("different names")
        << QStringList{"/a/x.xml", "/a/y.xml"} << QStringList{"x.xml", "y.xml"};
    QTest::newRow("different suffixes")
        << QStringList{"/a/x.xml", "/a/x.qm"} << QStringList{"x.xml", "x.qm"};
    QTest::newRow("other folders") << QStringList{"/a/x.xml", "/b/x.xml", "/a/y.xml"}
                                   << QStringList{"x.xml (a)", "x.xml (b)", "y.xml"};
    QTest::newRow("equal folders") << QStringList{"/a/m/x.xml", "/b/m/x.xml", "/c/x.xml"}
                                   << QStringList{"x.xml (a/m)", "x.xml (b/m)", "x.xml (c)"};
    QTest::newRow("one folder in the other")
        << QStringList{"/m/x.xml", "/a/m/x.xml"} << QStringList{"x.xml (/m)", "x.xml (a/m)"};
}

void tst_RecentProjects::TellsEqualNamesApart()
{
    QFETCH(QStringList, paths);
    QFETCH(QStringList, labels);
    QCOMPARE(RecentProjects::Labels(paths), labels);
}

void tst_RecentProjects::IsEmptyAtFirst()
{
    const WindowFixture fixture;
    QCOMPARE(Shown(fixture), QStringList("[Empty]"));
}

void tst_RecentProjects::HoldsWhatWasLoadedOrSaved()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject("one"));
    fixture.TriggerWithFile("actionSave", fixture.Path("a&b.xml"));
    fixture.Load(fixture.WriteProject("two"));
    QCOMPARE(Shown(fixture), (QStringList{"two.xml", "a&&b.xml", "one.xml"}));
    const auto* menu = fixture.Child<QMenu>("menuRecent");
    QVERIFY(menu->toolTipsVisible());
    QCOMPARE(menu->actions().at(0)->toolTip(), fixture.Path("two/two.xml"));

    fixture.Load(fixture.Path("one/../one/one.xml"));
    // A load that fails does not count.
    WriteBytes(fixture.Path("bad.xml"), "<qm-config><layers><layer name='a'></layers></qm-config>");
    fixture.Load(fixture.Path("bad.xml"));
    QCOMPARE(Shown(fixture), (QStringList{"one.xml", "two.xml", "a&&b.xml"}));

    // A start with a project counts too, although it is only viewed.
    fixture.Restart(fixture.WriteProject("viewed"));
    QCOMPARE(Shown(fixture), (QStringList{"viewed.xml", "one.xml", "two.xml", "a&&b.xml"}));
}

void tst_RecentProjects::KeepsTheLastTen()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    QStringList expected("small.xml");
    for (int i = 0; i < 12; ++i) {
        fixture.TriggerWithFile("actionSave", fixture.Path(QString("copy%1.xml").arg(i)));
        expected.prepend(QString("copy%1.xml").arg(i));
    }
    QCOMPARE(Shown(fixture), expected.mid(0, 10));
}

void tst_RecentProjects::GreysWhatIsMissing()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.TriggerWithFile("actionSave", fixture.Path("copy.xml"));
    QFile::remove(fixture.Path("copy.xml"));
    QCOMPARE(Shown(fixture), (QStringList{"[copy.xml]", "small.xml"}));
    // A folder is no project.
    QDir().mkpath(fixture.Path("copy.xml"));
    QCOMPARE(Shown(fixture), (QStringList{"[copy.xml]", "small.xml"}));
}

void tst_RecentProjects::PassesOverForeignSettings()
{
    const WindowFixture fixture;
    QStringList paths{"", "/a/0.xml", "/a/0.xml"};
    for (int i = 1; i < 20; ++i) {
        paths.append(QString("/a/%1.xml").arg(i));
    }
    QSettings("Halvern Works", "Quillmap").setValue("recentProjects", paths);
    const QStringList shown = Shown(fixture);
    QCOMPARE(shown.size(), 10);
    QCOMPARE(shown.first(), QString("[0.xml]"));
    QCOMPARE(shown.last(), QString("[9.xml]"));
}

void tst_RecentProjects::AClickLoads_data()
{
    QTest::addColumn<bool>("isModified");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("isLoaded");

    QTest::newRow("without unsaved work") << false << "" << true;
    QTest::newRow("discarding unsaved work") << true << "Yes" << true;
    QTest::newRow("keeping unsaved work") << true << "No" << false;
}

void tst_RecentProjects::AClickLoads()
{
    QFETCH(bool, isModified);
    QFETCH(QString, answer);
    QFETCH(bool, isLoaded);
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject("one"));
    fixture.Load(fixture.WriteProject("two"));
    fixture.SetModified(isModified);
    if (!answer.isEmpty()) {
        fixture.answers.AddButton(answer);
    }

    Choose(fixture, 1);

    QCOMPARE(fixture.window->windowTitle().section(' ', 0, 0), QString(isLoaded ? "one" : "two"));
    QCOMPARE(Shown(fixture).at(0), QString(isLoaded ? "one.xml" : "two.xml"));
    QCOMPARE(fixture.answers.Asked().mid(2).join("").startsWith("Load configuration: "),
             isModified);
}

void tst_RecentProjects::OutlivesARefusedClose()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.SetModified(true);
    fixture.answers.AddButton("No");
    QVERIFY(!fixture.window->close());
    // Neither the load nor the close wrote the window's settings.
    QVERIFY(QSettings("Halvern Works", "Tarvo Tools").allKeys().isEmpty());
    QCOMPARE(QSettings("Halvern Works", "Quillmap").value("recentProjects").toStringList(),
             QStringList(fixture.Path("small/small.xml")));
}

QTEST_MAIN(tst_RecentProjects)
#include "tst_RecentProjects.moc"
