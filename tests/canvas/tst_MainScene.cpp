#include "canvas/MainScene.h"

#include "canvas/CurrentLayerItem.h"
#include "canvas/LayersItem.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"

#include <QMetaMethod>
#include <QTest>

#include <algorithm>

class tst_MainScene : public QObject
{
    Q_OBJECT

private slots:
    void HasItsSignalsAndSlotsInOrder();
    void HasItsItems();
    void ShowsTheBrushCursorUntilTheFirstMode();
    void StandsNoLayer();
    void ForgetsWhatIsDestroyed_data();
    void ForgetsWhatIsDestroyed();
    void ResizesThePictures();
    void StandsSizesOfNothing_data();
    void StandsSizesOfNothing();
    void PansAndRestoresTheMode();
    void IsSilentWhenItGoes();
};

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

void tst_MainScene::ShowsTheBrushCursorUntilTheFirstMode()
{
    const MainView view;
    const QList<QGraphicsItem*> items = view.Scene()->items(Qt::DescendingOrder);
    QCOMPARE(items.first()->zValue(), BrushZ);
    QVERIFY(items.first()->isVisible());
    view.Scene()->ChangeMode(SceneMode::None);
    QVERIFY(!items.first()->isVisible());
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

void tst_MainScene::ForgetsWhatIsDestroyed_data()
{
    QTest::addColumn<QString>("order");
    QString order = "LTZ";
    std::sort(order.begin(), order.end());
    do {
        QTest::newRow(qPrintable(order)) << order;
    } while (std::next_permutation(order.begin(), order.end()));
}

/// In the texts, L is the layer, T the territory and Z a zone.
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
    QCOMPARE(canvas.Scene().CurrentLayer(), layer);
    canvas.Scene().ChangeSize(400, 80);
    QCOMPARE(canvas.Scene().sceneRect(), QRectF(0, 0, 400, 80));
    QCOMPARE(canvas.Scene().CurrentLayer(), nullptr);
    const QImage picture = ItemOf<LayersItem>(canvas, LayersZ)->pixmap().toImage();
    QCOMPARE(picture.size(), QSize(400, 80));
    QCOMPARE(picture.pixel(199, 39), qRgb(255, 0, 0));
    QCOMPARE(picture.pixel(200, 39), 0U);
    QCOMPARE(picture.pixel(199, 40), 0U);
    QCOMPARE(Area(*layer), 8000);
    // A brush move must not overwrite the layer with a picture of another size.
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
    QCOMPARE(canvas.view.dragMode(), QGraphicsView::ScrollHandDrag);
    scene.BeginPan();
    scene.EndPan();
    QCOMPARE(scene.Mode(), SceneMode::Paint);
    QVERIFY(BrushCursor(canvas)->isVisible());
    // The same if the window ends panning while the key is still held.
    QCOMPARE(canvas.view.dragMode(), QGraphicsView::NoDrag);
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
