#include "app/ProjectDocument.h"
#include "app/ProjectSettings.h"
#include "document/Formulas.h"
#include "document/journal/Journal.h"
#include "document/journal/JournalNews.h"
#include "document/journal/TileBatch.h"

#include <QMetaObject>
#include <QXmlStreamWriter>

// How the journal takes what changed from the document, piece by piece, and what the worker
// answers.

namespace {

constexpr qint64 SliceNanoseconds = 4'000'000;
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

/// Whether all pixels of a packed tile are clear.
bool IsBlank(const uchar* packed)
{
    return packed[0] == 0 && packed[1] == 0;
}

} // namespace

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
    if (!m_session && IsSaved()) {
        // What changed was undone before there was time to write it.
        Forget();
    } else if (Pack(SliceEnd())) {
        CommitWhenDue();
    } else if (m_state == State::Writing) {
        m_timer.start(0);
    }
}

/// A stroke, a drag, a load or a save begins, and nothing is read until it ends. What is left is
/// usually little; after a fill of a huge layer it takes longer, because it must not get lost.
void Journal::CatchUp()
{
    if (m_state != State::Writing || m_document.IsApplying()) {
        return;
    }
    if (m_document.AreFilesBusy()) {
        // A save may take long, and it replaces bitmaps that the journal may refer to.
        Flush();
        return;
    }
    const Timing timing(*this);
    const auto waitForRoom = [this] {
        m_worker->WaitForRoom();
        return false;
    };
    if (!IsClean() && Pack(waitForRoom)) {
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
    m_session = std::make_shared<JournalNews>();
    JournalHeader header{m_document.Path(), Settings().Dir().absolutePath(), Settings().Name(),
                         Settings().LayerSize()};
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
            m_document.Layers().Records(), m_document.Types().Records(),
            m_document.LayerFormulas().Records()});
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
    const JournalNews::News news = m_session->Take();
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
