#include "canvas/ViewMoves.h"

#include "canvas/PlaceMark.h"
#include "canvas/WidgetRuler.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/MovedCanvas.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <functional>

Q_DECLARE_METATYPE(std::function<void(MovedCanvas&)>)

/// After each way of moving, the right place is where it should be, and everything that tells of
/// places agrees with it.
class tst_ViewMoves : public QObject
{
    Q_OBJECT

private slots:
    void KeepsAPlaceWhileZooming_data();
    void KeepsAPlaceWhileZooming();
    void WheelKeepsThePlaceOnRequest();
    void WheelGoesOnBelowItsSteps();
    void ShowsAPlaceAgain();
    void FitsAnArea();
    void TellsTheRulersAfterCtrl0();
    void FollowsTheMouseWhereverTheMapMoves_data();
    void FollowsTheMouseWhereverTheMapMoves();
    void TellsNothingOfAMouseThatIsElsewhere();
    void StrokesGoOnThroughEveryMove();
    void MarksAPlaceForAWhile();
};

void tst_ViewMoves::KeepsAPlaceWhileZooming_data()
{
    QTest::addColumn<bool>("isMouseOver");
    QTest::newRow("of the mouse") << true;
    QTest::newRow("in the middle") << false;
}

void tst_ViewMoves::KeepsAPlaceWhileZooming()
{
    QFETCH(bool, isMouseOver);
    MovedCanvas canvas;
    canvas.view.Moves().Show({{500, 500}, 2});
    if (!isMouseOver) {
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(canvas.view.viewport(), &leave);
    }
    const QPoint pixel = isMouseOver ? MovedCanvas::MousePixel : canvas.Middle();
    const QPointF place = canvas.view.PlaceAt(pixel);
    for (const bool isIn : {true, true, true, false, false, true, false}) {
        const float before = canvas.view.Zoom();
        canvas.view.Moves().Zoom(isIn);
        QCOMPARE(canvas.view.Zoom(), before + (isIn ? 0.25F : -0.25F));
        canvas.VerifyPlace(pixel, place);
        if (isMouseOver) {
            canvas.VerifyAgreement();
        }
    }
}

void tst_ViewMoves::WheelKeepsThePlaceOnRequest()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    view.Moves().Show({{500, 500}, 2});
    view.Moves().SetKeepsPlace(true);
    const QPointF place = view.PlaceAt(MovedCanvas::MousePixel);
    for (const int delta : {120, 120, -120, 120}) {
        Wheel(view, MovedCanvas::MousePixel, delta, Qt::ControlModifier);
        canvas.VerifyPlace(MovedCanvas::MousePixel, place);
        canvas.VerifyAgreement();
    }
    QCOMPARE(view.Zoom(), 2.5F);
    view.Moves().SetKeepsPlace(false);
    Wheel(view, MovedCanvas::MousePixel, 120, Qt::ControlModifier);
    QVERIFY(QLineF(view.PlaceAt(canvas.Middle()), place).length() <= 2);
    canvas.VerifyAgreement();
}

void tst_ViewMoves::WheelGoesOnBelowItsSteps()
{
    for (const int delta : {120, -120}) {
        CanvasFixture canvas({4096, 4096});
        canvas.view.Moves().Show({{2000, 2000}, 0.0625F});
        QCOMPARE(canvas.view.Zoom(), 0.0625F);
        Wheel(canvas.view, {50, 50}, delta, Qt::ControlModifier);
        QCOMPARE(canvas.view.Zoom(), delta > 0 ? 0.5F : 0.25F);
        QCOMPARE(Ruler(canvas.view, true)->Zoom(), canvas.view.Zoom());
    }
}

void tst_ViewMoves::ShowsAPlaceAgain()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    for (const float zoom : {1.0F, 3.25F, 12.5F, 0.75F}) {
        view.Moves().Show({{400.5, 620.25}, zoom});
        const ViewPlace place = view.Moves().Place();
        const QTransform shown = view.viewportTransform();
        QVERIFY(QLineF(place.center, {400.5, 620.25}).length() <= 1 / static_cast<double>(zoom));
        view.Moves().Show({{10, 10}, 5});
        view.Moves().Show(place);
        QCOMPARE(view.viewportTransform(), shown);
        canvas.VerifyAgreement();
    }
}

void tst_ViewMoves::FitsAnArea()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    const QSize room = view.maximumViewportSize();
    const QRectF areas[] = {view.sceneRect(),
                            {300, 400, 50, 40},
                            {0, 0, 120, 30},
                            {900, 990, 100, 10},
                            {{500, 500}, QSizeF(room) / 2}};
    for (const QRectF& area : areas) {
        view.Moves().Show(view.Moves().PlaceToFit(area));
        const QRectF shown = view.mapFromScene(area).boundingRect();
        QVERIFY(QRectF(view.viewport()->rect()).adjusted(-1, -1, 1, 1).contains(shown));
        const auto next = static_cast<double>(view.Zoom()) * (view.Zoom() < 0.25F ? 2 : 1) +
                          (view.Zoom() < 0.25F ? 0 : 0.25);
        QVERIFY(view.Zoom() >= 12.5F || area.width() * next > room.width() ||
                area.height() * next > room.height());
        canvas.VerifyAgreement();
    }
    QVERIFY(view.Zoom() >= 2.0F);
}

/// Ctrl+0 leaves the rulers as they are; every move after it corrects them.
void tst_ViewMoves::TellsTheRulersAfterCtrl0()
{
    MovedCanvas canvas;
    canvas.view.Moves().Show({{500, 500}, 3});
    QTest::keyClick(&canvas.view, Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(Ruler(canvas.view, true)->Zoom(), 3.0F);
    canvas.view.Moves().Show(canvas.view.Moves().Place());
    canvas.VerifyAgreement();
}

void tst_ViewMoves::FollowsTheMouseWhereverTheMapMoves_data()
{
    using Move = std::function<void(MovedCanvas&)>;
    QTest::addColumn<Move>("move");
    QTest::newRow("scroll bars") << Move([](MovedCanvas& canvas) {
        canvas.view.horizontalScrollBar()->setValue(33);
        canvas.view.verticalScrollBar()->setValue(44);
    });
    QTest::newRow("wheel") << Move([](MovedCanvas& canvas) {
        Wheel(canvas.view, MovedCanvas::MousePixel, -120, Qt::NoModifier);
    });
    QTest::newRow("Ctrl and wheel") << Move([](MovedCanvas& canvas) {
        Wheel(canvas.view, MovedCanvas::MousePixel, 120, Qt::ControlModifier);
    });
    QTest::newRow("Ctrl+0") << Move([](MovedCanvas& canvas) {
        canvas.view.Moves().Show({{300, 700}, 4});
        QTest::keyClick(&canvas.view, Qt::Key_0, Qt::ControlModifier);
    });
    QTest::newRow("Ctrl+0 on a map that fits") << Move([](MovedCanvas& canvas) {
        canvas.view.SetSceneSize(200, 200);
        canvas.view.Moves().Show({{100, 100}, 0.5F});
        QTest::keyClick(&canvas.view, Qt::Key_0, Qt::ControlModifier);
    });
    QTest::newRow("another size of the view") << Move([](MovedCanvas& canvas) {
        canvas.view.SetSceneSize(200, 200);
        canvas.view.resize(700, 600);
        QCoreApplication::processEvents();
    });
    QTest::newRow("zoom action") << Move(
        [](MovedCanvas& canvas) { canvas.view.Moves().Zoom(true); });
    QTest::newRow("place") << Move([](MovedCanvas& canvas) {
        canvas.view.Moves().Show({{200, 800}, 2.5F});
    });
}

/// The label tells the place under the mouse without a move of the mouse.
void tst_ViewMoves::FollowsTheMouseWhereverTheMapMoves()
{
    QFETCH(std::function<void(MovedCanvas&)>, move);
    MovedCanvas canvas;
    canvas.moved.clear();
    move(canvas);
    canvas.VerifyLabel(canvas.view.mapToScene(MovedCanvas::MousePixel));
    const QList<QVariant> told = canvas.moved.last();
    canvas.MoveTo(MovedCanvas::MousePixel);
    QCOMPARE(canvas.moved.last(), told);
    const QPoint onScreen = canvas.view.viewport()->mapToGlobal(MovedCanvas::MousePixel);
    const WidgetRuler* ruler = Ruler(canvas.view, true);
    QCOMPARE(ruler->CursorPos(), ruler->mapFromGlobal(onScreen));
}

void tst_ViewMoves::TellsNothingOfAMouseThatIsElsewhere()
{
    MovedCanvas canvas;
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(canvas.view.viewport(), &leave);
    canvas.moved.clear();
    canvas.view.Moves().Zoom(true);
    canvas.view.verticalScrollBar()->setValue(3);
    QVERIFY(canvas.moved.isEmpty());
}

/// A stroke under way neither ends nor paints where the map moves, and goes on from the mouse.
void tst_ViewMoves::StrokesGoOnThroughEveryMove()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    canvas.dock.SetSize(4);
    view.Moves().Show({{500, 500}, 2});
    canvas.Mouse(QEvent::MouseButtonPress, MovedCanvas::MousePixel, Qt::LeftButton, Qt::LeftButton);
    const int area = Area(*layer);
    QVERIFY(area > 0);
    view.Moves().Zoom(true);
    view.Moves().Show({{300, 600}, 1});
    canvas.Pinch(MovedCanvas::MousePixel, 0.5);
    view.Moves().Show({{600, 300}, 1});
    canvas.TurnBoth({5, 9}, {10, 18}, Qt::ScrollUpdate);
    QCOMPARE(Area(*layer), area);
    QVERIFY(canvas.Scene().Tool()->IsBusy());
    canvas.MoveTo(MovedCanvas::MousePixel + QPoint(10, 0), Qt::LeftButton);
    const QPointF end = view.mapToScene(MovedCanvas::MousePixel + QPoint(10, 0));
    QVERIFY(IsSet(*layer, int(end.x()) - 1, int(end.y())));
    // A short piece, not a line from where the stroke began.
    QVERIFY(Area(*layer) <= area + 4 * 16);
    canvas.Mouse(QEvent::MouseButtonRelease, MovedCanvas::MousePixel, Qt::LeftButton, Qt::NoButton);
    QCOMPARE(canvas.document.History().count(), 1);
}

void tst_ViewMoves::MarksAPlaceForAWhile()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    const QImage before = view.viewport()->grab().toImage();
    view.Mark().Show({500, 500});
    const QImage marked = view.viewport()->grab().toImage();
    const QPoint middle = canvas.At({500, 500});
    const QRect around(middle - QPoint(30, 30), QSize(61, 61));
    QVERIFY(marked.copy(around) != before.copy(around));
    QCOMPARE(marked.copy(0, 0, middle.x() - 30, before.height()),
             before.copy(0, 0, middle.x() - 30, before.height()));
    // Of one size at every zoom, and where the place is.
    const QImage ring = marked.copy(around);
    view.Moves().Show({{450, 520}, 3});
    const QRect later(canvas.At({500, 500}) - QPoint(30, 30), QSize(61, 61));
    QCOMPARE(view.viewport()->grab().toImage().copy(later), ring);
    // Clicks go through it.
    QVERIFY(!canvas.Scene().itemAt({500, 500}, QTransform()) ||
            canvas.Scene().itemAt({500, 500}, QTransform())->zValue() < 1);
    view.Moves().Show({{500, 500}, 1});
    QTRY_VERIFY(!view.Mark().IsShown());
    QCOMPARE(view.viewport()->grab().toImage(), before);
}

QTEST_MAIN(tst_ViewMoves)
#include "tst_ViewMoves.moc"
