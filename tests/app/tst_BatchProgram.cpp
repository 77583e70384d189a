#include "tests/support/Files.h"
#include "tests/support/Program.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <sys/stat.h>

namespace {

constexpr char Project[] =
    "<qm-config><global><layer size=\"4\"/><world size=\"100\"/></global><territory-type-list>"
    "<territory-type name=\"Deer\"/></territory-type-list></qm-config>";
constexpr char ProjectWithoutTypes[] =
    "<qm-config><global><layer size=\"4\"/></global></qm-config>";

} // namespace

/// Runs the real program, each time in a new folder.
class tst_BatchProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void RunsWithoutADisplay_data();
    void RunsWithoutADisplay();
    void ConsoleTextIsUtf8_data();
    void ConsoleTextIsUtf8();
    void HelpHasNoEffect_data();
    void HelpHasNoEffect();
    void WrongArgumentsEndWithOne_data();
    void WrongArgumentsEndWithOne();
    void MissingConfigEndsWithTwo_data();
    void MissingConfigEndsWithTwo();
    void MissingOutputFolderEndsWithThree();
    void UnwrittenMapEndsWithZero();
    void FullDiskIsReported();
    void FileSizeLimitIsReported();
    void PipesThatNobodyReadsAreReported();
    void UnwrittenTypeEndsWithZero();
    void FolderStandsTwiceInTheDefault();
    void RelativeOutputStartsAtTheConfig();
    void EachLineStartsWithTheTime();

private:
    ProgramRun Run(const QStringList& arguments) const
    {
        return RunProgram(QUILLMAP_PROGRAM, arguments, m_folder->path(), m_environment);
    }
    QString Path(const QString& fileName) const { return m_folder->filePath(fileName); }
    QStringList SuccessMessages(const QString& mapPath) const
    {
        return {"1 territory types exported.", "Processing binary map ...",
                "Zone binary map saved to file '" + mapPath + "'."};
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QProcessEnvironment m_environment;
};

void tst_BatchProgram::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        m_environment.remove(name);
    }
}

void tst_BatchProgram::RunsWithoutADisplay_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::newRow("none") << "QUILLMAP_UNUSED"
                          << "";
    QTest::newRow("dead") << "DISPLAY"
                          << ":987";
    QTest::newRow("dead Wayland") << "WAYLAND_DISPLAY"
                                  << "wayland-987";
    QTest::newRow("platform chosen") << "QT_QPA_PLATFORM"
                                     << "minimal";
}

void tst_BatchProgram::RunsWithoutADisplay()
{
    QFETCH(QString, variable);
    QFETCH(QString, value);
    m_environment.insert(variable, value);
    WriteBytes(Path("a.xml"), Project);
    const ProgramRun run = Run({"--no-gui", "--config", "a.xml", "--output", "out"});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(WithoutTimes(run.log), SuccessMessages(Path("out/a.map")));
    QCOMPARE(run.output, "");
    QCOMPARE(QFile(Path("out/a.map")).size(), 24);
    QVERIFY(QFile::exists(Path("territoryTypes/Deer.xml")));
}

void tst_BatchProgram::ConsoleTextIsUtf8_data()
{
    QTest::addColumn<QString>("locale");
    QTest::newRow("C") << "C";
    QTest::newRow("POSIX") << "POSIX";
    QTest::newRow("UTF-8") << "C.UTF-8";
    QTest::newRow("unknown") << "xx_XX.ISO-8859-15";
}

void tst_BatchProgram::ConsoleTextIsUtf8()
{
    QFETCH(QString, locale);
    m_environment.insert("LC_ALL", locale);
    WriteBytes(Path("p%1 ü/鹿 %2.xml"), Project);
    const ProgramRun run = Run({"--no-gui", "--config", "p%1 ü/鹿 %2.xml", "--output", "%3ö"});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(WithoutTimes(run.log), SuccessMessages(Path("p%1 ü/%3ö/鹿 %2.map")));
    QVERIFY(QFile::exists(Path("p%1 ü/%3ö/鹿 %2.map")));
}

void tst_BatchProgram::HelpHasNoEffect_data()
{
    QTest::addColumn<QString>("help");
    for (const char* help : {"-h", "--help", "-?"}) {
        QTest::newRow(help) << help;
    }
}

void tst_BatchProgram::HelpHasNoEffect()
{
    QFETCH(QString, help);
    WriteBytes(Path("a.xml"), Project);
    const ProgramRun run = Run({help, "--no-gui", "--config", "a.xml", "--output", "out"});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(WithoutTimes(run.log), SuccessMessages(Path("out/a.map")));
    QCOMPARE(run.output, "");
}

void tst_BatchProgram::WrongArgumentsEndWithOne_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown option")
        << QStringList{"--no-gui", "--nothing", "--config", "a.xml"} << "Unknown option 'nothing'.";
    QTest::newRow("missing value")
        << QStringList{"--no-gui", "--config"} << "Missing value after '--config'.";
    QTest::newRow("unknown option beyond ASCII")
        << QStringList{"--no-gui", "--größe"} << "Unknown option 'größe'.";
}

void tst_BatchProgram::WrongArgumentsEndWithOne()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    WriteBytes(Path("a.xml"), Project);
    const ProgramRun run = Run(arguments);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(WithoutTimes(run.log), QStringList{message});
    QVERIFY(!QDir(Path("territoryTypes")).exists());
}

void tst_BatchProgram::MissingConfigEndsWithTwo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("path");
    QTest::newRow("not given") << QStringList{} << "";
    QTest::newRow("empty") << QStringList{"--config", ""} << "";
    QTest::newRow("no file") << QStringList{"--config", "./no %1.xml"} << "./no %1.xml";
    QTest::newRow("folder") << QStringList{"--config", "."} << ".";
}

void tst_BatchProgram::MissingConfigEndsWithTwo()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, path);
    const ProgramRun run = Run(QStringList("--no-gui") + arguments);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(WithoutTimes(run.log), QStringList{"Failed to open file '" + path + "' for reading."});
    QVERIFY(m_folder->isValid() && QDir(m_folder->path()).isEmpty());
}

void tst_BatchProgram::MissingOutputFolderEndsWithThree()
{
    WriteBytes(Path("a.xml"), Project);
    const ProgramRun run = Run({"--no-gui", "--config", "a.xml", "--output", "a.xml/x/"});
    QCOMPARE(run.exitCode, 3);
    QCOMPARE(WithoutTimes(run.log), QStringList{"Failed to create path 'a.xml/x/'."});
    QVERIFY(!QDir(Path("territoryTypes")).exists());
}

void tst_BatchProgram::UnwrittenMapEndsWithZero()
{
    WriteBytes(Path("a.xml"), ProjectWithoutTypes);
    QVERIFY(QDir().mkpath(Path("out/a.map")));
    const ProgramRun run = Run({"--no-gui", "--config", "a.xml", "--output", "out"});
    QCOMPARE(run.exitCode, 0);
    const QString path = Path("out/a.map");
    QCOMPARE(WithoutTimes(run.log),
             (QStringList{"Failed to open file '" + path + "' for writing.",
                          "Failed to export area map to file '" + path + "'."}));
}

void tst_BatchProgram::FullDiskIsReported()
{
    WriteBytes(Path("a.xml"), Project);
    QVERIFY(QDir().mkpath(Path("out")));
    QVERIFY(QDir().mkpath(Path("territoryTypes")));
    QVERIFY(QFile::link("/dev/full", Path("out/a.map")));
    QVERIFY(QFile::link("/dev/full", Path("territoryTypes/Deer.xml")));
    const ProgramRun run = Run({"--no-gui", "--config", "a.xml", "--output", "out"});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(WithoutTimes(run.log),
             (QStringList{"0 territory types exported.", "Processing binary map ...",
                          "Failed to export area map to file '" + Path("out/a.map") + "'."}));
}

void tst_BatchProgram::FileSizeLimitIsReported()
{
    WriteBytes(Path("a.xml"), Project);
    const QString limited =
        "ulimit -f 0; exec " QUILLMAP_PROGRAM " --no-gui --config a.xml --output out";
    const ProgramRun run = RunProgram("/bin/sh", {"-c", limited}, m_folder->path(), m_environment);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(WithoutTimes(run.log),
             (QStringList{"0 territory types exported.", "Processing binary map ...",
                          "Failed to export area map to file '" + Path("out/a.map") + "'."}));
    QVERIFY(!QFile::exists(Path("out/a.map")));
}

void tst_BatchProgram::PipesThatNobodyReadsAreReported()
{
#ifdef QUILLMAP_PORTABLE
    QSKIP("Only Linux opens a pipe without waiting for a reader.");
#endif
    WriteBytes(Path("a.xml"), Project);
    QVERIFY(QDir().mkpath(Path("out")));
    QVERIFY(QDir().mkpath(Path("territoryTypes")));
    for (const char* name : {"out/a.map", "territoryTypes/Deer.xml"}) {
        QCOMPARE(mkfifo(QFile::encodeName(Path(name)).constData(), 0600), 0);
    }
    const ProgramRun run = Run({"--no-gui", "--config", "a.xml", "--output", "out"});
    QCOMPARE(run.exitCode, 0);
    const QString path = Path("out/a.map");
    QCOMPARE(WithoutTimes(run.log),
             (QStringList{"0 territory types exported.",
                          "Failed to open file '" + path + "' for writing.",
                          "Failed to export area map to file '" + path + "'."}));
}

void tst_BatchProgram::UnwrittenTypeEndsWithZero()
{
    WriteBytes(Path("a.xml"), Project);
    WriteBytes(Path("territoryTypes"), "a file in the place of the folder");
    const ProgramRun run = Run({"--no-gui", "--config", "a.xml", "--output", "out"});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(WithoutTimes(run.log).constFirst(), "0 territory types exported.");
}

void tst_BatchProgram::FolderStandsTwiceInTheDefault()
{
    WriteBytes(Path("p/a.xml"), ProjectWithoutTypes);
    const ProgramRun run = Run({"--no-gui", "--config", "p/a.xml"});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(WithoutTimes(run.log).constLast(),
             "Zone binary map saved to file '" + Path("p/p/Output/a.map") + "'.");
    QVERIFY(QFile::exists(Path("p/p/Output/a.map")));
    QCOMPARE(WithoutTimes(run.log).size(), 2);
}

void tst_BatchProgram::RelativeOutputStartsAtTheConfig()
{
    WriteBytes(Path("x/proj.old.xml"), Project);
    const ProgramRun run = Run({"--no-gui", "--config", "x/proj.old.xml", "--output", "out"});
    QCOMPARE(run.exitCode, 0);
    QVERIFY(QFile::exists(Path("x/out/proj.map")));
    QVERIFY(QFile::exists(Path("territoryTypes/Deer.xml")));
    QVERIFY(!QDir(Path("x/territoryTypes")).exists());
}

void tst_BatchProgram::EachLineStartsWithTheTime()
{
    WriteBytes(Path("a.xml"), Project);
    const ProgramRun run = Run({"--no-gui", "--config", "a.xml", "--output", "out"});
    QCOMPARE(run.log.size(), 3);
    static const QRegularExpression start("^[0-2][0-9]:[0-5][0-9]:[0-5][0-9] - [^ ]");
    for (const QString& line : run.log) {
        QVERIFY2(line.contains(start), qPrintable(line));
    }
}

QTEST_GUILESS_MAIN(tst_BatchProgram)
#include "tst_BatchProgram.moc"
