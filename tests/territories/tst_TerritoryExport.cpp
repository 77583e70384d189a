#include "app/ProjectSettings.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/Files.h"
#include "tests/support/LogSpy.h"
#include "tests/support/ProjectFixture.h"
#include "tests/support/XmlText.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <memory>

namespace {

QString TypePath(const ProjectFixture& project, const QString& name)
{
    return project.Path("territoryTypes/" + name + ".xml");
}

/// The names of the exported files.
QStringList Exported(const ProjectFixture& project)
{
    return QDir(project.Path("territoryTypes")).entryList(QDir::Files, QDir::Name);
}

TerritoryType* AddType(TerritoryTypeList& list, const QString& name)
{
    auto* type = new TerritoryType(name);
    list.AddType(type);
    return type;
}

/// Makes a folder with the name of the type's file, so that the type cannot be exported.
void BlockFile(const ProjectFixture& project, const QString& name)
{
    QVERIFY(QDir().mkpath(TypePath(project, name)));
}

} // namespace

class tst_TerritoryExport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void FileHoldsAllTerritories();
    void TypeWithoutTerritoriesGivesAnEmptyElement();
    void HiddenTerritoriesAreExported();
    void ReadBackTheEditorsValuesAreLost();
    void FolderIsCreatedForEachFile();
    void NameIsTheFileName_data();
    void NameIsTheFileName();
    void NameThatLeavesTheFolderIsRefused_data();
    void NameThatLeavesTheFolderIsRefused();
    void NameTooLongForAFileFails();
    void FileThatCannotBeOpenedFailsSilently();
    void FullDiskFails();
    void NoTypesSucceed();
    void AllTypesAreExported();
    void FirstFailureEndsTheExport();
    void CheckedTypesOnlyAreExported();
    void FailureOfAnUncheckedTypeDoesNotShow();
    void FailureOfACheckedTypeShows();
    void LaterOfOneNameWins();

private:
    std::unique_ptr<ProjectFixture> m_project;
    std::unique_ptr<LogSpy> m_log;
};

void tst_TerritoryExport::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(1024, 1024), QSize(1024, 1024));
    m_log = std::make_unique<LogSpy>();
}

void tst_TerritoryExport::cleanup()
{
    m_log.reset();
    m_project.reset();
}

void tst_TerritoryExport::FileHoldsAllTerritories()
{
    TerritoryType type("Deer");
    Territory* north = type.NewTerritory();
    north->SetRgba(0x80FF0000);
    for (const int usage : {int(Zone::Graze), int(Zone::DynamicEvent)}) {
        auto* zone = new Zone(north, 12.5F);
        zone->SetUsage(usage);
        zone->SetEventName("Flood & storm");
        zone->SetDynamicMax(4);
        zone->setPos(100.25, 24);
        zone->SetDepth(zone->DepthInFront());
        QVERIFY(north->AddZone(zone));
    }
    type.NewTerritory();
    QVERIFY(type.Export());
    QCOMPARE(ReadBytes(TypePath(*m_project, "Deer")).constData(),
             R"(<?xml version="1.0" encoding="UTF-8"?>
<territory-type>
    <territory color="2164195328">
        <zone name="Graze" smin="0" smax="0" dmin="0" dmax="4" x="100.25" z="1000" r="12.5"/>
        <zone name="Flood &amp; storm" smin="0" smax="0" dmin="0" dmax="4" x="100.25" z="1000" r="12.5"/>
    </territory>
    <territory color="4278190080"/>
</territory-type>
)");
    QVERIFY(m_log->Messages().isEmpty());
}

void tst_TerritoryExport::TypeWithoutTerritoriesGivesAnEmptyElement()
{
    QVERIFY(TerritoryType("Deer").Export());
    QCOMPARE(ReadBytes(TypePath(*m_project, "Deer")).constData(),
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<territory-type/>\n");
}

void tst_TerritoryExport::HiddenTerritoriesAreExported()
{
    TerritoryType type("Deer");
    Territory* territory = type.NewTerritory();
    QVERIFY(territory->AddZone(new Zone(territory)));
    territory->SetVisible(true);
    type.setCheckState(Qt::Checked);
    QVERIFY(type.Export());
    const QByteArray shown = ReadBytes(TypePath(*m_project, "Deer"));
    QVERIFY(shown.contains("<zone "));
    territory->SetVisible(false);
    type.setCheckState(Qt::Unchecked);
    QVERIFY(type.Export());
    QCOMPARE(ReadBytes(TypePath(*m_project, "Deer")), shown);
}

void tst_TerritoryExport::ReadBackTheEditorsValuesAreLost()
{
    TerritoryType type("Deer");
    auto* north = new Territory("North");
    type.AddTerritory(north);
    north->SetVisible(true);
    auto* zone = new Zone(north);
    QVERIFY(north->AddZone(zone));
    zone->SetDepth(zone->DepthInFront());
    QVERIFY(type.Export());

    const QString file = QString::fromUtf8(ReadBytes(TypePath(*m_project, "Deer")));
    ElementReader xml("<territory-type-list>" + file.section('\n', 1) + "</territory-type-list>");
    TerritoryTypeList list;
    QVERIFY(list.Read(xml, nullptr));
    const TerritoryType* readType = list.Types().constFirst();
    const Territory* readTerritory = readType->Territories().constFirst();
    QVERIFY(readType->text().isEmpty());
    QVERIFY(readTerritory->text().isEmpty());
    QVERIFY(!readTerritory->IsVisible());
    QCOMPARE(readTerritory->Color(), QColor(Qt::black));
    QCOMPARE(readTerritory->Zones().first()->zValue(), 2.0);
}

void tst_TerritoryExport::FolderIsCreatedForEachFile()
{
    const TerritoryType type("Deer");
    QVERIFY(type.Export());
    QVERIFY(QDir(m_project->Path("territoryTypes")).removeRecursively());
    QVERIFY(type.Export());
    QCOMPARE(Exported(*m_project), QStringList{"Deer.xml"});
}

void tst_TerritoryExport::NameIsTheFileName_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("per cent") << "100 %1";
    QTest::newRow("dots") << "..";
    QTest::newRow("beyond ASCII") << "Rotwild Süd";
    QTest::newRow("characters that others forbid") << "a:b\\c|d?e*f";
    QTest::newRow("one point") << "v1.2";
}

void tst_TerritoryExport::NameIsTheFileName()
{
    QFETCH(QString, name);
    QVERIFY(TerritoryType(name).Export());
    QVERIFY(QFile::exists(TypePath(*m_project, name)));
}

void tst_TerritoryExport::NameThatLeavesTheFolderIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("parent") << "../out";
    QTest::newRow("sub-folder") << "sub/out";
    QTest::newRow("absolute") << "/tmp/out";
}

void tst_TerritoryExport::NameThatLeavesTheFolderIsRefused()
{
    QFETCH(QString, name);
    QVERIFY(QDir().mkpath(m_project->Path("territoryTypes/sub")));
    QVERIFY(!TerritoryType(name).Export());
    QVERIFY(!QFile::exists(TypePath(*m_project, name)));
    QCOMPARE(
        m_log->Messages(),
        QStringList{
            QString("Error: Territory type '%1' cannot be exported under this name.").arg(name)});
}

void tst_TerritoryExport::NameTooLongForAFileFails()
{
    QVERIFY(!TerritoryType(QString(300, 'x')).Export());
}

void tst_TerritoryExport::FileThatCannotBeOpenedFailsSilently()
{
    BlockFile(*m_project, "Deer");
    QVERIFY(!TerritoryType("Deer").Export());
    QVERIFY(m_log->Messages().isEmpty());
}

void tst_TerritoryExport::FullDiskFails()
{
    QVERIFY(QDir().mkpath(m_project->Path("territoryTypes")));
    QVERIFY(QFile::link("/dev/full", TypePath(*m_project, "Deer")));
    QVERIFY(!TerritoryType("Deer").Export());
}

void tst_TerritoryExport::NoTypesSucceed()
{
    const TerritoryTypeList list;
    QVERIFY(list.ExportAll());
    QVERIFY(list.ExportChecked());
    QVERIFY(!QDir(m_project->Path("territoryTypes")).exists());
}

void tst_TerritoryExport::AllTypesAreExported()
{
    TerritoryTypeList list;
    AddType(list, "a")->setCheckState(Qt::Checked);
    AddType(list, "b");
    QVERIFY(list.ExportAll());
    QCOMPARE(Exported(*m_project), (QStringList{"a.xml", "b.xml"}));
    QVERIFY(m_log->Messages().isEmpty());
}

void tst_TerritoryExport::FirstFailureEndsTheExport()
{
    TerritoryTypeList list;
    for (const QString& name : {QString("a"), QString("b"), QString("c")}) {
        AddType(list, name)->setCheckState(Qt::Checked);
    }
    BlockFile(*m_project, "b");
    QVERIFY(!list.ExportAll());
    QCOMPARE(Exported(*m_project), QStringList{"a.xml"});
    QVERIFY(QFile::remove(TypePath(*m_project, "a")));
    QVERIFY(!list.ExportChecked());
    QCOMPARE(Exported(*m_project), QStringList{"a.xml"});
}

void tst_TerritoryExport::CheckedTypesOnlyAreExported()
{
    TerritoryTypeList list;
    AddType(list, "unchecked");
    AddType(list, "partly")->setCheckState(Qt::PartiallyChecked);
    QVERIFY(list.ExportChecked());
    QVERIFY(Exported(*m_project).isEmpty());
    AddType(list, "checked")->setCheckState(Qt::Checked);
    QVERIFY(list.ExportChecked());
    QCOMPARE(Exported(*m_project), QStringList{"checked.xml"});
}

void tst_TerritoryExport::FailureOfAnUncheckedTypeDoesNotShow()
{
    TerritoryTypeList list;
    AddType(list, "a");
    BlockFile(*m_project, "a");
    AddType(list, "b")->setCheckState(Qt::Checked);
    QVERIFY(list.ExportChecked());
    QCOMPARE(Exported(*m_project), QStringList{"b.xml"});
}

void tst_TerritoryExport::FailureOfACheckedTypeShows()
{
    TerritoryTypeList list;
    AddType(list, "a")->setCheckState(Qt::Checked);
    BlockFile(*m_project, "a");
    QVERIFY(!list.ExportChecked());
}

void tst_TerritoryExport::LaterOfOneNameWins()
{
    TerritoryTypeList list;
    AddType(list, "Deer")->NewTerritory();
    AddType(list, "Deer");
    QVERIFY(list.ExportAll());
    QCOMPARE(Exported(*m_project), QStringList{"Deer.xml"});
    QVERIFY(ReadBytes(TypePath(*m_project, "Deer")).contains("<territory-type/>"));
}

QTEST_GUILESS_MAIN(tst_TerritoryExport)
#include "tst_TerritoryExport.moc"
