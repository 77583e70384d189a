// Saves the project of the path given again and again, its layers turned inside out each time,
// until it is killed. Prints a line when the first save begins.

#include "app/ProjectDocument.h"
#include "app/ProjectFile.h"
#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/SetOperations.h"
#include "territories/TerritoryTypeList.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

#include <csignal>

#include <sys/prctl.h>

namespace {

void TurnInsideOut(const LayerList& layers)
{
    const QVector<Layer*> all = layers.Layers();
    for (Layer* layer : all) {
        QImage mask = layer->Image();
        layer->SetImage(QImage(), layer->Color());
        layer->SetImage(raster::Complement(std::move(mask)), layer->Color());
    }
}

} // namespace

int main(int argc, char* argv[])
{
    // Whoever started it may be killed itself.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const QCoreApplication application(argc, argv);
    const QString path = QCoreApplication::arguments().value(1);
    const int saves = QCoreApplication::arguments().value(2).toInt();
    ProjectSettings::Instance().projectDir = QFileInfo(path).absoluteDir();
    LayerList layers;
    TerritoryTypeList types;
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
    std::puts("saving");
    std::fflush(stdout);
    for (int i = 0; saves == 0 || i < saves; ++i) {
        TurnInsideOut(layers);
        // The document differs too.
        if (!SaveProjectTo(path, {i % 2, {}, {}, layers, types})) {
            return 1;
        }
    }
    return 0;
}
