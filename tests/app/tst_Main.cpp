#include <QApplication>
#include <QTest>
#include <QTimer>

/// The main function of the editor, which this program is linked with under another name.
int QuillmapMain(int argc, char* argv[]);

namespace {

struct Settings
{
    bool isScaled;
    bool hasDensePixmaps;
    bool isScaledByAnyFactor;
    bool dropsMouseMoves;
};

Settings whileMade;
Settings whileRunning;

Settings Present()
{
    return {QCoreApplication::testAttribute(Qt::AA_EnableHighDpiScaling),
            QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps),
            QGuiApplication::highDpiScaleFactorRoundingPolicy() ==
                Qt::HighDpiScaleFactorRoundingPolicy::PassThrough,
            QCoreApplication::testAttribute(Qt::AA_CompressHighFrequencyEvents)};
}

/// Qt calls this while the application object is made.
void LookAtTheApplication()
{
    whileMade = Present();
    // As the plugin for X11 does at this moment.
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents);
    // The window processes events before it is shown, when there is nothing to exit from.
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, qApp, [] {
        whileRunning = Present();
        QCoreApplication::exit();
    });
    timer->start();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(LookAtTheApplication)

class tst_Main : public QObject
{
    Q_OBJECT

private slots:
    void SuitsEveryScreenAndMouse();
};

void tst_Main::SuitsEveryScreenAndMouse()
{
    char name[] = "quillmap";
    char* arguments[] = {name, nullptr};
    QCOMPARE(QuillmapMain(1, arguments), 0);
    QVERIFY(whileMade.isScaled);
    QVERIFY(whileMade.hasDensePixmaps);
    QVERIFY(whileMade.isScaledByAnyFactor);
    QVERIFY(!whileRunning.dropsMouseMoves);
}

QTEST_APPLESS_MAIN(tst_Main)
#include "tst_Main.moc"
