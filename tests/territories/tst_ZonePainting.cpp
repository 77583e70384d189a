#include "territories/Zone.h"

#include "app/ProjectSettings.h"
#include "territories/Territory.h"
#include "territories/ZoneIcons.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QTest>

namespace {

constexpr int NoUsage = 99;
/// The distance in pixels from the centre of a picture to its edges.
constexpr int Reach = 60;

/// A transparent picture of the zone in its middle, painted without smoothing.
QImage Picture(Zone& zone, QStyle::State state = QStyle::State_None)
{
    QImage image(2 * Reach, 2 * Reach, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QStyleOptionGraphicsItem option;
    option.state = state;
    QPainter painter(&image);
    painter.translate(Reach, Reach);
    zone.paint(&painter, &option, nullptr);
    return image;
}

/// The centre of the zone, in the size of an icon, on a screen with a device pixel ratio of 2.
QImage EnlargedPicture(Zone& zone)
{
    const int size = ZoneIcons::Icon(zone.GetUsage()).width();
    QImage image(2 * size, 2 * size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(2, 2);
    painter.translate(size / 2, size / 2);
    const QStyleOptionGraphicsItem option;
    zone.paint(&painter, &option, nullptr);
    const bool isSmooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
    return isSmooth ? QImage() : image;
}

/// The colour at a place relative to the centre.
QRgb ColorAt(const QImage& image, int x, int y)
{
    return image.pixelColor(Reach + x, Reach + y).rgba();
}

Territory* TransparentTerritory()
{
    static Territory territory;
    territory.SetRgba(0);
    return &territory;
}

void AddUsages()
{
    QTest::addColumn<int>("usage");
    QTest::addColumn<QString>("resource");
    QTest::newRow("rest") << int(Zone::Rest) << ":/zone/rest";
    QTest::newRow("graze") << int(Zone::Graze) << ":/zone/graze";
    QTest::newRow("water") << int(Zone::Water) << ":/zone/water";
    QTest::newRow("hunting ground") << int(Zone::HuntingGround) << ":/zone/hunting";
    QTest::newRow("event") << int(Zone::DynamicEvent) << ":/zone/event";
}

} // namespace

class tst_ZonePainting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void NoIconBeforeLoading();
    void IconsComeFromTheResources_data() { AddUsages(); }
    void IconsComeFromTheResources();
    void OtherUsagesHaveNoIcon();
    void OutlineGreyIsTheDepth_data();
    void OutlineGreyIsTheDepth();
    void OutlineIsTwoPixelsWide();
    void CircleIsFilledWithColorAndAlpha_data();
    void CircleIsFilledWithColorAndAlpha();
    void OnlySelectedZonesShowTheRectangle();
    void SelectionIsADottedRectangleInsideTheBounds();
    void SelectionLiesBelowTheCircle();
    void IconIsScaledAndCentred_data();
    void IconIsScaledAndCentred();
    void EnlargedIconsHaveMorePixels();
    void EnlargedIconsNeedNotHaveMorePixels();
    void MissingIconLeavesTheCircle();
    void AnySizeCanBePainted_data();
    void AnySizeCanBePainted();
};

void tst_ZonePainting::initTestCase()
{
    // One metre per pixel.
    ProjectSettings::Instance().SetSizes(1024, 1024, 1024, 1024);
}

void tst_ZonePainting::NoIconBeforeLoading()
{
    QVERIFY(ZoneIcons::Icon(Zone::Rest).isNull());
    ZoneIcons::Load();
    QVERIFY(!ZoneIcons::Icon(Zone::Rest).isNull());
    const qint64 key = ZoneIcons::Icon(Zone::Rest).cacheKey();
    ZoneIcons::Load();
    QCOMPARE(ZoneIcons::Icon(Zone::Rest).cacheKey(), key);
}

void tst_ZonePainting::IconsComeFromTheResources()
{
    QFETCH(int, usage);
    QFETCH(QString, resource);
    const QImage expected(resource);
    QVERIFY(!expected.isNull());
    const auto format = QImage::Format_ARGB32;
    QCOMPARE(ZoneIcons::Icon(usage).toImage().convertToFormat(format),
             expected.convertToFormat(format));
}

void tst_ZonePainting::OtherUsagesHaveNoIcon()
{
    QVERIFY(ZoneIcons::Icon(0).isNull());
    QVERIFY(ZoneIcons::Icon(6).isNull());
}

void tst_ZonePainting::OutlineGreyIsTheDepth_data()
{
    QTest::addColumn<double>("depth");
    QTest::addColumn<int>("grey");
    QTest::newRow("lowest") << 2.0 << 2;
    QTest::newRow("cut") << 57.9 << 57;
    QTest::newRow("highest") << 255.0 << 255;
    QTest::newRow("too low") << -7.0 << 2;
    QTest::newRow("too high") << 300.0 << 255;
}

void tst_ZonePainting::OutlineGreyIsTheDepth()
{
    QFETCH(double, depth);
    QFETCH(int, grey);
    Zone zone(TransparentTerritory(), 30.0F);
    zone.setZValue(depth);
    const QImage picture = Picture(zone);
    QCOMPARE(ColorAt(picture, 30, 0), qRgb(grey, grey, grey));
    QCOMPARE(ColorAt(picture, 0, -30), qRgb(grey, grey, grey));
}

void tst_ZonePainting::OutlineIsTwoPixelsWide()
{
    Zone zone(TransparentTerritory(), 30.0F);
    const QImage picture = Picture(zone);
    const QVector<QRgb> acrossTheEdge = {ColorAt(picture, 28, 0), ColorAt(picture, 29, 0),
                                         ColorAt(picture, 30, 0), ColorAt(picture, 31, 0)};
    const QRgb grey = qRgb(2, 2, 2);
    QCOMPARE(acrossTheEdge, (QVector<QRgb>{0, grey, grey, 0}));
}

void tst_ZonePainting::CircleIsFilledWithColorAndAlpha_data()
{
    QTest::addColumn<QRgb>("color");
    QTest::newRow("opaque") << 0xFF102030U;
    QTest::newRow("half") << 0x80FF0000U;
    QTest::newRow("transparent") << 0x00000000U;
}

void tst_ZonePainting::CircleIsFilledWithColorAndAlpha()
{
    QFETCH(QRgb, color);
    Territory territory;
    territory.SetRgba(color);
    Zone zone(&territory, 30.0F);
    const QImage picture = Picture(zone);
    QCOMPARE(ColorAt(picture, -20, 0), color);
    QCOMPARE(ColorAt(picture, 0, 25), color);
    QCOMPARE(ColorAt(picture, 35, 0), 0U);
}

void tst_ZonePainting::OnlySelectedZonesShowTheRectangle()
{
    Zone zone(TransparentTerritory(), 30.0F);
    const QImage plain = Picture(zone, QStyle::State_Enabled | QStyle::State_MouseOver);
    QCOMPARE(ColorAt(plain, -27, -27), 0U);
    const QImage selected = Picture(zone, QStyle::State_Enabled | QStyle::State_Selected);
    QCOMPARE(ColorAt(selected, -27, -27), qRgb(255, 0, 0));
}

namespace {

/// The lengths of the runs of red pixels and of the gaps between them, along the line y from x =
/// first to x = last.
QVector<int> RedRuns(const QImage& image, int y, int first, int last)
{
    QVector<int> runs;
    bool isRed = true;
    for (int x = first; x <= last; ++x) {
        const bool isRedHere = ColorAt(image, x, y) == qRgb(255, 0, 0);
        if (runs.isEmpty() || isRedHere != isRed) {
            runs.append(0);
            isRed = isRedHere;
        }
        ++runs.last();
    }
    return runs;
}

QRect RedBounds(const QImage& image)
{
    QRect bounds;
    for (int y = -Reach; y < Reach; ++y) {
        for (int x = -Reach; x < Reach; ++x) {
            if (ColorAt(image, x, y) == qRgb(255, 0, 0)) {
                bounds |= QRect(x, y, 1, 1);
            }
        }
    }
    return bounds;
}

} // namespace

void tst_ZonePainting::SelectionIsADottedRectangleInsideTheBounds()
{
    Zone zone(TransparentTerritory(), 40.0F);
    zone.SetUsage(NoUsage);
    const QImage picture = Picture(zone, QStyle::State_Selected);
    // The bounds reach from -40.5 to 40.5; 3 inside of them, cut to whole numbers, that is a line
    // from -37 to 38, and it is 3 wide.
    QCOMPARE(RedBounds(picture), QRect(QPoint(-38, -38), QPoint(39, 39)));
    QCOMPARE(ColorAt(picture, -35, -35), 0U);
    // Dots of 6 pixels, square caps included, and gaps of 3, on the part outside the circle.
    const QVector<int> runs = RedRuns(picture, -38, -38, -20);
    QVERIFY(runs.size() >= 4);
    QCOMPARE(runs.mid(1, 2), (QVector<int>{3, 6}));
}

void tst_ZonePainting::SelectionLiesBelowTheCircle()
{
    Territory territory;
    territory.SetRgba(0xFF102030);
    Zone zone(&territory, 40.0F);
    const QImage picture = Picture(zone, QStyle::State_Selected);
    for (int y = -5; y <= 5; ++y) {
        QCOMPARE(ColorAt(picture, -37, y), 0xFF102030U);
    }
}

void tst_ZonePainting::IconIsScaledAndCentred_data()
{
    QTest::addColumn<int>("usage");
    QTest::addColumn<double>("radiusInIcons");
    QTest::addColumn<double>("scale");
    QTest::newRow("own size") << int(Zone::Rest) << 1.0 << 1.0;
    QTest::newRow("never larger") << int(Zone::Graze) << 2.0 << 1.0;
    QTest::newRow("half") << int(Zone::Water) << 0.5 << 0.5;
    QTest::newRow("three quarters") << int(Zone::HuntingGround) << 0.75 << 0.75;
    QTest::newRow("never smaller") << int(Zone::DynamicEvent) << 0.01 << 0.05;
    QTest::newRow("radius of zero") << int(Zone::Rest) << 0.0 << 0.05;
}

void tst_ZonePainting::IconIsScaledAndCentred()
{
    QFETCH(int, usage);
    QFETCH(double, radiusInIcons);
    QFETCH(double, scale);
    const QPixmap icon = ZoneIcons::Icon(usage);
    Zone zone(TransparentTerritory(), float(radiusInIcons * icon.width()));
    zone.SetUsage(NoUsage);
    QImage expected = Picture(zone);
    {
        QPainter painter(&expected);
        painter.translate(Reach, Reach);
        painter.scale(scale, scale);
        painter.drawPixmap(-icon.width() / 2, -icon.height() / 2, icon);
    }
    zone.SetUsage(usage);
    QCOMPARE(Picture(zone), expected);
}

void tst_ZonePainting::EnlargedIconsHaveMorePixels()
{
    QImage dense(":/zone/rest@2x");
    dense.setDevicePixelRatio(1);
    QCOMPARE(dense.width(), 2 * ZoneIcons::Icon(Zone::Rest).width());
    Zone zone(TransparentTerritory(), 100.0F);
    zone.SetUsage(Zone::Rest);
    const QImage shown = EnlargedPicture(zone);
    QCOMPARE(shown, dense.convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

void tst_ZonePainting::EnlargedIconsNeedNotHaveMorePixels()
{
    const QPixmap icon = ZoneIcons::Icon(Zone::Graze);
    QVERIFY(ZoneIcons::DenseIcon(Zone::Graze).isNull());
    Zone zone(TransparentTerritory(), 100.0F);
    zone.SetUsage(Zone::Graze);
    const QImage enlarged = icon.toImage().scaled(2 * icon.size());
    QCOMPARE(EnlargedPicture(zone), enlarged.convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

void tst_ZonePainting::MissingIconLeavesTheCircle()
{
    Territory territory;
    territory.SetRgba(0xFF102030);
    Zone zone(&territory, 30.0F);
    zone.SetUsage(NoUsage);
    const QImage picture = Picture(zone);
    QCOMPARE(ColorAt(picture, 0, 0), 0xFF102030U);
    QCOMPARE(ColorAt(picture, 30, 0), qRgb(2, 2, 2));
}

void tst_ZonePainting::AnySizeCanBePainted_data()
{
    QTest::addColumn<float>("radius");
    QTest::newRow("zero") << 0.0F;
    QTest::newRow("negative") << -30.0F;
    QTest::newRow("larger than the world") << 1e5F;
    QTest::newRow("huge") << 1e30F;
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity();
    QTest::newRow("no number") << std::numeric_limits<float>::quiet_NaN();
}

void tst_ZonePainting::AnySizeCanBePainted()
{
    QFETCH(float, radius);
    QGraphicsScene scene(0, 0, 2 * Reach, 2 * Reach);
    auto* zone = new Zone(TransparentTerritory(), radius);
    scene.addItem(zone);
    zone->setPos(Reach, Reach);
    auto* other = new Zone(TransparentTerritory(), 10.0F);
    scene.addItem(other);
    other->setPos(15, 15);
    zone->setSelected(true);

    QImage image(2 * Reach, 2 * Reach, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    scene.render(&painter);
    QCOMPARE(image.pixel(25, 15), qRgb(2, 2, 2));
}

QTEST_MAIN(tst_ZonePainting)
#include "tst_ZonePainting.moc"
