// Project documents, as the editor reads them.

#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "fuzzing/support/Fuzz.h"
#include "layers/LayerList.h"
#include "territories/TerritoryTypeList.h"

#include <QApplication>
#include <QBuffer>
#include <QGraphicsScene>
#include <QTemporaryDir>
#include <QWidget>
#include <QXmlStreamWriter>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    MakeApplicationOnce<QApplication>();
    // Layers and territories have pictures only while there is a window.
    static const QWidget window;
    static const QTemporaryDir folder;
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetDir(QDir(folder.path()));
    settings.SetFlagTypes({});
    settings.SetSizes(8, 8, 80, 80);
    QByteArray copy(reinterpret_cast<const char*>(bytes), static_cast<int>(count));
    QBuffer device(&copy);
    device.open(QIODevice::ReadOnly);
    {
        QGraphicsScene scene;
        LayerList layers;
        TerritoryTypeList types;
        ProjectReader reader(device);
        const bool isRead = reader.Read(
            {[](QXmlStreamReader&) {},
             [&layers](QXmlStreamReader& xml) { return layers.ReadXml(xml); },
             [&types, &scene](QXmlStreamReader& xml) { return types.Read(xml, &scene); }});
        if (isRead) {
            // The project must save without errors, except for the bitmaps, which do not exist.
            QByteArray saved;
            QXmlStreamWriter xml(&saved);
            settings.WriteXml(xml);
            types.Write(xml);
        }
    }
    DeleteLater();
    return 0;
}
