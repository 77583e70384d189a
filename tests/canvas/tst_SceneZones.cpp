#include "canvas/MainScene.h"

#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"

#include <QSignalSpy>
#include <QTest>

Q_DECLARE_METATYPE(Territory*)
Q_DECLARE_METATYPE(Zone*)

class tst_SceneZones : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void PassesColorsToTheTerritory();
    void AnnouncesTheSelection();
    void InsertsZones();
    void InsertsTheZoneShownLast();
    void InsertingIsOneStep();
    void InsertsNothingWithoutATerritory();
    void SelectsAndMovesZones();
    void IsModifiedWhenADragEndsElsewhere_data();
    void IsModifiedWhenADragEndsElsewhere();
    void LosesZonesWithTheMouse();
    void NoticesADragWhoseReleaseIsMissing();
    void RightDoubleClicksLeaveTheSelection();
    void AsksForTheTerritoryBeforeItSelects();
    void SelectsWhatTheAnswerUnlocks();
    void StandsAnAnswerThatDestroysTheZone();
    void QueriesTheTerritoryThatHoldsACopy();
    void QueriesNothingElse();
    void RemovesTheSelection();
    void UndoBringsRemovedZonesBack();
    void RemovesZonesOfOtherTerritories();
    void RemovesZonesThatTheAnswerDestroys();
    void IsModifiedByRemovingNothing();
};

void tst_SceneZones::initTestCase()
{
    // QSignalSpy needs these types.
    qRegisterMetaType<Territory*>("Territory*");
    qRegisterMetaType<Zone*>("Zone*");
}

void tst_SceneZones::PassesColorsToTheTerritory()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeTerritoryColor(Qt::red);
    canvas.Scene().ChangeTerritoryAlpha(7, 0.5F);
    QCOMPARE(canvas.territory->Color(), QColor(Qt::black));
    canvas.Scene().ChangeTerritory(canvas.territory);
    QCOMPARE(canvas.Scene().CurrentTerritory(), canvas.territory);
    Zone* zone = canvas.AddZone({50, 50});
    canvas.Scene().ChangeTerritoryColor(QColor(10, 20, 30, 40));
    QCOMPARE(canvas.territory->Color(), QColor(10, 20, 30, 255));
    canvas.Scene().ChangeTerritoryAlpha(100, 0.9F);
    QCOMPARE(canvas.territory->Color(), QColor(10, 20, 30, 100));
    QCOMPARE(zone->Color(), QColor(10, 20, 30, 100));
    QCOMPARE(zone->opacity(), 1.0);
    canvas.Scene().ChangeTerritory(nullptr);
    canvas.Scene().ChangeTerritoryColor(Qt::green);
    QCOMPARE(canvas.territory->Color(), QColor(10, 20, 30, 100));
}

void tst_SceneZones::AnnouncesTheSelection()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    QSignalSpy spy(&canvas.Scene(), &MainScene::ZoneSelected);
    zone->setSelected(true);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.last().first().value<QList<QGraphicsItem*>>(), QList<QGraphicsItem*>({zone}));
    canvas.Scene().clearSelection();
    QCOMPARE(spy.size(), 2);
    QVERIFY(spy.last().first().value<QList<QGraphicsItem*>>().isEmpty());
    canvas.Scene().ChangeSelection();
    QCOMPARE(spy.size(), 3);
}

void tst_SceneZones::InsertsZones()
{
    CanvasFixture canvas({2000, 1600});
    canvas.territory->SetRgba(0x80102030);
    canvas.Scene().ChangeTerritory(canvas.territory);
    canvas.Scene().ChangeMode(SceneMode::Insert);
    QSignalSpy inserted(&canvas.Scene(), &MainScene::ZoneInserted);
    canvas.TakeModified();
    const QPointF center = canvas.view.mapToScene(150, 140);
    canvas.Press(center);
    QCOMPARE(inserted.size(), 1);
    QVERIFY(canvas.TakeModified());
    auto* zone = inserted.first().first().value<Zone*>();
    QCOMPARE(canvas.territory->Zones().values(), QList<Zone*>({zone}));
    QCOMPARE(zone->pos(), center);
    QCOMPARE(zone->Radius(), 300.0F);
    QCOMPARE(zone->parentItem(), nullptr);
    QCOMPARE(zone->scene(), &canvas.Scene());
    QCOMPARE(zone->GetTerritory(), canvas.territory);
    QCOMPARE(zone->Color(), canvas.territory->Color());
    QVERIFY(!zone->isSelected());
    canvas.Release(center);
    canvas.DoubleClick(center);
    canvas.Release(center);
    QCOMPARE(inserted.size(), 2);
    zone->SetStaticMax(5);
    QCOMPARE(canvas.type->Totals().staticMax, 5);
    // 300 m on a map of 7.5 m a pixel.
    ProjectSettings::Instance().SetSizes(2000, 1600, 15000, 12000);
    canvas.Press(center);
    QCOMPARE(inserted.last().first().value<Zone*>()->Radius(), 40.0F);
}

void tst_SceneZones::InsertsTheZoneShownLast()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeTerritory(canvas.territory);
    canvas.Scene().ChangeMode(SceneMode::Insert);
    ZoneValues values = canvas.document.ZoneTemplate();
    values.counts.staticMax = 12;
    values.radius = 25;
    values.usage = Zone::DynamicEvent;
    values.eventName = "Caravan";
    values.depth = 48;
    canvas.document.SetZoneTemplate(values);
    canvas.Click({50, 50});
    QVERIFY(canvas.territory->Zones().last()->Values() == values);
    QCOMPARE(canvas.type->Totals().staticMax, 12);
}

void tst_SceneZones::InsertingIsOneStep()
{
    CanvasFixture canvas;
    canvas.territory->setText("South woods");
    canvas.Scene().ChangeTerritory(canvas.territory);
    canvas.Scene().ChangeMode(SceneMode::Insert);
    canvas.Click({50, 50});
    canvas.Click({70, 50});
    QCOMPARE(canvas.document.History().count(), 2);
    QCOMPARE(canvas.document.History().undoText(), QString("Add zone to South woods"));
    const QList<Zone*> both = canvas.territory->Zones().values();
    canvas.document.Undo();
    QCOMPARE(canvas.territory->Zones().values(), QList<Zone*>({both.first()}));
    QCOMPARE(both.last()->scene(), nullptr);
    canvas.document.Redo();
    QCOMPARE(canvas.territory->Zones().values(), both);
    QCOMPARE(both.last()->scene(), &canvas.Scene());
    QCOMPARE(both.last()->pos(), QPointF(70, 50));
}

void tst_SceneZones::InsertsNothingWithoutATerritory()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Insert);
    QSignalSpy inserted(&canvas.Scene(), &MainScene::ZoneInserted);
    canvas.TakeModified();
    canvas.Click({50, 50});
    QVERIFY(inserted.isEmpty());
    QVERIFY(!canvas.TakeModified());
    QCOMPARE(canvas.Scene().items().size(), 5);
}

void tst_SceneZones::SelectsAndMovesZones()
{
    CanvasFixture canvas;
    Zone* first = canvas.AddZone({50, 50});
    Zone* second = canvas.AddZone({120, 100});
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Click({50, 50});
    QCOMPARE(canvas.Scene().selectedItems(), QList<QGraphicsItem*>({first}));
    canvas.Drag({120, 100}, {130, 104});
    QCOMPARE(canvas.Scene().selectedItems(), QList<QGraphicsItem*>({second}));
    QCOMPARE(second->pos(), QPointF(130, 104));
    QCOMPARE(first->pos(), QPointF(50, 50));
    canvas.Click({190, 20});
    QVERIFY(canvas.Scene().selectedItems().isEmpty());
}

void tst_SceneZones::IsModifiedWhenADragEndsElsewhere_data()
{
    QTest::addColumn<QString>("drag");
    QTest::addColumn<bool>("isModified");
    QTest::newRow("click") << "click" << false;
    QTest::newRow("move") << "move" << true;
    QTest::newRow("there and back") << "back" << false;
    QTest::newRow("several zones") << "several" << true;
    QTest::newRow("with Ctrl, which does not select") << "ctrl" << true;
    QTest::newRow("double click") << "double" << true;
    QTest::newRow("beside the zones") << "beside" << false;
    QTest::newRow("the mode changes meanwhile") << "mode" << true;
    QTest::newRow("a second button meanwhile") << "second button" << true;
    QTest::newRow("the mouse is lost meanwhile") << "lost mouse" << true;
    QTest::newRow("the focus is lost meanwhile") << "lost focus" << true;
}

void tst_SceneZones::IsModifiedWhenADragEndsElsewhere()
{
    QFETCH(QString, drag);
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    Zone* other = canvas.AddZone({120, 100});
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.TakeModified();
    if (drag == "click") {
        canvas.Click({50, 50});
    } else if (drag == "move") {
        canvas.Drag({50, 50}, {51, 50});
    } else if (drag == "back") {
        canvas.Press({50, 50});
        canvas.Move({70, 50});
        canvas.Move({50, 50});
        canvas.Release({50, 50});
    } else if (drag == "several") {
        zone->setSelected(true);
        other->setSelected(true);
        canvas.Drag({50, 50}, {60, 70});
        QCOMPARE(other->pos(), QPointF(130, 120));
    } else if (drag == "ctrl") {
        canvas.Drag({50, 50}, {60, 70}, Qt::ControlModifier);
    } else if (drag == "double") {
        canvas.Click({50, 50});
        canvas.DoubleClick({50, 50});
        canvas.Move({60, 70});
        canvas.Release({60, 70});
    } else if (drag == "beside") {
        canvas.Drag({90, 20}, {95, 25});
    } else if (drag == "second button") {
        canvas.Press({50, 50});
        canvas.Press({50, 50}, Qt::RightButton);
        canvas.Mouse(QEvent::MouseButtonRelease, canvas.At({50, 50}), Qt::RightButton,
                     Qt::LeftButton);
        canvas.Move({60, 70});
        canvas.Release({60, 70});
    } else if (drag == "lost mouse") {
        canvas.Press({50, 50});
        canvas.Move({60, 70});
        QEvent event(QEvent::UngrabMouse);
        QCoreApplication::sendEvent(canvas.view.viewport(), &event);
    } else if (drag == "lost focus") {
        canvas.Press({50, 50});
        canvas.Move({60, 70});
        canvas.view.clearFocus();
    } else {
        canvas.Press({50, 50});
        canvas.Move({60, 70});
        canvas.Scene().ChangeMode(SceneMode::None);
        canvas.Release({60, 70});
    }
    QTEST(canvas.TakeModified(), "isModified");
    QTEST(zone->pos() != QPointF(50, 50), "isModified");
}

void tst_SceneZones::LosesZonesWithTheMouse()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    Zone* other = canvas.AddZone({120, 100});
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Press({50, 50});
    canvas.Move({60, 70});
    QEvent event(QEvent::UngrabMouse);
    QCoreApplication::sendEvent(canvas.view.viewport(), &event);
    canvas.Move({90, 90});
    QCOMPARE(zone->pos(), QPointF(60, 70));
    QCOMPARE(canvas.Scene().mouseGrabberItem(), nullptr);
    canvas.TakeModified();
    // The drag has ended and counts only once.
    QCoreApplication::sendEvent(canvas.view.viewport(), &event);
    QVERIFY(!canvas.TakeModified());
    // The next press goes to the item below.
    canvas.Drag({120, 100}, {130, 110});
    QCOMPARE(zone->pos(), QPointF(60, 70));
    QCOMPARE(other->pos(), QPointF(130, 110));
    QVERIFY(canvas.TakeModified());
}

void tst_SceneZones::NoticesADragWhoseReleaseIsMissing()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    Zone* other = canvas.AddZone({120, 100});
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Press({50, 50});
    canvas.Move({60, 70});
    canvas.TakeModified();
    canvas.Press({120, 100});
    QVERIFY(canvas.TakeModified());
    canvas.Move({130, 110});
    canvas.Release({130, 110});
    QCOMPARE(zone->pos(), QPointF(60, 70));
    QCOMPARE(other->pos(), QPointF(130, 110));
}

void tst_SceneZones::RightDoubleClicksLeaveTheSelection()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    zone->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    for (const QPointF place : {QPointF(50, 50), QPointF(150, 20)}) {
        canvas.Click(place, Qt::RightButton);
        canvas.DoubleClick(place, Qt::RightButton);
        QCOMPARE(canvas.Scene().mouseGrabberItem(), nullptr);
        canvas.Release(place, Qt::RightButton);
        QVERIFY(zone->isSelected());
    }
}

void tst_SceneZones::AsksForTheTerritoryBeforeItSelects()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    Zone* below = canvas.AddZone({55, 50}, 30);
    zone->SetDepth(zone->DepthInFront());
    Zone* selectedBefore = canvas.AddZone({150, 100});
    selectedBefore->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Query);
    canvas.TakeModified();
    QSignalSpy query(&canvas.view, &MainView::TerritorySelected);
    bool wasSelected = true;
    connect(&canvas.view, &MainView::TerritorySelected, this, [&] {
        wasSelected = zone->isSelected();
        canvas.Scene().clearSelection();
    });
    canvas.Press({50, 50});
    QCOMPARE(query.size(), 1);
    QCOMPARE(query.first().first().value<Territory*>(), canvas.territory);
    QVERIFY(!wasSelected);
    QCOMPARE(canvas.Scene().selectedItems(), QList<QGraphicsItem*>({zone}));
    QVERIFY(!below->isSelected());
    canvas.Release({50, 50});
    canvas.DoubleClick({150, 100});
    QCOMPARE(query.size(), 2);
    QVERIFY(selectedBefore->isSelected());
    QVERIFY(!canvas.TakeModified());
}

void tst_SceneZones::SelectsWhatTheAnswerUnlocks()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    canvas.territory->SetZonesEditable(false);
    canvas.Scene().ChangeMode(SceneMode::Query);
    connect(&canvas.view, &MainView::TerritorySelected, this,
            [](Territory* territory) { territory->SetZonesEditable(true); });
    canvas.Click({50, 50});
    QVERIFY(zone->isSelected());
}

void tst_SceneZones::StandsAnAnswerThatDestroysTheZone()
{
    CanvasFixture canvas;
    canvas.AddZone({50, 50});
    canvas.Scene().ChangeMode(SceneMode::Query);
    connect(&canvas.view, &MainView::TerritorySelected, this,
            [&canvas](Territory* territory) { canvas.type->RemoveTerritory(territory->Id()); });
    canvas.Click({50, 50});
    QCOMPARE(canvas.Scene().items().size(), 5);
}

void tst_SceneZones::QueriesTheTerritoryThatHoldsACopy()
{
    CanvasFixture canvas;
    const Zone* zone = canvas.AddZone({50, 50});
    Territory* holder = canvas.type->NewTerritory();
    Zone* copy = zone->Copy();
    copy->setPos(120, 100);
    holder->AddZone(copy);
    canvas.Scene().addItem(copy);
    QCOMPARE(copy->GetTerritory(), canvas.territory);
    canvas.Scene().ChangeMode(SceneMode::Query);
    QSignalSpy query(&canvas.view, &MainView::TerritorySelected);
    canvas.Click({120, 100});
    QCOMPARE(query.size(), 1);
    QCOMPARE(query.first().first().value<Territory*>(), holder);
}

void tst_SceneZones::QueriesNothingElse()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Query);
    QSignalSpy query(&canvas.view, &MainView::TerritorySelected);
    canvas.Click({20, 20});
    canvas.Scene().addRect(50, 50, 20, 20);
    canvas.Click({60, 60});
    auto* free = new Zone(canvas.territory, 10.0F);
    free->setPos(120, 100);
    canvas.Scene().addItem(free);
    canvas.Click({120, 100});
    QVERIFY(query.isEmpty());
    QVERIFY(canvas.Scene().selectedItems().isEmpty());
}

void tst_SceneZones::RemovesTheSelection()
{
    CanvasFixture canvas;
    Zone* kept = canvas.AddZone({20, 20});
    for (int i = 0; i < 3; ++i) {
        Zone* zone = canvas.AddZone({60.0 + i * 40, 50});
        zone->SetStaticMax(10);
        zone->setSelected(true);
    }
    kept->SetStaticMax(1);
    QCOMPARE(canvas.type->Totals().staticMax, 31);
    canvas.Scene().ChangeTerritory(canvas.territory);
    canvas.TakeModified();
    int zonesAtSignal = -1;
    connect(&canvas.Scene(), &MainScene::ZoneSelected, this,
            [&](const QList<QGraphicsItem*>& items) {
                QVERIFY(items.isEmpty());
                zonesAtSignal = canvas.territory->Zones().size();
            });
    canvas.Scene().RemoveSelection();
    QCOMPARE(zonesAtSignal, 4);
    QVERIFY(canvas.TakeModified());
    QCOMPARE(canvas.territory->Zones().values(), QList<Zone*>({kept}));
    QCOMPARE(canvas.territory->Totals().staticMax, 1);
    QCOMPARE(canvas.type->Totals().staticMax, 1);
    QCOMPARE(canvas.Scene().items().size(), 6);
}

void tst_SceneZones::UndoBringsRemovedZonesBack()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeTerritory(canvas.territory);
    Zone* kept = canvas.AddZone({20, 20});
    Territory* other = canvas.type->NewTerritory();
    Zone* first = canvas.AddZone({60, 50});
    auto* second = new Zone(other, 10.0F);
    other->AddZone(second);
    canvas.Scene().addItem(second);
    for (Zone* zone : {first, second}) {
        zone->SetStaticMax(10);
        zone->setSelected(true);
    }
    canvas.Scene().RemoveSelection();
    QCOMPARE(canvas.document.History().count(), 1);
    QCOMPARE(canvas.document.History().undoText(), QString("Remove 2 zones"));
    QVERIFY(!first->scene() && !second->scene());
    canvas.document.Undo();
    QCOMPARE(canvas.territory->Zones().values(), QList<Zone*>({kept, first}));
    QCOMPARE(other->Zones().values(), QList<Zone*>({second}));
    QCOMPARE(first->scene(), &canvas.Scene());
    QCOMPARE(canvas.type->Totals().staticMax, 20);
    QVERIFY(canvas.Scene().selectedItems().isEmpty());
    canvas.document.Redo();
    QCOMPARE(canvas.territory->Zones().values(), QList<Zone*>({kept}));
    QVERIFY(other->Zones().isEmpty());
    QCOMPARE(canvas.type->Totals().staticMax, 0);
}

void tst_SceneZones::RemovesZonesOfOtherTerritories()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({20, 20});
    zone->setSelected(true);
    canvas.Scene().ChangeTerritory(canvas.type->NewTerritory());
    canvas.Scene().RemoveSelection();
    QVERIFY(canvas.territory->Zones().isEmpty());
    QCOMPARE(canvas.Scene().items().size(), 5);
    canvas.AddZone({20, 20})->setSelected(true);
    canvas.Scene().ChangeTerritory(nullptr);
    canvas.Scene().RemoveSelection();
    QVERIFY(canvas.territory->Zones().isEmpty());
}

void tst_SceneZones::RemovesZonesThatTheAnswerDestroys()
{
    CanvasFixture canvas;
    canvas.AddZone({20, 20})->setSelected(true);
    canvas.AddZone({50, 20})->setSelected(true);
    connect(&canvas.Scene(), &MainScene::ZoneSelected, this, [&canvas] {
        if (canvas.territory->Zones().size() == 2) {
            delete canvas.territory->Zones().first();
        }
    });
    canvas.Scene().RemoveSelection();
    QVERIFY(canvas.territory->Zones().isEmpty());
    QCOMPARE(canvas.Scene().items().size(), 5);
}

void tst_SceneZones::IsModifiedByRemovingNothing()
{
    CanvasFixture canvas;
    canvas.TakeModified();
    canvas.Scene().RemoveSelection();
    QVERIFY(canvas.TakeModified());
    QCOMPARE(canvas.document.History().count(), 0);
}

QTEST_MAIN(tst_SceneZones)
#include "tst_SceneZones.moc"
