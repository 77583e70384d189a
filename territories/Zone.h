#pragma once

#include "app/Tracked.h"
#include "territories/ZoneValues.h"

#include <QColor>
#include <QGraphicsEllipseItem>
#include <QString>

class QXmlStreamReader;
class QXmlStreamWriter;
class Territory;
struct ZoneRecord;

/// One circle of the world map at which creatures are placed. It is an item of the map scene, and
/// belongs to the territory whose table holds it; whichever of the three dies first, the others
/// forget the zone or take it along. Its position always consists of 32-bit numbers, as files are
/// read, so that a place is the same before and after it was saved.
class Zone : public QGraphicsEllipseItem
{
public:
    using Usage = ZoneValues::Usage;
    static constexpr Usage Rest = ZoneValues::Rest;
    static constexpr Usage Graze = ZoneValues::Graze;
    static constexpr Usage Water = ZoneValues::Water;
    static constexpr Usage HuntingGround = ZoneValues::HuntingGround;
    static constexpr Usage DynamicEvent = ZoneValues::DynamicEvent;
    enum
    {
        Type = UserType + 15,
    };
    static constexpr int MinDepth = ZoneValues::MinDepth;
    static constexpr int MaxDepth = ZoneValues::MaxDepth;

    /// territory gives the colour and may be null.
    Zone(Territory* territory, float radiusMetres, QGraphicsItem* parent = nullptr);
    /// A zone without geometry, which is then read from a file.
    explicit Zone(Territory* territory, QGraphicsItem* parent = nullptr);
    ~Zone() override;
    Q_DISABLE_COPY(Zone)

    int type() const override { return Type; }
    const Lifetime& GetLifetime() const { return m_lifetime; }
    /// Unique in the process and never reused; also the item data under Qt::UserRole.
    int Id() const { return m_id; }
    /// The territory for which the zone was made. For a copy it is that of the source, even if
    /// another territory holds the copy. When that territory is destroyed, it becomes the holder.
    /// May be null.
    Territory* GetTerritory() const { return m_territory; }
    /// The territory whose table holds the zone.
    Territory* Holder() const { return m_holder; }
    const QColor& Color() const { return m_color; }
    /// Scene units, i.e. layer pixels.
    float Radius() const { return m_radius; }
    ZoneValues Values() const;
    const SpawnCounts& Counts() const { return m_values.counts; }
    int GetUsage() const { return m_values.usage; }
    const QString& EventName() const { return m_values.eventName; }

    void SetTerritory(Territory* territory);
    /// The colour includes the alpha.
    void SetColor(const QColor& color);
    /// Brings the depth into its range.
    void SetValues(const ZoneValues& values);
    void SetRadius(float metres);
    void SetStaticMin(int count) { SetCount(m_values.counts.staticMin, count); }
    void SetStaticMax(int count) { SetCount(m_values.counts.staticMax, count); }
    void SetDynamicMin(int count) { SetCount(m_values.counts.dynamicMin, count); }
    void SetDynamicMax(int count) { SetCount(m_values.counts.dynamicMax, count); }
    void SetUsage(int usage);
    /// Meaningful for DynamicEvent only.
    void SetEventName(const QString& name) { m_values.eventName = name; }
    /// The depth is a whole number from MinDepth to MaxDepth; it is the stacking order and the grey
    /// level of the outline.
    void SetDepth(int depth);
    int Depth() const;
    /// The depth one step of 23 further to the front or to the back, within the range.
    int DepthInFront() const;
    int DepthBehind() const;

    /// A zone with the same GetTerritory(), values, place and depth, but an id of its own. No
    /// territory holds it and it is in no scene. The caller owns it.
    Zone* Copy() const;

    /// Reads the attributes of the "zone" element that the reader is on. Places are in world
    /// metres.
    void Read(const QXmlStreamReader& xml);
    /// What files hold of the zone.
    ZoneRecord Record() const;
    /// Export mode leaves out the depth, which only the editor needs.
    void Write(QXmlStreamWriter& xml, bool exportMode) const;

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option,
               QWidget* widget = nullptr) override;

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;

private:
    friend class Territory;

    void SetCount(int& count, int value);
    void TotalsChanged() const;

    Lifetime m_lifetime;
    int m_id;
    QColor m_color;
    Territory* m_territory = nullptr;
    Territory* m_holder = nullptr;
    float m_radius = 0;
    /// Without the depth, which is the item's z value.
    ZoneValues m_values;
};
