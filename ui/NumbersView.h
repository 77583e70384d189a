#pragma once

#include "ui/NumbersModel.h"

#include <QSortFilterProxyModel>
#include <QTableView>

/// Shows a table of numbers. A click on a title sorts; Ctrl+C copies the selected rows, or all
/// rows when none is selected, as text with tabs.
class NumbersView : public QTableView
{
    Q_OBJECT

public:
    explicit NumbersView(const QVector<NumbersModel::Column>& columns, QWidget* parent = nullptr);

    void SetRows(const QVector<NumbersModel::Row>& rows);
    /// Whether all numbers are known.
    bool IsCounted() const { return m_model.IsCounted(); }
    /// All rows in the order in which they are shown, with the titles above, as a CSV file has
    /// them: commas, and quotes around what needs them.
    QByteArray Csv() const;
    /// The row as it was given to SetRows.
    int SourceRow(const QModelIndex& index) const { return m_sorted.mapToSource(index).row(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QStringList Cells(int row) const;
    QStringList Titles() const;
    void Copy() const;

    NumbersModel m_model;
    QSortFilterProxyModel m_sorted;
    bool m_isFitted = false;
};
