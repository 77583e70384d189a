#include "ui/NumbersModel.h"

#include "ui/NameList.h"

#include <algorithm>
#include <cmath>

namespace {

/// Of a name in a cell; the copied and saved text has all of it.
constexpr int LongestName = 200;

bool IsSame(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool IsSame(const NumbersModel::Row& a, const NumbersModel::Row& b)
{
    return a.names == b.names && a.numbers.size() == b.numbers.size() &&
           std::equal(a.numbers.begin(), a.numbers.end(), b.numbers.begin(),
                      [](double x, double y) { return IsSame(x, y); });
}

} // namespace

NumbersModel::NumbersModel(const QVector<Column>& columns, QObject* parent)
    : QAbstractTableModel(parent)
    , m_columns(columns)
{
}

void NumbersModel::SetRows(const QVector<Row>& rows)
{
    if (rows.size() != m_rows.size()) {
        beginResetModel();
        m_rows = rows;
        endResetModel();
        return;
    }
    for (int i = 0; i < rows.size(); ++i) {
        if (!IsSame(rows.at(i), m_rows.at(i))) {
            m_rows[i] = rows.at(i);
            emit dataChanged(index(i, 0), index(i, m_columns.size() - 1));
        }
    }
}

bool NumbersModel::IsCounted() const
{
    return std::none_of(m_rows.begin(), m_rows.end(),
                        [](const Row& row) { return row.numbers.isEmpty(); });
}

int NumbersModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int NumbersModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns.size();
}

QVariant NumbersModel::NumberAt(const QModelIndex& index) const
{
    const Row& row = m_rows.at(index.row());
    const int number = index.column() - row.names.size();
    return number < row.numbers.size() && !std::isnan(row.numbers.at(number))
               ? QVariant(row.numbers.at(number))
               : QVariant();
}

QString NumbersModel::TextAt(const QModelIndex& index) const
{
    const Row& row = m_rows.at(index.row());
    if (!IsNumber(index.column())) {
        return row.names.at(index.column());
    }
    if (row.numbers.isEmpty()) {
        return tr("…");
    }
    const QVariant number = NumberAt(index);
    return number.isValid()
               ? QString::number(number.toDouble(), 'f', m_columns.at(index.column()).digits)
               : QString();
}

QVariant NumbersModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    const bool isNumber = IsNumber(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return isNumber ? TextAt(index) : ShortText(TextAt(index), LongestName);
    case Qt::EditRole:
        // What is copied has numbers only.
        return isNumber && !NumberAt(index).isValid() ? QString() : TextAt(index);
    case SortRole:
        return isNumber ? NumberAt(index) : TextAt(index);
    case Qt::TextAlignmentRole:
        return int(Qt::AlignVCenter | (isNumber ? Qt::AlignRight : Qt::AlignLeft));
    default:
        return {};
    }
}

QVariant NumbersModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns.size()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return m_columns.at(section).title;
    case Qt::ToolTipRole:
        return m_columns.at(section).toolTip;
    default:
        return {};
    }
}
