#include "territories/Territory.h"

#include "app/Gui.h"
#include "app/Ids.h"
#include "app/ProjectSettings.h"
#include "app/Xml.h"
#include "territories/TerritoryRecords.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "territories/ZoneSelection.h"

#include <QGraphicsScene>
#include <QXmlStreamReader>

#include <memory>

Territory::Territory()
    : Territory(QString())
{
    if (IsGuiRunning()) {
        setText(QStringLiteral("Territory %1").arg(m_id));
    }
}

Territory::Territory(const QString& name)
    : QStandardItem(name)
    , m_id(NextId<Territory>())
{
    Init();
}

void Territory::Init()
{
    if (!IsGuiRunning()) {
        return;
    }
    setCheckable(true);
    setEditable(true);
    setData(m_id, Qt::UserRole);
    ShowColor();
}

Territory::~Territory()
{
    // A zone removes itself from the table when it is destroyed. It also destroys zones that are
    // its child items.
    while (!m_zones.isEmpty()) {
        delete m_zones.first();
    }
    const QSet<Zone*> referrers = m_referrers;
    for (Zone* zone : referrers) {
        zone->SetTerritory(zone->Holder());
    }
}

TerritoryType* Territory::GetType() const
{
    return dynamic_cast<TerritoryType*>(parent());
}

SpawnCounts Territory::Totals() const
{
    SpawnCounts totals;
    for (const Zone* zone : m_zones) {
        totals += zone->Counts();
    }
    return totals;
}

void Territory::TotalsChanged() const
{
    // The territory has no type while its row is being removed.
    const TerritoryType* type = model() ? GetType() : nullptr;
    if (type) {
        type->TotalsChanged();
    }
}

bool Territory::AddZone(Zone* zone)
{
    if (!zone || zone->m_holder) {
        return false;
    }
    zone->m_holder = this;
    m_zones.insert(zone->Id(), zone);
    TotalsChanged();
    return true;
}

void Territory::RemoveZone(int zoneId)
{
    if (Zone* zone = m_zones.take(zoneId)) {
        zone->m_holder = nullptr;
        TotalsChanged();
    }
}

void Territory::EnterScene(QGraphicsScene& scene)
{
    for (Zone* zone : qAsConst(m_zones)) {
        scene.addItem(zone);
    }
}

void Territory::LeaveScene()
{
    SelectionChange change;
    for (Zone* zone : qAsConst(m_zones)) {
        if (QGraphicsScene* scene = zone->scene()) {
            change.Set(*zone, false);
            scene->removeItem(zone);
        }
    }
}

void Territory::AddCopiesOfSelection(QGraphicsScene& scene)
{
    // Their order in the scene's list differs from run to run.
    QMap<int, const Zone*> selection;
    const QList<QGraphicsItem*> items = scene.selectedItems();
    for (const QGraphicsItem* item : items) {
        if (const auto* zone = qgraphicsitem_cast<const Zone*>(item)) {
            selection.insert(zone->Id(), zone);
        }
    }
    for (const Zone* zone : qAsConst(selection)) {
        Zone* copy = zone->Copy();
        AddZone(copy);
        scene.addItem(copy);
    }
}

void Territory::ShowColor()
{
    if (IsGuiRunning()) {
        setData(m_color, Qt::DecorationRole);
    }
}

void Territory::SetColor(const QColor& color)
{
    if (color.rgb() != m_color.rgb()) {
        QColor opaque = color;
        opaque.setAlpha(m_color.alpha());
        SetRgba(opaque.rgba());
    }
}

void Territory::SetAlpha(int alpha)
{
    if (alpha == m_color.alpha()) {
        return;
    }
    m_color.setAlpha(alpha);
    ShowColor();
    for (Zone* zone : qAsConst(m_zones)) {
        QColor color = zone->Color();
        color.setAlpha(alpha);
        zone->SetColor(color);
    }
}

void Territory::SetRgba(QRgb rgba)
{
    if (rgba == m_color.rgba()) {
        return;
    }
    m_color.setRgba(rgba);
    ShowColor();
    for (Zone* zone : qAsConst(m_zones)) {
        zone->SetColor(m_color);
    }
}

void Territory::SetZonesEditable(bool isEditable)
{
    for (Zone* zone : qAsConst(m_zones)) {
        zone->setFlag(QGraphicsItem::ItemIsMovable, isEditable);
        zone->setFlag(QGraphicsItem::ItemIsSelectable, isEditable);
    }
}

void Territory::SetVisible(bool isVisible)
{
    m_isVisible = isVisible;
    SelectionChange change;
    for (Zone* zone : qAsConst(m_zones)) {
        if (!isVisible) {
            change.Set(*zone, false);
        }
        zone->setVisible(isVisible);
    }
}

bool Territory::Read(QXmlStreamReader& xml, QGraphicsScene* scene)
{
    const XmlHandlers handlers = {
        {QLatin1String("zone"),
         [this, scene](QXmlStreamReader& element) {
             auto zone = std::make_unique<Zone>(this);
             zone->Read(element);
             if (AddZone(zone.get())) {
                 Zone* held = zone.release();
                 if (scene) {
                     scene->addItem(held);
                 }
             }
             return true;
         }},
    };
    WalkXml(xml, handlers, QLatin1String("territory"));
    return !xml.hasError();
}

TerritoryRecord Territory::Record() const
{
    TerritoryRecord record{text(), m_color.rgba(), m_isVisible, {}};
    record.zones.reserve(static_cast<std::size_t>(m_zones.size()));
    for (const Zone* zone : m_zones) {
        record.zones.push_back(zone->Record());
    }
    return record;
}

void Territory::Write(QXmlStreamWriter& xml, bool exportMode) const
{
    ::Write(xml, Record(), WorldScale(ProjectSettings::Instance()), exportMode);
}
