#include "app/ProjectDocument.h"

#include "app/ProjectSettings.h"
#include "layers/LayerList.h"
#include "territories/TerritoryTypeList.h"

#include <QXmlStreamWriter>

int WriteProjectDocument(QXmlStreamWriter& xml, const ProjectParts& parts)
{
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeComment(QStringLiteral("Tarvo Ledger tool project file"));
    xml.writeStartElement(QStringLiteral("qm-config"));
    xml.writeComment(QStringLiteral("GUI props"));
    if (parts.selectedRow >= 0) {
        xml.writeEmptyElement(QStringLiteral("selected"));
        xml.writeAttribute(QStringLiteral("row"), QString::number(parts.selectedRow));
    }
    ProjectSettings::Instance().WriteXml(xml);
    if (parts.writeBrush) {
        parts.writeBrush(xml);
    }
    if (parts.beforeLayers) {
        parts.beforeLayers();
    }
    const int failures = parts.layers.WriteXml(xml);
    parts.types.Write(xml);
    xml.writeEndElement();
    xml.writeEndDocument();
    return failures;
}
