#include "canvas/ViewMoves.h"
#include "canvas/tools/MapTool.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/WideFixture.h"

#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QTest>

#include <cmath>
#include <tuple>
#include <utility>

class tst_GoActions : public QObject
{
    Q_OBJECT

private slots:
    void MenusStandInOrder();
    void KeysZoomAroundTheMouse();
    void KeysZoomAroundTheMiddle();
    void FitsTheWholeMap();
    void FitsTheSelectedZones();
    void FitsTheCurrentLayer();
    void FitsNothingWhereNothingIs();
    void WheelKeepsThePlaceWhenTold();
    void GoesBackAndForward();
    void OtherMovesAreNoJumps();
    void ForgetsPlacesOfAnotherProject();
    void LeavesModeSelectionAndProjectAlone();
    void LeavesAStrokeAlone();
    void FillsTheScreen();
};

void tst_GoActions::MenusStandInOrder()
{
    const WindowFixture fixture;
    QStringList titles;
    const QList<QAction*> actions = fixture.Child<QMenuBar>("menuBar")->actions();
    for (const QAction* action : actions) {
        titles.append(action->text());
    }
    QCOMPARE(titles.mid(0, 4), QStringList({"&File", "&Edit", "&View", "&Project"}));
    QVERIFY(titles.indexOf("&Go") > 3);
    QCOMPARE(fixture.Child<QMenu>("menuGo")->title(), "&Go");
}

void tst_GoActions::KeysZoomAroundTheMouse()
{
    WideFixture editor;
    const QPoint mouse(120, 90);
    editor.MouseTo(mouse);
    const QPointF place = editor.View().PlaceAt(mouse);
    const std::pair<Qt::Key, float> steps[] = {{Qt::Key_Plus, 1.25F},  {Qt::Key_Equal, 1.5F},
                                               {Qt::Key_Plus, 1.75F},  {Qt::Key_Minus, 1.5F},
                                               {Qt::Key_Minus, 1.25F}, {Qt::Key_Minus, 1},
                                               {Qt::Key_Minus, 0.75F}, {Qt::Key_Minus, 0.5F}};
    for (const auto& [key, zoom] : steps) {
        editor.Key(key, Qt::ControlModifier);
        QCOMPARE(editor.View().Zoom(), zoom);
        const QPointF offset = (editor.View().PlaceAt(mouse) - place) * static_cast<qreal>(zoom);
        QVERIFY(std::hypot(offset.x(), offset.y()) <= 1);
        QVERIFY(std::abs(editor.LabelPlace().x() - place.x() * WideFixture::MetresPerPixel) <= 20);
        QVERIFY(std::abs(editor.LabelPlace().y() -
                         (WideFixture::Side - place.y()) * WideFixture::MetresPerPixel) <= 20);
    }
    for (const float zoom : {0.25F, 0.125F, 0.0625F, 0.0625F}) {
        editor.Key(Qt::Key_Minus, Qt::ControlModifier);
        QCOMPARE(editor.View().Zoom(), zoom);
    }
    QCOMPARE(editor.Child<QLabel>("lblZoomValue")->text(), "<strong>6%</strong>");
    // The keys of the number pad.
    editor.Key(Qt::Key_Plus, Qt::ControlModifier | Qt::KeypadModifier);
    QCOMPARE(editor.View().Zoom(), 0.125F);
    editor.Key(Qt::Key_Minus, Qt::ControlModifier | Qt::KeypadModifier);
    QCOMPARE(editor.View().Zoom(), 0.0625F);
}

void tst_GoActions::KeysZoomAroundTheMiddle()
{
    WideFixture editor;
    editor.MouseTo({120, 90});
    editor.MouseAway();
    for (const float zoom : {1.25F, 1.5F, 1.75F}) {
        editor.Key(Qt::Key_Plus, Qt::ControlModifier);
        editor.VerifyShown({1024, 1024}, zoom);
        editor.MouseAway();
    }
}

void tst_GoActions::FitsTheWholeMap()
{
    WideFixture editor;
    MainView& view = editor.View();
    view.Moves().Show({{300, 300}, 3});
    editor.Key(Qt::Key_9, Qt::ControlModifier);
    const int room = qMin(view.viewport()->width(), view.viewport()->height());
    const float zoom = view.Zoom();
    QVERIFY(WideFixture::Side * static_cast<double>(zoom) <= room);
    const double next =
        zoom < 0.25F ? 2 * static_cast<double>(zoom) : 0.25 + static_cast<double>(zoom);
    QVERIFY(WideFixture::Side * next > room);
    QVERIFY(view.mapToScene(view.viewport()->rect()).boundingRect().contains(view.sceneRect()));
    // Ctrl and the wheel go on from 25 %.
    view.Moves().Show({{1024, 1024}, 0.125F});
    editor.TurnWheel({50, 50});
    QCOMPARE(view.Zoom(), 0.5F);
}

void tst_GoActions::FitsTheSelectedZones()
{
    WideFixture editor;
    editor.SelectNorth();
    editor.Trigger("actionFitSelection");
    // From 4125 to 6075 metres.
    QVERIFY(260 * editor.View().Zoom() <= static_cast<float>(editor.View().viewport()->width()));
    QVERIFY(270 * (editor.View().Zoom() + 0.25F) >
            static_cast<float>(editor.View().viewport()->width()));
    editor.VerifyShown(WideFixture::ToScene(5100, 9750), editor.View().Zoom());
    QCOMPARE(editor.Scene().SelectedZones().size(), 2);
}

void tst_GoActions::FitsTheCurrentLayer()
{
    WideFixture editor;
    QCOMPARE(editor.window->GetDocument().CurrentLayer()->text(), "Forest");
    editor.Trigger("actionFitSelection");
    const float zoom = editor.View().Zoom();
    editor.VerifyShown(QRectF(WideFixture::ForestArea).center(), zoom);
    const QSize room = editor.View().viewport()->size();
    QVERIFY(60 * zoom <= float(room.width()) && 40 * zoom <= float(room.height()));
    QVERIFY(zoom >= 12.5F || 60 * (zoom + 0.25F) > float(room.width()) ||
            40 * (zoom + 0.25F) > float(room.height()));
}

void tst_GoActions::FitsNothingWhereNothingIs()
{
    WideFixture editor;
    const QTransform shown = editor.View().viewportTransform();
    editor.window->GetDocument().SetCurrentLayer(
        editor.window->GetDocument().Layers().LayerByName("Bare"));
    editor.Trigger("actionFitSelection");
    QCOMPARE(editor.View().viewportTransform(), shown);
    editor.window->GetDocument().SetCurrentLayer(nullptr);
    editor.Trigger("actionFitSelection");
    QCOMPARE(editor.View().viewportTransform(), shown);
}

void tst_GoActions::WheelKeepsThePlaceWhenTold()
{
    WideFixture editor;
    QAction* action = editor.Action("actionZoomAtMouse");
    QCOMPARE(action->text(), "Ctrl+wheel keeps the place under the mouse");
    QVERIFY(action->isCheckable());
    QVERIFY(!action->isChecked());
    const QPoint mouse(120, 90);
    const auto turn = [&] {
        MainView& view = editor.View();
        const QPointF place = view.PlaceAt(mouse);
        editor.TurnWheel(mouse);
        return std::make_pair(place, view.PlaceAt(mouse));
    };
    auto [before, after] = turn();
    QVERIFY(QLineF(before, after).length() > 50);
    action->trigger();
    std::tie(before, after) = turn();
    QVERIFY(QLineF(before, after).length() <= 1);
    // It is remembered.
    editor.Restart();
    QVERIFY(editor.Action("actionZoomAtMouse")->isChecked());
    QVERIFY(editor.View().Moves().KeepsPlace());
    editor.Trigger("actionZoomAtMouse");
    editor.Restart();
    QVERIFY(!editor.Action("actionZoomAtMouse")->isChecked());
    QVERIFY(!editor.View().Moves().KeepsPlace());
}

void tst_GoActions::GoesBackAndForward()
{
    WideFixture editor;
    MainView& view = editor.View();
    view.Moves().Show({{700, 800}, 2.25F});
    const QTransform first = view.viewportTransform();
    editor.GoTo("4200", "9800", {}, "300");
    const QTransform second = view.viewportTransform();
    editor.Key(Qt::Key_9, Qt::ControlModifier);
    const QTransform third = view.viewportTransform();
    // Once more to the same place is no jump.
    editor.Key(Qt::Key_9, Qt::ControlModifier);

    editor.Key(Qt::Key_Left, Qt::AltModifier);
    QCOMPARE(view.viewportTransform(), second);
    editor.Key(Qt::Key_Left, Qt::AltModifier);
    QCOMPARE(view.viewportTransform(), first);
    QCOMPARE(view.Zoom(), 2.25F);
    // Nothing is left.
    editor.Key(Qt::Key_Left, Qt::AltModifier);
    QCOMPARE(view.viewportTransform(), first);
    editor.Key(Qt::Key_Right, Qt::AltModifier);
    QCOMPARE(view.viewportTransform(), second);
    editor.VerifyShown(WideFixture::ToScene(4200, 9800), 3);
    editor.Key(Qt::Key_Right, Qt::AltModifier);
    QCOMPARE(view.viewportTransform(), third);
    editor.Key(Qt::Key_Right, Qt::AltModifier);
    QCOMPARE(view.viewportTransform(), third);

    // A new jump ends the way forward.
    editor.Key(Qt::Key_Left, Qt::AltModifier);
    editor.GoTo("7000", "7000", {}, "400");
    const QTransform fourth = view.viewportTransform();
    editor.Key(Qt::Key_Right, Qt::AltModifier);
    QCOMPARE(view.viewportTransform(), fourth);
    editor.Key(Qt::Key_Left, Qt::AltModifier);
    QCOMPARE(view.viewportTransform(), second);
}

void tst_GoActions::OtherMovesAreNoJumps()
{
    WideFixture editor;
    editor.Key(Qt::Key_Plus, Qt::ControlModifier);
    editor.Key(Qt::Key_0, Qt::ControlModifier);
    editor.View().centerOn(700, 700);
    const QTransform shown = editor.View().viewportTransform();
    editor.SelectNorth();
    editor.Key(Qt::Key_Left, Qt::AltModifier);
    editor.Key(Qt::Key_Right, Qt::AltModifier);
    QCOMPARE(editor.View().viewportTransform(), shown);
    // Nor do the keys nudge zones.
    QCOMPARE(editor.window->GetDocument().History().count(), 0);
}

void tst_GoActions::ForgetsPlacesOfAnotherProject()
{
    WideFixture editor;
    editor.Key(Qt::Key_9, Qt::ControlModifier);
    editor.Load(editor.WriteProject());
    const QTransform shown = editor.View().viewportTransform();
    editor.Key(Qt::Key_Left, Qt::AltModifier);
    QCOMPARE(editor.View().viewportTransform(), shown);
}

void tst_GoActions::LeavesModeSelectionAndProjectAlone()
{
    WideFixture editor;
    editor.SelectNorth();
    WindowFixture::SetModified(false);
    const QVector<Zone*> zones = editor.Scene().SelectedZones();
    const int steps = editor.window->GetDocument().History().count();
    editor.GoTo("4200", "9800", {}, "300");
    for (const char* action :
         {"actionZoomIn", "actionZoomOut", "actionFitMap", "actionFitSelection", "actionGoBack",
          "actionGoForward", "actionZoomAtMouse"}) {
        editor.Trigger(action);
    }
    editor.AddBookmark("Harbour");
    QCOMPARE(editor.Scene().Mode(), SceneMode::Select);
    QCOMPARE(editor.Scene().SelectedZones(), zones);
    QCOMPARE(editor.window->GetDocument().History().count(), steps);
    QVERIFY(!WindowFixture::IsModified());
}

void tst_GoActions::LeavesAStrokeAlone()
{
    WideFixture editor;
    editor.Trigger("actionTogglePaintMode");
    const auto mouse = [&](QEvent::Type type, QPoint pixel, Qt::MouseButtons buttons) {
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, pixel, editor.View().viewport()->mapToGlobal(pixel), button,
                          buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(editor.View().viewport(), &event);
    };
    const int steps = editor.window->GetDocument().History().count();
    mouse(QEvent::MouseButtonPress, {100, 100}, Qt::LeftButton);
    const QImage begun = editor.window->GetDocument().CurrentLayer()->Image().copy();
    editor.Key(Qt::Key_Plus, Qt::ControlModifier);
    editor.Key(Qt::Key_9, Qt::ControlModifier);
    editor.Trigger("actionFitSelection");
    editor.Key(Qt::Key_Left, Qt::AltModifier);
    // No dialog opens, because it would end the stroke.
    editor.Key(Qt::Key_G, Qt::ControlModifier);
    editor.Trigger("actionBookmarkAdd");
    QVERIFY(editor.Scene().Tool()->IsBusy());
    QCOMPARE(editor.Scene().Mode(), SceneMode::Paint);
    QCOMPARE(editor.window->GetDocument().History().count(), steps);
    QCOMPARE(editor.window->GetDocument().CurrentLayer()->Image(), begun);
    mouse(QEvent::MouseButtonRelease, {100, 100}, Qt::NoButton);
    QCOMPARE(editor.window->GetDocument().History().count(), steps + 1);
}

void tst_GoActions::FillsTheScreen()
{
    WideFixture editor;
    QAction* action = editor.Action("actionFullScreen");
    QVERIFY(!editor.window->isFullScreen());
    editor.Key(Qt::Key_F11, Qt::NoModifier);
    QVERIFY(editor.window->isFullScreen());
    QVERIFY(action->isChecked());
    editor.Key(Qt::Key_F11, Qt::NoModifier);
    QVERIFY(!editor.window->isFullScreen());
    QVERIFY(!action->isChecked());
    // The window system may do it, too.
    editor.window->showFullScreen();
    QVERIFY(action->isChecked());
}

QTEST_MAIN(tst_GoActions)
#include "tst_GoActions.moc"
