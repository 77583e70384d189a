#include "document/journal/JournalReader.h"

#include "document/KnownFiles.h"
#include "document/journal/JournalFolder.h"
#include "layers/Targa.h"
#include "layers/raster/Mask.h"
#include "layers/raster/MaskTile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QtEndian>

#include <algorithm>
#include <vector>

namespace {

/// Where a tile is in the log.
struct TilePlace
{
    qint32 layerId;
    qint32 number;
    qint64 offset;
};

struct BasePlace
{
    journal::Base base;
    qint64 offset;
};

struct CommitPlace
{
    qint64 begin;
    qint64 end;
};

struct Record
{
    char type = 0;
    QByteArray content;
};

qint32 ToNumber(const char* bytes)
{
    return qFromLittleEndian<qint32>(bytes);
}

/// Reads the record at the place where the file stands; nothing when there is no whole one.
std::optional<Record> ReadRecord(QFile& file)
{
    const QByteArray header = file.read(journal::RecordHeaderLength);
    if (header.size() != journal::RecordHeaderLength) {
        return {};
    }
    const auto length = qFromLittleEndian<quint32>(header.constData() + 1);
    if (length == 0 || length > journal::MaxRecordLength(header[0])) {
        return {};
    }
    Record record{header[0], file.read(length)};
    return record.content.size() == static_cast<int>(length) ? std::make_optional(record)
                                                             : std::nullopt;
}

bool IsTile(const QByteArray& content)
{
    return content.size() > journal::TileHeaderLength &&
           raster::PackedTileLength(static_cast<uchar>(content[journal::TileHeaderLength])) ==
               content.size() - journal::TileHeaderLength;
}

QByteArray HashOf(const QString& path, qint64 maxLength)
{
    QFile file(path);
    return journal::OpenPlain(file) && file.size() <= maxLength ? journal::HashRest(file)
                                                                : QByteArray();
}

/// Reads a log from its beginning, up to the first fault.
class LogScan
{
public:
    LogScan(QFile& file, const QByteArray& session, QSize layerSize)
        : m_file(file)
        , m_session(session)
        , m_tileCount(raster::TileCount(layerSize))
    {
    }

    void Run()
    {
        QCryptographicHash hash(QCryptographicHash::Sha1);
        hash.addData(m_session);
        qint64 begin = 0;
        while (const std::optional<Record> record =
                   begin < journal::MaxLogLength ? ReadRecord(m_file) : std::nullopt) {
            QByteArray header(journal::RecordHeaderLength, record->type);
            qToLittleEndian(static_cast<quint32>(record->content.size()), header.data() + 1);
            hash.addData(header);
            const bool isCommit = record->type == journal::CommitRecord;
            const int hashed = record->content.size() - (isCommit ? journal::HashLength : 0);
            hash.addData(record->content.constData(), qMax(hashed, 0));
            if (isCommit && (hashed < 0 || record->content.mid(hashed) != hash.result())) {
                return;
            }
            if (!Take(*record, begin)) {
                return;
            }
            begin += header.size() + record->content.size();
            if (isCommit) {
                commits.back().end = begin;
                hash.reset();
                hash.addData(m_session);
            }
        }
        isReadToEnd = m_file.atEnd();
    }

    std::vector<TilePlace> tiles;
    std::vector<BasePlace> bases;
    std::vector<CommitPlace> commits;
    /// Whether there is no fault, but for a record that is cut off.
    bool isReadToEnd = false;

private:
    bool Take(const Record& record, qint64 offset)
    {
        switch (record.type) {
        case journal::LayerRecord:
            return TakeBase(record.content, offset);
        case journal::TileRecord:
            return TakeTile(record.content, offset);
        default:
            return TakeCommit(record.content, offset);
        }
    }

    bool TakeBase(const QByteArray& content, qint64 offset)
    {
        const std::optional<journal::Base> base = journal::ToBase(content);
        if (!base) {
            return false;
        }
        m_layerIds.insert(base->layerId);
        bases.push_back({*base, offset});
        return m_layerIds.size() <= journal::MaxLayers && bases.size() <= journal::MaxBaseRecords;
    }

    bool TakeTile(const QByteArray& content, qint64 offset)
    {
        if (!IsTile(content) || tiles.size() >= journal::MaxTileRecords) {
            return false;
        }
        const qint32 layerId = ToNumber(content.constData());
        const qint32 number = ToNumber(content.constData() + sizeof layerId);
        tiles.push_back({layerId, number, offset});
        return m_layerIds.contains(layerId) && number >= 0 && number < m_tileCount;
    }

    bool TakeCommit(const QByteArray& content, qint64 offset)
    {
        const std::optional<journal::Commit> commit = journal::ToCommit(content);
        const bool isSound = commit && commits.size() < journal::MaxCommits &&
                             std::all_of(commit->layerIds.begin(), commit->layerIds.end(),
                                         [this](int id) { return m_layerIds.contains(id); });
        if (isSound) {
            commits.push_back({offset, offset});
        }
        return isSound;
    }

    QFile& m_file;
    QByteArray m_session;
    int m_tileCount;
    QSet<qint32> m_layerIds;
};

} // namespace

class JournalReader::Content
{
public:
    explicit Content(const QString& folderPath)
        : folder(folderPath)
        , log(journal::LogPath(folderPath))
    {
    }

    QString Load();
    QByteArray Text() const;
    bool HasBase(const journal::Base& base) const;
    QImage BaseMask(const journal::Base& base) const;
    bool AddTiles(int layerId, QImage& mask) const;

    QString folder;
    JournalHeader header;
    QDateTime time;
    journal::Commit commit;
    QHash<int, journal::Base> bases;
    /// Sorted; each tile once.
    std::vector<TilePlace> tiles;
    /// Stays open, so that it is the one that was checked.
    mutable QFile log;

private:
    bool Choose(const std::vector<CommitPlace>& commits);
    void Keep(LogScan& scan);

    qint64 m_commitEnd = 0;
};

/// Returns the reason why there is nothing to restore; empty when there is.
QString JournalReader::Content::Load()
{
    const std::optional<QByteArray> session =
        journal::ReadPlain(journal::SessionPath(folder), journal::MaxSessionLength);
    if (!session) {
        return QStringLiteral("The journal does not say what it belongs to.");
    }
    const std::optional<JournalHeader> read = journal::ToHeader(*session);
    if (!read) {
        return QStringLiteral("The journal was written by another version, or is damaged.");
    }
    header = *read;
    if (!journal::OpenPlain(log)) {
        return QStringLiteral("The log of the journal cannot be read.");
    }
    time = QFileInfo(log.fileName()).lastModified();
    LogScan scan(log, *session, header.layerSize);
    scan.Run();
    if (!Choose(scan.commits)) {
        return QStringLiteral("The journal holds no whole state of the project.");
    }
    Keep(scan);
    return {};
}

/// Takes the last commit whose text is there.
bool JournalReader::Content::Choose(const std::vector<CommitPlace>& commits)
{
    // The writer keeps two texts; there is no use in looking for many more.
    constexpr int maxTexts = 4;
    QHash<quint32, QByteArray> hashes;
    for (auto it = commits.rbegin(); it != commits.rend(); ++it) {
        const bool isFound = log.seek(it->begin);
        const std::optional<Record> record = isFound ? ReadRecord(log) : std::nullopt;
        const std::optional<journal::Commit> read =
            record ? journal::ToCommit(record->content) : std::nullopt;
        if (!read) {
            continue;
        }
        if (!hashes.contains(read->textNumber)) {
            if (hashes.size() == maxTexts) {
                return false;
            }
            const QString path = journal::TextPath(folder, read->textNumber);
            hashes.insert(read->textNumber, HashOf(path, journal::MaxTextLength));
        }
        if (hashes.value(read->textNumber) == read->textHash) {
            commit = *read;
            m_commitEnd = it->end;
            return true;
        }
    }
    return false;
}

/// Keeps what was written before the chosen commit.
void JournalReader::Content::Keep(LogScan& scan)
{
    for (const BasePlace& place : scan.bases) {
        if (place.offset < m_commitEnd) {
            bases.insert(place.base.layerId, place.base);
        }
    }
    tiles = std::move(scan.tiles);
    tiles.erase(
        std::remove_if(tiles.begin(), tiles.end(),
                       [this](const TilePlace& tile) { return tile.offset >= m_commitEnd; }),
        tiles.end());
    const auto key = [](const TilePlace& tile) {
        return std::make_pair(tile.layerId, tile.number);
    };
    // Of each tile, the last one comes first.
    std::sort(tiles.begin(), tiles.end(), [key](const TilePlace& a, const TilePlace& b) {
        return key(a) != key(b) ? key(a) < key(b) : a.offset > b.offset;
    });
    tiles.erase(
        std::unique(tiles.begin(), tiles.end(),
                    [key](const TilePlace& a, const TilePlace& b) { return key(a) == key(b); }),
        tiles.end());
    tiles.shrink_to_fit();
}

QByteArray JournalReader::Content::Text() const
{
    const QString path = journal::TextPath(folder, commit.textNumber);
    const QByteArray text = journal::ReadPlain(path, journal::MaxTextLength).value_or(QByteArray());
    const bool isSame = QCryptographicHash::hash(text, QCryptographicHash::Sha1) == commit.textHash;
    return isSame ? text : QByteArray();
}

bool JournalReader::Content::HasBase(const journal::Base& base) const
{
    switch (base.kind) {
    case journal::BaseKind::Blank:
        return true;
    case journal::BaseKind::Copied: {
        const QFileInfo file(journal::BasePath(folder, base.layerId));
        return !file.isSymLink() && file.isFile() && file.size() == base.length;
    }
    case journal::BaseKind::Referenced:
        return KnownFiles::StampOf(base.path) == KnownFiles::Stamp{base.length, base.time};
    }
    return false;
}

QImage JournalReader::Content::BaseMask(const journal::Base& base) const
{
    if (!HasBase(base)) {
        return {};
    }
    if (base.kind == journal::BaseKind::Blank) {
        return raster::BlankMask(header.layerSize);
    }
    const bool isCopy = base.kind == journal::BaseKind::Copied;
    const QString path = isCopy ? journal::BasePath(folder, base.layerId) : base.path;
    if (isCopy && HashOf(path, base.length) != base.hash) {
        return {};
    }
    const QImage mask = LoadTarga(path, header.layerSize);
    // It may have been replaced while it was read.
    return HasBase(base) ? mask : QImage();
}

bool JournalReader::Content::AddTiles(int layerId, QImage& mask) const
{
    const auto range = std::equal_range(
        tiles.begin(), tiles.end(), TilePlace{layerId, 0, 0},
        [](const TilePlace& a, const TilePlace& b) { return a.layerId < b.layerId; });
    uchar* pixels = range.first == range.second ? nullptr : mask.bits();
    for (auto it = range.first; it != range.second; ++it) {
        const std::optional<Record> record = log.seek(it->offset) ? ReadRecord(log) : std::nullopt;
        if (!pixels || !record || !IsTile(record->content)) {
            return false;
        }
        const auto* packed = reinterpret_cast<const uchar*>(record->content.constData());
        raster::StoreTile(packed + journal::TileHeaderLength,
                          raster::TileRect(mask.size(), it->number), pixels, mask.bytesPerLine());
    }
    return true;
}

JournalReader::JournalReader(std::shared_ptr<const Content> content)
    : m_content(std::move(content))
{
}

std::optional<JournalReader> JournalReader::Open(const QString& folder, QString* reason)
{
    const auto content = std::make_shared<Content>(folder);
    const QString fault = QFileInfo(folder).isSymLink()
                              ? QStringLiteral("The folder of the journal is a link.")
                              : content->Load();
    if (reason) {
        *reason = fault;
    }
    return fault.isEmpty() ? std::make_optional(JournalReader(content)) : std::nullopt;
}

bool JournalReader::IsUncommitted(const QString& folder)
{
    const auto session =
        journal::ReadPlain(journal::SessionPath(folder), journal::MaxSessionLength);
    const auto header = session ? journal::ToHeader(*session) : std::nullopt;
    QFile log(journal::LogPath(folder));
    if (!header || !journal::OpenPlain(log)) {
        return false;
    }
    LogScan scan(log, *session, header->layerSize);
    scan.Run();
    return scan.isReadToEnd && scan.commits.empty();
}

const QString& JournalReader::ProjectPath() const
{
    return m_content->header.path;
}

const QString& JournalReader::ProjectName() const
{
    return m_content->header.name;
}

QSize JournalReader::LayerSize() const
{
    return m_content->header.layerSize;
}

bool JournalReader::HasProjectChanged() const
{
    const auto& files = m_content->header.files;
    return std::any_of(files.keyValueBegin(), files.keyValueEnd(), [](const auto& file) {
        return KnownFiles::StampOf(file.first) != file.second;
    });
}

QDateTime JournalReader::LastChange() const
{
    return m_content->time;
}

int JournalReader::LayerCount() const
{
    return m_content->commit.layerIds.size();
}

QImage JournalReader::Mask(int row) const
{
    const int id = m_content->commit.layerIds.value(row, -1);
    const auto base = m_content->bases.find(id);
    QImage mask = base == m_content->bases.end() ? QImage() : m_content->BaseMask(*base);
    return !mask.isNull() && m_content->AddTiles(id, mask) ? mask : QImage();
}

QVector<int> JournalReader::MissingMasks() const
{
    QVector<int> rows;
    for (int row = 0; row < LayerCount(); ++row) {
        if (!m_content->HasBase(m_content->bases.value(m_content->commit.layerIds[row]))) {
            rows.append(row);
        }
    }
    return rows;
}

QByteArray JournalReader::Text() const
{
    return m_content->Text();
}

StoredProject JournalReader::Stored() const
{
    const auto masks = [reader = *this](int number, const QString& /*name*/) {
        return reader.Mask(number);
    };
    const JournalHeader& header = m_content->header;
    return {Text(), masks, header.path, header.folder, header.files.keys()};
}
