#include "document/edits/PaintMask.h"

#include "layers/raster/Mask.h"
#include "tests/support/DocumentFixture.h"
#include "tests/support/Masks.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <memory>
#include <utility>

/// The edit that gives the pixels of a region a value.
class tst_PaintMask : public QObject
{
    Q_OBJECT

private slots:
    void FillsARegionAndTakesItBack();
    void FillsInPlace();
    void TellsWhatChanged();
    void RegionThatHasTheValueIsNoStep();
    void KeepsOnlyTilesThatTheRegionMeets();
};

namespace {

raster::Region RandomRegion(Random& random)
{
    const QImage mask = RandomMask(random, {DocumentFixture::Side, DocumentFixture::Side});
    raster::Region region;
    for (int y = random.Below(mask.height()); y < mask.height(); ++y) {
        const uchar* row = mask.constScanLine(y);
        for (int x = 0; x < mask.width(); ++x) {
            if (row[x] != 0 && x > 0 && row[x - 1] != 0) {
                region.back().end = x + 1;
            } else if (row[x] != 0) {
                region.push_back({y, x, x + 1});
            }
        }
    }
    return region;
}

} // namespace

void tst_PaintMask::FillsARegionAndTakesItBack()
{
    Random random;
    DocumentFixture fixture;
    Layer* layer = fixture.AddLayer();
    const QSize size = layer->Image().size();
    for (int i = 0; i < 300; ++i) {
        layer->TakePaintedMask(RandomMask(random, size));
        const QByteArray before = Indices(layer->Image());
        const raster::Region region = RandomRegion(random);
        const auto value = static_cast<uchar>(random.Below(3) == 0 ? random.Below(256) : 255);
        QByteArray wanted = before;
        for (const raster::Span& span : region) {
            for (int x = span.begin; x < span.end; ++x) {
                wanted[span.y * size.width() + x] = static_cast<char>(value);
            }
        }
        const bool isStep = fixture.document.Do(
            std::make_unique<PaintMask>(QStringLiteral("Fill"), *layer, region, value));
        QCOMPARE(isStep, wanted != before);
        QCOMPARE(Indices(layer->Image()), wanted);
        fixture.document.Undo();
        QCOMPARE(Indices(layer->Image()), before);
        fixture.document.Redo();
        QCOMPARE(Indices(layer->Image()), wanted);
        fixture.document.History().clear();
    }
}

void tst_PaintMask::FillsInPlace()
{
    DocumentFixture fixture;
    Layer* layer = fixture.AddLayer();
    const uchar* pixels = layer->Image().constBits();
    fixture.document.Do(std::make_unique<PaintMask>(QStringLiteral("Fill"), *layer,
                                                    raster::Region{{5, 10, 20}}, uchar(255)));
    QCOMPARE(layer->Image().constBits(), pixels);
    QCOMPARE(Indices(layer->Image()).count('\xff'), 10);
}

void tst_PaintMask::TellsWhatChanged()
{
    DocumentFixture fixture;
    Layer* layer = fixture.AddLayer();
    QStringList signalsInOrder;
    QObject::connect(&fixture.document, &Document::PixelsAboutToChange, &fixture.document,
                     [&](Layer* about) {
                         QCOMPARE(about, layer);
                         QCOMPARE(Indices(layer->Image()).count('\xff'), 0);
                         signalsInOrder.append(QStringLiteral("about"));
                     });
    QObject::connect(&fixture.document, &Document::LayerChanged, &fixture.document,
                     [&](Layer* changed, Document::LayerAspect aspect, const QRect& rect) {
                         QCOMPARE(changed, layer);
                         QVERIFY(aspect == Document::LayerAspect::Pixels);
                         QVERIFY(fixture.document.ChangedTiles());
                         QCOMPARE(rect, QRect(10, 5, 20, 76));
                         signalsInOrder.append(QStringLiteral("changed"));
                     });
    fixture.document.Do(std::make_unique<PaintMask>(
        QStringLiteral("Fill"), *layer, raster::Region{{5, 15, 30}, {80, 10, 12}}, uchar(255)));
    QCOMPARE(signalsInOrder, QStringList({"about", "changed"}));
}

void tst_PaintMask::RegionThatHasTheValueIsNoStep()
{
    DocumentFixture fixture;
    Layer* layer = fixture.AddLayer();
    QSignalSpy about(&fixture.document, &Document::PixelsAboutToChange);
    const int steps = fixture.document.History().count();
    for (const raster::Region& region : {raster::Region{}, raster::Region{{5, 10, 20}}}) {
        QVERIFY(!fixture.document.Do(std::make_unique<PaintMask>(QStringLiteral("Erase"), *layer,
                                                                 region, raster::MaskClear)));
    }
    QCOMPARE(fixture.document.History().count(), steps);
    QCOMPARE(about.count(), 0);
}

void tst_PaintMask::KeepsOnlyTilesThatTheRegionMeets()
{
    DocumentFixture fixture;
    Layer* layer = fixture.AddLayer();
    QVector<int> tiles;
    QObject::connect(&fixture.document, &Document::LayerChanged, &fixture.document,
                     [&fixture, &tiles] {
                         fixture.document.ChangedTiles()->ForEachTile(
                             [&tiles](int tile) { tiles.append(tile); });
                     });
    // Four columns of tiles; the last one is cut off.
    fixture.document.Do(std::make_unique<PaintMask>(
        QStringLiteral("Fill"), *layer,
        raster::Region{{63, 60, 70}, {64, 190, 200}, {65, 190, 195}}, uchar(255)));
    std::sort(tiles.begin(), tiles.end());
    QCOMPARE(tiles, QVector<int>({0, 1, 6, 7}));
}

QTEST_MAIN(tst_PaintMask)
#include "tst_PaintMask.moc"
