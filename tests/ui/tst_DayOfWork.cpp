#include "app/BatchExport.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/Files.h"
#include "tests/support/LiteralCanvas.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/LiteralTarga.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockLayers.h"
#include "ui/DockTerTypes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QGroupBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>
#include <QTreeView>

namespace {

constexpr int LayerSize = 128;
constexpr int WorldSize = 1280;

/// A designer who works in the window, and the expected pixels of the layers.
class Designer : public WindowFixture
{
public:
    LayerList& Layers() const { return *Child<DockLayers>("DockLayers")->List(); }
    TerritoryTypeList& Types() const { return *Child<DockTerTypes>("DockTerTypes")->List(); }
    void Click(const char* button) const
    {
        QTest::mouseClick(Child<QAbstractButton>(button), Qt::LeftButton);
    }
    QPoint At(QPointF position) const { return View().mapFromScene(position); }
    void ClickMap(QPointF position) const
    {
        QTest::mouseMove(View().viewport(), At(position));
        QTest::mouseClick(View().viewport(), Qt::LeftButton, {}, At(position));
    }
    void Drag(QPointF from, QPointF to) const
    {
        QWidget* viewport = View().viewport();
        QTest::mouseMove(viewport, At(from));
        QTest::mousePress(viewport, Qt::LeftButton, {}, At(from));
        QMouseEvent move(QEvent::MouseMove, At(to), viewport->mapToGlobal(At(to)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &move);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, At(to));
    }
    void Select(QTreeView* tree, const QStandardItem& item) const
    {
        tree->scrollTo(item.index());
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {},
                          tree->visualRect(item.index()).center());
    }
    void SelectLayer(int row) const
    {
        Select(Child<QTreeView>("treeLayers"), *Layers().LayerAt(row));
    }
    void TickFlag(const char* group, int index) const
    {
        auto* box = Child<QGroupBox>(group)->findChildren<QCheckBox*>().at(index);
        box->click();
    }

    void MakeProject();
    void PaintTwoLayers();
    void DeriveAThird();
    void PlaceZones();
};

void Designer::MakeProject()
{
    QImage picture(16, 16, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QVERIFY(picture.save(Path("world.png")));
    WriteBytes(Path("areas.xml"),
               R"(<areas><usages><usage name="Town"/><usage name="Farm"/></usages>
                                     <values><value name="Rich"/></values></areas>)");
    answers.Add([this](QWidget& dialog) {
        dialog.findChild<QSpinBox*>("spinLayerSizeX")->setValue(LayerSize);
        dialog.findChild<QSpinBox*>("spinWorldSizeX")->setValue(WorldSize);
        dialog.findChild<QLineEdit*>("txtWorldImage")->setText(Path("world.png"));
        dialog.findChild<QLineEdit*>("txtAreaFlagsFile")->setText(Path("areas.xml"));
        dialog.findChild<QLineEdit*>("txtProjectName")->setText(Path("day.xml"));
        QTest::mouseClick(dialog.findChild<QAbstractButton*>("btnOk"), Qt::LeftButton);
    });
    Trigger("actionNew");
    QCOMPARE(window->windowTitle(), "day - Tarvo Ledger Tool");
}

void Designer::PaintTwoLayers()
{
    for (int row = 0; row < 2; ++row) {
        Click("btnAddPainted");
        SelectLayer(row);
        QCOMPARE(Layers().Layers().size(), row + 1);
        Trigger("actionTogglePaintMode");
        ClickMap(row == 0 ? QPointF(40, 40) : QPointF(60, 40));
        Trigger("actionTogglePaintMode");
        TickFlag("gboLayerUsageFlags", row);
    }
    TickFlag("gboLayerValueFlags", 0);
}

void Designer::DeriveAThird()
{
    answers.Add([](QWidget& dialog) {
        const auto waitIdle = [&] {
            QTRY_VERIFY(dialog.findChild<QWidget*>("btnCancel")->isEnabled());
        };
        waitIdle();
        dialog.findChild<QComboBox*>("cboOperation")->setCurrentIndex(2);
        waitIdle();
        dialog.findChild<QComboBox*>("cboInputB")->setCurrentIndex(1);
        waitIdle();
        auto* name = dialog.findChild<QLineEdit*>("txtOutputName");
        name->selectAll();
        QTest::keyClicks(name, "both");
        QTest::mouseClick(dialog.findChild<QAbstractButton*>("btnOk"), Qt::LeftButton);
        QTRY_VERIFY(!dialog.isVisible());
    });
    Click("btnAddCustom");
    QCOMPARE(Layers().Layers().size(), 3);
}

void Designer::PlaceZones()
{
    Trigger("actionViewTerritoryTypes");
    Click("btnAdd");
    auto* tree = Child<QTreeView>("treeTerTypes");
    Select(tree, *Types().Types().first());
    Trigger("actionAdd");
    Select(tree, *Types().Types().first()->Territories().first());
    Click("btnToggleZoneInsert");
    ClickMap({40, 80});
    ClickMap({100, 80});
    ClickMap({40, 20});
    Click("btnToggleZoneSelect");
    ClickMap({100, 80});
    auto* radius = Child<QLineEdit>("txtSize");
    radius->selectAll();
    QTest::keyClicks(radius, "100");
    Scene().clearSelection();
    Drag({40, 80}, {60, 90});
    Scene().clearSelection();
    ClickMap({40, 20});
    Click("btnZoneDelete");
    QCOMPARE(Types().Types().first()->Territories().first()->Zones().size(), 2);
}

} // namespace

/// From a new project to the files for the game, with mouse and keys.
class tst_DayOfWork : public QObject
{
    Q_OBJECT

private slots:
    void EndsWithTheFilesThatItMust();
};

void tst_DayOfWork::EndsWithTheFilesThatItMust()
{
    Designer designer;
    designer.MakeProject();
    designer.PaintTwoLayers();
    designer.DeriveAThird();
    designer.PlaceZones();
    QVERIFY(designer.IsModified());
    designer.SaveOver("actionSaveAll", designer.Path("day.xml"));
    QVERIFY(!designer.IsModified());

    // The layers must equal those painted with whole pictures and read again.
    QVector<literal::MapLayer> expected;
    for (int row = 0; row < 2; ++row) {
        QImage picture(LayerSize, LayerSize, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        const QPointF place = row == 0 ? QPointF(40, 40) : QPointF(60, 40);
        literal::Paint(picture, {false, true, Qt::white, 32, place, place});
        expected.append(
            {literal::Mask(picture, qRgb(255, 255, 255)), row == 0 ? 1U : 2U, row == 0 ? 0U : 1U});
    }
    QImage both = expected[0].image;
    for (int y = 0; y < LayerSize; ++y) {
        for (int x = 0; x < LayerSize; ++x) {
            both.scanLine(y)[x] &= expected[1].image.constScanLine(y)[x];
        }
    }
    expected.append({both, 0, 0});
    QVERIFY(both.pixelIndex(50, 40) == 255 && both.pixelIndex(30, 40) == 0);
    const QVector<Layer*> layers = designer.Layers().Layers();
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(ReadBytes(designer.Path("layers/" + layers[row]->text() + ".tga")),
                 literal::WriteTarga(expected[row].image, true));
    }
    QCOMPARE(ReadBytes(designer.Path("map/day.map")),
             literal::WriteMap(expected, {LayerSize, LayerSize}, {WorldSize, WorldSize}, 2, 1));

    // The type, in world metres from the lower left corner.
    const TerritoryType* type = designer.Types().Types().first();
    const QByteArray exported = ReadBytes(designer.Path("territoryTypes/" + type->text() + ".xml"));
    QCOMPARE(exported.count("<zone "), 2);
    QVERIFY2(exported.contains(R"(x="600" z="380" r="300")"), exported);
    QVERIFY2(exported.contains(R"(x="1000" z="480" r="100")"), exported);

    // Another day.
    const QByteArray saved = ReadBytes(designer.Path("day.xml"));
    QVERIFY(designer.window->close());
    designer.Restart();
    designer.Load(designer.Path("day.xml"));
    QCOMPARE(designer.Layers().Layers().size(), 3);
    designer.SaveOver("actionSave", designer.Path("day.xml"));
    QCOMPARE(ReadBytes(designer.Path("day.xml")), saved);
    QCOMPARE(ReadBytes(designer.Path("layers/both.tga")), literal::WriteTarga(both, true));

    // The build pipeline.
    designer.log.Take();
    QDir::setCurrent(designer.Path(""));
    QCOMPARE(RunBatchExport(designer.Path("day.xml"), "Output"), ExitDone);
    QVERIFY(designer.log.Messages().filter("Error").isEmpty());
    QVERIFY(QFile::exists(designer.Path("Output/day.map")));
}

QTEST_MAIN(tst_DayOfWork)
#include "tst_DayOfWork.moc"
