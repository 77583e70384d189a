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
/// user edits the selected zone. New zones get the values of the zone that was shown last.
class DockTerTypeProps : public QDockWidget
{
    Q_OBJECT

public:
    explicit DockTerTypeProps(QWidget* parent = nullptr);
    ~DockTerTypeProps() override;
    Q_DISABLE_COPY(DockTerTypeProps)

    /// Shows a territory and enables the dock. Null shows none and disables it.
    void ShowTerritory(Territory* territory);
    /// Shows a type in the same way.
    void ShowType(TerritoryType* type);
    /// Shows a zone, or none for null.
    void ShowZone(Zone* zone);
    /// Computes the totals and shows them.
    void RefreshTotals();
    /// Schedules RefreshTotals for the next turn of the event loop. Several calls cause only one.
    void RefreshTotalsLater();

    /// Gives the zone the values of the zone that was shown last, including its last edit in this
    /// dock, and the colour of the shown territory. Does nothing if no zone has been shown since
    /// ForgetTemplate.
    void ApplyToNewZone(Zone* zone);
    /// Forgets these values, for a new project: new zones then keep their defaults until a zone is
    /// shown.
    void ForgetTemplate();

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
    /// The values that a new zone gets.
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
    /// Must be called after each edit of the zone.
    void ZoneEdited();
    void TakeTemplate();

    std::unique_ptr<Ui::DockTerTypeProps> m_ui;
    /// At most one of these is not null.
    Tracked<Territory> m_territory;
    Tracked<TerritoryType> m_type;
    Tracked<Zone> m_zone;
    std::optional<Template> m_template;
    QTimer m_totalsTimer;
};
