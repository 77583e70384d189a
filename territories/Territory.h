#pragma once

#include "app/Tracked.h"
#include "territories/SpawnCounts.h"

#include <QColor>
#include <QMap>
#include <QSet>
#include <QStandardItem>

class QGraphicsScene;
class QXmlStreamReader;
class QXmlStreamWriter;
class TerritoryType;
class Zone;
struct TerritoryRecord;

/// A named, coloured set of zones. It is a row below its territory type, which owns it. It owns its
/// zones.
class Territory : public QStandardItem
{
public:
    /// The name is "Territory ID" while a GUI runs, and empty in a batch run.
    Territory();
    explicit Territory(const QString& name);
    ~Territory() override;
    Q_DISABLE_COPY(Territory)

    const Lifetime& GetLifetime() const { return m_lifetime; }
    /// Unique in the process and never reused.
    int Id() const { return m_id; }
    /// The type below which the territory is a row; null before it has been added to one.
    TerritoryType* GetType() const;
    /// The alpha is the territory's opacity. Opaque black at first.
    const QColor& Color() const { return m_color; }
    bool IsVisible() const { return m_isVisible; }
    /// By ascending id.
    const QMap<int, Zone*>& Zones() const { return m_zones; }
    /// The sums over the zones.
    SpawnCounts Totals() const;

    /// Takes ownership of the zone. Returns false for null and for a zone that a territory already
    /// holds; that zone stays there.
    bool AddZone(Zone* zone);
    /// Removes the zone from the table; the caller then owns it. An unknown id is ignored.
    void RemoveZone(int zoneId);
    /// Puts the zones on the map, or takes them off it; they are not selected then.
    void EnterScene(QGraphicsScene& scene);
    void LeaveScene();
    /// Adds a copy of each selected zone of the scene to this territory and to the scene, in the
    /// order of their ids. A copy keeps the colour of its source's territory.
    void AddCopiesOfSelection(QGraphicsScene& scene);

    /// Keeps the alpha; a colour that differs only in alpha changes nothing. This and the next two
    /// functions also change all zones.
    void SetColor(const QColor& color);
    void SetAlpha(int alpha);
    void SetRgba(QRgb rgba);
    /// Whether the zones can be moved and selected.
    void SetZonesEditable(bool isEditable);
    /// Shows or hides the zones.
    void SetVisible(bool isVisible);

    /// Reads the zones of the "territory" element and adds them to the scene, if there is one. The
    /// reader must be on the start tag. Returns false if the reader has an error.
    bool Read(QXmlStreamReader& xml, QGraphicsScene* scene);
    /// What files hold of the territory and its zones.
    TerritoryRecord Record() const;
    /// Export mode leaves out the attributes that only the editor needs.
    void Write(QXmlStreamWriter& xml, bool exportMode) const;

private:
    friend class Zone;

    void Init();
    void ShowColor();
    void TotalsChanged() const;

    Lifetime m_lifetime;
    int m_id;
    QColor m_color = Qt::black;
    bool m_isVisible = false;
    QMap<int, Zone*> m_zones;
    /// All zones whose GetTerritory() is this territory, even if another one holds them.
    QSet<Zone*> m_referrers;
};
