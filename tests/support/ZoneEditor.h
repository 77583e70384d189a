#pragma once

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/edits/TerritoryEdits.h"
#include "document/edits/ZoneEdits.h"
#include "territories/TerritoryRecords.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/WindowFixture.h"

#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

/// The small project with more zones: "Deer" with the territories "North", of four zones, "South",
/// of one, and "Lake", of none, and "Wolf" with "South", of none. A pixel is 10 metres.
class ZoneEditor : public WindowFixture
{
public:
    ZoneEditor()
    {
        Load(WriteProject());
        QApplication::setActiveWindow(window.get());
        deer = Doc().Types().Types().constFirst();
        north = deer->Territories().constFirst();
        south = Add(*deer, "South");
        lake = Add(*deer, "Lake");
        Doc().Do(
            Edits::AddType(Doc().Types(), std::make_unique<TerritoryType>(QStringLiteral("Wolf"))));
        wolfSouth = Add(*Doc().Types().Types().constLast(), "South");
        const ZoneValues values = Doc().ZoneTemplate();
        Doc().Do(Edits::AddZones(QStringLiteral("Add"), {{north, values, {20, 30}},
                                                         {north, values, {22.5, 34}},
                                                         {north, values, {40, 12}},
                                                         {south, values, {50, 50}}}));
        MakeCurrent(north);
        Doc().BeginHistory(true);
        before = SavedBytes();
    }

    Document& Doc() const { return window->GetDocument(); }
    Territory* Add(TerritoryType& type, const char* name) const
    {
        Doc().Do(Edits::AddTerritory(type, std::make_unique<Territory>(QLatin1String(name))));
        return type.Territories().constLast();
    }
    void MakeCurrent(const QStandardItem* row) const
    {
        Child<QTreeView>("treeTerTypes")->setCurrentIndex(row->index());
    }
    static QVector<Zone*> ZonesOf(const Territory* territory)
    {
        return QVector<Zone*>(territory->Zones().cbegin(), territory->Zones().cend());
    }
    static WorldCircle Metres(const Zone* zone)
    {
        return InWorld(zone->Record(), WorldScale(ProjectSettings::Instance()));
    }
    QString UndoText() const { return Doc().History().undoText(); }
    /// What was done is one step, and is undone to the same bytes.
    void VerifyOneStep(const QString& text) const
    {
        QCOMPARE(UndoText(), text);
        QCOMPARE(Doc().History().index(), 1);
        const SavedFiles after = SavedBytes();
        QVERIFY(after != before);
        Trigger("actionUndo");
        QCOMPARE(SavedBytes(), before);
        Trigger("actionRedo");
        QCOMPARE(SavedBytes(), after);
    }
    /// Types into the field of the dialog that has the focus.
    static void Type(QWidget& dialog, const char* name, const QString& text)
    {
        auto* field = dialog.findChild<QWidget*>(QLatin1String(name));
        QVERIFY2(field, name);
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field, text);
    }
    static bool IsOkEnabled(const QWidget& dialog)
    {
        return dialog.findChild<QPushButton*>(QStringLiteral("btnOk"))->isEnabled();
    }
    static QString Label(const QWidget& dialog, const char* name)
    {
        return dialog.findChild<QLabel*>(QLatin1String(name))->text();
    }
    static QListWidgetItem* Row(const QWidget& dialog, const char* list, const char* name)
    {
        const QList<QListWidgetItem*> items =
            dialog.findChild<QListWidget*>(QLatin1String(list))
                ->findItems(QLatin1String(name), Qt::MatchExactly);
        return items.value(0);
    }

    TerritoryType* deer = nullptr;
    Territory* north = nullptr;
    Territory* south = nullptr;
    Territory* lake = nullptr;
    Territory* wolfSouth = nullptr;
    SavedFiles before;
};
