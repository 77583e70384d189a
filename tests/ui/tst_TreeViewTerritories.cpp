#include "ui/TreeViewTerritories.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QStandardItemModel>
#include <QTest>

#include <memory>

namespace {

/// Two types with two territories each, in a shown tree that accepts drops.
class Fixture
{
public:
    Fixture()
    {
        for (const char* name : {"Deer", "Wolf"}) {
            auto* type = new QStandardItem(QLatin1String(name));
            type->appendRow(new QStandardItem(QStringLiteral("North")));
            type->appendRow(new QStandardItem(QStringLiteral("South")));
            model.appendRow(type);
        }
        tree.setModel(&model);
        tree.setDragDropMode(QAbstractItemView::DragDrop);
        tree.expandAll();
        tree.resize(200, 300);
        tree.show();
    }

    /// "type" or "type/territory", by row.
    QModelIndex Index(const QString& path) const
    {
        QModelIndex index;
        const QStringList rows = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        for (const QString& row : rows) {
            index = model.index(row.toInt(), 0, index);
        }
        return index;
    }

    /// Drops the selected rows. Returns whether the drop was accepted.
    bool Drop(QPoint position)
    {
        const std::unique_ptr<QMimeData> data(model.mimeData({Index(QStringLiteral("0/0"))}));
        // A drop needs a drag enter event first.
        QDragEnterEvent enter(position, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(tree.viewport(), &enter);
        QDropEvent drop(position, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        drop.setDropAction(Qt::MoveAction);
        drop.accept();
        QApplication::sendEvent(tree.viewport(), &drop);
        return drop.isAccepted();
    }

    QStandardItemModel model;
    TreeViewTerritories tree;
};

} // namespace

class tst_TreeViewTerritories : public QObject
{
    Q_OBJECT

private slots:
    void NeitherDragsNorDropsByDefault();
    void DropsOnlyHighlight_data();
    void DropsOnlyHighlight();
};

void tst_TreeViewTerritories::NeitherDragsNorDropsByDefault()
{
    const TreeViewTerritories tree;

    QCOMPARE(tree.dragDropMode(), QAbstractItemView::NoDragDrop);
    QVERIFY(!tree.dragEnabled());
    QVERIFY(!tree.acceptDrops());
}

void tst_TreeViewTerritories::DropsOnlyHighlight_data()
{
    QTest::addColumn<QString>("dragged");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("selected");

    QTest::newRow("onto the row below") << "0/0"
                                        << "0/1"
                                        << "0/1";
    QTest::newRow("onto the row above") << "0/1"
                                        << "0/0"
                                        << "0/0";
    QTest::newRow("onto the other type") << "0/0"
                                         << "1"
                                         << "1";
    QTest::newRow("onto a row of another type") << "0/0"
                                                << "1/1"
                                                << "1/1";
    QTest::newRow("onto itself") << "0/1"
                                 << "0/1"
                                 << "0/1";
    QTest::newRow("onto the same row number of another type") << "0/1"
                                                              << "1/1"
                                                              << "0/1";
    QTest::newRow("onto the same row number of another level") << "0/0"
                                                               << "0"
                                                               << "0/0";
    QTest::newRow("onto no row") << "0/0"
                                 << ""
                                 << "0/0";
    QTest::newRow("nothing dragged") << ""
                                     << "0/1"
                                     << "";
}

void tst_TreeViewTerritories::DropsOnlyHighlight()
{
    QFETCH(QString, dragged);
    QFETCH(QString, target);
    QFETCH(QString, selected);
    Fixture fixture;
    const QAbstractItemModelTester tester(&fixture.model);
    fixture.tree.setCurrentIndex(fixture.Index(dragged));
    const QModelIndex current = fixture.tree.currentIndex();

    const QPoint position = target.isEmpty()
                                ? QPoint(20, fixture.tree.viewport()->height() - 2)
                                : fixture.tree.visualRect(fixture.Index(target)).center();
    QVERIFY(!fixture.Drop(position));

    const QModelIndexList rows = fixture.tree.selectionModel()->selectedRows();
    QCOMPARE(rows.value(0), fixture.Index(selected));
    QCOMPARE(rows.size(), selected.isEmpty() ? 0 : 1);
    QCOMPARE(fixture.tree.currentIndex(), current);
    for (const char* path : {"0", "1"}) {
        QCOMPARE(fixture.model.rowCount(fixture.Index(QLatin1String(path))), 2);
    }
    QCOMPARE(fixture.model.rowCount(), 2);
    QCOMPARE(fixture.Index("0/0").data().toString(), QStringLiteral("North"));
    QCOMPARE(fixture.Index("0/1").data().toString(), QStringLiteral("South"));
}

QTEST_MAIN(tst_TreeViewTerritories)
#include "tst_TreeViewTerritories.moc"
