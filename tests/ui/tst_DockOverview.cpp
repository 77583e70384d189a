#include "ui/DockOverview.h"

#include "canvas/WidgetOverview.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/TerritoryEdits.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"
#include "tests/support/Random.h"
#include "ui/LayerComposition.h"

#include <QGraphicsEllipseItem>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

namespace {

/// Does not fit the view and is larger than the overview's picture.
constexpr QSize LayerSize(1300, 900);
const QColor Ink(200, 0, 0, 130);

/// A canvas whose window has the overview, with three layers of which the topmost is painted.
class Overview : public CanvasFixture
{
public:
    Overview()
        : CanvasFixture(LayerSize)
        , composition(document, view)
        , layer(AddLayer(Ink, {100, 100, 400, 300}))
        , overview(document, view)
    {
        AddLayer(QColor(0, 0, 250, 77), {300, 50, 500, 800});
        AddLayer(QColor(10, 210, 0, 255), {0, 700, 1200, 150});
        const QVector<Layer*> all = layers.Layers();
        for (Layer* visible : all) {
            visible->SetVisible(true);
        }
        document.BeginHistory(true);
        Edit(layer);
        composition.Recompose();
        dock.SetSize(40);
        overview.resize(300, 320);
        overview.show();
    }

    WidgetOverview& Map() const { return *static_cast<WidgetOverview*>(overview.widget()); }
    /// The picture when nothing is left to do.
    QImage Picture() const
    {
        [this] { QTRY_VERIFY(Map().Overview().IsUpToDate()); }();
        return Map().Overview().Picture().copy();
    }
    /// The same, made from nothing.
    QImage PictureMadeAnew()
    {
        overview.hide();
        overview.show();
        return Picture();
    }
    /// What the map shows at the picture's scale.
    QImage PictureOfMap()
    {
        composition.Recompose();
        return RenderedMap();
    }
    QImage RenderedMap()
    {
        BrushCursor(*this)->hide();
        QImage rendered(Picture().size(), QImage::Format_ARGB32_Premultiplied);
        rendered.fill(Qt::transparent);
        QPainter painter(&rendered);
        painter.scale(double(rendered.width()) / LayerSize.width(),
                      double(rendered.height()) / LayerSize.height());
        const QRectF all(0, 0, LayerSize.width(), LayerSize.height());
        Scene().render(&painter, all, all, Qt::IgnoreAspectRatio);
        return rendered;
    }
    /// Where a place of the map is in the overview.
    QPoint InOverview(QPointF place) const
    {
        const QRectF map = Map().MapRect();
        return (map.topLeft() + QPointF(place.x() / LayerSize.width() * map.width(),
                                        place.y() / LayerSize.height() * map.height()))
            .toPoint();
    }
    QPointF ViewCenter() const { return view.mapToScene(view.viewport()->rect().center()); }
    /// The bounds of the white line.
    QRect Frame() const
    {
        const QImage shown = Map().grab().toImage();
        QRect bounds;
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                if (shown.pixel(x, y) == 0xFFFFFFFFU) {
                    bounds |= QRect(x, y, 1, 1);
                }
            }
        }
        return bounds;
    }

    LayerComposition composition;
    Layer* layer;
    DockOverview overview;
};

/// Blending in another order rounds in another way.
bool AreAlike(const QImage& a, const QImage& b)
{
    constexpr int tolerance = 2;
    if (a.size() != b.size() || a.format() != b.format() || a.isNull()) {
        return false;
    }
    return std::equal(a.constBits(), a.constBits() + a.sizeInBytes(), b.constBits(),
                      [](int x, int y) { return qAbs(x - y) <= tolerance; });
}

bool IsNear(QPointF a, QPointF b, double distance)
{
    return qAbs(a.x() - b.x()) <= distance && qAbs(a.y() - b.y()) <= distance;
}

/// Paints or erases, and sometimes takes the stroke back.
void PaintRandomly(Random& random, Overview& canvas)
{
    const auto place = [&random] { return QPointF(random.Below(380), random.Below(330)); };
    const auto button = random.Below(3) == 0 ? Qt::RightButton : Qt::LeftButton;
    const QPointF origin = canvas.view.mapToScene(QPoint());
    canvas.Press(origin + place(), button);
    for (int moves = random.Below(4); moves > 0; --moves) {
        canvas.Move(origin + place(), button);
        if (random.Below(3) == 0) {
            QCoreApplication::processEvents();
        }
    }
    if (random.Below(5) == 0) {
        QTest::keyClick(&canvas.view, Qt::Key_Escape);
    }
    canvas.Release(origin + place(), button);
}

void EditRandomly(Random& random, Overview& canvas)
{
    const QVector<Layer*> layers = canvas.layers.Layers();
    Layer& layer = *layers.at(random.Below(layers.size()));
    switch (random.Below(10)) {
    case 0:
        canvas.document.Do(Edits::SetLayerVisible(layer, !layer.IsVisible()));
        break;
    case 1:
        canvas.document.Do(Edits::SetLayerColor(layer, QColor(QRgb(random.Bits()))));
        break;
    case 2:
        canvas.document.Do(Edits::SetLayerOpacity(layer, random.Below(256)));
        break;
    case 3:
        canvas.document.Do(Edits::MoveLayer(layer, random.Below(layers.size())));
        break;
    case 4:
        if (layers.size() > 2) {
            canvas.document.Do(Edits::RemoveLayer(layer));
        }
        break;
    case 5:
        canvas.Edit(&layer);
        break;
    case 6:
        canvas.document.Do(Edits::InsertZone(
            *canvas.territory, QPointF(random.Below(1300), random.Below(900)), ZoneValues()));
        break;
    case 7:
        canvas.document.Redo();
        break;
    case 8:
        canvas.document.SetSoloLayer(canvas.document.SoloLayer() ? nullptr : &layer);
        break;
    default:
        canvas.document.Undo();
    }
    // As the window does.
    canvas.composition.Recompose();
}

} // namespace

class tst_DockOverview : public QObject
{
    Q_OBJECT

private slots:
    void ShowsWhatTheMapShows();
    void FollowsAStrokeUnderWay();
    void FollowsWhatTheUserDoes();
    void FollowsTheBackground();
    void DotsZones();
    void ShowsAMapOfAnotherSize();
    void DoesNothingWhileHidden();
    void FramesWhatTheViewShows();
    void AClickMovesTheView();
    void ADragMovesTheView();
};

void tst_DockOverview::ShowsWhatTheMapShows()
{
    Overview canvas;
    const auto compare = [&canvas](const char* what) {
        QVERIFY2(AreAlike(canvas.Picture(), canvas.PictureOfMap()), what);
    };
    QCOMPARE(canvas.Picture().size(), QSize(512, 354));
    compare("at first");
    canvas.document.SetSoloLayer(canvas.layer);
    compare("only one layer");
    QVERIFY(canvas.Picture().pixelColor(470, 340) == QColor(0, 0, 0, 0));
    canvas.document.SetSoloLayer(nullptr);
    compare("all layers again");
    Layer* second = canvas.layers.LayerAt(1);

    canvas.document.Do(Edits::SetLayerVisible(*second, false));
    compare("a hidden layer");
    canvas.Edit(second);
    compare("a hidden layer that is current");
    canvas.document.Do(Edits::SetLayerColor(*second, QColor(200, 200, 3)));
    compare("a colour");
    canvas.document.Do(Edits::SetLayerOpacity(*second, 200));
    compare("an opacity");
    canvas.Edit(canvas.layer);
    canvas.document.Do(Edits::MoveLayer(*canvas.layers.LayerAt(2), 0));
    compare("another order");
    canvas.document.Do(Edits::RemoveLayer(*canvas.layers.LayerAt(0)));
    compare("a removed layer");
    while (canvas.document.CanUndo()) {
        canvas.document.Undo();
        compare("a step back");
    }
}

void tst_DockOverview::FollowsAStrokeUnderWay()
{
    Overview canvas;
    const QImage before = canvas.Picture();

    canvas.Press({200, 220});
    canvas.Move({260, 240});
    QVERIFY(AreAlike(canvas.Picture(), canvas.RenderedMap()));
    canvas.Press({20, 20}, Qt::LeftButton);
    canvas.Move({40, 300});
    const QImage painted = canvas.Picture();
    QVERIFY(painted != before);
    QVERIFY(AreAlike(painted, canvas.RenderedMap()));

    QTest::keyClick(&canvas.view, Qt::Key_Escape);
    QVERIFY(canvas.Picture() == before);
}

void tst_DockOverview::FollowsWhatTheUserDoes()
{
    Random random;
    for (int round = 0; round < 4; ++round) {
        Overview canvas;
        canvas.Picture();
        for (int step = 0; step < 25; ++step) {
            if (!canvas.document.CurrentLayer()) {
                canvas.Edit(canvas.layers.LayerAt(0));
            }
            canvas.view.centerOn(random.Below(1300), random.Below(900));
            if (random.Below(2) == 0) {
                PaintRandomly(random, canvas);
            } else {
                EditRandomly(random, canvas);
            }
            if (random.Below(3) == 0) {
                const QImage kept = canvas.Picture();
                QVERIFY(kept == canvas.PictureMadeAnew());
            }
        }
    }
}

void tst_DockOverview::FollowsTheBackground()
{
    Overview canvas;
    const QString path = canvas.project.Path(QStringLiteral("world.png"));
    QImage world(130, 90, QImage::Format_RGB32);
    world.fill(Qt::cyan);
    for (int i = 0; i < world.height(); ++i) {
        world.setPixel(i, i, qRgb(9, 99, 0));
    }
    QVERIFY(world.save(path));
    QImage last = canvas.Picture();
    const auto compare = [&](const char* what) {
        QVERIFY2(canvas.Picture() != last, what);
        last = canvas.Picture();
        QVERIFY2(AreAlike(last, canvas.PictureOfMap()), what);
    };

    canvas.Scene().ChangeWorldVisibility(true);
    canvas.Scene().ChangeWorld(path);
    compare("a picture");
    canvas.Scene().ChangeWorldColor(Qt::yellow);
    canvas.Scene().ChangeWorldAlpha(99, 0.4F);
    compare("a colour over it");
    canvas.Scene().ChangeWorldRGBA(QColor(3, 4, 5, 200));
    compare("another colour over it");
    canvas.Scene().ClearWorld();
    compare("no picture");
    canvas.Scene().ChangeWorldVisibility(false);
    compare("no colour either");
}

void tst_DockOverview::DotsZones()
{
    Overview canvas;
    const QImage without = canvas.Picture();
    constexpr QRgb color = qRgb(1, 2, 3);
    canvas.territory->SetRgba(0x40000000U | (color & 0xFFFFFFU));
    canvas.territory->SetVisible(true);
    canvas.document.Do(Edits::InsertZone(*canvas.territory, {650, 450}, ZoneValues()));
    const auto dots = [&canvas] {
        QRect found;
        const QImage picture = canvas.Picture();
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (picture.pixel(x, y) == color) {
                    found |= QRect(x, y, 1, 1);
                }
            }
        }
        return found;
    };

    QVERIFY(dots().contains(QPoint(256, 177)));
    QVERIFY(dots().width() <= 5 && dots().height() <= 5);
    canvas.document.Do(
        Edits::MoveZones({{canvas.territory->Zones().first(), {650, 450}, {26, 9}}}, false));
    QVERIFY(dots().contains(QPoint(10, 4)) && dots().width() <= 5);
    canvas.document.Do(Edits::SetRowChecked(*canvas.territory, true));
    canvas.document.Do(Edits::SetRowChecked(*canvas.territory, false));
    QVERIFY(canvas.Picture() == without);
    canvas.document.Undo();
    QVERIFY(!dots().isNull());
    canvas.document.Do(Edits::RemoveTerritory(*canvas.territory));
    QVERIFY(canvas.Picture() == without);
}

void tst_DockOverview::ShowsAMapOfAnotherSize()
{
    Overview canvas;
    canvas.Picture();

    canvas.document.Clear();
    canvas.view.SetSceneSize(100, 40);
    const QImage small = canvas.Picture();
    QCOMPARE(small.size(), QSize(100, 40));
    canvas.view.SetSceneSize(1, 60000);
    QCOMPARE(canvas.Picture().size(), QSize(1, 512));
}

void tst_DockOverview::DoesNothingWhileHidden()
{
    Overview canvas;
    canvas.Picture();
    const OverviewPicture& overview = canvas.Map().Overview();
    const auto isIdle = [&overview] {
        return overview.IsUpToDate() && overview.Picture().isNull();
    };

    canvas.overview.hide();
    QVERIFY(isIdle());
    canvas.Press({200, 220});
    canvas.Move({20, 20});
    QVERIFY(isIdle());
    canvas.Release({20, 20});
    canvas.document.Do(Edits::SetLayerVisible(*canvas.layers.LayerAt(1), false));
    canvas.document.Do(Edits::InsertZone(*canvas.territory, {20, 20}, ZoneValues()));
    canvas.Scene().ChangeWorldVisibility(true);
    canvas.view.SetSceneSize(LayerSize.width(), LayerSize.height());
    canvas.document.BeginHistory(true);
    QVERIFY(isIdle());
    canvas.territory->setCheckState(Qt::Unchecked);
    canvas.territory->setCheckState(Qt::Checked);
    QTest::qWait(50);
    QVERIFY(isIdle());
    canvas.document.Do(Edits::RemoveZones({canvas.territory->Zones().first()}));

    canvas.overview.show();
    QVERIFY(!isIdle());
    QVERIFY(AreAlike(canvas.Picture(), canvas.PictureOfMap()));
}

void tst_DockOverview::FramesWhatTheViewShows()
{
    Overview canvas;
    Layer* whole = canvas.AddLayer(QColor(9, 9, 200), QRect(QPoint(), LayerSize));
    whole->SetVisible(true);
    canvas.document.BeginHistory(true);
    canvas.Picture();
    const auto check = [&canvas] {
        QCoreApplication::processEvents();
        const MainView& view = canvas.view;
        const QRectF seen = view.mapToScene(view.viewport()->rect()).boundingRect() &
                            QRectF(QPointF(), QSizeF(LayerSize));
        const QRect frame = canvas.Frame();
        QVERIFY(IsNear(frame.topLeft(), canvas.InOverview(seen.topLeft()), 1));
        QVERIFY(IsNear(frame.bottomRight(), canvas.InOverview(seen.bottomRight()), 2));
    };

    check();
    canvas.view.centerOn(1000, 800);
    check();
    Zoom(canvas.view, 3);
    check();
    Zoom(canvas.view, -6);
    check();
    canvas.view.resize(600, 300);
    check();
    canvas.overview.resize(500, 200);
    check();
    Zoom(canvas.view, 50);
    QVERIFY(canvas.Frame().width() >= 4);
}

void tst_DockOverview::AClickMovesTheView()
{
    const Overview canvas;
    const QSignalSpy jumps(&canvas.overview, &DockOverview::AboutToJump);
    QPointF centerAtJump;
    connect(&canvas.overview, &DockOverview::AboutToJump, &canvas.overview,
            [&] { centerAtJump = canvas.ViewCenter(); });
    const double pixel = LayerSize.width() / canvas.Map().MapRect().width();
    int clicks = 0;
    for (const QPointF place : {QPointF(650, 450), QPointF(400, 600), QPointF(900, 300)}) {
        const QPointF before = canvas.ViewCenter();

        QTest::mouseClick(&canvas.Map(), Qt::LeftButton, {}, canvas.InOverview(place));

        QVERIFY(IsNear(canvas.ViewCenter(), place, pixel + 1));
        QCOMPARE(jumps.count(), ++clicks);
        QCOMPARE(centerAtJump, before);
    }
    const QPointF last = canvas.ViewCenter();
    QTest::mouseClick(&canvas.Map(), Qt::RightButton, {}, canvas.InOverview({100, 100}));
    QTest::mouseMove(&canvas.Map(), canvas.InOverview({200, 100}));
    QCOMPARE(canvas.ViewCenter(), last);
    // Beside the map is its edge.
    QTest::mouseClick(&canvas.Map(), Qt::LeftButton, {}, {1, 1});
    QCOMPARE(canvas.view.mapToScene(QPoint()), QPointF());
    QTest::mouseDClick(&canvas.Map(), Qt::LeftButton, {}, canvas.InOverview({650, 450}));
    QVERIFY(IsNear(canvas.ViewCenter(), {650, 450}, pixel + 1));
}

void tst_DockOverview::ADragMovesTheView()
{
    const Overview canvas;
    const QSignalSpy jumps(&canvas.overview, &DockOverview::AboutToJump);
    const double pixel = LayerSize.width() / canvas.Map().MapRect().width();

    QTest::mousePress(&canvas.Map(), Qt::LeftButton, {}, canvas.InOverview({400, 400}));
    for (const QPointF place : {QPointF(500, 450), QPointF(800, 500), QPointF(700, 600)}) {
        const QPoint position = canvas.InOverview(place);
        QMouseEvent move(QEvent::MouseMove, position, Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&canvas.Map(), &move);
        QVERIFY(IsNear(canvas.ViewCenter(), place, pixel + 1));
    }
    QTest::mouseRelease(&canvas.Map(), Qt::LeftButton, {}, canvas.InOverview({700, 600}));

    QCOMPARE(jumps.count(), 1);
    QVERIFY(!ProjectSettings::Instance().IsModified());
}

QTEST_MAIN(tst_DockOverview)
#include "tst_DockOverview.moc"
