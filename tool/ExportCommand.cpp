#include "app/WriteAll.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "tool/Commands.h"
#include "tool/FieldBands.h"
#include "tool/InputFiles.h"
#include "tool/OutputSet.h"
#include "tool/Progress.h"
#include "tool/ProjectData.h"

#include <QCommandLineParser>
#include <QSet>
#include <QtEndian>

#include <algorithm>

using raster::BitFieldRaster;

namespace {

/// Writes a map file, both sections at the same time. Its functions return false after printing an
/// error.
class MapWriter
{
public:
    /// target: where the file will be, for messages.
    MapWriter(QFile& file, const QString& target)
        : m_file(file)
        , m_target(target)
    {
    }

    bool Write(FieldBands& fields);

private:
    bool WriteAt(qint64 offset, const void* bytes, qint64 count);
    bool WriteInt(qint64 offset, qint32 value);
    bool WriteBand(qint64 offset, int band, BitFieldRaster& fields);

    QFile& m_file;
    QString m_target;
};

/// False after a printed error.
bool WriteTo(QFile& file, const void* bytes, qint64 count, const QString& target)
{
    const bool isWritten = WriteAll(file, bytes, count) && FlushAll(file);
    if (!isWritten) {
        Console::PrintError(target,
                            QStringLiteral("cannot be written: %1.").arg(file.errorString()));
    }
    return isWritten;
}

bool MapWriter::WriteAt(qint64 offset, const void* bytes, qint64 count)
{
    return m_file.seek(offset) && WriteTo(m_file, bytes, count, m_target);
}

bool MapWriter::WriteInt(qint64 offset, qint32 value)
{
    const qint32 bytes = qToLittleEndian(value);
    return WriteAt(offset, &bytes, sizeof bytes);
}

bool MapWriter::WriteBand(qint64 offset, int band, BitFieldRaster& fields)
{
    const qint64 count = fields.WordCount();
    if (count == 0) {
        return true;
    }
    qToLittleEndian<quint32>(fields.Words(), count, fields.Words());
    const qint64 before = fields.WordsPerRow() * band * raster::TargaBands::BandRows;
    return WriteAt(offset + 4 + 4 * before, fields.Words(), 4 * count);
}

bool MapWriter::Write(FieldBands& fields)
{
    constexpr qint64 usageOffset = 16;
    const qint64 words =
        fields.UsageBits() == 0 ? 0 : fields.Size().width() / (32 / fields.UsageBits());
    const qint64 valueOffset = usageOffset + 4 + 4 * words * fields.Size().height();
    const bool hasHeader =
        WriteInt(0, fields.Size().width()) && WriteInt(4, fields.Size().height()) &&
        WriteInt(8, fields.WorldSize().width()) && WriteInt(12, fields.WorldSize().height()) &&
        WriteInt(usageOffset, fields.UsageBits()) && WriteInt(valueOffset, fields.ValueBits());
    if (!hasHeader) {
        return false;
    }
    Progress progress(QStringLiteral("Composing"), fields.BandCount());
    for (int band = 0; band < fields.BandCount(); ++band) {
        std::optional<FieldBand> rows = fields.Read(band);
        if (!rows || !WriteBand(usageOffset, band, rows->usages) ||
            !WriteBand(valueOffset, band, rows->values)) {
            return false;
        }
        progress.Step();
    }
    return true;
}

QString MapFile(const ProjectData& project)
{
    return project.name + QStringLiteral(".map");
}

QString TypeFile(const QString& typeName)
{
    return QStringLiteral("territoryTypes/") + typeName + QStringLiteral(".xml");
}

/// Returns false after printing an error if a name leads to another folder, or if two types have
/// the same name and would overwrite one another.
bool CheckTypeNames(const ProjectData& project)
{
    QSet<QString> names;
    for (const TerritoryTypeData& type : project.types) {
        const QString name = Console::Quoted(type.name);
        if (type.name.contains(QLatin1Char('/'))) {
            Console::PrintError(
                project.path,
                QStringLiteral("territory type %1 cannot be exported under this name.").arg(name));
            return false;
        }
        if (names.contains(type.name)) {
            Console::PrintError(
                project.path,
                QStringLiteral("two territory types are named %1 and would be written "
                               "into one file.")
                    .arg(name));
            return false;
        }
        names.insert(type.name);
    }
    return true;
}

/// Prints an error when it returns true.
bool OverwritesInput(const QStringList& names, const ProjectData& project, const OutputSet& output)
{
    const QStringList inputs = project.Files();
    return std::any_of(names.begin(), names.end(),
                       [&](const QString& name) { return IsInput(output.Target(name), inputs); });
}

/// Writes the map and the types; their names are in this order. False after a printed error.
bool WriteFiles(FieldBands& fields, const TerritoryTypeList& types, const QStringList& names,
                OutputSet& output)
{
    // The map takes longest: what is wrong with the others is known before that.
    const QVector<TerritoryType*> all = types.Types();
    for (int i = 0; i < all.size(); ++i) {
        const QString& name = names.at(i + 1);
        const QByteArray bytes = all.at(i)->ToGameFile();
        QFile* file = output.Add(name);
        if (!file || !WriteTo(*file, bytes.constData(), bytes.size(), output.Target(name))) {
            return false;
        }
    }
    QFile* map = output.Add(names.first());
    return map && MapWriter(*map, output.Target(names.first())).Write(fields) && output.Commit();
}

ToolExit Export(const QStringList& files, const QCommandLineParser& options)
{
    const QString folder = options.value(QStringLiteral("output"));
    if (folder.isEmpty()) {
        return UsageError(QStringLiteral("export"), QStringLiteral("the folder has no name."));
    }
    ProjectData project;
    if (!ReadProject(files.first(), project) || !CheckTypeNames(project)) {
        return ToolExit::Unreadable;
    }
    TerritoryTypeList types;
    ProjectFields fields;
    if (!fields.Open(project, ProjectFields::CutOffBitmaps::Refuse) ||
        !ReadTypeList(project.path, types)) {
        return ToolExit::Unreadable;
    }
    OutputSet output(folder);
    QStringList names = {MapFile(project)};
    const QVector<TerritoryType*> all = types.Types();
    for (const TerritoryType* type : all) {
        names.append(TypeFile(type->text()));
    }
    if (OverwritesInput(names, project, output)) {
        return ToolExit::BadArguments;
    }
    if (!WriteFiles(fields, types, names, output)) {
        return ToolExit::NotWritten;
    }
    for (const QString& name : qAsConst(names)) {
        Console::Print(output.Target(name));
    }
    return ToolExit::Done;
}

} // namespace

Command ExportCommand()
{
    return {
        QStringLiteral("export"),
        QStringLiteral("PROJECT"),
        1,
        QStringLiteral("Write the area map and the territory type files of a project.\n"
                       "Writes NAME.map and all territoryTypes/*.xml, or nothing if one of them "
                       "fails.\nPrints the names of the files."),
        {{{QStringLiteral("o"), QStringLiteral("output")},
          QStringLiteral("Write into the folder DIR instead of the current one."),
          QStringLiteral("DIR"),
          QStringLiteral(".")}},
        Export};
}
