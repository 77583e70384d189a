#pragma once

#include "layers/LayerNumbers.h"
#include "territories/ZoneNumbers.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QRect>
#include <QTimer>

#include <functional>
#include <optional>

class Document;
class Layer;
class Territory;

/// The numbers of the open project: pixels of layers and flags, and sums over zones. It follows
/// the document's edits and counts again only what they changed, in slices of a few milliseconds
/// when no events wait, and never while the hand is at work or files are. No mask is held.
///
/// While nobody wants numbers, it follows nothing and knows nothing.
class ProjectNumbers : public QObject
{
    Q_OBJECT

public:
    enum class Wanted
    {
        Nothing,
        /// The numbers of layers only.
        Layers,
        /// Also those of flags, of the overlap and of zones.
        All,
    };

    /// document: the project; it outlives the numbers.
    explicit ProjectNumbers(Document& document);

    /// Sets what a user of the numbers needs from now on. A destroyed user needs nothing.
    void Want(const QObject& user, Wanted wanted);

    /// Whether all that is wanted is counted as it is now.
    bool IsUpToDate() const { return !m_isStale; }
    /// The numbers of all layers, shown or not, and of their flags in the map. The functions of
    /// LayerNumbers say when they know nothing.
    const LayerNumbers& Layers() const { return m_layers; }
    /// The layers whose overlap is counted; null for none.
    void SetOverlap(const Layer* first, const Layer* second);
    /// The numbers of the territory's zones; nothing before they are counted.
    std::optional<ZoneNumbers> Zones(const Territory& territory) const;

signals:
    /// Some numbers changed, or became known. During the first count it comes a few times a second.
    void Changed();

private:
    void Follow(Wanted wanted);
    void ConnectDocument();
    void ConnectZones();
    void Forget();
    void Wake();
    void FollowLayer(const Layer& layer, int aspect, const QRect& rect);
    void StaleList();
    void StaleZones(const Territory* territory);
    void Work();
    void ListLayers();
    bool CountPixels(const std::function<bool()>& isTimeUp);
    bool CountZones(const std::function<bool()>& isTimeUp);

    Document& m_document;
    QTimer m_timer;
    QHash<const QObject*, Wanted> m_users;
    Wanted m_wanted = Wanted::Nothing;
    bool m_isStale = false;
    bool m_isListStale = false;
    bool m_areZonesStale = false;
    LayerNumbers m_layers;
    /// By the ids of territories, also of some that are removed.
    QHash<int, ZoneNumbers> m_zones;
    /// Since Changed came last, while a long count is under way.
    QElapsedTimer m_sinceChanged;
};
