#include "tests/tool/BrokenProject.h"

#include <QRegExp>
#include <QTest>

Break Replacing(const QByteArray& before, const QByteArray& after)
{
    return [=](SampleProject& project) { project.Replace(before, after); };
}

void CheckFindings(const Break& doBreak, const QStringList& findings)
{
    CleanProject project;
    doBreak(project);

    const ProgramRun run = project.Run({"check", "sample.xml"});

    const int errors = findings.filter(QRegExp("^error: ")).size();
    const int warnings = findings.size() - errors;
    QStringList expected;
    for (const QString& finding : findings) {
        expected.append("sample.xml: " + finding);
    }
    expected.append(QString("%1 error%2, %3 warning%4.")
                        .arg(errors)
                        .arg(errors == 1 ? "" : "s")
                        .arg(warnings)
                        .arg(warnings == 1 ? "" : "s"));
    QCOMPARE(run.output.split('\n', Qt::SkipEmptyParts), expected);
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.exitCode, errors > 0 ? 1 : 0);
}
