#include "canvas/tools/SelectTool.h"

#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"

#include <QTest>

Q_DECLARE_METATYPE(Qt::KeyboardModifiers)

namespace {

const QPointF FirstPlace(50, 50);
const QPointF SecondPlace(120, 100);

/// Two zones of the current territory, in the mode in which they are selected.
class Selecting : public CanvasFixture
{
public:
    Selecting()
        : first(AddZone(FirstPlace))
        , second(AddZone(SecondPlace))
    {
        territory->setText(QStringLiteral("South woods"));
        Scene().ChangeTerritory(territory);
        Scene().ChangeMode(SceneMode::Select);
        TakeModified();
    }

    int StepCount() { return document.History().count(); }
    QString UndoText() { return document.History().undoText(); }
    QList<Zone*> Zones() const { return territory->Zones().values(); }
    void SelectBoth()
    {
        first->setSelected(true);
        second->setSelected(true);
    }
    void Tap(Qt::Key key) { QTest::keyClick(&view, key); }
    void Copy() { QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier); }
    void PasteAt(QPointF place)
    {
        Move(place, Qt::NoButton);
        QTest::keyClick(&view, Qt::Key_V, Qt::ControlModifier);
    }

    Zone* first;
    Zone* second;
};

} // namespace

class tst_SelectTool : public QObject
{
    Q_OBJECT

private slots:
    void DragIsOneStep_data();
    void DragIsOneStep();
    void DragThereAndBackIsNoStep();
    void EscapeTakesADragBack_data();
    void EscapeTakesADragBack();
    void EscapeWithoutADragDoesNothing();
    void NothingIsUndoneDuringADrag();
    void LostMouseEndsTheStep();
    void RemovingZonesEndsTheDrag();
    void SelectingAllEndsTheDrag();
    void TapsAreOneStep();
    void HeldArrowsAreOneStep();
    void NudgesOfAnotherGestureAreAnotherStep();
    void NudgesOfOtherZonesAreAnotherStep();
    void NudgesThereAndBackAreNoStep();
    void NudgesAreNoChangeToBeSaved();
    void ArrowsDoNothingDuringADrag();
    void PasteIsOneStep();
    void PastesNoRemovedZones();
    void PastesZonesThatCameBack();
};

void tst_SelectTool::DragIsOneStep_data()
{
    QTest::addColumn<bool>("areBothSelected");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("text");
    QTest::newRow("one") << false << Qt::KeyboardModifiers() << "Move zone";
    QTest::newRow("several") << true << Qt::KeyboardModifiers() << "Move 2 zones";
    QTest::newRow("with Ctrl, which does not select")
        << false << Qt::KeyboardModifiers(Qt::ControlModifier) << "Move zone";
}

void tst_SelectTool::DragIsOneStep()
{
    QFETCH(bool, areBothSelected);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Selecting canvas;
    if (areBothSelected) {
        canvas.SelectBoth();
    }
    const QPointF offset(30, 20);
    const QPointF secondAfter = areBothSelected ? SecondPlace + offset : SecondPlace;
    canvas.Drag(FirstPlace, FirstPlace + offset, modifiers);
    QCOMPARE(canvas.StepCount(), 1);
    QTEST(canvas.UndoText(), "text");
    QVERIFY(canvas.TakeModified());
    for (int round = 0; round < 2; ++round) {
        QCOMPARE(canvas.first->pos(), FirstPlace + offset);
        QCOMPARE(canvas.second->pos(), secondAfter);
        canvas.document.Undo();
        QCOMPARE(canvas.first->pos(), FirstPlace);
        QCOMPARE(canvas.second->pos(), SecondPlace);
        QVERIFY(!canvas.document.CanUndo());
        canvas.document.Redo();
    }
    // The next drag is another step.
    canvas.Drag(FirstPlace + offset, FirstPlace);
    QCOMPARE(canvas.StepCount(), 2);
}

void tst_SelectTool::DragThereAndBackIsNoStep()
{
    Selecting canvas;
    canvas.Press(FirstPlace);
    canvas.Move({80, 60});
    canvas.Move(FirstPlace);
    canvas.Release(FirstPlace);
    QCOMPARE(canvas.StepCount(), 0);
    QVERIFY(!canvas.TakeModified());
    QVERIFY(canvas.document.CanTravel());
}

void tst_SelectTool::EscapeTakesADragBack_data()
{
    QTest::addColumn<bool>("areBothSelected");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("one") << false << Qt::KeyboardModifiers();
    QTest::newRow("several") << true << Qt::KeyboardModifiers();
    QTest::newRow("with Ctrl") << false << Qt::KeyboardModifiers(Qt::ControlModifier);
}

void tst_SelectTool::EscapeTakesADragBack()
{
    QFETCH(bool, areBothSelected);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Selecting canvas;
    if (areBothSelected) {
        canvas.SelectBoth();
    }
    canvas.Press(FirstPlace, Qt::LeftButton, modifiers);
    canvas.Move({80, 60}, Qt::LeftButton, modifiers);
    QCOMPARE(canvas.first->pos(), QPointF(80, 60));
    const QList<QGraphicsItem*> selected = canvas.Scene().selectedItems();
    QTest::keyClick(&canvas.view, Qt::Key_Escape);
    QCOMPARE(canvas.first->pos(), FirstPlace);
    QCOMPARE(canvas.second->pos(), SecondPlace);
    QCOMPARE(canvas.Scene().selectedItems(), selected);
    // The button is still held.
    canvas.Move({100, 20}, Qt::LeftButton, modifiers);
    canvas.Release({100, 20}, Qt::LeftButton, modifiers);
    QCOMPARE(canvas.first->pos(), FirstPlace);
    QCOMPARE(canvas.second->pos(), SecondPlace);
    QCOMPARE(canvas.StepCount(), 0);
    QVERIFY(!canvas.TakeModified());
    QVERIFY(canvas.document.CanTravel());
    // The next drag is one of its own.
    canvas.Drag(FirstPlace, {60, 70});
    QCOMPARE(canvas.first->pos(), QPointF(60, 70));
    QCOMPARE(canvas.StepCount(), 1);
    canvas.document.Undo();
    QCOMPARE(canvas.first->pos(), FirstPlace);
}

void tst_SelectTool::EscapeWithoutADragDoesNothing()
{
    Selecting canvas;
    canvas.Drag(FirstPlace, {60, 70});
    QTest::keyClick(&canvas.view, Qt::Key_Escape);
    QCOMPARE(canvas.first->pos(), QPointF(60, 70));
    QVERIFY(canvas.first->isSelected());
    QCOMPARE(canvas.StepCount(), 1);
}

void tst_SelectTool::NothingIsUndoneDuringADrag()
{
    Selecting canvas;
    canvas.Drag(FirstPlace, {60, 70});
    canvas.Press(SecondPlace);
    canvas.Move({130, 120});
    QVERIFY(!canvas.document.CanUndo());
    QVERIFY(!canvas.document.CanTravel());
    canvas.document.Undo();
    QCOMPARE(canvas.first->pos(), QPointF(60, 70));
    QCOMPARE(canvas.second->pos(), QPointF(130, 120));
    canvas.Release({130, 120});
    QVERIFY(canvas.document.CanUndo());
    QCOMPARE(canvas.StepCount(), 2);
}

void tst_SelectTool::LostMouseEndsTheStep()
{
    Selecting canvas;
    canvas.Press(FirstPlace);
    canvas.Move({60, 70});
    canvas.view.clearFocus();
    QCOMPARE(canvas.StepCount(), 1);
    QVERIFY(canvas.document.CanUndo());
    canvas.document.Undo();
    QCOMPARE(canvas.first->pos(), FirstPlace);
}

void tst_SelectTool::RemovingZonesEndsTheDrag()
{
    Selecting canvas;
    canvas.Press(FirstPlace);
    canvas.Move({60, 70});
    QTest::keyClick(&canvas.view, Qt::Key_D, Qt::ShiftModifier);
    QCOMPARE(canvas.Zones(), QList<Zone*>({canvas.second}));
    QVERIFY(canvas.document.CanUndo());
    canvas.Move({90, 90});
    canvas.Release({90, 90});
    QCOMPARE(canvas.StepCount(), 2);
    canvas.document.Undo();
    QCOMPARE(canvas.first->pos(), QPointF(60, 70));
    canvas.document.Undo();
    QCOMPARE(canvas.first->pos(), FirstPlace);
    QCOMPARE(canvas.second->pos(), SecondPlace);
}

void tst_SelectTool::SelectingAllEndsTheDrag()
{
    Selecting canvas;
    canvas.Press(FirstPlace);
    canvas.Move({60, 70});
    QTest::keyClick(&canvas.view, Qt::Key_A, Qt::ControlModifier);
    QVERIFY(canvas.second->isSelected());
    canvas.Move({90, 90});
    canvas.Release({90, 90});
    QCOMPARE(canvas.first->pos(), QPointF(60, 70));
    QCOMPARE(canvas.second->pos(), SecondPlace);
    QCOMPARE(canvas.StepCount(), 1);
    canvas.document.Undo();
    QCOMPARE(canvas.first->pos(), FirstPlace);
}

void tst_SelectTool::TapsAreOneStep()
{
    Selecting canvas;
    canvas.SelectBoth();
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right}) {
        canvas.Tap(key);
    }
    QCOMPARE(canvas.first->pos(), FirstPlace + QPointF(3, 1));
    QCOMPARE(canvas.StepCount(), 1);
    QCOMPARE(canvas.UndoText(), QString("Move 2 zones"));
    canvas.document.Undo();
    QCOMPARE(canvas.first->pos(), FirstPlace);
    QCOMPARE(canvas.second->pos(), SecondPlace);
    canvas.document.Redo();
    QCOMPARE(canvas.first->pos(), FirstPlace + QPointF(3, 1));
    QCOMPARE(canvas.second->pos(), SecondPlace + QPointF(3, 1));
}

void tst_SelectTool::HeldArrowsAreOneStep()
{
    Selecting canvas;
    canvas.first->setSelected(true);
    QTest::keyPress(&canvas.view, Qt::Key_Right);
    for (int i = 0; i < 30; ++i) {
        Tick(canvas.view);
    }
    QTest::keyRelease(&canvas.view, Qt::Key_Right);
    QCOMPARE(canvas.first->pos(), FirstPlace + QPointF(31, 0));
    QCOMPARE(canvas.StepCount(), 1);
    canvas.document.Undo();
    QCOMPARE(canvas.first->pos(), FirstPlace);
}

void tst_SelectTool::NudgesOfAnotherGestureAreAnotherStep()
{
    Selecting canvas;
    canvas.first->setSelected(true);
    canvas.Tap(Qt::Key_Right);
    canvas.document.EndGesture();
    canvas.Tap(Qt::Key_Right);
    QCOMPARE(canvas.StepCount(), 2);
    // A nudge after a drag is a step of its own.
    canvas.Drag(FirstPlace + QPointF(2, 0), FirstPlace);
    canvas.Tap(Qt::Key_Right);
    QCOMPARE(canvas.StepCount(), 4);
    canvas.document.Undo();
    canvas.document.Undo();
    QCOMPARE(canvas.first->pos(), FirstPlace + QPointF(2, 0));
    canvas.Tap(Qt::Key_Right);
    QCOMPARE(canvas.StepCount(), 3);
}

void tst_SelectTool::NudgesOfOtherZonesAreAnotherStep()
{
    Selecting canvas;
    canvas.first->setSelected(true);
    canvas.Tap(Qt::Key_Right);
    canvas.second->setSelected(true);
    canvas.Tap(Qt::Key_Right);
    QCOMPARE(canvas.StepCount(), 2);
    canvas.document.Undo();
    QCOMPARE(canvas.first->pos(), FirstPlace + QPointF(1, 0));
    QCOMPARE(canvas.second->pos(), SecondPlace);
}

void tst_SelectTool::NudgesThereAndBackAreNoStep()
{
    Selecting canvas;
    canvas.first->setSelected(true);
    canvas.Tap(Qt::Key_Right);
    canvas.Tap(Qt::Key_Left);
    QCOMPARE(canvas.first->pos(), FirstPlace);
    QCOMPARE(canvas.StepCount(), 0);
    QVERIFY(!canvas.document.CanUndo());
}

void tst_SelectTool::NudgesAreNoChangeToBeSaved()
{
    Selecting canvas;
    canvas.document.SetSaved();
    canvas.first->setSelected(true);
    canvas.Tap(Qt::Key_Right);
    QVERIFY(!canvas.IsModified());
    canvas.document.Undo();
    QVERIFY(!canvas.IsModified());
    canvas.document.Redo();
    QVERIFY(!canvas.IsModified());
    // They take nothing from what is to be saved, either.
    canvas.Drag(SecondPlace, {130, 120});
    QVERIFY(canvas.IsModified());
    canvas.Tap(Qt::Key_Right);
    canvas.document.Undo();
    QVERIFY(canvas.IsModified());
    canvas.document.Undo();
    QVERIFY(!canvas.IsModified());
}

void tst_SelectTool::ArrowsDoNothingDuringADrag()
{
    Selecting canvas;
    canvas.Press(FirstPlace);
    canvas.Move({60, 70});
    QTest::keyPress(&canvas.view, Qt::Key_Right);
    Tick(canvas.view);
    QTest::keyRelease(&canvas.view, Qt::Key_Right);
    QCOMPARE(canvas.first->pos(), QPointF(60, 70));
    canvas.Release({60, 70});
    QCOMPARE(canvas.first->pos(), QPointF(60, 70));
    QCOMPARE(canvas.StepCount(), 1);
}

void tst_SelectTool::PasteIsOneStep()
{
    Selecting canvas;
    canvas.first->SetStaticMax(5);
    canvas.SelectBoth();
    canvas.Copy();
    canvas.PasteAt({80, 120});
    QCOMPARE(canvas.StepCount(), 1);
    QCOMPARE(canvas.UndoText(), QString("Paste 2 zones into South woods"));
    const QList<Zone*> all = canvas.Zones();
    QCOMPARE(all.size(), 4);
    canvas.document.Undo();
    QCOMPARE(canvas.Zones(), QList<Zone*>({canvas.first, canvas.second}));
    QCOMPARE(all.at(2)->scene(), nullptr);
    QCOMPARE(canvas.type->Totals().staticMax, 5);
    canvas.document.Redo();
    QCOMPARE(canvas.Zones(), all);
    QCOMPARE(all.at(2)->scene(), &canvas.Scene());
    QCOMPARE(all.at(2)->pos(), QPointF(80, 120));
    QCOMPARE(all.at(3)->pos(), QPointF(150, 170));
    QCOMPARE(canvas.type->Totals().staticMax, 10);
    QVERIFY(!all.at(2)->isSelected());
}

void tst_SelectTool::PastesNoRemovedZones()
{
    Selecting canvas;
    canvas.SelectBoth();
    canvas.Copy();
    canvas.first->setSelected(false);
    canvas.Scene().RemoveSelection();
    QCOMPARE(canvas.Zones(), QList<Zone*>({canvas.first}));
    canvas.PasteAt({80, 120});
    QCOMPARE(canvas.Zones().size(), 2);
    Zone* pasted = canvas.territory->Zones().last();
    QCOMPARE(pasted->pos(), QPointF(80, 120));
    canvas.first->setSelected(true);
    pasted->setSelected(true);
    canvas.Scene().RemoveSelection();
    QVERIFY(canvas.Zones().isEmpty());
    const int steps = canvas.StepCount();
    canvas.TakeModified();
    canvas.PasteAt({80, 120});
    QVERIFY(canvas.Zones().isEmpty());
    QCOMPARE(canvas.StepCount(), steps);
    QVERIFY(!canvas.TakeModified());
}

void tst_SelectTool::PastesZonesThatCameBack()
{
    Selecting canvas;
    canvas.SelectBoth();
    canvas.Copy();
    canvas.Scene().RemoveSelection();
    QVERIFY(canvas.Zones().isEmpty());
    canvas.document.Undo();
    QCOMPARE(canvas.Zones(), QList<Zone*>({canvas.first, canvas.second}));
    QVERIFY(canvas.Scene().selectedItems().isEmpty());
    canvas.PasteAt({80, 120});
    QCOMPARE(canvas.Zones().size(), 4);
}

QTEST_MAIN(tst_SelectTool)
#include "tst_SelectTool.moc"
