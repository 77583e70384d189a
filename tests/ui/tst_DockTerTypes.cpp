#include "ui/DockTerTypes.h"

#include "tests/support/TwoTypesFixture.h"

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
    void ChecksTerritories();
    void ChecksTypes();
    void CurrentTerritoryStaysVisible();
    void RenamingKeepsTheCheckMarks();
    void AppliesEachVisibilityOnce();
};

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
