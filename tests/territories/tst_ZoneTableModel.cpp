#include "territories/ZoneTableModel.h"

#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/ProjectFixture.h"
#include "tests/support/Random.h"

#include <QAbstractItemModelTester>
#include <QGraphicsScene>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

namespace {

/// A model of two types with two territories each, which are empty at first.
class ModelFixture
{
public:
    ModelFixture()
        : project({1000, 1000}, {1000, 1000})
        , model(types)
        , tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest)
    {
        for (const QString& name : {QString("Deer"), QString("Wolf")}) {
            auto* type = new TerritoryType(name);
            types.AddType(type);
            for (const QString& territory : {QString("North"), QString("South")}) {
                Territory* added = type->NewTerritory();
                added->setText(territory);
                territories.append(added);
            }
        }
    }

    Zone* Add(int territory, double x, float radius)
    {
        auto* zone = new Zone(territories[territory], radius);
        zone->setPos(x, 100);
        scene.addItem(zone);
        territories[territory]->AddZone(zone);
        return zone;
    }
    QString Text(int row, ZoneColumn column) const
    {
        return model.index(row, int(column)).data().toString();
    }
    QStringList Column(ZoneColumn column) const
    {
        QStringList texts;
        for (int row = 0; row < model.rowCount(); ++row) {
            texts.append(Text(row, column));
        }
        return texts;
    }

    ProjectFixture project;
    QGraphicsScene scene;
    TerritoryTypeList types;
    QVector<Territory*> territories;
    ZoneTableModel model;
    QAbstractItemModelTester tester;
};

} // namespace

/// The zones as rows that are filtered and sorted.
class tst_ZoneTableModel : public QObject
{
    Q_OBJECT

private slots:
    void AnnouncesOnlyWhatChanged();
    void FollowsZonesThatComeAndGo();
    void KnowsTheRowsOfZones();
    void SortsNumbersAndTexts();
    void KeepsSelectedRows();
    void ShowsRowsThatMatchNow();
    void ShowsTerritoriesOnlyByThemselves();
    void HandsCellsToTheEditor();
    void FindsTheProblemsOfMany();
    void EqualsAPlainEvaluation();
};

void tst_ZoneTableModel::AnnouncesOnlyWhatChanged()
{
    ModelFixture fixture;
    Zone* first = fixture.Add(0, 100, 60);
    Zone* second = fixture.Add(0, 400, 60);
    fixture.Add(2, 700, 60);
    fixture.model.Reload();
    QSignalSpy changed(&fixture.model, &QAbstractItemModel::dataChanged);
    QSignalSpy reset(&fixture.model, &QAbstractItemModel::modelReset);
    fixture.model.FollowZones({fixture.territories[0]});
    fixture.model.FollowNames();
    QCOMPARE(changed.size(), 0);
    second->setPos(450, 100);
    fixture.model.FollowZones({fixture.territories[0]});
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().at(0).value<QModelIndex>().row(), 1);
    QCOMPARE(changed.first().at(1).value<QModelIndex>().row(), 1);
    QCOMPARE(fixture.Text(1, ZoneColumn::X), QString("450"));
    first->SetStaticMax(9);
    fixture.model.FollowZones({fixture.territories[0]});
    QCOMPARE(fixture.Text(0, ZoneColumn::StaticMax), QString("9"));
    // What is wrong with a zone leaves its other cells, in which the user may type, alone.
    changed.clear();
    first->SetStaticMin(20);
    fixture.model.FollowZones({fixture.territories[0]});
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed.last().at(0).value<QModelIndex>().column(), fixture.model.columnCount() - 1);
    QCOMPARE(reset.size(), 0);
}

void tst_ZoneTableModel::FollowsZonesThatComeAndGo()
{
    ModelFixture fixture;
    fixture.Add(0, 100, 60);
    fixture.model.Reload();
    fixture.Add(1, 200, 70);
    fixture.model.FollowZones({fixture.territories[1]});
    QCOMPARE(fixture.Column(ZoneColumn::Radius), QStringList({"60", "70"}));
    // The same number of others.
    delete fixture.territories[1]->Zones().first();
    fixture.Add(1, 200, 80);
    fixture.model.FollowZones({fixture.territories[1]});
    QCOMPARE(fixture.Column(ZoneColumn::Radius), QStringList({"60", "80"}));
    fixture.territories[1]->setText("East");
    fixture.model.FollowNames();
    QCOMPARE(fixture.Column(ZoneColumn::Territory), QStringList({"North", "East"}));
    fixture.types.Types().constFirst()->RemoveTerritory(fixture.territories[1]->Id());
    fixture.model.FollowNames();
    QCOMPARE(fixture.Column(ZoneColumn::Radius), QStringList({"60"}));
    fixture.model.Clear();
    QCOMPARE(fixture.model.rowCount(), 0);
}

void tst_ZoneTableModel::KnowsTheRowsOfZones()
{
    ModelFixture fixture;
    Zone* small = fixture.Add(0, 100, 60);
    Zone* large = fixture.Add(0, 300, 70);
    fixture.model.Reload();
    fixture.model.sort(int(ZoneColumn::Radius), Qt::DescendingOrder);
    QCOMPARE(fixture.model.RowOf(*large), 0);
    QCOMPARE(fixture.model.RowOf(*small), 1);
    QCOMPARE(fixture.model.ZoneAt(0), large);
    fixture.model.SetFilter("radius<65");
    QCOMPARE(fixture.model.RowOf(*large), -1);
    QCOMPARE(fixture.model.RowOf(*small), 0);
    const Zone stranger(nullptr, 60);
    QCOMPARE(fixture.model.RowOf(stranger), -1);
}

void tst_ZoneTableModel::SortsNumbersAndTexts()
{
    ModelFixture fixture;
    for (const float radius : {100.0F, 60.0F, 9.0F, 60.0F}) {
        fixture.Add(3, 100 + double(radius), radius);
    }
    fixture.Add(0, 500, 60);
    fixture.model.Reload();
    fixture.model.sort(int(ZoneColumn::Radius), Qt::AscendingOrder);
    QCOMPARE(fixture.Column(ZoneColumn::Radius), QStringList({"9", "60", "60", "60", "100"}));
    QCOMPARE(fixture.Column(ZoneColumn::Number), QStringList({"3", "1", "2", "4", "1"}));
    // Equal rows keep the order of the file in both directions.
    fixture.model.sort(int(ZoneColumn::Radius), Qt::DescendingOrder);
    QCOMPARE(fixture.Column(ZoneColumn::Number), QStringList({"1", "1", "2", "4", "3"}));
    fixture.model.sort(int(ZoneColumn::Type), Qt::DescendingOrder);
    QCOMPARE(fixture.Text(4, ZoneColumn::Type), QString("Deer"));
    fixture.model.sort(-1, Qt::AscendingOrder);
    QCOMPARE(fixture.Text(0, ZoneColumn::Type), QString("Deer"));
    QCOMPARE(fixture.Column(ZoneColumn::Number), QStringList({"1", "1", "2", "3", "4"}));
}

void tst_ZoneTableModel::KeepsSelectedRows()
{
    ModelFixture fixture;
    Zone* selected = fixture.Add(0, 100, 60);
    Zone* other = fixture.Add(0, 300, 60);
    fixture.model.Reload();
    fixture.model.SetFilter("radius<65");
    selected->setSelected(true);
    selected->SetRadius(70);
    other->SetRadius(70);
    fixture.model.FollowZones({fixture.territories[0]});
    QCOMPARE(fixture.model.rowCount(), 1);
    QCOMPARE(fixture.model.ZoneAt(0), selected);
    // Also when zones come.
    fixture.Add(0, 700, 60);
    fixture.model.FollowZones({fixture.territories[0]});
    QCOMPARE(fixture.model.rowCount(), 2);
    fixture.model.SetFilter("radius<66");
    QCOMPARE(fixture.Column(ZoneColumn::Radius), QStringList({"60"}));
}

void tst_ZoneTableModel::ShowsRowsThatMatchNow()
{
    ModelFixture fixture;
    Zone* zone = fixture.Add(0, 100, 60);
    Zone* neighbour = fixture.Add(0, 500, 60);
    fixture.model.Reload();
    fixture.model.SetFilter("radius>65");
    QCOMPARE(fixture.model.rowCount(), 0);
    zone->SetRadius(70);
    fixture.model.FollowZones({fixture.territories[0]});
    QCOMPARE(fixture.model.rowCount(), 1);
    // What moves makes another one overlap.
    fixture.model.SetFilter("overlap");
    QCOMPARE(fixture.model.rowCount(), 0);
    zone->setPos(neighbour->pos());
    fixture.model.FollowZones({fixture.territories[0]});
    QCOMPARE(fixture.model.rowCount(), 2);
}

void tst_ZoneTableModel::ShowsTerritoriesOnlyByThemselves()
{
    ModelFixture fixture;
    fixture.Add(0, 100, 60);
    fixture.Add(2, 100, 70);
    fixture.model.Reload();
    fixture.model.SetOnly(fixture.territories[2]);
    QCOMPARE(fixture.Column(ZoneColumn::Radius), QStringList({"70"}));
    fixture.model.SetOnly(nullptr);
    QCOMPARE(fixture.model.rowCount(), 0);
    fixture.model.SetOnly(std::nullopt);
    QCOMPARE(fixture.model.rowCount(), 2);
}

void tst_ZoneTableModel::HandsCellsToTheEditor()
{
    ModelFixture fixture;
    Zone* zone = fixture.Add(0, 100, 60);
    fixture.model.Reload();
    const QModelIndex radius = fixture.model.index(0, int(ZoneColumn::Radius));
    QVERIFY(!fixture.model.setData(radius, "70", Qt::EditRole));
    QStringList edited;
    fixture.model.SetCellEditor([&](Zone& handed, ZoneColumn column, const QString& text) {
        edited.append(QString("%1 %2 %3").arg(&handed == zone).arg(Key(column), text));
        return true;
    });
    QVERIFY(fixture.model.setData(radius, "70", Qt::EditRole));
    QVERIFY(
        !fixture.model.setData(fixture.model.index(0, int(ZoneColumn::Type)), "Elk", Qt::EditRole));
    QCOMPARE(edited, QStringList({"1 radius 70"}));
}

void tst_ZoneTableModel::FindsTheProblemsOfMany()
{
    ModelFixture fixture;
    for (int i = 0; i < 3000; ++i) {
        fixture.Add(i % 4, 50 + i % 900, 55)->setPos(50 + i % 30 * 30, 50 + i / 30 * 9);
    }
    fixture.Add(3, 5000, 60);
    fixture.model.Reload();
    const auto problems = [&fixture] {
        return fixture.Text(fixture.model.rowCount() - 1, ZoneColumn::Problems);
    };
    // They come in slices.
    const QString outside = "outside of the world";
    QTRY_VERIFY(problems().startsWith(outside));
    fixture.model.SetFilter("outside");
    QCOMPARE(fixture.model.rowCount(), 1);
    fixture.territories[3]->Zones().last()->setPos(500, 500);
    fixture.model.FollowZones({fixture.territories[3]});
    fixture.model.SetFilter({});
    QTRY_VERIFY(!problems().contains(outside));
}

void tst_ZoneTableModel::EqualsAPlainEvaluation()
{
    ModelFixture fixture;
    Random random;
    const QStringList filters = {"",        "radius>70",         "north", "deer x<500", "outside",
                                 "overlap", "static-max>=5 wolf"};
    QString filter;
    fixture.model.Reload();
    for (int step = 0; step < 400; ++step) {
        Territory* territory = fixture.territories[random.Below(4)];
        switch (random.Below(4)) {
        case 0:
            fixture.Add(fixture.territories.indexOf(territory), random.Below(1100),
                        float(random.Between(50, 100)));
            break;
        case 1:
            if (!territory->Zones().isEmpty()) {
                delete territory->Zones().last();
            }
            break;
        default:
            if (!territory->Zones().isEmpty()) {
                Zone* zone = territory->Zones().last();
                zone->setPos(random.Below(1100), 100);
                zone->SetRadius(float(random.Between(50, 100)));
                zone->SetStaticMax(random.Below(10));
            }
            break;
        }
        fixture.model.FollowZones({territory});
        if (random.Below(3) == 0) {
            filter = filters[random.Below(filters.size())];
            fixture.model.SetFilter(filter);
        }
        if (random.Below(3) == 0) {
            fixture.model.sort(random.Below(int(ZoneColumns.size())), Qt::AscendingOrder);
        }
        const WorldScale scale(ProjectSettings::Instance());
        const std::vector<ZoneRow> rows = ZoneRows(fixture.types.Records(), scale);
        const std::vector<bool> stays = ZoneFilter(filter, scale).Matching(rows);
        const auto line = [](const ZoneRow& row) {
            return row.type + row.territory + QString::number(row.number) +
                   CellText(row, ZoneColumn::X) + CellText(row, ZoneColumn::Radius);
        };
        QStringList expected;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (stays[i]) {
                expected.append(line(rows[i]));
            }
        }
        QStringList shown;
        for (int row = 0; row < fixture.model.rowCount(); ++row) {
            shown.append(line(fixture.model.RowAt(row)));
        }
        std::sort(expected.begin(), expected.end());
        std::sort(shown.begin(), shown.end());
        QCOMPARE(shown, expected);
    }
}

QTEST_MAIN(tst_ZoneTableModel)
#include "tst_ZoneTableModel.moc"
