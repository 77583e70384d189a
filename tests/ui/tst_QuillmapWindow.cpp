#include "ui/QuillmapWindow.h"

#include "canvas/BrushDock.h"
#include "canvas/WidgetRuler.h"
#include "tests/support/Forms.h"
#include "tests/support/WindowFixture.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/NamedGroupBox.h"

#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QToolBar>
#include <QTreeView>
#include <QUndoView>
#include <QWhatsThis>
#include <QWheelEvent>

#include <algorithm>

namespace {

QStringList Texts(const QWidget& widget)
{
    QStringList texts;
    const QList<QAction*> actions = widget.actions();
    for (const QAction* action : actions) {
        texts.append(action->isSeparator() ? "|" : action->objectName());
    }
    return texts;
}

/// The smallest screen that the window is made for, in logical pixels.
constexpr QSize SmallScreen(1366, 768);
/// A title bar and borders, as window systems draw them.
constexpr QSize WindowFrame(4, 30);

/// Opens every dock of the window.
void OpenDocks(WindowFixture& fixture)
{
    fixture.Load(fixture.WriteProject());
    fixture.Trigger("actionViewTerritoryTypes");
    fixture.Trigger("actionTogglePaintMode");
    for (const char* dock : {"DockLayers", "DockLayerProps", "DockTerTypes", "DockTerTypeProps",
                             "BrushDock", "DockStatus"}) {
        QVERIFY2(fixture.Child<QWidget>(dock)->isVisible(), dock);
    }
}

} // namespace

/// The window's form, and its state before a project is open.
class tst_QuillmapWindow : public QObject
{
    Q_OBJECT

private slots:
    void HasItsForm_data();
    void HasItsForm();
    void HasItsActions_data();
    void HasItsActions();
    void HasItsMenusAndToolBar();
    void HasItsDocks();
    void StartsWithoutAProject();
    void ShowsDocksByTheirActions_data();
    void ShowsDocksByTheirActions();
    void ExplainsWhatMayDoNothing_data();
    void ExplainsWhatMayDoNothing();
    void ShowsTheExplanationsOnShiftF1();
    void ShowsTheZoom();
    void KeepsNothingOnScreenOfStoredForeignBytes();
    void ComesBackWithItsDocks();
    void RulersMeasureTheProjectThatIsViewed();
    void DeclaresTheSignalThatIsNeverEmitted();
    void EnterAnswersNoQuestion_data();
    void EnterAnswersNoQuestion();
    void CutsNoTextBelowTheMap_data();
    void CutsNoTextBelowTheMap();
    void FitsASmallScreenWithAllDocks();
    void StaysOnTheScreenWhenDocksOpen();
    void OpensMaximizedWhereItDoesNotFit();
    void TabsFromTheLayersToTheirProperties();
};

void tst_QuillmapWindow::HasItsForm_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("value");

    const auto row = [](const char* object, const char* className, const char* property,
                        const QVariant& value) {
        QTest::addRow("%s %s", object, property)
            << object << className << QByteArray(property) << value;
    };
    row("QuillmapWindowClass", "QMainWindow", "windowModality", Qt::WindowModal);
    row("QuillmapWindowClass", "QMainWindow", "focusPolicy", Qt::TabFocus);
    row("QuillmapWindowClass", "QMainWindow", "contextMenuPolicy", Qt::DefaultContextMenu);
    row("QuillmapWindowClass", "QMainWindow", "tabShape", 0);
    row("QuillmapWindowClass", "QMainWindow", "dockOptions",
        static_cast<int>(QMainWindow::AnimatedDocks | QMainWindow::AllowTabbedDocks));
    row("paintView", "MainView", "minimumSize", QSize(512, 512));
    row("paintView", "MainView", "frameShape", QFrame::Box);
    row("paintView", "MainView", "frameShadow", QFrame::Plain);
    row("paintView", "MainView", "lineWidth", 0);
    row("paintView", "MainView", "horizontalScrollBarPolicy", Qt::ScrollBarAlwaysOff);
    row("paintView", "MainView", "verticalScrollBarPolicy", Qt::ScrollBarAlwaysOff);
    row("paintView", "MainView", "dragMode", QGraphicsView::NoDrag);
    row("gboPaintMode", "QGroupBox", "title", "Paint mode");
    row("gboPaintMode", "QGroupBox", "checkable", true);
    row("gboPaintMode", "QGroupBox", "checked", false);
    row("gboPaintMode", "QGroupBox", "minimumSize", QSize(100, 70));
    row("gboPaintMode", "QGroupBox", "maximumSize", QSize(100, 70));
    row("lblZoom", "QLabel", "text", "<b>Zoom</b>");
    row("lblZoom", "QLabel", "toolTip", "Ctrl + mouse wheel");
    row("lblZoom", "QLabel", "alignment", int(Qt::AlignCenter));
    row("lblZoomValue", "QLabel", "text", "<strong>100%</strong>");
    row("lblZoomValue", "QLabel", "toolTip", "Ctrl + mouse wheel");
    row("lblZoomValue", "QLabel", "textFormat", Qt::RichText);
    row("lblZoomValue", "QLabel", "alignment", int(Qt::AlignCenter));
    row("gboWorldScale", "QGroupBox", "title", "World Scale");
    row("gboWorldScale", "QGroupBox", "minimumSize", QSize(100, 70));
    row("gboWorldScale", "QGroupBox", "maximumSize", QSize(150, 70));
    row("lblWorldScaleX", "QLabel", "text", "X: 1 px = ");
    row("lblWorldScaleZ", "QLabel", "text", "Z: 1 px = ");
    row("gboWorldRSteps", "QGroupBox", "title", "World Rulers step");
    row("gboWorldRSteps", "QGroupBox", "minimumSize", QSize(100, 70));
    row("gboWorldRSteps", "QGroupBox", "maximumSize", QSize(150, 70));
    row("lblWorldRStepX", "QLabel", "text", "X step = ");
    row("lblWorldRStepZ", "QLabel", "text", "Z step = ");
    row("gboWorldPos", "QGroupBox", "title", "World Position");
    row("gboWorldPos", "QGroupBox", "minimumSize", QSize(100, 70));
    row("gboWorldPos", "QGroupBox", "maximumSize", QSize(100, 70));
    row("lblWorldPosX", "QLabel", "text", "X = ");
    row("lblWorldPosZ", "QLabel", "text", "Z = ");
    row("gboBgOver", "GroupBoxColor", "title", "Bg Overlay - color and opacity");
    row("gboBgOver", "GroupBoxColor", "minimumSize", QSize(260, 70));
    row("gboBgOver", "GroupBoxColor", "maximumSize", QSize(260, 70));
}

void tst_QuillmapWindow::HasItsForm()
{
    QFETCH(QString, object);
    QFETCH(QString, className);
    QFETCH(QByteArray, property);
    QFETCH(QVariant, value);
    const WindowFixture fixture;
    QObject* root = fixture.window.get();

    CheckForm(*root, object, className, property, value);
}

void tst_QuillmapWindow::HasItsActions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<bool>("isCheckable");
    QTest::addColumn<bool>("isChecked");

    QTest::newRow("actionNew") << "New"
                               << "Create new project"
                               << "Ctrl+N"
                               << ":/icon-new-project" << false << false;
    QTest::newRow("actionLoad") << "L&oad"
                                << "Load project"
                                << "Ctrl+O"
                                << ":/icon-open" << false << false;
    QTest::newRow("actionSave") << "&Save"
                                << "Save project"
                                << "Ctrl+S"
                                << ":/icon-save" << false << false;
    QTest::newRow("actionSaveAll") << "Save and export all"
                                   << "Save and export all"
                                   << "Ctrl+Shift+S"
                                   << ":/icon-export" << false << false;
    QTest::newRow("actionLoadWorld") << "Load background image"
                                     << "Load background image (Ctrl + B)"
                                     << "Ctrl+B"
                                     << ":/icon-world" << false << false;
    QTest::newRow("actionImportAreas") << "Import area flag types"
                                       << "Import area flag types (Ctrl + F)"
                                       << "Ctrl+F"
                                       << ":/icon-areas" << false << false;
    QTest::newRow("actionImportMap") << "Import area bitmap"
                                     << "Import area bitmap"
                                     << "Ctrl+Shift+O"
                                     << ":/icon-import" << false << false;
    QTest::newRow("actionTogglePaintMode") << "TogglePaintMode"
                                           << "Toggle paint mode"
                                           << "Ctrl+P"
                                           << "" << true << false;
    QTest::newRow("actionExit") << "E&xit"
                                << "Exit"
                                << ""
                                << "" << false << false;
    QTest::newRow("actionViewLayers") << "&Layers"
                                      << "Layers"
                                      << ""
                                      << "" << true << true;
    QTest::newRow("actionViewTerritoryTypes") << "&Territory types"
                                              << "Territory types"
                                              << ""
                                              << "" << true << false;
    QTest::newRow("actionViewStatus") << "&Status"
                                      << "Status"
                                      << ""
                                      << "" << true << true;
    QTest::newRow("actionUndo") << "Undo"
                                << "Undo"
                                << "Ctrl+Z"
                                << ":/icon-undo" << false << false;
    QTest::newRow("actionRedo") << "Redo"
                                << "Redo"
                                << "Ctrl+Shift+Z"
                                << ":/icon-redo" << false << false;
    QTest::newRow("actionDelete") << "Delete"
                                  << "Delete"
                                  << "Del"
                                  << "" << false << false;
    QTest::newRow("actionSelectAllZones") << "Select all zones"
                                          << "Select all zones"
                                          << ""
                                          << "" << false << false;
    QTest::newRow("actionHistory") << "History"
                                   << "History"
                                   << ""
                                   << "" << true << false;
}

void tst_QuillmapWindow::HasItsActions()
{
    QFETCH(QString, text);
    QFETCH(QString, toolTip);
    QFETCH(QString, key);
    QFETCH(QString, icon);
    const WindowFixture fixture;
    const QAction* action = fixture.Action(QTest::currentDataTag());

    QVERIFY(action);
    QCOMPARE(action->text(), text);
    QCOMPARE(action->toolTip(), toolTip);
    QCOMPARE(action->shortcut().toString(), key);
    QCOMPARE(action->icon().isNull(), icon.isEmpty());
    QVERIFY(icon.isEmpty() || ShowsIcon(action->icon(), icon));
    QTEST(action->isCheckable(), "isCheckable");
    QTEST(action->isChecked(), "isChecked");
}

void tst_QuillmapWindow::HasItsMenusAndToolBar()
{
    const WindowFixture fixture;
    const QStringList common = {
        "actionNew",       "|", "actionLoad",        "actionSave",     "actionSaveAll", "|",
        "actionLoadWorld", "|", "actionImportAreas", "actionImportMap"};

    QCOMPARE(fixture.Child<QMenu>("menuFile")->title(), "&File");
    QCOMPARE(Texts(*fixture.Child<QMenu>("menuFile")), common + QStringList({"|", "actionExit"}));
    QCOMPARE(fixture.Child<QMenu>("menuEdit")->title(), "&Edit");
    QCOMPARE(Texts(*fixture.Child<QMenu>("menuEdit")),
             (QStringList{"actionUndo", "actionRedo", "|", "actionDelete", "actionSelectAllZones",
                          "|", "actionHistory"}));
    QStringList menus;
    const QList<QAction*> menuActions = fixture.window->menuBar()->actions();
    for (const QAction* action : menuActions) {
        menus.append(action->menu()->objectName());
    }
    QCOMPARE(menus.mid(0, 3), (QStringList{"menuFile", "menuEdit", "menuView"}));
    QCOMPARE(fixture.Action("actionRedo")->shortcuts(),
             (QList<QKeySequence>{QKeySequence("Ctrl+Shift+Z"), QKeySequence("Ctrl+Y")}));
    QCOMPARE(fixture.Child<QMenu>("menuView")->title(), "&View");
    QCOMPARE(Texts(*fixture.Child<QMenu>("menuView")),
             (QStringList{"actionViewLayers", "|", "actionViewTerritoryTypes", "|",
                          "actionViewStatus", "|"}));
    const struct
    {
        const char* name;
        QString title;
        QStringList actions;
    } toolBars[] = {
        {"toolBar", "toolBar", common},
        {"toolBarEdit", "Edit", {"actionUndo", "actionRedo"}},
    };
    for (const auto& expected : toolBars) {
        auto* toolBar = fixture.Child<QToolBar>(expected.name);
        QCOMPARE(Texts(*toolBar), expected.actions);
        QCOMPARE(toolBar->windowTitle(), expected.title);
        QVERIFY(!toolBar->isMovable());
        QVERIFY(!toolBar->isFloatable());
        QCOMPARE(fixture.window->toolBarArea(toolBar), Qt::TopToolBarArea);
    }
}

void tst_QuillmapWindow::HasItsDocks()
{
    const WindowFixture fixture;
    const auto area = [&](const char* name) {
        return fixture.window->dockWidgetArea(fixture.Child<QDockWidget>(name));
    };

    QCOMPARE(area("DockLayers"), Qt::LeftDockWidgetArea);
    QCOMPARE(area("DockLayerProps"), Qt::LeftDockWidgetArea);
    QCOMPARE(area("DockStatus"), Qt::BottomDockWidgetArea);
    QCOMPARE(area("DockTerTypes"), Qt::RightDockWidgetArea);
    QCOMPARE(area("DockTerTypeProps"), Qt::RightDockWidgetArea);
    QCOMPARE(area("BrushDock"), Qt::RightDockWidgetArea);
    QCOMPARE(area("DockHistory"), Qt::RightDockWidgetArea);
    QCOMPARE(fixture.Child<QWidget>("viewHistory")->window(), fixture.window.get());
    QVERIFY(fixture.Child<QUndoView>("viewHistory"));
    QVERIFY(fixture.Child<QDockWidget>("DockHistory")->isHidden());
    QVERIFY(fixture.Child<QDockWidget>("DockTerTypes")->isHidden());
    QVERIFY(fixture.Child<QDockWidget>("DockTerTypeProps")->isHidden());
    QVERIFY(fixture.Child<QDockWidget>("BrushDock")->isHidden());
}

void tst_QuillmapWindow::StartsWithoutAProject()
{
    const WindowFixture fixture;

    QCOMPARE(fixture.window->windowTitle(), "Unsaved - Tarvo Ledger Tool");
    for (const char* name : {"actionSave", "actionSaveAll", "actionLoadWorld", "actionImportAreas",
                             "actionImportMap", "actionUndo", "actionRedo"}) {
        QVERIFY2(!fixture.Action(name)->isEnabled(), name);
    }
    for (const char* name : {"actionNew", "actionLoad", "actionExit", "actionViewLayers",
                             "actionViewTerritoryTypes", "actionViewStatus"}) {
        QVERIFY2(fixture.Action(name)->isEnabled(), name);
    }
    for (const char* name : {"DockLayers", "DockTerTypes", "paintView", "gboPaintMode",
                             "gboWorldScale", "gboWorldRSteps", "gboWorldPos", "gboBgOver"}) {
        QVERIFY2(!fixture.Child<QWidget>(name)->isEnabled(), name);
    }
    QVERIFY(!fixture.View().isInteractive());
    QVERIFY(!fixture.window->actions().contains(fixture.Action("actionTogglePaintMode")));
    QVERIFY(fixture.Child<QWidget>("lblZoom")->isEnabled());
    QVERIFY(fixture.Child<QWidget>("pgrStatus")->isHidden());
}

void tst_QuillmapWindow::ShowsDocksByTheirActions_data()
{
    QTest::addColumn<QStringList>("docks");

    QTest::newRow("actionViewLayers") << QStringList{"DockLayers", "DockLayerProps"};
    QTest::newRow("actionViewTerritoryTypes") << QStringList{"DockTerTypes", "DockTerTypeProps"};
    QTest::newRow("actionViewStatus") << QStringList{"DockStatus"};
    QTest::newRow("actionHistory") << QStringList{"DockHistory"};
}

void tst_QuillmapWindow::ShowsDocksByTheirActions()
{
    QFETCH(QStringList, docks);
    const WindowFixture fixture;
    QAction* action = fixture.Action(QTest::currentDataTag());
    for (int i = 0; i < 2; ++i) {
        const bool isShown = !action->isChecked();

        action->trigger();

        QCOMPARE(action->isChecked(), isShown);
        for (const QString& dock : docks) {
            QCOMPARE(fixture.Child<QWidget>(dock.toLatin1())->isVisible(), isShown);
        }
    }
    // The mark is that of the first dock, also when docks are closed by their own buttons.
    for (const bool isFirstShown : {true, false}) {
        for (const bool isOtherShown : {true, false}) {
            for (const QString& dock : docks) {
                fixture.Child<QWidget>(dock.toLatin1())
                    ->setVisible(dock == docks.first() ? isFirstShown : isOtherShown);
            }
            QCOMPARE(action->isChecked(), isFirstShown);
        }
    }
}

void tst_QuillmapWindow::ExplainsWhatMayDoNothing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");

    QTest::newRow("actionSaveAll")
        << "Saves the project, then writes the area map and all territory types. In a project "
           "without layers it does nothing."
        << "Save and export all";
    QTest::newRow("btnExportSelected")
        << "Writes the files of the territory types whose boxes are ticked. Without a tick it "
           "writes no file."
        << "Write the files of the checked territory types";
}

void tst_QuillmapWindow::ExplainsWhatMayDoNothing()
{
    const WindowFixture fixture;
    const QObject* object = fixture.Child<QObject>(QTest::currentDataTag());

    QTEST(object->property("statusTip").toString(), "text");
    QTEST(object->property("whatsThis").toString(), "text");
    QTEST(object->property("toolTip").toString(), "toolTip");
}

void tst_QuillmapWindow::ShowsTheExplanationsOnShiftF1()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.Trigger("actionViewTerritoryTypes");
    const auto isExplained = [] {
        const QWidgetList widgets = QApplication::topLevelWidgets();
        return std::any_of(widgets.begin(), widgets.end(), [](const QWidget* widget) {
            return widget->inherits("QWhatsThat") && widget->isVisible();
        });
    };

    auto* button = fixture.Child<QWidget>("btnExportSelected");
    button->setFocus();
    QTest::keyClick(button, Qt::Key_F1, Qt::ShiftModifier);
    QVERIFY(isExplained());
    QWhatsThis::hideText();
    QVERIFY(!isExplained());

    auto* menu = fixture.Child<QMenu>("menuFile");
    menu->popup(fixture.window->pos());
    menu->setActiveAction(fixture.Action("actionSaveAll"));
    QTest::keyClick(menu, Qt::Key_F1, Qt::ShiftModifier);
    QVERIFY(isExplained());
    // It was explained and not carried out.
    QCOMPARE(fixture.answers.Asked(), QStringList{"Load"});
}

void tst_QuillmapWindow::ShowsTheZoom()
{
    const WindowFixture fixture;
    fixture.window->SetZoomLevel(1.2345F);
    QCOMPARE(fixture.Child<QLabel>("lblZoomValue")->text(), "<strong>123%</strong>");

    emit fixture.View().ZoomChanged(2.0F);
    QCOMPARE(fixture.Child<QLabel>("lblZoomValue")->text(), "<strong>200%</strong>");

    emit fixture.Scene().ZoomChanged(0.5F);
    QCOMPARE(fixture.Child<QLabel>("lblZoomValue")->text(), "<strong>50%</strong>");
}

void tst_QuillmapWindow::KeepsNothingOnScreenOfStoredForeignBytes()
{
    WindowFixture fixture;
    QSettings settings("Halvern Works", "Tarvo Tools");
    settings.setValue("Brantle/geometry", QByteArray("x"));
    settings.setValue("Brantle/windowState", QByteArray("y"));
    settings.sync();

    fixture.Restart();

    QVERIFY(fixture.Child<QDockWidget>("DockLayers")->isVisible());
    QVERIFY(fixture.window->isVisible());
}

void tst_QuillmapWindow::ComesBackWithItsDocks()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.Trigger("actionViewTerritoryTypes");
    fixture.Trigger("actionViewLayers");
    fixture.Trigger("actionViewStatus");
    fixture.Trigger("actionTogglePaintMode");
    QVERIFY(fixture.Child<QWidget>("BrushDock")->isVisible());
    QVERIFY(fixture.window->close());

    fixture.Restart();

    for (const char* dock : {"DockTerTypes", "DockTerTypeProps"}) {
        QVERIFY2(fixture.Child<QWidget>(dock)->isVisible(), dock);
    }
    // The brush dock is shown in paint mode only, and no window starts in it.
    for (const char* dock : {"DockLayers", "DockLayerProps", "DockStatus", "BrushDock"}) {
        QVERIFY2(fixture.Child<QWidget>(dock)->isHidden(), dock);
    }
    QVERIFY(fixture.Action("actionViewTerritoryTypes")->isChecked());
    QVERIFY(!fixture.Action("actionViewLayers")->isChecked());
    QVERIFY(!fixture.Action("actionViewStatus")->isChecked());
}

void tst_QuillmapWindow::RulersMeasureTheProjectThatIsViewed()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    const auto units = [&] {
        QVector<float> found;
        const QList<WidgetRuler*> rulers = fixture.View().findChildren<WidgetRuler*>();
        for (const WidgetRuler* ruler : rulers) {
            found.append(ruler->Unit());
        }
        return found;
    };
    QCOMPARE(units(), (QVector<float>{7.5F, 7.5F}));

    fixture.Restart(path);

    QCOMPARE(units(), (QVector<float>{10, 10}));
}

void tst_QuillmapWindow::DeclaresTheSignalThatIsNeverEmitted()
{
    const WindowFixture fixture;
    QSignalSpy spy(fixture.window.get(), &QuillmapWindow::ConfigurationLoadRequested);
    QVERIFY(spy.isValid());
}

void tst_QuillmapWindow::EnterAnswersNoQuestion_data()
{
    QTest::addColumn<QString>("title");

    QTest::newRow("actionNew") << "New project";
    QTest::newRow("actionLoad") << "Load configuration";
    QTest::newRow("actionImportMap") << "Import area map";
    QTest::newRow("actionImportAreas") << "Import area flag types";
    QTest::newRow("actionExit") << "Exit application";
}

void tst_QuillmapWindow::EnterAnswersNoQuestion()
{
    QFETCH(QString, title);
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.SetModified(true);
    fixture.answers.Add([&](QWidget& box) {
        QCOMPARE(box.windowTitle(), title);
        QVERIFY(QTest::qWaitForWindowActive(&box));
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            QTest::keyClick(box.focusWidget(), key);
            QVERIFY(box.isVisible());
        }
        const QList<QPushButton*> buttons = box.findChildren<QPushButton*>();
        QCOMPARE(buttons.size(), 2);
        for (const QPushButton* button : buttons) {
            QVERIFY2(!button->isDefault() && !button->autoDefault(), qPrintable(button->text()));
        }
        QTest::keyClick(box.focusWidget(), Qt::Key_Escape);
        QVERIFY(!box.isVisible());
    });

    fixture.Trigger(QTest::currentDataTag());

    QVERIFY(fixture.window->isVisible());
    QVERIFY(fixture.IsModified());
    QCOMPARE(fixture.window->windowTitle(), "small - Tarvo Ledger Tool");
    QCOMPARE(fixture.Child<QTreeView>("treeLayers")->model()->rowCount(), 2);
}

void tst_QuillmapWindow::CutsNoTextBelowTheMap_data()
{
    QTest::addColumn<bool>("isWithTerritories");

    QTest::newRow("first start") << false;
    QTest::newRow("all docks") << true;
}

void tst_QuillmapWindow::CutsNoTextBelowTheMap()
{
    QFETCH(bool, isWithTerritories);
    WindowFixture fixture;
    if (isWithTerritories) {
        OpenDocks(fixture);
    }
    fixture.window->showNormal();
    fixture.window->resize(fixture.window->minimumSizeHint());
    ProjectSettings::Instance().SetSizes(2048, 2048, 15360, 15360);
    fixture.window->UpdateWorldScale();
    fixture.window->UpdateWorldPos(2047, 2047);
    QCoreApplication::processEvents();

    QTRY_COMPARE(fixture.Child<ElidedLabel>("lblWorldRStepX")->ElidedText(), "X step = 187.5 m");
    const QList<ElidedLabel*> labels = fixture.window->findChildren<ElidedLabel*>();
    QCOMPARE(labels.size(), 6);
    for (const ElidedLabel* label : labels) {
        QCOMPARE(label->ElidedText(), label->text());
        QVERIFY(label->height() >= label->sizeHint().height());
    }
    for (const char* name :
         {"gboPaintMode", "gboWorldScale", "gboWorldRSteps", "gboWorldPos", "gboBgOver"}) {
        const auto* group = fixture.Child<NamedGroupBox>(name);
        QVERIFY2(group, name);
        QCOMPARE(group->ElidedTitle(), group->title());
    }
}

void tst_QuillmapWindow::FitsASmallScreenWithAllDocks()
{
    WindowFixture fixture;
    OpenDocks(fixture);

    const QSize smallest = fixture.window->minimumSizeHint() + WindowFrame;

    QVERIFY2(smallest.width() <= SmallScreen.width(),
             qPrintable(QString::number(smallest.width())));
    QVERIFY2(smallest.height() <= SmallScreen.height(),
             qPrintable(QString::number(smallest.height())));
}

void tst_QuillmapWindow::StaysOnTheScreenWhenDocksOpen()
{
    WindowFixture fixture;
    const QRect room = fixture.window->screen()->availableGeometry();
    if (room.width() < SmallScreen.width() || room.height() < SmallScreen.height()) {
        QSKIP("The screen is too small for the window.");
    }
    QVERIFY(QTest::qWaitForWindowExposed(fixture.window.get()));
    QTRY_VERIFY2(room.contains(fixture.window->frameGeometry()), "first start");

    OpenDocks(fixture);
    QTRY_VERIFY2(room.contains(fixture.window->frameGeometry()), "all docks");
    for (int i = 0; i < 2; ++i) {
        for (const char* action :
             {"actionViewLayers", "actionViewStatus", "actionViewTerritoryTypes"}) {
            fixture.Trigger(action);
            QTRY_VERIFY2(room.contains(fixture.window->frameGeometry()), action);
        }
    }
}

void tst_QuillmapWindow::OpensMaximizedWhereItDoesNotFit()
{
    const WindowFixture fixture;
    const QSize room = fixture.window->screen()->availableGeometry().size();
    const bool isLarge =
        room.width() >= SmallScreen.width() && room.height() >= SmallScreen.height();

    QCOMPARE(fixture.window->isMaximized(), !isLarge);
}

void tst_QuillmapWindow::TabsFromTheLayersToTheirProperties()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.window->activateWindow();
    fixture.Child<QWidget>("btnAddCustom")->setFocus();
    QStringList order;
    for (int i = 0; i < 9; ++i) {
        QTRY_VERIFY(QApplication::focusWidget());
        QWidget* focus = QApplication::focusWidget();
        const QString text = focus->property("text").toString();
        order << (text.isEmpty() ? focus->objectName() : text);
        QTest::keyClick(focus, Qt::Key_Tab);
    }

    QCOMPARE(order.join(QStringLiteral(", ")),
             QStringLiteral("btnAddCustom, btnAddPainted, hide all, treeLayers, Town, Farm, Rich, "
                            "button, slider"));
}

QTEST_MAIN(tst_QuillmapWindow)
#include "tst_QuillmapWindow.moc"
