#include "tests/tool/SampleProject.h"

#include <QTest>

/// What the tool and its commands say of themselves.
class tst_ToolHelp : public QObject
{
    Q_OBJECT

private slots:
    void HelpIsShown_data();
    void HelpIsShown();
};

void tst_ToolHelp::HelpIsShown_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("help");
    QTest::newRow("tool") << QStringList{"--help"}
                          << R"(Usage: quillmap-tool COMMAND [OPTION]... FILE...

Checks, shows and exports the projects and maps of Quillmap.

Commands:
  check    Look for what makes a project's output wrong or surprising.
  info     Tell what a project, map, layer bitmap, territory type or area types file holds.
  export   Write the area map and the territory type files of a project.
  compare  Tell where two maps or two projects differ.
  render   Make a PNG picture of a project, map or layer bitmap.

Options:
  -h, --help     Show this help; behind a command that of the command.
  -v, --version  Show the version.

Exit codes:
  0  Done.
  1  There are findings or differences.
  2  The arguments are wrong.
  3  A file cannot be read.
  4  A file cannot be written.
)";
    QTest::newRow("check") << QStringList{"check", "--help"}
                           << R"(Usage: quillmap-tool check [OPTION]... PROJECT

Look for what makes a project's output wrong or surprising.
Ends with 1 when there are errors.

Options:
  --strict     End with 1 also when there are only warnings.
  --json       Print the findings as JSON.
  -q, --quiet  Print nothing but errors, and JSON where it is asked for.
  -h, --help   Show this help.
)";
    QTest::newRow("info") << QStringList{"info", "--help"}
                          << R"(Usage: quillmap-tool info [OPTION]... FILE

Tell what a project, map, layer bitmap, territory type or area types file holds.

Options:
  --json       Print it as JSON.
  -q, --quiet  Print nothing but errors, and JSON where it is asked for.
  -h, --help   Show this help.
)";
    QTest::newRow("compare") << QStringList{"compare", "--help"}
                             << R"(Usage: quillmap-tool compare [OPTION]... A B

Tell where two maps or two projects differ.
Ends with 1 when they do. Rectangles are pixels of the layers, from their top left
corner.

Options:
  -o, --output PICTURE  Write a PNG picture: red is only in A, blue only in B, magenta differs.
  --json                Print the differences as JSON.
  -q, --quiet           Print nothing but errors, and JSON where it is asked for.
  -h, --help            Show this help.
)";
    QTest::newRow("render") << QStringList{"render", "--help"}
                            << R"(Usage: quillmap-tool render [OPTION]... FILE

Make a PNG picture of a project, map or layer bitmap.
A project looks as in the editor; with flags, their areas are shown in the colours
of a legend, which is printed too. A map shows all usages unless flags are named.

Options:
  -o, --output PICTURE  Write the picture to this file.
  --size PIXELS         Length of the longer side; that of the layers otherwise.
  --flag NAME           Show a flag, by its name, usage:BIT or value:BIT. May be repeated.
  --layers NAMES        Show these layers, with commas between, instead of the visible ones.
  --zones               Show the zones of the visible territories.
  -q, --quiet           Print nothing but errors, and JSON where it is asked for.
  -h, --help            Show this help.
)";
}

void tst_ToolHelp::HelpIsShown()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, help);
    const SampleProject project;
    const ProgramRun run = project.Run(arguments);
    QCOMPARE(run.output, help);
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, 0);
}

QTEST_APPLESS_MAIN(tst_ToolHelp)
#include "tst_ToolHelp.moc"
