#include "document/journal/JournalFormat.h"

#include "layers/raster/Mask.h"
#include "layers/raster/MaskTile.h"

#include <QDataStream>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace journal {

namespace {

constexpr int FormatVersion = 1;
/// In UTF-8.
constexpr int MaxPathLength = 1 << 15;

const QLatin1String FormatKey("format");
const QLatin1String PathKey("path");
const QLatin1String FolderKey("folder");
const QLatin1String NameKey("name");
const QLatin1String WidthKey("width");
const QLatin1String HeightKey("height");
const QLatin1String FilesKey("files");

QString InFolder(const QString& folder, const QString& name)
{
    return folder + QLatin1Char('/') + name;
}

/// Reads or writes the numbers of a record.
class Numbers : public QDataStream
{
public:
    explicit Numbers(const QByteArray& bytes)
        : QDataStream(bytes)
    {
        setByteOrder(QDataStream::LittleEndian);
    }
    explicit Numbers(QByteArray* bytes)
        : QDataStream(bytes, QIODevice::WriteOnly)
    {
        setByteOrder(QDataStream::LittleEndian);
    }

    bool IsWhole() const { return status() == QDataStream::Ok; }
    /// The next bytes; none, and no longer whole, when there are fewer.
    QByteArray Take(qint64 count)
    {
        QByteArray taken = device()->read(count);
        if (taken.size() != count) {
            setStatus(QDataStream::ReadPastEnd);
        }
        return taken;
    }
    QByteArray TakeRest() { return device()->readAll(); }
    void Put(const QByteArray& bytes) { writeRawData(bytes.constData(), bytes.size()); }
};

bool IsPlainPath(const QString& path)
{
    return QDir::isAbsolutePath(path) && !path.contains(QChar::Null) &&
           path.size() <= MaxPathLength;
}

/// A number of JSON; -1 for one that is no length and no time.
qint64 ToLong(const QJsonValue& value)
{
    constexpr double limit = qint64(1) << 53;
    const double number = value.toDouble(-1);
    return number >= 0 && number <= limit ? static_cast<qint64>(number) : -1;
}

QJsonObject ToObject(const QMap<QString, KnownFiles::Stamp>& files)
{
    QJsonObject object;
    for (auto it = files.begin(); it != files.end(); ++it) {
        object.insert(it.key(), QJsonArray{it->length, it->time});
    }
    return object;
}

QMap<QString, KnownFiles::Stamp> ToFiles(const QJsonObject& object)
{
    QMap<QString, KnownFiles::Stamp> files;
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QJsonArray numbers = it.value().toArray();
        if (IsPlainPath(it.key())) {
            files.insert(it.key(), {ToLong(numbers.at(0)), ToLong(numbers.at(1))});
        }
    }
    return files;
}

} // namespace

QString LockPath(const QString& folder)
{
    return InFolder(folder, QStringLiteral("lock"));
}

QString SessionPath(const QString& folder)
{
    return InFolder(folder, QStringLiteral("session"));
}

QString LogPath(const QString& folder)
{
    return InFolder(folder, QStringLiteral("log"));
}

QString NewLogPath(const QString& folder)
{
    return InFolder(folder, QStringLiteral("log.new"));
}

QString TextPath(const QString& folder, quint32 number)
{
    return InFolder(folder, QStringLiteral("text-%1.xml").arg(number));
}

QString BasePath(const QString& folder, int layerId)
{
    return InFolder(folder, QStringLiteral("base-%1.tga").arg(layerId));
}

bool IsJournalFile(const QString& name)
{
    // Where a lock is a file of its own, it stands beside the file "lock".
    static const QRegularExpression pattern(
        QStringLiteral("^(lock(\\.lock(\\.rmlock)?)?|session|log(\\.new)?|base-\\d{1,10}\\.tga)$"));
    return pattern.match(name).hasMatch() || IsTextFile(name);
}

bool IsTextFile(const QString& name)
{
    static const QRegularExpression pattern(QStringLiteral("^text-\\d{1,10}\\.xml$"));
    return pattern.match(name).hasMatch();
}

QByteArray ToBytes(const JournalHeader& header)
{
    const QJsonObject object{
        {FormatKey, FormatVersion},           {PathKey, header.path},
        {FolderKey, header.folder},           {NameKey, header.name},
        {WidthKey, header.layerSize.width()}, {HeightKey, header.layerSize.height()},
        {FilesKey, ToObject(header.files)}};
    return QJsonDocument(object).toJson();
}

std::optional<JournalHeader> ToHeader(const QByteArray& bytes)
{
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    const JournalHeader header{object.value(PathKey).toString(),
                               object.value(FolderKey).toString(),
                               object.value(NameKey).toString(),
                               {object.value(WidthKey).toInt(), object.value(HeightKey).toInt()},
                               ToFiles(object.value(FilesKey).toObject())};
    const bool isSound = object.value(FormatKey).toInt() == FormatVersion &&
                         raster::IsMaskSize(header.layerSize) &&
                         (header.path.isEmpty() || IsPlainPath(header.path)) &&
                         (header.folder.isEmpty() || IsPlainPath(header.folder));
    return isSound ? std::make_optional(header) : std::nullopt;
}

QByteArray ToBytes(const Base& base)
{
    QByteArray bytes;
    Numbers out(&bytes);
    out << base.layerId << static_cast<quint8>(base.kind);
    if (base.kind == BaseKind::Copied) {
        out << base.length;
        out.Put(base.hash);
    } else if (base.kind == BaseKind::Referenced) {
        out << base.length << base.time;
        out.Put(base.path.toUtf8());
    }
    return bytes;
}

std::optional<Base> ToBase(const QByteArray& bytes)
{
    Base base;
    quint8 kind = 0;
    Numbers in(bytes);
    in >> base.layerId >> kind;
    base.kind = static_cast<BaseKind>(kind);
    bool isSound = base.layerId >= 0;
    if (base.kind == BaseKind::Copied) {
        in >> base.length;
        base.hash = in.Take(HashLength);
    } else if (base.kind == BaseKind::Referenced) {
        in >> base.length >> base.time;
        const QByteArray path = in.TakeRest();
        base.path = QString::fromUtf8(path.constData(), path.size());
        isSound = isSound && IsPlainPath(base.path);
    } else {
        isSound = isSound && base.kind == BaseKind::Blank;
    }
    isSound = isSound && in.IsWhole() && in.atEnd() && base.length >= 0;
    return isSound ? std::make_optional(base) : std::nullopt;
}

QByteArray ToBytes(const Commit& commit)
{
    QByteArray bytes;
    Numbers out(&bytes);
    out << commit.textNumber;
    out.Put(commit.textHash);
    out << static_cast<quint32>(commit.layerIds.size());
    for (const int id : commit.layerIds) {
        out << qint32(id);
    }
    return bytes;
}

std::optional<Commit> ToCommit(const QByteArray& bytes)
{
    Commit commit;
    quint32 count = 0;
    Numbers in(bytes);
    in >> commit.textNumber;
    commit.textHash = in.Take(HashLength);
    in >> count;
    if (!in.IsWhole() || commit.textNumber == 0 || count > MaxLayers) {
        return {};
    }
    commit.layerIds.reserve(static_cast<int>(count));
    for (quint32 i = 0; i < count && in.IsWhole(); ++i) {
        qint32 id = 0;
        in >> id;
        commit.layerIds.append(id);
    }
    in.Take(HashLength);
    return in.IsWhole() && in.atEnd() ? std::make_optional(commit) : std::nullopt;
}

qint64 MaxRecordLength(char type)
{
    constexpr qint64 idLength = 4;
    switch (type) {
    case LayerRecord:
        return idLength + 1 + 8 + 8 + MaxPathLength;
    case TileRecord:
        return TileHeaderLength + raster::MaxPackedTile;
    case CommitRecord:
        return idLength + HashLength + idLength + idLength * MaxLayers + HashLength;
    default:
        return 0;
    }
}

} // namespace journal
