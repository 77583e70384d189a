// What a keystroke in the filter of the table costs with thousands of zones, compared with an
// evaluation that makes the text of each cell; and how zones that overlap are found, compared with
// one walk over all rows for each hundredth of them.

#include "app/ProjectSettings.h"
#include "benchmarks/support/RatioReporter.h"
#include "territories/SheetPlan.h"
#include "territories/ZoneFilter.h"
#include "territories/ZoneOverlap.h"
#include "territories/ZoneSheet.h"

#include <QCoreApplication>

#include <cmath>
#include <random>
#include <vector>

using benchmark::State;

namespace {

constexpr int World = 15360;
constexpr int ZoneCount = 20000;

std::vector<TypeRecord> MakeTypes(const WorldScale& scale)
{
    std::mt19937 random(7);
    std::vector<TypeRecord> types;
    for (int type = 0; type < 8; ++type) {
        types.push_back({QStringLiteral("Type of creatures %1").arg(type), {}});
        for (int i = 0; i < 25; ++i) {
            types.back().territories.push_back(
                {QStringLiteral("Territory %1").arg(i), 0, true, {}});
        }
    }
    for (int i = 0; i < ZoneCount; ++i) {
        ZoneRecord zone;
        zone.values.SetName(i % 3 == 0 ? QStringLiteral("Event %1").arg(i % 100)
                                       : QStringLiteral("Water"));
        zone.values.counts = {i % 10, i % 20, i % 30, i % 40};
        zone.values.radius = 50.0F + static_cast<float>(random() % 30);
        zone.radius = scale.pixelsPerMetreX * zone.values.radius;
        zone.place = InScene(static_cast<float>(random() % World),
                             static_cast<float>(random() % World), scale);
        const auto index = static_cast<std::size_t>(i);
        types[index % 8].territories[index / 8 % 25].zones.push_back(zone);
    }
    return types;
}

struct Table
{
    Table()
        : scale(ProjectSettings::Instance())
        , types(MakeTypes(scale))
        , rows(ZoneRows(types, scale))
        , sheet(WriteSheet(rows, SheetFormat::Csv))
    {
    }

    WorldScale scale;
    std::vector<TypeRecord> types;
    std::vector<ZoneRow> rows;
    QString sheet;
};

Table* table = nullptr;

void Filter(State& state, const char* text)
{
    for (auto _ : state) {
        const ZoneFilter filter(QString::fromLatin1(text), table->scale);
        benchmark::DoNotOptimize(filter.WhileTyping(table->rows).Matching(table->rows));
    }
}

void FilterByWord(State& state)
{
    Filter(state, "creatures water territory");
}

void FilterByNumber(State& state)
{
    Filter(state, "radius>60 x<9000 x:5");
}

/// The texts of all cells of each row, and two looks into each.
void MakeAllTexts(State& state)
{
    for (auto _ : state) {
        int found = 0;
        for (const ZoneRow& row : table->rows) {
            for (const ZoneColumn column : ZoneColumns) {
                const QString text = CellText(row, column);
                found += text.contains(QLatin1String("water"), Qt::CaseInsensitive) ? 1 : 0;
                found += text.contains(QLatin1String("territory"), Qt::CaseInsensitive) ? 1 : 0;
            }
        }
        benchmark::DoNotOptimize(found);
    }
}

void FindOverlaps(State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(OverlappingRows(table->rows));
    }
}

void CompareAHundredth(State& state)
{
    for (auto _ : state) {
        int found = 0;
        for (std::size_t i = 0; i < table->rows.size(); i += 100) {
            const WorldCircle& a = table->rows[i].circle;
            for (const ZoneRow& row : table->rows) {
                const WorldCircle& b = row.circle;
                found += std::hypot(a.x - b.x, a.z - b.z) <= a.radius + b.radius ? 1 : 0;
            }
        }
        benchmark::DoNotOptimize(found);
    }
}

void PlanWholeSheet(State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(PlanSheet(table->types, table->scale, ReadSheet(table->sheet),
                                           ZoneValues::OfNewZone()));
    }
}

void SplitWholeSheet(State& state)
{
    for (auto _ : state) {
        int cells = 0;
        const QStringList lines = table->sheet.split(QLatin1Char('\n'));
        for (const QString& line : lines) {
            cells += line.split(QLatin1Char(',')).size();
        }
        benchmark::DoNotOptimize(cells);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    ProjectSettings::Instance().SetSizes(2048, 2048, World, World);
    Table theTable;
    table = &theTable;
    for (const auto& [name, work] : std::initializer_list<std::pair<const char*, void (*)(State&)>>{
             {"words/20000 zones/ours", FilterByWord},
             {"words/20000 zones/texts of all cells", MakeAllTexts},
             {"numbers/20000 zones/ours", FilterByNumber},
             {"numbers/20000 zones/texts of all cells", MakeAllTexts},
             {"overlaps/20000 zones/ours", FindOverlaps},
             {"overlaps/20000 zones/a hundredth by comparing all", CompareAHundredth},
             {"sheet/20000 zones/ours", PlanWholeSheet},
             {"sheet/20000 zones/splitting its lines", SplitWholeSheet}}) {
        benchmark::RegisterBenchmark(name, work)->Unit(benchmark::kMillisecond)->Iterations(10);
    }
    return RunBenchmarks(argc, argv);
}
