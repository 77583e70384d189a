#include "canvas/ShapeMark.h"
#include "canvas/tools/PaintTools.h"
#include "layers/raster/Shapes.h"
#include "tests/support/Masks.h"
#include "tests/support/PaintedRegion.h"
#include "tests/support/Painting.h"

#include <QTest>

#include <functional>

Q_DECLARE_METATYPE(Qt::MouseButton)
Q_DECLARE_METATYPE(PaintToolKind)

namespace {

constexpr QSize Size = Painting::LayerSize;
constexpr QPointF From(40, 50);
constexpr QPointF To(100, 66);

/// What the layer's pixels become when those of the region get the value.
QByteArray With(const Painting& canvas, const raster::Region& region, uchar value)
{
    QImage mask = canvas.layer->Image().copy();
    raster::Fill(mask, region, value);
    return Indices(mask);
}

} // namespace

class tst_ShapeTools : public QObject
{
    Q_OBJECT

private slots:
    void PaintsFromCornerToCorner_data();
    void PaintsFromCornerToCorner();
    void CtrlSnapsALine_data();
    void CtrlSnapsALine();
    void LineGoesOnFromTheLastEnd();
    void LastEndGoesWithItsProject();
    void KeysChangeTheOutlineAtOnce();
    void CornersAreNoWholePixels();
    void ShowsOutlineAndSize_data();
    void ShowsOutlineAndSize();
    void RepaintsOnlyTheLastCorners();
    void DropsWhatIsNotFinished_data();
    void DropsWhatIsNotFinished();
    void OtherButtonsDoNothing_data();
    void OtherButtonsDoNothing();

private:
    /// The tools that draw between press and release.
    static void AddTools();
};

void tst_ShapeTools::AddTools()
{
    QTest::addColumn<PaintToolKind>("kind");
    QTest::newRow("line") << PaintToolKind::Line;
    QTest::newRow("rectangle") << PaintToolKind::Rectangle;
    QTest::newRow("ellipse") << PaintToolKind::Ellipse;
    QTest::newRow("polygon") << PaintToolKind::Polygon;
    QTest::newRow("lasso") << PaintToolKind::Lasso;
}

void tst_ShapeTools::PaintsFromCornerToCorner_data()
{
    QTest::addColumn<PaintToolKind>("kind");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<QString>("name");
    const QRectF plain(40, 50, 60, 16);
    const QRectF centred(-20, 34, 120, 32);
    const QRectF square(40, 50, 60, 60);
    const QRectF centredSquare(-20, -10, 120, 120);
    for (const auto& [kind, name] :
         {std::pair(PaintToolKind::Rectangle, "rectangle"),
          std::pair(PaintToolKind::Ellipse, "ellipse"), std::pair(PaintToolKind::Line, "line")}) {
        const auto add = [kind = kind, name = name](const char* how, int modifiers,
                                                    const QRectF& rect) {
            QTest::addRow("%s %s", name, how) << kind << modifiers << rect << QString(name);
        };
        add("plain", Qt::NoModifier, plain);
        if (kind != PaintToolKind::Line) {
            add("ctrl", Qt::ControlModifier, centred);
            add("shift", Qt::ShiftModifier, square);
            add("both", Qt::ControlModifier | Qt::ShiftModifier, centredSquare);
        }
    }
}

void tst_ShapeTools::PaintsFromCornerToCorner()
{
    QFETCH(PaintToolKind, kind);
    QFETCH(int, modifiers);
    QFETCH(QRectF, rect);
    QFETCH(QString, name);
    raster::Region region = raster::RectangleRegion(rect, Size);
    if (kind == PaintToolKind::Ellipse) {
        region = raster::EllipseRegion(rect, Size);
    } else if (kind == PaintToolKind::Line) {
        region = raster::LineRegion(From, To, 10, Size);
    }
    QVERIFY(!region.empty());
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
        Painting canvas;
        canvas.Tools().Choose(kind);
        const bool isLeft = button == Qt::LeftButton;
        const QByteArray before = canvas.Pixels();
        const QByteArray wanted = With(canvas, region, isLeft ? 255 : 0);
        QVERIFY(wanted != before);
        canvas.PaintStroke(From, To, button, Qt::KeyboardModifiers(modifiers));
        QCOMPARE(canvas.Pixels(), wanted);
        QVERIFY(canvas.ShowsLayer());
        QVERIFY(canvas.TakeModified());
        QCOMPARE(canvas.StepCount(), 1);
        QCOMPARE(canvas.document.History().undoText(),
                 QString("%1 %2 on Forest").arg(isLeft ? "Paint" : "Erase", name));
        canvas.document.Undo();
        QCOMPARE(canvas.Pixels(), before);
        canvas.document.Redo();
        QCOMPARE(canvas.Pixels(), wanted);
        QVERIFY(canvas.ShowsLayer());
    }
}

void tst_ShapeTools::CtrlSnapsALine_data()
{
    QTest::addColumn<QPointF>("mouse");
    QTest::addColumn<QPointF>("end");
    // 50 scene units away each; sine and cosine of 15, 30 and 60 degrees.
    QTest::newRow("to the right") << QPointF(130, 83) << QPointF(100 + 30.1496, 80);
    QTest::newRow("straight up") << QPointF(103, 30) << QPointF(100, 80 - 50.0899);
    QTest::newRow("15 degrees") << QPointF(148, 94) << QPointF(100 + 48.2963, 80 + 12.9410);
    QTest::newRow("60 degrees") << QPointF(70, 120) << QPointF(100 - 25, 80 + 43.3013);
    QTest::newRow("kept") << QPointF(140, 120) << QPointF(140, 120);
}

void tst_ShapeTools::CtrlSnapsALine()
{
    QFETCH(QPointF, mouse);
    QFETCH(QPointF, end);
    constexpr QPointF start(100, 80);
    Painting canvas;
    canvas.dock.SetSize(3);
    canvas.Tools().Choose(PaintToolKind::Line);
    const QByteArray wanted = With(canvas, raster::LineRegion(start, end, 3, Size), 255);
    canvas.PaintStroke(start, mouse, Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(canvas.Pixels(), wanted);
}

void tst_ShapeTools::LineGoesOnFromTheLastEnd()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Line);
    // Without a line before, Shift has nothing to go on from.
    canvas.PaintStroke({20, 100}, {60, 100}, Qt::LeftButton, Qt::ShiftModifier);
    QByteArray wanted = With(canvas, raster::LineRegion({60, 100}, {120, 140}, 10, Size), 255);
    canvas.Press({120, 140}, Qt::LeftButton, Qt::ShiftModifier);
    canvas.Release({120, 140}, Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(canvas.Pixels(), wanted);
    // A drag goes on to where it ends.
    wanted = With(canvas, raster::LineRegion({120, 140}, {180, 20}, 10, Size), 255);
    canvas.PaintStroke({150, 80}, {180, 20}, Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(canvas.Pixels(), wanted);
    // Another tool does not change where it ended.
    canvas.Tools().Choose(PaintToolKind::Rectangle);
    canvas.PaintStroke({0, 0}, {5, 5});
    canvas.Tools().Choose(PaintToolKind::Line);
    wanted = With(canvas, raster::LineRegion({180, 20}, {180, 150}, 10, Size), 255);
    canvas.Press({180, 150}, Qt::LeftButton, Qt::ShiftModifier);
    canvas.Release({180, 150}, Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(canvas.Pixels(), wanted);
    QCOMPARE(canvas.StepCount(), 5);
}

void tst_ShapeTools::LastEndGoesWithItsProject()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Line);
    canvas.PaintStroke({20, 20}, {180, 140});
    canvas.document.Clear();
    canvas.layer = canvas.AddLayer(Qt::red);
    canvas.Edit(canvas.layer);
    const QByteArray wanted = With(canvas, raster::LineRegion({60, 100}, {60, 100}, 10, Size), 255);
    canvas.Press({60, 100}, Qt::LeftButton, Qt::ShiftModifier);
    canvas.Release({60, 100}, Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(canvas.Pixels(), wanted);
}

void tst_ShapeTools::KeysChangeTheOutlineAtOnce()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Rectangle);
    canvas.Press(From);
    canvas.Move(To);
    const auto outline = [&canvas] { return canvas.view.Shape().Outline().boundingRect(); };
    QCOMPARE(outline(), QRectF(40, 50, 60, 16));
    const auto send = [&canvas](QEvent::Type type, Qt::Key key, Qt::KeyboardModifiers before) {
        QKeyEvent event(type, key, before);
        QCoreApplication::sendEvent(&canvas.view, &event);
    };
    send(QEvent::KeyPress, Qt::Key_Shift, {});
    QCOMPARE(outline(), QRectF(40, 50, 60, 60));
    send(QEvent::KeyPress, Qt::Key_Control, Qt::ShiftModifier);
    QCOMPARE(outline(), QRectF(-20, -10, 120, 120));
    send(QEvent::KeyRelease, Qt::Key_Shift, Qt::ShiftModifier | Qt::ControlModifier);
    QCOMPARE(outline(), QRectF(-20, 34, 120, 32));
    send(QEvent::KeyRelease, Qt::Key_Control, Qt::ControlModifier);
    QCOMPARE(outline(), QRectF(40, 50, 60, 16));
}

void tst_ShapeTools::CornersAreNoWholePixels()
{
    Painting canvas;
    Zoom(canvas.view, 4);
    const QPoint from(100, 81);
    const QPoint to(181, 150);
    const QPointF corner = canvas.view.mapToScene(from);
    QVERIFY(corner != corner.toPoint());
    canvas.Tools().Choose(PaintToolKind::Ellipse);
    const QRectF rect(corner, canvas.view.mapToScene(to));
    const QByteArray wanted = With(canvas, raster::EllipseRegion(rect, Size), 255);
    canvas.Mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    QCOMPARE(canvas.Pixels(), wanted);
}

void tst_ShapeTools::ShowsOutlineAndSize_data()
{
    QTest::addColumn<PaintToolKind>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRectF>("outline");
    const QRectF rect(40, 50, 60, 16);
    QTest::newRow("line") << PaintToolKind::Line << "465.7 m" << rect.adjusted(-5, -5, 5, 5);
    QTest::newRow("rectangle") << PaintToolKind::Rectangle << "450 × 120 m" << rect;
    QTest::newRow("ellipse") << PaintToolKind::Ellipse << "450 × 120 m" << rect;
    QTest::newRow("polygon") << PaintToolKind::Polygon << "450 × 120 m" << rect;
    QTest::newRow("lasso") << PaintToolKind::Lasso << "450 × 120 m" << rect;
}

void tst_ShapeTools::ShowsOutlineAndSize()
{
    QFETCH(PaintToolKind, kind);
    QFETCH(QRectF, outline);
    Painting canvas;
    ProjectSettings::Instance().SetSizes(200, 160, 1500, 1200);
    canvas.Tools().Choose(kind);
    canvas.Move(To, Qt::NoButton);
    QCoreApplication::processEvents();
    const QImage before = canvas.view.viewport()->grab().toImage();
    canvas.Press(From);
    canvas.Move(To);
    const ShapeMark& mark = canvas.view.Shape();
    QTEST(mark.Text(), "text");
    const QRectF shown = mark.Outline().boundingRect();
    const QRectF difference(shown.topLeft() - outline.topLeft(),
                            shown.bottomRight() - outline.bottomRight());
    QVERIFY(std::abs(difference.left()) < 0.5 && std::abs(difference.top()) < 0.5);
    QVERIFY(std::abs(difference.right()) < 0.5 && std::abs(difference.bottom()) < 0.5);
    const QImage during = canvas.view.viewport()->grab().toImage();
    QVERIFY(during != before);
    const QPoint corner = canvas.At(To) + QPoint(20, 20);
    QVERIFY(during.pixel(corner) != before.pixel(corner));
    canvas.Key(Qt::Key_Escape);
    QVERIFY(!mark.IsShown());
    QCOMPARE(canvas.view.viewport()->grab().toImage(), before);
}

/// A lasso around half the map costs no more than the step of the hand.
void tst_ShapeTools::RepaintsOnlyTheLastCorners()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Lasso);
    canvas.Press({100, 30});
    canvas.Move({10, 80});
    canvas.Move({100, 150});
    canvas.Move({104, 34});
    QCoreApplication::processEvents();
    PaintedRegion painted(*canvas.view.viewport());
    canvas.Move({106, 32});
    QCoreApplication::processEvents();
    QVERIFY(!painted.region.isEmpty());
    QVERIFY(painted.region.boundingRect().contains(canvas.At({106, 32})));
    QVERIFY(!painted.region.intersects(QRect(canvas.At({10, 60}), canvas.At({60, 150}))));
    canvas.Key(Qt::Key_Escape);
    QCoreApplication::processEvents();
    QVERIFY(painted.region.contains(canvas.At({10, 80})));
}

void tst_ShapeTools::DropsWhatIsNotFinished_data()
{
    AddTools();
}

void tst_ShapeTools::DropsWhatIsNotFinished()
{
    QFETCH(PaintToolKind, kind);
    Painting canvas;
    Layer* other = canvas.AddLayer(Qt::blue, {100, 100, 20, 20});
    const QByteArray before = canvas.Pixels();
    const QByteArray otherBefore = Indices(other->Image());
    const std::function<void()> ends[] = {
        [&] { canvas.Key(Qt::Key_Escape); },
        [&] { canvas.Tools().Choose(PaintToolKind::Brush); },
        [&] { canvas.Scene().ChangeMode(SceneMode::Select); },
        [&] { canvas.Edit(other); },
        [&] { canvas.document.Clear(); },
    };
    for (const auto& end : ends) {
        canvas.Tools().Choose(kind);
        canvas.Press(From);
        canvas.Move(To);
        canvas.Move(To + QPointF(-20, 30));
        const bool isLast = &end == std::end(ends) - 1;
        end();
        QVERIFY(!canvas.view.Shape().IsShown());
        QVERIFY(!canvas.document.IsHandBusy());
        canvas.Move({150, 150});
        canvas.Release({150, 150});
        canvas.Key(Qt::Key_Return);
        QCOMPARE(canvas.StepCount(), 0);
        if (!isLast) {
            QCOMPARE(canvas.Pixels(), before);
            QCOMPARE(Indices(other->Image()), otherBefore);
            canvas.Edit(canvas.layer);
        }
    }
}

void tst_ShapeTools::OtherButtonsDoNothing_data()
{
    AddTools();
}

void tst_ShapeTools::OtherButtonsDoNothing()
{
    QFETCH(PaintToolKind, kind);
    Painting canvas;
    canvas.Tools().Choose(kind);
    const QByteArray before = canvas.Pixels();
    canvas.PaintStroke(From, To, Qt::MiddleButton);
    canvas.PaintStroke(From, To, Qt::BackButton);
    canvas.Key(Qt::Key_Return);
    QCOMPARE(canvas.Pixels(), before);
    canvas.Press(From);
    canvas.Move(To);
    const QString text = canvas.view.Shape().Text();
    canvas.Mouse(QEvent::MouseButtonPress, canvas.At(To), Qt::RightButton,
                 Qt::LeftButton | Qt::RightButton);
    canvas.Mouse(QEvent::MouseButtonRelease, canvas.At(To), Qt::RightButton, Qt::LeftButton);
    QCOMPARE(canvas.Pixels(), before);
    QCOMPARE(canvas.view.Shape().Text(), text);
    canvas.Move(To + QPointF(-20, 30));
    canvas.Release(To + QPointF(-20, 30));
    if (kind == PaintToolKind::Polygon) {
        canvas.Click({50, 140});
        canvas.Key(Qt::Key_Return);
    }
    QCOMPARE(canvas.StepCount(), 1);
    QVERIFY(canvas.Pixels() != before);
}

QTEST_MAIN(tst_ShapeTools)
#include "tst_ShapeTools.moc"
