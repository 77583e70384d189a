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

/// The document up to a fault, without layers that are not to be kept.
template <typename KeepsLayer>
QByteArray Copied(QXmlStreamReader& reader, KeepsLayer keepsLayer)
{
    QByteArray copy;
    QXmlStreamWriter writer(&copy);
    bool isInLayers = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.name() == QLatin1String("layers")) {
            isInLayers = reader.isStartElement();
        }
        const bool isLayer =
            isInLayers && reader.isStartElement() && reader.name() == QLatin1String("layer");
        if (isLayer && !keepsLayer(TextAttribute(reader, QLatin1String("name")))) {
            reader.skipCurrentElement();
        } else if (!reader.hasError()) {
            writer.writeCurrentToken(reader);
        }
    }
    writer.writeEndDocument();
    return copy;
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
    QXmlStreamReader reader(document);
    const QByteArray copy = Copied(reader, [](const QString&) { return true; });
    // There is no element in an empty document either.
    return reader.hasError() && !document.isEmpty() ? copy : document;
}

QByteArray WithLayers(const QByteArray& document, const QStringList& names)
{
    QXmlStreamReader reader(document);
    return Copied(reader, [&names](const QString& name) { return names.contains(name); });
}
