#include "app/ProjectDocument.h"

#include "app/ProjectReader.h"
#include "app/Xml.h"
#include "territories/TerritoryTypeList.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

/// What stands before the layers.
void WriteHead(QXmlStreamWriter& xml, int selectedRow, const ProjectSettings& settings,
               const std::function<void(QXmlStreamWriter&)>& writeBrush)
{
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeComment(QStringLiteral("Tarvo Ledger tool project file"));
    xml.writeStartElement(QStringLiteral("qm-config"));
    xml.writeComment(QStringLiteral("GUI props"));
    if (selectedRow >= 0) {
        xml.writeEmptyElement(QStringLiteral("selected"));
        xml.writeAttribute(QStringLiteral("row"), QString::number(selectedRow));
    }
    settings.WriteXml(xml);
    if (writeBrush) {
        writeBrush(xml);
    }
}

void WriteEnd(QXmlStreamWriter& xml)
{
    xml.writeEndElement();
    xml.writeEndDocument();
}

} // namespace

int WriteProjectDocument(QXmlStreamWriter& xml, const ProjectParts& parts)
{
    WriteHead(xml, parts.selectedRow, ProjectSettings::Instance(), parts.writeBrush);
    if (parts.beforeLayers) {
        parts.beforeLayers();
    }
    const int failures = parts.layers.WriteXml(xml);
    parts.types.Write(xml);
    WriteEnd(xml);
    return failures;
}

void WriteProjectText(QXmlStreamWriter& xml, const ProjectValues& values)
{
    WriteHead(xml, values.selectedRow, values.settings, values.writeBrush);
    WriteLayers(xml, values.layers);
    Write(xml, values.types, WorldScale(values.settings));
    if (!values.formulas.empty()) {
        WriteFormulas(xml, values.formulas);
    }
    WriteEnd(xml);
}

ProjectValues ReadProjectText(QIODevice& device)
{
    std::function<void(QXmlStreamWriter&)> writeBrush;
    std::vector<LayerRecord> layers;
    TerritoryTypeList types;
    ProjectReader reader(device);
    reader.Read({[&writeBrush](QXmlStreamReader& xml) {
                     writeBrush = [attributes = xml.attributes()](QXmlStreamWriter& out) {
                         out.writeEmptyElement(QStringLiteral("brush"));
                         out.writeAttributes(attributes);
                     };
                 },
                 [&layers](QXmlStreamReader& xml) {
                     return WalkXml(xml,
                                    {{QLatin1String("layer"),
                                      [&layers](QXmlStreamReader& element) {
                                          layers.push_back(LayerRecord::Read(element));
                                          return true;
                                      }}},
                                    QLatin1String("layers"));
                 },
                 [&types](QXmlStreamReader& xml) { return types.Read(xml, nullptr); }});
    return {
        reader.SelectedRow(), ProjectSettings::Instance(), writeBrush, layers, types.Records(), {}};
}
