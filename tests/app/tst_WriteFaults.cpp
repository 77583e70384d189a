#include "app/ProjectDocument.h"
#include "app/ProjectFile.h"
#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/LogSpy.h"
#include "tests/support/ProjectFixture.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>

#include <unistd.h>

namespace {

constexpr int Side = 64;

/// A project in a small folder that can be filled. Its two states differ in every file.
class Project
{
public:
    Project() { Build(1); }

    void Build(quint32 state)
    {
        ProjectSettings::Instance().SetFlagTypes({{"Town", "Farm"}, {}});
        layers.Clear();
        types.Clear();
        std::mt19937 random(state);
        for (const char* name : {"first", "second"}) {
            QImage mask = raster::BlankMask({Side, Side});
            for (int y = 0; y < Side; ++y) {
                uchar* line = mask.scanLine(y);
                std::generate(line, line + Side,
                              [&random] { return random() % 2 == 0 ? uchar(0) : uchar(255); });
            }
            auto layer = std::make_unique<Layer>(1, 0, &layers, QLatin1String(name));
            layer->SetImage(mask, Qt::red);
            layer->SetUsageFlags(state);
            layers.AddLayer(std::move(layer));
        }
        auto* type = new TerritoryType(QStringLiteral("Deer"));
        types.AddType(type);
        auto* territory = new Territory(QString(state == 1 ? 1 : 20000, QLatin1Char('x')));
        territory->AddZone(new Zone(territory, 100.0F * static_cast<float>(state)));
        type->AddTerritory(territory);
        ProjectSettings::Instance().SetModified(true);
    }

    QString Folder() const { return m_fixture.Path({}); }
    QMap<QString, QByteArray> Files() const
    {
        QMap<QString, QByteArray> files = FilesBelow(Folder());
        files.remove(QStringLiteral("filler"));
        return files;
    }

    bool SaveDocument()
    {
        return SaveProjectTo(m_fixture.Path("p.xml"), {0, {}, {}, layers, types});
    }
    bool SaveMap() { return layers.SaveMap(ProjectSettings::Instance().MapPath()); }
    bool ExportTypes() { return types.ExportAll(); }
    void SaveAll()
    {
        QVERIFY(SaveDocument());
        QVERIFY(SaveMap());
        QVERIFY(ExportTypes());
    }

    LayerList layers;
    TerritoryTypeList types;
    LogSpy log;

private:
    ProjectFixture m_fixture{{Side, Side}, {Side, Side}};
};

using Fault = std::function<std::shared_ptr<void>(const QString& folder)>;

/// Moves the project's files to a disk that has no more room.
std::shared_ptr<void> FillDisk(const QString& folder)
{
    constexpr int diskSize = 128 * 1024;
    const QMap<QString, QByteArray> files = FilesBelow(folder);
    auto disk = std::make_shared<SmallDisk>(folder, diskSize);
    [&] { QVERIFY2(disk->IsThere(), "Only root can make a small disk."); }();
    for (auto it = files.begin(); it != files.end(); ++it) {
        if (!it.key().endsWith('/')) {
            WriteBytes(folder + '/' + it.key(), it.value());
        }
    }
    FillUp(folder);
    return disk;
}

/// Takes new files from the folders, and gives the files in them these permissions.
std::shared_ptr<void> MakeFoldersReadOnly(const QString& folder, QFile::Permissions permissions)
{
    QDirIterator it(folder, QDir::AllEntries | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const bool isFolder = it.fileInfo().isDir();
        [&] {
            QVERIFY(
                QFile::setPermissions(path, isFolder ? QFile::Permissions(0x5555) : permissions));
        }();
    }
    return std::make_shared<ReadOnlyFolder>(folder);
}

std::shared_ptr<void> MakeReadOnly(const QString& folder)
{
    return MakeFoldersReadOnly(folder, QFile::Permissions(0x4444));
}

std::shared_ptr<void> LetFilesBeOverwritten(const QString& folder)
{
    return MakeFoldersReadOnly(folder, QFile::Permissions(0x6666));
}

/// The disk can be taken away only by root, so the folders get their permissions back before that.
std::shared_ptr<void> FillDiskOfFilesToOverwrite(const QString& folder)
{
    std::shared_ptr<void> disk = FillDisk(folder);
    return std::make_shared<std::pair<std::shared_ptr<void>, std::shared_ptr<void>>>(
        disk, LetFilesBeOverwritten(folder));
}

std::shared_ptr<void> RemoveFolder(const QString& folder)
{
    [&] { QVERIFY(QDir(folder).removeRecursively()); }();
    return {};
}

/// What is written when nothing fails.
QMap<QString, QByteArray> FilesOfSecondProject()
{
    Project project;
    project.Build(2);
    project.SaveAll();
    return project.Files();
}

} // namespace

Q_DECLARE_METATYPE(Fault)

/// After any error while files are written, each file is completely old or completely new, no
/// temporary file is left, and the caller is told.
class tst_WriteFaults : public QObject
{
    Q_OBJECT

private slots:
    void LeaveWholeFiles_data();
    void LeaveWholeFiles();
    void FilesInFoldersThatTakeNoneAreOverwritten();
    void NamesTooLongForFilesAreReported();
};

void tst_WriteFaults::LeaveWholeFiles_data()
{
    QTest::addColumn<Fault>("fault");

    // Outside of a container a test may not be allowed to do this.
    if (geteuid() == 0) {
        QTest::newRow("full disk") << Fault(FillDisk);
        QTest::newRow("full disk, and folders that take no new file")
            << Fault(FillDiskOfFilesToOverwrite);
    }
    QTest::newRow("read-only folders") << Fault(MakeReadOnly);
    QTest::newRow("folder that is gone") << Fault(RemoveFolder);
    QTest::newRow("write cut short")
        << Fault([](const QString&) { return std::make_shared<FileSizeLimit>(150); });
    QTest::newRow("finished files that cannot be put in place")
        << Fault([](const QString&) { return std::make_shared<RenamesFail>(); });
}

void tst_WriteFaults::LeaveWholeFiles()
{
    QFETCH(Fault, fault);
    const QMap<QString, QByteArray> after = FilesOfSecondProject();
    Project project;
    project.SaveAll();
    const QMap<QString, QByteArray> before = project.Files();
    for (auto it = before.begin(); it != before.end(); ++it) {
        QVERIFY2(it.key().endsWith('/') || it.value() != after[it.key()], qPrintable(it.key()));
    }
    project.Build(2);
    project.log.Take();

    const std::shared_ptr<void> harm = fault(project.Folder());
    const bool isSaved = project.SaveDocument();
    const bool isMapSaved = project.SaveMap();
    const bool isExported = project.ExportTypes();

    const QStringList log = project.log.Messages();
    QVERIFY2(!isSaved && log.contains("Error: Failed to open file 'p.xml' for writing."),
             qPrintable(log.join('\n')));
    QVERIFY(ProjectSettings::Instance().IsModified());
    const QMap<QString, QByteArray> left = project.Files();
    for (auto it = left.begin(); it != left.end(); ++it) {
        QVERIFY2(before.contains(it.key()), qPrintable("Left behind: " + it.key()));
        QVERIFY2(it.value() == before[it.key()] || it.value() == after[it.key()],
                 qPrintable("Neither old nor new: " + it.key()));
    }
    QCOMPARE(left.value("map/p.map") == after["map/p.map"], isMapSaved);
    QCOMPARE(left.value("territoryTypes/Deer.xml") == after["territoryTypes/Deer.xml"], isExported);
}

void tst_WriteFaults::FilesInFoldersThatTakeNoneAreOverwritten()
{
    const QMap<QString, QByteArray> after = FilesOfSecondProject();
    Project project;
    project.SaveAll();
    project.Build(2);

    const std::shared_ptr<void> locked = LetFilesBeOverwritten(project.Folder());
    project.SaveAll();

    QVERIFY(!ProjectSettings::Instance().IsModified());
    QCOMPARE(project.Files(), after);
}

void tst_WriteFaults::NamesTooLongForFilesAreReported()
{
    Project project;
    project.SaveAll();
    const QMap<QString, QByteArray> before = project.Files();
    project.layers.Layers().constFirst()->setText(QString(300, 'x'));
    project.types.Types().constFirst()->setText(QString(300, 'y'));
    ProjectSettings::Instance().SetModified(true);
    project.log.Take();

    project.SaveDocument();
    QVERIFY(!project.ExportTypes());

    QVERIFY(project.log.Messages().contains("Error: 1 layer bitmaps could not be saved."));
    QVERIFY(ProjectSettings::Instance().IsModified());
    QCOMPARE(project.Files().keys(), before.keys());
    QCOMPARE(project.Files().value("layers/first.tga"), before["layers/first.tga"]);
}

QTEST_MAIN(tst_WriteFaults)
#include "tst_WriteFaults.moc"
