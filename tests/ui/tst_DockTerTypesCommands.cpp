#include "ui/DockTerTypes.h"

#include "tests/support/LogSpy.h"
#include "tests/support/TwoTypesFixture.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QContextMenuEvent>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <functional>

namespace {

/// Adds the context menus of the rows.
class Fixture : public TwoTypesFixture
{
public:
    QString CurrentText() { return Tree().currentIndex().data().toString(); }

    /// Opens the context menu there with the mouse and runs work while it is open. Returns whether
    /// a menu opened.
    bool WithMenu(QPoint position, const std::function<void(QMenu&)>& work)
    {
        bool isOpen = false;
        QTimer::singleShot(0, types, [&] {
            if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
                isOpen = true;
                // Process the events of opening before the user's next action.
                QTest::qWait(1);
                work(*menu);
                if (menu->isVisible()) {
                    menu->close();
                }
            }
        });
        QContextMenuEvent event(QContextMenuEvent::Mouse, position,
                                Tree().viewport()->mapToGlobal(position));
        QApplication::sendEvent(Tree().viewport(), &event);
        return isOpen;
    }
    QPoint At(const QStandardItem* item) { return Tree().visualRect(item->index()).center(); }

    /// Clicks an entry of a row's context menu.
    void Choose(const QStandardItem* item, const QString& text)
    {
        const bool isOpen = WithMenu(At(item), [&text](QMenu& menu) {
            const QList<QAction*> actions = menu.actions();
            for (QAction* action : actions) {
                if (action->text() == text) {
                    QTest::mouseClick(&menu, Qt::LeftButton, {},
                                      menu.actionGeometry(action).center());
                    return;
                }
            }
            QFAIL(qPrintable(QStringLiteral("There is no %1").arg(text)));
        });
        QVERIFY(isOpen);
    }
};

QStringList Texts(const QMenu& menu)
{
    QStringList texts;
    const QList<QAction*> actions = menu.actions();
    for (const QAction* action : actions) {
        texts.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    return texts;
}

} // namespace

class tst_DockTerTypesCommands : public QObject
{
    Q_OBJECT

private slots:
    void AddsTypesByItsButton();
    void AddsTerritoriesByItsButtonsMenu();
    void AddsTerritoriesToTypesOnly();
    void ShowsItsMenus_data();
    void ShowsItsMenus();
    void OpensNoMenuOutsideTheRows();
    void MenuWorksOnItsRow();
    void RenamesInPlace_data();
    void RenamesInPlace();
    void RefusesNamesThatAreNoFileNames();
    void RemovesTerritories();
    void RemovesTypes();
    void RemovesTheLastRow();
    void ExportsTypes();
    void ExportsNoTerritories();
    void FailedExportsSayNothingMore();
    void AnnouncesExportsOfSeveralTypes();
};

void tst_DockTerTypesCommands::AddsTypesByItsButton()
{
    TerritoryDocks docks;
    const QAbstractItemModelTester tester(docks.List().model());

    docks.Click("btnAdd");

    QCOMPARE(docks.List().Types().size(), 1);
    const TerritoryType* type = docks.List().Types().first();
    QCOMPARE(type->text(), QStringLiteral("Territory type %1").arg(type->Id()));
    QVERIFY(docks.TakeModified());
}

void tst_DockTerTypesCommands::AddsTerritoriesByItsButtonsMenu()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.wolf);
    auto* button = fixture.Child<QToolButton>("btnAdd");
    QCOMPARE(button->popupMode(), QToolButton::MenuButtonPopup);

    QTimer::singleShot(0, button, [] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu);
        QCOMPARE(Texts(*menu), QStringList({"Add Territory"}));
        QTest::mouseClick(menu, Qt::LeftButton, {},
                          menu->actionGeometry(menu->actions().constFirst()).center());
    });
    QTest::mouseClick(button, Qt::LeftButton, {}, {button->width() - 4, button->height() / 2});

    QTRY_COMPARE(fixture.wolf->rowCount(), 1);
    QCOMPARE(fixture.List().Types().size(), 2);
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypesCommands::AddsTerritoriesToTypesOnly()
{
    Fixture fixture;
    auto* action = fixture.Child<QAction>("actionAdd");
    QVERIFY(!action->isEnabled());
    fixture.types->AddTerritory();
    fixture.MakeCurrent(fixture.north);
    QVERIFY(!action->isEnabled());
    fixture.types->AddTerritory();
    QCOMPARE(fixture.deer->rowCount(), 2);
    QVERIFY(!fixture.TakeModified());

    fixture.Tree().collapseAll();
    fixture.MakeCurrent(fixture.deer);
    QVERIFY(action->isEnabled());
    action->trigger();

    QCOMPARE(fixture.deer->rowCount(), 3);
    const auto* added = dynamic_cast<Territory*>(fixture.deer->child(2));
    QCOMPARE(added->text(), QStringLiteral("Territory %1").arg(added->Id()));
    QVERIFY(fixture.Tree().isExpanded(fixture.deer->index()));
    QCOMPARE(fixture.CurrentText(), QStringLiteral("Deer"));
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypesCommands::ShowsItsMenus_data()
{
    QTest::addColumn<bool>("isType");
    QTest::addColumn<QStringList>("entries");

    QTest::newRow("type") << true
                          << QStringList({"Add Territory", "Rename", "Remove", "-", "Export"});
    QTest::newRow("territory") << false << QStringList({"Rename", "Remove"});
}

void tst_DockTerTypesCommands::ShowsItsMenus()
{
    QFETCH(bool, isType);
    QFETCH(QStringList, entries);
    Fixture fixture;
    const QStandardItem* item = fixture.deer;
    if (!isType) {
        item = fixture.south;
    }
    QStringList shown;

    QVERIFY(fixture.WithMenu(fixture.At(item), [&](QMenu& menu) { shown = Texts(menu); }));

    QCOMPARE(shown, entries);
}

void tst_DockTerTypesCommands::OpensNoMenuOutsideTheRows()
{
    Fixture fixture;
    const QPoint below(20, fixture.Tree().viewport()->height() - 2);
    QVERIFY(!fixture.Tree().indexAt(below).isValid());

    QVERIFY(!fixture.WithMenu(below, [](QMenu& /*menu*/) {}));
}

void tst_DockTerTypesCommands::MenuWorksOnItsRow()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);

    fixture.Choose(fixture.wolf, QStringLiteral("Add Territory"));

    QCOMPARE(fixture.wolf->rowCount(), 1);
    QCOMPARE(fixture.CurrentText(), QStringLiteral("Wolf"));

    fixture.Choose(fixture.south, QStringLiteral("Remove"));

    QCOMPARE(fixture.deer->rowCount(), 1);
    QCOMPARE(fixture.deer->child(0)->text(), QStringLiteral("North"));
}

void tst_DockTerTypesCommands::RenamesInPlace_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::addColumn<bool>("isType");
    QTest::addColumn<QString>("title");

    QTest::newRow("type by its menu") << false << true << "Territory type: Elk && Moose";
    QTest::newRow("type by key") << true << true << "Territory type: Elk && Moose";
    QTest::newRow("territory by its menu") << false << false << "Territory: Elk && Moose";
    QTest::newRow("territory by key") << true << false << "Territory: Elk && Moose";
}

void tst_DockTerTypesCommands::RenamesInPlace()
{
    QFETCH(bool, byKey);
    QFETCH(bool, isType);
    QFETCH(QString, title);
    Fixture fixture;
    QStandardItem* item = fixture.deer;
    if (!isType) {
        item = fixture.north;
    }
    fixture.MakeCurrent(item);

    if (byKey) {
        fixture.Tree().setFocus();
        QTest::keyClick(&fixture.Tree(), Qt::Key_F2);
    } else {
        fixture.Choose(item, QStringLiteral("Rename"));
    }
    auto* editor = fixture.Tree().viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("Elk & Moose"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();

    QCOMPARE(item->text(), QStringLiteral("Elk & Moose"));
    QCOMPARE(fixture.PropsTitle(), title);
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypesCommands::RefusesNamesThatAreNoFileNames()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.deer);
    fixture.types->Rename();
    auto* editor = fixture.Tree().viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("Elk/Moose"));

    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();

    QCOMPARE(fixture.deer->text(), QStringLiteral("Deer"));
    QVERIFY(!fixture.TakeModified());
}

void tst_DockTerTypesCommands::RemovesTerritories()
{
    Fixture fixture;
    const Zone* zone = fixture.north->Zones().first();
    fixture.MakeCurrent(fixture.north);
    const QSignalSpy selected(fixture.types, &DockTerTypes::Selected);

    fixture.Child<QAction>("actionRemove")->trigger();

    QCOMPARE(fixture.deer->rowCount(), 1);
    QCOMPARE(zone->scene(), nullptr);
    QCOMPARE(fixture.CurrentText(), QStringLiteral("South"));
    QCOMPARE(fixture.Scene().CurrentTerritory(), fixture.south);
    QCOMPARE(fixture.PropsTitle(), QStringLiteral("Territory: South"));
    QCOMPARE(selected.size(), 1);
    QVERIFY(fixture.TakeModified());

    fixture.Child<QAction>("actionRemove")->trigger();

    // When no territory is left, the type becomes current.
    QCOMPARE(fixture.deer->rowCount(), 0);
    QCOMPARE(fixture.CurrentText(), QStringLiteral("Deer"));
    QCOMPARE(fixture.Scene().CurrentTerritory(), nullptr);
    QCOMPARE(fixture.PropsTitle(), QStringLiteral("Territory type: Deer"));
}

void tst_DockTerTypesCommands::RemovesTypes()
{
    Fixture fixture;
    const Zone* zone = fixture.north->Zones().first();
    fixture.MakeCurrent(fixture.deer);

    fixture.Child<QAction>("actionRemove")->trigger();

    QCOMPARE(zone->scene(), nullptr);
    QCOMPARE(fixture.List().Types(), QVector<TerritoryType*>{fixture.wolf});
    QCOMPARE(fixture.CurrentText(), QStringLiteral("Wolf"));
    QCOMPARE(fixture.PropsTitle(), QStringLiteral("Territory type: Wolf"));
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypesCommands::RemovesTheLastRow()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.wolf);
    fixture.types->Remove();
    QCOMPARE(fixture.CurrentText(), QStringLiteral("Deer"));
    fixture.types->Remove();

    QVERIFY(fixture.List().IsEmpty());
    QVERIFY(!fixture.Tree().currentIndex().isValid());
    QVERIFY(!fixture.props->isEnabled());
    fixture.TakeModified();
    fixture.types->Remove();
    fixture.types->Rename();
    fixture.types->Export();
    QVERIFY(!fixture.TakeModified());
}

void tst_DockTerTypesCommands::ExportsTypes()
{
    Fixture fixture;
    LogSpy spy;

    fixture.Choose(fixture.deer, QStringLiteral("Export"));

    QCOMPARE(spy.Messages(), QStringList({"Success: Deer successfully exported."}));
    QVERIFY(QFile::exists(fixture.project.Path(QStringLiteral("territoryTypes/Deer.xml"))));
    QVERIFY(!fixture.TakeModified());
}

void tst_DockTerTypesCommands::ExportsNoTerritories()
{
    Fixture fixture;
    LogSpy spy;
    fixture.MakeCurrent(fixture.north);

    fixture.types->Export();

    QCOMPARE(spy.Messages(), QStringList());
    QVERIFY(!QFile::exists(fixture.project.Path(QStringLiteral("territoryTypes"))));
}

void tst_DockTerTypesCommands::FailedExportsSayNothingMore()
{
    Fixture fixture;
    LogSpy spy;
    // A file that has the name of the folder.
    QFile file(fixture.project.Path(QStringLiteral("territoryTypes")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    fixture.MakeCurrent(fixture.deer);

    fixture.types->Export();

    QVERIFY(spy.Messages().filter(QStringLiteral("successfully")).isEmpty());
}

void tst_DockTerTypesCommands::AnnouncesExportsOfSeveralTypes()
{
    Fixture fixture;
    const QSignalSpy checked(fixture.types, &DockTerTypes::ExportSelectedClicked);
    const QSignalSpy all(fixture.types, &DockTerTypes::ExportAllClicked);

    fixture.Click("btnExportSelected");
    QCOMPARE(checked.size(), 1);
    QCOMPARE(all.size(), 0);
    fixture.Click("btnExportAll");
    QCOMPARE(checked.size(), 1);
    QCOMPARE(all.size(), 1);

    fixture.wolf->setCheckState(Qt::Checked);
    QVERIFY(fixture.types->ExportChecked());
    QVERIFY(!QFile::exists(fixture.project.Path(QStringLiteral("territoryTypes/Deer.xml"))));
    QVERIFY(fixture.types->ExportAll());
    QVERIFY(QFile::exists(fixture.project.Path(QStringLiteral("territoryTypes/Deer.xml"))));
}

QTEST_MAIN(tst_DockTerTypesCommands)
#include "tst_DockTerTypesCommands.moc"
