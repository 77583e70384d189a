#include "canvas/LayersItem.h"

#include "layers/raster/Mask.h"
#include "tests/support/LiteralCanvas.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Random.h"

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QStyleOptionGraphicsItem>
#include <QTest>

#include <algorithm>
#include <functional>
#include <limits>

namespace {

constexpr double Ratios[] = {1, 1.25, 2};

/// The result of a paint function on a screen of some density, on a background that is not empty.
QImage Shown(const std::function<void(QPainter&)>& paint, double ratio, const QTransform& transform,
             QSize size = {150, 110})
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(QColor(90, 20, 30));
    QPainter painter(&image);
    painter.setTransform(transform);
    paint(painter);
    return image;
}

QImage ShownItem(LayersItem& item, double ratio, const QTransform& transform)
{
    const auto paint = [&item](QPainter& painter) {
        QStyleOptionGraphicsItem option;
        const QRectF device(0, 0, painter.device()->width(), painter.device()->height());
        option.exposedRect = painter.deviceTransform().inverted().mapRect(device);
        option.exposedRect &= item.boundingRect();
        item.paint(&painter, &option, nullptr);
    };
    return Shown(paint, ratio, transform);
}

QImage ShownPicture(const QImage& picture, double ratio, const QTransform& transform)
{
    const QPixmap pixmap = QPixmap::fromImage(picture);
    return Shown([&](QPainter& painter) { painter.drawPixmap(0, 0, pixmap); }, ratio, transform);
}

QVector<literal::ShownLayer> RandomLayers(Random& random, QSize size, int count)
{
    QVector<literal::ShownLayer> layers;
    for (int i = 0; i < count; ++i) {
        const auto opacity = static_cast<float>(random.Below(256)) / 255.0F;
        layers.append({RandomMask(random, size), random.Bits() | 0xFF000000U, opacity});
    }
    return layers;
}

void AddTo(LayersItem& item, const QVector<literal::ShownLayer>& layers)
{
    for (const literal::ShownLayer& layer : layers) {
        item.Add(layer.mask, layer.rgb, static_cast<qreal>(layer.opacity));
    }
}

/// Opaque pixmaps have another format.
QImage Premultiplied(const QPixmap& pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage MaskOf(QSize size, int index)
{
    QImage mask = raster::BlankMask(size);
    mask.fill(index);
    return mask;
}

/// A view that is not in its window's corner, as in the editor.
struct Window
{
    explicit Window(QGraphicsScene& scene)
        : view(&scene, &widget)
    {
        widget.resize(340, 280);
        view.setGeometry(21, 33, 300, 230);
        widget.show();
    }

    /// The content of the screen.
    QImage Screen()
    {
        QCoreApplication::processEvents();
        return widget.screen()->grabWindow(widget.winId()).toImage();
    }

    QWidget widget;
    QGraphicsView view;
};

} // namespace

class tst_LayersItem : public QObject
{
    Q_OBJECT

private slots:
    void ShowsMasksThatChangedInPlace();
    void LooksLikeTheWholePicture_data();
    void LooksLikeTheWholePicture();
    void LooksLikeTheWholePictureInAPartOfTheScreen();
    void LooksLikeTheWholePictureInAWindow();
    void TakesTheOpacityOfThePainter();
    void HasTheColorsOfThePictureAtAllOpacities();
    void ShowsTheFirstOnTop();
    void ShowsOnlySetPixels();
    void TurnsWithTheView_data();
    void TurnsWithTheView();
    void ChangesAtOnce();
    void ScalesToANewSize_data();
    void ScalesToANewSize();
    void StandsSizesOfNothing_data();
    void StandsSizesOfNothing();
    void DrawsMasksOfOtherSizesAtTheCorner();
    void TakesNoMemoryForWhatLiesBeyondAMask();
    void StandsSizesWithoutEnd();
    void HasTheBoundsOfThePicture();
    void KeepsNoHoldOnMasksOnceCleared();
};

void tst_LayersItem::LooksLikeTheWholePicture_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("137 x 91") << QSize(137, 91);
    QTest::newRow("61 x 300") << QSize(61, 300);
    QTest::newRow("700 x 13") << QSize(700, 13);
    QTest::newRow("1 x 1") << QSize(1, 1);
    QTest::newRow("64 x 128") << QSize(64, 128);
}

void tst_LayersItem::LooksLikeTheWholePicture()
{
    QFETCH(QSize, size);
    Random random;
    const QVector<literal::ShownLayer> layers = RandomLayers(random, size, 3);
    LayersItem item(size);
    AddTo(item, layers);
    const QImage picture = literal::Compose(layers, size);
    for (int quarters = 1; quarters <= 50; ++quarters) {
        const double zoom = quarters * 0.25;
        for (const double ratio : Ratios) {
            for (int i = 0; i < 4; ++i) {
                // Scroll bars move by whole pixels.
                const int x = random.Between(-int(size.width() * zoom), 60);
                const int y = random.Between(-int(size.height() * zoom), 60);
                const QTransform transform(zoom, 0, 0, zoom, x, y);
                const QByteArray where = QString("zoom %1, ratio %2, at %3, %4")
                                             .arg(zoom)
                                             .arg(ratio)
                                             .arg(x)
                                             .arg(y)
                                             .toLatin1();
                QVERIFY2(ShownItem(item, ratio, transform) ==
                             ShownPicture(picture, ratio, transform),
                         where.constData());
            }
        }
    }
}

void tst_LayersItem::LooksLikeTheWholePictureInAPartOfTheScreen()
{
    Random random;
    const QSize size(137, 91);
    const QVector<literal::ShownLayer> layers = RandomLayers(random, size, 3);
    LayersItem item(size);
    AddTo(item, layers);
    const QImage picture = literal::Compose(layers, size);
    for (int i = 0; i < 300; ++i) {
        const double zoom = 0.25 * random.Between(1, 50);
        const QTransform transform(zoom, 0, 0, zoom, random.Between(-300, 60),
                                   random.Between(-300, 60));
        // Multiples of four are whole device pixels at every density.
        QRegion region(random.Below(20) * 4, random.Below(20) * 4, 40, 28);
        region += QRect(random.Below(20) * 4, random.Below(20) * 4, 32, 48);
        const auto exposed = [&](QPainter& painter) {
            painter.setTransform({});
            painter.setClipRegion(region);
            painter.setTransform(transform);
            QStyleOptionGraphicsItem option;
            option.exposedRect = transform.inverted().mapRect(QRectF(region.boundingRect()));
            item.paint(&painter, &option, nullptr);
        };
        const double ratio = Ratios[i % 3];
        QImage expected = Shown([](QPainter&) {}, ratio, transform);
        expected.setDevicePixelRatio(1);
        QPainter painter(&expected);
        QImage whole = ShownPicture(picture, ratio, transform);
        whole.setDevicePixelRatio(1);
        for (const QRect& rect : region) {
            const QRect device(rect.topLeft() * ratio, rect.size() * ratio);
            painter.drawImage(device.topLeft(), whole, device);
        }
        painter.end();
        expected.setDevicePixelRatio(ratio);
        QCOMPARE(Shown(exposed, ratio, transform), expected);
    }
}

void tst_LayersItem::LooksLikeTheWholePictureInAWindow()
{
    Random random;
    const QSize size(531, 387);
    const QVector<literal::ShownLayer> layers = RandomLayers(random, size, 4);
    QGraphicsScene scene(QRectF(QPointF(), size));
    QGraphicsScene literalScene(scene.sceneRect());
    auto* item = new LayersItem(size);
    AddTo(*item, layers);
    scene.addItem(item);
    literalScene.addPixmap(QPixmap::fromImage(literal::Compose(layers, size)));
    Window window(scene);
    Window literalWindow(literalScene);
    QVERIFY(QTest::qWaitForWindowExposed(&literalWindow.widget));
    for (const double zoom : {0.25, 0.5, 1.0, 1.75, 4.0, 12.5}) {
        for (Window* each : {&window, &literalWindow}) {
            each->view.setTransform(QTransform::fromScale(zoom, zoom));
            each->view.centerOn(100, 200);
        }
        QCOMPARE(window.Screen(), literalWindow.Screen());
        for (int i = 0; i < 5; ++i) {
            const QPoint step(random.Between(-40, 40), random.Between(-40, 40));
            for (Window* each : {&window, &literalWindow}) {
                QScrollBar* horizontal = each->view.horizontalScrollBar();
                QScrollBar* vertical = each->view.verticalScrollBar();
                horizontal->setValue(horizontal->value() + step.x());
                vertical->setValue(vertical->value() + step.y());
            }
            QCOMPARE(window.Screen(), literalWindow.Screen());
        }
        for (const double ratio : Ratios) {
            QImage image(window.widget.size() * ratio, QImage::Format_ARGB32_Premultiplied);
            image.setDevicePixelRatio(ratio);
            QImage literalImage = image;
            window.widget.render(&image);
            literalWindow.widget.render(&literalImage);
            QCOMPARE(image, literalImage);
        }
    }
}

void tst_LayersItem::TakesTheOpacityOfThePainter()
{
    Random random;
    const QVector<literal::ShownLayer> layers = RandomLayers(random, {80, 60}, 2);
    LayersItem item({80, 60});
    AddTo(item, layers);
    const QPixmap pixmap = QPixmap::fromImage(literal::Compose(layers, {80, 60}));
    QStyleOptionGraphicsItem option;
    option.exposedRect = item.boundingRect();
    const QTransform transform(1.5, 0, 0, 1.5, 3, 4);
    for (const double opacity : {0.0, 0.3, 0.5, 1.0}) {
        const auto ours = [&](QPainter& painter) {
            painter.setOpacity(opacity);
            item.paint(&painter, &option, nullptr);
            QCOMPARE(painter.opacity(), opacity);
            QCOMPARE(painter.transform(), transform);
        };
        const auto theirs = [&](QPainter& painter) {
            painter.setOpacity(opacity);
            painter.drawPixmap(0, 0, pixmap);
        };
        QCOMPARE(Shown(ours, 1, transform), Shown(theirs, 1, transform));
    }
}

void tst_LayersItem::HasTheColorsOfThePictureAtAllOpacities()
{
    Random random;
    const QSize size(9, 7);
    for (int alpha = 0; alpha <= 255; ++alpha) {
        QVector<literal::ShownLayer> layers = RandomLayers(random, size, 3);
        layers[random.Below(3)].opacity = static_cast<float>(alpha) / 255.0F;
        layers[random.Below(3)].mask = MaskOf(size, raster::MaskSet);
        LayersItem item(size);
        AddTo(item, layers);
        QCOMPARE(Premultiplied(item.pixmap()), literal::Compose(layers, size));
    }
}

void tst_LayersItem::ShowsTheFirstOnTop()
{
    LayersItem item({2, 1});
    item.Add(MaskFromArt({"#."}), qRgb(255, 0, 0), 1);
    item.Add(MaskFromArt({"##"}), qRgb(0, 255, 0), 1);
    const QImage picture = item.pixmap().toImage();
    QCOMPARE(picture.pixel(0, 0), qRgb(255, 0, 0));
    QCOMPARE(picture.pixel(1, 0), qRgb(0, 255, 0));
}

void tst_LayersItem::ShowsOnlySetPixels()
{
    LayersItem item({256, 1});
    QImage mask = raster::BlankMask({256, 1});
    for (int x = 0; x < 256; ++x) {
        mask.scanLine(0)[x] = static_cast<uchar>(x);
    }
    item.Add(mask, qRgb(0, 255, 0), 1);
    const QImage picture = item.pixmap().toImage();
    for (int x = 0; x < 256; ++x) {
        QCOMPARE(picture.pixel(x, 0), x == 255 ? qRgb(0, 255, 0) : 0U);
    }
}

void tst_LayersItem::TurnsWithTheView_data()
{
    QTest::addColumn<QTransform>("transform");
    QTest::newRow("30 degrees") << QTransform().rotate(30);
    QTest::newRow("90 degrees") << QTransform(0, 1, -1, 0, 100, 5);
    QTest::newRow("180 degrees") << QTransform(-1, 0, 0, -1, 100, 80);
    QTest::newRow("mirrored") << QTransform(-2, 0, 0, 2, 120, -5);
    QTest::newRow("sheared") << QTransform(1, 0.5, 0, 1, 3, 4);
    QTest::newRow("in perspective") << QTransform(1, 0, 0.001, 0, 1, 0.002, 0, 0, 1);
    QTest::newRow("squeezed") << QTransform::fromScale(0.3, 2.7);
}

void tst_LayersItem::TurnsWithTheView()
{
    QFETCH(QTransform, transform);
    Random random;
    const QSize size(83, 59);
    const QVector<literal::ShownLayer> layers = RandomLayers(random, size, 3);
    LayersItem item(size);
    AddTo(item, layers);
    const QImage picture = literal::Compose(layers, size);
    for (const double ratio : Ratios) {
        QCOMPARE(ShownItem(item, ratio, transform), ShownPicture(picture, ratio, transform));
    }
}

void tst_LayersItem::ChangesAtOnce()
{
    Random random;
    const QSize size(83, 59);
    QVector<literal::ShownLayer> layers = RandomLayers(random, size, 1);
    const QTransform transform = QTransform::fromScale(1.75, 1.75);
    LayersItem item(size);
    AddTo(item, layers);
    QCOMPARE(ShownItem(item, 1, transform),
             ShownPicture(literal::Compose(layers, size), 1, transform));
    layers += RandomLayers(random, size, 1);
    AddTo(item, layers.mid(1));
    QCOMPARE(ShownItem(item, 1, transform),
             ShownPicture(literal::Compose(layers, size), 1, transform));
    item.Clear();
    QCOMPARE(ShownItem(item, 1, transform), ShownPicture(literal::Compose({}, size), 1, transform));
    layers = RandomLayers(random, size, 1);
    AddTo(item, layers);
    QCOMPARE(ShownItem(item, 1, transform),
             ShownPicture(literal::Compose(layers, size), 1, transform));
}

void tst_LayersItem::ScalesToANewSize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("same") << QSize(83, 59);
    QTest::newRow("twice") << QSize(166, 118);
    QTest::newRow("half") << QSize(41, 29);
    QTest::newRow("wider") << QSize(200, 17);
    QTest::newRow("one pixel") << QSize(1, 1);
}

void tst_LayersItem::ScalesToANewSize()
{
    QFETCH(QSize, size);
    Random random;
    const QVector<literal::ShownLayer> layers = RandomLayers(random, {83, 59}, 3);
    LayersItem item({83, 59});
    AddTo(item, layers);
    item.SetSize(size);
    const QPixmap before = QPixmap::fromImage(literal::Compose(layers, {83, 59}));
    const QPixmap scaled = before.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    QCOMPARE(Premultiplied(item.pixmap()), Premultiplied(scaled));
    QCOMPARE(item.boundingRect(), QRectF(QPointF(), size));
}

void tst_LayersItem::StandsSizesOfNothing_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("0 x 0") << QSize(0, 0);
    QTest::newRow("-1 x -1") << QSize(-1, -1);
    QTest::newRow("5 x 0") << QSize(5, 0);
    QTest::newRow("-1 x 5") << QSize(-1, 5);
}

void tst_LayersItem::StandsSizesOfNothing()
{
    QFETCH(QSize, size);
    LayersItem item({4, 4});
    item.Add(MaskOf({4, 4}, raster::MaskSet), qRgb(255, 0, 0), 1);
    const QImage nothing = ShownPicture({}, 1, {});
    item.SetSize(size);
    QVERIFY(item.boundingRect().isEmpty());
    QVERIFY(item.boundingRect().isNull());
    QVERIFY(item.pixmap().isNull());
    QCOMPARE(ShownItem(item, 1, {}), nothing);
    item.Add(MaskOf({4, 4}, raster::MaskSet), qRgb(255, 0, 0), 1);
    item.Add({}, qRgb(255, 0, 0), 1);
    QCOMPARE(ShownItem(item, 1, {}), nothing);
    item.SetSize({4, 4});
    QCOMPARE(ShownItem(item, 1, {}), nothing);
    item.Add(MaskOf({4, 4}, raster::MaskSet), qRgb(255, 0, 0), 1);
    QVERIFY(ShownItem(item, 1, {}) != nothing);
    const LayersItem madeOfNothing(size);
    QVERIFY(madeOfNothing.pixmap().isNull());
}

void tst_LayersItem::DrawsMasksOfOtherSizesAtTheCorner()
{
    const QSize size(40, 30);
    QVector<literal::ShownLayer> layers;
    for (const QSize other : {QSize(25, 50), QSize(60, 7), QSize(1, 1), QSize(100, 100)}) {
        layers.append({MaskOf(other, raster::MaskSet), qRgb(other.width(), 200, 3), 0.5F});
    }
    LayersItem item(size);
    AddTo(item, layers);
    item.Add({}, qRgb(255, 0, 0), 1);
    const QImage picture = literal::Compose(layers, size);
    QCOMPARE(Premultiplied(item.pixmap()), picture);
    const QTransform transform = QTransform::fromScale(2.5, 2.5);
    QCOMPARE(ShownItem(item, 1, transform), ShownPicture(picture, 1, transform));
    item.SetSize({20, 60});
    const QImage scaled = picture.scaled(20, 60, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    QCOMPARE(Premultiplied(item.pixmap()), scaled);
}

void tst_LayersItem::TakesNoMemoryForWhatLiesBeyondAMask()
{
    const QImage mask = MaskOf({30, 20}, raster::MaskSet);
    const QTransform zoom = QTransform::fromScale(2.5, 2.5);
    for (const QSize size : {QSize(30000, 30000), QSize(65535, 40000), QSize(20000000, 50)}) {
        const MemoryLimit limit(64 << 20);
        LayersItem item(size);
        for (int i = 0; i < 32; ++i) {
            item.Add(mask, qRgb(255, i, 0), 0.5);
        }
        QVector<literal::ShownLayer> layers;
        for (int i = 0; i < 32; ++i) {
            layers.append({mask, qRgb(255, i, 0), 0.5F});
        }
        const QImage picture = literal::Compose(layers, mask.size());
        QCOMPARE(ShownItem(item, 1, {}), ShownPicture(picture, 1, {}));
        QCOMPARE(ShownItem(item, 1, zoom), ShownPicture(picture, 1, zoom));
    }
}

void tst_LayersItem::StandsSizesWithoutEnd()
{
    constexpr int endless = std::numeric_limits<int>::max();
    LayersItem item({4, 4});
    item.Add(MaskOf({4, 4}, raster::MaskSet), qRgb(255, 0, 0), 1);
    item.SetSize({endless, endless});
    QVERIFY(item.pixmap().isNull());
    item.Add(MaskOf({4, 4}, raster::MaskSet), qRgb(255, 0, 0), 1);
    LayersItem small({4, 4});
    small.Add(MaskOf({4, 4}, raster::MaskSet), qRgb(255, 0, 0), 1);
    QCOMPARE(ShownItem(item, 1, {}), ShownItem(small, 1, {}));
}

void tst_LayersItem::HasTheBoundsOfThePicture()
{
    const LayersItem item({31, 17});
    const QGraphicsPixmapItem literalItem(QPixmap(31, 17));
    QCOMPARE(item.boundingRect(), literalItem.boundingRect());
    QCOMPARE(item.shapeMode(), QGraphicsPixmapItem::BoundingRectShape);
    QCOMPARE(item.shape().boundingRect(), QRectF(0, 0, 31, 17));
    QVERIFY(item.contains({30.5, 16.5}));
    QVERIFY(!item.contains({31.5, 16.5}));
}

void tst_LayersItem::KeepsNoHoldOnMasksOnceCleared()
{
    QImage mask = raster::BlankMask({64, 64});
    const uchar* pixels = mask.constBits();
    LayersItem item({64, 64});
    item.Add(mask, qRgb(255, 0, 0), 1);
    item.Clear();
    QVERIFY(mask.bits() == pixels);
}

void tst_LayersItem::ShowsMasksThatChangedInPlace()
{
    Random random;
    for (int i = 0; i < 60; ++i) {
        const QSize size(1 + random.Below(400), 1 + random.Below(300));
        QVector<literal::ShownLayer> layers = RandomLayers(random, size, 3);
        LayersItem item(size);
        for (int id = 0; id < layers.size(); ++id) {
            const literal::ShownLayer& layer = layers.at(id);
            item.Add(layer.mask, layer.rgb, static_cast<qreal>(layer.opacity), id);
        }
        const double ratio = Ratios[random.Below(3)];
        const double scale = 0.2 + random.Below(30) / 10.0;
        QTransform transform = QTransform::fromTranslate(-random.Below(50), -random.Below(50));
        transform.scale(scale, scale);
        ShownItem(item, ratio, transform);

        const int id = random.Below(3);
        QImage& mask = layers[id].mask;
        item.Release(id);
        const QRect rect = QRect(random.Below(size.width()), random.Below(size.height()),
                                 1 + random.Below(60), 1 + random.Below(60)) &
                           mask.rect();
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            std::fill_n(mask.scanLine(y) + rect.left(), rect.width(), raster::MaskSet);
        }
        QVERIFY(item.Replace(id, mask, rect));

        LayersItem other(size);
        AddTo(other, layers);
        QCOMPARE(ShownItem(item, ratio, transform), ShownItem(other, ratio, transform));
    }
    LayersItem item(QSize(5, 5));
    QVERIFY(!item.Replace(7, raster::BlankMask({5, 5}), {0, 0, 1, 1}));
}

QTEST_MAIN(tst_LayersItem)
#include "tst_LayersItem.moc"
