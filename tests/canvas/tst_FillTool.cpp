#include "canvas/tools/FillTool.h"

#include "canvas/tools/PaintTools.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Painting.h"

#include <QTest>

/// Fills, and the tool that picks layers.
class tst_FillTool : public QObject
{
    Q_OBJECT

private slots:
    void FillsAndErasesTheAreaUnderTheMouse();
    void TickedLayersBoundAFill();
    void FillsAllPixelsThatAreAlike();
    void FillsTheWholeMapAndSaysSo();
    void DoesNothingBesideTheMap();
    void FillOfWhatIsFilledIsNoStep();
    void TellsThatThereIsNoMemory();
    void PicksTheTopmostTickedLayer();
};

void tst_FillTool::FillsAndErasesTheAreaUnderTheMouse()
{
    Painting small({10, 6});
    const LogSpy log;
    // A frame whose corners are open: pixels that only meet at corners are not connected.
    small.layer->SetImage(MaskFromArt({"..........", ".###......", "#...#.....", "#...#..++.",
                                       ".###....+.", ".........."}),
                          Qt::red);
    small.Edit(small.layer);
    small.Tools().Choose(PaintToolKind::Fill);
    const QByteArray before = small.Pixels();
    small.Click({2, 2});
    QCOMPARE(ArtFromMask(small.layer->Image()),
             QStringList({"..........", ".###......", "#####.....", "#####..++.", ".###....+.",
                          ".........."}));
    QCOMPARE(small.document.History().undoText(), QString("Fill area on Forest"));
    small.Click({2, 1}, Qt::RightButton);
    QCOMPARE(ArtFromMask(small.layer->Image()),
             QStringList({"..........", "..........", "..........", ".......++.", "........+.",
                          ".........."}));
    QCOMPARE(small.document.History().undoText(), QString("Erase area on Forest"));
    small.Click({8, 4});
    QCOMPARE(ArtFromMask(small.layer->Image()),
             QStringList({"..........", "..........", "..........", ".......##.", "........#.",
                          ".........."}));
    QVERIFY(small.ShowsLayer());
    QCOMPARE(small.StepCount(), 3);
    for (int i = 0; i < 3; ++i) {
        small.document.Undo();
    }
    QCOMPARE(small.Pixels(), before);
    QCOMPARE(log.Messages(), QStringList());
}

void tst_FillTool::TickedLayersBoundAFill()
{
    Painting canvas({8, 4});
    canvas.layer->SetImage(raster::BlankMask({8, 4}), Qt::red);
    canvas.layer->SetVisible(false);
    canvas.Edit(canvas.layer);
    Layer* wall = canvas.AddLayer(Qt::blue, {4, 0, 1, 4});
    Layer* hidden = canvas.AddLayer(Qt::green, {2, 0, 1, 4});
    wall->SetVisible(true);
    hidden->SetVisible(false);
    canvas.Tools().Choose(PaintToolKind::Fill);
    canvas.Tools().Options().fillBounds = FillBounds::Ticked;
    canvas.Click({1, 1});
    QCOMPARE(ArtFromMask(canvas.layer->Image()),
             QStringList({"####....", "####....", "####....", "####...."}));
    // The current layer bounds too, ticked or not.
    canvas.document.Undo();
    hidden->SetVisible(true);
    canvas.Click({1, 1});
    hidden->SetVisible(false);
    canvas.Click({3, 1}, Qt::RightButton);
    QCOMPARE(ArtFromMask(canvas.layer->Image()),
             QStringList({"##......", "##......", "##......", "##......"}));
    canvas.Click({3, 1});
    QCOMPARE(ArtFromMask(canvas.layer->Image()),
             QStringList({"####....", "####....", "####....", "####...."}));
    canvas.Tools().Options().fillBounds = FillBounds::Layer;
    canvas.Click({7, 1});
    QCOMPARE(canvas.Pixels(), QByteArray(32, '\xff'));
}

void tst_FillTool::FillsAllPixelsThatAreAlike()
{
    Painting canvas({8, 3});
    canvas.layer->SetImage(MaskFromArt({"++..++..", "##..##..", "+.+.+.+."}), Qt::red);
    canvas.Edit(canvas.layer);
    canvas.Tools().Choose(PaintToolKind::Fill);
    canvas.Tools().Options().fillBounds = FillBounds::All;
    canvas.Click({0, 0});
    QCOMPARE(ArtFromMask(canvas.layer->Image()), QStringList({"##..##..", "##..##..", "#.#.#.#."}));
    canvas.Click({5, 1}, Qt::RightButton);
    QCOMPARE(canvas.Pixels(), QByteArray(24, '\0'));
}

void tst_FillTool::FillsTheWholeMapAndSaysSo()
{
    Painting canvas;
    LogSpy log;
    canvas.Tools().Choose(PaintToolKind::Fill);
    canvas.Click({150, 100});
    QCOMPARE(log.Take(), QStringList("Info: Filled 90.6 % of the map on layer 'Forest'."));
    // All of it is filled already.
    canvas.Click({150, 100});
    QCOMPARE(log.Take(), QStringList());
    canvas.Click({150, 100}, Qt::RightButton);
    QCOMPARE(log.Take(), QStringList("Info: Erased 100.0 % of the map on layer 'Forest'."));
    canvas.document.Undo();
    canvas.document.Undo();
    canvas.Click({30, 30}, Qt::RightButton);
    QCOMPARE(log.Take(), QStringList());
}

void tst_FillTool::DoesNothingBesideTheMap()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Fill);
    const QByteArray before = canvas.Pixels();
    for (const QPointF place :
         {QPointF(-1, 50), QPointF(200, 50), QPointF(50, -1), QPointF(50, 160)}) {
        for (const FillBounds bounds : {FillBounds::Layer, FillBounds::Ticked, FillBounds::All}) {
            canvas.Tools().Options().fillBounds = bounds;
            canvas.Click(place);
            canvas.Click(place, Qt::RightButton);
            canvas.Click(place, Qt::MiddleButton);
        }
    }
    canvas.Click({50, 50}, Qt::MiddleButton);
    QCOMPARE(canvas.Pixels(), before);
    QCOMPARE(canvas.StepCount(), 0);
}

void tst_FillTool::FillOfWhatIsFilledIsNoStep()
{
    Painting canvas;
    canvas.Tools().Choose(PaintToolKind::Fill);
    canvas.Click({30, 30});
    canvas.Click({150, 100}, Qt::RightButton);
    QCOMPARE(canvas.StepCount(), 0);
    QVERIFY(canvas.ShowsLayer());
}

void tst_FillTool::TellsThatThereIsNoMemory()
{
    Painting canvas({8192, 8192});
    canvas.Tools().Choose(PaintToolKind::Fill);
    LogSpy log;
    for (const FillBounds bounds : {FillBounds::Layer, FillBounds::Ticked, FillBounds::All}) {
        canvas.Tools().Options().fillBounds = bounds;
        const MemoryLimit limit(8 * AMebibyte);
        canvas.Click({150, 100});
        QCOMPARE(log.Take(), QStringList("Error: There is no memory to paint on layer 'Forest'."));
    }
    QCOMPARE(canvas.StepCount(), 0);
}

void tst_FillTool::PicksTheTopmostTickedLayer()
{
    Painting canvas;
    Layer* middle = canvas.AddLayer(Qt::blue, {60, 20, 60, 50});
    Layer* lowest = canvas.AddLayer(Qt::green, {20, 20, 160, 120});
    for (Layer* layer : {canvas.layer, middle, lowest}) {
        layer->SetVisible(true);
    }
    QVector<Layer*> picked;
    canvas.Tools().SetLayerPicked([&picked](Layer& layer) { picked.append(&layer); });
    canvas.Tools().Choose(PaintToolKind::Pick);
    const QByteArray before = canvas.Pixels();
    for (const QPointF place :
         {QPointF(30, 30), QPointF(70, 30), QPointF(90, 30), QPointF(150, 30)}) {
        canvas.Click(place);
    }
    QCOMPARE(picked, QVector<Layer*>({canvas.layer, canvas.layer, middle, lowest}));
    picked.clear();
    canvas.layer->SetVisible(false);
    canvas.Click({70, 30});
    canvas.Click({30, 30});
    QCOMPARE(picked, QVector<Layer*>({middle, lowest}));
    picked.clear();
    canvas.Click({5, 5});
    canvas.Click({-5, 30});
    canvas.Click({500, 30});
    canvas.Click({70, 30}, Qt::RightButton);
    QVERIFY(picked.isEmpty());
    // A pick is no edit, so that it works on a layer that is locked.
    canvas.document.SetLocked(*canvas.layer, true);
    canvas.Click({70, 30});
    QCOMPARE(picked, QVector<Layer*>({middle}));
    QCOMPARE(canvas.Pixels(), before);
    QCOMPARE(canvas.StepCount(), 0);
}

QTEST_MAIN(tst_FillTool)
#include "tst_FillTool.moc"
