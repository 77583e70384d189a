#include "territories/ZoneTableModel.h"

#include "app/ProjectSettings.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

constexpr int NoRow = -1;
/// What a user does not notice; the rest of a frame belongs to others.
constexpr int SliceMilliseconds = 6;
/// What is wrong with so many is found at once.
constexpr std::size_t FewRows = 500;

ZoneColumn ColumnAt(int column)
{
    return ZoneColumns.at(static_cast<std::size_t>(column));
}

bool IsEditable(ZoneColumn column)
{
    return column != ZoneColumn::Type && column != ZoneColumn::Territory &&
           column != ZoneColumn::Number && column != ZoneColumn::Problems;
}

/// Of these columns, users look for the most first.
bool IsMostFirst(ZoneColumn column)
{
    switch (column) {
    case ZoneColumn::Radius:
    case ZoneColumn::StaticMin:
    case ZoneColumn::StaticMax:
    case ZoneColumn::DynamicMin:
    case ZoneColumn::DynamicMax:
    case ZoneColumn::Problems:
        return true;
    default:
        return false;
    }
}

bool IsSame(const WorldCircle& a, const WorldCircle& b)
{
    const auto isSame = [](double x, double y) {
        return !(x < y) && !(y < x) && std::isnan(x) == std::isnan(y);
    };
    return isSame(a.x, b.x) && isSame(a.z, b.z) && isSame(a.radius, b.radius);
}

} // namespace

ZoneTableModel::ZoneTableModel(const TerritoryTypeList& types, QObject* parent)
    : QAbstractTableModel(parent)
    , m_types(types)
{
    m_problemsTimer.setInterval(0);
    connect(&m_problemsTimer, &QTimer::timeout, this, &ZoneTableModel::WorkOnProblems);
}

int ZoneTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

int ZoneTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(ZoneColumns.size());
}

QVariant ZoneTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    const ZoneColumn column = ColumnAt(index.column());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return CellText(RowAt(index.row()), column);
    case Qt::ToolTipRole:
        // It is often longer than its column.
        return column == ZoneColumn::Problems ? RowAt(index.row()).problems : QVariant();
    case Qt::TextAlignmentRole:
        return int(Qt::AlignVCenter | (IsNumber(column) ? Qt::AlignRight : Qt::AlignLeft));
    default:
        return {};
    }
}

QVariant ZoneTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    if (role == Qt::DisplayRole) {
        return Title(ColumnAt(section));
    }
    if (role == Qt::InitialSortOrderRole) {
        return int(IsMostFirst(ColumnAt(section)) ? Qt::DescendingOrder : Qt::AscendingOrder);
    }
    return {};
}

Qt::ItemFlags ZoneTableModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (index.isValid() && IsEditable(ColumnAt(index.column()))) {
        flags |= Qt::ItemIsEditable;
    }
    return flags;
}

bool ZoneTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable) || !m_cellEditor) {
        return false;
    }
    Zone* zone = ZoneAt(index.row());
    return zone && m_cellEditor(*zone, ColumnAt(index.column()), value.toString());
}

int ZoneTableModel::RowOf(const Zone& zone) const
{
    const int index = m_indexByZoneId.value(zone.Id(), NoRow);
    return index == NoRow ? NoRow : m_places[static_cast<std::size_t>(index)];
}

std::vector<ZoneTableModel::Block> ZoneTableModel::BlocksOf(const TerritoryTypeList& types)
{
    std::vector<Block> blocks;
    int first = 0;
    const QVector<TerritoryType*> all = types.Types();
    for (const TerritoryType* type : all) {
        const QString name = type->text();
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            const int count = territory->Zones().size();
            blocks.push_back({territory->Id(), type->Id(), name, territory->text(), first, count});
            first += count;
        }
    }
    return blocks;
}

void ZoneTableModel::TakeZones()
{
    const WorldScale scale(ProjectSettings::Instance());
    m_blocks = BlocksOf(m_types);
    // What is wrong with a zone is known until something else is found.
    QHash<int, QString> problems;
    for (auto it = m_indexByZoneId.cbegin(); it != m_indexByZoneId.cend(); ++it) {
        const QString& text = m_rows[static_cast<std::size_t>(it.value())].problems;
        if (!text.isEmpty()) {
            problems.insert(it.key(), text);
        }
    }
    m_rows.clear();
    m_zones.clear();
    m_typeIds.clear();
    m_indexByZoneId.clear();
    auto block = m_blocks.cbegin();
    const QVector<TerritoryType*> types = m_types.Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            int number = 0;
            for (Zone* zone : territory->Zones()) {
                m_indexByZoneId.insert(zone->Id(), static_cast<int>(m_rows.size()));
                const ZoneRecord record = zone->Record();
                m_rows.push_back({block->type, block->territory, ++number, record.values,
                                  InWorld(record, scale), problems.value(zone->Id())});
                m_zones.emplace_back(zone);
                m_typeIds.push_back(type->Id());
            }
            ++block;
        }
    }
}

void ZoneTableModel::Reload()
{
    std::vector<Tracked<Zone>> shown;
    for (const int index : m_shown) {
        const Tracked<Zone>& zone = m_zones[static_cast<std::size_t>(index)];
        if (zone && zone->isSelected()) {
            shown.push_back(zone);
        }
    }
    beginResetModel();
    TakeZones();
    MakeFilter();
    // Selected rows that were shown stay.
    m_places.assign(m_rows.size(), NoRow);
    for (const Tracked<Zone>& zone : shown) {
        const int index = m_indexByZoneId.value(zone->Id(), NoRow);
        if (index != NoRow) {
            m_places[static_cast<std::size_t>(index)] = 0;
        }
    }
    Match();
    Show(true);
    endResetModel();
    LookForProblems();
}

void ZoneTableModel::Clear()
{
    beginResetModel();
    m_blocks.clear();
    m_rows.clear();
    m_zones.clear();
    m_typeIds.clear();
    m_matches.clear();
    m_places.clear();
    m_indexByZoneId.clear();
    m_shown.clear();
    m_onlyId = NoRow;
    endResetModel();
    m_problems.Restart();
    m_problemsTimer.stop();
}

bool ZoneTableModel::HasZonesOf(const Block& block, const Territory& territory) const
{
    if (block.count != territory.Zones().size()) {
        return false;
    }
    auto zone = m_zones.cbegin() + block.first;
    return std::all_of(territory.Zones().cbegin(), territory.Zones().cend(),
                       [&zone](const Zone* held) { return (zone++)->Get() == held; });
}

void ZoneTableModel::FollowZones(const std::vector<const Territory*>& territories)
{
    std::vector<int> changed;
    for (const Territory* territory : territories) {
        const auto block =
            std::find_if(m_blocks.cbegin(), m_blocks.cend(), [territory](const Block& candidate) {
                return candidate.territoryId == territory->Id();
            });
        if (block == m_blocks.cend() || !HasZonesOf(*block, *territory)) {
            Reload();
            return;
        }
        TakeValues(*block, *territory, changed);
    }
    if (!changed.empty()) {
        TakeChanges(changed, 0);
        LookForProblems();
    }
}

/// Appends the rows that changed.
void ZoneTableModel::TakeValues(const Block& block, const Territory& territory,
                                std::vector<int>& changed)
{
    const WorldScale scale(ProjectSettings::Instance());
    int index = block.first;
    for (const Zone* zone : territory.Zones()) {
        ZoneRow& row = m_rows[static_cast<std::size_t>(index)];
        const ZoneRecord record = zone->Record();
        const WorldCircle circle = InWorld(record, scale);
        if (!IsSame(circle, row.circle) || record.values != row.values) {
            row.circle = circle;
            row.values = record.values;
            changed.push_back(index);
        }
        ++index;
    }
}

void ZoneTableModel::FollowNames()
{
    const std::vector<Block> blocks = BlocksOf(m_types);
    const auto isSame = [](const Block& a, const Block& b) {
        return a.territoryId == b.territoryId && a.count == b.count && a.type == b.type &&
               a.territory == b.territory;
    };
    if (!std::equal(blocks.begin(), blocks.end(), m_blocks.begin(), m_blocks.end(), isSame)) {
        Reload();
    }
}

/// Values of these rows changed, from this column on. An editor that is open in another column
/// keeps what is typed.
void ZoneTableModel::TakeChanges(const std::vector<int>& changed, int firstColumn)
{
    if (m_filter.AsksForOverlap()) {
        // A zone that moves may also touch one that stays.
        Match();
    } else {
        for (const int each : changed) {
            const auto place = static_cast<std::size_t>(each);
            m_matches[place] = m_filter.Matches(m_rows[place]);
        }
    }
    bool isShownOtherwise = false;
    int first = rowCount();
    int last = NoRow;
    for (std::size_t i = 0; i < m_rows.size() && !isShownOtherwise; ++i) {
        const bool isShown = m_places[i] != NoRow;
        isShownOtherwise = isShown ? !IsWanted(i) && !IsKept(i) : IsWanted(i);
    }
    if (isShownOtherwise) {
        beginResetModel();
        Show(true);
        endResetModel();
        return;
    }
    for (const int each : changed) {
        const int row = m_places[static_cast<std::size_t>(each)];
        if (row != NoRow) {
            first = std::min(first, row);
            last = std::max(last, row);
        }
    }
    if (last != NoRow) {
        emit dataChanged(index(first, firstColumn), index(last, columnCount() - 1));
    }
}

void ZoneTableModel::Match()
{
    m_matches =
        m_filter.IsEmpty() ? std::vector<bool>(m_rows.size(), true) : m_filter.Matching(m_rows);
}

bool ZoneTableModel::IsWanted(std::size_t index) const
{
    if (!m_matches[index] || !m_isOnly) {
        return m_matches[index];
    }
    const Zone* zone = m_zones[index];
    return zone && zone->Holder() && zone->Holder()->Id() == m_onlyId;
}

/// Whether its row stays although the filter no longer leaves it.
bool ZoneTableModel::IsKept(std::size_t index) const
{
    const Zone* zone = m_zones[index];
    return m_places[index] != NoRow && zone && zone->isSelected();
}

/// Call it between the begin and the end of a reset. keepsSelected: selected rows that were shown
/// stay.
void ZoneTableModel::Show(bool keepsSelected)
{
    m_shown.clear();
    for (std::size_t index = 0; index < m_rows.size(); ++index) {
        if (IsWanted(index) || (keepsSelected && IsKept(index))) {
            m_shown.push_back(static_cast<int>(index));
        }
    }
    SortShown(m_shown);
    m_places.assign(m_rows.size(), NoRow);
    for (std::size_t row = 0; row < m_shown.size(); ++row) {
        m_places[static_cast<std::size_t>(m_shown[row])] = static_cast<int>(row);
    }
}

/// Which texts are unfinished depends on the rows, and what is outside on the world.
void ZoneTableModel::MakeFilter()
{
    const ZoneFilter filter(m_filterText, WorldScale(ProjectSettings::Instance()));
    m_filter = filter.WhileTyping(m_rows);
}

void ZoneTableModel::SetFilter(const QString& text)
{
    beginResetModel();
    m_filterText = text;
    MakeFilter();
    Match();
    Show(false);
    endResetModel();
}

void ZoneTableModel::SetOnly(std::optional<const Territory*> only)
{
    const bool isOnly = only.has_value();
    const int id = only && *only ? (*only)->Id() : NoRow;
    if (isOnly == m_isOnly && id == m_onlyId) {
        return;
    }
    beginResetModel();
    m_isOnly = isOnly;
    m_onlyId = id;
    Show(false);
    endResetModel();
}

void ZoneTableModel::sort(int column, Qt::SortOrder order)
{
    beginResetModel();
    m_sortColumn = column < columnCount() ? column : NoRow;
    m_sortOrder = order;
    std::sort(m_shown.begin(), m_shown.end());
    SortShown(m_shown);
    for (std::size_t row = 0; row < m_shown.size(); ++row) {
        m_places[static_cast<std::size_t>(m_shown[row])] = static_cast<int>(row);
    }
    endResetModel();
}

/// For each shown row a number that sorts it. Texts are sorted once each, because thousands of rows
/// have few of them.
std::vector<double> ZoneTableModel::SortKeys(const std::vector<int>& shown) const
{
    const ZoneColumn column = ColumnAt(m_sortColumn);
    std::vector<double> keys(m_rows.size(), 0);
    if (IsNumber(column)) {
        for (const int index : shown) {
            const auto place = static_cast<std::size_t>(index);
            const double number = NumberAt(m_rows[place], column);
            keys[place] = std::isnan(number) ? -std::numeric_limits<double>::infinity() : number;
        }
        return keys;
    }
    QHash<QString, int> ranks;
    for (const int index : shown) {
        ranks.insert(CellText(m_rows[static_cast<std::size_t>(index)], column), 0);
    }
    QStringList texts = ranks.keys();
    std::sort(texts.begin(), texts.end(), [](const QString& a, const QString& b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    for (int rank = 0; rank < texts.size(); ++rank) {
        ranks[texts.at(rank)] = rank;
    }
    for (const int index : shown) {
        const auto place = static_cast<std::size_t>(index);
        keys[place] = ranks.value(CellText(m_rows[place], column));
    }
    return keys;
}

void ZoneTableModel::SortShown(std::vector<int>& shown) const
{
    if (m_sortColumn < 0) {
        return;
    }
    const std::vector<double> keys = SortKeys(shown);
    const bool isAscending = m_sortOrder == Qt::AscendingOrder;
    std::stable_sort(shown.begin(), shown.end(), [&keys, isAscending](int a, int b) {
        const double first = keys[static_cast<std::size_t>(a)];
        const double second = keys[static_cast<std::size_t>(b)];
        return isAscending ? first < second : second < first;
    });
}

void ZoneTableModel::PauseProblems(bool isPaused)
{
    m_isPaused = isPaused;
    if (isPaused) {
        m_problemsTimer.stop();
    } else if (!m_problems.IsOver(m_rows)) {
        m_problemsTimer.start();
    }
}

void ZoneTableModel::LookForProblems()
{
    m_problems.Restart();
    PauseProblems(m_isPaused);
    if (m_rows.size() <= FewRows) {
        WorkOnProblems();
    }
}

void ZoneTableModel::WorkOnProblems()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const QSize world(settings.WorldWidth(), settings.WorldHeight());
    const std::vector<int> changed = m_problems.Work(m_rows, m_typeIds, world, SliceMilliseconds);
    if (m_problems.IsOver(m_rows)) {
        m_problemsTimer.stop();
    }
    if (!changed.empty()) {
        static_assert(ZoneColumns.back() == ZoneColumn::Problems);
        TakeChanges(changed, columnCount() - 1);
    }
}
