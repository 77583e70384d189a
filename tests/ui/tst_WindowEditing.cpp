#include "document/Document.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockLayers.h"
#include "ui/DockTerTypeProps.h"
#include "ui/DockTerTypes.h"
#include "ui/widgets/ButtonColor.h"
#include "ui/widgets/GroupBoxColor.h"

#include <QAbstractButton>
#include <QGraphicsEllipseItem>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QPainter>
#include <QPen>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QTreeView>

#include <functional>

namespace {

/// A window with the small project, which can be edited.
class Editor : public WindowFixture
{
public:
    Editor()
    {
        Load(WriteProject());
        View().setFocus();
    }

    LayerList& Layers() const { return *Child<DockLayers>("DockLayers")->List(); }
    TerritoryType* Type() const
    {
        return Child<DockTerTypes>("DockTerTypes")->List()->Types().first();
    }
    Territory* North() const { return Type()->Territories().first(); }
    QTreeView& LayerTree() const { return *Child<QTreeView>("treeLayers"); }
    void SelectTerritory() const
    {
        Child<QTreeView>("treeTerTypes")->setCurrentIndex(North()->index());
    }
    QAbstractButton* Button(const char* name) const { return Child<QAbstractButton>(name); }
    void Click(const char* button) const { QTest::mouseClick(Button(button), Qt::LeftButton); }
    QPoint At(QPointF scenePosition) const { return View().mapFromScene(scenePosition); }
    void ClickAt(QPointF scenePosition) const
    {
        QTest::mouseMove(View().viewport(), At(scenePosition));
        QTest::mouseClick(View().viewport(), Qt::LeftButton, {}, At(scenePosition));
    }
    void BeginProject(const QString& path)
    {
        answers.Add([path](QWidget& dialog) {
            dialog.findChild<QLineEdit*>("txtProjectName")->setText(path);
            QTest::mouseClick(dialog.findChild<QAbstractButton*>("btnOk"), Qt::LeftButton);
        });
        Trigger("actionNew");
    }
    bool IsPaintShown() const
    {
        const bool isBox = Child<QGroupBox>("gboPaintMode")->isChecked();
        const bool isAction = Action("actionTogglePaintMode")->isChecked();
        const bool isDock = Child<QWidget>("BrushDock")->isVisible();
        [=] { QVERIFY(isBox == isAction && isBox == isDock); }();
        return isBox;
    }
};

} // namespace

class tst_WindowEditing : public QObject
{
    Q_OBJECT

private slots:
    void TogglesPaintMode();
    void PaintsTheCurrentLayer();
    void PaintModeIsLeft_data();
    void PaintModeIsLeft();
    void PanningBringsTheModeBack_data();
    void PanningBringsTheModeBack();
    void PanningBringsNoPaintModeBackWithoutALayer();
    void ShowsCheckedLayers();
    void SelectingALayerMakesItCurrent();
    void RemovingTheCurrentLayerTakesTheNext();
    void RemovingTheLastLayerLeavesNothingToPaint();
    void HidesAllLayers();
    void ColorsTheCurrentLayer();
    void FadesTheCurrentLayer();
    void ButtonsAndKeysSwitchTheZoneMode_data();
    void ButtonsAndKeysSwitchTheZoneMode();
    void PlacesAZone();
    void PlacesAZoneLikeTheLastOne();
    void SelectsAndRemovesAZone();
    void SelectsAllZonesFromTheMenuAsByKey();
    void CopiesTheSelectionIntoANewTerritory();
    void FindsATerritoryByItsZone();
    void SelectionEnablesItsControls();
    void ShowsTheWorldPosition();
    void TheOverlayIsData();
    void ATypeRowEndsZoneModes();
    void ShowsWhatTheTerritoryPropertiesChange();
    void ShowsWhatTheBrushDockChanges();
};

void tst_WindowEditing::TogglesPaintMode()
{
    const Editor editor;
    editor.SelectTerritory();
    editor.Click("btnToggleZoneInsert");
    QCOMPARE(editor.Scene().Mode(), SceneMode::Insert);

    editor.Trigger("actionTogglePaintMode");
    QCOMPARE(editor.Scene().Mode(), SceneMode::Paint);
    QVERIFY(editor.IsPaintShown());
    QVERIFY(!editor.Button("btnToggleZoneInsert")->isChecked());

    editor.Trigger("actionTogglePaintMode");
    QCOMPARE(editor.Scene().Mode(), SceneMode::None);
    QVERIFY(!editor.IsPaintShown());

    emit editor.Child<QGroupBox>("gboPaintMode")->clicked(true);
    QCOMPARE(editor.Scene().Mode(), SceneMode::Paint);
    QVERIFY(editor.IsPaintShown());
}

void tst_WindowEditing::PaintsTheCurrentLayer()
{
    const Editor editor;
    Layer* blue = editor.Layers().LayerAt(1);
    QCOMPARE(blue->Image().pixelIndex(40, 40), 0);
    editor.Trigger("actionTogglePaintMode");

    editor.ClickAt({40, 40});

    QCOMPARE(blue->Image().pixelIndex(40, 40), 255);
    QVERIFY(editor.IsModified());
    QCOMPARE(editor.Layers().LayerAt(0)->Image().pixelIndex(40, 40), 0);
}

void tst_WindowEditing::PaintModeIsLeft_data()
{
    QTest::addColumn<QString>("by");

    for (const char* by : {"insert mode", "hide all", "load", "removal of all layers", "query",
                           "select mode", "new project", "import"}) {
        QTest::newRow(by) << by;
    }
}

void tst_WindowEditing::PaintModeIsLeft()
{
    QFETCH(QString, by);
    Editor editor;
    editor.SelectTerritory();
    editor.Trigger("actionTogglePaintMode");
    QVERIFY(editor.IsPaintShown());

    if (by == "insert mode") {
        editor.Click("btnToggleZoneInsert");
    } else if (by == "hide all") {
        editor.Click("btnHideAll");
    } else if (by == "load") {
        editor.SetModified(false);
        editor.Load(editor.Path("small/small.xml"));
    } else if (by == "query") {
        editor.Click("btnToggleQueryTer");
    } else if (by == "select mode") {
        editor.Click("btnToggleZoneSelect");
    } else if (by == "new project") {
        editor.SetModified(false);
        editor.BeginProject(editor.Path("fresh.xml"));
    } else if (by == "import") {
        editor.window->SaveAreaMap();
        editor.SetModified(false);
        editor.TriggerWithFile("actionImportMap", editor.Path("small/map/small.map"));
    } else {
        editor.LayerTree().setCurrentIndex(editor.Layers().LayerAt(0)->index());
        editor.Trigger("actionRemove");
        editor.Trigger("actionRemove");
    }

    QVERIFY(!editor.IsPaintShown());
    QVERIFY(editor.Scene().Mode() != SceneMode::Paint);
}

void tst_WindowEditing::PanningBringsTheModeBack_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("meanwhile");

    const char* const names[] = {"none", "paint", "insert", "select", "query"};
    const SceneMode modes[] = {SceneMode::None, SceneMode::Paint, SceneMode::Insert,
                               SceneMode::Select, SceneMode::Query};
    for (int before = 0; before < 5; ++before) {
        for (int meanwhile = 0; meanwhile < 5; ++meanwhile) {
            QTest::addRow("%s, %s meanwhile", names[before], names[meanwhile])
                << int(modes[before]) << int(modes[meanwhile]);
        }
    }
}

void tst_WindowEditing::PanningBringsTheModeBack()
{
    QFETCH(int, before);
    QFETCH(int, meanwhile);
    Editor editor;
    editor.SelectTerritory();
    const QMap<SceneMode, const char*> buttons = {{SceneMode::Insert, "btnToggleZoneInsert"},
                                                  {SceneMode::Select, "btnToggleZoneSelect"},
                                                  {SceneMode::Query, "btnToggleQueryTer"}};
    const auto toggle = [&editor, &buttons](SceneMode mode) {
        if (mode == SceneMode::Paint) {
            editor.Trigger("actionTogglePaintMode");
        } else if (mode != SceneMode::None) {
            editor.Click(buttons[mode]);
        }
    };
    const auto modeBefore = static_cast<SceneMode>(before);
    toggle(modeBefore);
    // A click on a button would take the focus from the map, which ends panning.
    editor.Child<QWidget>("treeLayers")->setFocus();
    QTest::keyPress(&editor.View(), Qt::Key_Space);
    QCOMPARE(editor.Scene().Mode(), SceneMode::Pan);

    // The mode before is left that way too.
    toggle(static_cast<SceneMode>(meanwhile));
    QTest::keyRelease(&editor.View(), Qt::Key_Space);

    QCOMPARE(editor.Scene().Mode(), modeBefore);
    QCOMPARE(editor.View().dragMode(), QGraphicsView::NoDrag);
    QCOMPARE(editor.IsPaintShown(), modeBefore == SceneMode::Paint);
    for (auto it = buttons.begin(); it != buttons.end(); ++it) {
        QCOMPARE(editor.Button(it.value())->isChecked(), it.key() == modeBefore);
    }
}

void tst_WindowEditing::PanningBringsNoPaintModeBackWithoutALayer()
{
    Editor editor;
    editor.Trigger("actionTogglePaintMode");
    QTest::keyPress(&editor.View(), Qt::Key_Space);
    editor.Click("btnHideAll");
    QTest::keyRelease(&editor.View(), Qt::Key_Space);

    QVERIFY(!editor.IsPaintShown());
    QCOMPARE(editor.Scene().Mode(), SceneMode::None);
}

void tst_WindowEditing::ShowsCheckedLayers()
{
    const Editor editor;
    const QColor red = Qt::red;
    const auto pixel = [&] {
        QImage picture(64, 64, QImage::Format_ARGB32_Premultiplied);
        picture.fill(0);
        QPainter painter(&picture);
        editor.Scene().render(&painter, QRectF(), QRectF(0, 0, 64, 64));
        return picture.pixelColor(12, 12);
    };
    editor.window->GetDocument().Types().Clear();
    // Blue is current and so on top; it hides red, until red is current.
    QCOMPARE(pixel(), QColor(Qt::blue));
    editor.LayerTree().setCurrentIndex(editor.Layers().LayerAt(0)->index());
    QCOMPARE(pixel(), red);

    editor.Click("btnHideAll");
    QCOMPARE(pixel().alpha(), 0);
    editor.SetModified(false);

    editor.Layers().LayerAt(1)->setCheckState(Qt::Checked);

    QCOMPARE(pixel(), QColor(Qt::blue));
    QVERIFY(editor.IsModified());
}

void tst_WindowEditing::SelectingALayerMakesItCurrent()
{
    const Editor editor;
    Layer* red = editor.Layers().LayerAt(0);

    editor.LayerTree().setCurrentIndex(red->index());

    QCOMPARE(editor.Scene().CurrentLayer(), red);
    QVERIFY(editor.IsModified());
    editor.Trigger("actionTogglePaintMode");
    editor.ClickAt({50, 50});
    QCOMPARE(red->Image().pixelIndex(50, 50), 255);
}

void tst_WindowEditing::RemovingTheCurrentLayerTakesTheNext()
{
    const Editor editor;
    Layer* red = editor.Layers().LayerAt(0);

    editor.Trigger("actionRemove");

    QCOMPARE(editor.Layers().Layers(), QVector<Layer*>{red});
    QCOMPARE(editor.Scene().CurrentLayer(), red);
    QVERIFY(editor.Action("actionTogglePaintMode")->isEnabled());
}

void tst_WindowEditing::RemovingTheLastLayerLeavesNothingToPaint()
{
    const Editor editor;
    editor.Trigger("actionRemove");
    editor.Trigger("actionRemove");

    QVERIFY(editor.Layers().IsEmpty());
    QCOMPARE(editor.Scene().CurrentLayer(), nullptr);
    QVERIFY(!editor.Action("actionTogglePaintMode")->isEnabled());
    QVERIFY(!editor.Child<QWidget>("gboPaintMode")->isEnabled());
    QVERIFY(!editor.Child<QWidget>("DockLayerProps")->isEnabled());
    QVERIFY(!editor.Child<QWidget>("btnHideAll")->isEnabled());
}

void tst_WindowEditing::HidesAllLayers()
{
    const Editor editor;
    editor.Trigger("actionTogglePaintMode");

    editor.Click("btnHideAll");

    QVERIFY(!editor.Layers().LayerAt(0)->IsVisible());
    QVERIFY(!editor.Layers().LayerAt(1)->IsVisible());
    QVERIFY(!editor.LayerTree().currentIndex().isValid());
    QVERIFY(!editor.Action("actionTogglePaintMode")->isEnabled());
    QVERIFY(!editor.Child<QWidget>("DockLayerProps")->isEnabled());
    QVERIFY(editor.IsModified());
}

void tst_WindowEditing::ColorsTheCurrentLayer()
{
    const Editor editor;
    Layer* blue = editor.Layers().LayerAt(1);
    const auto* group = editor.Child<QWidget>("gboLayerClrOp");
    emit group->findChild<ButtonColor*>("button")->ColorChanged(QColor(1, 2, 3));

    QCOMPARE(blue->Color().rgb(), qRgb(1, 2, 3));
    QVERIFY(editor.IsModified());
    // From now on painting uses the new colour, from which the mask is made.
    editor.Trigger("actionTogglePaintMode");
    editor.ClickAt({40, 40});
    QCOMPARE(blue->Image().pixelIndex(40, 40), 255);
    QCOMPARE(blue->Image().pixelIndex(12, 12), 255);
}

void tst_WindowEditing::FadesTheCurrentLayer()
{
    const Editor editor;
    editor.Child<QWidget>("gboLayerClrOp")->findChild<QSlider*>("slider")->setValue(51);

    QCOMPARE(editor.Layers().LayerAt(1)->Color().alpha(), 51);
    QVERIFY(editor.IsModified());
    const QList<QGraphicsItem*> items = editor.Scene().items();
    QVERIFY(std::any_of(items.begin(), items.end(), [](const QGraphicsItem* item) {
        return qFuzzyCompare(item->zValue(), 0.8) && qAbs(item->opacity() - 0.2) < 0.001;
    }));
}

void tst_WindowEditing::ButtonsAndKeysSwitchTheZoneMode_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("mode");

    QTest::newRow("btnToggleZoneInsert") << int(Qt::Key_A) << int(SceneMode::Insert);
    QTest::newRow("btnToggleZoneSelect") << int(Qt::Key_S) << int(SceneMode::Select);
    QTest::newRow("btnToggleQueryTer") << int(Qt::Key_Q) << int(SceneMode::Query);
}

void tst_WindowEditing::ButtonsAndKeysSwitchTheZoneMode()
{
    QFETCH(int, key);
    QFETCH(int, mode);
    const Editor editor;
    editor.SelectTerritory();
    const auto click = [&] { editor.Click(QTest::currentDataTag()); };
    const auto press = [&] {
        QTest::keyPress(&editor.View(), Qt::Key_Shift, Qt::ShiftModifier);
        QTest::keyClick(&editor.View(), Qt::Key(key), Qt::ShiftModifier);
        QTest::keyRelease(&editor.View(), Qt::Key_Shift);
    };
    for (const auto& toggle : {std::function<void()>(click), std::function<void()>(press)}) {
        toggle();
        QCOMPARE(int(editor.Scene().Mode()), mode);
        for (const char* name :
             {"btnToggleZoneInsert", "btnToggleZoneSelect", "btnToggleQueryTer"}) {
            QCOMPARE(editor.Button(name)->isChecked(),
                     QLatin1String(name) == QTest::currentDataTag());
        }
        toggle();
        QCOMPARE(editor.Scene().Mode(), SceneMode::None);
        QVERIFY(!editor.Button(QTest::currentDataTag())->isChecked());
    }
}

void tst_WindowEditing::PlacesAZone()
{
    const Editor editor;
    editor.SelectTerritory();
    editor.Click("btnToggleZoneInsert");

    editor.ClickAt({40, 40});

    QCOMPARE(editor.North()->Zones().size(), 2);
    const Zone* zone = editor.North()->Zones().last();
    QCOMPARE(zone->pos(), QPointF(40, 40));
    QCOMPARE(zone->Radius(), 30.0F);
    QVERIFY(editor.IsModified());
}

void tst_WindowEditing::PlacesAZoneLikeTheLastOne()
{
    const Editor editor;
    editor.SelectTerritory();
    editor.Click("btnToggleZoneSelect");
    editor.ClickAt({10, 10});
    QCOMPARE(editor.Scene().selectedItems().size(), 1);
    editor.Click("btnToggleZoneInsert");

    editor.ClickAt({40, 40});

    const Zone* zone = editor.North()->Zones().last();
    QCOMPARE(zone->Radius(), 6.0F);
    QCOMPARE(zone->Counts().dynamicMax, 4);
    QCOMPARE(zone->zValue(), 5.0);
    QTRY_COMPARE(editor.Child<QLabel>("lblTerDynMaxVal")->text(), "8");
}

void tst_WindowEditing::SelectsAndRemovesAZone()
{
    const Editor editor;
    editor.SelectTerritory();
    editor.Click("btnToggleZoneSelect");
    editor.ClickAt({10, 10});
    QVERIFY(editor.Child<QWidget>("gboZone")->isEnabled());

    editor.Click("btnZoneDelete");

    QVERIFY(editor.North()->Zones().isEmpty());
    QVERIFY(!editor.Child<QWidget>("gboZone")->isEnabled());
    QTRY_COMPARE(editor.Child<QLabel>("lblTerTotalMaxVal")->text(), "0");
    QVERIFY(editor.IsModified());
}

void tst_WindowEditing::SelectsAllZonesFromTheMenuAsByKey()
{
    const Editor editor;
    editor.SelectTerritory();
    Document& document = editor.window->GetDocument();
    document.Do(Edits::InsertZone(*editor.North(), {40, 40}, document.ZoneTemplate()));
    const QVector<Zone*> onTheMap = editor.North()->Zones().values().toVector();
    document.Do(Edits::InsertZone(*editor.North(), {900, 900}, document.ZoneTemplate()));

    editor.Trigger("actionSelectAllZones");

    QCOMPARE(editor.Scene().Mode(), SceneMode::Select);
    QCOMPARE(editor.Scene().SelectedZones(), onTheMap);
    editor.Scene().clearSelection();
    QTest::keyPress(&editor.View(), Qt::Key_Control, Qt::ControlModifier);
    QTest::keyClick(&editor.View(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyRelease(&editor.View(), Qt::Key_Control);
    QCOMPARE(editor.Scene().SelectedZones(), onTheMap);
}

void tst_WindowEditing::CopiesTheSelectionIntoANewTerritory()
{
    const Editor editor;
    editor.SelectTerritory();
    editor.Click("btnToggleZoneSelect");
    editor.ClickAt({10, 10});

    editor.Click("btnZoneCopy");

    const QVector<Territory*> territories = editor.Type()->Territories();
    QCOMPARE(territories.size(), 2);
    QCOMPARE(territories.last()->Zones().size(), 1);
    QCOMPARE(territories.last()->Color(), editor.North()->Color());
    QCOMPARE(editor.Scene().CurrentTerritory(), territories.last());
    QVERIFY(editor.Scene().selectedItems().isEmpty());
}

void tst_WindowEditing::FindsATerritoryByItsZone()
{
    const Editor editor;
    editor.Click("btnToggleQueryTer");

    editor.ClickAt({10, 10});

    QCOMPARE(editor.Scene().CurrentTerritory(), editor.North());
    QCOMPARE(editor.Scene().Mode(), SceneMode::Select);
    QVERIFY(editor.Button("btnToggleZoneSelect")->isChecked());
    QVERIFY(!editor.Button("btnToggleQueryTer")->isChecked());
    QCOMPARE(editor.Scene().selectedItems().size(), 1);
}

void tst_WindowEditing::SelectionEnablesItsControls()
{
    const Editor editor;
    editor.SelectTerritory();
    editor.Click("btnToggleZoneSelect");
    QVERIFY(!editor.Button("btnZoneDelete")->isEnabled());
    QVERIFY(!editor.Button("btnZoneCopy")->isEnabled());

    editor.ClickAt({10, 10});
    QVERIFY(editor.Button("btnZoneDelete")->isEnabled());
    QVERIFY(editor.Button("btnZoneCopy")->isEnabled());

    editor.Scene().clearSelection();
    QVERIFY(!editor.Button("btnZoneDelete")->isEnabled());
    QVERIFY(!editor.Button("btnZoneCopy")->isEnabled());
}

void tst_WindowEditing::ShowsTheWorldPosition()
{
    const Editor editor;
    emit editor.View().MouseMoved(10, 20);
    QCOMPARE(editor.Child<QLabel>("lblWorldPosX")->text(), "X = 100");
    QCOMPARE(editor.Child<QLabel>("lblWorldPosZ")->text(), "Z = 200");
}

void tst_WindowEditing::TheOverlayIsData()
{
    const Editor editor;
    editor.Child<QWidget>("gboBgOver")->findChild<QSlider*>("slider")->setValue(100);

    QCOMPARE(ProjectSettings::Instance().BackgroundColor().alpha(), 100);
    QVERIFY(editor.IsModified());
    editor.SetModified(false);

    emit editor.Child<GroupBoxColor>("gboBgOver")->ColorChanged(QColor(9, 8, 7));

    QCOMPARE(ProjectSettings::Instance().BackgroundColor().rgba(), qRgba(9, 8, 7, 100));
    QVERIFY(editor.IsModified());
}

void tst_WindowEditing::ATypeRowEndsZoneModes()
{
    const Editor editor;
    editor.SelectTerritory();
    editor.Click("btnToggleZoneInsert");

    editor.Child<QTreeView>("treeTerTypes")->setCurrentIndex(editor.Type()->index());

    QCOMPARE(editor.Scene().Mode(), SceneMode::None);
    QCOMPARE(editor.Scene().CurrentTerritory(), nullptr);
    QVERIFY(!editor.Button("btnToggleZoneInsert")->isEnabled());
    QVERIFY(!editor.Button("btnToggleZoneInsert")->isChecked());
}

void tst_WindowEditing::ShowsWhatTheTerritoryPropertiesChange()
{
    const Editor editor;
    QCoreApplication::processEvents();
    const QSignalSpy spy(&editor.Scene(), &QGraphicsScene::changed);
    const QRectF rect(3, 4, 5, 6);

    emit editor.Child<DockTerTypeProps>("DockTerTypeProps")->Changed(rect);

    QTRY_COMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().value<QList<QRectF>>(), QList<QRectF>{rect});
}

void tst_WindowEditing::ShowsWhatTheBrushDockChanges()
{
    const Editor editor;
    editor.Trigger("actionTogglePaintMode");
    const auto cursor = [&]() -> const QGraphicsEllipseItem* {
        const QList<QGraphicsItem*> items = editor.Scene().items();
        for (const QGraphicsItem* item : items) {
            if (const auto* ellipse = qgraphicsitem_cast<const QGraphicsEllipseItem*>(item)) {
                return ellipse;
            }
        }
        return nullptr;
    };
    QVERIFY(cursor());
    QCOMPARE(cursor()->rect(), QRectF(-4, -4, 8, 8));

    editor.Child<QSlider>("sldBrushSize")->setValue(20);
    QCOMPARE(cursor()->rect(), QRectF(-10, -10, 20, 20));

    editor.Child<QSlider>("sldBrushOutlineWidth")->setValue(3);
    QCOMPARE(cursor()->pen().width(), 3);
}

QTEST_MAIN(tst_WindowEditing)
#include "tst_WindowEditing.moc"
