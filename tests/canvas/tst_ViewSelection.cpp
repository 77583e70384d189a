#include "canvas/MainView.h"

#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"

#include <QKeyEvent>
#include <QRubberBand>
#include <QSignalSpy>
#include <QTest>

Q_DECLARE_METATYPE(Qt::KeyboardModifiers)

class tst_ViewSelection : public QObject
{
    Q_OBJECT

private slots:
    void CopiesAndPastesZones();
    void PastesZonesIntoAnotherTerritory();
    void PastesFromTheFirstZoneThatWasMade();
    void SwallowsCopyAndPaste_data();
    void SwallowsCopyAndPaste();
    void ForgetsDestroyedZonesInTheClipboard();
    void SelectsAllZones();
    void DeletesTheSelection();
    void SelectsWithTheBand();
    void BandKeepsItsOwnCorner();
    void ClickSelectsBesideTheMouse_data();
    void ClickSelectsBesideTheMouse();
    void BandFollowsTheMouse();
    void BandStartsOnADoubleClickToo();
    void LosesTheBandWithTheMouse_data();
    void LosesTheBandWithTheMouse();
    void NoBandWhileAZoneIsSelected();
    void NoBandInOtherModes();
};

void tst_ViewSelection::CopiesAndPastesZones()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeTerritory(canvas.territory);
    Zone* first = canvas.AddZone({50, 50}, 7);
    Zone* second = canvas.AddZone({60, 40});
    first->SetStaticMax(5);
    first->SetUsage(Zone::DynamicEvent);
    first->SetEventName("Caravan");
    first->SetDepth(first->DepthInFront());
    first->setSelected(true);
    second->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyClick(&canvas.view, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(canvas.territory->Zones().size(), 2);
    canvas.Move({120, 100}, Qt::NoButton);
    canvas.TakeModified();
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    QVERIFY(canvas.TakeModified());
    const QList<Zone*> zones = canvas.territory->Zones().values();
    QCOMPARE(zones.size(), 4);
    const Zone* copy = zones.at(2);
    QCOMPARE(copy->pos(), QPointF(120, 100));
    QCOMPARE(zones.at(3)->pos(), QPointF(130, 90));
    QCOMPARE(copy->Radius(), 7.0F);
    QCOMPARE(copy->EventName(), QString("Caravan"));
    QCOMPARE(copy->zValue(), first->zValue());
    QCOMPARE(copy->scene(), &canvas.Scene());
    QCOMPARE(copy->Holder(), canvas.territory);
    QVERIFY(!copy->isSelected());
    QCOMPARE(canvas.type->Totals().staticMax, 10);
    // The clipboard can be pasted again, even after its zones have moved.
    first->setPos(20, 20);
    canvas.Move({100, 60}, Qt::NoButton);
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(canvas.territory->Zones().size(), 6);
    QCOMPARE(canvas.territory->Zones().values().at(4)->pos(), QPointF(100, 60));
    QCOMPARE(canvas.territory->Zones().values().at(5)->pos(), QPointF(140, 80));
}

void tst_ViewSelection::PastesZonesIntoAnotherTerritory()
{
    CanvasFixture canvas;
    canvas.territory->SetRgba(0xFF112233);
    canvas.Scene().ChangeTerritory(canvas.territory);
    Zone* zone = canvas.AddZone({50, 50});
    zone->SetDynamicMin(3);
    zone->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyClick(&canvas.view, Qt::Key_C, Qt::ControlModifier);
    auto* otherType = new TerritoryType("Wolf");
    canvas.types.AddType(otherType);
    Territory* other = otherType->NewTerritory();
    other->SetRgba(0x40998877);
    canvas.Scene().ChangeTerritory(other);
    canvas.Move({120, 100}, Qt::NoButton);
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(other->Zones().size(), 1);
    const Zone* copy = other->Zones().first();
    QCOMPARE(copy->GetTerritory(), other);
    QCOMPARE(copy->Holder(), other);
    QCOMPARE(copy->Color().rgba(), 0x40998877U);
    QCOMPARE(otherType->Totals().dynamicMin, 3);
    QCOMPARE(canvas.type->Totals().dynamicMin, 3);
    QCOMPARE(zone->Color().rgba(), 0xFF112233U);
}

void tst_ViewSelection::PastesFromTheFirstZoneThatWasMade()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeTerritory(canvas.territory);
    QVector<Zone*> zones;
    for (int i = 0; i < 30; ++i) {
        zones.append(canvas.AddZone({10.0 + i * 5, 20}));
    }
    for (int i = zones.size() - 1; i >= 0; --i) {
        zones.at(i)->setSelected(true);
    }
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyClick(&canvas.view, Qt::Key_C, Qt::ControlModifier);
    canvas.Move({20, 100}, Qt::NoButton);
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    const QList<Zone*> all = canvas.territory->Zones().values();
    QCOMPARE(all.size(), 60);
    for (int i = 0; i < 30; ++i) {
        QCOMPARE(all.at(30 + i)->pos(), QPointF(20 + i * 5, 100));
    }
}

void tst_ViewSelection::SwallowsCopyAndPaste_data()
{
    QTest::addColumn<bool>("hasTerritory");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("no territory") << false << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("no Ctrl") << true << Qt::KeyboardModifiers(Qt::NoModifier);
    QTest::newRow("Shift") << true << Qt::KeyboardModifiers(Qt::ShiftModifier);
}

void tst_ViewSelection::SwallowsCopyAndPaste()
{
    QFETCH(bool, hasTerritory);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    CanvasFixture canvas;
    canvas.AddZone({50, 50})->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    for (const bool isCopied : {false, true}) {
        if (isCopied) {
            canvas.Scene().ChangeTerritory(canvas.territory);
            QTest::keyClick(&canvas.view, Qt::Key_C, Qt::ControlModifier);
        }
        canvas.Scene().ChangeTerritory(hasTerritory ? canvas.territory : nullptr);
        canvas.TakeModified();
        for (const Qt::Key key : {Qt::Key_C, Qt::Key_V}) {
            QKeyEvent event(QEvent::KeyPress, key, modifiers);
            QTest::keyClick(&canvas.view, Qt::Key_F5, modifiers); // Sets the modifiers.
            QCoreApplication::sendEvent(&canvas.view, &event);
            QVERIFY(event.isAccepted());
        }
        QCOMPARE(canvas.territory->Zones().size(), 1);
        QVERIFY(!canvas.TakeModified());
    }
}

void tst_ViewSelection::ForgetsDestroyedZonesInTheClipboard()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeTerritory(canvas.territory);
    Zone* first = canvas.AddZone({50, 50});
    Zone* second = canvas.AddZone({60, 60});
    first->setSelected(true);
    second->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyClick(&canvas.view, Qt::Key_C, Qt::ControlModifier);
    delete first;
    canvas.Move({100, 100}, Qt::NoButton);
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(canvas.territory->Zones().size(), 2);
    QCOMPARE(canvas.territory->Zones().last()->pos(), QPointF(100, 100));
    canvas.type->RemoveTerritory(canvas.territory->Id());
    Territory* next = canvas.type->NewTerritory();
    canvas.Scene().ChangeTerritory(next);
    canvas.TakeModified();
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    QVERIFY(next->Zones().isEmpty());
    QVERIFY(!canvas.TakeModified());
}

void tst_ViewSelection::SelectsAllZones()
{
    CanvasFixture canvas;
    for (int i = 0; i < 5; ++i) {
        canvas.AddZone({30.0 * i + 10, 10.0 + i * 30});
    }
    Zone* atTheBorder = canvas.AddZone({-5, -5});
    Zone* outside = canvas.AddZone({300, 300});
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyClick(&canvas.view, Qt::Key_A, Qt::ControlModifier);
    QVERIFY(canvas.Scene().selectedItems().isEmpty());
    canvas.Scene().ChangeTerritory(canvas.territory);
    QSignalSpy insert(&canvas.view, &MainView::ModeInsert);
    QTest::keyClick(&canvas.view, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(canvas.Scene().selectedItems().size(), 6);
    QVERIFY(atTheBorder->isSelected());
    QVERIFY(!outside->isSelected());
    QVERIFY(insert.isEmpty());
}

void tst_ViewSelection::DeletesTheSelection()
{
    for (const SceneMode mode : Modes) {
        for (const bool hasTerritory : {false, true}) {
            for (const Qt::KeyboardModifier modifier : {Qt::NoModifier, Qt::ShiftModifier}) {
                CanvasFixture canvas;
                canvas.AddZone({50, 50})->setSelected(true);
                canvas.Scene().ChangeMode(mode);
                canvas.Scene().ChangeTerritory(hasTerritory ? canvas.territory : nullptr);
                canvas.TakeModified();
                QTest::keyClick(&canvas.view, Qt::Key_D, modifier);
                const bool isDeleted =
                    mode == SceneMode::Select && hasTerritory && modifier == Qt::ShiftModifier;
                QCOMPARE(canvas.territory->Zones().size(), isDeleted ? 0 : 1);
                QCOMPARE(canvas.TakeModified(), isDeleted);
            }
        }
    }
}

void tst_ViewSelection::SelectsWithTheBand()
{
    CanvasFixture canvas;
    Zone* inside = canvas.AddZone({80, 80}, 3);
    Zone* outside = canvas.AddZone({150, 30}, 3);
    canvas.Scene().ChangeMode(SceneMode::Select);
    const QPoint from = canvas.At({10, 10}) - QPoint(RulerThickness, RulerThickness);
    const QPoint to = canvas.At({110, 110});
    canvas.Mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    QVERIFY(Band(canvas.view)->isVisible());
    canvas.Mouse(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    QVERIFY(Band(canvas.view)->isHidden());
    QVERIFY(inside->isSelected());
    QVERIFY(!outside->isSelected());
}

/// The band's position, which is relative to the view, is used as one in the viewport, and the
/// band's size is reduced by the rulers.
void tst_ViewSelection::BandKeepsItsOwnCorner()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Select);
    const QPoint from(100, 110);
    const QPoint to(190, 180);
    const QPointF left = canvas.view.mapToScene(from + QPoint(32, 32));
    const QPointF right = canvas.view.mapToScene(to + QPoint(1, 1));
    Zone* caught[] = {canvas.AddZone(left + QPointF(2, 2), 1),
                      canvas.AddZone(right - QPointF(2, 2), 1)};
    Zone* missed[] = {canvas.AddZone(left - QPointF(5, 5), 1),
                      canvas.AddZone(right + QPointF(5, 5), 1)};
    canvas.Mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    QCOMPARE(Band(canvas.view)->geometry(), QRect(from + QPoint(32, 32), to + QPoint(32, 32)));
    canvas.Mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    for (const Zone* zone : caught) {
        QVERIFY(zone->isSelected());
    }
    for (const Zone* zone : missed) {
        QVERIFY(!zone->isSelected());
    }
}

void tst_ViewSelection::ClickSelectsBesideTheMouse_data()
{
    QTest::addColumn<QPoint>("offset");
    QTest::addColumn<bool>("isSelected");
    QTest::newRow("right and below") << QPoint(16, 16) << true;
    QTest::newRow("at the end of the rulers' size") << QPoint(28, 28) << true;
    QTest::newRow("beyond it") << QPoint(40, 40) << false;
    QTest::newRow("to the left") << QPoint(-8, 0) << false;
    QTest::newRow("above") << QPoint(0, -8) << false;
    QTest::newRow("left of what is caught") << QPoint(-8, 16) << false;
    QTest::newRow("above what is caught") << QPoint(16, -8) << false;
}

/// A band without a size is also reduced by the rulers, so its area extends from its corner back to
/// the mouse.
void tst_ViewSelection::ClickSelectsBesideTheMouse()
{
    QFETCH(QPoint, offset);
    CanvasFixture canvas;
    const QPoint mouse = canvas.At({100, 80});
    const Zone* zone = canvas.AddZone(canvas.view.mapToScene(mouse + offset), 3);
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Mouse(QEvent::MouseButtonPress, mouse, Qt::LeftButton, Qt::LeftButton);
    QVERIFY(Band(canvas.view)->size().isEmpty());
    canvas.Mouse(QEvent::MouseButtonRelease, mouse, Qt::LeftButton, Qt::NoButton);
    QTEST(zone->isSelected(), "isSelected");
}

void tst_ViewSelection::BandFollowsTheMouse()
{
    CanvasFixture canvas;
    const QRubberBand* band = Band(canvas.view);
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Mouse(QEvent::MouseButtonPress, {100, 100}, Qt::LeftButton, Qt::LeftButton);
    QCOMPARE(band->pos(), QPoint(132, 132));
    QVERIFY(band->size().isEmpty());
    canvas.Mouse(QEvent::MouseMove, {120, 150}, Qt::NoButton, Qt::LeftButton);
    QCOMPARE(band->geometry(), QRect(QPoint(132, 132), QPoint(152, 182)));
    canvas.Mouse(QEvent::MouseMove, {50, 30}, Qt::NoButton, Qt::LeftButton);
    QCOMPARE(band->geometry(), QRect(QPoint(132, 132), QPoint(82, 62)).normalized());
    canvas.Scene().ChangeMode(SceneMode::None);
    canvas.Mouse(QEvent::MouseMove, {40, 30}, Qt::NoButton, Qt::LeftButton);
    QVERIFY(band->size().isEmpty());
    canvas.Mouse(QEvent::MouseButtonRelease, {40, 30}, Qt::LeftButton, Qt::NoButton);
    QVERIFY(band->isHidden());
}

void tst_ViewSelection::BandStartsOnADoubleClickToo()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Mouse(QEvent::MouseButtonDblClick, {20, 20}, Qt::LeftButton, Qt::LeftButton);
    QVERIFY(Band(canvas.view)->isVisible());
    canvas.Mouse(QEvent::MouseButtonRelease, {20, 20}, Qt::LeftButton, Qt::NoButton);
    QVERIFY(Band(canvas.view)->isHidden());
}

void tst_ViewSelection::LosesTheBandWithTheMouse_data()
{
    QTest::addColumn<QString>("loss");
    for (const char* loss : {"mouse", "focus", "hidden"}) {
        QTest::newRow(loss) << QString::fromLatin1(loss);
    }
}

void tst_ViewSelection::LosesTheBandWithTheMouse()
{
    QFETCH(QString, loss);
    CanvasFixture canvas;
    const Zone* zone = canvas.AddZone({100, 80}, 30);
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Press({10, 10});
    canvas.Move({150, 150});
    QVERIFY(Band(canvas.view)->isVisible());
    if (loss == "mouse") {
        QEvent event(QEvent::UngrabMouse);
        QCoreApplication::sendEvent(canvas.view.viewport(), &event);
    } else if (loss == "focus") {
        canvas.view.clearFocus();
    } else {
        canvas.view.hide();
        canvas.view.show();
    }
    QVERIFY(Band(canvas.view)->isHidden());
    canvas.Move({160, 150}, Qt::NoButton);
    canvas.Release({160, 150});
    QVERIFY(!zone->isSelected());
}

void tst_ViewSelection::NoBandWhileAZoneIsSelected()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    Zone* other = canvas.AddZone({120, 100});
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Press({50, 50});
    QVERIFY(Band(canvas.view)->isHidden());
    canvas.Move({60, 60});
    QVERIFY(Band(canvas.view)->isHidden());
    canvas.Release({60, 60});
    QCOMPARE(zone->pos(), QPointF(60, 60));
    QCOMPARE(canvas.Scene().selectedItems(), QList<QGraphicsItem*>({zone}));
    // The right button keeps the selection, so no band begins.
    canvas.Press({150, 20}, Qt::RightButton);
    QVERIFY(Band(canvas.view)->isHidden());
    canvas.Release({150, 20}, Qt::RightButton);
    QVERIFY(zone->isSelected());
    QVERIFY(!other->isSelected());
    // A press on free ground clears the selection, and the band begins.
    canvas.Press({150, 20});
    QVERIFY(Band(canvas.view)->isVisible());
    canvas.Release({150, 20});
}

void tst_ViewSelection::NoBandInOtherModes()
{
    for (const SceneMode mode : Modes) {
        if (mode != SceneMode::Select) {
            CanvasFixture canvas;
            Zone* zone = canvas.AddZone({100, 80}, 50);
            canvas.Scene().ChangeMode(mode);
            canvas.Press({10, 10});
            QVERIFY(Band(canvas.view)->isHidden());
            canvas.Move({150, 150});
            canvas.Release({150, 150});
            QVERIFY(!zone->isSelected());
        }
    }
}

QTEST_MAIN(tst_ViewSelection)
#include "tst_ViewSelection.moc"
