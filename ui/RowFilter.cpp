#include "ui/RowFilter.h"

#include <QLineEdit>
#include <QShortcut>
#include <QTreeView>

RowFilter::RowFilter(QTreeView& tree, QLineEdit& field)
    : QObject(&tree)
    , m_tree(tree)
    , m_field(field)
{
    connect(&field, &QLineEdit::textChanged, this, [this] {
        Apply();
        // Rows that come back push the current one away.
        const QModelIndex current = m_tree.currentIndex();
        if (current.isValid() && !m_tree.isRowHidden(current.row(), current.parent())) {
            m_tree.scrollTo(current);
        }
    });
    const auto* escape =
        new QShortcut(Qt::Key_Escape, &field, nullptr, nullptr, Qt::WidgetShortcut);
    connect(escape, &QShortcut::activated, this, &RowFilter::Leave);
    const QAbstractItemModel* model = tree.model();
    connect(model, &QAbstractItemModel::rowsInserted, this, &RowFilter::Apply);
    connect(model, &QAbstractItemModel::dataChanged, this, &RowFilter::Apply);
}

void RowFilter::Apply()
{
    const QString text = m_field.text();
    // Without a filter the tree is left alone.
    if (!text.isEmpty() || m_isFiltering) {
        m_isFiltering = !text.isEmpty();
        ApplyBelow({}, text, false);
    }
}

/// Returns whether a row below the parent holds the text.
bool RowFilter::ApplyBelow(const QModelIndex& parent, const QString& text, bool isParentFound)
{
    const QAbstractItemModel* model = m_tree.model();
    bool isAnyFound = false;
    for (int i = 0; i < model->rowCount(parent); ++i) {
        const QModelIndex row = model->index(i, 0, parent);
        const bool isFound = row.data().toString().contains(text, Qt::CaseInsensitive);
        const bool isFoundBelow = ApplyBelow(row, text, isParentFound || isFound);
        const bool isHidden = !isFound && !isFoundBelow && !isParentFound;
        if (isHidden != m_tree.isRowHidden(i, parent)) {
            m_tree.setRowHidden(i, parent, isHidden);
        }
        if (isFoundBelow && !text.isEmpty()) {
            m_tree.expand(row);
        }
        isAnyFound = isAnyFound || isFound || isFoundBelow;
    }
    return isAnyFound;
}

void RowFilter::Focus()
{
    m_field.setFocus(Qt::ShortcutFocusReason);
    m_field.selectAll();
}

void RowFilter::Leave()
{
    m_field.clear();
    m_tree.setFocus();
}

void RowFilter::Reveal(const QModelIndex& row)
{
    if (m_tree.isRowHidden(row.row(), row.parent())) {
        m_field.clear();
    }
    m_tree.scrollTo(row);
}
