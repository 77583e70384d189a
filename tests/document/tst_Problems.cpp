#include "document/Problems.h"

#include "document/Document.h"
#include "document/ProblemFixes.h"
#include "document/edits/BackgroundEdits.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/TerritoryEdits.h"
#include "tests/support/CheckedDocument.h"
#include "tests/support/LogSpy.h"

#include <QSignalSpy>
#include <QtTest>

#include <functional>
#include <limits>

namespace {

using MakeEdit = std::function<std::unique_ptr<Edit>(CheckedDocument&)>;

ZoneValues Changed(const Zone& zone, const std::function<void(ZoneValues&)>& change)
{
    ZoneValues values = zone.Values();
    change(values);
    return values;
}

MakeEdit ChangingZone(const std::function<void(ZoneValues&)>& change)
{
    return [change](CheckedDocument& fixture) {
        return Edits::ChangeZone(*fixture.zone, Changed(*fixture.zone, change),
                                 Property::ZoneUsage);
    };
}

MakeEdit MovingZone(QPointF to)
{
    return [to](CheckedDocument& fixture) {
        return Edits::MoveZones({{fixture.zone, fixture.zone->pos(), to}}, false);
    };
}

/// At a distance (metres) from the zone.
MakeEdit AddingZone(double distance, float radius)
{
    return [=](CheckedDocument& fixture) {
        return Edits::InsertZone(
            *fixture.territory, fixture.zone->pos() + QPointF(distance, 0),
            Changed(*fixture.zone, [radius](ZoneValues& values) { values.radius = radius; }));
    };
}

MakeEdit SettingFlags(quint32 usages, quint32 values)
{
    return [=](CheckedDocument& fixture) {
        return Edits::SetLayerFlags(*fixture.lake, usages, values);
    };
}

MakeEdit FillingLake(uchar value)
{
    return [value](CheckedDocument& fixture) {
        return Edits::FillLayer(QStringLiteral("Fill"), *fixture.lake, value);
    };
}

MakeEdit Renaming(const std::function<QStandardItem&(CheckedDocument&)>& item, const QString& name)
{
    return [=](CheckedDocument& fixture) { return Edits::Rename(item(fixture), name); };
}

QStandardItem& LakeOf(CheckedDocument& fixture)
{
    return *fixture.lake;
}

QStandardItem& TypeOf(CheckedDocument& fixture)
{
    return *fixture.type;
}

MakeEdit ImportingFlags(int usages)
{
    return [usages](CheckedDocument& fixture) {
        AreaFlagTypes types = ProjectSettings::Instance().FlagTypes();
        types.usages.clear();
        for (int i = 0; i < usages; ++i) {
            types.usages.append(QStringLiteral("Usage %1").arg(i));
        }
        return Edits::ImportFlagTypes(fixture.document.Layers(), types, false);
    };
}

} // namespace

Q_DECLARE_METATYPE(MakeEdit)

/// What is found wrong with the open project, and when.
class tst_Problems : public QObject
{
    Q_OBJECT

private slots:
    void RulesComeAndGoWithEdits_data();
    void RulesComeAndGoWithEdits();
    void FixesMendAndAreUndone_data();
    void FixesMendAndAreUndone();
    void LockedPixelsHaveNoFix();
    void ChecksNothingInAStroke();
    void ChecksNothingWhileFilesAreBusy();
    void AChangeDuringTheCheckCounts();
    void AClearDuringTheCheckEndsIt();
    void AProblemOutlivesItsZone();
    void TerritoriesTakeTheirProblemsAlong();
    void PixelsOfRemovedLayersComeBack();
    void NothingIsFoundWithoutAProject();
    void LogsNothing();
};

void tst_Problems::RulesComeAndGoWithEdits_data()
{
    QTest::addColumn<MakeEdit>("makeEdit");
    QTest::addColumn<QStringList>("rules");
    const auto row = [](const char* name, const QStringList& rules, const MakeEdit& makeEdit) {
        QTest::newRow(name) << makeEdit << rules;
    };
    row("equal names", {"duplicate-name"}, Renaming(LakeOf, "Forest"));
    row("names alike but for case", {"duplicate-name-by-case"}, Renaming(LakeOf, "FOREST"));
    row("name of a device", {"refused-name"}, Renaming(LakeOf, "aux"));
    row("type with the name of a device", {"refused-name"}, Renaming(TypeOf, "con.1"));
    row("types of one name", {"duplicate-name"}, [](CheckedDocument& fixture) {
        return Edits::AddType(fixture.document.Types(), std::make_unique<TerritoryType>("Deer"));
    });
    row("territories of one name", {"duplicate-name", "invisible-territory"},
        [](CheckedDocument& fixture) {
            return Edits::AddTerritory(*fixture.type, std::make_unique<Territory>("North"));
        });
    row("hidden territory", {"invisible-territory"},
        [](CheckedDocument& fixture) { return Edits::SetRowChecked(*fixture.territory, false); });
    row("hidden type", {"invisible-territory"},
        [](CheckedDocument& fixture) { return Edits::SetRowChecked(*fixture.type, false); });
    row("no flags", {"layer-without-flags"}, SettingFlags(0, 0));
    row("usage bit without a type", {"unnamed-flag"}, SettingFlags(9, 1));
    row("bits without types", {"unnamed-flag", "unnamed-flag"}, SettingFlags(9, 1U << 31));
    row("no pixels", {"layer-without-pixels"}, FillingLake(0));
    row("grey", {"mask-value"}, FillingLake(7));
    row("too many types", {"too-many-flag-types"}, ImportingFlags(33));
    row("columns without a place", {"lost-map-columns"}, ImportingFlags(2));
    row("no background", {"missing-background"}, [](CheckedDocument& fixture) {
        return Edits::SetBackgroundPicture(fixture.project.Path("none.png"), true);
    });
    row("static minimum", {"zone-min-above-max"},
        ChangingZone([](ZoneValues& values) { values.counts.staticMin = 3; }));
    row("dynamic maximum", {"zone-min-above-max"},
        ChangingZone([](ZoneValues& values) { values.counts.dynamicMax = 2; }));
    row("small radius", {"zone-radius"},
        ChangingZone([](ZoneValues& values) { values.radius = 49; }));
    row("event like a usage", {"event-like-usage"},
        ChangingZone([](ZoneValues& values) { values.SetName("hunting ground"); }));
    row("event without a name", {"event-without-name"},
        ChangingZone([](ZoneValues& values) { values.SetName(" "); }));
    row("outside", {"zone-outside-world"}, MovingZone({201, 100}));
    row("partly outside", {"zone-partly-outside"}, MovingZone({190, 100}));
    row("no place", {"zone-place"}, MovingZone({std::numeric_limits<double>::quiet_NaN(), 100}));
    row("equal", {"zone-equal"}, AddingZone(0, 60));
    row("contained", {"zone-contained"}, AddingZone(5, 50));
    row("overlapping", {"zone-overlap"}, AddingZone(10, 60));
}

void tst_Problems::RulesComeAndGoWithEdits()
{
    QFETCH(MakeEdit, makeEdit);
    QFETCH(QStringList, rules);
    CheckedDocument fixture;
    QCOMPARE(fixture.Rules(), QStringList());

    fixture.document.Do(makeEdit(fixture));
    QCOMPARE(fixture.Rules(), rules);
    fixture.document.Undo();
    QCOMPARE(fixture.Rules(), QStringList());
    fixture.document.Redo();
    QCOMPARE(fixture.Rules(), rules);
}

void tst_Problems::FixesMendAndAreUndone_data()
{
    QTest::addColumn<MakeEdit>("makeEdit");
    QTest::addColumn<QString>("rule");
    const auto row = [](const char* name, const char* rule, const MakeEdit& makeEdit) {
        QTest::newRow(name) << makeEdit << QString(rule);
    };
    row("static minimum", "zone-min-above-max",
        ChangingZone([](ZoneValues& values) { values.counts.staticMin = 30; }));
    row("dynamic minimum", "zone-min-above-max",
        ChangingZone([](ZoneValues& values) { values.counts.dynamicMin = 30; }));
    row("small radius", "zone-radius",
        ChangingZone([](ZoneValues& values) { values.radius = 49.9F; }));
    row("event like a usage", "event-like-usage",
        ChangingZone([](ZoneValues& values) { values.SetName("Hunting-Ground"); }));
    row("usage bits", "unnamed-flag", SettingFlags(1U | 32, 2));
    row("value bits", "unnamed-flag", SettingFlags(1, 2 | 1U << 31));
    row("hidden territory", "invisible-territory",
        [](CheckedDocument& fixture) { return Edits::SetRowChecked(*fixture.territory, false); });
    row("greys", "mask-value", FillingLake(7));
}

void tst_Problems::FixesMendAndAreUndone()
{
    QFETCH(MakeEdit, makeEdit);
    QFETCH(QString, rule);
    CheckedDocument fixture;
    fixture.document.Do(makeEdit(fixture));
    const Problem problem = fixture.Find(rule);
    const QByteArray broken = fixture.Bytes();
    QVERIFY(CanFix(fixture.document, problem));
    QVERIFY(!DescribeFix(fixture.document, problem).isEmpty());

    fixture.document.EndGesture();
    fixture.document.Do(MakeFix(fixture.document, problem));

    QCOMPARE(fixture.Rules(), QStringList());
    const QByteArray mended = fixture.Bytes();
    QVERIFY(mended != broken);
    fixture.document.Undo();
    QCOMPARE(fixture.Bytes(), broken);
    QCOMPARE(fixture.Rules(), QStringList{rule});
    fixture.document.Redo();
    QCOMPARE(fixture.Bytes(), mended);
}

void tst_Problems::LockedPixelsHaveNoFix()
{
    CheckedDocument fixture;
    fixture.document.Do(FillingLake(7)(fixture));
    const Problem problem = fixture.Find("mask-value");
    QVERIFY(CanFix(fixture.document, problem));
    fixture.document.SetLocked(*fixture.lake, true);
    QVERIFY(!CanFix(fixture.document, problem));
    QVERIFY(!MakeFix(fixture.document, problem));
    QCOMPARE(DescribeFix(fixture.document, problem), fixture.document.WhyPixelsStay(*fixture.lake));
}

void tst_Problems::ChecksNothingInAStroke()
{
    CheckedDocument fixture;
    QCOMPARE(fixture.Rules(), QStringList());
    fixture.document.Do(SettingFlags(0, 0)(fixture));
    int slices = 0;
    fixture.problems.SetObserver([&slices](bool) { ++slices; });

    fixture.document.SetHandBusy(true);
    fixture.problems.Hurry();
    QTest::qWait(1);
    QCOMPARE(slices, 0);
    QVERIFY(!fixture.problems.IsUpToDate());
    fixture.document.SetHandBusy(false);

    QCOMPARE(fixture.Rules(), QStringList{"layer-without-flags"});
}

void tst_Problems::ChecksNothingWhileFilesAreBusy()
{
    CheckedDocument fixture;
    QCOMPARE(fixture.Rules(), QStringList());
    fixture.document.Do(SettingFlags(0, 0)(fixture));
    int slices = 0;
    fixture.problems.SetObserver([&slices](bool) { ++slices; });

    fixture.document.SetFilesBusy(true);
    fixture.problems.Hurry();
    QTest::qWait(1);
    QCOMPARE(slices, 0);
    fixture.document.SetFilesBusy(false);

    QCOMPARE(fixture.Rules(), QStringList{"layer-without-flags"});
}

namespace {

/// So many that a check takes several slices.
void AddManyZones(CheckedDocument& fixture)
{
    for (int i = 0; i < 30000; ++i) {
        auto* zone = new Zone(fixture.territory, 50);
        zone->setPos(100 + 1e4 * (i % 200), 100 + 1e4 * (i / 200));
        fixture.territory->AddZone(zone);
    }
    emit fixture.document.ZonesChanged(fixture.territory);
}

/// Begins the check and stops it after the first slice.
bool CheckOneSlice(CheckedDocument& fixture)
{
    int ended = 0;
    fixture.problems.SetObserver([&ended](bool begins) { ended += begins ? 0 : 1; });
    fixture.problems.Hurry();
    while (ended == 0) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 0);
    }
    fixture.problems.SetObserver({});
    return !fixture.problems.IsUpToDate();
}

} // namespace

void tst_Problems::AChangeDuringTheCheckCounts()
{
    CheckedDocument fixture;
    AddManyZones(fixture);
    QVERIFY(CheckOneSlice(fixture));
    // The first zone was checked already.
    fixture.document.Do(
        ChangingZone([](ZoneValues& values) { values.counts.staticMin = 9; })(fixture));
    QVERIFY(fixture.Find("zone-min-above-max").zone == fixture.zone);
}

void tst_Problems::AClearDuringTheCheckEndsIt()
{
    CheckedDocument fixture;
    AddManyZones(fixture);
    QVERIFY(CheckOneSlice(fixture));
    const QSignalSpy changed(&fixture.problems, &Problems::Changed);
    fixture.document.Clear();
    QVERIFY(fixture.problems.IsUpToDate());
    QVERIFY(fixture.problems.Parts().empty());
    QCOMPARE(changed.size(), 1);
    QTest::qWait(1);
    QVERIFY(fixture.problems.Parts().empty());

    fixture.document.BeginHistory(true);
    QCOMPARE(fixture.Rules(), QStringList());
}

void tst_Problems::AProblemOutlivesItsZone()
{
    CheckedDocument fixture;
    fixture.document.Do(
        ChangingZone([](ZoneValues& values) { values.counts.staticMin = 9; })(fixture));
    const Problem problem = fixture.Find("zone-min-above-max");
    QVERIFY(problem.zone == fixture.zone);

    fixture.document.Do(Edits::RemoveZones({fixture.zone}));
    QVERIFY(!problem.IsPresent());
    QVERIFY(!CanFix(fixture.document, problem));
    QVERIFY(!MakeFix(fixture.document, problem));
    QCOMPARE(fixture.Rules(), QStringList());
    fixture.document.Undo();
    QVERIFY(problem.IsPresent());
    QVERIFY(fixture.Find("zone-min-above-max").zone == fixture.zone);

    fixture.document.Clear();
    QVERIFY(!problem.zone);
    QVERIFY(!problem.IsPresent());
    QVERIFY(!CanFix(fixture.document, problem));
}

void tst_Problems::TerritoriesTakeTheirProblemsAlong()
{
    CheckedDocument fixture;
    fixture.document.Do(
        ChangingZone([](ZoneValues& values) { values.counts.staticMin = 9; })(fixture));
    QCOMPARE(fixture.Rules(), QStringList{"zone-min-above-max"});

    fixture.document.Do(Edits::RemoveTerritory(*fixture.territory));
    QCOMPARE(fixture.Rules(), QStringList());
    fixture.document.Undo();
    QCOMPARE(fixture.Rules(), QStringList{"zone-min-above-max"});
    fixture.document.Do(Edits::RemoveType(*fixture.type));
    QCOMPARE(fixture.Rules(), QStringList());
    fixture.document.Undo();
    QCOMPARE(fixture.Rules(), QStringList{"zone-min-above-max"});
    // The place names both.
    fixture.document.Do(Edits::Rename(*fixture.type, "Elk"));
    fixture.document.Do(Edits::Rename(*fixture.territory, "South"));
    QCOMPARE(fixture.Find("zone-min-above-max").finding.place,
             QString("zone 1 of territory 'South' of type 'Elk'"));
}

void tst_Problems::PixelsOfRemovedLayersComeBack()
{
    CheckedDocument fixture;
    fixture.document.Do(FillingLake(0)(fixture));
    QVERIFY(fixture.Find("layer-without-pixels").layer == fixture.lake);
    fixture.document.Do(Edits::RemoveLayer(*fixture.lake));
    QCOMPARE(fixture.Rules(), QStringList());
    fixture.document.Undo();
    QCOMPARE(fixture.Rules(), QStringList{"layer-without-pixels"});
}

void tst_Problems::NothingIsFoundWithoutAProject()
{
    CheckedDocument fixture;
    fixture.document.Clear();
    // Such as a size of 0.
    ProjectSettings::Instance().SetSizes(0, 0, 0, 0);
    QCOMPARE(fixture.Rules(), QStringList());
    fixture.document.BeginHistory(true);
    QCOMPARE(fixture.Rules(), (QStringList{"layer-size", "world-size"}));
}

void tst_Problems::LogsNothing()
{
    const LogSpy log;
    CheckedDocument fixture;
    fixture.document.Do(SettingFlags(0, 0)(fixture));
    QCOMPARE(fixture.Rules(), QStringList{"layer-without-flags"});
    QCOMPARE(log.Messages(), QStringList());
}

QTEST_MAIN(tst_Problems)
#include "tst_Problems.moc"
