#include "territories/ZoneArrangement.h"

#include "territories/TerritoryColors.h"

#include <QTest>

#include <cmath>
#include <limits>

using Centres = std::vector<QPointF>;
Q_DECLARE_METATYPE(Centres)
Q_DECLARE_METATYPE(ZoneArrangement)

class tst_ZoneArrangement : public QObject
{
    Q_OBJECT

private slots:
    void Arranges_data();
    void Arranges();
    void ACircleKeepsOrderAndMiddle();
    void FewOrEqualCentresAreArrangedToo();
    void AColourOfItsOwnIsUnlikeAllOthers();
};

void tst_ZoneArrangement::Arranges_data()
{
    QTest::addColumn<ZoneArrangement>("arrangement");
    QTest::addColumn<Centres>("expected");

    // Of (10, 5), (40, 25), (20, 100).
    QTest::newRow("left") << ZoneArrangement::AlignLeft << Centres{{10, 5}, {10, 25}, {10, 100}};
    QTest::newRow("centre X") << ZoneArrangement::AlignCentreX
                              << Centres{{25, 5}, {25, 25}, {25, 100}};
    QTest::newRow("right") << ZoneArrangement::AlignRight << Centres{{40, 5}, {40, 25}, {40, 100}};
    QTest::newRow("top") << ZoneArrangement::AlignTop << Centres{{10, 100}, {40, 100}, {20, 100}};
    QTest::newRow("centre Z") << ZoneArrangement::AlignCentreZ
                              << Centres{{10, 52.5}, {40, 52.5}, {20, 52.5}};
    QTest::newRow("bottom") << ZoneArrangement::AlignBottom << Centres{{10, 5}, {40, 5}, {20, 5}};
    QTest::newRow("along X") << ZoneArrangement::DistributeX
                             << Centres{{10, 5}, {40, 25}, {25, 100}};
    QTest::newRow("along Z") << ZoneArrangement::DistributeZ
                             << Centres{{10, 5}, {40, 52.5}, {20, 100}};
}

void tst_ZoneArrangement::Arranges()
{
    QFETCH(ZoneArrangement, arrangement);
    QFETCH(Centres, expected);
    const Centres centres{{10, 5}, {40, 25}, {20, 100}};
    QCOMPARE(Arranged(centres, arrangement), expected);
}

void tst_ZoneArrangement::ACircleKeepsOrderAndMiddle()
{
    // East, north, west and south of (100, 200), at different distances, in another order.
    const Centres centres{{100, 240}, {70, 200}, {130, 200}, {100, 160}};
    const Centres onCircle = Arranged(centres, ZoneArrangement::Circle, 500);
    const Centres expected{{100, 700}, {-400, 200}, {600, 200}, {100, -300}};
    for (std::size_t i = 0; i < centres.size(); ++i) {
        QVERIFY(std::hypot(onCircle[i].x() - expected[i].x(), onCircle[i].y() - expected[i].y()) <
                1e-9);
    }
    // Uneven ones come to be at equal distances from one another.
    const Centres uneven =
        Arranged({{0, 0}, {10, 0}, {11, 1}, {90, 5}, {91, 70}}, ZoneArrangement::Circle, 100);
    double smallest = std::numeric_limits<double>::max();
    for (std::size_t i = 0; i < uneven.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            smallest = std::min(
                smallest, std::hypot(uneven[i].x() - uneven[j].x(), uneven[i].y() - uneven[j].y()));
        }
    }
    QVERIFY(std::fabs(smallest - 2 * 100 * std::sin(M_PI / 5)) < 1e-9);
}

void tst_ZoneArrangement::FewOrEqualCentresAreArrangedToo()
{
    for (int i = 0; i <= int(ZoneArrangement::Circle); ++i) {
        const auto arrangement = ZoneArrangement(i);
        QVERIFY(Arranged({}, arrangement, 5).empty());
        const Centres one = Arranged({{3, 4}}, arrangement, 5);
        QCOMPARE(one.size(), std::size_t(1));
        QCOMPARE(one[0], arrangement == ZoneArrangement::Circle ? QPointF(8, 4) : QPointF(3, 4));
        const Centres equal = Arranged({{3, 4}, {3, 4}, {3, 4}}, arrangement, 0);
        QCOMPARE(equal, (Centres{{3, 4}, {3, 4}, {3, 4}}));
    }
}

void tst_ZoneArrangement::AColourOfItsOwnIsUnlikeAllOthers()
{
    QVector<QColor> taken;
    for (int i = 0; i < 60; ++i) {
        const QColor color = ColorOfItsOwn(taken);
        QCOMPARE(color.alpha(), 255);
        QVERIFY(!taken.contains(color));
        if (i < 6) {
            for (const QColor& other : qAsConst(taken)) {
                QVERIFY(std::abs(color.red() - other.red()) +
                            std::abs(color.green() - other.green()) +
                            std::abs(color.blue() - other.blue()) >
                        100);
            }
        }
        taken.append(color);
    }
    QCOMPARE(ColorOfItsOwn({}), taken.first());
}

QTEST_APPLESS_MAIN(tst_ZoneArrangement)
#include "tst_ZoneArrangement.moc"
