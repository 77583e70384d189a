#include "canvas/HeldKeys.h"
#include "tests/support/TwoTypesFixture.h"
#include "tests/support/XmlText.h"

#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

namespace {

/// The zones of South are apart from those of North, and the dock's signals are recorded.
class Fixture : public TwoTypesFixture
{
public:
    Fixture()
    {
        HeldKeys::Instance().ReleaseAll();
        for (Zone* zone : south->Zones()) {
            zone->moveBy(0, 200);
        }
        TakeModified();
        QObject::connect(types, &DockTerTypes::Selected, types,
                         [this](Territory* territory) { selected.append(territory); });
        QObject::connect(types, &DockTerTypes::InsertClicked, types, [this](bool isOn) {
            modes.append(isOn ? QStringLiteral("insert") : QStringLiteral("no insert"));
        });
        QObject::connect(types, &DockTerTypes::SelectClicked, types, [this](bool isOn) {
            modes.append(isOn ? QStringLiteral("select") : QStringLiteral("no select"));
        });
        QObject::connect(types, &DockTerTypes::QueryClicked, types, [this](bool isOn) {
            modes.append(isOn ? QStringLiteral("query") : QStringLiteral("no query"));
        });
    }

    /// The enabled buttons. Checked ones are in brackets.
    QString Buttons() const
    {
        QStringList texts;
        for (const char* name :
             {"btnToggleZoneInsert", "btnToggleZoneSelect", "btnToggleQueryTer"}) {
            const auto* button = Child<QPushButton>(name);
            const QString text = QString(QLatin1String(name)).remove(QStringLiteral("btnToggle"));
            if (button->isChecked()) {
                texts.append(QStringLiteral("(%1)").arg(text));
            } else if (button->isEnabled()) {
                texts.append(text);
            }
        }
        return texts.join(QLatin1Char(' '));
    }
    /// Clicks the map.
    void ClickMap(QPointF position) const
    {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->mapFromScene(position));
    }
    /// The signals that the map view gets.
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers) const
    {
        view->setFocus();
        QTest::keyClick(view, key, modifiers);
    }

    QVector<Territory*> selected;
    QStringList modes;
};

bool AreEditable(const Territory* territory)
{
    for (const Zone* zone : territory->Zones()) {
        if (!(zone->flags() & QGraphicsItem::ItemIsMovable) ||
            !(zone->flags() & QGraphicsItem::ItemIsSelectable)) {
            return false;
        }
    }
    return true;
}

} // namespace

class tst_DockTerTypesSelection : public QObject
{
    Q_OBJECT

private slots:
    void StartsWithoutARow();
    void TerritoryRowUnlocksItsZones();
    void HiddenTerritoryIsShownWhileCurrent();
    void TypeRowHasNoTerritory();
    void NoRowDisablesAll();
    void ClickingRowsSelectsThem();
    void LeavesModesThatEnd_data();
    void LeavesModesThatEnd();
    void KeepsTheModeBetweenTerritories();
    void NothingIsInsertedOrPastedAtATypeRow();
    void ModeButtonsExcludeEachOther();
    void ModesFollowTheKeysOfTheMap();
    void DisabledModesAreNotEntered();
    void ResetsModeButtonsSilently();
    void QueryMakesATerritoryCurrent();
    void SelectRunsTheRowChangeOnce_data();
    void SelectRunsTheRowChangeOnce();
    void SelectTakesOwnTerritoriesOnly();
    void DeletesSelectedZones();
    void CopiesSelectedZones();
    void CopiesNothingWithoutASelection();
    void ControlsFollowTheSelection();
    void ForgetsTheRowBeforeTheListIsEmptied();
    void ReadsWithTheScene();
};

void tst_DockTerTypesSelection::StartsWithoutARow()
{
    const Fixture fixture;

    QCOMPARE(fixture.Buttons(), QStringLiteral("QueryTer"));
    QVERIFY(!fixture.props->isEnabled());
}

void tst_DockTerTypesSelection::TerritoryRowUnlocksItsZones()
{
    Fixture fixture;

    fixture.MakeCurrent(fixture.north);
    QVERIFY(AreEditable(fixture.north) && !AreEditable(fixture.south));
    QCOMPARE(fixture.Scene().CurrentTerritory(), fixture.north);
    QCOMPARE(fixture.PropsTitle(), QStringLiteral("Territory: North"));
    QCOMPARE(fixture.Buttons(), QStringLiteral("ZoneInsert ZoneSelect QueryTer"));

    fixture.SelectZone(fixture.north->Zones().first());
    fixture.MakeCurrent(fixture.south);
    QVERIFY(!AreEditable(fixture.north) && AreEditable(fixture.south));
    QVERIFY(fixture.Scene().selectedItems().isEmpty());
    QCOMPARE(fixture.selected, QVector<Territory*>({fixture.north, fixture.south}));
    QVERIFY(!fixture.TakeModified());
}

void tst_DockTerTypesSelection::HiddenTerritoryIsShownWhileCurrent()
{
    Fixture fixture;
    fixture.north->setCheckState(Qt::Unchecked);
    QVERIFY(!fixture.north->IsVisible());

    fixture.MakeCurrent(fixture.north);
    QVERIFY(fixture.north->Zones().first()->isVisible());
    fixture.MakeCurrent(fixture.south);
    QVERIFY(!fixture.north->Zones().first()->isVisible());
    QCOMPARE(fixture.north->checkState(), Qt::Unchecked);
}

void tst_DockTerTypesSelection::TypeRowHasNoTerritory()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);

    fixture.MakeCurrent(fixture.deer);

    QCOMPARE(fixture.Scene().CurrentTerritory(), nullptr);
    QVERIFY(!AreEditable(fixture.north));
    QCOMPARE(fixture.PropsTitle(), QStringLiteral("Territory type: Deer"));
    QCOMPARE(fixture.Buttons(), QStringLiteral("QueryTer"));
    QVERIFY(fixture.props->isEnabled());
}

void tst_DockTerTypesSelection::NoRowDisablesAll()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);

    fixture.types->ClearSelection();

    QCOMPARE(fixture.Scene().CurrentTerritory(), nullptr);
    QVERIFY(!AreEditable(fixture.north));
    QCOMPARE(fixture.Buttons(), QStringLiteral("QueryTer"));
    QVERIFY(!fixture.props->isEnabled());
    QVERIFY(fixture.Tree().selectionModel()->selectedRows().isEmpty());
    QVERIFY(!fixture.Tree().currentIndex().isValid());
}

void tst_DockTerTypesSelection::ClickingRowsSelectsThem()
{
    Fixture fixture;

    QTest::mouseClick(fixture.Tree().viewport(), Qt::LeftButton, {},
                      fixture.Tree().visualRect(fixture.south->index()).center());
    QCOMPARE(fixture.selected, QVector<Territory*>({fixture.south}));
    QTest::keyClick(&fixture.Tree(), Qt::Key_Up);
    QCOMPARE(fixture.selected, QVector<Territory*>({fixture.south, fixture.north}));
}

void tst_DockTerTypesSelection::LeavesModesThatEnd_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<bool>("isType");
    QTest::addColumn<QString>("left");
    QTest::addColumn<int>("mode");

    const int none = static_cast<int>(SceneMode::None);
    const int query = static_cast<int>(SceneMode::Query);
    QTest::newRow("insert, type") << QByteArray("btnToggleZoneInsert") << true << "no insert"
                                  << none;
    QTest::newRow("select, type") << QByteArray("btnToggleZoneSelect") << true << "no select"
                                  << none;
    QTest::newRow("query, type") << QByteArray("btnToggleQueryTer") << true << "" << query;
    QTest::newRow("insert, no row")
        << QByteArray("btnToggleZoneInsert") << false << "no insert" << none;
    QTest::newRow("select, no row")
        << QByteArray("btnToggleZoneSelect") << false << "no select" << none;
    QTest::newRow("query, no row")
        << QByteArray("btnToggleQueryTer") << false << "no query" << none;
}

void tst_DockTerTypesSelection::LeavesModesThatEnd()
{
    QFETCH(QByteArray, button);
    QFETCH(bool, isType);
    QFETCH(QString, left);
    QFETCH(int, mode);
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);
    fixture.Click(button.constData());
    fixture.modes.clear();

    if (isType) {
        fixture.MakeCurrent(fixture.deer);
    } else {
        fixture.types->ClearSelection();
    }

    QCOMPARE(fixture.modes.join(QLatin1Char(',')), left);
    QCOMPARE(static_cast<int>(fixture.Scene().Mode()), mode);
    QCOMPARE(fixture.Child<QPushButton>(button)->isChecked(), left.isEmpty());
}

void tst_DockTerTypesSelection::KeepsTheModeBetweenTerritories()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);
    fixture.Click("btnToggleZoneInsert");

    fixture.MakeCurrent(fixture.south);

    QCOMPARE(fixture.modes, QStringList({"insert"}));
    QCOMPARE(fixture.Scene().Mode(), SceneMode::Insert);
    fixture.ClickMap({700, 700});
    QCOMPARE(fixture.south->Zones().size(), 3);
}

void tst_DockTerTypesSelection::NothingIsInsertedOrPastedAtATypeRow()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);
    fixture.Click("btnToggleZoneSelect");
    fixture.SelectZone(fixture.north->Zones().first());
    fixture.Key(Qt::Key_C, Qt::ControlModifier);

    fixture.MakeCurrent(fixture.deer);
    // The mode is set by other code.
    fixture.Scene().ChangeMode(SceneMode::Select);
    fixture.Key(Qt::Key_V, Qt::ControlModifier);
    fixture.Scene().ChangeMode(SceneMode::Insert);
    fixture.ClickMap({700, 700});

    QCOMPARE(fixture.north->Zones().size(), 2);
    QCOMPARE(fixture.south->Zones().size(), 2);
}

void tst_DockTerTypesSelection::ModeButtonsExcludeEachOther()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);

    fixture.Click("btnToggleZoneInsert");
    QCOMPARE(fixture.Buttons(), QStringLiteral("(ZoneInsert) ZoneSelect QueryTer"));
    QCOMPARE(fixture.Scene().Mode(), SceneMode::Insert);
    fixture.Click("btnToggleZoneSelect");
    QCOMPARE(fixture.Buttons(), QStringLiteral("ZoneInsert (ZoneSelect) QueryTer"));
    QCOMPARE(fixture.Scene().Mode(), SceneMode::Select);
    fixture.Click("btnToggleQueryTer");
    QCOMPARE(fixture.Buttons(), QStringLiteral("ZoneInsert ZoneSelect (QueryTer)"));
    QCOMPARE(fixture.Scene().Mode(), SceneMode::Query);
    fixture.Click("btnToggleQueryTer");
    QCOMPARE(fixture.Buttons(), QStringLiteral("ZoneInsert ZoneSelect QueryTer"));
    QCOMPARE(fixture.Scene().Mode(), SceneMode::None);
    QCOMPARE(fixture.modes, QStringList({"insert", "select", "query", "no query"}));
}

void tst_DockTerTypesSelection::ModesFollowTheKeysOfTheMap()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);

    fixture.Key(Qt::Key_A, Qt::ShiftModifier);
    QCOMPARE(fixture.Buttons(), QStringLiteral("(ZoneInsert) ZoneSelect QueryTer"));
    fixture.Key(Qt::Key_S, Qt::ShiftModifier);
    QCOMPARE(fixture.Buttons(), QStringLiteral("ZoneInsert (ZoneSelect) QueryTer"));
    fixture.Key(Qt::Key_Q, Qt::ShiftModifier);
    QCOMPARE(fixture.Buttons(), QStringLiteral("ZoneInsert ZoneSelect (QueryTer)"));
    fixture.Key(Qt::Key_Q, Qt::ShiftModifier);
    QCOMPARE(fixture.Buttons(), QStringLiteral("ZoneInsert ZoneSelect QueryTer"));
    QCOMPARE(fixture.modes, QStringList({"insert", "select", "query", "no query"}));
}

void tst_DockTerTypesSelection::DisabledModesAreNotEntered()
{
    Fixture fixture;

    fixture.types->InsertMode(true);
    fixture.types->SelectMode(true);

    QCOMPARE(fixture.Buttons(), QStringLiteral("QueryTer"));
    QVERIFY(fixture.modes.isEmpty());
}

void tst_DockTerTypesSelection::ResetsModeButtonsSilently()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);
    fixture.Click("btnToggleZoneInsert");

    fixture.types->ShowMode(SceneMode::None);

    QCOMPARE(fixture.Buttons(), QStringLiteral("ZoneInsert ZoneSelect QueryTer"));
    QCOMPARE(fixture.modes, QStringList({"insert"}));
}

void tst_DockTerTypesSelection::QueryMakesATerritoryCurrent()
{
    Fixture fixture;
    fixture.Click("btnToggleQueryTer");
    Zone* zone = fixture.south->Zones().first();
    fixture.Tree().collapseAll();

    fixture.ClickMap(zone->scenePos());

    QCOMPARE(fixture.Scene().CurrentTerritory(), fixture.south);
    QCOMPARE(fixture.Tree().currentIndex(), fixture.south->index());
    QVERIFY(fixture.Tree().isExpanded(fixture.deer->index()));
    QCOMPARE(fixture.Buttons(), QStringLiteral("ZoneInsert (ZoneSelect) QueryTer"));
    QCOMPARE(fixture.modes, QStringList({"query", "select"}));
    QCOMPARE(fixture.Scene().Mode(), SceneMode::Select);
    QCOMPARE(fixture.Scene().selectedItems(), QList<QGraphicsItem*>({zone}));
}

void tst_DockTerTypesSelection::SelectRunsTheRowChangeOnce_data()
{
    QTest::addColumn<bool>("isCurrent");

    QTest::newRow("another row") << false;
    QTest::newRow("the current row") << true;
}

void tst_DockTerTypesSelection::SelectRunsTheRowChangeOnce()
{
    QFETCH(bool, isCurrent);
    Fixture fixture;
    fixture.MakeCurrent(isCurrent ? fixture.south : fixture.north);
    fixture.selected.clear();

    fixture.types->Select(fixture.south);

    QCOMPARE(fixture.selected, QVector<Territory*>({fixture.south}));
    QVERIFY(AreEditable(fixture.south) && !AreEditable(fixture.north));
    QCOMPARE(fixture.modes, QStringList({"select"}));
}

void tst_DockTerTypesSelection::SelectTakesOwnTerritoriesOnly()
{
    Fixture fixture;
    TerritoryType other(QStringLiteral("Bear"));

    fixture.types->Select(nullptr);
    fixture.types->Select(other.NewTerritory());

    QVERIFY(fixture.selected.isEmpty());
    QVERIFY(fixture.modes.isEmpty());
}

void tst_DockTerTypesSelection::DeletesSelectedZones()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);
    Zone* zone = fixture.north->Zones().first();
    zone->SetStaticMin(5);
    QTRY_COMPARE(fixture.Text("lblTerStaticMinVal"), QStringLiteral("5"));
    fixture.SelectZone(zone);

    fixture.Click("btnZoneDelete");

    QCOMPARE(fixture.north->Zones().size(), 1);
    QVERIFY(fixture.TakeModified());
    QTRY_COMPARE(fixture.Text("lblTerStaticMinVal"), QStringLiteral("0"));
    QVERIFY(!fixture.Child<QPushButton>("btnZoneDelete")->isEnabled());
    QVERIFY(!fixture.Child<QGroupBox>("gboZone")->isEnabled());
}

void tst_DockTerTypesSelection::CopiesSelectedZones()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);
    fixture.north->SetRgba(qRgba(1, 2, 3, 100));
    Zone* zone = fixture.north->Zones().last();
    zone->SetDynamicMax(9);
    fixture.SelectZone(zone);
    fixture.selected.clear();

    fixture.Click("btnZoneCopy");

    QCOMPARE(fixture.deer->rowCount(), 3);
    auto* copy = dynamic_cast<Territory*>(fixture.deer->child(2));
    QCOMPARE(copy->Color().rgba(), qRgba(1, 2, 3, 100));
    QCOMPARE(copy->Zones().size(), 1);
    const Zone* copied = copy->Zones().first();
    QVERIFY(copied != zone);
    QCOMPARE(copied->scene(), &fixture.Scene());
    QCOMPARE(copied->scenePos(), zone->scenePos());
    QCOMPARE(fixture.north->Zones().size(), 2);
    QVERIFY(fixture.Scene().selectedItems().isEmpty());
    QCOMPARE(fixture.selected, QVector<Territory*>({copy}));
    QVERIFY(AreEditable(copy) && !AreEditable(fixture.north));
    QVERIFY(copied->isVisible());
    QCOMPARE(fixture.Text("lblTerDynMaxVal"), QStringLiteral("9"));
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypesSelection::CopiesNothingWithoutASelection()
{
    Fixture fixture;
    fixture.types->CopySelection();
    fixture.MakeCurrent(fixture.north);
    fixture.types->CopySelection();

    QCOMPARE(fixture.deer->rowCount(), 2);
    QVERIFY(!fixture.TakeModified());
}

void tst_DockTerTypesSelection::ControlsFollowTheSelection()
{
    Fixture fixture;
    for (const bool isEnabled : {true, false}) {
        fixture.types->SetSelectionControlsEnabled(isEnabled);
        QCOMPARE(fixture.Child<QPushButton>("btnZoneDelete")->isEnabled(), isEnabled);
        QCOMPARE(fixture.Child<QPushButton>("btnZoneCopy")->isEnabled(), isEnabled);
    }
}

void tst_DockTerTypesSelection::ForgetsTheRowBeforeTheListIsEmptied()
{
    Fixture fixture;
    fixture.MakeCurrent(fixture.north);
    fixture.SelectZone(fixture.north->Zones().first());
    fixture.Click("btnToggleZoneSelect");
    fixture.selected.clear();
    int rows = 0;
    connect(fixture.types, &DockTerTypes::Selected, fixture.types,
            [&] { rows = fixture.List().model()->rowCount(); });

    fixture.types->ClearSelection();
    fixture.document.Clear();

    QVERIFY(fixture.List().IsEmpty());
    QCOMPARE(rows, 2);
    QCOMPARE(fixture.selected, QVector<Territory*>({nullptr}));
    QCOMPARE(fixture.Buttons(), QStringLiteral("QueryTer"));
    QVERIFY(!fixture.props->isEnabled());
    QCOMPARE(fixture.Scene().Mode(), SceneMode::None);
}

void tst_DockTerTypesSelection::ReadsWithTheScene()
{
    Fixture fixture;
    const QString text = XmlText([&](QXmlStreamWriter& xml) { fixture.List().Write(xml); });
    fixture.types->ClearSelection();
    fixture.document.Clear();
    const auto zones = [&fixture] {
        int count = 0;
        const QList<QGraphicsItem*> items = fixture.Scene().items();
        for (const QGraphicsItem* item : items) {
            count += item->type() == Zone::Type ? 1 : 0;
        }
        return count;
    };
    QCOMPARE(zones(), 0);
    fixture.TakeModified();

    ElementReader xml(text.mid(text.indexOf(QStringLiteral("<territory-type-list"))));
    QVERIFY(fixture.List().Read(xml, fixture.document.ZoneScene()));
    fixture.types->ExpandAll();

    QCOMPARE(zones(), 4);
    QCOMPARE(fixture.List().Types().size(), 2);
    QVERIFY(fixture.Tree().isExpanded(fixture.List().Types().first()->index()));
    QVERIFY(!fixture.TakeModified());
    QCOMPARE(XmlText([&](QXmlStreamWriter& again) { fixture.List().Write(again); }), text);

    ElementReader broken(QStringLiteral("<territory-type-list><territory-type"));
    QVERIFY(!fixture.List().Read(broken, fixture.document.ZoneScene()));
}

QTEST_MAIN(tst_DockTerTypesSelection)
#include "tst_DockTerTypesSelection.moc"
