#include "tool/ExportCommand.h"

#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
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

/// A map file whose sections are written side by side.
class MapWriter
{
public:
    explicit MapWriter(const QString& path)
        : m_file(path)
    {
    }

    bool Write(FieldBands& fields);
    /// Empty when the error was printed already.
    QString Error() const { return m_error; }

private:
    bool WriteAt(qint64 offset, const void* bytes, qint64 count)
    {
        const bool isWritten =
            m_file.seek(offset) && m_file.write(static_cast<const char*>(bytes), count) == count;
        if (!isWritten) {
            m_error = m_file.errorString();
        }
        return isWritten;
    }
    bool WriteInt(qint64 offset, qint32 value)
    {
        const qint32 bytes = qToLittleEndian(value);
        return WriteAt(offset, &bytes, sizeof bytes);
    }
    bool WriteBand(qint64 offset, int band, BitFieldRaster& fields)
    {
        const qint64 count = fields.WordCount();
        if (count == 0) {
            return true;
        }
        qToLittleEndian<quint32>(fields.Words(), count, fields.Words());
        const qint64 before = fields.WordsPerRow() * band * raster::TargaBands::BandRows;
        return WriteAt(offset + 4 + 4 * before, fields.Words(), 4 * count);
    }

    QFile m_file;
    QString m_error;
};

bool MapWriter::Write(FieldBands& fields)
{
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        m_error = m_file.errorString();
        return false;
    }
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
    return m_file.flush();
}

QString TypeFile(const QString& typeName)
{
    return QStringLiteral("territoryTypes/") + typeName + QStringLiteral(".xml");
}

void ReadTypes(const QString& path, TerritoryTypeList& types)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        ProjectReader reader(file);
        reader.Read({[](QXmlStreamReader&) {}, [](QXmlStreamReader&) { return true; },
                     [&types](QXmlStreamReader& xml) { return types.Read(xml, nullptr); }});
    }
}

/// Two types of one name would be written over one another.
bool CheckTypeNames(const ProjectData& project)
{
    QSet<QString> names;
    for (const TerritoryTypeData& type : project.types) {
        if (names.contains(type.name)) {
            Console::PrintError(
                project.path,
                QStringLiteral("two territory types are named %1 and would be written "
                               "into one file.")
                    .arg(Console::Quoted(type.name)));
            return false;
        }
        names.insert(type.name);
    }
    return true;
}

/// True after a printed error.
bool OverwritesInput(const ProjectData& project, const OutputSet& output)
{
    QStringList names = {project.name + QStringLiteral(".map")};
    for (const TerritoryTypeData& type : project.types) {
        names.append(TypeFile(type.name));
    }
    return std::any_of(names.begin(), names.end(), [&](const QString& name) {
        return IsInput(output.Target(name), project.Files());
    });
}

bool WriteTypes(const ProjectData& project, const OutputSet& output, QStringList& written)
{
    TerritoryTypeList types;
    ReadTypes(project.path, types);
    // The files of types go below the open project.
    ProjectSettings::Instance().projectDir.setPath(output.Workplace());
    const QVector<TerritoryType*> all = types.Types();
    for (const TerritoryType* type : all) {
        const QString name = TypeFile(type->text());
        const Console::CurrentFile current(project.path);
        if (!type->Export()) {
            Console::PrintError(output.Target(name), QStringLiteral("cannot be written."));
            return false;
        }
        written.append(name);
    }
    return true;
}

bool WriteMap(FieldBands& fields, const QString& name, const OutputSet& output)
{
    MapWriter writer(output.Workplace() + QLatin1Char('/') + name);
    if (writer.Write(fields)) {
        return true;
    }
    const QString error = writer.Error();
    if (!error.isEmpty()) {
        Console::PrintError(output.Target(name),
                            QStringLiteral("cannot be written: %1.").arg(error));
    }
    return false;
}

ToolExit Export(const QStringList& files, const QCommandLineParser& options)
{
    ProjectData project;
    ProjectFields fields;
    if (!ReadProject(files.first(), project) ||
        !fields.Open(project, ProjectFields::CutOffBitmaps::Refuse)) {
        return ToolExit::Unreadable;
    }
    OutputSet output(options.value(QStringLiteral("output")));
    if (OverwritesInput(project, output)) {
        return ToolExit::BadArguments;
    }
    QStringList written = {project.name + QStringLiteral(".map")};
    if (!CheckTypeNames(project) || !output.Open() || !WriteMap(fields, written.first(), output) ||
        !WriteTypes(project, output, written) || !output.Commit(written)) {
        return ToolExit::NotWritten;
    }
    for (const QString& name : qAsConst(written)) {
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
                       "NAME.map and territoryTypes/*.xml take their places together, or not at "
                       "all.\nPrints the names of the files."),
        {{{QStringLiteral("o"), QStringLiteral("output")},
          QStringLiteral("Write into the folder DIR instead of the current one."),
          QStringLiteral("DIR"),
          QStringLiteral(".")}},
        Export};
}
