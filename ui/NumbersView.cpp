#include "ui/NumbersView.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>

#include <algorithm>
#include <iterator>

namespace {

/// Replaces tabs and line ends within a cell by spaces.
QString TabCell(const QString& text)
{
    QString cell = text;
    for (const char separator : {'\t', '\n', '\r'}) {
        cell.replace(QLatin1Char(separator), QLatin1Char(' '));
    }
    return cell;
}

QString CsvCell(const QString& text)
{
    const bool isPlain = std::none_of(
        text.begin(), text.end(), [](QChar c) { return QStringLiteral(",\"\n\r").contains(c); });
    return isPlain ? text
                   : QStringLiteral("\"%1\"").arg(
                         QString(text).replace(QLatin1Char('"'), QLatin1String("\"\"")));
}

QString Line(const QStringList& cells, QString (*cellText)(const QString&), char separator)
{
    QStringList texts;
    std::transform(cells.begin(), cells.end(), std::back_inserter(texts), cellText);
    return texts.join(QLatin1Char(separator)) + QLatin1Char('\n');
}

} // namespace

NumbersView::NumbersView(const QVector<NumbersModel::Column>& columns, QWidget* parent)
    : QTableView(parent)
    , m_model(columns)
{
    m_sorted.setSourceModel(&m_model);
    m_sorted.setSortRole(NumbersModel::SortRole);
    m_sorted.setSortCaseSensitivity(Qt::CaseInsensitive);
    setModel(&m_sorted);
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    setWordWrap(false);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(verticalHeader()->minimumSectionSize());
    // The order of the list until a title is clicked.
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    horizontalHeader()->setHighlightSections(false);
    setSortingEnabled(true);
}

void NumbersView::SetRows(const QVector<NumbersModel::Row>& rows)
{
    m_model.SetRows(rows);
    const bool isCounted = std::any_of(rows.begin(), rows.end(), [](const NumbersModel::Row& row) {
        return !row.numbers.isEmpty();
    });
    if (isCounted && !m_isFitted) {
        m_isFitted = true;
        resizeColumnsToContents();
    }
}

QStringList NumbersView::Cells(int row) const
{
    QStringList cells;
    for (int column = 0; column < m_sorted.columnCount(); ++column) {
        cells.append(m_sorted.index(row, column).data(Qt::EditRole).toString());
    }
    return cells;
}

QStringList NumbersView::Titles() const
{
    QStringList titles;
    for (int column = 0; column < m_sorted.columnCount(); ++column) {
        titles.append(m_sorted.headerData(column, Qt::Horizontal).toString());
    }
    return titles;
}

QByteArray NumbersView::Csv() const
{
    QString text = Line(Titles(), CsvCell, ',');
    for (int row = 0; row < m_sorted.rowCount(); ++row) {
        text += Line(Cells(row), CsvCell, ',');
    }
    return text.toUtf8();
}

void NumbersView::Copy() const
{
    QString text = Line(Titles(), TabCell, '\t');
    const bool isAll = !selectionModel()->hasSelection();
    for (int row = 0; row < m_sorted.rowCount(); ++row) {
        if (isAll || selectionModel()->isRowSelected(row, {})) {
            text += Line(Cells(row), TabCell, '\t');
        }
    }
    QApplication::clipboard()->setText(text);
}

void NumbersView::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        Copy();
        event->accept();
    } else {
        QTableView::keyPressEvent(event);
    }
}
