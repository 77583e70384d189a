#include "document/versions/ProjectOutline.h"

#include "app/Xml.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

constexpr int DefaultLayerSize = 2048;

ProjectOutline::Layer ReadLayer(const QXmlStreamReader& xml)
{
    constexpr quint32 white = 0xFFFFFFFF;
    return {TextAttribute(xml, QLatin1String("name")),
            QColor::fromRgba(UIntAttribute(xml, QLatin1String("color"), white)),
            IntAttribute(xml, QLatin1String("visible"), 0) > 0};
}

} // namespace

ProjectOutline OutlineOf(const QByteArray& document)
{
    ProjectOutline outline{{DefaultLayerSize, DefaultLayerSize}, {}};
    bool hasSize = false;
    const auto readSize = [&](const QXmlStreamReader& xml) {
        const int size = IntAttribute(xml, QLatin1String("size"), DefaultLayerSize);
        outline.layerSize = {size, size};
        return true;
    };
    const auto readGlobal = [&](QXmlStreamReader& xml) {
        hasSize = true;
        return WalkXml(xml, {{QLatin1String("layer"), readSize}}, QLatin1String("global"));
    };
    const auto addLayer = [&](const QXmlStreamReader& xml) {
        outline.layers.append(ReadLayer(xml));
        return true;
    };
    const auto readLayers = [&](QXmlStreamReader& xml) {
        return WalkXml(xml, {{QLatin1String("layer"), addLayer}}, QLatin1String("layers"));
    };
    const auto passTypes = [&](QXmlStreamReader& xml) {
        // Territories come last as a rule, and they are the bulk of a document.
        const bool isDone = hasSize && !outline.layers.isEmpty();
        return !isDone && WalkXml(xml, {}, QLatin1String("territory-type-list"));
    };
    QXmlStreamReader xml(document);
    WalkXml(xml, {{QLatin1String("global"), readGlobal},
                  {QLatin1String("layers"), readLayers},
                  {QLatin1String("territory-type-list"), passTypes}});
    return outline;
}

QByteArray UpToFault(const QByteArray& document)
{
    QByteArray whole;
    QXmlStreamReader reader(document);
    QXmlStreamWriter writer(&whole);
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.hasError()) {
            writer.writeCurrentToken(reader);
        }
    }
    if (!reader.hasError()) {
        return document;
    }
    writer.writeEndDocument();
    return whole;
}
