#include "canvas/MainScene.h"

#include "canvas/CurrentLayerItem.h"
#include "canvas/LayersItem.h"
#include "canvas/OverlayItem.h"
#include "canvas/WorldItem.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"
#include "tests/support/LiteralCanvas.h"
#include "tests/support/LogSpy.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Random.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QScrollBar>
#include <QTest>

#include <cmath>

class tst_ScenePictures : public QObject
{
    Q_OBJECT

private slots:
    void PaintsEachPartAsTheWhole();
    void LoadsTheWorldPicture();
    void ScalesTheWorldToTheLayerSize();
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
    void ShowsTheWorldOfAHugeMap();
    void ShowsAndPaintsSmallLayersOfAHugeMap();
    void IgnoresTheColorUntilTheNextLayerChange();
};

void tst_ScenePictures::LoadsTheWorldPicture()
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
    auto* world = ItemOf<WorldItem>(canvas, WorldZ);
    QVERIFY(!world->isVisible());
    const QImage shown = world->pixmap().toImage();
    QCOMPARE(shown.size(), QSize(6, 4));
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 6; ++x) {
            const bool isRed = x / 2 == 1 && y / 2 == 1;
            QCOMPARE(shown.pixelColor(x, y), QColor(isRed ? Qt::red : Qt::blue));
        }
    }
    const QImage overlay = PictureOf(*canvas.ItemAt(OverlayZ));
    QCOMPARE(overlay.size(), QSize(6, 4));
    QCOMPARE(overlay.pixelColor(5, 3), QColor(0, 255, 0));
}

/// The project's sizes may already differ from those of the scene.
void tst_ScenePictures::ScalesTheWorldToTheLayerSize()
{
    CanvasFixture canvas({6, 4});
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    const QString path = canvas.project.Path("world.png");
    QVERIFY(picture.save(path));
    canvas.Scene().ChangeWorldRGBA(Qt::green);
    ProjectSettings::Instance().SetSizes(8, 5, 100, 100);
    canvas.Scene().ChangeWorld(path);
    QCOMPARE(canvas.Scene().sceneRect(), QRectF(0, 0, 6, 4));
    QCOMPARE(ItemOf<WorldItem>(canvas, WorldZ)->pixmap().size(), QSize(8, 5));
    const auto* overlay = ItemOf<OverlayItem>(canvas, OverlayZ);
    QCOMPARE(overlay->boundingRect(), QRectF(0, 0, 8, 5));
}

void tst_ScenePictures::KeepsTheWorldPictureWhenAnotherCannotBeLoaded()
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
    const auto* world = ItemOf<WorldItem>(canvas, WorldZ);
    QCOMPARE(world->pixmap().toImage().pixelColor(2, 2), QColor(Qt::blue));
}

void tst_ScenePictures::KeepsTheWorldPictureWhenAnotherCannotBeScaled_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("0x0") << QSize(0, 0);
    QTest::newRow("-1x-1") << QSize(-1, -1);
    QTest::newRow("5x0") << QSize(5, 0);
    QTest::newRow("1000000x1000000") << QSize(1000000, 1000000);
}

void tst_ScenePictures::KeepsTheWorldPictureWhenAnotherCannotBeScaled()
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
    QCOMPARE(ItemOf<WorldItem>(canvas, WorldZ)->pixmap().size(), QSize(6, 4));
}

void tst_ScenePictures::OverlaysOpaqueColorsAtTheirOpacity()
{
    CanvasFixture canvas;
    ProjectSettings::Instance().SetBackgroundColor(QColor(1, 2, 3, 4));
    auto* overlay = ItemOf<OverlayItem>(canvas, OverlayZ);
    const QColor color(10, 20, 30, 77);
    canvas.Scene().ChangeWorldRGBA(color);
    const QImage picture = PictureOf(*overlay);
    QCOMPARE(picture.size(), QSize(200, 160));
    QCOMPARE(picture.pixel(199, 159), qRgb(10, 20, 30));
    QCOMPARE(overlay->opacity(), color.alphaF());
    QCOMPARE(ProjectSettings::Instance().BackgroundColor(), QColor(1, 2, 3, 4));
}

void tst_ScenePictures::OverlaysColorsWithTheirAlpha()
{
    CanvasFixture canvas;
    ProjectSettings::Instance().SetBackgroundColor(QColor(1, 2, 3, 4));
    auto* overlay = ItemOf<OverlayItem>(canvas, OverlayZ);
    overlay->setOpacity(0.25);
    canvas.Scene().ChangeWorldColor(QColor(200, 100, 50, 128));
    QCOMPARE(ProjectSettings::Instance().BackgroundColor(), QColor(200, 100, 50, 4));
    const QImage picture = PictureOf(*overlay);
    QCOMPARE(picture.size(), QSize(200, 160));
    QCOMPARE(qAlpha(picture.pixel(3, 3)), 128);
    QCOMPARE(overlay->opacity(), 0.25);
}

void tst_ScenePictures::SetsTheOverlaysOpacity()
{
    CanvasFixture canvas;
    ProjectSettings::Instance().SetBackgroundColor(QColor(1, 2, 3, 4));
    canvas.Scene().ChangeWorldColor(Qt::red);
    canvas.Scene().ChangeWorldAlpha(99, 0.75F);
    QCOMPARE(ProjectSettings::Instance().BackgroundColor(), QColor(255, 0, 0, 99));
    auto* overlay = ItemOf<OverlayItem>(canvas, OverlayZ);
    QCOMPARE(overlay->opacity(), 0.75);
    QCOMPARE(PictureOf(*overlay).pixel(0, 0), qRgb(255, 0, 0));
}

void tst_ScenePictures::ShowsAndHidesTheWorld()
{
    CanvasFixture canvas;
    for (const bool isVisible : {true, false, true}) {
        canvas.Scene().ChangeWorldVisibility(isVisible);
        for (const qreal z : {WorldZ, OverlayZ, LayersZ, CurrentZ}) {
            QCOMPARE(canvas.ItemAt(z)->isVisible(), isVisible || z > OverlayZ);
        }
    }
}

void tst_ScenePictures::OverlayLooksLikeAPicture()
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

void tst_ScenePictures::ShowsTheFirstAddedLayerOnTop()
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

void tst_ScenePictures::ShowsLayersAtTheirOpacity()
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

void tst_ScenePictures::ShowsTheEditedLayerAtItsOpacity()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(QColor(10, 200, 30, 128), {20, 20, 50, 50});
    canvas.Scene().ChangeLayer(layer);
    auto* current = ItemOf<CurrentLayerItem>(canvas, CurrentZ);
    QCOMPARE(canvas.Scene().CurrentLayer(), layer);
    QCOMPARE(current->opacity(), static_cast<qreal>(128.0F / 255.0F));
    QCOMPARE(PictureOf(*current), layer->Pixmap().toImage());
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

void tst_ScenePictures::HidesTheEditedLayer()
{
    CanvasFixture canvas;
    Layer* layer = canvas.AddLayer(Qt::red, {20, 20, 50, 50});
    canvas.Scene().ChangeLayer(layer);
    canvas.Scene().ClearCurrent();
    auto* current = ItemOf<CurrentLayerItem>(canvas, CurrentZ);
    QCOMPARE(current->opacity(), 0.0);
    QCOMPARE(PictureOf(*current), layer->Pixmap().toImage());
    QCOMPARE(canvas.Scene().CurrentLayer(), layer);
    QCOMPARE(Shown(canvas.Scene(), {200, 160}).pixelColor(30, 30), QColor(Qt::white));
}

/// A file of few bytes may say that its layers are huge.
void tst_ScenePictures::ShowsTheWorldOfAHugeMap()
{
    CanvasFixture canvas;
    QImage picture(6, 4, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    const QString path = canvas.project.Path("world.png");
    QVERIFY(picture.save(path));
    const MemoryLimit limit(64 * AMebibyte);
    for (const int side : {16384, 30000, 60000}) {
        ProjectSettings::Instance().SetSizes(side, side, side, side);
        canvas.view.SetSceneSize(side, side);
        LogSpy log;
        canvas.Scene().ChangeWorld(path);
        canvas.Scene().ChangeWorldVisibility(true);
        QVERIFY(log.Messages().isEmpty());
        QCOMPARE(canvas.ItemAt(WorldZ)->boundingRect(), QRectF(0, 0, side, side));
        const QImage shown = canvas.view.viewport()->grab().toImage();
        QCOMPARE(shown.pixelColor(canvas.view.viewport()->rect().center()), QColor(Qt::blue));
    }
}

void tst_ScenePictures::ShowsAndPaintsSmallLayersOfAHugeMap()
{
    CanvasFixture canvas;
    Layer* below = canvas.AddLayer(Qt::blue, {100, 20, 40, 40});
    Layer* current = canvas.AddLayer(Qt::red, {20, 20, 40, 40});
    const MemoryLimit limit(64 << 20);
    for (const int side : {30000, 1000000}) {
        ProjectSettings::Instance().SetSizes(side, side, side, side);
        canvas.view.SetSceneSize(side, side);
        canvas.Scene().ClearLayers();
        canvas.Scene().AddLayer(below);
        canvas.Edit(current);
        canvas.view.horizontalScrollBar()->setValue(0);
        canvas.view.verticalScrollBar()->setValue(0);
        canvas.Click({80, 40});
        canvas.Click({180, 180});
        canvas.Scene().ChangeMode(SceneMode::None);
        const QImage shown = canvas.view.viewport()->grab().toImage();
        QCOMPARE(shown.pixelColor(canvas.At({30, 30})), QColor(Qt::red));
        QCOMPARE(shown.pixelColor(canvas.At({80, 40})), QColor(Qt::red));
        QCOMPARE(shown.pixelColor(canvas.At({120, 30})), QColor(Qt::blue));
        QCOMPARE(shown.pixelColor(canvas.At({180, 180})), QColor(Qt::white));
        QCOMPARE(current->Image().size(), QSize(200, 160));
        canvas.Scene().ChangeLayer(nullptr);
    }
}

void tst_ScenePictures::IgnoresTheColorUntilTheNextLayerChange()
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

/// Scrolling exposes strips at the edges, and items that change expose other parts.
void tst_ScenePictures::PaintsEachPartAsTheWhole()
{
    CanvasFixture canvas({1000, 900});
    Random random;
    canvas.territory->SetRgba(0x80FF8040U);
    canvas.territory->SetVisible(true);
    for (int i = 0; i < 200; ++i) {
        canvas.AddZone({random.Below(9000) / 9.0, random.Below(9000) / 10.0}, 20);
    }
    canvas.territory->SetRgba(0x80FF8040U);
    canvas.Edit(canvas.AddLayer(QColor(9, 200, 3, 100), {30, 40, 800, 700}));
    QWidget& viewport = *canvas.view.viewport();
    for (const double zoom : {0.5, 1.0, 2.0}) {
        canvas.view.setTransform(QTransform::fromScale(zoom, zoom));
        for (int round = 0; round < 30; ++round) {
            canvas.view.centerOn(random.Below(1000), random.Below(900));
            QImage whole(viewport.size(), QImage::Format_RGB32);
            viewport.render(&whole);
            const QPoint corner(random.Below(200), random.Below(200));
            // What was not scrolled into place.
            QRegion exposed = QRegion(viewport.rect()) - viewport.rect().translated(corner);
            for (int rects = random.Below(5); rects > 0; --rects) {
                exposed |= QRect(random.Below(300), random.Below(300), 40, 30);
            }
            QImage expected(viewport.size(), QImage::Format_RGB32);
            expected.fill(Qt::magenta);
            QImage painted = expected;
            QPainter painter(&expected);
            painter.setClipRegion(exposed);
            painter.drawImage(0, 0, whole);
            painter.end();
            viewport.render(&painted, exposed.boundingRect().topLeft(), exposed);
            QVERIFY(painted == expected);
        }
    }
}

QTEST_MAIN(tst_ScenePictures)
#include "tst_ScenePictures.moc"
