#pragma once

#include "document/KnownFiles.h"

#include <QByteArray>
#include <QMap>
#include <QSize>
#include <QString>
#include <QVector>

#include <optional>

/// What a journal says about its project before any change.
struct JournalHeader
{
    /// Where the project is on disk; empty when it was never saved.
    QString path;
    /// The folder that the names in the document start from; empty when it is not known.
    QString folder;
    QString name;
    /// In pixels.
    QSize layerSize;
    /// The project's files on disk, by absolute path, as they were when it was loaded or saved
    /// last.
    QMap<QString, KnownFiles::Stamp> files = {};
};

/// The files of a journal folder, and their bytes. Numbers are little endian. What is decoded may
/// hold anything; only what these functions and JournalReader accept is used.
///
/// The folder has a file "lock", which is locked as long as the writing session lives, a file
/// "session" with the JournalHeader, a file "log", the document as "text-N.xml", and masks as
/// "base-ID.tga". The log is a row of records: a byte for the type, four bytes for the length of
/// what follows, and that.
namespace journal {

constexpr int HashLength = 20;
constexpr int RecordHeaderLength = 5;
/// Layer id and tile number, before a packed tile.
constexpr int TileHeaderLength = 8;
constexpr int MaxLayers = 1 << 16;
/// What a log may hold at most. Compaction keeps it far below.
constexpr int MaxTileRecords = 1 << 26;
constexpr int MaxBaseRecords = 1 << 20;
constexpr int MaxCommits = 1 << 24;
constexpr qint64 MaxLogLength = qint64(1) << 36;
constexpr qint64 MaxTextLength = qint64(1) << 30;
constexpr qint64 MaxSessionLength = 1 << 24;

enum RecordType : char
{
    /// A Base: the mask to which the tiles of a layer apply.
    LayerRecord = 'L',
    /// Layer id, tile number (raster::TileRect), and a tile of raster::PackTile.
    TileRecord = 'T',
    /// A Commit, and the SHA-1 hash of the session file and of all bytes of the log that follow the
    /// commit before, up to the hash.
    CommitRecord = 'C',
};

enum class BaseKind : quint8
{
    /// All pixels are clear.
    Blank = 0,
    /// The file "base-ID.tga" of the folder.
    Copied = 1,
    /// A bitmap elsewhere. It serves as long as its length and its time are the same.
    Referenced = 2,
};

struct Base
{
    qint32 layerId = 0;
    BaseKind kind = BaseKind::Blank;
    /// The length of the file; 0 for a blank mask.
    qint64 length = 0;
    /// The SHA-1 hash of a copied file.
    QByteArray hash;
    /// The absolute path of a referenced file.
    QString path;
    /// When a referenced file was changed last, in milliseconds since 1970.
    qint64 time = 0;
};

struct Commit
{
    /// N of "text-N.xml", from 1.
    quint32 textNumber = 0;
    /// SHA-1 of that file.
    QByteArray textHash;
    /// The layers in the order of their rows.
    QVector<int> layerIds;
};

QString LockPath(const QString& folder);
QString SessionPath(const QString& folder);
QString LogPath(const QString& folder);
/// A log that is about to replace the other one.
QString NewLogPath(const QString& folder);
QString TextPath(const QString& folder, quint32 number);
QString BasePath(const QString& folder, int layerId);
/// Whether a journal folder may have a file of this name.
bool IsJournalFile(const QString& name);
/// Whether it is that of a text.
bool IsTextFile(const QString& name);

QByteArray ToBytes(const JournalHeader& header);
std::optional<JournalHeader> ToHeader(const QByteArray& bytes);
QByteArray ToBytes(const Base& base);
std::optional<Base> ToBase(const QByteArray& bytes);
/// Without the hash at its end.
QByteArray ToBytes(const Commit& commit);
/// With any hash at its end.
std::optional<Commit> ToCommit(const QByteArray& bytes);

/// The longest that the content of a record of the type can be; 0 when there is no such type.
qint64 MaxRecordLength(char type);

} // namespace journal
