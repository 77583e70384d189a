#include "document/journal/JournalWriter.h"

#include "app/WriteAll.h"
#include "document/journal/JournalFolder.h"
#include "document/journal/RecordLog.h"
#include "document/journal/Recovery.h"
#include "layers/raster/MaskTile.h"
#include "platform/Files.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QUuid>
#include <QtEndian>

#include <algorithm>
#include <filesystem>

namespace {

QString Text(const std::error_code& error)
{
    return QString::fromLocal8Bit(error.message().c_str());
}

/// Makes a whole file that is on the disk. Nothing is left of it after a failure.
bool WriteFile(QFile& file, const QByteArray& bytes, QString* error)
{
    if (!journal::OpenNew(file)) {
        *error = file.errorString();
        return false;
    }
    if (!WriteAll(file, bytes.constData(), bytes.size()) || !FlushAll(file)) {
        *error = file.errorString();
    } else if (const std::error_code failed = platform::Sync(file)) {
        *error = Text(failed);
    } else {
        return true;
    }
    file.remove();
    return false;
}

} // namespace

JournalWriter::JournalWriter() = default;
JournalWriter::~JournalWriter() = default;

bool JournalWriter::Fail(const QString& reason)
{
    m_hasFailed = true;
    m_error = reason;
    return false;
}

bool JournalWriter::MakeFolder()
{
    const QString root = Recovery::Folder();
    if (root.isEmpty()) {
        return Fail(QStringLiteral("There is no folder for the application's data"));
    }
    if (const std::error_code error = journal::MakePrivate(root)) {
        return Fail(Text(error));
    }
    // Another session may look at the lock just when it is taken, or remove it as a leftover.
    constexpr int attempts = 10;
    for (int i = 0; i < attempts && !m_lock; ++i) {
        const QString token = QUuid::createUuid().toString(QUuid::WithoutBraces);
        const QString folder = root + QLatin1Char('/') + token;
        if (const std::error_code error = journal::MakeNewPrivate(folder)) {
            return Fail(Text(error));
        }
        QFile lock(journal::LockPath(folder));
        const bool isMade = journal::OpenNew(lock);
        const QString error = lock.errorString();
        lock.close();
        m_lock = isMade ? platform::TryLock(lock.fileName()) : nullptr;
        if (m_lock) {
            m_folder = folder;
        } else {
            journal::RemoveFolder(folder, {});
            m_error = isMade ? QStringLiteral("The disk has no locks") : error;
        }
    }
    return m_lock || Fail(m_error);
}

bool JournalWriter::Begin(const JournalHeader& header)
{
    End();
    JournalHeader absolute = header;
    if (!header.path.isEmpty()) {
        absolute.path = QFileInfo(header.path).absoluteFilePath();
    }
    m_layerSize = header.layerSize;
    m_session = journal::ToBytes(absolute);
    if (!journal::ToHeader(m_session) || m_session.size() > journal::MaxSessionLength) {
        return Fail(QStringLiteral("The project has no size, or too many files"));
    }
    if (!MakeFolder()) {
        return false;
    }
    QFile session(journal::SessionPath(m_folder));
    QString error;
    auto log = std::make_unique<RecordLog>(journal::LogPath(m_folder), m_session);
    if (!WriteFile(session, m_session, &error) || !log->Create()) {
        const QString reason = error.isEmpty() ? log->Error() : error;
        log.reset();
        End();
        return Fail(reason);
    }
    m_log = std::move(log);
    return true;
}

bool JournalWriter::Check()
{
    if (!m_log && !m_hasFailed) {
        return Fail(QStringLiteral("There is no journal"));
    }
    return !m_hasFailed;
}

bool JournalWriter::AddRecord(char type, const QByteArray& content, Place& place)
{
    const qint64 offset = m_log->Length();
    if (offset >= journal::MaxLogLength || m_tileRecords >= journal::MaxTileRecords) {
        return Fail(QStringLiteral("The journal is too long"));
    }
    if (!m_log->Append(type, content)) {
        return Fail(m_log->Error());
    }
    m_tileRecords += type == journal::TileRecord ? 1 : 0;
    m_liveLength -= place.length;
    place = {offset, m_log->Length() - offset};
    m_liveLength += place.length;
    return true;
}

bool JournalWriter::AddBase(const journal::Base& base)
{
    const QByteArray content = journal::ToBytes(base);
    if (!journal::ToBase(content) || m_layers.size() >= journal::MaxLayers) {
        return Fail(QStringLiteral("A layer cannot be kept"));
    }
    return AddRecord(journal::LayerRecord, content, m_layers[base.layerId].base);
}

bool JournalWriter::AddBlankBase(int layerId)
{
    journal::Base base;
    base.layerId = layerId;
    return Check() && AddBase(base);
}

bool JournalWriter::AddBaseFile(int layerId, const QString& path, const KnownFiles::Stamp& stamp)
{
    journal::Base base;
    base.layerId = layerId;
    base.kind = journal::BaseKind::Referenced;
    base.path = QFileInfo(path).absoluteFilePath();
    base.length = stamp.length;
    base.time = stamp.time;
    return Check() && AddBase(base);
}

bool JournalWriter::AddBaseCopy(int layerId, const QString& path, const KnownFiles::Stamp& stamp,
                                bool* wasCopied)
{
    *wasCopied = false;
    if (!Check()) {
        return false;
    }
    QFile from(path);
    if (stamp.length < 0 || KnownFiles::StampOf(path) != stamp || !from.open(QIODevice::ReadOnly)) {
        return true;
    }
    QFile to(journal::BasePath(m_folder, layerId));
    if (to.exists()) {
        // A copy serves for good.
        *wasCopied = true;
        return true;
    }
    if (!journal::OpenNew(to)) {
        return Fail(to.errorString());
    }
    const bool isWritten = CopyAll(from, to) && FlushAll(to);
    if (!isWritten && to.error() != QFileDevice::NoError) {
        const QString reason = to.errorString();
        to.remove();
        return Fail(reason);
    }
    journal::Base base;
    base.layerId = layerId;
    base.kind = journal::BaseKind::Copied;
    base.length = to.size();
    base.hash = to.seek(0) ? journal::HashRest(to) : QByteArray();
    const bool isSame = isWritten && base.length == stamp.length && !base.hash.isNull() &&
                        KnownFiles::StampOf(path) == stamp;
    if (!isSame) {
        to.remove();
        return true;
    }
    if (const std::error_code error = platform::Sync(to)) {
        return Fail(Text(error));
    }
    *wasCopied = AddBase(base);
    return *wasCopied;
}

bool JournalWriter::AddTile(int layerId, int tile, const uchar* packed, int length)
{
    if (!Check()) {
        return false;
    }
    const auto layer = m_layers.find(layerId);
    const int count = raster::TileCount(m_layerSize);
    if (layer == m_layers.end() || tile < 0 || tile >= count || length < 1 ||
        raster::PackedTileLength(packed[0]) != length) {
        return Fail(QStringLiteral("A part of a layer cannot be kept"));
    }
    QByteArray content(journal::TileHeaderLength, Qt::Uninitialized);
    qToLittleEndian(static_cast<quint32>(layerId), content.data());
    qToLittleEndian(static_cast<quint32>(tile), content.data() + sizeof(quint32));
    content.append(reinterpret_cast<const char*>(packed), length);
    layer->tiles.resize(static_cast<std::size_t>(count));
    return AddRecord(journal::TileRecord, content, layer->tiles[static_cast<std::size_t>(tile)]);
}

bool JournalWriter::WriteText(const QByteArray& text)
{
    if (text.size() > journal::MaxTextLength) {
        return Fail(QStringLiteral("The document is too long"));
    }
    QFile file(journal::TextPath(m_folder, m_commit.textNumber + 1));
    QString error;
    if (!WriteFile(file, text, &error)) {
        return Fail(error);
    }
    ++m_commit.textNumber;
    m_commit.textHash = QCryptographicHash::hash(text, QCryptographicHash::Sha1);
    return true;
}

bool JournalWriter::Commit(const QByteArray* newText, const QVector<int>& layerIds)
{
    if (!Check()) {
        return false;
    }
    const bool areKnown = std::all_of(layerIds.begin(), layerIds.end(),
                                      [this](int id) { return m_layers.contains(id); });
    if (!areKnown || layerIds.size() > journal::MaxLayers ||
        (!newText && m_commit.textNumber == 0)) {
        return Fail(QStringLiteral("The state of the project is not whole"));
    }
    // What is written into a folder that was removed is lost without an error.
    if (!QFileInfo::exists(journal::LogPath(m_folder))) {
        return Fail(QStringLiteral("The folder %1 is gone").arg(m_folder));
    }
    if (newText && !WriteText(*newText)) {
        return false;
    }
    m_commit.layerIds = layerIds;
    m_liveLength -= m_commitLength;
    const qint64 offset = m_log->Length();
    if (!m_log->Commit(journal::ToBytes(m_commit))) {
        return Fail(m_log->Error());
    }
    m_commitLength = m_log->Length() - offset;
    m_liveLength += m_commitLength;
    m_committedLength = m_log->Length();
    // The text before stays, in case that the last commit gets damaged.
    if (newText && m_commit.textNumber > 2) {
        QFile::remove(journal::TextPath(m_folder, m_commit.textNumber - 2));
    }
    return true;
}

qint64 JournalWriter::Length() const
{
    return m_log ? m_log->Length() : 0;
}

bool JournalWriter::IsWorthCompacting() const
{
    constexpr qint64 spare = 16 << 20;
    return m_log &&
           (Length() > 2 * m_liveLength + spare || m_tileRecords > journal::MaxTileRecords / 2);
}

/// The bases come first, the rest as it is in the log.
std::vector<JournalWriter::Place*> JournalWriter::LivePlaces()
{
    std::vector<Place*> bases;
    std::vector<Place*> tiles;
    for (LayerPlaces& layer : m_layers) {
        bases.push_back(&layer.base);
        for (Place& place : layer.tiles) {
            if (place.length > 0) {
                tiles.push_back(&place);
            }
        }
    }
    std::sort(tiles.begin(), tiles.end(),
              [](const Place* a, const Place* b) { return a->offset < b->offset; });
    bases.insert(bases.end(), tiles.begin(), tiles.end());
    return bases;
}

bool JournalWriter::CopyLive(RecordLog& to, const std::vector<Place*>& places,
                             std::vector<qint64>& offsets)
{
    for (const Place* place : places) {
        const QByteArray record = m_log->Read(place->offset, place->length);
        if (record.size() != place->length) {
            m_error = m_log->Error();
            return false;
        }
        offsets.push_back(to.Length());
        if (!to.AppendRecord(record)) {
            m_error = to.Error();
            return false;
        }
    }
    return true;
}

bool JournalWriter::Compact()
{
    if (!Check()) {
        return false;
    }
    if (m_log->Length() != m_committedLength || m_committedLength == 0) {
        return true;
    }
    const QString path = journal::LogPath(m_folder);
    const QString newPath = journal::NewLogPath(m_folder);
    QFile::remove(newPath);
    auto log = std::make_unique<RecordLog>(newPath, m_session);
    const std::vector<Place*> places = LivePlaces();
    std::vector<qint64> offsets;
    bool isWhole =
        log->Create() && CopyLive(*log, places, offsets) && log->Commit(journal::ToBytes(m_commit));
    if (!isWhole && !log->Error().isEmpty()) {
        m_error = log->Error();
    }
    log->Close();
    if (isWhole) {
        // Some systems replace no open file.
        m_log->Close();
        std::error_code error;
        std::filesystem::rename(platform::ToPath(newPath), platform::ToPath(path), error);
        isWhole = !error;
        m_error = error ? Text(error) : QString();
        std::unique_ptr<RecordLog>& going = isWhole ? log : m_log;
        if (!going->Reopen(path)) {
            return Fail(going->Error());
        }
    }
    if (!isWhole) {
        QFile::remove(newPath);
        return false;
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        places[i]->offset = offsets[i];
    }
    m_tileRecords = static_cast<qint64>(places.size()) - m_layers.size();
    m_log = std::move(log);
    m_committedLength = m_log->Length();
    return true;
}

void JournalWriter::Close()
{
    m_log.reset();
    m_layers.clear();
    m_commit = {};
    m_commitLength = 0;
    m_committedLength = 0;
    m_liveLength = 0;
    m_tileRecords = 0;
    m_hasFailed = false;
    m_error.clear();
    m_folder.clear();
}

void JournalWriter::End()
{
    const QString folder = m_folder;
    Close();
    if (!folder.isEmpty()) {
        journal::RemoveFolder(folder, std::move(m_lock));
    }
    m_lock.reset();
}

bool JournalWriter::MoveTo(const QString& target)
{
    if (m_folder.isEmpty()) {
        return Fail(QStringLiteral("There is no journal"));
    }
    const QString folder = m_folder;
    Close();
    if (const std::error_code error = journal::MoveFolder(folder, target, std::move(m_lock))) {
        m_error = Text(error);
        return false;
    }
    return true;
}
