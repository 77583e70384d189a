#include "app/Xml.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/Targa.h"

#include "tests/support/Files.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/ProjectFixture.h"

#include <QXmlStreamReader>
#include <QtTest>

/// Runs the cases that tests/golden holds as folders of files.
class tst_Golden : public QObject
{
    Q_OBJECT

private slots:
    void BitmapsLoadAsExpected_data() { AddCases("targa"); }
    void BitmapsLoadAsExpected();
    void MapsAreWrittenAsExpected_data() { AddCases("map"); }
    void MapsAreWrittenAsExpected();
    void MapsAreImportedAsExpected_data() { AddCases("map"); }
    void MapsAreImportedAsExpected();
    void AreaTypesAreReadAsExpected_data() { AddCases("area-types"); }
    void AreaTypesAreReadAsExpected();

private:
    static void AddCases(const QString& topic);
};

namespace {

QStringList ReadLines(const QString& path)
{
    QStringList lines = QString::fromUtf8(ReadBytes(path)).split('\n');
    lines.removeLast();
    return lines;
}

void ReadTypes(const QDir& folder)
{
    if (folder.exists("area-types.xml")) {
        AreaFlagTypes types;
        types.ReadFile(folder.filePath("area-types.xml"));
        ProjectSettings::Instance().SetFlagTypes(types);
    }
}

void ReadProject(const QDir& folder, LayerList& layers)
{
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetDir(folder);
    QXmlStreamReader xml(ReadBytes(folder.filePath("project.xml")));
    WalkXml(xml, {{QLatin1String("global"),
                   [&settings](QXmlStreamReader& element) {
                       settings.ReadXml(element);
                       return true;
                   }},
                  {QLatin1String("layers"),
                   [&layers](QXmlStreamReader& element) { return layers.ReadXml(element); }}});
}

QStringList Description(const LayerList& layers)
{
    QStringList lines;
    const QVector<Layer*> all = layers.Layers();
    for (const Layer* layer : all) {
        lines.append(QString("%1 %2 %3")
                         .arg(QString::number(layer->UsageFlags()),
                              QString::number(layer->ValueFlags()), layer->text()));
        lines += ArtFromMask(layer->Image());
    }
    return lines;
}

} // namespace

void tst_Golden::AddCases(const QString& topic)
{
    QTest::addColumn<QString>("path");
    const QDir folder(QFINDTESTDATA("../golden/" + topic));
    const QStringList names = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    QVERIFY2(!names.isEmpty(), "There are no cases.");
    for (const QString& name : names) {
        QTest::newRow(qPrintable(name)) << folder.filePath(name);
    }
}

void tst_Golden::BitmapsLoadAsExpected()
{
    QFETCH(QString, path);
    const QDir folder(path);
    QStringList messages;
    QSize size;
    const QImage expected(folder.filePath("expected.pgm"));
    if (expected.isNull()) {
        messages = ReadLines(folder.filePath("refused.txt"));
        const QStringList sides = messages.takeFirst().split(' ');
        size = QSize(sides.at(0).toInt(), sides.at(1).toInt());
    } else {
        size = expected.size();
    }
    const ProjectFixture project(size);
    const LogSpy log;
    const QImage mask = LoadTarga(folder.filePath("file.tga"));
    QCOMPARE(log.Messages(), messages);
    // Grey values are the indices of a mask.
    QCOMPARE(mask.convertToFormat(QImage::Format_Grayscale8),
             expected.convertToFormat(QImage::Format_Grayscale8));
}

void tst_Golden::MapsAreWrittenAsExpected()
{
    QFETCH(QString, path);
    const ProjectFixture project;
    ReadTypes(path);
    LayerList layers;
    ReadProject(path, layers);
    QVERIFY(layers.SaveMap(project.Path("written.map")));
    QCOMPARE(ReadBytes(project.Path("written.map")).toHex(' '),
             ReadBytes(QDir(path).filePath("expected.map")).toHex(' '));
}

void tst_Golden::MapsAreImportedAsExpected()
{
    QFETCH(QString, path);
    const ProjectFixture project;
    ReadTypes(path);
    QFile map(QDir(path).filePath("expected.map"));
    QVERIFY(map.open(QIODevice::ReadOnly));
    LayerList layers;
    QVERIFY(layers.ImportMap(map));
    QVERIFY(map.atEnd());
    QCOMPARE(Description(layers), ReadLines(QDir(path).filePath("imported.txt")));
}

void tst_Golden::AreaTypesAreReadAsExpected()
{
    QFETCH(QString, path);
    const QDir folder(path);
    const LogSpy log;
    AreaFlagTypes types;
    const bool isRead = types.ReadFile(folder.filePath("file.xml"));
    QStringList lines;
    for (const QString& name : qAsConst(types.usages)) {
        lines.append(QString("usage \"%1\"").arg(name));
    }
    for (const QString& name : qAsConst(types.values)) {
        lines.append(QString("value \"%1\"").arg(name));
    }
    QCOMPARE(lines + log.Messages(), ReadLines(folder.filePath("expected.txt")));
    QCOMPARE(isRead, log.Messages().isEmpty());
}

QTEST_GUILESS_MAIN(tst_Golden)

#include "tst_Golden.moc"
