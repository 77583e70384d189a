#include "canvas/MaskSampler.h"

#include "layers/raster/Mask.h"
#include "tests/support/LiteralCanvas.h"
#include "tests/support/Masks.h"
#include "tests/support/Random.h"

#include <QPainter>
#include <QPixmap>
#include <QTest>

#include <cmath>

namespace {

QImage Blank(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage Sampled(const QImage& mask, QRgb rgb, const QTransform& toDevice, const QRect& device)
{
    QImage image = Blank(device.size());
    MaskSampler(toDevice, mask.size(), device).DrawBeneath(image, mask, rgb);
    return image;
}

/// The part of a screen of 160 x 120 that shows the whole picture.
QImage Drawn(const QImage& mask, QRgb rgb, const QTransform& toDevice, const QRect& device)
{
    QImage screen = Blank({160, 120});
    QPainter painter(&screen);
    painter.setTransform(toDevice);
    painter.drawPixmap(0, 0, QPixmap::fromImage(literal::Display(mask, rgb)));
    painter.end();
    return screen.copy(device);
}

} // namespace

class tst_MaskSampler : public QObject
{
    Q_OBJECT

private slots:
    void SamplesAsQPainterDoes_data();
    void SamplesAsQPainterDoes();
    void SamplesLongPicturesAsQPainterDoes();
    void MixesAsQPainterDoes();
    void DrawsSetPixelsOnly();
    void CannotTurn();
    void StandsNothing_data();
    void StandsNothing();
    void ScalesMasksAsPicturesAreScaled();
};

void tst_MaskSampler::SamplesAsQPainterDoes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("61 x 47") << QSize(61, 47);
    QTest::newRow("1 x 1") << QSize(1, 1);
    QTest::newRow("33 x 700") << QSize(33, 700);
    QTest::newRow("513 x 3") << QSize(513, 3);
}

void tst_MaskSampler::SamplesAsQPainterDoes()
{
    QFETCH(QSize, size);
    Random random;
    const QImage mask = RandomMask(random, size);
    const QRgb rgb = random.Bits() | 0xFF000000U;
    for (int i = 0; i < 500; ++i) {
        // Screens have 1, 1.25 or 2 device pixels a pixel, so scrolling by whole pixels gives
        // fractions.
        const double ratio = i % 3 == 0 ? 1.0 : (i % 3 == 1 ? 1.25 : 2.0);
        const double zoom = 0.25 * (1 + i % 50) * ratio;
        const double dx = random.Between(-int(size.width() * zoom) - 5, 150) * ratio;
        const double dy = random.Between(-int(size.height() * zoom) - 5, 110) * ratio;
        const QTransform toDevice(zoom, 0, 0, zoom, dx, dy);
        const QRect device(random.Below(40), random.Below(40), random.Between(1, 120),
                           random.Between(1, 80));
        QVERIFY2(Sampled(mask, rgb, toDevice, device) == Drawn(mask, rgb, toDevice, device),
                 QString("zoom %1 at %2, %3").arg(zoom).arg(dx).arg(dy).toLatin1());
    }
}

/// QPainter's steps are not exact. Over many pixels the error adds up to whole pixels.
void tst_MaskSampler::SamplesLongPicturesAsQPainterDoes()
{
    Random random;
    QImage mask = raster::BlankMask({16384, 2});
    for (int x = 0; x < mask.width(); ++x) {
        mask.scanLine(x % 2)[x] = random.Below(2) == 0 ? raster::MaskSet : raster::MaskClear;
    }
    const QRgb rgb = qRgb(1, 2, 3);
    const QRect device(0, 0, 160, 120);
    for (const double zoom : {0.25, 0.75, 1.0, 2.25, 7.75, 12.25, 12.5}) {
        for (const int x : {0, 3000, 10000, 16380}) {
            const QTransform toDevice(zoom, 0, 0, zoom, -std::floor(x * zoom), 20);
            QVERIFY2(Sampled(mask, rgb, toDevice, device) == Drawn(mask, rgb, toDevice, device),
                     QString("zoom %1 from %2").arg(zoom).arg(x).toLatin1());
        }
    }
}

void tst_MaskSampler::MixesAsQPainterDoes()
{
    QImage mask = raster::BlankMask({1, 1});
    mask.fill(raster::MaskSet);
    Random random;
    for (int alpha = 0; alpha <= 255; ++alpha) {
        const QRgb below = qPremultiply((random.Bits() & 0x00FFFFFFU) |
                                        (static_cast<QRgb>(random.Below(256)) << 24));
        const QRgb above =
            qPremultiply((random.Bits() & 0x00FFFFFFU) | (static_cast<QRgb>(alpha) << 24));
        QImage target = Blank({1, 1});
        *reinterpret_cast<QRgb*>(target.bits()) = above;
        QImage expected = target;
        MaskSampler({}, {1, 1}, {0, 0, 1, 1}).DrawBeneath(target, mask, below);
        QImage source = Blank({1, 1});
        *reinterpret_cast<QRgb*>(source.bits()) = below;
        QPainter painter(&expected);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
        painter.drawImage(0, 0, source);
        painter.end();
        QCOMPARE(*reinterpret_cast<const QRgb*>(target.constBits()),
                 *reinterpret_cast<const QRgb*>(expected.constBits()));
    }
}

void tst_MaskSampler::DrawsSetPixelsOnly()
{
    QImage mask = raster::BlankMask({256, 1});
    for (int x = 0; x < 256; ++x) {
        mask.scanLine(0)[x] = static_cast<uchar>(x);
    }
    const QRgb rgb = qRgb(4, 5, 6);
    const QImage sampled = Sampled(mask, rgb, {}, {0, 0, 256, 1});
    for (int x = 0; x < 256; ++x) {
        QCOMPARE(sampled.pixel(x, 0), x == raster::MaskSet ? rgb : 0U);
    }
}

void tst_MaskSampler::CannotTurn()
{
    QVERIFY(MaskSampler::CanSample({}));
    QVERIFY(MaskSampler::CanSample(QTransform::fromTranslate(3, 4)));
    QVERIFY(MaskSampler::CanSample(QTransform(2, 0, 0, 3, 4, 5)));
    QVERIFY(!MaskSampler::CanSample(QTransform().rotate(90)));
    QVERIFY(!MaskSampler::CanSample(QTransform().rotate(1)));
    QVERIFY(!MaskSampler::CanSample(QTransform().shear(0.1, 0)));
    QVERIFY(!MaskSampler::CanSample(QTransform(1, 0, 0.1, 0, 1, 0, 0, 0, 1)));
}

void tst_MaskSampler::StandsNothing_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("device");
    QTest::newRow("no device pixels") << QSize(5, 5) << QRect(0, 0, 0, 0);
    QTest::newRow("a negative device size") << QSize(5, 5) << QRect(0, 0, -1, -1);
    QTest::newRow("beside the picture") << QSize(5, 5) << QRect(100, 100, 7, 7);
    QTest::newRow("before the picture") << QSize(5, 5) << QRect(-100, -100, 7, 7);
    QTest::newRow("a picture of 0 x 0") << QSize(0, 0) << QRect(0, 0, 7, 7);
    QTest::newRow("a picture of -1 x -1") << QSize(-1, -1) << QRect(0, 0, 7, 7);
}

void tst_MaskSampler::StandsNothing()
{
    QFETCH(QSize, size);
    QFETCH(QRect, device);
    QImage mask = raster::BlankMask(size);
    mask.fill(raster::MaskSet);
    for (const double zoom : {1.0, 0.25, 3.5}) {
        QImage image = Blank({7, 7});
        MaskSampler(QTransform::fromScale(zoom, zoom), size, device)
            .DrawBeneath(image, mask, qRgb(1, 2, 3));
        QCOMPARE(image, Blank({7, 7}));
    }
}

void tst_MaskSampler::ScalesMasksAsPicturesAreScaled()
{
    Random random;
    const QRgb rgb = qRgb(9, 8, 7);
    for (int i = 0; i < 200; ++i) {
        const QSize from(random.Between(1, 90), random.Between(1, 90));
        const QSize to(random.Between(1, 200), random.Between(1, 200));
        const QImage mask = RandomMask(random, from);
        const QTransform scale = QTransform::fromScale(double(to.width()) / from.width(),
                                                       double(to.height()) / from.height());
        const QImage sampled = MaskSampler(scale, from, {QPoint(), to}).Sampled(mask);
        const QImage scaled =
            literal::Display(mask, rgb).scaled(to, Qt::IgnoreAspectRatio, Qt::FastTransformation);
        QCOMPARE(literal::Display(sampled, rgb), scaled);
    }
}

QTEST_MAIN(tst_MaskSampler)
#include "tst_MaskSampler.moc"
