#include "ExampleProject.h"

#include "LayerPlan.h"
#include "Picture.h"
#include "TerritoryPlan.h"

#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectDocument.h"
#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryTypeList.h"

#include <QBuffer>
#include <QImageWriter>
#include <QXmlStreamWriter>

#include <memory>

namespace generator {

namespace {

QString BackgroundFile()
{
    return QStringLiteral("background/island.jpg");
}

void DescribeProject(const QString& folder)
{
    ProjectSettings& settings = ProjectSettings::Instance();
    AreaFlagTypes types;
    types.usages = UsageNames();
    types.values = ValueNames();
    settings.SetFlagTypes(types);
    settings.SetDir(QDir(folder));
    settings.SetFileName(QStringLiteral("highlands.xml"));
    settings.SetName(QStringLiteral("highlands"));
    settings.SetBackgroundFile(BackgroundFile());
    // White that veils nothing until its opacity is raised.
    settings.SetBackgroundColor(QColor::fromRgba(0x00FFFFFF));
    settings.SetSizes(WorldPixels, WorldPixels, WorldMetres, WorldMetres);
}

QString WriteFile(const QString& path, const QByteArray& bytes)
{
    OutputFile file(path);
    if (file.Open() && file.Write(bytes) && file.Commit()) {
        return {};
    }
    return QStringLiteral("Cannot write '%1': %2.").arg(path, file.ErrorString());
}

QString WritePicture(const QImage& picture, const QString& path)
{
    constexpr int quality = 88;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpg");
    writer.setQuality(quality);
    if (!writer.write(picture)) {
        return QStringLiteral("Cannot make '%1': %2.").arg(path, writer.errorString());
    }
    return WriteFile(path, bytes);
}

QString WriteAreaTypes(const QString& path)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    ProjectSettings::Instance().FlagTypes().WriteXml(xml);
    xml.writeEndDocument();
    return WriteFile(path, bytes);
}

QImage ToImage(const Mask& mask)
{
    QImage image = ProjectSettings::Instance().BlankLayerImage();
    for (int y = 0; y < mask.Size(); ++y) {
        uchar* line = image.scanLine(y);
        for (int x = 0; x < mask.Size(); ++x) {
            line[x] = mask.At(x, y) ? raster::MaskSet : raster::MaskClear;
        }
    }
    return image;
}

void AddLayers(const World& world, LayerList& layers)
{
    for (const LayerPlan& plan : PlanLayers(world)) {
        auto layer = std::make_unique<Layer>(plan.usageFlags, plan.valueFlags, &layers, plan.name);
        layer->SetImage(ToImage(plan.mask), plan.color);
        layer->SetVisible(plan.isVisible);
        layers.AddLayer(std::move(layer));
    }
}

/// The brush of the example: white with a thin black outline.
void WriteBrush(QXmlStreamWriter& xml)
{
    xml.writeEmptyElement(QStringLiteral("brush"));
    xml.writeAttribute(QStringLiteral("color"), QString::number(0xFFFFFFFF));
    xml.writeAttribute(QStringLiteral("outline"), QStringLiteral("1"));
    xml.writeAttribute(QStringLiteral("outline_color"), QString::number(0xFF000000));
    xml.writeAttribute(QStringLiteral("outline_width"), QStringLiteral("1"));
    xml.writeAttribute(QStringLiteral("size"), QStringLiteral("32"));
}

QString WriteDocument(const World& world)
{
    LayerList layers;
    AddLayers(world, layers);
    TerritoryTypeList types;
    PlaceTerritories(world, types);
    // The writer of the document only logs a bitmap that it cannot write, so watch the log.
    bool isWhole = true;
    const auto connection =
        QObject::connect(&Log::Instance(), &Log::MessageReceived,
                         [&isWhole](const QString& /*content*/, Log::MessageType type) {
                             isWhole = isWhole && type != Log::Error;
                         });
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    WriteProjectDocument(xml, {0, WriteBrush, {}, layers, types});
    QObject::disconnect(connection);
    return isWhole ? WriteFile(ProjectSettings::Instance().ProjectFilePath(), bytes)
                   : QStringLiteral("Cannot write the layers.");
}

} // namespace

QString WriteExample(const QString& folder)
{
    const QDir dir(folder);
    for (const QString& name : {QStringLiteral("background"), QStringLiteral("layers")}) {
        if (!dir.mkpath(name)) {
            return QStringLiteral("Cannot create the folder '%1'.").arg(dir.filePath(name));
        }
    }
    DescribeProject(folder);
    const World world = MakeWorld();
    QString error = WritePicture(PaintPicture(world), dir.filePath(BackgroundFile()));
    if (error.isEmpty()) {
        error = WriteAreaTypes(dir.filePath(QStringLiteral("area-types.xml")));
    }
    return error.isEmpty() ? WriteDocument(world) : error;
}

} // namespace generator
