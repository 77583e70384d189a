#pragma once

#include "document/journal/JournalReader.h"
#include "document/journal/JournalWriter.h"
#include "tests/support/Random.h"

#include <QImage>
#include <QMap>
#include <QTemporaryDir>
#include <QVector>

#include <optional>

/// While it lives, the application's data are in a new, empty folder.
class DataFolder
{
public:
    DataFolder();
    ~DataFolder();
    Q_DISABLE_COPY(DataFolder)

    QString Path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
    QByteArray m_before;
};

/// Everything that a journal restores, as bytes. A missing mask is told apart from any other.
QByteArray StateOf(const JournalReader& reader);
/// The state that the folder restores; nothing when it restores none.
std::optional<QByteArray> RestoredState(const QString& folder);

/// A session that keeps a journal, and beside it, in memory, each state that it has committed. A
/// function returns false when the journal has failed.
class JournalSession
{
public:
    explicit JournalSession(QSize layerSize,
                            const QString& path = QStringLiteral("/p/project.xml"));

    bool Begin();
    /// A new layer; the mask is written into a file for one with a file.
    bool AddBlankLayer();
    bool AddLayerFile(const QString& path, const QImage& mask);
    /// The file of a layer becomes a part of the journal.
    bool CopyLayerFile(int layerId, const QString& path);
    /// Changes the mask of a layer to this one.
    bool Paint(int layerId, const QImage& mask);
    /// The text is as before when it is null.
    bool Commit(const QByteArray& text);

    JournalWriter& Writer() { return m_writer; }
    QMap<int, QImage>& Masks() { return m_masks; }
    /// The states after the commits so far, and the length of the log then.
    const QVector<QByteArray>& States() const { return m_states; }
    const QVector<qint64>& Lengths() const { return m_lengths; }

    /// Does something at random; files go into the folder.
    bool Act(Random& random, const QString& folder);

private:
    JournalHeader m_header;
    JournalWriter m_writer;
    QMap<int, QImage> m_masks;
    QMap<int, QString> m_files;
    QByteArray m_text;
    QVector<QByteArray> m_states;
    QVector<qint64> m_lengths;
    int m_nextId = 3;
};
