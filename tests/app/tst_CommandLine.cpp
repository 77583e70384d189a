#include "app/CommandLine.h"

#include <QTest>

#include <vector>

namespace {

CommandLine Parsed(const QStringList& arguments)
{
    return ParseCommandLine(QStringList("quillmap") + arguments);
}

} // namespace

class tst_CommandLine : public QObject
{
    Q_OBJECT

private slots:
    void OptionsAreTakenAsTyped_data();
    void OptionsAreTakenAsTyped();
    void HelpIsRegisteredBehindEachOption();
    void HelpHasNoEffect_data();
    void HelpHasNoEffect();
    void AdvisesWhenTheOnlyArgumentIsAFile_data();
    void AdvisesWhenTheOnlyArgumentIsAFile();
    void WrongArgumentsAreErrors_data();
    void WrongArgumentsAreErrors();
    void BatchRunsNeedNoDisplay_data();
    void BatchRunsNeedNoDisplay();
    void cleanup();

private:
    const QByteArray m_platform = qgetenv("QT_QPA_PLATFORM");
};

void tst_CommandLine::cleanup()
{
    qputenv("QT_QPA_PLATFORM", m_platform);
}

void tst_CommandLine::OptionsAreTakenAsTyped_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("configPath");
    QTest::addColumn<QString>("outputPath");
    QTest::addColumn<bool>("noGui");
    QTest::newRow("none") << QStringList{} << ""
                          << "" << false;
    QTest::newRow("all") << QStringList{"--no-gui", "--config", "a.xml", "--output", "out"}
                         << "a.xml"
                         << "out" << true;
    QTest::newRow("equals signs") << QStringList{"--config=/p/a=b.xml", "--output="} << "/p/a=b.xml"
                                  << "" << false;
    QTest::newRow("any text") << QStringList{"--config", " ü %1/../--x "} << " ü %1/../--x "
                              << "" << false;
    QTest::newRow("empty value") << QStringList{"--config", ""} << ""
                                 << "" << false;
    QTest::newRow("the last one counts")
        << QStringList{"--config", "a", "--config", "b", "--no-gui", "--no-gui"} << "b"
        << "" << true;
    QTest::newRow("a value that looks like an option")
        << QStringList{"--config", "--no-gui"} << "--no-gui"
        << "" << false;
    QTest::newRow("other words") << QStringList{"a.xml", "--no-gui", "b.xml"} << ""
                                 << "" << true;
    QTest::newRow("behind the options") << QStringList{"--", "--no-gui", "--nothing"} << ""
                                        << "" << false;
}

void tst_CommandLine::OptionsAreTakenAsTyped()
{
    QFETCH(QStringList, arguments);
    const CommandLine commandLine = Parsed(arguments);
    QTEST(commandLine.configPath, "configPath");
    QTEST(commandLine.outputPath, "outputPath");
    QTEST(commandLine.noGui, "noGui");
    QCOMPARE(commandLine.error, "");
}

void tst_CommandLine::HelpIsRegisteredBehindEachOption()
{
    // Qt warns about each name of the second and the third registration.
    static QStringList warnings;
    warnings.clear();
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& line) { warnings.append(line); });
    Parsed({});
    qInstallMessageHandler(before);
    QCOMPARE(warnings.size(), 4);
    for (const QString& warning : qAsConst(warnings)) {
        QVERIFY2(warning.contains("already having an option named"), qPrintable(warning));
    }
}

void tst_CommandLine::HelpHasNoEffect_data()
{
    QTest::addColumn<QString>("help");
    for (const char* help : {"-h", "--help", "--help-all", "-?"}) {
        QTest::newRow(help) << help;
    }
}

void tst_CommandLine::HelpHasNoEffect()
{
    QFETCH(QString, help);
    const CommandLine commandLine = Parsed({help, "--no-gui", "--config", "a.xml"});
    QCOMPARE(commandLine.error, "");
    QVERIFY(commandLine.noGui);
    QCOMPARE(commandLine.configPath, "a.xml");
}

void tst_CommandLine::AdvisesWhenTheOnlyArgumentIsAFile_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("advice");

    QTest::newRow("a file")
        << QStringList{"a %1.xml"}
        << "'a %1.xml' was not opened. To open a project, put --config before it.";
    QTest::newRow("none") << QStringList() << "";
    QTest::newRow("an empty one") << QStringList{""} << "";
    QTest::newRow("help") << QStringList{"--help"} << "";
    QTest::newRow("a batch run") << QStringList{"--no-gui"} << "";
    QTest::newRow("a file of a batch run") << QStringList{"a.xml", "--no-gui"} << "";
    QTest::newRow("a project") << QStringList{"--config=a.xml"} << "";
    QTest::newRow("a project and a file") << QStringList{"--config=a.xml", "b.xml"} << "";
    QTest::newRow("two files") << QStringList{"a.xml", "b.xml"} << "";
}

void tst_CommandLine::AdvisesWhenTheOnlyArgumentIsAFile()
{
    QFETCH(QStringList, arguments);
    QTEST(Parsed(arguments).advice, "advice");
}

void tst_CommandLine::WrongArgumentsAreErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    QTest::newRow("unknown") << QStringList{"--nothing"} << "Unknown option 'nothing'.";
    QTest::newRow("several unknown")
        << QStringList{"--nothing", "--never"} << "Unknown options: nothing, never.";
    QTest::newRow("other case") << QStringList{"--No-Gui"} << "Unknown option 'No-Gui'.";
    QTest::newRow("no short names") << QStringList{"-c"} << "Unknown option 'c'.";
    QTest::newRow("missing value") << QStringList{"--config"} << "Missing value after '--config'.";
    QTest::newRow("missing value of another")
        << QStringList{"--config", "a", "--output"} << "Missing value after '--output'.";
    QTest::newRow("value too many")
        << QStringList{"--no-gui=1"} << "Unexpected value after '--no-gui'.";
}

void tst_CommandLine::WrongArgumentsAreErrors()
{
    QFETCH(QStringList, arguments);
    QTEST(Parsed(arguments).error, "error");
}

void tst_CommandLine::BatchRunsNeedNoDisplay_data()
{
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    const QByteArray none;
    const QByteArray offscreen("offscreen");
    QTest::newRow("batch run") << QByteArrayList{"quillmap", "--no-gui"} << none << offscreen;
    QTest::newRow("behind others")
        << QByteArrayList{"quillmap", "--config", "a", "--no-gui"} << none << offscreen;
    QTest::newRow("editor") << QByteArrayList{"quillmap", "--config", "a"} << none << none;
    QTest::newRow("program of that name") << QByteArrayList{"--no-gui"} << none << none;
    QTest::newRow("no arguments") << QByteArrayList{} << none << none;
    QTest::newRow("chosen by the environment")
        << QByteArrayList{"quillmap", "--no-gui"} << QByteArray("minimal") << QByteArray("minimal");
    QTest::newRow("chosen by an option")
        << QByteArrayList{"quillmap", "--no-gui", "-platform", "minimal"} << none << none;
    QTest::newRow("chosen by a long option")
        << QByteArrayList{"quillmap", "--platform", "minimal", "--no-gui"} << none << none;
}

void tst_CommandLine::BatchRunsNeedNoDisplay()
{
    QFETCH(QByteArrayList, arguments);
    QFETCH(QByteArray, before);
    qputenv("QT_QPA_PLATFORM", before);
    std::vector<const char*> argv;
    for (const QByteArray& argument : qAsConst(arguments)) {
        argv.push_back(argument.constData());
    }
    argv.push_back(nullptr);
    ChoosePlatform(arguments.size(), argv.data());
    QTEST(qgetenv("QT_QPA_PLATFORM"), "after");
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_CommandLine.moc"
