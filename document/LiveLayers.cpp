#include "document/LiveLayers.h"

#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/Formulas.h"
#include "document/journal/TileSet.h"
#include "layers/raster/MaskDelta.h"
#include "layers/raster/MaskTile.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace {

constexpr int RestMilliseconds = 150;
/// More rectangles are not worth their bookkeeping.
constexpr int MaxRects = 64;

using Rects = QVector<QRect>;

QSize LayerSize()
{
    return ProjectSettings::Instance().LayerSize();
}

QRect LayerRect()
{
    return {QPoint(), LayerSize()};
}

double Area(const QRect& rect)
{
    return double(rect.width()) * rect.height();
}

/// All pixels in reach of the rectangles; one rectangle around them where that is no more work.
Rects Grown(const Rects& rects, int reach)
{
    Rects grown;
    QRect bounds;
    double area = 0;
    for (const QRect& rect : rects) {
        grown.append(rect.adjusted(-reach, -reach, reach, reach) & LayerRect());
        bounds |= grown.constLast();
        // What is read for it is wider once more.
        area += Area(grown.constLast().adjusted(-reach, -reach, reach, reach));
    }
    const bool isOne =
        grown.size() > MaxRects || area >= Area(bounds.adjusted(-reach, -reach, reach, reach));
    return isOne && !grown.isEmpty() ? Rects{bounds} : grown;
}

/// The tiles, those side by side as one rectangle.
Rects RectsOf(std::vector<int> tiles)
{
    std::sort(tiles.begin(), tiles.end());
    Rects rects;
    for (const int tile : tiles) {
        const QRect rect = raster::TileRect(LayerSize(), tile);
        const bool goesOn = !rects.isEmpty() && rects.constLast().top() == rect.top() &&
                            rects.constLast().right() + 1 == rect.left();
        if (goesOn) {
            rects.last().setRight(rect.right());
        } else {
            rects.append(rect);
        }
    }
    return rects;
}

/// The smallest rectangle of mask pixels in which the mask differs from pixels that lie at a place
/// of it.
QRect Difference(const QImage& mask, QPoint place, const QImage& pixels)
{
    const auto width = static_cast<std::size_t>(pixels.width());
    QRect differing;
    for (int y = 0; y < pixels.height(); ++y) {
        const uchar* before = mask.constScanLine(place.y() + y) + place.x();
        const uchar* after = pixels.constScanLine(y);
        if (std::memcmp(before, after, width) == 0) {
            continue;
        }
        const auto first = std::mismatch(before, before + width, after).first - before;
        std::ptrdiff_t last = pixels.width() - 1;
        while (before[last] == after[last]) {
            --last;
        }
        differing |= QRect(QPoint(static_cast<int>(first), y), QPoint(static_cast<int>(last), y));
    }
    return differing.isEmpty() ? QRect() : differing.translated(place);
}

} // namespace

/// What the thread computes. Only the thread uses the computation and the pixels, until it has
/// posted them.
struct LiveLayers::Job
{
    int id = 0;
    Rects rects;
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
    Rects& changes = m_changes[layer.Id()];
    const raster::MaskDelta* changed = m_document.ChangedTiles();
    if (!changed) {
        changes.append(rect.isEmpty() ? LayerRect() : rect);
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
        stroked = std::make_shared<TileSet>(LayerSize());
    }
    stroked->Add(rect);
    if (!m_document.IsHandBusy()) {
        // The stroke was taken back.
        m_stroked.remove(layer.Id());
    }
    const int pending = PendingCount();
    Follow({{layer.Id(), {rect & LayerRect()}}}, m_frameCost, false);
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
        if (layer && formula && formulas.IsLive(*layer) && !graph.IsInCycle(id) &&
            formulas.IsInStep(*layer)) {
            m_followers.insert(id, {*formula, {}});
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
    // Those that are removed note what changes until they come back.
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
        Follow(std::exchange(m_changes, {}), m_frameCost, true);
    }
    m_changes.clear();
    EndStroke();
    Announce();
}

void LiveLayers::Finish()
{
    Settle();
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
        // Whatever else changed the layer is undone.
        const Rects own = id == computedId ? Rects() : changes.take(id);
        Rects changed;
        for (const int operand : qAsConst(follower.formula.operands)) {
            changed += changes.value(operand);
        }
        const bool doesPending = takesPending && !follower.pending.isEmpty();
        if (changed.isEmpty() && own.isEmpty() && !doesPending) {
            continue;
        }
        MarkStale(id);
        Layer* layer = Changeable(id);
        const std::optional<Computation> computation =
            layer ? Computation::Of(m_document.Layers(), follower.formula) : std::nullopt;
        if (!computation) {
            Put(follower, {LayerRect()});
            continue;
        }
        const auto take = [&](const Rects& rects) -> std::optional<Rects> {
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
        const Rects wanted = Grown(changed, computation->Reach()) + own;
        std::optional<Rects> shown;
        if (doesPending) {
            shown = take(Grown(wanted + follower.pending, 0));
            if (shown) {
                Complete(follower);
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
std::optional<LiveLayers::Rects> LiveLayers::Compute(Layer& layer, const Computation& computation,
                                                     const Rects& rects)
{
    Rects changed;
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
    // The document may be as it was saved only now.
    emit m_document.HistoryChanged();
}

/// Null for a layer that is removed or locked; it catches up when it is there again. Locks do not
/// stop undo and redo.
Layer* LiveLayers::Changeable(int id) const
{
    Layer* layer = m_document.Layers().LayerById(id);
    const bool isFree = layer && (!m_document.IsLocked(*layer) || m_document.IsTravelling());
    return isFree ? layer : nullptr;
}

void LiveLayers::Put(Follower& follower, const Rects& rects)
{
    if (follower.pending.isEmpty()) {
        m_document.LayerFormulas().NoteChange();
    }
    follower.pending += rects;
    if (follower.pending.size() > MaxRects) {
        QRect bounds;
        for (const QRect& rect : qAsConst(follower.pending)) {
            bounds |= rect;
        }
        follower.pending = {bounds};
    }
    m_rest.start();
}

/// Nothing waits any more, although maybe no pixel changed.
void LiveLayers::Complete(Follower& follower)
{
    follower.pending.clear();
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

/// Lets the thread compute the first layer that waits.
void LiveLayers::Rest()
{
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
        Complete(m_followers[job->id]);
        m_rest.start();
    }
    Follow(changes, m_frameCost, false, job->id);
    Tell();
    if (!isWhole) {
        LogError(Document::tr("There is no memory to compute layer '%1'.").arg(layer->text()));
    }
}
