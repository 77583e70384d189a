#pragma once

#include "document/Problems.h"

#include <QAbstractTableModel>
#include <QIcon>

#include <vector>

class AcceptedFindings;

/// The findings of a project as a table, errors first: severity, sentence and thing.
class ProblemModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        SeverityColumn,
        SentenceColumn,
        ThingColumn,
        ColumnCount,
    };

    /// Why there is nothing to show, or where the thing is instead, as a sentence; empty for things
    /// that the editor can show.
    static QString WhyNotShown(const Problem& problem);

    explicit ProblemModel(QObject* parent = nullptr);

    /// withAccepted: also shows those that are accepted, in grey.
    void Show(const std::vector<Problems::Part>& parts, const AcceptedFindings& accepted,
              bool withAccepted);
    /// Null for a row that there is not. It holds until Show is called.
    const Problem* ProblemAt(int row) const;
    bool IsAccepted(int row) const;
    /// The row of the finding, or of one of the same rule about the same thing; -1 for none.
    int RowOf(const Problem& problem) const;
    /// The rows of those that are still there. The list may hold as many as the model.
    QVector<int> RowsOf(const ProblemList& problems) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    struct Row
    {
        const Problem* problem;
        bool isAccepted;
    };

    /// They hold what the rows point to.
    std::vector<Problems::Part> m_parts;
    std::vector<Row> m_rows;
    /// Qt decodes an icon again for each object that is made of its file.
    const QIcon m_errorIcon{QStringLiteral(":/icon-finding-error")};
    const QIcon m_warningIcon{QStringLiteral(":/icon-finding-warning")};
};
