#include "document/journal/TileSet.h"

#include "layers/raster/MaskTile.h"
#include "tests/support/Random.h"

#include <QTest>

#include <set>
#include <vector>

class tst_TileSet : public QObject
{
    Q_OBJECT

private slots:
    void HoldsTheTilesOfRectangles();
    void TakesAnotherSetIn();
    void HasNoTileWithoutASize();
};

namespace {

std::vector<int> TilesOf(const TileSet& set)
{
    std::vector<int> tiles;
    for (int tile = set.Next(0); tile >= 0; tile = set.Next(tile + 1)) {
        tiles.push_back(tile);
    }
    return tiles;
}

} // namespace

void tst_TileSet::HoldsTheTilesOfRectangles()
{
    Random random;
    for (int round = 0; round < 200; ++round) {
        const QSize size(random.Between(1, 3000), random.Between(1, 3000));
        TileSet set(size);
        std::set<int> expected;
        for (int i = 0; i < 3; ++i) {
            const QRect rect(random.Between(-100, 3100), random.Between(-100, 3100),
                             random.Between(0, 700), random.Between(0, 700));
            set.Add(rect);
            for (int tile = 0; tile < raster::TileCount(size); ++tile) {
                // QRect::intersects finds rectangles that are empty in one direction.
                if (!rect.isEmpty() && raster::TileRect(size, tile).intersects(rect)) {
                    expected.insert(tile);
                }
            }
        }
        if (!expected.empty()) {
            set.Remove(*expected.begin());
            QVERIFY(!set.Contains(*expected.begin()));
            expected.erase(expected.begin());
        }
        QCOMPARE(TilesOf(set), std::vector<int>(expected.begin(), expected.end()));
        QCOMPARE(set.IsEmpty(), expected.empty());
    }
}

void tst_TileSet::TakesAnotherSetIn()
{
    const QSize size(1000, 1000);
    TileSet set(size);
    TileSet other(size);
    set.Add(3);
    other.Add(70);
    other.Add(255);
    set.Add(other);
    QCOMPARE(TilesOf(set), (std::vector<int>{3, 70, 255}));
    set.AddAll();
    QCOMPARE(static_cast<int>(TilesOf(set).size()), raster::TileCount(size));
    set.Clear();
    QVERIFY(set.IsEmpty());
}

void tst_TileSet::HasNoTileWithoutASize()
{
    for (const QSize size : {QSize(), QSize(0, 0), QSize(-70, 5), QSize(-70, -70)}) {
        TileSet set(size);
        set.AddAll();
        set.Add(QRect(0, 0, 10, 10));
        QVERIFY(set.IsEmpty());
    }
}

QTEST_APPLESS_MAIN(tst_TileSet)
#include "tst_TileSet.moc"
