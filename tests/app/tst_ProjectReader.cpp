#include "app/ProjectReader.h"

#include "app/ProjectSettings.h"
#include "app/Xml.h"
#include "tests/support/ProjectFixture.h"

#include <QBuffer>
#include <QTest>

#include <memory>

namespace {

const char Settings[] = R"(<global><layer size="8"/><world size="80"/></global>
                           <areas><usages><usage name="Town"/></usages></areas>)";
const char Selected[] = R"(<selected row="3"/>)";
const char Brush[] = R"(<brush/>)";
const char Layers[] = R"(<layers><layer name="a"/></layers>)";
const char Types[] = R"(<territory-type-list></territory-type-list>)";

/// Reads a document and records the calls of the handlers.
class Reading
{
public:
    explicit Reading(const QByteArray& document)
    {
        m_buffer.setData(document);
        m_buffer.open(QIODevice::ReadOnly);
        reader = std::make_unique<ProjectReader>(m_buffer);
        handlers = {[this](QXmlStreamReader&) { Note("brush"); },
                    [this](QXmlStreamReader& xml) {
                        Note("layers");
                        WalkXml(xml, {}, QLatin1String("layers"));
                        return !xml.hasError();
                    },
                    [this](QXmlStreamReader& xml) {
                        Note("types");
                        WalkXml(xml, {}, QLatin1String("territory-type-list"));
                        return !xml.hasError();
                    }};
    }

    bool Read() { return reader->Read(handlers); }

    ProjectFixture project;
    std::unique_ptr<ProjectReader> reader;
    ProjectReader::Handlers handlers;
    /// Each call with the layer size at that time.
    QStringList events;

private:
    void Note(const QString& event)
    {
        events.append(QString("%1 %2").arg(event).arg(ProjectSettings::Instance().LayerWidth()));
    }

    QBuffer m_buffer;
};

QByteArray Below(const QByteArray& root, std::initializer_list<const char*> elements)
{
    QByteArray document = "<" + root + ">";
    for (const char* element : elements) {
        document += element;
    }
    return document + "</" + root + ">";
}

} // namespace

class tst_ProjectReader : public QObject
{
    Q_OBJECT

private slots:
    void HandsElementsOn_data();
    void HandsElementsOn();
    void LeavesStrayElementsToTheirReaders_data();
    void LeavesStrayElementsToTheirReaders();
    void TakesNoSettingsFromTheSelection();
    void EndsWithAFailedHandler_data();
    void EndsWithAFailedHandler();
    void TakesMalformedDocumentsAsFarAsTheyGo_data();
    void TakesMalformedDocumentsAsFarAsTheyGo();
    void Stops();
};

void tst_ProjectReader::HandsElementsOn_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<int>("row");

    const QStringList all = {"brush 8", "layers 8", "types 8"};
    QTest::newRow("as written") << Below("qm-config", {Selected, Settings, Brush, Layers, Types})
                                << all << 3;
    QTest::newRow("settings last")
        << Below("qm-config", {Brush, Layers, Types, Selected, Settings}) << all << 3;
    QTest::newRow("another order") << Below("qm-config", {Types, Settings, Layers, Brush})
                                   << QStringList{"types 8", "layers 8", "brush 8"} << -1;
    QTest::newRow("another root, deeper")
        << Below("x", {"<y>", Settings, Brush, Layers, Types, "</y>"}) << all << -1;
    QTest::newRow("unknown elements")
        << Below("qm-config", {"<z/>", Settings, "<z><q/></z>", Layers}) << QStringList{"layers 8"}
        << -1;
    QTest::newRow("nothing") << Below("qm-config", {}) << QStringList() << -1;
}

void tst_ProjectReader::HandsElementsOn()
{
    QFETCH(QByteArray, document);
    Reading reading(document);

    QVERIFY(reading.Read());

    QTEST(reading.events, "events");
    QTEST(reading.reader->SelectedRow(), "row");
    // Read once only.
    QCOMPARE(ProjectSettings::Instance().FlagTypes().usages.size(),
             document.contains("Town") ? 1 : 0);
}

void tst_ProjectReader::LeavesStrayElementsToTheirReaders_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::addColumn<QString>("event");

    QTest::newRow("global") << QByteArray("global") << QString();
    QTest::newRow("areas") << QByteArray("areas") << QString();
    QTest::newRow("brush") << QByteArray("brush") << "brush 8";
    QTest::newRow("layers") << QByteArray("layers") << "layers 8";
    QTest::newRow("territory-type-list") << QByteArray("territory-type-list") << "types 8";
}

void tst_ProjectReader::LeavesStrayElementsToTheirReaders()
{
    QFETCH(QByteArray, element);
    QFETCH(QString, event);
    const QByteArray settings = "<global><layer size='8'/></global>"
                                "<areas><usages><usage name='Town'/></usages></areas>";
    QByteArray strays = "<selected row='1'/><global><layer size='9'/></global>"
                        "<areas><values><value name='Rich'/></values></areas>"
                        "<brush/><layers/><territory-type-list/>";
    // The end tag of a stray element of the same name would end the outer one.
    strays.replace("<" + element + "/>", "");
    if (element == "global" || element == "areas") {
        strays = "<selected row='1'/><brush/><layers/><territory-type-list/>";
    }
    const QByteArray holder = "<" + element + ">" + strays + "</" + element + ">";
    // Settings that are read in a holder would replace those before it.
    Reading reading(
        "<p>" +
        (element == "global" || element == "areas" ? holder + settings : settings + holder) +
        "</p>");

    QVERIFY(reading.Read());

    QCOMPARE(reading.events, event.isEmpty() ? QStringList() : QStringList{event});
    QCOMPARE(reading.reader->SelectedRow(), -1);
    QCOMPARE(ProjectSettings::Instance().LayerSize(), QSize(8, 8));
    QCOMPARE(ProjectSettings::Instance().FlagTypes().usages, QVector<QString>{"Town"});
    QCOMPARE(ProjectSettings::Instance().FlagTypes().values, QVector<QString>{});
}

void tst_ProjectReader::TakesNoSettingsFromTheSelection()
{
    Reading reading("<p><selected row='1'><global><layer size='9'/></global>"
                    "<areas><values><value name='Rich'/></values></areas></selected>"
                    "<global><layer size='8'/></global></p>");

    QVERIFY(reading.Read());

    QCOMPARE(reading.reader->SelectedRow(), 1);
    QCOMPARE(ProjectSettings::Instance().LayerSize(), QSize(8, 8));
    QCOMPARE(ProjectSettings::Instance().FlagTypes().values, QVector<QString>{});
}

void tst_ProjectReader::EndsWithAFailedHandler_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QStringList>("events");

    QTest::newRow("layers") << QByteArray("<p><layers><layer></p>") << QStringList{"layers 16"};
    QTest::newRow("types") << QByteArray("<p><territory-type-list><a></p>")
                           << QStringList{"types 16"};
    QTest::newRow("the first one ends it")
        << QByteArray("<p><layers><") << QStringList{"layers 16"};
}

void tst_ProjectReader::EndsWithAFailedHandler()
{
    QFETCH(QByteArray, document);
    Reading reading(document);

    QVERIFY(!reading.Read());

    QTEST(reading.events, "events");
}

void tst_ProjectReader::TakesMalformedDocumentsAsFarAsTheyGo_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QStringList>("events");

    QTest::newRow("empty") << QByteArray() << QStringList();
    QTest::newRow("no XML") << QByteArray("no XML") << QStringList();
    QTest::newRow("cut off behind the layers")
        << QByteArray("<p>") + Layers + "<" << QStringList{"layers 16"};
    QTest::newRow("wrong end tag")
        << QByteArray("<p>") + Brush + "</q>" + Layers << QStringList{"brush 16"};
}

void tst_ProjectReader::TakesMalformedDocumentsAsFarAsTheyGo()
{
    QFETCH(QByteArray, document);
    Reading reading(document);

    QVERIFY(reading.Read());

    QTEST(reading.events, "events");
}

void tst_ProjectReader::Stops()
{
    Reading reading(Below("qm-config", {Layers, Types}));
    reading.handlers.layers = [&](QXmlStreamReader& xml) {
        reading.reader->Stop();
        WalkXml(xml, {}, QLatin1String("layers"));
        return !xml.hasError();
    };

    QVERIFY(!reading.Read());

    QCOMPARE(reading.events, QStringList());
}

QTEST_MAIN(tst_ProjectReader)
#include "tst_ProjectReader.moc"
