#include "document/edits/ZoneEdits.h"

#include "document/edits/TerritoryEdits.h"
#include "territories/Territory.h"
#include "territories/TerritoryRecords.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/DocumentFixture.h"
#include "tests/support/Models.h"
#include "tests/support/Random.h"
#include "tests/support/XmlText.h"

#include <QMap>
#include <QTest>

#include <iterator>

namespace {

/// "Deer" with the territories "North", of three zones, "South", of two, and "Lake", of none;
/// "Wolf" with "Hill", of one.
class Territories : public DocumentFixture
{
public:
    Territories()
        : north(*territory)
        , south(Add(*type, "South"))
        , lake(Add(*type, "Lake"))
    {
        auto added = std::make_unique<TerritoryType>(QStringLiteral("Wolf"));
        wolf = added.get();
        document.Do(Edits::AddType(document.Types(), std::move(added)));
        hill = &Add(*wolf, "Hill");
        Fill(north, 3);
        Fill(south, 2);
        Fill(*hill, 1);
        // Their ids are between those of the other territories.
        Fill(north, 1);
        document.BeginHistory(true);
    }

    Territory& Add(TerritoryType& parent, const char* name)
    {
        auto added = std::make_unique<Territory>(QString::fromLatin1(name));
        Territory* present = added.get();
        added->SetRgba(qRgba(10 * parent.rowCount(), 20, 30, 200 + parent.rowCount()));
        document.Do(Edits::AddTerritory(parent, std::move(added)));
        return *present;
    }
    void Fill(Territory& holder, int count)
    {
        for (int i = 0; i < count; ++i) {
            ZoneValues values;
            values.radius = 10.5F + float(i);
            values.counts.staticMax = i;
            values.depth = 7 + i;
            document.Do(Edits::InsertZone(holder, {20.0 + 3 * i, 30.0 + 5 * i}, values));
        }
    }

    static QVector<Zone*> ZonesOf(const Territory& holder)
    {
        return QVector<Zone*>(holder.Zones().cbegin(), holder.Zones().cend());
    }
    /// What a save would write.
    QString Saved() const
    {
        return XmlText([this](QXmlStreamWriter& xml) { document.Types().Write(xml); });
    }
    /// Does it, undoes it and does it again.
    void DoTwice(std::unique_ptr<Edit> edit)
    {
        const QString before = Saved();
        const int steps = document.History().index();
        QVERIFY(document.Do(std::move(edit)));
        const QString after = Saved();
        QVERIFY(after != before);
        document.Undo();
        QCOMPARE(Saved(), before);
        QCOMPARE(document.History().index(), steps);
        document.Redo();
        QCOMPARE(Saved(), after);
        QCOMPARE(document.History().index(), steps + 1);
    }

    Territory& north;
    Territory& south;
    Territory& lake;
    TerritoryType* wolf;
    Territory* hill;
};

/// The same numbers, in the same order.
void VerifySame(const QVector<Zone*>& zones, const QVector<Zone*>& others)
{
    QCOMPARE(zones.size(), others.size());
    for (int i = 0; i < zones.size(); ++i) {
        QVERIFY(zones[i]->Values() == others[i]->Values());
        QCOMPARE(zones[i]->pos(), others[i]->pos());
        QCOMPARE(zones[i]->Radius(), others[i]->Radius());
    }
}

} // namespace

/// Edits of many zones and between territories.
class tst_ZoneEdits : public QObject
{
    Q_OBJECT

private slots:
    void ChangesZonesOfSeveralTerritories();
    void WhatStaysTheSameIsNoStep();
    void MovesZonesToATerritory();
    void UndoGivesBackWhatAZoneWas();
    void CopiesZonesToATerritory();
    void JoinsTerritories();
    void SplitsZonesOff();
    void DuplicatesATerritory();
    void AddsZones();
    void ThousandsOfEditsAreUndone();
};

void tst_ZoneEdits::ChangesZonesOfSeveralTerritories()
{
    Territories fixture;
    const QVector<Zone*> north = Territories::ZonesOf(fixture.north);
    Zone* hill = Territories::ZonesOf(*fixture.hill).constFirst();
    QVector<const Territory*> changed;
    QObject::connect(&fixture.document, &Document::ZonesChanged, &fixture.scene,
                     [&changed](const Territory* territory) { changed.append(territory); });
    std::vector<Edits::ZoneChange> changes;
    for (Zone* zone : {north[0], hill, north[1]}) {
        ZoneValues values = zone->Values();
        values.counts.staticMin = 77;
        values.depth = 1000;
        changes.push_back({zone, values, zone->pos() + QPointF(0.1, 2)});
    }
    fixture.DoTwice(Edits::ChangeZones("Change counts of 3 zones", changes));

    QCOMPARE(fixture.document.History().undoText(), "Change counts of 3 zones");
    // Each of the three times for each territory once.
    QCOMPARE(changed, (QVector<const Territory*>{&fixture.north, fixture.hill, &fixture.north,
                                                 fixture.hill, &fixture.north, fixture.hill}));
    QCOMPARE(hill->Counts().staticMin, 77);
    QCOMPARE(hill->Depth(), Zone::MaxDepth);
    QCOMPARE(fixture.north.Totals().staticMin, 154);
    QCOMPARE(north[2]->Counts().staticMin, 0);
}

void tst_ZoneEdits::WhatStaysTheSameIsNoStep()
{
    Territories fixture;
    Zone* zone = Territories::ZonesOf(fixture.north).constFirst();
    // A place that zones round to the present one.
    const QPointF place = zone->pos() + QPointF(1e-9, 0);
    QVERIFY(!fixture.document.Do(Edits::ChangeZones("", {{zone, zone->Values(), place}})));
    QVERIFY(!fixture.document.Do(Edits::MoveZonesTo(fixture.north, {zone})));
    QVERIFY(!fixture.document.Do(Edits::CopyZonesTo(fixture.north, {})));
    QVERIFY(!fixture.document.Do(Edits::JoinTerritories(fixture.north, {&fixture.north})));
    QVERIFY(!fixture.document.Do(Edits::AddZones("", {})));
    QCOMPARE(fixture.document.History().count(), 0);
}

void tst_ZoneEdits::MovesZonesToATerritory()
{
    Territories fixture;
    const QVector<Zone*> north = Territories::ZonesOf(fixture.north);
    const QVector<Zone*> south = Territories::ZonesOf(fixture.south);
    Zone* hill = Territories::ZonesOf(*fixture.hill).constFirst();
    const QPointF place = north[3]->pos();
    fixture.document.SetCurrentTerritory(&fixture.north);
    fixture.north.SetZonesEditable(true);
    fixture.north.SetVisible(true);
    north[3]->setSelected(true);

    fixture.DoTwice(Edits::MoveZonesTo(fixture.south, {north[0], north[3], hill, south[1]}));

    QCOMPARE(fixture.document.History().undoText(), "Move 3 zones to South");
    // By their ids.
    QCOMPARE(Territories::ZonesOf(fixture.south),
             (QVector<Zone*>{north[0], south[0], south[1], hill, north[3]}));
    QCOMPARE(Territories::ZonesOf(fixture.north), (QVector<Zone*>{north[1], north[2]}));
    QCOMPARE(fixture.hill->Zones().size(), 0);
    for (const Zone* zone : {north[0], north[3], hill}) {
        QCOMPARE(zone->Holder(), &fixture.south);
        QCOMPARE(zone->GetTerritory(), &fixture.south);
        QCOMPARE(zone->Color(), fixture.south.Color());
        QCOMPARE(zone->scene(), &fixture.scene);
        QVERIFY(!zone->isSelected());
        QVERIFY(!(zone->flags() & QGraphicsItem::ItemIsMovable));
        QVERIFY(!zone->isVisible());
    }
    QCOMPARE(north[3]->pos(), place);
    fixture.document.Undo();
    QVERIFY(north[3]->flags() & QGraphicsItem::ItemIsMovable);
    QVERIFY(north[3]->flags() & QGraphicsItem::ItemIsSelectable);
    QVERIFY(north[3]->isVisible());
    QCOMPARE(Territories::ZonesOf(fixture.north), north);
}

void tst_ZoneEdits::UndoGivesBackWhatAZoneWas()
{
    Territories fixture;
    // A copy belongs to the territory of its source, in its colour.
    fixture.document.Do(
        Edits::CopyToNewTerritory(fixture.north, Territories::ZonesOf(fixture.north)));
    const auto* copies = dynamic_cast<Territory*>(fixture.type->child(3));
    Zone* copy = Territories::ZonesOf(*copies).constFirst();
    QCOMPARE(copy->GetTerritory(), &fixture.north);
    const QColor color = copy->Color();
    fixture.document.Do(Edits::MoveZonesTo(*fixture.hill, {copy}));
    QCOMPARE(copy->GetTerritory(), fixture.hill);
    QVERIFY(copy->Color() != color);
    fixture.document.Undo();
    QCOMPARE(copy->GetTerritory(), &fixture.north);
    QCOMPARE(copy->Holder(), copies);
    QCOMPARE(copy->Color(), color);
}

void tst_ZoneEdits::CopiesZonesToATerritory()
{
    Territories fixture;
    const QVector<Zone*> zones = Territories::ZonesOf(fixture.north);
    fixture.DoTwice(Edits::CopyZonesTo(*fixture.hill, zones));
    QCOMPARE(fixture.document.History().undoText(), "Copy 4 zones to Hill");
    const QVector<Zone*> copies = Territories::ZonesOf(*fixture.hill).mid(1);
    VerifySame(copies, zones);
    for (const Zone* copy : copies) {
        QCOMPARE(copy->GetTerritory(), fixture.hill);
        QCOMPARE(copy->Color(), fixture.hill->Color());
    }
    QCOMPARE(fixture.north.Zones().size(), 4);
}

void tst_ZoneEdits::JoinsTerritories()
{
    Territories fixture;
    fixture.Add(*fixture.type, "East");
    fixture.Add(*fixture.type, "West");
    auto* east = dynamic_cast<Territory*>(fixture.type->child(3));
    fixture.document.Do(Edits::CopyZonesTo(*east, Territories::ZonesOf(fixture.south)));
    const QStringList rows = RowTexts(*fixture.type->model());
    const auto names = [&fixture] {
        QStringList texts;
        for (int row = 0; row < fixture.type->rowCount(); ++row) {
            texts.append(fixture.type->child(row)->text());
        }
        return texts;
    };
    const QStringList before = names();
    const QVector<Zone*> all = Territories::ZonesOf(fixture.north) +
                               Territories::ZonesOf(fixture.south) + Territories::ZonesOf(*east);

    fixture.DoTwice(
        Edits::JoinTerritories(fixture.south, {&fixture.north, &fixture.south, east, east}));

    QCOMPARE(fixture.document.History().undoText(), "Join 2 territories into South");
    QCOMPARE(names(), QStringList({"South", "Lake", "West"}));
    QCOMPARE(fixture.south.Zones().size(), all.size());
    for (const Zone* zone : all) {
        QCOMPARE(zone->Holder(), &fixture.south);
        QCOMPARE(zone->scene(), &fixture.scene);
    }
    fixture.document.Undo();
    QCOMPARE(names(), before);
    QCOMPARE(RowTexts(*fixture.type->model()), rows);
    // Empty ones go, too.
    fixture.DoTwice(Edits::JoinTerritories(fixture.south, {&fixture.lake}));
    QCOMPARE(fixture.document.History().undoText(), "Join Lake into South");
    QCOMPARE(names(), QStringList({"North", "South", "East", "West"}));
}

void tst_ZoneEdits::SplitsZonesOff()
{
    Territories fixture;
    const QVector<Zone*> north = Territories::ZonesOf(fixture.north);
    fixture.DoTwice(Edits::SplitZones({north[1], north[3]}));
    QCOMPARE(fixture.document.History().undoText(), "Split 2 zones off");
    QCOMPARE(fixture.type->rowCount(), 4);
    const auto* split = dynamic_cast<Territory*>(fixture.type->child(3));
    QCOMPARE(Territories::ZonesOf(*split), (QVector<Zone*>{north[1], north[3]}));
    QCOMPARE(Territories::ZonesOf(fixture.north), (QVector<Zone*>{north[0], north[2]}));
    // It is seen, and told apart.
    QVERIFY(split->IsVisible());
    QCOMPARE(split->checkState(), Qt::Checked);
    QVERIFY(north[1]->isVisible());
    QCOMPARE(north[1]->Color(), split->Color());
    QCOMPARE(split->Color().alpha(), fixture.north.Color().alpha());
    for (const Territory* other : {&fixture.north, &fixture.south, &fixture.lake, fixture.hill}) {
        QVERIFY(split->Color().rgb() != other->Color().rgb());
    }
    fixture.document.Undo();
    QCOMPARE(fixture.type->rowCount(), 3);
    QCOMPARE(Territories::ZonesOf(fixture.north), north);
}

void tst_ZoneEdits::DuplicatesATerritory()
{
    Territories fixture;
    fixture.DoTwice(Edits::DuplicateTerritory(fixture.north));
    QCOMPARE(fixture.document.History().undoText(), "Duplicate territory North");
    const auto* copy = dynamic_cast<Territory*>(fixture.type->child(3));
    QCOMPARE(copy->text(), "North (2)");
    VerifySame(Territories::ZonesOf(*copy), Territories::ZonesOf(fixture.north));
    QVERIFY(copy->IsVisible());
    QCOMPARE(copy->checkState(), Qt::Checked);
    QVERIFY(copy->Color().rgb() != fixture.north.Color().rgb());
    for (const Zone* zone : copy->Zones()) {
        QCOMPARE(zone->GetTerritory(), copy);
        QCOMPARE(zone->scene(), &fixture.scene);
        QVERIFY(!(zone->flags() & QGraphicsItem::ItemIsSelectable));
    }
    fixture.DoTwice(Edits::DuplicateTerritory(fixture.north));
    QCOMPARE(fixture.type->child(4)->text(), "North (3)");
}

void tst_ZoneEdits::AddsZones()
{
    Territories fixture;
    ZoneValues values;
    values.radius = 123.25F;
    values.usage = ZoneValues::Water;
    values.depth = 9;
    fixture.DoTwice(Edits::AddZones(
        "Add 2 zones", {{&fixture.lake, values, {1.5, 2.5}}, {fixture.hill, values, {3.5, 4.5}}}));
    QCOMPARE(fixture.document.History().undoText(), "Add 2 zones");
    const Zone* added = Territories::ZonesOf(fixture.lake).constFirst();
    QVERIFY(added->Values() == values);
    QCOMPARE(added->pos(), QPointF(1.5, 2.5));
    QCOMPARE(added->Color(), fixture.lake.Color());
    QCOMPARE(fixture.hill->Zones().size(), 2);
}

namespace {

/// Some of all zones.
QVector<Zone*> SomeZones(Territories& fixture, Random& random)
{
    QVector<Zone*> some;
    const QVector<TerritoryType*> types = fixture.document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            for (Zone* zone : territory->Zones()) {
                if (random.Below(4) == 0) {
                    some.append(zone);
                }
            }
        }
    }
    return some;
}

Territory* SomeTerritory(Territories& fixture, Random& random)
{
    const QVector<TerritoryType*> types = fixture.document.Types().Types();
    const QVector<Territory*> territories = types[random.Below(types.size())]->Territories();
    return territories.isEmpty() ? nullptr : territories[random.Below(territories.size())];
}

void DoAnything(Territories& fixture, Random& random)
{
    Document& document = fixture.document;
    const QVector<Zone*> zones = SomeZones(fixture, random);
    Territory* territory = SomeTerritory(fixture, random);
    if (!territory) {
        return;
    }
    const bool isCrowded = zones.size() > 12;
    switch (random.Below(isCrowded ? 6 : 9)) {
    case 0:
        document.Do(Edits::MoveZonesTo(*territory, zones));
        break;
    case 1:
        document.Do(Edits::JoinTerritories(*territory, territory->GetType()->Territories()));
        break;
    case 2:
        if (!zones.isEmpty()) {
            document.Do(Edits::SplitZones(zones));
        }
        break;
    case 3:
        document.Do(Edits::RemoveZones(zones));
        break;
    case 4:
    case 5: {
        std::vector<Edits::ZoneChange> changes;
        for (Zone* zone : zones) {
            ZoneValues values = zone->Values();
            values.counts.staticMin = random.Below(1000);
            values.radius = 50 + float(random.Below(1000)) / 7;
            changes.push_back({zone, values, zone->pos() + QPointF(random.Below(9) / 7.0, 0)});
        }
        document.Do(Edits::ChangeZones("Change", changes));
        break;
    }
    case 6:
        document.Do(Edits::CopyZonesTo(*territory, zones));
        break;
    case 7:
        document.Do(Edits::DuplicateTerritory(*territory));
        break;
    default:
        document.Do(Edits::AddZones(
            "Add", {{territory, document.ZoneTemplate(), {random.Below(99) / 3.0, 5}}}));
        break;
    }
}

/// Sums of the counts as files hold them.
SpawnCounts SumOf(const std::vector<TypeRecord>& types)
{
    SpawnCounts sum;
    for (const TypeRecord& type : types) {
        for (const TerritoryRecord& territory : type.territories) {
            for (const ZoneRecord& zone : territory.zones) {
                sum += zone.values.counts;
            }
        }
    }
    return sum;
}

} // namespace

void tst_ZoneEdits::ThousandsOfEditsAreUndone()
{
    Territories fixture;
    Random random;
    QMap<int, QString> states;
    constexpr int edits = 10000;
    for (int i = 0; i < edits; ++i) {
        DoAnything(fixture, random);
        if (random.Below(8) == 0) {
            fixture.document.Undo();
        }
        // The states after those that were undone are no longer there.
        while (!states.isEmpty() && states.lastKey() >= fixture.document.History().index()) {
            states.erase(std::prev(states.end()));
        }
        if (i % 50 == 0) {
            states.insert(fixture.document.History().index(), fixture.Saved());
            SpawnCounts totals;
            const QVector<TerritoryType*> types = fixture.document.Types().Types();
            for (const TerritoryType* type : types) {
                totals += type->Totals();
            }
            QVERIFY(totals == SumOf(fixture.document.Types().Records()));
            TerritoryTypeList loaded;
            ElementReader reader(fixture.Saved());
            QVERIFY(loaded.Read(reader, nullptr));
            QCOMPARE(SumOf(loaded.Records()), totals);
        }
    }
    QVERIFY(fixture.document.History().index() > edits / 2);
    QVERIFY(states.size() > edits / 100);
    for (int i = 0; i < 2; ++i) {
        while (fixture.document.CanUndo()) {
            fixture.document.Undo();
            const int index = fixture.document.History().index();
            if (states.contains(index)) {
                QCOMPARE(states[index], fixture.Saved());
            }
        }
        while (fixture.document.CanRedo()) {
            fixture.document.Redo();
            const int index = fixture.document.History().index();
            if (states.contains(index)) {
                QCOMPARE(states[index], fixture.Saved());
            }
        }
    }
}

QTEST_MAIN(tst_ZoneEdits)
#include "tst_ZoneEdits.moc"
