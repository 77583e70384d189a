#pragma once

#include "document/Document.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "territories/ZoneTable.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTest>
#include <QTreeView>

/// A window with 24 zones: 20 of "Deer" / "North", two of "Deer" / "South", which is hidden, and
/// two of "Wolf" / "Pack", of which the second is the largest of all. No row of the tree is
/// current.
class ZonesFixture : public WindowFixture
{
public:
    static constexpr int North = 20;
    static constexpr int All = 24;

    ZonesFixture()
    {
        const QString path = WriteProject();
        QByteArray text = ReadBytes(path);
        text.replace("world size=\"640\"", "world size=\"15360\"");
        const int list = text.indexOf("<territory-type-list>");
        text = text.left(list) + Territories() + "</qm-config>";
        WriteBytes(path, text);
        Load(path);
        Activate();
    }

    static QByteArray ZoneText(const char* name, double x, double z, int radius)
    {
        return QStringLiteral("<zone name=\"%1\" smin=\"0\" smax=\"0\" dmin=\"0\" dmax=\"0\" "
                              "x=\"%2\" z=\"%3\" r=\"%4\" d=\"5\"/>")
            .arg(QLatin1String(name))
            .arg(x)
            .arg(z)
            .arg(radius)
            .toUtf8();
    }
    static QByteArray Territories()
    {
        QByteArray text = "<territory-type-list><territory-type name=\"Deer\">"
                          "<territory name=\"North\" visible=\"1\" color=\"4278255360\">";
        for (int i = 0; i < North; ++i) {
            text += ZoneText(i % 2 == 0 ? "Rest" : "Graze", 600 + 700 * i, 9000, 100 + i);
        }
        text += "</territory><territory name=\"South\" visible=\"0\" color=\"4278255360\">" +
                ZoneText("Rest", 3000, 2000, 80) + ZoneText("Water", 9000, 2000, 80) +
                "</territory></territory-type><territory-type name=\"Wolf\">"
                "<territory name=\"Pack\" visible=\"1\" color=\"4278190335\">" +
                ZoneText("Ambush", 4000.5, 12000, 300) + ZoneText("Rest", 20000, 12000, 900) +
                "</territory></territory-type></territory-type-list>";
        return text;
    }

    void Activate() const { QApplication::setActiveWindow(window.get()); }
    void Open() const
    {
        QTest::keyClick(window.get(), Qt::Key_T, Qt::ControlModifier);
        QTRY_VERIFY(Table().isVisible());
    }
    QTableView& Table() const { return *Child<QTableView>("viewZones"); }
    QLineEdit& FilterLine() const { return *Child<QLineEdit>("txtZonesFilter"); }
    QString Counts() const { return Child<QLabel>("lblZones")->text(); }
    Document& Project() const { return window->GetDocument(); }
    Territory* TerritoryAt(int type, int territory) const
    {
        return Project().Types().Types().at(type)->Territories().at(territory);
    }
    Zone* ZoneAt(int type, int territory, int zone) const
    {
        return TerritoryAt(type, territory)->Zones().values().at(zone);
    }
    void MakeCurrent(Territory* territory) const
    {
        Child<QTreeView>("treeTerTypes")->setCurrentIndex(territory->index());
    }

    static int Column(ZoneColumn column) { return static_cast<int>(column); }
    QModelIndex Cell(int row, ZoneColumn column) const
    {
        return Table().model()->index(row, Column(column));
    }
    QString Text(int row, ZoneColumn column) const { return Cell(row, column).data().toString(); }
    /// All cells but what is wrong with the zone.
    QStringList Texts(int row) const
    {
        QStringList texts;
        for (const ZoneColumn column : ZoneColumns) {
            texts.append(column == ZoneColumn::Problems ? QString() : Text(row, column));
        }
        return texts;
    }
    void Click(int row, ZoneColumn column, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        Table().scrollTo(Cell(row, column));
        QTest::mouseClick(Table().viewport(), Qt::LeftButton, modifiers,
                          Table().visualRect(Cell(row, column)).center());
    }
    void DoubleClick(int row, ZoneColumn column) const
    {
        Click(row, column);
        QTest::mouseDClick(Table().viewport(), Qt::LeftButton, Qt::NoModifier,
                           Table().visualRect(Cell(row, column)).center());
    }
    void ClickHeader(ZoneColumn column) const
    {
        QHeaderView& header = *Table().horizontalHeader();
        Table().scrollTo(Cell(0, column));
        const int x = header.sectionViewportPosition(Column(column)) + 10;
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, {x, header.height() / 2});
    }
    /// F2, the text and Enter.
    void Type(int row, ZoneColumn column, const QString& text) const
    {
        Click(row, column);
        Table().setFocus();
        QTest::keyClick(&Table(), Qt::Key_F2);
        // Editors of other cells may wait for their deletion.
        const QList<QLineEdit*> editors = Table().viewport()->findChildren<QLineEdit*>();
        QLineEdit* editor = editors.isEmpty() ? nullptr : editors.last();
        QVERIFY(editor && editor->isVisible());
        editor->selectAll();
        QTest::keyClicks(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::processEvents();
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        Table().setFocus();
        QTest::keyClick(&Table(), key, modifiers);
    }
};
