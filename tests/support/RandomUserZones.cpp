#include "tests/support/RandomUser.h"

#include "document/Document.h"
#include "territories/TerritoryRecords.h"
#include "territories/Zone.h"
#include "territories/ZoneTable.h"
#include "territories/ZoneTableModel.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QHeaderView>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

// What is done in the table of zones.

QAbstractItemView* RandomUser::ZoneTable()
{
    if (!Action("actionZonesTable")->isChecked()) {
        Trigger("actionZonesTable");
        QCoreApplication::processEvents();
    }
    return qobject_cast<QAbstractItemView*>(OneOf({"viewZones"}));
}

void RandomUser::UseZoneTable()
{
    auto* table = qobject_cast<QTableView*>(ZoneTable());
    const int rows = table ? table->model()->rowCount() : 0;
    if (rows == 0) {
        return;
    }
    const QModelIndex index =
        table->model()->index(m_random.Below(rows), m_random.Below(table->model()->columnCount()));
    table->scrollTo(index);
    const QPoint place = table->visualRect(index).center();
    const Qt::KeyboardModifiers modifiers[] = {Qt::NoModifier, Qt::ControlModifier,
                                               Qt::ShiftModifier};
    switch (m_random.Below(6)) {
    case 0:
        QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, place);
        break;
    case 1:
        table->setFocus();
        QTest::keyClick(table, Qt::Key_A, Qt::ControlModifier);
        break;
    case 2:
        if (m_random.Below(4) == 0) {
            table->setFocus();
            QTest::keyClick(table, Qt::Key_Delete);
        }
        break;
    case 3:
        QTest::mouseClick(table->horizontalHeader()->viewport(), Qt::LeftButton, {},
                          {table->columnViewportPosition(index.column()) + 10, 8});
        break;
    default:
        QTest::mouseClick(table->viewport(), Qt::LeftButton, modifiers[m_random.Below(3)], place);
        break;
    }
}

void RandomUser::EditZoneCell()
{
    QAbstractItemView* table = ZoneTable();
    const int rows = table ? table->model()->rowCount() : 0;
    if (rows == 0) {
        return;
    }
    const QModelIndex index = table->model()->index(m_random.Below(rows), m_random.Between(3, 11));
    table->setFocus();
    table->setCurrentIndex(index);
    QTest::keyClick(table, Qt::Key_F2);
    // Editors of other cells may wait for their deletion.
    const QList<QLineEdit*> editors = table->viewport()->findChildren<QLineEdit*>();
    QLineEdit* editor = editors.isEmpty() ? nullptr : editors.last();
    if (!editor || !editor->isVisible()) {
        return;
    }
    static const char* const texts[] = {"", "Water", "x\"<", "1e300", "-5", "nan", "60", "255"};
    const QString text = m_random.Below(2) == 0
                             ? QString::number(m_random.Below(2000))
                             : QLatin1String(texts[m_random.Below(int(std::size(texts)))]);
    editor->selectAll();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, m_random.Below(5) == 0 ? Qt::Key_Escape : Qt::Key_Return);
}

void RandomUser::PasteZoneRows()
{
    QAbstractItemView* table = ZoneTable();
    if (!table) {
        return;
    }
    table->setFocus();
    if (m_random.Below(2) == 0) {
        QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    } else {
        const WorldScale scale(ProjectSettings::Instance());
        QString text = QStringLiteral("type\tterritory\tnumber\tx\tz\tstatic-max\n");
        const std::vector<ZoneRow> rows = ZoneRows(Types().Records(), scale);
        for (int i = m_random.Below(4); i > 0 && !rows.empty(); --i) {
            const ZoneRow& row = rows[std::size_t(m_random.Below(int(rows.size())))];
            const QString number = m_random.Below(3) == 0 ? QString() : QString::number(row.number);
            text += QStringLiteral("%1\t%2\t%3\t%4\t%5\t%6\n")
                        .arg(row.type, row.territory, number)
                        .arg(m_random.Below(700))
                        .arg(m_random.Below(700))
                        .arg(m_random.Between(200, m_random.Below(4) == 0 ? 2000 : 900));
        }
        QApplication::clipboard()->setText(text);
    }
    QTest::keyClick(table, Qt::Key_V, Qt::ControlModifier);
}

void RandomUser::FilterZones()
{
    if (!ZoneTable()) {
        return;
    }
    if (QWidget* box = OneOf({"chkZonesCurrent"}); box && m_random.Below(4) == 0) {
        static_cast<QCheckBox*>(box)->click();
        return;
    }
    static const char* const filters[] = {
        "", "", "north", "radius>100", "outside", "overlap", "type:d", "zzz", "static-max>=3 rest"};
    auto* line = qobject_cast<QLineEdit*>(OneOf({"txtZonesFilter"}));
    if (line) {
        line->setFocus();
        line->selectAll();
        const QLatin1String text(filters[m_random.Below(int(std::size(filters)))]);
        if (text.isEmpty()) {
            line->clear();
        } else {
            QTest::keyClicks(line, text);
        }
        QTest::keyClick(line, m_random.Below(2) == 0 ? Qt::Key_Return : Qt::Key_Escape);
    }
}

QString RandomUser::ZoneTableContradiction() const
{
    const auto* table = Child<QTableView>("viewZones");
    const auto* model = qobject_cast<const ZoneTableModel*>(table->model());
    // While zones are dragged the table waits for the release.
    if (!table->isVisible() || window->GetDocument().IsBusy()) {
        return {};
    }
    const WorldScale scale(ProjectSettings::Instance());
    const std::vector<ZoneRow> rows = ZoneRows(Types().Records(), scale);
    const std::vector<ZoneRow>& listed = model->AllRows();
    if (rows.size() != listed.size()) {
        return QStringLiteral("The table lists %1 zones of %2.")
            .arg(listed.size())
            .arg(rows.size());
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (const ZoneColumn column : ZoneColumns) {
            const QString text = CellText(listed[i], column);
            if (column != ZoneColumn::Problems && text != CellText(rows[i], column)) {
                return QStringLiteral("The table says %1 for %2 of zone %3, the project %4.")
                    .arg(text, Key(column))
                    .arg(i)
                    .arg(CellText(rows[i], column));
            }
        }
    }
    for (int row = 0; row < model->rowCount(); ++row) {
        const Zone* zone = model->ZoneAt(row);
        const bool isSelected = table->selectionModel()->isRowSelected(row, {});
        if (!zone || zone->isSelected() != isSelected) {
            return QStringLiteral("Table and map differ in what is selected.");
        }
    }
    return {};
}
