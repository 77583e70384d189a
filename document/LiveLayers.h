#pragma once

#include "document/LayerRects.h"
#include "layers/Formula.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QRect>
#include <QThreadPool>
#include <QTimer>
#include <QVector>

#include <memory>
#include <optional>

class Document;
class Layer;
class TileSet;

/// Lets the live layers of a document follow their operands. Whenever the pixels of a layer change,
/// by a step of a stroke, an edit, an undo or a redo, the layers that depend on it are computed
/// anew where that can have changed them. So their pixels belong to no edit: undo of the operand
/// brings them back too.
///
/// A live layer follows only from when its pixels are known to be those of its formula. One that
/// was edited by hand, or whose operands changed while nobody followed them, stays as it is until
/// the user updates it.
///
/// A computation that would take longer than a frame waits until the hand rests. A thread then does
/// it, with references to the masks. A mask that is changed meanwhile is copied first.
class LiveLayers : public QObject
{
    Q_OBJECT

public:
    explicit LiveLayers(Document& document);
    ~LiveLayers() override;

    bool IsFollowing(const Layer& layer) const;
    /// Whether some of its pixels wait to be computed.
    bool IsPending(const Layer& layer) const;
    bool HasFollowers() const { return !m_followers.isEmpty(); }

    /// The formula of the layer, or what is known of it, changed.
    void Reconsider(const Layer& layer);
    /// Follows all changes that were announced, and announces those that come of them. Each edit
    /// ends with it when it is carried out, undone or done again.
    void Settle();
    /// A stroke has ended or another begins. Forgets which tiles were already followed.
    void EndStroke() { m_stroked.clear(); }
    /// The same as Settle, and computes at once what waits. Outside of edits, it also tells that
    /// states of formulas changed.
    void Finish();

    /// Sets the largest cost (see Computation::Cost) that is computed at once; at first that of a
    /// frame of the screen.
    void SetFrameCost(qint64 cost) { m_frameCost = cost; }

private:
    /// By layer id.
    using Changes = QHash<int, LayerRects>;
    struct Follower
    {
        Formula formula;
        /// Where the layer waits to be computed.
        LayerRects pending;
        /// The part of it that waits because the layer is locked, if it is.
        LayerRects kept;
    };
    struct Job;

    void FollowEdit(const Layer& layer, const QRect& rect);
    void FollowStroke(const Layer& layer, const QRect& rect);
    void FollowRows();
    void Forget();
    void Rebuild();
    /// changes: also those that nobody has followed yet; those of the layer computedId are its new
    /// pixels.
    void Follow(Changes changes, qint64 budget, bool takesPending, int computedId = -1);
    std::optional<LayerRects> Compute(Layer& layer, const Computation& computation,
                                      const LayerRects& rects);
    std::optional<QRect> Show(Layer& layer, const QRect& rect, const QImage& pixels);
    void Announce();
    void Tell();
    Layer* Changeable(int id) const;
    void Put(Follower& follower, const LayerRects& rects);
    void Complete(Follower& follower, const LayerRects& kept);
    int PendingCount() const;
    void MarkStale(int id);
    void Rest();
    void Begin(int id);
    void Take(const std::shared_ptr<Job>& job);

    Document& m_document;
    QHash<int, Follower> m_followers;
    /// The followers, operands before what is made of them.
    QVector<int> m_order;
    /// Live layers that do not follow yet, or no more: their facts or formulas are new.
    QVector<int> m_reconsidered;
    bool m_isOrderStale = false;
    /// What was announced and not followed yet.
    Changes m_changes;
    /// The tiles that the stroke under way told of, by layer.
    QHash<int, std::shared_ptr<TileSet>> m_stroked;
    /// Changes of followers for which LayerChanged is due.
    QHash<int, QRect> m_unannounced;
    qint64 m_frameCost = 16'000'000;
    bool m_isFollowing = false;
    QTimer m_rest;
    std::shared_ptr<Job> m_job;
    QThreadPool m_pool;
};
