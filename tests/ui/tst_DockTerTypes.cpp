#include "ui/DockTerTypes.h"

#include "tests/support/Forms.h"
#include "tests/support/TwoTypesFixture.h"

#include <QLayout>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QStyle>
#include <QTest>

namespace {

/// Clicks the row's check box.
void ClickBox(TwoTypesFixture& fixture, const QStandardItem* item)
{
    QTreeView& tree = fixture.Tree();
    const QRect row = tree.visualRect(item->index());
    const int check = tree.style()->pixelMetric(QStyle::PM_IndicatorWidth) / 2;
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {},
                      {row.left() + check + 3, row.center().y()});
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
    Document document;
    DockTerTypes dock(document, nullptr, nullptr);

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

void tst_DockTerTypes::ChecksTerritories()
{
    TwoTypesFixture fixture;
    fixture.MakeCurrent(fixture.north);

    ClickBox(fixture, fixture.south);

    QCOMPARE(fixture.south->checkState(), Qt::Unchecked);
    QVERIFY(!fixture.south->IsVisible());
    QVERIFY(!fixture.south->Zones().first()->isVisible());
    QVERIFY(AreShown(fixture.north));
    QVERIFY(fixture.TakeModified());

    fixture.MakeCurrent(fixture.north);
    ClickBox(fixture, fixture.south);

    QVERIFY(AreShown(fixture.south));
}

void tst_DockTerTypes::ChecksTypes()
{
    TwoTypesFixture fixture;
    fixture.MakeCurrent(fixture.wolf);
    fixture.south->setCheckState(Qt::Unchecked);

    ClickBox(fixture, fixture.deer);
    QCOMPARE(fixture.deer->checkState(), Qt::Checked);
    QVERIFY(AreShown(fixture.north) && AreShown(fixture.south));
    QCOMPARE(fixture.south->checkState(), Qt::Checked);
    fixture.TakeModified();

    ClickBox(fixture, fixture.deer);
    QVERIFY(!fixture.north->IsVisible() && !fixture.south->IsVisible());
    QCOMPARE(fixture.north->checkState(), Qt::Unchecked);
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypes::CurrentTerritoryStaysVisible()
{
    TwoTypesFixture fixture;
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
    // If the zones had been hidden for a moment, they would not be selected any more.
    QCOMPARE(fixture.Scene().selectedItems().size(), 1);

    fixture.MakeCurrent(fixture.south);

    QVERIFY(!fixture.north->IsVisible());
    QVERIFY(AreShown(fixture.south));
}

void tst_DockTerTypes::RenamingKeepsTheCheckMarks()
{
    TwoTypesFixture fixture;
    QCOMPARE(fixture.deer->checkState(), Qt::Unchecked);

    fixture.deer->setText(QStringLiteral("Elk"));
    fixture.north->SetColor(Qt::green);

    QCOMPARE(fixture.north->checkState(), Qt::Checked);
    QVERIFY(AreShown(fixture.north));
}

void tst_DockTerTypes::AppliesEachVisibilityOnce()
{
    TwoTypesFixture fixture;
    const QSignalSpy spy(fixture.List().model(), &QStandardItemModel::itemChanged);

    fixture.deer->setCheckState(Qt::Checked);
    // The territories were already checked, so only the type's check mark changes.
    QCOMPARE(spy.size(), 1);
    fixture.deer->setCheckState(Qt::Unchecked);
    QCOMPARE(spy.size(), 4);

    // Only the type's check mark acts: a zone that was hidden in between stays hidden.
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
