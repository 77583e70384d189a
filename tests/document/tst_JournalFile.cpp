#include "layers/raster/MaskTile.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/JournalSession.h"
#include "tests/support/Masks.h"
#include "tests/support/TargaFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <sys/stat.h>

namespace {

constexpr QSize Size(70, 40);
constexpr QFile::Permissions ForUserOnly =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

/// Mostly tiles of one value, so that the log is short.
QImage Mask(int value)
{
    QImage mask = FullMask(Size);
    mask.fill(static_cast<uint>(value));
    if (value == 7) {
        mask.scanLine(3)[5] = 0;
    }
    return mask;
}

/// A session with each kind of base, whose commits all can be restored.
bool RunSession(JournalSession& session, const QString& folder)
{
    const QString a = folder + "/a.tga";
    const QString b = folder + "/b.tga";
    return session.Begin() && session.AddBlankLayer() && session.AddLayerFile(a, Mask(1)) &&
           session.AddLayerFile(b, Mask(2)) && session.CopyLayerFile(5, b) &&
           session.Commit("<one/>") && session.Paint(3, Mask(5)) && session.Commit({}) &&
           session.Paint(3, FullMask(Size)) && session.Paint(4, Mask(7)) &&
           session.Paint(5, FullMask(Size)) && session.Commit("<two>") &&
           session.Paint(5, Mask(9)) && session.Commit({});
}

/// Each state differs from the others. Returns false at the first failure.
bool RunManyCommits(JournalSession& session)
{
    bool isDone = session.Begin() && session.AddBlankLayer() && session.Commit("<one/>");
    for (int i = 1; i < 10; ++i) {
        isDone = isDone && session.Paint(3, Mask(i)) && session.Commit({});
    }
    return isDone;
}

} // namespace

Q_DECLARE_METATYPE(std::function<bool(JournalWriter&)>)
Q_DECLARE_METATYPE(std::function<std::shared_ptr<void>(const QString&)>)

class tst_JournalFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void RestoresWhatWasCommitted();
    void IsPrivate();
    void GivesAProjectToOpen();
    void ACutLogGivesTheLastWholeCommit();
    void NoFlippedByteGivesAnotherState();
    void FilesThatAreNotThereAreRefused_data();
    void FilesThatAreNotThereAreRefused();
    void FoundFilesServeAsLongAsTheyAreTheSame();
    void TellsWhetherTheProjectChanged();
    void AFullDiskLeavesTheCommitsBefore();
    void WithoutAFolderThereIsNoJournal();
    void AFolderThatIsGoneIsNoticed();
    void WrongUseIsRefused_data();
    void WrongUseIsRefused();
    void CompactingKeepsWhatIsValid();
    void SaysWhenCompactingIsWorthIt();
    void TheLogGoesOnWhenCompactingFails_data();
    void TheLogGoesOnWhenCompactingFails();

private:
    QString File(const QString& name) const { return m_folder->filePath(name); }

    std::unique_ptr<DataFolder> m_data;
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_JournalFile::init()
{
    m_data.reset();
    m_data = std::make_unique<DataFolder>();
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_JournalFile::RestoresWhatWasCommitted()
{
    Random random;
    for (int round = 0; round < 12; ++round) {
        JournalSession session({random.Between(1, 200), random.Between(1, 200)});
        QVERIFY(session.Begin());
        const QString folder = session.Writer().Folder();
        QVERIFY(!RestoredState(folder));
        for (int i = 0; i < 80; ++i) {
            const int before = session.States().size();
            QVERIFY2(session.Act(random, m_folder->path()), qPrintable(session.Writer().Error()));
            QVERIFY(session.Writer().LiveLength() <= session.Writer().Length());
            if (session.States().size() > before || i % 8 == 0) {
                QCOMPARE(RestoredState(folder).value() == session.States().last(), true);
            }
        }
        session.Writer().End();
        QVERIFY(!QFileInfo::exists(folder));
    }
}

void tst_JournalFile::IsPrivate()
{
    JournalSession session(Size);
    QVERIFY(RunSession(session, m_folder->path()));
    const QString folder = session.Writer().Folder();
    QVERIFY(folder.startsWith(m_data->Path()));
    for (QString above = folder; above != m_data->Path(); above = QFileInfo(above).path()) {
        QCOMPARE(QFile::permissions(above), ForUserOnly | QFile::ExeOwner | QFile::ExeUser);
    }
    QStringList names = QDir(folder).entryList(QDir::Files);
    // The portable build tells the lock's owner there; the folder keeps it private.
    names.removeAll("lock.lock");
    QCOMPARE(names.join(' '), "base-5.tga lock log session text-1.xml text-2.xml");
    for (const QString& name : qAsConst(names)) {
        QCOMPARE(QFile::permissions(folder + '/' + name), ForUserOnly);
    }
}

void tst_JournalFile::GivesAProjectToOpen()
{
    JournalSession session(Size, "/p/äöü 'x'.xml");
    QVERIFY(RunSession(session, m_folder->path()));
    const auto reader = JournalReader::Open(session.Writer().Folder());
    QVERIFY(reader);
    QCOMPARE(reader->ProjectName(), "highlands");
    QVERIFY(qAbs(reader->LastChange().secsTo(QDateTime::currentDateTime())) < 60);
    const StoredProject stored = reader->Stored();
    QCOMPARE(stored.path, "/p/äöü 'x'.xml");
    QCOMPARE(stored.text, "<two>");
    QCOMPARE(stored.masks(2, "any name"), FullMask(Size));
    QCOMPARE(stored.masks(1, {}), Mask(7));
    QCOMPARE(stored.masks(0, {}), Mask(9));
    QVERIFY(stored.masks(3, {}).isNull());
    QVERIFY(stored.masks(-1, {}).isNull());
}

void tst_JournalFile::ACutLogGivesTheLastWholeCommit()
{
    JournalSession session(Size);
    QVERIFY(RunSession(session, m_folder->path()));
    const QString folder = session.Writer().Folder();
    const QByteArray log = ReadBytes(journal::LogPath(folder));
    QCOMPARE(log.size(), session.Lengths().last());
    for (int length = 0; length <= log.size(); ++length) {
        WriteBytes(journal::LogPath(folder), log.left(length));
        const auto after =
            std::upper_bound(session.Lengths().begin(), session.Lengths().end(), length);
        const auto whole = static_cast<int>(after - session.Lengths().begin());
        const std::optional<QByteArray> state = RestoredState(folder);
        QCOMPARE(state.has_value(), whole > 0);
        QCOMPARE(JournalReader::IsUncommitted(folder), whole == 0);
        if (state) {
            QCOMPARE(*state == session.States()[whole - 1], true);
        }
    }
}

void tst_JournalFile::NoFlippedByteGivesAnotherState()
{
    JournalSession session(Size);
    QVERIFY(RunSession(session, m_folder->path()));
    const QString folder = session.Writer().Folder();
    const QMap<QString, QByteArray> files = FilesBelow(folder);
    Random random;
    for (auto it = files.begin(); it != files.end(); ++it) {
        for (int i = 0; i < it.value().size(); ++i) {
            QByteArray damaged = it.value();
            damaged[i] = static_cast<char>(damaged[i] ^ (1 << random.Below(8)));
            WriteBytes(folder + '/' + it.key(), damaged);
            const auto reader = JournalReader::Open(folder);
            if (it.key().startsWith("base")) {
                QVERIFY(reader && reader->Mask(0).isNull() && !reader->Mask(1).isNull());
            } else if (reader) {
                QVERIFY(it.key() != "session");
                QVERIFY(session.States().contains(StateOf(*reader)));
            }
        }
        WriteBytes(folder + '/' + it.key(), it.value());
    }
}

void tst_JournalFile::FilesThatAreNotThereAreRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("commit");

    // What is left of the last commit; -1 stands for nothing.
    const QMap<QString, int> names = {{"session", -1},   {"log", -1},       {"text-2.xml", 1},
                                      {"text-1.xml", 3}, {"base-5.tga", 3}, {".", -1}};
    const QStringList kinds = {"missing", "a link", "a pipe", "a folder"};
    for (auto it = names.begin(); it != names.end(); ++it) {
        for (int kind = 0; kind < kinds.size(); ++kind) {
            if (it.key() != "." || kind == 1) {
                QTest::addRow("%s is %s", qPrintable(it.key()), qPrintable(kinds[kind]))
                    << it.key() << kind << it.value();
            }
        }
    }
}

void tst_JournalFile::FilesThatAreNotThereAreRefused()
{
    QFETCH(QString, name);
    QFETCH(int, kind);
    QFETCH(int, commit);
    JournalSession session(Size);
    QVERIFY(RunSession(session, m_folder->path()));
    const QString folder = session.Writer().Folder();
    const QString path = QDir::cleanPath(folder + '/' + name);
    const QString moved = File("moved");
    QVERIFY(QFile::rename(path, moved));
    if (kind == 1) {
        QVERIFY(QFile::link(moved, path));
    } else if (kind == 2) {
        QCOMPARE(mkfifo(qPrintable(path), 0600), 0);
    } else if (kind == 3) {
        QVERIFY(QDir().mkdir(path));
    }

    QString reason;
    const auto reader = JournalReader::Open(folder, &reason);
    QCOMPARE(reader.has_value(), commit >= 0);
    QCOMPARE(reason.isEmpty(), commit >= 0);
    QVERIFY(!JournalReader::IsUncommitted(folder));
    if (!reader) {
        return;
    }
    const bool isBaseMissing = name.startsWith("base");
    QCOMPARE(reader->MissingMasks(), isBaseMissing ? QVector<int>{0} : QVector<int>());
    QCOMPARE(reader->Mask(0).isNull(), isBaseMissing);
    if (!isBaseMissing) {
        QCOMPARE(StateOf(*reader) == session.States()[commit], true);
    }
}

void tst_JournalFile::FoundFilesServeAsLongAsTheyAreTheSame()
{
    JournalSession session(Size);
    const QString path = File("a.tga");
    QVERIFY(session.Begin() && session.AddLayerFile(path, Mask(1)) && session.Commit("<one/>"));
    const auto reader = JournalReader::Open(session.Writer().Folder());
    QVERIFY(reader);
    QVERIFY(reader->MissingMasks().isEmpty());
    QCOMPARE(reader->Mask(0), Mask(1));

    const KnownFiles::Stamp before = KnownFiles::StampOf(path);
    WriteBytes(path, Encoded(Mask(1), raster::TargaPacking::Raw));
    QCOMPARE(reader->MissingMasks(), QVector<int>{0});
    QVERIFY(reader->Mask(0).isNull());
    // A copy that comes too late is none.
    bool wasCopied = true;
    QVERIFY(session.Writer().AddBaseCopy(3, path, before, &wasCopied));
    QVERIFY(!wasCopied);
    QVERIFY(!QFile::exists(journal::BasePath(session.Writer().Folder(), 3)));

    QVERIFY(session.CopyLayerFile(3, path));
    QVERIFY(session.Commit({}));
    QVERIFY(QFile::remove(path));
    QCOMPARE(RestoredState(session.Writer().Folder()).value() == session.States().last(), true);
}

void tst_JournalFile::TellsWhetherTheProjectChanged()
{
    const QString document = File("p.xml");
    const QString bitmap = File("a.tga");
    WriteBytes(document, "<root/>");
    JournalHeader header{document, "", "p", Size};
    for (const QString& path : {document, bitmap}) {
        header.files.insert(path, KnownFiles::StampOf(path));
    }
    JournalWriter writer;
    const QByteArray text = "<text/>";
    QVERIFY(writer.Begin(header) && writer.Commit(&text, {}));
    const auto reader = JournalReader::Open(writer.Folder());
    QVERIFY(reader && !reader->HasProjectChanged());
    WriteBytes(bitmap, "made");
    QVERIFY(reader->HasProjectChanged());
    QVERIFY(QFile::remove(bitmap));
    QVERIFY(!reader->HasProjectChanged());
    WriteBytes(document, "<other/>");
    QVERIFY(reader->HasProjectChanged());
}

void tst_JournalFile::AFullDiskLeavesTheCommitsBefore()
{
    JournalSession whole(Size);
    QVERIFY(RunManyCommits(whole));
#ifdef QUILLMAP_PORTABLE
    // The lock is a file with a text, and fails before the log does.
    constexpr qint64 least = 512;
#else
    constexpr qint64 least = 0;
#endif
    QVERIFY(least < whole.Lengths().last());
    for (qint64 limit = least; limit < whole.Lengths().last(); limit += 13) {
        JournalSession session(Size);
        {
            const FileSizeLimit disk(static_cast<quint64>(limit));
            QVERIFY(!RunManyCommits(session));
            QCOMPARE(session.Writer().Error(), "File too large");
            QVERIFY(!session.Writer().IsReady() && !session.AddBlankLayer() && !session.Commit({}));
        }
        const QString folder = session.Writer().Folder();
        QCOMPARE(RestoredState(folder).has_value(), !session.States().isEmpty());
        if (!session.States().isEmpty()) {
            QCOMPARE(*RestoredState(folder) == session.States().last(), true);
        }
        session.Writer().End();
        QVERIFY(!QFileInfo::exists(folder) || folder.isEmpty());
        QVERIFY(session.Begin());
    }
}

void tst_JournalFile::WithoutAFolderThereIsNoJournal()
{
    const ReadOnlyFolder readOnly(m_data->Path());
    JournalSession session(Size);
    QVERIFY(!session.Begin());
    QCOMPARE(session.Writer().Error(), "Permission denied");
    QVERIFY(session.Writer().Folder().isEmpty());
    QVERIFY(!session.AddBlankLayer());
}

void tst_JournalFile::AFolderThatIsGoneIsNoticed()
{
    JournalSession session(Size);
    QVERIFY(RunSession(session, m_folder->path()));
    QVERIFY(QDir(session.Writer().Folder()).removeRecursively());
    QVERIFY(session.Paint(3, Mask(1)));
    QVERIFY(!session.Commit({}));
    QVERIFY(session.Writer().Error().contains("is gone"));
}

void tst_JournalFile::WrongUseIsRefused_data()
{
    using Use = std::function<bool(JournalWriter&)>;
    QTest::addColumn<Use>("use");

    static const uchar packed[] = {0, 255};
    QTest::newRow("tile without a base") << Use([](auto& w) { return w.AddTile(2, 0, packed, 2); });
    QTest::newRow("tile below the last") << Use([](auto& w) { return w.AddTile(1, 2, packed, 2); });
    QTest::newRow("tile before the first")
        << Use([](auto& w) { return w.AddTile(1, -1, packed, 2); });
    QTest::newRow("tile of another length")
        << Use([](auto& w) { return w.AddTile(1, 0, packed, 1); });
    QTest::newRow("commit without a text") << Use([](auto& w) { return w.Commit(nullptr, {1}); });
    QTest::newRow("commit of an unknown layer") << Use([](auto& w) {
        const QByteArray text = "<text/>";
        return w.Commit(&text, {1, 2});
    });
    QTest::newRow("layer id below 0") << Use([](auto& w) { return w.AddBlankBase(-1); });
}

void tst_JournalFile::WrongUseIsRefused()
{
    QFETCH(std::function<bool(JournalWriter&)>, use);
    JournalWriter writer;
    QVERIFY(!use(writer));
    QVERIFY(writer.Begin({{}, {}, "project", Size}));
    QVERIFY(writer.IsReady() && writer.AddBlankBase(1));
    QVERIFY(!use(writer));
    QVERIFY(!writer.Error().isEmpty() && !writer.IsReady());
}

void tst_JournalFile::CompactingKeepsWhatIsValid()
{
    JournalSession session(Size);
    QVERIFY(RunSession(session, m_folder->path()));
    const QString folder = session.Writer().Folder();
    const qint64 live = session.Writer().LiveLength();
    QVERIFY(live < session.Writer().Length());
    QVERIFY(session.Writer().Compact());
    QCOMPARE(session.Writer().Length(), live);
    QCOMPARE(session.Writer().LiveLength(), live);
    QCOMPARE(QFileInfo(journal::LogPath(folder)).size(), live);
    QCOMPARE(RestoredState(folder).value() == session.States().last(), true);

    // What is not committed yet must not count.
    QVERIFY(session.Paint(3, Mask(11)));
    QVERIFY(session.Writer().Compact());
    QCOMPARE(RestoredState(folder).value() == session.States().last(), true);
    QVERIFY(session.Commit({}));
    QVERIFY(session.Writer().Compact());
    QCOMPARE(RestoredState(folder).value() == session.States().last(), true);
    QCOMPARE(QFile::permissions(journal::LogPath(folder)), ForUserOnly);
}

void tst_JournalFile::SaysWhenCompactingIsWorthIt()
{
    JournalSession session({64, 64});
    QVERIFY(session.Begin() && session.AddBlankLayer() && session.Commit("<text/>"));
    uchar packed[raster::MaxPackedTile] = {2};
    QVERIFY(!session.Writer().IsWorthCompacting());
    for (int i = 0; i < 5000; ++i) {
        QVERIFY(session.Writer().AddTile(3, 0, packed, sizeof packed));
    }
    QVERIFY(session.Commit({}));
    QVERIFY(session.Writer().IsWorthCompacting());
    QVERIFY(session.Writer().Compact());
    QVERIFY(!session.Writer().IsWorthCompacting());
}

void tst_JournalFile::TheLogGoesOnWhenCompactingFails_data()
{
    using Fault = std::function<std::shared_ptr<void>(const QString& folder)>;
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("error");

    QTest::newRow("no room") << Fault([](const QString&) {
        return std::make_shared<FileSizeLimit>(100);
    }) << "File too large";
    QTest::newRow("no renaming") << Fault([](const QString&) {
        return std::make_shared<RenamesFail>();
    }) << "Input/output error";
    QTest::newRow("no new file") << Fault([](const QString& folder) {
        return std::make_shared<ReadOnlyFolder>(folder);
    }) << "Permission denied";
    QTest::newRow("something in the way") << Fault([](const QString& folder) {
        QDir().mkdir(journal::NewLogPath(folder));
        return std::shared_ptr<void>();
    }) << "File exists";
}

void tst_JournalFile::TheLogGoesOnWhenCompactingFails()
{
    QFETCH(std::function<std::shared_ptr<void>(const QString&)>, fault);
    QFETCH(QString, error);
    JournalSession session(Size);
    QVERIFY(RunSession(session, m_folder->path()));
    const QString folder = session.Writer().Folder();
    const qint64 length = session.Writer().Length();
    {
        const std::shared_ptr<void> there = fault(folder);
        QVERIFY(!session.Writer().Compact());
        QCOMPARE(session.Writer().Error(), error);
    }
    QVERIFY(!QFileInfo(journal::NewLogPath(folder)).isFile());
    QVERIFY(session.Writer().IsReady());
    QCOMPARE(session.Writer().Length(), length);
    QCOMPARE(RestoredState(folder).value() == session.States().last(), true);
    QVERIFY(session.Paint(3, Mask(12)) && session.Commit("<three/>"));
    QCOMPARE(RestoredState(folder).value() == session.States().last(), true);
}

QTEST_GUILESS_MAIN(tst_JournalFile)
#include "tst_JournalFile.moc"
