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

class tst_Targa : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void SavedMasksLoadTheSame_data();
    void SavedMasksLoadTheSame();
    void FilesHoldWhatTheLiteralWriterWrites_data();
    void FilesHoldWhatTheLiteralWriterWrites();
    void AnOldFileIsReplaced();
    void WithoutAFileNameNothingIsSaved();
    void OnlyIndexedImagesAreSaved_data();
    void OnlyIndexedImagesAreSaved();
    void SidesThatDoNotFitTheHeaderAreRefused_data();
    void SidesThatDoNotFitTheHeaderAreRefused();
    void AFileThatCannotBeOpenedIsAnError();
    void AFullDiskLeavesTheOldFile_data();
    void AFullDiskLeavesTheOldFile();
    void AFullDeviceIsAnError();
    void AFileThatCannotBePutInPlaceIsAnError();
    void MessagesShowNamesWithPlaceholdersAsTheyAre();

    void WhatCannotBeOpenedIsSilentlyNoMask_data();
    void WhatCannotBeOpenedIsSilentlyNoMask();
    void RefusedFilesLogWhy_data();
    void RefusedFilesLogWhy();
    void TheSizeIsTheProjects();
    void LayerSizesOfNothingGiveNoMask_data();
    void LayerSizesOfNothingGiveNoMask();
    void FilesThatEndEarlyAreRead();
    void TrailingBytesAreIgnored();
    void AFileThatPretendsToBeHugeIsAnError();
    void ARefusedFileIsNotReadAsAWhole();

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

void tst_Targa::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(5, 3));
    m_log.Take();
}

void tst_Targa::cleanup()
{
    m_project.reset();
}

void tst_Targa::SavedMasksLoadTheSame_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(1, 1), QSize(5, 3), QSize(64, 64), QSize(33, 17)}) {
        const QByteArray name = QByteArray::number(size.width());
        QTest::newRow((name + " wide, raw").constData()) << false << size;
        QTest::newRow((name + " wide, run-length").constData()) << true << size;
    }
}

void tst_Targa::SavedMasksLoadTheSame()
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

void tst_Targa::FilesHoldWhatTheLiteralWriterWrites_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::newRow("raw") << false;
    QTest::newRow("run-length") << true;
}

void tst_Targa::FilesHoldWhatTheLiteralWriterWrites()
{
    QFETCH(bool, compressed);
    const QImage mask = MaskFromArt({"##..#", "#+.#.", "....."});
    QVERIFY(SaveTarga(File(), mask, compressed));
    QCOMPARE(ReadBytes(File()).toHex(), literal::WriteTarga(mask, compressed).toHex());
}

void tst_Targa::AnOldFileIsReplaced()
{
    WriteBytes(File(), QByteArray(10000, 'x'));
    const QImage mask = MaskFromArt({"##..#", "#..#.", "....."});
    QVERIFY(SaveTarga(File(), mask, true));
    QCOMPARE(ReadBytes(File()), literal::WriteTarga(mask, true));
}

void tst_Targa::WithoutAFileNameNothingIsSaved()
{
    QVERIFY(!SaveTarga(QString(), raster::BlankMask({5, 3}), true));
    QCOMPARE(m_log.Messages(), QStringList{"Error: Please specify a filename."});
}

void tst_Targa::OnlyIndexedImagesAreSaved_data()
{
    QTest::addColumn<QImage>("image");
    QTest::newRow("32 bits") << QImage(5, 3, QImage::Format_ARGB32_Premultiplied);
    QTest::newRow("8-bit grey") << QImage(5, 3, QImage::Format_Grayscale8);
    QTest::newRow("1 bit") << QImage(5, 3, QImage::Format_Mono);
    QTest::newRow("null") << QImage();
}

void tst_Targa::OnlyIndexedImagesAreSaved()
{
    QFETCH(QImage, image);
    QVERIFY(!SaveTarga(File(), image, true));
    QCOMPARE(m_log.Messages(), QStringList{"Error: Only 8-bit indexed image format is supported."});
    QVERIFY(!QFile::exists(File()));
}

void tst_Targa::SidesThatDoNotFitTheHeaderAreRefused_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("message");
    const QString message = "Error: An image of %1 pixels is too large for file FILE.";
    QTest::newRow("longest row") << QSize(65535, 1) << QString();
    QTest::newRow("longest column") << QSize(1, 65535) << QString();
    QTest::newRow("too wide") << QSize(65536, 1) << message.arg("65536x1");
    QTest::newRow("too high") << QSize(1, 65536) << message.arg("1x65536");
}

void tst_Targa::SidesThatDoNotFitTheHeaderAreRefused()
{
    QFETCH(QSize, size);
    QFETCH(QString, message);
    QImage image(size, QImage::Format_Indexed8);
    image.fill(0);
    QCOMPARE(SaveTarga(File(), image, true), message.isEmpty());
    QCOMPARE(m_log.Messages().join('|'), message.replace("FILE", File()));
    QCOMPARE(QFile::exists(File()), message.isEmpty());
}

void tst_Targa::AFileThatCannotBeOpenedIsAnError()
{
    const QString path = m_project->Path("missing/mask.tga");
    QVERIFY(!SaveTarga(path, raster::BlankMask({5, 3}), true));
    QCOMPARE(m_log.Take(), QStringList{"Error: File " + path + " cannot be opened for writting."});
    const QString folder = QFileInfo(File()).path();
    QVERIFY(!SaveTarga(folder, raster::BlankMask({5, 3}), true));
    QCOMPARE(m_log.Take(),
             QStringList{"Error: File " + folder + " cannot be opened for writting."});
}

void tst_Targa::AFullDiskLeavesTheOldFile_data()
{
    QTest::addColumn<int>("room");
    QTest::addColumn<bool>("compressed");
    for (const int room : {0, 10, 18, 1000, 40000}) {
        QTest::newRow(QByteArray::number(room).constData()) << room << false;
        QTest::newRow((QByteArray::number(room) + ", run-length").constData()) << room << true;
    }
}

void tst_Targa::AFullDiskLeavesTheOldFile()
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

void tst_Targa::AFullDeviceIsAnError()
{
    QVERIFY(!SaveTarga("/dev/full", raster::BlankMask({5, 3}), true));
    QCOMPARE(m_log.Messages(),
             QStringList{"Error: The first attempt to write into file /dev/full failed."});
    QVERIFY(!QFileInfo("/dev/full").isFile());
}

void tst_Targa::AFileThatCannotBePutInPlaceIsAnError()
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

void tst_Targa::MessagesShowNamesWithPlaceholdersAsTheyAre()
{
    const QString path = m_project->Path("%1 %2 %L3/mask.tga");
    QVERIFY(!SaveTarga(path, raster::BlankMask({5, 3}), true));
    QCOMPARE(m_log.Take(), QStringList{"Error: File " + path + " cannot be opened for writting."});
    QImage image(65536, 1, QImage::Format_Indexed8);
    QVERIFY(!SaveTarga(path, image, true));
    QCOMPARE(m_log.Take(),
             QStringList{"Error: An image of 65536x1 pixels is too large for file " + path + "."});
}

void tst_Targa::WhatCannotBeOpenedIsSilentlyNoMask_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("empty") << QString();
    QTest::newRow("missing") << "./missing.tga";
    QTest::newRow("directory") << "/";
    QTest::newRow("endless device") << "/dev/zero";
}

void tst_Targa::WhatCannotBeOpenedIsSilentlyNoMask()
{
    QFETCH(QString, path);
    QVERIFY(LoadTarga(path).isNull());
    QCOMPARE(m_log.Messages(), QStringList());
}

void tst_Targa::RefusedFilesLogWhy_data()
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

void tst_Targa::RefusedFilesLogWhy()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, message);
    WriteBytes(File(), file);
    QVERIFY(LoadTarga(File()).isNull());
    QCOMPARE(m_log.Messages(), QStringList{message});
}

void tst_Targa::TheSizeIsTheProjects()
{
    WriteBytes(File(), literal::WriteTarga(raster::BlankMask({7, 2}), true));
    QVERIFY(LoadTarga(File()).isNull());
    ProjectSettings::Instance().SetSizes(7, 2, 100, 100);
    QCOMPARE(LoadTarga(File()).size(), QSize(7, 2));
}

void tst_Targa::LayerSizesOfNothingGiveNoMask_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QStringList>("messages");
    const QStringList wrongSize = {"Error: TARGA : Wrong size of the image."};
    QTest::newRow("zero") << QSize(0, 0) << QStringList();
    QTest::newRow("negative") << QSize(-1, -1) << wrongSize;
    QTest::newRow("smallest integer") << QSize(-2147483647 - 1, -2147483647 - 1) << wrongSize;
    QTest::newRow("largest integer") << QSize(2147483647, 2147483647) << wrongSize;
}

void tst_Targa::LayerSizesOfNothingGiveNoMask()
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

void tst_Targa::FilesThatEndEarlyAreRead()
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

void tst_Targa::TrailingBytesAreIgnored()
{
    const QImage mask = MaskFromArt({"##..#", "#+.#.", "###.."});
    WriteBytes(File(), literal::WriteTarga(mask, true) + QByteArray(1000, '\x55'));
    QCOMPARE(LoadTarga(File()), mask);
}

void tst_Targa::AFileThatPretendsToBeHugeIsAnError()
{
    WriteSparseTarga(File(), {65535, 65535});
    ProjectSettings::Instance().SetSizes(65535, 65535, 100, 100);
    const MemoryLimit limit(AMebibyte * 512);
    QVERIFY(LoadTarga(File()).isNull());
    QCOMPARE(m_log.Messages(),
             QStringList{"Error: TARGA : Not enough memory for 65535x65535 pixels."});
}

void tst_Targa::ARefusedFileIsNotReadAsAWhole()
{
    WriteSparseTarga(File(), {65535, 65534});
    ProjectSettings::Instance().SetSizes(65535, 65535, 100, 100);
    const MemoryLimit limit(AMebibyte * 512);
    QVERIFY(LoadTarga(File()).isNull());
    QCOMPARE(m_log.Messages(), QStringList{"Error: TARGA : Wrong size of the image."});
}

QTEST_GUILESS_MAIN(tst_Targa)

#include "tst_Targa.moc"
