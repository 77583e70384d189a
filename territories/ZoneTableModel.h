#pragma once

#include "app/Tracked.h"
#include "territories/ZoneFilter.h"
#include "territories/ZoneProblemsPass.h"
#include "territories/ZoneTable.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QTimer>

#include <functional>
#include <optional>
#include <vector>

class Territory;
class TerritoryTypeList;
class Zone;

/// All zones of the project as a table for views: the rows that a filter leaves, in the order of a
/// column. Whoever makes it tells it what changed. Rows are taken from the zones in one go and
/// kept, so that thousands are filtered and sorted within a keystroke.
///
/// Rows whose values change keep their places until the next sorting, and those that the filter no
/// longer leaves stay as long as they are selected, so that no row goes while it is edited.
class ZoneTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// types: the project's; it outlives the model. The table is empty before Reload.
    explicit ZoneTableModel(const TerritoryTypeList& types, QObject* parent = nullptr);

    /// Writes what the user typed into a cell; returns whether it was taken.
    using CellEditor = std::function<bool(Zone& zone, ZoneColumn column, const QString& text)>;
    void SetCellEditor(CellEditor editor) { m_cellEditor = std::move(editor); }

    /// Takes all zones anew.
    void Reload();
    /// Forgets all zones.
    void Clear();
    /// Zones of the territories changed, came or went. Only what differs is announced.
    void FollowZones(const std::vector<const Territory*>& territories);
    /// Territories or types changed their names, came or went.
    void FollowNames();

    /// While the hand is at work, nothing is looked for in free moments.
    void PauseProblems(bool isPaused);

    /// See ZoneFilter. Text that is not finished hides nothing.
    void SetFilter(const QString& text);
    /// The terms of the filter that hide nothing yet, as the user typed them.
    const QStringList& UnfinishedTerms() const { return m_filter.Unfinished(); }
    /// Shows only the rows of this territory, and none for null. Without a value, shows all rows.
    void SetOnly(std::optional<const Territory*> only);

    /// All rows of the project, shown or not, in the order of the file.
    const std::vector<ZoneRow>& AllRows() const { return m_rows; }
    const ZoneRow& RowAt(int row) const { return m_rows[IndexAt(row)]; }
    /// Null for a zone that was destroyed.
    Zone* ZoneAt(int row) const { return m_zones[IndexAt(row)]; }
    /// -1 for a zone that is not shown.
    int RowOf(const Zone& zone) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    /// Stable; numbers are sorted as numbers. A column of -1 restores the order of the file.
    void sort(int column, Qt::SortOrder order) override;

private:
    /// The zones of a territory, which lie one after the other.
    struct Block
    {
        int territoryId;
        int typeId;
        QString type;
        QString territory;
        int first;
        int count;
    };
    using Rows = std::vector<ZoneRow>;

    std::size_t IndexAt(int row) const
    {
        return static_cast<std::size_t>(m_shown[static_cast<std::size_t>(row)]);
    }
    static std::vector<Block> BlocksOf(const TerritoryTypeList& types);
    void TakeZones();
    bool HasZonesOf(const Block& block, const Territory& territory) const;
    void TakeValues(const Block& block, const Territory& territory, std::vector<int>& changed);
    void TakeChanges(const std::vector<int>& changed, int firstColumn);
    void MakeFilter();
    void Match();
    bool IsWanted(std::size_t index) const;
    bool IsKept(std::size_t index) const;
    void Show(bool keepsSelected);
    void SortShown(std::vector<int>& shown) const;
    std::vector<double> SortKeys(const std::vector<int>& shown) const;
    void LookForProblems();
    void WorkOnProblems();

    const TerritoryTypeList& m_types;
    CellEditor m_cellEditor;
    /// One for each territory, in the order of the file.
    std::vector<Block> m_blocks;
    /// One for each zone, in the order of the file; the next four belong to them.
    Rows m_rows;
    std::vector<Tracked<Zone>> m_zones;
    std::vector<int> m_typeIds;
    /// Whether the filter leaves it.
    std::vector<bool> m_matches;
    /// The row that shows it; -1 for none.
    std::vector<int> m_places;
    QHash<int, int> m_indexByZoneId;
    /// What the rows show.
    std::vector<int> m_shown;
    QString m_filterText;
    ZoneFilter m_filter;
    bool m_isOnly = false;
    int m_onlyId = -1;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    ZoneProblemsPass m_problems;
    QTimer m_problemsTimer;
    bool m_isPaused = false;
};
