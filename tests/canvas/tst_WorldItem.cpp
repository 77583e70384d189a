#include "canvas/WorldItem.h"

#include "tests/support/MemoryLimit.h"
#include "tests/support/Random.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QTest>

#include <algorithm>
#include <cmath>

class tst_WorldItem : public QObject
{
    Q_OBJECT

private slots:
    void LooksLikeTheScaledPicture_data();
    void LooksLikeTheScaledPicture();
    void ScalesLongSidesAsQImageDoes_data();
    void ScalesLongSidesAsQImageDoes();
    void LooksLikeTheScaledPictureWhenTurned();
    void MixesLikeTheScaledPicture();
    void TakesAllSizesThatALayerCanHave();
    void RefusesOtherSizes_data();
    void RefusesOtherSizes();
    void ShowsNothingAfterClear();
};

namespace {

constexpr QSize ScreenSize(130, 120);

QImage RandomPicture(Random& random, QSize size, QImage::Format format)
{
    QImage picture(size, QImage::Format_ARGB32);
    for (int y = 0; y < picture.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        std::generate_n(line, picture.width(), [&random] { return random.Bits(); });
    }
    return picture.convertToFormat(format);
}

QPixmap ScaledPixmap(const QImage& picture, QSize size)
{
    return QPixmap::fromImage(picture.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation));
}

QImage Pixels(const QPixmap& pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// A screen on which the view shows the item; ratio is its number of device pixels a pixel.
QImage Painted(QGraphicsItem& item, const QTransform& transform, qreal ratio, qreal opacity = 1)
{
    QImage screen(ScreenSize, QImage::Format_ARGB32_Premultiplied);
    screen.fill(QColor(250, 160, 90));
    screen.setDevicePixelRatio(ratio);
    QPainter painter(&screen);
    painter.setTransform(transform);
    painter.setOpacity(opacity);
    QStyleOptionGraphicsItem option;
    option.exposedRect =
        painter.deviceTransform().inverted().mapRect(QRectF(screen.rect())) & item.boundingRect();
    item.paint(&painter, &option, nullptr);
    return screen;
}

/// A place where the item is on the screen.
QTransform RandomPlace(Random& random, QSize size)
{
    const double zoom = random.Between(0, 3) == 0 ? 1.0 : random.Between(1, 50) * 0.25;
    // Pixels are whole ones in views, and fractions on screens of a fractional density.
    const auto offset = [&](int length) {
        return random.Between(-int(length * zoom) + 1, 100) + random.Below(4) / 4.0;
    };
    return {zoom, 0, 0, zoom, offset(size.width()), offset(size.height())};
}

} // namespace

void tst_WorldItem::LooksLikeTheScaledPicture_data()
{
    QTest::addColumn<int>("format");
    // Qt scales the formats in several ways.
    const QPair<const char*, QImage::Format> formats[] = {
        {"opaque", QImage::Format_RGB32},
        {"translucent", QImage::Format_ARGB32},
        {"premultiplied", QImage::Format_ARGB32_Premultiplied},
        {"24 bits", QImage::Format_RGB888},
        {"palette", QImage::Format_Indexed8},
        {"grey", QImage::Format_Grayscale8},
        {"grey of 16 bits", QImage::Format_Grayscale16},
        {"64 bits", QImage::Format_RGBA64},
        {"opaque 64 bits", QImage::Format_RGBX64},
        {"15 bits", QImage::Format_RGB555},
        {"two colours", QImage::Format_Mono},
    };
    for (const auto& [name, format] : formats) {
        QTest::newRow(name) << int(format);
    }
}

void tst_WorldItem::LooksLikeTheScaledPicture()
{
    QFETCH(int, format);
    Random random;
    for (int i = 0; i < 24; ++i) {
        // Both sizes, or one side of them, may be equal or a single pixel.
        const auto length = [&random](int longest) {
            return random.Below(6) == 0 ? 1 : random.Between(1, longest);
        };
        const QSize own(length(160), length(160));
        const QSize size(random.Below(4) == 0 ? own.width() : length(400),
                         random.Below(4) == 0 ? own.height() : length(400));
        const QImage picture = RandomPicture(random, own, static_cast<QImage::Format>(format));
        const QPixmap scaled = ScaledPixmap(picture, size);
        WorldItem world;
        QVERIFY(world.Show(picture, size));
        QCOMPARE(Pixels(world.pixmap()), Pixels(scaled));
        QGraphicsPixmapItem literal(scaled);
        QCOMPARE(world.boundingRect(), literal.boundingRect());
        for (int place = 0; place < 12; ++place) {
            const QTransform transform = RandomPlace(random, size);
            for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
                QVERIFY2(Painted(world, transform, ratio) == Painted(literal, transform, ratio),
                         qPrintable(QString("%1 x %2 at %3 x %4, zoom %5 from %6, %7, ratio %8")
                                        .arg(own.width())
                                        .arg(own.height())
                                        .arg(size.width())
                                        .arg(size.height())
                                        .arg(transform.m11())
                                        .arg(transform.dx())
                                        .arg(transform.dy())
                                        .arg(ratio)));
            }
        }
    }
}

void tst_WorldItem::ScalesLongSidesAsQImageDoes_data()
{
    QTest::addColumn<int>("format");
    for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_Indexed8,
                              QImage::Format_RGB888}) {
        QTest::addRow("format %d", format) << int(format);
    }
}

/// The errors of Qt's steps add up over many pixels, and QPainter leaves what lies beyond 32767
/// pixels blank.
void tst_WorldItem::ScalesLongSidesAsQImageDoes()
{
    QFETCH(int, format);
    Random random;
    const QPair<QSize, QSize> sizes[] = {
        {{5000, 3}, {16384, 2}}, {{3, 5000}, {2, 16384}}, {{16384, 2}, {4099, 3}},
        {{2, 9000}, {3, 701}},   {{9000, 3}, {20, 1}},    {{700, 2}, {40000, 3}},
        {{3, 700}, {2, 40000}},
    };
    for (const auto& [own, size] : sizes) {
        const QImage picture = RandomPicture(random, own, static_cast<QImage::Format>(format));
        WorldItem world;
        QVERIFY(world.Show(picture, size));
        const QPixmap scaled = ScaledPixmap(picture, size);
        QGraphicsPixmapItem literal(scaled);
        if (std::max(size.width(), size.height()) <= 32767) {
            QCOMPARE(Pixels(world.pixmap()), Pixels(scaled));
        }
        for (const double zoom : {0.25, 1.0, 2.25, 12.5}) {
            for (const double end : {0.0, 0.3, 0.8, 0.99}) {
                const QTransform transform(zoom, 0, 0, zoom, -std::floor(size.width() * zoom * end),
                                           -std::floor(size.height() * zoom * end));
                QCOMPARE(Painted(world, transform, 1).convertToFormat(QImage::Format_RGB32),
                         Painted(literal, transform, 1).convertToFormat(QImage::Format_RGB32));
            }
        }
    }
}

/// A view does not turn its map, but whoever prints the scene may.
void tst_WorldItem::LooksLikeTheScaledPictureWhenTurned()
{
    Random random;
    const QImage picture = RandomPicture(random, {31, 17}, QImage::Format_RGB32);
    WorldItem world;
    QVERIFY(world.Show(picture, {90, 70}));
    QGraphicsPixmapItem literal(ScaledPixmap(picture, {90, 70}));
    for (const double angle : {1.0, 90.0, 180.0, 200.0}) {
        const QTransform turned = QTransform::fromTranslate(60, 60).rotate(angle);
        QCOMPARE(Painted(world, turned, 1), Painted(literal, turned, 1));
    }
}

void tst_WorldItem::MixesLikeTheScaledPicture()
{
    Random random;
    for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32}) {
        const QImage picture = RandomPicture(random, {40, 30}, format);
        WorldItem world;
        QVERIFY(world.Show(picture, {64, 64}));
        QGraphicsPixmapItem literal(ScaledPixmap(picture, {64, 64}));
        for (const double opacity : {0.0, 0.3, 0.5, 0.9}) {
            for (const double zoom : {1.0, 3.75}) {
                const QTransform transform(zoom, 0, 0, zoom, -30, 5);
                const QImage ours = Painted(world, transform, 1, opacity);
                const QImage theirs = Painted(literal, transform, 1, opacity);
                for (int i = 0; i < ours.sizeInBytes(); ++i) {
                    // Rounding may differ by one.
                    QVERIFY(std::abs(ours.constBits()[i] - theirs.constBits()[i]) <= 1);
                }
            }
        }
    }
}

void tst_WorldItem::TakesAllSizesThatALayerCanHave()
{
    QImage picture(600, 400, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    const MemoryLimit limit(32 * AMebibyte);
    for (const QSize size : {QSize(60000, 60000), QSize(65535, 65535), QSize(1, 65535)}) {
        WorldItem world;
        QVERIFY(world.Show(picture, size));
        QCOMPARE(world.boundingRect(), QRectF(QPointF(), QSizeF(size)));
        const QTransform close = QTransform::fromScale(12.5, 12.5);
        QCOMPARE(Painted(world, close, 1).pixelColor(5, 100), QColor(Qt::blue));
    }
}

void tst_WorldItem::RefusesOtherSizes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("0 x 0") << QSize(0, 0);
    QTest::newRow("-1 x 5") << QSize(-1, 5);
    QTest::newRow("65536 x 5") << QSize(65536, 5);
    QTest::newRow("5 x 2000000000") << QSize(5, 2000000000);
}

void tst_WorldItem::RefusesOtherSizes()
{
    QFETCH(QSize, size);
    QImage picture(6, 4, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    WorldItem world;
    QVERIFY(world.Show(picture, {30, 20}));
    const MemoryLimit limit(32 * AMebibyte);
    picture.fill(Qt::red);
    QVERIFY(!world.Show(picture, size));
    QVERIFY(!world.Show(QImage(), {5, 5}));
    QCOMPARE(world.boundingRect(), QRectF(0, 0, 30, 20));
    QCOMPARE(Painted(world, {}, 1).pixelColor(5, 5), QColor(Qt::blue));
}

void tst_WorldItem::ShowsNothingAfterClear()
{
    QImage picture(6, 4, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    WorldItem world;
    QVERIFY(world.Show(picture, {30, 20}));
    world.Clear();
    QVERIFY(world.pixmap().isNull());
    QVERIFY(world.boundingRect().isEmpty());
    QCOMPARE(Painted(world, {}, 1).pixelColor(5, 5), QColor(250, 160, 90));
}

QTEST_MAIN(tst_WorldItem)
#include "tst_WorldItem.moc"
