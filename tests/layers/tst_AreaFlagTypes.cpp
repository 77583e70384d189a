#include "layers/AreaFlagTypes.h"

#include "tests/support/Files.h"
#include "tests/support/LogSpy.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <QtTest>

class tst_AreaFlagTypes : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void NamesAreReadInOrderWhereverTheyStand_data();
    void NamesAreReadInOrderWhereverTheyStand();
    void ReadingReplacesTheTypes();
    void ReadingStopsAtTheEndOfAreas();
    void AReaderAtItsEndEmptiesTheTypes();
    void AMalformedElementKeepsWhatCameBefore();

    void ADefinitionFileIsReadWhateverItsRoot_data();
    void ADefinitionFileIsReadWhateverItsRoot();
    void ADefinitionFileIsReadBehindAreasToo();
    void AMissingFileLeavesTheTypes();
    void AMalformedFileKeepsTheTypesBeforeTheFault_data();
    void AMalformedFileKeepsTheTypesBeforeTheFault();

    void TheElementIsWrittenAlsoWithoutTypes();
    void TheElementListsUsagesThenValues();
    void WhatIsWrittenIsReadBackTheSame();
    void AMapHolds32TypesOfAKind_data();
    void AMapHolds32TypesOfAKind();

private:
    QString File() const { return m_folder->filePath("types.xml"); }

    std::unique_ptr<QTemporaryDir> m_folder;
    LogSpy m_log;
};

namespace {

using Names = QVector<QString>;

const AreaFlagTypes Former = {{"former"}, {"old", "older"}};

QString Written(const AreaFlagTypes& types)
{
    QString text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    types.WriteXml(xml);
    return text.trimmed();
}

} // namespace

void tst_AreaFlagTypes::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_log.Take();
}

void tst_AreaFlagTypes::NamesAreReadInOrderWhereverTheyStand_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<Names>("usages");
    QTest::addColumn<Names>("values");
    QTest::newRow("empty") << "" << Names() << Names();
    QTest::newRow("empty groups") << "<usages/><values/>" << Names() << Names();
    QTest::newRow("grouped") << "<usages><usage name='Coast'/><usage name='Town'/></usages>"
                                "<values><value name='Tier1'/></values>"
                             << Names{"Coast", "Town"} << Names{"Tier1"};
    QTest::newRow("not grouped") << "<value name='a'/><usage name='b'/><value name='c'/>"
                                 << Names{"b"} << Names{"a", "c"};
    QTest::newRow("in the wrong group")
        << "<values><usage name='a'/></values>" << Names{"a"} << Names();
    QTest::newRow("nested") << "<usage name='a'><usage name='b'/></usage>" << Names{"a", "b"}
                            << Names();
    QTest::newRow("other elements")
        << "<x><usage name='a'/></x><Usage name='b'/><usages name='c'/>" << Names{"a"} << Names();
    QTest::newRow("without a name")
        << "<usage/><usage name=''/><value Name='x'/>" << Names{"", ""} << Names{""};
    QTest::newRow("duplicates") << "<usage name='a'/><usage name='a'/>" << Names{"a", "a"}
                                << Names();
    QTest::newRow("as they stand")
        << "<usage name=' a/b  &lt;c> '/>" << Names{" a/b  <c> "} << Names();
}

void tst_AreaFlagTypes::NamesAreReadInOrderWhereverTheyStand()
{
    QFETCH(QString, content);
    QFETCH(Names, usages);
    QFETCH(Names, values);
    QXmlStreamReader xml("<areas>" + content + "</areas>");
    xml.readNextStartElement();
    AreaFlagTypes types;
    QVERIFY(types.ReadXml(xml));
    QCOMPARE(types.usages, usages);
    QCOMPARE(types.values, values);
}

void tst_AreaFlagTypes::ReadingReplacesTheTypes()
{
    AreaFlagTypes types = Former;
    QXmlStreamReader xml("<areas><usage name='new'/></areas>");
    xml.readNextStartElement();
    QVERIFY(types.ReadXml(xml));
    QCOMPARE(types.usages, Names{"new"});
    QCOMPARE(types.values, Names());
}

void tst_AreaFlagTypes::ReadingStopsAtTheEndOfAreas()
{
    QXmlStreamReader xml("<root><areas><usage name='a'/></areas><usage name='b'/></root>");
    xml.readNextStartElement();
    xml.readNextStartElement();
    AreaFlagTypes types;
    QVERIFY(types.ReadXml(xml));
    QCOMPARE(types.usages, Names{"a"});
    QVERIFY(xml.isEndElement());
    QCOMPARE(xml.name().toString(), QStringLiteral("areas"));
}

void tst_AreaFlagTypes::AReaderAtItsEndEmptiesTheTypes()
{
    QXmlStreamReader whole("<areas/>");
    while (!whole.atEnd()) {
        whole.readNext();
    }
    AreaFlagTypes types = Former;
    QVERIFY(types.ReadXml(whole));
    QCOMPARE(types.usages, Names());
    QCOMPARE(types.values, Names());

    QXmlStreamReader broken("<areas");
    while (!broken.atEnd()) {
        broken.readNext();
    }
    types = Former;
    QVERIFY(!types.ReadXml(broken));
    QCOMPARE(types.usages, Names());
    QCOMPARE(types.values, Names());
}

void tst_AreaFlagTypes::AMalformedElementKeepsWhatCameBefore()
{
    QXmlStreamReader xml("<areas><usage name='a'/><value name='b'/></oops>");
    xml.readNextStartElement();
    AreaFlagTypes types = Former;
    QVERIFY(!types.ReadXml(xml));
    QCOMPARE(types.usages, Names{"a"});
    QCOMPARE(types.values, Names{"b"});
    QCOMPARE(m_log.Messages(), QStringList());
}

void tst_AreaFlagTypes::ADefinitionFileIsReadWhateverItsRoot_data()
{
    QTest::addColumn<QByteArray>("root");
    QTest::newRow("areas") << QByteArray("areas");
    QTest::newRow("lists") << QByteArray("lists");
    QTest::newRow("usages") << QByteArray("usages");
}

void tst_AreaFlagTypes::ADefinitionFileIsReadWhateverItsRoot()
{
    QFETCH(QByteArray, root);
    WriteBytes(File(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<" + root +
                           ">\r\n<usage name=\"Küste\"/><group><value name=\"a\"/></group></" +
                           root + ">\r\n");
    AreaFlagTypes types = Former;
    QVERIFY(types.ReadFile(File()));
    QCOMPARE(types.usages, Names{"Küste"});
    QCOMPARE(types.values, Names{"a"});
    QCOMPARE(m_log.Messages(), QStringList());
}

void tst_AreaFlagTypes::ADefinitionFileIsReadBehindAreasToo()
{
    WriteBytes(File(), "<r><areas><usage name='a'/></areas><usage name='b'/></r>");
    AreaFlagTypes types;
    QVERIFY(types.ReadFile(File()));
    QCOMPARE(types.usages, (Names{"a", "b"}));
}

void tst_AreaFlagTypes::AMissingFileLeavesTheTypes()
{
    AreaFlagTypes types = Former;
    for (const QString& path : {m_folder->filePath("missing.xml"), m_folder->path(), QString()}) {
        QVERIFY(!types.ReadFile(path));
        QCOMPARE(m_log.Take(), QStringList{"Error: Failed to open area types file for reading."});
        QCOMPARE(types.usages, Former.usages);
        QCOMPARE(types.values, Former.values);
    }
}

void tst_AreaFlagTypes::AMalformedFileKeepsTheTypesBeforeTheFault_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<Names>("usages");
    QTest::newRow("empty") << QByteArray() << Names();
    QTest::newRow("no XML") << QByteArray("usage=a") << Names();
    QTest::newRow("cut off") << QByteArray("<areas><usage name='a'/><usage na") << Names{"a"};
    QTest::newRow("wrong end") << QByteArray("<areas><usage name='a'/></other>") << Names{"a"};
    QTest::newRow("unknown entity")
        << QByteArray("<areas><usage name='a'/><usage name='&b;'/></areas>") << Names{"a"};
    QTest::newRow("no UTF-8") << QByteArray("<areas><usage name='a'/>\n<usage name='\xff\xfe'/>")
                              << Names();
}

void tst_AreaFlagTypes::AMalformedFileKeepsTheTypesBeforeTheFault()
{
    QFETCH(QByteArray, file);
    QFETCH(Names, usages);
    WriteBytes(File(), file);
    QXmlStreamReader reader(file);
    while (!reader.atEnd()) {
        reader.readNext();
    }
    AreaFlagTypes types = Former;
    QVERIFY(!types.ReadFile(File()));
    QCOMPARE(types.usages, usages);
    QCOMPARE(types.values, Names());
    const QString message = "Error: XML parse error '%1' in area types definition file.";
    QCOMPARE(m_log.Messages(), QStringList{message.arg(reader.errorString())});
}

void tst_AreaFlagTypes::TheElementIsWrittenAlsoWithoutTypes()
{
    QCOMPARE(Written({}), QString("<areas>\n    <usages/>\n    <values/>\n</areas>"));
}

void tst_AreaFlagTypes::TheElementListsUsagesThenValues()
{
    QCOMPARE(Written({{"Coast", "<Town>"}, {"", "Tier2"}}),
             QString("<areas>\n"
                     "    <usages>\n"
                     "        <usage name=\"Coast\"/>\n"
                     "        <usage name=\"&lt;Town&gt;\"/>\n"
                     "    </usages>\n"
                     "    <values>\n"
                     "        <value name=\"\"/>\n"
                     "        <value name=\"Tier2\"/>\n"
                     "    </values>\n"
                     "</areas>"));
}

void tst_AreaFlagTypes::WhatIsWrittenIsReadBackTheSame()
{
    AreaFlagTypes types = {{"a", "a", "", " b & \"c\" "}, {}};
    for (int i = 0; i < 40; ++i) {
        types.values.append(QString::number(i));
    }
    QXmlStreamReader xml(Written(types));
    xml.readNextStartElement();
    AreaFlagTypes read;
    QVERIFY(read.ReadXml(xml));
    QCOMPARE(read.usages, types.usages);
    QCOMPARE(read.values, types.values);
}

void tst_AreaFlagTypes::AMapHolds32TypesOfAKind_data()
{
    QTest::addColumn<int>("usageCount");
    QTest::addColumn<int>("valueCount");
    QTest::addColumn<bool>("doFit");
    QTest::newRow("none") << 0 << 0 << true;
    QTest::newRow("32 of each") << 32 << 32 << true;
    QTest::newRow("33 usages") << 33 << 0 << false;
    QTest::newRow("33 values") << 0 << 33 << false;
}

void tst_AreaFlagTypes::AMapHolds32TypesOfAKind()
{
    QFETCH(int, usageCount);
    QFETCH(int, valueCount);
    QFETCH(bool, doFit);
    const AreaFlagTypes types = {Names(usageCount), Names(valueCount)};
    QCOMPARE(types.FitMap(), doFit);
}

QTEST_GUILESS_MAIN(tst_AreaFlagTypes)

#include "tst_AreaFlagTypes.moc"
