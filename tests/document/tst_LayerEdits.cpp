#include "document/edits/LayerEdits.h"

#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "tests/support/DocumentFixture.h"
#include "tests/support/MemoryLimit.h"

#include <QTest>

#include <memory>
#include <numeric>
#include <utility>

namespace {

QImage Greys(QSize size)
{
    QImage mask = raster::BlankMask(size);
    for (int y = 0; y < mask.height(); ++y) {
        std::iota(mask.scanLine(y), mask.scanLine(y) + mask.width(), uchar(y));
    }
    return mask;
}

} // namespace

/// Edits of whole layers that need another mask.
class tst_LayerEdits : public QObject
{
    Q_OBJECT

private slots:
    void NamesADuplicate_data();
    void NamesADuplicate();
    void MergesNoLayersOfDifferentSizes();
    void GivesNothingWithoutMemory();
};

void tst_LayerEdits::NamesADuplicate_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("copy");

    QTest::newRow("free") << "Lake"
                          << "Lake (3)";
    QTest::newRow("with a number") << "Lake (2)"
                                   << "Lake (2) (2)";
    QTest::newRow("not allowed") << "a/b"
                                 << "a_b";
}

void tst_LayerEdits::NamesADuplicate()
{
    QFETCH(QString, name);
    QFETCH(QString, copy);
    DocumentFixture fixture;
    for (const QString& each : {QString("Lake"), QString("Lake (2)"), QString("a/b")}) {
        fixture.AddLayer()->setText(each);
    }
    Layer* layer = fixture.document.Layers().LayerByName(name);
    QVERIFY(fixture.document.Do(Edits::DuplicateLayer(*layer)));
    QCOMPARE(fixture.document.Layers().LayerAt(layer->row() + 1)->text(), copy);
}

void tst_LayerEdits::MergesNoLayersOfDifferentSizes()
{
    DocumentFixture fixture;
    Layer* layer = fixture.AddLayer();
    Layer* other = fixture.AddLayer();
    other->SetImage(Greys({7, 5}), Qt::white);
    QVERIFY(!Edits::MergeLayers(*layer, *other));
}

void tst_LayerEdits::GivesNothingWithoutMemory()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("The sanitizers take address space as they go.");
#endif
    const QImage greys = Greys({8192, 8192});
    LayerList list;
    for (const char* name : {"a", "b"}) {
        auto layer = std::make_unique<Layer>(0, 0, &list, QLatin1String(name));
        layer->SetImage(greys, Qt::white);
        list.AddLayer(std::move(layer));
    }
    Layer& a = *list.LayerAt(0);
    const QImage blank = raster::BlankMask(greys.size());
    const MemoryLimit limit(8 * AMebibyte);
    QVERIFY(!Edits::DuplicateLayer(a));
    QVERIFY(!Edits::FillLayer("Fill", a, raster::MaskSet));
    QVERIFY(!Edits::FillLayer("Clear", a, raster::MaskClear));
    QVERIFY(!Edits::MergeLayers(a, *list.LayerAt(1)));
    QVERIFY(!Edits::ChangePixels("Change", a, QImage()));
    // There is a mask, but no memory for what it was.
    QVERIFY(!Edits::ChangePixels("Change", a, blank));
    QCOMPARE(list.Layers().size(), 2);
}

QTEST_MAIN(tst_LayerEdits)
#include "tst_LayerEdits.moc"
