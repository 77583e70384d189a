#include "document/LiveLayers.h"

#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/Formulas.h"
#include "document/journal/TileSet.h"
#include "layers/raster/MaskDelta.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr int RestMilliseconds = 150;

} // namespace

/// What the thread computes. Only the thread uses the computation and the pixels, until it has
/// posted them.
struct LiveLayers::Job
{
    int id = 0;
    LayerRects rects;
    std::optional<Computation> computation;
    QVector<QImage> pixels;
    /// What it computes from has changed; for the window's thread.
    bool isStale = false;
};

LiveLayers::LiveLayers(Document& document)
    : m_document(document)
{
    m_pool.setMaxThreadCount(1);
    m_rest.setSingleShot(true);
    m_rest.setInterval(RestMilliseconds);
    connect(&m_rest, &QTimer::timeout, this, &LiveLayers::Rest);
    connect(&document, &Document::LayerChanged, this,
            [this](const Layer* layer, Document::LayerAspect aspect, const QRect& rect) {
                if (aspect == Document::LayerAspect::Pixels) {
                    FollowEdit(*layer, rect);
                } else if (aspect == Document::LayerAspect::Rows) {
                    FollowRows();
                }
            });
    connect(&document, &Document::Painted, this,
            [this](const Layer* layer, const QRect& rect) { FollowStroke(*layer, rect); });
    connect(&document, &Document::LayerMarksChanged, this, [this] {
        if (HasFollowers()) {
            // A layer may have been unlocked.
            m_rest.start();
        }
    });
    connect(&document, &Document::AboutToClear, this, &LiveLayers::Forget);
}

LiveLayers::~LiveLayers()
{
    m_pool.waitForDone();
}

bool LiveLayers::IsFollowing(const Layer& layer) const
{
    return m_followers.contains(layer.Id());
}

bool LiveLayers::IsPending(const Layer& layer) const
{
    const auto follower = m_followers.constFind(layer.Id());
    return follower != m_followers.cend() && !follower->pending.isEmpty();
}

void LiveLayers::Reconsider(const Layer& layer)
{
    m_reconsidered.append(layer.Id());
    m_isOrderStale = true;
}

void LiveLayers::FollowRows()
{
    m_isOrderStale = true;
}

void LiveLayers::Forget()
{
    m_followers.clear();
    m_order.clear();
    m_reconsidered.clear();
    m_changes.clear();
    m_stroked.clear();
    m_unannounced.clear();
    m_rest.stop();
    m_job.reset();
}

void LiveLayers::FollowEdit(const Layer& layer, const QRect& rect)
{
    const std::shared_ptr<TileSet> stroked = m_stroked.take(layer.Id());
    if (m_isFollowing || !HasFollowers()) {
        return;
    }
    LayerRects& changes = m_changes[layer.Id()];
    const raster::MaskDelta* changed = m_document.ChangedTiles();
    if (!changed) {
        changes.append(rect.isEmpty() ? WholeLayer() : rect);
        return;
    }
    std::vector<int> tiles;
    changed->ForEachTile([&](int tile) {
        if (!stroked || !stroked->Contains(tile)) {
            tiles.push_back(tile);
        }
    });
    changes += RectsOf(tiles);
}

void LiveLayers::FollowStroke(const Layer& layer, const QRect& rect)
{
    if (m_isFollowing || !HasFollowers() || rect.isEmpty()) {
        return;
    }
    if (m_isOrderStale) {
        Rebuild();
    }
    std::shared_ptr<TileSet>& stroked = m_stroked[layer.Id()];
    if (!stroked) {
        stroked = std::make_shared<TileSet>(ProjectSettings::Instance().LayerSize());
    }
    stroked->Add(rect);
    if (!m_document.IsHandBusy()) {
        // The stroke was taken back.
        m_stroked.remove(layer.Id());
    }
    const int pending = PendingCount();
    Follow({{layer.Id(), {rect & WholeLayer()}}}, m_frameCost, false);
    if (!m_document.IsHandBusy()) {
        Tell();
    } else if (PendingCount() > pending) {
        m_document.LayerFormulas().TellChanges();
    }
}

/// Decides anew which layers follow, and in which order.
void LiveLayers::Rebuild()
{
    m_isOrderStale = false;
    if (m_job) {
        m_job->isStale = true;
    }
    const Formulas& formulas = m_document.LayerFormulas();
    const FormulaGraph graph = formulas.Graph();
    const QVector<int> reconsidered = std::exchange(m_reconsidered, {});
    for (const int id : reconsidered) {
        m_followers.remove(id);
        const Layer* layer = m_document.Layers().LayerById(id);
        const Formula* formula = graph.FormulaOf(id);
        if (!layer || !formula || !formulas.IsLive(*layer) || graph.IsInCycle(id)) {
            continue;
        }
        if (formulas.IsInStep(*layer)) {
            m_followers.insert(id, {*formula, {}, {}});
        } else if (formulas.IsWaiting(*layer)) {
            // As it was when the project was saved or the program ended.
            m_followers.insert(id, {*formula, {WholeLayer()}, {WholeLayer()}});
            m_rest.start();
        }
    }
    QVector<int> ids;
    for (auto follower = m_followers.cbegin(); follower != m_followers.cend(); ++follower) {
        ids.append(follower.key());
    }
    std::sort(ids.begin(), ids.end());
    m_order.clear();
    const QVector<int> order = graph.InOrder(ids);
    std::copy_if(order.begin(), order.end(), std::back_inserter(m_order),
                 [this](int id) { return m_followers.contains(id); });
    // A removed layer records changes until it comes back.
    std::copy_if(ids.begin(), ids.end(), std::back_inserter(m_order),
                 [&order](int id) { return !order.contains(id); });
}

void LiveLayers::Settle()
{
    if (m_isFollowing) {
        return;
    }
    if (m_isOrderStale) {
        Rebuild();
    }
    if (HasFollowers()) {
        // Which layers are locked is not known before the end of a load.
        Follow(std::exchange(m_changes, {}), m_frameCost, !m_document.AreFilesBusy());
    }
    m_changes.clear();
    EndStroke();
    Announce();
}

void LiveLayers::Finish()
{
    Settle();
    if (m_job && !m_job->isStale && !m_document.IsApplying() && !m_document.IsBusy()) {
        // The thread's own result need not be computed again.
        m_pool.waitForDone();
        Take(std::shared_ptr<Job>(m_job));
    }
    Follow({}, std::numeric_limits<qint64>::max(), true);
    if (m_document.IsApplying()) {
        Announce();
    } else {
        Tell();
    }
}

void LiveLayers::Follow(Changes changes, qint64 budget, bool takesPending, int computedId)
{
    const QScopedValueRollback<bool> following(m_isFollowing, true);
    for (const int id : qAsConst(m_order)) {
        Follower& follower = m_followers[id];
        // A change of the layer from any other source is reverted here.
        const LayerRects own = id == computedId ? LayerRects() : changes.take(id);
        LayerRects changed;
        for (const int operand : qAsConst(follower.formula.operands)) {
            changed += changes.value(operand);
        }
        Layer* layer = m_document.Layers().LayerById(id);
        // Undo and redo leave a locked layer where the lock kept it.
        const LayerRects kept = layer && m_document.IsLocked(*layer) ? follower.kept : LayerRects();
        const LayerRects pending = takesPending ? Outside(follower.pending, kept) : LayerRects();
        if (changed.isEmpty() && own.isEmpty() && pending.isEmpty()) {
            continue;
        }
        MarkStale(id);
        const std::optional<Computation> computation =
            layer ? Computation::Of(m_document.Layers(), follower.formula) : std::nullopt;
        if (!computation) {
            Put(follower, {WholeLayer()});
            continue;
        }
        const LayerRects wanted = Outside(Grown(changed, computation->Reach()) + own, kept);
        if (!Changeable(id)) {
            Append(follower.kept, wanted);
            Put(follower, wanted);
            continue;
        }
        const auto take = [&](const LayerRects& rects) -> std::optional<LayerRects> {
            qint64 cost = 0;
            for (const QRect& rect : rects) {
                cost += computation->Cost(rect, budget);
            }
            if (cost > budget) {
                return {};
            }
            budget -= cost;
            return Compute(*layer, *computation, rects);
        };
        std::optional<LayerRects> shown;
        if (!pending.isEmpty()) {
            shown = take(Outside(Grown(wanted + pending, 0), kept));
            if (shown) {
                Complete(follower, kept);
            }
        }
        if (!shown && !wanted.isEmpty()) {
            shown = take(wanted);
            if (!shown) {
                Put(follower, wanted);
            }
        }
        if (shown) {
            changes[id] += *shown;
        }
    }
}

/// Returns what changed; nothing without memory.
std::optional<LayerRects> LiveLayers::Compute(Layer& layer, const Computation& computation,
                                              const LayerRects& rects)
{
    LayerRects changed;
    for (const QRect& rect : rects) {
        const QImage pixels = computation.Within(rect);
        const std::optional<QRect> shown =
            pixels.isNull() ? std::nullopt : Show(layer, rect, pixels);
        if (!shown) {
            return {};
        }
        if (!shown->isEmpty()) {
            changed.append(*shown);
        }
    }
    return changed;
}

std::optional<QRect> LiveLayers::Show(Layer& layer, const QRect& rect, const QImage& pixels)
{
    const QRect differing = Difference(layer.Image(), rect.topLeft(), pixels);
    if (differing.isEmpty()) {
        return QRect();
    }
    emit m_document.PixelsAboutToChange(&layer);
    const bool isShown = layer.PutPixels(differing, pixels, differing.topLeft() - rect.topLeft());
    m_unannounced[layer.Id()] |= differing;
    // During a stroke, the map shows each step.
    if (m_document.IsHandBusy() || !isShown) {
        emit m_document.Painted(&layer, differing);
    }
    return isShown ? std::optional<QRect>(differing) : std::nullopt;
}

void LiveLayers::Announce()
{
    const QScopedValueRollback<bool> following(m_isFollowing, true);
    const QHash<int, QRect> changed = std::exchange(m_unannounced, {});
    for (const int id : qAsConst(m_order)) {
        Layer* layer = m_document.Layers().LayerById(id);
        const QRect rect = changed.value(id);
        if (layer && !rect.isEmpty()) {
            emit m_document.LayerChanged(layer, Document::LayerAspect::Pixels, rect);
        }
    }
}

/// Tells of changes that come with no edit.
void LiveLayers::Tell()
{
    Announce();
    m_document.LayerFormulas().TellChanges();
    // Only now may the document equal its saved state again.
    emit m_document.HistoryChanged();
}

/// Null for a layer that is removed or locked; it catches up when it is there again. Undo and redo
/// change a locked one too.
Layer* LiveLayers::Changeable(int id) const
{
    Layer* layer = m_document.Layers().LayerById(id);
    const bool isFree = layer && (!m_document.IsLocked(*layer) || m_document.IsTravelling());
    return isFree ? layer : nullptr;
}

void LiveLayers::Put(Follower& follower, const LayerRects& rects)
{
    if (follower.pending.isEmpty()) {
        m_document.LayerFormulas().NoteChange();
    }
    Append(follower.pending, rects);
    m_rest.start();
}

/// Nothing waits any more but what a lock keeps, although maybe no pixel changed.
void LiveLayers::Complete(Follower& follower, const LayerRects& kept)
{
    follower.pending = kept;
    follower.kept = kept;
    m_document.LayerFormulas().NoteChange();
    emit m_document.FormulaChanged();
}

int LiveLayers::PendingCount() const
{
    return static_cast<int>(
        std::count_if(m_followers.begin(), m_followers.end(),
                      [](const Follower& follower) { return !follower.pending.isEmpty(); }));
}

void LiveLayers::MarkStale(int id)
{
    if (m_job && m_job->id == id) {
        m_job->isStale = true;
    }
}

/// Lets the thread compute the first layer that waits. A project that is only viewed shows what its
/// files hold.
void LiveLayers::Rest()
{
    if (!m_document.IsEditable() && !m_document.IsBusy()) {
        return;
    }
    const auto next = std::find_if(m_order.begin(), m_order.end(), [this](int id) {
        return !m_followers.constFind(id)->pending.isEmpty() && Changeable(id) &&
               Computation::Of(m_document.Layers(), m_followers.constFind(id)->formula);
    });
    if (next == m_order.end()) {
        return;
    }
    if (m_job || m_document.IsBusy() || m_document.IsApplying()) {
        m_rest.start();
    } else {
        Begin(*next);
    }
}

void LiveLayers::Begin(int id)
{
    m_job = std::make_shared<Job>();
    m_job->id = id;
    m_job->rects = Grown(m_followers.constFind(id)->pending, 0);
    m_job->computation = Computation::Of(m_document.Layers(), m_followers.constFind(id)->formula);
    m_pool.start([this, job = m_job] {
        for (const QRect& rect : qAsConst(job->rects)) {
            job->pixels.append(job->computation->Within(rect));
        }
        // A stroke can go on in place as soon as nobody else holds the masks.
        job->computation.reset();
        QMetaObject::invokeMethod(
            this, [this, job] { Take(job); }, Qt::QueuedConnection);
    });
}

void LiveLayers::Take(const std::shared_ptr<Job>& job)
{
    if (job != m_job) {
        return;
    }
    m_job.reset();
    Layer* layer = Changeable(job->id);
    if (job->isStale || m_isOrderStale || !layer || m_document.IsBusy() ||
        m_document.IsApplying()) {
        m_rest.start();
        return;
    }
    Changes changes;
    bool isWhole = true;
    {
        const QScopedValueRollback<bool> following(m_isFollowing, true);
        for (int i = 0; i < job->rects.size(); ++i) {
            const QImage& pixels = job->pixels.at(i);
            const std::optional<QRect> shown =
                pixels.isNull() ? std::nullopt : Show(*layer, job->rects.at(i), pixels);
            isWhole = isWhole && shown;
            if (shown && !shown->isEmpty()) {
                changes[job->id].append(*shown);
            }
        }
    }
    if (isWhole) {
        Complete(m_followers[job->id], {});
        m_rest.start();
    }
    Follow(changes, m_frameCost, false, job->id);
    Tell();
    if (!isWhole) {
        LogError(Document::tr("There is no memory to compute layer '%1'.").arg(layer->text()));
    }
}
