#include "layers/FormulaFile.h"

#include "tests/support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QXmlStreamWriter>
#include <QtTest>

namespace {

const QString Name = QStringLiteral("Lake & <\"Bog\">");

FormulaRecords SomeRecords()
{
    FormulaRecords records;
    for (int i = 0; i < OperationUnknown; ++i) {
        FormulaRecord record;
        record.layer = QStringLiteral("Layer %1").arg(i);
        record.operation = static_cast<CustomOperation>(i);
        record.operands.append({Name, Q_UINT64_C(0xFEDCBA9876543210)});
        if (IsBinaryOperation(i)) {
            record.operands.append({QStringLiteral("Layer 0"), 0});
        }
        record.metres = IsMorphologicalOperation(i) ? 25 * i : 0;
        record.fingerprint = static_cast<quint64>(i);
        record.isLive = i % 2 == 0;
        records.push_back(record);
    }
    return records;
}

QByteArray
Formula(const QByteArray& attributes,
        const QByteArray& operands = "<operand name='A' fingerprint='0123456789abcdef'/>")
{
    return "<qm-derived><formula " + attributes + ">" + operands + "</formula></qm-derived>";
}

QByteArray Good()
{
    return "layer='B' operation='complement' fingerprint='0123456789abcdef'";
}

} // namespace

class tst_FormulaFile : public QObject
{
    Q_OBJECT

private slots:
    void LiesBesideTheDocument_data();
    void LiesBesideTheDocument();
    void WhatIsWrittenIsRead();
    void FaultsAreTold_data();
    void FaultsAreTold();
    void IsFoundWithinAnotherDocument();
    void AFileThatIsMissingHasNoFault();
    void WhatCannotBeReadHasAFault();
};

void tst_FormulaFile::LiesBesideTheDocument_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("path");
    QTest::newRow("xml") << "/a/world.xml"
                         << "/a/world.derived.xml";
    QTest::newRow("dots") << "/a.b/world.v2.xml"
                          << "/a.b/world.v2.derived.xml";
    QTest::newRow("no dot") << "/a/world"
                            << "/a/world.derived.xml";
    // Never the document itself.
    QTest::newRow("like one") << "/a/world.derived.xml"
                              << "/a/world.derived.derived.xml";
}

void tst_FormulaFile::LiesBesideTheDocument()
{
    QFETCH(QString, document);
    QTEST(FormulaPath(document), "path");
}

void tst_FormulaFile::WhatIsWrittenIsRead()
{
    const FormulaRecords records = SomeRecords();
    const FormulaReading reading = ReadFormulas(FormulaDocument(records));

    QCOMPARE(reading.fault, QString());
    QCOMPARE(reading.records.size(), records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        const FormulaRecord& read = reading.records[i];
        QCOMPARE(read.layer, records[i].layer);
        QCOMPARE(read.operation, records[i].operation);
        QCOMPARE(read.metres, records[i].metres);
        QCOMPARE(read.fingerprint, records[i].fingerprint);
        QCOMPARE(read.isLive, records[i].isLive);
        QCOMPARE(read.operands.size(), records[i].operands.size());
        for (int k = 0; k < read.operands.size(); ++k) {
            QCOMPARE(read.operands[k].name, records[i].operands[k].name);
            QCOMPARE(read.operands[k].fingerprint, records[i].operands[k].fingerprint);
        }
    }
    QCOMPARE(FormulaDocument(reading.records), FormulaDocument(records));
}

void tst_FormulaFile::FaultsAreTold_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("fault");
    QTest::newRow("empty") << QByteArray() << "";
    QTest::newRow("no XML") << QByteArray("hello") << "";
    QTest::newRow("cut off") << Formula(Good()).left(60) << "";
    QTest::newRow("other root") << QByteArray("<qm-config/>") << "no element \"qm-derived\"";
    QTest::newRow("inner root") << QByteArray("<a>" + Formula(Good()) + "</a>") << "no element";
    QTest::newRow("entities") << QByteArray("<!DOCTYPE a [<!ENTITY b 'c'>]>" + Formula(Good()))
                              << "declares entities";
    QTest::newRow("operation")
        << Formula("layer='B' operation='sharpen' fingerprint='0123456789abcdef'")
        << "no operation \"sharpen\"";
    QTest::newRow("no operation") << Formula("layer='B' fingerprint='0123456789abcdef'")
                                  << "no operation \"\"";
    QTest::newRow("metres") << Formula(Good() + " metres='-1'") << "\"-1\" is no radius";
    QTest::newRow("many metres") << Formula(Good() + " metres='99999999999'") << "is no radius";
    QTest::newRow("no number") << Formula(Good() + " metres='far'") << "\"far\" is no radius";
    QTest::newRow("fingerprint") << Formula("layer='B' operation='complement' fingerprint='12'")
                                 << "\"12\" is no fingerprint";
    QTest::newRow("operand's fingerprint")
        << Formula(Good(), "<operand name='A' fingerprint='-123456789abcdef'/>")
        << "no fingerprint";
    QTest::newRow("name") << Formula(Good(), "<operand name='" + QByteArray(1001, 'A') +
                                                 "' fingerprint='0123456789abcdef'/>")
                          << "a name is too long";
    QTest::newRow("no operand") << Formula(Good(), "") << "0 operands instead of 1";
    QTest::newRow("operands")
        << Formula(Good(),
                   QByteArray("<operand name='A' fingerprint='0123456789abcdef'/>").repeated(3))
        << "3 operands instead of 1";
    QTest::newRow("twice") << QByteArray("<qm-derived>" +
                                         QByteArray("<formula " + Good() +
                                                    "><operand name='A' "
                                                    "fingerprint='0123456789abcdef'/></formula>")
                                             .repeated(2) +
                                         "</qm-derived>")
                           << "layer 'B' has two formulas";
}

void tst_FormulaFile::FaultsAreTold()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, fault);
    const FormulaReading reading = ReadFormulas(document);

    QVERIFY(reading.records.empty());
    QVERIFY2(reading.fault.startsWith(QLatin1String("line ")) && reading.fault.contains(fault),
             qPrintable(reading.fault));
    QVERIFY(!reading.fault.contains(QLatin1Char('\n')));
}

void tst_FormulaFile::IsFoundWithinAnotherDocument()
{
    const QByteArray inner = "<qm-config><layers/>" + Formula(Good()) + "</qm-config>";

    QCOMPARE(ReadFormulas(inner, false).records.size(), std::size_t(1));
    const FormulaReading none = ReadFormulas("<qm-config/>", false);
    QVERIFY(none.records.empty() && none.fault.isEmpty());
}

void tst_FormulaFile::AFileThatIsMissingHasNoFault()
{
    const QTemporaryDir folder;
    const FormulaReading reading = ReadFormulaFile(folder.filePath(QStringLiteral("none.xml")));
    QVERIFY(reading.records.empty() && reading.fault.isEmpty());
}

void tst_FormulaFile::WhatCannotBeReadHasAFault()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.derived.xml"));
    QDir().mkpath(path);
    QVERIFY(!ReadFormulaFile(path).fault.isEmpty());

    QDir().rmdir(path);
    WriteBytes(path, FormulaDocument(SomeRecords()));
    QCOMPARE(ReadFormulaFile(path).records.size(), SomeRecords().size());
    WriteBytes(path, QByteArray((16 << 20) + 1, ' '));
    QCOMPARE(ReadFormulaFile(path).fault, QStringLiteral("it is too large"));
}

QTEST_GUILESS_MAIN(tst_FormulaFile)
#include "tst_FormulaFile.moc"
