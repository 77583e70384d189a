#include "canvas/HeatMap.h"

#include "document/edits/TerritoryEdits.h"
#include "tests/support/CanvasFixture.h"

#include <QLabel>
#include <QPainter>
#include <QtTest>

/// The colours for creatures per square kilometre, and their scale.
class tst_HeatMap : public QObject
{
    Q_OBJECT

private slots:
    void ClassesHaveRoundBounds();
    void NothingHasNoClass();
    void ColoursTheMapBelowTheZones();
    void FollowsZonesAtRest();
    void ExplainsTheColours();
    void TheMouseGoesThrough();
    void IsGoneWhenSwitchedOff();
};

namespace {

ZoneValues Creatures(int count, float radius)
{
    ZoneValues values;
    values.radius = radius;
    values.counts.staticMax = count;
    return values;
}

/// A map of 200 x 160 m with colours.
struct Heated
{
    Heated()
        : heat(canvas.document, canvas.view)
    {
        canvas.document.SetEditable(true);
    }

    void Add(int count, QPointF place, float radius)
    {
        canvas.document.Do(Edits::InsertZone(*canvas.territory, place, Creatures(count, radius)));
    }
    void Show()
    {
        heat.SetShown(true);
        Settle();
    }
    void Settle() const { QTRY_VERIFY(heat.IsUpToDate()); }
    QLabel* Legend() const { return canvas.view.findChild<QLabel*>("legendHeat"); }
    /// The map without zones.
    QColor ColorAt(QPoint place)
    {
        const QList<QGraphicsItem*> items = canvas.Scene().items();
        for (QGraphicsItem* item : items) {
            if (qgraphicsitem_cast<Zone*>(item)) {
                item->setVisible(false);
            }
        }
        QImage picture(200, 160, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::white);
        QPainter painter(&picture);
        const QRectF all(0, 0, 200, 160);
        canvas.Scene().render(&painter, all, all);
        return picture.pixelColor(place);
    }

    CanvasFixture canvas;
    HeatMap heat;
};

} // namespace

void tst_HeatMap::ClassesHaveRoundBounds()
{
    const HeatScale scale(37);
    QStringList labels;
    for (int i = 0; i < scale.Count(); ++i) {
        labels.append(scale.Label(i));
    }
    QCOMPARE(labels,
             (QStringList{"below 1", "1 to 2", "2 to 5", "5 to 10", "10 to 20", "20 and more"}));
    QCOMPARE(scale.ClassOf(0.5), 0);
    QCOMPARE(scale.ClassOf(1), 1);
    QCOMPARE(scale.ClassOf(19.9), 4);
    QCOMPARE(scale.ClassOf(20), 5);
    QCOMPARE(scale.ClassOf(1e9), 5);
    QCOMPARE(HeatScale(1).Label(5), "1 and more");
    QCOMPARE(HeatScale(1).Label(1), "0.05 to 0.1");
    QCOMPARE(HeatScale(0.05).Label(0), "below 0.002");
    QCOMPARE(HeatScale(1e300).Count(), 6);
}

void tst_HeatMap::NothingHasNoClass()
{
    QCOMPARE(HeatScale(0).Count(), 0);
    QCOMPARE(HeatScale(0).ClassOf(0), -1);
    QCOMPARE(HeatScale(5).ClassOf(0), -1);
    QCOMPARE(HeatScale(5).ClassOf(-1), -1);
}

void tst_HeatMap::ColoursTheMapBelowTheZones()
{
    Heated heated;
    heated.Add(10, {50, 50}, 20);
    heated.Add(100, {150, 50}, 20);
    heated.Show();
    const QColor few = heated.ColorAt({50, 50});
    const QColor many = heated.ColorAt({150, 50});
    QVERIFY(few != QColor(Qt::white));
    QVERIFY(many != QColor(Qt::white));
    QVERIFY(many.green() < few.green());
    QCOMPARE(heated.ColorAt({50, 100}), QColor(Qt::white));
    QCOMPARE(heated.ColorAt({50, 64}), few);
}

void tst_HeatMap::FollowsZonesAtRest()
{
    Heated heated;
    heated.Show();
    QCOMPARE(heated.ColorAt({50, 50}), QColor(Qt::white));
    heated.Add(10, {50, 50}, 20);
    QVERIFY(!heated.heat.IsUpToDate());
    heated.Settle();
    QVERIFY(heated.ColorAt({50, 50}) != QColor(Qt::white));
    heated.canvas.document.SetHandBusy(true);
    heated.canvas.document.SetHandBusy(false);
    heated.canvas.document.Undo();
    heated.Settle();
    QCOMPARE(heated.ColorAt({50, 50}), QColor(Qt::white));
    // Not while the hand is at work.
    heated.Add(10, {50, 50}, 20);
    heated.canvas.document.SetHandBusy(true);
    QTest::qWait(400);
    QVERIFY(!heated.heat.IsUpToDate());
    heated.canvas.document.SetHandBusy(false);
    heated.Settle();
}

void tst_HeatMap::ExplainsTheColours()
{
    Heated heated;
    heated.Show();
    QVERIFY(heated.Legend()->text().contains("No creatures"));
    heated.Add(10, {50, 50}, 20);
    heated.Settle();
    // On 0.00126 square kilometres.
    QVERIFY2(heated.Legend()->text().contains("5000 and more"),
             qPrintable(heated.Legend()->text()));
    QVERIFY(heated.Legend()->text().contains("Creatures per km², at most"));
    QVERIFY(heated.Legend()->isVisibleTo(&heated.canvas.view));
    const QRect map = heated.canvas.view.viewport()->geometry();
    QVERIFY(map.contains(heated.Legend()->geometry()));
    heated.canvas.view.resize(heated.canvas.view.size() + QSize(50, 70));
    QCoreApplication::processEvents();
    const QRect larger = heated.canvas.view.viewport()->geometry();
    QVERIFY(larger != map);
    QCOMPARE(larger.bottomRight() - heated.Legend()->geometry().bottomRight(), QPoint(10, 10));
}

void tst_HeatMap::TheMouseGoesThrough()
{
    Heated heated;
    heated.Add(10, {50, 50}, 20);
    heated.Show();
    const int count = heated.canvas.Scene().items(QPointF(50, 50)).size();
    heated.heat.SetShown(false);
    QCOMPARE(heated.canvas.Scene().items(QPointF(50, 50)).size(), count);
    QVERIFY(count > 0);
}

void tst_HeatMap::IsGoneWhenSwitchedOff()
{
    Heated heated;
    heated.Add(10, {50, 50}, 20);
    const QColor before = heated.ColorAt({50, 50});
    heated.Show();
    QVERIFY(heated.ColorAt({50, 50}) != before);
    heated.heat.SetShown(false);
    QCOMPARE(heated.ColorAt({50, 50}), before);
    QVERIFY(!heated.Legend());
    heated.Add(10, {150, 50}, 20);
    QVERIFY(heated.heat.IsUpToDate());
}

QTEST_MAIN(tst_HeatMap)
#include "tst_HeatMap.moc"
