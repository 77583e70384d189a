// Area maps to be imported.

#include "app/ProjectSettings.h"
#include "fuzzing/support/Fuzz.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"

#include <QApplication>
#include <QBuffer>
#include <QWidget>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    MakeApplicationOnce<QApplication>();
    // Layers have pictures only while there is a window.
    static const QWidget window;
    ProjectSettings& settings = ProjectSettings::Instance();
    AreaFlagTypes types;
    for (int i = 0; i < AreaFlagTypes::MaxCount; ++i) {
        types.usages.append(QString::number(i));
        types.values.append(QString::number(i));
    }
    settings.SetFlagTypes(types);
    QByteArray copy(reinterpret_cast<const char*>(bytes), static_cast<int>(count));
    QBuffer device(&copy);
    device.open(QIODevice::ReadOnly);
    {
        LayerList layers;
        layers.ImportMap(device);
        const QVector<Layer*> made = layers.Layers();
        for (const Layer* layer : made) {
            Require(layer->Image().size() == settings.LayerSize(), "a layer of another size");
        }
    }
    DeleteLater();
    return 0;
}
