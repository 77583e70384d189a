#include "ui/PaintToolBar.h"

#include "canvas/MainScene.h"
#include "canvas/ShapeMark.h"
#include "canvas/tools/PaintTools.h"
#include "document/Document.h"
#include "document/edits/LayerEdits.h"
#include "layers/raster/Mask.h"
#include "layers/raster/Shapes.h"
#include "tests/support/Masks.h"
#include "tests/support/WindowFixture.h"
#include "ui/QuillmapWindow.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDockWidget>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTest>
#include <QToolButton>

namespace {

constexpr const char* Tools[] = {"toolBrush",   "toolLine",  "toolRectangle", "toolEllipse",
                                 "toolPolygon", "toolLasso", "toolFill",      "toolPick"};

/// The active window with a small project, in Paint mode.
class PaintingWindow : public WindowFixture
{
public:
    PaintingWindow()
    {
        Load(WriteProject());
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        View().setFocus();
        Trigger("actionTogglePaintMode");
    }

    PaintOptions& Options() const { return Scene().GetPaintTools()->Options(); }
    Document& Doc() const { return window->GetDocument(); }
    Layer* LayerAt(int row) const { return Doc().Layers().LayerAt(row); }
    QComboBox* Box(const char* name) const { return Child<QComboBox>(name); }
    QString ChosenTool() const
    {
        QStringList chosen;
        for (const char* name : Tools) {
            if (Action(name)->isChecked()) {
                chosen.append(QLatin1String(name));
            }
        }
        return chosen.join(',');
    }
    void Click(QPointF place, Qt::MouseButton button = Qt::LeftButton) const
    {
        QTest::mouseClick(View().viewport(), button, {}, View().mapFromScene(place));
    }
    void Drag(QPointF from, QPointF to) const
    {
        QTest::mousePress(View().viewport(), Qt::LeftButton, {}, View().mapFromScene(from));
        QTest::mouseRelease(View().viewport(), Qt::LeftButton, {}, View().mapFromScene(to));
    }
    void BeginPolygon() const
    {
        Trigger("toolPolygon");
        Click({30, 30});
        Click({60, 30});
        Click({60, 60});
    }
};

} // namespace

class tst_PaintToolBar : public QObject
{
    Q_OBJECT

private slots:
    void ComesWithTheBrush();
    void HasAnActionForEachTool();
    void ButtonsAndKeysChooseTools();
    void LettersInTextBoxesStayLetters();
    void BrushIsTheToolAtEveryStart();
    void ChoosesWhatBoundsAFill();
    void ChoosesWithinWhat();
    void FollowsTheLayerToPaintWithin();
    void PaintsAnywhereOnceTheLayerIsGone();
    void PaintsAnywhereInAnotherProject();
    void PickedLayerIsCurrent();
    void UndoTakesAPolygonBackFirst();
    void SaveLeavesAPolygonAlone();
    void AnotherProjectDropsThePolygon();
    void MovedRowLeavesThePolygonAlone();
};

void tst_PaintToolBar::ComesWithTheBrush()
{
    WindowFixture fixture;
    const auto* bar = fixture.Child<QToolBar>("toolBarTools");
    auto* brush = fixture.Child<QDockWidget>("BrushDock");
    QVERIFY(bar && brush && !bar->isVisible());
    QVERIFY(!bar->toggleViewAction()->isVisible());
    fixture.Load(fixture.WriteProject());
    QVERIFY(!bar->isVisible());
    fixture.Trigger("actionTogglePaintMode");
    QVERIFY(brush->isVisible() && bar->isVisible());
    brush->close();
    QVERIFY(!bar->isVisible());
    fixture.Trigger("actionTogglePaintMode");
    fixture.Trigger("actionTogglePaintMode");
    QVERIFY(bar->isVisible());
    // A window that was closed in Paint mode does not begin in it.
    fixture.SetModified(false);
    fixture.window->close();
    fixture.Restart();
    QVERIFY(!fixture.Child<QToolBar>("toolBarTools")->isVisible());
}

void tst_PaintToolBar::HasAnActionForEachTool()
{
    const PaintingWindow fixture;
    const QStringList keys{"B", "L", "R", "E", "P", "Q", "F", "K"};
    const auto* bar = fixture.Child<QToolBar>("toolBarTools");
    for (int i = 0; i < keys.size(); ++i) {
        QAction* action = fixture.Action(Tools[i]);
        QCOMPARE(bar->actions().at(i), action);
        QVERIFY(action->isCheckable() && !action->icon().isNull());
        QCOMPARE(action->shortcut().toString(), keys.at(i));
        QVERIFY(action->toolTip().contains('(' + keys.at(i) + ')'));
        QCOMPARE(bar->widgetForAction(action)->focusPolicy(), Qt::TabFocus);
        for (const char* menu : {"menuFile", "menuView", "toolBar"}) {
            QVERIFY(!fixture.Child<QWidget>(menu)->actions().contains(action));
        }
    }
    QCOMPARE(fixture.ChosenTool(), QString("toolBrush"));
}

void tst_PaintToolBar::ButtonsAndKeysChooseTools()
{
    const PaintingWindow fixture;
    const auto* bar = fixture.Child<QToolBar>("toolBarTools");
    for (const char* name : Tools) {
        QAction* action = fixture.Action(name);
        QTest::mouseClick(bar->widgetForAction(action), Qt::LeftButton);
        QCOMPARE(fixture.ChosenTool(), QString(name));
        fixture.Trigger("toolPick");
        QTest::keyClick(&fixture.View(), Qt::Key(action->shortcut()[0]));
        QCOMPARE(fixture.ChosenTool(), QString(name));
    }
    QTest::keyClick(&fixture.View(), Qt::Key_R);
    fixture.Drag({30, 30}, {50, 40});
    QCOMPARE(fixture.Doc().History().undoText(), QString("Paint rectangle on blue"));
    fixture.Trigger("actionTogglePaintMode");
    QTest::keyClick(&fixture.View(), Qt::Key_F);
    QCOMPARE(fixture.ChosenTool(), QString("toolRectangle"));
    fixture.Trigger("actionTogglePaintMode");
    QCOMPARE(fixture.ChosenTool(), QString("toolRectangle"));
    QVERIFY(fixture.Scene().GetPaintTools()->Kind() == PaintToolKind::Rectangle);
}

void tst_PaintToolBar::LettersInTextBoxesStayLetters()
{
    const PaintingWindow fixture;
    const QString letters = QStringLiteral("lrepqfkb");
    QLineEdit field(fixture.window.get());
    field.show();
    field.setFocus();
    QTest::keyClicks(&field, letters);
    QCOMPARE(field.text(), letters);
    QCOMPARE(fixture.ChosenTool(), QString("toolBrush"));
    auto* tree = fixture.Child<QAbstractItemView>("treeLayers");
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_F2);
    auto* editor = tree->findChild<QLineEdit*>();
    QVERIFY(editor);
    QTest::keyClicks(editor, letters);
    QCOMPARE(editor->text(), letters);
    QTest::keyClick(editor, Qt::Key_Escape);
    // In a closed box a letter chooses an entry.
    QComboBox* within = fixture.Box("cboPaintWithin");
    within->setFocus();
    QTest::keyClick(within, Qt::Key_O);
    QCOMPARE(within->currentIndex(), 1);
    QTest::keyClick(fixture.Box("cboFillBounds"), Qt::Key_E);
    QCOMPARE(fixture.ChosenTool(), QString("toolBrush"));
    QCOMPARE(fixture.Box("cboFillBounds")->currentIndex(), 1);
}

void tst_PaintToolBar::BrushIsTheToolAtEveryStart()
{
    PaintingWindow fixture;
    QTest::keyClick(&fixture.View(), Qt::Key_L);
    fixture.Trigger("actionTogglePaintMode");
    fixture.Trigger("actionTogglePaintMode");
    QCOMPARE(fixture.ChosenTool(), QString("toolLine"));
    fixture.SetModified(false);
    fixture.window->close();
    fixture.Restart();
    QCOMPARE(fixture.ChosenTool(), QString("toolBrush"));
    QVERIFY(fixture.Scene().GetPaintTools()->Kind() == PaintToolKind::Brush);
}

void tst_PaintToolBar::ChoosesWhatBoundsAFill()
{
    const PaintingWindow fixture;
    QComboBox* box = fixture.Box("cboFillBounds");
    QCOMPARE(box->count(), 3);
    QVERIFY(fixture.Options().fillBounds == FillBounds::Layer);
    QTest::keyClick(box, Qt::Key_Down);
    QVERIFY(fixture.Options().fillBounds == FillBounds::Ticked);
    QTest::keyClick(box, Qt::Key_Down);
    QVERIFY(fixture.Options().fillBounds == FillBounds::All);
}

void tst_PaintToolBar::ChoosesWithinWhat()
{
    const PaintingWindow fixture;
    QComboBox* within = fixture.Box("cboPaintWithin");
    QComboBox* layer = fixture.Box("cboPaintWithinLayer");
    QCOMPARE(within->count(), 3);
    QVERIFY(!layer->isEnabled());
    within->setCurrentIndex(1);
    QVERIFY(layer->isEnabled());
    QVERIFY(fixture.Options().within == PaintWithin::Inside);
    QCOMPARE(fixture.Options().withinLayer.Get(), fixture.LayerAt(0));
    QTest::keyClick(layer, Qt::Key_Down);
    QCOMPARE(fixture.Options().withinLayer.Get(), fixture.LayerAt(1));
    within->setCurrentIndex(2);
    QVERIFY(fixture.Options().within == PaintWithin::Outside);
    // The pixels that are set in "blue" stay.
    fixture.Trigger("toolRectangle");
    fixture.Drag({0, 0}, {64, 64});
    fixture.Trigger("toolRectangle");
    const QByteArray all = Indices(fixture.LayerAt(1)->Image());
    QCOMPARE(all.count('\xff'), 64 * 64);
    fixture.Doc().Undo();
    within->setCurrentIndex(1);
    QTest::mousePress(fixture.View().viewport(), Qt::RightButton, {},
                      fixture.View().mapFromScene(QPointF(0, 0)));
    QTest::mouseRelease(fixture.View().viewport(), Qt::RightButton, {},
                        fixture.View().mapFromScene(QPointF(12, 64)));
    QCOMPARE(Indices(fixture.LayerAt(1)->Image()).count('\xff'), 12 * 16);
    within->setCurrentIndex(0);
    QVERIFY(!layer->isEnabled());
    QVERIFY(fixture.Options().within == PaintWithin::Anywhere);
}

void tst_PaintToolBar::FollowsTheLayerToPaintWithin()
{
    const PaintingWindow fixture;
    Document& document = fixture.Doc();
    QComboBox* box = fixture.Box("cboPaintWithinLayer");
    fixture.Box("cboPaintWithin")->setCurrentIndex(1);
    Layer* red = fixture.LayerAt(0);
    Layer* blue = fixture.LayerAt(1);
    const auto follows = [&](Layer* layer) {
        return fixture.Options().within == PaintWithin::Inside &&
               fixture.Options().withinLayer == layer && box->currentIndex() == layer->row() &&
               box->currentText() == layer->text();
    };
    QVERIFY(follows(red));
    document.Do(Edits::MoveLayer(*red, 1));
    QVERIFY(follows(red));
    document.Do(Edits::MoveLayer(*blue, 1));
    QVERIFY(follows(red));
    document.Do(Edits::Rename(*red, QStringLiteral("Shore")));
    QVERIFY(follows(red));
    document.Do(Edits::RemoveLayer(*blue));
    QVERIFY(follows(red));
    document.Undo();
    QVERIFY(follows(red));
    document.Do(Edits::AddPaintedLayer(document.Layers(), raster::BlankMask({64, 64})));
    QVERIFY(follows(red));
    while (document.CanUndo()) {
        document.Undo();
        QVERIFY(follows(red));
    }
}

void tst_PaintToolBar::PaintsAnywhereOnceTheLayerIsGone()
{
    const PaintingWindow fixture;
    fixture.Box("cboPaintWithin")->setCurrentIndex(2);
    fixture.Box("cboPaintWithinLayer")->setCurrentIndex(0);
    fixture.Doc().Do(Edits::RemoveLayer(*fixture.LayerAt(0)));
    QCOMPARE(fixture.Box("cboPaintWithin")->currentIndex(), 0);
    QVERIFY(fixture.Options().within == PaintWithin::Anywhere);
    fixture.Trigger("toolFill");
    fixture.Click({40, 40});
    QCOMPARE(fixture.Doc().History().undoText(), QString("Fill area on blue"));
    fixture.Doc().Undo();
    fixture.Doc().Undo();
    QVERIFY(fixture.Options().within == PaintWithin::Anywhere);
    // The current layer may be the one to paint within, too.
    fixture.Box("cboPaintWithin")->setCurrentIndex(1);
    fixture.Box("cboPaintWithinLayer")->setCurrentIndex(fixture.Doc().CurrentLayer()->row());
    fixture.Doc().Do(Edits::RemoveLayer(*fixture.Doc().CurrentLayer()));
    QVERIFY(fixture.Options().within == PaintWithin::Anywhere);
}

void tst_PaintToolBar::PaintsAnywhereInAnotherProject()
{
    PaintingWindow fixture;
    fixture.Box("cboPaintWithin")->setCurrentIndex(1);
    fixture.SetModified(false);
    fixture.Load(fixture.WriteProject(QStringLiteral("other")));
    QCOMPARE(fixture.Box("cboPaintWithin")->currentIndex(), 0);
    QVERIFY(fixture.Options().within == PaintWithin::Anywhere);
    fixture.Box("cboPaintWithin")->setCurrentIndex(2);
    QCOMPARE(fixture.Options().withinLayer.Get(), fixture.LayerAt(0));
}

void tst_PaintToolBar::PickedLayerIsCurrent()
{
    const PaintingWindow fixture;
    QCOMPARE(fixture.Doc().CurrentLayer(), fixture.LayerAt(1));
    QTest::keyClick(&fixture.View(), Qt::Key_K);
    fixture.Click({10, 10});
    QCOMPARE(fixture.Doc().CurrentLayer(), fixture.LayerAt(0));
    QCOMPARE(fixture.Child<QAbstractItemView>("treeLayers")->currentIndex().row(), 0);
    QCOMPARE(fixture.ChosenTool(), QString("toolPick"));
    QTest::keyClick(&fixture.View(), Qt::Key_E);
    fixture.Drag({30, 30}, {50, 40});
    QCOMPARE(fixture.Doc().History().undoText(), QString("Paint ellipse on red"));
}

void tst_PaintToolBar::UndoTakesAPolygonBackFirst()
{
    const PaintingWindow fixture;
    const auto isShown = [&fixture] { return fixture.View().Shape().IsShown(); };
    // There is nothing else to undo.
    fixture.BeginPolygon();
    QTest::keyClick(&fixture.View(), Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(!isShown());
    fixture.Trigger("toolRectangle");
    fixture.Drag({30, 30}, {50, 40});
    fixture.BeginPolygon();
    QTest::keyClick(&fixture.View(), Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(!isShown());
    QCOMPARE(fixture.Doc().History().index(), 1);
    QTest::keyClick(&fixture.View(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(fixture.Doc().History().index(), 0);
}

void tst_PaintToolBar::SaveLeavesAPolygonAlone()
{
    PaintingWindow fixture;
    const QString bitmap = QStringLiteral("layers/blue.tga");
    const QByteArray before = fixture.SavedBytes().value(bitmap);
    fixture.BeginPolygon();
    QCOMPARE(fixture.SavedBytes().value(bitmap), before);
    fixture.Trigger("actionQuickSave");
    QVERIFY(fixture.Doc().History().isClean());
    QVERIFY(fixture.View().Shape().IsShown());
    QTest::keyClick(&fixture.View(), Qt::Key_Return);
    QCOMPARE(fixture.Doc().History().undoText(), QString("Paint polygon on blue"));
    QVERIFY(fixture.SavedBytes().value(bitmap) != before);
}

void tst_PaintToolBar::AnotherProjectDropsThePolygon()
{
    PaintingWindow fixture;
    fixture.BeginPolygon();
    fixture.SetModified(false);
    fixture.Load(fixture.WriteProject(QStringLiteral("other")));
    QVERIFY(!fixture.View().Shape().IsShown());
    fixture.Trigger("actionTogglePaintMode");
    QTest::keyClick(&fixture.View(), Qt::Key_Return);
    QCOMPARE(fixture.Doc().History().count(), 0);
}

void tst_PaintToolBar::MovedRowLeavesThePolygonAlone()
{
    const PaintingWindow fixture;
    Layer* blue = fixture.Doc().CurrentLayer();
    QImage wanted = blue->Image().copy();
    raster::Fill(wanted, raster::PolygonRegion({{30, 30}, {60, 30}, {60, 60}}, wanted.size()),
                 raster::MaskSet);
    fixture.BeginPolygon();
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down}) {
        QTest::keyClick(&fixture.View(), key, Qt::AltModifier);
        QCOMPARE(blue->row(), key == Qt::Key_Up ? 0 : 1);
        QVERIFY(fixture.View().Shape().IsShown());
    }
    QTest::keyClick(&fixture.View(), Qt::Key_Return);
    QCOMPARE(blue->Image(), wanted);
}

QTEST_MAIN(tst_PaintToolBar)
#include "tst_PaintToolBar.moc"
