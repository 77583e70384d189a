// SaveForever PROJECT WAY COUNT [USER]
// Saves the project, or exports it, again and again, each time with other contents, until it is
// killed or did so COUNT times; 0 is without end. WAY is "save", "all" (also the map and the
// territory types), or "batch": the batch run of PROJECT and, in turn, of a document of the same
// name in the folder "other". Works in the project's folder. Prints a line when the first save
// begins. USER is the number of the user that it becomes before that.

#include "app/BatchExport.h"
#include "app/Leftovers.h"
#include "app/OutputFile.h"
#include "app/ProjectDocument.h"
#include "app/ProjectFile.h"
#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "layers/raster/SetOperations.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

namespace {

/// Sets the content regardless of the former one, because a killed save may have been either.
void TurnInsideOut(const LayerList& layers, bool isInsideOut)
{
    const QVector<Layer*> all = layers.Layers();
    for (Layer* layer : all) {
        QImage mask = layer->Image();
        if ((*mask.constScanLine(0) != raster::MaskClear) == isInsideOut) {
            continue;
        }
        layer->SetImage(QImage(), layer->Color());
        layer->SetImage(raster::Complement(std::move(mask)), layer->Color());
    }
}

void ResizeZones(const TerritoryTypeList& types, float radius)
{
    const QVector<TerritoryType*> all = types.Types();
    for (const TerritoryType* type : all) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            for (Zone* zone : territory->Zones()) {
                zone->SetRadius(radius);
            }
        }
    }
}

/// Does the same as "Save and export all" in the editor.
bool SaveAll(const QString& path, int selected, LayerList& layers, const TerritoryTypeList& types)
{
    bool isSaved = SaveProjectTo(path, {selected, {}, {}, layers, types}) &&
                   layers.SaveMap(ProjectSettings::Instance().MapPath());
    OutputGroup group;
    isSaved = types.ExportAll() && isSaved;
    return group.Commit() && isSaved;
}

bool Export(const QFileInfo& project, bool isOther)
{
    const QDir folder = project.dir();
    const QString name = (isOther ? QStringLiteral("other/") : QString()) + project.fileName();
    return RunBatchExport(folder.filePath(name), folder.filePath(QStringLiteral("Output"))) ==
           ExitDone;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QString user = QCoreApplication::arguments().value(4);
    if (!user.isEmpty() && setuid(user.toUInt()) != 0) {
        return 1;
    }
    // Whoever started it may be killed itself.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const QString path = QCoreApplication::arguments().value(1);
    const QString way = QCoreApplication::arguments().value(2);
    const int saves = QCoreApplication::arguments().value(3).toInt();
    ProjectSettings::Instance().SetDir(QFileInfo(path).absoluteDir());
    QDir::setCurrent(QFileInfo(path).path());
    LayerList layers;
    TerritoryTypeList types;
    TidyFolderOf(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return 1;
    }
    ProjectReader reader(file);
    if (!reader.Read({[](QXmlStreamReader&) {},
                      [&](QXmlStreamReader& xml) { return layers.ReadXml(xml); },
                      [&](QXmlStreamReader& xml) { return types.Read(xml, nullptr); }})) {
        return 1;
    }
    for (int i = 0; saves == 0 || i < saves; ++i) {
        const int turn = i % 2;
        if (way != QLatin1String("batch")) {
            TurnInsideOut(layers, turn != 0);
            ResizeZones(types, turn == 0 ? 60.0F : 70.0F);
        }
        if (i == 0) {
            // The test measures the time from here, so that slow builds are killed during a save
            // too.
            std::puts("saving");
            std::fflush(stdout);
        }
        bool isSaved = false;
        if (way == QLatin1String("batch")) {
            isSaved = Export(QFileInfo(path), turn != 0);
        } else if (way == QLatin1String("all")) {
            isSaved = SaveAll(path, turn, layers, types);
        } else {
            isSaved = SaveProjectTo(path, {turn, {}, {}, layers, types});
        }
        if (!isSaved) {
            return 1;
        }
    }
    return 0;
}
