// Project documents, as the batch run reads them.

#include "app/BatchExport.h"
#include "app/ProjectSettings.h"
#include "fuzzing/support/Fuzz.h"
#include "layers/LayerList.h"
#include "territories/TerritoryTypeList.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QTemporaryDir>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    MakeApplicationOnce<QGuiApplication>();
    static const QTemporaryDir folder;
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetDir(QDir(folder.path()));
    settings.SetFlagTypes({});
    settings.SetSizes(0, 0, 0, 0);
    QByteArray copy(reinterpret_cast<const char*>(bytes), static_cast<int>(count));
    QBuffer device(&copy);
    device.open(QIODevice::ReadOnly);
    {
        LayerList layers;
        TerritoryTypeList types;
        ReadBatchDocument(device, layers, types);
    }
    DeleteLater();
    return 0;
}
