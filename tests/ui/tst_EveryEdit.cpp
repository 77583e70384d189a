#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "tests/support/Drags.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QImage>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QSlider>
#include <QTest>
#include <QTreeView>

namespace {

/// A window with the small project and all docks, used with mouse and keys.
class Editor : public WindowFixture
{
public:
    Editor()
    {
        Load(WriteProject());
        Trigger("actionViewTerritoryTypes");
        QApplication::setActiveWindow(window.get());
        View().setFocus();
    }

    QTreeView& LayerTree() const { return *Child<QTreeView>("treeLayers"); }
    QTreeView& TerritoryTree() const { return *Child<QTreeView>("treeTerTypes"); }
    QModelIndex Type() const { return TerritoryTree().model()->index(0, 0); }
    QModelIndex North() const { return TerritoryTree().model()->index(0, 0, Type()); }

    QPoint At(QPointF scenePosition) const { return View().mapFromScene(scenePosition); }
    void Press(QPointF position, Qt::MouseButton button = Qt::LeftButton) const
    {
        QTest::mouseMove(View().viewport(), At(position));
        QTest::mousePress(View().viewport(), button, {}, At(position));
    }
    void Move(QPointF position, Qt::MouseButton button = Qt::LeftButton) const
    {
        QWidget* viewport = View().viewport();
        QMouseEvent event(QEvent::MouseMove, At(position), viewport->mapToGlobal(At(position)),
                          Qt::NoButton, button, Qt::NoModifier);
        QApplication::sendEvent(viewport, &event);
    }
    void Release(QPointF position, Qt::MouseButton button = Qt::LeftButton) const
    {
        QTest::mouseRelease(View().viewport(), button, {}, At(position));
    }
    void ClickAt(QPointF position) const
    {
        Press(position);
        Release(position);
    }
    void Drag(QPointF from, QPointF to, Qt::MouseButton button = Qt::LeftButton) const
    {
        Press(from, button);
        Move((from + to) / 2, button);
        Move(to, button);
        Release(to, button);
    }
    void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        // Dialogs took the keys with them.
        QApplication::setActiveWindow(window.get());
        View().setFocus();
        const bool isShifted = modifiers == Qt::ShiftModifier;
        const bool isControl = modifiers == Qt::ControlModifier;
        const Qt::Key held = isShifted ? Qt::Key_Shift : Qt::Key_Control;
        if (isShifted || isControl) {
            QTest::keyPress(&View(), held, modifiers);
        }
        QTest::keyClick(&View(), Qt::Key(key), modifiers);
        if (isShifted || isControl) {
            QTest::keyRelease(&View(), held);
        }
    }
    void Click(const char* button) const
    {
        QWidget* widget = Child<QWidget>(button);
        QVERIFY2(widget->isEnabled() && widget->isVisible(), button);
        QTest::mouseClick(widget, Qt::LeftButton, {}, {8, widget->height() / 2});
    }
    void Type(const char* field, const QString& text) const
    {
        QWidget* widget = Child<QWidget>(field);
        QVERIFY2(widget->isEnabled() && widget->isVisible(), field);
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(widget, text);
    }
    static void ClickRow(QTreeView& tree, const QModelIndex& index)
    {
        tree.scrollTo(index);
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualRect(index).center());
    }
    static void ClickBox(QTreeView& tree, const QModelIndex& index)
    {
        tree.scrollTo(index);
        QStyleOptionViewItem option;
        option.initFrom(&tree);
        option.rect = tree.visualRect(index);
        option.features = QStyleOptionViewItem::HasCheckIndicator;
        const QRect box =
            tree.style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &tree);
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, box.center());
    }
    static void Rename(QTreeView& tree, const QString& name)
    {
        tree.setFocus();
        QTest::keyClick(&tree, Qt::Key_F2);
        auto* editor = tree.viewport()->findChild<QLineEdit*>();
        QVERIFY(editor);
        editor->selectAll();
        QTest::keyClicks(editor, name);
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::processEvents();
    }
    static void Remove(QTreeView& tree)
    {
        tree.setFocus();
        QTest::keyClick(&tree, Qt::Key_Delete);
    }
    void PickColor(const char* group)
    {
        answers.Add([](QWidget& dialog) {
            auto* colors = qobject_cast<QColorDialog*>(&dialog);
            QVERIFY(colors);
            colors->setCurrentColor(QColor(70, 80, 90));
            colors->accept();
        });
        QTest::mouseClick(Child<QWidget>(group)->findChild<QAbstractButton*>(), Qt::LeftButton);
    }
    /// From the present value to the middle and on, as one press.
    void Slide(const char* group) const
    {
        auto* slider = Child<QWidget>(group)->findChild<QSlider*>();
        QTest::mousePress(slider, Qt::LeftButton, {}, slider->rect().center());
        QTest::mouseRelease(slider, Qt::LeftButton, {}, slider->rect().center());
        slider->setFocus();
    }
    void ClickSpin(const char* box) const { Type(box, QStringLiteral("17")); }
    void SelectZone() const
    {
        ClickRow(TerritoryTree(), North());
        Click("btnToggleZoneSelect");
        ClickAt({10, 10});
        QCOMPARE(Scene().selectedItems().size(), 1);
    }
    /// Accepts the dialog that the action opens. What is typed into one of its fields first may be
    /// empty.
    void AcceptAfter(const char* action, const char* field = "", const QString& typed = {})
    {
        answers.Add([field = QString(field), typed](QWidget& dialog) {
            if (auto* widget = dialog.findChild<QWidget*>(field); widget && !typed.isEmpty()) {
                QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
                QTest::keyClicks(widget, typed);
            }
            QTest::keyClick(&dialog, Qt::Key_Return);
            QTRY_VERIFY(!dialog.isVisible());
        });
        Trigger(action);
    }
    void Compute(int operation)
    {
        answers.Add([operation](QWidget& dialog) {
            auto* ok = dialog.findChild<QWidget*>(QStringLiteral("btnOk"));
            QTRY_VERIFY(ok->isEnabled());
            dialog.findChild<QComboBox*>(QStringLiteral("cboOperation"))
                ->setCurrentIndex(operation);
            QTRY_VERIFY(ok->isEnabled());
            auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("txtOutputName"));
            name->selectAll();
            QTest::keyClicks(name, QStringLiteral("computed %1").arg(operation));
            QTest::mouseClick(ok, Qt::LeftButton);
            QTRY_VERIFY(!dialog.isVisible());
        });
    }
};

using Deed = void (*)(Editor& editor);

void Nothing(Editor& /*editor*/) {}

void EnterPaint(Editor& editor)
{
    editor.Trigger("actionTogglePaintMode");
}

void SelectNorth(Editor& editor)
{
    Editor::ClickRow(editor.TerritoryTree(), editor.North());
}

void SelectType(Editor& editor)
{
    Editor::ClickRow(editor.TerritoryTree(), editor.Type());
}

void ShowType(Editor& editor)
{
    Editor::ClickBox(editor.TerritoryTree(), editor.Type());
}

void SelectZone(Editor& editor)
{
    editor.SelectZone();
}

void AddComputed(Editor& editor)
{
    editor.Compute(0);
    editor.Click("btnAddCustom");
}

void CopyZone(Editor& editor)
{
    editor.SelectZone();
    editor.Key(Qt::Key_C, Qt::ControlModifier);
    editor.Move({40, 40}, Qt::NoButton);
}

void PasteZone(Editor& editor)
{
    CopyZone(editor);
    editor.Key(Qt::Key_V, Qt::ControlModifier);
}

/// North's zone is selected, and another territory has a copy of it.
void AddTerritory(Editor& editor)
{
    editor.SelectZone();
    editor.Click("btnZoneCopy");
    SelectNorth(editor);
    const TerritoryType* type = editor.window->GetDocument().Types().Types().constFirst();
    editor.Scene().SelectZones({type->Territories().constFirst()->Zones().first()});
}

void SelectTwo(Editor& editor)
{
    PasteZone(editor);
    editor.Trigger("actionSelectAllZones");
}

void ShowEvent(Editor& editor)
{
    editor.SelectZone();
    editor.Click("rdoDynEvent");
}

/// pattern: new layers, types and territories are named by numbers that depend on the tests before.
bool IsText(const QString& text, const QString& pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

} // namespace

Q_DECLARE_METATYPE(Deed)

/// Each kind of edit is done by hand, undone and done again, and what would be saved is compared.
class tst_EveryEdit : public QObject
{
    Q_OBJECT

private slots:
    void IsUndoneAndDoneAgain_data();
    void IsUndoneAndDoneAgain();
    void AClickInTheHistoryGoesThere();
    void UndoComesBackToWhatIsSaved();
    void UndoScrollsToZonesThatComeBack_data();
    void UndoScrollsToZonesThatComeBack();
};

void tst_EveryEdit::IsUndoneAndDoneAgain_data()
{
    QTest::addColumn<Deed>("before");
    QTest::addColumn<Deed>("deed");
    QTest::addColumn<QString>("text");

    const auto row = [](const char* name, Deed before, Deed deed, const char* text) {
        QTest::newRow(name) << before << deed << QString(QLatin1String(text));
    };
    row(
        "paint", EnterPaint,
        [](Editor& e) {
            e.Drag({40, 40}, {50, 44});
        },
        "Paint stroke on blue");
    row(
        "erase", EnterPaint,
        [](Editor& e) {
            e.Drag({12, 12}, {20, 20}, Qt::RightButton);
        },
        "Erase stroke on blue");
    row(
        "shape", EnterPaint,
        [](Editor& e) {
            e.Trigger("toolEllipse");
            e.Drag({30, 40}, {50, 54});
        },
        "Paint ellipse on blue");
    row(
        "fill within", EnterPaint,
        [](Editor& e) {
            e.Trigger("toolFill");
            e.Child<QComboBox>("cboPaintWithin")->setCurrentIndex(1);
            e.Drag({40, 40}, {40, 40});
            e.Drag({12, 12}, {12, 12}, Qt::RightButton);
        },
        "Erase area on blue");
    row(
        "add layer", Nothing, [](Editor& e) { e.Click("btnAddPainted"); }, "Add layer layer-\\d+");
    row("add computed layer", Nothing, AddComputed, "Add layer computed 0");
    row(
        "modify computed layer", AddComputed,
        [](Editor& e) {
            Editor::ClickRow(e.LayerTree(), e.LayerTree().model()->index(2, 0));
            e.Compute(5);
            e.Trigger("actionModify");
        },
        "Modify layer computed 0");
    row(
        "remove layer", Nothing, [](Editor& e) { Editor::Remove(e.LayerTree()); },
        "Remove layer blue");
    row(
        "rename layer", Nothing, [](Editor& e) { Editor::Rename(e.LayerTree(), "sea"); },
        "Rename blue to sea");
    row(
        "move layer", Nothing, [](Editor& e) { DragRow(e.LayerTree(), 0, 1); }, "Move layer red");
    row(
        "flags", Nothing,
        [](Editor& e) {
            QTest::mouseClick(e.Child<QWidget>("gboLayerUsageFlags")->findChild<QCheckBox*>(),
                              Qt::LeftButton, {}, {8, 8});
        },
        "Change flags of blue");
    row(
        "layer colour", Nothing, [](Editor& e) { e.PickColor("gboLayerClrOp"); },
        "Change colour of blue");
    row(
        "layer opacity", Nothing, [](Editor& e) { e.Slide("gboLayerClrOp"); },
        "Change opacity of blue");
    row(
        "hide layer", Nothing,
        [](Editor& e) { Editor::ClickBox(e.LayerTree(), e.LayerTree().model()->index(0, 0)); },
        "Hide layer red");
    row(
        "hide all", Nothing, [](Editor& e) { e.Click("btnHideAll"); }, "Hide all layers");
    row(
        "duplicate layer", Nothing, [](Editor& e) { e.Key(Qt::Key_D, Qt::ControlModifier); },
        "Duplicate layer blue");
    row(
        "fill", Nothing, [](Editor& e) { e.Trigger("actionLayerFill"); }, "Fill blue");
    row(
        "clear", Nothing, [](Editor& e) { e.Trigger("actionLayerClear"); }, "Clear blue");
    row(
        "invert", Nothing, [](Editor& e) { e.Trigger("actionLayerInvert"); }, "Invert blue");
    row(
        "grow", Nothing, [](Editor& e) { e.AcceptAfter("actionLayerGrow"); }, "Grow blue by 25 m");
    row(
        "shrink", Nothing, [](Editor& e) { e.AcceptAfter("actionLayerShrink"); },
        "Shrink blue by 25 m");
    row(
        "live ring", Nothing, [](Editor& e) { e.AcceptAfter("actionLayerRing"); },
        "Add live ring around blue");
    row(
        "merge", EnterPaint, [](Editor& e) { e.AcceptAfter("actionLayerMerge"); },
        "Merge layer blue into red");
    row(
        "move layer up", Nothing, [](Editor& e) { e.Key(Qt::Key_Up, Qt::AltModifier); },
        "Move layer blue");
    row(
        "show all",
        [](Editor& e) { Editor::ClickBox(e.LayerTree(), e.LayerTree().model()->index(0, 0)); },
        [](Editor& e) { e.Trigger("actionLayersShowAll"); }, "Show all layers");
    row(
        "import flag types", Nothing,
        [](Editor& e) {
            WriteBytes(e.Path("areas.xml"),
                       "<areas><usages><usage name=\"Moor\"/></usages></areas>");
            e.answers.AddButton("Yes");
            e.TriggerWithFile("actionImportAreas", e.Path("areas.xml"));
        },
        "Import area flag types");
    row(
        "add type", Nothing, [](Editor& e) { e.Click("btnAdd"); },
        "Add territory type Territory type \\d+");
    row(
        "remove type", SelectType, [](Editor& e) { Editor::Remove(e.TerritoryTree()); },
        "Remove territory type Deer");
    row(
        "rename type", SelectType, [](Editor& e) { Editor::Rename(e.TerritoryTree(), "Elk"); },
        "Rename Deer to Elk");
    row(
        "hide type", ShowType, [](Editor& e) { Editor::ClickBox(e.TerritoryTree(), e.Type()); },
        "Hide Deer");
    row(
        "add territory", SelectType,
        [](Editor& e) {
            e.Child<QWidget>("DockTerTypes")->findChild<QAction*>("actionAdd")->trigger();
        },
        "Add territory Territory \\d+");
    row(
        "remove territory", SelectNorth, [](Editor& e) { Editor::Remove(e.TerritoryTree()); },
        "Remove territory North");
    row(
        "rename territory", SelectNorth,
        [](Editor& e) { Editor::Rename(e.TerritoryTree(), "South"); }, "Rename North to South");
    row(
        "hide territory", SelectType,
        [](Editor& e) { Editor::ClickBox(e.TerritoryTree(), e.North()); }, "Hide North");
    row(
        "territory colour", SelectNorth, [](Editor& e) { e.PickColor("gboTerClrOp"); },
        "Change colour of North");
    row(
        "territory opacity", SelectNorth, [](Editor& e) { e.Slide("gboTerClrOp"); },
        "Change opacity of North");
    row(
        "insert zone", SelectNorth,
        [](Editor& e) {
            e.Click("btnToggleZoneInsert");
            e.ClickAt({40, 40});
        },
        "Add zone to North");
    row(
        "paste zone", CopyZone, [](Editor& e) { e.Key(Qt::Key_V, Qt::ControlModifier); },
        "Paste zone into North");
    row(
        "copy to new territory", SelectZone, [](Editor& e) { e.Click("btnZoneCopy"); },
        "Create territory from zone");
    row(
        "drag zone", SelectZone,
        [](Editor& e) {
            e.Drag({10, 10}, {30, 40});
        },
        "Move zone");
    row(
        "nudge zone", SelectZone, [](Editor& e) { e.Key(Qt::Key_Right); }, "Move zone");
    row(
        "remove zone", SelectZone, [](Editor& e) { e.Click("btnZoneDelete"); }, "Remove zone");
    row(
        "delete zone", SelectZone, [](Editor& e) { e.Key(Qt::Key_Delete); }, "Remove zone");
    row(
        "delete all zones", PasteZone,
        [](Editor& e) {
            e.Trigger("actionSelectAllZones");
            e.Key(Qt::Key_Delete);
        },
        "Remove 2 zones");
    row(
        "shift D", SelectZone, [](Editor& e) { e.Key(Qt::Key_D, Qt::ShiftModifier); },
        "Remove zone");
    row(
        "radius", SelectZone, [](Editor& e) { e.Type("txtSize", "777"); }, "Change radius of zone");
    row(
        "static min", SelectZone, [](Editor& e) { e.ClickSpin("spbStaticMin"); },
        "Change counts of zone");
    row(
        "static max", SelectZone, [](Editor& e) { e.ClickSpin("spbStaticMax"); },
        "Change counts of zone");
    row(
        "dynamic min", SelectZone, [](Editor& e) { e.ClickSpin("spbDynMin"); },
        "Change counts of zone");
    row(
        "dynamic max", SelectZone, [](Editor& e) { e.ClickSpin("spbDynMax"); },
        "Change counts of zone");
    row(
        "usage", SelectZone, [](Editor& e) { e.Click("rdoWater"); }, "Change usage of zone");
    row(
        "event", ShowEvent, [](Editor& e) { e.Type("txtDynEvent", "Storm"); },
        "Change event of zone");
    row(
        "to front", SelectZone, [](Editor& e) { e.Click("btnToFront"); }, "Change depth of zone");
    row(
        "to back", SelectZone, [](Editor& e) { e.Click("btnToBack"); }, "Change depth of zone");
    row(
        "move by metres", SelectTwo,
        [](Editor& e) { e.AcceptAfter("actionZonesMove", "spnMoveX", "-25.5"); }, "Move 2 zones");
    row(
        "align", SelectTwo, [](Editor& e) { e.AcceptAfter("actionZonesAlign"); }, "Align 2 zones");
    row(
        "scatter", SelectNorth, [](Editor& e) { e.AcceptAfter("actionZonesScatter"); },
        "Add \\d+ zones to North");
    row(
        "move to territory", AddTerritory, [](Editor& e) { e.AcceptAfter("actionZonesMoveTo"); },
        "Move zone to Territory \\d+");
    row(
        "copy to territory", AddTerritory,
        [](Editor& e) { e.AcceptAfter("actionZonesCopyTo", "cboZonesTo", "territory"); },
        "Copy zone to Territory \\d+");
    row(
        "split", SelectZone, [](Editor& e) { e.Trigger("actionZonesSplit"); }, "Split zone off");
    row(
        "join", AddTerritory,
        [](Editor& e) { e.AcceptAfter("actionTerritoriesJoin", "lstJoinTerritories", " "); },
        "Join Territory \\d+ into North");
    row(
        "duplicate territory", SelectNorth,
        [](Editor& e) { e.Trigger("actionTerritoryDuplicate"); }, "Duplicate territory North");
    row(
        "static minimum of all", SelectZone,
        [](Editor& e) {
            e.Type("txtZonesStaticMin", "+17");
            QTest::keyClick(e.Child<QWidget>("txtZonesStaticMin"), Qt::Key_Return);
        },
        "Change static minimum of zone");
    row(
        "X of all", SelectZone,
        [](Editor& e) {
            e.Type("txtZonesX", "-20");
            QTest::keyClick(e.Child<QWidget>("txtZonesX"), Qt::Key_Tab);
        },
        "Change X of zone");
    row(
        "event of all", SelectZone,
        [](Editor& e) {
            e.Type("txtZonesEvent", "Storm");
            QTest::keyClick(e.Child<QWidget>("txtZonesEvent"), Qt::Key_Return);
        },
        "Change event of zone");
    row(
        "new type", Nothing, [](Editor& e) { e.Trigger("actionTypeNew"); },
        "Add territory type Territory type \\d+");
    row(
        "new territory", SelectType, [](Editor& e) { e.Trigger("actionTerritoryNew"); },
        "Add territory Territory \\d+");
    row(
        "background", Nothing,
        [](Editor& e) {
            QImage picture(16, 16, QImage::Format_RGB32);
            picture.fill(Qt::darkGreen);
            picture.save(e.Path("world.png"));
            e.TriggerWithFile("actionLoadWorld", e.Path("world.png"));
        },
        "Load background image");
    row(
        "background colour", Nothing, [](Editor& e) { e.PickColor("gboBgOver"); },
        "Change background colour");
    row(
        "background opacity", Nothing, [](Editor& e) { e.Slide("gboBgOver"); },
        "Change background opacity");
}

void tst_EveryEdit::IsUndoneAndDoneAgain()
{
    QFETCH(Deed, before);
    QFETCH(Deed, deed);
    QFETCH(QString, text);
    Editor editor;
    before(editor);
    Document& document = editor.window->GetDocument();
    const QUndoStack& history = document.History();
    const int steps = history.index();
    const WindowFixture::SavedFiles untouched = editor.SavedBytes();
    ProjectSettings::Instance().SetModified(false);
    document.SetSaved();

    const Layer* current = document.CurrentLayer();
    deed(editor);

    // Which layer is current is saved too, and no step.
    const bool isOtherCurrent = document.CurrentLayer() != current;
    const WindowFixture::SavedFiles done = editor.SavedBytes();
    QVERIFY(done != untouched);
    QVERIFY2(IsText(editor.Action("actionUndo")->text(), "Undo " + text),
             qPrintable(editor.Action("actionUndo")->text()));
    QCOMPARE(history.index(), steps + 1);

    editor.Key(Qt::Key_Z, Qt::ControlModifier);

    QCOMPARE(history.index(), steps);
    QCOMPARE(editor.SavedBytes(), untouched);
    QVERIFY(!ProjectSettings::Instance().IsModified() || isOtherCurrent);
    if (document.CurrentLayer()) {
        QCOMPARE(editor.Scene().CurrentLayer(), document.CurrentLayer());
    }
    QVERIFY2(IsText(editor.Action("actionRedo")->text(), "Redo " + text),
             qPrintable(editor.Action("actionRedo")->text()));

    editor.Key(Qt::Key_Y, Qt::ControlModifier);

    QCOMPARE(history.index(), steps + 1);
    QCOMPARE(editor.SavedBytes(), done);
}

void tst_EveryEdit::AClickInTheHistoryGoesThere()
{
    const Editor editor;
    editor.Trigger("actionHistory");
    editor.Trigger("actionTogglePaintMode");
    const auto* view = editor.Child<QAbstractItemView>("viewHistory");
    QVector<WindowFixture::SavedFiles> states{editor.SavedBytes()};
    for (const int y : {30, 40, 50}) {
        editor.Drag({30, double(y)}, {50, double(y)});
        states.append(editor.SavedBytes());
    }

    for (const int state : {1, 3, 0, 2}) {
        const QRect row = view->visualRect(view->model()->index(state, 0));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, row.center());

        QCOMPARE(editor.window->GetDocument().History().index(), state);
        QCOMPARE(editor.SavedBytes(), states[state]);
    }
}

void tst_EveryEdit::UndoComesBackToWhatIsSaved()
{
    Editor editor;
    const auto isModified = [] { return ProjectSettings::Instance().IsModified(); };
    EnterPaint(editor);
    editor.Drag({40, 40}, {50, 44});
    QVERIFY(isModified());
    editor.Key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(!isModified());
    editor.Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(isModified());

    QVERIFY(editor.window->SaveProjectFile(editor.Path("small/small.xml")));

    QVERIFY(!isModified());
    editor.Key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(isModified());
    editor.Key(Qt::Key_Y, Qt::ControlModifier);
    QVERIFY(!isModified());
}

void tst_EveryEdit::UndoScrollsToZonesThatComeBack_data()
{
    QTest::addColumn<Deed>("select");
    QTest::newRow("territory") << Deed(SelectNorth);
    QTest::newRow("type") << Deed(SelectType);
}

void tst_EveryEdit::UndoScrollsToZonesThatComeBack()
{
    QFETCH(Deed, select);
    Editor editor;
    const QPointF place(10, 10);
    const QPointF elsewhere(60, 60);
    editor.View().scale(60, 60);
    const auto isInSight = [&editor](QPointF position) {
        return editor.View().viewport()->rect().contains(editor.At(position));
    };
    select(editor);
    Editor::Remove(editor.TerritoryTree());
    editor.View().centerOn(elsewhere);
    QVERIFY(!isInSight(place));

    editor.Trigger("actionUndo");

    QVERIFY(isInSight(place));
    editor.View().centerOn(elsewhere);
    editor.Trigger("actionRedo");
    QVERIFY(isInSight(place));
}

QTEST_MAIN(tst_EveryEdit)
#include "tst_EveryEdit.moc"
