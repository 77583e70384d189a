#include "app/ProjectSettings.h"
#include "canvas/ZonePreview.h"
#include "document/Document.h"
#include "document/LiveLayers.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "document/edits/TerritoryEdits.h"
#include "document/edits/ZoneEdits.h"
#include "layers/Formula.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryRecords.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/Masks.h"
#include "tests/support/WindowFixture.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSet>
#include <QTest>
#include <QTreeView>

#include <algorithm>
#include <cmath>

namespace {

/// The small project with more zones: "Deer" with the territories "North", of four zones, "South",
/// of one, and "Lake", of none, and "Wolf" with "South", of none. A pixel is 10 metres.
class Editor : public WindowFixture
{
public:
    Editor()
    {
        Load(WriteProject());
        QApplication::setActiveWindow(window.get());
        deer = Doc().Types().Types().constFirst();
        north = deer->Territories().constFirst();
        south = Add(*deer, "South");
        lake = Add(*deer, "Lake");
        Doc().Do(Edits::AddType(Doc().Types(), std::make_unique<TerritoryType>("Wolf")));
        wolfSouth = Add(*Doc().Types().Types().constLast(), "South");
        const ZoneValues values = Doc().ZoneTemplate();
        Doc().Do(Edits::AddZones("Add", {{north, values, {20, 30}},
                                         {north, values, {22.5, 34}},
                                         {north, values, {40, 12}},
                                         {south, values, {50, 50}}}));
        MakeCurrent(north);
        Doc().BeginHistory(true);
        before = SavedBytes();
    }

    Document& Doc() const { return window->GetDocument(); }
    Territory* Add(TerritoryType& type, const char* name) const
    {
        Doc().Do(Edits::AddTerritory(type, std::make_unique<Territory>(QLatin1String(name))));
        return type.Territories().constLast();
    }
    void MakeCurrent(const QStandardItem* row) const
    {
        Child<QTreeView>("treeTerTypes")->setCurrentIndex(row->index());
    }
    static QVector<Zone*> ZonesOf(const Territory* territory)
    {
        return QVector<Zone*>(territory->Zones().cbegin(), territory->Zones().cend());
    }
    static WorldCircle Metres(const Zone* zone)
    {
        return InWorld(zone->Record(), WorldScale(ProjectSettings::Instance()));
    }
    QString UndoText() const { return Doc().History().undoText(); }
    /// What was done is one step, and is undone to the same bytes.
    void VerifyOneStep(const QString& text) const
    {
        QCOMPARE(UndoText(), text);
        QCOMPARE(Doc().History().index(), 1);
        const SavedFiles after = SavedBytes();
        QVERIFY(after != before);
        Trigger("actionUndo");
        QCOMPARE(SavedBytes(), before);
        Trigger("actionRedo");
        QCOMPARE(SavedBytes(), after);
    }
    /// Types into the field of the dialog that has the focus.
    static void Type(QWidget& dialog, const char* name, const QString& text)
    {
        auto* field = dialog.findChild<QWidget*>(QLatin1String(name));
        QVERIFY2(field, name);
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field, text);
    }
    static bool IsOkEnabled(const QWidget& dialog)
    {
        return dialog.findChild<QPushButton*>("btnOk")->isEnabled();
    }
    static QString Label(const QWidget& dialog, const char* name)
    {
        return dialog.findChild<QLabel*>(name)->text();
    }
    static QListWidgetItem* Row(const QWidget& dialog, const char* list, const char* name)
    {
        const QList<QListWidgetItem*> items =
            dialog.findChild<QListWidget*>(list)->findItems(name, Qt::MatchExactly);
        return items.value(0);
    }

    TerritoryType* deer = nullptr;
    Territory* north = nullptr;
    Territory* south = nullptr;
    Territory* lake = nullptr;
    Territory* wolfSouth = nullptr;
    SavedFiles before;
};

const char* const OfSelection[] = {"actionZonesMove", "actionZonesAlign", "actionZonesMoveTo",
                                   "actionZonesCopyTo", "actionZonesSplit"};
const char* const OfTerritory[] = {"actionZonesScatter", "actionTerritoriesJoin",
                                   "actionTerritoryDuplicate"};

} // namespace

class tst_ZoneActions : public QObject
{
    Q_OBJECT

private slots:
    void HasItsMenuAndKeys();
    void ActionsNeedWhatTheyWorkOn();
    void NothingIsDoneWhileViewingOnly();
    void MovesByMetres();
    void MovesExactlyWhereAPixelIsNoWholeNumberOfMetres();
    void MovesToATerritoryThatIsTyped();
    void CopiesToATerritoryOfAnotherType();
    void ATargetMustBeNamed();
    void SplitsOff();
    void Joins();
    void Duplicates();
    void Scatters();
    void ScattersInsideLiveLayersThatWaited();
    void ScatterSaysWhenFewerFit();
    void ScatterIsAcceptedBeforeItIsDone();
    void ACancelledScatterLeavesNothing();
    void Aligns();
    void ArrangesOnACircle();
};

void tst_ZoneActions::HasItsMenuAndKeys()
{
    const Editor editor;
    const auto* menu = editor.Child<QMenu>("menuZones");
    QCOMPARE(menu->title(), "&Zones");
    QStringList menus;
    const QList<QAction*> entries = editor.Child<QMenuBar>("menuBar")->actions();
    for (const QAction* entry : entries) {
        menus.append(entry->menu()->objectName());
    }
    QCOMPARE(menus.mid(menus.indexOf("menuLayer"), 3),
             QStringList({"menuLayer", "menuZones", "menuGo"}));
    QCOMPARE(editor.Action("actionZonesMove")->text(), QString::fromUtf8("Move by metres…"));
    QCOMPARE(editor.Action("actionZonesTable")->shortcut().toString(), "Ctrl+T");
    QVERIFY(editor.Action("actionZonesTable")->isCheckable());
    QVERIFY(editor.Action("actionTerritorySolo")->isCheckable());
    QSet<QChar> mnemonics;
    const QList<QAction*> actions = menu->actions();
    for (const QAction* action : actions) {
        const int mark = action->text().indexOf('&');
        if (mark >= 0) {
            const QChar letter = action->text().at(mark + 1).toUpper();
            QVERIFY2(!mnemonics.contains(letter), qPrintable(action->text()));
            mnemonics.insert(letter);
        }
    }
}

void tst_ZoneActions::ActionsNeedWhatTheyWorkOn()
{
    Editor editor;
    const auto verify = [&editor](bool hasZones, bool hasTerritory) {
        for (const char* name : OfSelection) {
            QVERIFY2(editor.Action(name)->isEnabled() == hasZones, name);
        }
        for (const char* name : OfTerritory) {
            QVERIFY2(editor.Action(name)->isEnabled() == hasTerritory, name);
        }
    };
    verify(false, true);
    // Nor does it when code asks for it.
    editor.Trigger("actionZonesSplit");
    QCOMPARE(editor.Doc().History().count(), 0);
    editor.Scene().SelectZones(Editor::ZonesOf(editor.south));
    verify(true, true);
    editor.Doc().SetHandBusy(true);
    verify(false, false);
    editor.Doc().SetHandBusy(false);
    editor.Doc().SetFilesBusy(true);
    verify(false, false);
    editor.Doc().SetFilesBusy(false);
    verify(true, true);
    editor.MakeCurrent(editor.deer);
    verify(false, false);
    // There is nothing to join it with.
    editor.MakeCurrent(editor.wolfSouth);
    QVERIFY(!editor.Action("actionTerritoriesJoin")->isEnabled());
    QVERIFY(editor.Action("actionTerritoryDuplicate")->isEnabled());
}

void tst_ZoneActions::NothingIsDoneWhileViewingOnly()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Restart(path);
    for (const char* name : OfSelection) {
        QVERIFY2(!fixture.Action(name)->isEnabled(), name);
    }
    for (const char* name : OfTerritory) {
        QVERIFY2(!fixture.Action(name)->isEnabled(), name);
    }
    QVERIFY(!fixture.Action("actionZonesImport")->isEnabled());
}

/// Four steps: the menu, the entry, the number and Enter.
void tst_ZoneActions::MovesByMetres()
{
    Editor editor;
    const QVector<Zone*> zones =
        Editor::ZonesOf(editor.north).mid(1) + Editor::ZonesOf(editor.south);
    QVector<WorldCircle> metres;
    for (const Zone* zone : zones) {
        metres.append(Editor::Metres(zone));
    }
    editor.Scene().SelectZones(zones);
    editor.answers.Add([](QWidget& dialog) {
        QCOMPARE(dialog.windowTitle(), "Move 4 zones by metres");
        auto* box = dialog.findChild<QDoubleSpinBox*>("spnMoveX");
        QCOMPARE(dialog.focusWidget(), box);
        QTest::keyClicks(box, "50");
        Editor::Type(dialog, "spnMoveZ", "-12.5");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionZonesMove");
    for (int i = 0; i < zones.size(); ++i) {
        QCOMPARE(Editor::Metres(zones[i]).x, metres[i].x + 50);
        QCOMPARE(Editor::Metres(zones[i]).z, metres[i].z - 12.5);
    }
    QCOMPARE(editor.Scene().SelectedZones(), zones);
    editor.VerifyOneStep("Move 4 zones");

    editor.Scene().SelectZones(zones);
    editor.answers.AddCancel();
    editor.Trigger("actionZonesMove");
    // By nothing is no step.
    editor.answers.Add([](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); });
    editor.Trigger("actionZonesMove");
    QCOMPARE(editor.Doc().History().count(), 1);
}

void tst_ZoneActions::MovesExactlyWhereAPixelIsNoWholeNumberOfMetres()
{
    Editor editor;
    // As in the example.
    ProjectSettings::Instance().SetSizes(64, 64, 480, 480);
    Zone* zone = Editor::ZonesOf(editor.north).at(1);
    const WorldCircle metres = Editor::Metres(zone);
    editor.Scene().SelectZones({zone});
    editor.answers.Add([](QWidget& dialog) {
        Editor::Type(dialog, "spnMoveX", "50");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    editor.Trigger("actionZonesMove");
    QCOMPARE(Editor::Metres(zone).x, metres.x + 50);
    QCOMPARE(Editor::Metres(zone).z, metres.z);
    QCOMPARE(editor.UndoText(), "Move zone");
}

void tst_ZoneActions::MovesToATerritoryThatIsTyped()
{
    Editor editor;
    const QVector<Zone*> zones = Editor::ZonesOf(editor.north).mid(1, 2);
    const QPointF place = zones[0]->pos();
    editor.Scene().SelectZones(zones);
    editor.answers.Add([](QWidget& dialog) {
        auto* combo = dialog.findChild<QComboBox*>("cboZonesTo");
        QStringList names;
        for (int i = 0; i < combo->count(); ++i) {
            names.append(combo->itemText(i));
        }
        // Where they are already is no target.
        QCOMPARE(names, QStringList({"Deer / South", "Deer / Lake", "Wolf / South"}));
        QCOMPARE(combo->completer()->filterMode(), Qt::MatchContains);
        Editor::Type(dialog, "cboZonesTo", "lak");
        QVERIFY(Editor::IsOkEnabled(dialog));
        combo->completer()->popup()->hide();
        QTest::keyClick(combo, Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionZonesMoveTo");
    QCOMPARE(Editor::ZonesOf(editor.lake), zones);
    QCOMPARE(zones[0]->pos(), place);
    QCOMPARE(zones[0]->Color(), editor.lake->Color());
    QCOMPARE(editor.Scene().SelectedZones(), zones);
    editor.VerifyOneStep("Move 2 zones to Lake");
}

void tst_ZoneActions::CopiesToATerritoryOfAnotherType()
{
    Editor editor;
    const QVector<Zone*> zones = Editor::ZonesOf(editor.north);
    editor.Scene().SelectZones(zones);
    editor.answers.Add([](QWidget& dialog) {
        auto* combo = dialog.findChild<QComboBox*>("cboZonesTo");
        QCOMPARE(combo->count(), 4);
        combo->setCurrentIndex(combo->findText("Wolf / South"));
        QTest::mouseClick(dialog.findChild<QPushButton*>("btnOk"), Qt::LeftButton);
    });
    editor.Trigger("actionZonesCopyTo");
    QCOMPARE(Editor::ZonesOf(editor.north), zones);
    const QVector<Zone*> copies = Editor::ZonesOf(editor.wolfSouth);
    QCOMPARE(copies.size(), zones.size());
    for (int i = 0; i < zones.size(); ++i) {
        QCOMPARE(copies[i]->pos(), zones[i]->pos());
        QVERIFY(copies[i]->Values() == zones[i]->Values());
    }
    editor.VerifyOneStep("Copy 4 zones to South");
}

void tst_ZoneActions::ATargetMustBeNamed()
{
    Editor editor;
    editor.Scene().SelectZones(Editor::ZonesOf(editor.north));
    editor.answers.Add([](QWidget& dialog) {
        const struct
        {
            const char* typed;
            const char* problem;
        } texts[] = {
            {"nowhere", "No territory is called \"nowhere\"."},
            {"south", "Several territories match \"south\". Choose one from the list."},
            {"deer / south", ""},
            {"f / so", ""},
        };
        for (const auto& text : texts) {
            Editor::Type(dialog, "cboZonesTo", text.typed);
            QCOMPARE(Editor::Label(dialog, "lblZonesToProblem"), text.problem);
            QCOMPARE(Editor::IsOkEnabled(dialog), *text.problem == '\0');
        }
        auto* combo = dialog.findChild<QComboBox*>("cboZonesTo");
        combo->lineEdit()->clear();
        QCOMPARE(Editor::Label(dialog, "lblZonesToProblem"), "Choose a territory.");
        static_cast<QDialog&>(dialog).accept();
        QVERIFY(dialog.isVisible());
        static_cast<QDialog&>(dialog).reject();
    });
    editor.Trigger("actionZonesMoveTo");
    QCOMPARE(editor.Doc().History().count(), 0);
}

void tst_ZoneActions::SplitsOff()
{
    Editor editor;
    const QVector<Zone*> zones = Editor::ZonesOf(editor.north).mid(1, 2);
    editor.Scene().SelectZones(zones);
    editor.Child<QLineEdit>("txtTerritoriesFilter")->setText(editor.north->text());
    editor.Trigger("actionZonesSplit");
    Territory* split = editor.deer->Territories().constLast();
    QVERIFY(
        !editor.Child<QTreeView>("treeTerTypes")->isRowHidden(split->row(), editor.deer->index()));
    QCOMPARE(Editor::ZonesOf(split), zones);
    QCOMPARE(editor.Doc().CurrentTerritory(), split);
    QCOMPARE(editor.Scene().SelectedZones(), zones);
    QVERIFY(split->Color().rgb() != editor.north->Color().rgb());
    QCOMPARE(split->checkState(), Qt::Checked);
    editor.VerifyOneStep("Split 2 zones off");
}

void tst_ZoneActions::Joins()
{
    Editor editor;
    const QVector<Zone*> all = Editor::ZonesOf(editor.north) + Editor::ZonesOf(editor.south);
    editor.answers.AddCancel();
    editor.Trigger("actionTerritoriesJoin");
    editor.answers.Add([](QWidget& dialog) {
        const auto* list = dialog.findChild<QListWidget*>("lstJoinTerritories");
        QCOMPARE(list->count(), 2);
        QVERIFY(!Editor::IsOkEnabled(dialog));
        static_cast<QDialog&>(dialog).accept();
        QVERIFY(dialog.isVisible());
        // The keyboard ticks a row.
        QCOMPARE(dialog.focusWidget(), list);
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Space);
        QCOMPARE(Editor::Row(dialog, "lstJoinTerritories", "South")->checkState(), Qt::Checked);
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionTerritoriesJoin");
    QCOMPARE(Editor::ZonesOf(editor.north), all);
    QCOMPARE(editor.deer->Territories(), (QVector<Territory*>{editor.north, editor.lake}));
    QCOMPARE(editor.Doc().CurrentTerritory(), editor.north);
    editor.VerifyOneStep("Join South into North");
}

void tst_ZoneActions::Duplicates()
{
    Editor editor;
    editor.Trigger("actionTerritoryDuplicate");
    Territory* copy = editor.deer->Territories().constLast();
    QCOMPARE(copy->text(), "North (2)");
    QCOMPARE(copy->Zones().size(), editor.north->Zones().size());
    QCOMPARE(editor.Doc().CurrentTerritory(), copy);
    QVERIFY(copy->Color().rgb() != editor.north->Color().rgb());
    editor.VerifyOneStep("Duplicate territory North");
}

namespace {

QVector<ZonePreview*> Previews(const Editor& editor)
{
    QVector<ZonePreview*> previews;
    const QList<QGraphicsItem*> items = editor.Scene().items();
    for (QGraphicsItem* item : items) {
        if (auto* preview = dynamic_cast<ZonePreview*>(item)) {
            previews.append(preview);
        }
    }
    return previews;
}

} // namespace

/// Both layers are the square from (8, 8) to (24, 24).
void tst_ZoneActions::Scatters()
{
    Editor editor;
    editor.Trigger("actionLayerFill");
    editor.Doc().BeginHistory(true);
    editor.before = editor.SavedBytes();
    const QVector<Zone*> old = Editor::ZonesOf(editor.north);
    editor.answers.Add([&editor](QWidget& dialog) {
        QCOMPARE(dialog.objectName(), "DialogScatter");
        QCOMPARE(dialog.focusWidget()->objectName(), "spnScatterCount");
        Editor::Type(dialog, "spnScatterCount", "12");
        Editor::Type(dialog, "spnScatterDistance", "25");
        Editor::Type(dialog, "spnScatterExisting", "30");
        Editor::Type(dialog, "spnScatterSeed", "7");
        Editor::Row(dialog, "lstScatterInside", "blue")->setCheckState(Qt::Checked);
        Editor::Row(dialog, "lstScatterMinus", "red")->setCheckState(Qt::Checked);
        QTRY_COMPARE(Editor::Label(dialog, "lblScatterResult"), "All 12 zones fit.");
        // The map shows them before.
        QCOMPARE(Previews(editor).size(), 1);
        QCOMPARE(Previews(editor).constFirst()->Places().size(), std::size_t(12));
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionZonesScatter");
    QVERIFY(Previews(editor).isEmpty());
    const QVector<Zone*> zones = Editor::ZonesOf(editor.north).mid(old.size());
    QCOMPARE(zones.size(), 12);
    QCOMPARE(editor.Scene().SelectedZones(), zones);
    const QRectF square(8, 8, 16, 16);
    ZoneValues expected = editor.Doc().ZoneTemplate();
    expected.depth = Zone::MinDepth;
    for (const Zone* zone : zones) {
        QVERIFY(zone->Values() == expected);
        QVERIFY(!square.contains(zone->pos()));
        const WorldCircle metres = Editor::Metres(zone);
        QVERIFY(metres.x >= 0 && metres.x <= 640 && metres.z >= 0 && metres.z <= 640);
        const auto distance = [&metres](const Zone* other) {
            const WorldCircle place = Editor::Metres(other);
            return std::hypot(place.x - metres.x, place.z - metres.z);
        };
        for (const Zone* other : old) {
            QVERIFY(distance(other) >= 30);
        }
        QVERIFY(distance(Editor::ZonesOf(editor.south).constFirst()) >= 30);
        for (const Zone* other : zones) {
            QVERIFY(other == zone || distance(other) >= 25);
        }
    }
    editor.VerifyOneStep("Add 12 zones to North");
}

void tst_ZoneActions::ScattersInsideLiveLayersThatWaited()
{
    Editor editor;
    Layer* red = editor.Doc().Layers().LayerByName("red");
    const QString code = Formula{OperationComplement, {red->Id()}, 0}.Code();
    editor.Doc().Do(Edits::AddComputedLayer(editor.Doc().Layers(), "land", code,
                                            EvaluateAtLayerSize(editor.Doc().Layers(), code),
                                            true));
    editor.Doc().Live().SetFrameCost(0);
    Layer* land = editor.Doc().Layers().LayerByName("land");
    QImage half = red->Image();
    half.fill(raster::MaskClear);
    for (int y = 0; y < half.height() / 2; ++y) {
        std::fill_n(half.scanLine(y), half.width(), raster::MaskSet);
    }
    editor.Doc().Do(std::make_unique<PaintMask>(QString(), *red, half));
    QVERIFY(editor.Doc().Live().IsPending(*land));
    const int old = editor.north->Zones().size();
    editor.answers.Add([](QWidget& dialog) {
        Editor::Type(dialog, "spnScatterCount", "20");
        Editor::Type(dialog, "spnScatterDistance", "5");
        Editor::Row(dialog, "lstScatterInside", "land")->setCheckState(Qt::Checked);
        QTRY_COMPARE(Editor::Label(dialog, "lblScatterResult"), "All 20 zones fit.");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    editor.Trigger("actionZonesScatter");

    const QVector<Zone*> zones = Editor::ZonesOf(editor.north).mid(old);
    QCOMPARE(zones.size(), 20);
    for (const Zone* zone : zones) {
        QVERIFY(zone->pos().y() >= half.height() / 2);
    }
}

void tst_ZoneActions::ScatterSaysWhenFewerFit()
{
    Editor editor;
    editor.answers.Add([](QWidget& dialog) {
        Editor::Type(dialog, "spnScatterCount", "100");
        Editor::Type(dialog, "spnScatterExisting", "0");
        Editor::Type(dialog, "spnScatterDistance", "900");
        // In a world of 640 metres.
        QTRY_COMPARE(Editor::Label(dialog, "lblScatterResult"), "Only 1 of 100 zones fit.");
        QVERIFY(Editor::IsOkEnabled(dialog));
        Editor::Type(dialog, "spnScatterExisting", "2000");
        QTRY_COMPARE(Editor::Label(dialog, "lblScatterResult"), "Only 0 of 100 zones fit.");
        QVERIFY(!Editor::IsOkEnabled(dialog));
        static_cast<QDialog&>(dialog).accept();
        QVERIFY(dialog.isVisible());
        // Each change looks again.
        Editor::Type(dialog, "spnScatterExisting", "0");
        QVERIFY(Editor::IsOkEnabled(dialog));
        QTRY_COMPARE(Editor::Label(dialog, "lblScatterResult"), "Only 1 of 100 zones fit.");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    editor.Trigger("actionZonesScatter");
    QCOMPARE(editor.UndoText(), "Add zone to North");
    QCOMPARE(editor.north->Zones().size(), 5);
}

void tst_ZoneActions::ScatterIsAcceptedBeforeItIsDone()
{
    Editor editor;
    editor.answers.Add([](QWidget& dialog) {
        Editor::Type(dialog, "spnScatterDistance", "3");
        Editor::Type(dialog, "spnScatterExisting", "3");
        Editor::Type(dialog, "spnScatterCount", "3000");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QVERIFY(dialog.isVisible());
        QTRY_VERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionZonesScatter");
    QCOMPARE(editor.north->Zones().size(), 3004);
    QCOMPARE(editor.Doc().History().count(), 1);
}

void tst_ZoneActions::ACancelledScatterLeavesNothing()
{
    Editor editor;
    editor.answers.Add([&editor](QWidget& dialog) {
        QTRY_VERIFY(!Previews(editor).constFirst()->Places().empty());
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    editor.Trigger("actionZonesScatter");
    QVERIFY(Previews(editor).isEmpty());
    QCOMPARE(editor.Doc().History().count(), 0);
    QCOMPARE(editor.SavedBytes(), editor.before);
}

void tst_ZoneActions::Aligns()
{
    Editor editor;
    const QVector<Zone*> zones = Editor::ZonesOf(editor.north);
    editor.Scene().SelectZones(zones);
    const double left = Editor::Metres(zones[0]).x;
    QVector<double> heights;
    for (const Zone* zone : zones) {
        heights.append(Editor::Metres(zone).z);
    }
    editor.answers.Add([](QWidget& dialog) {
        const auto* radius = dialog.findChild<QWidget*>("spnAlignRadius");
        QVERIFY(!radius->isEnabled());
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionZonesAlign");
    for (int i = 0; i < zones.size(); ++i) {
        QCOMPARE(Editor::Metres(zones[i]).x, left);
        QCOMPARE(Editor::Metres(zones[i]).z, heights[i]);
    }
    editor.VerifyOneStep("Align 4 zones");
}

void tst_ZoneActions::ArrangesOnACircle()
{
    Editor editor;
    const QVector<Zone*> zones = Editor::ZonesOf(editor.north);
    editor.Scene().SelectZones(zones);
    QPointF middle;
    for (const Zone* zone : zones) {
        middle += QPointF(Editor::Metres(zone).x, Editor::Metres(zone).z) / zones.size();
    }
    editor.answers.Add([](QWidget& dialog) {
        auto* combo = dialog.findChild<QComboBox*>("cboAlign");
        combo->setCurrentIndex(combo->findText("Arrange on a circle"));
        QVERIFY(dialog.findChild<QWidget*>("spnAlignRadius")->isEnabled());
        Editor::Type(dialog, "spnAlignRadius", "150");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    editor.Trigger("actionZonesAlign");
    for (const Zone* zone : zones) {
        const WorldCircle metres = Editor::Metres(zone);
        const double radius = std::hypot(metres.x - middle.x(), metres.z - middle.y());
        QVERIFY(std::fabs(radius - 150) < 0.001);
    }
    editor.VerifyOneStep("Arrange 4 zones on a circle");

    editor.Trigger("actionUndo");
    editor.Scene().SelectZones(zones);
    editor.answers.Add([](QWidget& dialog) {
        auto* combo = dialog.findChild<QComboBox*>("cboAlign");
        combo->setCurrentIndex(combo->findText("Distribute evenly along X"));
        QTest::keyClick(combo, Qt::Key_Return);
    });
    editor.Trigger("actionZonesAlign");
    editor.VerifyOneStep("Distribute 4 zones");
}

QTEST_MAIN(tst_ZoneActions)
#include "tst_ZoneActions.moc"
