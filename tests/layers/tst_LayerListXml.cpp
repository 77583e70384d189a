#include "layers/LayerList.h"

#include "layers/Layer.h"
#include "layers/raster/Mask.h"

#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/LayerLists.h"
#include "tests/support/LiteralTarga.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/ProjectFixture.h"

#include <QStandardItemModel>
#include <QXmlStreamReader>
#include <QtTest>

class tst_LayerListXml : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AnEmptyListWritesNothing();
    void LayersAreWrittenInRowOrder();
    void WhatIsWrittenIsReadBackTheSame_data();
    void WhatIsWrittenIsReadBackTheSame();
    void LayersOfOneNameAreRenamedForSaving();
    void NamesThatAreNoFileNamesAreReplacedForSaving();
    void AFullDiskIsAnErrorAndTheElementsAreWritten();
    void AListThatIsClearedWhileItIsSavedEndsThere();

    void AttributesHaveDefaults_data();
    void AttributesHaveDefaults();
    void ABatchRunLeavesTheColourWhite();
    void LoadingIsAnnouncedWithTheName();
    void AMissingBitmapDropsTheLayerSilently();
    void ABitmapOfAnotherSizeDropsTheLayer();
    void LayersOfOneNameReadTheSameBitmap();
    void BitmapsOutsideTheProjectAreNotRead_data();
    void BitmapsOutsideTheProjectAreNotRead();
    void MalformedListsAreReadUpToTheFault_data();
    void MalformedListsAreReadUpToTheFault();
    void ReadingStopsAtTheEndOfTheList();
    void ReadingAtTheEndOfTheDocumentDoesNothing();
    void NestedLayersAreReadOnce();
    void ReadingAppendsToTheList();
    void AListThatIsClearedWhileItIsReadGoesOn();

private:
    std::unique_ptr<ProjectFixture> m_project;
    LogSpy m_log;
};

namespace {

/// Reads a document whose root is "layers".
bool Read(LayerList& layers, const QString& document)
{
    QXmlStreamReader xml(document);
    xml.readNextStartElement();
    return layers.ReadXml(xml);
}

} // namespace

void tst_LayerListXml::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(5, 2));
    for (const char* path : {"layers/coast.tga", "layers/town.tga"}) {
        WriteBytes(m_project->Path(path),
                   literal::WriteTarga(MaskFromArt({"##...", "..#.."}), true));
    }
    m_log.Take();
}

void tst_LayerListXml::cleanup()
{
    m_project.reset();
}

void tst_LayerListXml::AnEmptyListWritesNothing()
{
    LayerList layers;
    QCOMPARE(WrittenLayers(layers), QString());
    QCOMPARE(m_log.Messages(), QStringList());
}

void tst_LayerListXml::LayersAreWrittenInRowOrder()
{
    LayerList layers;
    AddLayer(layers, "town");
    AddLayer(layers, "coast");
    layers.model()->insertRow(0, layers.model()->takeRow(1));
    const QString element = "<layer usage_flags=\"1\" value_flags=\"2\" color=\"4294967295\" "
                            "visible=\"0\" name=\"%1\"/>";
    QCOMPARE(WrittenLayers(layers),
             "<!--Layers--><layers>" + element.arg("coast") + element.arg("town") + "</layers>");
    QCOMPARE(m_log.Messages(), (QStringList{"Success: Layer 'coast' successfully saved.",
                                            "Success: Layer 'town' successfully saved."}));
}

void tst_LayerListXml::WhatIsWrittenIsReadBackTheSame_data()
{
    QTest::addColumn<bool>("isGuiRunning");
    QTest::newRow("without a window") << false;
    QTest::newRow("with a window") << true;
}

void tst_LayerListXml::WhatIsWrittenIsReadBackTheSame()
{
    QFETCH(bool, isGuiRunning);
    const auto window = isGuiRunning ? std::make_unique<QWidget>() : nullptr;
    Random random;
    LayerList saved;
    for (const char* name : {"North 100%1", "Süd", "a & \"b\""}) {
        Layer* layer = AddLayer(saved, name);
        layer->SetImage(RandomMask(random, {5, 2}), QColor::fromRgba(random.Bits()));
        layer->SetUsageFlags(random.Bits());
        layer->SetValueFlags(random.Bits());
        layer->SetVisible(random.Below(2) == 0);
    }
    // Saving changes the name with the double quotes.
    const QString document = WrittenLayers(saved);
    LayerList read;
    QVERIFY(Read(read, document.mid(document.indexOf("<layers>"))));
    QCOMPARE(NamesOf(read), (QStringList{"North 100%1", "Süd", "a & _b_"}));
    for (int row = 0; row < 3; ++row) {
        const Layer* before = saved.LayerAt(row);
        const Layer* after = read.LayerAt(row);
        QCOMPARE(after->Image(), before->Image());
        QCOMPARE(after->UsageFlags(), before->UsageFlags());
        QCOMPARE(after->ValueFlags(), before->ValueFlags());
        QCOMPARE(after->IsVisible(), before->IsVisible());
        QCOMPARE(after->Color().rgba(), before->Color().rgba());
    }
    QCOMPARE(WrittenLayers(read), document);
}

void tst_LayerListXml::LayersOfOneNameAreRenamedForSaving()
{
    LayerList layers;
    AddLayer(layers, "coast", {"#....", "....."});
    AddLayer(layers, "coast", {".#...", "....."});
    AddLayer(layers, "coast (2)", {"..#..", "....."});
    AddLayer(layers, "coast", {"...#.", "....."});
    WrittenLayers(layers);
    const QStringList names = {"coast", "coast (3)", "coast (2)", "coast (4)"};
    QCOMPARE(NamesOf(layers), names);
    const QString renamed = "Error: Layer 'coast' cannot be saved under this name, it was renamed "
                            "to '%1'.";
    QCOMPARE(m_log.Messages().mid(0, 2),
             (QStringList{renamed.arg("coast (3)"), renamed.arg("coast (4)")}));
    for (int row = 0; row < 4; ++row) {
        const QString path = m_project->Path("layers/" + names.at(row) + ".tga");
        QCOMPARE(ReadBytes(path), literal::WriteTarga(layers.LayerAt(row)->Image(), true));
    }
}

void tst_LayerListXml::NamesThatAreNoFileNamesAreReplacedForSaving()
{
    LayerList layers;
    for (const char* name : {"../coast", "", "  ", ".._coast", "a/b%1"}) {
        AddLayer(layers, name);
    }
    WrittenLayers(layers);
    QCOMPARE(NamesOf(layers),
             (QStringList{".._coast (2)", "Unnamed", "Unnamed (2)", ".._coast", "a_b%1"}));
    const QString renamed = "Error: Layer '%1' cannot be saved under this name, it was renamed to "
                            "'%2'.";
    QCOMPARE(m_log.Messages().mid(0, 4),
             (QStringList{renamed.arg("../coast", ".._coast (2)"), renamed.arg("", "Unnamed"),
                          renamed.arg("  ", "Unnamed (2)"), renamed.arg("a/b%1", "a_b%1")}));
    QVERIFY(!QFile::exists(m_project->Path("coast.tga")));
}

void tst_LayerListXml::AFullDiskIsAnErrorAndTheElementsAreWritten()
{
    LayerList layers;
    AddLayer(layers, "coast");
    AddLayer(layers, "town");
    QString text;
    {
        const FileSizeLimit limit(10);
        text = WrittenLayers(layers);
    }
    QCOMPARE(text.count("<layer "), 2);
    const QString message = "Error: The first attempt to write into file %1 failed.";
    QCOMPARE(m_log.Messages(), (QStringList{message.arg(m_project->Path("layers/coast.tga")),
                                            message.arg(m_project->Path("layers/town.tga"))}));
}

void tst_LayerListXml::AListThatIsClearedWhileItIsSavedEndsThere()
{
    // While a message is shown, the user can act and even close the project.
    LayerList layers;
    AddLayer(layers, "coast");
    AddLayer(layers, "town");
    const QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context, [&layers] { layers.Clear(); });
    const QString text = WrittenLayers(layers);
    QCOMPARE(text.count("<layer "), 1);
    QVERIFY(text.endsWith("</layers>"));
    QCOMPARE(m_log.Messages(), QStringList{"Success: Layer 'coast' successfully saved."});
}

void tst_LayerListXml::AttributesHaveDefaults_data()
{
    QTest::addColumn<QString>("attributes");
    QTest::addColumn<quint32>("usageFlags");
    QTest::addColumn<quint32>("valueFlags");
    QTest::addColumn<quint32>("color");
    QTest::addColumn<bool>("isVisible");
    QTest::newRow("all absent") << "" << 0U << 0U << 0xFFFFFFFFU << false;
    QTest::newRow("all empty") << "usage_flags='' value_flags='' color='' visible=''" << 0U << 0U
                               << 0xFFFFFFFFU << false;
    QTest::newRow("all given") << "usage_flags='5' value_flags='6' color='4294901760' visible='1'"
                               << 5U << 6U << 0xFFFF0000U << true;
    QTest::newRow("32nd flags") << "usage_flags='-2147483648' value_flags='4294967295'"
                                << 0x80000000U << 0xFFFFFFFFU << 0xFFFFFFFFU << false;
    QTest::newRow("malformed") << "usage_flags='x' value_flags='1.5' color='red' visible='yes'"
                               << 0U << 0U << 0U << false;
    QTest::newRow("visible 2, transparent")
        << "visible='2' color='255'" << 0U << 0U << 255U << true;
    QTest::newRow("visible 0") << "visible='0'" << 0U << 0U << 0xFFFFFFFFU << false;
    QTest::newRow("visible -1") << "visible='-1'" << 0U << 0U << 0xFFFFFFFFU << false;
}

void tst_LayerListXml::AttributesHaveDefaults()
{
    QFETCH(QString, attributes);
    const QWidget window;
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='coast' " + attributes + "/></layers>"));
    const Layer* layer = layers.LayerByName("coast");
    QVERIFY(layer);
    QTEST(layer->UsageFlags(), "usageFlags");
    QTEST(layer->ValueFlags(), "valueFlags");
    QTEST(quint32(layer->Color().rgba()), "color");
    QTEST(layer->IsVisible(), "isVisible");
    QCOMPARE(layer->List(), &layers);
    QCOMPARE(layer->Code(), QString());
    QCOMPARE(ArtFromMask(layer->Image()), (QStringList{"##...", "..#.."}));
}

void tst_LayerListXml::ABatchRunLeavesTheColourWhite()
{
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='coast' color='4294901760' visible='1'/></layers>"));
    QCOMPARE(layers.LayerAt(0)->Color().rgba(), 0xFFFFFFFFU);
    QVERIFY(layers.LayerAt(0)->IsVisible());
    QVERIFY(layers.LayerAt(0)->Pixmap().isNull());
}

void tst_LayerListXml::LoadingIsAnnouncedWithTheName()
{
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='coast'/><layer name='%1'/><layer/></layers>"));
    QCOMPARE(m_log.Messages(),
             (QStringList{"Info: Loading layer \"coast\"...", "Info: Loading layer \"%1\"...",
                          "Info: Loading layer \"\"..."}));
}

void tst_LayerListXml::AMissingBitmapDropsTheLayerSilently()
{
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='missing'/><layer name='town'/></layers>"));
    QCOMPARE(NamesOf(layers), QStringList{"town"});
    QCOMPARE(m_log.Messages(), (QStringList{"Info: Loading layer \"missing\"...",
                                            "Info: Loading layer \"town\"..."}));
}

void tst_LayerListXml::ABitmapOfAnotherSizeDropsTheLayer()
{
    ProjectSettings::Instance().SetSizes(2048, 2048, 15360, 15360);
    WriteBytes(m_project->Path("layers/small.tga"),
               literal::WriteTarga(raster::BlankMask({1024, 1024}), true));
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='small'/></layers>"));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(m_log.Messages(), (QStringList{"Info: Loading layer \"small\"...",
                                            "Error: TARGA : Wrong size of the image."}));
    // A mask that comes from elsewhere, too.
    QXmlStreamReader xml("<layers><layer name='a'/><layer name='b'/></layers>");
    xml.readNextStartElement();
    const auto masks = [](int number, const QString&) {
        return raster::BlankMask(number == 0 ? QSize(1024, 2048) : QSize(2048, 2048));
    };
    QVERIFY(layers.ReadXml(xml, masks));
    QCOMPARE(NamesOf(layers), QStringList{"b"});
}

void tst_LayerListXml::LayersOfOneNameReadTheSameBitmap()
{
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='coast'/><layer name='coast'/></layers>"));
    QCOMPARE(NamesOf(layers), (QStringList{"coast", "coast"}));
    QCOMPARE(layers.LayerAt(0)->Image(), layers.LayerAt(1)->Image());
    QVERIFY(layers.LayerAt(0)->Id() != layers.LayerAt(1)->Id());
}

void tst_LayerListXml::BitmapsOutsideTheProjectAreNotRead_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isRead");
    QTest::newRow("beside the project") << "../../outside/coast" << false;
    QTest::newRow("through a layer") << "coast/../../../outside/coast" << false;
    QTest::newRow("absolute") << "/coast" << true;
    QTest::newRow("up and back") << "../layers/coast" << false;
    QTest::newRow("up from where a link leads") << "linked/../secret" << false;
    QTest::newRow("in a folder of the project") << "north/coast" << true;
    QTest::newRow("in a linked folder") << "linked/coast" << true;
}

void tst_LayerListXml::BitmapsOutsideTheProjectAreNotRead()
{
    QFETCH(QString, name);
    QFETCH(bool, isRead);
    const QByteArray bitmap = ReadBytes(m_project->Path("layers/coast.tga"));
    WriteBytes(m_project->Path("outside/coast.tga"), bitmap);
    WriteBytes(m_project->Path("inner/layers/coast.tga"), bitmap);
    WriteBytes(m_project->Path("inner/layers/north/coast.tga"), bitmap);
    WriteBytes(m_project->Path("outside/linked/coast.tga"), bitmap);
    WriteBytes(m_project->Path("outside/secret.tga"), bitmap);
    QVERIFY(QFile::link(m_project->Path("outside/linked"), m_project->Path("inner/layers/linked")));
    ProjectSettings::Instance().SetDir(QDir(m_project->Path("inner")));
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='" + name + "'/></layers>"));
    QCOMPARE(NamesOf(layers), isRead ? QStringList{name} : QStringList());
    QStringList messages = {"Info: Loading layer \"" + name + "\"..."};
    if (!isRead) {
        messages += "Error: The bitmap of layer '" + name + "' lies outside the project.";
    }
    QCOMPARE(m_log.Messages(), messages);
}

void tst_LayerListXml::MalformedListsAreReadUpToTheFault_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("ends behind a layer") << "<layers><layer name='coast'/>" << QStringList{"coast"};
    QTest::newRow("ends inside a layer")
        << "<layers><layer name='coast'/><layer name='town'>" << QStringList{"coast"};
    QTest::newRow("ends inside a tag")
        << "<layers><layer name='coast'/><layer na" << QStringList{"coast"};
    QTest::newRow("wrong end") << "<layers><layer name='coast'></layers>" << QStringList();
}

void tst_LayerListXml::MalformedListsAreReadUpToTheFault()
{
    QFETCH(QString, document);
    QFETCH(QStringList, names);
    LayerList layers;
    QVERIFY(!Read(layers, document));
    QCOMPARE(NamesOf(layers), names);
}

void tst_LayerListXml::ReadingStopsAtTheEndOfTheList()
{
    QXmlStreamReader xml(
        "<r><layers><x><layer name='coast'/></x></layers><layer name='town'/></r>");
    xml.readNextStartElement();
    xml.readNextStartElement();
    LayerList layers;
    QVERIFY(layers.ReadXml(xml));
    QCOMPARE(NamesOf(layers), QStringList{"coast"});
    QVERIFY(xml.isEndElement());
    QCOMPARE(xml.name().toString(), QStringLiteral("layers"));
}

void tst_LayerListXml::ReadingAtTheEndOfTheDocumentDoesNothing()
{
    for (const bool isWhole : {true, false}) {
        QXmlStreamReader xml(QString(isWhole ? "<layers/>" : "<layers"));
        while (!xml.atEnd()) {
            xml.readNext();
        }
        LayerList layers;
        QCOMPARE(layers.ReadXml(xml), isWhole);
        QVERIFY(layers.IsEmpty());
    }
}

void tst_LayerListXml::NestedLayersAreReadOnce()
{
    // The inner layer replaces the outer one, and the outer end tag closes nothing.
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='coast'><layer name='town'/></layer>"
                         "<layer name='coast'><layer name='missing'/></layer></layers>"));
    QCOMPARE(NamesOf(layers), QStringList{"town"});
}

void tst_LayerListXml::ReadingAppendsToTheList()
{
    LayerList layers;
    AddLayer(layers, "former");
    QVERIFY(Read(layers, "<layers><layer name='coast'/></layers>"));
    QCOMPARE(NamesOf(layers), (QStringList{"former", "coast"}));
}

void tst_LayerListXml::AListThatIsClearedWhileItIsReadGoesOn()
{
    LayerList layers;
    AddLayer(layers, "former");
    const QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context, [&layers] { layers.Clear(); });
    QVERIFY(Read(layers, "<layers><layer name='coast'/><layer name='town'/></layers>"));
    QCOMPARE(NamesOf(layers), QStringList{"town"});
}

QTEST_MAIN(tst_LayerListXml)

#include "tst_LayerListXml.moc"
