#include "canvas/tools/PaintTools.h"

#include "canvas/ShapeMark.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/Painting.h"

#include <QGraphicsEllipseItem>
#include <QSignalSpy>
#include <QTest>

Q_DECLARE_METATYPE(PaintToolKind)

namespace {

constexpr PaintToolKind Kinds[] = {
    PaintToolKind::Brush,   PaintToolKind::Line,  PaintToolKind::Rectangle, PaintToolKind::Ellipse,
    PaintToolKind::Polygon, PaintToolKind::Lasso, PaintToolKind::Fill,      PaintToolKind::Pick};

} // namespace

class tst_PaintTools : public QObject
{
    Q_OBJECT

private slots:
    void LettersChooseTools();
    void LettersOfOtherModesChooseNothing();
    void LockedLayerIsRefused_data();
    void LockedLayerIsRefused();
    void ForbiddenCursorGoesWithTheMouse();
    void ShowsWhatTheMouseIs();
    void BracketsChangeTheWidthOfLines();
    void StrokeEndsWhereAnotherToolIsChosen();
    void WithoutALayerNothingHappens();
};

void tst_PaintTools::LettersChooseTools()
{
    Painting canvas;
    QVector<PaintToolKind> chosen;
    canvas.Tools().SetChosen([&chosen](PaintToolKind kind) { chosen.append(kind); });
    QVERIFY(canvas.Tools().Kind() == PaintToolKind::Brush);
    const QVector<QPair<Qt::Key, PaintToolKind>> keys{
        {Qt::Key_L, PaintToolKind::Line},    {Qt::Key_R, PaintToolKind::Rectangle},
        {Qt::Key_E, PaintToolKind::Ellipse}, {Qt::Key_P, PaintToolKind::Polygon},
        {Qt::Key_Q, PaintToolKind::Lasso},   {Qt::Key_F, PaintToolKind::Fill},
        {Qt::Key_K, PaintToolKind::Pick},    {Qt::Key_B, PaintToolKind::Brush},
    };
    for (const auto& [key, kind] : keys) {
        for (const Qt::KeyboardModifier modifier :
             {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
            canvas.Key(key, modifier);
        }
        QVERIFY(chosen.isEmpty());
        canvas.Key(key);
        QCOMPARE(chosen.size(), 1);
        QVERIFY(chosen.takeFirst() == kind && canvas.Tools().Kind() == kind);
    }
}

void tst_PaintTools::LettersOfOtherModesChooseNothing()
{
    Painting canvas;
    for (const SceneMode mode : Modes) {
        if (mode != SceneMode::Paint) {
            canvas.Scene().ChangeMode(mode);
            canvas.Key(Qt::Key_L);
            canvas.Key(Qt::Key_Q);
            QVERIFY(canvas.Tools().Kind() == PaintToolKind::Brush);
        }
    }
    QSignalSpy query(&canvas.view, &MainView::ModeQuery);
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.Key(Qt::Key_Q, Qt::ShiftModifier);
    QCOMPARE(query.count(), 1);
}

void tst_PaintTools::LockedLayerIsRefused_data()
{
    QTest::addColumn<PaintToolKind>("kind");
    for (const PaintToolKind kind : Kinds) {
        if (kind != PaintToolKind::Pick) {
            QTest::addRow("%d", int(kind)) << kind;
        }
    }
}

void tst_PaintTools::LockedLayerIsRefused()
{
    QFETCH(PaintToolKind, kind);
    Painting canvas;
    LogSpy log;
    canvas.Tools().Choose(kind);
    canvas.document.SetLocked(*canvas.layer, true);
    const QString reason = canvas.document.WhyPixelsStay(*canvas.layer);
    QVERIFY(!reason.isEmpty());
    const QByteArray before = canvas.Pixels();
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
        canvas.Press({30, 30}, button);
        QCOMPARE(canvas.view.viewport()->cursor().shape(), Qt::ForbiddenCursor);
        canvas.Move({90, 60}, button);
        QCOMPARE(canvas.view.viewport()->cursor().shape(), Qt::ForbiddenCursor);
        QVERIFY(!canvas.view.Shape().IsShown());
        canvas.Release({90, 60}, button);
        canvas.Move({91, 60}, Qt::NoButton);
        QCOMPARE(log.Take(), QStringList("Info: " + reason));
    }
    canvas.DoubleClick({30, 30});
    canvas.Release({30, 30});
    QCOMPARE(log.Take().size(), 1);
    canvas.Key(Qt::Key_Return);
    QCOMPARE(canvas.Pixels(), before);
    QCOMPARE(canvas.StepCount(), 0);
    QVERIFY(!canvas.TakeModified());
    canvas.document.SetLocked(*canvas.layer, false);
    canvas.Press({110, 30});
    canvas.Move({190, 60});
    canvas.Move({190, 140});
    canvas.Release({190, 150});
    if (kind == PaintToolKind::Polygon) {
        canvas.Click({120, 150});
        canvas.Key(Qt::Key_Return);
    }
    QVERIFY(canvas.Pixels() != before);
    QCOMPARE(log.Take().size(), kind == PaintToolKind::Fill ? 1 : 0);
}

void tst_PaintTools::ForbiddenCursorGoesWithTheMouse()
{
    Painting canvas;
    const auto shape = [&canvas] { return canvas.view.viewport()->cursor().shape(); };
    canvas.document.SetLocked(*canvas.layer, true);
    canvas.Click({30, 30});
    QCOMPARE(shape(), Qt::ForbiddenCursor);
    canvas.Move({31, 30}, Qt::NoButton);
    QCOMPARE(shape(), Qt::ArrowCursor);
    canvas.Tools().Choose(PaintToolKind::Rectangle);
    canvas.Click({30, 30});
    QCOMPARE(shape(), Qt::ForbiddenCursor);
    canvas.Move({31, 30}, Qt::NoButton);
    QCOMPARE(shape(), Qt::CrossCursor);
    canvas.Click({30, 30});
    canvas.Scene().ChangeMode(SceneMode::Select);
    QCOMPARE(shape(), Qt::ArrowCursor);
    canvas.Scene().ChangeMode(SceneMode::Paint);
    QCOMPARE(shape(), Qt::CrossCursor);
    // It also goes with the lock.
    canvas.Click({30, 30});
    QCOMPARE(shape(), Qt::ForbiddenCursor);
    canvas.document.SetLocked(*canvas.layer, false);
    QCOMPARE(shape(), Qt::CrossCursor);
}

void tst_PaintTools::ShowsWhatTheMouseIs()
{
    Painting canvas;
    const auto shape = [&canvas] { return canvas.view.viewport()->cursor().shape(); };
    for (const PaintToolKind kind : Kinds) {
        canvas.Tools().Choose(kind);
        const bool isBrush = kind == PaintToolKind::Brush;
        QCOMPARE(BrushCursor(canvas)->isVisible(), isBrush || kind == PaintToolKind::Line);
        QCOMPARE(shape(), isBrush                       ? Qt::ArrowCursor
                          : kind == PaintToolKind::Pick ? Qt::PointingHandCursor
                                                        : Qt::CrossCursor);
    }
    canvas.Tools().Choose(PaintToolKind::Line);
    canvas.Move({70, 80}, Qt::NoButton);
    QCOMPARE(BrushCursor(canvas)->pos(), QPointF(70, 80));
    QTest::keyPress(&canvas.view, Qt::Key_Space);
    QCOMPARE(shape(), Qt::OpenHandCursor);
    QVERIFY(!BrushCursor(canvas)->isVisible());
    QTest::keyRelease(&canvas.view, Qt::Key_Space);
    QCOMPARE(shape(), Qt::CrossCursor);
    QVERIFY(BrushCursor(canvas)->isVisible());
    canvas.Scene().ChangeMode(SceneMode::None);
    QCOMPARE(shape(), Qt::ArrowCursor);
    QVERIFY(!BrushCursor(canvas)->isVisible());
}

void tst_PaintTools::BracketsChangeTheWidthOfLines()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Line);
    canvas.Key(Qt::Key_BracketRight);
    QCOMPARE(canvas.dock.GetBrush()->Size(), 15);
    canvas.PaintStroke({100, 100}, {150, 100});
    QVERIFY(IsSet(*canvas.layer, 120, 106) && !IsSet(*canvas.layer, 120, 108));
}

void tst_PaintTools::StrokeEndsWhereAnotherToolIsChosen()
{
    Painting canvas;
    canvas.Press({100, 50});
    canvas.Move({100, 100});
    const QByteArray painted = canvas.Pixels();
    canvas.Key(Qt::Key_R);
    QCOMPARE(canvas.StepCount(), 1);
    canvas.Move({150, 100});
    canvas.Release({150, 100});
    QCOMPARE(canvas.Pixels(), painted);
    QCOMPARE(canvas.StepCount(), 1);
}

void tst_PaintTools::WithoutALayerNothingHappens()
{
    Painting canvas;
    const QByteArray before = canvas.Pixels();
    canvas.document.SetCurrentLayer(nullptr);
    canvas.Scene().ChangeLayer(nullptr);
    for (const PaintToolKind kind : Kinds) {
        canvas.Tools().Choose(kind);
        canvas.Drag({30, 30}, {90, 60});
        canvas.Click({100, 100}, Qt::RightButton);
        canvas.Key(Qt::Key_Return);
        QVERIFY(!canvas.view.Shape().IsShown());
    }
    QCOMPARE(canvas.StepCount(), 0);
    QCOMPARE(canvas.Pixels(), before);
}

QTEST_MAIN(tst_PaintTools)
#include "tst_PaintTools.moc"
