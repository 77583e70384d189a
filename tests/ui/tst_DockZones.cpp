#include "canvas/ViewMoves.h"
#include "document/Document.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "territories/ZoneTable.h"
#include "tests/support/Files.h"
#include "tests/support/ZonesFixture.h"
#include "ui/DockZones.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QCompleter>
#include <QDockWidget>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QTreeView>

namespace {

/// The list of rows that were refused, which is closed.
QStringList Refused(QWidget& dialog)
{
    QStringList refused;
    const auto* list = dialog.findChild<QListWidget*>("lstRefused");
    for (int i = 0; list && i < list->count(); ++i) {
        refused.append(list->item(i)->text());
    }
    QTest::keyClick(&dialog, Qt::Key_Escape);
    return refused;
}

} // namespace

/// The table of all zones.
class tst_DockZones : public QObject
{
    Q_OBJECT

private slots:
    void IsHiddenAtFirst();
    void ComesFromBehindAnotherTab();
    void FindsTheLargestZoneInThreeSteps();
    void SetsCountsOfTwentyZonesInSixSteps();
    void ShowsWhatTheFileSays();
    void SortsByAClick();
    void RowsSelectZonesOfAnyTerritory();
    void TheMapSelectsRows();
    void FiltersRows();
    void FilteringDeselectsWhatItHides();
    void TellsOfSelectedZonesThatTheFilterHides();
    void EnterSelectsWhatTheFilterLeaves_data();
    void EnterSelectsWhatTheFilterLeaves();
    void AnArrowTakesACompletion();
    void ShowsOnlyTheCurrentTerritory();
    void EditsCells_data();
    void EditsCells();
    void EditsOnlyWhatCanBeEdited();
    void KeepsTheRowThatIsEdited();
    void FollowsEditsAndUndo();
    void RemovesSelectedRows();
    void CopiesAndPastesRows();
    void PastesNothingIfARowIsRefused();
    void LeavesHiddenRowsAlone();
    void ExportsAndImports();
    void TellsWhatIsWrong();
    void LooksForNothingWrongWhileItIsHidden();
    void IsEmptyWithoutAProject();
};

void tst_DockZones::IsHiddenAtFirst()
{
    const ZonesFixture zones;
    QVERIFY(zones.Child<QWidget>("DockZones")->isHidden());
    QVERIFY(!zones.Action("actionZonesTable")->isChecked());
    zones.Open();
    QVERIFY(zones.Action("actionZonesTable")->isChecked());
    QCOMPARE(zones.Child<QWidget>("DockZones")->windowTitle(), QString("Zones"));
    QTest::keyClick(zones.window.get(), Qt::Key_T, Qt::ControlModifier);
    QVERIFY(zones.Child<QWidget>("DockZones")->isHidden());
    QVERIFY(!zones.Action("actionZonesTable")->isChecked());
}

void tst_DockZones::ComesFromBehindAnotherTab()
{
    const ZonesFixture zones;
    zones.Open();
    auto* status = zones.Child<QDockWidget>("DockStatus");
    status->show();
    zones.window->tabifyDockWidget(zones.Child<QDockWidget>("DockZones"), status);
    status->raise();
    QTRY_VERIFY(zones.Table().visibleRegion().isEmpty());
    zones.Open();
    QTRY_VERIFY(!zones.Table().visibleRegion().isEmpty());
    QVERIFY(zones.Action("actionZonesTable")->isChecked());
    QVERIFY(zones.FilterLine().hasFocus());
}

void tst_DockZones::FindsTheLargestZoneInThreeSteps()
{
    const ZonesFixture zones;
    const QPointF before = zones.View().Moves().Place().center;
    zones.View().Moves().Show({before, 8});
    const QPointF start = zones.View().Moves().Place().center;
    zones.Open();
    zones.ClickHeader(ZoneColumn::Radius);
    QCOMPARE(zones.Text(0, ZoneColumn::Radius), QString("900"));
    zones.DoubleClick(0, ZoneColumn::Territory);
    QCOMPARE(zones.Scene().SelectedZones(), QVector<Zone*>({zones.ZoneAt(1, 0, 1)}));
    const QPointF found = zones.View().Moves().Place().center;
    QVERIFY(found != start);
    QVERIFY(found.y() < start.y());
    // No cell is being edited.
    QVERIFY(!zones.Table().viewport()->findChild<QLineEdit*>());
    zones.Trigger("actionGoBack");
    const QPointF back = zones.View().Moves().Place().center;
    QVERIFY((back - start).manhattanLength() < 1);
}

/// Of all zones of one territory, by mouse and keys, in the editor as it is for zones.
void tst_DockZones::SetsCountsOfTwentyZonesInSixSteps()
{
    const ZonesFixture zones;
    zones.Trigger("actionViewTerritoryTypes");
    const auto type = [](const QString& text, Qt::Key key) {
        QTest::keyClicks(QApplication::focusWidget(), text);
        QTest::keyClick(QApplication::focusWidget(), key);
    };
    // The table; what to look for; all that is left.
    zones.Open();
    QCOMPARE(QApplication::focusWidget(), &zones.FilterLine());
    type("north", Qt::Key_Return);
    QCOMPARE(zones.Scene().SelectedZones().size(), ZonesFixture::North);
    // The field; the least; the most.
    auto* field = zones.Child<QLineEdit>("txtZonesStaticMin");
    QTRY_VERIFY(field->isVisible() && field->isEnabled());
    QTest::mouseClick(field, Qt::LeftButton);
    field->selectAll();
    type("3", Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget()->objectName(), QString("txtZonesStaticMax"));
    type("7", Qt::Key_Return);
    for (int i = 0; i < ZonesFixture::North; ++i) {
        QCOMPARE(zones.ZoneAt(0, 0, i)->Counts(), (SpawnCounts{3, 7, 0, 0}));
    }
    QCOMPARE(zones.ZoneAt(0, 1, 0)->Counts(), SpawnCounts());
    QCOMPARE(zones.ZoneAt(1, 0, 0)->Counts(), SpawnCounts());
    QCOMPARE(zones.Project().History().count(), 2);
}

void tst_DockZones::ShowsWhatTheFileSays()
{
    const ZonesFixture zones;
    zones.Open();
    QCOMPARE(zones.Table().model()->rowCount(), ZonesFixture::All);
    QCOMPARE(zones.Counts(), QString("24 of 24 zones, 0 selected"));
    const std::vector<QString> expected = {"Wolf", "Pack", "1", "Ambush", "4000.5", "12000",
                                           "300",  "0",    "0", "0",      "0",      "5"};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        QCOMPARE(zones.Text(22, ZoneColumns.at(i)), expected[i]);
    }
    const QAbstractItemModel& model = *zones.Table().model();
    QCOMPARE(model.columnCount(), int(ZoneColumns.size()));
    QCOMPARE(model.headerData(6, Qt::Horizontal).toString(), QString("Radius"));
}

void tst_DockZones::SortsByAClick()
{
    const ZonesFixture zones;
    zones.Open();
    // As numbers: 1, 1, 1, 2, ... and not 1, 10, 11.
    zones.ClickHeader(ZoneColumn::Number);
    QCOMPARE(zones.Text(3, ZoneColumn::Number), QString("2"));
    QCOMPARE(zones.Text(23, ZoneColumn::Number), QString("20"));
    // Rows that are equal keep the order of the file.
    QCOMPARE(zones.Text(0, ZoneColumn::Territory), QString("North"));
    QCOMPARE(zones.Text(2, ZoneColumn::Territory), QString("Pack"));
    zones.ClickHeader(ZoneColumn::Number);
    QCOMPARE(zones.Text(0, ZoneColumn::Number), QString("20"));
    QCOMPARE(zones.Text(23, ZoneColumn::Territory), QString("Pack"));
    zones.ClickHeader(ZoneColumn::Usage);
    QCOMPARE(zones.Text(0, ZoneColumn::Usage), QString("Ambush"));
    QCOMPARE(zones.Text(23, ZoneColumn::Usage), QString("Water"));
}

void tst_DockZones::RowsSelectZonesOfAnyTerritory()
{
    const ZonesFixture zones;
    zones.Trigger("actionViewTerritoryTypes");
    zones.MakeCurrent(zones.TerritoryAt(0, 0));
    zones.Open();
    const SceneMode mode = zones.Scene().Mode();
    const bool wasModified = zones.IsModified();
    // A hidden one.
    zones.Click(20, ZoneColumn::Type);
    Zone* hidden = zones.ZoneAt(0, 1, 0);
    QCOMPARE(zones.Scene().SelectedZones(), QVector<Zone*>({hidden}));
    QVERIFY(hidden->isVisible());
    QVERIFY(zones.Child<QGroupBox>("gboZone")->isEnabled());
    QCOMPARE(zones.Child<QLineEdit>("txtSize")->text(), QString("80"));
    zones.Click(0, ZoneColumn::Type, Qt::ControlModifier);
    zones.Click(23, ZoneColumn::Type, Qt::ControlModifier);
    QCOMPARE(zones.Scene().SelectedZones().size(), 3);
    QCOMPARE(zones.Counts(), QString("24 of 24 zones, 3 selected"));
    QVERIFY(!zones.Child<QGroupBox>("gboZone")->isEnabled());
    QCOMPARE(zones.Scene().CurrentTerritory(), zones.TerritoryAt(0, 0));
    QCOMPARE(zones.Scene().Mode(), mode);
    QCOMPARE(zones.IsModified(), wasModified);
    zones.Click(0, ZoneColumn::Type);
    QVERIFY(!hidden->isVisible());
    // In every mode.
    zones.Trigger("actionTogglePaintMode");
    QVERIFY(zones.Scene().SelectedZones().isEmpty());
    QCOMPARE(zones.Table().selectionModel()->selectedRows().size(), 0);
    zones.Click(22, ZoneColumn::Type);
    QCOMPARE(zones.Scene().Mode(), SceneMode::Paint);
    QCOMPARE(zones.Scene().SelectedZones(), QVector<Zone*>({zones.ZoneAt(1, 0, 0)}));
}

void tst_DockZones::TheMapSelectsRows()
{
    const ZonesFixture zones;
    zones.Trigger("actionViewTerritoryTypes");
    zones.Open();
    zones.ClickHeader(ZoneColumn::Radius);
    zones.MakeCurrent(zones.TerritoryAt(0, 0));
    zones.Trigger("actionSelectAllZones");
    QCOMPARE(zones.Scene().SelectedZones().size(), ZonesFixture::North);
    QCOMPARE(zones.Table().selectionModel()->selectedRows().size(), ZonesFixture::North);
    QVERIFY(!zones.Table().selectionModel()->isRowSelected(0, {}));
    // Sorting keeps it.
    zones.ClickHeader(ZoneColumn::Type);
    QCOMPARE(zones.Table().selectionModel()->selectedRows().size(), ZonesFixture::North);
    QVERIFY(zones.Table().selectionModel()->isRowSelected(0, {}));
    zones.Scene().clearSelection();
    QCOMPARE(zones.Table().selectionModel()->selectedRows().size(), 0);
}

void tst_DockZones::FiltersRows()
{
    const ZonesFixture zones;
    zones.Open();
    QVERIFY(zones.FilterLine().hasFocus());
    QTest::keyClicks(&zones.FilterLine(), "type:deer radius>110");
    QCOMPARE(zones.Counts(), QString("9 of 24 zones, 0 selected"));
    QCOMPARE(zones.Text(0, ZoneColumn::Radius), QString("111"));
    QTest::keyClicks(&zones.FilterLine(), " depth>");
    QCOMPARE(zones.Child<QLabel>("lblZonesNotice")->text(),
             QString("'depth>' is not finished and hides nothing."));
    zones.FilterLine().setText("outside");
    QCOMPARE(zones.Child<QLabel>("lblZonesNotice")->text(), QString());
    QCOMPARE(zones.Counts(), QString("1 of 24 zones, 0 selected"));
    QCOMPARE(zones.Text(0, ZoneColumn::X), QString("20000"));
    zones.FilterLine().clear();
    QCOMPARE(zones.Counts(), QString("24 of 24 zones, 0 selected"));
}

void tst_DockZones::FilteringDeselectsWhatItHides()
{
    const ZonesFixture zones;
    zones.Open();
    zones.Key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(zones.Scene().SelectedZones().size(), ZonesFixture::All);
    zones.FilterLine().setText("wolf");
    QCOMPARE(zones.Counts(), QString("2 of 24 zones, 2 selected"));
    QCOMPARE(zones.Scene().SelectedZones().size(), 2);
    zones.FilterLine().clear();
    QCOMPARE(zones.Counts(), QString("24 of 24 zones, 2 selected"));
    // Ctrl+A selects what is shown.
    zones.FilterLine().setText("graze");
    zones.Key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(zones.Counts(), QString("10 of 24 zones, 10 selected"));
}

void tst_DockZones::TellsOfSelectedZonesThatTheFilterHides()
{
    const ZonesFixture zones;
    zones.Open();
    zones.FilterLine().setText("wolf");
    Zone* hidden = zones.TerritoryAt(0, 0)->Zones().first();
    zones.Scene().SelectZones({hidden});
    QCOMPARE(zones.Counts(), QString("2 of 24 zones, 1 selected, 1 of them not shown"));
    // The filter also holds for what was selected while the table was closed.
    zones.Trigger("actionZonesTable");
    zones.Trigger("actionZonesTable");
    QCOMPARE(zones.Counts(), QString("2 of 24 zones, 0 selected"));
}

void tst_DockZones::EnterSelectsWhatTheFilterLeaves_data()
{
    QTest::addColumn<QString>("filter");
    for (const char* filter : {"north", "territory:north", "territory:north ", "TERRITORY:nor"}) {
        QTest::newRow(filter) << QString(filter);
    }
}

void tst_DockZones::EnterSelectsWhatTheFilterLeaves()
{
    QFETCH(const QString, filter);
    const ZonesFixture zones;
    zones.Open();
    QTest::keyClicks(&zones.FilterLine(), filter);
    // An open list gets the keys.
    QWidget* popup = zones.FilterLine().completer()->popup();
    QTest::keyClick(popup->isVisible() ? popup : &zones.FilterLine(), Qt::Key_Return);
    QCOMPARE(zones.Counts(), QString("20 of 24 zones, 20 selected"));
    QCOMPARE(zones.Scene().SelectedZones().size(), ZonesFixture::North);
}

void tst_DockZones::AnArrowTakesACompletion()
{
    const ZonesFixture zones;
    zones.Open();
    QTest::keyClicks(&zones.FilterLine(), "territory:nor");
    QWidget* popup = zones.FilterLine().completer()->popup();
    QTest::keyClick(popup, Qt::Key_Down);
    QTest::keyClick(popup, Qt::Key_Return);
    QCOMPARE(zones.FilterLine().text().trimmed(), QString("territory:North"));
    QCOMPARE(zones.Counts(), QString("20 of 24 zones, 0 selected"));
}

void tst_DockZones::ShowsOnlyTheCurrentTerritory()
{
    const ZonesFixture zones;
    zones.Trigger("actionViewTerritoryTypes");
    zones.Open();
    zones.MakeCurrent(zones.TerritoryAt(1, 0));
    zones.Child<QCheckBox>("chkZonesCurrent")->click();
    QCOMPARE(zones.Counts(), QString("2 of 24 zones, 0 selected"));
    zones.MakeCurrent(zones.TerritoryAt(0, 0));
    QCOMPARE(zones.Table().model()->rowCount(), ZonesFixture::North);
    zones.Child<QTreeView>("treeTerTypes")->selectionModel()->clear();
    QCOMPARE(zones.Table().model()->rowCount(), 0);
    zones.Child<QCheckBox>("chkZonesCurrent")->click();
    QCOMPARE(zones.Table().model()->rowCount(), ZonesFixture::All);
}

void tst_DockZones::EditsCells_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<bool>("isTaken");

    const auto row = [](const char* name, ZoneColumn column, const char* typed, const char* shown,
                        bool isTaken) {
        QTest::newRow(name) << int(column) << QString(typed) << QString(shown) << isTaken;
    };
    row("radius", ZoneColumn::Radius, "450.5", "450.5", true);
    row("smallest radius", ZoneColumn::Radius, "50", "50", true);
    row("too small", ZoneColumn::Radius, "49.9", "300", false);
    row("too large", ZoneColumn::Radius, "32769", "300", false);
    row("no number", ZoneColumn::Radius, "wide", "300", false);
    row("x", ZoneColumn::X, "1234.56", "1234.56", true);
    row("z", ZoneColumn::Z, "9876.54", "9876.54", true);
    row("static max", ZoneColumn::StaticMax, "7", "7", true);
    row("most", ZoneColumn::DynamicMax, "999", "999", true);
    row("too many", ZoneColumn::DynamicMax, "1000", "0", false);
    row("depth", ZoneColumn::Depth, "255", "255", true);
    row("too deep", ZoneColumn::Depth, "256", "5", false);
    row("usage", ZoneColumn::Usage, "Water", "Water", true);
    row("event", ZoneColumn::Usage, "Caravan of Ten", "Caravan of Ten", true);
    row("almost a usage", ZoneColumn::Usage, "water", "Ambush", false);
    row("the same", ZoneColumn::X, "4000.5", "4000.5", false);
}

void tst_DockZones::EditsCells()
{
    QFETCH(int, column);
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    QFETCH(bool, isTaken);
    const ZonesFixture zones;
    zones.Open();
    const auto before = zones.SavedBytes();
    const auto cell = static_cast<ZoneColumn>(column);
    const QStringList texts = zones.Texts(22);
    zones.Type(22, cell, typed);
    QCOMPARE(zones.Text(22, cell), shown);
    QCOMPARE(zones.Project().History().count(), isTaken ? 1 : 0);
    const bool isRefused = !zones.Child<QLabel>("lblZonesNotice")->text().isEmpty();
    QCOMPARE(isRefused, !isTaken && typed != shown);
    QStringList expected = texts;
    expected[column] = shown;
    QCOMPARE(zones.Texts(22), expected);
    zones.Project().Undo();
    QCOMPARE(zones.SavedBytes(), before);
}

void tst_DockZones::EditsOnlyWhatCanBeEdited()
{
    const ZonesFixture zones;
    zones.Open();
    for (const ZoneColumn column :
         {ZoneColumn::Type, ZoneColumn::Territory, ZoneColumn::Number, ZoneColumn::Problems}) {
        QVERIFY(!(zones.Cell(0, column).flags() & Qt::ItemIsEditable));
    }
    // Of minimum and maximum the other one gives way.
    zones.Type(0, ZoneColumn::StaticMin, "8");
    QCOMPARE(zones.Text(0, ZoneColumn::StaticMax), QString("8"));
    zones.Type(0, ZoneColumn::StaticMax, "3");
    QCOMPARE(zones.Text(0, ZoneColumn::StaticMin), QString("3"));
}

void tst_DockZones::KeepsTheRowThatIsEdited()
{
    const ZonesFixture zones;
    zones.Open();
    zones.FilterLine().setText("radius>=300");
    zones.ClickHeader(ZoneColumn::Radius);
    QCOMPARE(zones.Table().model()->rowCount(), 2);
    zones.Type(0, ZoneColumn::Radius, "60");
    // Neither sorted nor filtered anew while it is selected.
    QCOMPARE(zones.Text(0, ZoneColumn::Radius), QString("60"));
    QCOMPARE(zones.Counts(), QString("2 of 24 zones, 1 selected"));
    zones.FilterLine().setText("radius>=299");
    QCOMPARE(zones.Counts(), QString("1 of 24 zones, 0 selected"));
}

void tst_DockZones::FollowsEditsAndUndo()
{
    const ZonesFixture zones;
    zones.Trigger("actionViewTerritoryTypes");
    zones.Open();
    zones.Click(22, ZoneColumn::Type);
    auto* box = zones.Child<QSpinBox>("spbStaticMin");
    box->setValue(4);
    QCOMPARE(zones.Text(22, ZoneColumn::StaticMin), QString("4"));
    zones.Project().Undo();
    QCOMPARE(zones.Text(22, ZoneColumn::StaticMin), QString("0"));
    // Names, and territories that come and go.
    zones.Project().Types().model()->setData(zones.TerritoryAt(1, 0)->index(), "Hunters");
    QCOMPARE(zones.Text(22, ZoneColumn::Territory), QString("Hunters"));
    zones.MakeCurrent(zones.TerritoryAt(0, 0));
    zones.Trigger("actionTerritoryDuplicate");
    QCOMPARE(zones.Table().model()->rowCount(), ZonesFixture::All + ZonesFixture::North);
    zones.Project().Undo();
    QCOMPARE(zones.Table().model()->rowCount(), ZonesFixture::All);
}

void tst_DockZones::RemovesSelectedRows()
{
    const ZonesFixture zones;
    zones.Open();
    const auto before = zones.SavedBytes();
    zones.Click(22, ZoneColumn::Type);
    zones.Click(0, ZoneColumn::Type, Qt::ControlModifier);
    zones.Key(Qt::Key_Delete);
    QCOMPARE(zones.Counts(), QString("22 of 22 zones, 0 selected"));
    QCOMPARE(zones.Text(0, ZoneColumn::Radius), QString("101"));
    QCOMPARE(zones.Text(0, ZoneColumn::Number), QString("1"));
    zones.Project().Undo();
    QCOMPARE(zones.SavedBytes(), before);
    QCOMPARE(zones.Table().model()->rowCount(), ZonesFixture::All);
}

void tst_DockZones::CopiesAndPastesRows()
{
    const ZonesFixture zones;
    zones.Open();
    const auto before = zones.SavedBytes();
    zones.FilterLine().setText("graze");
    zones.Key(Qt::Key_A, Qt::ControlModifier);
    zones.Key(Qt::Key_C, Qt::ControlModifier);
    QString text = QApplication::clipboard()->text();
    QStringList lines = text.trimmed().split('\n');
    QCOMPARE(lines.size(), 11);
    QVERIFY(lines[0].startsWith("type\tterritory\tnumber\t"));
    QVERIFY(lines[1].startsWith("Deer\tNorth\t2\tGraze\t"));
    // The same rows change nothing.
    zones.Key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(zones.Project().History().count(), 0);
    // Zones that are made with the mouse are like the one that was selected last.
    zones.Scene().SelectZones({zones.ZoneAt(0, 0, 1)});
    QApplication::clipboard()->setText("type\tterritory\tnumber\tx\tz\tstatic-min\tstatic-max\n"
                                       "Deer\tNorth\t2\t\t\t3\t6\n"
                                       "Deer\tNorth\t4\t\t\t3\t6\n"
                                       "Wolf\tPack\t\t5000\t6000\t1\t1\n");
    zones.Key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(zones.Project().History().count(), 1);
    QCOMPARE(zones.ZoneAt(0, 0, 1)->Counts().staticMax, 6);
    QCOMPARE(zones.ZoneAt(0, 0, 3)->Counts().staticMin, 3);
    QCOMPARE(zones.TerritoryAt(1, 0)->Zones().size(), 3);
    QCOMPARE(zones.ZoneAt(1, 0, 2)->Values().usage, ZoneValues::OfNewZone().usage);
    QCOMPARE(zones.Child<QLabel>("lblZonesNotice")->text(), QString("2 zones changed, 1 added."));
    zones.Project().Undo();
    QCOMPARE(zones.SavedBytes(), before);
}

void tst_DockZones::PastesNothingIfARowIsRefused()
{
    ZonesFixture zones;
    zones.Open();
    const auto before = zones.SavedBytes();
    QApplication::clipboard()->setText("type\tterritory\tnumber\tradius\n"
                                       "Deer\tNorth\t2\t500\n"
                                       "Deer\tNorth\t3\t20000000\n"
                                       "Deer\tNowhere\t1\t500\n");
    QStringList refused;
    zones.answers.Add([&refused](QWidget& dialog) { refused = Refused(dialog); });
    zones.Key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(refused.size(), 2);
    QCOMPARE(refused[0], QString("row 3: radius 20000000 is above 32768"));
    QVERIFY(refused[1].startsWith("row 4: "));
    QCOMPARE(zones.Project().History().count(), 0);
    QCOMPARE(zones.SavedBytes(), before);
}

void tst_DockZones::LeavesHiddenRowsAlone()
{
    ZonesFixture zones;
    zones.Open();
    zones.FilterLine().setText("wolf");
    QApplication::clipboard()->setText("type\tterritory\tnumber\tradius\n"
                                       "Deer\tNorth\t2\t500\n"
                                       "Wolf\tPack\t1\t500\n");
    const auto before = zones.SavedBytes();
    QStringList refused;
    zones.answers.Add([&refused](QWidget& dialog) { refused = Refused(dialog); });
    zones.Key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(refused.size(), 1);
    QCOMPARE(zones.SavedBytes(), before);
}

void tst_DockZones::ExportsAndImports()
{
    ZonesFixture zones;
    const QString path = zones.Path("zones.csv");
    zones.TriggerWithFile("actionZonesExport", path);
    QByteArray text = ReadBytes(path);
    QCOMPARE(text.count('\n'), ZonesFixture::All + 1);
    QVERIFY(text.startsWith("type,territory,number,"));
    const auto before = zones.SavedBytes();
    zones.TriggerWithFile("actionZonesImport", path);
    QCOMPARE(zones.Project().History().count(), 0);
    text.replace(",900,", ",901,");
    WriteBytes(path, text);
    zones.TriggerWithFile("actionZonesImport", path);
    QCOMPARE(zones.Project().History().count(), 1);
    QCOMPARE(zones.ZoneAt(1, 0, 1)->Values().radius, 901.0F);
    zones.Project().Undo();
    QCOMPARE(zones.SavedBytes(), before);
    // As spreadsheets write it that are told no encoding.
    WriteBytes(path, "type,territory,number,usage\nDeer,North,1,B\xe4r\n");
    QStringList told;
    zones.answers.AddFile(path);
    zones.answers.Add([&told](QWidget& dialog) { told = Refused(dialog); });
    zones.Trigger("actionZonesImport");
    QCOMPARE(told, QStringList("it is no UTF-8"));
    QCOMPARE(zones.SavedBytes(), before);
}

void tst_DockZones::TellsWhatIsWrong()
{
    const ZonesFixture zones;
    zones.Open();
    QTRY_VERIFY(!zones.Text(23, ZoneColumn::Problems).isEmpty());
    QVERIFY(zones.Text(22, ZoneColumn::Problems).isEmpty());
    zones.Type(23, ZoneColumn::X, "7000");
    QTRY_VERIFY(zones.Text(23, ZoneColumn::Problems).isEmpty());
}

void tst_DockZones::LooksForNothingWrongWhileItIsHidden()
{
    const ZonesFixture zones;
    // More than are looked at at once.
    for (int i = 0; i < 600; ++i) {
        constexpr float tooSmall = 10;
        zones.TerritoryAt(1, 0)->AddZone(new Zone(zones.TerritoryAt(1, 0), tooSmall));
    }
    const int last = ZonesFixture::All + 600 - 1;
    zones.Trigger("actionZonesTable");
    zones.Trigger("actionZonesTable");
    QVERIFY(zones.Child<QWidget>("DockZones")->isHidden());
    QTest::qWait(100);
    QCOMPARE(zones.Text(last, ZoneColumn::Problems), QString());
    zones.Trigger("actionZonesTable");
    QTRY_VERIFY(!zones.Text(last, ZoneColumn::Problems).isEmpty());
}

void tst_DockZones::IsEmptyWithoutAProject()
{
    const WindowFixture fixture;
    fixture.Trigger("actionZonesTable");
    QTRY_VERIFY(fixture.Child<QTableView>("viewZones")->isVisible());
    QVERIFY(!fixture.Child<QTableView>("viewZones")->isEnabled());
    QCOMPARE(fixture.Child<QLabel>("lblZones")->text(), QString("0 of 0 zones, 0 selected"));
}

QTEST_MAIN(tst_DockZones)
#include "tst_DockZones.moc"
