#include "tests/tool/SampleProject.h"

#include <QTest>

/// The help of the tool and of its commands.
class tst_ToolHelp : public QObject
{
    Q_OBJECT

private slots:
    void HelpIsShown_data();
    void HelpIsShown();
    void WrongArgumentsEndWithTwo_data();
    void WrongArgumentsEndWithTwo();
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
  info     Show what a project, map, layer bitmap, territory type or area types file holds.
  at       Show what is at a place: flags, layers and zones.
  zones    Show the zones of a project as a table, or change and add zones by one.
  derive   Compute layers anew from the formulas that the project keeps of them.
  export   Write the area map and the territory type files of a project.
  compare  Show where two maps or two projects differ, or a map from what a project exports.
  render   Make a PNG picture of a project, map or layer bitmap.

Options:
  -h, --help     Show this help, or after a command the command's help.
  -v, --version  Show the version.

Exit codes:
  0  Done.
  1  There are findings or differences, layers are out of date, or rows are refused.
  2  The arguments are wrong.
  3  A file cannot be read.
  4  A file cannot be written.
)";
    QTest::newRow("check") << QStringList{"check", "--help"}
                           << R"(Usage: quillmap-tool check [OPTION]... PROJECT

Look for what makes a project's output wrong or surprising.
Ends with 1 if there are errors.

Options:
  --overlap PERCENT  Report zones of one type and usage that share more; 80 if not given.
  --strict           End with 1 even if there are only warnings.
  --json             Print the findings as JSON.
  -q, --quiet        Print only errors, and JSON if --json asks for it.
  -h, --help         Show this help.
)";
    QTest::newRow("derive") << QStringList{"derive", "--help"}
                            << R"(Usage: quillmap-tool derive [OPTION]... PROJECT [LAYER]...

Compute layers anew from the formulas that the project keeps of them.
Computes the layers and what they are made of, or without LAYER all, and
replaces their bitmaps, hand edits too, or none if something fails.
Prints the names of the files.

Options:
  --check      Write nothing, print what is out of date or edited by hand, and end with 1 if anything is.
  -q, --quiet  Print only errors, and JSON if --json asks for it.
  -h, --help   Show this help.
)";
    QTest::newRow("info") << QStringList{"info", "--help"}
                          << R"(Usage: quillmap-tool info [OPTION]... FILE

Show what a project, map, layer bitmap, territory type or area types file holds.

Options:
  --types FILE  Name the flags of a map as in an area types file or a project.
  --json        Print the content as JSON.
  -q, --quiet   Print only errors, and JSON if --json asks for it.
  -h, --help    Show this help.
)";
    QTest::newRow("at") << QStringList{"at", "--help"}
                        << R"(Usage: quillmap-tool at [OPTION]... PROJECT|MAP [X Z]

Show what is at a place: flags, layers and zones.
X and Z are metres from the bottom left corner of the world. Without them,
places are read from the standard input, one 'X Z' a line. The words are the
fields of the area map.

Options:
  --pixel       X and Z are column and row of a layer pixel, from the top left.
  --types FILE  Name the flags of a map as in an area types file or a project.
  --json        Print the places as JSON.
  -q, --quiet   Print only errors, and JSON if --json asks for it.
  -h, --help    Show this help.
)";
    QTest::newRow("zones") << QStringList{"zones", "--help"}
                           << R"(Usage: quillmap-tool zones [OPTION]... PROJECT

Show the zones of a project as a table, or change and add zones by one.
Terms of a filter are words, column:text, column>number (or <, >=, <=, =),
outside and overlap. The rows of --set name their zones by type, territory and
number; rows without a number add zones. If a row cannot be taken, its reason is
printed, nothing is written, and the exit code is 1.

Options:
  --csv          Print the table as CSV.
  --json         Print the table as JSON.
  --filter TEXT  Print only the zones for which all terms of TEXT hold.
  --set FILE     Take the zones from a file of CSV or JSON, or - for the standard input, into the project.
  -q, --quiet    Print only errors, and JSON if --json asks for it.
  -h, --help     Show this help.
)";
    QTest::newRow("export") << QStringList{"export", "-h", "x"}
                            << R"(Usage: quillmap-tool export [OPTION]... PROJECT

Write the area map and the territory type files of a project.
Writes NAME.map and all territoryTypes/*.xml, or nothing if one of them fails.
Prints the names of the files.

Options:
  -o, --output DIR  Write into the folder DIR instead of the current one.
  -q, --quiet       Print only errors, and JSON if --json asks for it.
  -h, --help        Show this help.
)";
    QTest::newRow("version") << QStringList{"--version"} << "quillmap-tool " QUILLMAP_VERSION "\n";
    QTest::newRow("compare") << QStringList{"compare", "--help"}
                             << R"(Usage: quillmap-tool compare [OPTION]... A B

Show where two maps or two projects differ, or a map from what a project exports.
Ends with 1 if they do. Rectangles are pixels of the layers, from their top left
corner.

Options:
  -o, --output PICTURE  Write a PNG picture: red is only in A, blue only in B, magenta differs.
  --types FILE          Name the flags of a map as in an area types file or a project.
  --json                Print the differences as JSON.
  -q, --quiet           Print only errors, and JSON if --json asks for it.
  -h, --help            Show this help.
)";
    QTest::newRow("render") << QStringList{"render", "--help"}
                            << R"(Usage: quillmap-tool render [OPTION]... FILE

Make a PNG picture of a project, map or layer bitmap.
A project looks as in the editor. With --flag, areas are shown in the colours
of a legend, which is printed too. A map shows its usages unless flags are named.

Options:
  -o, --output PICTURE  Write the picture to this file.
  --size PIXELS         Length of the longer side (that of the layers by default).
  --flag NAME           Show a flag: NAME, usage:NAME or usage:BIT (or value:). May be repeated.
  --layers NAMES        Show these layers (A,B) instead of the visible ones. May be repeated.
  --zones               Show the zones of the visible territories.
  -q, --quiet           Print only errors, and JSON if --json asks for it.
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

void tst_ToolHelp::WrongArgumentsEndWithTwo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("log");
    const QString tryHelp = "quillmap-tool: try 'quillmap-tool export --help'.";
    QTest::newRow("no command") << QStringList()
                                << QStringList{"quillmap-tool: a command is needed.",
                                               "quillmap-tool: try 'quillmap-tool --help'."};
    QTest::newRow("unknown command") << QStringList{"paint"}
                                     << QStringList{"quillmap-tool: there is no command 'paint'.",
                                                    "quillmap-tool: try 'quillmap-tool --help'."};
    QTest::newRow("no project") << QStringList{"export"}
                                << QStringList{
                                       "quillmap-tool: PROJECT is needed, and nothing else.",
                                       tryHelp};
    QTest::newRow("two projects") << QStringList{"export", "a", "b"}
                                  << QStringList{
                                         "quillmap-tool: PROJECT is needed, and nothing else.",
                                         tryHelp};
    QTest::newRow("unknown option")
        << QStringList{"export", "--json", "a"}
        << QStringList{"quillmap-tool: Unknown option 'json'.", tryHelp};
    QTest::newRow("option of Qt") << QStringList{"export", "-platform", "xcb", "a"}
                                  << QStringList{"quillmap-tool: Unknown options: p, l, a, t, f.",
                                                 tryHelp};
    QTest::newRow("folder without a name")
        << QStringList{"export", "a", "-o", ""}
        << QStringList{"quillmap-tool: the folder has no name.", tryHelp};
    QTest::newRow("no folder") << QStringList{"export", "a", "-o"}
                               << QStringList{"quillmap-tool: Missing value after '-o'.", tryHelp};
}

void tst_ToolHelp::WrongArgumentsEndWithTwo()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, log);
    const SampleProject project;
    const ProgramRun run = project.Run(arguments);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.log, log);
    QCOMPARE(run.exitCode, 2);
}

QTEST_APPLESS_MAIN(tst_ToolHelp)
#include "tst_ToolHelp.moc"
