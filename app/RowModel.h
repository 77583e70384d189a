#pragma once

#include <QStandardItemModel>

#include <functional>

/// The model of a list of the project. What a view writes into a row (a new name, a check mark) is
/// handed to whoever edits the project, so that it can be undone; code that changes an item itself
/// is not asked.
class RowModel : public QStandardItemModel
{
public:
    /// Returns whether the row took the value. role: Qt::EditRole or Qt::CheckStateRole.
    using EditHandler = std::function<bool(QStandardItem& item, const QVariant& value, int role)>;

    using QStandardItemModel::QStandardItemModel;

    /// Empty: views write into the rows directly.
    void SetEditHandler(EditHandler handler);

    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

private:
    EditHandler m_handler;
};
