#include "layers/MapProbe.h"

#include "layers/raster/BitFieldRaster.h"
#include "layers/raster/Mask.h"

#include "tests/support/AreaMaps.h"
#include "tests/support/Masks.h"

#include <QtTest>

#include <limits>

using raster::BitFieldRaster;
using raster::FlaggedMask;

class tst_MapProbe : public QObject
{
    Q_OBJECT

private slots:
    void PlacesLieInPixels_data();
    void PlacesLieInPixels();
    void PlacesWithoutASizeAreOutside_data();
    void PlacesWithoutASizeAreOutside();
    void PixelsAreProbedAtTheirCentres_data();
    void PixelsAreProbedAtTheirCentres();
    void EveryPixelsCentreLiesInIt();
    void ScenePlacesAreThoseOfTheRulers();
    void EveryLayerThatIsSetIsThere();
    void BandsOfMasksCountFromTheirFirstRow();
    void NothingIsOutsideOfTheWorld();
    void TheMapHoldsNothingRightOfTheLastWholeWord();
    void SectionsWithoutAFieldHoldNothing_data();
    void SectionsWithoutAFieldHoldNothing();
    void BitsWithoutATypeAreKeptInTheField();
    void EveryWordIsThatOfTheComposedMap();
};

namespace {

constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();
const QPoint Outside(-1, -1);

/// 4 x 3 pixels of 10 m.
MapProbe SmallProbe()
{
    return {{4, 3}, {40, 30}, 8, 8};
}

QVector<int> RowsOf(const LayersHere& here)
{
    QVector<int> rows;
    for (const LayerHere& layer : here.layers) {
        rows.append(layer.row);
    }
    return rows;
}

} // namespace

void tst_MapProbe::PlacesLieInPixels_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("z");
    QTest::addColumn<QPoint>("pixel");
    QTest::newRow("middle of the top left pixel") << 5.0 << 25.0 << QPoint(0, 0);
    QTest::newRow("middle of the bottom right pixel") << 35.0 << 5.0 << QPoint(3, 2);
    QTest::newRow("just below an edge") << 5.0 << 19.9 << QPoint(0, 1);
    QTest::newRow("just right of an edge") << 10.1 << 25.0 << QPoint(1, 0);
    // An edge belongs to the pixel that the mouse is on when the label shows the edge.
    QTest::newRow("between four pixels") << 10.0 << 20.0 << QPoint(1, 1);
    QTest::newRow("top left corner") << 0.0 << 30.0 << QPoint(0, 0);
    QTest::newRow("origin") << 0.0 << 0.0 << QPoint(0, 2);
    QTest::newRow("bottom right corner") << 40.0 << 0.0 << QPoint(3, 2);
    QTest::newRow("top right corner") << 40.0 << 30.0 << QPoint(3, 0);
    QTest::newRow("left of the world") << -0.001 << 5.0 << Outside;
    QTest::newRow("right of the world") << 40.001 << 5.0 << Outside;
    QTest::newRow("below the world") << 5.0 << -0.001 << Outside;
    QTest::newRow("above the world") << 5.0 << 30.001 << Outside;
    QTest::newRow("far away") << 1e300 << -1e300 << Outside;
    QTest::newRow("no number") << Nan << 5.0 << Outside;
    QTest::newRow("infinite") << 5.0 << Infinity << Outside;
}

void tst_MapProbe::PlacesLieInPixels()
{
    QFETCH(double, x);
    QFETCH(double, z);
    QFETCH(QPoint, pixel);
    const MapPlace place = SmallProbe().At(x, z);
    QCOMPARE(place.x, x);
    QCOMPARE(place.z, z);
    QCOMPARE(place.pixel.value_or(Outside), pixel);
}

void tst_MapProbe::PlacesWithoutASizeAreOutside_data()
{
    QTest::addColumn<QSize>("layerSize");
    QTest::addColumn<QSize>("worldSize");
    QTest::newRow("no layer") << QSize(0, 0) << QSize(40, 30);
    QTest::newRow("layer without height") << QSize(4, 0) << QSize(40, 30);
    QTest::newRow("layer below zero") << QSize(-1, -1) << QSize(40, 30);
    QTest::newRow("no world") << QSize(4, 3) << QSize(0, 0);
    QTest::newRow("neither") << QSize(0, 0) << QSize(0, 0);
}

void tst_MapProbe::PlacesWithoutASizeAreOutside()
{
    QFETCH(QSize, layerSize);
    QFETCH(QSize, worldSize);
    const MapProbe probe(layerSize, worldSize, 4, 4);
    for (const double x : {-1.0, 0.0, 1.0}) {
        QVERIFY(!probe.At(x, x).pixel);
    }
    // Pixels need no world.
    QCOMPARE(probe.AtPixel({0, 0}).pixel.has_value(), !layerSize.isEmpty());
}

void tst_MapProbe::PixelsAreProbedAtTheirCentres_data()
{
    QTest::addColumn<QPoint>("pixel");
    QTest::addColumn<bool>("isInside");
    QTest::addColumn<QPointF>("place");
    QTest::newRow("top left") << QPoint(0, 0) << true << QPointF(5, 25);
    QTest::newRow("bottom right") << QPoint(3, 2) << true << QPointF(35, 5);
    QTest::newRow("left") << QPoint(-1, 0) << false << QPointF(-5, 25);
    QTest::newRow("right") << QPoint(4, 0) << false << QPointF(45, 25);
    QTest::newRow("below") << QPoint(0, 3) << false << QPointF(5, -5);
}

void tst_MapProbe::PixelsAreProbedAtTheirCentres()
{
    QFETCH(QPoint, pixel);
    QFETCH(bool, isInside);
    QFETCH(QPointF, place);
    const MapPlace found = SmallProbe().AtPixel(pixel);
    QCOMPARE(QPointF(found.x, found.z), place);
    QCOMPARE(found.pixel.value_or(Outside), isInside ? pixel : Outside);
}

void tst_MapProbe::EveryPixelsCentreLiesInIt()
{
    Random random;
    for (int i = 0; i < 20000; ++i) {
        const QSize size(random.Between(1, 65535), random.Between(1, 65535));
        const QSize world(random.Between(1, 1 << 30), random.Between(1, 1 << 30));
        const MapProbe probe(size, world, 1, 1);
        const QPoint pixel(random.Below(size.width()), random.Below(size.height()));
        const MapPlace centre = probe.AtPixel(pixel);
        QCOMPARE(centre.pixel.value_or(Outside), pixel);
        QCOMPARE(probe.At(centre.x, centre.z).pixel.value_or(Outside), pixel);
    }
}

void tst_MapProbe::ScenePlacesAreThoseOfTheRulers()
{
    const MapPlace place = SmallProbe().AtScene({1.5, 0.25});
    QCOMPARE(QPointF(place.x, place.z), QPointF(15, 27.5));
    QCOMPARE(place.pixel.value_or(Outside), QPoint(1, 0));
    QVERIFY(!SmallProbe().AtScene({-0.1, 1}).pixel);
}

void tst_MapProbe::EveryLayerThatIsSetIsThere()
{
    const QVector<FlaggedMask> masks = {{MaskFromArt({"#...", "....", "...."}), 1, 2},
                                        {MaskFromArt({"....", "####", "...."}), 2, 4},
                                        {MaskFromArt({"+...", "....", "...."}), 8, 0},
                                        {MaskFromArt({"#...", "....", "...."}), 0, 0},
                                        {QImage(), 4, 1}};
    const MapProbe probe = SmallProbe();
    const LayersHere here = probe.Layers(masks, probe.AtPixel({0, 0}));
    QCOMPARE(RowsOf(here), (QVector<int>{0, 2, 3}));
    QCOMPARE(here.layers.at(0).grey, 255);
    QCOMPARE(here.layers.at(1).grey, 1);
    QCOMPARE(here.usage.value_or(99), 9U);
    QCOMPARE(here.value.value_or(99), 2U);
}

void tst_MapProbe::BandsOfMasksCountFromTheirFirstRow()
{
    const MapProbe probe = SmallProbe();
    for (const int y : {0, 1, 2}) {
        const MapPlace place = probe.AtPixel({2, y});
        LayersHere here = probe.NoLayers(place);
        probe.AddLayer(7, {MaskFromArt({"..#."}), 1, 1}, 2, place, here);
        QCOMPARE(RowsOf(here), y == 2 ? QVector<int>{7} : QVector<int>());
    }
}

void tst_MapProbe::NothingIsOutsideOfTheWorld()
{
    const MapProbe probe = SmallProbe();
    const LayersHere here = probe.Layers({{FullMask({9, 9}), 1, 1}}, probe.At(41, 5));
    QVERIFY(here.layers.empty());
    QVERIFY(!here.usage);
    QVERIFY(!here.value);
}

void tst_MapProbe::TheMapHoldsNothingRightOfTheLastWholeWord()
{
    // The usages have 4 pixels a word, the values 2.
    const MapProbe probe({7, 1}, {7, 1}, 8, 16);
    const QVector<FlaggedMask> masks = {{FullMask({7, 1}), 1, 2}};
    for (int x = 0; x < 7; ++x) {
        const LayersHere here = probe.Layers(masks, probe.AtPixel({x, 0}));
        QCOMPARE(RowsOf(here), QVector<int>{0});
        QCOMPARE(here.usage.has_value(), x < 4);
        QCOMPARE(here.value.has_value(), x < 6);
    }
}

void tst_MapProbe::SectionsWithoutAFieldHoldNothing_data()
{
    QTest::addColumn<int>("flagTypes");
    QTest::addColumn<bool>("hasField");
    QTest::newRow("no types") << 0 << false;
    QTest::newRow("one") << 1 << true;
    QTest::newRow("as many as a map can hold") << 32 << true;
    QTest::newRow("one more") << 33 << false;
}

void tst_MapProbe::SectionsWithoutAFieldHoldNothing()
{
    QFETCH(int, flagTypes);
    QFETCH(bool, hasField);
    const MapProbe probe({64, 1}, {64, 1}, raster::FieldBits(flagTypes), 1);
    const LayersHere here = probe.Layers({{FullMask({64, 1}), 1, 1}}, probe.AtPixel({0, 0}));
    QCOMPARE(here.usage.has_value(), hasField);
    QVERIFY(here.value);
}

void tst_MapProbe::BitsWithoutATypeAreKeptInTheField()
{
    // Three types take four bits.
    const MapProbe probe({8, 1}, {8, 1}, raster::FieldBits(3), raster::FieldBits(2));
    const LayersHere here =
        probe.Layers({{FullMask({8, 1}), 0xFFFFFFFA, 0xFFFFFFFE}}, probe.AtPixel({0, 0}));
    QCOMPARE(here.usage.value_or(99), 0xAU);
    // Two bits a pixel have no whole word in eight pixels.
    QVERIFY(!here.value);
}

void tst_MapProbe::EveryWordIsThatOfTheComposedMap()
{
    Random random;
    for (int i = 0; i < 60; ++i) {
        const RandomMap map(random);
        const int usageBits = raster::FieldBits(map.usageCount);
        const int valueBits = raster::FieldBits(map.valueCount);
        QVector<FlaggedMask> masks;
        for (const literal::MapLayer& layer : map.layers) {
            masks.append({layer.image, layer.usageFlags, layer.valueFlags});
        }
        BitFieldRaster usages(usageBits, map.size.width(), map.size.height());
        BitFieldRaster values(valueBits, map.size.width(), map.size.height());
        raster::ComposeFields(masks, usages, values);
        const MapProbe probe(map.size, {1000, 700}, usageBits, valueBits);
        for (int place = 0; place < 300; ++place) {
            const QPoint pixel(random.Below(map.size.width()), random.Below(map.size.height()));
            const LayersHere here = probe.Layers(masks, probe.AtPixel(pixel));
            const int row = map.size.height() - 1 - pixel.y();
            QCOMPARE(here.usage.has_value(), pixel.x() < usages.FieldsPerRow());
            QCOMPARE(here.value.has_value(), pixel.x() < values.FieldsPerRow());
            QCOMPARE(here.usage.value_or(0), usages.Get(pixel.x(), row));
            QCOMPARE(here.value.value_or(0), values.Get(pixel.x(), row));
        }
    }
}

QTEST_GUILESS_MAIN(tst_MapProbe)

#include "tst_MapProbe.moc"
