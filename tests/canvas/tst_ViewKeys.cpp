#include "canvas/MainView.h"

#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

Q_DECLARE_METATYPE(SceneMode)
Q_DECLARE_METATYPE(Qt::KeyboardModifiers)

namespace {

/// Counts the keys that reach an object, and keeps them from it.
class KeyCounter : public QObject
{
public:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
        count += isKey ? 1 : 0;
        return isKey;
    }

    int count = 0;
};

} // namespace

class tst_ViewKeys : public QObject
{
    Q_OBJECT

private slots:
    void BracketsResizeTheBrush_data();
    void BracketsResizeTheBrush();
    void HeldBracketsRepeat();
    void TheTimerRepeatsByItself();
    void BothBracketsHeldCancelOut();
    void HeldKeysAreThoseOfTheProgram();
    void BracketsNeedThePaintMode();
    void AltGrBracketsAreReleasedByTheirPlace();
    void ReleasedBracesLetGoOfShift_data();
    void ReleasedBracesLetGoOfShift();
    void AutoRepeatIsIgnored();
    void OtherKeysGoOnToTheMap();
    void LostFocusReleasesTheKeys();
    void ArrowsNudgeTheSelection_data();
    void ArrowsNudgeTheSelection();
    void HeldArrowsRepeatAndCombine();
    void ArrowsNeedTheSelectMode();
    void AsksForModes_data();
    void AsksForModes();
    void PansWithSpace_data();
    void PansWithSpace();
    void SpaceSavesTheModeOnce();
    void LostFocusEndsPanning();
    void PansOnADoubleClickToo();
};

void tst_ViewKeys::BracketsResizeTheBrush_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<int>("change");
    const Qt::KeyboardModifiers none = Qt::NoModifier;
    const Qt::KeyboardModifiers shift = Qt::ShiftModifier;
    const Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
    QTest::newRow("]") << int(Qt::Key_BracketRight) << none << 5;
    QTest::newRow("[") << int(Qt::Key_BracketLeft) << none << -5;
    QTest::newRow("Shift+]") << int(Qt::Key_BracketRight) << shift << 15;
    QTest::newRow("}") << int(Qt::Key_BraceRight) << shift << 15;
    QTest::newRow("} without Shift") << int(Qt::Key_BraceRight) << none << 15;
    QTest::newRow("{") << int(Qt::Key_BraceLeft) << shift << -15;
    QTest::newRow("Ctrl+]") << int(Qt::Key_BracketRight) << ctrl << 25;
    QTest::newRow("Ctrl+[") << int(Qt::Key_BracketLeft) << ctrl << -25;
    QTest::newRow("Ctrl+Shift+]") << int(Qt::Key_BracketRight) << (ctrl | shift) << 60;
    QTest::newRow("Ctrl+Shift+}") << int(Qt::Key_BraceRight) << (ctrl | shift) << 60;
    QTest::newRow("Ctrl+Shift+{") << int(Qt::Key_BraceLeft) << (ctrl | shift) << -60;
}

void tst_ViewKeys::BracketsResizeTheBrush()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, change);
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    const Brush* brush = canvas.dock.GetBrush();
    QTest::keyPress(&canvas.view, Qt::Key(key), modifiers);
    QCOMPARE(brush->Size(), 100 + change);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), qBound(1, 100 + 2 * change, 256));
    QTest::keyRelease(&canvas.view, Qt::Key(key), modifiers);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), qBound(1, 100 + 2 * change, 256));
}

void tst_ViewKeys::HeldBracketsRepeat()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    const Brush* brush = canvas.dock.GetBrush();
    QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
    for (int i = 0; i < 60; ++i) {
        Tick(canvas.view);
    }
    QCOMPARE(brush->Size(), 256);
    QTest::keyRelease(&canvas.view, Qt::Key_BracketRight);
    QTest::keyPress(&canvas.view, Qt::Key_BracketLeft);
    for (int i = 0; i < 60; ++i) {
        Tick(canvas.view);
    }
    QCOMPARE(brush->Size(), 1);
    // In other modes the held key does nothing. Afterwards it works again.
    QTest::keyRelease(&canvas.view, Qt::Key_BracketLeft);
    QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
    canvas.Scene().ChangeMode(SceneMode::Insert);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 6);
    canvas.Scene().ChangeMode(SceneMode::Paint);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 11);
}

void tst_ViewKeys::TheTimerRepeatsByItself()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    const Brush* brush = canvas.dock.GetBrush();
    canvas.dock.SetSize(1);
    QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
    QTRY_VERIFY(brush->Size() >= 11);
    QTest::keyRelease(&canvas.view, Qt::Key_BracketRight);
}

void tst_ViewKeys::BothBracketsHeldCancelOut()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
    QTest::keyPress(&canvas.view, Qt::Key_BracketLeft);
    QCOMPARE(canvas.dock.GetBrush()->Size(), 105);
    Tick(canvas.view);
    QCOMPARE(canvas.dock.GetBrush()->Size(), 105);
}

void tst_ViewKeys::HeldKeysAreThoseOfTheProgram()
{
    CanvasFixture canvas;
    Document document;
    MainView other;
    BrushDock dock(document.GetBrush());
    other.SetDocument(document);
    other.SetBrushDock(&dock);
    other.Scene()->ChangeMode(SceneMode::Paint);
    canvas.Scene().ChangeMode(SceneMode::Paint);
    QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
    QCOMPARE(dock.GetBrush()->Size(), 32);
    Tick(other);
    QCOMPARE(dock.GetBrush()->Size(), 37);
    QTest::keyRelease(&other, Qt::Key_BracketRight);
    Tick(canvas.view);
    QCOMPARE(canvas.dock.GetBrush()->Size(), 37);
}

void tst_ViewKeys::BracketsNeedThePaintMode()
{
    for (const SceneMode mode : Modes) {
        if (mode != SceneMode::Paint) {
            CanvasFixture canvas;
            canvas.Scene().ChangeMode(mode);
            QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
            Tick(canvas.view);
            canvas.Scene().ChangeMode(SceneMode::Paint);
            Tick(canvas.view);
            QCOMPARE(canvas.dock.GetBrush()->Size(), 32);
        }
    }
    // Without a dock there is nothing to resize.
    MainView view;
    view.Scene()->ChangeMode(SceneMode::Paint);
    QTest::keyClick(&view, Qt::Key_BracketRight);
}

void tst_ViewKeys::AltGrBracketsAreReleasedByTheirPlace()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    const Brush* brush = canvas.dock.GetBrush();
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketRight, 18);
    QCOMPARE(brush->Size(), 105);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_8, 17);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 110);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_9, 18);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 110);
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketLeft, 17);
    QCOMPARE(brush->Size(), 105);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_8, 17);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 105);
    // Events without a scan code do not release one another.
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketRight, 0);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_8, 0);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 115);
}

void tst_ViewKeys::ReleasedBracesLetGoOfShift_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("isShiftHeld");
    QTest::newRow("{") << int(Qt::Key_BraceLeft) << false;
    QTest::newRow("}") << int(Qt::Key_BraceRight) << false;
    QTest::newRow("[") << int(Qt::Key_BracketLeft) << true;
    QTest::newRow("]") << int(Qt::Key_BracketRight) << true;
}

void tst_ViewKeys::ReleasedBracesLetGoOfShift()
{
    QFETCH(int, key);
    QFETCH(bool, isShiftHeld);
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    const Brush* brush = canvas.dock.GetBrush();
    // The other bracket stays held, and its step shows the current step size.
    const bool isLeft = key == Qt::Key_BraceLeft || key == Qt::Key_BracketLeft;
    const int other = isLeft ? Qt::Key_BraceRight : Qt::Key_BraceLeft;
    SendKey(canvas.view, QEvent::KeyPress, key, 0);
    SendKey(canvas.view, QEvent::KeyPress, other, 0);
    QVERIFY(HeldKeys::Instance().shift);
    canvas.dock.SetSize(100);
    SendKey(canvas.view, QEvent::KeyRelease, key, 0);
    QCOMPARE(HeldKeys::Instance().shift, isShiftHeld);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 100 + (isLeft ? 1 : -1) * (isShiftHeld ? 15 : 5));
}

void tst_ViewKeys::AutoRepeatIsIgnored()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    const Brush* brush = canvas.dock.GetBrush();
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketRight, 0, true);
    QCOMPARE(brush->Size(), 100);
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketRight, 0);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_BracketRight, 0, true);
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketRight, 0, true);
    QCOMPARE(brush->Size(), 105);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 110);
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_Space, 0, true);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Paint);
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_Space, 0);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_Space, 0, true);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Pan);
}

/// The view passes releases on to the scene, and presses unless it has consumed them.
void tst_ViewKeys::OtherKeysGoOnToTheMap()
{
    CanvasFixture canvas;
    KeyCounter counter;
    canvas.Scene().installEventFilter(&counter);
    const auto reached = [&](QEvent::Type type, int key, bool isAutoRepeat) {
        counter.count = 0;
        SendKey(canvas.view, type, key, 0, isAutoRepeat);
        return counter.count == 1;
    };
    canvas.Scene().ChangeMode(SceneMode::Paint);
    for (const int key : {Qt::Key_F5, Qt::Key_Left, Qt::Key_BracketLeft, Qt::Key_BraceRight,
                          Qt::Key_Space, Qt::Key_S, Qt::Key_C, Qt::Key_Escape}) {
        const bool isConsumed =
            key != Qt::Key_F5 && key != Qt::Key_Left && key != Qt::Key_C && key != Qt::Key_Escape;
        QVERIFY(!reached(QEvent::KeyPress, key, true));
        QCOMPARE(reached(QEvent::KeyPress, key, false), !isConsumed);
        QVERIFY(!reached(QEvent::KeyRelease, key, true));
        QVERIFY(reached(QEvent::KeyRelease, key, false));
    }
    canvas.Scene().ChangeMode(SceneMode::Select);
    for (const int key : {Qt::Key_Left, Qt::Key_C, Qt::Key_V, Qt::Key_BracketLeft}) {
        QCOMPARE(reached(QEvent::KeyPress, key, false), key == Qt::Key_BracketLeft);
        QVERIFY(reached(QEvent::KeyRelease, key, false));
    }
}

void tst_ViewKeys::LostFocusReleasesTheKeys()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    QTest::keyPress(&canvas.view, Qt::Key_BraceRight, Qt::ShiftModifier);
    canvas.view.clearFocus();
    Tick(canvas.view);
    QCOMPARE(canvas.dock.GetBrush()->Size(), 115);
    const HeldKeys& keys = HeldKeys::Instance();
    QVERIFY(!keys.grow && !keys.shift && !keys.ctrl);
    canvas.view.setFocus();
    Tick(canvas.view);
    QCOMPARE(canvas.dock.GetBrush()->Size(), 115);
    canvas.Scene().ChangeMode(SceneMode::Select);
    Zone* zone = canvas.AddZone({50, 50});
    zone->setSelected(true);
    QTest::keyPress(&canvas.view, Qt::Key_Right);
    canvas.view.clearFocus();
    Tick(canvas.view);
    QCOMPARE(zone->pos(), QPointF(51, 50));
}

void tst_ViewKeys::ArrowsNudgeTheSelection_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<int>("step");
    QTest::newRow("alone") << Qt::KeyboardModifiers(Qt::NoModifier) << 1;
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier) << 5;
    QTest::newRow("Ctrl") << Qt::KeyboardModifiers(Qt::ControlModifier) << 10;
    QTest::newRow("Ctrl+Shift") << (Qt::ControlModifier | Qt::ShiftModifier) << 50;
}

void tst_ViewKeys::ArrowsNudgeTheSelection()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, step);
    const std::pair<Qt::Key, QPointF> arrows[] = {{Qt::Key_Up, {0, -1}},
                                                  {Qt::Key_Down, {0, 1}},
                                                  {Qt::Key_Left, {-1, 0}},
                                                  {Qt::Key_Right, {1, 0}}};
    for (const auto& [key, direction] : arrows) {
        CanvasFixture canvas;
        Zone* first = canvas.AddZone({50.5, 50});
        Zone* second = canvas.AddZone({100, 80});
        const Zone* other = canvas.AddZone({150, 90});
        first->setSelected(true);
        second->setSelected(true);
        canvas.Scene().ChangeMode(SceneMode::Select);
        canvas.TakeModified();
        QTest::keyPress(&canvas.view, key, modifiers);
        QCOMPARE(first->pos(), QPointF(50.5, 50) + direction * step);
        Tick(canvas.view);
        QCOMPARE(first->pos(), QPointF(50.5, 50) + direction * step * 2);
        QCOMPARE(second->pos(), QPointF(100, 80) + direction * step * 2);
        QCOMPARE(other->pos(), QPointF(150, 90));
        QTest::keyRelease(&canvas.view, key, modifiers);
        Tick(canvas.view);
        QCOMPARE(first->pos(), QPointF(50.5, 50) + direction * step * 2);
        QVERIFY(!canvas.TakeModified());
    }
}

void tst_ViewKeys::HeldArrowsRepeatAndCombine()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    zone->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyPress(&canvas.view, Qt::Key_Right);
    QTest::keyPress(&canvas.view, Qt::Key_Down);
    QCOMPARE(zone->pos(), QPointF(52, 51));
    Tick(canvas.view);
    QCOMPARE(zone->pos(), QPointF(53, 52));
    QTest::keyPress(&canvas.view, Qt::Key_Left);
    QCOMPARE(zone->pos(), QPointF(53, 53));
    QTest::keyRelease(&canvas.view, Qt::Key_Right);
    QTest::keyRelease(&canvas.view, Qt::Key_Down);
    Tick(canvas.view);
    QCOMPARE(zone->pos(), QPointF(52, 53));
}

void tst_ViewKeys::ArrowsNeedTheSelectMode()
{
    for (const SceneMode mode : Modes) {
        if (mode != SceneMode::Select) {
            CanvasFixture canvas;
            Zone* zone = canvas.AddZone({50, 50});
            zone->setSelected(true);
            canvas.Scene().ChangeMode(mode);
            QTest::keyPress(&canvas.view, Qt::Key_Right);
            Tick(canvas.view);
            QCOMPARE(zone->pos(), QPointF(50, 50));
        }
    }
}

void tst_ViewKeys::AsksForModes_data()
{
    QTest::addColumn<SceneMode>("mode");
    QTest::addColumn<bool>("hasTerritory");
    for (const SceneMode mode : Modes) {
        QTest::addRow("mode %d", int(mode)) << mode << false;
        QTest::addRow("mode %d, with a territory", int(mode)) << mode << true;
    }
}

void tst_ViewKeys::AsksForModes()
{
    QFETCH(SceneMode, mode);
    QFETCH(bool, hasTerritory);
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(mode);
    canvas.Scene().ChangeTerritory(hasTerritory ? canvas.territory : nullptr);
    QSignalSpy insert(&canvas.view, &MainView::ModeInsert);
    QSignalSpy select(&canvas.view, &MainView::ModeSelect);
    QSignalSpy query(&canvas.view, &MainView::ModeQuery);
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_S, Qt::Key_Q, Qt::Key_D}) {
        QTest::keyClick(&canvas.view, key);
        QTest::keyClick(&canvas.view, key, Qt::ControlModifier);
    }
    QVERIFY(insert.isEmpty() && select.isEmpty() && query.isEmpty());

    using Signals = QList<QList<QVariant>>;
    const Signals none;
    const Signals on = {{true}};
    const Signals off = {{false}};
    QTest::keyClick(&canvas.view, Qt::Key_A, Qt::ShiftModifier);
    QCOMPARE(Signals(insert), hasTerritory ? (mode == SceneMode::Insert ? off : on) : none);
    QTest::keyClick(&canvas.view, Qt::Key_S, Qt::ShiftModifier);
    QCOMPARE(Signals(select), mode == SceneMode::Select ? off : (hasTerritory ? on : none));
    QTest::keyClick(&canvas.view, Qt::Key_Q, Qt::ShiftModifier);
    QCOMPARE(Signals(query), mode == SceneMode::Query ? off : on);
    QCOMPARE(canvas.Scene().Mode(), mode);
    // Ctrl+Shift+A selects in the selection mode.
    insert.clear();
    QTest::keyClick(&canvas.view, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(insert.size(), hasTerritory && mode != SceneMode::Select ? 1 : 0);
}

void tst_ViewKeys::PansWithSpace_data()
{
    QTest::addColumn<SceneMode>("mode");
    for (const SceneMode mode : Modes) {
        QTest::addRow("mode %d", int(mode)) << mode;
    }
}

void tst_ViewKeys::PansWithSpace()
{
    QFETCH(SceneMode, mode);
    CanvasFixture canvas;
    MainView& view = canvas.view;
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    canvas.Scene().ChangeTerritory(canvas.territory);
    canvas.Scene().ChangeMode(mode);
    Zoom(view, 12);
    view.centerOn(100, 80);
    const int x = view.horizontalScrollBar()->value();
    const int y = view.verticalScrollBar()->value();
    QTest::keyPress(&view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Pan);
    QCOMPARE(view.dragMode(), QGraphicsView::ScrollHandDrag);
    QVERIFY(!canvas.ItemAt(999)->isVisible());
    canvas.Mouse(QEvent::MouseButtonPress, {150, 150}, Qt::LeftButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseMove, {140, 155}, Qt::NoButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseButtonRelease, {140, 155}, Qt::LeftButton, Qt::NoButton);
    QCOMPARE(view.horizontalScrollBar()->value(), x + 10);
    QCOMPARE(view.verticalScrollBar()->value(), y - 5);
    QTest::keyRelease(&view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), mode);
    QCOMPARE(view.dragMode(), QGraphicsView::NoDrag);
    QCOMPARE(canvas.ItemAt(999)->isVisible(), mode == SceneMode::Paint);
    QVERIFY(canvas.territory->Zones().isEmpty());
}

void tst_ViewKeys::SpaceSavesTheModeOnce()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    canvas.Scene().ChangeMode(SceneMode::Select);
    // A release without a press, as after a switch between windows.
    QTest::keyRelease(&view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Select);
    QTest::keyPress(&view, Qt::Key_Space);
    QTest::keyPress(&view, Qt::Key_Space);
    QTest::keyRelease(&view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Select);
    // A mode that the window sets meanwhile is overwritten.
    QTest::keyPress(&view, Qt::Key_Space);
    canvas.Scene().ChangeMode(SceneMode::None);
    canvas.Scene().ChangeMode(SceneMode::Paint);
    QTest::keyRelease(&view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Select);
}

void tst_ViewKeys::LostFocusEndsPanning()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    QTest::keyPress(&canvas.view, Qt::Key_Space);
    canvas.view.clearFocus();
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Paint);
    QCOMPARE(canvas.view.dragMode(), QGraphicsView::NoDrag);
    canvas.Scene().ChangeMode(SceneMode::Insert);
    QTest::keyRelease(&canvas.view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Insert);
}

void tst_ViewKeys::PansOnADoubleClickToo()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    Zoom(view, 12);
    view.centerOn(100, 80);
    const int x = view.horizontalScrollBar()->value();
    QTest::keyPress(&view, Qt::Key_Space);
    canvas.Mouse(QEvent::MouseButtonDblClick, {150, 150}, Qt::LeftButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseMove, {140, 150}, Qt::NoButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseButtonRelease, {140, 150}, Qt::LeftButton, Qt::NoButton);
    QTest::keyRelease(&view, Qt::Key_Space);
    QCOMPARE(view.horizontalScrollBar()->value(), x + 10);
}

QTEST_MAIN(tst_ViewKeys)
#include "tst_ViewKeys.moc"
