#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "territories/TerritoryRecords.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/ZoneEditor.h"

#include <QAction>
#include <QComboBox>
#include <QCompleter>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSet>
#include <QTest>
#include <QTreeView>

#include <cmath>

namespace {

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
    void Aligns();
    void ArrangesOnACircle();
};

void tst_ZoneActions::HasItsMenuAndKeys()
{
    const ZoneEditor editor;
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
    ZoneEditor editor;
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
    editor.Scene().SelectZones(ZoneEditor::ZonesOf(editor.south));
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
    ZoneEditor editor;
    const QVector<Zone*> zones =
        ZoneEditor::ZonesOf(editor.north).mid(1) + ZoneEditor::ZonesOf(editor.south);
    QVector<WorldCircle> metres;
    for (const Zone* zone : zones) {
        metres.append(ZoneEditor::Metres(zone));
    }
    editor.Scene().SelectZones(zones);
    editor.answers.Add([](QWidget& dialog) {
        QCOMPARE(dialog.windowTitle(), "Move 4 zones by metres");
        auto* box = dialog.findChild<QDoubleSpinBox*>("spnMoveX");
        QCOMPARE(dialog.focusWidget(), box);
        QTest::keyClicks(box, "50");
        ZoneEditor::Type(dialog, "spnMoveZ", "-12.5");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionZonesMove");
    for (int i = 0; i < zones.size(); ++i) {
        QCOMPARE(ZoneEditor::Metres(zones[i]).x, metres[i].x + 50);
        QCOMPARE(ZoneEditor::Metres(zones[i]).z, metres[i].z - 12.5);
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
    ZoneEditor editor;
    // As in the example.
    ProjectSettings::Instance().SetSizes(64, 64, 480, 480);
    Zone* zone = ZoneEditor::ZonesOf(editor.north).at(1);
    const WorldCircle metres = ZoneEditor::Metres(zone);
    editor.Scene().SelectZones({zone});
    editor.answers.Add([](QWidget& dialog) {
        ZoneEditor::Type(dialog, "spnMoveX", "50");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    editor.Trigger("actionZonesMove");
    QCOMPARE(ZoneEditor::Metres(zone).x, metres.x + 50);
    QCOMPARE(ZoneEditor::Metres(zone).z, metres.z);
    QCOMPARE(editor.UndoText(), "Move zone");
}

void tst_ZoneActions::MovesToATerritoryThatIsTyped()
{
    ZoneEditor editor;
    const QVector<Zone*> zones = ZoneEditor::ZonesOf(editor.north).mid(1, 2);
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
        ZoneEditor::Type(dialog, "cboZonesTo", "lak");
        QVERIFY(ZoneEditor::IsOkEnabled(dialog));
        combo->completer()->popup()->hide();
        QTest::keyClick(combo, Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionZonesMoveTo");
    QCOMPARE(ZoneEditor::ZonesOf(editor.lake), zones);
    QCOMPARE(zones[0]->pos(), place);
    QCOMPARE(zones[0]->Color(), editor.lake->Color());
    QCOMPARE(editor.Scene().SelectedZones(), zones);
    editor.VerifyOneStep("Move 2 zones to Lake");
}

void tst_ZoneActions::CopiesToATerritoryOfAnotherType()
{
    ZoneEditor editor;
    const QVector<Zone*> zones = ZoneEditor::ZonesOf(editor.north);
    editor.Scene().SelectZones(zones);
    editor.answers.Add([](QWidget& dialog) {
        auto* combo = dialog.findChild<QComboBox*>("cboZonesTo");
        QCOMPARE(combo->count(), 4);
        combo->setCurrentIndex(combo->findText("Wolf / South"));
        QTest::mouseClick(dialog.findChild<QPushButton*>("btnOk"), Qt::LeftButton);
    });
    editor.Trigger("actionZonesCopyTo");
    QCOMPARE(ZoneEditor::ZonesOf(editor.north), zones);
    const QVector<Zone*> copies = ZoneEditor::ZonesOf(editor.wolfSouth);
    QCOMPARE(copies.size(), zones.size());
    for (int i = 0; i < zones.size(); ++i) {
        QCOMPARE(copies[i]->pos(), zones[i]->pos());
        QVERIFY(copies[i]->Values() == zones[i]->Values());
    }
    editor.VerifyOneStep("Copy 4 zones to South");
}

void tst_ZoneActions::ATargetMustBeNamed()
{
    ZoneEditor editor;
    editor.Scene().SelectZones(ZoneEditor::ZonesOf(editor.north));
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
            ZoneEditor::Type(dialog, "cboZonesTo", text.typed);
            QCOMPARE(ZoneEditor::Label(dialog, "lblZonesToProblem"), text.problem);
            QCOMPARE(ZoneEditor::IsOkEnabled(dialog), *text.problem == '\0');
        }
        auto* combo = dialog.findChild<QComboBox*>("cboZonesTo");
        combo->lineEdit()->clear();
        QCOMPARE(ZoneEditor::Label(dialog, "lblZonesToProblem"), "Choose a territory.");
        static_cast<QDialog&>(dialog).accept();
        QVERIFY(dialog.isVisible());
        static_cast<QDialog&>(dialog).reject();
    });
    editor.Trigger("actionZonesMoveTo");
    QCOMPARE(editor.Doc().History().count(), 0);
}

void tst_ZoneActions::SplitsOff()
{
    ZoneEditor editor;
    const QVector<Zone*> zones = ZoneEditor::ZonesOf(editor.north).mid(1, 2);
    editor.Scene().SelectZones(zones);
    editor.Child<QLineEdit>("txtTerritoriesFilter")->setText(editor.north->text());
    editor.Trigger("actionZonesSplit");
    Territory* split = editor.deer->Territories().constLast();
    QVERIFY(
        !editor.Child<QTreeView>("treeTerTypes")->isRowHidden(split->row(), editor.deer->index()));
    QCOMPARE(ZoneEditor::ZonesOf(split), zones);
    QCOMPARE(editor.Doc().CurrentTerritory(), split);
    QCOMPARE(editor.Scene().SelectedZones(), zones);
    QVERIFY(split->Color().rgb() != editor.north->Color().rgb());
    QCOMPARE(split->checkState(), Qt::Checked);
    editor.VerifyOneStep("Split 2 zones off");
}

void tst_ZoneActions::Joins()
{
    ZoneEditor editor;
    const QVector<Zone*> all =
        ZoneEditor::ZonesOf(editor.north) + ZoneEditor::ZonesOf(editor.south);
    editor.answers.AddCancel();
    editor.Trigger("actionTerritoriesJoin");
    editor.answers.Add([](QWidget& dialog) {
        const auto* list = dialog.findChild<QListWidget*>("lstJoinTerritories");
        QCOMPARE(list->count(), 2);
        QVERIFY(!ZoneEditor::IsOkEnabled(dialog));
        static_cast<QDialog&>(dialog).accept();
        QVERIFY(dialog.isVisible());
        // The keyboard ticks a row.
        QCOMPARE(dialog.focusWidget(), list);
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Space);
        QCOMPARE(ZoneEditor::Row(dialog, "lstJoinTerritories", "South")->checkState(), Qt::Checked);
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionTerritoriesJoin");
    QCOMPARE(ZoneEditor::ZonesOf(editor.north), all);
    QCOMPARE(editor.deer->Territories(), (QVector<Territory*>{editor.north, editor.lake}));
    QCOMPARE(editor.Doc().CurrentTerritory(), editor.north);
    editor.VerifyOneStep("Join South into North");
}

void tst_ZoneActions::Duplicates()
{
    ZoneEditor editor;
    editor.Trigger("actionTerritoryDuplicate");
    Territory* copy = editor.deer->Territories().constLast();
    QCOMPARE(copy->text(), "North (2)");
    QCOMPARE(copy->Zones().size(), editor.north->Zones().size());
    QCOMPARE(editor.Doc().CurrentTerritory(), copy);
    QVERIFY(copy->Color().rgb() != editor.north->Color().rgb());
    editor.VerifyOneStep("Duplicate territory North");
}

void tst_ZoneActions::Aligns()
{
    ZoneEditor editor;
    const QVector<Zone*> zones = ZoneEditor::ZonesOf(editor.north);
    editor.Scene().SelectZones(zones);
    const double left = ZoneEditor::Metres(zones[0]).x;
    QVector<double> heights;
    for (const Zone* zone : zones) {
        heights.append(ZoneEditor::Metres(zone).z);
    }
    editor.answers.Add([](QWidget& dialog) {
        const auto* radius = dialog.findChild<QWidget*>("spnAlignRadius");
        QVERIFY(!radius->isEnabled());
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionZonesAlign");
    for (int i = 0; i < zones.size(); ++i) {
        QCOMPARE(ZoneEditor::Metres(zones[i]).x, left);
        QCOMPARE(ZoneEditor::Metres(zones[i]).z, heights[i]);
    }
    editor.VerifyOneStep("Align 4 zones");
}

void tst_ZoneActions::ArrangesOnACircle()
{
    ZoneEditor editor;
    const QVector<Zone*> zones = ZoneEditor::ZonesOf(editor.north);
    editor.Scene().SelectZones(zones);
    QPointF middle;
    for (const Zone* zone : zones) {
        middle += QPointF(ZoneEditor::Metres(zone).x, ZoneEditor::Metres(zone).z) / zones.size();
    }
    editor.answers.Add([](QWidget& dialog) {
        auto* combo = dialog.findChild<QComboBox*>("cboAlign");
        combo->setCurrentIndex(combo->findText("Arrange on a circle"));
        QVERIFY(dialog.findChild<QWidget*>("spnAlignRadius")->isEnabled());
        ZoneEditor::Type(dialog, "spnAlignRadius", "150");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    editor.Trigger("actionZonesAlign");
    for (const Zone* zone : zones) {
        const WorldCircle metres = ZoneEditor::Metres(zone);
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
