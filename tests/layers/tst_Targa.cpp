#include "layers/Targa.h"

#include "layers/raster/Mask.h"

#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/LiteralTarga.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/ProjectFixture.h"
#include "tests/support/TargaFiles.h"

#include <QtTest>

class TargaTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void savedMasksLoadTheSame_data();
    void savedMasksLoadTheSame();
    void filesHoldWhatTheLiteralWriterWrites_data();
    void filesHoldWhatTheLiteralWriterWrites();
    void anOldFileIsReplaced();
    void withoutAFileNameNothingIsSaved();
    void onlyIndexedImagesAreSaved_data();
    void onlyIndexedImagesAreSaved();
    void sidesThatDoNotFitTheHeaderAreRefused_data();
    void sidesThatDoNotFitTheHeaderAreRefused();
    void aFileThatCannotBeOpenedIsAnError();
    void aFullDiskLeavesTheOldFile_data();
    void aFullDiskLeavesTheOldFile();
    void aFullDeviceIsAnError();
    void aFileThatCannotBePutInPlaceIsAnError();
    void messagesShowNamesWithPlaceholdersAsTheyAre();

    void whatCannotBeOpenedIsSilentlyNoMask_data();
    void whatCannotBeOpenedIsSilentlyNoMask();
    void refusedFilesLogWhy_data();
    void refusedFilesLogWhy();
    void theSizeIsTheProjects();
    void layerSizesOfNothingGiveNoMask_data();
    void layerSizesOfNothingGiveNoMask();
    void filesThatEndEarlyAreRead();
    void trailingBytesAreIgnored();
    void aFileThatPretendsToBeHugeIsAnError();
    void aRefusedFileIsNotReadAsAWhole();

private:
    QString File() const { return m_project->Path("mask.tga"); }

    std::unique_ptr<ProjectFixture> m_project;
    LogSpy m_log;
};

namespace {

/// A sparse run-length file of 9 GB; only its header takes room on the disk.
void WriteSparseTarga(const QString& path, QSize size)
{
    WriteBytes(path, TargaHeader(RunLengthType, size));
    if (!QFile::resize(path, 9000000000)) {
        qFatal("Cannot make a sparse file.");
    }
}

} // namespace

void TargaTest::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(5, 3));
    m_log.Take();
}

void TargaTest::cleanup()
{
    m_project.reset();
}

void TargaTest::savedMasksLoadTheSame_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(1, 1), QSize(5, 3), QSize(64, 64), QSize(33, 17)}) {
        const QByteArray name = QByteArray::number(size.width());
        QTest::newRow((name + " wide, raw").constData()) << false << size;
        QTest::newRow((name + " wide, run-length").constData()) << true << size;
    }
}

void TargaTest::savedMasksLoadTheSame()
{
    QFETCH(bool, compressed);
    QFETCH(QSize, size);
    Random random;
    const ProjectFixture project(size);
    const QImage mask = RandomMask(random, size);
    QVERIFY(SaveTarga(project.Path("mask.tga"), mask, compressed));
    const QImage loaded = LoadTarga(project.Path("mask.tga"));
    QCOMPARE(loaded, mask);
    QCOMPARE(loaded.format(), QImage::Format_Indexed8);
    QCOMPARE(loaded.colorTable(), raster::GreyTable());
    QCOMPARE(m_log.Messages(), QStringList());
}

void TargaTest::filesHoldWhatTheLiteralWriterWrites_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::newRow("raw") << false;
    QTest::newRow("run-length") << true;
}

void TargaTest::filesHoldWhatTheLiteralWriterWrites()
{
    QFETCH(bool, compressed);
    const QImage mask = MaskFromArt({"##..#", "#+.#.", "....."});
    QVERIFY(SaveTarga(File(), mask, compressed));
    QCOMPARE(ReadBytes(File()).toHex(), literal::WriteTarga(mask, compressed).toHex());
}

void TargaTest::anOldFileIsReplaced()
{
    WriteBytes(File(), QByteArray(10000, 'x'));
    const QImage mask = MaskFromArt({"##..#", "#..#.", "....."});
    QVERIFY(SaveTarga(File(), mask, true));
    QCOMPARE(ReadBytes(File()), literal::WriteTarga(mask, true));
}

void TargaTest::withoutAFileNameNothingIsSaved()
{
    QVERIFY(!SaveTarga(QString(), raster::BlankMask({5, 3}), true));
    QCOMPARE(m_log.Messages(), QStringList{"Error: Please specify a filename."});
}

void TargaTest::onlyIndexedImagesAreSaved_data()
{
    QTest::addColumn<QImage>("image");
    QTest::newRow("32 bits") << QImage(5, 3, QImage::Format_ARGB32_Premultiplied);
    QTest::newRow("8-bit grey") << QImage(5, 3, QImage::Format_Grayscale8);
    QTest::newRow("1 bit") << QImage(5, 3, QImage::Format_Mono);
    QTest::newRow("null") << QImage();
}

void TargaTest::onlyIndexedImagesAreSaved()
{
    QFETCH(QImage, image);
    QVERIFY(!SaveTarga(File(), image, true));
    QCOMPARE(m_log.Messages(), QStringList{"Error: Only 8-bit indexed image format is supported."});
    QVERIFY(!QFile::exists(File()));
}

void TargaTest::sidesThatDoNotFitTheHeaderAreRefused_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("message");
    const QString message = "Error: An image of %1 pixels is too large for file FILE.";
    QTest::newRow("longest row") << QSize(65535, 1) << QString();
    QTest::newRow("longest column") << QSize(1, 65535) << QString();
    QTest::newRow("too wide") << QSize(65536, 1) << message.arg("65536x1");
    QTest::newRow("too high") << QSize(1, 65536) << message.arg("1x65536");
}

void TargaTest::sidesThatDoNotFitTheHeaderAreRefused()
{
    QFETCH(QSize, size);
    QFETCH(QString, message);
    QImage image(size, QImage::Format_Indexed8);
    image.fill(0);
    QCOMPARE(SaveTarga(File(), image, true), message.isEmpty());
    QCOMPARE(m_log.Messages().join('|'), message.replace("FILE", File()));
    QCOMPARE(QFile::exists(File()), message.isEmpty());
}

void TargaTest::aFileThatCannotBeOpenedIsAnError()
{
    const QString path = m_project->Path("missing/mask.tga");
    QVERIFY(!SaveTarga(path, raster::BlankMask({5, 3}), true));
    QCOMPARE(m_log.Take(), QStringList{"Error: File " + path + " cannot be opened for writting."});
    const QString folder = QFileInfo(File()).path();
    QVERIFY(!SaveTarga(folder, raster::BlankMask({5, 3}), true));
    QCOMPARE(m_log.Take(),
             QStringList{"Error: File " + folder + " cannot be opened for writting."});
}

void TargaTest::aFullDiskLeavesTheOldFile_data()
{
    QTest::addColumn<int>("room");
    QTest::addColumn<bool>("compressed");
    for (const int room : {0, 10, 18, 1000, 40000}) {
        QTest::newRow(QByteArray::number(room).constData()) << room << false;
        QTest::newRow((QByteArray::number(room) + ", run-length").constData()) << room << true;
    }
}

void TargaTest::aFullDiskLeavesTheOldFile()
{
    QFETCH(int, room);
    QFETCH(bool, compressed);
    QImage mask = raster::BlankMask({512, 128});
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); x += 2) {
            mask.scanLine(y)[x] = raster::MaskSet;
        }
    }
    WriteBytes(File(), "old");
    {
        const FileSizeLimit limit(static_cast<quint64>(room));
        QVERIFY(!SaveTarga(File(), mask, compressed));
    }
    const QString message = "Error: The first attempt to write into file %1 failed.";
    QCOMPARE(m_log.Messages(), QStringList{message.arg(File())});
    QCOMPARE(ReadBytes(File()), QByteArray("old"));
}

void TargaTest::aFullDeviceIsAnError()
{
    QVERIFY(!SaveTarga("/dev/full", raster::BlankMask({5, 3}), true));
    QCOMPARE(m_log.Messages(),
             QStringList{"Error: The first attempt to write into file /dev/full failed."});
    QVERIFY(!QFileInfo("/dev/full").isFile());
}

void TargaTest::aFileThatCannotBePutInPlaceIsAnError()
{
    WriteBytes(File(), "old");
    {
        const RenamesFail fail;
        QVERIFY(!SaveTarga(File(), raster::BlankMask({5, 3}), true));
    }
    const QString message = "Error: The first attempt to write into file %1 failed.";
    QCOMPARE(m_log.Messages(), QStringList{message.arg(File())});
    QCOMPARE(ReadBytes(File()), QByteArray("old"));
}

void TargaTest::messagesShowNamesWithPlaceholdersAsTheyAre()
{
    const QString path = m_project->Path("%1 %2 %L3/mask.tga");
    QVERIFY(!SaveTarga(path, raster::BlankMask({5, 3}), true));
    QCOMPARE(m_log.Take(), QStringList{"Error: File " + path + " cannot be opened for writting."});
    QImage image(65536, 1, QImage::Format_Indexed8);
    QVERIFY(!SaveTarga(path, image, true));
    QCOMPARE(m_log.Take(),
             QStringList{"Error: An image of 65536x1 pixels is too large for file " + path + "."});
}

void TargaTest::whatCannotBeOpenedIsSilentlyNoMask_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("empty") << QString();
    QTest::newRow("missing") << "./missing.tga";
    QTest::newRow("directory") << "/";
    QTest::newRow("endless device") << "/dev/zero";
}

void TargaTest::whatCannotBeOpenedIsSilentlyNoMask()
{
    QFETCH(QString, path);
    QVERIFY(LoadTarga(path).isNull());
    QCOMPARE(m_log.Messages(), QStringList());
}

void TargaTest::refusedFilesLogWhy_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("message");
    const QByteArray good = literal::WriteTarga(raster::BlankMask({5, 3}), false);
    const auto with = [&good](int offset, char byte) {
        QByteArray file = good;
        file[offset] = byte;
        return file;
    };
    const QString mismatch = "Error: TARGA : Identification field and data type mismatch.";
    const QString colour = "Error: TARGA : Colour formats are not supported.";
    const QString size = "Error: TARGA : Wrong size of the image.";
    QTest::newRow("image identification") << with(0, 1) << mismatch;
    QTest::newRow("colour map") << with(1, 1) << mismatch;
    QTest::newRow("true colour") << with(2, 2) << colour;
    QTest::newRow("colour-mapped") << with(2, 1) << colour;
    QTest::newRow("empty file") << QByteArray() << colour;
    QTest::newRow("only a part of the header") << good.left(12) << size;
    QTest::newRow("another width") << literal::WriteTarga(raster::BlankMask({6, 3}), true) << size;
    QTest::newRow("another height") << literal::WriteTarga(raster::BlankMask({5, 4}), true) << size;
}

void TargaTest::refusedFilesLogWhy()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, message);
    WriteBytes(File(), file);
    QVERIFY(LoadTarga(File()).isNull());
    QCOMPARE(m_log.Messages(), QStringList{message});
}

void TargaTest::theSizeIsTheProjects()
{
    WriteBytes(File(), literal::WriteTarga(raster::BlankMask({7, 2}), true));
    QVERIFY(LoadTarga(File()).isNull());
    ProjectSettings::Instance().SetSizes(7, 2, 100, 100);
    QCOMPARE(LoadTarga(File()).size(), QSize(7, 2));
}

void TargaTest::layerSizesOfNothingGiveNoMask_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QStringList>("messages");
    const QStringList wrongSize = {"Error: TARGA : Wrong size of the image."};
    QTest::newRow("zero") << QSize(0, 0) << QStringList();
    QTest::newRow("negative") << QSize(-1, -1) << wrongSize;
    QTest::newRow("smallest integer") << QSize(-2147483647 - 1, -2147483647 - 1) << wrongSize;
    QTest::newRow("largest integer") << QSize(2147483647, 2147483647) << wrongSize;
}

void TargaTest::layerSizesOfNothingGiveNoMask()
{
    QFETCH(QSize, size);
    QFETCH(QStringList, messages);
    QByteArray file = literal::WriteTarga(raster::BlankMask({1, 1}), true);
    file.replace(12, 4, QByteArray(4, static_cast<char>(size.width())));
    WriteBytes(File(), file);
    ProjectSettings::Instance().SetSizes(size.width(), size.height(), 100, 100);
    QVERIFY(LoadTarga(File()).isNull());
    QCOMPARE(m_log.Messages(), messages);
}

void TargaTest::filesThatEndEarlyAreRead()
{
    const QImage mask = MaskFromArt({"##..#", "#+.#.", "###.."});
    for (const bool compressed : {false, true}) {
        const QByteArray file = literal::WriteTarga(mask, compressed);
        for (int length = 18; length <= file.size(); ++length) {
            WriteBytes(File(), file.left(length));
            QCOMPARE(LoadTarga(File()), literal::ReadTarga(file.left(length), mask.size()));
        }
    }
    QCOMPARE(m_log.Messages(), QStringList());
}

void TargaTest::trailingBytesAreIgnored()
{
    const QImage mask = MaskFromArt({"##..#", "#+.#.", "###.."});
    WriteBytes(File(), literal::WriteTarga(mask, true) + QByteArray(1000, '\x55'));
    QCOMPARE(LoadTarga(File()), mask);
}

void TargaTest::aFileThatPretendsToBeHugeIsAnError()
{
    WriteSparseTarga(File(), {65535, 65535});
    ProjectSettings::Instance().SetSizes(65535, 65535, 100, 100);
    const MemoryLimit limit(AMebibyte * 512);
    QVERIFY(LoadTarga(File()).isNull());
    QCOMPARE(m_log.Messages(),
             QStringList{"Error: TARGA : Not enough memory for 65535x65535 pixels."});
}

void TargaTest::aRefusedFileIsNotReadAsAWhole()
{
    WriteSparseTarga(File(), {65535, 65534});
    ProjectSettings::Instance().SetSizes(65535, 65535, 100, 100);
    const MemoryLimit limit(AMebibyte * 512);
    QVERIFY(LoadTarga(File()).isNull());
    QCOMPARE(m_log.Messages(), QStringList{"Error: TARGA : Wrong size of the image."});
}

QTEST_GUILESS_MAIN(TargaTest)

#include "tst_Targa.moc"
