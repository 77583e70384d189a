#include "territories/ZoneSheet.h"

#include "tests/support/Random.h"
#include "tests/support/ZoneRecords.h"

#include <QTemporaryFile>
#include <QtTest>

namespace {

QString Told(const std::vector<SheetRefusal>& refusals)
{
    QStringList texts;
    for (const SheetRefusal& refusal : refusals) {
        texts.append(refusal.Text());
    }
    return texts.join(" | ");
}

/// The rows as "number: key=cell key=cell", without empty cells.
QStringList Told(const std::vector<SheetRow>& rows)
{
    QStringList texts;
    for (const SheetRow& row : rows) {
        QString text = QString::number(row.number) + ':';
        for (const ZoneColumn column : ZoneColumns) {
            if (!row.Cell(column).isEmpty()) {
                text += ' ' + Key(column) + '=' + row.Cell(column);
            }
        }
        texts.append(text);
    }
    return texts;
}

} // namespace

class tst_ZoneSheet : public QObject
{
    Q_OBJECT

private slots:
    void RowsAreWritten();
    void WhatIsWrittenIsRead_data();
    void WhatIsWrittenIsRead();
    void NumbersWithoutAValueAreLeftOutOfJson();
    void SheetsAreRead_data();
    void SheetsAreRead();
    void BrokenSheetsAreRefused_data();
    void BrokenSheetsAreRefused();
    void FilesAreUtf8_data();
    void FilesAreUtf8();
    void WhatCannotBeReadIsNoSheet();
    void AnyTextIsReadOrRefused();
};

void tst_ZoneSheet::RowsAreWritten()
{
    const WorldScale scale = SetZoneWorld();
    ZoneRecord zone = ZoneAt(1234.5F, 200, 150, scale, "Wolf, \"grey\"");
    zone.values.counts = {1, 2, 3, 4};
    std::vector<ZoneRow> rows =
        ZoneRows({TypeRecord{"Deer", {TerritoryRecord{"a\tb\nc", 1, true, {zone}}}}}, scale);
    rows.front().problems = "minimum above maximum, outside";
    QCOMPARE(WriteSheet(rows, SheetFormat::Csv),
             "type,territory,number,usage,x,z,radius,static-min,static-max,dynamic-min,"
             "dynamic-max,depth,problems\n"
             "Deer,\"a\tb\nc\",1,\"Wolf, \"\"grey\"\"\",1234.5,200,150,1,2,3,4,2,"
             "\"minimum above maximum, outside\"\n");
    QCOMPARE(WriteSheet(rows, SheetFormat::Tabs),
             "type\tterritory\tnumber\tusage\tx\tz\tradius\tstatic-min\tstatic-max\tdynamic-min\t"
             "dynamic-max\tdepth\tproblems\n"
             "Deer\t\"a\tb\nc\"\t1\t\"Wolf, \"\"grey\"\"\"\t1234.5\t200\t150\t1\t2\t3\t4\t2\t"
             "minimum above maximum, outside\n");
    QCOMPARE(WriteSheet(rows, SheetFormat::Json), R"({
    "zones": [
        {
            "depth": 2,
            "dynamic-max": 4,
            "dynamic-min": 3,
            "number": 1,
            "problems": "minimum above maximum, outside",
            "radius": 150,
            "static-max": 2,
            "static-min": 1,
            "territory": "a\tb\nc",
            "type": "Deer",
            "usage": "Wolf, \"grey\"",
            "x": 1234.5,
            "z": 200
        }
    ]
}
)");
}

void tst_ZoneSheet::WhatIsWrittenIsRead_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("tabs") << int(SheetFormat::Tabs);
    QTest::newRow("csv") << int(SheetFormat::Csv);
    QTest::newRow("json") << int(SheetFormat::Json);
}

void tst_ZoneSheet::WhatIsWrittenIsRead()
{
    QFETCH(int, format);
    const WorldScale scale = SetZoneWorld();
    Random random;
    const std::vector<ZoneRow> rows = ZoneRows(AnyZones(random, scale, 300), scale);
    const ZoneSheet sheet = ReadSheet(WriteSheet(rows, SheetFormat(format)));
    QCOMPARE(Told(sheet.refusals), QString());
    QCOMPARE(sheet.fault, QString());
    QCOMPARE(sheet.rows.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (const ZoneColumn column : ZoneColumns) {
            const QString cell = sheet.rows[i].Cell(column);
            const QString text = CellText(rows[i], column);
            // JSON has numbers, not their digits.
            const bool isSame = SheetFormat(format) == SheetFormat::Json && IsNumber(column)
                                    ? cell.toDouble() == text.toDouble()
                                    : cell == text;
            QVERIFY2(isSame, qPrintable(cell + " instead of " + text));
        }
    }
    const ZoneSheet empty = ReadSheet(WriteSheet({}, SheetFormat(format)));
    QVERIFY(empty.rows.empty() && empty.refusals.empty() && empty.fault.isEmpty());
}

void tst_ZoneSheet::NumbersWithoutAValueAreLeftOutOfJson()
{
    ZoneRow row;
    row.type = "Deer";
    row.circle.x = std::numeric_limits<double>::quiet_NaN();
    row.circle.z = std::numeric_limits<double>::infinity();
    const QString text = WriteSheet({row}, SheetFormat::Json);
    QVERIFY(text.contains("\"x\": null"));
    const ZoneSheet sheet = ReadSheet(text);
    QCOMPARE(Told(sheet.refusals), QString());
    QCOMPARE(sheet.rows.front().Cell(ZoneColumn::X), QString());
    QCOMPARE(sheet.rows.front().Cell(ZoneColumn::Z), QString());
}

void tst_ZoneSheet::SheetsAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("rows");
    const QStringList two = {"2: type=Deer x=5", "3: type=Wolf x=7"};
    QTest::newRow("csv") << "type,x\nDeer,5\nWolf,7\n" << two;
    QTest::newRow("no last line end") << "type,x\nDeer,5\nWolf,7" << two;
    QTest::newRow("line ends of RFC 4180") << "type,x\r\nDeer,5\r\nWolf,7\r\n" << two;
    QTest::newRow("carriage returns") << "type,x\rDeer,5\rWolf,7\r" << two;
    QTest::newRow("tabs") << "type\tx\nDeer\t5\nWolf\t7\n" << two;
    QTest::newRow("byte order mark") << QString(QChar(0xFEFF)) + "type,x\nDeer,5\nWolf,7\n" << two;
    QTest::newRow("other order, titles") << "X,\"Static min\",Type\n5,1,Deer\n"
                                         << QStringList{"2: type=Deer x=5 static-min=1"};
    QTest::newRow("event") << "event\nWater\n" << QStringList{"2: usage=Water"};
    QTest::newRow("quoted") << "type,x\n\"De\"\"er\r\n,2\",\"5\"\n"
                            << QStringList{"2: type=De\"er\r\n,2 x=5"};
    QTest::newRow("a quote within a cell") << "type,x\nDe\"er,5\n"
                                           << QStringList{"2: type=De\"er x=5"};
    QTest::newRow("text after a quote") << "type,x\n\"De\"er,5\n"
                                        << QStringList{"2: type=Deer x=5"};
    QTest::newRow("blank rows") << "\n,\ntype,x\n\n , \nDeer,5\n"
                                << QStringList{"6: type=Deer x=5"};
    QTest::newRow("short and long rows") << "type,x\nDeer\nWolf,7,, \n"
                                         << QStringList{"2: type=Deer", "3: type=Wolf x=7"};
    QTest::newRow("columns without a name") << "type,,x,\nDeer,,5,\n"
                                            << QStringList{"2: type=Deer x=5"};
    QTest::newRow("json") << " {\"zones\": [{\"type\": \"Deer\", \"x\": 5}]} "
                          << QStringList{"1: type=Deer x=5"};
    QTest::newRow("json array")
        << "[{\"Type\": \"Deer\", \"x\": 5, \"z\": null, \"number\": \"3\"}]"
        << QStringList{"1: type=Deer number=3 x=5"};
    QTest::newRow("json numbers") << "[{\"x\": 20000000, \"z\": -0.1, \"territory\": 12}]"
                                  << QStringList{"1: territory=12 x=20000000 z=-0.1"};
    QTest::newRow("json without rows") << "[]" << QStringList{};
}

void tst_ZoneSheet::SheetsAreRead()
{
    QFETCH(QString, text);
    QFETCH(QStringList, rows);
    const ZoneSheet sheet = ReadSheet(text);
    QCOMPARE(Told(sheet.rows), rows);
    QCOMPARE(sheet.fault, QString());
    QCOMPARE(Told(sheet.refusals), QString());
}

void tst_ZoneSheet::BrokenSheetsAreRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("refusals");
    QTest::addColumn<QString>("fault");
    const QString none;
    QTest::newRow("nothing") << "" << none << "it holds no rows";
    QTest::newRow("spaces") << " \n\n\t\n" << none << "it holds no rows";
    QTest::newRow("unknown column") << "type,colour\nDeer,red\n"
                                    << "row 1: there is no column 'colour'" << none;
    QTest::newRow("commas within tabs") << "type\tx,z\nDeer\t5,6\n"
                                        << "row 1: there is no column 'x,z'" << none;
    QTest::newRow("semicolons") << "type;x;z\nDeer;1,5;2\n"
                                << "row 1: its cells are separated by semicolons, not by commas or "
                                   "tabs"
                                << none;
    QTest::newRow("another file") << "<?xml version=\"1.0\"?>\n<qm-config/>\n"
                                  << "row 1: there is no column '<?xml version=\"1.0\"?>'" << none;
    QTest::newRow("two columns") << "\nusage,x,Event\n"
                                 << "row 2: there are two columns 'usage'" << none;
    QTest::newRow("too many cells") << "type,x\nDeer,5\nWolf,7,8\nFox,1,2\n"
                                    << "row 3: '8' stands in no column | "
                                       "row 4: '2' stands in no column"
                                    << none;
    QTest::newRow("open quote") << "type,x\nDeer,5\n\"Wolf,7\nFox,8\n"
                                << "row 3: a quote is not closed" << none;
    QTest::newRow("open quote in the header") << "\"type,x\nDeer,5\n"
                                              << "row 1: a quote is not closed" << none;
    QTest::newRow("cut json") << "[{\"x\": 5}" << none << "it is no JSON: unterminated array";
    QTest::newRow("other json") << "{\"places\": []}" << none
                                << "there is no array \"zones\" in it";
    QTest::newRow("no array") << "{\"zones\": {}}" << none << "there is no array \"zones\" in it";
    QTest::newRow("no object") << "[5, {\"x\": 5}, null]"
                               << "row 1: it is no object | row 3: it is no object" << none;
    QTest::newRow("unknown key") << "[{\"colour\": 5}]"
                                 << "row 1: there is no column 'colour'" << none;
    QTest::newRow("two keys") << "[{\"usage\": \"a\", \"event\": \"b\"}]"
                              << "row 1: there are two columns 'usage'" << none;
    QTest::newRow("no value") << "[{\"x\": [5]}, {\"type\": {}}, {\"radius\": true}]"
                              << "row 1: x is neither a text nor a number | "
                                 "row 2: type is neither a text nor a number | "
                                 "row 3: radius is neither a text nor a number"
                              << none;
}

void tst_ZoneSheet::BrokenSheetsAreRefused()
{
    QFETCH(QString, text);
    QFETCH(QString, refusals);
    QFETCH(QString, fault);
    const ZoneSheet sheet = ReadSheet(text);
    QCOMPARE(Told(sheet.refusals), refusals);
    QCOMPARE(sheet.fault, fault);
}

void tst_ZoneSheet::FilesAreUtf8_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("fault");
    QTest::newRow("ascii") << QByteArray("usage\nWolf") << "";
    QTest::newRow("umlaut") << QByteArray("usage\nW\xc3\xb6lfe") << "";
    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbfusage\nWolf") << "";
    QTest::newRow("latin 1") << QByteArray("usage\nW\xf6lfe") << "it is no UTF-8";
    QTest::newRow("cut off") << QByteArray("usage\nW\xc3") << "it is no UTF-8";
    QTest::newRow("utf-16") << QByteArray("\xff\xfeu\0", 4) << "it is no UTF-8";
    QTest::newRow("too large") << QByteArray((64 << 20) + 1, 'x') << "it is too large";
}

void tst_ZoneSheet::FilesAreUtf8()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, fault);
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(bytes);
    QVERIFY(file.seek(0));
    const ZoneSheet sheet = ReadSheetFile(file);
    QCOMPARE(sheet.fault, fault);
    QCOMPARE(sheet.rows.size(), std::size_t(fault.isEmpty() ? 1 : 0));
}

void tst_ZoneSheet::WhatCannotBeReadIsNoSheet()
{
    // Its first page belongs to nobody.
    QFile file("/proc/self/mem");
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        QSKIP("No file is known here that can be opened and not read.");
    }
    const QString fault = ReadSheetFile(file).fault;
    QVERIFY2(fault.startsWith("it cannot be read: "), qPrintable(fault));
}

void tst_ZoneSheet::AnyTextIsReadOrRefused()
{
    Random random;
    const QStringList pieces = {"type",
                                "x",
                                ",",
                                "\t",
                                "\n",
                                "\r",
                                "\"",
                                "5",
                                "1e999",
                                "[",
                                "]",
                                "{",
                                "}",
                                ":",
                                " ",
                                "-",
                                "zones",
                                "\"\"",
                                "é",
                                QString(QChar(0)),
                                QString(QChar(0xD800))};
    for (int i = 0; i < 5000; ++i) {
        QString text = random.Below(2) == 0 ? QString("type,x,territory\n") : QString();
        const int count = random.Below(40);
        for (int k = 0; k < count; ++k) {
            text += pieces.at(random.Below(pieces.size()));
        }
        const ZoneSheet sheet = ReadSheet(text);
        int before = 0;
        for (const SheetRefusal& refusal : sheet.refusals) {
            QVERIFY2(refusal.row > before && !refusal.reason.isEmpty(), qPrintable(text));
            before = refusal.row;
        }
    }
    QVERIFY(!ReadSheet(QString(100000, '[')).fault.isEmpty());
}

QTEST_APPLESS_MAIN(tst_ZoneSheet)
#include "tst_ZoneSheet.moc"
