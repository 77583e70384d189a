#include "ui/QuillmapWindow.h"

#include "canvas/BrushDock.h"
#include "canvas/WidgetRuler.h"
#include "tests/support/WindowFixture.h"
#include "ui/WindowState.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/NamedGroupBox.h"

#include <QApplication>
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>
#include <QWhatsThis>
#include <QWheelEvent>

#include <algorithm>
#include <iterator>

namespace {

/// The smallest screen that the window is made for, in logical pixels.
constexpr QSize SmallScreen(1366, 768);
/// A title bar and borders, as window systems draw them.
constexpr QSize WindowFrame(4, 30);

/// The actions of the docks that are closed at first.
constexpr const char* LaterDocks[] = {"actionHistory",    "actionProbe",      "actionOverview",
                                      "actionStatistics", "actionZonesTable", "actionProblems"};

/// Opens the other docks of the window.
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
    void DocksFindRoomOnASmallScreen();
    void OpensMaximizedWhereItDoesNotFit();
    void TabsFromTheLayersToTheirProperties();
    void EndsWithADockOutOfTheWindow();
};

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
    QVERIFY(fixture.Child<QWidget>("DockOverview")->isHidden());
}

void tst_QuillmapWindow::ShowsDocksByTheirActions_data()
{
    QTest::addColumn<QStringList>("docks");

    QTest::newRow("actionViewLayers") << QStringList{"DockLayers", "DockLayerProps"};
    QTest::newRow("actionViewTerritoryTypes") << QStringList{"DockTerTypes", "DockTerTypeProps"};
    QTest::newRow("actionViewStatus") << QStringList{"DockStatus"};
    QTest::newRow("actionHistory") << QStringList{"DockHistory"};
    QTest::newRow("actionOverview") << QStringList{"DockOverview"};
    QTest::newRow("actionZonesTable") << QStringList{"DockZones"};
    QTest::newRow("actionStatistics") << QStringList{"DockStatistics"};
    QTest::newRow("actionProblems") << QStringList{"DockProblems"};
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
    const QList<ElidedLabel*> labels =
        fixture.window->centralWidget()->findChildren<ElidedLabel*>();
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
    for (const char* action : LaterDocks) {
        fixture.Trigger(action);
        QTRY_VERIFY2(fixture.Action(action)->isChecked(), action);
        // The window grows before the dock finds its room.
        QTest::qWait(50);
        QTRY_VERIFY2(room.contains(fixture.window->frameGeometry()), action);
    }
}

void tst_QuillmapWindow::DocksFindRoomOnASmallScreen()
{
    WindowFixture fixture;
    OpenDocks(fixture);
    const auto fits = [&fixture] {
        const QSize smallest = fixture.window->minimumSizeHint() + WindowFrame;
        return smallest.width() <= SmallScreen.width() && smallest.height() <= SmallScreen.height();
    };
    QVERIFY(fits());
    const QList<QDockWidget*> docks = fixture.window->findChildren<QDockWidget*>();
    for (const char* action : LaterDocks) {
        QList<QDockWidget*> shown;
        std::copy_if(docks.begin(), docks.end(), std::back_inserter(shown),
                     [](const QDockWidget* dock) { return dock->isHidden(); });
        fixture.Trigger(action);
        const auto opened = std::find_if(shown.begin(), shown.end(),
                                         [](const QDockWidget* dock) { return !dock->isHidden(); });
        QVERIFY2(opened != shown.end(), action);

        WindowState::MakeRoom(*fixture.window, **opened, SmallScreen);

        QVERIFY2((*opened)->isVisible(), action);
        QVERIFY2(fits(), action);
    }
    // Where there is room, docks stay where they are.
    fixture.Child<QDockWidget>("DockZones")->setFloating(false);
    WindowState::MakeRoom(*fixture.window, *fixture.Child<QDockWidget>("DockZones"), {3840, 2160});
    QVERIFY(!fixture.Child<QDockWidget>("DockZones")->isFloating());
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

void tst_QuillmapWindow::EndsWithADockOutOfTheWindow()
{
    WindowFixture fixture;
    for (const char* name : {"DockLayers", "DockStatus"}) {
        auto* dock = fixture.Child<QDockWidget>(name);
        dock->setFloating(true);
        QVERIFY(QTest::qWaitForWindowExposed(dock));
    }
    fixture.window.reset();
    QVERIFY(QApplication::topLevelWidgets().isEmpty());
}

QTEST_MAIN(tst_QuillmapWindow)
#include "tst_QuillmapWindow.moc"
