#include "app/Xml.h"

#include <QXmlStreamReader>
#include <QtTest>

#include <limits>

class tst_Xml : public QObject
{
    Q_OBJECT

private slots:
    void ElementsGoToTheirHandlersAndOthersArePassedOver();
    void TheWalkStopsAtTheNamedEndElement();
    void WithoutAnEndElementTheWholeDocumentIsRead();
    void TheWalkEndsWithTheDocumentWhenTheEndElementNeverComes();
    void AReaderAtItsEndIsLeftAlone();
    void AHandlerCanStopTheWalk();
    void TheEndElementThatStopsTheWalkIsHandedOnFirst();
    void NamesAreCaseSensitive();
    void TextAttributesAreTakenAsTheyStand_data();
    void TextAttributesAreTakenAsTheyStand();
    void IntAttributesHaveADefaultWhenAbsentOrEmpty_data();
    void IntAttributesHaveADefaultWhenAbsentOrEmpty();
    void UintAttributesHaveADefaultWhenAbsentOrEmpty_data();
    void UintAttributesHaveADefaultWhenAbsentOrEmpty();
    void FloatAttributesHaveADefaultWhenAbsentOrEmpty_data();
    void FloatAttributesHaveADefaultWhenAbsentOrEmpty();
    void BitsMayBeWrittenSignedOrUnsigned_data();
    void BitsMayBeWrittenSignedOrUnsigned();
};

namespace {

/// Walks a document and notes which handlers are called.
class Walk
{
public:
    explicit Walk(const char* document)
        : m_xml(QByteArray(document))
    {
    }

    bool Run(QLatin1String until = {})
    {
        const XmlHandlers handlers = {
            {QLatin1String("item"),
             [this](QXmlStreamReader& xml) {
                 Note(QStringLiteral("item ") + TextAttribute(xml, QLatin1String("n")));
                 return true;
             },
             [this] { Note(QStringLiteral("/item")); }},
            {QLatin1String("group"), {}, [this] { Note(QStringLiteral("/group")); }},
            {QLatin1String("stop"), [](QXmlStreamReader&) { return false; }},
        };
        return WalkXml(m_xml, handlers, until);
    }

    QXmlStreamReader& Xml() { return m_xml; }
    const QStringList& Calls() const { return m_calls; }

private:
    void Note(const QString& call) { m_calls.append(call); }

    QXmlStreamReader m_xml;
    QStringList m_calls;
};

/// A reader on the start tag of <e text>.
class Element : public QXmlStreamReader
{
public:
    explicit Element(const QString& attributes)
        : QXmlStreamReader(QStringLiteral("<e %1/>").arg(attributes))
    {
        readNextStartElement();
    }
};

} // namespace

void tst_Xml::ElementsGoToTheirHandlersAndOthersArePassedOver()
{
    Walk walk("<root><item n='1'/><other><item n='2'><item n='3'/></item></other>text</root>");
    QVERIFY(walk.Run());
    QCOMPARE(walk.Calls(), (QStringList{"item 1", "/item", "item 2", "item 3", "/item", "/item"}));
}

void tst_Xml::TheWalkStopsAtTheNamedEndElement()
{
    Walk walk("<root><group><item n='1'/></group><item n='2'/></root>");
    QVERIFY(walk.Run(QLatin1String("group")));
    QCOMPARE(walk.Calls(), (QStringList{"item 1", "/item", "/group"}));
    QVERIFY(walk.Xml().isEndElement());
    QVERIFY(walk.Xml().readNextStartElement());
    QCOMPARE(TextAttribute(walk.Xml(), QLatin1String("n")), QStringLiteral("2"));
}

void tst_Xml::WithoutAnEndElementTheWholeDocumentIsRead()
{
    Walk walk("<root><group><item n='1'/></group><item n='2'/></root>");
    QVERIFY(walk.Run());
    QCOMPARE(walk.Calls(), (QStringList{"item 1", "/item", "/group", "item 2", "/item"}));
    QVERIFY(walk.Xml().atEnd());
    QVERIFY(!walk.Xml().hasError());
}

void tst_Xml::TheWalkEndsWithTheDocumentWhenTheEndElementNeverComes()
{
    Walk walk("<root><group><item n='1'/>");
    QVERIFY(walk.Run(QLatin1String("group")));
    QCOMPARE(walk.Calls(), (QStringList{"item 1", "/item"}));
    QVERIFY(walk.Xml().hasError());
}

void tst_Xml::AReaderAtItsEndIsLeftAlone()
{
    Walk walk("<root/>");
    QVERIFY(walk.Run());
    QVERIFY(walk.Xml().atEnd());
    QVERIFY(walk.Run());
    QVERIFY(walk.Calls().isEmpty());
}

void tst_Xml::AHandlerCanStopTheWalk()
{
    Walk walk("<root><item n='1'/><stop/><item n='2'/></root>");
    QVERIFY(!walk.Run());
    QCOMPARE(walk.Calls(), (QStringList{"item 1", "/item"}));
    QCOMPARE(walk.Xml().name().toString(), QStringLiteral("stop"));
}

void tst_Xml::TheEndElementThatStopsTheWalkIsHandedOnFirst()
{
    Walk walk("<root><item n='1'/><item n='2'/></root>");
    QVERIFY(walk.Run(QLatin1String("item")));
    QCOMPARE(walk.Calls(), (QStringList{"item 1", "/item"}));
}

void tst_Xml::NamesAreCaseSensitive()
{
    Walk walk("<root><Item n='1'/></root>");
    QVERIFY(walk.Run());
    QVERIFY(walk.Calls().isEmpty());
}

void tst_Xml::TextAttributesAreTakenAsTheyStand_data()
{
    QTest::addColumn<QString>("attributes");
    QTest::addColumn<QString>("text");
    QTest::newRow("absent") << ""
                            << "";
    QTest::newRow("of another name") << "A='x'"
                                     << "";
    QTest::newRow("empty") << "a=''"
                           << "";
    QTest::newRow("blanks") << "a='  x '"
                            << "  x ";
    QTest::newRow("entities") << "a='&lt;&amp;&quot;'"
                              << "<&\"";
}

void tst_Xml::TextAttributesAreTakenAsTheyStand()
{
    QFETCH(QString, attributes);
    QFETCH(QString, text);
    QCOMPARE(TextAttribute(Element(attributes), QLatin1String("a")), text);
}

void tst_Xml::IntAttributesHaveADefaultWhenAbsentOrEmpty_data()
{
    QTest::addColumn<QString>("attributes");
    QTest::addColumn<int>("number");
    QTest::newRow("absent") << "" << 2048;
    QTest::newRow("empty") << "a=''" << 2048;
    QTest::newRow("number") << "a='17'" << 17;
    QTest::newRow("negative") << "a='-17'" << -17;
    QTest::newRow("zero") << "a='0'" << 0;
    QTest::newRow("no number") << "a='x'" << 0;
    QTest::newRow("fraction") << "a='1.5'" << 0;
    QTest::newRow("largest") << "a='2147483647'" << 2147483647;
    QTest::newRow("too large") << "a='2147483648'" << 0;
}

void tst_Xml::IntAttributesHaveADefaultWhenAbsentOrEmpty()
{
    QFETCH(QString, attributes);
    QFETCH(int, number);
    QCOMPARE(IntAttribute(Element(attributes), QLatin1String("a"), 2048), number);
}

void tst_Xml::UintAttributesHaveADefaultWhenAbsentOrEmpty_data()
{
    QTest::addColumn<QString>("attributes");
    QTest::addColumn<quint32>("number");
    QTest::newRow("absent") << "" << 2U;
    QTest::newRow("empty") << "a=''" << 2U;
    QTest::newRow("opaque black") << "a='4278190080'" << 0xFF000000U;
    QTest::newRow("largest") << "a='4294967295'" << 0xFFFFFFFFU;
    QTest::newRow("too large") << "a='4294967296'" << 0U;
    QTest::newRow("negative") << "a='-1'" << 0U;
    QTest::newRow("no number") << "a='white'" << 0U;
}

void tst_Xml::UintAttributesHaveADefaultWhenAbsentOrEmpty()
{
    QFETCH(QString, attributes);
    QFETCH(quint32, number);
    QCOMPARE(UIntAttribute(Element(attributes), QLatin1String("a"), 2), number);
}

void tst_Xml::FloatAttributesHaveADefaultWhenAbsentOrEmpty_data()
{
    QTest::addColumn<QString>("attributes");
    QTest::addColumn<float>("number");
    QTest::newRow("absent") << "" << 50.5F;
    QTest::newRow("empty") << "a=''" << 50.5F;
    QTest::newRow("fraction") << "a='-12.25'" << -12.25F;
    QTest::newRow("exponent") << "a='1e3'" << 1000.0F;
    QTest::newRow("comma") << "a='1,5'" << 0.0F;
    QTest::newRow("no number") << "a='far'" << 0.0F;
    QTest::newRow("infinite") << "a='inf'" << std::numeric_limits<float>::infinity();
}

void tst_Xml::FloatAttributesHaveADefaultWhenAbsentOrEmpty()
{
    QFETCH(QString, attributes);
    QFETCH(float, number);
    QCOMPARE(FloatAttribute(Element(attributes), QLatin1String("a"), 50.5F), number);
}

void tst_Xml::BitsMayBeWrittenSignedOrUnsigned_data()
{
    QTest::addColumn<QString>("attributes");
    QTest::addColumn<quint32>("bits");
    QTest::newRow("absent") << "" << 0U;
    QTest::newRow("empty") << "a=''" << 0U;
    QTest::newRow("some bits") << "a='5'" << 5U;
    QTest::newRow("32nd bit unsigned") << "a='2147483648'" << 0x80000000U;
    QTest::newRow("32nd bit signed") << "a='-2147483648'" << 0x80000000U;
    QTest::newRow("all bits unsigned") << "a='4294967295'" << 0xFFFFFFFFU;
    QTest::newRow("all bits signed") << "a='-1'" << 0xFFFFFFFFU;
    QTest::newRow("above the range") << "a='4294967296'" << 0U;
    QTest::newRow("below the range") << "a='-2147483649'" << 0U;
    QTest::newRow("above 64 bits") << "a='99999999999999999999'" << 0U;
    QTest::newRow("no number") << "a='0x10'" << 0U;
}

void tst_Xml::BitsMayBeWrittenSignedOrUnsigned()
{
    QFETCH(QString, attributes);
    QFETCH(quint32, bits);
    QCOMPARE(BitsAttribute(Element(attributes), QLatin1String("a")), bits);
}

QTEST_GUILESS_MAIN(tst_Xml)

#include "tst_Xml.moc"
