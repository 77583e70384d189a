#include "layers/LayerList.h"

#include "layers/Layer.h"
#include "layers/raster/Mask.h"

#include "tests/support/LayerLists.h"
#include "tests/support/ProjectFixture.h"

#include <QAbstractItemModelTester>
#include <QPointer>
#include <QStandardItemModel>
#include <QtTest>

class tst_LayerList : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void LayersAreAppendedInOrder();
    void LayersWithoutAnImageAreRefused();
    void ALayerInTheListIsNotAddedAgain();
    void LayersOfOthersAreRefused();
    void RemovingALayerDestroysIt();
    void ClearingDestroysAllLayers();
    void TheListDestroysItsLayersAndThenItsModel();
    void LayersAreFoundById();
    void TheFirstLayerOfANameIsFound();
    void VisibleLayersAreCollected();
    void HidingAllTellsNobody();
    void FlagsAreResetOnAllLayers();
    void RowsThatAreNoLayersArePassedOver();
    void TheUsersCheckMarkShowsAndHides_data();
    void TheUsersCheckMarkShowsAndHides();
    void OtherChangesTellNobody();
    void TheModelStandsTheModelTest();

private:
    std::unique_ptr<ProjectFixture> m_project;
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

/// Collects the layers in the signals that the user has shown or hidden a layer.
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

} // namespace

void tst_LayerList::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(5, 2));
}

void tst_LayerList::cleanup()
{
    m_project.reset();
}

void tst_LayerList::LayersAreAppendedInOrder()
{
    LayerList layers;
    QVERIFY(layers.IsEmpty());
    const Layer* coast = AddLayer(layers, "coast");
    const Layer* town = AddLayer(layers, "town");
    QVERIFY(!layers.IsEmpty());
    QCOMPARE(NamesOf(layers), (QStringList{"coast", "town"}));
    QCOMPARE(layers.model()->rowCount(), 2);
    QCOMPARE(layers.LayerAt(0), coast);
    QCOMPARE(layers.LayerAt(1), town);
    QVERIFY(!layers.LayerAt(2));
    QVERIFY(!layers.LayerAt(-1));
}

void tst_LayerList::LayersWithoutAnImageAreRefused()
{
    LayerList layers;
    Layer layer(0, 0, &layers);
    QVERIFY(!layers.AddLayer(&layer));
    QVERIFY(!layers.AddLayer(nullptr));
    QVERIFY(layers.IsEmpty());
}

void tst_LayerList::ALayerInTheListIsNotAddedAgain()
{
    LayerList layers;
    Layer* coast = AddLayer(layers, "coast");
    AddLayer(layers, "town");
    QVERIFY(layers.AddLayer(coast));
    QCOMPARE(NamesOf(layers), (QStringList{"coast", "town"}));
}

void tst_LayerList::LayersOfOthersAreRefused()
{
    LayerList layers;
    LayerList others;
    Layer* coast = AddLayer(others, "coast");
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

void tst_LayerList::RemovingALayerDestroysIt()
{
    int destroyedCount = 0;
    LayerList layers;
    auto* coast = new CountedLayer(&layers, "coast", &destroyedCount);
    const int id = coast->Id();
    QVERIFY(layers.AddLayer(coast));
    AddLayer(layers, "town");
    layers.RemoveLayer(id + 1000);
    QCOMPARE(layers.model()->rowCount(), 2);
    layers.RemoveLayer(id);
    QCOMPARE(destroyedCount, 1);
    QCOMPARE(NamesOf(layers), QStringList{"town"});
    layers.RemoveLayer(id);
    QCOMPARE(NamesOf(layers), QStringList{"town"});
}

void tst_LayerList::ClearingDestroysAllLayers()
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
    AddLayer(layers, "next");
    QCOMPARE(NamesOf(layers), QStringList{"next"});
}

void tst_LayerList::TheListDestroysItsLayersAndThenItsModel()
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

void tst_LayerList::LayersAreFoundById()
{
    LayerList layers;
    AddLayer(layers, "coast");
    const Layer* town = AddLayer(layers, "town");
    QCOMPARE(layers.LayerById(town->Id()), town);
    QVERIFY(!layers.LayerById(town->Id() + 1));
    QVERIFY(!layers.LayerById(-1));
}

void tst_LayerList::TheFirstLayerOfANameIsFound()
{
    LayerList layers;
    const Layer* coast = AddLayer(layers, "coast");
    AddLayer(layers, "coast");
    QCOMPARE(layers.LayerByName("coast"), coast);
    QVERIFY(!layers.LayerByName("Coast"));
    QVERIFY(!layers.LayerByName(QString()));
    // The order is that of the rows, not that of adding.
    layers.model()->insertRow(1, layers.model()->takeRow(0));
    QVERIFY(layers.LayerByName("coast") != coast);
}

void tst_LayerList::VisibleLayersAreCollected()
{
    LayerList layers;
    Layer* coast = AddLayer(layers, "coast");
    AddLayer(layers, "town");
    Layer* roads = AddLayer(layers, "roads");
    coast->SetVisible(true);
    roads->SetVisible(true);
    QHash<int, Layer*> visible = {{-1, nullptr}};
    layers.VisibleLayers(visible);
    QCOMPARE(visible,
             (QHash<int, Layer*>{{-1, nullptr}, {coast->Id(), coast}, {roads->Id(), roads}}));
}

void tst_LayerList::HidingAllTellsNobody()
{
    LayerList layers;
    for (const char* name : {"coast", "town", "roads"}) {
        AddLayer(layers, name)->SetVisible(true);
    }
    const ChangeSpy changes(layers);
    layers.HideAll();
    QHash<int, Layer*> visible;
    layers.VisibleLayers(visible);
    QVERIFY(visible.isEmpty());
    QCOMPARE(layers.LayerAt(1)->checkState(), Qt::Unchecked);
    QCOMPARE(changes.Layers(), QVector<Layer*>());
}

void tst_LayerList::FlagsAreResetOnAllLayers()
{
    LayerList layers;
    AddLayer(layers, "coast");
    AddLayer(layers, "town");
    layers.ResetFlags();
    for (int row = 0; row < 2; ++row) {
        const Layer* layer = layers.LayerAt(row);
        QCOMPARE(layer->UsageFlags(), 0U);
        QCOMPARE(layer->ValueFlags(), 0U);
    }
}

void tst_LayerList::RowsThatAreNoLayersArePassedOver()
{
    LayerList layers;
    layers.model()->appendRow(new QStandardItem("no layer"));
    QVERIFY(layers.IsEmpty());
    QCOMPARE(WrittenLayers(layers), QString());
    AddLayer(layers, "coast");
    layers.model()->setRowCount(3);
    QCOMPARE(layers.Layers(), QVector<Layer*>{layers.LayerByName("coast")});
    QVERIFY(!layers.LayerAt(0));
    QVERIFY(!layers.LayerAt(2));
    QCOMPARE(WrittenLayers(layers).count("<layer "), 1);
    layers.model()->item(0)->setCheckState(Qt::Checked);
    layers.HideAll();
    layers.RemoveLayer(layers.LayerAt(1)->Id());
    QCOMPARE(layers.model()->rowCount(), 2);
}

void tst_LayerList::TheUsersCheckMarkShowsAndHides_data()
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

void tst_LayerList::TheUsersCheckMarkShowsAndHides()
{
    QFETCH(bool, isVisible);
    QFETCH(Qt::CheckState, checkState);
    QFETCH(int, changeCount);
    LayerList layers;
    Layer* layer = AddLayer(layers, "coast");
    layer->SetVisible(isVisible);
    const ChangeSpy changes(layers);
    layers.model()->setData(layer->index(), checkState, Qt::CheckStateRole);
    QCOMPARE(layer->IsVisible(), checkState == Qt::Checked);
    QCOMPARE(layer->checkState(), layer->IsVisible() ? Qt::Checked : Qt::Unchecked);
    QCOMPARE(changes.Layers(), QVector<Layer*>(changeCount, layer));
}

void tst_LayerList::OtherChangesTellNobody()
{
    LayerList layers;
    Layer* layer = AddLayer(layers, "coast");
    const ChangeSpy changes(layers);
    layer->setText("town");
    layer->SetColor(Qt::red);
    layer->SetOpacity(3);
    layer->SetVisible(true);
    layer->SetUsageFlags(7);
    QCOMPARE(changes.Layers(), QVector<Layer*>());
}

void tst_LayerList::TheModelStandsTheModelTest()
{
    const QWidget window;
    LayerList layers;
    const QAbstractItemModelTester tester(layers.model());
    AddLayer(layers, "coast");
    AddLayer(layers, "town")->SetVisible(true);
    layers.RemoveLayer(layers.LayerAt(0)->Id());
    layers.Clear();
    AddLayer(layers, "roads");
}

QTEST_MAIN(tst_LayerList)

#include "tst_LayerList.moc"
