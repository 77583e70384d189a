#include "ui/DockTerTypes.h"

#include "tests/support/Forms.h"
#include "tests/support/LogSpy.h"
#include "tests/support/TerritoryDocks.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QFile>
#include <QGroupBox>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <functional>

namespace {

/// Two types: Deer with the territories North and South of two zones each, Wolf with none.
class Fixture : public TerritoryDocks
{
public:
    Fixture()
        : deer(AddType(QStringLiteral("Deer")))
        , wolf(AddType(QStringLiteral("Wolf")))
        , north(AddTerritory(deer, QStringLiteral("North"), 2))
        , south(AddTerritory(deer, QStringLiteral("South"), 2))
        , tester(List().model())
    {
        Tree().expandAll();
        TakeModified();
    }

    QString CurrentText() { return Tree().currentIndex().data().toString(); }
    QString PropsTitle() const { return Child<QGroupBox>("gboTer")->title(); }

    /// Clicks the row's check box.
    void Check(const QStandardItem* item)
    {
        const QRect row = Tree().visualRect(item->index());
        const int check = Tree().style()->pixelMetric(QStyle::PM_IndicatorWidth) / 2;
        QTest::mouseClick(Tree().viewport(), Qt::LeftButton, {},
                          {row.left() + check + 3, row.center().y()});
    }

    /// Opens the context menu there by the mouse, and runs work while it is open. Whether one
    /// opened.
    bool WithMenu(QPoint position, const std::function<void(QMenu&)>& work)
    {
        bool isOpen = false;
        QTimer::singleShot(0, types, [&] {
            if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
                isOpen = true;
                // What it brings along comes before what the user does next.
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

    TerritoryType* deer;
    TerritoryType* wolf;
    Territory* north;
    Territory* south;
    QAbstractItemModelTester tester;
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

bool AreShown(const Territory* territory)
{
    for (const Zone* zone : territory->Zones()) {
        if (!zone->isVisible()) {
            return false;
        }
    }
    return territory->IsVisible();
}

} // namespace

class tst_DockTerTypes : public QObject
{
    Q_OBJECT

private slots:
    void HasItsForm_data();
    void HasItsForm();
    void HasItsIcons();
    void HasItsButtonsInOneLayout();
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
    void ChecksTerritories();
    void ChecksTypes();
    void CurrentTerritoryStaysVisible();
    void RenamingKeepsTheCheckMarks();
    void AppliesEachVisibilityOnce();
};

void tst_DockTerTypes::HasItsForm_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char* object, const char* className, const char* property = "",
                        const QVariant& value = {}) {
        QTest::addRow("%s %s", object, property)
            << object << className << QByteArray(property) << value;
    };
    row("DockTerTypes", "QDockWidget", "windowTitle", "Territory Types");
    row("treeTerTypes", "TreeViewTerritories", "contextMenuPolicy",
        static_cast<int>(Qt::CustomContextMenu));
    row("treeTerTypes", "TreeViewTerritories", "dragEnabled", false);
    row("treeTerTypes", "TreeViewTerritories", "acceptDrops", false);
    row("treeTerTypes", "TreeViewTerritories", "dragDropMode",
        static_cast<int>(QAbstractItemView::NoDragDrop));
    row("ltTerritoryControls", "QGridLayout");
    row("btnAdd", "QToolButton", "text", "Add Territory");
    row("btnAdd", "QToolButton", "toolTip", "Add territory type");
    row("btnAdd", "QToolButton", "accessibleName", "Add territory type");
    row("btnToggleZoneSelect", "QPushButton", "checkable", true);
    row("btnToggleZoneSelect", "QPushButton", "enabled", false);
    row("btnToggleZoneSelect", "QPushButton", "toolTip",
        "Select/move zones in territory (Shift + S)");
    row("btnToggleZoneInsert", "QPushButton", "checkable", true);
    row("btnToggleZoneInsert", "QPushButton", "enabled", false);
    row("btnToggleZoneInsert", "QPushButton", "toolTip",
        "Place new zones into territory (Shift + A)");
    row("btnToggleQueryTer", "QPushButton", "checkable", true);
    row("btnToggleQueryTer", "QPushButton", "enabled", true);
    row("btnToggleQueryTer", "QPushButton", "toolTip",
        "Select territory by selecting zone (Shift + Q)");
    row("btnZoneDelete", "QPushButton", "checkable", false);
    row("btnZoneDelete", "QPushButton", "enabled", false);
    row("btnZoneDelete", "QPushButton", "toolTip",
        "Remove selected zones from territory (Shift + D)");
    row("btnZoneCopy", "QPushButton", "checkable", false);
    row("btnZoneCopy", "QPushButton", "enabled", false);
    row("btnZoneCopy", "QPushButton", "toolTip", "Create new territory from selected zones");
    row("btnExportSelected", "QPushButton", "text", "Export Selected");
    row("btnExportAll", "QPushButton", "text", "Export All");
    row("actionAdd", "QAction", "text", "Add Territory");
    row("actionAdd", "QAction", "toolTip", "add territory");
    row("actionRemove", "QAction", "text", "Remove");
    row("actionRemove", "QAction", "toolTip", "remove");
    row("actionExport", "QAction", "text", "Export");
    row("actionExport", "QAction", "toolTip", "export");
    row("actionRename", "QAction", "text", "Rename");
    row("actionRename", "QAction", "toolTip", "rename");
}

void tst_DockTerTypes::HasItsForm()
{
    QFETCH(QString, object);
    QFETCH(QString, className);
    QFETCH(QByteArray, property);
    QFETCH(QVariant, value);
    DockTerTypes dock(nullptr, nullptr);

    CheckForm(dock, object, className, property, value);
}

void tst_DockTerTypes::HasItsIcons()
{
    TerritoryDocks docks;
    const struct
    {
        const char* button;
        const char* icon;
    } rows[] = {
        {"btnToggleZoneSelect", ":/Resources/zone-select.png"},
        {"btnToggleZoneInsert", ":/Resources/zone-add.png"},
        {"btnToggleQueryTer", ":/Resources/ter-query.png"},
        {"btnZoneDelete", ":/Resources/zone-delete.png"},
        {"btnZoneCopy", ":/Resources/ter-create.png"},
    };

    for (const auto& row : rows) {
        QVERIFY2(ShowsIcon(docks.Child<QPushButton>(row.button)->icon(), QLatin1String(row.icon)),
                 row.button);
    }
}

void tst_DockTerTypes::HasItsButtonsInOneLayout()
{
    TerritoryDocks docks;
    const auto* layout = docks.types->findChild<QLayout*>(QStringLiteral("ltTerritoryControls"));

    for (const char* name :
         {"btnAdd", "btnToggleZoneSelect", "btnToggleZoneInsert", "btnToggleQueryTer",
          "btnZoneDelete", "btnZoneCopy", "btnExportSelected", "btnExportAll"}) {
        QVERIFY2(layout->indexOf(docks.Child<QWidget>(name)) >= 0, name);
    }
    QCOMPARE(layout->count(), 8);
}

void tst_DockTerTypes::AddsTypesByItsButton()
{
    TerritoryDocks docks;
    const QAbstractItemModelTester tester(docks.List().model());

    docks.Click("btnAdd");

    QCOMPARE(docks.List().Types().size(), 1);
    const TerritoryType* type = docks.List().Types().first();
    QCOMPARE(type->text(), QStringLiteral("Territory type %1").arg(type->Id()));
    QVERIFY(docks.TakeModified());
}

void tst_DockTerTypes::AddsTerritoriesByItsButtonsMenu()
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

void tst_DockTerTypes::AddsTerritoriesToTypesOnly()
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

void tst_DockTerTypes::ShowsItsMenus_data()
{
    QTest::addColumn<bool>("isType");
    QTest::addColumn<QStringList>("entries");

    QTest::newRow("type") << true
                          << QStringList({"Add Territory", "Rename", "Remove", "-", "Export"});
    QTest::newRow("territory") << false << QStringList({"Rename", "Remove"});
}

void tst_DockTerTypes::ShowsItsMenus()
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

void tst_DockTerTypes::OpensNoMenuOutsideTheRows()
{
    Fixture fixture;
    const QPoint below(20, fixture.Tree().viewport()->height() - 2);
    QVERIFY(!fixture.Tree().indexAt(below).isValid());

    QVERIFY(!fixture.WithMenu(below, [](QMenu& /*menu*/) {}));
}

void tst_DockTerTypes::MenuWorksOnItsRow()
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

void tst_DockTerTypes::RenamesInPlace_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::addColumn<bool>("isType");
    QTest::addColumn<QString>("title");

    QTest::newRow("type by its menu") << false << true << "Territory type: Elk && Moose";
    QTest::newRow("type by key") << true << true << "Territory type: Elk && Moose";
    QTest::newRow("territory by its menu") << false << false << "Territory: Elk && Moose";
    QTest::newRow("territory by key") << true << false << "Territory: Elk && Moose";
}

void tst_DockTerTypes::RenamesInPlace()
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

void tst_DockTerTypes::RefusesNamesThatAreNoFileNames()
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

void tst_DockTerTypes::RemovesTerritories()
{
    Fixture fixture;
    const Tracked<Zone> zone(fixture.north->Zones().first());
    fixture.MakeCurrent(fixture.north);
    const QSignalSpy selected(fixture.types, &DockTerTypes::Selected);

    fixture.Child<QAction>("actionRemove")->trigger();

    QCOMPARE(fixture.deer->rowCount(), 1);
    QVERIFY(!zone);
    QCOMPARE(fixture.CurrentText(), QStringLiteral("South"));
    QCOMPARE(fixture.Scene().CurrentTerritory(), fixture.south);
    QCOMPARE(fixture.PropsTitle(), QStringLiteral("Territory: South"));
    QCOMPARE(selected.size(), 1);
    QVERIFY(fixture.TakeModified());

    fixture.Child<QAction>("actionRemove")->trigger();

    // With no territory left, their type.
    QCOMPARE(fixture.deer->rowCount(), 0);
    QCOMPARE(fixture.CurrentText(), QStringLiteral("Deer"));
    QCOMPARE(fixture.Scene().CurrentTerritory(), nullptr);
    QCOMPARE(fixture.PropsTitle(), QStringLiteral("Territory type: Deer"));
}

void tst_DockTerTypes::RemovesTypes()
{
    Fixture fixture;
    const Tracked<Zone> zone(fixture.north->Zones().first());
    fixture.MakeCurrent(fixture.deer);

    fixture.Child<QAction>("actionRemove")->trigger();

    QVERIFY(!zone);
    QCOMPARE(fixture.List().Types(), QVector<TerritoryType*>{fixture.wolf});
    QCOMPARE(fixture.CurrentText(), QStringLiteral("Wolf"));
    QCOMPARE(fixture.PropsTitle(), QStringLiteral("Territory type: Wolf"));
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypes::RemovesTheLastRow()
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

void tst_DockTerTypes::ExportsTypes()
{
    Fixture fixture;
    LogSpy spy;

    fixture.Choose(fixture.deer, QStringLiteral("Export"));

    QCOMPARE(spy.Messages(), QStringList({"Success: Deer successfully exported."}));
    QVERIFY(QFile::exists(fixture.project.Path(QStringLiteral("territoryTypes/Deer.xml"))));
    QVERIFY(!fixture.TakeModified());
}

void tst_DockTerTypes::ExportsNoTerritories()
{
    Fixture fixture;
    LogSpy spy;
    fixture.MakeCurrent(fixture.north);

    fixture.types->Export();

    QCOMPARE(spy.Messages(), QStringList());
    QVERIFY(!QFile::exists(fixture.project.Path(QStringLiteral("territoryTypes"))));
}

void tst_DockTerTypes::FailedExportsSayNothingMore()
{
    Fixture fixture;
    LogSpy spy;
    // A file where the folder is to be.
    QFile file(fixture.project.Path(QStringLiteral("territoryTypes")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    fixture.MakeCurrent(fixture.deer);

    fixture.types->Export();

    QVERIFY(spy.Messages().filter(QStringLiteral("successfully")).isEmpty());
}

void tst_DockTerTypes::AnnouncesExportsOfSeveralTypes()
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

void tst_DockTerTypes::ChecksTerritories()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);

    fixture.Check(fixture.south);

    QCOMPARE(fixture.south->checkState(), Qt::Unchecked);
    QVERIFY(!fixture.south->IsVisible());
    QVERIFY(!fixture.south->Zones().first()->isVisible());
    QVERIFY(AreShown(fixture.north));
    QVERIFY(fixture.TakeModified());

    fixture.MakeCurrent(fixture.north);
    fixture.Check(fixture.south);

    QVERIFY(AreShown(fixture.south));
}

void tst_DockTerTypes::ChecksTypes()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.wolf);
    fixture.south->setCheckState(Qt::Unchecked);

    fixture.Check(fixture.deer);
    QCOMPARE(fixture.deer->checkState(), Qt::Checked);
    QVERIFY(AreShown(fixture.north) && AreShown(fixture.south));
    QCOMPARE(fixture.south->checkState(), Qt::Checked);
    fixture.TakeModified();

    fixture.Check(fixture.deer);
    QVERIFY(!fixture.north->IsVisible() && !fixture.south->IsVisible());
    QCOMPARE(fixture.north->checkState(), Qt::Unchecked);
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypes::CurrentTerritoryStaysVisible()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);
    fixture.SelectZone(fixture.north->Zones().first());

    fixture.north->setCheckState(Qt::Unchecked);
    QVERIFY(AreShown(fixture.north));
    fixture.north->setCheckState(Qt::Checked);
    fixture.deer->setCheckState(Qt::Checked);
    fixture.deer->setCheckState(Qt::Unchecked);
    QCOMPARE(fixture.north->checkState(), Qt::Unchecked);
    QVERIFY(AreShown(fixture.north));
    QVERIFY(!fixture.south->IsVisible());
    // Zones that were hidden for a moment would have lost it.
    QCOMPARE(fixture.Scene().selectedItems().size(), 1);

    fixture.MakeCurrent(fixture.south);

    QVERIFY(!fixture.north->IsVisible());
    QVERIFY(AreShown(fixture.south));
}

void tst_DockTerTypes::RenamingKeepsTheCheckMarks()
{
    Fixture fixture;
    QCOMPARE(fixture.deer->checkState(), Qt::Unchecked);

    fixture.deer->setText(QStringLiteral("Elk"));
    fixture.north->SetColor(Qt::green);

    QCOMPARE(fixture.north->checkState(), Qt::Checked);
    QVERIFY(AreShown(fixture.north));
}

void tst_DockTerTypes::AppliesEachVisibilityOnce()
{
    Fixture fixture;
    const QSignalSpy spy(fixture.List().model(), &QStandardItemModel::itemChanged);

    fixture.deer->setCheckState(Qt::Checked);
    // The territories' marks were set before: only that of the type changes.
    QCOMPARE(spy.size(), 1);
    fixture.deer->setCheckState(Qt::Unchecked);
    QCOMPARE(spy.size(), 4);

    // What the type does is all: a zone that somebody hides in between stays so.
    connect(fixture.List().model(), &QStandardItemModel::itemChanged, fixture.types,
            [&fixture](QStandardItem* item) {
                if (item == fixture.north) {
                    fixture.north->Zones().first()->setVisible(false);
                }
            });
    fixture.deer->setCheckState(Qt::Checked);
    QVERIFY(!fixture.north->Zones().first()->isVisible());
    QVERIFY(fixture.north->Zones().last()->isVisible());
}

QTEST_MAIN(tst_DockTerTypes)
#include "tst_DockTerTypes.moc"
