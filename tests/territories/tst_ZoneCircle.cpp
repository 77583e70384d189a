#include "territories/ZoneCircle.h"

#include "tests/support/Random.h"

#include <QPainter>
#include <QPicture>
#include <QTest>

#include <functional>
#include <limits>

namespace {

constexpr QSize DeviceSize(160, 120);

using Prepare = std::function<void(QPainter& painter)>;

/// The circles without any kept pictures.
void DrawLiterally(QPainter& painter, const ZoneCircle& circle)
{
    painter.setPen(QPen(QColor(circle.grey, circle.grey, circle.grey), 2));
    painter.setBrush(circle.fill);
    painter.drawEllipse(QPointF(), circle.radius, circle.radius);
}

struct Drawing
{
    QTransform transform;
    ZoneCircle circle;
};

QImage Shown(const QImage& background, const QVector<Drawing>& drawings, const Prepare& prepare,
             void (*draw)(QPainter&, const ZoneCircle&))
{
    QImage image = background;
    QPainter painter(&image);
    prepare(painter);
    for (const Drawing& drawing : drawings) {
        painter.setTransform(drawing.transform);
        draw(painter, drawing.circle);
    }
    return image;
}

/// Draws a circle for the first time, when it is kept, and from the kept picture.
void CompareRepaints(
    const QImage& background, const QVector<Drawing>& drawings,
    const Prepare& prepare = [](QPainter&) {})
{
    const QImage literal = Shown(background, drawings, prepare, DrawLiterally);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(Shown(background, drawings, prepare, DrawZoneCircle), literal);
    }
}

QImage Noise(Random& random, QImage::Format format)
{
    QImage image(DeviceSize, format);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixelColor(x, y, QColor::fromRgba(random.Bits()));
        }
    }
    return image;
}

double RandomPlace(Random& random, int length)
{
    const int divisors[] = {1, 2, 4, 64, 10, 7, 1000};
    const int divisor = divisors[random.Below(7)];
    return random.Between(-30 * divisor, (length + 30) * divisor) / double(divisor);
}

Drawing RandomDrawing(Random& random, double zoom)
{
    Drawing drawing;
    drawing.transform = QTransform::fromScale(zoom, zoom) *
                        QTransform::fromTranslate(RandomPlace(random, DeviceSize.width()),
                                                  RandomPlace(random, DeviceSize.height()));
    const float radius = random.Below(2) == 0 ? static_cast<float>(random.Below(30))
                                              : static_cast<float>(random.Below(60000)) / 977.0F;
    drawing.circle = {static_cast<qreal>(radius), QColor::fromRgba(random.Bits()),
                      random.Below(256)};
    return drawing;
}

} // namespace

class tst_ZoneCircle : public QObject
{
    Q_OBJECT

private slots:
    void LooksTheSameWheneverItIsRepainted_data();
    void LooksTheSameWheneverItIsRepainted();
    void LooksTheSameForOtherPainters_data();
    void LooksTheSameForOtherPainters();
    void LooksTheSameWhereItIsCut();
    void LooksTheSameWhereItIsTurned();
    void LooksTheSameInAnyColor();
    void LooksTheSameAfterManyOthers();
    void LeavesTheTransformAlone();
    void StandsStrangeRadii_data();
    void StandsStrangeRadii();
    void IsDrawnIntoPicturesAsAnEllipse();
};

void tst_ZoneCircle::LooksTheSameWheneverItIsRepainted_data()
{
    QTest::addColumn<double>("zoom");
    QTest::addColumn<double>("ratio");
    for (const double zoom : {0.25, 0.5, 0.75, 1.0, 1.25, 2.75, 4.0, 12.5}) {
        for (const double ratio : {1.0, 1.25, 2.0}) {
            QTest::addRow("zoom %g, %g pixels a point", zoom, ratio) << zoom << ratio;
        }
    }
}

void tst_ZoneCircle::LooksTheSameWheneverItIsRepainted()
{
    QFETCH(double, zoom);
    QFETCH(double, ratio);
    Random random;
    for (const QImage::Format format :
         {QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB32}) {
        QImage background = Noise(random, format);
        background.setDevicePixelRatio(ratio);
        for (int i = 0; i < 20 && !QTest::currentTestFailed(); ++i) {
            QVector<Drawing> drawings;
            for (int k = 0; k < 10; ++k) {
                drawings.append(RandomDrawing(random, zoom));
            }
            CompareRepaints(background, drawings);
        }
    }
}

void tst_ZoneCircle::LooksTheSameForOtherPainters_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"translucent", "smooth", "beneath", "clipped"}) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void tst_ZoneCircle::LooksTheSameForOtherPainters()
{
    QFETCH(QString, kind);
    const Prepare prepare = [&kind](QPainter& painter) {
        if (kind == "translucent") {
            painter.setOpacity(0.4);
        } else if (kind == "smooth") {
            painter.setRenderHint(QPainter::Antialiasing);
        } else if (kind == "beneath") {
            painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
        } else {
            painter.setClipRegion(QRegion(30, 20, 50, 40) + QRegion(70, 50, 33, 90));
        }
    };
    Random random;
    const QImage background = Noise(random, QImage::Format_ARGB32_Premultiplied);
    for (int i = 0; i < 20 && !QTest::currentTestFailed(); ++i) {
        QVector<Drawing> drawings;
        for (int k = 0; k < 10; ++k) {
            drawings.append(RandomDrawing(random, 1.5));
        }
        // Pictures that were kept with a usual painter cannot be used for these.
        Shown(
            background, drawings, [](QPainter&) {}, DrawZoneCircle);
        Shown(
            background, drawings, [](QPainter&) {}, DrawZoneCircle);
        CompareRepaints(background, drawings, prepare);
    }
}

void tst_ZoneCircle::LooksTheSameWhereItIsCut()
{
    Random random;
    const QImage background = Noise(random, QImage::Format_RGB32);
    for (const double zoom : {0.25, 0.5, 1.0, 2.0}) {
        for (int round = 0; round < 100; ++round) {
            const QVector<Drawing> drawings{RandomDrawing(random, zoom),
                                            RandomDrawing(random, zoom)};
            const QRect strip(random.Below(DeviceSize.width()), random.Below(DeviceSize.height()),
                              1 + random.Below(40), 1 + random.Below(40));
            CompareRepaints(background, drawings,
                            [strip](QPainter& painter) { painter.setClipRect(strip); });
            CompareRepaints(background, drawings);
        }
    }
}

void tst_ZoneCircle::LooksTheSameWhereItIsTurned()
{
    Random random;
    const QImage background = Noise(random, QImage::Format_ARGB32_Premultiplied);
    const ZoneCircle circle = {12, QColor(200, 100, 0, 128), 40};
    CompareRepaints(background, {{QTransform::fromTranslate(70.3, 60.6), circle}});
    for (const QTransform& turn :
         {QTransform().rotate(30), QTransform().shear(0.5, 0), QTransform::fromScale(-1, 2),
          QTransform::fromScale(2, -0.5), QTransform::fromScale(0, 1),
          QTransform::fromScale(0.25, 0.9), QTransform::fromScale(0.9, 0.25),
          QTransform::fromScale(0.3, 0.3)}) {
        CompareRepaints(background, {{turn * QTransform::fromTranslate(70.3, 60.6), circle}});
    }
}

/// Circles with the same place and size that differ only in their colours and outlines.
void tst_ZoneCircle::LooksTheSameInAnyColor()
{
    Random random;
    const QImage background = Noise(random, QImage::Format_ARGB32_Premultiplied);
    const QTransform place = QTransform::fromTranslate(80.25, 60.5);
    for (const int grey : {2, 3, 255}) {
        for (const QColor& fill :
             {QColor(255, 0, 0, 128), QColor(255, 0, 0, 129), QColor(254, 0, 0, 128),
              QColor(0, 0, 0, 0), QColor(1, 2, 3), QColor()}) {
            CompareRepaints(background, {{place, {20, fill, grey}}});
            CompareRepaints(background, {{place, {20.5, fill, grey}}});
        }
    }
}

void tst_ZoneCircle::LooksTheSameAfterManyOthers()
{
    QImage image(DeviceSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    const Drawing drawing = {QTransform::fromTranslate(80, 60), {55, QColor(9, 8, 7, 100), 30}};
    CompareRepaints(image, {drawing});
    // More circles than the number of kept pictures.
    QPainter painter(&image);
    for (int i = 0; i < 3000; ++i) {
        painter.setTransform(QTransform::fromTranslate(70 + i / 4096.0, 60));
        DrawZoneCircle(painter, drawing.circle);
        DrawZoneCircle(painter, drawing.circle);
    }
    painter.end();
    image.fill(Qt::white);
    CompareRepaints(image, {drawing});
}

void tst_ZoneCircle::LeavesTheTransformAlone()
{
    QImage image(DeviceSize, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(1.25);
    QPainter painter(&image);
    painter.setWindow(0, 0, 320, 240);
    const QTransform transform = QTransform::fromScale(2.5, 2.5).translate(30.1, 20.7);
    painter.setTransform(transform);
    for (int i = 0; i < 4; ++i) {
        DrawZoneCircle(painter, {10, Qt::red, 40});
        QCOMPARE(painter.transform(), transform);
    }
}

void tst_ZoneCircle::StandsStrangeRadii_data()
{
    QTest::addColumn<double>("radius");
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double radius : {0.0, -5.0, 1e-30, 1e6, 1e30, infinity, -infinity,
                                std::numeric_limits<double>::quiet_NaN()}) {
        QTest::addRow("%g", radius) << radius;
    }
}

void tst_ZoneCircle::StandsStrangeRadii()
{
    QFETCH(double, radius);
    Random random;
    const QImage background = Noise(random, QImage::Format_ARGB32_Premultiplied);
    for (const double place : {60.5, 1e30, -1e30}) {
        CompareRepaints(background, {{QTransform::fromTranslate(place, 50),
                                      {radius, QColor(1, 200, 3, 128), 40}}});
    }
}

void tst_ZoneCircle::IsDrawnIntoPicturesAsAnEllipse()
{
    QPicture drawn;
    QPicture literal;
    const ZoneCircle circle = {20, QColor(1, 200, 3, 128), 40};
    QPainter drawnPainter(&drawn);
    QPainter literalPainter(&literal);
    drawnPainter.translate(80, 60);
    literalPainter.translate(80, 60);
    for (int i = 0; i < 3; ++i) {
        DrawZoneCircle(drawnPainter, circle);
        DrawLiterally(literalPainter, circle);
    }
    drawnPainter.end();
    literalPainter.end();
    QCOMPARE(QByteArray(drawn.data(), int(drawn.size())),
             QByteArray(literal.data(), int(literal.size())));
}

QTEST_MAIN(tst_ZoneCircle)
#include "tst_ZoneCircle.moc"
