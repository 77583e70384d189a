#include "ui/StatusTexts.h"

#include <QTest>

#include <limits>

class tst_StatusTexts : public QObject
{
    Q_OBJECT

private slots:
    void RoundsTheZoomToWholePerCent_data();
    void RoundsTheZoomToWholePerCent();
    void GivesScaleAndRulerStep_data();
    void GivesScaleAndRulerStep();
    void GivesThePositionInMetres_data();
    void GivesThePositionInMetres();
};

void tst_StatusTexts::RoundsTheZoomToWholePerCent_data()
{
    QTest::addColumn<float>("factor");
    QTest::addColumn<QString>("text");

    QTest::newRow("one") << 1.0F << "<strong>100%</strong>";
    QTest::newRow("down") << 1.2345F << "<strong>123%</strong>";
    QTest::newRow("half, away from zero") << 1.125F << "<strong>113%</strong>";
    QTest::newRow("least") << 0.25F << "<strong>25%</strong>";
    QTest::newRow("most") << 12.5F << "<strong>1250%</strong>";
}

void tst_StatusTexts::RoundsTheZoomToWholePerCent()
{
    QFETCH(float, factor);
    QTEST(StatusTexts::Zoom(factor), "text");
}

void tst_StatusTexts::GivesScaleAndRulerStep_data()
{
    QTest::addColumn<float>("metresPerPixel");
    QTest::addColumn<QString>("scale");
    QTest::addColumn<QString>("step");

    QTest::newRow("15360 m over 2048 pixels") << 7.5F << "X: 1 px = 7.5 m"
                                              << "X step = 187.5 m";
    QTest::newRow("whole") << 1.0F << "X: 1 px = 1 m"
                           << "X step = 25 m";
    QTest::newRow("six digits") << 15360.0F / 7.0F << "X: 1 px = 2194.29 m"
                                << "X step = 54857.1 m";
    QTest::newRow("tiny") << 1.0F / 16384.0F << "X: 1 px = 6.10352e-05 m"
                          << "X step = 0.00152588 m";
    QTest::newRow("no layer size") << std::numeric_limits<float>::infinity() << "X: 1 px = inf m"
                                   << "X step = inf m";
}

void tst_StatusTexts::GivesScaleAndRulerStep()
{
    QFETCH(float, metresPerPixel);
    QTEST(StatusTexts::Scale("X", metresPerPixel), "scale");
    QTEST(StatusTexts::RulerStep("X", metresPerPixel), "step");
}

void tst_StatusTexts::GivesThePositionInMetres_data()
{
    QTest::addColumn<int>("pixels");
    QTest::addColumn<float>("zoom");
    QTest::addColumn<float>("metresPerPixel");
    QTest::addColumn<QString>("text");

    QTest::newRow("origin") << 0 << 1.0F << 7.5F << "Z = 0";
    QTest::newRow("zoomed in") << 100 << 4.0F << 7.5F << "Z = 187.5";
    QTest::newRow("before the origin") << -3 << 0.5F << 2.0F << "Z = -12";
    QTest::newRow("six digits") << 1000 << 0.75F << 7.5F << "Z = 10000";
    QTest::newRow("a fraction") << 1 << 0.75F << 1.0F << "Z = 1.33333";
}

void tst_StatusTexts::GivesThePositionInMetres()
{
    QFETCH(int, pixels);
    QFETCH(float, zoom);
    QFETCH(float, metresPerPixel);
    QTEST(StatusTexts::Position("Z", pixels, zoom, metresPerPixel), "text");
}

QTEST_APPLESS_MAIN(tst_StatusTexts)
#include "tst_StatusTexts.moc"
