#include "tool/CheckLayers.h"

#include "layers/BitmapState.h"
#include "layers/rules/LayerRules.h"
#include "tool/FormulaStates.h"
#include "tool/Interruption.h"
#include "tool/LayerBitmap.h"
#include "tool/Progress.h"
#include "tool/ProjectData.h"

#include <QDir>

namespace {

BitmapFault FaultOf(LayerBitmap::Problem problem)
{
    switch (problem) {
    case LayerBitmap::Problem::Missing:
        return BitmapFault::Missing;
    case LayerBitmap::Problem::WrongSize:
        return BitmapFault::WrongSize;
    case LayerBitmap::Problem::Unreadable:
        return BitmapFault::Unreadable;
    default:
        // The rules of names report a bitmap outside of the project.
        return BitmapFault::None;
    }
}

void CheckPixels(const FindingSpot& layer, const LayerBitmap& bitmap, Findings& findings)
{
    raster::PixelCounts counts;
    if (bitmap.CountPixels(counts)) {
        CheckLayerPixels(layer, counts.Covered(), counts.other, findings);
    } else {
        AddFailedBitmap(layer, findings);
    }
}

void CheckOneLayer(const ProjectData& project, int index, FormulaState state, Findings& findings)
{
    const LayerData& layer = project.layers.at(index);
    const FindingSpot spot = LayerSpot(index, layer.name);
    CheckLayerFlags(spot, layer.usageFlags, layer.valueFlags, project.flagTypes, findings);
    const LayerBitmap bitmap(project, layer);
    CheckBitmap(spot, FaultOf(bitmap.GetProblem()), bitmap.Error(), findings);
    if (bitmap.GetProblem() != LayerBitmap::Problem::None) {
        return;
    }
    if (bitmap.IsCutOff()) {
        AddCutOffBitmap(spot, findings);
    }
    CheckPixels(spot, bitmap, findings);
    CheckFormula(spot, state, findings);
}

} // namespace

void CheckLayers(const ProjectData& project, Findings& findings)
{
    const FormulaStates states(project);
    {
        Progress progress(QStringLiteral("Checking layers"), project.layers.size());
        for (int i = 0; i < project.layers.size() && !Interruption::HasCome(); ++i) {
            CheckOneLayer(project, i, states.Of(i), findings);
            progress.Step();
        }
    }
    QStringList names;
    for (const LayerData& layer : project.layers) {
        names.append(layer.name);
    }
    const QString folder = project.folder.filePath(QStringLiteral("layers"));
    const QStringList orphans = OrphanBitmaps(folder, names);
    for (const QString& file : orphans) {
        AddOrphanBitmap(file, findings);
    }
    if (!states.Fault().isEmpty()) {
        AddUnreadableFormulas(states.FileName(), states.Fault(), findings);
    }
}
