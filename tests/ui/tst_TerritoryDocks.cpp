#include "tests/support/TerritoryDocks.h"

#include "canvas/HeldKeys.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>

#include <memory>

namespace {

/// A current territory of two zones, beside another one.
class Fixture : public TerritoryDocks
{
public:
    Fixture()
        : type(AddType(QStringLiteral("Deer")))
        , territory(AddTerritory(type, QStringLiteral("North"), 2))
        , other(AddTerritory(type, QStringLiteral("South"), 1))
        , zone(territory->Zones().first())
    {
        HeldKeys::Instance().ReleaseAll();
        MakeCurrent(territory);
    }

    /// Changes all values of the zone from those of a new one, and shows it.
    void ShowTheZone()
    {
        zone->SetRadius(123);
        zone->SetStaticMin(1);
        zone->SetStaticMax(2);
        zone->SetDynamicMin(3);
        zone->SetDynamicMax(4);
        zone->SetUsage(Zone::DynamicEvent);
        zone->SetEventName(QStringLiteral("Storm"));
        zone->setZValue(48);
        SelectZone(zone);
    }

    /// The zone that a click on the map inserts.
    Zone* Insert()
    {
        types->InsertMode(true);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->mapFromScene(600, 600));
        return territory->Zones().last();
    }

    TerritoryType* type;
    Territory* territory;
    Territory* other;
    Zone* zone;
};

QString Values(const Zone* zone)
{
    const SpawnCounts& counts = zone->Counts();
    return QStringLiteral("%1 m, %2 %3 %4 %5, %6 %7, %8")
        .arg(static_cast<double>(zone->Radius()))
        .arg(counts.staticMin)
        .arg(counts.staticMax)
        .arg(counts.dynamicMin)
        .arg(counts.dynamicMax)
        .arg(zone->GetUsage())
        .arg(zone->EventName())
        .arg(zone->zValue());
}

/// The widgets that the user operates, without the inner widgets of Qt's own.
QVector<QWidget*> Controls(const QWidget& dock)
{
    QVector<QWidget*> controls;
    const QList<QWidget*> widgets = dock.findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        const bool isPart = qobject_cast<QAbstractSpinBox*>(widget->parentWidget()) ||
                            qobject_cast<QLineEdit*>(widget->parentWidget());
        const bool isControl = qobject_cast<QAbstractButton*>(widget) ||
                               qobject_cast<QLineEdit*>(widget) ||
                               qobject_cast<QSpinBox*>(widget) || qobject_cast<QTreeView*>(widget);
        const bool isOwn = !widget->objectName().startsWith(QLatin1String("qt_"));
        if (isControl && isOwn && !isPart) {
            controls.append(widget);
        }
    }
    return controls;
}

} // namespace

class tst_TerritoryDocks : public QObject
{
    Q_OBJECT

private slots:
    void NewZonesHaveNoPatternAtFirst();
    void NewZonesTakeTheShownZone();
    void PatternSurvivesItsZone();
    void PatternFollowsEdits();
    void NewZonesTakeTheTerritorysColor();
    void TotalsFollowNewZones();
    void TotalsFollowPaste();
    void PatternIsForgottenWithTheList();
    void StandsEveryDeath_data();
    void StandsEveryDeath();
    void DocksStandAlone();
    void ScrollsOnlyFocusedBoxes();
    void TabsInTheOrderOfTheEye();
    void ControlsHaveNamesAndToolTips();
    void LabelsHaveBuddies();
    void FitsBesideTheMap_data();
    void FitsBesideTheMap();
    void LongNamesDoNotWidenTheDock();
};

void tst_TerritoryDocks::NewZonesHaveNoPatternAtFirst()
{
    Fixture fixture;

    QCOMPARE(Values(fixture.Insert()), QStringLiteral("300 m, 0 0 0 0, 1 , 2"));
}

void tst_TerritoryDocks::NewZonesTakeTheShownZone()
{
    Fixture fixture;
    fixture.ShowTheZone();

    QCOMPARE(Values(fixture.Insert()), QStringLiteral("123 m, 1 2 3 4, 5 Storm, 48"));
}

void tst_TerritoryDocks::PatternSurvivesItsZone()
{
    Fixture fixture;
    fixture.ShowTheZone();

    fixture.Scene().RemoveSelection();

    QCOMPARE(Values(fixture.Insert()), QStringLiteral("123 m, 1 2 3 4, 5 Storm, 48"));
}

void tst_TerritoryDocks::PatternFollowsEdits()
{
    Fixture fixture;
    fixture.ShowTheZone();

    fixture.Type("txtSize", QStringLiteral("77"));
    fixture.Type("spbStaticMin", QStringLiteral("11"));
    fixture.Type("spbStaticMax", QStringLiteral("12"));
    fixture.Type("spbDynMin", QStringLiteral("13"));
    fixture.Type("spbDynMax", QStringLiteral("14"));
    fixture.Type("txtDynEvent", QStringLiteral("Fire"));
    fixture.Click("btnToFront");
    QCOMPARE(Values(fixture.Insert()), QStringLiteral("77 m, 11 12 13 14, 5 Fire, 71"));

    fixture.SelectZone(fixture.zone);
    fixture.Click("btnToBack");
    fixture.Click("rdoHunting");
    QCOMPARE(Values(fixture.Insert()), QStringLiteral("77 m, 11 12 13 14, 4 Fire, 48"));
}

void tst_TerritoryDocks::NewZonesTakeTheTerritorysColor()
{
    Fixture fixture;
    fixture.ShowTheZone();
    fixture.territory->SetRgba(qRgba(1, 2, 3, 4));

    QCOMPARE(fixture.Insert()->Color().rgba(), qRgba(1, 2, 3, 4));
}

void tst_TerritoryDocks::TotalsFollowNewZones()
{
    Fixture fixture;
    fixture.ShowTheZone();

    fixture.Insert();

    QTRY_COMPARE(fixture.Text("lblTerDynMaxVal"), QStringLiteral("8"));
    QCOMPARE(fixture.type->Totals().dynamicMax, 8);
}

void tst_TerritoryDocks::TotalsFollowPaste()
{
    Fixture fixture;
    fixture.types->SelectMode(true);
    fixture.ShowTheZone();
    fixture.view->setFocus();

    QTest::keyClick(fixture.view, Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(fixture.view, Qt::Key_V, Qt::ControlModifier);

    QCOMPARE(fixture.territory->Zones().size(), 3);
    QTRY_COMPARE(fixture.Text("lblTerStaticMaxVal"), QStringLiteral("4"));
}

void tst_TerritoryDocks::PatternIsForgottenWithTheList()
{
    Fixture fixture;
    fixture.ShowTheZone();

    fixture.types->ClearSelection();
    fixture.document.Clear();
    fixture.type = fixture.AddType(QStringLiteral("Wolf"));
    fixture.territory = fixture.AddTerritory(fixture.type, QStringLiteral("West"));
    fixture.MakeCurrent(fixture.territory);

    QCOMPARE(Values(fixture.Insert()), QStringLiteral("300 m, 0 0 0 0, 1 , 2"));
}

void tst_TerritoryDocks::StandsEveryDeath_data()
{
    QTest::addColumn<QString>("order");

    for (const char* order :
         {"zone", "territory", "type", "list", "scene", "props", "types", "zone territory type",
          "territory scene", "type props", "scene types", "types scene", "props types",
          "scene props", "props territory", "scene zone territory", "list scene props types"}) {
        QTest::newRow(order) << QString(QLatin1String(order));
    }
}

void tst_TerritoryDocks::StandsEveryDeath()
{
    QFETCH(QString, order);
    for (const bool isTypeRow : {false, true}) {
        auto fixture = std::make_unique<Fixture>();
        fixture->types->SelectMode(true);
        fixture->ShowTheZone();
        if (isTypeRow) {
            fixture->MakeCurrent(fixture->type);
            fixture->props->ShowZone(fixture->zone);
        }
        QPointer<DockTerTypes> types(fixture->types);
        QPointer<DockTerTypeProps> props(fixture->props);
        const Tracked<Zone> zone(fixture->zone);
        const Tracked<Territory> territory(fixture->territory);
        const Tracked<TerritoryType> type(fixture->type);
        const QStringList names = order.split(QLatin1Char(' '));
        for (const QString& name : names) {
            if (name == QLatin1String("zone") && zone) {
                const std::unique_ptr<Zone> dying(zone.Get());
            } else if (name == QLatin1String("territory") && territory) {
                type->RemoveTerritory(territory->Id());
            } else if (name == QLatin1String("type") && type) {
                types->List()->model()->removeRow(type->row());
            } else if (name == QLatin1String("list") && types) {
                types->List()->Clear();
            } else if (name == QLatin1String("scene")) {
                delete fixture->view;
            } else if (name == QLatin1String("props")) {
                delete props;
            } else if (name == QLatin1String("types")) {
                delete types;
            }
        }
        QCoreApplication::processEvents();

        if (props) {
            props->UpdateSize(QStringLiteral("100"));
            props->UpdateStaticMax(4);
            props->ToFront();
            props->UpdateUsage(Zone::Water);
            props->UpdateColor(Qt::red);
            props->UpdateOpacity(9);
            props->RefreshTotals();
            QCOMPARE(fixture->document.ZoneTemplate().radius, zone ? 100.0F : 123.0F);
            QVERIFY(territory || type || !types || !props->isEnabled());
        }
        if (types) {
            types->CopySelection();
            types->SelectMode(false);
            types->InsertMode(true);
            types->AddTerritoryType();
            types->Remove();
            types->ClearSelection();
            fixture->document.Clear();
            QVERIFY(!props || !props->isEnabled());
        }
    }
}

void tst_TerritoryDocks::DocksStandAlone()
{
    Document document;
    DockTerTypes types(document, nullptr, nullptr);
    types.AddTerritoryType();
    auto* tree = types.findChild<QTreeView*>(QStringLiteral("treeTerTypes"));
    tree->setCurrentIndex(tree->model()->index(0, 0));
    types.AddTerritory();
    TerritoryType* type = types.List()->Types().constFirst();
    types.Select(type->Territories().constFirst());
    type->setText(QStringLiteral("Deer"));

    types.CopySelection();
    types.findChild<QAbstractButton*>(QStringLiteral("btnZoneDelete"))->setEnabled(true);
    types.findChild<QAbstractButton*>(QStringLiteral("btnZoneDelete"))->click();
    types.ClearSelection();
    document.Clear();

    QVERIFY(types.List()->IsEmpty());
}

void tst_TerritoryDocks::ScrollsOnlyFocusedBoxes()
{
    Fixture fixture;
    fixture.SelectZone(fixture.zone);
    for (const char* name : {"spbStaticMin", "spbStaticMax", "spbDynMin", "spbDynMax"}) {
        auto* box = fixture.Child<QSpinBox>(name);
        QCOMPARE(box->focusPolicy(), Qt::StrongFocus);
        const auto turn = [box] {
            QWheelEvent event(QPointF(5, 5), box->mapToGlobal(QPoint(5, 5)), {}, {0, 120},
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(box, &event);
        };
        fixture.Child<QLineEdit>("txtSize")->setFocus();
        turn();
        QCOMPARE(box->value(), 0);
        box->setFocus();
        turn();
        QCOMPARE(box->value(), 1);
    }
}

void tst_TerritoryDocks::TabsInTheOrderOfTheEye()
{
    Fixture fixture;
    fixture.SelectZone(fixture.zone);
    fixture.zone->SetUsage(Zone::DynamicEvent);
    fixture.props->ShowZone(fixture.zone);
    fixture.window.resize(1000, 1000);
    QCoreApplication::processEvents();
    const auto tabs = [&fixture](const char* first, int count) {
        QStringList names;
        auto* widget = fixture.Child<QWidget>(first);
        widget->setFocus();
        for (int i = 0; i < count; ++i) {
            names.append(QApplication::focusWidget()->objectName());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        return names;
    };

    fixture.types->SetSelectionControlsEnabled(true);
    QCOMPARE(tabs("treeTerTypes", 9),
             QStringList({"treeTerTypes", "btnAdd", "btnToggleZoneSelect", "btnToggleZoneInsert",
                          "btnToggleQueryTer", "btnZoneDelete", "btnZoneCopy", "btnExportSelected",
                          "btnExportAll"}));
    // The arrow keys go from usage to usage.
    QCOMPARE(tabs("button", 11), QStringList({"button", "slider", "txtSize", "spbStaticMin",
                                              "spbStaticMax", "spbDynMin", "spbDynMax", "rdoRest",
                                              "txtDynEvent", "btnToFront", "btnToBack"}));
}

void tst_TerritoryDocks::ControlsHaveNamesAndToolTips()
{
    TerritoryDocks docks;
    const QVector<QWidget*> controls = Controls(*docks.types) + Controls(*docks.props);
    QCOMPARE(controls.size(), 10 + 24);
    for (const QWidget* control : controls) {
        const auto* button = qobject_cast<const QAbstractButton*>(control);
        const bool isNamed =
            !control->accessibleName().isEmpty() || (button && !button->text().isEmpty());
        QVERIFY2(isNamed, qPrintable(control->objectName()));
        const bool isTree = control->objectName() == QLatin1String("treeTerTypes");
        QVERIFY2(isTree || !control->toolTip().isEmpty(), qPrintable(control->objectName()));
    }
}

void tst_TerritoryDocks::LabelsHaveBuddies()
{
    TerritoryDocks docks;
    const struct
    {
        const char* label;
        const char* buddy;
    } rows[] = {
        {"lblSize", "txtSize"},           {"lblStaticMin", "spbStaticMin"},
        {"lblStaticMax", "spbStaticMax"}, {"lblDynMin", "spbDynMin"},
        {"lblDynMax", "spbDynMax"},       {"lblToFront", "btnToFront"},
        {"lblToBack", "btnToBack"},
    };

    for (const auto& row : rows) {
        QCOMPARE(docks.Child<QLabel>(row.label)->buddy(), docks.Child<QWidget>(row.buddy));
    }
}

void tst_TerritoryDocks::FitsBesideTheMap_data()
{
    QTest::addColumn<int>("points");
    QTest::addColumn<int>("width");

    QTest::newRow("usual font") << 9 << 310;
    QTest::newRow("large font") << 14 << 400;
}

void tst_TerritoryDocks::FitsBesideTheMap()
{
    QFETCH(int, points);
    QFETCH(int, width);
    const QFont before = QApplication::font();
    QFont font = before;
    font.setPointSize(points);
    QApplication::setFont(font);
    {
        Fixture fixture;
        fixture.SelectZone(fixture.zone);
        QCoreApplication::processEvents();
        for (const QDockWidget* dock :
             {static_cast<QDockWidget*>(fixture.types), static_cast<QDockWidget*>(fixture.props)}) {
            QVERIFY2(dock->width() <= width, qPrintable(QString::number(dock->width())));
            QVERIFY(dock->height() < 500);
        }
        QVector<QWidget*> widgets = Controls(*fixture.types) + Controls(*fixture.props);
        const QList<QLabel*> labels = fixture.props->findChildren<QLabel*>();
        for (QLabel* label : labels) {
            widgets.append(label);
        }
        for (const QWidget* widget : qAsConst(widgets)) {
            const QSize least = widget->minimumSizeHint();
            QVERIFY2(widget->width() >= least.width() && widget->height() >= least.height(),
                     qPrintable(widget->objectName()));
            const QRect place(widget->mapTo(widget->window(), {}), widget->size());
            QVERIFY2(place.right() < widget->window()->width(), qPrintable(widget->objectName()));
        }
    }
    QApplication::setFont(before);
}

void tst_TerritoryDocks::LongNamesDoNotWidenTheDock()
{
    Fixture fixture;
    const int width = fixture.props->minimumSizeHint().width();

    fixture.territory->setText(QString(300, QLatin1Char('m')));
    QCoreApplication::processEvents();

    QCOMPARE(fixture.props->minimumSizeHint().width(), width);
}

QTEST_MAIN(tst_TerritoryDocks)
#include "tst_TerritoryDocks.moc"
