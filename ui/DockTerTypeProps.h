#pragma once

#include "app/Tracked.h"
#include "document/edits/ChangeValue.h"
#include "territories/SpawnCounts.h"
#include "territories/ZoneValues.h"

#include <QDockWidget>
#include <QRectF>
#include <QTimer>
#include <QVector>

#include <memory>

class Document;
class MovingBox;
class QSpinBox;
class Territory;
class TerritoryType;
class Zone;

namespace Ui {
class DockTerTypeProps;
}

/// The dock that shows the totals and the colour of the current territory or type, and in which the
/// user edits the selected zone. The zone shown last gives new zones their values.
class DockTerTypeProps : public QDockWidget
{
    Q_OBJECT

public:
    /// document: the project; it outlives the dock.
    explicit DockTerTypeProps(Document& document, QWidget* parent = nullptr);
    ~DockTerTypeProps() override;
    Q_DISABLE_COPY(DockTerTypeProps)

    /// Shows a territory and enables the dock. Null shows none and disables it.
    void ShowTerritory(Territory* territory);
    /// Shows a type in the same way.
    void ShowType(TerritoryType* type);
    /// Shows a zone of any territory, or none for null.
    void ShowZone(Zone* zone);
    /// Shows the selected zones, of any territories, in the box for all of them. While there are
    /// any, the dock is enabled also when no row is shown. It scrolls to the box when several are
    /// selected.
    void ShowZones(const QVector<Zone*>& zones);
    /// How the map moves zones.
    MovingBox& Moving() const;
    /// Computes the totals and shows them.
    void RefreshTotals();
    /// Schedules RefreshTotals for the next turn of the event loop. Several calls cause only one.
    void RefreshTotalsLater();

public slots:
    /// In metres. A text that is not a number from 50 to 32768 changes nothing.
    void UpdateSize(const QString& text);
    /// Keeps the territory's alpha.
    void UpdateColor(const QColor& color);
    /// 0 to 255.
    void UpdateOpacity(int alpha);
    void UpdateStaticMin(int count);
    /// A maximum below the minimum becomes the minimum, as in UpdateDynMax.
    void UpdateStaticMax(int count);
    void UpdateDynMin(int count);
    void UpdateDynMax(int count);
    void ToFront();
    void ToBack();
    /// A Zone::Usage.
    void UpdateUsage(int id);
    /// Does nothing unless the zone is for a dynamic event.
    void UpdateEvent(const QString& text);

signals:
    /// This part of the scene must be repainted. An empty rectangle means all of it.
    void Changed(const QRectF& area);

private:
    void Connect();
    void ShowNothing();
    void RevealZones();
    void ShowEnabled();
    void ShowTotals(const SpawnCounts& totals);
    void ShowSize();
    void ShowCounts();
    void ShowUsage();
    /// Gives the shown zone the values.
    void EditZone(const ZoneValues& values, Property property);
    void UpdateCount(int count, int SpawnCounts::*value, Property property);
    void UpdateDepth(int depth);
    void FollowZones();
    void FollowTerritory(const Territory* territory);

    Document& m_document;
    std::unique_ptr<Ui::DockTerTypeProps> m_ui;
    /// At most one of these is not null.
    Tracked<Territory> m_territory;
    Tracked<TerritoryType> m_type;
    Tracked<Zone> m_zone;
    /// Its values as they are shown.
    ZoneValues m_shown;
    bool m_isEditing = false;
    bool m_areZonesSelected = false;
    bool m_areSeveralSelected = false;
    QTimer m_totalsTimer;
    QTimer m_reveal;
};
