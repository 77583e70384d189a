#include "territories/ZoneFilter.h"

#include "tests/support/Random.h"
#include "tests/support/XmlText.h"
#include "tests/support/ZoneRecords.h"

#include <QtTest>

#include <cmath>
#include <functional>

namespace {

ZoneRow Row(const QString& type, const QString& territory, const QString& usage, double x, double z,
            double radius)
{
    ZoneRow row;
    row.type = type;
    row.territory = territory;
    row.number = 1;
    row.values.SetName(usage);
    row.values.counts = {1, 2, 30, 40};
    row.values.depth = 9;
    row.circle = {x, z, radius};
    return row;
}

/// Zones that the cases tell apart by their numbers.
std::vector<ZoneRow> SomeRows()
{
    std::vector<ZoneRow> rows = {Row("Deer", "North", "Water", 100, 200, 300),
                                 Row("Deer", "South coast", "Graze", 4123.5, -1, 500),
                                 Row("Great Lake", "North", "Outside \"in\"", 15360, 15360, 500.5),
                                 Row("Fox:red", "radius", "", 15361, 0, 1234567)};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].number = static_cast<int>(i) + 1;
    }
    rows[1].problems = "outside of the world";
    return rows;
}

/// The numbers of the rows that stay.
QString Left(const std::vector<ZoneRow>& rows, const std::vector<bool>& stays)
{
    QString numbers;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        numbers += stays[i] ? QString::number(rows[i].number) : QString();
    }
    return numbers;
}

} // namespace

class tst_ZoneFilter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { SetZoneWorld(); }
    void TermsLeaveRows_data();
    void TermsLeaveRows();
    void UnfinishedTermsAreTold();
    void AWordThatIsBeingTypedHidesNotEverything_data();
    void AWordThatIsBeingTypedHidesNotEverything();
    void NumbersAreThoseOfTheFile();
    void AWorldWithoutASizeHasNoOutside();
    void OverlapIsAskedForOnce();
    void TermsAreCompleted_data();
    void TermsAreCompleted();
    void AnyFilterIsThatOfAPlainEvaluation();
};

void tst_ZoneFilter::TermsLeaveRows_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("left");
    const auto add = [](const char* text, const char* left) {
        QTest::newRow(text) << text << left;
    };
    add("", "1234");
    add("  \t ", "1234");
    add("north", "13");
    add("DEER north", "1");
    add("ee", "12");
    add("wat", "1");
    add("\"south coast\"", "2");
    add("south coast", "2");
    add("h c", "2");
    add("\"h c\"", "2");
    add("\"\"", "1234");
    add("type:deer", "12");
    add("TYPE:EAT", "3");
    add("type:\"Great Lake\"", "3");
    add("\"type:Great Lake\"", "");
    add("type:Great Lake", "3");
    add("territory:o territory:r", "13");
    add("type=deer", "12");
    add("type=dee", "");
    add("usage=\"\"", "4");
    add("event:\"outside \"\"in\"", "3");
    add("event:\"outside \"\"in\"\"\"", "3");
    add("usage:graze", "2");
    add("problems:world", "2");
    add("x:23", "2");
    add("x:.5", "2");
    add("radius:e+06", "4");
    add("number:3", "3");
    add("number=3", "3");
    add("number>=3", "34");
    add("number<3", "12");
    add("number<=3 number>1", "23");
    add("radius>500", "34");
    add("radius>=500", "234");
    add("radius=500.5", "3");
    add("radius=1234570", "4");
    add("radius>5e2", "34");
    add("z<0", "2");
    add("z=-1", "2");
    add("static-min=1", "1234");
    add("StaticMax=2", "1234");
    add("dynamic_min=30", "1234");
    add("\"dynamic max\">39", "1234");
    add("depth<9", "");
    add("outside", "24");
    add("OutSide", "24");
    add("\"outside\"", "23");
    add("outside problems:world", "2");
    add("Fox:red", "4");
    add("fox:", "4");
    add("colour:red", "");
    add("colour>5", "");
    add(":red", "4");
    // Unfinished.
    add("type:", "1234");
    add("type=", "1234");
    add("radius>", "1234");
    add("radius>=", "1234");
    add("radius>-", "1234");
    add("radius>1e", "1234");
    add("radius=nan", "1234");
    add("radius>inf", "1234");
    add("type>5", "1234");
    add("number:", "1234");
    add("deer radius>", "12");
    add("type:\"great l", "3");
    add("\"", "1234");
}

void tst_ZoneFilter::TermsLeaveRows()
{
    QFETCH(QString, text);
    QFETCH(QString, left);
    const std::vector<ZoneRow> rows = SomeRows();
    const ZoneFilter filter(text, SetZoneWorld());
    QCOMPARE(Left(rows, filter.Matching(rows)), left);
    for (const ZoneRow& row : rows) {
        QCOMPARE(filter.Matches(row), left.contains(QString::number(row.number)));
    }
    if (filter.IsEmpty()) {
        QCOMPARE(left, "1234");
    }
}

void tst_ZoneFilter::UnfinishedTermsAreTold()
{
    const ZoneFilter filter("deer type: x>- \"static max\">=\"\" usage=\"\" fox:", SetZoneWorld());
    QCOMPARE(filter.Unfinished(), (QStringList{"type:", "x>-", "\"static max\">=\"\""}));
    QVERIFY(ZoneFilter("deer x>5 outside overlap", SetZoneWorld()).Unfinished().isEmpty());
    QVERIFY(ZoneFilter().IsEmpty());
}

void tst_ZoneFilter::AWordThatIsBeingTypedHidesNotEverything_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("left");
    QTest::newRow("begins a column") << "deer number"
                                     << "12";
    QTest::newRow("hyphen") << "static-m"
                            << "123";
    QTest::newRow("no hyphen") << "StaticM"
                               << "123";
    QTest::newRow("other name of a column") << "even"
                                            << "123";
    QTest::newRow("begins a special term") << "overl"
                                           << "123";
    QTest::newRow("a row holds it") << "ter"
                                    << "1";
    QTest::newRow("begins no name") << "numbers"
                                    << "";
    QTest::newRow("ended") << "number "
                           << "";
    QTest::newRow("not the last") << "number deer"
                                  << "";
    QTest::newRow("quoted") << "\"number\""
                            << "";
    QTest::newRow("special term") << "outside"
                                  << "2";
    QTest::newRow("ends in a finished term") << "number deer type:deer"
                                             << "";
}

void tst_ZoneFilter::AWordThatIsBeingTypedHidesNotEverything()
{
    QFETCH(QString, text);
    QFETCH(QString, left);
    std::vector<ZoneRow> rows = SomeRows();
    rows.pop_back();
    const ZoneFilter filter = ZoneFilter(text, SetZoneWorld()).WhileTyping(rows);
    QCOMPARE(Left(rows, filter.Matching(rows)), left);
}

void tst_ZoneFilter::NumbersAreThoseOfTheFile()
{
    const WorldScale scale = SetZoneWorld();
    // The files of these say 500 and 15360.
    ZoneRow row = Row("Deer", "North", "Rest", 15360.01, 100, 500.0004);
    QVERIFY(ZoneFilter("radius=500", scale).Matches(row));
    QVERIFY(!ZoneFilter("radius>500", scale).Matches(row));
    QVERIFY(!ZoneFilter("outside", scale).Matches(row));
    row.circle.x = 15360.06;
    QVERIFY(ZoneFilter("outside", scale).Matches(row));
    row.circle.x = std::nan("");
    QVERIFY(ZoneFilter("outside", scale).Matches(row));
    for (const char* text : {"x<5", "x>5", "x=5", "x<=5", "x>=5"}) {
        QVERIFY(!ZoneFilter(text, scale).Matches(row));
    }
    QVERIFY(ZoneFilter("x:NAN", scale).Matches(row));
}

void tst_ZoneFilter::AWorldWithoutASizeHasNoOutside()
{
    WorldScale scale = SetZoneWorld();
    scale.worldWidth = 0;
    QVERIFY(!ZoneFilter("outside", scale).Matches(Row("Deer", "North", "Rest", -5, 0, 100)));
}

void tst_ZoneFilter::OverlapIsAskedForOnce()
{
    const ZoneFilter filter("deer overlap", SetZoneWorld());
    QVERIFY(filter.AsksForOverlap());
    QVERIFY(!ZoneFilter("\"overlap\"", SetZoneWorld()).AsksForOverlap());
    std::vector<ZoneRow> rows = SomeRows();
    QVERIFY(!filter.Matches(rows[0], false));
    QVERIFY(filter.Matches(rows[0], true));
    QVERIFY(!filter.Matches(rows[2], true));
    QCOMPARE(Left(rows, filter.Matching(rows)), "");
    rows[1].circle = rows[0].circle;
    QCOMPARE(Left(rows, filter.Matching(rows)), "12");
}

void tst_ZoneFilter::TermsAreCompleted_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("completions");
    const auto add = [](const char* text, const QStringList& completions) {
        QTest::newRow(text) << text << completions;
    };
    add("ty", {"type:"});
    add("deer STAT", {"deer static-min>", "deer static-max>"});
    add("o", {"outside", "overlap", "\"Outside \"\"in\"\"\""});
    add("gr", {"Graze", "\"Great Lake\""});
    add("fox", {"\"Fox:red\""});
    add("r", {"radius>", "radius"});
    add("x>5 type:gr", {"x>5 type:\"Great Lake\""});
    add("type:\"great l", {"type:\"Great Lake\""});
    add("\"south c", {"\"South coast\""});
    add("Event=g", {"usage=Graze"});
    add("territory:", {"territory:North", "territory:\"South coast\"", "territory:radius"});
    add("radius>", {});
    add("nothing", {});
    add("type:deer", {"type:Deer"});
    add("type:Deer", {});
}

void tst_ZoneFilter::TermsAreCompleted()
{
    QFETCH(QString, text);
    QFETCH(QStringList, completions);
    QCOMPARE(FilterCompletions(text, SomeRows()), completions);
    if (!text.contains('"')) {
        QCOMPARE(FilterCompletions(text + ' ', SomeRows()).size(), int(ZoneColumns.size()) + 2);
    }
}

namespace {

/// What the file says of a zone, by the keys of the columns, and whether it overlaps another zone.
struct Filed
{
    QMap<QString, QString> cells;
    double x = 0;
    double z = 0;
    double radius = 0;
    bool doesOverlap = false;
};

std::vector<Filed> FiledZones(const std::vector<TypeRecord>& types, const WorldScale& scale)
{
    std::vector<Filed> zones;
    for (const TypeRecord& type : types) {
        for (const TerritoryRecord& territory : type.territories) {
            int number = 0;
            for (const ZoneRecord& zone : territory.zones) {
                const ElementReader xml(
                    XmlText([&](QXmlStreamWriter& out) { Write(out, zone, scale, false); }));
                const auto text = [&xml](const char* name) {
                    return xml.attributes().value(name).toString();
                };
                const WorldCircle circle = InWorld(zone, scale);
                zones.push_back({{{"type", type.name},
                                  {"territory", territory.name},
                                  {"number", QString::number(++number)},
                                  {"usage", text("name")},
                                  {"x", text("x")},
                                  {"z", text("z")},
                                  {"radius", text("r")},
                                  {"static-min", text("smin")},
                                  {"static-max", text("smax")},
                                  {"dynamic-min", text("dmin")},
                                  {"dynamic-max", text("dmax")},
                                  {"depth", text("d")}},
                                 circle.x,
                                 circle.z,
                                 circle.radius,
                                 false});
            }
        }
    }
    for (Filed& zone : zones) {
        for (const Filed& other : zones) {
            zone.doesOverlap = zone.doesOverlap ||
                               (&zone != &other && zone.cells["type"] == other.cells["type"] &&
                                zone.radius >= 0 && other.radius >= 0 &&
                                std::pow(zone.x - other.x, 2) + std::pow(zone.z - other.z, 2) <=
                                    std::pow(zone.radius + other.radius, 2));
        }
    }
    return zones;
}

/// A term and what it means.
struct PlainTerm
{
    QString text;
    std::function<bool(const Filed&)> holds;
};

QString QuotedForFilter(QString text)
{
    return '"' + text.replace('"', "\"\"") + '"';
}

/// A part of a cell of a zone, in any case.
QString AnyPart(Random& random, const QString& text)
{
    const int start = random.Below(text.size() + 1);
    const QString part = text.mid(start, random.Between(1, 4));
    return random.Below(2) == 0 ? part.toUpper() : part.toLower();
}

PlainTerm AnyTerm(Random& random, const std::vector<Filed>& zones)
{
    static const QStringList texts = {"type", "territory", "usage"};
    static const QStringList numbers = {"number",     "x",           "z",
                                        "radius",     "depth",       "static-min",
                                        "static-max", "dynamic-min", "dynamic-max"};
    const Filed& zone = zones.at(std::size_t(random.Below(int(zones.size()))));
    switch (random.Below(10)) {
    case 0:
        return {"Outside", [](const Filed& filed) {
                    const double x = filed.cells["x"].toDouble();
                    const double z = filed.cells["z"].toDouble();
                    return x < 0 || x > 15360 || z < 0 || z > 15360;
                }};
    case 1:
        return {"overlap", [](const Filed& filed) { return filed.doesOverlap; }};
    case 2:
    case 3: {
        const QString part = AnyPart(random, zone.cells[texts.at(random.Below(3))]);
        return {QuotedForFilter(part), [part](const Filed& filed) {
                    return filed.cells["type"].contains(part, Qt::CaseInsensitive) ||
                           filed.cells["territory"].contains(part, Qt::CaseInsensitive) ||
                           filed.cells["usage"].contains(part, Qt::CaseInsensitive);
                }};
    }
    case 4:
    case 5: {
        const QString key = (texts + numbers).at(random.Below(12));
        const QString part = AnyPart(random, zone.cells[key]);
        return {key.toUpper() + ':' + QuotedForFilter(part), [key, part](const Filed& filed) {
                    return filed.cells[key].contains(part, Qt::CaseInsensitive);
                }};
    }
    case 6: {
        const QString key = texts.at(random.Below(3));
        const QString whole = zone.cells[key].toUpper();
        return {key + '=' + QuotedForFilter(whole),
                [key, whole](const Filed& filed) { return filed.cells[key].toUpper() == whole; }};
    }
    default:
        break;
    }
    const QString key = numbers.at(random.Below(9));
    const QString number = zone.cells[key];
    const QString sign = QStringList{">", "<", ">=", "<=", "="}.at(random.Below(5));
    QString name = key;
    return {name.remove(random.Below(2) == 0 ? "-" : " ") + sign + number,
            [key, sign, number](const Filed& filed) {
                const double a = filed.cells[key].toDouble();
                const double b = number.toDouble();
                return (sign.contains('=') && a == b) || (sign.contains('<') && a < b) ||
                       (sign.contains('>') && a > b);
            }};
}

} // namespace

void tst_ZoneFilter::AnyFilterIsThatOfAPlainEvaluation()
{
    const WorldScale scale = SetZoneWorld();
    Random random;
    const std::vector<TypeRecord> types = AnyZones(random, scale, 300);
    const std::vector<ZoneRow> rows = ZoneRows(types, scale);
    const std::vector<Filed> zones = FiledZones(types, scale);
    QCOMPARE(zones.size(), rows.size());
    int left = 0;
    for (int i = 0; i < 1000; ++i) {
        QString text;
        std::vector<PlainTerm> terms(std::size_t(random.Between(1, 3)));
        for (PlainTerm& term : terms) {
            term = AnyTerm(random, zones);
            text += QString(random.Between(1, 2), ' ') + term.text;
        }
        const ZoneFilter filter(text, scale);
        const std::vector<bool> stays = filter.Matching(rows);
        for (std::size_t k = 0; k < rows.size(); ++k) {
            const bool doesStay =
                std::all_of(terms.begin(), terms.end(),
                            [&](const PlainTerm& term) { return term.holds(zones[k]); });
            QVERIFY2(stays[k] == doesStay,
                     qPrintable(QString("%1 of row %2").arg(text, QString::number(k))));
            left += doesStay ? 1 : 0;
        }
    }
    QVERIFY(left > 1000);
}

QTEST_GUILESS_MAIN(tst_ZoneFilter)
#include "tst_ZoneFilter.moc"
