#include "document/journal/RecordLog.h"
#include "tests/support/Files.h"
#include "tests/support/JournalSession.h"
#include "tests/support/Masks.h"

#include <QCryptographicHash>
#include <QTest>

namespace {

constexpr QSize Size(70, 40);

QByteArray Hash(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
}

/// A journal of any bytes, with one text and hashes that fit.
class MadeJournal
{
public:
    MadeJournal(const QString& folder, const QByteArray& session)
        : m_log(journal::LogPath(folder), session)
    {
        WriteBytes(journal::SessionPath(folder), session);
        WriteBytes(journal::TextPath(folder, 1), Text);
        [this] { QVERIFY(m_log.Create()); }();
    }

    void Add(char type, const QByteArray& content) { QVERIFY(m_log.Append(type, content)); }
    void Commit(const QByteArray& content) { QVERIFY(m_log.Commit(content)); }
    void Commit(const QVector<int>& ids) { Commit(journal::ToBytes({1, Hash(Text), ids})); }

    static constexpr char Text[] = "<text/>";

private:
    RecordLog m_log;
};

QByteArray Session()
{
    return journal::ToBytes(JournalHeader{"/p/project.xml", "/p", "project", Size});
}

QByteArray BlankBase(int layerId)
{
    journal::Base base;
    base.layerId = layerId;
    return journal::ToBytes(base);
}

/// A record of a tile of one value.
QByteArray Tile(qint64 layerId, qint64 number, const QByteArray& packed = QByteArray("\0\xff", 2))
{
    return Ints({layerId, number}) + packed;
}

} // namespace

/// Journals that no session wrote.
class tst_HostileJournals : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void HostileRecordsEndTheLog_data();
    void HostileRecordsEndTheLog();
    void HostileSessionsAreRefused_data();
    void HostileSessionsAreRefused();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_HostileJournals::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_HostileJournals::HostileRecordsEndTheLog_data()
{
    QTest::addColumn<char>("type");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isSound");

    const auto base = [](int id, char kind, const QByteArray& rest) {
        return Ints({id}) + QByteArray(1, kind) + rest;
    };
    const auto commit = [](qint64 text, const QByteArray& hash, const QVector<qint64>& ids) {
        return Ints({text}) + hash + Ints(ids);
    };
    const QByteArray hash = Hash(MadeJournal::Text);
    const QByteArray noHash(20, '\0');
    const QByteArray file = Ints({1, 0, 1, 0});
    QTest::newRow("a tile") << 'T' << Tile(1, 1) << true;
    QTest::newRow("unknown layer") << 'T' << Tile(2, 1) << false;
    QTest::newRow("layer below 0") << 'T' << Tile(-1, 1) << false;
    QTest::newRow("tile below the last") << 'T' << Tile(1, 2) << false;
    QTest::newRow("tile before the first") << 'T' << Tile(1, -1) << false;
    QTest::newRow("unknown tile") << 'T' << Tile(1, 1, QByteArray("\3\xff", 2)) << false;
    QTest::newRow("tile too short") << 'T' << Tile(1, 1, QByteArray("\1\xff", 2)) << false;
    QTest::newRow("tile too long") << 'T' << Tile(1, 1, QByteArray("\0\xff\0", 3)) << false;
    QTest::newRow("tile longer than any") << 'T' << Tile(1, 1, QByteArray(5000, '\2')) << false;
    QTest::newRow("no tile") << 'T' << Tile(1, 1, QByteArray()) << false;
    QTest::newRow("empty tile record") << 'T' << QByteArray() << false;
    QTest::newRow("unknown record") << 'X' << QByteArray() << false;
    QTest::newRow("a base") << 'L' << base(9, 0, {}) << true;
    QTest::newRow("layer without an id") << 'L' << QByteArray() << false;
    QTest::newRow("layer id below 0") << 'L' << base(-1, 0, {}) << false;
    QTest::newRow("unknown base") << 'L' << base(9, 3, {}) << false;
    QTest::newRow("blank base with more") << 'L' << base(9, 0, "x") << false;
    QTest::newRow("a copied base") << 'L' << base(9, 1, Ints({1, 0}) + noHash) << true;
    QTest::newRow("copied base of no length")
        << 'L' << base(9, 1, Ints({-1, -1}) + noHash) << false;
    QTest::newRow("copied base without a hash") << 'L' << base(9, 1, Ints({1, 0})) << false;
    QTest::newRow("a file") << 'L' << base(9, 2, file + "/p/a.tga") << true;
    QTest::newRow("relative file") << 'L' << base(9, 2, file + "p/a.tga") << false;
    QTest::newRow("file without a name") << 'L' << base(9, 2, file) << false;
    QTest::newRow("file with a 0") << 'L' << base(9, 2, file + QByteArray("/p\0a", 4)) << false;
    QTest::newRow("file too long")
        << 'L' << base(9, 2, file + '/' + QByteArray(1 << 16, 'x')) << false;
    QTest::newRow("a commit") << 'C' << commit(1, hash, {1, 1}) << true;
    QTest::newRow("commit of an unknown layer") << 'C' << commit(1, hash, {1, 2}) << false;
    QTest::newRow("commit of no text") << 'C' << commit(0, hash, {1, 1}) << false;
    QTest::newRow("commit of fewer layers") << 'C' << commit(1, hash, {2, 1}) << false;
    QTest::newRow("commit of more layers") << 'C' << commit(1, hash, {0, 1}) << false;
    QTest::newRow("commit of very many layers") << 'C' << commit(1, hash, {-1, 1}) << false;
    QTest::newRow("commit without layers") << 'C' << commit(1, hash, {}) << false;
    // The commits are sound, but cannot be restored.
    QTest::newRow("commit of another text") << 'C' << commit(1, noHash, {1, 1}) << true;
    QTest::newRow("commit of a missing text") << 'C' << commit(7, hash, {1, 1}) << true;
}

void tst_HostileJournals::HostileRecordsEndTheLog()
{
    QFETCH(char, type);
    QFETCH(QByteArray, content);
    QFETCH(bool, isSound);
    const QString folder = m_folder->path();
    MadeJournal made(folder, Session());
    made.Add('L', BlankBase(1));
    made.Commit({1});
    if (type == 'C') {
        made.Commit(content);
    } else {
        made.Add(type, content);
    }
    made.Add('T', Tile(1, 0));
    made.Commit({1});
    const QMap<QString, QByteArray> before = FilesBelow(folder);

    const auto reader = JournalReader::Open(folder);
    QVERIFY(reader);
    QCOMPARE(reader->Mask(0).pixelIndex(0, 0), isSound ? 255 : 0);
    QCOMPARE(reader->Text(), MadeJournal::Text);
    QCOMPARE(FilesBelow(folder), before);
}

void tst_HostileJournals::HostileSessionsAreRefused_data()
{
    QTest::addColumn<QByteArray>("session");
    QTest::addColumn<bool>("isSound");

    const auto with = [](const QByteArray& from, const QByteArray& to) {
        return Session().replace(from, to);
    };
    QTest::newRow("a session") << Session() << true;
    QTest::newRow("no path") << with("/p/project.xml", "") << true;
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("no JSON") << Session().chopped(3) << false;
    QTest::newRow("another version") << with("\"format\": 1", "\"format\": 2") << false;
    QTest::newRow("relative path") << with("/p/", "p/") << false;
    QTest::newRow("path with a 0") << with("/p/", "/\\u0000p/") << false;
    QTest::newRow("no width") << with("\"width\": 70", "\"width\": 0") << false;
    QTest::newRow("height below 0") << with("\"height\": 40", "\"height\": -40") << false;
    QTest::newRow("too wide") << with("\"width\": 70", "\"width\": 65536") << false;
    QTest::newRow("files") << with("\"files\": {", "\"files\": {\"a\": 1, \"/a\": [1e99, -1e99]")
                           << true;
    QTest::newRow("very long") << Session() + QByteArray(1 << 24, ' ') << false;
}

void tst_HostileJournals::HostileSessionsAreRefused()
{
    QFETCH(QByteArray, session);
    QFETCH(bool, isSound);
    MadeJournal made(m_folder->path(), session);
    made.Add('L', BlankBase(1));
    made.Commit({1});

    QCOMPARE(RestoredState(m_folder->path()).has_value(), isSound);
}

QTEST_GUILESS_MAIN(tst_HostileJournals)
#include "tst_HostileJournals.moc"
