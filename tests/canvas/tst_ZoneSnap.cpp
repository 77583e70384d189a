#include "canvas/tools/ZoneSnap.h"

#include "tests/support/Random.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr qreal Reach = 8;

/// Looks at each circle.
QPointF LiteralSnap(const std::vector<SnapCircle>& others, const SnapCircle& dragged, qreal reach)
{
    QPointF best = dragged.centre;
    qreal shortest = reach;
    for (const SnapCircle& other : others) {
        const QPointF way = dragged.centre - other.centre;
        const qreal distance = std::hypot(way.x(), way.y());
        if (distance < shortest) {
            shortest = distance;
            best = other.centre;
        }
        const qreal rims[] = {other.radius + dragged.radius,
                              std::abs(other.radius - dragged.radius)};
        for (const qreal rim : rims) {
            if (distance > 0 && rim > 0 && std::abs(distance - rim) < shortest) {
                shortest = std::abs(distance - rim);
                best = other.centre + way * (rim / distance);
            }
        }
    }
    return best;
}

} // namespace

class tst_ZoneSnap : public QObject
{
    Q_OBJECT

private slots:
    void Snaps_data();
    void Snaps();
    void PassesOverWhatIsNoNumber();
    void RandomCirclesSnapAsByPlainArithmetic();
};

void tst_ZoneSnap::Snaps_data()
{
    QTest::addColumn<QPointF>("centre");
    QTest::addColumn<QPointF>("snapped");
    // The other circle is at 100, 100 with a radius of 30, the dragged one has a radius of 10.
    QTest::newRow("centre") << QPointF(103, 104) << QPointF(100, 100);
    QTest::newRow("rim from outside") << QPointF(143, 100) << QPointF(140, 100);
    QTest::newRow("rim from outside, overlapping") << QPointF(100, 65) << QPointF(100, 60);
    QTest::newRow("rim from inside") << QPointF(117, 100) << QPointF(120, 100);
    QTest::newRow("on the other centre") << QPointF(100, 100) << QPointF(100, 100);
    QTest::newRow("out of reach") << QPointF(149, 100) << QPointF(149, 100);
    QTest::newRow("far away") << QPointF(900, 700) << QPointF(900, 700);
}

void tst_ZoneSnap::Snaps()
{
    QFETCH(QPointF, centre);
    QFETCH(QPointF, snapped);
    const ZoneSnap snap({{{100, 100}, 30}, {{500, 500}, 300}});
    QCOMPARE(snap.Snapped({centre, 10}, Reach), snapped);
}

void tst_ZoneSnap::PassesOverWhatIsNoNumber()
{
    constexpr qreal nan = std::numeric_limits<qreal>::quiet_NaN();
    constexpr qreal infinity = std::numeric_limits<qreal>::infinity();
    const ZoneSnap snap({{{nan, 100}, 30},
                         {{100, 100}, nan},
                         {{infinity, 0}, 5},
                         {{100, 100}, infinity},
                         {{100, 100}, 30}});
    QCOMPARE(snap.Snapped({{102, 100}, 10}, Reach), QPointF(100, 100));
    QCOMPARE(ZoneSnap({}).Snapped({{102, 100}, 10}, Reach), QPointF(102, 100));
}

void tst_ZoneSnap::RandomCirclesSnapAsByPlainArithmetic()
{
    Random random;
    const auto circle = [&random] {
        return SnapCircle{{random.Below(20000) / 10.0, random.Below(20000) / 10.0},
                          random.Below(2000) / 10.0};
    };
    int snapped = 0;
    for (int round = 0; round < 300; ++round) {
        std::vector<SnapCircle> others;
        for (int i = random.Below(60); i > 0; --i) {
            others.push_back(circle());
        }
        const ZoneSnap snap(others);
        for (int i = 0; i < 20; ++i) {
            const SnapCircle dragged = circle();
            const QPointF place = snap.Snapped(dragged, Reach);
            const QPointF expected = LiteralSnap(others, dragged, Reach);
            snapped += int(place != dragged.centre);
            QVERIFY(std::hypot((place - expected).x(), (place - expected).y()) < 1e-6);
        }
    }
    QVERIFY(snapped > 100);
}

QTEST_APPLESS_MAIN(tst_ZoneSnap)
#include "tst_ZoneSnap.moc"
