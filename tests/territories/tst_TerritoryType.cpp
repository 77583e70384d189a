#include "territories/TerritoryType.h"

#include "app/ProjectSettings.h"
#include "territories/Territory.h"
#include "territories/Zone.h"
#include "tests/support/XmlText.h"

#include <QStandardItemModel>
#include <QTest>
#include <QWidget>

#include <memory>

namespace {

QVector<int> Numbers(const SpawnCounts& counts)
{
    return {counts.staticMin, counts.staticMax, counts.dynamicMin, counts.dynamicMax};
}

/// Counts of one, two, three and four times unit.
Zone* AddZone(Territory& territory, int unit)
{
    auto* zone = new Zone(&territory, 75.0F);
    zone->SetStaticMin(unit);
    zone->SetStaticMax(2 * unit);
    zone->SetDynamicMin(3 * unit);
    zone->SetDynamicMax(4 * unit);
    return territory.AddZone(zone) ? zone : nullptr;
}

} // namespace

class tst_TerritoryType : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void NewTypeIsNamedAfterItsId();
    void RolesDoNotNeedAWindow_data();
    void RolesDoNotNeedAWindow();
    void IdsAreNeverReused();
    void RenameTakesFileNamesOnly_data();
    void RenameTakesFileNamesOnly();
    void NamesFromFilesAreTakenAsTheyAre();
    void OtherRolesAreTakenAsTheyAre();
    void RenameInTheViewIsChecked();
    void NewTerritoryIsTheLastRow();
    void AddedTerritoryIsTheLastRow();
    void TerritoryIsAddedOnce();
    void TerritoryOfAnotherTypeStaysThere();
    void TerritoriesOfOthersAreNotTaken();
    void TerritoriesAreFoundById();
    void RemovedTerritoryIsDestroyed();
    void TerritoriesAreInTheOrderOfTheirIds();
    void OtherRowsArePassedOver();
    void TotalsFollowTheTerritories();
    void ShowingChecksAllTerritories();
    void OneTerritoryIsShownInAnyCase();
    void CheckedTerritoriesAreShown();
    void IsWrittenWithItsTerritories();
};

void tst_TerritoryType::initTestCase()
{
    ProjectSettings::Instance().SetSizes(2048, 2048, 15360, 15360);
}

void tst_TerritoryType::NewTypeIsNamedAfterItsId()
{
    const TerritoryType type;
    QCOMPARE(type.text(), QString("Territory type %1").arg(type.Id()));
    QCOMPARE(Numbers(type.Totals()), QVector<int>(4));
    QCOMPARE(type.rowCount(), 0);
}

void tst_TerritoryType::RolesDoNotNeedAWindow_data()
{
    QTest::addColumn<bool>("hasWindow");
    QTest::newRow("editor") << true;
    QTest::newRow("batch run") << false;
}

void tst_TerritoryType::RolesDoNotNeedAWindow()
{
    QFETCH(bool, hasWindow);
    const auto window = hasWindow ? std::make_unique<QWidget>() : nullptr;
    const TerritoryType type("North");
    QCOMPARE(type.text(), "North");
    QVERIFY(type.isCheckable());
    QVERIFY(type.isEditable());
    QCOMPARE(type.checkState(), Qt::Unchecked);
    QCOMPARE(type.data(Qt::UserRole), QVariant(type.Id()));
}

void tst_TerritoryType::IdsAreNeverReused()
{
    const int first = TerritoryType().Id();
    QCOMPARE(TerritoryType("North").Id(), first + 1);
    QCOMPARE(TerritoryType().text(), QString("Territory type %1").arg(first + 2));
}

void tst_TerritoryType::RenameTakesFileNamesOnly_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("plain") << "South" << true;
    QTest::newRow("spaces around") << " South " << true;
    QTest::newRow("per cent") << "%1" << true;
    QTest::newRow("dots") << ".." << true;
    QTest::newRow("beyond ASCII") << "Süd" << true;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("blank") << " \t\n" << false;
    for (const char forbidden : {'<', '>', ':', '"', '/', '\\', '|', '?', '*'}) {
        QTest::newRow(QByteArray(1, forbidden)) << QString("So%1th").arg(forbidden) << false;
    }
}

void tst_TerritoryType::RenameTakesFileNamesOnly()
{
    QFETCH(QString, name);
    QFETCH(bool, isTaken);
    TerritoryType type("North");
    type.setData(name, Qt::EditRole);
    QCOMPARE(type.text(), isTaken ? name : "North");
}

void tst_TerritoryType::NamesFromFilesAreTakenAsTheyAre()
{
    QCOMPARE(TerritoryType("../a:b").text(), "../a:b");
    QCOMPARE(TerritoryType(QString()).text(), QString());
}

void tst_TerritoryType::OtherRolesAreTakenAsTheyAre()
{
    TerritoryType type("North");
    type.setData(Qt::Checked, Qt::CheckStateRole);
    type.setData("a/b", Qt::ToolTipRole);
    type.setData(7);
    QCOMPARE(type.checkState(), Qt::Checked);
    QCOMPARE(type.toolTip(), "a/b");
    QCOMPARE(type.data(Qt::UserRole + 1), QVariant(7));
    QCOMPARE(type.text(), "North");
}

void tst_TerritoryType::RenameInTheViewIsChecked()
{
    QStandardItemModel model;
    model.appendRow(new TerritoryType("North"));
    int changes = 0;
    connect(&model, &QStandardItemModel::itemChanged, this, [&changes] { ++changes; });
    model.setData(model.index(0, 0), "a/b", Qt::EditRole);
    model.setData(model.index(0, 0), "North", Qt::EditRole);
    QCOMPARE(changes, 0);
    model.setData(model.index(0, 0), "South", Qt::EditRole);
    QCOMPARE(changes, 1);
    QCOMPARE(model.item(0)->text(), "South");
}

void tst_TerritoryType::NewTerritoryIsTheLastRow()
{
    TerritoryType type;
    Territory* first = type.NewTerritory();
    Territory* second = type.NewTerritory();
    QVERIFY(second->Id() > first->Id());
    QCOMPARE(type.child(0), first);
    QCOMPARE(type.child(1), second);
    QCOMPARE(second->GetType(), &type);
}

void tst_TerritoryType::AddedTerritoryIsTheLastRow()
{
    TerritoryType type;
    type.NewTerritory();
    auto* added = new Territory("North");
    type.AddTerritory(added);
    QCOMPARE(type.child(1), added);
    QCOMPARE(added->GetType(), &type);
}

void tst_TerritoryType::TerritoryIsAddedOnce()
{
    TerritoryType type;
    Territory* territory = type.NewTerritory();
    AddZone(*territory, 1);
    type.AddTerritory(territory);
    type.AddTerritory(nullptr);
    QCOMPARE(type.rowCount(), 1);
    QCOMPARE(Numbers(type.Totals()), (QVector<int>{1, 2, 3, 4}));
}

void tst_TerritoryType::TerritoryOfAnotherTypeStaysThere()
{
    TerritoryType owner;
    TerritoryType other;
    Territory* territory = owner.NewTerritory();
    other.AddTerritory(territory);
    QCOMPARE(other.rowCount(), 0);
    QCOMPARE(territory->GetType(), &owner);
}

void tst_TerritoryType::TerritoriesAreFoundById()
{
    TerritoryType type;
    type.NewTerritory();
    Territory* second = type.NewTerritory();
    QCOMPARE(type.GetTerritory(second->Id()), second);
    QCOMPARE(type.GetTerritory(second->Id() + 1), nullptr);
    QCOMPARE(type.GetTerritory(-1), nullptr);
}

void tst_TerritoryType::RemovedTerritoryIsDestroyed()
{
    TerritoryType type;
    Territory* kept = type.NewTerritory();
    Territory* removed = type.NewTerritory();
    const int id = removed->Id();
    type.RemoveTerritory(id);
    type.RemoveTerritory(id);
    QCOMPARE(type.GetTerritory(id), nullptr);
    QCOMPARE(type.Territories(), QVector<Territory*>{kept});
    QCOMPARE(type.rowCount(), 1);
}

void tst_TerritoryType::TerritoriesAreInTheOrderOfTheirIds()
{
    TerritoryType type;
    auto* first = new Territory("first");
    auto* second = new Territory("second");
    auto* third = new Territory("third");
    for (Territory* territory : {second, third, first}) {
        type.AddTerritory(territory);
    }
    QCOMPARE(type.Territories(), (QVector<Territory*>{first, second, third}));
    QCOMPARE(type.child(0), second);
}

void tst_TerritoryType::OtherRowsArePassedOver()
{
    TerritoryType type;
    type.appendRow(new QStandardItem("no territory"));
    type.setRowCount(2);
    Territory* territory = type.NewTerritory();
    QCOMPARE(type.Territories(), QVector<Territory*>{territory});
    type.SetVisible(true);
    QVERIFY(territory->IsVisible());
    QCOMPARE(type.child(0)->checkState(), Qt::Unchecked);
    type.RemoveTerritory(territory->Id());
    QCOMPARE(type.rowCount(), 2);
}

void tst_TerritoryType::TotalsFollowTheTerritories()
{
    TerritoryType type;
    Territory* first = type.NewTerritory();
    AddZone(*first, 1);
    auto* second = new Territory("filled before it joins");
    AddZone(*second, 10);
    const Zone* zone = AddZone(*second, 100);
    type.AddTerritory(second);
    QCOMPARE(Numbers(type.Totals()), (QVector<int>{111, 222, 333, 444}));

    const std::unique_ptr<const Zone> removed(zone);
    second->RemoveZone(zone->Id());
    QCOMPARE(Numbers(type.Totals()), (QVector<int>{11, 22, 33, 44}));
    AddZone(*first, 1000)->SetDynamicMax(0);
    QCOMPARE(Numbers(type.Totals()), (QVector<int>{1011, 2022, 3033, 44}));
    type.RemoveTerritory(first->Id());
    QCOMPARE(Numbers(type.Totals()), (QVector<int>{10, 20, 30, 40}));
}

void tst_TerritoryType::ShowingChecksAllTerritories()
{
    const QWidget window;
    TerritoryType type;
    Territory* territory = type.NewTerritory();
    const Zone* zone = AddZone(*territory, 1);
    type.SetVisible(true);
    QVERIFY(territory->IsVisible());
    QVERIFY(zone->isVisible());
    QCOMPARE(territory->checkState(), Qt::Checked);
    type.SetVisible(false);
    QVERIFY(!territory->IsVisible());
    QVERIFY(!zone->isVisible());
    QCOMPARE(territory->checkState(), Qt::Unchecked);
}

void tst_TerritoryType::OneTerritoryIsShownInAnyCase()
{
    TerritoryType type;
    Territory* current = type.NewTerritory();
    Territory* other = type.NewTerritory();
    auto* zone = new Zone(current, 100.0F);
    current->AddZone(zone);
    type.SetVisible(true);

    type.SetVisible(false, current);

    QVERIFY(current->IsVisible());
    QVERIFY(zone->isVisible());
    QCOMPARE(current->checkState(), Qt::Unchecked);
    QVERIFY(!other->IsVisible());
}

void tst_TerritoryType::CheckedTerritoriesAreShown()
{
    TerritoryType type;
    Territory* checked = type.NewTerritory();
    checked->setCheckState(Qt::Checked);
    Territory* partly = type.NewTerritory();
    partly->setCheckState(Qt::PartiallyChecked);
    partly->SetVisible(true);
    type.UpdateVisibility();
    QVERIFY(checked->IsVisible());
    QVERIFY(!partly->IsVisible());
}

void tst_TerritoryType::IsWrittenWithItsTerritories()
{
    TerritoryType type("A<B");
    type.AddTerritory(new Territory("first"));
    type.AddTerritory(new Territory("second"));
    QCOMPARE(XmlText([&](QXmlStreamWriter& xml) { type.Write(xml); }),
             "<territory-type name=\"A&lt;B\">"
             "<territory name=\"first\" visible=\"0\" color=\"4278190080\"/>"
             "<territory name=\"second\" visible=\"0\" color=\"4278190080\"/>"
             "</territory-type>");
}

void tst_TerritoryType::TerritoriesOfOthersAreNotTaken()
{
    QStandardItemModel model;
    auto* territory = new Territory("north");
    model.appendRow(territory);
    TerritoryType type("Deer");
    type.AddTerritory(territory);
    QVERIFY(type.Territories().isEmpty());
    QCOMPARE(territory->model(), &model);
    QCOMPARE(model.rowCount(), 1);
}

QTEST_MAIN(tst_TerritoryType)
#include "tst_TerritoryType.moc"
