#include "document/LiveLayers.h"

#include "document/Formulas.h"
#include "tests/support/LiveGraph.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace {

constexpr int Side = DocumentFixture::Side;

QRect RandomRect(Random& random, int longest)
{
    const QRect rect(random.Below(Side), random.Below(Side), 1 + random.Below(longest),
                     1 + random.Below(longest));
    return rect & QRect(0, 0, Side, Side);
}

} // namespace

/// How live layers follow what they are made of.
class tst_LiveLayers : public QObject
{
    Q_OBJECT

private slots:
    void FollowsEachStepExactly();
    void AStrokeWithoutAnEffectHidesNoEdit();
    void WhatTakesLongWaitsUntilTheHandRests();
    void FinishComputesWhatWaits();
    void AStrokeDuringTheComputationCounts();
    void DetachedLayersStay();
    void LayersThatAreOutOfStepStay();
    void ChangesAreAnnouncedOnce();
    void HandsMayNotPaintOnLiveLayers();
    void LockedLayersCatchUpWhenTheyAreUnlocked();
    void LayersThatWaitedInTheFileGoOn_data();
    void LayersThatWaitedInTheFileGoOn();
    void WhatWaitsIsShownAtOnce();
    void WhatChangesNoPixelIsUpToDateAfterwards();

private:
    static bool IsSet(const Layer& layer, QPoint at)
    {
        return layer.Image().pixelIndex(at) == raster::MaskSet;
    }
    static Formula Dilation(const Layer& layer, int metres)
    {
        return {OperationDilation, {layer.Id()}, metres};
    }
};

void tst_LiveLayers::FollowsEachStepExactly()
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("QUILLMAP_STROKES", &isSet);
    const int strokes = isSet ? wanted : 30;
    Random random;
    std::unique_ptr<LiveGraph> graph;
    for (int i = 0; i < strokes; ++i) {
        if (i % 10 == 0) {
            // There is one project at a time.
            graph.reset();
            graph = std::make_unique<LiveGraph>(random);
            graph->fixture.document.BeginHistory(true);
            QCOMPARE(graph->Wrong(), QString());
        }
        Document& document = graph->fixture.document;
        Layer& layer = *graph->painted.at(random.Below(2));
        const uchar value =
            static_cast<uchar>(random.Below(3) == 0 ? random.Below(256) : 255 * random.Below(2));
        Stroke stroke(document, layer);
        for (int step = random.Below(4); step >= 0; --step) {
            stroke.Step(RandomRect(random, 40), value);
            const QString wrong = random.Below(4) == 0 ? graph->Wrong() : QString();
            QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
        }
        if (random.Below(5) == 0) {
            stroke.Cancel();
        } else {
            stroke.End();
        }
        QCOMPARE(graph->Wrong(), QString());
        if (random.Below(3) == 0) {
            graph->fixture.Fill(layer, RandomRect(random, Side), value);
            QCOMPARE(graph->Wrong(), QString());
        }
        for (int undo = random.Below(3); undo > 0; --undo) {
            document.Undo();
            QCOMPARE(graph->Wrong(), QString());
        }
        if (random.Below(2) == 0) {
            document.Redo();
            QCOMPARE(graph->Wrong(), QString());
        }
    }
}

void tst_LiveLayers::AStrokeWithoutAnEffectHidesNoEdit()
{
    Random random;
    LiveGraph graph(random);
    Layer& layer = *graph.painted.first();
    graph.fixture.Fill(layer, {0, 0, Side, Side}, 0);
    const int steps = graph.fixture.document.History().count();

    Stroke stroke(graph.fixture.document, layer);
    stroke.Step({0, 0, Side, Side}, 0);
    stroke.End();
    QCOMPARE(graph.fixture.document.History().count(), steps);
    graph.fixture.Fill(layer, {0, 0, Side, Side}, 255);
    QCOMPARE(graph.Wrong(), QString());
}

void tst_LiveLayers::WhatTakesLongWaitsUntilTheHandRests()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.AddShore();
    Layer* beyond = graph.Add(Dilation(*shore, 3));
    document.Live().SetFrameCost(0);
    const QByteArray before = Indices(shore->Image());

    graph.fixture.Fill(*graph.painted.first(), {20, 20, 150, 150}, 77);
    QVERIFY(document.Live().IsPending(*shore));
    QCOMPARE(Indices(shore->Image()), before);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::OutOfDate);
    QCOMPARE(document.LayerFormulas().StateOf(*beyond), FormulaState::OutOfDate);
    QVERIFY(!graph.Wrong().isEmpty());

    QTRY_COMPARE(graph.Wrong(), QString());
    QTRY_COMPARE(document.LayerFormulas().StateOf(*beyond), FormulaState::UpToDate);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::UpToDate);
}

void tst_LiveLayers::FinishComputesWhatWaits()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    document.Live().SetFrameCost(0);
    const QVector<QByteArray> before = graph.Pixels();

    graph.fixture.Fill(*graph.painted.first(), {20, 20, 150, 150}, 77);
    document.Live().Finish();
    QCOMPARE(graph.Wrong(), QString());
    document.Undo();
    document.Live().Finish();
    QCOMPARE(graph.Pixels(), before);
}

void tst_LiveLayers::AStrokeDuringTheComputationCounts()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    document.Live().SetFrameCost(0);
    for (int i = 0; i < 20; ++i) {
        Stroke stroke(document, *graph.painted.at(i % 2));
        stroke.Step(RandomRect(random, 60), 255 * (i % 3 == 0));
        // The thread begins, and its result arrives during the stroke or later.
        QTest::qWait(random.Below(30));
        stroke.Step(RandomRect(random, 60), 255 * (i % 3 == 0));
        stroke.End();
        QTest::qWait(140 + random.Below(30));
    }
    QTRY_COMPARE(graph.Wrong(), QString());
}

void tst_LiveLayers::DetachedLayersStay()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.AddShore();

    document.Do(Edits::DetachLayer(*shore));
    const QByteArray before = Indices(shore->Image());
    QVERIFY(document.WhyPixelsStay(*shore).isEmpty());
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::UpToDate);
    graph.fixture.Fill(*graph.painted.first(), {0, 0, Side, Side}, 77);

    QCOMPARE(Indices(shore->Image()), before);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::OutOfDate);
}

void tst_LiveLayers::LayersThatAreOutOfStepStay()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.AddShore();
    document.Do(Edits::DetachLayer(*shore));
    graph.fixture.Fill(*shore, {100, 100, 20, 20}, 99);
    const QByteArray edited = Indices(shore->Image());
    document.Do(Edits::MakeLayerLive(*shore, {}));
    graph.fixture.Fill(*graph.painted.first(), {0, 0, Side, Side}, 77);

    QVERIFY(!document.Live().IsFollowing(*shore));
    QCOMPARE(Indices(shore->Image()), edited);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::Edited);
    document.Do(Edits::UpdateLayers({shore}));
    QVERIFY(document.Live().IsFollowing(*shore));
    QCOMPARE(graph.Wrong(), QString());
    document.Undo();
    QCOMPARE(Indices(shore->Image()), edited);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::Edited);
}

void tst_LiveLayers::ChangesAreAnnouncedOnce()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* blank = graph.fixture.AddLayer();
    graph.all.append(blank);
    Layer* shore = graph.Add(Dilation(*blank, 3));
    QVector<QPair<Layer*, QRect>> announced;
    connect(&document, &Document::LayerChanged, this,
            [&](Layer* layer, Document::LayerAspect, const QRect& rect) {
                announced.append({layer, rect});
            });

    Stroke stroke(document, *blank);
    stroke.Step({50, 50, 10, 10}, 255);
    stroke.Step({60, 50, 10, 10}, 255);
    QVERIFY(announced.isEmpty());
    stroke.End();

    QCOMPARE(announced.size(), 2);
    QCOMPARE(announced.last().first, shore);
    QCOMPARE(announced.last().second, QRect(47, 47, 26, 16));
    disconnect(&document, nullptr, this, nullptr);
}

void tst_LiveLayers::HandsMayNotPaintOnLiveLayers()
{
    Random random;
    LiveGraph graph(random);
    const Document& document = graph.fixture.document;

    QVERIFY(document.WhyPixelsStay(*graph.all.last()).contains(QLatin1String("Layer > Live")));
    QVERIFY(document.WhyPixelsStay(*graph.painted.first()).isEmpty());
}

void tst_LiveLayers::LockedLayersCatchUpWhenTheyAreUnlocked()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.AddShore();
    const QByteArray before = Indices(shore->Image());

    document.SetLocked(*shore, true);
    graph.fixture.Fill(*graph.painted.first(), {20, 20, 150, 150}, 77);
    document.Live().Finish();
    QCOMPARE(Indices(shore->Image()), before);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::OutOfDate);
    document.SetLocked(*shore, false);
    QTRY_COMPARE(graph.Wrong(), QString());
    QTRY_COMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::UpToDate);
}

void tst_LiveLayers::LayersThatWaitedInTheFileGoOn_data()
{
    QTest::addColumn<bool>("isLocked");
    QTest::newRow("slow") << false;
    QTest::newRow("locked") << true;
}

void tst_LiveLayers::LayersThatWaitedInTheFileGoOn()
{
    QFETCH(const bool, isLocked);
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.AddShore();
    document.SetLocked(*shore, isLocked);
    document.Live().SetFrameCost(0);
    graph.fixture.Fill(*graph.painted.first(), {20, 20, 150, 150}, 77);
    QVERIFY(document.Live().IsPending(*shore));
    const QByteArray before = Indices(shore->Image());
    const FormulaReading reading =
        ReadFormulas(FormulaDocument(document.LayerFormulas().Records()));
    shore->StoreCode({});
    document.LayerFormulas().SetFacts(*shore, {});

    document.LayerFormulas().Read(reading, {});

    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::OutOfDate);
    QVERIFY(document.Live().IsFollowing(*shore));
    if (isLocked) {
        document.Live().Finish();
        QCOMPARE(Indices(shore->Image()), before);
        document.SetLocked(*shore, false);
    }
    QTRY_COMPARE(graph.Wrong(), QString());
}

void tst_LiveLayers::WhatWaitsIsShownAtOnce()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* blank = graph.fixture.AddLayer();
    graph.all.append(blank);
    Layer* shore = graph.Add(Dilation(*blank, 9));
    document.Live().SetFrameCost(0);
    const QSignalSpy told(&document, &Document::LayerMarksChanged);

    Stroke stroke(document, *blank);
    stroke.Step({20, 20, 50, 50}, 255);
    QCOMPARE(told.size(), 1);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::OutOfDate);
    stroke.Step({60, 60, 50, 50}, 255);
    QCOMPARE(told.size(), 1);
    stroke.Step({20, 20, 90, 90}, 0);
    stroke.End();
    // It changed nothing, so there is no edit, and other layers are what they were.
    QCOMPARE(told.size(), 2);
    document.Live().Finish();
    QCOMPARE(told.size(), 3);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::UpToDate);
}

void tst_LiveLayers::WhatChangesNoPixelIsUpToDateAfterwards()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* blank = graph.fixture.AddLayer();
    graph.all.append(blank);
    Layer* core = graph.Add({OperationErosion, {blank->Id()}, 9});
    document.Live().SetFrameCost(0);

    graph.fixture.Fill(*blank, {50, 50, 2, 2}, 255);
    QCOMPARE(document.LayerFormulas().StateOf(*core), FormulaState::OutOfDate);
    const QSignalSpy told(&document, &Document::LayerMarksChanged);
    const QSignalSpy noted(&document, &Document::FormulaChanged);
    QTRY_VERIFY(!document.Live().IsPending(*core));
    QCOMPARE(document.LayerFormulas().StateOf(*core), FormulaState::UpToDate);
    QCOMPARE(told.size(), 1);
    // The journal writes fingerprints again.
    QCOMPARE(noted.size(), 1);
}

QTEST_MAIN(tst_LiveLayers)
#include "tst_LiveLayers.moc"
