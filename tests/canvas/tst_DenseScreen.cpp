#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"
#include "tests/support/Masks.h"

#include <QMouseEvent>
#include <QTest>
#include <QWindow>

/// On a screen with two device pixels for each pixel of the view.
class tst_DenseScreen : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_SCALE_FACTOR", "2"); }

private slots:
    void EveryDevicePixelIsPainted_data();
    void EveryDevicePixelIsPainted();
};

void tst_DenseScreen::EveryDevicePixelIsPainted_data()
{
    QTest::addColumn<QPointF>("step");
    QTest::newRow("to the right") << QPointF(0.5, 0);
    QTest::newRow("downwards") << QPointF(0, 0.5);
}

void tst_DenseScreen::EveryDevicePixelIsPainted()
{
    QFETCH(const QPointF, step);
    CanvasFixture canvas({800, 640});
    QCOMPARE(canvas.view.devicePixelRatioF(), 2.0);
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    // The smallest one of which a dab covers the middle of a pixel, from any place.
    canvas.dock.SetSize(2);
    // Each layer pixel is one device pixel.
    Zoom(canvas.view, -2);
    QCOMPARE(canvas.view.transform().m11(), 0.5);
    const QPointF start = canvas.view.viewport()->mapTo(&canvas.view, QPoint(100, 100));
    // Qt gives fractions to windows, not to widgets.
    QWindow* window = canvas.view.windowHandle();
    const auto send = [window](QEvent::Type type, QPointF place, Qt::MouseButton button,
                               Qt::MouseButtons buttons) {
        QMouseEvent event(type, place, window->mapToGlobal({}) + place, button, buttons,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(window, &event);
    };
    for (int i = 0; i < 40; ++i) {
        const QPointF place = start + i * step;
        const QByteArray before = Indices(layer->Image());
        send(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton);
        send(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoButton);
        QVERIFY2(Indices(layer->Image()) != before, QByteArray::number(i).constData());
    }
}

QTEST_MAIN(tst_DenseScreen)
#include "tst_DenseScreen.moc"
