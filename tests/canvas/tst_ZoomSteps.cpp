#include "canvas/ZoomSteps.h"

#include <QTest>

class tst_ZoomSteps : public QObject
{
    Q_OBJECT

private slots:
    void GoesFromStepToStep_data();
    void GoesFromStepToStep();
    void FindsTheLargestStepThatFits_data();
    void FindsTheLargestStepThatFits();
    void WheelHasStepsOfAQuarter();
};

void tst_ZoomSteps::GoesFromStepToStep_data()
{
    QTest::addColumn<float>("zoom");
    QTest::addColumn<float>("wheelIn");
    QTest::addColumn<float>("wheelOut");
    QTest::addColumn<float>("in");
    QTest::addColumn<float>("out");
    QTest::newRow("1") << 1.0F << 1.25F << 0.75F << 1.25F << 0.75F;
    QTest::newRow("highest") << 12.5F << 12.5F << 12.25F << 12.5F << 12.25F;
    QTest::newRow("1/2") << 0.5F << 0.75F << 0.25F << 0.75F << 0.25F;
    QTest::newRow("1/4") << 0.25F << 0.5F << 0.25F << 0.5F << 0.125F;
    QTest::newRow("1/8") << 0.125F << 0.5F << 0.25F << 0.25F << 0.0625F;
    QTest::newRow("1/16") << 0.0625F << 0.5F << 0.25F << 0.125F << 0.0625F;
    QTest::newRow("between two steps") << 1.1F << 1.25F << 1.0F << 1.25F << 1.0F;
    QTest::newRow("between 1/4 and 1/2") << 0.3F << 0.5F << 0.25F << 0.5F << 0.25F;
    QTest::newRow("between 1/8 and 1/4") << 0.2F << 0.5F << 0.25F << 0.25F << 0.125F;
    QTest::newRow("between 1/16 and 1/8") << 0.07F << 0.5F << 0.25F << 0.125F << 0.0625F;
}

void tst_ZoomSteps::GoesFromStepToStep()
{
    QFETCH(float, zoom);
    QTEST(ZoomSteps::NextOfWheel(zoom, true), "wheelIn");
    QTEST(ZoomSteps::NextOfWheel(zoom, false), "wheelOut");
    QTEST(ZoomSteps::Next(zoom, true), "in");
    QTEST(ZoomSteps::Next(zoom, false), "out");
}

void tst_ZoomSteps::FindsTheLargestStepThatFits_data()
{
    QTest::addColumn<QSizeF>("area");
    QTest::addColumn<float>("zoom");
    QTest::newRow("exactly") << QSizeF(800, 600) << 1.0F;
    QTest::newRow("a little too wide") << QSizeF(801, 10) << 0.75F;
    QTest::newRow("a little too high") << QSizeF(10, 601) << 0.75F;
    QTest::newRow("small") << QSizeF(64, 48) << 12.5F;
    QTest::newRow("a point") << QSizeF(0, 0) << 12.5F;
    QTest::newRow("4096") << QSizeF(4096, 4096) << 0.125F;
    QTest::newRow("8192") << QSizeF(8192, 8192) << 0.0625F;
    QTest::newRow("too large for any") << QSizeF(1e6, 1e6) << 0.0625F;
}

void tst_ZoomSteps::FindsTheLargestStepThatFits()
{
    QFETCH(QSizeF, area);
    QTEST(ZoomSteps::ToFit(area, {800, 600}), "zoom");
}

void tst_ZoomSteps::WheelHasStepsOfAQuarter()
{
    const QVector<float> steps = ZoomSteps::OfWheel();
    QCOMPARE(steps.size(), 50);
    for (int i = 0; i < steps.size(); ++i) {
        QCOMPARE(steps[i], 0.25F * static_cast<float>(i + 1));
    }
}

QTEST_APPLESS_MAIN(tst_ZoomSteps)
#include "tst_ZoomSteps.moc"
