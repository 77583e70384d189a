#include "layers/Targa.h"
#include "layers/raster/Mask.h"

#include "tests/support/Masks.h"
#include "tests/support/ProjectFixture.h"

#include <QProcess>
#include <QtTest>

/// Opens the files that we write in other programs.
class tst_TargaInOtherPrograms : public QObject
{
    Q_OBJECT

private slots:
    void ImageMagickReadsTheSamePixels_data();
    void ImageMagickReadsTheSamePixels();
    void ImageMagickKnowsWhatItReads();
    void PillowReadsTheSamePixels_data();
    void PillowReadsTheSamePixels();
};

namespace {

struct Output
{
    QByteArray bytes;
    QByteArray failure;
};

Output Run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted() || !process.waitForFinished()) {
        return {{}, "Cannot run '" + program.toUtf8() + "': " + process.errorString().toUtf8()};
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        return {{}, "'" + program.toUtf8() + "' failed: " + process.readAllStandardError()};
    }
    return {process.readAllStandardOutput(), {}};
}

/// Every row begins with another value than the last one of the row before, so no run crosses the
/// end of a row. Some runs are longer than a packet.
QImage MaskWithoutRunsAcrossRowEnds()
{
    Random random;
    QImage mask = RandomMask(random, {301, 40});
    for (int y = 0; y < mask.height(); ++y) {
        mask.scanLine(y)[0] = raster::MaskClear;
        std::fill_n(mask.scanLine(y) + 1, y * 7, raster::MaskSet);
        mask.scanLine(y)[300] = raster::MaskSet;
    }
    return mask;
}

} // namespace

void tst_TargaInOtherPrograms::ImageMagickReadsTheSamePixels_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(16, 16), QSize(33, 17), QSize(300, 5)}) {
        const QByteArray name = QByteArray::number(size.width());
        QTest::newRow((name + " wide, raw").constData()) << false << size;
        QTest::newRow((name + " wide, run-length").constData()) << true << size;
    }
}

void tst_TargaInOtherPrograms::ImageMagickReadsTheSamePixels()
{
    QFETCH(bool, compressed);
    QFETCH(QSize, size);
    Random random;
    const ProjectFixture project(size);
    const QString path = project.Path("mask.tga");
    const QImage mask = RandomMask(random, size);
    QVERIFY(SaveTarga(path, mask, compressed));
    const Output pixels = Run("convert", {path, "-depth", "8", "gray:-"});
    QVERIFY2(pixels.failure.isEmpty(), pixels.failure.constData());
    QCOMPARE(pixels.bytes.toHex(), Indices(mask).toHex());
}

void tst_TargaInOtherPrograms::ImageMagickKnowsWhatItReads()
{
    const ProjectFixture project;
    const QString path = project.Path("mask.tga");
    QVERIFY(SaveTarga(path, MaskFromArt({"##..#", ".#..#"}), true));
    const Output description = Run("identify", {"-format", "%m %wx%h %z %[orientation]", path});
    QVERIFY2(description.failure.isEmpty(), description.failure.constData());
    QCOMPARE(description.bytes, QByteArray("TGA 5x2 8 TopLeft"));
}

void tst_TargaInOtherPrograms::PillowReadsTheSamePixels_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::newRow("raw") << false;
    QTest::newRow("run-length") << true;
}

void tst_TargaInOtherPrograms::PillowReadsTheSamePixels()
{
    QFETCH(bool, compressed);
    const QString python = QUILLMAP_PYTHON_WITH_PILLOW;
    QVERIFY2(!python.endsWith("NOTFOUND"), "No python3 with Pillow was found with the configure.");
    const ProjectFixture project;
    const QString path = project.Path("mask.tga");
    const QImage mask = MaskWithoutRunsAcrossRowEnds();
    QVERIFY(SaveTarga(path, mask, compressed));
    const QString script = "import sys; from PIL import Image; image = Image.open(sys.argv[1]); "
                           "assert image.mode == 'L', image.mode; "
                           "sys.stdout.buffer.write(image.tobytes())";
    const Output pixels = Run(python, {"-c", script, path});
    QVERIFY2(pixels.failure.isEmpty(), pixels.failure.constData());
    QCOMPARE(pixels.bytes.toHex(), Indices(mask).toHex());
}

QTEST_GUILESS_MAIN(tst_TargaInOtherPrograms)

#include "tst_TargaInOtherPrograms.moc"
