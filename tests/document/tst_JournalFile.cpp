#include "layers/raster/MaskTile.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/JournalSession.h"
#include "tests/support/Masks.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

class tst_JournalFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void RestoresWhatWasCommitted();

private:
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
    for (int round = 0; round < 20; ++round) {
        JournalSession session({random.Between(1, 200), random.Between(1, 200)});
        QVERIFY(session.Begin());
        const QString folder = session.Writer().Folder();
        QVERIFY(!RestoredState(folder));
        for (int i = 0; i < 80; ++i) {
            const int before = session.States().size();
            QVERIFY2(session.Act(random, m_folder->path()), qPrintable(session.Writer().Error()));
            QVERIFY(session.Writer().LiveLength() <= session.Writer().Length());
            if (session.States().size() > before || i % 8 == 0) {
                QCOMPARE(RestoredState(folder).value(), session.States().last());
            }
        }
        session.Writer().End();
        QVERIFY(!QFileInfo::exists(folder));
    }
}

QTEST_GUILESS_MAIN(tst_JournalFile)
#include "tst_JournalFile.moc"
