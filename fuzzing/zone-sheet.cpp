// Sheets of zones, and the texts of filters.

#include "app/ProjectSettings.h"
#include "fuzzing/support/Fuzz.h"
#include "territories/SheetPlan.h"
#include "territories/ZoneFilter.h"

namespace {

std::vector<TypeRecord> MakeTypes(const WorldScale& scale)
{
    ZoneRecord zone;
    zone.values.radius = 10;
    zone.values.counts.staticMin = -5;
    zone.radius = 1;
    zone.place = InScene(500, 500, scale);
    return {{QStringLiteral("A"), {{QStringLiteral("B"), 0, true, {zone, zone}}}},
            {QStringLiteral("C"),
             {{QStringLiteral("D"), 0, true, {zone}}, {QStringLiteral("D"), 0, true, {}}}}};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    MakeApplicationOnce<QCoreApplication>();
    ProjectSettings::Instance().SetSizes(100, 100, 1000, 1000);
    const WorldScale scale(ProjectSettings::Instance());
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<int>(count));
    std::vector<TypeRecord> types = MakeTypes(scale);
    const SheetPlan plan = PlanSheet(types, scale, ReadSheet(text), ZoneValues::OfNewZone());
    Require(!plan.IsRefused() || plan.IsEmpty(), "a part of a refused sheet is taken");
    int before = -1;
    for (const SheetRefusal& refusal : plan.refusals) {
        Require(refusal.row > before, "a row is refused twice");
        before = refusal.row;
    }
    Apply(plan, types, scale);

    const std::vector<ZoneRow> rows = ZoneRows(types, scale);
    const QString table = WriteSheet(rows, SheetFormat::Csv);
    const SheetPlan again = PlanSheet(types, scale, ReadSheet(table), ZoneValues::OfNewZone());
    Require(!again.IsRefused() && again.IsEmpty(), "the table itself changes something");
    const ZoneFilter filter(text, scale);
    Require(filter.WhileTyping(rows).Matching(rows).size() == rows.size(), "rows are lost");
    FilterCompletions(text, rows);
    return 0;
}
