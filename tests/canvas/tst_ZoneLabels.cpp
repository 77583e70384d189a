#include "canvas/ZoneLabels.h"

#include "document/edits/TerritoryEdits.h"
#include "tests/support/CanvasFixture.h"
#include "tests/support/PaintedRegion.h"

#include <QFontMetricsF>
#include <QTest>

#include <cmath>

namespace {

const QRectF Everywhere(-1000, -1000, 4000, 4000);

class Labelled : public CanvasFixture
{
public:
    Labelled()
    {
        territory->SetVisible(true);
        Labels().SetShown(true);
    }

    ZoneLabels& Labels() { return view.Labels(); }
    QStringList Texts(const QRectF& area = Everywhere, qreal zoom = 4)
    {
        QStringList texts;
        for (const ZoneLabels::Label& label : Labels().Labels(area, zoom)) {
            texts.append(label.text);
        }
        return texts;
    }
    void SetCounts(Zone* zone, const SpawnCounts& counts) const
    {
        ZoneValues values = zone->Values();
        values.counts = counts;
        zone->SetValues(values);
    }
};

} // namespace

class tst_ZoneLabels : public QObject
{
    Q_OBJECT

private slots:
    void TellNumberAndCounts();
    void LiveAboveAZoom();
    void StandWithinTheirCircles();
    void AreOfVisibleZonesOnly();
    void NumbersFollowTheTerritory();
    void AreDrawnWhereTheySay();
};

void tst_ZoneLabels::TellNumberAndCounts()
{
    Labelled canvas;
    canvas.SetCounts(canvas.AddZone({50, 50}, 40), {1, 2, 3, 4});
    canvas.SetCounts(canvas.AddZone({150, 50}, 40), {5, 5, 0, 0});
    Territory* other = canvas.type->NewTerritory();
    other->SetVisible(true);
    auto* zone = new Zone(other, 40);
    zone->setPos(50, 100);
    other->AddZone(zone);
    canvas.Scene().addItem(zone);
    QCOMPARE(canvas.Texts(), QStringList({QStringLiteral("1\n1\u20132 | 3\u20134"),
                                          QStringLiteral("2\n5 | 0"), QStringLiteral("1\n0 | 0")}));
}

void tst_ZoneLabels::LiveAboveAZoom()
{
    Labelled canvas;
    canvas.AddZone({50, 50}, 100);
    QCOMPARE(canvas.Texts(Everywhere, 2).size(), 1);
    QVERIFY(canvas.Texts(Everywhere, 1.75).isEmpty());
    canvas.Labels().SetShown(false);
    QVERIFY(canvas.Texts(Everywhere, 2).isEmpty());
}

void tst_ZoneLabels::StandWithinTheirCircles()
{
    Labelled canvas;
    const QFontMetricsF metrics(canvas.view.font());
    for (int radius = 1; radius < 60; ++radius) {
        canvas.AddZone({radius * 10.0, 50}, static_cast<float>(radius));
    }
    constexpr qreal zoom = 3;
    int lines[3] = {};
    for (const ZoneLabels::Label& label : canvas.Labels().Labels(Everywhere, zoom)) {
        const qreal radius = static_cast<qreal>(label.zone->Radius()) * zoom;
        for (const QPointF corner : {label.place.topLeft(), label.place.topRight(),
                                     label.place.bottomLeft(), label.place.bottomRight()}) {
            QVERIFY(std::hypot(corner.x(), corner.y()) <= radius);
        }
        const QStringList texts = label.text.split(QLatin1Char('\n'));
        ++lines[texts.size()];
        QVERIFY(label.place.height() >= texts.size() * metrics.height());
        for (const QString& text : texts) {
            QVERIFY(label.place.width() >= metrics.horizontalAdvance(text));
        }
    }
    // Small circles have no room, larger ones have room for the number.
    QVERIFY(lines[1] > 0);
    QVERIFY(lines[2] > 0);
    QVERIFY(lines[1] + lines[2] < 59);
}

void tst_ZoneLabels::AreOfVisibleZonesOnly()
{
    Labelled canvas;
    canvas.AddZone({50, 50}, 40);
    Zone* second = canvas.AddZone({150, 50}, 40);
    QCOMPARE(canvas.Texts({0, 0, 20, 60}).size(), 1);
    QVERIFY(canvas.Texts({0, 120, 20, 20}).isEmpty());
    second->setOpacity(0);
    QCOMPARE(canvas.Texts(), QStringList(QStringLiteral("1\n0 | 0")));
    second->setOpacity(1);
    second->setVisible(false);
    QCOMPARE(canvas.Texts(), QStringList(QStringLiteral("1\n0 | 0")));
}

void tst_ZoneLabels::NumbersFollowTheTerritory()
{
    Labelled canvas;
    Zone* first = canvas.AddZone({50, 50}, 40);
    canvas.AddZone({150, 50}, 40);
    canvas.view.ShowAt(2, {0, 0}, {0, 0});
    QCoreApplication::processEvents();
    const PaintedRegion painted(*canvas.view.viewport());
    canvas.document.Do(Edits::RemoveZones({first}));
    QCOMPARE(canvas.Texts(), QStringList(QStringLiteral("1\n0 | 0")));
    QCoreApplication::processEvents();
    QVERIFY(painted.region.contains(canvas.view.mapFromScene(QPointF(150, 60))));
}

void tst_ZoneLabels::AreDrawnWhereTheySay()
{
    Labelled canvas;
    Zone* zone = canvas.AddZone({50, 50}, 30);
    zone->SetColor(Qt::blue);
    canvas.view.ShowAt(2, {0, 0}, {0, 0});
    const QImage with = canvas.view.viewport()->grab().toImage();
    canvas.Labels().SetShown(false);
    const QImage without = canvas.view.viewport()->grab().toImage();
    QVERIFY(with != without);
    canvas.Labels().SetShown(true);
    const ZoneLabels::Label label = canvas.Labels().Labels(Everywhere, 2).front();
    const QPointF centre = canvas.view.viewportTransform().map(zone->pos());
    const QRect place = label.place.translated(centre).toRect();
    int changed = 0;
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x) {
            if (with.pixel(x, y) != without.pixel(x, y)) {
                QVERIFY(place.contains(x, y));
                ++changed;
            }
        }
    }
    QCOMPARE(changed, place.width() * place.height());
}

QTEST_MAIN(tst_ZoneLabels)
#include "tst_ZoneLabels.moc"
