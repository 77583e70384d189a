#include "canvas/tools/PaintTool.h"

#include "tests/support/Masks.h"
#include "tests/support/Painting.h"

#include <QTest>

Q_DECLARE_METATYPE(Qt::MouseButton)

namespace {

const QColor Ink(255, 0, 0);

} // namespace

class tst_PaintTool : public QObject
{
    Q_OBJECT

private slots:
    void StrokeIsOneStep_data();
    void StrokeIsOneStep();
    void UndoBringsBackEveryByte_data();
    void UndoBringsBackEveryByte();
    void EscapeTakesAStrokeBack_data();
    void EscapeTakesAStrokeBack();
    void EscapeWithoutAStrokeDoesNothing();
    void StrokeThatChangesNothingIsNoStep_data();
    void StrokeThatChangesNothingIsNoStep();
    void StrokeWithoutALayerIsNoStep();
    void SecondButtonBeginsAnotherStep();
    void MiddleButtonDoesNotEndAStroke();
    void NothingIsUndoneDuringAStroke();
    void PaintsOnWhatUndoBroughtBack();
    void AnotherLayerEndsTheStroke();
    void ModeChangeEndsTheStroke();

private:
    /// Of what a stroke meets.
    static void AddCases();
    static void Prepare(Painting& canvas, const QString& what);
};

void tst_PaintTool::AddCases()
{
    QTest::addColumn<QString>("what");
    for (const char* what :
         {"painted mask", "greys", "another paint", "translucent paint", "another layer colour"}) {
        QTest::newRow(what) << QString::fromLatin1(what);
    }
}

void tst_PaintTool::Prepare(Painting& canvas, const QString& what)
{
    if (what == "greys") {
        canvas.AddGreys();
    } else if (what == "another paint") {
        canvas.dock.GetBrush()->SetPaintColor(Qt::blue);
    } else if (what == "translucent paint") {
        canvas.dock.GetBrush()->SetPaintColor(QColor(0, 0, 255, 100));
    } else if (what == "another layer colour") {
        canvas.layer->SetColor(Qt::green);
        canvas.dock.SetPaintColor(canvas.layer->Color().rgb());
    }
}

void tst_PaintTool::StrokeIsOneStep_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<QString>("text");
    QTest::newRow("left") << Qt::LeftButton << "Paint stroke on Forest";
    QTest::newRow("right") << Qt::RightButton << "Erase stroke on Forest";
}

void tst_PaintTool::StrokeIsOneStep()
{
    QFETCH(Qt::MouseButton, button);
    Painting canvas;
    canvas.Press({10, 40}, button);
    canvas.Move({60, 40}, button);
    canvas.Move({150, 120}, button);
    QCOMPARE(canvas.StepCount(), 0);
    QVERIFY(!canvas.TakeModified());
    canvas.Release({150, 120}, button);
    QCOMPARE(canvas.StepCount(), 1);
    QTEST(canvas.document.History().undoText(), "text");
    QVERIFY(canvas.TakeModified());
    canvas.PaintStroke({100, 20}, {40, 40});
    QCOMPARE(canvas.StepCount(), 2);
}

void tst_PaintTool::UndoBringsBackEveryByte_data()
{
    AddCases();
}

void tst_PaintTool::UndoBringsBackEveryByte()
{
    QFETCH(QString, what);
    Painting canvas;
    Prepare(canvas, what);
    const QByteArray before = canvas.Pixels();
    canvas.PaintStroke({50, 10}, {120, 100});
    const QByteArray first = canvas.Pixels();
    QVERIFY(first != before);
    canvas.PaintStroke({30, 30}, {180, 60}, Qt::RightButton);
    const QByteArray second = canvas.Pixels();
    QCOMPARE(canvas.StepCount(), 2);
    for (int round = 0; round < 2; ++round) {
        canvas.document.Undo();
        QCOMPARE(canvas.Pixels(), first);
        QVERIFY(canvas.ShowsLayer());
        canvas.document.Undo();
        QCOMPARE(canvas.Pixels(), before);
        QVERIFY(canvas.ShowsLayer());
        QVERIFY(!canvas.document.CanUndo());
        canvas.document.Redo();
        QCOMPARE(canvas.Pixels(), first);
        canvas.document.Redo();
        QCOMPARE(canvas.Pixels(), second);
        QVERIFY(canvas.ShowsLayer());
    }
}

void tst_PaintTool::EscapeTakesAStrokeBack_data()
{
    AddCases();
}

void tst_PaintTool::EscapeTakesAStrokeBack()
{
    QFETCH(QString, what);
    Painting canvas;
    Prepare(canvas, what);
    const QByteArray before = canvas.Pixels();
    canvas.Press({50, 10});
    canvas.Move({120, 100});
    QVERIFY(canvas.Pixels() != before);
    QTest::keyClick(&canvas.view, Qt::Key_Escape);
    QCOMPARE(canvas.Pixels(), before);
    QVERIFY(canvas.ShowsLayer());
    // The button is still held.
    canvas.Move({150, 20});
    canvas.Release({150, 20});
    QCOMPARE(canvas.Pixels(), before);
    QCOMPARE(canvas.StepCount(), 0);
    QVERIFY(!canvas.TakeModified());
    QVERIFY(canvas.document.CanTravel());
    // The next stroke is one of its own.
    canvas.PaintStroke({50, 10}, {120, 100});
    QCOMPARE(canvas.StepCount(), 1);
    canvas.document.Undo();
    QCOMPARE(canvas.Pixels(), before);
}

void tst_PaintTool::EscapeWithoutAStrokeDoesNothing()
{
    Painting canvas;
    canvas.PaintStroke({50, 10}, {120, 100});
    const QByteArray painted = canvas.Pixels();
    QTest::keyClick(&canvas.view, Qt::Key_Escape);
    QCOMPARE(canvas.Pixels(), painted);
    QCOMPARE(canvas.StepCount(), 1);
}

void tst_PaintTool::StrokeThatChangesNothingIsNoStep_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("painted again") << QPointF(40, 40) << Qt::LeftButton;
    QTest::newRow("erased again") << QPointF(120, 100) << Qt::RightButton;
    QTest::newRow("beside the layer") << QPointF(-40, 40) << Qt::LeftButton;
}

void tst_PaintTool::StrokeThatChangesNothingIsNoStep()
{
    QFETCH(QPointF, from);
    QFETCH(Qt::MouseButton, button);
    Painting canvas;
    const QByteArray before = canvas.Pixels();
    canvas.PaintStroke(from, from + QPointF(10, 10), button);
    QCOMPARE(canvas.Pixels(), before);
    QCOMPARE(canvas.StepCount(), 0);
    QVERIFY(canvas.TakeModified());
}

void tst_PaintTool::StrokeWithoutALayerIsNoStep()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.TakeModified();
    canvas.Drag({50, 50}, {70, 70});
    QCOMPARE(canvas.document.History().count(), 0);
    QVERIFY(canvas.TakeModified());
}

void tst_PaintTool::SecondButtonBeginsAnotherStep()
{
    Painting canvas;
    const QByteArray before = canvas.Pixels();
    canvas.Press({100, 50});
    canvas.Move({100, 100});
    const QByteArray painted = canvas.Pixels();
    canvas.Press({100, 100}, Qt::RightButton);
    canvas.Move({50, 40}, Qt::LeftButton | Qt::RightButton);
    canvas.Release({50, 40}, Qt::RightButton);
    QCOMPARE(canvas.StepCount(), 2);
    canvas.document.Undo();
    QCOMPARE(canvas.Pixels(), painted);
    canvas.document.Undo();
    QCOMPARE(canvas.Pixels(), before);
}

void tst_PaintTool::MiddleButtonDoesNotEndAStroke()
{
    Painting canvas;
    canvas.PaintStroke({10, 90}, {150, 90});
    const QByteArray wanted = canvas.Pixels();
    canvas.document.Undo();
    canvas.TakeModified();
    canvas.Press({10, 90});
    canvas.Press({10, 90}, Qt::MiddleButton);
    canvas.Move({80, 90}, Qt::LeftButton | Qt::MiddleButton);
    canvas.Release({80, 90}, Qt::MiddleButton);
    QCOMPARE(canvas.StepCount(), 1);
    QVERIFY(!canvas.document.CanTravel());
    QVERIFY(!canvas.TakeModified());
    canvas.Move({150, 90});
    canvas.Release({150, 90});
    QCOMPARE(canvas.Pixels(), wanted);
    QCOMPARE(canvas.StepCount(), 1);
    QVERIFY(!canvas.document.CanRedo());
}

void tst_PaintTool::NothingIsUndoneDuringAStroke()
{
    Painting canvas;
    canvas.PaintStroke({100, 50}, {100, 100});
    canvas.PaintStroke({150, 50}, {150, 100});
    canvas.document.Undo();
    canvas.Press({40, 100});
    canvas.Move({60, 120});
    const QByteArray underWay = canvas.Pixels();
    QVERIFY(!canvas.document.CanUndo() && !canvas.document.CanRedo());
    QVERIFY(!canvas.document.CanTravel());
    canvas.document.Undo();
    canvas.document.Redo();
    QCOMPARE(canvas.Pixels(), underWay);
    canvas.Release({60, 120});
    QVERIFY(canvas.document.CanUndo());
    QCOMPARE(canvas.StepCount(), 2);
}

/// After an undo the painter must load the mask again.
void tst_PaintTool::PaintsOnWhatUndoBroughtBack()
{
    Painting canvas;
    canvas.PaintStroke({120, 120}, {180, 120});
    const QByteArray kept = canvas.Pixels();
    canvas.PaintStroke({120, 30}, {180, 30});
    canvas.document.Undo();
    canvas.Move({100, 100}, Qt::NoButton);
    QCOMPARE(canvas.Pixels(), kept);
    canvas.PaintStroke({120, 60}, {180, 60});
    QVERIFY(IsSet(*canvas.layer, 150, 120));
    QVERIFY(!IsSet(*canvas.layer, 150, 30));
    QVERIFY(IsSet(*canvas.layer, 150, 60));
    canvas.document.Undo();
    QCOMPARE(canvas.Pixels(), kept);
}

void tst_PaintTool::AnotherLayerEndsTheStroke()
{
    Painting canvas;
    Layer* other = canvas.AddLayer(Ink, {0, 0, 10, 10});
    const QByteArray before = canvas.Pixels();
    const QByteArray otherBefore = Indices(other->Image());
    canvas.Press({100, 50});
    canvas.Move({100, 100});
    const QByteArray painted = canvas.Pixels();
    canvas.Edit(other);
    QCOMPARE(canvas.StepCount(), 1);
    canvas.Move({150, 100});
    canvas.Release({150, 100});
    QCOMPARE(Indices(other->Image()), otherBefore);
    QCOMPARE(canvas.StepCount(), 1);
    QCOMPARE(canvas.document.History().undoText(), QString("Paint stroke on Forest"));
    canvas.document.Undo();
    QCOMPARE(canvas.Pixels(), before);
    QCOMPARE(Indices(other->Image()), otherBefore);
    canvas.document.Redo();
    QCOMPARE(canvas.Pixels(), painted);
}

void tst_PaintTool::ModeChangeEndsTheStroke()
{
    Painting canvas;
    const QByteArray before = canvas.Pixels();
    canvas.Press({100, 50});
    canvas.Move({100, 100});
    canvas.Scene().ChangeMode(SceneMode::Select);
    QCOMPARE(canvas.StepCount(), 1);
    QVERIFY(canvas.document.CanUndo());
    canvas.Release({100, 100});
    canvas.document.Undo();
    QCOMPARE(canvas.Pixels(), before);
}

QTEST_MAIN(tst_PaintTool)
#include "tst_PaintTool.moc"
