#include "tool/Commands.h"
#include "tool/FieldBands.h"
#include "tool/FileKind.h"
#include "tool/InputFiles.h"
#include "tool/PictureFile.h"
#include "tool/PixelDifference.h"
#include "tool/ProjectData.h"
#include "tool/ProjectDifference.h"
#include "tool/Report.h"

#include <QCommandLineParser>

#include <utility>

namespace {

struct Options
{
    QString picture;
    bool asJson = false;
    /// Also print all flags together, and the first pixel of each difference.
    bool withFirst = false;
};

QString FlagPlace(const char* kind, int bit, const QVector<QString>& names)
{
    const QString place = QStringLiteral("%1 flag %2").arg(QString::fromLatin1(kind)).arg(bit);
    return bit < names.size() ? place + QLatin1Char(' ') + Console::Quoted(names.at(bit)) : place;
}

void AddPixelDifference(const QString& place, const PixelDifference& pixels, bool withFirst,
                        QVector<Report>& differences)
{
    if (!pixels.IsEmpty()) {
        differences.append(withFirst ? pixels.ToReportWithFirst(place) : pixels.ToReport(place));
    }
}

void AddFlagDifferences(const char* kind, const QVector<PixelDifference>& flags,
                        const QVector<QString>& names, bool withFirst, QVector<Report>& differences)
{
    for (int bit = 0; bit < flags.size(); ++bit) {
        AddPixelDifference(FlagPlace(kind, bit, names), flags.at(bit), withFirst, differences);
    }
}

/// Appends how the headers of two maps differ.
void AddHeaderDifferences(const FieldBands& a, const FieldBands& b, QVector<Report>& differences)
{
    AddDifference(QStringLiteral("layer size"), SizeText(a.Size()), SizeText(b.Size()),
                  differences);
    AddDifference(QStringLiteral("world size"), SizeText(a.WorldSize()), SizeText(b.WorldSize()),
                  differences);
    AddDifference(QStringLiteral("usage bits"), QString::number(a.UsageBits()),
                  QString::number(b.UsageBits()), differences);
    AddDifference(QStringLiteral("value bits"), QString::number(a.ValueBits()),
                  QString::number(b.ValueBits()), differences);
}

void PrintResult(const QStringList& files, const QVector<Report>& differences, bool asJson)
{
    Report report;
    report.Add(QStringLiteral("a"), files.at(0));
    report.Add(QStringLiteral("b"), files.at(1));
    report.Add(QStringLiteral("equal"), differences.isEmpty());
    report.Add(QStringLiteral("differences"), differences);
    report.Print(asJson);
}

/// Appends where the fields differ, prints everything and writes the picture.
ToolExit Finish(const QStringList& files, FieldBands& a, FieldBands& b, const AreaFlagTypes& names,
                QVector<Report> differences, const Options& options)
{
    const bool isComparable = a.Size() == b.Size();
    FieldComparison comparison(a, b, isComparable && !options.picture.isEmpty());
    if (isComparable) {
        if (!comparison.Run()) {
            return ToolExit::Unreadable;
        }
        if (options.withFirst) {
            AddPixelDifference(QStringLiteral("all flags"), comparison.All(), true, differences);
        }
        AddFlagDifferences("usage", comparison.Usages(), names.usages, options.withFirst,
                           differences);
        AddFlagDifferences("value", comparison.Values(), names.values, options.withFirst,
                           differences);
    }
    PrintResult(files, differences, options.asJson);
    if (!options.picture.isEmpty()) {
        if (!isComparable) {
            Console::PrintError(options.picture,
                                QStringLiteral("there is no picture of two sizes."));
            return ToolExit::NotWritten;
        }
        if (!WritePicture(options.picture, comparison.Picture())) {
            return ToolExit::NotWritten;
        }
    }
    return differences.isEmpty() ? ToolExit::Done : ToolExit::Found;
}

ToolExit CompareMaps(const QStringList& files, const AreaFlagTypes& types, const Options& options)
{
    if (!options.picture.isEmpty() && IsInput(options.picture, files)) {
        return ToolExit::BadArguments;
    }
    MapFields a;
    MapFields b;
    const bool isGood = a.Open(files.at(0));
    if (!b.Open(files.at(1)) || !isGood) {
        return ToolExit::Unreadable;
    }
    QVector<Report> differences;
    AddHeaderDifferences(a, b, differences);
    return Finish(files, a, b, types, differences, options);
}

ToolExit CompareProjects(const QStringList& files, const Options& options)
{
    ProjectData a;
    ProjectData b;
    ProjectFields fieldsA;
    ProjectFields fieldsB;
    constexpr auto fill = ProjectFields::CutOffBitmaps::Fill;
    const bool isGood = ReadProject(files.at(0), a) && fieldsA.Open(a, fill);
    if (!ReadProject(files.at(1), b) || !fieldsB.Open(b, fill) || !isGood) {
        return ToolExit::Unreadable;
    }
    if (!options.picture.isEmpty() && IsInput(options.picture, a.Files() + b.Files())) {
        return ToolExit::BadArguments;
    }
    QVector<Report> differences;
    return CompareDocuments(a, b, differences)
               ? Finish(files, fieldsA, fieldsB, a.flagTypes, differences, options)
               : ToolExit::Unreadable;
}

/// Compares a map with the one that the project would export. Both are read band by band.
ToolExit CompareWithMap(const QStringList& files, bool isMapFirst, const Options& options)
{
    const QString& mapFile = files.at(isMapFirst ? 0 : 1);
    ProjectData project;
    ProjectFields fields;
    MapFields map;
    const bool isGood = ReadProject(files.at(isMapFirst ? 1 : 0), project) &&
                        fields.Open(project, ProjectFields::CutOffBitmaps::Fill);
    if (!map.Open(mapFile) || !isGood) {
        return ToolExit::Unreadable;
    }
    if (!options.picture.isEmpty() &&
        IsInput(options.picture, project.Files() + QStringList{mapFile})) {
        return ToolExit::BadArguments;
    }
    FieldBands* a = &fields;
    FieldBands* b = &map;
    if (isMapFirst) {
        std::swap(a, b);
    }
    QVector<Report> differences;
    AddHeaderDifferences(*a, *b, differences);
    return Finish(files, *a, *b, project.flagTypes, differences, options);
}

ToolExit Compare(const QStringList& files, const QCommandLineParser& parser)
{
    Options options{parser.value(QStringLiteral("output")), parser.isSet(QStringLiteral("json"))};
    if (parser.isSet(QStringLiteral("output")) && options.picture.isEmpty()) {
        return UsageError(QStringLiteral("compare"), QStringLiteral("the picture has no name."));
    }
    FileKind a = FileKind::Bitmap;
    FileKind b = FileKind::Bitmap;
    const bool isGood = FindKind(files.at(0), a);
    if (!FindKind(files.at(1), b) || !isGood) {
        return ToolExit::Unreadable;
    }
    const bool areMaps = a == FileKind::Map && b == FileKind::Map;
    AreaFlagTypes types;
    if (const auto error = ReadTypesOption(QStringLiteral("compare"), parser, areMaps, types)) {
        return *error;
    }
    if (areMaps) {
        return CompareMaps(files, types, options);
    }
    if (a == FileKind::Project && b == FileKind::Project) {
        return CompareProjects(files, options);
    }
    const bool hasMap = a == FileKind::Map || b == FileKind::Map;
    if (hasMap && (a == FileKind::Project || b == FileKind::Project)) {
        options.withFirst = true;
        return CompareWithMap(files, a == FileKind::Map, options);
    }
    return UsageError(QStringLiteral("compare"),
                      QStringLiteral("two maps, two projects, or a project and a map are needed."));
}

} // namespace

Command CompareCommand()
{
    return {QStringLiteral("compare"),
            QStringLiteral("A B"),
            2,
            QStringLiteral("Show where two maps or two projects differ, or a map from what a "
                           "project exports.\n"
                           "Ends with 1 if they do. Rectangles are pixels of the layers, from "
                           "their top left\ncorner."),
            {{{QStringLiteral("o"), QStringLiteral("output")},
              QStringLiteral("Write a PNG picture: red is only in A, blue only in B, magenta "
                             "differs."),
              QStringLiteral("PICTURE")},
             TypesOption(),
             {QStringLiteral("json"), QStringLiteral("Print the differences as JSON.")}},
            Compare};
}
