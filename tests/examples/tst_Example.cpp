#include "app/BatchExport.h"
#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/Files.h"

#include <QImageReader>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QWidget>
#include <QXmlStreamReader>
#include <QtTest>

#include <algorithm>
#include <memory>

namespace {

QString ExampleFolder()
{
    return QStringLiteral(QUILLMAP_EXAMPLE_FOLDER);
}

/// Relative paths, sorted, without the files that a batch run leaves in the folder.
QStringList ExampleFilesBelow(const QString& folder)
{
    QStringList files = FilesBelow(folder).keys();
    const auto isLeftBehind = [](const QString& file) {
        return file.endsWith(QLatin1Char('/')) || file.startsWith(QLatin1String("Output/")) ||
               file.startsWith(QLatin1String("territoryTypes/"));
    };
    files.erase(std::remove_if(files.begin(), files.end(), isLeftBehind), files.end());
    return files;
}

const QStringList& LayerNames()
{
    static const QStringList names = {
        QStringLiteral("Fishing grounds"),
        QStringLiteral("Coast"),
        QStringLiteral("Harbours"),
        QStringLiteral("Isles"),
        QStringLiteral("Lakes and rivers"),
        QStringLiteral("Swamps"),
        QStringLiteral("Forest"),
        QStringLiteral("Deep forest"),
        QStringLiteral("Meadows"),
        QStringLiteral("North hills"),
        QStringLiteral("Snow peaks"),
        QStringLiteral("Farmland"),
        QStringLiteral("Villages"),
        QStringLiteral("Towns"),
        QStringLiteral("Roads"),
        QStringLiteral("Military zones"),
        QStringLiteral("Airfields"),
    };
    return names;
}

int SetPixels(const QImage& mask)
{
    int count = 0;
    for (int y = 0; y < mask.height(); ++y) {
        const uchar* line = mask.constScanLine(y);
        count += static_cast<int>(std::count(line, line + mask.width(), raster::MaskSet));
    }
    return count;
}

} // namespace

class tst_Example : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void HoldsAllLayers();
    void LayersHaveFlagsAndColours();
    void TerritoriesAreManyAndOfAllUsages();
    void ZonesAreSensible();
    void PictureIsThere();
    void AreaTypesFileIsThatOfTheProject();
    void IsSmall();
    void BatchRunExportsIt();
    void IsMadeAgainWithTheSameBytes();

private:
    QVector<Territory*> AllTerritories() const;

    /// Layers have colours only while there is a widget.
    QWidget m_window;
    LayerList m_layers;
    TerritoryTypeList m_types;
};

void tst_Example::initTestCase()
{
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetDir(QDir(ExampleFolder()));
    QFile file(ExampleFolder() + QStringLiteral("/highlands.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    ProjectReader reader(file);
    const auto readLayers = [this](QXmlStreamReader& xml) { return m_layers.ReadXml(xml); };
    const auto readTypes = [this](QXmlStreamReader& xml) { return m_types.Read(xml, nullptr); };
    QVERIFY(reader.Read({[](QXmlStreamReader&) {}, readLayers, readTypes}));
    // It is whole.
    QVERIFY(file.seek(0));
    QXmlStreamReader whole(&file);
    while (!whole.atEnd()) {
        whole.readNext();
    }
    QVERIFY(!whole.hasError());
    QCOMPARE(settings.LayerSize(), QSize(2048, 2048));
    QCOMPARE(settings.WorldWidth(), 15360);
}

void tst_Example::HoldsAllLayers()
{
    QStringList names;
    const QVector<Layer*> layers = m_layers.Layers();
    for (const Layer* layer : layers) {
        names.append(layer->text());
        QCOMPARE(layer->Image().size(), QSize(2048, 2048));
        QCOMPARE(layer->Image().format(), QImage::Format_Indexed8);
        const int setPixels = SetPixels(layer->Image());
        QVERIFY2(setPixels > 5000 && setPixels < 2048 * 1024, qPrintable(layer->text()));
    }
    QCOMPARE(names, LayerNames());
}

void tst_Example::LayersHaveFlagsAndColours()
{
    const AreaFlagTypes& types = ProjectSettings::Instance().FlagTypes();
    QCOMPARE(types.usages.size(), 6);
    QCOMPARE(types.values.size(), 4);
    QSet<QRgb> colors;
    int visibleCount = 0;
    const QVector<Layer*> layers = m_layers.Layers();
    for (const Layer* layer : layers) {
        QVERIFY(layer->UsageFlags() > 0 && layer->UsageFlags() < 1U << 6U);
        QVERIFY(layer->ValueFlags() > 0 && layer->ValueFlags() < 1U << 4U);
        // The picture shows through.
        QVERIFY(layer->Color().alpha() >= 100 && layer->Color().alpha() <= 180);
        colors.insert(layer->Color().rgb());
        visibleCount += layer->IsVisible() ? 1 : 0;
    }
    QCOMPARE(colors.size(), LayerNames().size());
    QVERIFY(visibleCount >= 12);
}

QVector<Territory*> tst_Example::AllTerritories() const
{
    QVector<Territory*> territories;
    const QVector<TerritoryType*> types = m_types.Types();
    for (const TerritoryType* type : types) {
        territories += type->Territories();
    }
    return territories;
}

void tst_Example::TerritoriesAreManyAndOfAllUsages()
{
    QCOMPARE(m_types.Types().size(), 4);
    const QVector<Territory*> territories = AllTerritories();
    QVERIFY(territories.size() >= 40);
    QSet<QString> names;
    QMap<int, int> zonesOfUsage;
    int zoneCount = 0;
    for (const Territory* territory : territories) {
        names.insert(territory->text());
        for (const Zone* zone : territory->Zones()) {
            ++zonesOfUsage[zone->GetUsage()];
            ++zoneCount;
        }
    }
    QCOMPARE(names.size(), territories.size());
    QVERIFY(zoneCount >= 250);
    QCOMPARE(zonesOfUsage.keys(), QList<int>({Zone::Rest, Zone::Graze, Zone::Water,
                                              Zone::HuntingGround, Zone::DynamicEvent}));
}

void tst_Example::ZonesAreSensible()
{
    const QRectF world(0, 0, 2048, 2048);
    const QVector<Territory*> territories = AllTerritories();
    for (const Territory* territory : territories) {
        for (const Zone* zone : territory->Zones()) {
            const SpawnCounts& counts = zone->Counts();
            QVERIFY(counts.staticMin >= 0 && counts.staticMin <= counts.staticMax);
            QVERIFY(counts.dynamicMin >= 0 && counts.dynamicMin <= counts.dynamicMax);
            QVERIFY(counts.staticMax + counts.dynamicMax > 0);
            const float metres = zone->Radius() * ProjectSettings::Instance().MetresPerPixelX();
            QVERIFY(metres > 49.5F && metres < 400.5F);
            QVERIFY(world.contains(zone->pos()));
            QCOMPARE(zone->GetUsage() == Zone::DynamicEvent, !zone->EventName().isEmpty());
        }
    }
}

void tst_Example::PictureIsThere()
{
    const QImage picture(ProjectSettings::Instance().BackgroundPath());
    QCOMPARE(picture.size(), QSize(2048, 2048));
}

void tst_Example::AreaTypesFileIsThatOfTheProject()
{
    AreaFlagTypes types;
    QVERIFY(types.ReadFile(ExampleFolder() + QStringLiteral("/area-types.xml")));
    QCOMPARE(types.usages, ProjectSettings::Instance().FlagTypes().usages);
    QCOMPARE(types.values, ProjectSettings::Instance().FlagTypes().values);
}

void tst_Example::IsSmall()
{
    constexpr qint64 limit = 6000000;
    qint64 size = 0;
    const QStringList files = ExampleFilesBelow(ExampleFolder());
    for (const QString& file : files) {
        size += QFileInfo(ExampleFolder() + QLatin1Char('/') + file).size();
    }
    QVERIFY(size < limit);
}

/// Runs in a copy of the example, because a batch run reads and writes below the working directory.
void tst_Example::BatchRunExportsIt()
{
    const QTemporaryDir copy;
    const QStringList files = ExampleFilesBelow(ExampleFolder());
    for (const QString& file : files) {
        const QString target = copy.filePath(file);
        QVERIFY(QDir().mkpath(QFileInfo(target).path()));
        QVERIFY(QFile::copy(ExampleFolder() + QLatin1Char('/') + file, target));
    }
    QProcess batch;
    batch.setWorkingDirectory(copy.path());
    batch.setProcessChannelMode(QProcess::MergedChannels);
    batch.start(QStringLiteral(QUILLMAP_PROGRAM),
                {QStringLiteral("--no-gui"), QStringLiteral("--config"),
                 QStringLiteral("highlands.xml"), QStringLiteral("--output"),
                 QStringLiteral("Out")});
    QVERIFY(batch.waitForFinished(60000));
    QCOMPARE(batch.exitCode(), static_cast<int>(ExitDone));
    const QString output = QString::fromUtf8(batch.readAll());
    for (const QString& name : LayerNames()) {
        QVERIFY2(output.contains(QStringLiteral("Loading layer \"%1\"...").arg(name)),
                 qPrintable(name));
    }
    QCOMPARE(QDir(copy.filePath(QStringLiteral("territoryTypes"))).entryList(QDir::Files).size(),
             4);
    // No flag types are read, so there are no fields behind the header.
    QCOMPARE(QFileInfo(copy.filePath(QStringLiteral("Out/highlands.map"))).size(), qint64(24));
}

void tst_Example::IsMadeAgainWithTheSameBytes()
{
    const QTemporaryDir folder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The order of hash tables must not show in any file.
    environment.insert(QStringLiteral("QT_HASH_SEED"), QStringLiteral("4711"));
    QProcess generator;
    generator.setProcessEnvironment(environment);
    generator.setProcessChannelMode(QProcess::MergedChannels);
    generator.start(QStringLiteral(QUILLMAP_GENERATOR), {folder.path()});
    QVERIFY(generator.waitForFinished(280000));
    QVERIFY2(generator.exitStatus() == QProcess::NormalExit && generator.exitCode() == 0,
             generator.readAll().constData());
    const QStringList files = ExampleFilesBelow(ExampleFolder());
    QCOMPARE(ExampleFilesBelow(folder.path()), files);
    for (const QString& file : files) {
        const QByteArray committed = ReadBytes(ExampleFolder() + QLatin1Char('/') + file);
        QVERIFY2(!committed.isEmpty() && ReadBytes(folder.filePath(file)) == committed,
                 qPrintable(file));
    }
}

QTEST_MAIN(tst_Example)
#include "tst_Example.moc"
