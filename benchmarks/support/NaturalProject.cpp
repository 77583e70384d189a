#include "benchmarks/support/NaturalProject.h"

#include "app/ProjectDocument.h"
#include "app/ProjectSettings.h"
#include "benchmarks/support/Shapes.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"

#include <QFile>
#include <QXmlStreamWriter>

#include <memory>

namespace {

quint32 FlagInTurn(int i, int typeCount)
{
    return typeCount == 0 ? 1U : 1U << (i % typeCount);
}

} // namespace

QString LayerName(int i)
{
    return QStringLiteral("layer %1").arg(i);
}

void AddFlagTypes(int usageCount, int valueCount)
{
    AreaFlagTypes types;
    for (int i = 0; i < usageCount; ++i) {
        types.usages.append(QStringLiteral("usage %1").arg(i));
    }
    for (int i = 0; i < valueCount; ++i) {
        types.values.append(QStringLiteral("value %1").arg(i));
    }
    ProjectSettings::Instance().SetFlagTypes(types);
}

bool MakeProject(const QString& path, int layerCount, const TerritoryTypeList& types)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const QSize size(settings.LayerWidth(), settings.LayerHeight());
    LayerList layers;
    for (int i = 0; i < layerCount; ++i) {
        auto layer = std::make_unique<Layer>(FlagInTurn(i, settings.FlagTypes().usages.size()),
                                             FlagInTurn(i, settings.FlagTypes().values.size()),
                                             &layers, LayerName(i));
        layer->SetImage(NaturalMask(size, 100U + static_cast<quint32>(i)), Qt::white);
        layer->SetVisible(true);
        layers.AddLayer(std::move(layer));
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    QXmlStreamWriter xml(&file);
    WriteProjectDocument(xml, {0, {}, {}, layers, types});
    return !xml.hasError();
}
