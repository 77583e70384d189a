#include "document/LiveLayers.h"

#include "document/Formulas.h"
#include "document/edits/EditGroup.h"
#include "document/edits/FormulaEdits.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "layers/Formula.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"
#include "layers/raster/MaskDelta.h"

#include "tests/support/DocumentFixture.h"
#include "tests/support/Masks.h"

#include <QSignalSpy>
#include <QtTest>

#include <cstring>
#include <memory>

namespace {

constexpr int Side = DocumentFixture::Side;

/// Paints on a layer as the brush does: steps that are announced, and an edit at the end.
class Stroke
{
public:
    Stroke(Document& document, Layer& layer)
        : m_document(document)
        , m_layer(layer)
    {
        m_document.SetHandBusy(true);
    }

    void Step(const QRect& rect, uchar value)
    {
        m_delta.Touch(m_layer.Image(), rect);
        QImage pixels = raster::BlankMask(rect.size());
        pixels.fill(value);
        m_layer.PutPixels(rect, pixels, {});
        m_changed |= rect;
        emit m_document.Painted(&m_layer, rect);
    }
    void End()
    {
        m_document.SetHandBusy(false);
        m_delta.DropUnchanged(m_layer.Image());
        m_document.Do(std::make_unique<PaintMask>(QStringLiteral("Stroke"), m_layer,
                                                  std::move(m_delta), m_changed));
    }
    void Cancel()
    {
        m_document.SetHandBusy(false);
        m_layer.SwapPixels(m_delta);
        emit m_document.Painted(&m_layer, m_changed);
    }

private:
    Document& m_document;
    Layer& m_layer;
    raster::MaskDelta m_delta;
    QRect m_changed;
};

QRect RandomRect(Random& random, int longest)
{
    const QRect rect(random.Below(Side), random.Below(Side), 1 + random.Below(longest),
                     1 + random.Below(longest));
    return rect & QRect(0, 0, Side, Side);
}

/// A document with painted layers and live ones that are made of them and of one another.
struct Graph
{
    explicit Graph(Random& random)
        : m_random(random)
    {
        for (int i = 0; i < 2; ++i) {
            Layer* layer = fixture.AddLayer();
            painted.append(layer);
            all.append(layer);
            const QImage mask = RandomMask(random, {Side, Side});
            fixture.document.Do(std::make_unique<PaintMask>(QString(), *layer, mask));
        }
        for (int i = 0; i < 4; ++i) {
            AddComputed();
        }
    }

    Layer* Add(const Formula& formula)
    {
        Document& document = fixture.document;
        document.Do(
            Edits::AddComputedLayer(document.Layers(), QString::number(all.size()), formula.Code(),
                                    EvaluateAtLayerSize(document.Layers(), formula.Code())));
        Layer* layer = document.Layers().LayerAt(all.size());
        all.append(layer);
        document.Do(Edits::MakeLayerLive(*layer, {}));
        return layer;
    }
    /// Its first operand is the last layer, so they are a chain.
    void AddComputed()
    {
        const int operation = m_random.Below(OperationUnknown);
        Formula formula{static_cast<CustomOperation>(operation), {all.constLast()->Id()}, 0};
        if (IsBinaryOperation(operation)) {
            formula.operands.append(all.at(m_random.Below(all.size()))->Id());
        }
        if (IsMorphologicalOperation(operation)) {
            formula.metres = m_random.Below(m_random.Below(4) == 0 ? 60 : 12);
        }
        Add(formula);
    }

    /// The code of the first layer whose pixels are not those of its formula; empty when all are.
    QString Wrong() const
    {
        for (const Layer* layer : all) {
            if (!layer->Code().isEmpty() &&
                Indices(layer->Image()) !=
                    Indices(EvaluateAtLayerSize(fixture.document.Layers(), layer->Code()))) {
                return layer->Code();
            }
        }
        return {};
    }
    QVector<QByteArray> Pixels() const
    {
        QVector<QByteArray> pixels;
        for (const Layer* layer : all) {
            pixels.append(Indices(layer->Image()));
        }
        return pixels;
    }

    Random& m_random;
    DocumentFixture fixture;
    QVector<Layer*> painted;
    QVector<Layer*> all;
};

} // namespace

class tst_LiveLayers : public QObject
{
    Q_OBJECT

private slots:
    void FollowsEachStepExactly();
    void OneUndoTakesStrokeAndConsequencesBack();
    void ACancelledStrokeLeavesNothing();
    void AStrokeWithoutAnEffectHidesNoEdit();
    void WhatTakesLongWaitsUntilTheHandRests();
    void FinishComputesWhatWaits();
    void AStrokeDuringTheComputationCounts();
    void FollowsWhenAnOperandComesBack();
    void DetachedLayersStay();
    void UndoOfDetachingFollowsAgain();
    void LayersThatAreOutOfStepStay();
    void ChangesAreAnnouncedOnce();
    void HandsMayNotPaintOnLiveLayers();
    void WhatChangesALiveLayerIsUndone();
    void LockedLayersCatchUpWhenTheyAreUnlocked();
    void AnUndoneUpdateLeavesFollowersFollowing_data() { Travels(); }
    void AnUndoneUpdateLeavesFollowersFollowing();
    void AnUndoneUpdateBringsHandEditsBack();
    void JumpsPassWhereALayerBecameLive_data() { Travels(); }
    void JumpsPassWhereALayerBecameLive();
    void WhatWaitsIsShownAtOnce();
    void WhatChangesNoPixelIsUpToDateAfterwards();

private:
    static void Travels()
    {
        QTest::addColumn<bool>("isSlow");
        QTest::addColumn<bool>("isLocked");
        QTest::newRow("at once") << false << false;
        QTest::newRow("when the hand rests") << true << false;
        QTest::newRow("locked") << false << true;
        QTest::newRow("locked, when the hand rests") << true << true;
    }
    /// Goes to a state of the history, while the layer is locked if the row of Travels says so, and
    /// waits for what comes of it.
    static void Travel(Document& document, const Layer& layer, int index)
    {
        QFETCH(bool, isLocked);
        document.SetLocked(layer, isLocked);
        document.History().setIndex(index);
        document.SetLocked(layer, false);
        document.Live().Finish();
    }
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
    std::unique_ptr<Graph> graph;
    for (int i = 0; i < strokes; ++i) {
        if (i % 10 == 0) {
            // There is one project at a time.
            graph.reset();
            graph = std::make_unique<Graph>(random);
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

void tst_LiveLayers::OneUndoTakesStrokeAndConsequencesBack()
{
    Random random;
    Graph graph(random);
    Document& document = graph.fixture.document;
    const int steps = document.History().count();
    const QVector<QByteArray> before = graph.Pixels();

    Stroke stroke(document, *graph.painted.first());
    stroke.Step({20, 20, 50, 50}, 255);
    stroke.Step({60, 60, 50, 50}, 255);
    stroke.End();
    const QVector<QByteArray> after = graph.Pixels();
    QCOMPARE(document.History().count(), steps + 1);
    document.Undo();
    QCOMPARE(graph.Pixels(), before);
    document.Redo();
    QCOMPARE(graph.Pixels(), after);
}

void tst_LiveLayers::ACancelledStrokeLeavesNothing()
{
    Random random;
    Graph graph(random);
    Layer* blank = graph.fixture.AddLayer();
    graph.all.append(blank);
    const Layer* shore = graph.Add(Dilation(*blank, 9));
    const QVector<QByteArray> before = graph.Pixels();
    // The map shows a layer again when it hears that the change is complete.
    QRect announced;
    connect(&graph.fixture.document, &Document::LayerChanged, this,
            [&](const Layer* layer, Document::LayerAspect, const QRect& rect) {
                announced |= layer == shore ? rect : QRect();
            });

    Stroke stroke(graph.fixture.document, *blank);
    stroke.Step({20, 20, 50, 50}, 255);
    const QVector<QByteArray> painted = graph.Pixels();
    stroke.Cancel();
    disconnect(&graph.fixture.document, nullptr, this, nullptr);

    QVERIFY(painted != before);
    QCOMPARE(graph.Pixels(), before);
    QVERIFY(announced.contains(QRect(20, 20, 50, 50)));
}

void tst_LiveLayers::AStrokeWithoutAnEffectHidesNoEdit()
{
    Random random;
    Graph graph(random);
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
    Graph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.Add(Dilation(*graph.painted.first(), 9));
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
    Graph graph(random);
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
    Graph graph(random);
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

void tst_LiveLayers::FollowsWhenAnOperandComesBack()
{
    Random random;
    Graph graph(random);
    Document& document = graph.fixture.document;
    const Formula formula{
        OperationUnion, {graph.painted.at(0)->Id(), graph.painted.at(1)->Id()}, 0};
    Layer* both = graph.Add(formula);
    const QVector<QByteArray> before = graph.Pixels();

    auto group = std::make_unique<EditGroup>(QStringLiteral("Merge"));
    group->Add(
        std::make_unique<PaintMask>(QString(), *graph.painted.at(0), FullMask({Side, Side})));
    group->Add(Edits::RemoveLayer(*graph.painted.at(1)));
    document.Do(std::move(group));
    QCOMPARE(document.LayerFormulas().StateOf(*both), FormulaState::Broken);
    graph.fixture.Fill(*graph.painted.at(0), {5, 5, 20, 20}, 0);
    document.Undo();
    document.Undo();

    QCOMPARE(document.LayerFormulas().StateOf(*both), FormulaState::UpToDate);
    QCOMPARE(graph.Pixels(), before);
    graph.fixture.Fill(*graph.painted.at(1), {5, 5, 20, 20}, 255);
    QCOMPARE(graph.Wrong(), QString());
    QVERIFY(IsSet(*both, {10, 10}));
}

void tst_LiveLayers::DetachedLayersStay()
{
    Random random;
    Graph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.Add(Dilation(*graph.painted.first(), 9));

    document.Do(Edits::DetachLayer(*shore));
    const QByteArray before = Indices(shore->Image());
    QVERIFY(document.WhyPixelsStay(*shore).isEmpty());
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::UpToDate);
    graph.fixture.Fill(*graph.painted.first(), {0, 0, Side, Side}, 77);

    QCOMPARE(Indices(shore->Image()), before);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::OutOfDate);
}

void tst_LiveLayers::UndoOfDetachingFollowsAgain()
{
    Random random;
    Graph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.Add(Dilation(*graph.painted.first(), 9));
    graph.fixture.Fill(*graph.painted.first(), {10, 10, 20, 20}, 255);
    document.Do(Edits::DetachLayer(*shore));
    graph.fixture.Fill(*shore, {100, 100, 20, 20}, 98);
    graph.fixture.Fill(*graph.painted.first(), {50, 50, 20, 20}, 97);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::Edited);
    document.Undo();
    document.Undo();
    document.Undo();

    QCOMPARE(graph.Wrong(), QString());
    graph.fixture.Fill(*graph.painted.first(), {0, 0, Side, Side}, 77);
    QCOMPARE(graph.Wrong(), QString());
}

void tst_LiveLayers::LayersThatAreOutOfStepStay()
{
    Random random;
    Graph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.Add(Dilation(*graph.painted.first(), 9));
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
    Graph graph(random);
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
    Graph graph(random);
    const Document& document = graph.fixture.document;

    QVERIFY(document.WhyPixelsStay(*graph.all.last()).contains(QLatin1String("Layer > Live")));
    QVERIFY(document.WhyPixelsStay(*graph.painted.first()).isEmpty());
}

void tst_LiveLayers::WhatChangesALiveLayerIsUndone()
{
    Random random;
    Graph graph(random);
    const QVector<QByteArray> before = graph.Pixels();

    graph.fixture.Fill(*graph.all.last(), {0, 0, Side, Side}, 99);
    QCOMPARE(graph.Pixels(), before);
    graph.fixture.document.Undo();
    QCOMPARE(graph.Pixels(), before);
}

void tst_LiveLayers::LockedLayersCatchUpWhenTheyAreUnlocked()
{
    Random random;
    Graph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.Add(Dilation(*graph.painted.first(), 9));
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

void tst_LiveLayers::AnUndoneUpdateLeavesFollowersFollowing()
{
    QFETCH(bool, isSlow);
    Random random;
    Graph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.Add(Dilation(*graph.painted.first(), 9));
    document.Do(Edits::DetachLayer(*shore));
    Layer* beyond = graph.Add(Dilation(*shore, 3));
    graph.fixture.Fill(*graph.painted.first(), {20, 20, 150, 150}, 77);
    const QVector<QByteArray> before = graph.Pixels();
    if (isSlow) {
        document.Live().SetFrameCost(0);
    }

    document.Do(Edits::UpdateLayers({shore, beyond}));
    QCOMPARE(graph.Wrong(), QString());
    const QVector<QByteArray> after = graph.Pixels();
    QVERIFY(after != before);
    const int index = document.History().index();
    Travel(document, *beyond, index - 1);
    QCOMPARE(graph.Pixels(), before);
    QVERIFY(document.Live().IsFollowing(*beyond));
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::OutOfDate);
    Travel(document, *beyond, index);
    QCOMPARE(graph.Pixels(), after);
    QVERIFY(document.Live().IsFollowing(*beyond));
}

void tst_LiveLayers::AnUndoneUpdateBringsHandEditsBack()
{
    Random random;
    Graph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.Add(Dilation(*graph.painted.first(), 9));
    document.Do(Edits::DetachLayer(*shore));
    graph.fixture.Fill(*shore, {100, 100, 20, 20}, 99);
    document.Do(Edits::MakeLayerLive(*shore, {}));
    const QVector<QByteArray> edited = graph.Pixels();

    document.Do(Edits::UpdateLayers({shore}));
    QCOMPARE(graph.Wrong(), QString());
    document.Undo();
    QCOMPARE(graph.Pixels(), edited);
    QCOMPARE(document.LayerFormulas().StateOf(*shore), FormulaState::Edited);
}

void tst_LiveLayers::JumpsPassWhereALayerBecameLive()
{
    QFETCH(bool, isSlow);
    Random random;
    Graph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.Add(Dilation(*graph.painted.first(), 9));
    document.Do(Edits::DetachLayer(*shore));
    graph.fixture.Fill(*graph.painted.first(), {20, 20, 150, 150}, 77);
    const QVector<QByteArray> before = graph.Pixels();
    const int index = document.History().index();
    if (isSlow) {
        document.Live().SetFrameCost(0);
    }

    document.Do(Edits::MakeLayerLive(*shore, {shore}));
    graph.fixture.Fill(*graph.painted.first(), {5, 5, 30, 20}, 255);
    graph.fixture.Fill(*graph.painted.first(), {90, 40, 30, 60}, 0);
    document.Live().Finish();
    QCOMPARE(graph.Wrong(), QString());
    const QVector<QByteArray> after = graph.Pixels();
    Travel(document, *shore, index);
    QCOMPARE(graph.Pixels(), before);
    QVERIFY(!document.Live().IsFollowing(*shore));
    Travel(document, *shore, index + 3);
    QCOMPARE(graph.Pixels(), after);
    QVERIFY(document.Live().IsFollowing(*shore));
    Travel(document, *shore, 0);
    Travel(document, *shore, document.History().count());
    QCOMPARE(graph.Pixels(), after);
    QVERIFY(document.Live().IsFollowing(*shore));
}

void tst_LiveLayers::WhatWaitsIsShownAtOnce()
{
    Random random;
    Graph graph(random);
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
    Graph graph(random);
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
