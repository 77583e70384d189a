#include "document/versions/Version.h"

#include "document/StoredProject.h"
#include "document/journal/JournalFolder.h"
#include "document/journal/JournalReader.h"
#include "document/versions/ProjectOutline.h"
#include "layers/FormulaFile.h"
#include "layers/raster/TargaCodec.h"
#include "platform/Files.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace {

constexpr int FormatVersion = 1;
constexpr qint64 MaxInfoBytes = 1 << 16;

const struct
{
    VersionKind kind = VersionKind::Saved;
    QLatin1String name;
} Kinds[] = {
    {VersionKind::Saved, QLatin1String("saved")},
    {VersionKind::Discarded, QLatin1String("discarded")},
    {VersionKind::Replaced, QLatin1String("replaced")},
};

/// The store makes no links to other places.
bool IsPlainFile(const QString& path)
{
    const QFileInfo file(path);
    return !file.isSymLink() && file.isFile();
}

bool IsPlainFolder(const QString& path)
{
    const QFileInfo folder(path);
    return !folder.isSymLink() && folder.isDir();
}

qint64 BytesBelow(const QString& folder)
{
    qint64 bytes = 0;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        bytes += files.fileInfo().size();
    }
    return bytes;
}

QImage LoadMask(const QString& path, QSize size)
{
    QFile file(path);
    if (!journal::OpenPlain(file)) {
        return {};
    }
    const uchar* bytes = file.map(0, file.size());
    return bytes ? raster::DecodeTarga(bytes, file.size(), size).mask : QImage();
}

} // namespace

std::error_code VersionFiles::Copy(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::copy_file(platform::ToPath(from), platform::ToPath(to), error);
    return error;
}

Version::Version(const QString& folder)
    : m_folder(folder)
{
}

std::optional<Version> Version::Read(const QString& folder)
{
    if (!IsPlainFolder(folder)) {
        return std::nullopt;
    }
    Version version(folder);
    const auto info = journal::ReadPlain(version.PathOf(VersionFiles::Info), MaxInfoBytes);
    const QJsonObject object = QJsonDocument::fromJson(info.value_or(QByteArray())).object();
    version.m_path = object[QLatin1String("path")].toString();
    version.m_time =
        QDateTime::fromString(object[QLatin1String("time")].toString(), Qt::ISODateWithMs);
    const QString kind = object[QLatin1String("kind")].toString();
    const auto* known = std::find_if(std::begin(Kinds), std::end(Kinds), [&kind](const auto& each) {
        return kind == QString(each.name);
    });
    if (object[QLatin1String("format")].toInt() != FormatVersion || known == std::end(Kinds) ||
        !version.m_time.isValid() ||
        (!version.m_path.isEmpty() && QDir::isRelativePath(version.m_path))) {
        return std::nullopt;
    }
    version.m_kind = known->kind;
    const bool isWhole = version.HasFiles() ? IsPlainFile(version.PathOf(VersionFiles::Document))
                                            : IsPlainFolder(version.PathOf(VersionFiles::Journal));
    if (!isWhole) {
        return std::nullopt;
    }
    version.m_bytes = BytesBelow(folder);
    return version;
}

QByteArray Version::InfoText(VersionKind kind, const QDateTime& time, const QString& path)
{
    const auto* known = std::find_if(std::begin(Kinds), std::end(Kinds),
                                     [kind](const auto& each) { return kind == each.kind; });
    return QJsonDocument(QJsonObject{{QStringLiteral("format"), FormatVersion},
                                     {QStringLiteral("kind"), QString(known->name)},
                                     {QStringLiteral("time"), time.toString(Qt::ISODateWithMs)},
                                     {QStringLiteral("path"), path}})
        .toJson();
}

QString Version::BitmapFile(const QString& layer)
{
    QString name = layer;
    name.replace(QLatin1Char('%'), QLatin1String("%25"));
    name.replace(QLatin1Char('/'), QLatin1String("%2F"));
    return QStringLiteral("layers/%1.tga").arg(name);
}

QString Version::Name() const
{
    return QFileInfo(m_path).baseName();
}

QStringList Version::Bitmaps() const
{
    const QString folder = PathOf(VersionFiles::Layers);
    return IsPlainFolder(folder)
               ? QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks)
               : QStringList();
}

int Version::FileCount() const
{
    return Bitmaps().size() + (IsPlainFile(PathOf(VersionFiles::Formulas)) ? 2 : 1);
}

QString Version::PathOf(QLatin1String file) const
{
    return m_folder + QLatin1Char('/') + file;
}

StoredProject Version::Stored() const
{
    if (m_kind == VersionKind::Discarded) {
        const auto reader = JournalReader::Open(PathOf(VersionFiles::Journal));
        return reader ? reader->Stored() : StoredProject();
    }
    const QString document = PathOf(VersionFiles::Document);
    const QByteArray text =
        UpToFault(journal::ReadPlain(document, journal::MaxTextLength).value_or(QByteArray()));
    const QSize size = OutlineOf(text).layerSize;
    const QString folder = IsPlainFolder(PathOf(VersionFiles::Layers)) ? m_folder : QString();
    const auto load = [folder, size](int /*number*/, const QString& name) {
        return folder.isEmpty() ? QImage()
                                : LoadMask(folder + QLatin1Char('/') + BitmapFile(name), size);
    };
    StoredProject stored{text, load, m_path};
    stored.formulas =
        journal::ReadPlain(PathOf(VersionFiles::Formulas), MaxFormulaBytes).value_or(QByteArray());
    return stored;
}

QImage Version::Picture() const
{
    constexpr int maxLength = 1024;
    const QString path = PathOf(VersionFiles::Picture);
    QImageReader reader(path, "png");
    const QSize size = IsPlainFile(path) ? reader.size() : QSize();
    return qMax(size.width(), size.height()) <= maxLength && !size.isEmpty() ? reader.read()
                                                                             : QImage();
}

void Version::KeepPicture(const QImage& picture) const
{
    // QSaveFile would write where a link leads to.
    QSaveFile file(PathOf(VersionFiles::Picture));
    if (!QFileInfo(file.fileName()).isSymLink() && file.open(QIODevice::WriteOnly) &&
        picture.save(&file, "png")) {
        file.commit();
    }
}

QString Version::CopyFilesTo(const QString& folder) const
{
    std::error_code error;
    const auto make = [&error](const QString& path) {
        if (!error && !std::filesystem::create_directory(platform::ToPath(path), error) && !error) {
            error = std::make_error_code(std::errc::file_exists);
        }
    };
    make(folder);
    make(folder + QLatin1Char('/') + VersionFiles::Layers);
    if (!error) {
        const QString name = Name().isEmpty() ? QStringLiteral("document") : Name();
        const QString document = folder + QStringLiteral("/%1.xml").arg(name);
        error = VersionFiles::Copy(PathOf(VersionFiles::Document), document);
        if (!error && IsPlainFile(PathOf(VersionFiles::Formulas))) {
            error = VersionFiles::Copy(PathOf(VersionFiles::Formulas), FormulaPath(document));
        }
    }
    const QStringList bitmaps = Bitmaps();
    for (const QString& bitmap : bitmaps) {
        if (!error) {
            const QString to = folder + QLatin1Char('/') + VersionFiles::Layers;
            error = VersionFiles::Copy(PathOf(VersionFiles::Layers) + QLatin1Char('/') + bitmap,
                                       to + QLatin1Char('/') + bitmap);
        }
    }
    return error ? QString::fromLocal8Bit(error.message().c_str()) : QString();
}
