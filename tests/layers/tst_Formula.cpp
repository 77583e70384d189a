#include "layers/Formula.h"

#include "layers/FormulaGraph.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"

#include "tests/support/LayerLists.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/ProjectFixture.h"

#include <QtTest>

#include <array>
#include <climits>

namespace {

/// The pixels of the code within the rectangle; null where an operand is missing.
QImage Part(const LayerList& list, const QString& code, const QRect& rect)
{
    const std::optional<Formula> formula = ParseFormula(code);
    const auto computation = formula ? Computation::Of(list, *formula) : std::nullopt;
    return computation ? computation->Within(rect) : QImage();
}

/// The layers A to D.
struct FourLayers
{
    FourLayers()
    {
        for (const char name : {'A', 'B', 'C', 'D'}) {
            layers.append(AddLayer(list, QString(QLatin1Char(name))));
        }
    }

    const ProjectFixture project{{5, 2}};
    LayerList list;
    QVector<Layer*> layers;
};

} // namespace

class tst_Formula : public QObject
{
    Q_OBJECT

private slots:
    void CodesAreTakenApart_data();
    void CodesAreTakenApart();
    void WhatIsNoCodeIsNoFormula_data();
    void WhatIsNoCodeIsNoFormula();
    void APartEqualsThatOfTheWhole();
    void NothingIsThereWithoutAnOperand();
    void CostGrowsWithAreaRadiusAndGreys();
    void OperandsComeFirst();
    void CyclesAreFound();
    void LayersInCyclesReachThemselves();
};

void tst_Formula::CodesAreTakenApart_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("words");
    QTest::newRow("complement") << "!(12)"
                                << "Complement of A";
    QTest::newRow("union") << "+(3)(7)"
                           << "Union of A and B";
    QTest::newRow("intersection") << ".(3)(7)"
                                  << "Intersection of A and B";
    QTest::newRow("difference") << "-(3)(3)"
                                << "Difference of A and B";
    QTest::newRow("erosion") << "e(5:25)"
                             << "Erosion of A, 25 m";
    QTest::newRow("dilation") << "d(5:2000)"
                              << "Dilation of A, 2000 m";
    QTest::newRow("opening") << "o(5:1)"
                             << "Opening of A, 1 m";
    QTest::newRow("closing") << "c(5:0)"
                             << "Closing of A, 0 m";
}

void tst_Formula::CodesAreTakenApart()
{
    QFETCH(QString, code);
    const std::optional<Formula> formula = ParseFormula(code);

    QVERIFY(formula);
    QCOMPARE(formula->Code(), code);
    QTEST(formula->Words(QStringList{"A", "B"}.mid(0, formula->operands.size())), "words");
}

void tst_Formula::WhatIsNoCodeIsNoFormula_data()
{
    QTest::addColumn<QString>("code");
    for (const char* code : {"", "!", "x(1)", "+(1)", "+(1)(x)", "!()", "e(:5)", "e(a:5)", "( )"}) {
        QTest::newRow(code) << QString::fromLatin1(code);
    }
}

void tst_Formula::WhatIsNoCodeIsNoFormula()
{
    const LogSpy log;
    QFETCH(QString, code);

    QVERIFY(!ParseFormula(code));
    QCOMPARE(log.Messages(), QStringList());
}

void tst_Formula::APartEqualsThatOfTheWhole()
{
    Random random;
    for (int i = 0; i < 120; ++i) {
        const QSize size(1 + random.Below(150), 1 + random.Below(150));
        // The radius in pixels is that in metres, a third or ten times of it.
        const int scale = random.Below(3);
        const int side = scale == 0 ? size.width() : size.width() * 3;
        const ProjectFixture project(size, {scale == 2 ? qMax(size.width() / 10, 1) : side, side});
        LayerList list;
        QVector<int> ids;
        for (int k = 0; k < 2; ++k) {
            const bool isGrey = random.Below(2) == 0;
            QImage mask = RandomMask(random, size);
            for (int y = 0; y < size.height() && !isGrey; ++y) {
                uchar* row = mask.scanLine(y);
                std::transform(row, row + size.width(), row,
                               [](uchar pixel) -> uchar { return pixel < 128 ? 0 : 255; });
            }
            ids.append(AddLayer(list, mask, 0, 0)->Id());
        }
        const int operation = random.Below(OperationUnknown);
        const Formula formula{static_cast<CustomOperation>(operation),
                              IsBinaryOperation(operation) ? ids : ids.mid(0, 1),
                              IsMorphologicalOperation(operation) ? random.Below(60) : 0};
        const QString code = formula.Code();
        const QImage whole = EvaluateAtLayerSize(list, code);
        for (int k = 0; k < 8; ++k) {
            const QPoint corner(random.Below(size.width()), random.Below(size.height()));
            const QRect rect = QRect(corner, QSize(1 + random.Below(size.width() - corner.x()),
                                                   1 + random.Below(size.height() - corner.y())));
            const QImage part = Part(list, code, rect);
            QCOMPARE(part.size(), rect.size());
            QVERIFY2(Indices(part) == Indices(whole.copy(rect)), qPrintable(code));
        }
        QCOMPARE(Indices(Part(list, code, whole.rect())), Indices(whole));
    }
}

void tst_Formula::NothingIsThereWithoutAnOperand()
{
    const ProjectFixture project({5, 2});
    const LogSpy log;
    LayerList list;
    const int id = AddLayer(list, QStringLiteral("A"))->Id();
    const QString missing = QString::number(id + 1000);

    QVERIFY(Part(list, QStringLiteral("!(%1)").arg(missing), {0, 0, 2, 2}).isNull());
    QVERIFY(Part(list, QStringLiteral("?(%1)").arg(id), {0, 0, 2, 2}).isNull());
    QCOMPARE(log.Messages(), QStringList());
}

void tst_Formula::CostGrowsWithAreaRadiusAndGreys()
{
    const ProjectFixture project({500, 500}, {500, 500});
    LayerList list;
    QImage grey = FullMask({500, 500});
    grey.scanLine(250)[250] = 7;
    const int binary = AddLayer(list, FullMask({500, 500}), 0, 0)->Id();
    const int greys = AddLayer(list, grey, 0, 0)->Id();
    const auto cost = [&list](const QString& code, const QRect& rect) {
        return Computation::Of(list, *ParseFormula(code))->Cost(rect, LLONG_MAX);
    };
    const QString dilation = QStringLiteral("d(%1:%2)");
    const QRect small(240, 240, 20, 20);
    const qint64 base = cost(dilation.arg(binary).arg(10), small);

    QVERIFY(base > 0);
    QVERIFY(cost(dilation.arg(binary).arg(10), {200, 200, 100, 100}) > base);
    QVERIFY(cost(dilation.arg(binary).arg(100), small) > base);
    QVERIFY(cost(dilation.arg(greys).arg(10), small) > base);
    QVERIFY(cost(QStringLiteral("o(%1:10)").arg(binary), small) > base);
    QVERIFY(cost(QStringLiteral("!(%1)").arg(binary), small) < base);
    // What is out of sight costs nothing.
    QCOMPARE(cost(dilation.arg(greys).arg(10), {0, 0, 20, 20}),
             cost(dilation.arg(binary).arg(10), {0, 0, 20, 20}));
}

void tst_Formula::OperandsComeFirst()
{
    FourLayers four;
    const auto id = [&four](int i) { return four.layers.at(i)->Id(); };
    // A is made of D and B, B of D, and D of C, which is painted.
    four.layers.at(0)->StoreCode(QStringLiteral("+(%1)(%2)").arg(id(3)).arg(id(1)));
    four.layers.at(1)->StoreCode(QStringLiteral("!(%1)").arg(id(3)));
    four.layers.at(3)->StoreCode(QStringLiteral("d(%1:5)").arg(id(2)));
    const FormulaGraph graph(four.list);

    QCOMPARE(graph.Computed(), QVector<int>({id(0), id(1), id(3)}));
    QCOMPARE(graph.InOrder(graph.Computed()), QVector<int>({id(3), id(1), id(0)}));
    QCOMPARE(graph.InOrder({id(1)}), QVector<int>({id(3), id(1)}));
    QCOMPARE(graph.InOrder({id(2)}), QVector<int>());
    QVERIFY(graph.FindCycle(graph.Computed()).isEmpty());
    QVERIFY(!graph.FormulaOf(id(2)));
}

void tst_Formula::CyclesAreFound()
{
    FourLayers four;
    const auto id = [&four](int i) { return four.layers.at(i)->Id(); };
    // A and B are made of one another, C of A; D is made of itself.
    four.layers.at(0)->StoreCode(QStringLiteral("!(%1)").arg(id(1)));
    four.layers.at(1)->StoreCode(QStringLiteral("!(%1)").arg(id(0)));
    four.layers.at(2)->StoreCode(QStringLiteral("!(%1)").arg(id(0)));
    four.layers.at(3)->StoreCode(QStringLiteral("!(%1)").arg(id(3)));
    const FormulaGraph graph(four.list);

    QCOMPARE(ChainText(four.list, graph.FindCycle({id(2)})), QStringLiteral("A -> B -> A"));
    QCOMPARE(ChainText(four.list, graph.FindCycle({id(3)})), QStringLiteral("D -> D"));
    QVERIFY(graph.IsInCycle(id(0)));
    QVERIFY(graph.IsInCycle(id(1)));
    QVERIFY(!graph.IsInCycle(id(2)));
    QVERIFY(graph.IsInCycle(id(3)));
    QCOMPARE(graph.InOrder({id(2)}).constLast(), id(2));
}

void tst_Formula::LayersInCyclesReachThemselves()
{
    const ProjectFixture project{{5, 2}};
    Random random;
    int found = 0;
    for (int run = 0; run < 200; ++run) {
        constexpr std::size_t count = 10;
        LayerList list;
        std::vector<Layer*> layers;
        for (std::size_t i = 0; i < count; ++i) {
            layers.push_back(AddLayer(list, QString::number(i)));
        }
        std::array<std::array<bool, count>, count> reaches{};
        for (std::size_t i = 0; i < count; ++i) {
            const auto a = std::size_t(random.Below(count));
            const auto b = std::size_t(random.Below(count));
            if (random.Below(3) != 0) {
                layers[i]->StoreCode(
                    QStringLiteral("+(%1)(%2)").arg(layers[a]->Id()).arg(layers[b]->Id()));
                reaches[i][a] = reaches[i][b] = true;
            }
        }
        for (std::size_t via = 0; via < count; ++via) {
            for (std::size_t from = 0; from < count; ++from) {
                for (std::size_t to = 0; to < count; ++to) {
                    reaches[from][to] =
                        reaches[from][to] || (reaches[from][via] && reaches[via][to]);
                }
            }
        }
        const FormulaGraph graph(list);
        for (std::size_t i = 0; i < count; ++i) {
            QCOMPARE(graph.IsInCycle(layers[i]->Id()), reaches[i][i]);
            found += reaches[i][i] ? 1 : 0;
        }
    }
    QVERIFY(found > 100);
}

QTEST_GUILESS_MAIN(tst_Formula)
#include "tst_Formula.moc"
