#include "app/OutputFile.h"
#include "document/KnownFiles.h"
#include "document/StoredProject.h"
#include "document/journal/Recovery.h"
#include "document/versions/ProjectOutline.h"
#include "document/versions/VersionStore.h"
#include "platform/Files.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/JournalSession.h"
#include "tests/support/Masks.h"
#include "tests/support/ProjectFixture.h"
#include "tests/support/TargaFiles.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTest>
#include <QXmlStreamReader>

#include <functional>

namespace {

QByteArray Document(const QStringList& layers, const QByteArray& end = "</layers></qm-config>")
{
    QByteArray text = R"(<qm-config><global><layer size="4"/></global><layers>)";
    for (const QString& layer : layers) {
        text += R"(<layer color="4294901760" visible="1" name=")" + layer.toUtf8() + R"("/>)";
    }
    return text + end;
}

QByteArray Bitmap(char column)
{
    QImage mask = MaskFromArt({"....", "....", "....", "...."});
    for (int y = 0; y < mask.height(); ++y) {
        mask.scanLine(y)[column - '0'] = 255;
    }
    return Encoded(mask, raster::TargaPacking::RunLength);
}

QStringList Rows(const Version& version, const QString& layer)
{
    return ArtFromMask(version.Stored().masks(0, layer));
}

/// Every row of Bitmap(column).
QStringList Column(char column)
{
    QString row = "....";
    row[column - '0'] = '#';
    return {row, row, row, row};
}

bool IsOneFile(const QString& path, const QString& other)
{
    const auto one = platform::IdentityOf(path);
    const auto two = platform::IdentityOf(other);
    return one && two && one->device == two->device && one->number == two->number;
}

} // namespace

class tst_VersionStore : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void KeepsWhatASaveReplaces();
    void SharesOnlyWhatIsReplaced_data();
    void SharesOnlyWhatIsReplaced();
    void KeepsNothingThatIsKept();
    void KeepsTheFormulas();
    void KeepsNothingInANewPlace();
    void KeepsForeignBitmapsForBothProjects();
    void KeepsBitmapsWithoutADocument();
    void KeepsAMalformedDocument_data();
    void KeepsAMalformedDocument();
    void KeepsAJournal();
    void TellsWhyNothingWasKept_data();
    void TellsWhyNothingWasKept();
    void LimitsAreTheUsers();
    void SkipsDamagedVersions_data();
    void SkipsDamagedVersions();
    void NoNameLeadsOutOfAVersion();
    void CopiesTheFiles();

private:
    QString Path(const QString& name) const { return m_fixture->Path(name); }
    /// Writes "red" in column 0 and "blue" in column 1.
    void WriteProject() const
    {
        Put("project/map.xml", Document({"red", "blue"}));
        Put("project/layers/red.tga", Bitmap('0'));
        Put("project/layers/blue.tga", Bitmap('1'));
    }
    /// Replaces the file as a save does.
    void Put(const QString& name, const QByteArray& bytes) const
    {
        QDir().mkpath(QFileInfo(Path(name)).path());
        OutputFile file(Path(name));
        QVERIFY(file.Open() && file.Write(bytes) && file.Commit());
    }
    KnownFiles Own(const QStringList& names) const
    {
        KnownFiles known;
        for (const QString& name : names) {
            known.Note(Path(name));
        }
        return known;
    }
    KnownFiles OwnProject() const
    {
        return Own({"project/map.xml", "project/layers/red.tga", "project/layers/blue.tga"});
    }
    VersionStore Store(const VersionLimits& limits = {}) const
    {
        return VersionStore(Path("versions"), limits);
    }
    QVector<Version> MapVersions() const { return Store().VersionsOf(Path("project/map.xml")); }

    std::unique_ptr<ProjectFixture> m_fixture;
};

void tst_VersionStore::init()
{
    m_fixture = std::make_unique<ProjectFixture>(QSize(4, 4), QSize(40, 40));
}

void tst_VersionStore::KeepsWhatASaveReplaces()
{
    WriteProject();
    const QByteArray document = ReadBytes(Path("project/map.xml"));

    const auto kept =
        Store().KeepBeforeSave(Path("project/map.xml"), {"red", "blue"}, OwnProject());
    Put("project/map.xml", Document({"red"}));
    Put("project/layers/red.tga", Bitmap('2'));
    Put("project/layers/blue.tga", Bitmap('3'));

    QCOMPARE(kept.problem, QString());
    QCOMPARE(kept.isWhole, true);
    QCOMPARE(kept.replaced, QStringList());
    QCOMPARE(MapVersions().size(), 1);
    const Version version = MapVersions().constFirst();
    QCOMPARE(version.Kind(), VersionKind::Saved);
    QCOMPARE(version.Path(), Path("project/map.xml"));
    QCOMPARE(version.Name(), QString("map"));
    QVERIFY(qAbs(version.Time().secsTo(QDateTime::currentDateTime())) < 60);
    QCOMPARE(version.Stored().text, document);
    QCOMPARE(version.Stored().path, Path("project/map.xml"));
    QCOMPARE(Rows(version, "red"), Column('0'));
    QCOMPARE(Rows(version, "blue"), Column('1'));
    qint64 bytes = 0;
    const auto files = FilesBelow(version.Folder());
    for (const QByteArray& file : files) {
        bytes += file.size();
    }
    QCOMPARE(version.Bytes(), bytes);
    for (const QString& folder : {Path("versions"), version.Folder() + "/..", version.Folder(),
                                  version.Folder() + "/layers"}) {
        QCOMPARE(int(QFile::permissions(folder)) & 0x77, 0);
    }
}

using Guard = std::function<std::shared_ptr<void>(const QString&)>;
Q_DECLARE_METATYPE(Guard)

void tst_VersionStore::SharesOnlyWhatIsReplaced_data()
{
    QTest::addColumn<Guard>("guard");
    QTest::addColumn<QStringList>("saved");
    QTest::addColumn<QStringList>("shared");

    const Guard none = [](const QString&) { return nullptr; };
    const Guard readOnly = [](const QString& path) {
        return std::make_shared<ReadOnlyFolder>(path);
    };
    const Guard sticky = [](const QString& path) { return std::make_shared<StickyFolder>(path); };
    QTest::newRow("all layers are saved")
        << none << QStringList{"red", "blue"} << QStringList{"red", "blue"};
    QTest::newRow("a layer was removed") << none << QStringList{"red"} << QStringList{"red"};
    // The save overwrites such files, and with them what shares their bytes.
    QTest::newRow("a folder without new files")
        << readOnly << QStringList{"red", "blue"} << QStringList{};
    QTest::newRow("a folder of others' files")
        << sticky << QStringList{"red", "blue"} << QStringList{};
}

void tst_VersionStore::SharesOnlyWhatIsReplaced()
{
#ifdef QUILLMAP_PORTABLE
    QSKIP("Only Linux tells whether files are shared.");
#endif
    QFETCH(Guard, guard);
    QFETCH(QStringList, saved);
    QFETCH(QStringList, shared);
    WriteProject();
    const QStringList layers{"red", "blue"};
    QVERIFY(QFile::setPermissions(Path(""), QFile::Permissions(0x7777)));
    for (const QString& layer : layers) {
        QVERIFY(QFile::setPermissions(Path("project/layers/" + layer + ".tga"),
                                      QFile::Permissions(0x6666)));
    }
    {
        const std::shared_ptr<void> guarded = guard(Path("project/layers"));
        const auto kept = Store().KeepBeforeSave(Path("project/map.xml"), saved, OwnProject());
        QCOMPARE(kept.problem, QString());
    }
    QCOMPARE(MapVersions().size(), 1);
    for (const QString& layer : layers) {
        const QString kept = MapVersions().constFirst().Folder() + "/layers/" + layer + ".tga";
        const QString path = Path("project/layers/" + layer + ".tga");
        QCOMPARE(ReadBytes(kept), ReadBytes(path));
        QCOMPARE(IsOneFile(kept, path), shared.contains(layer));
    }
}

void tst_VersionStore::KeepsNothingThatIsKept()
{
    WriteProject();
    const QString path = Path("project/map.xml");
    Store().KeepBeforeSave(path, {"red", "blue"}, OwnProject());
    // A save of the same state.
    WriteProject();
    Store().KeepBeforeSave(path, {"red", "blue"}, OwnProject());
    QCOMPARE(MapVersions().size(), 1);

    Put("project/layers/blue.tga", Bitmap('3'));
    Store().KeepBeforeSave(path, {"red", "blue"}, OwnProject());
    QCOMPARE(MapVersions().size(), 2);
    QCOMPARE(Rows(MapVersions().at(0), "blue"), Column('3'));
    QCOMPARE(Rows(MapVersions().at(1), "blue"), Column('1'));
#ifndef QUILLMAP_PORTABLE
    const QString red = "/layers/red.tga";
    QCOMPARE(IsOneFile(MapVersions().at(0).Folder() + red, MapVersions().at(1).Folder() + red),
             true);
#endif

    // A layer less is another state.
    QVERIFY(QFile::remove(Path("project/layers/blue.tga")));
    Store().KeepBeforeSave(path, {"red", "blue"}, OwnProject());
    QCOMPARE(MapVersions().size(), 3);
}

void tst_VersionStore::KeepsTheFormulas()
{
    WriteProject();
    const QString path = Path("project/map.xml");
    Put("project/map.derived.xml", "formulas");
    const auto before = FilesBelow(Path("project"));
    for (int i = 0; i < 2; ++i) {
        Store().KeepBeforeSave(path, {"red", "blue"}, OwnProject());
        QCOMPARE(MapVersions().size(), 1);
        QCOMPARE(MapVersions().constFirst().Stored().formulas, QByteArray("formulas"));
    }
    QCOMPARE(MapVersions().constFirst().CopyFilesTo(Path("copy")), QString());
    QCOMPARE(FilesBelow(Path("copy")), before);

    QVERIFY(QFile::remove(Path("project/map.derived.xml")));
    Store().KeepBeforeSave(path, {"red", "blue"}, OwnProject());
    QCOMPARE(MapVersions().size(), 2);
    QCOMPARE(MapVersions().constFirst().Stored().formulas, QByteArray());
}

void tst_VersionStore::KeepsNothingInANewPlace()
{
    WriteProject();
    const auto kept = Store().KeepBeforeSave(Path("other/map.xml"), {"red", "blue"}, OwnProject());
    QCOMPARE(kept.problem, QString());
    QCOMPARE(Store().Versions().size(), 0);
    QVERIFY(!QFileInfo::exists(Path("versions")));
}

void tst_VersionStore::KeepsForeignBitmapsForBothProjects()
{
    WriteProject();
    Put("project/third.xml", Document({"green"}));
    const QString saver = Path("project/new.xml");

    // Its own "red" is in another folder.
    const auto kept = Store().KeepBeforeSave(saver, {"red", "green"},
                                             Own({"mine/new.xml", "mine/layers/red.tga"}));
    Put("project/layers/red.tga", Bitmap('3'));

    QCOMPARE(kept.replaced, QStringList("red"));
    QCOMPARE(Store().Versions().size(), 2);
    for (const QString& path : {saver, Path("project/map.xml")}) {
        QCOMPARE(Store().VersionsOf(path).size(), 1);
        const Version version = Store().VersionsOf(path).constFirst();
        QCOMPARE(version.Kind(), VersionKind::Replaced);
        QCOMPARE(version.Path(), path);
        QCOMPARE(version.Bitmaps(), QStringList("red.tga"));
        QCOMPARE(ReadBytes(version.Folder() + "/layers/red.tga"), Bitmap('0'));
        const ProjectOutline outline = OutlineOf(version.Stored().text);
        QCOMPARE(outline.layerSize, QSize(4, 4));
        QCOMPARE(outline.layers.size(), 1);
        QCOMPARE(outline.layers.constFirst().isVisible, true);
        // As the document says that has it.
        QCOMPARE(outline.layers.constFirst().color, QColor(255, 0, 0));
        QCOMPARE(Rows(version, outline.layers.constFirst().name), Column('0'));
    }
}

void tst_VersionStore::KeepsBitmapsWithoutADocument()
{
    WriteProject();
    QVERIFY(QFile::remove(Path("project/map.xml")));
    const auto kept =
        Store().KeepBeforeSave(Path("project/map.xml"), {"red", "blue"}, OwnProject());
    QCOMPARE(kept.replaced, QStringList());
    QCOMPARE(MapVersions().size(), 1);
    QCOMPARE(Rows(MapVersions().constFirst(), "blue"), Column('1'));
}

void tst_VersionStore::KeepsAMalformedDocument_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("cut off") << QByteArray("<layer name='gre");
    QTest::newRow("another end tag") << QByteArray("</wrong></layers></qm-config>");
    QTest::newRow("a character that is none") << QByteArray("<layer name='\x01'/></layers>");
}

void tst_VersionStore::KeepsAMalformedDocument()
{
    QFETCH(QByteArray, end);
    WriteProject();
    const QByteArray document = Document({"red", "blue"}, end);
    Put("project/map.xml", document);

    Store().KeepBeforeSave(Path("project/map.xml"), {"red", "blue"}, {});
    QCOMPARE(MapVersions().size(), 1);
    const Version version = MapVersions().constFirst();

    QCOMPARE(ReadBytes(version.Folder() + "/document.xml"), document);
    QXmlStreamReader xml(version.Stored().text);
    QStringList layers;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement &&
            xml.name() == QLatin1String("layer") && xml.attributes().hasAttribute("name")) {
            layers.append(xml.attributes().value("name").toString());
        }
    }
    QCOMPARE(xml.errorString(), QString());
    QCOMPARE(layers, QStringList({"red", "blue"}));
    QCOMPARE(Rows(version, "blue"), Column('1'));
}

void tst_VersionStore::KeepsAJournal()
{
    const DataFolder data;
    // The open project has another layer size.
    const QSize size(70, 70);
    for (const QString& path : {QString(), Path("project/map.xml")}) {
        JournalSession session(size, path);
        QVERIFY(session.Begin() && session.AddBlankLayer());
        const int layer = session.Masks().firstKey();
        QVERIFY(session.Paint(layer, FullMask(size)));
        const QByteArray text =
            R"(<qm-config><global><layer size="70"/></global><layers><layer name="red"/></layers></qm-config>)";
        QVERIFY(session.Commit(text));

        const auto move = [&session](const QString& target) {
            return session.Writer().MoveTo(target);
        };
        QCOMPARE(Store().KeepDiscarded(path, move), QString());

        QCOMPARE(Recovery::DeadJournals(), QStringList());
        QCOMPARE(Store().VersionsOf(path).size(), 1);
        const Version version = Store().VersionsOf(path).constFirst();
        QCOMPARE(version.Kind(), VersionKind::Discarded);
        QCOMPARE(version.Path(), path);
        QVERIFY(!version.HasFiles());
        QVERIFY(version.Bytes() > text.size());
        QCOMPARE(version.Stored().text, text);
        QCOMPARE(version.Stored().path, path);
        QCOMPARE(version.Stored().masks(0, "red"), FullMask(size));
        QVERIFY(version.Stored().masks(1, "blue").isNull());

        WriteBytes(version.Folder() + "/journal/log", "damaged");
        QCOMPARE(version.Stored().text, QByteArray());
    }
    QVERIFY(!Store().KeepDiscarded({}, [](const QString&) { return false; }).isEmpty());
    QCOMPARE(Store().Versions().size(), 2);
}

void tst_VersionStore::TellsWhyNothingWasKept_data()
{
    QTest::addColumn<bool>("isFull");
    QTest::newRow("no folder") << false;
    QTest::newRow("a full disk") << true;
}

void tst_VersionStore::TellsWhyNothingWasKept()
{
    QFETCH(bool, isFull);
    WriteProject();
    const auto before = FilesBelow(Path("project"));
    const QString data = Path("data");
    std::unique_ptr<SmallDisk> disk;
    if (isFull) {
        QVERIFY(QDir().mkdir(data));
        disk = std::make_unique<SmallDisk>(data, 128 * 1024);
        if (!disk->IsThere()) {
            QSKIP("Only root can make a small disk.");
        }
        FillUp(data);
    } else {
        WriteBytes(data, "no folder");
    }
    VersionStore store(data + "/versions", {});

    const auto kept = store.KeepBeforeSave(Path("project/map.xml"), {"red", "blue"}, OwnProject());

    QCOMPARE(kept.problem, QString("No earlier version could be kept: %1")
                               .arg(isFull ? "No space left on device" : "File exists"));
    QCOMPARE(store.Versions().size(), 0);
    QCOMPARE(FilesBelow(Path("project")), before);
    bool isMoved = false;
    const auto move = [&isMoved](const QString&) { return isMoved = true; };
    QCOMPARE(store.KeepDiscarded({}, move), kept.problem);
    QVERIFY(!isMoved);
}

void tst_VersionStore::LimitsAreTheUsers()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, Path("settings"));
    const VersionLimits given;
    QCOMPARE(given.keep, 20);
    QCOMPARE(given.days, 30);
    QCOMPARE(given.maxBytes, qint64(1024) * 1024 * 1024);
    QSettings settings("Halvern Works", "Tarvo Tools");
    QCOMPARE(VersionLimits::FromSettings().maxBytes, given.maxBytes);
    settings.setValue("Versions/keep", 2);
    settings.setValue("Versions/days", 0);
    settings.setValue("Versions/maxBytes", qint64(5000000000));
    settings.sync();
    QCOMPARE(VersionLimits::FromSettings().keep, 2);
    QCOMPARE(VersionLimits::FromSettings().days, 0);
    QCOMPARE(VersionLimits::FromSettings().maxBytes, qint64(5000000000));

    WriteProject();
    for (const char column : {'0', '1', '2', '3'}) {
        Put("project/layers/red.tga", Bitmap(column));
        VersionStore store(Path("versions"));
        store.KeepBeforeSave(Path("project/map.xml"), {"red", "blue"}, OwnProject());
        store.Prune();
    }
    QCOMPARE(MapVersions().size(), 2);
    QCOMPARE(Rows(MapVersions().at(1), "red"), Column('2'));

    VersionStore off(Path("off"), {20, 30, 0});
    const auto kept = off.KeepBeforeSave(Path("project/map.xml"), {"red"}, {});
    QCOMPARE(kept.isWhole, false);
    QCOMPARE(kept.replaced, QStringList("red"));
    QVERIFY(!QFileInfo::exists(Path("off")));
}

using Damage = std::function<void(const QString& folder)>;
Q_DECLARE_METATYPE(Damage)

void tst_VersionStore::SkipsDamagedVersions_data()
{
    QTest::addColumn<Damage>("damage");

    const auto info = [](const QByteArray& text) {
        return [text](const QString& folder) { WriteBytes(folder + "/version.json", text); };
    };
    QTest::newRow("no text") << Damage(info(""));
    QTest::newRow("no JSON") << Damage(info("{"));
    QTest::newRow("a long text") << Damage(info(QByteArray(70000, ' ')));
    const QByteArray whole = R"({"format":%1,"kind":"%2","time":"%3","path":"%4"})";
    const auto values = [&](const char* format, const char* kind, const char* time,
                            const char* path) {
        return Damage(info(QString(whole).arg(format, kind, time, path).toUtf8()));
    };
    const char* time = "2026-11-22T06:00:00.000Z";
    QTest::newRow("another format") << values("2", "saved", time, "/a.xml");
    QTest::newRow("another kind") << values("1", "lost", time, "/a.xml");
    QTest::newRow("no time") << values("1", "saved", "yesterday", "/a.xml");
    QTest::newRow("a relative path") << values("1", "saved", time, "../a.xml");
    QTest::newRow("no journal") << values("1", "discarded", time, "/a.xml");
    QTest::newRow("no document") << Damage(
        [](const QString& folder) { QFile::remove(folder + "/document.xml"); });
    QTest::newRow("a link for a document") << Damage([](const QString& folder) {
        QFile::rename(folder + "/document.xml", folder + "/other.xml");
        QFile::link("other.xml", folder + "/document.xml");
    });
    QTest::newRow("a link for the text") << Damage([](const QString& folder) {
        QFile::rename(folder + "/version.json", folder + "/other.json");
        QFile::link("other.json", folder + "/version.json");
    });
    QTest::newRow("a link for the folder") << Damage([](const QString& folder) {
        QDir().rename(folder, folder + "/../../elsewhere");
        QFile::link("../elsewhere", folder);
    });
    QTest::newRow("another name") << Damage(
        [](const QString& folder) { QDir().rename(folder, folder + "/../today"); });
}

void tst_VersionStore::SkipsDamagedVersions()
{
    QFETCH(Damage, damage);
    WriteProject();
    const QString path = Path("project/map.xml");
    Store().KeepBeforeSave(path, {"red", "blue"}, OwnProject());
    const QString folder = MapVersions().constFirst().Folder();
    Put("project/layers/red.tga", Bitmap('2'));
    Store().KeepBeforeSave(path, {"red", "blue"}, OwnProject());
    QCOMPARE(MapVersions().size(), 2);

    damage(folder);

    QCOMPARE(MapVersions().size(), 1);
    QCOMPARE(Rows(MapVersions().constFirst(), "red"), Column('2'));
}

void tst_VersionStore::NoNameLeadsOutOfAVersion()
{
    WriteProject();
    Put("project/map.xml", Document({"a/b", "../../secret", "100%", "red", "blue"}));
    Put("project/layers/a/b.tga", Bitmap('3'));
    Put("project/layers/100%.tga", Bitmap('2'));
    Put("secret.tga", Bitmap('1'));
    Store().KeepBeforeSave(Path("project/map.xml"), {}, OwnProject());
    const Version version = MapVersions().constFirst();
    QCOMPARE(Rows(version, "a/b"), Column('3'));
    QCOMPARE(Rows(version, "100%"), Column('2'));
    QCOMPARE(version.Bitmaps().size(), 4);

    // Somebody changes what was kept.
    WriteBytes(version.Folder() + "/../secret.tga", Bitmap('1'));
    QVERIFY(QFile::remove(version.Folder() + "/layers/red.tga"));
    QVERIFY(QFile::link(Path("secret.tga"), version.Folder() + "/layers/red.tga"));
    WriteBytes(version.Folder() + "/layers/blue.tga", "no bitmap");
    const QStringList names{"red", "blue", "../../secret", "..", "", "nothing"};
    for (const QString& name : names) {
        QVERIFY(version.Stored().masks(0, name).isNull());
    }
    QVERIFY(QDir(version.Folder()).rename("layers", "../layers"));
    QVERIFY(QFile::link("../layers", version.Folder() + "/layers"));
    QVERIFY(version.Stored().masks(0, "100%").isNull());
    QCOMPARE(version.Bitmaps(), QStringList());
}

void tst_VersionStore::CopiesTheFiles()
{
    WriteProject();
    const auto before = FilesBelow(Path("project"));
    Store().KeepBeforeSave(Path("project/map.xml"), {"red", "blue"}, OwnProject());
    QCOMPARE(MapVersions().constFirst().CopyFilesTo(Path("copy")), QString());
    QCOMPARE(FilesBelow(Path("copy")), before);

    Put("copy/map.xml", "mine");
    QVERIFY(!MapVersions().constFirst().CopyFilesTo(Path("copy")).isEmpty());
    QCOMPARE(ReadBytes(Path("copy/map.xml")), QByteArray("mine"));
}

QTEST_GUILESS_MAIN(tst_VersionStore)
#include "tst_VersionStore.moc"
