#include "document/Formulas.h"
#include "document/LiveLayers.h"
#include "document/edits/EditGroup.h"
#include "tests/support/LiveGraph.h"

#include <QtTest>

#include <memory>

namespace {

constexpr int Side = DocumentFixture::Side;

} // namespace

/// What undo, redo and jumps in the history do to live layers.
class tst_LiveLayersHistory : public QObject
{
    Q_OBJECT

private slots:
    void OneUndoTakesStrokeAndConsequencesBack();
    void ACancelledStrokeLeavesNothing();
    void FollowsWhenAnOperandComesBack();
    void UndoOfDetachingFollowsAgain();
    void ADetachedLayerFollowsWhenItsOperandIsBack();
    void WhatChangesALiveLayerIsUndone();
    void AnUndoneUpdateLeavesFollowersFollowing_data() { Travels(); }
    void AnUndoneUpdateLeavesFollowersFollowing();
    void AnUndoneUpdateBringsHandEditsBack();
    void JumpsPassWhereALayerBecameLive_data() { Travels(); }
    void JumpsPassWhereALayerBecameLive();
    void TravelLeavesWhatALockKept();

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

void tst_LiveLayersHistory::OneUndoTakesStrokeAndConsequencesBack()
{
    Random random;
    LiveGraph graph(random);
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

void tst_LiveLayersHistory::ACancelledStrokeLeavesNothing()
{
    Random random;
    LiveGraph graph(random);
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

void tst_LiveLayersHistory::FollowsWhenAnOperandComesBack()
{
    Random random;
    LiveGraph graph(random);
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

void tst_LiveLayersHistory::UndoOfDetachingFollowsAgain()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.AddShore();
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

void tst_LiveLayersHistory::ADetachedLayerFollowsWhenItsOperandIsBack()
{
    DocumentFixture fixture;
    Document& document = fixture.document;
    document.SetEditable(true);
    Layer* lake = fixture.AddLayer();
    const Formula formula = Dilation(*lake, 9);
    document.Do(Edits::AddComputedLayer(document.Layers(), QStringLiteral("Shore"), formula.Code(),
                                        lake->Image(), true));
    Layer* shore = document.Layers().LayerAt(1);
    fixture.Fill(*lake, {20, 20, 50, 50}, raster::MaskSet);
    document.Do(Edits::RemoveLayer(*lake));
    document.Live().Finish();
    document.Do(Edits::DetachLayer(*shore));

    document.Undo();
    document.Undo();
    document.Live().Finish();

    QVERIFY(document.Live().IsFollowing(*shore));
    QVERIFY(IsSet(*shore, {30, 30}));
    document.Undo();
    QVERIFY(!IsSet(*shore, {30, 30}));
}

void tst_LiveLayersHistory::WhatChangesALiveLayerIsUndone()
{
    Random random;
    LiveGraph graph(random);
    const QVector<QByteArray> before = graph.Pixels();

    graph.fixture.Fill(*graph.all.last(), {0, 0, Side, Side}, 99);
    QCOMPARE(graph.Pixels(), before);
    graph.fixture.document.Undo();
    QCOMPARE(graph.Pixels(), before);
}

void tst_LiveLayersHistory::AnUndoneUpdateLeavesFollowersFollowing()
{
    QFETCH(bool, isSlow);
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.AddShore();
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

void tst_LiveLayersHistory::AnUndoneUpdateBringsHandEditsBack()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.AddShore();
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

void tst_LiveLayersHistory::JumpsPassWhereALayerBecameLive()
{
    QFETCH(bool, isSlow);
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* shore = graph.AddShore();
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

void tst_LiveLayersHistory::TravelLeavesWhatALockKept()
{
    Random random;
    LiveGraph graph(random);
    Document& document = graph.fixture.document;
    Layer* lake = graph.painted.first();
    Layer* shore = graph.AddShore();
    graph.fixture.Fill(*lake, {0, 0, Side, Side}, 0);
    graph.fixture.Fill(*lake, {150, 150, 30, 30}, 255);
    const int locked = document.History().index();
    document.SetLocked(*shore, true);
    const QByteArray kept = Indices(shore->Image());
    graph.fixture.Fill(*lake, {20, 20, 40, 40}, 77);
    graph.fixture.Fill(*graph.painted.last(), {20, 20, 15, 15}, 77);
    graph.fixture.Fill(*lake, {40, 40, 40, 40}, 76);
    const int last = document.History().index();

    for (const int index : {last - 1, last, last - 2, locked, last}) {
        document.History().setIndex(index);
        QCOMPARE(Indices(shore->Image()), kept);
    }
    // What came before the lock goes and comes back with its step.
    document.History().setIndex(locked - 1);
    QVERIFY(Indices(shore->Image()) != kept);
    document.History().setIndex(last);
    QCOMPARE(Indices(shore->Image()), kept);
    document.SetLocked(*shore, false);
    document.Live().Finish();
    QCOMPARE(graph.Wrong(), QString());
}

QTEST_MAIN(tst_LiveLayersHistory)
#include "tst_LiveLayersHistory.moc"
