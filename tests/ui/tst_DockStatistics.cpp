#include "ui/DockStatistics.h"

#include "document/Document.h"
#include "document/ProjectNumbers.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"
#include "ui/NumbersView.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

/// The dock "Numbers".
class tst_DockStatistics : public QObject
{
    Q_OBJECT

private slots:
    void CountsLayersFlagsAndZones();
    void FollowsEditsAndTheirUndo();
    void FollowsNamesAndRows();
    void TellsTheOverlap();
    void AClickOnATitleSorts();
    void CopiesRowsForASpreadsheet();
    void SavesTheShownTable();
    void SavesNoNumbersThatAreNotCounted();
    void ADoubleClickGoesThereAndBackReturns();
    void PlacesThatAreNoNumbersAreLeftOut();
    void IsHiddenAtFirstAndIdleThen();
    void StrangeNamesStayInTheirCells();
};

namespace {

/// The small project: both layers are from (8, 8) to (23, 23), the zone's centre is at (10, 10) and
/// its radius 60 m. A pixel is 10 m wide, and the world 640 m.
struct Numbers
{
    Numbers()
    {
        fixture.Load(fixture.WriteProject());
        fixture.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
        fixture.Trigger("actionStatistics");
        Settle();
    }

    Document& GetDocument() const { return fixture.window->GetDocument(); }
    Layer& LayerAt(int row) const { return *GetDocument().Layers().LayerAt(row); }
    Territory& North() const
    {
        return *GetDocument().Types().Types().first()->Territories().first();
    }
    NumbersView& View(const char* name) const { return *fixture.Child<NumbersView>(name); }
    QTabWidget& Tabs() const { return *fixture.Child<QTabWidget>("tabNumbers"); }
    /// The texts of a row, with commas between.
    QString Row(const char* name, int row) const
    {
        const QAbstractItemModel& model = *View(name).model();
        QStringList texts;
        for (int column = 0; column < model.columnCount(); ++column) {
            texts.append(model.index(row, column).data().toString());
        }
        return texts.join(",");
    }
    QStringList FirstColumn(const char* name) const
    {
        const QAbstractItemModel& model = *View(name).model();
        QStringList texts;
        for (int row = 0; row < model.rowCount(); ++row) {
            texts.append(model.index(row, 0).data().toString());
        }
        return texts;
    }
    /// Lets the numbers follow.
    void Settle() const
    {
        QTRY_VERIFY(View("viewLayerNumbers").IsCounted());
        for (int i = 0; i < 20; ++i) {
            QCoreApplication::processEvents();
        }
    }
    void Fill(Layer& layer, uchar value) const
    {
        GetDocument().Do(Edits::FillLayer("Fill", layer, value));
        Settle();
    }
    void DoubleClick(const char* name, int row) const
    {
        NumbersView& view = View(name);
        const QPoint place = view.visualRect(view.model()->index(row, 0)).center();
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, place);
    }

    WindowFixture fixture;
};

} // namespace

void tst_DockStatistics::CountsLayersFlagsAndZones()
{
    const Numbers numbers;
    QCOMPARE(numbers.Row("viewLayerNumbers", 0), "red,256,0.026,6.25,0,80.0,240.0,400.0,560.0");
    QCOMPARE(numbers.Row("viewLayerNumbers", 1), "blue,256,0.026,6.25,0,80.0,240.0,400.0,560.0");
    QCOMPARE(numbers.View("viewLayerNumbers").model()->rowCount(), 2);
    QCOMPARE(numbers.Row("viewFlagNumbers", 0), "Usage,Town,256,0.026,6.25,80.0,240.0,400.0,560.0");
    QCOMPARE(numbers.Row("viewFlagNumbers", 2), "Value,Rich,256,0.026,6.25,80.0,240.0,400.0,560.0");
    // The circle has 0.0113 square kilometres.
    const QString zone = "1,4,6,0.011,353.68,530.52";
    QCOMPARE(numbers.Row("viewZoneNumbers", 0), "Project,All zones," + zone);
    QCOMPARE(numbers.Row("viewZoneNumbers", 1), "Type,Deer," + zone);
    QCOMPARE(numbers.Row("viewZoneNumbers", 2), "Territory,Deer / North," + zone);
    QCOMPARE(numbers.Row("viewZoneNumbers", 3), "Usage,Rest," + zone);
    QCOMPARE(numbers.View("viewZoneNumbers").model()->rowCount(), 4);
}

void tst_DockStatistics::FollowsEditsAndTheirUndo()
{
    const Numbers numbers;
    Document& document = numbers.GetDocument();
    const QString before = numbers.View("viewLayerNumbers").Csv();
    numbers.Fill(numbers.LayerAt(0), 255);
    QVERIFY(numbers.Row("viewLayerNumbers", 0).startsWith("red,4096,0.410,100.00,0,"));
    QVERIFY(numbers.Row("viewFlagNumbers", 0).startsWith("Usage,Town,4096,"));
    numbers.Fill(numbers.LayerAt(1), 7);
    QVERIFY(numbers.Row("viewLayerNumbers", 1).startsWith("blue,4096,0.410,100.00,4096,"));
    numbers.Fill(numbers.LayerAt(1), 0);
    QCOMPARE(numbers.Row("viewLayerNumbers", 1), "blue,0,0.000,0.00,0,,,,");
    document.Do(Edits::SetLayerFlags(numbers.LayerAt(0), 2, 0));
    numbers.Settle();
    QVERIFY(numbers.Row("viewFlagNumbers", 0).startsWith("Usage,Town,0,"));
    QVERIFY(numbers.Row("viewFlagNumbers", 1).startsWith("Usage,Farm,4096,"));
    ZoneValues values;
    values.SetName("Feast");
    values.counts = {10, 20, 30, 40};
    values.radius = 100;
    document.Do(Edits::InsertZone(numbers.North(), {30, 30}, values));
    numbers.Settle();
    QVERIFY(numbers.Row("viewZoneNumbers", 0).startsWith("Project,All zones,2,44,66,0.043,"));
    QVERIFY(numbers.Row("viewZoneNumbers", 4).startsWith("Usage,Feast,1,40,60,0.031,"));
    while (document.CanUndo()) {
        document.Undo();
    }
    numbers.Settle();
    QCOMPARE(QString(numbers.View("viewLayerNumbers").Csv()), before);
    QCOMPARE(numbers.View("viewZoneNumbers").model()->rowCount(), 4);
}

void tst_DockStatistics::FollowsNamesAndRows()
{
    const Numbers numbers;
    Document& document = numbers.GetDocument();
    document.Do(Edits::Rename(numbers.LayerAt(0), "Lake"));
    document.Do(Edits::MoveLayer(numbers.LayerAt(0), 1));
    document.Do(Edits::Rename(numbers.North(), "South"));
    numbers.Settle();
    QCOMPARE(numbers.FirstColumn("viewLayerNumbers"), (QStringList{"blue", "Lake"}));
    QVERIFY(numbers.Row("viewZoneNumbers", 2).startsWith("Territory,Deer / South,"));
    document.Do(Edits::RemoveLayer(numbers.LayerAt(0)));
    document.Do(Edits::RemoveTerritory(numbers.North()));
    numbers.Settle();
    QCOMPARE(numbers.FirstColumn("viewLayerNumbers"), (QStringList{"Lake"}));
    QCOMPARE(numbers.Row("viewZoneNumbers", 0), "Project,All zones,0,0,0,0.000,,");
    // Another project.
    document.Clear();
    numbers.Settle();
    QCOMPARE(numbers.FirstColumn("viewLayerNumbers"), QStringList());
}

void tst_DockStatistics::TellsTheOverlap()
{
    const Numbers numbers;
    auto* second = numbers.fixture.Child<QComboBox>("cboOverlapSecond");
    const auto* label = numbers.fixture.Child<QLabel>("lblOverlap");
    numbers.fixture.Child<QComboBox>("cboOverlapFirst")->setCurrentIndex(0);
    second->setCurrentIndex(0);
    QCOMPARE(label->text(), "Choose two layers.");
    second->setCurrentIndex(1);
    numbers.Settle();
    QCOMPARE(label->text(), "256 pixels, 0.026 km², 6.25 % of the world; 100.00 % of the first "
                            "layer, 100.00 % of the second");
    QImage mask = raster::BlankMask({64, 64});
    mask.setPixel(10, 10, 255);
    mask.setPixel(60, 60, 255);
    numbers.GetDocument().Do(Edits::ChangePixels("Paint", numbers.LayerAt(0), mask));
    numbers.Settle();
    QCOMPARE(label->text(), "1 pixels, 0.000 km², 0.02 % of the world; 50.00 % of the first "
                            "layer, 0.39 % of the second");
}

void tst_DockStatistics::AClickOnATitleSorts()
{
    const Numbers numbers;
    numbers.Fill(numbers.LayerAt(0), 0);
    const NumbersView& view = numbers.View("viewLayerNumbers");
    const QHeaderView& header = *view.horizontalHeader();
    const auto click = [&header](int column) {
        const QPoint place(header.sectionViewportPosition(column) + 8, header.height() / 2);
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, place);
    };
    click(0);
    QCOMPARE(numbers.FirstColumn("viewLayerNumbers"), (QStringList{"blue", "red"}));
    // As numbers, not as texts: 0 before 256.
    click(1);
    QCOMPARE(numbers.FirstColumn("viewLayerNumbers"), (QStringList{"red", "blue"}));
    click(1);
    QCOMPARE(numbers.FirstColumn("viewLayerNumbers"), (QStringList{"blue", "red"}));
}

void tst_DockStatistics::CopiesRowsForASpreadsheet()
{
    const Numbers numbers;
    NumbersView& view = numbers.View("viewLayerNumbers");
    const QString titles = "Layer\tPixels\tkm²\t% of world\tGreys\tX min\tX max\tZ min\tZ max\n";
    const QString red = "red\t256\t0.026\t6.25\t0\t80.0\t240.0\t400.0\t560.0\n";
    const QString blue = QString(red).replace("red", "blue");
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), titles + red + blue);
    view.selectRow(1);
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), titles + blue);
}

void tst_DockStatistics::SavesTheShownTable()
{
    Numbers numbers;
    const QString path = numbers.fixture.Path("numbers.csv");
    numbers.fixture.log.Take();
    numbers.fixture.answers.AddFile(path);
    numbers.fixture.Child<QPushButton>("btnNumbersSave")->click();
    QCOMPARE(QString(ReadBytes(path)), "Layer,Pixels,km²,% of world,Greys,X min,X max,Z min,Z max\n"
                                       "red,256,0.026,6.25,0,80.0,240.0,400.0,560.0\n"
                                       "blue,256,0.026,6.25,0,80.0,240.0,400.0,560.0\n");
    QCOMPARE(numbers.fixture.log.Take(),
             QStringList{QString("Success: Numbers saved to file '%1'.").arg(path)});
    numbers.Tabs().setCurrentIndex(2);
    numbers.fixture.answers.AddFile(numbers.fixture.Path("zones"));
    numbers.fixture.Child<QPushButton>("btnNumbersSave")->click();
    QVERIFY(ReadBytes(numbers.fixture.Path("zones.csv")).startsWith("Of,Name,Zones,"));
    // Cancelled.
    numbers.fixture.log.Take();
    numbers.fixture.answers.AddCancel();
    numbers.fixture.Child<QPushButton>("btnNumbersSave")->click();
    QCOMPARE(numbers.fixture.log.Take(), QStringList());
}

void tst_DockStatistics::SavesNoNumbersThatAreNotCounted()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    const auto& view = *fixture.Child<NumbersView>("viewLayerNumbers");
    const auto* save = fixture.Child<QPushButton>("btnNumbersSave");
    // The event loop has not run yet.
    fixture.Trigger("actionStatistics");
    QCOMPARE(view.model()->index(0, 1).data().toString(), "…");
    QVERIFY(!save->isEnabled());
    QVERIFY(view.Csv().endsWith("\nred,,,,,,,,\nblue,,,,,,,,\n"));
    QTRY_VERIFY(save->isEnabled());
    QVERIFY(view.Csv().contains("\nred,256,"));
}

void tst_DockStatistics::ADoubleClickGoesThereAndBackReturns()
{
    const Numbers numbers;
    MainView& view = numbers.fixture.View();
    const auto zoom = [&view] { return view.Zoom(); };
    const float before = zoom();
    QImage mask = raster::BlankMask({64, 64});
    mask.setPixel(10, 10, 255);
    numbers.GetDocument().Do(Edits::ChangePixels("Paint", numbers.LayerAt(0), mask));
    numbers.Settle();
    numbers.DoubleClick("viewLayerNumbers", 0);
    QVERIFY(zoom() > before);
    const float close = zoom();
    numbers.fixture.Trigger("actionGoBack");
    QCOMPARE(zoom(), before);
    numbers.Tabs().setCurrentIndex(1);
    numbers.DoubleClick("viewFlagNumbers", 0);
    QCOMPARE(zoom(), close);
    numbers.fixture.Trigger("actionGoBack");
    numbers.Tabs().setCurrentIndex(2);
    for (int row = 0; row < 4; ++row) {
        numbers.DoubleClick("viewZoneNumbers", row);
        QVERIFY2(zoom() > before, qPrintable(QString::number(row)));
        numbers.fixture.Trigger("actionGoBack");
        QCOMPARE(zoom(), before);
    }
    // Nothing to go to.
    numbers.Fill(numbers.LayerAt(0), 0);
    numbers.Tabs().setCurrentIndex(0);
    numbers.DoubleClick("viewLayerNumbers", 0);
    QCOMPARE(zoom(), before);
}

void tst_DockStatistics::PlacesThatAreNoNumbersAreLeftOut()
{
    const Numbers numbers;
    MainView& view = numbers.fixture.View();
    const float before = view.Zoom();
    numbers.North().Zones().first()->setPos(qQNaN(), 10);
    ZoneValues values;
    values.radius = 60;
    numbers.GetDocument().Do(Edits::InsertZone(numbers.North(), {32, 40}, values));
    numbers.Settle();
    numbers.Tabs().setCurrentIndex(2);
    numbers.DoubleClick("viewZoneNumbers", 0);
    QVERIFY(view.Zoom() > before);
    const QPointF middle = view.mapToScene(view.viewport()->rect().center());
    QVERIFY(QLineF(middle, {32, 40}).length() < 2);
}

void tst_DockStatistics::IsHiddenAtFirstAndIdleThen()
{
    WindowFixture fixture;
    QVERIFY(fixture.Child<DockStatistics>("DockStatistics")->isHidden());
    QVERIFY(!fixture.Action("actionStatistics")->isChecked());
    fixture.Load(fixture.WriteProject());
    QTest::qWait(20);
    QCOMPARE(fixture.Child<NumbersView>("viewLayerNumbers")->model()->rowCount(), 0);
}

void tst_DockStatistics::StrangeNamesStayInTheirCells()
{
    const Numbers numbers;
    numbers.GetDocument().Do(Edits::Rename(numbers.North(), "a,\t\"b\"\nc"));
    numbers.Settle();
    QVERIFY(numbers.View("viewZoneNumbers")
                .Csv()
                .contains("\nTerritory,\"Deer / a,\t\"\"b\"\"\nc\",1,"));
    NumbersView& view = numbers.View("viewZoneNumbers");
    numbers.Tabs().setCurrentIndex(2);
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    QVERIFY(QApplication::clipboard()->text().contains("\nTerritory\tDeer / a, \"b\" c\t1\t"));
}

QTEST_MAIN(tst_DockStatistics)
#include "tst_DockStatistics.moc"
