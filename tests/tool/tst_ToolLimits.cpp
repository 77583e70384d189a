#include "tests/support/Files.h"
#include "tests/tool/SampleProject.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <algorithm>
#include <csignal>

namespace {

constexpr int LargeSize = 8192;

/// Packets of 128 pixels that are all set.
QByteArray LargeBitmap()
{
    QByteArray bytes(18, '\0');
    bytes[2] = 11;
    bytes[13] = bytes[15] = LargeSize / 256;
    bytes[16] = 8;
    constexpr int packets = LargeSize / 128 * LargeSize;
    return bytes + QByteArray(2 * packets, '\xff');
}

/// Makes the sample's layers so large that work on them takes some time, with 32 bits a pixel in
/// the map.
void Enlarge(SampleProject& project)
{
    project.Replace("<layer size=\"8\"/>",
                    "<layer size=\"" + QByteArray::number(LargeSize) + "\"/>");
    QByteArray usages;
    for (int i = 3; i < 32; ++i) {
        usages += "<usage name=\"u" + QByteArray::number(i) + "\"/>";
    }
    project.Replace("</usages>", usages + "</usages>");
    WriteBytes(project.Path("layers/Shore.tga"), LargeBitmap());
    WriteBytes(project.Path("layers/Village.tga"), LargeBitmap());
}

bool HasLargeFile(const QString& folder)
{
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        if (it.fileInfo().size() > LargeSize) {
            return true;
        }
    }
    return false;
}

/// The same of a file without a name that the process is writing, on Linux.
bool HasLargeOpenFile(qint64 process, const QString& folder)
{
    const QDir openFiles(QStringLiteral("/proc/%1/fd").arg(process));
    const QFileInfoList files = openFiles.entryInfoList(QDir::Files | QDir::System);
    return std::any_of(files.begin(), files.end(), [&](const QFileInfo& file) {
        return file.symLinkTarget().startsWith(folder) && file.size() > LargeSize;
    });
}

/// Returns while the export of the large project is writing the map.
void StartExport(QProcess& process, const SampleProject& project, const QString& before)
{
    project.Start(process, before, {"export", "sample.xml", "-o", "out"});
    process.waitForStarted();
    const QString folder = project.Path("out");
    while (process.state() == QProcess::Running && !HasLargeFile(folder) &&
           !HasLargeOpenFile(process.processId(), folder)) {
        process.waitForFinished(1);
    }
}

/// Gives the large project so many layers that a check takes a while.
void AddLayers(SampleProject& project)
{
    QByteArray layers;
    for (int i = 0; i < 1000; ++i) {
        const QString name = QStringLiteral("Layer %1").arg(i);
        layers += "<layer usage_flags=\"1\" value_flags=\"1\" color=\"4278222976\" visible=\"1\" "
                  "name=\"" +
                  name.toUtf8() + "\"/>";
        QFile::link(project.Path("layers/Shore.tga"), project.Path("layers/" + name + ".tga"));
    }
    project.Replace("</layers>", layers + "</layers>");
}

/// On Linux.
qint64 BytesRead(qint64 process)
{
    const QByteArray counts = ReadBytes(QStringLiteral("/proc/%1/io").arg(process));
    return counts.split('\n').first().split(' ').last().toLongLong();
}

} // namespace

/// Runs that are ended by a signal, or have too little memory or disk space.
class tst_ToolLimits : public QObject
{
    Q_OBJECT

private slots:
    void SignalsLeaveNothingBehind_data();
    void SignalsLeaveNothingBehind();
    void AnEndedCheckTellsNothing();
    void SignalsThatAreTurnedOffStayOff();
    void MissingMemoryIsReported_data();
    void MissingMemoryIsReported();
};

void tst_ToolLimits::SignalsLeaveNothingBehind_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("ended") << SIGTERM;
    QTest::newRow("terminal closed") << SIGHUP;
}

void tst_ToolLimits::SignalsLeaveNothingBehind()
{
    QFETCH(int, signalNumber);
    SampleProject project;
    Enlarge(project);
    WriteBytes(project.Path("out/sample.map"), "old");
    QProcess process;
    StartExport(process, project, ":");

    QCOMPARE(kill(static_cast<pid_t>(process.processId()), signalNumber), 0);

    QVERIFY(process.waitForFinished(LongestRun));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + signalNumber);
    QCOMPARE(FilesBelow(project.Path("out")), (QMap<QString, QByteArray>{{"sample.map", "old"}}));
}

void tst_ToolLimits::AnEndedCheckTellsNothing()
{
    SampleProject project;
    Enlarge(project);
    AddLayers(project);
    QProcess process;
    project.Start(process, ":", {"check", "--json", "sample.xml"});
    QVERIFY(process.waitForStarted());
    // Several bitmaps.
    constexpr qint64 enough = 8 << 20;
    while (process.state() == QProcess::Running && BytesRead(process.processId()) < enough) {
        process.waitForFinished(1);
    }
    QCOMPARE(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(LongestRun));
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 128 + SIGINT);
}

void tst_ToolLimits::SignalsThatAreTurnedOffStayOff()
{
    SampleProject project;
    Enlarge(project);
    QProcess process;
    StartExport(process, project, "trap '' HUP");
    QCOMPARE(kill(static_cast<pid_t>(process.processId()), SIGHUP), 0);
    QCOMPARE(kill(static_cast<pid_t>(process.processId()), SIGTERM), 0);
    QVERIFY(process.waitForFinished(LongestRun));
    QCOMPARE(process.exitCode(), 128 + SIGTERM);
}

void tst_ToolLimits::MissingMemoryIsReported_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("info") << QStringList{"info", "sample.xml"};
    QTest::newRow("compare") << QStringList{"compare", "sample.xml", "sample.xml"};
}

void tst_ToolLimits::MissingMemoryIsReported()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer needs more address space than any limit leaves.");
#endif
    QFETCH(QStringList, arguments);
    SampleProject project;
    Enlarge(project);
    const ProgramRun whole = project.Run(arguments);
    const auto runWith = [&project](int kilobytes, const QStringList& what) {
        return project.RunLimited(QString("ulimit -v %1").arg(kilobytes), what);
    };
    constexpr int step = 1500;
    int limit = 30000;
    while (runWith(limit, {"--version"}).exitCode != 0) {
        limit += step;
    }
    // The memory that the libraries need at the start varies from run to run.
    limit += step;
    int failures = 0;
    for (int i = 0; i < 8; ++i, limit += step) {
        const ProgramRun run = runWith(limit, arguments);
        if (run.exitCode == whole.exitCode) {
            QCOMPARE(run.output, whole.output);
            continue;
        }
        ++failures;
        QVERIFY(run.exitCode == 3 || run.exitCode == 4);
        QVERIFY2(run.log.size() == 1 && run.log.first().contains("there is no memory"),
                 qPrintable(run.log.join('\n')));
    }
    QVERIFY(failures > 0);
}

QTEST_APPLESS_MAIN(tst_ToolLimits)
#include "tst_ToolLimits.moc"
