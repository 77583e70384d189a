#include "app/ProjectFile.h"

#include "app/ProjectDocument.h"
#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryTypeList.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/LogSpy.h"
#include "tests/support/ProjectFixture.h"

#include <QFile>
#include <QTest>

#include <memory>

namespace {

/// A project with two layers, one of them painted, with unsaved changes.
class Changed
{
public:
    Changed()
    {
        Add("first");
        Add("second");
        ProjectSettings::Instance().SetModified(true);
    }

    bool SaveTo(const QString& path)
    {
        return SaveProjectTo(path,
                             {1, {}, [this] { names.append(Settings().Name()); }, layers, types});
    }
    QString Path(const QString& name) const { return m_project.Path(name); }
    static ProjectSettings& Settings() { return ProjectSettings::Instance(); }

    LayerList layers;
    TerritoryTypeList types;
    LogSpy log;
    /// The project's name at each call before the layers are written.
    QStringList names;

private:
    void Add(const QString& name)
    {
        auto layer = std::make_unique<Layer>(1, 2, &layers, name);
        layer->SetImage(raster::BlankMask({16, 16}), Qt::red);
        layers.AddLayer(std::move(layer));
    }

    ProjectFixture m_project;
};

} // namespace

class tst_ProjectFile : public QObject
{
    Q_OBJECT

private slots:
    void IsWrittenWithItsLayers();
    void LivesWhereItWasSaved();
    void CannotBeOpened_data();
    void CannotBeOpened();
    void StaysWhereItWasWhenTheDiskIsFull();
    void SaysHowManyBitmapsFailed();
};

void tst_ProjectFile::IsWrittenWithItsLayers()
{
    Changed project;

    QVERIFY(project.SaveTo(project.Path("a.b.xml")));

    QCOMPARE(project.log.Take(), (QStringList{"Success: Layer 'first' successfully saved.",
                                              "Success: Layer 'second' successfully saved.",
                                              "Success: Project saved to file 'a.b.xml'."}));
    QCOMPARE(project.names, QStringList{"a"});
    QCOMPARE(FilesBelow(project.Path("")).keys(),
             (QStringList{"a.b.xml", "layers/", "layers/first.tga", "layers/second.tga"}));
    QVERIFY(ReadBytes(project.Path("a.b.xml")).contains("<selected row=\"1\"/>"));
    QVERIFY(!Changed::Settings().IsModified());
}

void tst_ProjectFile::LivesWhereItWasSaved()
{
    Changed project;
    QDir().mkpath(project.Path("elsewhere"));
    WriteBytes(project.Path("world.png"), "picture");
    Changed::Settings().SetBackgroundFile("world.png");

    QVERIFY(project.SaveTo(project.Path("elsewhere/copy.xml")));

    QCOMPARE(Changed::Settings().Name(), "copy");
    QCOMPARE(Changed::Settings().FileName(), "copy.xml");
    QCOMPARE(Changed::Settings().Dir().path(), project.Path("elsewhere"));
    QCOMPARE(
        FilesBelow(project.Path("elsewhere")).keys(),
        (QStringList{"copy.xml", "layers/", "layers/first.tga", "layers/second.tga", "world.png"}));
}

void tst_ProjectFile::CannotBeOpened_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("no such folder") << "nowhere/a.xml";
    QTest::newRow("a folder") << "folder.xml";
    QTest::newRow("below a file") << "file/a.xml";
}

void tst_ProjectFile::CannotBeOpened()
{
    QFETCH(QString, file);
    Changed project;
    QDir().mkpath(project.Path("folder.xml"));
    WriteBytes(project.Path("file"), "x");
    const QStringList before = FilesBelow(project.Path("")).keys();

    QVERIFY(!project.SaveTo(project.Path(file)));

    QCOMPARE(
        project.log.Take(),
        QStringList{
            QString("Error: Failed to open file '%1' for writing.").arg(file.section('/', -1))});
    QCOMPARE(FilesBelow(project.Path("")).keys(), before);
    QVERIFY(Changed::Settings().IsModified());
    QCOMPARE(Changed::Settings().FileName(), "project.xml");
    QCOMPARE(project.names, QStringList());
}

void tst_ProjectFile::StaysWhereItWasWhenTheDiskIsFull()
{
    Changed project;
    QVERIFY(project.SaveTo(project.Path("project.xml")));
    const QByteArray before = ReadBytes(project.Path("project.xml"));
    Changed::Settings().SetModified(true);
    Changed::Settings().SetBackgroundFile("world.png");
    QDir().mkpath(project.Path("elsewhere"));
    project.log.Take();
    for (const char* file : {"project.xml", "elsewhere/copy.xml"}) {
        // There is room for the bitmaps but not for the document.
        const FileSizeLimit limit(200);

        QVERIFY(!project.SaveTo(project.Path(file)));

        const QStringList messages = project.log.Take();
        QCOMPARE(messages.at(messages.size() - 2),
                 QString("Error: Failed to open file '%1' for writing.")
                     .arg(QString(file).section('/', -1)));
        QVERIFY(messages.last().startsWith("Error: "));
        QVERIFY(Changed::Settings().IsModified());
        QCOMPARE(Changed::Settings().Name(), "project");
        QCOMPARE(Changed::Settings().FileName(), "project.xml");
        QCOMPARE(Changed::Settings().Dir().path(), QDir(project.Path("")).path());
        QCOMPARE(Changed::Settings().BackgroundFile(), "world.png");
    }
    QCOMPARE(ReadBytes(project.Path("project.xml")), before);
    QCOMPARE(FilesBelow(project.Path("elsewhere")).keys(), QStringList{"layers/"});
}

void tst_ProjectFile::SaysHowManyBitmapsFailed()
{
    Changed project;
    QDir().mkpath(project.Path("layers/first.tga"));
    QDir().mkpath(project.Path("layers/second.tga"));

    QVERIFY(project.SaveTo(project.Path("project.xml")));

    const QStringList messages = project.log.Take();
    QCOMPARE(messages.mid(messages.size() - 2),
             (QStringList{"Success: Project saved to file 'project.xml'.",
                          "Error: 2 layer bitmaps could not be saved."}));
    QVERIFY(Changed::Settings().IsModified());
    QVERIFY(ReadBytes(project.Path("project.xml")).contains("name=\"second\""));
}

QTEST_MAIN(tst_ProjectFile)
#include "tst_ProjectFile.moc"
