#include "territories/Zone.h"

#include "app/ProjectSettings.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"

#include <QGraphicsScene>
#include <QStandardItemModel>
#include <QTest>

#include <algorithm>
#include <memory>

namespace {

/// The objects that can be destroyed separately. Source and target are two territories of one type.
/// The source holds the zone; the target holds the copy, whose GetTerritory() is the source.
enum Part
{
    Scene,
    ZonePart,
    Copy,
    Source,
    Target,
    Type,
    List,
    PartCount,
};

/// The objects, and a record of which of them exist.
class World
{
public:
    World();

    /// Does nothing if the object is already destroyed.
    void Destroy(Part part);
    bool Lives(Part part) const { return m_lives[part]; }
    void CheckLinks() const;

private:
    void MarkDead(std::initializer_list<Part> parts);
    void CheckTable(Part territoryPart, Part zonePart) const;

    std::array<bool, PartCount> m_lives;
    std::unique_ptr<QGraphicsScene> m_scene = std::make_unique<QGraphicsScene>();
    std::unique_ptr<TerritoryTypeList> m_list = std::make_unique<TerritoryTypeList>();
    TerritoryType* m_type = new TerritoryType("Deer");
    Territory* m_source = m_type->NewTerritory();
    Territory* m_target = m_type->NewTerritory();
    Zone* m_zone = new Zone(m_source, 10.0F);
    Zone* m_copy = nullptr;
};

World::World()
{
    m_lives.fill(true);
    m_list->AddType(m_type);
    m_source->AddZone(m_zone);
    m_scene->addItem(m_zone);
    m_zone->setSelected(true);
    m_target->AddCopiesOfSelection(*m_scene);
    m_copy = m_target->Zones().first();
}

void World::MarkDead(std::initializer_list<Part> parts)
{
    for (const Part part : parts) {
        m_lives[part] = false;
    }
}

void World::Destroy(Part part)
{
    if (!m_lives[part]) {
        return;
    }
    switch (part) {
    case Scene:
        m_scene.reset();
        MarkDead({Scene, ZonePart, Copy});
        break;
    case ZonePart:
        delete m_zone;
        MarkDead({ZonePart});
        break;
    case Copy:
        delete m_copy;
        MarkDead({Copy});
        break;
    case Source:
        m_type->RemoveTerritory(m_source->Id());
        MarkDead({Source, ZonePart});
        break;
    case Target:
        m_type->RemoveTerritory(m_target->Id());
        MarkDead({Target, Copy});
        break;
    case Type:
        m_list->model()->removeRow(m_type->row());
        MarkDead({Type, Source, Target, ZonePart, Copy});
        break;
    default:
        m_list.reset();
        MarkDead({List, Type, Source, Target, ZonePart, Copy});
    }
}

void World::CheckTable(Part territoryPart, Part zonePart) const
{
    if (!Lives(territoryPart)) {
        return;
    }
    const Territory* territory = territoryPart == Source ? m_source : m_target;
    Zone* zone = zonePart == ZonePart ? m_zone : m_copy;
    if (!Lives(zonePart)) {
        QVERIFY(territory->Zones().isEmpty());
        return;
    }
    QCOMPARE(territory->Zones().values(), QList<Zone*>{zone});
    QCOMPARE(zone->Holder(), territory);
    QCOMPARE(zone->GetTerritory(), Lives(Source) ? m_source : m_target);
}

void World::CheckLinks() const
{
    CheckTable(Source, ZonePart);
    CheckTable(Target, Copy);
    if (Lives(Scene)) {
        QCOMPARE(m_scene->items().size(), int(Lives(ZonePart)) + int(Lives(Copy)));
    }
}

} // namespace

/// Zones, territories and scenes refer to one another. Run this test with the address sanitizer.
class tst_ZoneLifetime : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void AnyOrderOfDestruction();
    void ZoneOutsideAScene();
    void ZoneOfNobody();
    void RemovedZoneOutlivesItsTerritory();
    void CopyOfNobodyForgetsTheDeadTerritory();
    void ZonesInsideOneAnother();
    void SceneAndListOnTheStack_data();
    void SceneAndListOnTheStack();
    void ModelOutlivesTheList();
};

void tst_ZoneLifetime::initTestCase()
{
    ProjectSettings::Instance().SetSizes(1024, 1024, 1024, 1024);
}

void tst_ZoneLifetime::AnyOrderOfDestruction()
{
    std::array<Part, PartCount> order = {Scene, ZonePart, Copy, Source, Target, Type, List};
    do {
        World world;
        world.CheckLinks();
        for (const Part part : order) {
            world.Destroy(part);
            world.CheckLinks();
        }
        if (QTest::currentTestFailed()) {
            return;
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

void tst_ZoneLifetime::ZoneOutsideAScene()
{
    Territory territory;
    auto* zone = new Zone(&territory);
    QVERIFY(territory.AddZone(zone));
    delete zone;
    QVERIFY(territory.Zones().isEmpty());
    QVERIFY(territory.AddZone(new Zone(&territory)));
}

void tst_ZoneLifetime::ZoneOfNobody()
{
    QGraphicsScene scene;
    scene.addItem(new Zone(nullptr));
    auto* zone = new Zone(nullptr);
    scene.addItem(zone);
    delete zone;
    QCOMPARE(scene.items().size(), 1);
}

void tst_ZoneLifetime::RemovedZoneOutlivesItsTerritory()
{
    std::unique_ptr<Zone> zone;
    {
        Territory territory;
        zone = std::make_unique<Zone>(&territory);
        QVERIFY(territory.AddZone(zone.get()));
        territory.RemoveZone(zone->Id());
    }
    QCOMPARE(zone->GetTerritory(), nullptr);
    Territory next;
    zone->SetTerritory(&next);
    QVERIFY(next.AddZone(zone.release()));
}

void tst_ZoneLifetime::CopyOfNobodyForgetsTheDeadTerritory()
{
    std::unique_ptr<Zone> copy;
    {
        Territory territory;
        const Zone zone(&territory);
        copy.reset(zone.Copy());
        QCOMPARE(copy->GetTerritory(), &territory);
    }
    QCOMPARE(copy->GetTerritory(), nullptr);
    const std::unique_ptr<Zone> copyOfCopy(copy->Copy());
    QCOMPARE(copyOfCopy->GetTerritory(), nullptr);
}

void tst_ZoneLifetime::ZonesInsideOneAnother()
{
    Territory territory;
    auto* outer = new Zone(&territory, 10.0F);
    auto* inner = new Zone(&territory, 5.0F, outer);
    QVERIFY(territory.AddZone(outer));
    QVERIFY(territory.AddZone(inner));
    QCOMPARE(territory.Zones().size(), 2);
}

void tst_ZoneLifetime::SceneAndListOnTheStack_data()
{
    QTest::addColumn<bool>("isSceneFirst");
    QTest::newRow("the list dies first") << true;
    QTest::newRow("the scene dies first") << false;
}

void tst_ZoneLifetime::SceneAndListOnTheStack()
{
    QFETCH(bool, isSceneFirst);
    auto scene = std::make_unique<QGraphicsScene>();
    auto list = std::make_unique<TerritoryTypeList>();
    auto* type = new TerritoryType("Deer");
    list->AddType(type);
    Territory* territory = type->NewTerritory();
    auto* zone = new Zone(territory);
    QVERIFY(territory->AddZone(zone));
    scene->addItem(zone);
    if (isSceneFirst) {
        list.reset();
        QVERIFY(scene->items().isEmpty());
    } else {
        scene.reset();
        QVERIFY(territory->Zones().isEmpty());
    }
}

void tst_ZoneLifetime::ModelOutlivesTheList()
{
    QStandardItemModel* model = nullptr;
    {
        TerritoryTypeList list;
        model = list.model();
        list.AddType(new TerritoryType("Deer"));
    }
    QCOMPARE(model->rowCount(), 0);
    model->appendRow(new TerritoryType("late"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QTEST_MAIN(tst_ZoneLifetime)
#include "tst_ZoneLifetime.moc"
