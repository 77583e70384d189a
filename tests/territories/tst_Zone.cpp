#include "territories/Zone.h"

#include "app/ProjectSettings.h"
#include "territories/Territory.h"
#include "tests/support/Random.h"
#include "tests/support/XmlText.h"

#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QTest>

#include <memory>

namespace {

QString Text(const Zone& zone, bool exportMode)
{
    return XmlText([&](QXmlStreamWriter& xml) { zone.Write(xml, exportMode); });
}

std::unique_ptr<Zone> ZoneFrom(const QString& text)
{
    auto zone = std::make_unique<Zone>(nullptr);
    zone->Read(ElementReader(text));
    return zone;
}

} // namespace

class tst_Zone : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void NewZoneHasTheDefaults();
    void NewZoneTakesTheColorOfItsTerritory();
    void IdsCountUpAndAreItemData();
    void RadiusIsScaledByTheXFactor();
    void UsageFollowsFromTheName_data();
    void UsageFollowsFromTheName();
    void FixedUsagesAreWrittenByTheirName_data();
    void FixedUsagesAreWrittenByTheirName();
    void CountsAreDecimalInts_data();
    void CountsAreDecimalInts();
    void PlacesAreWorldMetres_data();
    void PlacesAreWorldMetres();
    void EachAxisHasItsOwnFactor();
    void AnyPlaceIsWrittenAgainAsItWas();
    void PlacesAreInSinglePrecision();
    void FirstSaveEqualsLaterOnes();
    void MissingPlaceIsTheSouthWestCorner();
    void DepthIsClampedOnReading_data();
    void DepthIsClampedOnReading();
    void DepthMovesInSteps_data();
    void DepthMovesInSteps();
    void ElevenStepsReachTheTop();
    void ProjectFilesHoldTheDepth();
    void ExportFilesHoldNoDepth();
    void EventNamedWaterComesBackAsWater();
    void ZoneOfRadiusZeroIsWritten();
    void SizesOfZeroGiveNoNumbers_data();
    void SizesOfZeroGiveNoNumbers();
    void HugeNumbersAreKept_data();
    void HugeNumbersAreKept();
    void CopyHasTheValuesOfItsSource();
    void CopyTakesTheColorOfTheTerritory();
    void DoubleClickDoesNothing();
};

void tst_Zone::init()
{
    ProjectSettings::Instance().SetSizes(2048, 2048, 15360, 15360);
}

void tst_Zone::NewZoneHasTheDefaults()
{
    Territory territory;
    const Zone zone(&territory);
    QCOMPARE(zone.GetTerritory(), &territory);
    QCOMPARE(zone.Holder(), nullptr);
    QCOMPARE(zone.GetUsage(), 1);
    QVERIFY(zone.EventName().isEmpty());
    QCOMPARE(zone.Counts().staticMin, 0);
    QCOMPARE(zone.Counts().staticMax, 0);
    QCOMPARE(zone.Counts().dynamicMin, 0);
    QCOMPARE(zone.Counts().dynamicMax, 0);
    QCOMPARE(zone.Radius(), 0.0F);
    QCOMPARE(zone.rect(), QRectF());
    QCOMPARE(zone.zValue(), 2.0);
    QCOMPARE(zone.startAngle(), 0);
    QCOMPARE(zone.spanAngle(), 360 * 16);
    QCOMPARE(zone.flags(), QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemIsSelectable |
                               QGraphicsItem::ItemSendsGeometryChanges);
    QCOMPARE(zone.type(), 65551);
}

void tst_Zone::NewZoneTakesTheColorOfItsTerritory()
{
    Territory territory;
    territory.SetRgba(0x40102030);
    const Zone zone(&territory, 75);
    QCOMPARE(zone.Color().rgba(), 0x40102030U);
    territory.SetRgba(0xFF000000);
    QCOMPARE(zone.Color().rgba(), 0x40102030U);
    QCOMPARE(Zone(nullptr).Color().rgba(), 0xFF000000U);
}

void tst_Zone::IdsCountUpAndAreItemData()
{
    const Zone first(nullptr);
    const int nextId = Zone(nullptr).Id() + 1;
    QCOMPARE(nextId, first.Id() + 2);
    const Zone afterDeath(nullptr, 75);
    QCOMPARE(afterDeath.Id(), nextId);
    QCOMPARE(afterDeath.data(256), QVariant(nextId));
}

void tst_Zone::RadiusIsScaledByTheXFactor()
{
    ProjectSettings::Instance().SetSizes(1000, 4000, 2000, 2000);
    Zone zone(nullptr, 100);
    QCOMPARE(zone.Radius(), 50.0F);
    QCOMPARE(zone.rect(), QRectF(-50, -50, 100, 100));
    zone.SetRadius(30);
    QCOMPARE(zone.Radius(), 15.0F);
    QCOMPARE(zone.rect(), QRectF(-15, -15, 30, 30));
}

void tst_Zone::UsageFollowsFromTheName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("usage");
    QTest::addColumn<QString>("eventName");
    QTest::newRow("rest") << "Rest" << 1 << "";
    QTest::newRow("graze") << "Graze" << 2 << "";
    QTest::newRow("water") << "Water" << 3 << "";
    QTest::newRow("hunting ground") << "HuntingGround" << 4 << "";
    QTest::newRow("event") << "Landslide" << 5 << "Landslide";
    QTest::newRow("lower case") << "rest" << 5 << "rest";
    QTest::newRow("upper case") << "WATER" << 5 << "WATER";
    QTest::newRow("a space behind") << "Graze " << 5 << "Graze ";
    QTest::newRow("two words") << "Hunting Ground" << 5 << "Hunting Ground";
    QTest::newRow("none") << "" << 5 << "";
    QTest::newRow("beyond ASCII") << "Größe<&\"" << 5 << "Größe<&\"";
}

void tst_Zone::UsageFollowsFromTheName()
{
    QFETCH(QString, name);
    const auto zone = ZoneFrom(QString("<zone name=\"%1\"/>").arg(name.toHtmlEscaped()));
    QTEST(zone->GetUsage(), "usage");
    QTEST(zone->EventName(), "eventName");
}

void tst_Zone::FixedUsagesAreWrittenByTheirName_data()
{
    QTest::addColumn<int>("usage");
    QTest::addColumn<QString>("name");
    QTest::newRow("rest") << int(Zone::Rest) << "Rest";
    QTest::newRow("graze") << int(Zone::Graze) << "Graze";
    QTest::newRow("water") << int(Zone::Water) << "Water";
    QTest::newRow("hunting ground") << int(Zone::HuntingGround) << "HuntingGround";
    QTest::newRow("event") << int(Zone::DynamicEvent) << "Caravan";
    QTest::newRow("unknown") << 99 << "Caravan";
}

void tst_Zone::FixedUsagesAreWrittenByTheirName()
{
    QFETCH(int, usage);
    QFETCH(QString, name);
    Zone zone(nullptr);
    zone.SetEventName("Caravan");
    zone.SetUsage(usage);
    QVERIFY(Text(zone, true).startsWith(QString("<zone name=\"%1\" ").arg(name)));
}

void tst_Zone::CountsAreDecimalInts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("count");
    QTest::newRow("a number") << "17" << 17;
    QTest::newRow("negative") << "-3" << -3;
    QTest::newRow("smallest") << "-2147483648" << std::numeric_limits<int>::min();
    QTest::newRow("largest") << "2147483647" << std::numeric_limits<int>::max();
    QTest::newRow("too large") << "2147483648" << 0;
    QTest::newRow("fraction") << "1.5" << 0;
    QTest::newRow("hexadecimal") << "0x10" << 0;
    QTest::newRow("leading zero is not octal") << "010" << 10;
    QTest::newRow("word") << "many" << 0;
    QTest::newRow("empty") << "" << 0;
}

void tst_Zone::CountsAreDecimalInts()
{
    QFETCH(QString, text);
    QFETCH(int, count);
    for (const QString& name :
         {QString("smin"), QString("smax"), QString("dmin"), QString("dmax")}) {
        const auto zone = ZoneFrom(QString("<zone %1=\"%2\"/>").arg(name, text));
        QCOMPARE(zone->Counts().staticMin, name == "smin" ? count : 0);
        QCOMPARE(zone->Counts().staticMax, name == "smax" ? count : 0);
        QCOMPARE(zone->Counts().dynamicMin, name == "dmin" ? count : 0);
        QCOMPARE(zone->Counts().dynamicMax, name == "dmax" ? count : 0);
    }
}

void tst_Zone::PlacesAreWorldMetres_data()
{
    QTest::addColumn<int>("worldSize");
    QTest::addColumn<int>("layerSize");
    QTest::addColumn<QString>("read");
    QTest::addColumn<QString>("written");
    const auto place = [](const char* x, const char* z, const char* r) {
        return QString("x=\"%1\" z=\"%2\" r=\"%3\"")
            .arg(QLatin1String(x), QLatin1String(z), QLatin1String(r));
    };
    QTest::newRow("exact") << 15360 << 2048 << place("7500", "7500", "100")
                           << place("7500", "7500", "100");
    QTest::newRow("near the origin")
        << 15360 << 2048 << place("1", "1", "50") << place("1", "0.999756", "50");
    QTest::newRow("fractions") << 15360 << 2048 << place("4321.09", "0.3", "75.5")
                               << place("4321.09", "0.300293", "75.5");
    QTest::newRow("seven digits") << 15360 << 2048 << place("1234.565", "987.654", "333.333")
                                  << place("1234.57", "987.654", "333.333");
    QTest::newRow("negative") << 15360 << 2048 << place("-250.5", "-10", "12.34567")
                              << place("-250.5", "-9.99939", "12.3457");
    QTest::newRow("zero, odd factor")
        << 10000 << 1536 << place("0", "0", "0") << place("0", "0.000244141", "0");
    QTest::newRow("outside, odd factor")
        << 10000 << 1536 << place("20000", "20000", "32768") << place("20000", "20000", "32768");
    QTest::newRow("seven digits, odd factor")
        << 10000 << 1536 << place("1234.565", "987.654", "333.333")
        << place("1234.56", "987.654", "333.333");
    QTest::newRow("near the origin, small world")
        << 12800 << 2048 << place("1", "1", "50") << place("1", "1.00021", "50");
    QTest::newRow("negative, small world") << 12800 << 2048 << place("-250.5", "-10", "12.34567")
                                           << place("-250.5", "-10.0006", "12.3457");
    QTest::newRow("large layers") << 5000 << 4096 << place("100", "100", "100")
                                  << place("100", "99.9999", "100");
    QTest::newRow("fractions, large layers")
        << 5000 << 4096 << place("4321.09", "0.3", "75.5") << place("4321.09", "0.300109", "75.5");
}

void tst_Zone::PlacesAreWorldMetres()
{
    QFETCH(int, worldSize);
    QFETCH(int, layerSize);
    QFETCH(QString, read);
    QFETCH(QString, written);
    ProjectSettings::Instance().SetSizes(layerSize, layerSize, worldSize, worldSize);
    const auto zone = ZoneFrom(QString("<zone name=\"Rest\" %1/>").arg(read));
    const QString text = Text(*zone, true);
    QVERIFY2(text.endsWith(QLatin1Char(' ') + written + "/>"), qPrintable(text));
}

void tst_Zone::EachAxisHasItsOwnFactor()
{
    ProjectSettings::Instance().SetSizes(1000, 500, 4000, 1000);
    const auto zone = ZoneFrom("<zone x=\"400\" z=\"400\" r=\"40\"/>");
    QCOMPARE(zone->pos(), QPointF(100, 300));
    QCOMPARE(zone->Radius(), 10.0F);
    QVERIFY(Text(*zone, true).endsWith(" x=\"400\" z=\"400\" r=\"40\"/>"));
}

void tst_Zone::AnyPlaceIsWrittenAgainAsItWas()
{
    // Drags leave zones at any fraction of a pixel, also close to the southern edge.
    ProjectSettings::Instance().SetSizes(64, 64, 640, 640);
    for (int i = 0; i < 10000; ++i) {
        Zone zone(nullptr, 100);
        zone.setPos(64 * i / 9999.0, 64 - i / 7777.0);
        const QString text = Text(zone, false);
        QCOMPARE(Text(*ZoneFrom(text), false), text);
    }
}

void tst_Zone::PlacesAreInSinglePrecision()
{
    // 0.1 lies between two of them.
    constexpr float nearest = 0.1F;
    constexpr float sum = 4.2F;
    Zone zone(nullptr, 100);
    zone.setPos(0.1, 4.2);
    QVERIFY(zone.pos().x() == double(nearest) && zone.pos().x() != 0.1);
    QVERIFY(zone.pos().y() == double(sum) && zone.pos().y() != 4.2);
    zone.setX(4.2);
    zone.setY(0.1);
    QVERIFY(zone.pos().x() == double(sum) && zone.pos().y() == double(nearest));
    zone.setPos(0, 0);
    zone.moveBy(0.1, 4.2);
    QVERIFY(zone.pos().x() == double(nearest) && zone.pos().y() == double(sum));
    const std::unique_ptr<Zone> copy(zone.Copy());
    QVERIFY(copy->pos().x() == double(nearest) && copy->pos().y() == double(sum));
}

void tst_Zone::FirstSaveEqualsLaterOnes()
{
    Random random;
    const auto fraction = [&random] { return random.Bits() / 4294967295.0; };
    for (int i = 0; i < 20000; ++i) {
        const int layerSize = 1 << random.Between(6, 14);
        // Other worlds move zones close to the southern edge by a hair.
        const int worldSize = 1 << random.Between(6, 13);
        ProjectSettings::Instance().SetSizes(layerSize, layerSize, worldSize, worldSize);
        Zone zone(nullptr, 100);
        zone.setPos(layerSize * fraction(), layerSize * fraction());
        zone.moveBy(fraction(), -fraction());
        const QString first = Text(zone, false);
        const auto loaded = ZoneFrom(first);
        const QString second = Text(*loaded, false);
        QCOMPARE(second, first);
        QCOMPARE(Text(*ZoneFrom(second), false), first);
    }
}

void tst_Zone::MissingPlaceIsTheSouthWestCorner()
{
    const auto zone = ZoneFrom("<zone x=\"\" z=\"east\"/>");
    QCOMPARE(zone->pos(), QPointF(0, 2048));
    QCOMPARE(zone->Radius(), 0.0F);
}

void tst_Zone::DepthIsClampedOnReading_data()
{
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<int>("depth");
    QTest::newRow("missing") << "" << 2;
    QTest::newRow("empty") << "d=\"\"" << 2;
    QTest::newRow("bad") << "d=\"deep\"" << 2;
    QTest::newRow("negative") << "d=\"-2147483648\"" << 2;
    QTest::newRow("below") << "d=\"1\"" << 2;
    QTest::newRow("lowest") << "d=\"2\"" << 2;
    QTest::newRow("within") << "d=\"100\"" << 100;
    QTest::newRow("highest") << "d=\"255\"" << 255;
    QTest::newRow("above") << "d=\"256\"" << 255;
    QTest::newRow("far above") << "d=\"2147483647\"" << 255;
}

void tst_Zone::DepthIsClampedOnReading()
{
    QFETCH(QString, attribute);
    QFETCH(int, depth);
    const auto zone = ZoneFrom(QString("<zone %1/>").arg(attribute));
    QCOMPARE(zone->zValue(), qreal(depth));
}

void tst_Zone::DepthMovesInSteps_data()
{
    QTest::addColumn<double>("depth");
    QTest::addColumn<double>("front");
    QTest::addColumn<double>("back");
    QTest::newRow("lowest") << 2.0 << 25.0 << 2.0;
    QTest::newRow("last one down") << 25.0 << 48.0 << 2.0;
    QTest::newRow("middle") << 100.0 << 123.0 << 77.0;
    QTest::newRow("cut before the step") << 100.9 << 123.0 << 77.0;
    QTest::newRow("last one up") << 232.0 << 255.0 << 209.0;
    QTest::newRow("clamped") << 233.0 << 255.0 << 210.0;
    QTest::newRow("highest") << 255.0 << 255.0 << 232.0;
    QTest::newRow("huge") << 1e300 << 255.0 << 255.0;
    QTest::newRow("no number") << qQNaN() << 23.0 << 2.0;
}

void tst_Zone::DepthMovesInSteps()
{
    QFETCH(double, depth);
    Zone zone(nullptr);
    zone.setZValue(depth);
    zone.SetDepth(zone.DepthInFront());
    QTEST(zone.zValue(), "front");
    zone.setZValue(depth);
    zone.SetDepth(zone.DepthBehind());
    QTEST(zone.zValue(), "back");
}

void tst_Zone::ElevenStepsReachTheTop()
{
    Zone zone(nullptr);
    for (int step = 0; step < 10; ++step) {
        zone.SetDepth(zone.DepthInFront());
    }
    QCOMPARE(zone.zValue(), 232.0);
    zone.SetDepth(zone.DepthInFront());
    QCOMPARE(zone.zValue(), 255.0);
}

void tst_Zone::ProjectFilesHoldTheDepth()
{
    const QString text = "<zone name=\"Graze\" smin=\"1\" smax=\"2\" dmin=\"-3\" "
                         "dmax=\"4\" x=\"1500\" z=\"750\" r=\"75\" d=\"48\"/>";
    const auto zone = ZoneFrom(text);
    QCOMPARE(Text(*zone, false), text);
    zone->setZValue(48.9);
    QCOMPARE(Text(*zone, false), text);
}

void tst_Zone::ExportFilesHoldNoDepth()
{
    const auto zone = ZoneFrom(QStringLiteral(
        "<zone d=\"48\" r=\"75\" z=\"750\" x=\"1500\" dmax=\"4\" smin=\"1\" name=\"Flood\"/>"));
    const QString text = "<zone name=\"Flood\" smin=\"1\" smax=\"0\" dmin=\"0\" "
                         "dmax=\"4\" x=\"1500\" z=\"750\" r=\"75\"/>";
    QCOMPARE(Text(*zone, true), text);
    QCOMPARE(ZoneFrom(text)->zValue(), 2.0);
}

void tst_Zone::EventNamedWaterComesBackAsWater()
{
    Zone zone(nullptr);
    zone.SetUsage(Zone::DynamicEvent);
    zone.SetEventName("Water");
    const auto read = ZoneFrom(Text(zone, false));
    QCOMPARE(read->GetUsage(), int(Zone::Water));
    QVERIFY(read->EventName().isEmpty());
}

void tst_Zone::ZoneOfRadiusZeroIsWritten()
{
    const Zone zone(nullptr, 0.0F);
    QVERIFY(zone.rect().isEmpty());
    QVERIFY(Text(zone, true).contains(" r=\"0\""));
}

void tst_Zone::SizesOfZeroGiveNoNumbers_data()
{
    QTest::addColumn<int>("layerSize");
    QTest::addColumn<int>("worldSize");
    QTest::addColumn<QString>("place");
    QTest::newRow("no layer") << 0 << 15360 << "x=\"nan\" z=\"nan\" r=\"nan\"";
    QTest::newRow("no world") << 2048 << 0 << "x=\"nan\" z=\"nan\" r=\"nan\"";
    QTest::newRow("neither") << 0 << 0 << "x=\"nan\" z=\"nan\" r=\"nan\"";
}

void tst_Zone::SizesOfZeroGiveNoNumbers()
{
    QFETCH(int, layerSize);
    QFETCH(int, worldSize);
    QFETCH(QString, place);
    ProjectSettings::Instance().SetSizes(layerSize, layerSize, worldSize, worldSize);
    const auto zone = ZoneFrom("<zone x=\"10\" z=\"10\" r=\"10\" d=\"4\"/>");
    const QString text = Text(*zone, false);
    QVERIFY2(text.contains(place), qPrintable(text));
}

void tst_Zone::HugeNumbersAreKept_data()
{
    QTest::addColumn<QString>("read");
    QTest::addColumn<QString>("written");
    QTest::newRow("exponent") << "1.5e20"
                              << "1.5e+20";
    QTest::newRow("infinite") << "inf"
                              << "inf";
    QTest::newRow("no number") << "nan"
                               << "nan";
    QTest::newRow("tiny") << "1e-9"
                          << "1e-09";
}

void tst_Zone::HugeNumbersAreKept()
{
    QFETCH(QString, read);
    QFETCH(QString, written);
    QGraphicsScene scene;
    auto zone = ZoneFrom(QString("<zone x=\"%1\" r=\"%1\"/>").arg(read));
    scene.addItem(zone.get());
    const QString text = Text(*zone, true);
    QVERIFY2(text.contains(QString("x=\"%1\"").arg(written)), qPrintable(text));
    QVERIFY2(text.contains(QString("r=\"%1\"").arg(written)), qPrintable(text));
}

void tst_Zone::CopyHasTheValuesOfItsSource()
{
    ProjectSettings::Instance().SetSizes(2048, 2048, 8192, 8192);
    Territory territory;
    QGraphicsScene scene;
    auto* source = new Zone(&territory, 150);
    QVERIFY(territory.AddZone(source));
    scene.addItem(source);
    source->SetUsage(Zone::DynamicEvent);
    source->SetEventName("Flood");
    source->SetStaticMin(1);
    source->SetStaticMax(2);
    source->SetDynamicMin(3);
    source->SetDynamicMax(4);
    source->setPos(7.25, 8.5);
    source->setZValue(71);

    const std::unique_ptr<Zone> copy(source->Copy());
    QVERIFY(copy->Id() > source->Id());
    QCOMPARE(Text(*copy, false), Text(*source, false));
    QCOMPARE(copy->GetTerritory(), &territory);
    QCOMPARE(copy->Radius(), source->Radius());
    QCOMPARE(copy->rect(), source->rect());
    QCOMPARE(copy->Holder(), nullptr);
    QCOMPARE(copy->scene(), nullptr);
    QCOMPARE(territory.Zones().size(), 1);
    QCOMPARE(copy->flags(), Zone(nullptr).flags());
}

void tst_Zone::CopyTakesTheColorOfTheTerritory()
{
    Territory territory;
    territory.SetRgba(0x80FF0000);
    Zone source(&territory, 150);
    source.SetColor(Qt::green);
    const std::unique_ptr<Zone> copy(source.Copy());
    QCOMPARE(copy->Color().rgba(), 0x80FF0000U);
}

void tst_Zone::DoubleClickDoesNothing()
{
    QGraphicsScene scene;
    Zone zone(nullptr, 150);
    scene.addItem(&zone);
    QGraphicsSceneMouseEvent click(QEvent::GraphicsSceneMouseDoubleClick);
    click.setButton(Qt::LeftButton);
    click.setButtons(Qt::LeftButton);
    scene.sendEvent(&zone, &click);
    QVERIFY(!zone.isSelected());
}

QTEST_MAIN(tst_Zone)
#include "tst_Zone.moc"
