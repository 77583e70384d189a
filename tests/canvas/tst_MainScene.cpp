#include "canvas/MainScene.h"

#include "canvas/CurrentLayerItem.h"
#include "canvas/LayersItem.h"
#include "canvas/OverlayItem.h"
#include "tests/support/CanvasFixture.h"
#include "tests/support/LiteralCanvas.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"

#include <QMetaMethod>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal WorldZ = 0.2;
constexpr qreal OverlayZ = 0.4;
constexpr qreal LayersZ = 0.6;
constexpr qreal CurrentZ = 0.8;
constexpr qreal BrushZ = 999;

/// What the scene shows of its rectangle, each scene unit a pixel.
QImage Shown(MainScene& scene, QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    scene.render(&painter, QRectF(QPointF(), size), QRectF(QPointF(), size));
    return image;
}

/// The set pixels of a layer.
int Area(const Layer& layer)
{
    int area = 0;
    for (int y = 0; y < layer.Image().height(); ++y) {
        const uchar* row = layer.Image().constScanLine(y);
        area += int(std::count(row, row + layer.Image().width(), raster::MaskSet));
    }
    return area;
}

bool IsSet(const Layer& layer, int x, int y)
{
    return layer.Image().pixelIndex(x, y) == raster::MaskSet;
}

template <typename Item>
Item* ItemOf(CanvasFixture& canvas, qreal z)
{
    return static_cast<Item*>(canvas.ItemAt(z));
}

QGraphicsEllipseItem* BrushCursor(CanvasFixture& canvas)
{
    return ItemOf<QGraphicsEllipseItem>(canvas, BrushZ);
}

constexpr SceneMode Modes[] = {SceneMode::None,   SceneMode::Pan,    SceneMode::Paint,
                               SceneMode::Insert, SceneMode::Select, SceneMode::Query};

} // namespace

Q_DECLARE_METATYPE(SceneMode)
Q_DECLARE_METATYPE(Qt::MouseButton)
Q_DECLARE_METATYPE(Territory*)
Q_DECLARE_METATYPE(Zone*)

class tst_MainScene : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void HasItsSignalsAndSlotsInOrder();
    void HasItsItems();
    void LoadsTheWorldPicture();
    void KeepsTheWorldPictureWhenAnotherCannotBeLoaded();
    void KeepsTheWorldPictureWhenAnotherCannotBeScaled_data();
    void KeepsTheWorldPictureWhenAnotherCannotBeScaled();
    void OverlaysOpaqueColorsAtTheirOpacity();
    void OverlaysColorsWithTheirAlpha();
    void SetsTheOverlaysOpacity();
    void ShowsAndHidesTheWorld();
    void OverlayLooksLikeAPicture();
    void ShowsTheFirstAddedLayerOnTop();
    void ShowsLayersAtTheirOpacity();
    void ShowsTheEditedLayerAtItsOpacity();
    void HidesTheEditedLayer();
    void IgnoresTheColorUntilTheNextLayerChange();
    void StandsNoLayer();
    void ShowsTheBrush();
    void ShowsTheBrushOnlyInPaint();
    void StandsNoBrush_data();
    void StandsNoBrush();
    void PassesColorsToTheTerritory();
    void AnnouncesTheSelection();
    void PaintsWithTheLeftButton();
    void ErasesWithTheRightButton();
    void PaintsDoubleClicksToo();
    void MovesWithoutAButtonHandOver();
    void PaintsWhereTheBrushLeaves();
    void IsModifiedWhenAStrokeEnds_data();
    void IsModifiedWhenAStrokeEnds();
    void ContinuesNoStrokeThatEnded();
    void IgnoresButtonsThatDoNothing_data();
    void IgnoresButtonsThatDoNothing();
    void InsertsZones();
    void InsertsNothingWithoutATerritory();
    void SelectsAndMovesZones();
    void IsModifiedWhenADragEndsElsewhere_data();
    void IsModifiedWhenADragEndsElsewhere();
    void AsksForTheTerritoryBeforeItSelects();
    void SelectsWhatTheAnswerUnlocks();
    void StandsAnAnswerThatDestroysTheZone();
    void QueriesNothingElse();
    void RemovesTheSelection();
    void RemovesZonesOfOtherTerritories();
    void RemovesZonesThatTheAnswerDestroys();
    void IsModifiedByRemovingNothing();
    void ForgetsWhatIsDestroyed_data();
    void ForgetsWhatIsDestroyed();
    void ResizesThePictures();
    void StandsSizesOfNothing_data();
    void StandsSizesOfNothing();
    void PansAndRestoresTheMode();
    void IsSilentWhenItGoes();
};

void tst_MainScene::initTestCase()
{
    // For signal spies.
    qRegisterMetaType<Territory*>("Territory*");
    qRegisterMetaType<Zone*>("Zone*");
}

void tst_MainScene::HasItsSignalsAndSlotsInOrder()
{
    QStringList signatures;
    const QMetaObject& meta = MainScene::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        signatures.append(QString::fromLatin1(meta.method(i).methodSignature()));
    }
    QCOMPARE(signatures, QStringList({"ZoneSelected(QList<QGraphicsItem*>)",
                                      "ZoneInserted(Zone*)",
                                      "ZoomChanged(float)",
                                      "ChangeWorld(QString)",
                                      "ChangeWorldRGBA(QColor)",
                                      "ChangeWorldColor(QColor)",
                                      "ChangeWorldAlpha(int,float)",
                                      "ChangeWorldVisibility(bool)",
                                      "AddLayer(Layer*)",
                                      "ClearCurrent()",
                                      "ClearLayers()",
                                      "ChangeLayer(Layer*)",
                                      "ChangeLayerColor(QColor)",
                                      "ChangeLayerAlpha(float)",
                                      "ChangeBrush(Brush*)",
                                      "RefreshBrush()",
                                      "ChangeTerritory(Territory*)",
                                      "ChangeTerritoryColor(QColor)",
                                      "ChangeTerritoryAlpha(int,float)",
                                      "ChangeSelection()",
                                      "RemoveSelection()",
                                      "ChangeMode(SceneMode)",
                                      "ChangeSize(int,int)"}));
}

void tst_MainScene::HasItsItems()
{
    CanvasFixture canvas;
    QCOMPARE(canvas.Scene().sceneRect(), QRectF(0, 0, 200, 160));
    const QList<QGraphicsItem*> items = canvas.Scene().items(Qt::AscendingOrder);
    QVector<qreal> zValues;
    for (const QGraphicsItem* item : items) {
        zValues.append(item->zValue());
    }
    QCOMPARE(zValues, QVector<qreal>({WorldZ, OverlayZ, LayersZ, CurrentZ, BrushZ}));
    for (const qreal z : {WorldZ, OverlayZ, LayersZ, CurrentZ}) {
        auto* item = qgraphicsitem_cast<QGraphicsPixmapItem*>(canvas.ItemAt(z));
        QVERIFY(item);
        QCOMPARE(item->shapeMode(), QGraphicsPixmapItem::BoundingRectShape);
        QCOMPARE(item->isVisible(), z != WorldZ);
    }
    auto* cursor = qgraphicsitem_cast<QGraphicsEllipseItem*>(canvas.ItemAt(BrushZ));
    QVERIFY(cursor);
    QCOMPARE(cursor->startAngle(), 0);
    QCOMPARE(cursor->flags(),
             QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemSendsGeometryChanges);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::None);
    QCOMPARE(canvas.Scene().CurrentLayer(), nullptr);
    QCOMPARE(canvas.Scene().CurrentTerritory(), nullptr);
    QCOMPARE(canvas.Scene().parent(), &canvas.view);
}

void tst_MainScene::LoadsTheWorldPicture()
{
    CanvasFixture canvas({6, 4});
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    picture.setPixelColor(1, 1, Qt::red);
    const QString path = canvas.project.Path("world.png");
    QVERIFY(picture.save(path));
    canvas.Scene().ChangeWorldRGBA(QColor(0, 255, 0, 128));
    LogSpy log;
    canvas.Scene().ChangeWorld(path);
    QVERIFY(log.Messages().isEmpty());
    auto* world = ItemOf<QGraphicsPixmapItem>(canvas, WorldZ);
    QVERIFY(!world->isVisible());
    const QImage shown = world->pixmap().toImage();
    QCOMPARE(shown.size(), QSize(6, 4));
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 6; ++x) {
            const bool isRed = x / 2 == 1 && y / 2 == 1;
            QCOMPARE(shown.pixelColor(x, y), QColor(isRed ? Qt::red : Qt::blue));
        }
    }
    const QImage overlay = ItemOf<OverlayItem>(canvas, OverlayZ)->pixmap().toImage();
    QCOMPARE(overlay.size(), QSize(6, 4));
    QCOMPARE(overlay.pixelColor(5, 3), QColor(0, 255, 0));
}

void tst_MainScene::KeepsTheWorldPictureWhenAnotherCannotBeLoaded()
{
    CanvasFixture canvas({6, 4});
    QImage picture(6, 4, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    QVERIFY(picture.save(canvas.project.Path("world.png")));
    canvas.Scene().ChangeWorld(canvas.project.Path("world.png"));
    LogSpy log;
    canvas.Scene().ChangeWorld("no %2 such.png");
    canvas.Scene().ChangeWorld("");
    QCOMPARE(log.Messages(),
             QStringList({"Error: Could not load background image 'no %2 such.png'.",
                          "Error: Could not load background image ''."}));
    const auto* world = ItemOf<QGraphicsPixmapItem>(canvas, WorldZ);
    QCOMPARE(world->pixmap().toImage().pixelColor(2, 2), QColor(Qt::blue));
}

void tst_MainScene::KeepsTheWorldPictureWhenAnotherCannotBeScaled_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("0x0") << QSize(0, 0);
    QTest::newRow("-1x-1") << QSize(-1, -1);
    QTest::newRow("5x0") << QSize(5, 0);
}

void tst_MainScene::KeepsTheWorldPictureWhenAnotherCannotBeScaled()
{
    QFETCH(QSize, size);
    CanvasFixture canvas({6, 4});
    QImage picture(6, 4, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    const QString path = canvas.project.Path("world %1 %2.png");
    QVERIFY(picture.save(path));
    canvas.Scene().ChangeWorld(path);
    ProjectSettings::Instance().SetSizes(size.width(), size.height(), 100, 100);
    LogSpy log;
    canvas.Scene().ChangeWorld(path);
    QCOMPARE(log.Messages(), QStringList("Error: Could not scale background image '" + path +
                                         "' to " + QTest::currentDataTag() + "."));
    QCOMPARE(ItemOf<QGraphicsPixmapItem>(canvas, WorldZ)->pixmap().size(), QSize(6, 4));
}

void tst_MainScene::OverlaysOpaqueColorsAtTheirOpacity()
{
    CanvasFixture canvas;
    ProjectSettings::Instance().backgroundColor = QColor(1, 2, 3, 4);
    auto* overlay = ItemOf<OverlayItem>(canvas, OverlayZ);
    const QColor color(10, 20, 30, 77);
    canvas.Scene().ChangeWorldRGBA(color);
    const QImage picture = overlay->pixmap().toImage();
    QCOMPARE(picture.size(), QSize(200, 160));
    QCOMPARE(picture.pixel(199, 159), qRgb(10, 20, 30));
    QCOMPARE(overlay->opacity(), color.alphaF());
    QCOMPARE(ProjectSettings::Instance().backgroundColor, QColor(1, 2, 3, 4));
}

void tst_MainScene::OverlaysColorsWithTheirAlpha()
{
    CanvasFixture canvas;
    ProjectSettings::Instance().backgroundColor = QColor(1, 2, 3, 4);
    auto* overlay = ItemOf<OverlayItem>(canvas, OverlayZ);
    overlay->setOpacity(0.25);
    canvas.Scene().ChangeWorldColor(QColor(200, 100, 50, 128));
    QCOMPARE(ProjectSettings::Instance().backgroundColor, QColor(200, 100, 50, 4));
    const QImage picture = overlay->pixmap().toImage();
    QCOMPARE(picture.size(), QSize(200, 160));
    QCOMPARE(qAlpha(picture.pixel(3, 3)), 128);
    QCOMPARE(overlay->opacity(), 0.25);
}

void tst_MainScene::SetsTheOverlaysOpacity()
{
    CanvasFixture canvas;
    ProjectSettings::Instance().backgroundColor = QColor(1, 2, 3, 4);
    canvas.Scene().ChangeWorldColor(Qt::red);
    canvas.Scene().ChangeWorldAlpha(99, 0.75F);
    QCOMPARE(ProjectSettings::Instance().backgroundColor, QColor(255, 0, 0, 99));
    auto* overlay = ItemOf<OverlayItem>(canvas, OverlayZ);
    QCOMPARE(overlay->opacity(), 0.75);
    QCOMPARE(overlay->pixmap().toImage().pixel(0, 0), qRgb(255, 0, 0));
}

void tst_MainScene::ShowsAndHidesTheWorld()
{
    CanvasFixture canvas;
    for (const bool isVisible : {true, false, true}) {
        canvas.Scene().ChangeWorldVisibility(isVisible);
        for (const qreal z : {WorldZ, OverlayZ, LayersZ, CurrentZ}) {
            QCOMPARE(canvas.ItemAt(z)->isVisible(), isVisible || z > OverlayZ);
        }
    }
}

void tst_MainScene::OverlayLooksLikeAPicture()
{
    const QSize size(200, 160);
    for (const int alpha : {0, 1, 77, 128, 254, 255}) {
        CanvasFixture canvas(size);
        const QColor color(200, 100, 50, alpha);
        canvas.Scene().ChangeWorldColor(color);
        QGraphicsScene literalScene(canvas.Scene().sceneRect());
        QImage picture(size, QImage::Format_ARGB32_Premultiplied);
        picture.fill(color);
        auto* item = literalScene.addPixmap(QPixmap::fromImage(picture));
        for (const double opacity : {1.0, 0.3}) {
            item->setOpacity(opacity);
            canvas.ItemAt(OverlayZ)->setOpacity(opacity);
            for (const double zoom : {0.25, 0.5, 1.0, 3.75}) {
                QImage ours(100, 90, QImage::Format_ARGB32_Premultiplied);
                ours.fill(Qt::white);
                QImage theirs = ours;
                QPainter painter(&ours);
                canvas.Scene().render(&painter, QRectF(10, 10, 200 * zoom, 160 * zoom));
                painter.end();
                painter.begin(&theirs);
                literalScene.render(&painter, QRectF(10, 10, 200 * zoom, 160 * zoom));
                painter.end();
                for (int y = 0; y < ours.height(); ++y) {
                    for (int x = 0; x < ours.width(); ++x) {
                        // Rounding may differ by one.
                        const QColor a = ours.pixelColor(x, y);
                        const QColor b = theirs.pixelColor(x, y);
                        QVERIFY(std::abs(a.red() - b.red()) <= 1);
                        QVERIFY(std::abs(a.blue() - b.blue()) <= 1);
                    }
                }
            }
        }
    }
}

void tst_MainScene::ShowsTheFirstAddedLayerOnTop()
{
    CanvasFixture canvas;
    Layer* red = canvas.AddLayer(Qt::red, {0, 0, 60, 60});
    Layer* blue = canvas.AddLayer(Qt::blue, {30, 30, 60, 60});
    canvas.Scene().AddLayer(red);
    canvas.Scene().AddLayer(blue);
    QImage shown = Shown(canvas.Scene(), {200, 160});
    QCOMPARE(shown.pixelColor(10, 10), QColor(Qt::red));
    QCOMPARE(shown.pixelColor(40, 40), QColor(Qt::red));
    QCOMPARE(shown.pixelColor(70, 70), QColor(Qt::blue));
    QCOMPARE(shown.pixelColor(120, 120), QColor(Qt::white));
    canvas.Scene().ClearLayers();
    QCOMPARE(Shown(canvas.Scene(), {200, 160}).pixelColor(40, 40), QColor(Qt::white));
    canvas.Scene().AddLayer(blue);
    canvas.Scene().AddLayer(red);
    shown = Shown(canvas.Scene(), {200, 160});
    QCOMPARE(shown.pixelColor(40, 40), QColor(Qt::blue));
}

void tst_MainScene::ShowsLayersAtTheirOpacity()
{
    CanvasFixture canvas;
    QVector<literal::ShownLayer> shown;
    for (const int alpha : {128, 255, 1, 77}) {
        Layer* layer =
            canvas.AddLayer(QColor(alpha, 100, 255 - alpha, alpha), {alpha / 3, 20, 90, 100});
        canvas.Scene().AddLayer(layer);
        const float opacity = static_cast<float>(alpha) / 255.0F;
        shown.append({layer->Image(), layer->Color().rgb(), opacity});
    }
    const QImage picture = literal::Compose(shown, {200, 160});
    QCOMPARE(ItemOf<LayersItem>(canvas, LayersZ)->pixmap().toImage(), picture);
    QGraphicsScene literalScene(canvas.Scene().sceneRect());
    literalScene.addPixmap(QPixmap::fromImage(picture));
    QImage literalShown(200, 160, QImage::Format_ARGB32_Premultiplied);
    literalShown.fill(Qt::white);
    QPainter painter(&literalShown);
    literalScene.render(&painter, literalScene.sceneRect(), literalScene.sceneRect());
    painter.end();
    QCOMPARE(Shown(canvas.Scene(), {200, 160}), literalShown);
}

void tst_MainScene::ShowsTheEditedLayerAtItsOpacity()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(QColor(10, 200, 30, 128), {20, 20, 50, 50});
    canvas.Scene().ChangeLayer(layer);
    auto* current = ItemOf<CurrentLayerItem>(canvas, CurrentZ);
    QCOMPARE(canvas.Scene().CurrentLayer(), layer);
    QCOMPARE(current->opacity(), static_cast<qreal>(128.0F / 255.0F));
    QCOMPARE(current->pixmap().toImage(), layer->Pixmap().toImage());
    QCOMPARE(current->boundingRect(), QRectF(0, 0, 200, 160));
    canvas.Scene().ChangeLayerAlpha(0.25F);
    QCOMPARE(current->opacity(), 0.25);
    QGraphicsScene literalScene(canvas.Scene().sceneRect());
    literalScene.addPixmap(layer->Pixmap())->setOpacity(0.25);
    QImage literalShown(200, 160, QImage::Format_ARGB32_Premultiplied);
    literalShown.fill(Qt::white);
    QPainter painter(&literalShown);
    literalScene.render(&painter, literalScene.sceneRect(), literalScene.sceneRect());
    painter.end();
    QCOMPARE(Shown(canvas.Scene(), {200, 160}), literalShown);
}

void tst_MainScene::HidesTheEditedLayer()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red, {20, 20, 50, 50});
    canvas.Scene().ChangeLayer(layer);
    canvas.Scene().ClearCurrent();
    auto* current = ItemOf<CurrentLayerItem>(canvas, CurrentZ);
    QCOMPARE(current->opacity(), 0.0);
    QCOMPARE(current->pixmap().toImage(), layer->Pixmap().toImage());
    QCOMPARE(canvas.Scene().CurrentLayer(), layer);
    QCOMPARE(Shown(canvas.Scene(), {200, 160}).pixelColor(30, 30), QColor(Qt::white));
}

void tst_MainScene::IgnoresTheColorUntilTheNextLayerChange()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red, {20, 20, 50, 50});
    canvas.Scene().ChangeLayer(layer);
    layer->SetColor(Qt::blue);
    canvas.Scene().ChangeLayerColor(Qt::blue);
    QCOMPARE(Shown(canvas.Scene(), {200, 160}).pixelColor(30, 30), QColor(Qt::red));
    canvas.Scene().ChangeLayer(layer);
    QCOMPARE(Shown(canvas.Scene(), {200, 160}).pixelColor(30, 30), QColor(Qt::blue));
    QCOMPARE(Area(*layer), 2500);
}

void tst_MainScene::StandsNoLayer()
{
    CanvasFixture canvas;
    canvas.Scene().AddLayer(nullptr);
    canvas.Scene().ChangeLayer(nullptr);
    Layer withoutImage(1, 1, &canvas.layers);
    canvas.Scene().AddLayer(&withoutImage);
    for (Layer* layer : {static_cast<Layer*>(nullptr), &withoutImage}) {
        canvas.Scene().ChangeLayer(layer);
        canvas.Scene().ClearCurrent();
        canvas.Scene().ChangeLayerAlpha(1);
        for (const SceneMode mode : Modes) {
            canvas.Scene().ChangeMode(mode);
            canvas.Drag({20, 20}, {40, 50});
            canvas.Click({20, 20}, Qt::RightButton);
            canvas.DoubleClick({20, 20});
            canvas.Release({20, 20});
        }
        Shown(canvas.Scene(), {200, 160});
        QVERIFY(ItemOf<CurrentLayerItem>(canvas, CurrentZ)->boundingRect().isEmpty());
    }
    canvas.Scene().ChangeLayer(nullptr);
}

void tst_MainScene::ShowsTheBrush()
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

void tst_MainScene::ShowsTheBrushOnlyInPaint()
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

void tst_MainScene::StandsNoBrush_data()
{
    QTest::addColumn<SceneMode>("mode");
    for (const SceneMode mode : Modes) {
        QTest::addRow("mode %d", int(mode)) << mode;
    }
}

void tst_MainScene::StandsNoBrush()
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

void tst_MainScene::PassesColorsToTheTerritory()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeTerritoryColor(Qt::red);
    canvas.Scene().ChangeTerritoryAlpha(7, 0.5F);
    QCOMPARE(canvas.territory->Color(), QColor(Qt::black));
    canvas.Scene().ChangeTerritory(canvas.territory);
    QCOMPARE(canvas.Scene().CurrentTerritory(), canvas.territory);
    Zone* zone = canvas.AddZone({50, 50});
    canvas.Scene().ChangeTerritoryColor(QColor(10, 20, 30, 40));
    QCOMPARE(canvas.territory->Color(), QColor(10, 20, 30, 255));
    canvas.Scene().ChangeTerritoryAlpha(100, 0.9F);
    QCOMPARE(canvas.territory->Color(), QColor(10, 20, 30, 100));
    QCOMPARE(zone->Color(), QColor(10, 20, 30, 100));
    QCOMPARE(zone->opacity(), 1.0);
    canvas.Scene().ChangeTerritory(nullptr);
    canvas.Scene().ChangeTerritoryColor(Qt::green);
    QCOMPARE(canvas.territory->Color(), QColor(10, 20, 30, 100));
}

void tst_MainScene::AnnouncesTheSelection()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    QSignalSpy spy(&canvas.Scene(), &MainScene::ZoneSelected);
    zone->setSelected(true);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.last().first().value<QList<QGraphicsItem*>>(), QList<QGraphicsItem*>({zone}));
    canvas.Scene().clearSelection();
    QCOMPARE(spy.size(), 2);
    QVERIFY(spy.last().first().value<QList<QGraphicsItem*>>().isEmpty());
    canvas.Scene().ChangeSelection();
    QCOMPARE(spy.size(), 3);
}

void tst_MainScene::PaintsWithTheLeftButton()
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
    QCOMPARE(ItemOf<CurrentLayerItem>(canvas, CurrentZ)->pixmap().toImage(),
             layer->Pixmap().toImage());
}

void tst_MainScene::ErasesWithTheRightButton()
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
    const QImage picture = ItemOf<CurrentLayerItem>(canvas, CurrentZ)->pixmap().toImage();
    QCOMPARE(picture.pixel(70, 50), 0U);
}

void tst_MainScene::PaintsDoubleClicksToo()
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

void tst_MainScene::MovesWithoutAButtonHandOver()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red, {20, 20, 50, 50});
    QImage mask = layer->Image();
    mask.setPixel(0, 0, 100);
    layer->SetImage(mask, Qt::red);
    canvas.Edit(layer);
    canvas.Modified() = false;
    QCOMPARE(layer->Image().pixelIndex(0, 0), 100);
    canvas.Move({100, 100}, Qt::NoButton);
    QCOMPARE(layer->Image().pixelIndex(0, 0), 0);
    QCOMPARE(Area(*layer), 2500);
    QVERIFY(!canvas.TakeModified());
}

void tst_MainScene::PaintsWhereTheBrushLeaves()
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

void tst_MainScene::IsModifiedWhenAStrokeEnds_data()
{
    QTest::addColumn<QString>("end");
    for (const char* end : {"release", "second button", "space", "Ctrl+0", "lost focus"}) {
        QTest::newRow(end) << QString::fromLatin1(end);
    }
}

void tst_MainScene::IsModifiedWhenAStrokeEnds()
{
    QFETCH(QString, end);
    CanvasFixture canvas;
    canvas.Edit(canvas.AddLayer(Qt::red));
    canvas.Press({50, 50});
    canvas.Move({60, 60});
    QVERIFY(!canvas.TakeModified());
    if (end == "release") {
        canvas.Release({60, 60});
    } else if (end == "second button") {
        canvas.Press({60, 60}, Qt::MiddleButton);
    } else if (end == "space") {
        QTest::keyPress(&canvas.view, Qt::Key_Space);
    } else if (end == "Ctrl+0") {
        QTest::keyPress(&canvas.view, Qt::Key_0, Qt::ControlModifier);
    } else {
        QFocusEvent event(QEvent::FocusOut);
        QCoreApplication::sendEvent(&canvas.view, &event);
    }
    QVERIFY(canvas.TakeModified());
    QTest::keyRelease(&canvas.view, Qt::Key_Space);
    canvas.Release({60, 60});
    QVERIFY(!canvas.TakeModified());
}

void tst_MainScene::ContinuesNoStrokeThatEnded()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    canvas.dock.SetSize(10);
    canvas.Press({50, 50});
    canvas.Press({50, 50}, Qt::MiddleButton);
    canvas.Move({50, 120}, Qt::LeftButton | Qt::MiddleButton);
    QVERIFY(!IsSet(*layer, 50, 90));
    // The other button goes on erasing where the first painted.
    canvas.Press({100, 50});
    canvas.Move({100, 100});
    canvas.Press({100, 100}, Qt::RightButton);
    canvas.Move({100, 50}, Qt::LeftButton | Qt::RightButton);
    QVERIFY(!IsSet(*layer, 100, 75));
}

void tst_MainScene::IgnoresButtonsThatDoNothing_data()
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

void tst_MainScene::IgnoresButtonsThatDoNothing()
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
    canvas.Modified() = false;
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
    QCOMPARE(canvas.territory->Zones().size(), 1);
    QVERIFY(query.isEmpty());
}

void tst_MainScene::InsertsZones()
{
    CanvasFixture canvas({2000, 1600});
    canvas.territory->SetRgba(0x80102030);
    canvas.Scene().ChangeTerritory(canvas.territory);
    canvas.Scene().ChangeMode(SceneMode::Insert);
    QSignalSpy inserted(&canvas.Scene(), &MainScene::ZoneInserted);
    canvas.Modified() = false;
    const QPointF center = canvas.view.mapToScene(150, 140);
    canvas.Press(center);
    QCOMPARE(inserted.size(), 1);
    QVERIFY(canvas.TakeModified());
    auto* zone = inserted.first().first().value<Zone*>();
    QCOMPARE(canvas.territory->Zones().values(), QList<Zone*>({zone}));
    QCOMPARE(zone->pos(), center);
    QCOMPARE(zone->Radius(), 300.0F);
    QCOMPARE(zone->parentItem(), nullptr);
    QCOMPARE(zone->scene(), &canvas.Scene());
    QCOMPARE(zone->GetTerritory(), canvas.territory);
    QCOMPARE(zone->Color(), canvas.territory->Color());
    QVERIFY(!zone->isSelected());
    canvas.Release(center);
    canvas.DoubleClick(center);
    canvas.Release(center);
    QCOMPARE(inserted.size(), 2);
    zone->SetStaticMax(5);
    QCOMPARE(canvas.type->Totals().staticMax, 5);
    // 300 m on a map of 7.5 m a pixel.
    ProjectSettings::Instance().SetSizes(2000, 1600, 15000, 12000);
    canvas.Press(center);
    QCOMPARE(inserted.last().first().value<Zone*>()->Radius(), 40.0F);
}

void tst_MainScene::InsertsNothingWithoutATerritory()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Insert);
    QSignalSpy inserted(&canvas.Scene(), &MainScene::ZoneInserted);
    canvas.Modified() = false;
    canvas.Click({50, 50});
    QVERIFY(inserted.isEmpty());
    QVERIFY(!canvas.TakeModified());
    QCOMPARE(canvas.Scene().items().size(), 5);
}

void tst_MainScene::SelectsAndMovesZones()
{
    CanvasFixture canvas;
    Zone* first = canvas.AddZone({50, 50});
    Zone* second = canvas.AddZone({120, 100});
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Click({50, 50});
    QCOMPARE(canvas.Scene().selectedItems(), QList<QGraphicsItem*>({first}));
    canvas.Drag({120, 100}, {130, 104});
    QCOMPARE(canvas.Scene().selectedItems(), QList<QGraphicsItem*>({second}));
    QCOMPARE(second->pos(), QPointF(130, 104));
    QCOMPARE(first->pos(), QPointF(50, 50));
    canvas.Click({190, 20});
    QVERIFY(canvas.Scene().selectedItems().isEmpty());
}

void tst_MainScene::IsModifiedWhenADragEndsElsewhere_data()
{
    QTest::addColumn<QString>("drag");
    QTest::addColumn<bool>("isModified");
    QTest::newRow("click") << "click" << false;
    QTest::newRow("move") << "move" << true;
    QTest::newRow("there and back") << "back" << false;
    QTest::newRow("several zones") << "several" << true;
    QTest::newRow("with Ctrl, which does not select") << "ctrl" << true;
    QTest::newRow("double click") << "double" << true;
    QTest::newRow("beside the zones") << "beside" << false;
    QTest::newRow("the mode changes meanwhile") << "mode" << true;
}

void tst_MainScene::IsModifiedWhenADragEndsElsewhere()
{
    QFETCH(QString, drag);
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    Zone* other = canvas.AddZone({120, 100});
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Modified() = false;
    if (drag == "click") {
        canvas.Click({50, 50});
    } else if (drag == "move") {
        canvas.Drag({50, 50}, {51, 50});
    } else if (drag == "back") {
        canvas.Press({50, 50});
        canvas.Move({70, 50});
        canvas.Move({50, 50});
        canvas.Release({50, 50});
    } else if (drag == "several") {
        zone->setSelected(true);
        other->setSelected(true);
        canvas.Drag({50, 50}, {60, 70});
        QCOMPARE(other->pos(), QPointF(130, 120));
    } else if (drag == "ctrl") {
        canvas.Drag({50, 50}, {60, 70}, Qt::ControlModifier);
    } else if (drag == "double") {
        canvas.Click({50, 50});
        canvas.DoubleClick({50, 50});
        canvas.Move({60, 70});
        canvas.Release({60, 70});
    } else if (drag == "beside") {
        canvas.Drag({90, 20}, {95, 25});
    } else {
        canvas.Press({50, 50});
        canvas.Move({60, 70});
        canvas.Scene().ChangeMode(SceneMode::None);
        canvas.Release({60, 70});
    }
    QTEST(canvas.TakeModified(), "isModified");
    QTEST(zone->pos() != QPointF(50, 50), "isModified");
}

void tst_MainScene::AsksForTheTerritoryBeforeItSelects()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    Zone* below = canvas.AddZone({55, 50}, 30);
    zone->BringToFront();
    Zone* selectedBefore = canvas.AddZone({150, 100});
    selectedBefore->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Query);
    canvas.Modified() = false;
    QSignalSpy query(&canvas.view, &MainView::TerritorySelected);
    bool wasSelected = true;
    connect(&canvas.view, &MainView::TerritorySelected, this, [&] {
        wasSelected = zone->isSelected();
        canvas.Scene().clearSelection();
    });
    canvas.Press({50, 50});
    QCOMPARE(query.size(), 1);
    QCOMPARE(query.first().first().value<Territory*>(), canvas.territory);
    QVERIFY(!wasSelected);
    QCOMPARE(canvas.Scene().selectedItems(), QList<QGraphicsItem*>({zone}));
    QVERIFY(!below->isSelected());
    canvas.Release({50, 50});
    canvas.DoubleClick({150, 100});
    QCOMPARE(query.size(), 2);
    QVERIFY(selectedBefore->isSelected());
    QVERIFY(!canvas.TakeModified());
}

void tst_MainScene::SelectsWhatTheAnswerUnlocks()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    canvas.territory->SetZonesEditable(false);
    canvas.Scene().ChangeMode(SceneMode::Query);
    connect(&canvas.view, &MainView::TerritorySelected, this,
            [](Territory* territory) { territory->SetZonesEditable(true); });
    canvas.Click({50, 50});
    QVERIFY(zone->isSelected());
}

void tst_MainScene::StandsAnAnswerThatDestroysTheZone()
{
    CanvasFixture canvas;
    canvas.AddZone({50, 50});
    canvas.Scene().ChangeMode(SceneMode::Query);
    connect(&canvas.view, &MainView::TerritorySelected, this,
            [&canvas](Territory* territory) { canvas.type->RemoveTerritory(territory->Id()); });
    canvas.Click({50, 50});
    QCOMPARE(canvas.Scene().items().size(), 5);
}

void tst_MainScene::QueriesNothingElse()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Query);
    QSignalSpy query(&canvas.view, &MainView::TerritorySelected);
    canvas.Click({20, 20});
    canvas.Scene().addRect(50, 50, 20, 20);
    canvas.Click({60, 60});
    auto* free = new Zone(canvas.territory, 10.0F);
    free->setPos(120, 100);
    canvas.Scene().addItem(free);
    canvas.Click({120, 100});
    QVERIFY(query.isEmpty());
    QVERIFY(canvas.Scene().selectedItems().isEmpty());
}

void tst_MainScene::RemovesTheSelection()
{
    CanvasFixture canvas;
    Zone* kept = canvas.AddZone({20, 20});
    for (int i = 0; i < 3; ++i) {
        Zone* zone = canvas.AddZone({60.0 + i * 40, 50});
        zone->SetStaticMax(10);
        zone->setSelected(true);
    }
    kept->SetStaticMax(1);
    QCOMPARE(canvas.type->Totals().staticMax, 31);
    canvas.Scene().ChangeTerritory(canvas.territory);
    canvas.Modified() = false;
    int zonesAtSignal = -1;
    connect(&canvas.Scene(), &MainScene::ZoneSelected, this,
            [&](const QList<QGraphicsItem*>& items) {
                QVERIFY(items.isEmpty());
                zonesAtSignal = canvas.territory->Zones().size();
            });
    canvas.Scene().RemoveSelection();
    QCOMPARE(zonesAtSignal, 4);
    QVERIFY(canvas.TakeModified());
    QCOMPARE(canvas.territory->Zones().values(), QList<Zone*>({kept}));
    QCOMPARE(canvas.territory->Totals().staticMax, 1);
    QCOMPARE(canvas.type->Totals().staticMax, 1);
    QCOMPARE(canvas.Scene().items().size(), 6);
}

void tst_MainScene::RemovesZonesOfOtherTerritories()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({20, 20});
    zone->setSelected(true);
    canvas.Scene().ChangeTerritory(canvas.type->NewTerritory());
    canvas.Scene().RemoveSelection();
    QVERIFY(canvas.territory->Zones().isEmpty());
    QCOMPARE(canvas.Scene().items().size(), 5);
    canvas.AddZone({20, 20})->setSelected(true);
    canvas.Scene().ChangeTerritory(nullptr);
    canvas.Scene().RemoveSelection();
    QVERIFY(canvas.territory->Zones().isEmpty());
}

void tst_MainScene::RemovesZonesThatTheAnswerDestroys()
{
    CanvasFixture canvas;
    canvas.AddZone({20, 20})->setSelected(true);
    canvas.AddZone({50, 20})->setSelected(true);
    connect(&canvas.Scene(), &MainScene::ZoneSelected, this, [&canvas] {
        if (canvas.territory->Zones().size() == 2) {
            delete canvas.territory->Zones().first();
        }
    });
    canvas.Scene().RemoveSelection();
    QVERIFY(canvas.territory->Zones().isEmpty());
    QCOMPARE(canvas.Scene().items().size(), 5);
}

void tst_MainScene::IsModifiedByRemovingNothing()
{
    CanvasFixture canvas;
    canvas.Modified() = false;
    canvas.Scene().RemoveSelection();
    QVERIFY(canvas.TakeModified());
}

void tst_MainScene::ForgetsWhatIsDestroyed_data()
{
    QTest::addColumn<QString>("order");
    QString order = "LTZ";
    std::sort(order.begin(), order.end());
    do {
        QTest::newRow(qPrintable(order)) << order;
    } while (std::next_permutation(order.begin(), order.end()));
}

/// L is the layer, T the territory, Z a zone.
void tst_MainScene::ForgetsWhatIsDestroyed()
{
    QFETCH(QString, order);
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red, {20, 20, 50, 50});
    canvas.Edit(layer);
    canvas.Scene().AddLayer(layer);
    canvas.Scene().ChangeTerritory(canvas.territory);
    Zone* zone = canvas.AddZone({50, 50});
    bool zoneLives = true;
    zone->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Press({50, 50});
    canvas.Move({60, 50});
    for (const QChar part : order) {
        if (part == 'L') {
            canvas.layers.RemoveLayer(layer->Id());
            QCOMPARE(canvas.Scene().CurrentLayer(), nullptr);
        } else if (part == 'T') {
            canvas.type->RemoveTerritory(canvas.territory->Id());
            zoneLives = false;
            QCOMPARE(canvas.Scene().CurrentTerritory(), nullptr);
        } else if (zoneLives) {
            delete zone;
        }
        for (const SceneMode mode : Modes) {
            canvas.Scene().ChangeMode(mode);
            canvas.Move({70, 60});
            canvas.Release({70, 60});
            canvas.Drag({60, 50}, {62, 51});
            canvas.Click({150, 20}, Qt::RightButton);
        }
        Shown(canvas.Scene(), {200, 160});
        canvas.Scene().ChangeTerritoryColor(Qt::red);
        canvas.Scene().ChangeMode(SceneMode::Select);
    }
    canvas.Scene().RemoveSelection();
    canvas.Scene().ChangeLayer(nullptr);
}

void tst_MainScene::ResizesThePictures()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red, {0, 0, 100, 80});
    canvas.Scene().AddLayer(layer);
    canvas.Scene().ChangeLayer(layer);
    canvas.Scene().ChangeSize(400, 80);
    QCOMPARE(canvas.Scene().sceneRect(), QRectF(0, 0, 400, 80));
    const QImage picture = ItemOf<LayersItem>(canvas, LayersZ)->pixmap().toImage();
    QCOMPARE(picture.size(), QSize(400, 80));
    QCOMPARE(picture.pixel(199, 39), qRgb(255, 0, 0));
    QCOMPARE(picture.pixel(200, 39), 0U);
    QCOMPARE(picture.pixel(199, 40), 0U);
    QCOMPARE(Area(*layer), 8000);
    // A brush move does not wipe the layer with the picture of another size.
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.Drag({20, 20}, {30, 30});
    QCOMPARE(layer->Image().size(), QSize(200, 160));
    QVERIFY(Area(*layer) >= 8000);
    for (int i = 1; i < 20; ++i) {
        canvas.Scene().ChangeSize(i * 7 % 13, i * 5 % 11);
    }
}

void tst_MainScene::StandsSizesOfNothing_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("0 x 0") << QSize(0, 0);
    QTest::newRow("-1 x -1") << QSize(-1, -1);
    QTest::newRow("0 x 10") << QSize(0, 10);
    QTest::newRow("10 x -1") << QSize(10, -1);
}

void tst_MainScene::StandsSizesOfNothing()
{
    QFETCH(QSize, size);
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red, {0, 0, 100, 80});
    canvas.Scene().AddLayer(layer);
    canvas.Scene().ChangeLayer(layer);
    ProjectSettings::Instance().SetSizes(size.width(), size.height(), -1, -1);
    canvas.view.SetSceneSize(size.width(), size.height());
    canvas.Scene().ChangeTerritory(canvas.territory);
    canvas.Scene().ChangeWorldRGBA(Qt::red);
    canvas.Scene().ChangeWorldColor(Qt::red);
    canvas.Scene().ChangeWorldVisibility(true);
    canvas.Scene().AddLayer(layer);
    Layer none(1, 1, &canvas.layers);
    canvas.Scene().AddLayer(&none);
    for (Layer* each : {layer, &none}) {
        canvas.Scene().ChangeLayer(each);
        for (const SceneMode mode : Modes) {
            canvas.Scene().ChangeMode(mode);
            canvas.Drag({20, 20}, {40, 50});
            canvas.Click({20, 20}, Qt::RightButton);
            QTest::keyClick(&canvas.view, Qt::Key_A, Qt::ControlModifier);
        }
        canvas.view.grab();
        Shown(canvas.Scene(), {50, 50});
        canvas.Scene().ClearLayers();
    }
    ProjectSettings::Instance().SetSizes(200, 160, 200, 160);
    canvas.view.SetSceneSize(200, 160);
    canvas.Scene().AddLayer(layer);
    QCOMPARE(ItemOf<LayersItem>(canvas, LayersZ)->pixmap().size(), QSize(200, 160));
}

void tst_MainScene::PansAndRestoresTheMode()
{
    CanvasFixture canvas;
    MainScene& scene = canvas.Scene();
    scene.ChangeMode(SceneMode::Paint);
    scene.EndPan();
    QCOMPARE(scene.Mode(), SceneMode::Paint);
    scene.BeginPan();
    QCOMPARE(scene.Mode(), SceneMode::Pan);
    QVERIFY(!BrushCursor(canvas)->isVisible());
    scene.BeginPan();
    scene.EndPan();
    QCOMPARE(scene.Mode(), SceneMode::Paint);
    QVERIFY(BrushCursor(canvas)->isVisible());
    scene.BeginPan();
    scene.ChangeMode(SceneMode::Insert);
    scene.EndPan();
    QCOMPARE(scene.Mode(), SceneMode::Paint);
}

void tst_MainScene::IsSilentWhenItGoes()
{
    int signalCount = 0;
    {
        CanvasFixture canvas;
        canvas.AddZone({50, 50})->setSelected(true);
        connect(&canvas.Scene(), &MainScene::ZoneSelected, this, [&signalCount] { ++signalCount; });
        signalCount = 0;
    }
    QCOMPARE(signalCount, 0);
}

QTEST_MAIN(tst_MainScene)
#include "tst_MainScene.moc"
