#include "territories/BulkEntry.h"

#include "territories/ZonePlaces.h"
#include "tests/support/Random.h"
#include "tests/support/ZoneRecords.h"

#include <QtTest>

#include <algorithm>
#include <cmath>

Q_DECLARE_METATYPE(ZoneColumn)

namespace {

ZoneRecord ZoneWith(int staticMin, int staticMax, const WorldScale& scale)
{
    ZoneRecord zone = ZoneAt(4237.5F, -120.25F, 300, scale, QStringLiteral("Moot"));
    zone.values.counts = {staticMin, staticMax, 10, 20};
    zone.values.depth = 25;
    return zone;
}

QString Cell(const ZoneRecord& zone, ZoneColumn column, const WorldScale& scale)
{
    return CellText(NamelessRow(zone, scale), column);
}

} // namespace

class tst_BulkEntry : public QObject
{
    Q_OBJECT

private slots:
    void ReadsEntries_data();
    void ReadsEntries();
    void ReadsNothingElse_data();
    void ReadsNothingElse();
    void ChangesOneColumn_data();
    void ChangesOneColumn();
    void TheOtherCountGivesWay_data();
    void TheOtherCountGivesWay();
    void PlacesThatAreNoNumbersStay();
    void AddsToWhatIsInMemory();
    void RandomEntriesStayInRange();
};

void tst_BulkEntry::ReadsEntries_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("number");
    const int set = int(BulkEntry::Kind::Set);
    const int add = int(BulkEntry::Kind::Add);
    const int multiply = int(BulkEntry::Kind::Multiply);
    QTest::newRow("number") << "500" << set << 500.0;
    QTest::newRow("decimals") << "4237.5" << set << 4237.5;
    QTest::newRow("exponent") << "1e3" << set << 1000.0;
    QTest::newRow("equals") << "=500" << set << 500.0;
    QTest::newRow("negative number") << "=-50" << set << -50.0;
    QTest::newRow("positive number") << "=+50" << set << 50.0;
    QTest::newRow("more") << "+50" << add << 50.0;
    QTest::newRow("less") << "-50" << add << -50.0;
    QTest::newRow("nothing more") << "+0" << add << 0.0;
    QTest::newRow("times") << "*1.1" << multiply << 1.1;
    QTest::newRow("times a negative number") << "*-1" << multiply << -1.0;
    QTest::newRow("blanks") << "  + 50 " << add << 50.0;
}

void tst_BulkEntry::ReadsEntries()
{
    QFETCH(QString, text);
    QFETCH(int, kind);
    QFETCH(double, number);
    const std::optional<BulkEntry> entry = ParseBulkEntry(text);
    QVERIFY(entry.has_value());
    QCOMPARE(int(entry->kind), kind);
    QCOMPARE(entry->number, number);
}

void tst_BulkEntry::ReadsNothingElse_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"",     " ",      "abc",   "5 m",  "1,5", "+",   "-",   "*",   "=",
                             "+-5",  "--5",    "++5",   "-+5",  "==5", "**2", "nan", "inf", "+inf",
                             "-nan", "*1e999", "1e999", "0x10", "5 5", "/2",  "50%"}) {
        QTest::newRow(qPrintable(QStringLiteral("'%1'").arg(QLatin1String(text))))
            << QString::fromLatin1(text);
    }
}

void tst_BulkEntry::ReadsNothingElse()
{
    QFETCH(QString, text);
    QVERIFY(!ParseBulkEntry(text));
}

void tst_BulkEntry::ChangesOneColumn_data()
{
    QTest::addColumn<ZoneColumn>("column");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("cell");
    const auto row = [](ZoneColumn column, const char* entry, const char* cell) {
        QTest::addRow("%s %s", qPrintable(Key(column)), entry)
            << column << QString::fromLatin1(entry) << QString::fromLatin1(cell);
    };
    row(ZoneColumn::X, "500", "500");
    row(ZoneColumn::X, "+50", "4287.5");
    row(ZoneColumn::X, "-5000", "-762.5");
    row(ZoneColumn::X, "=-50", "-50");
    row(ZoneColumn::X, "*2", "8475");
    row(ZoneColumn::X, "1e300", "1e+09");
    row(ZoneColumn::X, "*-1e300", "-1e+09");
    row(ZoneColumn::Z, "+0.25", "-120");
    row(ZoneColumn::Radius, "*1.1", "330");
    row(ZoneColumn::Radius, "49.9", "50");
    row(ZoneColumn::Radius, "-1000", "50");
    row(ZoneColumn::Radius, "+99999", "32768");
    row(ZoneColumn::StaticMin, "+1", "4");
    row(ZoneColumn::StaticMin, "*1.4", "4");
    row(ZoneColumn::StaticMin, "-9", "0");
    row(ZoneColumn::StaticMax, "1e9", "999");
    row(ZoneColumn::DynamicMin, "2.5", "3");
    row(ZoneColumn::DynamicMax, "*1000", "999");
    row(ZoneColumn::Depth, "+0.4", "25");
    row(ZoneColumn::Depth, "0", "2");
    row(ZoneColumn::Depth, "*100", "255");
}

void tst_BulkEntry::ChangesOneColumn()
{
    QFETCH(ZoneColumn, column);
    QFETCH(QString, entry);
    QFETCH(QString, cell);
    const WorldScale scale = SetZoneWorld();
    const ZoneRecord before = ZoneWith(3, 7, scale);
    const ZoneRecord after = Applied(*ParseBulkEntry(entry), column, before, scale);
    QCOMPARE(Cell(after, column, scale), cell);
    for (const ZoneColumn other : ZoneColumns) {
        if (other != column) {
            QCOMPARE(Cell(after, other, scale), Cell(before, other, scale));
        }
    }
    QCOMPARE(after.values.eventName, before.values.eventName);
}

void tst_BulkEntry::TheOtherCountGivesWay_data()
{
    QTest::addColumn<ZoneColumn>("column");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<int>("least");
    QTest::addColumn<int>("most");
    QTest::newRow("a larger minimum") << ZoneColumn::StaticMin << "12" << 12 << 12;
    QTest::newRow("a smaller maximum") << ZoneColumn::StaticMax << "1" << 1 << 1;
    QTest::newRow("a minimum below") << ZoneColumn::StaticMin << "1" << 1 << 7;
    QTest::newRow("a maximum above") << ZoneColumn::StaticMax << "9" << 3 << 9;
    QTest::newRow("both ends of the range") << ZoneColumn::StaticMin << "9999" << 999 << 999;
}

void tst_BulkEntry::TheOtherCountGivesWay()
{
    QFETCH(ZoneColumn, column);
    QFETCH(QString, entry);
    QFETCH(int, least);
    QFETCH(int, most);
    const WorldScale scale = SetZoneWorld();
    const ZoneRecord after = Applied(*ParseBulkEntry(entry), column, ZoneWith(3, 7, scale), scale);
    QCOMPARE(after.values.counts.staticMin, least);
    QCOMPARE(after.values.counts.staticMax, most);
    QCOMPARE(after.values.counts.dynamicMin, 10);
    QCOMPARE(after.values.counts.dynamicMax, 20);
}

void tst_BulkEntry::PlacesThatAreNoNumbersStay()
{
    const WorldScale scale = SetZoneWorld();
    ZoneRecord zone = ZoneWith(3, 7, scale);
    zone.place = {qQNaN(), qInf()};
    const auto place = [&](const BulkEntry& entry, ZoneColumn column) {
        return Applied(entry, column, zone, scale).place;
    };
    QVERIFY(qIsNaN(place({BulkEntry::Kind::Add, 50}, ZoneColumn::X).x()));
    QVERIFY(qIsInf(place({BulkEntry::Kind::Multiply, 0}, ZoneColumn::Z).y()));
    QCOMPARE(place({BulkEntry::Kind::Set, 75}, ZoneColumn::X).x(), 10.0);
}

/// A file says 12345.7 of such a place.
void tst_BulkEntry::AddsToWhatIsInMemory()
{
    const WorldScale scale = SetZoneWorld();
    const ZoneRecord zone = ZoneAt(12345.67F, 11111.13F, 1234.567F, scale);
    const BulkEntry more{BulkEntry::Kind::Add, 50};
    QCOMPARE(Applied(more, ZoneColumn::X, zone, scale).place, MovedPlace(zone.place, 50, 0, scale));
    QCOMPARE(Applied(more, ZoneColumn::Z, zone, scale).place, MovedPlace(zone.place, 0, 50, scale));
    for (const BulkEntry& nothing :
         {BulkEntry{BulkEntry::Kind::Add, 0}, BulkEntry{BulkEntry::Kind::Multiply, 1}}) {
        for (const ZoneColumn column : {ZoneColumn::X, ZoneColumn::Z, ZoneColumn::Radius}) {
            const ZoneRecord after = Applied(nothing, column, zone, scale);
            QCOMPARE(after.place, zone.place);
            QCOMPARE(after.values, zone.values);
        }
    }
}

/// Against arithmetic on the cells, for zones that hold whatever files may hold.
void tst_BulkEntry::RandomEntriesStayInRange()
{
    Random random;
    const WorldScale scale = SetZoneWorld();
    const ZoneColumn columns[] = {ZoneColumn::X,          ZoneColumn::Z,
                                  ZoneColumn::Radius,     ZoneColumn::StaticMin,
                                  ZoneColumn::StaticMax,  ZoneColumn::DynamicMin,
                                  ZoneColumn::DynamicMax, ZoneColumn::Depth};
    for (int round = 0; round < 20000; ++round) {
        ZoneRecord zone = ZoneWith(random.Between(-2000, 2000), random.Between(-2000, 2000), scale);
        zone.values.depth = random.Between(-300, 600);
        zone.place.setX(InSinglePrecision(random.Between(-100000, 100000) / 7.0));
        const ZoneColumn column = columns[random.Below(int(std::size(columns)))];
        const double number = random.Between(-40000, 40000) / 8.0;
        const auto kind = static_cast<BulkEntry::Kind>(random.Below(3));
        const double cell = Cell(zone, column, scale).toDouble();
        const double asked = kind == BulkEntry::Kind::Set   ? number
                             : kind == BulkEntry::Kind::Add ? cell + number
                                                            : cell * number;
        const NumberRange range = RangeOf(column);
        const ZoneRecord after = Applied({kind, number}, column, zone, scale);
        const double reached = Cell(after, column, scale).toDouble();
        if ((kind == BulkEntry::Kind::Add && number == 0) ||
            (kind == BulkEntry::Kind::Multiply && number == 1)) {
            QCOMPARE(reached, cell);
            continue;
        }
        QVERIFY(reached >= range.least && reached <= range.most);
        const double expected = std::min(std::max(asked, range.least), range.most);
        // The cell leaves out digits of what is added to.
        const double digits = 1e-5 * std::max({1.0, std::abs(expected), std::abs(cell)});
        QVERIFY(std::abs(reached - expected) <= (range.isWhole ? 0.5 : digits));
        const SpawnCounts& counts = after.values.counts;
        if (column == ZoneColumn::StaticMin || column == ZoneColumn::StaticMax) {
            QVERIFY(counts.staticMin <= counts.staticMax);
        }
    }
}

QTEST_APPLESS_MAIN(tst_BulkEntry)
#include "tst_BulkEntry.moc"
