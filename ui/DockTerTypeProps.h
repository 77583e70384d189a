#pragma once

#include "app/Tracked.h"
#include "territories/SpawnCounts.h"

#include <QDockWidget>
#include <QRectF>
#include <QTimer>

#include <memory>
#include <optional>

class QSpinBox;
class Territory;
class TerritoryType;
class Zone;

namespace Ui {
class DockTerTypeProps;
}

/// The dock that shows the totals and the colour of the current territory or type, and in which the
/// user edits the selected zone. The zone shown last is the pattern of new zones.
class DockTerTypeProps : public QDockWidget
{
    Q_OBJECT

public:
    explicit DockTerTypeProps(QWidget* parent = nullptr);
    ~DockTerTypeProps() override;
    Q_DISABLE_COPY(DockTerTypeProps)

    /// Enables the dock; null shows none and disables it.
    void ShowTerritory(Territory* territory);
    /// Likewise.
    void ShowType(TerritoryType* type);
    /// Null for none.
    void ShowZone(Zone* zone);
    /// Sums the totals up and shows them.
    void RefreshTotals();
    /// The same, once at the next turn of the event loop for any number of calls.
    void RefreshTotalsLater();

    /// Gives the zone the values of the zone shown last, as they were then or after its last edit
    /// here, and the shown territory's colour. Nothing when no zone was shown since ForgetTemplate.
    void ApplyToNewZone(Zone* zone);
    /// For a new project: new zones keep their own values until a zone is shown.
    void ForgetTemplate();

public slots:
    /// Metres; a text that is no number from 50 to 32768 changes nothing.
    void UpdateSize(const QString& text);
    /// Keeps the territory's alpha.
    void UpdateColor(const QColor& color);
    /// 0 to 255.
    void UpdateOpacity(int alpha);
    void UpdateStaticMin(int count);
    /// A maximum below the minimum becomes the minimum, like in UpdateDynMax.
    void UpdateStaticMax(int count);
    void UpdateDynMin(int count);
    void UpdateDynMax(int count);
    void ToFront();
    void ToBack();
    /// A Zone::Usage.
    void UpdateUsage(int id);
    /// Nothing unless the zone is that of a dynamic event.
    void UpdateEvent(const QString& text);

signals:
    /// The part of the scene that is to be painted anew; all of it where the rectangle is empty.
    void Changed(const QRectF& area);

private:
    /// What a new zone takes over.
    struct Template
    {
        float radiusMetres;
        SpawnCounts counts;
        int usage;
        QString eventName;
        qreal depth;
    };

    void Connect();
    void ShowNothing();
    void ShowTotals(const SpawnCounts& totals);
    void ShowSize();
    void ShowCounts();
    void ShowUsage();
    /// Call after each edit of the zone.
    void ZoneEdited();
    void TakeTemplate();

    std::unique_ptr<Ui::DockTerTypeProps> m_ui;
    /// At most one of them.
    Tracked<Territory> m_territory;
    Tracked<TerritoryType> m_type;
    Tracked<Zone> m_zone;
    std::optional<Template> m_template;
    QTimer m_totalsTimer;
};
