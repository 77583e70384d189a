#include "document/versions/VersionStore.h"

#include "app/Names.h"
#include "app/OutputFile.h"
#include "app/ProjectSettings.h"
#include "document/KnownFiles.h"
#include "document/journal/JournalFolder.h"
#include "document/versions/ProjectOutline.h"
#include "document/versions/VersionFolders.h"
#include "document/versions/VersionPruning.h"
#include "layers/FormulaFile.h"
#include "layers/raster/TargaBands.h"
#include "platform/Files.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iterator>

/// A file of a version that is to be made.
struct VersionStore::Source
{
    /// Below the version's folder.
    QString to;
    /// The file that holds the bytes; empty where they are given.
    QString from;
    QByteArray bytes = {};
    /// The save puts another file in the place of this one.
    bool isReplaced = false;
};

namespace {

std::error_code Rename(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::rename(platform::ToPath(from), platform::ToPath(to), error);
    return error;
}

std::error_code Link(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::create_hard_link(platform::ToPath(from), platform::ToPath(to), error);
    return error;
}

std::error_code Write(const QByteArray& bytes, const QString& to)
{
    QFile file(to);
    if (const std::error_code error = platform::OpenNew(file)) {
        return error;
    }
    const bool isWritten = file.write(bytes) == bytes.size() && file.flush();
    return isWritten ? platform::Sync(file) : platform::ErrorOf(file);
}

QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                      : QByteArray();
}

bool IsSame(const QString& path, const QString& other)
{
    QFile one(path);
    QFile two(other);
    if (one.size() != two.size() || !one.open(QIODevice::ReadOnly) ||
        !two.open(QIODevice::ReadOnly)) {
        return false;
    }
    const uchar* oneBytes = one.map(0, one.size());
    const uchar* twoBytes = two.map(0, two.size());
    return one.size() == 0 ||
           (oneBytes && twoBytes &&
            std::memcmp(oneBytes, twoBytes, static_cast<std::size_t>(one.size())) == 0);
}

QString BitmapPath(const QString& folder, const QString& layer)
{
    return QStringLiteral("%1/layers/%2.tga").arg(folder, layer);
}

/// Its layers' names, each once, without those that lead out of the project.
QStringList LayersOf(const QByteArray& document)
{
    QStringList names;
    const QVector<ProjectOutline::Layer> layers = OutlineOf(document).layers;
    for (const ProjectOutline::Layer& layer : layers) {
        if (!LeadsUpward(layer.name)) {
            names.append(layer.name);
        }
    }
    names.removeDuplicates();
    return names;
}

/// A project of nothing but these layers, for bitmaps that no document names. Its sizes are those
/// of the open one, but the layer size is that of the bitmap.
QByteArray DocumentOf(const QStringList& layers, const QString& bitmap)
{
    QFile file(bitmap);
    file.open(QIODevice::ReadOnly);
    const QSize size = raster::TargaSize([&file](qint64 offset, uchar* to, qint64 count) {
        return file.seek(offset) ? file.read(reinterpret_cast<char*>(to), count) : -1;
    });
    ProjectSettings settings = ProjectSettings::Instance();
    settings.SetSizes(size.width(), size.height(), settings.WorldWidth(), settings.WorldHeight());
    settings.SetBackgroundFile({});
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("qm-config"));
    settings.WriteXml(xml);
    xml.writeStartElement(QStringLiteral("layers"));
    for (const QString& layer : layers) {
        xml.writeEmptyElement(QStringLiteral("layer"));
        xml.writeAttribute(QStringLiteral("visible"), QStringLiteral("1"));
        xml.writeAttribute(QStringLiteral("name"), layer);
    }
    xml.writeEndDocument();
    return text;
}

struct OtherProject
{
    QString path;
    QByteArray document;
    /// Those that were asked for and that it has.
    QStringList layers;
};

/// The projects in the folder, but for the one at the path, that have any of the layers.
QVector<OtherProject> ProjectsWith(const QStringList& layers, const QString& folder,
                                   const QString& exceptPath)
{
    // Somebody's folder may hold any number of other files.
    constexpr int maxDocuments = 100;
    QVector<OtherProject> projects;
    const QStringList names =
        QDir(folder).entryList({QStringLiteral("*.xml")}, QDir::Files).mid(0, maxDocuments);
    for (const QString& name : names) {
        OtherProject other{QDir(folder).filePath(name), {}, {}};
        if (FollowedPath(other.path) == FollowedPath(exceptPath)) {
            continue;
        }
        other.document = ReadFile(other.path);
        const QStringList its = LayersOf(other.document);
        std::copy_if(layers.begin(), layers.end(), std::back_inserter(other.layers),
                     [&its](const QString& layer) { return its.contains(layer); });
        if (!other.layers.isEmpty()) {
            projects.append(other);
        }
    }
    return projects;
}

QString ProblemText(const std::error_code& error)
{
    return error ? QStringLiteral("No earlier version could be kept: %1")
                       .arg(QString::fromLocal8Bit(error.message().c_str()))
                 : QString();
}

/// Puts the source's bytes into the new version. previous: the same bytes in the last version;
/// empty for none.
template <typename Source>
std::error_code Put(const Source& source, const QString& previous, const QString& to)
{
    if (source.from.isEmpty()) {
        return Write(source.bytes, to);
    }
    if (!previous.isEmpty() && !Link(previous, to)) {
        return {};
    }
    // A file that stays in the project may later be changed in place by any program.
    if (source.isReplaced && platform::CanBeReplaced(source.from) && !Link(source.from, to)) {
        return {};
    }
    // Nobody waits until a copy is on the disk. It is one more net, and saves would take twice as
    // long.
    return VersionFiles::Copy(source.from, to);
}

} // namespace

VersionStore::VersionStore(const QString& folder, const VersionLimits& limits)
    : m_folder(folder)
    , m_limits(limits)
{
}

QString VersionStore::DefaultFolder()
{
    return journal::DataFolder(QStringLiteral("versions"));
}

QString VersionStore::ProjectFolder(const QString& path) const
{
    const QString followed = path.isEmpty() ? QString() : FollowedPath(path);
    const QString place = followed.isEmpty() ? path : followed;
    return m_folder + QLatin1Char('/') +
           QString::fromLatin1(
               QCryptographicHash::hash(place.toUtf8(), QCryptographicHash::Sha1).toHex());
}

std::optional<Version> VersionStore::Last(const QString& path, VersionKind kind) const
{
    const QString folder = ProjectFolder(path);
    const QStringList ids = VersionFolders::IdsIn(folder);
    for (const QString& id : ids) {
        std::optional<Version> version = Version::Read(folder + QLatin1Char('/') + id);
        if (version && version->Kind() == kind) {
            return version;
        }
    }
    return std::nullopt;
}

std::error_code VersionStore::Keep(VersionKind kind, const QString& path,
                                   const QVector<Source>& sources)
{
    const std::optional<Version> last = Last(path, kind);
    QVector<QString> same(sources.size());
    for (int i = 0; last && i < sources.size(); ++i) {
        const QString kept = last->Folder() + QLatin1Char('/') + sources[i].to;
        const bool isSame = sources[i].from.isEmpty() ? ReadFile(kept) == sources[i].bytes
                                                      : IsSame(kept, sources[i].from);
        same[i] = isSame ? kept : QString();
    }
    if (last && !same.contains(QString()) && last->FileCount() == sources.size()) {
        return {};
    }
    const QString folder = ProjectFolder(path);
    const QString unfinished = folder + QLatin1Char('/') + VersionFolders::NewUnfinished();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    std::error_code error =
        journal::MakePrivate(unfinished + QLatin1Char('/') + VersionFiles::Layers);
    for (int i = 0; !error && i < sources.size(); ++i) {
        error = Put(sources[i], same[i], unfinished + QLatin1Char('/') + sources[i].to);
    }
    if (!error) {
        error = Write(Version::InfoText(kind, now, path),
                      unfinished + QLatin1Char('/') + VersionFiles::Info);
    }
    if (!error) {
        error = Rename(unfinished, folder + QLatin1Char('/') + VersionFolders::NewId(now));
    }
    if (error) {
        QDir(unfinished).removeRecursively();
        QDir().rmdir(folder);
    }
    return error;
}

std::error_code VersionStore::KeepReplaced(const QString& path, const QStringList& layers,
                                           const QString& folder, const QByteArray& document)
{
    QVector<Source> sources;
    for (const QString& layer : layers) {
        const QString bitmap = FollowedPath(BitmapPath(folder, layer));
        sources.append({Version::BitmapFile(layer), bitmap, {}, true});
    }
    sources.append({VersionFiles::Document,
                    {},
                    document.isEmpty() ? DocumentOf(layers, sources.constFirst().from)
                                       : WithLayers(document, layers)});
    return Keep(VersionKind::Replaced, path, sources);
}

/// What is on disk where a project is to be saved.
struct VersionStore::Target
{
    QString path;
    QString folder;
    /// The document and the bitmaps that it names; empty without a document.
    QVector<Source> saved;
    /// Layers whose bitmaps are replaced: those that the document does not name, and those that the
    /// project does not know.
    QStringList unnamed;
    QStringList unknown;

    Target(const QString& target, const QStringList& layers, const KnownFiles& known)
        : path(QFileInfo(target).absoluteFilePath())
        , folder(QFileInfo(path).path())
    {
        const QStringList named = FindSaved(layers);
        QSet<QString> own;
        const QSet<QString>& knownPaths = known.OwnPaths();
        for (const QString& knownPath : knownPaths) {
            own.insert(FollowedPath(knownPath));
        }
        for (const QString& layer : layers) {
            if (HasBitmap(layer) && !named.contains(layer)) {
                unnamed.append(layer);
            }
            if (HasBitmap(layer) && !own.contains(FollowedPath(BitmapPath(folder, layer)))) {
                unknown.append(layer);
            }
        }
    }

    bool HasBitmap(const QString& layer) const
    {
        return QFileInfo(BitmapPath(folder, layer)).isFile();
    }

    /// Returns the layers that the document names.
    QStringList FindSaved(const QStringList& layers)
    {
        if (!QFileInfo(path).isFile()) {
            return {};
        }
        saved.append({VersionFiles::Document, FollowedPath(path), {}, true});
        if (QFileInfo(FormulaPath(path)).isFile()) {
            saved.append({VersionFiles::Formulas, FollowedPath(FormulaPath(path)), {}, true});
        }
        QStringList named = LayersOf(ReadFile(path));
        for (const QString& layer : qAsConst(named)) {
            if (HasBitmap(layer)) {
                const QString bitmap = FollowedPath(BitmapPath(folder, layer));
                saved.append({Version::BitmapFile(layer), bitmap, {}, layers.contains(layer)});
            }
        }
        return named;
    }
};

VersionStore::Kept VersionStore::KeepBeforeSave(const QString& path, const QStringList& layers,
                                                const KnownFiles& known)
{
    const Target target(path, layers, known);
    if (m_limits.IsOff()) {
        return {{}, target.unknown, false};
    }
    std::error_code error;
    const auto note = [&error](const std::error_code& next) { error = error ? error : next; };
    if (!target.saved.isEmpty()) {
        note(Keep(VersionKind::Saved, target.path, target.saved));
    }
    QVector<OtherProject> others;
    if (!target.unknown.isEmpty()) {
        others = ProjectsWith(target.unknown, target.folder, target.path);
    }
    if (!target.unnamed.isEmpty()) {
        const auto whose =
            std::find_if(others.begin(), others.end(), [&target](const OtherProject& other) {
                return other.layers == target.unnamed;
            });
        const QByteArray document = whose == others.end() ? QByteArray() : whose->document;
        note(KeepReplaced(target.path, target.unnamed, target.folder, document));
    }
    for (const OtherProject& other : qAsConst(others)) {
        note(KeepReplaced(other.path, other.layers, target.folder, other.document));
    }
    return {ProblemText(error), target.unknown, !error};
}

QString VersionStore::KeepDiscarded(const QString& path, const MoveJournal& moveJournal)
{
    if (m_limits.IsOff()) {
        return {};
    }
    const QString folder = ProjectFolder(path);
    const QString unfinished = folder + QLatin1Char('/') + VersionFolders::NewUnfinished();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    std::error_code error = journal::MakePrivate(unfinished);
    if (!error) {
        error = Write(Version::InfoText(VersionKind::Discarded, now, path),
                      unfinished + QLatin1Char('/') + VersionFiles::Info);
    }
    if (!error && !moveJournal(unfinished + QLatin1Char('/') + VersionFiles::Journal)) {
        error = std::make_error_code(std::errc::io_error);
    }
    if (!error) {
        error = Rename(unfinished, folder + QLatin1Char('/') + VersionFolders::NewId(now));
    }
    if (error) {
        QDir(unfinished).removeRecursively();
        QDir().rmdir(folder);
        QDir().rmdir(m_folder);
    }
    return ProblemText(error);
}

void VersionStore::Prune()
{
    PruneVersions(m_folder, m_limits);
}

namespace {

QVector<Version> VersionsIn(const QStringList& projectFolders)
{
    std::multimap<QString, Version> byId;
    for (const QString& folder : projectFolders) {
        const QStringList ids = VersionFolders::IdsIn(folder);
        for (const QString& id : ids) {
            if (const std::optional<Version> version =
                    Version::Read(folder + QLatin1Char('/') + id)) {
                byId.emplace(id, *version);
            }
        }
    }
    QVector<Version> versions;
    std::for_each(byId.crbegin(), byId.crend(),
                  [&versions](const auto& each) { versions.append(each.second); });
    return versions;
}

} // namespace

QVector<Version> VersionStore::Versions(const QString& firstOf) const
{
    QStringList others = VersionFolders::OfProjects(m_folder);
    if (firstOf.isEmpty()) {
        return VersionsIn(others);
    }
    others.removeOne(ProjectFolder(firstOf));
    return VersionsOf(firstOf) + VersionsIn(others);
}

QVector<Version> VersionStore::VersionsOf(const QString& path) const
{
    return VersionsIn({ProjectFolder(path)});
}
