#include "app/OutputFile.h"
#include "territories/SheetPlan.h"
#include "territories/ZoneFilter.h"
#include "territories/ZoneProblemsPass.h"
#include "territories/ZoneSheet.h"
#include "territories/ZoneTable.h"
#include "tool/Commands.h"
#include "tool/InputFiles.h"
#include "tool/Interruption.h"
#include "tool/ProjectData.h"

#include <QCommandLineParser>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cstdio>
#include <limits>

namespace {

/// What the user calls the standard input, and what messages call it.
const QLatin1String InputName("-");
const QLatin1String InputTitle("standard input");

ToolExit WrongArguments(const QString& error)
{
    return UsageError(QStringLiteral("zones"), error);
}

/// The rows of all zones, with what is wrong with them.
std::vector<ZoneRow> JudgedRows(const ProjectValues& project, const WorldScale& scale)
{
    std::vector<ZoneRow> rows = ZoneRows(project.types, scale);
    std::vector<int> typeIds;
    int id = 0;
    for (const TypeRecord& type : project.types) {
        for (const TerritoryRecord& territory : type.territories) {
            typeIds.insert(typeIds.end(), territory.zones.size(), id);
        }
        ++id;
    }
    ZoneProblemsPass().Work(rows, typeIds, {scale.worldWidth, scale.worldHeight},
                            std::numeric_limits<int>::max());
    return rows;
}

/// The columns of the rows, aligned, without spaces at the ends of lines.
void PrintTable(const std::vector<ZoneRow>& rows)
{
    std::vector<QStringList> lines(rows.size() + 1);
    for (const ZoneColumn column : ZoneColumns) {
        lines.front().append(Key(column));
        for (std::size_t i = 0; i < rows.size(); ++i) {
            lines[i + 1].append(CellText(rows[i], column));
        }
    }
    std::array<int, ZoneColumns.size()> widths{};
    for (const QStringList& cells : lines) {
        for (std::size_t i = 0; i < widths.size(); ++i) {
            widths.at(i) = std::max(widths.at(i), cells.at(static_cast<int>(i)).size());
        }
    }
    for (const QStringList& cells : lines) {
        QString line;
        for (std::size_t i = 0; i < widths.size(); ++i) {
            const QString& cell = cells.at(static_cast<int>(i));
            line += i == 0 ? QString() : QStringLiteral("  ");
            line += IsNumber(ZoneColumns.at(i)) ? cell.rightJustified(widths.at(i))
                                                : cell.leftJustified(widths.at(i));
        }
        while (line.endsWith(QLatin1Char(' '))) {
            line.chop(1);
        }
        Console::Print(line);
    }
}

ToolExit Print(const std::vector<ZoneRow>& rows, const QCommandLineParser& options)
{
    if (options.isSet(QStringLiteral("csv")) || options.isSet(QStringLiteral("json"))) {
        const bool isCsv = options.isSet(QStringLiteral("csv"));
        Console::PrintData(WriteSheet(rows, isCsv ? SheetFormat::Csv : SheetFormat::Json).toUtf8());
    } else {
        PrintTable(rows);
    }
    return ToolExit::Done;
}

std::vector<ZoneRow> Filtered(const std::vector<ZoneRow>& rows, const ZoneFilter& filter)
{
    const std::vector<bool> stays = filter.Matching(rows);
    std::vector<ZoneRow> filtered;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (stays[i]) {
            filtered.push_back(rows[i]);
        }
    }
    return filtered;
}

/// Returns what is wrong with the file; empty if nothing is.
QString OpenSheet(const QString& path, ZoneSheet& sheet)
{
    QFile file(path);
    QString error;
    if (path != InputName) {
        error = OpenInput(file);
    } else if (!file.open(stdin, QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot be read.");
    }
    if (!error.isEmpty()) {
        return error;
    }
    sheet = ReadSheetFile(file);
    return sheet.fault.isEmpty() ? QString() : sheet.fault + QLatin1Char('.');
}

/// Replaces the document as a whole. False after a printed error or an interruption.
bool WriteDocument(const QString& path, const ProjectValues& values)
{
    QByteArray document;
    QXmlStreamWriter xml(&document);
    WriteProjectText(xml, values);
    OutputFile file(path);
    if (Interruption::HasCome()) {
        return false;
    }
    if (!file.Open(QIODevice::Text) || !file.Write(document) || !file.Commit()) {
        Console::PrintError(path, QStringLiteral("cannot be written: %1.").arg(file.ErrorString()));
        return false;
    }
    return true;
}

ToolExit Set(const QString& path, ProjectValues& values, const QString& sheetPath)
{
    const QString sheetName = sheetPath == InputName ? QString(InputTitle) : sheetPath;
    const WorldScale scale(values.settings);
    ZoneSheet sheet;
    const QString error = OpenSheet(sheetPath, sheet);
    if (!error.isEmpty()) {
        Console::PrintError(sheetName, error);
        return ToolExit::Unreadable;
    }
    const SheetPlan plan = PlanSheet(values.types, scale, sheet, ZoneValues::OfNewZone());
    if (plan.IsRefused()) {
        for (const SheetRefusal& refusal : plan.refusals) {
            Console::PrintError(sheetName, refusal.Text() + QLatin1Char('.'));
        }
        return ToolExit::Found;
    }
    if (!plan.IsEmpty()) {
        Apply(plan, values.types, scale);
        if (!WriteDocument(path, values)) {
            return ToolExit::NotWritten;
        }
    }
    Console::Print(QStringLiteral("%1: zones changed %2, zones added %3")
                       .arg(path, QString::number(plan.changes.size()),
                            QString::number(plan.additions.size())));
    return ToolExit::Done;
}

ToolExit Zones(const QStringList& files, const QCommandLineParser& options)
{
    const bool isCsv = options.isSet(QStringLiteral("csv"));
    const bool isJson = options.isSet(QStringLiteral("json"));
    const bool isFiltered = options.isSet(QStringLiteral("filter"));
    const bool doSet = options.isSet(QStringLiteral("set"));
    if (isCsv && isJson) {
        return WrongArguments(QStringLiteral("--csv and --json exclude each other."));
    }
    if (doSet && (isCsv || isJson || isFiltered)) {
        return WrongArguments(QStringLiteral("with --set no table is printed."));
    }
    std::optional<ProjectValues> values = ReadProjectValues(files.first());
    if (!values) {
        return ToolExit::Unreadable;
    }
    if (doSet) {
        return Set(files.first(), *values, options.value(QStringLiteral("set")));
    }
    const WorldScale scale(values->settings);
    const ZoneFilter filter(options.value(QStringLiteral("filter")), scale);
    if (!filter.Unfinished().isEmpty()) {
        return WrongArguments(QStringLiteral("the term %1 of the filter is unfinished.")
                                  .arg(Console::Quoted(filter.Unfinished().constFirst())));
    }
    const std::vector<ZoneRow> rows = JudgedRows(*values, scale);
    return Print(filter.IsEmpty() ? rows : Filtered(rows, filter), options);
}

} // namespace

Command ZonesCommand()
{
    return {QStringLiteral("zones"),
            QStringLiteral("PROJECT"),
            1,
            QStringLiteral(
                "Show the zones of a project as a table, or change and add zones by one.\n"
                "Terms of a filter are words, column:text, column>number (or <, >=, <=, =),\n"
                "outside and overlap. The rows of --set name their zones by type, territory and\n"
                "number; rows without a number add zones. If a row cannot be taken, its reason is\n"
                "printed, nothing is written, and the exit code is 1."),
            {{QStringLiteral("csv"), QStringLiteral("Print the table as CSV.")},
             {QStringLiteral("json"), QStringLiteral("Print the table as JSON.")},
             {QStringLiteral("filter"),
              QStringLiteral("Print only the zones for which all terms of TEXT hold."),
              QStringLiteral("TEXT")},
             {QStringLiteral("set"),
              QStringLiteral("Take the zones from a file of CSV or JSON, or - for the standard "
                             "input, into the project."),
              QStringLiteral("FILE")}},
            Zones};
}
