#include "canvas/MainScene.h"

#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"
#include "tests/support/LiteralCanvas.h"
#include "tests/support/Random.h"

#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <limits>

Q_DECLARE_METATYPE(SceneMode)
Q_DECLARE_METATYPE(Qt::MouseButton)

namespace {

/// Paints with a mouse that knows quarters of a view pixel, zooms, scrolls and resizes at any time,
/// and does the same to a plain picture. Its mouse comes from the window system.
class StrokeRandomUser
{
public:
    StrokeRandomUser()
        : m_layer(m_canvas.AddLayer(Ink, {40, 40, 60, 50}))
        , m_literal(literal::Display(m_layer->Image(), Ink.rgb()))
    {
        m_canvas.Edit(m_layer);
        // As in the window. A right press on a scroll bar would open its menu and wait.
        m_canvas.view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        m_canvas.view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        Zoom(m_canvas.view, 6);
        MoveMouse();
    }

    void Act()
    {
        switch (m_random.Below(12)) {
        case 0:
        case 1:
            Press();
            break;
        case 2:
            Release();
            break;
        case 3:
            Wheel(m_canvas.view, m_mouse.toPoint(), m_random.Below(2) == 0 ? 120 : -120,
                  Qt::ControlModifier);
            break;
        case 4:
            Wheel(m_canvas.view, m_mouse.toPoint(), m_random.Below(2) == 0 ? 120 : -120,
                  Qt::NoModifier);
            break;
        case 5:
            m_canvas.view.horizontalScrollBar()->setValue(m_random.Below(500));
            break;
        case 6:
            m_canvas.view.centerOn(m_random.Below(200), m_random.Below(160));
            break;
        case 7:
            m_canvas.view.resize(m_random.Between(250, 500), m_random.Between(250, 500));
            QCoreApplication::processEvents();
            break;
        default:
            MoveMouse();
            break;
        }
    }

    QImage Painted() const { return m_layer->Image(); }
    QImage Expected() const { return literal::Mask(m_literal, Ink.rgb()); }

    QPointF MouseInScene() const
    {
        const QPoint pixel = m_mouse.toPoint();
        const QPointF fraction = m_mouse - pixel;
        return m_canvas.view.mapToScene(pixel) + m_canvas.view.transform().inverted().map(fraction);
    }

private:
    void Press()
    {
        Release();
        // The view may have become smaller.
        MoveMouse();
        m_button = m_random.Below(3) == 0 ? Qt::RightButton : Qt::LeftButton;
        m_canvas.dock.SetSize(m_random.Between(1, 24));
        Send(QEvent::MouseButtonPress);
        Draw(true, {});
    }

    void Release()
    {
        if (m_button != Qt::NoButton) {
            Send(QEvent::MouseButtonRelease);
            m_button = Qt::NoButton;
        }
    }

    void MoveMouse()
    {
        const QPointF from = MouseInScene();
        // Positions are rounded to pixels, and the last quarters would be beside the viewport.
        const QSize size = m_canvas.view.viewport()->size() - QSize(1, 1);
        m_mouse = QPointF(m_random.Below(4 * size.width()), m_random.Below(4 * size.height())) / 4;
        Send(QEvent::MouseMove);
        if (m_button != Qt::NoButton) {
            Draw(false, from);
        }
    }

    void Draw(bool isDab, QPointF from)
    {
        const bool isErasing = m_button == Qt::RightButton;
        literal::Paint(m_literal, {isErasing, isDab, Ink, m_canvas.dock.GetBrush()->Size(), from,
                                   MouseInScene()});
    }

    void Send(QEvent::Type type)
    {
        const QPointF inWindow = m_mouse + m_canvas.view.viewport()->mapTo(&m_canvas.view, {});
        const bool isRelease = type == QEvent::MouseButtonRelease;
        qt_handleMouseEvent(m_canvas.view.windowHandle(), inWindow,
                            inWindow + m_canvas.view.mapToGlobal({}),
                            isRelease ? Qt::NoButton : m_button,
                            type == QEvent::MouseMove ? Qt::NoButton : m_button, type,
                            Qt::NoModifier, m_milliseconds += ClickInterval);
        QCoreApplication::processEvents();
    }

    static constexpr QColor Ink = QColor(255, 0, 0);
    /// Longer than that of a double click.
    static constexpr int ClickInterval = 1000;

    Random m_random;
    CanvasFixture m_canvas;
    Layer* m_layer;
    QImage m_literal;
    /// View pixels.
    QPointF m_mouse;
    Qt::MouseButton m_button = Qt::NoButton;
    int m_milliseconds = 0;
};

} // namespace

class tst_ScenePainting : public QObject
{
    Q_OBJECT

private slots:
    void ShowsTheBrush();
    void ShowsTheThinnestOutlineForWidthsBelowZero();
    void ShowsTheBrushOnlyInPaint();
    void StandsNoBrush_data();
    void StandsNoBrush();
    void PaintsWithTheLeftButton();
    void ErasesWithTheRightButton();
    void PaintsDoubleClicksToo();
    void MovesWithoutAButtonKeepTheMask();
    void PaintsWhereTheBrushLeaves();
    void PaintsWhereTheMouseIs();
    void IsModifiedWhenAStrokeEnds_data();
    void IsModifiedWhenAStrokeEnds();
    void ContinuesNoStrokeThatEnded();
    void IgnoresButtonsThatDoNothing_data();
    void IgnoresButtonsThatDoNothing();
};

void tst_ScenePainting::ShowsTheBrush()
{
    CanvasFixture canvas;
    auto* cursor = BrushCursor(canvas);
    Brush brush;
    brush.SetSize(7);
    brush.SetColor(QColor(1, 2, 3, 100));
    brush.SetOutlineColor(QColor(9, 8, 7, 200));
    brush.SetOutlineWidth(3);
    brush.SetPosition({12.5, 30});
    canvas.Scene().ChangeBrush(&brush);
    QCOMPARE(cursor->brush(), QBrush(QColor(1, 2, 3, 100), Qt::SolidPattern));
    QCOMPARE(cursor->pen(),
             QPen(QBrush(QColor(9, 8, 7, 200)), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    QCOMPARE(cursor->rect(), QRectF(-3.5, -3.5, 7, 7));
    QCOMPARE(cursor->pos(), QPointF(12.5, 30));
    brush.SetOutline(false);
    brush.SetSize(256);
    QCOMPARE(cursor->rect(), QRectF(-3.5, -3.5, 7, 7));
    canvas.Scene().RefreshBrush();
    QCOMPARE(cursor->pen(), QPen(QColor(Qt::transparent)));
    QCOMPARE(cursor->rect(), QRectF(-128, -128, 256, 256));
    canvas.Scene().ChangeBrush(nullptr);
}

void tst_ScenePainting::ShowsTheThinnestOutlineForWidthsBelowZero()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    Brush brush;
    for (const int width : {-1, std::numeric_limits<int>::min(), 0}) {
        brush.SetOutlineWidth(width);
        canvas.Scene().ChangeBrush(&brush);
        QCOMPARE(BrushCursor(canvas)->pen().widthF(), 0.0);
        QVERIFY(BrushCursor(canvas)->boundingRect().contains(QRectF(-16, -16, 32, 32)));
        canvas.view.grab();
    }
    canvas.Scene().ChangeBrush(nullptr);
}

void tst_ScenePainting::ShowsTheBrushOnlyInPaint()
{
    CanvasFixture canvas;
    auto* cursor = BrushCursor(canvas);
    for (const SceneMode mode : Modes) {
        canvas.Move({50, 60}, Qt::NoButton);
        canvas.Scene().ChangeMode(mode);
        QCOMPARE(canvas.Scene().Mode(), mode);
        QCOMPARE(cursor->isVisible(), mode == SceneMode::Paint);
        QCOMPARE(cursor->pos(), QPointF(50, 60));
    }
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.Move({70, 20}, Qt::NoButton);
    QCOMPARE(cursor->pos(), QPointF(70, 20));
    QCOMPARE(canvas.dock.GetBrush()->Position(), QPointF(70, 20));
    QCOMPARE(canvas.Scene().MousePosition(), QPointF(70, 20));
}

void tst_ScenePainting::StandsNoBrush_data()
{
    QTest::addColumn<SceneMode>("mode");
    for (const SceneMode mode : Modes) {
        QTest::addRow("mode %d", int(mode)) << mode;
    }
}

void tst_ScenePainting::StandsNoBrush()
{
    QFETCH(SceneMode, mode);
    CanvasFixture canvas;
    canvas.Scene().ChangeBrush(nullptr);
    canvas.Scene().RefreshBrush();
    Layer* layer = canvas.AddLayer(Qt::red, {20, 20, 50, 50});
    canvas.Scene().ChangeLayer(layer);
    canvas.Scene().ChangeMode(mode);
    canvas.Drag({20, 20}, {40, 50});
    canvas.Click({20, 20}, Qt::RightButton);
    QCOMPARE(Area(*layer), 2500);
}

void tst_ScenePainting::PaintsWithTheLeftButton()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(QColor(255, 0, 0, 128));
    canvas.Edit(layer);
    canvas.dock.SetSize(10);
    canvas.Press({50, 50});
    const int dab = Area(*layer);
    QVERIFY(dab > 50 && dab < 120);
    QVERIFY(IsSet(*layer, 50, 50));
    canvas.Move({90, 50});
    QVERIFY(IsSet(*layer, 70, 50));
    QVERIFY(IsSet(*layer, 90, 50));
    QVERIFY(!IsSet(*layer, 70, 60));
    canvas.Release({90, 50});
    QCOMPARE(BrushCursor(canvas)->pos(), QPointF(90, 50));
    QCOMPARE(PictureOf(*canvas.ItemAt(CurrentZ)), layer->Pixmap().toImage());
}

void tst_ScenePainting::ErasesWithTheRightButton()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red, {0, 0, 200, 160});
    canvas.Edit(layer);
    canvas.dock.SetSize(10);
    canvas.Press({50, 50}, Qt::RightButton);
    QVERIFY(!IsSet(*layer, 50, 50));
    canvas.Move({90, 50}, Qt::RightButton);
    QVERIFY(!IsSet(*layer, 70, 50));
    QVERIFY(IsSet(*layer, 70, 60));
    canvas.Release({90, 50}, Qt::RightButton);
    QVERIFY(canvas.TakeModified());
    const QImage picture = PictureOf(*canvas.ItemAt(CurrentZ));
    QCOMPARE(picture.pixel(70, 50), 0U);
}

void tst_ScenePainting::PaintsDoubleClicksToo()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    canvas.Click({50, 50});
    canvas.DoubleClick({120, 50});
    QVERIFY(IsSet(*layer, 120, 50));
    canvas.Move({120, 120});
    QVERIFY(IsSet(*layer, 120, 90));
    canvas.Release({120, 120});
    canvas.DoubleClick({120, 50}, Qt::RightButton);
    QVERIFY(!IsSet(*layer, 120, 50));
    canvas.Release({120, 50}, Qt::RightButton);
}

void tst_ScenePainting::MovesWithoutAButtonKeepTheMask()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red, {20, 20, 50, 50});
    QImage mask = layer->Image();
    mask.setPixel(0, 0, 100);
    layer->SetImage(mask, Qt::red);
    canvas.Edit(layer);
    canvas.TakeModified();
    QCOMPARE(layer->Image().pixelIndex(0, 0), 100);
    canvas.Move({100, 100}, Qt::NoButton);
    QCOMPARE(layer->Image().pixelIndex(0, 0), 100);
    QCOMPARE(BrushCursor(canvas)->pos(), QPointF(100, 100));
    QCOMPARE(canvas.dock.GetBrush()->Position(), QPointF(100, 100));
    QVERIFY(!canvas.TakeModified());
    // A stroke makes a painted mask of it.
    canvas.Press({100, 100});
    QCOMPARE(layer->Image().pixelIndex(0, 0), 0);
    canvas.Release({100, 100});
    // Moves after a stroke do not change the mask either.
    layer->SetImage(mask, Qt::red);
    canvas.Move({120, 100}, Qt::NoButton);
    QCOMPARE(layer->Image(), mask);
}

void tst_ScenePainting::PaintsWhereTheBrushLeaves()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    canvas.dock.SetSize(6);
    canvas.Press({10, 10});
    canvas.Move({-20, 10});
    canvas.Move({-20, 80});
    canvas.Move({10, 80});
    canvas.Release({10, 80});
    QVERIFY(IsSet(*layer, 0, 10));
    QVERIFY(IsSet(*layer, 0, 80));
    QVERIFY(!IsSet(*layer, 0, 45));
}

void tst_ScenePainting::PaintsWhereTheMouseIs()
{
    StrokeRandomUser user;
    for (int i = 0; i < 600; ++i) {
        user.Act();
        QCOMPARE(user.Painted(), user.Expected());
    }
}

void tst_ScenePainting::IsModifiedWhenAStrokeEnds_data()
{
    QTest::addColumn<QString>("end");
    for (const char* end : {"release", "second button", "space", "Ctrl+0", "lost focus", "popup",
                            "lost mouse", "hidden", "disabled"}) {
        QTest::newRow(end) << QString::fromLatin1(end);
    }
}

void tst_ScenePainting::IsModifiedWhenAStrokeEnds()
{
    QFETCH(QString, end);
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red);
    QMenu menu;
    menu.addAction("Hide all");
    canvas.Edit(layer);
    canvas.dock.SetSize(10);
    canvas.Press({50, 50});
    canvas.Move({60, 60});
    QVERIFY(!canvas.TakeModified());
    if (end == "release") {
        canvas.Release({60, 60});
    } else if (end == "second button") {
        canvas.Press({60, 60}, Qt::BackButton);
    } else if (end == "space") {
        QTest::keyPress(&canvas.view, Qt::Key_Space);
    } else if (end == "Ctrl+0") {
        QTest::keyPress(&canvas.view, Qt::Key_0, Qt::ControlModifier);
    } else if (end == "lost focus") {
        canvas.view.clearFocus();
    } else if (end == "popup") {
        menu.popup({0, 0});
    } else if (end == "lost mouse") {
        QEvent event(QEvent::UngrabMouse);
        QCoreApplication::sendEvent(canvas.view.viewport(), &event);
    } else if (end == "hidden") {
        canvas.view.hide();
    } else {
        canvas.view.setEnabled(false);
    }
    QVERIFY(canvas.TakeModified());
    canvas.Move({120, 120});
    QVERIFY(!IsSet(*layer, 100, 100));
    menu.close();
    canvas.view.setEnabled(true);
    QTest::keyRelease(&canvas.view, Qt::Key_Space);
    canvas.Release({60, 60});
    QVERIFY(!canvas.TakeModified());
}

void tst_ScenePainting::ContinuesNoStrokeThatEnded()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    canvas.dock.SetSize(10);
    canvas.Press({50, 50});
    canvas.Press({50, 50}, Qt::BackButton);
    canvas.Move({50, 120}, Qt::LeftButton | Qt::BackButton);
    QVERIFY(!IsSet(*layer, 50, 90));
    // The second button erases from the place to which the first one painted.
    canvas.Press({100, 50});
    canvas.Move({100, 100});
    canvas.Press({100, 100}, Qt::RightButton);
    canvas.Move({100, 50}, Qt::LeftButton | Qt::RightButton);
    QVERIFY(!IsSet(*layer, 100, 75));
}

void tst_ScenePainting::IgnoresButtonsThatDoNothing_data()
{
    QTest::addColumn<SceneMode>("mode");
    QTest::addColumn<Qt::MouseButton>("button");
    for (const SceneMode mode : Modes) {
        for (const Qt::MouseButton button :
             {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton, Qt::BackButton}) {
            const bool isIdle = mode == SceneMode::None || mode == SceneMode::Pan;
            const bool isUsed =
                button == Qt::LeftButton || (button == Qt::RightButton && mode == SceneMode::Paint);
            if (isIdle || !isUsed) {
                QTest::addRow("mode %d, button %d", int(mode), int(button)) << mode << button;
            }
        }
    }
}

void tst_ScenePainting::IgnoresButtonsThatDoNothing()
{
    QFETCH(SceneMode, mode);
    QFETCH(Qt::MouseButton, button);
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red, {20, 20, 50, 50});
    canvas.Scene().ChangeLayer(layer);
    canvas.Scene().ChangeTerritory(canvas.territory);
    Zone* zone = canvas.AddZone({100, 50});
    QSignalSpy query(&canvas.view, &MainView::TerritorySelected);
    canvas.Scene().ChangeMode(mode);
    canvas.TakeModified();
    for (int i = 0; i < 2; ++i) {
        canvas.Press({100, 50}, button);
        canvas.Move({120, 60}, button);
        canvas.Release({120, 60}, button);
        canvas.DoubleClick({100, 50}, button);
        canvas.Move({120, 60}, button);
        canvas.Release({120, 60}, button);
    }
    QVERIFY(!canvas.TakeModified());
    QCOMPARE(Area(*layer), 2500);
    QCOMPARE(zone->pos(), QPointF(100, 50));
    QVERIFY(!zone->isSelected());
    QCOMPARE(canvas.territory->Zones().size(), 1);
    QVERIFY(query.isEmpty());
}

QTEST_MAIN(tst_ScenePainting)
#include "tst_ScenePainting.moc"
