#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QPixmap>
#include <QtTest>

/// Every icon that the program asks for by name, on a screen with two pixels per point.
class tst_Resources : public QObject
{
    Q_OBJECT

public:
    static void initMain();

private slots:
    void IconsLoad_data();
    void IconsLoad();
    void IconsAreTwiceAsLargeOnDenseScreens_data();
    void IconsAreTwiceAsLargeOnDenseScreens();
    void PicturesOfZonesAreNot_data();
    void PicturesOfZonesAreNot();
    void TheProgramsIconComesInAllSizes_data();
    void TheProgramsIconComesInAllSizes();
};

namespace {

void AddZoneIcons()
{
    for (const char* name : {"rest", "graze", "water", "hunting", "event"}) {
        QTest::newRow(name) << QStringLiteral(":/zone/") + QLatin1String(name) << 32;
    }
}

void AddIcons()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("size");
    AddZoneIcons();
    for (const char* path : {
             ":/icon-new-project",
             ":/icon-open",
             ":/icon-save",
             ":/icon-export",
             ":/icon-world",
             ":/icon-areas",
             ":/icon-import",
             ":/icon-custom-layer",
             ":/icon-painted-layer",
             ":/icon-finding-error",
             ":/icon-finding-warning",
             ":/icon-finding-none",
             ":/icon-tool-brush",
             ":/icon-tool-line",
             ":/icon-tool-rectangle",
             ":/icon-tool-ellipse",
             ":/icon-tool-polygon",
             ":/icon-tool-lasso",
             ":/icon-tool-fill",
             ":/icon-tool-pick",
             ":/Resources/zone-select.png",
             ":/Resources/zone-add.png",
             ":/Resources/zone-delete.png",
             ":/Resources/ter-query.png",
             ":/Resources/ter-create.png",
             ":/bringtofront",
             ":/sendtoback",
         }) {
        QTest::newRow(path) << QString(QLatin1String(path)) << 24;
    }
    QTest::newRow(":/quillmap") << QStringLiteral(":/quillmap") << 64;
}

bool ShowsSomething(const QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) == 255) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

void tst_Resources::initMain()
{
    qputenv("QT_SCALE_FACTOR", "2");
    QGuiApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
}

void tst_Resources::IconsLoad_data()
{
    AddIcons();
}

void tst_Resources::IconsLoad()
{
    QFETCH(QString, path);
    QFETCH(int, size);
    QImageReader reader(path);
    const QImage image = reader.read();
    QVERIFY2(!image.isNull(), qPrintable(reader.errorString()));
    QCOMPARE(image.size(), QSize(size, size));
    QVERIFY(image.hasAlphaChannel());
    QVERIFY(ShowsSomething(image));
}

void tst_Resources::IconsAreTwiceAsLargeOnDenseScreens_data()
{
    AddIcons();
}

void tst_Resources::IconsAreTwiceAsLargeOnDenseScreens()
{
    QFETCH(QString, path);
    QFETCH(int, size);
    QCOMPARE(qGuiApp->devicePixelRatio(), 2.0);
    const QIcon icon(path);
    const QList<QSize> drawn = {QSize(size, size), QSize(2 * size, 2 * size)};
    QCOMPARE(icon.availableSizes(), drawn);
    const QPixmap pixmap = icon.pixmap(size);
    QCOMPARE(pixmap.size(), QSize(2 * size, 2 * size));
    QCOMPARE(pixmap.devicePixelRatio(), 2.0);
}

void tst_Resources::PicturesOfZonesAreNot_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("size");
    AddZoneIcons();
}

// Zones scale and centre their picture by its width, so a denser picture would be misplaced.
void tst_Resources::PicturesOfZonesAreNot()
{
    QFETCH(QString, path);
    QFETCH(int, size);
    const QPixmap pixmap(path);
    QCOMPARE(pixmap.size(), QSize(size, size));
    QCOMPARE(pixmap.devicePixelRatio(), 1.0);
}

void tst_Resources::TheProgramsIconComesInAllSizes_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        QTest::addRow("%d", size) << size;
    }
}

void tst_Resources::TheProgramsIconComesInAllSizes()
{
    QFETCH(int, size);
    const QImage image(QStringLiteral(":/quillmap-%1").arg(size));
    QCOMPARE(image.size(), QSize(size, size));
    QVERIFY(ShowsSomething(image));
}

QTEST_MAIN(tst_Resources)
#include "tst_Resources.moc"
