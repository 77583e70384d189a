#include "tests/support/Files.h"
#include "tests/tool/SampleProject.h"

#include <QProcess>
#include <QTest>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

namespace {

/// Runs the tool with a terminal as its standard error, and returns the output there.
QByteArray TerminalOutput(const SampleProject& project, const QStringList& arguments)
{
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) {
        qFatal("There is no terminal.");
    }
    // Stays open, so that nothing is lost between the end of the run and the reading.
    const QByteArray name = ptsname(terminal);
    const int other = open(name.constData(), O_RDWR | O_NOCTTY);
    QProcess process;
    process.setStandardErrorFile(QString::fromLocal8Bit(name));
    project.Start(process, ":", arguments);
    process.waitForFinished(LongestRun);
    fcntl(terminal, F_SETFL, O_NONBLOCK);
    QByteArray output;
    char buffer[4096];
    for (ssize_t count = read(terminal, buffer, sizeof buffer); count > 0;
         count = read(terminal, buffer, sizeof buffer)) {
        output += QByteArray(buffer, static_cast<int>(count));
    }
    close(other);
    close(terminal);
    return output;
}

constexpr char Removed[] = "\r\x1b[K";

QByteArray Bar(const QByteArray& what, int percent)
{
    const int filled = 30 * percent / 100;
    return "\r" + what + " [" + QByteArray(filled, '#') + QByteArray(30 - filled, ' ') + "] " +
           QByteArray::number(percent).rightJustified(3) + " %";
}

} // namespace

/// Output that appears only on a terminal.
class tst_ToolTerminal : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void BarsShowTheProgress_data();
    void BarsShowTheProgress();
    void ErrorsTakeTheBarsPlace();
};

void tst_ToolTerminal::initTestCase()
{
#ifdef QUILLMAP_PORTABLE
    QSKIP("Only Linux tells whether the standard error is a terminal.");
#endif
}

void tst_ToolTerminal::BarsShowTheProgress_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("shown");
    const auto row = [](const QStringList& arguments, const QByteArray& shown) {
        QTest::newRow(qPrintable(arguments.join(' '))) << arguments << shown;
    };
    const auto layers = [](const QByteArray& what) {
        return Bar(what, 50) + Bar(what, 100) + Removed;
    };
    row({"check", "sample.xml"}, layers("Checking layers"));
    row({"info", "sample.xml"},
        Bar("Counting", 100) + Removed + layers("Reading layers") + layers("Finding layers"));
    row({"export", "sample.xml"}, Bar("Composing", 100) + Removed);
    row({"compare", "sample.xml", "sample.xml"},
        layers("Comparing layers") + Bar("Comparing", 100) + Removed);
    row({"render", "sample.xml", "-o", "p.png"}, layers("Drawing layers"));
    row({"render", "sample.xml", "-o", "p.png", "--flag", "Town"},
        Bar("Drawing flags", 100) + Removed);
    row({"render", "layers/Shore.tga", "-o", "p.png"}, Bar("Drawing", 100) + Removed);
    row({"check", "--quiet", "sample.xml"}, QByteArray());
}

void tst_ToolTerminal::BarsShowTheProgress()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, shown);
    const SampleProject project;
    QCOMPARE(TerminalOutput(project, arguments), shown);
}

void tst_ToolTerminal::ErrorsTakeTheBarsPlace()
{
    const SampleProject project;
    const QString path = project.Path("layers/Shore.tga");
    WriteBytes(path, ReadBytes(path).chopped(2));
    QCOMPARE(TerminalOutput(project, {"render", "sample.xml", "-o", "p.png"}),
             Bar("Drawing layers", 50) + Removed + path.toUtf8() +
                 ": ends before its last pixel, and its rest is filled.\r\n" +
                 Bar("Drawing layers", 100) + Removed);
}

QTEST_APPLESS_MAIN(tst_ToolTerminal)
#include "tst_ToolTerminal.moc"
