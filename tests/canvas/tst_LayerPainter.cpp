#include "canvas/LayerPainter.h"

#include "document/Brush.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "tests/support/LiteralCanvas.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Random.h"

#include <QPainter>
#include <QTest>
#include <QWidget>

#include <limits>
#include <memory>

namespace {

QImage Painted(const LayerPainter& painter, const QTransform& transform)
{
    QImage image(120, 90, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(10, 20, 30, 40));
    QPainter target(&image);
    target.setOpacity(0.4);
    target.setTransform(transform);
    painter.Paint(target, transform.inverted().mapRect(QRectF(image.rect())));
    return image;
}

QImage PaintedLiterally(const QImage& picture, const QTransform& transform)
{
    QImage image(120, 90, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(10, 20, 30, 40));
    QPainter target(&image);
    target.setOpacity(0.4);
    target.setTransform(transform);
    target.drawPixmap(0, 0, QPixmap::fromImage(picture));
    return image;
}

} // namespace

class tst_LayerPainter : public QObject
{
    Q_OBJECT

private slots:
    void NeverMovesTheImageDuringAStroke_data();
    void NeverMovesTheImageDuringAStroke();
    void MovesTheImageOnceForOtherValues();
    void LeavesTheLayerAloneUntilTheFirstStep();
    void ConvertsTheWholeImageAlsoForAMoveWithoutAButton();
    void BringsBackWhatAnotherColorHid();
    void OverwritesAnImageThatWasReplaced();
    void WipesNothingAtALayerChange();
    void KeepsThePictureOfALayerInNoList();
    void ForgetsADestroyedLayer();
    void StandsLayersWithoutAnImage();
    void StandsPositionsThatAreNoNumbers();
    void KeepsTheMaskWithoutMemory_data();
    void KeepsTheMaskWithoutMemory();
    void HandsOverLaterWhatFoundNoMemory();
    void ShowsThePicture_data();
    void ShowsThePicture();

private:
    /// Layers have colours only while there is a window.
    QWidget m_window;
};

void tst_LayerPainter::NeverMovesTheImageDuringAStroke_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("300 x 200") << QSize(300, 200);
    QTest::newRow("16384 x 64") << QSize(16384, 64);
    QTest::newRow("64 x 16384") << QSize(64, 16384);
}

void tst_LayerPainter::NeverMovesTheImageDuringAStroke()
{
    QFETCH(QSize, size);
    LayerList list;
    Layer layer(1, 1, &list);
    layer.SetImage(raster::BlankMask(size), Qt::red);
    const uchar* pixels = layer.Image().constBits();
    LayerPainter painter;
    painter.Load(&layer);
    Brush brush;
    brush.SetPaintColor(Qt::red);
    for (const BrushAction action : {BrushAction::Paint, BrushAction::Erase}) {
        QPointF from(20, 20);
        brush.SetPosition(from);
        painter.BeginStroke();
        painter.Dab(brush, action);
        for (int i = 0; i < 50; ++i) {
            brush.SetPosition(from + QPointF(5, 3));
            painter.Segment(brush, i % 5 == 0 ? BrushAction::None : action, from);
            from = brush.Position();
            QCOMPARE(layer.Image().constBits(), pixels);
        }
        painter.EndStroke();
    }
}

void tst_LayerPainter::MovesTheImageOnceForOtherValues()
{
    LayerList list;
    Layer layer(1, 1, &list);
    layer.SetImage(MaskFromArt({"..+#", "#..."}), Qt::red);
    LayerPainter painter;
    painter.Load(&layer);
    Brush brush;
    brush.SetSize(1);
    brush.SetPaintColor(Qt::red);
    painter.Segment(brush, BrushAction::None, {});
    const uchar* pixels = layer.Image().constBits();
    painter.Segment(brush, BrushAction::Paint, {2, 0});
    QCOMPARE(layer.Image().constBits(), pixels);
}

void tst_LayerPainter::LeavesTheLayerAloneUntilTheFirstStep()
{
    LayerList list;
    Layer layer(1, 1, &list);
    const QImage mask = MaskFromArt({"..+#", "#..."});
    layer.SetImage(mask, Qt::red);
    LayerPainter painter;
    painter.Load(&layer);
    painter.Load(nullptr);
    QCOMPARE(layer.Image(), mask);
    QVERIFY(painter.Size().isEmpty());
    QVERIFY(painter.Picture().isNull());
}

void tst_LayerPainter::ConvertsTheWholeImageAlsoForAMoveWithoutAButton()
{
    LayerList list;
    Layer layer(1, 1, &list);
    layer.SetImage(MaskFromArt({"..+#", "#..."}), Qt::red);
    LayerPainter painter;
    painter.Load(&layer);
    painter.Segment(Brush(), BrushAction::None, {});
    QCOMPARE(ArtFromMask(layer.Image()), QStringList({"...#", "#..."}));
}

void tst_LayerPainter::BringsBackWhatAnotherColorHid()
{
    LayerList list;
    Layer layer(1, 1, &list);
    layer.SetImage(MaskFromArt({"..##"}), Qt::red);
    LayerPainter painter;
    painter.Load(&layer);
    const Brush brush;
    layer.SetColor(Qt::blue);
    painter.Segment(brush, BrushAction::None, {});
    QCOMPARE(ArtFromMask(layer.Image()), QStringList({"...."}));
    layer.SetColor(Qt::red);
    painter.Segment(brush, BrushAction::None, {});
    QCOMPARE(ArtFromMask(layer.Image()), QStringList({"..##"}));
}

void tst_LayerPainter::OverwritesAnImageThatWasReplaced()
{
    LayerList list;
    Layer layer(1, 1, &list);
    layer.SetImage(MaskFromArt({"..##"}), Qt::red);
    LayerPainter painter;
    painter.Load(&layer);
    const Brush brush;
    painter.Segment(brush, BrushAction::None, {});
    layer.SetImage(MaskFromArt({"##.."}), Qt::red);
    painter.Segment(brush, BrushAction::None, {});
    QCOMPARE(ArtFromMask(layer.Image()), QStringList({"..##"}));
}

void tst_LayerPainter::WipesNothingAtALayerChange()
{
    LayerList list;
    Layer first(1, 1, &list);
    Layer second(1, 1, &list);
    first.SetImage(MaskFromArt({"..##"}), Qt::red);
    second.SetImage(MaskFromArt({"#..."}), Qt::blue);
    LayerPainter painter;
    painter.Load(&first);
    painter.Segment(Brush(), BrushAction::None, {});
    first.SetColor(Qt::green);
    first.SetImage(MaskFromArt({".##."}), Qt::green);
    painter.Load(&second);
    QCOMPARE(ArtFromMask(first.Image()), QStringList({".##."}));
    QCOMPARE(ArtFromMask(second.Image()), QStringList({"#..."}));
    QCOMPARE(painter.GetLayer(), &second);
}

void tst_LayerPainter::KeepsThePictureOfALayerInNoList()
{
    Layer layer(1, 1, nullptr);
    const QImage mask = MaskFromArt({"....", "...."});
    layer.SetImage(mask, Qt::red);
    LayerPainter painter;
    painter.Load(&layer);
    Brush brush;
    brush.SetPaintColor(Qt::red);
    brush.SetSize(1);
    painter.Segment(brush, BrushAction::Paint, {3, 0});
    QCOMPARE(layer.Image(), mask);
    QCOMPARE(ArtFromMask(literal::Mask(painter.Picture(), qRgb(255, 0, 0))),
             QStringList({"####", "...."}));
}

void tst_LayerPainter::ForgetsADestroyedLayer()
{
    LayerList list;
    auto layer = std::make_unique<Layer>(1, 1, &list);
    layer->SetImage(raster::BlankMask({40, 40}), Qt::red);
    LayerPainter painter;
    painter.Load(layer.get());
    const Brush brush;
    QVERIFY(!painter.Dab(brush, BrushAction::Paint).isEmpty());
    layer.reset();
    QCOMPARE(painter.GetLayer(), nullptr);
    QVERIFY(painter.Dab(brush, BrushAction::Paint).isEmpty());
    QVERIFY(painter.Segment(brush, BrushAction::Erase, {5, 5}).isEmpty());
    painter.Load(nullptr);
}

void tst_LayerPainter::StandsLayersWithoutAnImage()
{
    LayerList list;
    Layer layer(1, 1, &list);
    LayerPainter painter;
    QVERIFY(painter.Dab(Brush(), BrushAction::Paint).isEmpty());
    painter.Load(&layer);
    QVERIFY(painter.Dab(Brush(), BrushAction::Paint).isEmpty());
    QVERIFY(layer.Image().isNull());
    QCOMPARE(painter.GetLayer(), &layer);
    // A later image is overwritten only by another one.
    layer.SetImage(MaskFromArt({"..##"}), Qt::red);
    QVERIFY(painter.Segment(Brush(), BrushAction::Erase, {}).isEmpty());
    QCOMPARE(ArtFromMask(layer.Image()), QStringList({"..##"}));
    QCOMPARE(Painted(painter, {}), PaintedLiterally({}, {}));
}

void tst_LayerPainter::StandsPositionsThatAreNoNumbers()
{
    LayerList list;
    Layer layer(1, 1, &list);
    const QImage mask = MaskFromArt({"..##"});
    layer.SetImage(mask, Qt::red);
    LayerPainter painter;
    painter.Load(&layer);
    Brush brush;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        brush.SetPosition({bad, 0});
        QVERIFY(painter.Dab(brush, BrushAction::Erase).isEmpty());
        QVERIFY(painter.Segment(brush, BrushAction::Erase, {}).isEmpty());
        brush.SetPosition({0, 0});
        QVERIFY(painter.Segment(brush, BrushAction::Erase, {0, bad}).isEmpty());
    }
    QCOMPARE(layer.Image(), mask);
}

void tst_LayerPainter::KeepsTheMaskWithoutMemory_data()
{
    QTest::addColumn<int>("valueAtTheEnd");
    QTest::addColumn<QColor>("colorBefore");
    QTest::addColumn<QColor>("colorAfter");
    QTest::addColumn<QColor>("paint");
    const QColor red = Qt::red;
    const QColor blue = Qt::blue;
    QTest::newRow("somebody else holds the mask") << 255 << red << red << red;
    QTest::newRow("the mask has other values") << 7 << red << red << red;
    QTest::newRow("another colour is painted") << 255 << red << red << blue;
    QTest::newRow("the layer has another colour") << 255 << red << blue << blue;
}

void tst_LayerPainter::KeepsTheMaskWithoutMemory()
{
    QFETCH(int, valueAtTheEnd);
    QFETCH(QColor, colorBefore);
    QFETCH(QColor, colorAfter);
    QFETCH(QColor, paint);
    const QSize size(8192, 8192);
    LayerList list;
    Layer layer(1, 1, &list, "sea");
    QImage mask = raster::BlankMask(size);
    mask.scanLine(8191)[8191] = static_cast<uchar>(valueAtTheEnd);
    layer.SetImage(mask, colorBefore);
    LayerPainter painter;
    painter.Load(&layer);
    layer.SetColor(colorAfter);
    Brush brush;
    brush.SetPaintColor(paint);
    brush.SetPosition({100, 100});
    LogSpy log;
    {
        const MemoryLimit limit(32 << 20);
        painter.Dab(brush, BrushAction::Paint);
        painter.Segment(brush, BrushAction::Paint, {90, 100});
    }
    QCOMPARE(log.Take(), QStringList("Error: There is no memory to paint on layer 'sea'."));
    QCOMPARE(layer.Image().constBits(), mask.constBits());
    QCOMPARE(layer.Image().pixelIndex(8191, 8191), valueAtTheEnd);
    QCOMPARE(layer.Image().pixelIndex(100, 100), int(raster::MaskClear));
    // With memory the next step paints.
    painter.Load(&layer);
    brush.SetPaintColor(colorAfter);
    painter.Dab(brush, BrushAction::Paint);
    QCOMPARE(layer.Image().pixelIndex(100, 100), int(raster::MaskSet));
    QCOMPARE(layer.Image().size(), size);
    QVERIFY(log.Messages().isEmpty());
}

void tst_LayerPainter::HandsOverLaterWhatFoundNoMemory()
{
    LayerList list;
    Layer layer(1, 1, &list);
    layer.SetImage(raster::BlankMask({8192, 8192}), Qt::red);
    LayerPainter painter;
    painter.Load(&layer);
    Brush brush;
    brush.SetPaintColor(Qt::blue);
    painter.Dab(brush, BrushAction::Paint);
    const QImage held = layer.Image();
    brush.SetPaintColor(Qt::red);
    brush.SetPosition({100, 100});
    {
        const MemoryLimit limit(32 << 20);
        QVERIFY(!painter.Dab(brush, BrushAction::Paint).isEmpty());
    }
    QCOMPARE(layer.Image().constBits(), held.constBits());
    painter.Segment(brush, BrushAction::None, {});
    QCOMPARE(layer.Image().pixelIndex(100, 100), int(raster::MaskSet));
    QCOMPARE(held.pixelIndex(100, 100), int(raster::MaskClear));
}

void tst_LayerPainter::ShowsThePicture_data()
{
    QTest::addColumn<QTransform>("transform");
    QTest::addColumn<bool>("hasOtherColors");
    const std::pair<const char*, QTransform> transforms[] = {
        {"as it is", QTransform()},
        {"moved", QTransform::fromTranslate(-7, 12)},
        {"moved by parts of a pixel", QTransform::fromTranslate(-7.3, 12.6)},
        {"larger", QTransform(2.75, 0, 0, 2.75, -31.5, -8)},
        {"smaller", QTransform(0.25, 0, 0, 0.25, 5, 3)},
        {"rotated", QTransform().rotate(30)},
    };
    for (const auto& [name, transform] : transforms) {
        QTest::addRow("%s", name) << transform << false;
        QTest::addRow("%s, other colours", name) << transform << true;
    }
}

void tst_LayerPainter::ShowsThePicture()
{
    QFETCH(QTransform, transform);
    QFETCH(bool, hasOtherColors);
    Random random;
    LayerList list;
    Layer layer(1, 1, &list);
    layer.SetImage(RandomMask(random, {71, 43}), QColor(200, 40, 90));
    LayerPainter painter;
    painter.Load(&layer);
    Brush brush;
    brush.SetPosition({30, 20});
    brush.SetPaintColor(hasOtherColors ? QColor(Qt::blue) : layer.Color());
    painter.Dab(brush, BrushAction::Paint);
    QCOMPARE(Painted(painter, transform), PaintedLiterally(painter.Picture(), transform));
}

QTEST_MAIN(tst_LayerPainter)
#include "tst_LayerPainter.moc"
