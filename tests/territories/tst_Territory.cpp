#include "territories/Territory.h"

#include "app/ProjectSettings.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/XmlText.h"

#include <QGraphicsScene>
#include <QTest>
#include <QWidget>

#include <limits>
#include <memory>

namespace {

constexpr int MaxInt = std::numeric_limits<int>::max();
constexpr int MinInt = std::numeric_limits<int>::min();

QVector<int> Numbers(const SpawnCounts& counts)
{
    return {counts.staticMin, counts.staticMax, counts.dynamicMin, counts.dynamicMax};
}

Zone* AddZone(Territory& territory, int staticMin, int staticMax, int dynamicMin, int dynamicMax)
{
    auto* zone = new Zone(&territory, 75.0F);
    zone->SetStaticMin(staticMin);
    zone->SetStaticMax(staticMax);
    zone->SetDynamicMin(dynamicMin);
    zone->SetDynamicMax(dynamicMax);
    return territory.AddZone(zone) ? zone : nullptr;
}

QVector<QRgb> ZoneColors(const Territory& territory)
{
    QVector<QRgb> colors;
    for (const Zone* zone : territory.Zones()) {
        colors.append(zone->Color().rgba());
    }
    return colors;
}

QString Text(const Territory& territory, bool exportMode)
{
    return XmlText([&](QXmlStreamWriter& xml) { territory.Write(xml, exportMode); });
}

} // namespace

class tst_Territory : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void NewTerritoryHasTheDefaults();
    void IdsCountUp();
    void EditorTerritoriesHaveTheRolesOfTheTree();
    void NamedTerritoriesKeepTheirNameInTheEditor();
    void BatchTerritoriesHaveNoRoles();
    void RolesFollowTheLastWindow();
    void TakesEachZoneOnce();
    void RefusesTheZoneOfAnotherTerritory();
    void RemovedZonesAreTheCallers();
    void TotalsAreTheSumsOverTheZones();
    void TotalsFollowAnEditedZone();
    void TotalsWrap_data();
    void TotalsWrap();
    void ColorKeepsTheAlpha();
    void ColorOfOtherAlphaChangesNothing();
    void AlphaKeepsTheColors();
    void RgbaReplacesColorAndAlpha();
    void SwatchFollowsTheColor();
    void ZonesCanBeLocked();
    void ZonesCanBeHidden();
    void CopiesOfTheSelectionJoinTerritoryAndScene();
    void CopiesKeepTheColorOfTheirSource();
    void CopiesFollowTheOrderOfTheirSources();
    void OtherSelectedItemsAreNotCopied();
    void ZonesAreWrittenByAscendingId();
    void ProjectFilesHoldNameAndVisibility();
    void ExportFilesHoldTheColorOnly();
    void ReadsTheZones();
    void ReadZonesJoinTheScene();
    void ReadingStopsAtTheEndTag();
    void ReadingReportsMalformedText();
};

void tst_Territory::init()
{
    ProjectSettings::Instance().SetSizes(2048, 2048, 15360, 15360);
}

void tst_Territory::NewTerritoryHasTheDefaults()
{
    const Territory territory;
    QCOMPARE(territory.Color().rgba(), 0xFF000000U);
    QVERIFY(!territory.IsVisible());
    QVERIFY(territory.Zones().isEmpty());
    QCOMPARE(Numbers(territory.Totals()), QVector<int>(4));
    QCOMPARE(territory.GetType(), nullptr);
}

void tst_Territory::IdsCountUp()
{
    const Territory first;
    const int second = Territory("second").Id();
    QCOMPARE(second, first.Id() + 1);
    QCOMPARE(Territory().Id(), second + 1);
}

void tst_Territory::EditorTerritoriesHaveTheRolesOfTheTree()
{
    const QWidget window;
    const Territory territory;
    QCOMPARE(territory.text(), QString("Territory %1").arg(territory.Id()));
    QVERIFY(territory.isCheckable());
    QVERIFY(territory.isEditable());
    QCOMPARE(territory.checkState(), Qt::Unchecked);
    QCOMPARE(territory.data(Qt::UserRole), QVariant(territory.Id()));
    QCOMPARE(territory.data(Qt::DecorationRole).value<QColor>(), QColor(Qt::black));
}

void tst_Territory::NamedTerritoriesKeepTheirNameInTheEditor()
{
    const QWidget window;
    const Territory territory("North");
    QCOMPARE(territory.text(), "North");
    QVERIFY(territory.isCheckable());
    QCOMPARE(territory.data(Qt::UserRole), QVariant(territory.Id()));
    QVERIFY(Territory(QString()).text().isEmpty());
}

void tst_Territory::BatchTerritoriesHaveNoRoles()
{
    Territory territory;
    territory.SetRgba(0x80FF0000);
    territory.SetAlpha(3);
    QVERIFY(territory.text().isEmpty());
    QVERIFY(!territory.isCheckable());
    QVERIFY(!territory.data(Qt::UserRole).isValid());
    QVERIFY(!territory.data(Qt::DecorationRole).isValid());
    QCOMPARE(Territory("North").text(), "North");
}

void tst_Territory::RolesFollowTheLastWindow()
{
    auto window = std::make_unique<QWidget>();
    QVERIFY(Territory().isCheckable());
    window.reset();
    QVERIFY(!Territory().isCheckable());
}

void tst_Territory::TakesEachZoneOnce()
{
    Territory territory;
    QVERIFY(!territory.AddZone(nullptr));
    Zone* zone = AddZone(territory, 1, 2, 3, 4);
    QVERIFY(zone);
    QVERIFY(!territory.AddZone(zone));
    QCOMPARE(territory.Zones().size(), 1);
    QCOMPARE(territory.Zones().value(zone->Id()), zone);
    QCOMPARE(zone->Holder(), &territory);
    QCOMPARE(Numbers(territory.Totals()), (QVector<int>{1, 2, 3, 4}));
}

void tst_Territory::RefusesTheZoneOfAnotherTerritory()
{
    Territory holder;
    Territory other;
    Zone* zone = AddZone(holder, 1, 2, 3, 4);
    QVERIFY(!other.AddZone(zone));
    QVERIFY(other.Zones().isEmpty());
    QCOMPARE(zone->Holder(), &holder);
}

void tst_Territory::RemovedZonesAreTheCallers()
{
    Territory territory;
    Zone* kept = AddZone(territory, 1, 2, 3, 4);
    const std::unique_ptr<Zone> removed(AddZone(territory, 10, 20, 30, 40));
    territory.RemoveZone(removed->Id());
    territory.RemoveZone(removed->Id());
    territory.RemoveZone(-1);
    QCOMPARE(removed->Holder(), nullptr);
    QCOMPARE(removed->GetTerritory(), &territory);
    QCOMPARE(territory.Zones().values(), QList<Zone*>{kept});
    QCOMPARE(Numbers(territory.Totals()), (QVector<int>{1, 2, 3, 4}));
}

void tst_Territory::TotalsAreTheSumsOverTheZones()
{
    Territory territory;
    AddZone(territory, 1, 2, 3, 4);
    AddZone(territory, 10, 20, 30, 40);
    AddZone(territory, -100, 0, 0, 400);
    QCOMPARE(Numbers(territory.Totals()), (QVector<int>{-89, 22, 33, 444}));
}

void tst_Territory::TotalsFollowAnEditedZone()
{
    Territory territory;
    Zone* zone = AddZone(territory, 1, 2, 3, 4);
    AddZone(territory, 10, 20, 30, 40);
    zone->SetStaticMin(5);
    zone->SetStaticMax(6);
    zone->SetDynamicMin(7);
    zone->SetDynamicMax(8);
    QCOMPARE(Numbers(territory.Totals()), (QVector<int>{15, 26, 37, 48}));
}

void tst_Territory::TotalsWrap_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("sum");
    QTest::newRow("over the top") << MaxInt << 1 << MinInt;
    QTest::newRow("under the bottom") << MinInt << -1 << MaxInt;
    QTest::newRow("twice the top") << MaxInt << MaxInt << -2;
    QTest::newRow("twice the bottom") << MinInt << MinInt << 0;
}

void tst_Territory::TotalsWrap()
{
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(int, sum);
    TerritoryType type;
    Territory* territory = type.NewTerritory();
    AddZone(*territory, first, first, first, first);
    AddZone(*territory, second, second, second, second);
    QCOMPARE(Numbers(territory->Totals()), QVector<int>(4, sum));
    QCOMPARE(Numbers(type.Totals()), QVector<int>(4, sum));
}

void tst_Territory::ColorKeepsTheAlpha()
{
    Territory territory;
    territory.SetRgba(0x80102030);
    AddZone(territory, 0, 0, 0, 0);
    AddZone(territory, 0, 0, 0, 0);
    territory.SetColor(QColor(1, 2, 3, 4));
    QCOMPARE(territory.Color().rgba(), 0x80010203U);
    QCOMPARE(ZoneColors(territory), QVector<QRgb>(2, 0x80010203));
}

void tst_Territory::ColorOfOtherAlphaChangesNothing()
{
    Territory territory;
    territory.SetRgba(0x80102030);
    Zone* zone = AddZone(territory, 0, 0, 0, 0);
    zone->SetColor(Qt::green);
    territory.SetColor(QColor(0x10, 0x20, 0x30, 0xFF));
    QCOMPARE(territory.Color().rgba(), 0x80102030U);
    QCOMPARE(zone->Color(), QColor(Qt::green));
}

void tst_Territory::AlphaKeepsTheColors()
{
    Territory territory;
    territory.SetRgba(0x80102030);
    AddZone(territory, 0, 0, 0, 0);
    AddZone(territory, 0, 0, 0, 0)->SetColor(QColor(1, 2, 3));
    territory.SetAlpha(0x80);
    QCOMPARE(ZoneColors(territory), (QVector<QRgb>{0x80102030, 0xFF010203}));
    territory.SetAlpha(7);
    QCOMPARE(territory.Color().rgba(), 0x07102030U);
    QCOMPARE(ZoneColors(territory), (QVector<QRgb>{0x07102030, 0x07010203}));
}

void tst_Territory::RgbaReplacesColorAndAlpha()
{
    Territory territory;
    AddZone(territory, 0, 0, 0, 0);
    territory.SetRgba(0x04010203);
    QCOMPARE(territory.Color().rgba(), 0x04010203U);
    QCOMPARE(ZoneColors(territory), QVector<QRgb>{0x04010203});
    AddZone(territory, 0, 0, 0, 0)->SetColor(Qt::green);
    territory.SetRgba(0x04010203);
    QCOMPARE(ZoneColors(territory), (QVector<QRgb>{0x04010203, 0xFF00FF00}));
}

void tst_Territory::SwatchFollowsTheColor()
{
    const QWidget window;
    Territory territory;
    const auto swatch = [&] { return territory.data(Qt::DecorationRole).value<QColor>().rgba(); };
    territory.SetRgba(0x80102030);
    QCOMPARE(swatch(), 0x80102030U);
    territory.SetAlpha(7);
    QCOMPARE(swatch(), 0x07102030U);
    territory.SetColor(QColor(1, 2, 3));
    QCOMPARE(swatch(), 0x07010203U);
}

void tst_Territory::ZonesCanBeLocked()
{
    Territory territory;
    const Zone* zone = AddZone(territory, 0, 0, 0, 0);
    territory.SetZonesEditable(false);
    QCOMPARE(zone->flags(), QGraphicsItem::ItemSendsGeometryChanges);
    territory.SetZonesEditable(true);
    QCOMPARE(zone->flags(), Zone(nullptr).flags());
}

void tst_Territory::ZonesCanBeHidden()
{
    Territory territory;
    const Zone* zone = AddZone(territory, 0, 0, 0, 0);
    QVERIFY(zone->isVisible());
    territory.SetVisible(false);
    QVERIFY(!zone->isVisible());
    QVERIFY(!territory.IsVisible());
    territory.SetVisible(true);
    QVERIFY(zone->isVisible());
    QVERIFY(territory.IsVisible());
}

namespace {

/// Two zones of one territory in a scene, both selected, and another territory.
struct SelectionScene
{
    SelectionScene()
    {
        source.SetRgba(0x80FF0000);
        for (const int count : {1, 10}) {
            Zone* zone = AddZone(source, count, count, count, count);
            zone->SetRadius(75.0F * float(count));
            scene.addItem(zone);
            zone->setSelected(true);
        }
    }

    QGraphicsScene scene;
    Territory source;
    TerritoryType type;
    Territory* target = type.NewTerritory();
};

} // namespace

void tst_Territory::CopiesOfTheSelectionJoinTerritoryAndScene()
{
    SelectionScene selection;
    selection.target->AddCopiesOfSelection(selection.scene);
    QCOMPARE(selection.source.Zones().size(), 2);
    QCOMPARE(selection.target->Zones().size(), 2);
    QCOMPARE(selection.scene.items().size(), 4);
    QCOMPARE(selection.scene.selectedItems().size(), 2);
    for (const Zone* copy : selection.target->Zones()) {
        QCOMPARE(copy->scene(), &selection.scene);
        QCOMPARE(copy->Holder(), selection.target);
        QVERIFY(!selection.source.Zones().contains(copy->Id()));
    }
    QCOMPARE(Numbers(selection.target->Totals()), QVector<int>(4, 11));
    QCOMPARE(Numbers(selection.type.Totals()), QVector<int>(4, 11));
}

void tst_Territory::CopiesKeepTheColorOfTheirSource()
{
    SelectionScene selection;
    selection.target->SetRgba(0xFF00FF00);
    selection.target->AddCopiesOfSelection(selection.scene);
    for (const Zone* copy : selection.target->Zones()) {
        QCOMPARE(copy->GetTerritory(), &selection.source);
    }
    QCOMPARE(ZoneColors(*selection.target), QVector<QRgb>(2, 0x80FF0000));
}

void tst_Territory::CopiesFollowTheOrderOfTheirSources()
{
    QGraphicsScene scene;
    Territory source;
    QVector<int> counts;
    for (int count = 0; count < 32; ++count) {
        Zone* zone = AddZone(source, count, 0, 0, 0);
        scene.addItem(zone);
        zone->setSelected(true);
        counts.append(count);
    }
    Territory target;
    target.AddCopiesOfSelection(scene);
    QVector<int> copied;
    for (const Zone* copy : target.Zones()) {
        copied.append(copy->Counts().staticMin);
    }
    QCOMPARE(copied, counts);
}

void tst_Territory::OtherSelectedItemsAreNotCopied()
{
    SelectionScene selection;
    QGraphicsItem* circle = selection.scene.addEllipse(0, 0, 10, 10);
    circle->setFlag(QGraphicsItem::ItemIsSelectable);
    circle->setSelected(true);
    selection.target->AddCopiesOfSelection(selection.scene);
    QCOMPARE(selection.target->Zones().size(), 2);
}

void tst_Territory::ZonesAreWrittenByAscendingId()
{
    Territory territory;
    auto* first = new Zone(&territory);
    auto* second = new Zone(&territory);
    first->SetStaticMin(1);
    second->SetStaticMin(2);
    territory.AddZone(second);
    territory.AddZone(first);
    const QString text = Text(territory, true);
    QVERIFY(text.indexOf("smin=\"1\"") < text.indexOf("smin=\"2\""));
}

void tst_Territory::ProjectFilesHoldNameAndVisibility()
{
    Territory territory("A & \"B\"");
    QCOMPARE(Text(territory, false), "<territory name=\"A &amp; &quot;B&quot;\" visible=\"0\" "
                                     "color=\"4278190080\"/>");
    territory.SetVisible(true);
    territory.SetRgba(2);
    AddZone(territory, 1, 2, 3, 4);
    QCOMPARE(Text(territory, false),
             "<territory name=\"A &amp; &quot;B&quot;\" visible=\"1\" color=\"2\">"
             "<zone name=\"Rest\" smin=\"1\" smax=\"2\" dmin=\"3\" dmax=\"4\" x=\"0\" z=\"15360\" "
             "r=\"75\" d=\"2\"/></territory>");
}

void tst_Territory::ExportFilesHoldTheColorOnly()
{
    Territory territory("North");
    territory.SetVisible(true);
    AddZone(territory, 1, 2, 3, 4);
    QCOMPARE(Text(territory, true),
             "<territory color=\"4278190080\">"
             "<zone name=\"Rest\" smin=\"1\" smax=\"2\" dmin=\"3\" dmax=\"4\" x=\"0\" z=\"15360\" "
             "r=\"75\"/></territory>");
}

void tst_Territory::ReadsTheZones()
{
    ElementReader xml("<territory><zone name=\"Rest\" smin=\"1\"/><note><zone name=\"Graze\" "
                      "smin=\"2\"/></note><other smin=\"4\"/></territory>");
    Territory territory;
    QVERIFY(territory.Read(xml, nullptr));
    QCOMPARE(territory.Zones().size(), 2);
    QCOMPARE(territory.Totals().staticMin, 3);
    for (const Zone* zone : territory.Zones()) {
        QCOMPARE(zone->GetTerritory(), &territory);
        QCOMPARE(zone->scene(), nullptr);
    }
}

void tst_Territory::ReadZonesJoinTheScene()
{
    ProjectSettings::Instance().SetSizes(2048, 2048, 4096, 4096);
    QGraphicsScene scene;
    Territory territory;
    ElementReader xml("<territory><zone x=\"2000\" z=\"2096\"/></territory>");
    QVERIFY(territory.Read(xml, &scene));
    QCOMPARE(scene.items(), QList<QGraphicsItem*>{territory.Zones().first()});
    QCOMPARE(territory.Zones().first()->scenePos(), QPointF(1000, 1000));
}

void tst_Territory::ReadingStopsAtTheEndTag()
{
    ElementReader xml("<list><territory><zone/></territory><zone/></list>");
    QVERIFY(xml.readNextStartElement());
    Territory territory;
    QVERIFY(territory.Read(xml, nullptr));
    QCOMPARE(territory.Zones().size(), 1);
    QVERIFY(xml.isEndElement());
    QCOMPARE(xml.name(), QString("territory"));
}

void tst_Territory::ReadingReportsMalformedText()
{
    ElementReader xml("<territory><zone smin=\"1\"/><zone smin=\"2\"></territory>");
    Territory territory;
    QVERIFY(!territory.Read(xml, nullptr));
    QCOMPARE(territory.Zones().size(), 2);
}

QTEST_MAIN(tst_Territory)
#include "tst_Territory.moc"
