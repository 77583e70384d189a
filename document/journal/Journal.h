#pragma once

#include "document/Document.h"
#include "document/KnownFiles.h"
#include "document/journal/JournalWorker.h"
#include "document/journal/TileSet.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPair>
#include <QString>
#include <QTimer>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

class JournalNews;

/// Keeps what would be lost with the process: from the first change on, the document and what was
/// painted go into a private folder (Recovery::Folder()) while the user works. The folder is there
/// until the project is saved, another one is loaded or made, or the editor ends. The window owns
/// it.
///
/// It only reads the document, in slices that take a few milliseconds, and never inside of an edit,
/// a stroke, a load or a save. Files are written by a thread.
class Journal : public QObject
{
    Q_OBJECT

public:
    /// The document outlives the journal.
    explicit Journal(Document& document, QObject* parent = nullptr);
    /// Ends the journal, and waits until its folder is gone.
    ~Journal() override;
    Q_DISABLE_COPY(Journal)

    /// When the first change was made that the project's files do not hold; invalid when there is
    /// none. Zones that are nudged by keys count.
    const QDateTime& OldestUnsaved() const { return m_oldestUnsaved; }
    /// The folder of the journal; empty while there is none, or it is not made yet.
    QString Folder() const;

    /// Writes all changes up to now, and the bitmaps on which they are based, and waits until they
    /// are on the disk. Takes its time. During a stroke or a drag, the state before it is kept.
    /// False when it cannot be kept; true when there is nothing to keep.
    bool Flush();
    /// Closes the journal for good and removes its folder soon: the editor is about to end, and
    /// what is unsaved shall go.
    void End();
    /// Flushes the journal and moves its folder to a path where there is nothing yet; folders above
    /// it are made. Another journal begins at once, because the changes are still unsaved. False,
    /// with the journal still in its folder or gone, when there is nothing to move or that fails.
    bool MoveTo(const QString& target);

    /// Called before and after each piece of work on the window's thread.
    using Observer = std::function<void(bool begins)>;
    void SetObserver(Observer observer) { m_observer = std::move(observer); }

signals:
    /// OldestUnsaved has changed.
    void UnsavedChanged();
    /// From now on changes are not kept, until the project is saved or another one begins. Sent
    /// once; the reason is in the system's words where it has any.
    void Failed(const QString& reason);

private:
    /// A piece of work that the observer is told about.
    class Timing
    {
    public:
        explicit Timing(const Journal& journal)
            : m_observer(journal.m_observer)
        {
            Tell(true);
        }
        ~Timing() { Tell(false); }
        Q_DISABLE_COPY(Timing)

    private:
        void Tell(bool begins) const
        {
            if (m_observer) {
                m_observer(begins);
            }
        }

        const Observer& m_observer;
    };

    enum class State
    {
        /// Nothing has changed.
        Waiting,
        Writing,
        /// Nothing more is kept until the project is saved or another one begins.
        Stopped,
    };
    enum class Base
    {
        None,
        /// The bitmap of the project as it was saved last.
        File,
        Blank,
    };
    struct Bitmap
    {
        QString path;
        KnownFiles::Stamp stamp;
    };
    struct PendingCopy
    {
        int layerId = 0;
        Bitmap bitmap;
    };
    struct LayerState
    {
        Base base = Base::None;
        /// Tiles that differ from those in the journal, or from the base.
        TileSet dirty;
        TileSet written;
    };

    void ConnectDocument();
    void FollowLayer(const Layer* layer, Document::LayerAspect aspect, const QRect& rect);
    void FollowText();
    void MarkText();
    void FollowHistory();
    void FollowBegin(bool isSaved);
    void NoteChange();
    void SetOldestUnsaved(const QDateTime& time);
    void NoteBitmaps();
    LayerState& StateOf(int layerId);

    bool MayRead() const;
    bool IsSaved() const;
    void Work();
    void CatchUp();
    void Begin();
    bool IsClean() const;
    bool HasDirtyTiles() const;
    bool Pack(const std::function<bool()>& isTimeUp);
    bool PackLayer(const Layer& layer, const std::function<bool()>& isTimeUp);
    void AddBase(const Layer& layer, LayerState& state);
    void CommitWhenDue();
    void Commit();
    void CopyBitmaps();
    QByteArray BrushText();
    void Post(std::function<bool(JournalWriter&)> write, qint64 bytes = 0);
    void Wake();
    void Hear();
    void Fail(const QString& reason);
    void Forget();
    void Restart();

    Document& m_document;
    State m_state = State::Waiting;
    /// Null while nothing was begun.
    std::shared_ptr<JournalNews> m_session;
    QHash<int, LayerState> m_layers;
    /// Bitmaps that the journal refers to and the worker has yet to copy.
    std::vector<PendingCopy> m_pendingCopies;
    /// By layer id: the files that hold the masks as they were saved last.
    QHash<int, Bitmap> m_bitmaps;
    /// Layers whose bitmaps must still be recorded, with the names under which they were saved.
    QVector<QPair<int, QString>> m_savedLayers;
    QDateTime m_oldestUnsaved;
    /// No file holds the project.
    bool m_isAllUnsaved = false;
    bool m_couldRead = false;
    bool m_wereFilesBusy = false;
    bool m_isTextDirty = false;
    /// Something was written that no commit has made valid.
    bool m_isCommitWanted = false;
    /// Milliseconds of m_clock: the time of the first change of the text that is not written, and
    /// the time at which to write it.
    qint64 m_firstTextChange = 0;
    qint64 m_textDue = 0;
    QElapsedTimer m_clock;
    QTimer m_timer;
    QByteArray m_brushText;
    Observer m_observer;
    std::unique_ptr<JournalWorker> m_worker;
};
