#include "document/journal/Journal.h"

#include "app/ProjectDocument.h"
#include "app/ProjectSettings.h"
#include "layers/raster/MaskTile.h"
#include "territories/TerritoryType.h"

#include <QFileInfo>
#include <QMetaObject>
#include <QXmlStreamWriter>

#include <cstring>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace {

constexpr qint64 SliceNanoseconds = 4'000'000;
/// The text is written when it has not changed for so long, or that long after its first change.
constexpr qint64 RestMilliseconds = 250;
constexpr qint64 PatienceMilliseconds = 700;
/// Until the worker is asked again whether it has room.
constexpr int RoomMilliseconds = 10;

const ProjectSettings& Settings()
{
    return ProjectSettings::Instance();
}

/// Tells when a slice that begins now ends. The first tiles, which take about a millisecond, are
/// packed however busy the machine is. So small changes are never put off.
std::function<bool()> SliceEnd()
{
    constexpr int leastTiles = 256;
    QElapsedTimer clock;
    clock.start();
    return [clock, tiles = 0]() mutable {
        return ++tiles > leastTiles && clock.nsecsElapsed() > SliceNanoseconds;
    };
}

/// Packed tiles of one layer, on their way to the worker.
class TileBatch
{
public:
    static constexpr int Capacity = 256 << 10;

    /// False without memory.
    bool Allocate()
    {
        m_bytes.reset(new (std::nothrow) uchar[Capacity]);
        return m_bytes != nullptr;
    }
    bool IsEmpty() const { return m_tiles.empty(); }
    bool IsFull() const { return m_used + raster::MaxPackedTile > Capacity; }
    uchar* Room() { return m_bytes.get() + m_used; }
    void Append(int tile, int length)
    {
        m_tiles.push_back({tile, length});
        m_used += length;
    }
    bool WriteTo(JournalWriter& writer, int layerId) const
    {
        const uchar* packed = m_bytes.get();
        for (const auto& [tile, length] : m_tiles) {
            if (!writer.AddTile(layerId, tile, packed, length)) {
                return false;
            }
            packed += length;
        }
        return true;
    }

private:
    std::unique_ptr<uchar[]> m_bytes;
    int m_used = 0;
    std::vector<std::pair<int, int>> m_tiles;
};

/// Whether all pixels of a packed tile are clear.
bool IsBlank(const uchar* packed)
{
    return packed[0] == 0 && packed[1] == 0;
}

} // namespace

/// What the worker tells of one journal.
class Journal::Session
{
public:
    struct News
    {
        bool hasFailed = false;
        QString error;
        bool wasCopied = false;
        /// Layers whose files changed before they were copied.
        std::vector<int> changed;
    };

    void Begin(const QString& folder)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_folder = folder;
    }
    QString Folder() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_folder;
    }
    void Fail(const QString& error)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_hasFailed = true;
        m_news.hasFailed = true;
        m_news.error = error;
    }
    bool HasFailed() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_hasFailed;
    }
    void Copied(int layerId, bool wasCopied)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (wasCopied) {
            m_news.wasCopied = true;
        } else {
            m_news.changed.push_back(layerId);
        }
    }
    News Take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return std::exchange(m_news, {});
    }

private:
    mutable std::mutex m_mutex;
    QString m_folder;
    bool m_hasFailed = false;
    News m_news;
};

/// A piece of work that the observer is told about.
class Journal::Timing
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

// What the document tells

void Journal::FollowLayer(const Layer* layer, Document::LayerAspect aspect, const QRect& rect)
{
    if (aspect != Document::LayerAspect::Pixels) {
        FollowText();
        return;
    }
    const Timing timing(*this);
    NoteChange();
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

// Slices

/// Masks and zones are in a state that counts.
bool Journal::MayRead() const
{
    return m_document.CanTravel();
}

/// Undo went back to what the project's files hold.
bool Journal::IsSaved() const
{
    return m_document.IsAtSavedState() && !m_isAllUnsaved;
}

void Journal::Work()
{
    if (m_state != State::Writing || !MayRead()) {
        // It goes on when the document tells that it may be read again.
        return;
    }
    if (m_document.IsApplying() || (m_worker && !m_worker->HasRoom())) {
        m_timer.start(RoomMilliseconds);
        return;
    }
    const Timing timing(*this);
    if (Pack(SliceEnd())) {
        CommitWhenDue();
    } else if (m_state == State::Writing) {
        m_timer.start(0);
    }
}

/// A stroke, a drag, a load or a save begins, and nothing is read until it ends. What is left is
/// usually little.
void Journal::CatchUp()
{
    if (m_state != State::Writing || m_document.IsApplying()) {
        return;
    }
    const Timing timing(*this);
    if (Pack(SliceEnd()) && !IsClean()) {
        Commit();
    }
}

/// Makes the folder.
void Journal::Begin()
{
    if (m_session) {
        return;
    }
    if (!m_worker) {
        m_worker = std::make_unique<JournalWorker>();
    }
    m_session = std::make_shared<Session>();
    JournalHeader header{m_document.Path(), Settings().Name(), Settings().LayerSize()};
    const QStringList files = m_document.Files().Paths();
    for (const QString& file : files) {
        header.files.insert(file, m_document.Files().Known(file));
    }
    Post([header, session = m_session](JournalWriter& writer) {
        const bool hasBegun = writer.Begin(header);
        session->Begin(writer.Folder());
        return hasBegun;
    });
}

bool Journal::HasDirtyTiles() const
{
    const QVector<Layer*> layers = m_document.Layers().Layers();
    for (const Layer* layer : layers) {
        const auto state = m_layers.find(layer->Id());
        if (state == m_layers.end() || state->base == Base::None || !state->dirty.IsEmpty()) {
            return true;
        }
    }
    return false;
}

/// Whether the journal holds the present state.
bool Journal::IsClean() const
{
    return m_state != State::Writing ||
           (m_session && !m_isTextDirty && !m_isCommitWanted && !HasDirtyTiles());
}

/// Sends dirty tiles to the worker until the time is up. Returns whether none is left.
bool Journal::Pack(const std::function<bool()>& isTimeUp)
{
    Begin();
    const QVector<Layer*> layers = m_document.Layers().Layers();
    for (const Layer* layer : layers) {
        if (!PackLayer(*layer, isTimeUp)) {
            return false;
        }
    }
    return true;
}

bool Journal::PackLayer(const Layer& layer, const std::function<bool()>& isTimeUp)
{
    const QImage& mask = layer.Image();
    const QSize size = Settings().LayerSize();
    if (mask.size() != size || mask.format() != QImage::Format_Indexed8) {
        Fail(tr("the layer %1 has no mask of the project's size").arg(layer.text()));
        return false;
    }
    LayerState& state = StateOf(layer.Id());
    if (state.base == Base::None) {
        AddBase(layer, state);
    }
    const uchar* const bits = mask.constBits();
    const auto stride = static_cast<qint64>(mask.bytesPerLine());
    const int layerId = layer.Id();
    int tile = state.dirty.Next(0);
    while (tile >= 0) {
        if (isTimeUp()) {
            return false;
        }
        const auto batch = std::make_shared<TileBatch>();
        if (!batch->Allocate()) {
            Fail(tr("there is not enough memory"));
            return false;
        }
        for (; tile >= 0 && !batch->IsFull() && !isTimeUp(); tile = state.dirty.Next(tile + 1)) {
            const QRect rect = raster::TileRect(size, tile);
            raster::MaskTile pixels;
            pixels.Load(bits + rect.y() * stride + rect.x(), stride, rect.size());
            const int length = raster::PackTile(pixels, batch->Room());
            const bool isInBase = state.base == Base::Blank && !state.written.Contains(tile) &&
                                  IsBlank(batch->Room());
            if (!isInBase) {
                batch->Append(tile, length);
                state.written.Add(tile);
            }
            state.dirty.Remove(tile);
        }
        if (!batch->IsEmpty()) {
            Post(
                [batch, layerId](JournalWriter& writer) { return batch->WriteTo(writer, layerId); },
                TileBatch::Capacity);
        }
    }
    return true;
}

/// What the tiles of the layer are to be laid over.
void Journal::AddBase(const Layer& layer, LayerState& state)
{
    const int layerId = layer.Id();
    const auto found = m_bitmaps.find(layerId);
    if (found == m_bitmaps.end()) {
        state.base = Base::Blank;
        state.dirty.AddAll();
        Post([layerId](JournalWriter& writer) { return writer.AddBlankBase(layerId); });
        return;
    }
    state.base = Base::File;
    Post([layerId, bitmap = *found](JournalWriter& writer) {
        return writer.AddBaseFile(layerId, bitmap.path, bitmap.stamp);
    });
    m_pendingCopies.push_back({layerId, *found});
}

/// Somebody may replace the bitmaps, so they are copied when there is time.
void Journal::CopyBitmaps()
{
    for (const PendingCopy& copy : m_pendingCopies) {
        m_worker->PostIdle([this, session = m_session, copy](JournalWriter& writer) {
            if (session->HasFailed()) {
                return;
            }
            bool wasCopied = false;
            if (writer.AddBaseCopy(copy.layerId, copy.bitmap.path, copy.bitmap.stamp, &wasCopied)) {
                session->Copied(copy.layerId, wasCopied);
            } else {
                session->Fail(writer.Error());
            }
            Wake();
        });
    }
    m_pendingCopies.clear();
}

void Journal::CommitWhenDue()
{
    const qint64 wait = m_isTextDirty ? m_textDue - m_clock.elapsed() : 0;
    if (wait > 0) {
        m_timer.start(static_cast<int>(wait));
    } else if (IsSaved()) {
        Forget();
    } else if (!IsClean()) {
        Commit();
    }
}

QByteArray Journal::BrushText()
{
    QByteArray text;
    QXmlStreamWriter xml(&text);
    m_document.GetBrush().WriteXml(xml);
    return text;
}

/// No tile is dirty.
void Journal::Commit()
{
    std::shared_ptr<ProjectValues> values;
    const QByteArray brushText = BrushText();
    if (m_isTextDirty || brushText != m_brushText) {
        const Layer* current = m_document.CurrentLayer();
        values.reset(new ProjectValues{
            current ? current->row() : -1, Settings(),
            [brush = m_document.GetBrush()](QXmlStreamWriter& xml) { brush.WriteXml(xml); },
            m_document.Layers().Records(), m_document.Types().Records()});
    }
    QVector<int> layerIds;
    const QVector<Layer*> layers = m_document.Layers().Layers();
    for (const Layer* layer : layers) {
        layerIds.append(layer->Id());
    }
    m_brushText = brushText;
    m_isTextDirty = false;
    Post([values, layerIds](JournalWriter& writer) {
        QByteArray text;
        if (values) {
            QXmlStreamWriter xml(&text);
            WriteProjectText(xml, *values);
        }
        if (!writer.Commit(values ? &text : nullptr, layerIds)) {
            return false;
        }
        // When there is no room for a new log, the old one goes on.
        return !writer.IsWorthCompacting() || writer.Compact() || writer.IsReady();
    });
    m_isCommitWanted = false;
    CopyBitmaps();
}

// The worker

/// What the job writes counts from the next commit on.
void Journal::Post(std::function<bool(JournalWriter&)> write, qint64 bytes)
{
    m_isCommitWanted = true;
    m_worker->Post(
        [this, session = m_session, write = std::move(write)](JournalWriter& writer) {
            if (!session->HasFailed() && !write(writer)) {
                session->Fail(writer.Error());
                Wake();
            }
        },
        bytes);
}

/// Called by the worker. This object waits for the worker before it dies.
void Journal::Wake()
{
    QMetaObject::invokeMethod(
        this, [this] { Hear(); }, Qt::QueuedConnection);
}

void Journal::Hear()
{
    if (!m_session || m_state != State::Writing) {
        return;
    }
    const Session::News news = m_session->Take();
    if (news.hasFailed) {
        Fail(news.error);
        return;
    }
    for (const int layerId : news.changed) {
        // The bitmap was replaced, but the mask is still here.
        LayerState& state = StateOf(layerId);
        state.base = Base::None;
        m_bitmaps.remove(layerId);
    }
    if (news.wasCopied || !news.changed.empty()) {
        m_isCommitWanted = true;
        m_timer.start(0);
    }
}

void Journal::Fail(const QString& reason)
{
    m_state = State::Stopped;
    m_timer.stop();
    emit Failed(reason);
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
