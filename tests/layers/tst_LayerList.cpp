#include "layers/LayerList.h"

#include "layers/Layer.h"
#include "layers/raster/Mask.h"

#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/LiteralTarga.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/Models.h"
#include "tests/support/ProjectFixture.h"

#include <QAbstractItemModelTester>
#include <QPointer>
#include <QStandardItemModel>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <QtTest>

class LayerListTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void layersAreAppendedInOrder();
    void layersWithoutAnImageAreRefused();
    void aLayerInTheListIsNotAddedAgain();
    void layersOfOthersAreRefused();
    void removingALayerDestroysIt();
    void clearingDestroysAllLayers();
    void theListDestroysItsLayersAndThenItsModel();
    void layersAreFoundById();
    void theFirstLayerOfANameIsFound();
    void visibleLayersAreCollected();
    void hidingAllTellsNobody();
    void flagsAreResetOnAllLayers();
    void rowsThatAreNoLayersArePassedOver();
    void theUsersCheckMarkShowsAndHides_data();
    void theUsersCheckMarkShowsAndHides();
    void otherChangesTellNobody();
    void theModelStandsTheModelTest();

    void anEmptyListWritesNothing();
    void layersAreWrittenInRowOrder();
    void whatIsWrittenIsReadBackTheSame_data();
    void whatIsWrittenIsReadBackTheSame();
    void layersOfOneNameAreRenamedForSaving();
    void namesThatAreNoFileNamesAreReplacedForSaving();
    void aFullDiskIsAnErrorAndTheElementsAreWritten();
    void aListThatIsClearedWhileItIsSavedEndsThere();

    void attributesHaveDefaults_data();
    void attributesHaveDefaults();
    void aBatchRunLeavesTheColourWhite();
    void loadingIsAnnouncedWithTheName();
    void aMissingBitmapDropsTheLayerSilently();
    void aBitmapOfAnotherSizeDropsTheLayer();
    void layersOfOneNameReadTheSameBitmap();
    void bitmapsOutsideTheProjectAreNotRead_data();
    void bitmapsOutsideTheProjectAreNotRead();
    void malformedListsAreReadUpToTheFault_data();
    void malformedListsAreReadUpToTheFault();
    void readingStopsAtTheEndOfTheList();
    void readingAtTheEndOfTheDocumentDoesNothing();
    void nestedLayersAreReadOnce();
    void readingAppendsToTheList();
    void aListThatIsClearedWhileItIsReadGoesOn();

private:
    std::unique_ptr<ProjectFixture> m_project;
    LogSpy m_log;
};

namespace {

/// Counts how often it is destroyed.
class CountedLayer : public Layer
{
public:
    CountedLayer(LayerList* list, const QString& name, int* destroyedCount)
        : Layer(0, 0, list, name)
        , m_destroyedCount(destroyedCount)
    {
        SetImage(raster::BlankMask({5, 2}), Qt::white);
    }
    ~CountedLayer() override { ++*m_destroyedCount; }
    Q_DISABLE_COPY(CountedLayer)

private:
    int* m_destroyedCount;
};

/// Collects the layers that the user is said to have shown or hidden.
class ChangeSpy
{
public:
    explicit ChangeSpy(const LayerList& layers)
    {
        QObject::connect(&layers, &LayerList::ItemChanged, &m_context,
                         [this](Layer* layer) { m_layers.append(layer); });
    }

    const QVector<Layer*>& Layers() const { return m_layers; }

private:
    QObject m_context;
    QVector<Layer*> m_layers;
};

Layer* Add(LayerList& layers, const QString& name, const QStringList& art = {".....", "....."})
{
    auto* layer = new Layer(1, 2, &layers, name);
    layer->SetImage(MaskFromArt(art), Qt::white);
    layers.AddLayer(layer);
    return layer;
}

QStringList NamesOf(const LayerList& layers)
{
    return RowTexts(*layers.model());
}

QString Written(LayerList& layers)
{
    QString text;
    QXmlStreamWriter xml(&text);
    layers.WriteXml(xml);
    return text;
}

/// Reads a document whose root is "layers".
bool Read(LayerList& layers, const QString& document)
{
    QXmlStreamReader xml(document);
    xml.readNextStartElement();
    return layers.ReadXml(xml);
}

} // namespace

void LayerListTest::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(5, 2));
    for (const char* path : {"layers/coast.tga", "layers/town.tga"}) {
        WriteBytes(m_project->Path(path),
                   literal::WriteTarga(MaskFromArt({"##...", "..#.."}), true));
    }
    m_log.Take();
}

void LayerListTest::cleanup()
{
    m_project.reset();
}

void LayerListTest::layersAreAppendedInOrder()
{
    LayerList layers;
    QVERIFY(layers.IsEmpty());
    const Layer* coast = Add(layers, "coast");
    const Layer* town = Add(layers, "town");
    QVERIFY(!layers.IsEmpty());
    QCOMPARE(NamesOf(layers), (QStringList{"coast", "town"}));
    QCOMPARE(layers.model()->rowCount(), 2);
    QCOMPARE(layers.LayerAt(0), coast);
    QCOMPARE(layers.LayerAt(1), town);
    QVERIFY(!layers.LayerAt(2));
    QVERIFY(!layers.LayerAt(-1));
}

void LayerListTest::layersWithoutAnImageAreRefused()
{
    LayerList layers;
    Layer layer(0, 0, &layers);
    QVERIFY(!layers.AddLayer(&layer));
    QVERIFY(!layers.AddLayer(nullptr));
    QVERIFY(layers.IsEmpty());
}

void LayerListTest::aLayerInTheListIsNotAddedAgain()
{
    LayerList layers;
    Layer* coast = Add(layers, "coast");
    Add(layers, "town");
    QVERIFY(layers.AddLayer(coast));
    QCOMPARE(NamesOf(layers), (QStringList{"coast", "town"}));
}

void LayerListTest::layersOfOthersAreRefused()
{
    LayerList layers;
    LayerList others;
    Layer* coast = Add(others, "coast");
    QVERIFY(!layers.AddLayer(coast));
    QCOMPARE(NamesOf(others), QStringList{"coast"});
    QCOMPARE(coast->model(), others.model());
    QStandardItem parent;
    auto* child = new Layer(0, 0, &layers, "child");
    child->SetImage(raster::BlankMask({5, 2}), Qt::red);
    parent.appendRow(child);
    QVERIFY(!layers.AddLayer(child));
    QCOMPARE(child->parent(), &parent);
    QVERIFY(layers.IsEmpty());
}

void LayerListTest::removingALayerDestroysIt()
{
    int destroyedCount = 0;
    LayerList layers;
    auto* coast = new CountedLayer(&layers, "coast", &destroyedCount);
    const int id = coast->Id();
    QVERIFY(layers.AddLayer(coast));
    Add(layers, "town");
    layers.RemoveLayer(id + 1000);
    QCOMPARE(layers.model()->rowCount(), 2);
    layers.RemoveLayer(id);
    QCOMPARE(destroyedCount, 1);
    QCOMPARE(NamesOf(layers), QStringList{"town"});
    layers.RemoveLayer(id);
    QCOMPARE(NamesOf(layers), QStringList{"town"});
}

void LayerListTest::clearingDestroysAllLayers()
{
    int destroyedCount = 0;
    LayerList layers;
    for (const char* name : {"a", "b", "c"}) {
        layers.AddLayer(new CountedLayer(&layers, name, &destroyedCount));
    }
    layers.Clear();
    QCOMPARE(destroyedCount, 3);
    QVERIFY(layers.IsEmpty());
    QCOMPARE(layers.model()->rowCount(), 0);
    Add(layers, "next");
    QCOMPARE(NamesOf(layers), QStringList{"next"});
}

void LayerListTest::theListDestroysItsLayersAndThenItsModel()
{
    int destroyedCount = 0;
    QPointer<QStandardItemModel> model;
    {
        LayerList layers;
        model = layers.model();
        QVERIFY(!model->parent());
        layers.AddLayer(new CountedLayer(&layers, "coast", &destroyedCount));
    }
    QCOMPARE(destroyedCount, 1);
    QVERIFY(model);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!model);
}

void LayerListTest::layersAreFoundById()
{
    LayerList layers;
    Add(layers, "coast");
    const Layer* town = Add(layers, "town");
    QCOMPARE(layers.LayerById(town->Id()), town);
    QVERIFY(!layers.LayerById(town->Id() + 1));
    QVERIFY(!layers.LayerById(-1));
}

void LayerListTest::theFirstLayerOfANameIsFound()
{
    LayerList layers;
    const Layer* coast = Add(layers, "coast");
    Add(layers, "coast");
    QCOMPARE(layers.LayerByName("coast"), coast);
    QVERIFY(!layers.LayerByName("Coast"));
    QVERIFY(!layers.LayerByName(QString()));
    // The order is that of the rows, however they came about.
    layers.model()->insertRow(1, layers.model()->takeRow(0));
    QVERIFY(layers.LayerByName("coast") != coast);
}

void LayerListTest::visibleLayersAreCollected()
{
    LayerList layers;
    Layer* coast = Add(layers, "coast");
    Add(layers, "town");
    Layer* roads = Add(layers, "roads");
    coast->SetVisible(true);
    roads->SetVisible(true);
    QHash<int, Layer*> visible = {{-1, nullptr}};
    layers.VisibleLayers(visible);
    QCOMPARE(visible,
             (QHash<int, Layer*>{{-1, nullptr}, {coast->Id(), coast}, {roads->Id(), roads}}));
}

void LayerListTest::hidingAllTellsNobody()
{
    LayerList layers;
    for (const char* name : {"coast", "town", "roads"}) {
        Add(layers, name)->SetVisible(true);
    }
    const ChangeSpy changes(layers);
    layers.HideAll();
    QHash<int, Layer*> visible;
    layers.VisibleLayers(visible);
    QVERIFY(visible.isEmpty());
    QCOMPARE(layers.LayerAt(1)->checkState(), Qt::Unchecked);
    QCOMPARE(changes.Layers(), QVector<Layer*>());
}

void LayerListTest::flagsAreResetOnAllLayers()
{
    LayerList layers;
    Add(layers, "coast");
    Add(layers, "town");
    layers.ResetFlags();
    for (int row = 0; row < 2; ++row) {
        const Layer* layer = layers.LayerAt(row);
        QCOMPARE(layer->UsageFlags(), 0U);
        QCOMPARE(layer->ValueFlags(), 0U);
    }
}

void LayerListTest::rowsThatAreNoLayersArePassedOver()
{
    LayerList layers;
    layers.model()->appendRow(new QStandardItem("no layer"));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(Written(layers), QString());
    Add(layers, "coast");
    layers.model()->setRowCount(3);
    QCOMPARE(layers.Layers(), QVector<Layer*>{layers.LayerByName("coast")});
    QVERIFY(!layers.LayerAt(0));
    QVERIFY(!layers.LayerAt(2));
    QCOMPARE(Written(layers).count("<layer "), 1);
    layers.model()->item(0)->setCheckState(Qt::Checked);
    layers.HideAll();
    layers.RemoveLayer(layers.LayerAt(1)->Id());
    QCOMPARE(layers.model()->rowCount(), 2);
}

void LayerListTest::theUsersCheckMarkShowsAndHides_data()
{
    QTest::addColumn<bool>("isVisible");
    QTest::addColumn<Qt::CheckState>("checkState");
    QTest::addColumn<int>("changeCount");
    QTest::newRow("show") << false << Qt::Checked << 1;
    QTest::newRow("hide") << true << Qt::Unchecked << 1;
    QTest::newRow("show a shown one") << true << Qt::Checked << 0;
    QTest::newRow("hide a hidden one") << false << Qt::Unchecked << 0;
    QTest::newRow("half is not shown") << true << Qt::PartiallyChecked << 1;
}

void LayerListTest::theUsersCheckMarkShowsAndHides()
{
    QFETCH(bool, isVisible);
    QFETCH(Qt::CheckState, checkState);
    QFETCH(int, changeCount);
    LayerList layers;
    Layer* layer = Add(layers, "coast");
    layer->SetVisible(isVisible);
    const ChangeSpy changes(layers);
    layers.model()->setData(layer->index(), checkState, Qt::CheckStateRole);
    QCOMPARE(layer->IsVisible(), checkState == Qt::Checked);
    QCOMPARE(layer->checkState(), layer->IsVisible() ? Qt::Checked : Qt::Unchecked);
    QCOMPARE(changes.Layers(), QVector<Layer*>(changeCount, layer));
}

void LayerListTest::otherChangesTellNobody()
{
    LayerList layers;
    Layer* layer = Add(layers, "coast");
    const ChangeSpy changes(layers);
    layer->setText("town");
    layer->SetColor(Qt::red);
    layer->SetOpacity(3);
    layer->SetVisible(true);
    layer->SetUsageFlags(7);
    QCOMPARE(changes.Layers(), QVector<Layer*>());
}

void LayerListTest::theModelStandsTheModelTest()
{
    const QWidget window;
    LayerList layers;
    const QAbstractItemModelTester tester(layers.model());
    Add(layers, "coast");
    Add(layers, "town")->SetVisible(true);
    layers.RemoveLayer(layers.LayerAt(0)->Id());
    layers.Clear();
    Add(layers, "roads");
}

void LayerListTest::anEmptyListWritesNothing()
{
    LayerList layers;
    QCOMPARE(Written(layers), QString());
    QCOMPARE(m_log.Messages(), QStringList());
}

void LayerListTest::layersAreWrittenInRowOrder()
{
    LayerList layers;
    Add(layers, "town");
    Add(layers, "coast");
    layers.model()->insertRow(0, layers.model()->takeRow(1));
    const QString element = "<layer usage_flags=\"1\" value_flags=\"2\" color=\"4294967295\" "
                            "visible=\"0\" name=\"%1\"/>";
    QCOMPARE(Written(layers),
             "<!--Layers--><layers>" + element.arg("coast") + element.arg("town") + "</layers>");
    QCOMPARE(m_log.Messages(), (QStringList{"Success: Layer 'coast' successfully saved.",
                                            "Success: Layer 'town' successfully saved."}));
}

void LayerListTest::whatIsWrittenIsReadBackTheSame_data()
{
    QTest::addColumn<bool>("isGuiRunning");
    QTest::newRow("without a window") << false;
    QTest::newRow("with a window") << true;
}

void LayerListTest::whatIsWrittenIsReadBackTheSame()
{
    QFETCH(bool, isGuiRunning);
    const auto window = isGuiRunning ? std::make_unique<QWidget>() : nullptr;
    Random random;
    LayerList saved;
    for (const char* name : {"North 100%1", "Süd", "a & \"b\""}) {
        Layer* layer = Add(saved, name);
        layer->SetImage(RandomMask(random, {5, 2}), QColor::fromRgba(random.Bits()));
        layer->SetUsageFlags(random.Bits());
        layer->SetValueFlags(random.Bits());
        layer->SetVisible(random.Below(2) == 0);
    }
    // The name with the double quotes becomes another one with the save.
    const QString document = Written(saved);
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
    QCOMPARE(Written(read), document);
}

void LayerListTest::layersOfOneNameAreRenamedForSaving()
{
    LayerList layers;
    Add(layers, "coast", {"#....", "....."});
    Add(layers, "coast", {".#...", "....."});
    Add(layers, "coast (2)", {"..#..", "....."});
    Add(layers, "coast", {"...#.", "....."});
    Written(layers);
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

void LayerListTest::namesThatAreNoFileNamesAreReplacedForSaving()
{
    LayerList layers;
    for (const char* name : {"../coast", "", "  ", ".._coast", "a/b%1"}) {
        Add(layers, name);
    }
    Written(layers);
    QCOMPARE(NamesOf(layers),
             (QStringList{".._coast (2)", "Unnamed", "Unnamed (2)", ".._coast", "a_b%1"}));
    const QString renamed = "Error: Layer '%1' cannot be saved under this name, it was renamed to "
                            "'%2'.";
    QCOMPARE(m_log.Messages().mid(0, 4),
             (QStringList{renamed.arg("../coast", ".._coast (2)"), renamed.arg("", "Unnamed"),
                          renamed.arg("  ", "Unnamed (2)"), renamed.arg("a/b%1", "a_b%1")}));
    QVERIFY(!QFile::exists(m_project->Path("coast.tga")));
}

void LayerListTest::aFullDiskIsAnErrorAndTheElementsAreWritten()
{
    LayerList layers;
    Add(layers, "coast");
    Add(layers, "town");
    QString text;
    {
        const FileSizeLimit limit(10);
        text = Written(layers);
    }
    QCOMPARE(text.count("<layer "), 2);
    const QString message = "Error: The first attempt to write into file %1 failed.";
    QCOMPARE(m_log.Messages(), (QStringList{message.arg(m_project->Path("layers/coast.tga")),
                                            message.arg(m_project->Path("layers/town.tga"))}));
}

void LayerListTest::aListThatIsClearedWhileItIsSavedEndsThere()
{
    // Who shows a message lets the user act, even close the project.
    LayerList layers;
    Add(layers, "coast");
    Add(layers, "town");
    const QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context, [&layers] { layers.Clear(); });
    const QString text = Written(layers);
    QCOMPARE(text.count("<layer "), 1);
    QVERIFY(text.endsWith("</layers>"));
    QCOMPARE(m_log.Messages(), QStringList{"Success: Layer 'coast' successfully saved."});
}

void LayerListTest::attributesHaveDefaults_data()
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

void LayerListTest::attributesHaveDefaults()
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

void LayerListTest::aBatchRunLeavesTheColourWhite()
{
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='coast' color='4294901760' visible='1'/></layers>"));
    QCOMPARE(layers.LayerAt(0)->Color().rgba(), 0xFFFFFFFFU);
    QVERIFY(layers.LayerAt(0)->IsVisible());
    QVERIFY(layers.LayerAt(0)->Pixmap().isNull());
}

void LayerListTest::loadingIsAnnouncedWithTheName()
{
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='coast'/><layer name='%1'/><layer/></layers>"));
    QCOMPARE(m_log.Messages(),
             (QStringList{"Info: Loading layer \"coast\"...", "Info: Loading layer \"%1\"...",
                          "Info: Loading layer \"\"..."}));
}

void LayerListTest::aMissingBitmapDropsTheLayerSilently()
{
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='missing'/><layer name='town'/></layers>"));
    QCOMPARE(NamesOf(layers), QStringList{"town"});
    QCOMPARE(m_log.Messages(), (QStringList{"Info: Loading layer \"missing\"...",
                                            "Info: Loading layer \"town\"..."}));
}

void LayerListTest::aBitmapOfAnotherSizeDropsTheLayer()
{
    ProjectSettings::Instance().SetSizes(2048, 2048, 15360, 15360);
    WriteBytes(m_project->Path("layers/small.tga"),
               literal::WriteTarga(raster::BlankMask({1024, 1024}), true));
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='small'/></layers>"));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(m_log.Messages(), (QStringList{"Info: Loading layer \"small\"...",
                                            "Error: TARGA : Wrong size of the image."}));
}

void LayerListTest::layersOfOneNameReadTheSameBitmap()
{
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='coast'/><layer name='coast'/></layers>"));
    QCOMPARE(NamesOf(layers), (QStringList{"coast", "coast"}));
    QCOMPARE(layers.LayerAt(0)->Image(), layers.LayerAt(1)->Image());
    QVERIFY(layers.LayerAt(0)->Id() != layers.LayerAt(1)->Id());
}

void LayerListTest::bitmapsOutsideTheProjectAreNotRead_data()
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

void LayerListTest::bitmapsOutsideTheProjectAreNotRead()
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
    ProjectSettings::Instance().projectDir = QDir(m_project->Path("inner"));
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='" + name + "'/></layers>"));
    QCOMPARE(NamesOf(layers), isRead ? QStringList{name} : QStringList());
    QStringList messages = {"Info: Loading layer \"" + name + "\"..."};
    if (!isRead) {
        messages += "Error: The bitmap of layer '" + name + "' lies outside the project.";
    }
    QCOMPARE(m_log.Messages(), messages);
}

void LayerListTest::malformedListsAreReadUpToTheFault_data()
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

void LayerListTest::malformedListsAreReadUpToTheFault()
{
    QFETCH(QString, document);
    QFETCH(QStringList, names);
    LayerList layers;
    QVERIFY(!Read(layers, document));
    QCOMPARE(NamesOf(layers), names);
}

void LayerListTest::readingStopsAtTheEndOfTheList()
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

void LayerListTest::readingAtTheEndOfTheDocumentDoesNothing()
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

void LayerListTest::nestedLayersAreReadOnce()
{
    // The inner layer takes the outer one's place, and the outer end tag closes nothing.
    LayerList layers;
    QVERIFY(Read(layers, "<layers><layer name='coast'><layer name='town'/></layer>"
                         "<layer name='coast'><layer name='missing'/></layer></layers>"));
    QCOMPARE(NamesOf(layers), QStringList{"town"});
}

void LayerListTest::readingAppendsToTheList()
{
    LayerList layers;
    Add(layers, "former");
    QVERIFY(Read(layers, "<layers><layer name='coast'/></layers>"));
    QCOMPARE(NamesOf(layers), (QStringList{"former", "coast"}));
}

void LayerListTest::aListThatIsClearedWhileItIsReadGoesOn()
{
    LayerList layers;
    Add(layers, "former");
    const QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context, [&layers] { layers.Clear(); });
    QVERIFY(Read(layers, "<layers><layer name='coast'/><layer name='town'/></layers>"));
    QCOMPARE(NamesOf(layers), QStringList{"town"});
}

QTEST_MAIN(LayerListTest)

#include "tst_LayerList.moc"
