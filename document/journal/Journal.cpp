#include "document/journal/Journal.h"

#include "app/ProjectSettings.h"
#include "document/LiveLayers.h"
#include "document/journal/JournalNews.h"
#include "territories/TerritoryType.h"

#include <QFileInfo>

#include <utility>

namespace {

/// The text is written when it has not changed for so long, or that long after its first change.
constexpr qint64 RestMilliseconds = 250;
constexpr qint64 PatienceMilliseconds = 700;

const ProjectSettings& Settings()
{
    return ProjectSettings::Instance();
}

} // namespace

Journal::Journal(Document& document, QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_couldRead(MayRead())
{
    m_clock.start();
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &Journal::Work);
    ConnectDocument();
}

Journal::~Journal()
{
    m_document.disconnect(this);
    Forget();
    m_worker.reset();
}

void Journal::ConnectDocument()
{
    const auto followText = [this] { FollowText(); };
    connect(&m_document, &Document::LayerChanged, this, &Journal::FollowLayer);
    connect(&m_document, &Document::ZonesChanged, this, followText);
    connect(&m_document, &Document::TerritoryChanged, this, followText);
    connect(&m_document, &Document::TypeChanged, this, followText);
    connect(&m_document, &Document::FlagTypesChanged, this, followText);
    connect(&m_document, &Document::BackgroundPictureChanged, this, followText);
    connect(&m_document, &Document::BackgroundColorChanged, this, followText);
    connect(&m_document, &Document::FormulaChanged, this, followText);
    connect(&m_document, &Document::HistoryChanged, this, &Journal::FollowHistory);
    connect(&m_document, &Document::HistoryBegan, this, &Journal::FollowBegin);
    connect(&m_document, &Document::Saved, this, [this] { FollowBegin(true); });
    connect(&m_document, &Document::AboutToClear, this, [this] {
        FollowBegin(true);
        m_savedLayers.clear();
    });
}

QString Journal::Folder() const
{
    return m_session ? m_session->Folder() : QString();
}

void Journal::FollowLayer(const Layer* layer, Document::LayerAspect aspect, const QRect& rect)
{
    if (aspect != Document::LayerAspect::Pixels) {
        FollowText();
        return;
    }
    const Timing timing(*this);
    NoteChange();
    if (m_document.Live().HasFollowers()) {
        // The text holds what the pixels of computed layers are like.
        MarkText();
    }
    TileSet& dirty = StateOf(layer->Id()).dirty;
    if (const raster::MaskDelta* tiles = m_document.ChangedTiles()) {
        tiles->ForEachTile([&dirty](int tile) { dirty.Add(tile); });
    } else {
        dirty.Add(rect);
    }
}

void Journal::FollowText()
{
    NoteChange();
    MarkText();
}

void Journal::MarkText()
{
    const qint64 now = m_clock.elapsed();
    if (!m_isTextDirty) {
        m_isTextDirty = true;
        m_firstTextChange = now;
    }
    m_textDue = qMin(now + RestMilliseconds, m_firstTextChange + PatienceMilliseconds);
}

/// Nothing is done at once, because the edit is still under way.
void Journal::NoteChange()
{
    NoteBitmaps();
    if (!m_oldestUnsaved.isValid()) {
        SetOldestUnsaved(QDateTime::currentDateTime());
    }
    if (m_state == State::Waiting) {
        m_state = State::Writing;
        // The first commit has a text, and waits for nothing.
        m_isTextDirty = true;
        m_firstTextChange = m_clock.elapsed() - PatienceMilliseconds;
        m_textDue = m_firstTextChange;
    }
    if (m_state == State::Writing) {
        m_timer.start(0);
    }
}

void Journal::SetOldestUnsaved(const QDateTime& time)
{
    if (time != m_oldestUnsaved) {
        m_oldestUnsaved = time;
        emit UnsavedChanged();
    }
}

void Journal::FollowHistory()
{
    const bool couldRead = std::exchange(m_couldRead, MayRead());
    if (couldRead && !m_couldRead) {
        CatchUp();
    } else if (!couldRead && m_couldRead) {
        NoteBitmaps();
        if (m_wereFilesBusy) {
            // A save that failed may have renamed layers.
            MarkText();
        }
        if (m_state == State::Writing) {
            m_timer.start(0);
        }
    }
    m_wereFilesBusy = m_document.AreFilesBusy();
    if (IsSaved()) {
        SetOldestUnsaved({});
    }
}

void Journal::FollowBegin(bool isSaved)
{
    Forget();
    m_bitmaps.clear();
    m_savedLayers.clear();
    if (isSaved) {
        const QVector<Layer*> layers = m_document.Layers().Layers();
        for (const Layer* layer : layers) {
            m_savedLayers.append({layer->Id(), layer->text()});
        }
    }
    m_isAllUnsaved = !isSaved;
    SetOldestUnsaved({});
    if (!isSaved) {
        NoteChange();
    }
}

/// The files that hold the masks. They are known somewhat later than the project is loaded.
void Journal::NoteBitmaps()
{
    const QString folder = QFileInfo(m_document.Path()).path() + QStringLiteral("/layers/");
    for (const auto& [layerId, name] : qAsConst(m_savedLayers)) {
        const QString path = folder + name + QStringLiteral(".tga");
        const KnownFiles::Stamp stamp = m_document.Files().Known(path);
        if (stamp.length >= 0) {
            m_bitmaps.insert(layerId, {path, stamp});
        }
    }
    m_savedLayers.clear();
}

Journal::LayerState& Journal::StateOf(int layerId)
{
    auto state = m_layers.find(layerId);
    if (state == m_layers.end()) {
        const QSize size = Settings().LayerSize();
        state = m_layers.insert(layerId, {Base::None, TileSet(size), TileSet(size)});
    }
    return *state;
}

bool Journal::Flush()
{
    const auto mayRead = [this] { return !m_document.IsHandBusy() && !m_document.IsApplying(); };
    while (m_state == State::Writing) {
        if (!IsClean() && mayRead()) {
            const auto waitForRoom = [this] {
                m_worker->WaitForRoom();
                return false;
            };
            if (Pack(waitForRoom)) {
                Commit();
            }
        }
        if (m_worker) {
            m_worker->Wait();
        }
        Hear();
        if (IsClean() || !mayRead()) {
            break;
        }
    }
    if (m_worker) {
        m_worker->Wait();
    }
    return m_state != State::Stopped;
}

void Journal::End()
{
    Forget();
    m_state = State::Stopped;
}

/// Drops what is not written, and removes the folder.
void Journal::Forget()
{
    m_timer.stop();
    m_state = State::Waiting;
    m_layers.clear();
    m_pendingCopies.clear();
    m_isTextDirty = false;
    m_isCommitWanted = false;
    if (m_session) {
        m_worker->Drop();
        m_worker->Post([](JournalWriter& writer) { writer.End(); });
        m_session.reset();
    }
}

bool Journal::MoveTo(const QString& target)
{
    if (!Flush() || !m_session) {
        return false;
    }
    bool isMoved = false;
    m_worker->Post([&isMoved, &target](JournalWriter& writer) { isMoved = writer.MoveTo(target); });
    m_worker->Wait();
    Restart();
    return isMoved;
}

/// Begins another folder with the same changes.
void Journal::Restart()
{
    m_session.reset();
    m_pendingCopies.clear();
    for (LayerState& state : m_layers) {
        state.dirty.Add(state.written);
        state.written.Clear();
        state.base = Base::None;
    }
    m_state = State::Waiting;
    NoteChange();
}
