#include "canvas/tools/PolygonTool.h"

#include "canvas/ShapeMark.h"
#include "canvas/tools/PaintTools.h"
#include "document/edits/LayerEdits.h"
#include "layers/raster/Shapes.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/Painting.h"

#include <QTest>

Q_DECLARE_METATYPE(Qt::MouseButton)

namespace {

constexpr QSize Size = Painting::LayerSize;

/// What the layer's pixels become when those of the region get the value.
QByteArray With(const Painting& canvas, const raster::Region& region, uchar value)
{
    QImage mask = canvas.layer->Image().copy();
    raster::Fill(mask, region, value);
    return Indices(mask);
}

raster::Region Triangle(QPointF a, QPointF b, QPointF c)
{
    return raster::PolygonRegion({a, b, c}, Size);
}

} // namespace

/// Polygons and the lasso.
class tst_PolygonTool : public QObject
{
    Q_OBJECT

private slots:
    void TakesClicks_data();
    void TakesClicks();
    void TakesADoubleClickElsewhere();
    void TakesDrags();
    void GivesCornersBack();
    void TwoCornersPaintNothing();
    void SurvivesMovesOfTheMap();
    void LetsOthersWork();
    void GoesWithItsLayer();
    void LassoClosesAtTheRelease();
    void LayerThatIsLockedMeanwhileStays();
    void LassoOnALayerThatIsLockedMeanwhileIsDropped();
};

void tst_PolygonTool::TakesClicks_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<bool>("isByKey");
    QTest::newRow("left, enter") << Qt::LeftButton << true;
    QTest::newRow("left, double click") << Qt::LeftButton << false;
    QTest::newRow("right, enter") << Qt::RightButton << true;
    QTest::newRow("right, double click") << Qt::RightButton << false;
}

void tst_PolygonTool::TakesClicks()
{
    QFETCH(Qt::MouseButton, button);
    QFETCH(bool, isByKey);
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Polygon);
    const QByteArray before = canvas.Pixels();
    const raster::Region region = Triangle({30, 10}, {150, 80}, {50, 140});
    const QByteArray wanted = With(canvas, region, button == Qt::LeftButton ? 255 : 0);
    for (const QPointF corner : {QPointF(30, 10), QPointF(150, 80), QPointF(50, 140)}) {
        canvas.Move(corner, Qt::NoButton);
        canvas.Click(corner, button);
    }
    QCOMPARE(canvas.Pixels(), before);
    QVERIFY(!canvas.TakeModified());
    if (isByKey) {
        canvas.Move({180, 150}, Qt::NoButton);
        canvas.Key(Qt::Key_Return);
    } else {
        canvas.DoubleClick({50, 140}, button);
        canvas.Release({50, 140}, button);
    }
    QCOMPARE(canvas.Pixels(), wanted);
    QCOMPARE(canvas.StepCount(), 1);
    QVERIFY(!canvas.view.Shape().IsShown());
    canvas.document.Undo();
    QCOMPARE(canvas.Pixels(), before);
}

/// Without the first press of a double click, its place is still a corner.
void tst_PolygonTool::TakesADoubleClickElsewhere()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Polygon);
    const QByteArray wanted = With(canvas, Triangle({30, 10}, {150, 80}, {50, 140}), 255);
    canvas.Click({30, 10});
    canvas.Click({150, 80});
    canvas.DoubleClick({50, 140});
    canvas.Release({50, 140});
    QCOMPARE(canvas.Pixels(), wanted);
}

void tst_PolygonTool::TakesDrags()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Polygon);
    const QByteArray wanted = With(canvas, Triangle({30, 10}, {150, 80}, {50, 140}), 255);
    canvas.Drag({30, 10}, {150, 80});
    // A hand that trembles during a click does not drag.
    canvas.Drag({50, 140}, {51, 141});
    canvas.Key(Qt::Key_Enter);
    QCOMPARE(canvas.Pixels(), wanted);
}

void tst_PolygonTool::GivesCornersBack()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Polygon);
    const QByteArray before = canvas.Pixels();
    canvas.Click({30, 10});
    canvas.Click({150, 80});
    canvas.Click({190, 150});
    canvas.Key(Qt::Key_Backspace);
    canvas.Click({50, 140});
    const QByteArray wanted = With(canvas, Triangle({30, 10}, {150, 80}, {50, 140}), 255);
    canvas.Key(Qt::Key_Return);
    QCOMPARE(canvas.Pixels(), wanted);
    canvas.document.Undo();
    // Without a corner there is no polygon.
    canvas.Click({30, 10});
    canvas.Click({150, 80});
    canvas.Key(Qt::Key_Backspace);
    QVERIFY(canvas.view.Shape().IsShown());
    canvas.Key(Qt::Key_Backspace);
    QVERIFY(!canvas.view.Shape().IsShown());
    canvas.Key(Qt::Key_Backspace);
    canvas.Key(Qt::Key_Return);
    QCOMPARE(canvas.Pixels(), before);
}

void tst_PolygonTool::TwoCornersPaintNothing()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Polygon);
    const QByteArray before = canvas.Pixels();
    canvas.Click({30, 10});
    canvas.Click({150, 80});
    canvas.Key(Qt::Key_Return);
    QVERIFY(!canvas.view.Shape().IsShown());
    QCOMPARE(canvas.Pixels(), before);
    QCOMPARE(canvas.StepCount(), 0);
    QVERIFY(!canvas.TakeModified());
}

void tst_PolygonTool::SurvivesMovesOfTheMap()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Polygon);
    const QByteArray wanted = With(canvas, Triangle({30, 10}, {150, 80}, {50, 140}), 255);
    canvas.Click({30, 10});
    QTest::keyPress(&canvas.view, Qt::Key_Space);
    canvas.Drag({100, 100}, {80, 60});
    QTest::keyRelease(&canvas.view, Qt::Key_Space);
    QVERIFY(canvas.view.Shape().IsShown());
    canvas.Click({150, 80});
    Zoom(canvas.view, 4);
    canvas.view.centerOn(100, 80);
    canvas.Mouse(QEvent::MouseButtonPress, {50, 50}, Qt::MiddleButton, Qt::MiddleButton);
    canvas.Mouse(QEvent::MouseMove, {40, 45}, Qt::NoButton, Qt::MiddleButton);
    canvas.Mouse(QEvent::MouseButtonRelease, {40, 45}, Qt::MiddleButton, Qt::NoButton);
    canvas.Click({50, 140});
    canvas.Scene().LoseMouse();
    QVERIFY(canvas.view.Shape().IsShown());
    canvas.Key(Qt::Key_Return);
    QCOMPARE(canvas.Pixels(), wanted);
}

/// Between the clicks the hand is free: others may save, undo and edit.
void tst_PolygonTool::LetsOthersWork()
{
    Painting canvas;
    canvas.PaintStroke({100, 100}, {120, 120});
    canvas.Tools().Choose(PaintToolKind::Polygon);
    canvas.Press({30, 10});
    QVERIFY(canvas.document.IsHandBusy());
    canvas.Release({30, 10});
    QVERIFY(!canvas.document.IsBusy() && canvas.document.CanUndo());
    canvas.Press({150, 80});
    canvas.Scene().LoseMouse();
    QVERIFY(!canvas.document.IsBusy());
    canvas.Release({150, 80});
    canvas.Click({50, 140});
    canvas.document.Undo();
    const QByteArray wanted = With(canvas, Triangle({30, 10}, {150, 80}, {50, 140}), 255);
    canvas.Key(Qt::Key_Return);
    QCOMPARE(canvas.Pixels(), wanted);
}

void tst_PolygonTool::GoesWithItsLayer()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Polygon);
    const QByteArray before = canvas.Pixels();
    canvas.Click({30, 10});
    canvas.Click({150, 80});
    canvas.Click({50, 140});
    canvas.document.Do(Edits::RemoveLayer(*canvas.layer));
    QVERIFY(!canvas.view.Shape().IsShown());
    canvas.document.Undo();
    canvas.Edit(canvas.layer);
    canvas.Key(Qt::Key_Return);
    QCOMPARE(canvas.Pixels(), before);
}

void tst_PolygonTool::LassoClosesAtTheRelease()
{
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
        Painting canvas;
        canvas.Tools().Choose(PaintToolKind::Lasso);
        const QByteArray before = canvas.Pixels();
        const raster::Region region =
            raster::PolygonRegion({{30, 10}, {150, 80}, {100, 90}, {50, 140}}, Size);
        const QByteArray wanted = With(canvas, region, button == Qt::LeftButton ? 255 : 0);
        canvas.Press({30, 10}, button);
        canvas.Move({150, 80}, button);
        canvas.Move({100, 90}, button);
        canvas.Move({199, 159}, button);
        canvas.Key(Qt::Key_Backspace);
        QCOMPARE(canvas.Pixels(), before);
        canvas.Release({50, 140}, button);
        QCOMPARE(canvas.Pixels(), wanted);
        QCOMPARE(canvas.StepCount(), 1);
        canvas.document.Undo();
        QCOMPARE(canvas.Pixels(), before);
    }
}

void tst_PolygonTool::LayerThatIsLockedMeanwhileStays()
{
    Painting canvas;
    LogSpy log;
    canvas.Tools().Choose(PaintToolKind::Polygon);
    const QByteArray before = canvas.Pixels();
    canvas.Click({30, 10});
    canvas.Click({150, 80});
    canvas.Click({50, 140});
    canvas.document.SetLocked(*canvas.layer, true);
    const QString reason = canvas.document.WhyPixelsStay(*canvas.layer);
    canvas.Key(Qt::Key_Return);
    QCOMPARE(canvas.Pixels(), before);
    QCOMPARE(log.Take(), QStringList("Info: " + reason));
    // A click is refused too. Both keep the corners.
    canvas.Click({190, 150});
    QCOMPARE(log.Take(), QStringList("Info: " + reason));
    QVERIFY(canvas.view.Shape().IsShown());
    canvas.document.SetLocked(*canvas.layer, false);
    const QByteArray wanted = With(canvas, Triangle({30, 10}, {150, 80}, {50, 140}), 255);
    canvas.Key(Qt::Key_Return);
    QCOMPARE(canvas.Pixels(), wanted);
    QVERIFY(!canvas.view.Shape().IsShown());
}

void tst_PolygonTool::LassoOnALayerThatIsLockedMeanwhileIsDropped()
{
    Painting canvas;
    LogSpy log;
    canvas.Tools().Choose(PaintToolKind::Lasso);
    const QByteArray before = canvas.Pixels();
    canvas.Press({30, 10});
    canvas.Move({150, 80});
    canvas.document.SetLocked(*canvas.layer, true);
    canvas.Release({50, 140});
    QCOMPARE(canvas.Pixels(), before);
    QCOMPARE(log.Take().size(), 1);
    QVERIFY(!canvas.view.Shape().IsShown());
}

QTEST_MAIN(tst_PolygonTool)
#include "tst_PolygonTool.moc"
