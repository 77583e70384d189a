#include "layers/LayerNumbers.h"

#include "layers/AreaScale.h"
#include "layers/raster/FieldLayout.h"
#include "layers/raster/Mask.h"
#include "tests/support/Masks.h"

#include <QtTest>

#include <functional>

namespace {

bool IsNever()
{
    return false;
}

/// Some layers with flags, and their masks.
struct Counted
{
    Counted(Random& random, QSize layerSize, int layerCount)
        : size(layerSize)
        , usageBits(raster::FieldBits(random.Between(0, 5)))
        , valueBits(raster::FieldBits(random.Between(0, 5)))
    {
        for (int i = 0; i < layerCount; ++i) {
            list.push_back({10 + i, quint32(random.Below(8)), quint32(random.Below(64))});
            masks[10 + i] = RandomMask(random, size);
        }
    }

    void Count(const std::function<bool()>& isTimeUp = IsNever)
    {
        numbers.SetLayers(size, usageBits, valueBits, list);
        numbers.Count([this](int id) { return masks.count(id) != 0 ? &masks.at(id) : nullptr; },
                      isTimeUp);
    }

    /// Counts the pixels for which isCovered(x, y) holds one by one.
    PixelNumbers Literal(const std::function<bool(int x, int y)>& isCovered) const
    {
        PixelNumbers found;
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                if (isCovered(x, y)) {
                    ++found.pixels;
                    found.bounds |= QRect(x, y, 1, 1);
                }
            }
        }
        return found;
    }
    int Value(int id, int x, int y) const
    {
        const QImage& mask = masks.at(id);
        return mask.valid(x, y) ? mask.pixelIndex(x, y) : 0;
    }
    PixelNumbers LiteralFlag(quint32 CountedLayer::*flags, int bit, int bits) const
    {
        const raster::FieldLayout layout(bits, size.width());
        return Literal([&](int x, int y) {
            return bit < bits && layout.Holds(x) &&
                   std::any_of(list.begin(), list.end(), [&](const CountedLayer& layer) {
                       return (layer.*flags & (1U << bit)) != 0 && Value(layer.id, x, y) != 0;
                   });
        });
    }

    /// What is wrong; empty when nothing is.
    QString Wrong() const
    {
        for (const CountedLayer& layer : list) {
            const auto counted = numbers.OfLayer(layer.id);
            const PixelNumbers literal =
                Literal([&](int x, int y) { return Value(layer.id, x, y) != 0; });
            const qint64 set =
                Literal([&](int x, int y) { return Value(layer.id, x, y) == 255; }).pixels;
            if (!counted || counted->pixels != literal.pixels ||
                counted->greys != literal.pixels - set || counted->bounds != literal.bounds) {
                return QString("layer %1").arg(layer.id);
            }
        }
        for (const int bit : {0, 1, 2, 3, 5, 8, 32}) {
            const auto isWrong = [](const std::optional<PixelNumbers>& counted,
                                    const PixelNumbers& literal) {
                return !counted || counted->pixels != literal.pixels ||
                       counted->bounds != literal.bounds;
            };
            if (isWrong(numbers.OfUsage(bit),
                        LiteralFlag(&CountedLayer::usageFlags, bit, usageBits))) {
                return QString("usage %1").arg(bit);
            }
            if (isWrong(numbers.OfValue(bit),
                        LiteralFlag(&CountedLayer::valueFlags, bit, valueBits))) {
                return QString("value %1").arg(bit);
            }
        }
        return {};
    }

    QSize size;
    int usageBits;
    int valueBits;
    std::vector<CountedLayer> list;
    std::map<int, QImage> masks;
    LayerNumbers numbers;
};

} // namespace

class tst_LayerNumbers : public QObject
{
    Q_OBJECT

private slots:
    void EqualALiteralCount();
    void FollowWhatIsTouched();
    void OnlyWhatIsTouchedIsReadAgain();
    void OtherBitsNeedNoNewCount();
    void OverlapsAreCounted();
    void LayersComeAndGo();
    void MasksOfOtherSizesAreCutOff();
    void SlicesComeToTheSameEnd();
    void SizesThatNoMaskHasHaveNoNumbers();
    void TakeLittleMemory();
    void AreasAreThoseOfTheWorld();
};

void tst_LayerNumbers::EqualALiteralCount()
{
    Random random;
    for (int i = 0; i < 6; ++i) {
        Counted counted(random, {random.Between(1, 300), random.Between(1, 300)}, 4);
        counted.Count();
        QVERIFY(counted.numbers.IsCounted());
        QCOMPARE(counted.Wrong(), QString());
    }
}

void tst_LayerNumbers::FollowWhatIsTouched()
{
    Random random;
    Counted counted(random, {290, 270}, 4);
    counted.Count();
    for (int i = 0; i < 6; ++i) {
        const int id = 10 + random.Below(4);
        const QRect rect = QRect(random.Below(290), random.Below(270), random.Between(1, 150),
                                 random.Between(1, 150)) &
                           QRect(0, 0, 290, 270);
        QImage& mask = counted.masks[id];
        const uchar value = random.Below(2) == 0 ? 0 : 77;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            std::fill_n(mask.scanLine(y) + rect.left(), rect.width(), value);
        }
        counted.numbers.Touch(id, rect);
        QVERIFY(!counted.numbers.IsCounted());
        QVERIFY(!counted.numbers.OfLayer(id));
        counted.Count();
        QCOMPARE(counted.Wrong(), QString());
    }
}

void tst_LayerNumbers::OnlyWhatIsTouchedIsReadAgain()
{
    Random random;
    Counted counted(random, {400, 400}, 1);
    counted.Count();
    const qint64 before = counted.numbers.OfLayer(10)->pixels;
    QImage& mask = counted.masks[10];
    const int was = mask.pixelIndex(399, 399) != 0 ? 1 : 0;
    mask.fill(0);
    mask.setPixel(399, 399, 255);
    // Beyond the border is nothing.
    counted.numbers.Touch(10, {500, 10, 20, 20});
    counted.numbers.Touch(99, {0, 0, 20, 20});
    QVERIFY(counted.numbers.IsCounted());
    counted.numbers.Touch(10, {399, 399, 50, 50});
    counted.Count();
    // Of the last square, 16 pixels wide and high, all but one pixel went.
    QVERIFY(counted.numbers.OfLayer(10)->pixels <= before - was + 1);
    QVERIFY(counted.numbers.OfLayer(10)->pixels >= before - 16 * 16);
    QVERIFY(counted.numbers.OfLayer(10)->pixels > 1);
    counted.numbers.TouchAll(10);
    counted.Count();
    QCOMPARE(counted.numbers.OfLayer(10)->pixels, qint64(1));
    QCOMPARE(counted.numbers.OfLayer(10)->bounds, QRect(399, 399, 1, 1));
}

void tst_LayerNumbers::OtherBitsNeedNoNewCount()
{
    Random random;
    // All sections hold all columns.
    Counted counted(random, {128, 100}, 4);
    counted.usageBits = 4;
    counted.Count();
    for (const int bits : {8, 2, 32}) {
        counted.usageBits = bits;
        counted.numbers.SetLayers(counted.size, bits, counted.valueBits, counted.list);
        QVERIFY(counted.numbers.OfLayer(10));
        QVERIFY(counted.numbers.OfValue(0));
        counted.Count();
        QCOMPARE(counted.Wrong(), QString());
    }
    // One of 31 columns is lost, or three.
    Counted lost(random, {31, 100}, 4);
    for (const int bits : {8, 16, 32}) {
        lost.usageBits = bits;
        lost.Count();
        QCOMPARE(lost.Wrong(), QString());
    }
}

void tst_LayerNumbers::OverlapsAreCounted()
{
    Random random;
    Counted counted(random, {200, 200}, 3);
    QVERIFY(counted.numbers.SetOverlap(10, 12));
    QVERIFY(!counted.numbers.SetOverlap(10, 12));
    counted.Count();
    const auto literal = [&counted](int first, int second) {
        return counted
            .Literal([&](int x, int y) {
                return counted.Value(first, x, y) != 0 && counted.Value(second, x, y) != 0;
            })
            .pixels;
    };
    QCOMPARE(counted.numbers.Overlap().value_or(-1), literal(10, 12));
    counted.masks[12].fill(255);
    counted.numbers.TouchAll(12);
    counted.Count();
    QCOMPARE(counted.numbers.Overlap().value_or(-1), literal(10, 12));
    // In the other order, with itself, and with none.
    counted.numbers.SetOverlap(12, 11);
    counted.Count();
    QCOMPARE(counted.numbers.Overlap().value_or(-1), literal(11, 12));
    counted.numbers.SetOverlap(11, 11);
    counted.Count();
    QCOMPARE(counted.numbers.Overlap().value_or(-1), counted.numbers.OfLayer(11)->pixels);
    counted.numbers.SetOverlap(11, 99);
    counted.Count();
    QVERIFY(!counted.numbers.Overlap());
}

void tst_LayerNumbers::LayersComeAndGo()
{
    Random random;
    Counted counted(random, {200, 150}, 4);
    counted.Count();
    counted.list.erase(counted.list.begin() + 1);
    counted.Count();
    QCOMPARE(counted.Wrong(), QString());
    QVERIFY(!counted.numbers.OfLayer(11));
    counted.list.insert(counted.list.begin(), {11, 7, 9});
    counted.list.back().usageFlags = 5;
    counted.Count();
    QCOMPARE(counted.Wrong(), QString());
    counted.usageBits = 1;
    counted.Count();
    QCOMPARE(counted.Wrong(), QString());
    counted.numbers.Clear();
    QVERIFY(counted.numbers.IsCounted());
    QVERIFY(!counted.numbers.OfLayer(10));
}

void tst_LayerNumbers::MasksOfOtherSizesAreCutOff()
{
    Random random;
    Counted counted(random, {200, 200}, 3);
    counted.masks[10] = RandomMask(random, {70, 260});
    counted.masks[11] = RandomMask(random, {260, 70});
    counted.masks[12] = QImage();
    counted.Count();
    QCOMPARE(counted.Wrong(), QString());
}

void tst_LayerNumbers::SlicesComeToTheSameEnd()
{
    Random random;
    Counted counted(random, {300, 300}, 3);
    int slices = 0;
    do {
        int parts = 0;
        counted.Count([&parts] { return ++parts > 2; });
        ++slices;
    } while (!counted.numbers.IsCounted());
    QVERIFY(slices > 10);
    QCOMPARE(counted.Wrong(), QString());
}

void tst_LayerNumbers::SizesThatNoMaskHasHaveNoNumbers()
{
    for (const QSize size : {QSize(0, 5), QSize(-3, 4), QSize(2000000000, 2000000000)}) {
        LayerNumbers numbers;
        numbers.SetLayers(size, 4, 64, {{1, 1, 1}});
        numbers.Touch(1, {0, 0, 10, 10});
        QVERIFY(numbers.Count([](int) { return nullptr; }, IsNever));
        QCOMPARE(numbers.OfLayer(1)->pixels, qint64(0));
        QCOMPARE(numbers.OfUsage(0)->pixels, qint64(0));
    }
}

void tst_LayerNumbers::TakeLittleMemory()
{
    std::vector<CountedLayer> layers;
    for (int i = 0; i < 32; ++i) {
        layers.push_back({i, 1U << i, 3U << i});
    }
    LayerNumbers numbers;
    numbers.SetLayers({16384, 16384}, 32, 32, layers);
    QVERIFY2(numbers.ByteCount() < 8'000'000, qPrintable(QString::number(numbers.ByteCount())));
}

void tst_LayerNumbers::AreasAreThoseOfTheWorld()
{
    const AreaScale scale({100, 50}, {2000, 3000});
    QCOMPARE(scale.SquareKm(5000), 6.0);
    QCOMPARE(scale.SquareKm(50), 0.06);
    QCOMPARE(scale.Percent(50), 1.0);
    QCOMPARE(scale.InWorld({10, 0, 5, 20}), QRectF(200, 1800, 100, 1200));
    QCOMPARE(scale.InWorld({}), QRectF());
    QCOMPARE(AreaScale({0, 0}, {10, 10}).SquareKm(0), 0.0);
}

QTEST_APPLESS_MAIN(tst_LayerNumbers)
#include "tst_LayerNumbers.moc"
