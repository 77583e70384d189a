#include "ui/ZonesBox.h"

#include "document/Document.h"
#include "territories/BulkEntry.h"
#include "territories/TerritoryType.h"
#include "tests/support/Random.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockTerTypeProps.h"
#include "ui/DockTerTypes.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QTest>
#include <QTreeView>

namespace {

/// The editor with two territories of Deer: North, the current one, with two zones, and South with
/// one. 10 metres a pixel.
class Bulk : public WindowFixture
{
public:
    Bulk()
    {
        Load(WriteProject());
        Trigger("actionViewTerritoryTypes");
        north = Types().Types().first()->Territories().first();
        south = Types().Types().first()->NewTerritory();
        first = north->Zones().first();
        second = Add(*north, {30, 20});
        third = Add(*south, {50, 40});
        third->SetDepth(40);
        Child<QTreeView>("treeTerTypes")->setCurrentIndex(north->index());
        Child<DockTerTypes>("DockTerTypes")->SelectMode(true);
        QApplication::setActiveWindow(window.get());
        log.Take();
    }

    Document& Doc() const { return window->GetDocument(); }
    TerritoryTypeList& Types() const { return Doc().Types(); }
    Zone* Add(Territory& territory, QPointF place) const
    {
        auto* zone = new Zone(&territory, 100);
        zone->setPos(place);
        territory.AddZone(zone);
        Scene().addItem(zone);
        return zone;
    }
    QLineEdit& Field(const char* name) const { return *Child<QLineEdit>(name); }
    QString Text(const char* name) const { return Field(name).text(); }
    QComboBox& Usage() const { return *Child<QComboBox>("cboZonesUsage"); }
    QString Title() const { return Child<QGroupBox>("gboZones")->title(); }
    /// Types the text as a user does.
    void Type(const char* name, const QString& text) const
    {
        Field(name).setFocus();
        Field(name).selectAll();
        if (text.isEmpty()) {
            QTest::keyClick(&Field(name), Qt::Key_Delete);
        }
        QTest::keyClicks(&Field(name), text);
    }
    void Enter(const char* name, const QString& text) const
    {
        Type(name, text);
        QTest::keyClick(&Field(name), Qt::Key_Return);
    }
    int Steps() const { return Doc().History().count(); }
    static QString Cell(const Zone& zone, ZoneColumn column)
    {
        return CellText(NamelessRow(zone.Record(), WorldScale(ProjectSettings::Instance())),
                        column);
    }

    Territory* north;
    Territory* south;
    Zone* first;
    Zone* second;
    Zone* third;
};

const struct
{
    const char* name;
    ZoneColumn column;
} Fields[] = {
    {"txtZonesX", ZoneColumn::X},
    {"txtZonesZ", ZoneColumn::Z},
    {"txtZonesRadius", ZoneColumn::Radius},
    {"txtZonesStaticMin", ZoneColumn::StaticMin},
    {"txtZonesStaticMax", ZoneColumn::StaticMax},
    {"txtZonesDynamicMin", ZoneColumn::DynamicMin},
    {"txtZonesDynamicMax", ZoneColumn::DynamicMax},
    {"txtZonesDepth", ZoneColumn::Depth},
};

} // namespace

class tst_ZonesBox : public QObject
{
    Q_OBJECT

private slots:
    void KeepsItsPlaceWithoutASelection();
    void ShowsOneZoneWithTheDigitsOfTheFile();
    void ShowsWhatZonesHaveInCommon();
    void EachFieldChangesAllZones_data();
    void EachFieldChangesAllZones();
    void ComesIntoViewForSeveralZones();
    void LeavingTheFieldCommits();
    void ASaveTakesWhatIsBeingTyped();
    void AClosingWindowAsksAboutWhatIsBeingTyped();
    void UndoTakesBackWhatIsBeingTyped();
    void UndoKeepsZonesOfManyTerritoriesSelected();
    void OnlyEditsCommit();
    void ClampsForEachZone();
    void RubbishChangesNothing_data();
    void RubbishChangesNothing();
    void ChoosesUsages();
    void NamesMakeEvents();
    void NamesOfUsagesAreNoEvents_data();
    void NamesOfUsagesAreNoEvents();
    void FollowsUndoAndOtherEdits();
    void TheZoneBoxFollows();
    void ChangesZonesWithoutACurrentTerritory();
    void WhatIsNotEnteredStaysBitForBit();
};

void tst_ZonesBox::KeepsItsPlaceWithoutASelection()
{
    const Bulk fixture;
    const auto* box = fixture.Child<QGroupBox>("gboZones");
    QCOMPARE(fixture.Title(), QString("Selected zones (0)"));
    QVERIFY(box->isVisible());
    QVERIFY(!box->isEnabled());
    const QRect place = box->geometry();
    fixture.Scene().SelectZones({fixture.first, fixture.third});
    QCOMPARE(fixture.Title(), QString("Selected zones (2)"));
    QVERIFY(box->isEnabled());
    QCOMPARE(box->geometry(), place);
    fixture.Scene().clearSelection();
    QCOMPARE(fixture.Title(), QString("Selected zones (0)"));
    QVERIFY(!box->isEnabled());
    for (const auto& field : Fields) {
        QCOMPARE(fixture.Text(field.name), QString());
    }
    QCOMPARE(fixture.Usage().currentIndex(), -1);
}

void tst_ZonesBox::ShowsOneZoneWithTheDigitsOfTheFile()
{
    const Bulk fixture;
    fixture.second->setPos(30.123457, 20.1);
    fixture.Scene().SelectZones({fixture.second});
    QCOMPARE(fixture.Text("txtZonesX"), QString("301.235"));
    QCOMPARE(fixture.Text("txtZonesZ"), QString("439"));
    fixture.Scene().SelectZones({fixture.first});
    QCOMPARE(fixture.Text("txtZonesX"), QString("100"));
    QCOMPARE(fixture.Text("txtZonesZ"), QString("540"));
    QCOMPARE(fixture.Text("txtZonesRadius"), QString("60"));
    QCOMPARE(fixture.Text("txtZonesStaticMin"), QString("1"));
    QCOMPARE(fixture.Text("txtZonesStaticMax"), QString("2"));
    QCOMPARE(fixture.Text("txtZonesDynamicMin"), QString("3"));
    QCOMPARE(fixture.Text("txtZonesDynamicMax"), QString("4"));
    QCOMPARE(fixture.Text("txtZonesDepth"), QString("5"));
    QCOMPARE(fixture.Usage().currentText(), QString("Rest"));
    QCOMPARE(fixture.Text("txtZonesEvent"), QString());
}

void tst_ZonesBox::ShowsWhatZonesHaveInCommon()
{
    const Bulk fixture;
    fixture.Scene().SelectZones({fixture.second, fixture.third});
    QCOMPARE(fixture.Text("txtZonesRadius"), QString("100"));
    QCOMPARE(fixture.Text("txtZonesStaticMin"), QString("0"));
    QCOMPARE(fixture.Text("txtZonesX"), QString());
    QCOMPARE(fixture.Text("txtZonesDepth"), QString());
    QCOMPARE(fixture.Usage().currentText(), QString("Rest"));
    fixture.third->SetUsage(Zone::Water);
    fixture.Scene().SelectZones({fixture.second});
    fixture.Scene().SelectZones({fixture.second, fixture.third});
    QCOMPARE(fixture.Usage().currentIndex(), -1);
}

void tst_ZonesBox::EachFieldChangesAllZones_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("entry");
    for (int i = 0; i < int(std::size(Fields)); ++i) {
        for (const char* entry : {"77", "+50", "-1", "*1.5"}) {
            QTest::addRow("%s %s", Fields[i].name, entry) << i << QString::fromLatin1(entry);
        }
    }
}

void tst_ZonesBox::EachFieldChangesAllZones()
{
    QFETCH(int, index);
    QFETCH(QString, entry);
    const auto& field = Fields[index];
    const Bulk fixture;
    const QVector<Zone*> zones{fixture.first, fixture.third};
    const WindowFixture::SavedFiles saved = fixture.SavedBytes();
    fixture.Scene().SelectZones(zones);
    QStringList before;
    QStringList expected;
    for (const Zone* zone : zones) {
        const WorldScale scale(ProjectSettings::Instance());
        const ZoneRecord changed =
            Applied(*ParseBulkEntry(entry), field.column, zone->Record(), scale);
        before.append(Bulk::Cell(*zone, field.column));
        expected.append(CellText(NamelessRow(changed, scale), field.column));
    }

    fixture.Enter(field.name, entry);

    QStringList after;
    for (const Zone* zone : zones) {
        after.append(Bulk::Cell(*zone, field.column));
    }
    QCOMPARE(after, expected);
    QCOMPARE(fixture.Steps(), after == before ? 0 : 1);
    QCOMPARE(fixture.Text(field.name), after.first() == after.last() ? after.first() : QString());
    QCOMPARE(fixture.Scene().SelectedZones(), zones);
    fixture.Doc().Undo();
    QCOMPARE(fixture.SavedBytes(), saved);
}

void tst_ZonesBox::ComesIntoViewForSeveralZones()
{
    const Bulk bulk;
    const auto* box = bulk.Child<QGroupBox>("gboZones");
    const auto isInView = [box] { return box->visibleRegion().contains({10, 10}); };
    bulk.Scene().SelectZones({bulk.first});
    QApplication::processEvents();
    QVERIFY(!isInView());

    bulk.Scene().SelectZones({bulk.first, bulk.third});
    QTRY_VERIFY(isInView());
    // The dock was hidden when they were selected.
    bulk.Trigger("actionViewTerritoryTypes");
    bulk.Scene().SelectZones({bulk.first});
    bulk.Scene().SelectZones({bulk.first, bulk.third});
    bulk.Child<QScrollArea>("scrProperties")->verticalScrollBar()->setValue(0);
    bulk.Trigger("actionViewTerritoryTypes");
    QTRY_VERIFY(isInView());
}

void tst_ZonesBox::LeavingTheFieldCommits()
{
    const Bulk fixture;
    fixture.Scene().SelectZones({fixture.first, fixture.second});
    fixture.Type("txtZonesRadius", QStringLiteral("250"));
    QCOMPARE(fixture.Steps(), 0);
    QTest::keyClick(&fixture.Field("txtZonesRadius"), Qt::Key_Tab);
    QCOMPARE(fixture.Steps(), 1);
    QCOMPARE(fixture.second->Values().radius, 250.0F);
    QCOMPARE(fixture.Doc().History().undoText(), QString("Change radius of 2 zones"));
    // Entries of one field are a step each.
    fixture.Enter("txtZonesRadius", QStringLiteral("+50"));
    fixture.Enter("txtZonesRadius", QStringLiteral("+50"));
    QCOMPARE(fixture.Steps(), 3);
    QCOMPARE(fixture.Text("txtZonesRadius"), QString("350"));
}

void tst_ZonesBox::ASaveTakesWhatIsBeingTyped()
{
    const Bulk fixture;
    fixture.Scene().SelectZones({fixture.first, fixture.second});
    fixture.Type("txtZonesRadius", QStringLiteral("250"));
    fixture.Trigger("actionQuickSave");
    QCOMPARE(fixture.second->Values().radius, 250.0F);
    QVERIFY(!ProjectSettings::Instance().IsModified());
}

void tst_ZonesBox::AClosingWindowAsksAboutWhatIsBeingTyped()
{
    Bulk fixture;
    fixture.Scene().SelectZones({fixture.first, fixture.second});
    fixture.SetModified(false);
    fixture.Type("txtZonesRadius", QStringLiteral("250"));
    fixture.answers.AddButton("No");
    QVERIFY(!fixture.window->close());
    QCOMPARE(fixture.second->Values().radius, 250.0F);
}

void tst_ZonesBox::UndoTakesBackWhatIsBeingTyped()
{
    const Bulk fixture;
    fixture.Scene().SelectZones({fixture.first, fixture.second});
    fixture.Enter("txtZonesRadius", QStringLiteral("250"));
    fixture.Type("txtZonesStaticMax", QStringLiteral("77"));
    fixture.Trigger("actionUndo");
    QCOMPARE(fixture.second->Values().radius, 250.0F);
    QVERIFY(fixture.second->Values().counts.staticMax != 77);
    fixture.Trigger("actionRedo");
    QCOMPARE(fixture.second->Values().counts.staticMax, 77);
    // What becomes no step is dropped.
    for (const char* entry : {"many", "+0"}) {
        fixture.Type("txtZonesStaticMax", entry);
        fixture.Trigger("actionUndo");
        QCOMPARE(fixture.Text("txtZonesStaticMax"), QString("77"));
        QCOMPARE(fixture.second->Values().counts.staticMax, 77);
    }
    fixture.Trigger("actionUndo");
    QVERIFY(fixture.second->Values().counts.staticMax != 77);
}

void tst_ZonesBox::UndoKeepsZonesOfManyTerritoriesSelected()
{
    const Bulk fixture;
    fixture.Child<QTreeView>("treeTerTypes")->setCurrentIndex(fixture.south->index());
    const QVector<Zone*> zones{fixture.first, fixture.third};
    fixture.Scene().SelectZones(zones);
    fixture.Enter("txtZonesRadius", QStringLiteral("250"));
    fixture.Trigger("actionUndo");
    QCOMPARE(fixture.Scene().SelectedZones(), zones);
    QCOMPARE(fixture.Text("txtZonesRadius"), QString());
    fixture.Trigger("actionRedo");
    QCOMPARE(fixture.Scene().SelectedZones(), zones);
    QCOMPARE(fixture.Text("txtZonesRadius"), QString("250"));
}

void tst_ZonesBox::OnlyEditsCommit()
{
    const Bulk fixture;
    fixture.Scene().SelectZones({fixture.first, fixture.second});
    for (const auto& field : Fields) {
        fixture.Field(field.name).setFocus();
        QTest::keyClick(&fixture.Field(field.name), Qt::Key_Return);
        QTest::keyClick(&fixture.Field(field.name), Qt::Key_Tab);
    }
    // What is emptied comes back, and what is typed again is no change.
    fixture.Enter("txtZonesStaticMin", QString());
    fixture.Scene().SelectZones({fixture.first});
    fixture.Enter("txtZonesRadius", QString());
    QCOMPARE(fixture.Text("txtZonesRadius"), QString("60"));
    fixture.Enter("txtZonesRadius", QStringLiteral("60"));
    fixture.Enter("txtZonesRadius", QStringLiteral("+0"));
    QCOMPARE(fixture.Steps(), 0);
    QVERIFY(!fixture.IsModified());
    QVERIFY(fixture.log.Messages().isEmpty());
}

void tst_ZonesBox::ClampsForEachZone()
{
    const Bulk fixture;
    fixture.Scene().SelectZones({fixture.first, fixture.second});
    fixture.Enter("txtZonesRadius", QStringLiteral("-40"));
    QCOMPARE(fixture.first->Values().radius, 50.0F);
    QCOMPARE(fixture.second->Values().radius, 60.0F);
    fixture.Enter("txtZonesStaticMin", QStringLiteral("12"));
    for (const Zone* zone : {fixture.first, fixture.second}) {
        QCOMPARE(zone->Counts().staticMin, 12);
        QCOMPARE(zone->Counts().staticMax, 12);
    }
    fixture.Enter("txtZonesStaticMax", QStringLiteral("5"));
    QCOMPARE(fixture.Text("txtZonesStaticMin"), QString("5"));
    fixture.Enter("txtZonesDepth", QStringLiteral("9999"));
    QCOMPARE(fixture.Text("txtZonesDepth"), QString("255"));
}

void tst_ZonesBox::RubbishChangesNothing_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"abc", "5 m", "nan", "--5", "1e999"}) {
        QTest::newRow(text) << QString::fromLatin1(text);
    }
}

void tst_ZonesBox::RubbishChangesNothing()
{
    QFETCH(QString, text);
    Bulk fixture;
    fixture.Scene().SelectZones({fixture.first});
    fixture.Enter("txtZonesRadius", text);
    QCOMPARE(fixture.Steps(), 0);
    QVERIFY(!fixture.IsModified());
    QCOMPARE(fixture.Text("txtZonesRadius"), QString("60"));
    const QStringList messages = fixture.log.Take();
    QCOMPARE(messages.size(), 1);
    QVERIFY2(messages.first().contains(QStringLiteral("'%1'").arg(text)),
             qPrintable(messages.first()));
}

void tst_ZonesBox::ChoosesUsages()
{
    const Bulk fixture;
    fixture.third->SetUsage(Zone::Graze);
    fixture.Scene().SelectZones({fixture.first, fixture.third});
    QCOMPARE(fixture.Usage().currentIndex(), -1);
    fixture.Usage().setFocus();
    QTest::keyClick(&fixture.Usage(), Qt::Key_W);
    QCOMPARE(fixture.Usage().currentText(), QString("Water"));
    QCOMPARE(fixture.first->GetUsage(), int(Zone::Water));
    QCOMPARE(fixture.third->GetUsage(), int(Zone::Water));
    QCOMPARE(fixture.Steps(), 1);
    QCOMPARE(fixture.Doc().History().undoText(), QString("Change usage of 2 zones"));
    fixture.Doc().Undo();
    QCOMPARE(fixture.first->GetUsage(), int(Zone::Rest));
    QCOMPARE(fixture.third->GetUsage(), int(Zone::Graze));
    QCOMPARE(fixture.Usage().currentIndex(), -1);
}

void tst_ZonesBox::NamesMakeEvents()
{
    const Bulk fixture;
    fixture.Scene().SelectZones({fixture.first, fixture.third});
    fixture.Enter("txtZonesEvent", QStringLiteral("Moot"));
    for (const Zone* zone : {fixture.first, fixture.third}) {
        QCOMPARE(zone->GetUsage(), int(Zone::DynamicEvent));
        QCOMPARE(zone->EventName(), QString("Moot"));
    }
    QCOMPARE(fixture.Steps(), 1);
    QCOMPARE(fixture.Usage().currentText(), QString("Dynamic event"));
    QCOMPARE(fixture.Text("txtZonesEvent"), QString("Moot"));
    fixture.Enter("txtZonesEvent", QString());
    QCOMPARE(fixture.Text("txtZonesEvent"), QString("Moot"));
    QCOMPARE(fixture.Steps(), 1);
    fixture.Doc().Undo();
    QCOMPARE(fixture.third->GetUsage(), int(Zone::Rest));
    QCOMPARE(fixture.Text("txtZonesEvent"), QString());
}

void tst_ZonesBox::NamesOfUsagesAreNoEvents_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a usage") << "Water";
    QTest::newRow("in lower case") << "water";
    QTest::newRow("with spaces") << " hunting ground";
}

void tst_ZonesBox::NamesOfUsagesAreNoEvents()
{
    QFETCH(QString, name);
    Bulk fixture;
    fixture.Scene().SelectZones({fixture.first, fixture.third});
    fixture.Enter("txtZonesEvent", name);
    QCOMPARE(fixture.Steps(), 0);
    QCOMPARE(fixture.first->GetUsage(), int(Zone::Rest));
    QCOMPARE(fixture.Text("txtZonesEvent"), QString());
    QCOMPARE(fixture.log.Take().size(), 1);
}

void tst_ZonesBox::FollowsUndoAndOtherEdits()
{
    const Bulk fixture;
    fixture.Scene().SelectZones({fixture.second});
    fixture.Enter("txtZonesX", QStringLiteral("+50"));
    QCOMPARE(fixture.Text("txtZonesX"), QString("350"));
    QCOMPARE(fixture.Text("txtZonesZ"), QString("440"));
    fixture.Trigger("actionUndo");
    QCOMPARE(fixture.Text("txtZonesX"), QString("300"));
    fixture.View().setFocus();
    QTest::keyClick(&fixture.View(), Qt::Key_Right);
    QTRY_COMPARE(fixture.Text("txtZonesX"), QString("310"));
    auto* spin = fixture.Child<QSpinBox>("spbStaticMin");
    spin->setValue(9);
    QCOMPARE(fixture.Text("txtZonesStaticMin"), QString("9"));
}

void tst_ZonesBox::TheZoneBoxFollows()
{
    const Bulk fixture;
    fixture.Scene().SelectZones({fixture.second});
    fixture.Enter("txtZonesRadius", QStringLiteral("400"));
    QCOMPARE(fixture.Text("txtSize"), QString("400"));
    fixture.Enter("txtZonesDynamicMax", QStringLiteral("17"));
    QCOMPARE(fixture.Child<QSpinBox>("spbDynMax")->value(), 17);
    // As every zone that was shown last.
    QCOMPARE(fixture.Doc().ZoneTemplate().counts.dynamicMax, 17);
}

void tst_ZonesBox::ChangesZonesWithoutACurrentTerritory()
{
    const Bulk fixture;
    fixture.Child<QTreeView>("treeTerTypes")->setCurrentIndex({});
    fixture.Scene().SelectZones({fixture.first, fixture.third});
    fixture.Enter("txtZonesDepth", QStringLiteral("100"));
    QCOMPARE(fixture.first->Depth(), 100);
    QCOMPARE(fixture.third->Depth(), 100);
}

void tst_ZonesBox::WhatIsNotEnteredStaysBitForBit()
{
    Random random;
    const Bulk fixture;
    for (Zone* zone : {fixture.first, fixture.second, fixture.third}) {
        zone->setPos(random.Below(64000) / 1007.0, random.Below(64000) / 1007.0);
        zone->SetRadius(static_cast<float>(random.Between(50000, 900000)) / 997.0F);
    }
    const QPointF place = fixture.third->pos();
    const float radius = fixture.third->Values().radius;
    fixture.Scene().SelectZones({fixture.first, fixture.second, fixture.third});
    fixture.Enter("txtZonesX", QStringLiteral("*1"));
    fixture.Enter("txtZonesX", QStringLiteral("+12.5"));
    fixture.Enter("txtZonesStaticMax", QStringLiteral("7"));
    QCOMPARE(fixture.third->pos().y(), place.y());
    QVERIFY(fixture.third->Values().radius == radius);
    fixture.Enter("txtZonesZ", QStringLiteral("*0.5"));
    for (int steps = fixture.Steps(); steps > 0; --steps) {
        fixture.Trigger("actionUndo");
    }
    QVERIFY(fixture.third->pos() == place);
}

QTEST_MAIN(tst_ZonesBox)
#include "tst_ZonesBox.moc"
