#include "territories/SheetPlan.h"

#include "app/ProjectSettings.h"
#include "territories/BulkEntry.h"
#include "territories/ZoneCell.h"
#include "territories/ZonePlaces.h"
#include "tests/support/Random.h"
#include "tests/support/XmlText.h"
#include "tests/support/ZoneRecords.h"

#include <QtTest>

#include <limits>

namespace {

QString Document(const std::vector<TypeRecord>& types, const WorldScale& scale)
{
    return XmlText([&](QXmlStreamWriter& xml) { Write(xml, types, scale); });
}

QString Told(const SheetPlan& plan)
{
    QStringList texts;
    for (const SheetRefusal& refusal : plan.refusals) {
        texts.append(refusal.Text());
    }
    return texts.join(" | ");
}

SheetPlan PlanText(const std::vector<TypeRecord>& types, const WorldScale& scale,
                   const QString& text)
{
    return PlanSheet(types, scale, ReadSheet(text), ZoneValues::OfNewZone());
}

/// Deer has the territories North with two zones and Empty, Wolf has Pair twice with one zone each.
std::vector<TypeRecord> SomeTypes(const WorldScale& scale)
{
    ZoneRecord odd = ZoneAt(20000, -50, 20, scale, "Migration");
    odd.values.counts = {5, 2, 7000, 0};
    return {{"Deer",
             {{"North", 1, true, {ZoneAt(1000, 2000, 300, scale, "Water"), odd}},
              {"Empty", 1, true, {}}}},
            {"Wolf",
             {{"Pair", 1, true, {ZoneAt(10, 10, 100, scale)}},
              {"Pair", 1, true, {ZoneAt(20, 20, 100, scale)}}}}};
}

} // namespace

class tst_SheetPlan : public QObject
{
    Q_OBJECT

private slots:
    void RowsChangeWhatTheySay_data();
    void RowsChangeWhatTheySay();
    void AnUntouchedCellKeepsItsSpaces();
    void RowsAreRefused_data();
    void RowsAreRefused();
    void NothingIsPlannedWhenARowIsRefused();
    void WhatIsNotChangedKeepsItsBits();
    void OneNumberIsOnePlaceEverywhere();
    void AWholeTableChangesNothing_data();
    void AWholeTableChangesNothing();
    void TerritoriesWithTheSameNameKeepTheirZones();
    void MetresWithoutAPlaceChangeNothingTwice();
    void AWorldWithoutASizeHasNoPlaces();
    void AnyChangesAreCarriedOut();
};

void tst_SheetPlan::RowsChangeWhatTheySay_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    const QString water = "<zone name=\"Water\" smin=\"0\" smax=\"0\" dmin=\"0\" dmax=\"0\" "
                          "x=\"1000\" z=\"2000\" r=\"300\" d=\"2\"/>";
    const auto changed = [&water](const char* before, const char* after) {
        return QString(water).replace(before, after);
    };
    const QString head = "type,territory,number,";
    const QString first = "\nDeer,North,1,";
    QTest::newRow("x") << head + "x" + first + "1050" << water << changed("1000", "1050");
    QTest::newRow("outside") << head + "z" + first + "-22.5" << water << changed("2000", "-22.5");
    QTest::newRow("radius") << head + "radius" + first + "50" << water << changed("300", "50");
    QTest::newRow("usage") << head + "usage" + first + "Rest" << water << changed("Water", "Rest");
    QTest::newRow("event") << head + "event" + first + "Watering" << water
                           << changed("Water", "Watering");
    QTest::newRow("counts") << head + "dynamic-min,dynamic-max" + first + "3,999" << water
                            << changed("dmin=\"0\" dmax=\"0\"", "dmin=\"3\" dmax=\"999\"");
    QTest::newRow("depth") << head + "depth" + first + "255" << water
                           << changed("d=\"2\"", "d=\"255\"");
    QTest::newRow("spaces and whole numbers")
        << head + "static-max" + first + " 7.0 " << water << changed("smax=\"0\"", "smax=\"7\"");
    QTest::newRow("order of columns")
        << "x,number,territory,Type\n1050,1.0,North,Deer" << water << changed("1000", "1050");
    QTest::newRow("problems mean nothing")
        << head + "x,problems" + first + "1050,none" << water << changed("1000", "1050");
    QTest::newRow("json") << "[{\"type\":\"Deer\",\"territory\":\"North\",\"number\":1,\"x\":1050}]"
                          << water << changed("1000", "1050");
    QTest::newRow("added") << "type,territory,x,z\nDeer,Empty,100,200"
                           << "<territory name=\"Empty\" visible=\"1\" color=\"1\"/>"
                           << "<territory name=\"Empty\" visible=\"1\" color=\"1\">"
                              "<zone name=\"Rest\" smin=\"0\" smax=\"0\" dmin=\"0\" dmax=\"0\" "
                              "x=\"100\" z=\"200\" r=\"300\" d=\"2\"/></territory>";
    QTest::newRow("added with values")
        << head + "x,z,radius,usage,static-max,depth\nDeer,Empty,,100,200,60,Wolves,5,9"
        << "<territory name=\"Empty\" visible=\"1\" color=\"1\"/>"
        << "<territory name=\"Empty\" visible=\"1\" color=\"1\">"
           "<zone name=\"Wolves\" smin=\"0\" smax=\"5\" dmin=\"0\" dmax=\"0\" "
           "x=\"100\" z=\"200\" r=\"60\" d=\"9\"/></territory>";
}

void tst_SheetPlan::RowsChangeWhatTheySay()
{
    QFETCH(QString, sheet);
    QFETCH(QString, before);
    QFETCH(QString, after);
    const WorldScale scale = SetZoneWorld();
    std::vector<TypeRecord> types = SomeTypes(scale);
    const QString document = Document(types, scale);
    QVERIFY2(document.contains(before), qPrintable(document));
    const SheetPlan plan = PlanText(types, scale, sheet);
    QCOMPARE(Told(plan), QString());
    QVERIFY(!plan.IsEmpty());
    Apply(plan, types, scale);
    QCOMPARE(Document(types, scale), QString(document).replace(before, after));
}

void tst_SheetPlan::AnUntouchedCellKeepsItsSpaces()
{
    ZoneRecord zone;
    zone.values.SetName(" Wolves ");
    const ZoneCell cell = TakeCell(zone, ZoneColumn::Usage, " Wolves ", SetZoneWorld());
    QCOMPARE(cell.values.eventName, QString(" Wolves "));
}

void tst_SheetPlan::RowsAreRefused_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("refusals");
    const QString head = "type,territory,number,";
    const QString first = "\nDeer,North,1,";
    const auto add = [&](const char* column, const char* cell, const char* reason) {
        QTest::newRow(reason) << head + column + first + cell << QString("row 2: ") + reason;
    };
    add("radius", "20000000", "radius 20000000 is above 32768");
    add("radius", "49.9", "radius 49.9 is below 50");
    add("radius", "wide", "radius 'wide' is no number");
    add("radius", "nan", "radius 'nan' is no number");
    add("radius", "1e999", "radius '1e999' is no number");
    add("x", "-1000000001", "x -1000000001 is below -1000000000");
    add("z", "\"1,5\"", "z '1,5' is no number");
    add("static-min", "-1", "static-min -1 is below 0");
    add("static-max", "1000", "static-max 1000 is above 999");
    add("dynamic-max", "1.5", "dynamic-max '1.5' is no whole number");
    add("depth", "1", "depth 1 is below 2");
    add("usage", "graze", "usage 'graze' is written 'Graze', and no event may be called so");
    add("usage", " Water", "usage ' Water' is written 'Water', and no event may be called so");
    add("usage", "   ", "usage cannot be '   '");
    add("depth", "99999999999999999999", "depth 99999999999999999999 is above 255");
    add("static-min", "3", "static-min 3 is above static-max 0");
    add("dynamic-min", "1", "dynamic-min 1 is above dynamic-max 0");
    add("radius,depth,x", "1,1,a", "x 'a' is no number; radius 1 is below 50; depth 1 is below 2");
    add("radius", "0123456789012345678901234567890123456789abc",
        "radius '0123456789012345678901234567890123456789...' is no number");
    QTest::newRow("old oddities of a changed row")
        << head + "x\nDeer,North,2,1"
        << "row 2: radius 20 is below 50; dynamic-min 7000 is above 999";
    QTest::newRow("no such type") << head + "x\nFox,North,1,5"
                                  << "row 2: there is no territory type 'Fox'";
    QTest::newRow("no such territory") << head + "x\nDeer,Pair,1,5"
                                       << "row 2: type 'Deer' has no territory 'Pair'";
    QTest::newRow("no such zone") << head + "x\nDeer,North,3,5"
                                  << "row 2: territory 'North' has no zone 3";
    QTest::newRow("zone 0") << head + "x\nDeer,North,0,5"
                            << "row 2: territory 'North' has no zone 0";
    QTest::newRow("far zone") << head + "x\nDeer,North,1e300,5"
                              << "row 2: territory 'North' has no zone 1e300";
    QTest::newRow("half a zone") << head + "x\nDeer,North,1.5,5"
                                 << "row 2: number '1.5' is no whole number";
    QTest::newRow("no number") << head + "x\nDeer,North,first,5"
                               << "row 2: number 'first' is no whole number";
    QTest::newRow("no names") << "number,x\n1,5"
                              << "row 2: it names no type";
    QTest::newRow("no territory") << "type,x\nDeer,5"
                                  << "row 2: it names no territory";
    QTest::newRow("one zone twice") << head + "x\nDeer,North,1,5\nDeer,North,1.0,6"
                                    << "row 3: it is about the same zone as row 2";
    QTest::newRow("added nowhere") << head + "radius\nDeer,Empty,,100"
                                   << "row 2: x is missing; z is missing";
    QTest::newRow("ambiguous change") << head + "x\nWolf,Pair,1,5"
                                      << "row 2: there are 2 territories 'Pair' of type 'Wolf'";
    QTest::newRow("ambiguous addition") << head + "x,z\nWolf,Pair,,5,5"
                                        << "row 2: there are 2 territories 'Pair' of type 'Wolf'";
    QTest::newRow("each row once")
        << head + "depth\nDeer,North,1,1,9\n\nDeer,North,2,1\nDeer,No,1,2"
        << "row 2: '9' stands in no column | row 4: radius 20 is below "
           "50; dynamic-min 7000 is above 999; depth 1 is below 2 | "
           "row 5: type 'Deer' has no territory 'No'";
    QTest::newRow("no sheet") << "["
                              << "it is no JSON: unterminated array";
}

void tst_SheetPlan::RowsAreRefused()
{
    QFETCH(QString, sheet);
    QFETCH(QString, refusals);
    const WorldScale scale = SetZoneWorld();
    const SheetPlan plan = PlanText(SomeTypes(scale), scale, sheet);
    QVERIFY(plan.IsRefused());
    QCOMPARE(Told(plan), refusals);
    QVERIFY(plan.IsEmpty());
}

void tst_SheetPlan::NothingIsPlannedWhenARowIsRefused()
{
    const WorldScale scale = SetZoneWorld();
    const QString good = "type,territory,number,x,z\nDeer,North,1,5,5\nDeer,Empty,,1,1\n";
    const SheetPlan plan = PlanText(SomeTypes(scale), scale, good);
    QCOMPARE(plan.changes.size(), std::size_t(1));
    QCOMPARE(plan.additions.size(), std::size_t(1));
    QVERIFY(PlanText(SomeTypes(scale), scale, good + "Deer,Empty,,1,\n").IsEmpty());
}

void tst_SheetPlan::WhatIsNotChangedKeepsItsBits()
{
    const WorldScale scale = SetZoneWorld();
    std::vector<TypeRecord> types = SomeTypes(scale);
    ZoneRecord& zone = types[0].territories[0].zones[0];
    zone.place = {double(1.0F / 3), double(2000.0F / 7)};
    zone.values.radius = 1000.0F / 7;
    zone.radius = scale.pixelsPerMetreX * zone.values.radius;
    const ZoneRecord before = zone;
    const QString z = CellText(ZoneRows(types, scale).front(), ZoneColumn::Z);
    const SheetPlan plan =
        PlanText(types, scale, "type,territory,number,x,z,depth\nDeer,North,1,100," + z + ",5\n");
    QCOMPARE(Told(plan), QString());
    QCOMPARE(plan.changes.front().place.y(), before.place.y());
    QCOMPARE(plan.changes.front().place.x(), PlaceInScene(100, 0, scale).x());
    QCOMPARE(plan.changes.front().values.radius, before.values.radius);
    Apply(plan, types, scale);
    QCOMPARE(zone.radius, before.radius);
    QCOMPARE(zone.values.depth, 5);
}

/// In a file of rows, in a cell of the table and in the box of selected zones.
void tst_SheetPlan::OneNumberIsOnePlaceEverywhere()
{
    ProjectSettings::Instance().SetSizes(2048, 2048, 15361, 15367);
    const WorldScale scale(ProjectSettings::Instance());
    Random random;
    const std::vector<TypeRecord> types = SomeTypes(scale);
    const ZoneRecord& zone = types[0].territories[0].zones[0];
    for (int round = 0; round < 500; ++round) {
        const QString x = MetresText(random.Between(-100000, 2000000) / 100.0);
        const QString z = MetresText(random.Between(-100000, 2000000) / 100.0);
        const SheetPlan plan =
            PlanText(types, scale, "type,territory,number,x,z\nDeer,North,1," + x + "," + z);
        QCOMPARE(Told(plan), QString());
        const QPointF place = plan.changes.front().place;
        QVERIFY(place.x() == TakeCell(zone, ZoneColumn::X, x, scale).place.x());
        QVERIFY(place.y() == TakeCell(zone, ZoneColumn::Z, z, scale).place.y());
        const auto entered = [&](ZoneColumn column, const QString& text) {
            return Applied({BulkEntry::Kind::Set, text.toDouble()}, column, zone, scale).place;
        };
        QVERIFY(place.x() == entered(ZoneColumn::X, x).x());
        QVERIFY(place.y() == entered(ZoneColumn::Z, z).y());
    }
}

void tst_SheetPlan::AWholeTableChangesNothing_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("tabs") << int(SheetFormat::Tabs);
    QTest::newRow("csv") << int(SheetFormat::Csv);
    QTest::newRow("json") << int(SheetFormat::Json);
}

void tst_SheetPlan::AWholeTableChangesNothing()
{
    QFETCH(int, format);
    const WorldScale scale = SetZoneWorld();
    Random random;
    std::vector<TypeRecord> types = AnyZones(random, scale, 400);
    types.front().territories.front().zones.push_back(
        ZoneAt(std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
               -1e30F, scale));
    const QString text = WriteSheet(ZoneRows(types, scale), SheetFormat(format));
    const SheetPlan plan = PlanText(types, scale, text);
    QCOMPARE(Told(plan), QString());
    QVERIFY(plan.IsEmpty());
}

void tst_SheetPlan::TerritoriesWithTheSameNameKeepTheirZones()
{
    const WorldScale scale = SetZoneWorld();
    const std::vector<TypeRecord> types = SomeTypes(scale);
    std::vector<ZoneRow> rows = ZoneRows(types, scale);
    QVERIFY(PlanText(types, scale, WriteSheet(rows, SheetFormat::Csv)).IsEmpty());
    std::reverse(rows.begin(), rows.end());
    const SheetPlan plan = PlanText(types, scale, WriteSheet(rows, SheetFormat::Csv));
    QCOMPARE(Told(plan), QString());
    QVERIFY(plan.IsEmpty());
    rows[0] = rows[1];
    QCOMPARE(Told(PlanText(types, scale, WriteSheet(rows, SheetFormat::Csv))),
             "row 3: there are 2 territories 'Pair' of type 'Wolf'");
}

/// No place in the scene has just these metres, so the nearest one is taken.
void tst_SheetPlan::MetresWithoutAPlaceChangeNothingTwice()
{
    const WorldScale scale = SetZoneWorld();
    std::vector<TypeRecord> types = SomeTypes(scale);
    const QString sheet = "type,territory,number,z\nDeer,North,1,1.00001";
    const SheetPlan plan = PlanText(types, scale, sheet);
    QCOMPARE(plan.changes.size(), std::size_t(1));
    Apply(plan, types, scale);
    QVERIFY(InWorld(types[0].territories[0].zones[0], scale).z != 1.00001);
    QVERIFY(PlanText(types, scale, sheet).IsEmpty());
}

void tst_SheetPlan::AWorldWithoutASizeHasNoPlaces()
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    WorldScale noWorld = SetZoneWorld();
    noWorld.pixelsPerMetreX = infinity;
    WorldScale noLayers = SetZoneWorld();
    noLayers.pixelsPerMetreZ = 0;
    noLayers.metresPerPixelZ = infinity;
    ZoneRecord zone;
    zone.values.radius = 100;
    const TypeRecord type{"Deer", {TerritoryRecord{"North", 1, true, {zone}}}};
    for (const WorldScale& scale : {noWorld, noLayers}) {
        for (const char* row : {"x,z\nDeer,North,,5,5", "depth\nDeer,North,1,9"}) {
            QCOMPARE(Told(PlanText({type}, scale, QByteArray("type,territory,number,") + row)),
                     "row 2: it has no place, because the world has no size");
        }
    }
}

/// Changes any cells of any rows to values that are allowed, and expects the table that they make.
void tst_SheetPlan::AnyChangesAreCarriedOut()
{
    const WorldScale scale = SetZoneWorld();
    Random random;
    for (int round = 0; round < 20; ++round) {
        std::vector<TypeRecord> types = AnyZones(random, scale, 60);
        std::vector<ZoneRow> rows = ZoneRows(types, scale);
        std::vector<ZoneRow> sheet;
        for (ZoneRow& row : rows) {
            const bool isChanged = random.Below(3) == 0;
            if (isChanged) {
                row.values.SetName(random.Below(2) == 0 ? "Graze" : "Wolf, \"grey\"");
                row.values.counts = {random.Below(10), random.Between(10, 999), 0,
                                     random.Below(1000)};
                row.values.depth = random.Between(2, 255);
                // Smaller numbers have more digits than a place in the scene.
                row.circle = {random.Between(100000, 150000) / 10.0,
                              random.Between(100000, 150000) / 10.0,
                              random.Between(500, 9999) / 10.0};
            }
            if (isChanged || random.Below(2) == 0) {
                sheet.push_back(row);
            }
        }
        const SheetPlan plan =
            PlanSheet(types, scale, ReadSheet(WriteSheet(sheet, SheetFormat(round % 3))),
                      ZoneValues::OfNewZone());
        QCOMPARE(Told(plan), QString());
        Apply(plan, types, scale);
        const std::vector<ZoneRow> after = ZoneRows(types, scale);
        QCOMPARE(after.size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            for (const ZoneColumn column : ZoneColumns) {
                QCOMPARE(CellText(after[i], column), CellText(rows[i], column));
            }
        }
    }
}

QTEST_GUILESS_MAIN(tst_SheetPlan)
#include "tst_SheetPlan.moc"
