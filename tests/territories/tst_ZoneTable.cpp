#include "territories/ZoneTable.h"

#include "tests/support/Random.h"
#include "tests/support/XmlText.h"
#include "tests/support/ZoneRecords.h"

#include <QtTest>

class tst_ZoneTable : public QObject
{
    Q_OBJECT

private slots:
    void ColumnsAreNamed_data();
    void ColumnsAreNamed();
    void EachColumnHasOneName();
    void CellsSayWhatTheFileSays();
    void RowsHaveTheOrderOfTheFile();
    void PlacesGoToTheSceneAndBack();
};

void tst_ZoneTable::ColumnsAreNamed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isColumn");
    QTest::addColumn<QString>("key");
    QTest::newRow("key") << "static-min" << true << "static-min";
    QTest::newRow("no hyphen") << "staticmin" << true << "static-min";
    QTest::newRow("title") << "Dynamic max" << true << "dynamic-max";
    QTest::newRow("underscore") << "STATIC_MAX" << true << "static-max";
    QTest::newRow("usage") << "Usage" << true << "usage";
    QTest::newRow("event") << "EVENT" << true << "usage";
    QTest::newRow("both") << "usage or event" << true << "usage";
    QTest::newRow("x") << "x" << true << "x";
    QTest::newRow("part") << "static" << false << "";
    QTest::newRow("nothing") << "" << false << "";
    QTest::newRow("other") << "colour" << false << "";
}

void tst_ZoneTable::ColumnsAreNamed()
{
    QFETCH(QString, name);
    QFETCH(bool, isColumn);
    QFETCH(QString, key);
    const std::optional<ZoneColumn> column = ZoneColumnNamed(name);
    QCOMPARE(column.has_value(), isColumn);
    if (column) {
        QCOMPARE(Key(*column), key);
    }
}

void tst_ZoneTable::EachColumnHasOneName()
{
    QStringList keys;
    for (const ZoneColumn column : ZoneColumns) {
        QCOMPARE(ZoneColumnNamed(Key(column)), std::optional<ZoneColumn>(column));
        QCOMPARE(ZoneColumnNamed(Title(column)), std::optional<ZoneColumn>(column));
        keys.append(Key(column));
    }
    QCOMPARE(keys.join(' '), "type territory number usage x z radius static-min static-max "
                             "dynamic-min dynamic-max depth problems");
}

void tst_ZoneTable::CellsSayWhatTheFileSays()
{
    const WorldScale scale = SetZoneWorld();
    Random random;
    const std::vector<TypeRecord> types = AnyZones(random, scale, 500);
    const std::vector<ZoneRow> rows = ZoneRows(types, scale);
    std::size_t index = 0;
    for (const TypeRecord& type : types) {
        for (const TerritoryRecord& territory : type.territories) {
            for (const ZoneRecord& zone : territory.zones) {
                ElementReader xml(
                    XmlText([&](QXmlStreamWriter& out) { Write(out, zone, scale, false); }));
                const ZoneRow& row = rows.at(index++);
                for (const auto& [column, attribute] :
                     std::initializer_list<std::pair<ZoneColumn, const char*>>{
                         {ZoneColumn::Usage, "name"},
                         {ZoneColumn::X, "x"},
                         {ZoneColumn::Z, "z"},
                         {ZoneColumn::Radius, "r"},
                         {ZoneColumn::StaticMin, "smin"},
                         {ZoneColumn::StaticMax, "smax"},
                         {ZoneColumn::DynamicMin, "dmin"},
                         {ZoneColumn::DynamicMax, "dmax"},
                         {ZoneColumn::Depth, "d"}}) {
                    QCOMPARE(CellText(row, column), xml.attributes().value(attribute).toString());
                }
                QCOMPARE(CellText(row, ZoneColumn::Type), type.name);
                QCOMPARE(CellText(row, ZoneColumn::Territory), territory.name);
                QCOMPARE(CellText(row, ZoneColumn::Problems), QString());
            }
        }
    }
    QCOMPARE(index, rows.size());
    QVERIFY(index > 300);
}

void tst_ZoneTable::RowsHaveTheOrderOfTheFile()
{
    const WorldScale scale = SetZoneWorld();
    const ZoneRecord zone = ZoneAt(1, 2, 100, scale);
    QStringList texts;
    for (const ZoneRow& row : ZoneRows({{"B", {{"y", 0, false, {zone, zone}}, {"x", 0, false, {}}}},
                                        {"A", {{"z", 0, false, {zone}}}}},
                                       scale)) {
        texts.append(row.type + row.territory + CellText(row, ZoneColumn::Number));
    }
    QCOMPARE(texts, (QStringList{"By1", "By2", "Az1"}));
}

void tst_ZoneTable::PlacesGoToTheSceneAndBack()
{
    const WorldScale scale = SetZoneWorld();
    QCOMPARE(InScene(0, 0, scale), QPointF(0, 2048));
    QCOMPARE(InScene(15360, 15360, scale), QPointF(2048, 0));
    QCOMPARE(InScene(7.5F, 15.0F, scale), QPointF(1, 2046));
    const WorldCircle circle = InWorld(ZoneAt(1234.5F, 9876.25F, 150, scale), scale);
    QCOMPARE(MetresText(circle.x), "1234.5");
    QCOMPARE(MetresText(circle.z), "9876.25");
    QCOMPARE(MetresText(circle.radius), "150");
}

QTEST_GUILESS_MAIN(tst_ZoneTable)
#include "tst_ZoneTable.moc"
