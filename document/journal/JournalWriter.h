#pragma once

#include "document/KnownFiles.h"
#include "document/journal/JournalFormat.h"

#include <QHash>
#include <QString>
#include <QVector>

#include <memory>
#include <vector>

class RecordLog;

/// Writes the journal of a session: a private folder that holds what would be lost with the
/// process. The folder stays until End, also when the writer is destroyed. Used by one thread at a
/// time. A function that returns false has failed, and Error tells why. After a failure, except one
/// of Compact, everything but End fails; the commits before stay readable.
class JournalWriter
{
public:
    JournalWriter();
    ~JournalWriter();
    Q_DISABLE_COPY(JournalWriter)

    /// Makes a folder in Recovery::Folder(). Ends the journal before.
    bool Begin(const JournalHeader& header);
    /// Whether a journal has begun and nothing has failed.
    bool IsReady() const { return m_log && !m_hasFailed; }
    /// Empty while there is none.
    const QString& Folder() const { return m_folder; }
    /// The reason of the last failure, in the system's words where it has any.
    const QString& Error() const { return m_error; }

    /// Adds the mask to which a layer's tiles apply. It must come before the first tile. A later
    /// base replaces an earlier one and keeps the tiles.
    bool AddBlankBase(int layerId);
    /// Refers to the file in its place. The reference is valid while the file matches the stamp.
    bool AddBaseFile(int layerId, const QString& path, const KnownFiles::Stamp& stamp);
    /// Copies the file into the folder, at once, unless the layer has a copy. When the file is not
    /// as the stamp says, or cannot be read, nothing is written, wasCopied is false, and that is no
    /// failure.
    bool AddBaseCopy(int layerId, const QString& path, const KnownFiles::Stamp& stamp,
                     bool* wasCopied);
    /// A tile of raster::PackTile. It takes the place of earlier ones of this number.
    bool AddTile(int layerId, int tile, const uchar* packed, int length);
    /// Makes everything since the last commit count, together with the text, and waits for the
    /// disk. newText: the document; null when it is as in the commit before, so not in the first
    /// one. layerIds: the rows of the layer list, each with a base.
    bool Commit(const QByteArray* newText, const QVector<int>& layerIds);

    /// The length of the log in bytes.
    qint64 Length() const;
    /// What the log would have after Compact.
    qint64 LiveLength() const { return m_liveLength; }
    /// Whether the log is much longer than it would be.
    bool IsWorthCompacting() const;
    /// Replaces the log by a new one with the records that are still valid. Works only directly
    /// after a commit; does nothing otherwise. When it fails, the old log goes on.
    bool Compact();

    /// Closes the journal and removes its folder.
    void End();
    /// Closes the journal and moves its folder to a path where there is nothing yet; folders above
    /// it are made. When that fails, the folder stays as that of a session that has ended.
    bool MoveTo(const QString& target);

private:
    struct Place
    {
        qint64 offset = 0;
        /// The length of the record; 0 when there is none.
        qint64 length = 0;
    };
    struct LayerPlaces
    {
        Place base;
        /// By tile number; empty while there are none.
        std::vector<Place> tiles;
    };

    bool Fail(const QString& reason);
    bool MakeFolder();
    bool AddBase(const journal::Base& base);
    bool AddRecord(char type, const QByteArray& content, Place& place);
    bool WriteText(const QByteArray& text);
    bool Check();
    std::vector<Place*> LivePlaces();
    bool CopyLive(RecordLog& to, const std::vector<Place*>& places, std::vector<qint64>& offsets);
    void Close();

    QString m_folder;
    std::shared_ptr<void> m_lock;
    std::unique_ptr<RecordLog> m_log;
    QByteArray m_session;
    QSize m_layerSize;
    QHash<int, LayerPlaces> m_layers;
    journal::Commit m_commit;
    qint64 m_commitLength = 0;
    /// The length of the log up to its last commit.
    qint64 m_committedLength = 0;
    qint64 m_liveLength = 0;
    /// The number of tile records in the log.
    qint64 m_tileRecords = 0;
    bool m_hasFailed = false;
    QString m_error;
};
