#include "app/RowModel.h"

#include <utility>

void RowModel::SetEditHandler(EditHandler handler)
{
    m_handler = std::move(handler);
}

bool RowModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    QStandardItem* item = index.isValid() ? itemFromIndex(index) : nullptr;
    if (m_handler && item && (role == Qt::EditRole || role == Qt::CheckStateRole)) {
        return m_handler(*item, value, role);
    }
    return QStandardItemModel::setData(index, value, role);
}
