#pragma once

#include "app/Tracked.h"
#include "territories/Territory.h"
#include "territories/Zone.h"

#include <QDockWidget>
#include <QPersistentModelIndex>
#include <QRectF>

#include <memory>
#include <optional>

class TerritoryType;

namespace Ui {
class DockTerTypeProps;
}

/// The dock that shows the current territory or type with its spawn counts, and edits the current
/// zone. What the zone shown last had becomes the template of new zones.
class DockTerTypeProps : public QDockWidget
{
    Q_OBJECT

public:
    explicit DockTerTypeProps(QWidget* parent = nullptr);
    ~DockTerTypeProps() override;
    Q_DISABLE_COPY(DockTerTypeProps)

    void ShowTerritory(Territory* territory);
    void ShowType(TerritoryType* type);
    /// Null for none.
    void ShowZone(Zone* zone);
    /// Neither a territory nor a type; the dock is disabled.
    void ShowNothing();
    /// Shows the name again, after a rename.
    void RefreshTitle();
    /// Shows the sums again, after zones came or went.
    void RefreshTotals();
    /// Gives the zone, which the user has just placed, the template's values and the current
    /// territory's colour; nothing without a template.
    void ApplyToNewZone(Zone* zone);
    /// For another project.
    void ForgetTemplate();

signals:
    /// The scene area to be painted again; empty for all of it.
    void Changed(const QRectF& area);

public slots:
    /// Metres; what is not from 50 to 32768 is passed over.
    void UpdateSize(const QString& text);
    void UpdateColor(const QColor& color);
    /// 0 to 255.
    void UpdateOpacity(int alpha);
    void UpdateStaticMin(int count);
    /// A count below the minimum stores the minimum. So does UpdateDynMax.
    void UpdateStaticMax(int count);
    void UpdateDynMin(int count);
    void UpdateDynMax(int count);
    void ToFront();
    void ToBack();
    void UpdateUsage(int usage);
    void UpdateEvent(const QString& text);

private:
    /// What a new zone takes from the one that was shown last.
    struct Template
    {
        float radiusMetres = 0;
        SpawnCounts counts;
        int usage = 0;
        QString eventName;
        qreal depth = 0;
    };

    void Connect();
    TerritoryType* ShownType() const;
    void ResetZone();
    void FillZone(const Zone& zone);
    void ShowTotals(const SpawnCounts& totals);
    void ShowStoredCounts();
    void SetCount(void (Zone::*setter)(int), int count);
    void ZoneEdited();
    void RememberTemplate();

    std::unique_ptr<Ui::DockTerTypeProps> m_ui;
    Tracked<Territory> m_territory;
    /// Becomes invalid when the type dies.
    QPersistentModelIndex m_typeRow;
    Tracked<Zone> m_zone;
    std::optional<Template> m_template;
};
