#pragma once

#include "app/Tracked.h"
#include "layers/MapProbe.h"
#include "territories/ZoneProbe.h"

#include <QObject>
#include <QPointF>

#include <optional>
#include <vector>

class Document;
class Layer;
class Zone;

/// Finds what the open project has at a place: the flags that its area map would hold there, the
/// layers that give them, and the zones that cover it.
class ProjectProbe : public QObject
{
    Q_OBJECT

public:
    struct FoundLayer
    {
        Layer* layer;
        /// 1 to 255.
        int grey;
    };
    struct FoundZone
    {
        Zone* zone;
        /// Its place in its territory, from 1.
        int number;
        /// Metres from its centre.
        double distance;
    };
    /// The pointers hold until the project changes.
    struct Found
    {
        MapPlace place;
        /// As LayersHere.
        std::optional<quint32> usage;
        std::optional<quint32> value;
        /// In row order.
        std::vector<FoundLayer> layers;
        std::vector<FoundZone> zones;
    };

    /// document: the project; it outlives the probe.
    explicit ProjectProbe(Document& document);

    /// place: scene units, i.e. layer pixels; it may lie outside of the world.
    Found Find(QPointF place);

signals:
    /// What Find returns for this rectangle of layer pixels may be different from now on. A null
    /// rectangle is the whole map. The project may be in the middle of a change.
    void Changed(const QRect& rect);

private:
    void ForgetZones();
    void ListZones();

    Document& m_document;
    /// Zones change seldom and the mouse moves often.
    bool m_areZonesListed = false;
    ProbedZones m_circles;
    /// The zones of m_circles.
    std::vector<Tracked<Zone>> m_zones;
};
