#include "canvas/MainScene.h"

#include "document/edits/TerritoryEdits.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"

#include <QSignalSpy>
#include <QTest>

/// A second territory beside the fixture's, whose zones are locked and hidden.
class TwoTerritories : public CanvasFixture
{
public:
    TwoTerritories()
        : other(type->NewTerritory())
    {
        Scene().ChangeTerritory(territory);
        foreign = AddForeign({100, 60});
        other->SetVisible(false);
    }

    Zone* AddForeign(QPointF position)
    {
        auto* zone = new Zone(other, 10.0F);
        zone->setPos(position);
        other->AddZone(zone);
        Scene().addItem(zone);
        other->SetZonesEditable(false);
        return zone;
    }
    static bool Has(const Zone& zone, QGraphicsItem::GraphicsItemFlag flag)
    {
        return (zone.flags() & flag) != 0;
    }

    Territory* other;
    Zone* own = AddZone({40, 60});
    Zone* foreign;
};

/// The one selection of zones, over all territories.
class tst_ZoneSelection : public QObject
{
    Q_OBJECT

private slots:
    void SelectsExactlyTheseZones();
    void LeavesTheModes();
    void LocksZonesThatAreNoLongerSelected();
    void LeavesZonesThatBecomeTheCurrentTerritorys();
    void TheMouseMovesOnlyTheCurrentTerritorys();
    void NudgesAndRemovesAll();
    void SelectAllTakesOnlyTheCurrentTerritorys();
    void AnnouncesManyOnce();
};

void tst_ZoneSelection::SelectsExactlyTheseZones()
{
    TwoTerritories map;
    Zone* second = map.AddZone({40, 20});
    second->setSelected(true);
    QSignalSpy spy(&map.Scene(), &MainScene::ZoneSelected);
    map.TakeModified();
    map.Scene().SelectZones({map.foreign, map.own});
    QCOMPARE(map.Scene().SelectedZones(), QVector<Zone*>({map.own, map.foreign}));
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.last().first().value<QList<QGraphicsItem*>>().size(), 2);
    QVERIFY(map.foreign->isVisible());
    QVERIFY(!map.other->IsVisible());
    QVERIFY(!map.Has(*map.foreign, QGraphicsItem::ItemIsMovable));
    map.Scene().SelectZones({map.foreign, map.own});
    QCOMPARE(spy.size(), 1);
    map.Scene().SelectZones({});
    QCOMPARE(spy.size(), 2);
    QVERIFY(map.Scene().SelectedZones().isEmpty());
    QVERIFY(!map.TakeModified());
    QCOMPARE(map.document.History().count(), 0);
}

void tst_ZoneSelection::LeavesTheModes()
{
    TwoTerritories map;
    for (const SceneMode mode : Modes) {
        map.Scene().ChangeMode(mode);
        map.Scene().SelectZones({map.foreign});
        QCOMPARE(map.Scene().Mode(), mode);
        QCOMPARE(map.Scene().SelectedZones(), QVector<Zone*>({map.foreign}));
        map.Scene().SelectZones({});
    }
}

void tst_ZoneSelection::LocksZonesThatAreNoLongerSelected()
{
    TwoTerritories map;
    map.Scene().SelectZones({map.foreign});
    map.Scene().clearSelection();
    QVERIFY(!map.foreign->isVisible());
    QVERIFY(!map.Has(*map.foreign, QGraphicsItem::ItemIsSelectable));
    // A click on another zone drops it too.
    map.Scene().ChangeMode(SceneMode::Select);
    map.Scene().SelectZones({map.foreign});
    map.Click({40, 60});
    QCOMPARE(map.Scene().SelectedZones(), QVector<Zone*>({map.own}));
    QVERIFY(!map.foreign->isVisible());
    QVERIFY(!map.Has(*map.foreign, QGraphicsItem::ItemIsSelectable));
    QVERIFY(map.Has(*map.own, QGraphicsItem::ItemIsSelectable));
    // One that is shown stays so.
    map.other->SetVisible(true);
    map.Scene().SelectZones({map.foreign});
    map.Scene().SelectZones({map.own});
    QVERIFY(map.foreign->isVisible());
    // Hiding its territory deselects it.
    map.Scene().SelectZones({map.foreign});
    map.other->SetVisible(false);
    QVERIFY(map.Scene().SelectedZones().isEmpty());
    QVERIFY(!map.Has(*map.foreign, QGraphicsItem::ItemIsSelectable));
}

void tst_ZoneSelection::LeavesZonesThatBecomeTheCurrentTerritorys()
{
    TwoTerritories map;
    map.Scene().SelectZones({map.foreign});
    map.Scene().ChangeTerritory(map.other);
    map.other->SetZonesEditable(true);
    map.other->SetVisible(true);
    map.Scene().clearSelection();
    QVERIFY(map.foreign->isVisible());
    QVERIFY(map.Has(*map.foreign, QGraphicsItem::ItemIsSelectable));
    QVERIFY(map.Has(*map.foreign, QGraphicsItem::ItemIsMovable));
}

void tst_ZoneSelection::TheMouseMovesOnlyTheCurrentTerritorys()
{
    TwoTerritories map;
    map.Scene().ChangeMode(SceneMode::Select);
    map.Scene().SelectZones({map.foreign, map.own});
    map.Drag({40, 60}, {50, 80});
    QCOMPARE(map.own->pos(), QPointF(50, 80));
    QCOMPARE(map.foreign->pos(), QPointF(100, 60));
    map.Drag({100, 60}, {120, 80});
    QCOMPARE(map.foreign->pos(), QPointF(100, 60));
    QCOMPARE(map.document.History().count(), 1);
}

void tst_ZoneSelection::NudgesAndRemovesAll()
{
    TwoTerritories map;
    map.Scene().ChangeMode(SceneMode::Select);
    map.Scene().SelectZones({map.foreign, map.own});
    QVector<Territory*> changed;
    connect(&map.document, &Document::ZonesChanged, this,
            [&changed](Territory* territory) { changed.append(territory); });
    QTest::keyClick(&map.view, Qt::Key_Right);
    QCOMPARE(map.own->pos(), QPointF(41, 60));
    QCOMPARE(map.foreign->pos(), QPointF(101, 60));
    QCOMPARE(changed.size(), 2);
    QVERIFY(changed.contains(map.territory) && changed.contains(map.other));
    map.Scene().RemoveSelection();
    QVERIFY(map.territory->Zones().isEmpty());
    QVERIFY(map.other->Zones().isEmpty());
    map.document.Undo();
    QCOMPARE(map.foreign->Holder(), map.other);
    QVERIFY(!map.Has(*map.foreign, QGraphicsItem::ItemIsSelectable));
    QVERIFY(!map.foreign->isVisible());
}

void tst_ZoneSelection::SelectAllTakesOnlyTheCurrentTerritorys()
{
    TwoTerritories map;
    map.Scene().ChangeMode(SceneMode::Select);
    map.Scene().SelectZones({map.foreign});
    map.view.SelectAllZones();
    QCOMPARE(map.Scene().SelectedZones(), QVector<Zone*>({map.own}));
}

void tst_ZoneSelection::AnnouncesManyOnce()
{
    TwoTerritories map;
    QVector<Zone*> zones;
    for (int i = 0; i < 5; ++i) {
        zones.append(map.AddForeign({20.0 + i, 20}));
    }
    QSignalSpy spy(&map.Scene(), &MainScene::ZoneSelected);
    map.Scene().SelectZones(zones);
    QCOMPARE(spy.size(), 1);
    map.other->SetVisible(true);
    QCOMPARE(spy.size(), 1);
    map.other->SetVisible(false);
    QCOMPARE(spy.size(), 2);
    map.Scene().SelectZones(zones);
    map.document.Do(Edits::RemoveZones(zones));
    QCOMPARE(spy.size(), 4);
    QVERIFY(map.Scene().SelectedZones().isEmpty());
    map.document.Undo();
    map.Scene().SelectZones(zones);
    map.document.Do(Edits::RemoveTerritory(*map.other));
    QCOMPARE(spy.size(), 6);
}

QTEST_MAIN(tst_ZoneSelection)
#include "tst_ZoneSelection.moc"
