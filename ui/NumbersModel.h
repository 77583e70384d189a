#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QStringList>
#include <QVector>

/// A table of names and numbers. Numbers are shown with plain digits and a dot, so that every
/// program reads what is copied or saved.
class NumbersModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// What rows are sorted by.
    static constexpr int SortRole = Qt::UserRole;
    static constexpr int TextDigits = -1;

    struct Column
    {
        QString title;
        QString toolTip;
        /// Decimals of a number; TextDigits for a column of names. Those come first.
        int digits = TextDigits;
    };
    struct Row
    {
        QStringList names;
        /// NaN is no number and shows nothing. Empty while they are not counted.
        QVector<double> numbers;
    };

    explicit NumbersModel(const QVector<Column>& columns, QObject* parent = nullptr);

    /// Rows of as many as before keep their places in views, and stay selected.
    void SetRows(const QVector<Row>& rows);
    /// Whether all numbers are known.
    bool IsCounted() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QVariant NumberAt(const QModelIndex& index) const;
    QString TextAt(const QModelIndex& index) const;
    bool IsNumber(int column) const { return m_columns.at(column).digits != TextDigits; }

    QVector<Column> m_columns;
    QVector<Row> m_rows;
};
