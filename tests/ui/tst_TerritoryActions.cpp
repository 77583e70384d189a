#include "canvas/ZoneLabels.h"
#include "document/Document.h"
#include "document/edits/ZoneEdits.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockTerTypes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QSet>
#include <QTest>
#include <QTreeView>

#include <algorithm>

namespace {

/// The editor with the type Deer, whose territories North and South have one zone each.
class Editor : public WindowFixture
{
public:
    Editor()
    {
        Load(WriteProject());
        Trigger("actionViewTerritoryTypes");
        deer = Doc().Types().Types().first();
        north = deer->Territories().constFirst();
        south = deer->NewTerritory();
        south->setText(QStringLiteral("South"));
        south->setCheckState(Qt::Checked);
        south->SetVisible(true);
        auto* zone = new Zone(south, 100);
        zone->setPos(40, 40);
        south->AddZone(zone);
        Scene().addItem(zone);
        MakeCurrent(*north);
        QApplication::setActiveWindow(window.get());
        SetModified(false);
    }

    Document& Doc() const { return window->GetDocument(); }
    QTreeView& Tree() const { return *Child<QTreeView>("treeTerTypes"); }
    QLineEdit& Filter() const { return *Child<QLineEdit>("txtTerritoriesFilter"); }
    void MakeCurrent(const QStandardItem& row) const { Tree().setCurrentIndex(row.index()); }
    static bool IsSeen(const Territory& territory)
    {
        const QMap<int, Zone*>& zones = territory.Zones();
        return std::any_of(zones.begin(), zones.end(), [](const Zone* zone) {
            return zone->isVisible() && zone->opacity() > 0;
        });
    }
    /// "North South": those whose zones are seen.
    QString Seen() const
    {
        QStringList names;
        const QVector<Territory*> territories = deer->Territories();
        for (const Territory* territory : territories) {
            if (IsSeen(*territory)) {
                names.append(territory->text());
            }
        }
        return names.join(QLatin1Char(' '));
    }
    bool IsShown(const QStandardItem& row) const
    {
        const QModelIndex index = row.index();
        return !Tree().isRowHidden(index.row(), index.parent());
    }

    TerritoryType* deer;
    Territory* north;
    Territory* south;
};

} // namespace

class tst_TerritoryActions : public QObject
{
    Q_OBJECT

private slots:
    void NewTypesAreTicked();
    void NewTerritoriesAreSeen();
    void ButtonsMakeWhatTheyDid();
    void SoloShowsOneTerritory();
    void SoloFollowsTheCurrentTerritory();
    void SoloShowsSelectedZonesOfOthers();
    void SoloIsNoPartOfTheProject();
    void SoloEndsWithItsTerritory();
    void ZonesThatComeBackAreSeen();
    void AnotherProjectIsSeen();
    void LabelsAreRemembered();
    void FiltersTheTree();
    void NewRowsEndAFilterThatHidesThem();
};

void tst_TerritoryActions::NewTypesAreTicked()
{
    const Editor editor;
    QVERIFY(editor.Action("actionTypeNew")->isEnabled());
    editor.Trigger("actionTypeNew");
    const QVector<TerritoryType*> types = editor.Doc().Types().Types();
    QCOMPARE(types.size(), 2);
    QCOMPARE(types.last()->checkState(), Qt::Checked);
    QCOMPARE(editor.Tree().currentIndex(), types.last()->index());
    editor.Trigger("actionUndo");
    QCOMPARE(editor.Doc().Types().Types().size(), 1);
}

void tst_TerritoryActions::NewTerritoriesAreSeen()
{
    const Editor editor;
    QSet<QRgb> colors{editor.north->Color().rgb(), editor.south->Color().rgb()};
    for (int i = 0; i < 20; ++i) {
        editor.Trigger("actionTerritoryNew");
        const Territory* territory = editor.deer->Territories().constLast();
        QCOMPARE(editor.deer->rowCount(), 3 + i);
        QCOMPARE(editor.Doc().CurrentTerritory(), territory);
        QCOMPARE(territory->checkState(), Qt::Checked);
        QVERIFY(territory->IsVisible());
        QVERIFY(!colors.contains(territory->Color().rgb()));
        colors.insert(territory->Color().rgb());
    }
    editor.MakeCurrent(*editor.deer);
    QVERIFY(editor.Action("actionTerritoryNew")->isEnabled());
    editor.Tree().setCurrentIndex({});
    QVERIFY(!editor.Action("actionTerritoryNew")->isEnabled());
    for (int i = 0; i < 20; ++i) {
        editor.Trigger("actionUndo");
    }
    QCOMPARE(editor.deer->rowCount(), 2);
}

void tst_TerritoryActions::ButtonsMakeWhatTheyDid()
{
    const Editor editor;
    QTest::mouseClick(editor.Child<QAbstractButton>("btnAdd"), Qt::LeftButton, {}, {8, 8});
    QCOMPARE(editor.Doc().Types().Types().last()->checkState(), Qt::Unchecked);
    editor.MakeCurrent(*editor.deer);
    editor.Child<DockTerTypes>("DockTerTypes")->AddTerritory();
    const Territory* territory = editor.deer->Territories().constLast();
    QCOMPARE(territory->checkState(), Qt::Unchecked);
    QVERIFY(!territory->IsVisible());
    QCOMPARE(territory->Color(), QColor(Qt::black));
}

void tst_TerritoryActions::SoloShowsOneTerritory()
{
    const Editor editor;
    QAction* solo = editor.Action("actionTerritorySolo");
    QVERIFY(solo->isCheckable());
    QVERIFY(!solo->isChecked());
    solo->trigger();
    QVERIFY(solo->isChecked());
    QCOMPARE(editor.Seen(), QString("North"));
    const QList<QGraphicsItem*> items = editor.Scene().items(QPointF(40, 40));
    QVERIFY(!items.contains(editor.south->Zones().first()));
    solo->trigger();
    QVERIFY(!solo->isChecked());
    QCOMPARE(editor.Seen(), QString("North South"));
}

void tst_TerritoryActions::SoloFollowsTheCurrentTerritory()
{
    const Editor editor;
    editor.Trigger("actionTerritorySolo");
    editor.MakeCurrent(*editor.south);
    QCOMPARE(editor.Seen(), QString("South"));
    // A type has no zones of its own, so what was seen stays.
    editor.MakeCurrent(*editor.deer);
    QCOMPARE(editor.Seen(), QString("South"));
    QVERIFY(editor.Action("actionTerritorySolo")->isChecked());
    editor.Trigger("actionTerritorySolo");
    QCOMPARE(editor.Seen(), QString("North South"));
}

/// Keys and the box of selected zones change them.
void tst_TerritoryActions::SoloShowsSelectedZonesOfOthers()
{
    const Editor editor;
    Zone* zone = editor.south->Zones().first();
    editor.Trigger("actionTerritorySolo");
    editor.Scene().SelectZones({zone});
    QCOMPARE(editor.Seen(), QString("North South"));
    editor.Scene().SelectZones({editor.north->Zones().first()});
    QCOMPARE(editor.Seen(), QString("North"));
    editor.Trigger("actionTerritorySolo");
    editor.Scene().SelectZones({zone});
    editor.Trigger("actionTerritorySolo");
    QCOMPARE(editor.Seen(), QString("North South"));
    editor.Scene().clearSelection();
    QCOMPARE(editor.Seen(), QString("North"));
}

void tst_TerritoryActions::SoloIsNoPartOfTheProject()
{
    const Editor editor;
    const WindowFixture::SavedFiles saved = editor.SavedBytes();
    editor.Trigger("actionTerritorySolo");
    QVERIFY(!WindowFixture::IsModified());
    QVERIFY(!editor.Doc().CanUndo());
    QCOMPARE(editor.SavedBytes(), saved);
    QCOMPARE(editor.south->checkState(), Qt::Checked);
    QVERIFY(editor.south->IsVisible());
}

void tst_TerritoryActions::SoloEndsWithItsTerritory()
{
    const Editor editor;
    editor.Trigger("actionTerritorySolo");
    editor.Child<DockTerTypes>("DockTerTypes")->Remove();
    QCOMPARE(editor.deer->rowCount(), 1);
    QVERIFY(!editor.Action("actionTerritorySolo")->isChecked());
    QVERIFY(Editor::IsSeen(*editor.south));
}

/// Also those that left while another territory was seen alone.
void tst_TerritoryActions::ZonesThatComeBackAreSeen()
{
    const Editor editor;
    editor.Trigger("actionTerritorySolo");
    editor.Doc().Do(Edits::MoveZonesTo(*editor.south, {editor.north->Zones().first()}));
    QCOMPARE(editor.Seen(), QString());
    editor.Trigger("actionUndo");
    QCOMPARE(editor.Seen(), QString("North"));
    editor.Scene().SelectZones({editor.south->Zones().first()});
    editor.Scene().RemoveSelection();
    editor.Trigger("actionTerritorySolo");
    editor.Trigger("actionUndo");
    QCOMPARE(editor.Seen(), QString("North South"));
}

void tst_TerritoryActions::AnotherProjectIsSeen()
{
    Editor editor;
    editor.Trigger("actionTerritorySolo");
    editor.Load(editor.WriteProject(QStringLiteral("second")));
    QVERIFY(!editor.Action("actionTerritorySolo")->isChecked());
    QVERIFY(Editor::IsSeen(*editor.Doc().Types().Types().first()->Territories().constFirst()));
}

void tst_TerritoryActions::LabelsAreRemembered()
{
    Editor editor;
    QVERIFY(editor.Action("actionZoneLabels")->isChecked());
    QVERIFY(editor.View().Labels().AreShown());
    editor.Trigger("actionZoneLabels");
    QVERIFY(!editor.View().Labels().AreShown());
    editor.Restart();
    QVERIFY(!editor.Action("actionZoneLabels")->isChecked());
    QVERIFY(!editor.View().Labels().AreShown());
    QVERIFY(!WindowFixture::IsModified());
}

void tst_TerritoryActions::FiltersTheTree()
{
    const Editor editor;
    editor.Trigger("actionTypeNew");
    TerritoryType* wolf = editor.Doc().Types().Types().last();
    wolf->setText(QStringLiteral("Northern wolf"));
    editor.Trigger("actionTerritoryNew");
    Territory* hills = wolf->Territories().constLast();
    hills->setText(QStringLiteral("Hills"));
    editor.Tree().collapseAll();
    editor.Filter().setFocus();
    const auto shown = [&] {
        QStringList names;
        for (const QStandardItem* row : std::initializer_list<const QStandardItem*>{
                 editor.deer, editor.north, editor.south, wolf, hills}) {
            if (editor.IsShown(*row)) {
                names.append(row->text());
            }
        }
        return names.join(QLatin1Char(','));
    };
    const QString all = QStringLiteral("Deer,North,South,Northern wolf,Hills");
    QCOMPARE(shown(), all);
    QTest::keyClicks(&editor.Filter(), QStringLiteral("NORTH"));
    // All of a type whose name holds the text.
    QCOMPARE(shown(), QString("Deer,North,Northern wolf,Hills"));
    QVERIFY(editor.Tree().isExpanded(editor.deer->index()));
    QTest::keyClicks(&editor.Filter(), QStringLiteral("ern"));
    QCOMPARE(shown(), QString("Northern wolf,Hills"));
    editor.south->setText(QStringLiteral("Northern woods"));
    QCOMPARE(shown(), QString("Deer,Northern woods,Northern wolf,Hills"));
    QTest::keyClick(&editor.Filter(), Qt::Key_Escape);
    QCOMPARE(editor.Filter().text(), QString());
    QVERIFY(editor.Tree().hasFocus());
    QVERIFY(shown().startsWith(QStringLiteral("Deer,North,Northern woods")));
}

void tst_TerritoryActions::NewRowsEndAFilterThatHidesThem()
{
    const Editor editor;
    for (const char* action : {"actionTypeNew", "actionTerritoryNew"}) {
        editor.MakeCurrent(*editor.north);
        editor.Filter().setText(QStringLiteral("North"));
        QVERIFY(!editor.IsShown(*editor.south));
        editor.Trigger(action);
        QCOMPARE(editor.Filter().text(), QString());
        QVERIFY(editor.IsShown(*editor.south));
    }
}

QTEST_MAIN(tst_TerritoryActions)
#include "tst_TerritoryActions.moc"
