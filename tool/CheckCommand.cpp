#include "tool/Commands.h"
#include "tool/ProjectData.h"
#include "tool/ProjectRules.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <optional>

namespace {

QString SeverityName(Severity severity)
{
    return severity == Severity::Error ? QStringLiteral("error") : QStringLiteral("warning");
}

void PrintJson(const QString& path, const Findings& findings)
{
    QJsonArray array;
    for (const Finding& finding : findings) {
        array.append(QJsonObject{{QStringLiteral("rule"), finding.rule},
                                 {QStringLiteral("severity"), SeverityName(finding.severity)},
                                 {QStringLiteral("place"), finding.place},
                                 {QStringLiteral("text"), finding.text},
                                 {QStringLiteral("advice"), finding.advice}});
    }
    const QJsonObject object{{QStringLiteral("file"), path}, {QStringLiteral("findings"), array}};
    Console::PrintData(QJsonDocument(object).toJson());
}

QString Counted(qint64 count, const QString& thing)
{
    return QStringLiteral("%1 %2").arg(count).arg(count == 1 ? thing : thing + QLatin1Char('s'));
}

void PrintText(const QString& path, const Findings& findings, qint64 errors)
{
    for (const Finding& finding : findings) {
        Console::Print(QStringLiteral("%1: %2: %3: %4 %5 [%6]")
                           .arg(path, SeverityName(finding.severity), finding.place, finding.text,
                                finding.advice, finding.rule));
    }
    Console::Print(QStringLiteral("%1, %2.").arg(
        Counted(errors, QStringLiteral("error")),
        Counted(findings.size() - errors, QStringLiteral("warning"))));
}

/// From 0.5 to 1; none when the option is no whole number of percent in that range.
std::optional<double> ReadOverlap(const QCommandLineParser& options)
{
    constexpr int least = 50;
    constexpr int whole = 100;
    if (!options.isSet(QStringLiteral("overlap"))) {
        return ZonePairs::DefaultShare;
    }
    bool isNumber = false;
    const int percent = options.value(QStringLiteral("overlap")).toInt(&isNumber);
    return isNumber && percent >= least && percent <= whole
               ? std::optional<double>(double(percent) / whole)
               : std::nullopt;
}

ToolExit Check(const QStringList& files, const QCommandLineParser& options)
{
    const std::optional<double> overlap = ReadOverlap(options);
    if (!overlap) {
        return UsageError(QStringLiteral("check"), QStringLiteral("an overlap is 50 to 100."));
    }
    const QString& path = files.first();
    ProjectData project;
    if (!ReadProject(path, project)) {
        return ToolExit::Unreadable;
    }
    const Findings findings = ApplyRules(project, *overlap);
    const auto errors = std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::Error;
    });
    if (options.isSet(QStringLiteral("json"))) {
        PrintJson(path, findings);
    } else {
        PrintText(path, findings, errors);
    }
    const bool doCount =
        errors > 0 || (options.isSet(QStringLiteral("strict")) && !findings.isEmpty());
    return doCount ? ToolExit::Found : ToolExit::Done;
}

} // namespace

Command CheckCommand()
{
    return {
        QStringLiteral("check"),
        QStringLiteral("PROJECT"),
        1,
        QStringLiteral("Look for what makes a project's output wrong or surprising.\n"
                       "Ends with 1 if there are errors."),
        {{QStringLiteral("overlap"),
          QStringLiteral("Report zones of one type and usage that share more; 80 if not given."),
          QStringLiteral("PERCENT")},
         {QStringLiteral("strict"), QStringLiteral("End with 1 even if there are only warnings.")},
         {QStringLiteral("json"), QStringLiteral("Print the findings as JSON.")}},
        Check};
}
