#include "canvas/TileCache.h"

#include <QPainter>
#include <QTest>

#include <cmath>

namespace {

constexpr int TileSize = 128;
/// The size of a screen that needs more tiles than are usually kept.
constexpr int LargeColumns = 60;
constexpr int LargeRows = 34;
constexpr QSize LargeSize(LargeColumns* TileSize, LargeRows* TileSize);
constexpr int LargeArea = LargeColumns * TileSize * LargeRows * TileSize;

/// All images share their pixels, so that many of them take no memory.
QImage RedTile(QSize size)
{
    static QImage tile;
    if (tile.size() != size) {
        tile = QImage(size, QImage::Format_ARGB32_Premultiplied);
        tile.fill(Qt::red);
    }
    return tile;
}

/// Draws into a screen of 300 x 200 and counts the device pixels that had to be made.
class Screen
{
public:
    int Draw(const QTransform& transform, const QRectF& exposed, double ratio = 1)
    {
        QImage image(300, 200, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        QPainter painter(&image);
        painter.setTransform(transform);
        int made = 0;
        m_cache.Draw(painter, exposed, [&made](const QTransform&, const QRect& device) {
            made += device.width() * device.height();
            return RedTile(device.size());
        });
        return made;
    }

    int DrawAll(const QTransform& transform, double ratio = 1)
    {
        const QTransform toDevice = transform * QTransform::fromScale(ratio, ratio);
        return Draw(transform, toDevice.inverted().mapRect(QRectF(0, 0, 300, 200)), ratio);
    }

    void Clear() { m_cache.Clear(); }

private:
    TileCache m_cache;
};

QTransform Scroll(double x, double y, double zoom = 1)
{
    return {zoom, 0, 0, zoom, -x, -y};
}

} // namespace

class tst_TileCache : public QObject
{
    Q_OBJECT

private slots:
    void MakesNothingTwice();
    void MakesWhatIsExposedOnly();
    void PanningMakesWhatComesIntoView();
    void ReturningMakesNothing();
    void KeepsTilesOfFractionsOfAPixel();
    void KeepsTilesOfFewFractions();
    void MixesNoFractions();
    void DropsTilesWhenTheItemChanges();
    void DropsTilesWhenTheScaleChanges();
    void DropsTilesWhenTheyBecomeMany();
    void KeepsTheTilesOfAVeryLargeScreen();
    void DropsTilesOfAVeryLargeScreenToo();
    void ForgetsThatAScreenWasVeryLarge_data();
    void ForgetsThatAScreenWasVeryLarge();
    void PaintsTheExposedPart();
    void LeavesThePainterAsItWas();
};

void tst_TileCache::MakesNothingTwice()
{
    Screen screen;
    QCOMPARE(screen.DrawAll(Scroll(0, 0)), 3 * 2 * TileSize * TileSize);
    QCOMPARE(screen.DrawAll(Scroll(0, 0)), 0);
    QCOMPARE(screen.Draw(Scroll(0, 0), {10, 20, 30, 40}), 0);
}

void tst_TileCache::MakesWhatIsExposedOnly()
{
    Screen screen;
    QCOMPARE(screen.Draw(Scroll(0, 0), {10, 20, 30, 40}), TileSize * TileSize);
    QCOMPARE(screen.Draw(Scroll(0, 0), {120, 20, 30, 40}), TileSize * TileSize);
    QCOMPARE(screen.Draw(Scroll(0, 0), {-20, -20, 30, 40}), 3 * TileSize * TileSize);
}

void tst_TileCache::PanningMakesWhatComesIntoView()
{
    Screen screen;
    screen.DrawAll(Scroll(0, 0));
    for (int x = 1; x <= 84; ++x) {
        QCOMPARE(screen.DrawAll(Scroll(x, 0)), 0);
    }
    // The next column, and then the next row.
    QCOMPARE(screen.DrawAll(Scroll(90, 0)), 2 * TileSize * TileSize);
    QCOMPARE(screen.DrawAll(Scroll(90, 57)), 4 * TileSize * TileSize);
}

void tst_TileCache::ReturningMakesNothing()
{
    Screen screen;
    screen.DrawAll(Scroll(0, 0));
    screen.DrawAll(Scroll(500, 300));
    QCOMPARE(screen.DrawAll(Scroll(0, 0)), 0);
}

void tst_TileCache::KeepsTilesOfFractionsOfAPixel()
{
    Screen screen;
    for (int i = 0; i < 4; ++i) {
        QVERIFY(screen.DrawAll(Scroll(i, i), 1.25) > 0);
    }
    for (int i = 4; i < 40; ++i) {
        QCOMPARE(screen.DrawAll(Scroll(i, i), 1.25), 0);
    }
    for (int i = 40; i >= 0; --i) {
        QCOMPARE(screen.DrawAll(Scroll(i, i), 1.25), 0);
    }
}

void tst_TileCache::KeepsTilesOfFewFractions()
{
    Screen screen;
    const auto draw = [&screen](double fraction) {
        return screen.Draw(Scroll(fraction, 0), {20, 20, 10, 10});
    };
    for (int i = 0; i < 17; ++i) {
        QCOMPARE(draw(i / 32.0), TileSize * TileSize);
    }
    // The first one was used least recently.
    for (int i = 1; i < 17; ++i) {
        QCOMPARE(draw(i / 32.0), 0);
    }
    QCOMPARE(draw(0), TileSize * TileSize);
}

/// Each fraction of a pixel has tiles of its own.
void tst_TileCache::MixesNoFractions()
{
    TileCache cache;
    for (int i = 0; i < 24; ++i) {
        QImage image(64, 64, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        painter.setTransform(Scroll(i * 0.25, i / 4 * 0.5));
        const QTransform now = painter.transform();
        const auto green = [](double offset) {
            return static_cast<int>((offset - std::floor(offset)) * 100);
        };
        cache.Draw(painter, {8, 8, 30, 30}, [&](const QTransform& toDevice, const QRect& device) {
            QImage tile(device.size(), QImage::Format_ARGB32_Premultiplied);
            tile.fill(QColor(green(toDevice.dx()), green(toDevice.dy()), 0));
            return tile;
        });
        painter.end();
        QCOMPARE(image.pixelColor(20, 20), QColor(green(now.dx()), green(now.dy()), 0));
    }
}

void tst_TileCache::DropsTilesWhenTheItemChanges()
{
    Screen screen;
    screen.DrawAll(Scroll(0, 0));
    screen.Clear();
    QCOMPARE(screen.DrawAll(Scroll(0, 0)), 6 * TileSize * TileSize);
}

void tst_TileCache::DropsTilesWhenTheScaleChanges()
{
    Screen screen;
    screen.DrawAll(Scroll(0, 0));
    QVERIFY(screen.DrawAll(Scroll(0, 0, 2)) > 0);
    QVERIFY(screen.DrawAll(Scroll(0, 0)) > 0);
    QVERIFY(screen.DrawAll(Scroll(0, 0), 2) > 0);
    // The same device pixels on a screen of another density.
    QCOMPARE(screen.DrawAll(Scroll(0, 0, 2)), 0);
}

void tst_TileCache::DropsTilesWhenTheyBecomeMany()
{
    Screen screen;
    constexpr int all = 6 * TileSize * TileSize;
    for (int i = 0; i < 400; ++i) {
        QCOMPARE(screen.DrawAll(Scroll(i * 3 * TileSize, 0)), all);
    }
    QCOMPARE(screen.DrawAll(Scroll(0, 0)), all);
}

void tst_TileCache::KeepsTheTilesOfAVeryLargeScreen()
{
    Screen screen;
    const QRectF all({0, 0}, LargeSize);
    QCOMPARE(screen.Draw(Scroll(0, 0), all), LargeArea);
    QCOMPARE(screen.Draw(Scroll(0, 0), all), 0);
    // A part, and the whole once more.
    QCOMPARE(screen.Draw(Scroll(0, 0), {10, 20, 30, 40}), 0);
    QCOMPARE(screen.Draw(Scroll(0, 0), all), 0);
    // A column beside it, there and back again.
    QCOMPARE(screen.Draw(Scroll(TileSize, 0), all.translated(TileSize, 0)),
             LargeRows * TileSize * TileSize);
    QCOMPARE(screen.Draw(Scroll(0, 0), all), 0);
}

void tst_TileCache::DropsTilesOfAVeryLargeScreenToo()
{
    Screen screen;
    const QRectF all({0, 0}, LargeSize);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(screen.Draw(Scroll(0, 0), all.translated(all.width() * i, 0)), LargeArea);
    }
    QCOMPARE(screen.Draw(Scroll(0, 0), all), LargeArea);
}

void tst_TileCache::ForgetsThatAScreenWasVeryLarge_data()
{
    QTest::addColumn<bool>("isScaled");
    QTest::newRow("the item changes") << false;
    QTest::newRow("the scale changes") << true;
}

void tst_TileCache::ForgetsThatAScreenWasVeryLarge()
{
    QFETCH(bool, isScaled);
    Screen screen;
    screen.Draw(Scroll(0, 0), {{0, 0}, LargeSize});
    if (!isScaled) {
        screen.Clear();
    }
    constexpr int all = 6 * TileSize * TileSize;
    const double zoom = isScaled ? 2 : 1;
    for (int i = 0; i < 200; ++i) {
        QCOMPARE(screen.DrawAll(Scroll(i * 3 * TileSize, 0, zoom)), all);
    }
    QCOMPARE(screen.DrawAll(Scroll(0, 0, zoom)), all);
}

void tst_TileCache::PaintsTheExposedPart()
{
    QImage image(300, 200, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setTransform(Scroll(-10, -20, 2));
    TileCache cache;
    cache.Draw(painter, {0, 0, 50, 40}, [](const QTransform& toDevice, const QRect& device) {
        QImage tile(device.size(), QImage::Format_ARGB32_Premultiplied);
        tile.fill(Qt::transparent);
        QPainter tilePainter(&tile);
        tilePainter.translate(-device.topLeft());
        tilePainter.setTransform(toDevice, true);
        tilePainter.fillRect(QRect(0, 0, 50, 40), Qt::red);
        return tile;
    });
    painter.end();
    QImage expected(300, 200, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::white);
    QPainter(&expected).fillRect(QRect(10, 20, 100, 80), Qt::red);
    QCOMPARE(image, expected);
}

void tst_TileCache::LeavesThePainterAsItWas()
{
    QImage image(300, 200, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(1.25);
    QPainter painter(&image);
    painter.setOpacity(0.5);
    painter.setTransform(Scroll(7, 8, 3));
    TileCache cache;
    cache.Draw(painter, {0, 0, 20, 20}, [](const QTransform&, const QRect& device) {
        return QImage(device.size(), QImage::Format_ARGB32_Premultiplied);
    });
    QCOMPARE(painter.transform(), Scroll(7, 8, 3));
    QCOMPARE(painter.opacity(), 0.5);
}

QTEST_MAIN(tst_TileCache)
#include "tst_TileCache.moc"
