#include "tool/PlaceAnswers.h"

#include "tool/FieldBands.h"
#include "tool/Interruption.h"
#include "tool/Progress.h"

#include <map>

namespace {

void StartAnswers(const FieldBands& fields, const std::vector<PlaceNumbers>& places, PlaceUnit unit,
                  PlaceAnswers& answers)
{
    answers.probe = {fields.Size(), fields.WorldSize(), fields.UsageBits(), fields.ValueBits()};
    for (const PlaceNumbers& numbers : places) {
        PlaceAnswer answer;
        answer.place = unit == PlaceUnit::Pixels
                           ? answers.probe.AtPixel({static_cast<int>(numbers.first),
                                                    static_cast<int>(numbers.second)})
                           : answers.probe.At(numbers.first, numbers.second);
        answer.layers = answers.probe.NoLayers(answer.place);
        answers.answers.push_back(answer);
    }
}

ProbedZones ZonesOf(const ProjectData& project)
{
    ProbedZones zones;
    int owner = 0;
    for (const TerritoryTypeData& type : project.types) {
        for (const TerritoryData& territory : type.territories) {
            int number = 0;
            for (const ZoneData& zone : territory.zones) {
                zones.push_back({zone.x, zone.z, zone.values.radius, owner, ++number});
            }
            ++owner;
        }
    }
    return zones;
}

using AnswersOfBands = std::map<int, std::vector<PlaceAnswer*>>;

/// The answers about places inside of the world, by the band in which their pixel lies.
AnswersOfBands ByBand(int height, std::vector<PlaceAnswer>& answers)
{
    AnswersOfBands bands;
    for (PlaceAnswer& answer : answers) {
        if (answer.place.pixel) {
            const int row = height - 1 - answer.place.pixel->y();
            bands[row / raster::TargaBands::BandRows].push_back(&answer);
        }
    }
    return bands;
}

/// Adds what all layers have in one band. Returns false after printing an error.
bool AddLayers(const ProjectData& project, const ProjectFields& fields, int band,
               const MapProbe& probe, const std::vector<PlaceAnswer*>& answers)
{
    const int firstRow =
        fields.Size().height() - band * raster::TargaBands::BandRows - fields.Rows(band);
    for (int row = 0; row < project.layers.size(); ++row) {
        const LayerBitmap& bitmap = fields.Bitmap(row);
        if (bitmap.IsClear(band)) {
            continue;
        }
        const LayerData& layer = project.layers.at(row);
        const raster::FlaggedMask mask = {bitmap.Band(band), layer.usageFlags, layer.valueFlags};
        if (mask.mask.isNull()) {
            return false;
        }
        for (PlaceAnswer* answer : answers) {
            probe.AddLayer(row, mask, firstRow, answer->place, answer->layers);
        }
    }
    return true;
}

} // namespace

bool AskProject(const QString& path, const std::vector<PlaceNumbers>& places, PlaceUnit unit,
                PlaceAnswers& answers)
{
    ProjectFields fields;
    if (!ReadProject(path, answers.project) ||
        !fields.Open(answers.project, ProjectFields::CutOffBitmaps::Fill)) {
        return false;
    }
    StartAnswers(fields, places, unit, answers);
    answers.zones = ZonesOf(answers.project);
    for (PlaceAnswer& answer : answers.answers) {
        answer.zones = ZonesAt(answers.zones, answer.place.x, answer.place.z);
    }
    const AnswersOfBands bands = ByBand(fields.Size().height(), answers.answers);
    Progress progress(QStringLiteral("Reading layers"), static_cast<int>(bands.size()));
    for (const auto& [band, ofBand] : bands) {
        if (!AddLayers(answers.project, fields, band, answers.probe, ofBand)) {
            return false;
        }
        progress.Step();
    }
    return !Interruption::HasCome();
}

bool AskMap(const QString& path, const AreaFlagTypes& types,
            const std::vector<PlaceNumbers>& places, PlaceUnit unit, PlaceAnswers& answers)
{
    MapFields fields;
    if (!fields.Open(path)) {
        return false;
    }
    answers.project.flagTypes = types;
    StartAnswers(fields, places, unit, answers);
    for (PlaceAnswer& answer : answers.answers) {
        LayersHere& here = answer.layers;
        if ((here.usage || here.value) &&
            !fields.ReadPixel(*answer.place.pixel, here.usage, here.value)) {
            return false;
        }
    }
    return !Interruption::HasCome();
}
