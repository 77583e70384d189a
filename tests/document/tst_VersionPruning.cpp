#include "document/versions/VersionPruning.h"

#include "document/versions/VersionFolders.h"
#include "document/versions/VersionLimits.h"
#include "platform/Files.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <filesystem>

Q_DECLARE_METATYPE(VersionLimits)

class tst_VersionPruning : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void KeepsTheNewestAndOneADay_data();
    void KeepsTheNewestAndOneADay();
    void RemovesTheOldestBeyondASize_data();
    void RemovesTheOldestBeyondASize();
    void RemovesWhatKilledProgramsLeft();

private:
    /// Below the folder of the versions.
    QString Path(const QString& name = {}) const { return m_folder->filePath("versions/" + name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_VersionPruning::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_VersionPruning::KeepsTheNewestAndOneADay_data()
{
    QTest::addColumn<VersionLimits>("limits");
    QTest::addColumn<QVector<int>>("hoursAgo");
    QTest::addColumn<QVector<bool>>("stays");

    // Now is noon.
    const VersionLimits two{2, 3, 1 << 20};
    QTest::newRow("none") << two << QVector<int>{} << QVector<bool>{};
    QTest::newRow("few") << two << QVector<int>{0, 1} << QVector<bool>{true, true};
    QTest::newRow("too many of a day")
        << two << QVector<int>{0, 1, 2} << QVector<bool>{true, true, false};
    QTest::newRow("the last of each day")
        << two << QVector<int>{0, 1, 2, 13, 14, 37, 38}
        << QVector<bool>{true, true, false, true, false, true, false};
    QTest::newRow("days end") << two << QVector<int>{0, 1, 60, 61, 84}
                              << QVector<bool>{true, true, true, false, false};
    QTest::newRow("the newest, however old")
        << two << QVector<int>{1000, 2000, 3000} << QVector<bool>{true, true, false};
    QTest::newRow("no days") << VersionLimits{1, 0, 1} << QVector<int>{0, 24}
                             << QVector<bool>{true, false};
    QVector<int> hourly;
    QVector<bool> newest;
    for (int i = 0; i < 12; ++i) {
        hourly << i << i;
        newest << (i < 10) << (i < 10);
    }
    QTest::newRow("twenty") << VersionLimits() << hourly << newest;
    QVector<int> daily;
    QVector<bool> month;
    for (int i = 0; i < 40; ++i) {
        daily << 24 * i;
        month << (i < 30);
    }
    QTest::newRow("thirty days") << VersionLimits() << daily << month;
}

void tst_VersionPruning::KeepsTheNewestAndOneADay()
{
    QFETCH(VersionLimits, limits);
    QFETCH(QVector<int>, hoursAgo);
    QFETCH(QVector<bool>, stays);
    const QDateTime now(QDate(2026, 6, 15), QTime(12, 0));
    QVector<QDateTime> times;
    for (const int hours : hoursAgo) {
        times.append(now.addSecs(-3600 * hours).toUTC());
    }
    QCOMPARE(limits.Stays(times, now.toUTC()), stays);
}

void tst_VersionPruning::RemovesTheOldestBeyondASize_data()
{
    QTest::addColumn<int>("newestBytes");
    QTest::addColumn<bool>("isShared");
    QTest::addColumn<qint64>("maxBytes");
    QTest::addColumn<QStringList>("left");

    // Three versions; the two older ones are the same file of 1000 bytes.
    const QStringList all{"c", "b", "a"};
    QTest::newRow("enough") << 1000 << false << qint64(2000) << all;
    QTest::newRow("a shared file goes with its last name")
        << 1000 << false << qint64(1999) << QStringList{"c"};
    QTest::newRow("too small for one") << 1000 << false << qint64(999) << QStringList{"c"};
    QTest::newRow("too small for the newest") << 5000 << false << qint64(1000) << all;
    QTest::newRow("nothing is kept") << 1000 << false << qint64(0) << QStringList{};
    QTest::newRow("the newest is still the project's") << 1000 << true << qint64(1000) << all;
    QTest::newRow("which costs nothing") << 1000 << true << qint64(999) << QStringList{"c"};
}

void tst_VersionPruning::RemovesTheOldestBeyondASize()
{
#ifdef QUILLMAP_PORTABLE
    QSKIP("Only Linux tells whether files are shared.");
#endif
    QFETCH(int, newestBytes);
    QFETCH(bool, isShared);
    QFETCH(qint64, maxBytes);
    QFETCH(QStringList, left);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const QStringList names{"a", "b", "c"};
    QStringList folders;
    for (int i = 0; i < names.size(); ++i) {
        folders.append(Path("%1/%2").arg(names[i], VersionFolders::NewId(now.addSecs(i))));
        QVERIFY(QDir().mkpath(folders.constLast()));
    }
    WriteBytes(folders[0] + "/file", QByteArray(1000, 'x'));
    WriteBytes(folders[2] + "/file", QByteArray(newestBytes, 'x'));
    const auto link = [](const QString& from, const QString& to) {
        std::filesystem::create_hard_link(platform::ToPath(from), platform::ToPath(to));
    };
    link(folders[0] + "/file", folders[1] + "/file");
    if (isShared) {
        // The project has the file too.
        link(folders[2] + "/file", m_folder->filePath("file"));
    }
    PruneVersions(Path(), {20, 30, maxBytes});

    QCOMPARE(QDir(Path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::Reversed),
             left);
}

void tst_VersionPruning::RemovesWhatKilledProgramsLeft()
{
    const QString old = Path("key/" + VersionFolders::NewUnfinished());
    const QString young = Path("other/" + VersionFolders::NewUnfinished());
    for (const QString& folder : {old, young}) {
        QVERIFY(QDir().mkpath(folder));
    }
    std::filesystem::last_write_time(platform::ToPath(old),
                                     std::filesystem::file_time_type::clock::now() -
                                         std::chrono::hours(2));
    PruneVersions(Path(), {});
    QVERIFY(!QFileInfo::exists(Path("key")));
    QVERIFY(QFileInfo::exists(young));
}

QTEST_GUILESS_MAIN(tst_VersionPruning)
#include "tst_VersionPruning.moc"
