#pragma once

#include <QModelIndex>
#include <QObject>

class QLineEdit;
class QTreeView;

/// Hides the rows of a tree whose names do not hold the text of a field, in upper or lower case. A
/// row is also shown when one above or below it holds the text. Esc in the field clears it. The
/// model stays as it is, and a row that is hidden may still be the current one.
class RowFilter : public QObject
{
public:
    /// The tree, which has its model already, owns the filter.
    RowFilter(QTreeView& tree, QLineEdit& field);

    void Focus();
    /// Scrolls to the row. A filter that hides it ends.
    void Reveal(const QModelIndex& row);

private:
    void Apply();
    bool ApplyBelow(const QModelIndex& parent, const QString& text, bool isParentFound);
    void Leave();

    QTreeView& m_tree;
    QLineEdit& m_field;
    bool m_isFiltering = false;
};
