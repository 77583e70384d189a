#include "app/Xml.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <limits>

namespace {

const XmlHandler* HandlerFor(const XmlHandlers& handlers, const QStringRef& element)
{
    const auto it = std::find_if(handlers.begin(), handlers.end(), [&](const XmlHandler& handler) {
        return element == handler.element;
    });
    return it == handlers.end() ? nullptr : &*it;
}

bool IsXmlCharacter(QChar unit)
{
    const ushort code = unit.unicode();
    if (code < 0x20) {
        return code == '\t' || code == '\n' || code == '\r';
    }
    return code != 0xFFFE && code != 0xFFFF;
}

} // namespace

bool WalkXml(QXmlStreamReader& xml, const XmlHandlers& handlers, QLatin1String until)
{
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement()) {
            const XmlHandler* handler = HandlerFor(handlers, xml.name());
            if (handler && handler->start && !handler->start(xml)) {
                return false;
            }
        } else if (xml.isEndElement()) {
            const XmlHandler* handler = HandlerFor(handlers, xml.name());
            if (handler && handler->end) {
                handler->end();
            }
            if (xml.name() == until) {
                return true;
            }
        }
    }
    return true;
}

QString TextAttribute(const QXmlStreamReader& xml, QLatin1String name)
{
    return xml.attributes().value(name).toString();
}

int IntAttribute(const QXmlStreamReader& xml, QLatin1String name, int defaultValue)
{
    const QString text = TextAttribute(xml, name);
    return text.isEmpty() ? defaultValue : text.toInt();
}

quint32 UIntAttribute(const QXmlStreamReader& xml, QLatin1String name, quint32 defaultValue)
{
    const QString text = TextAttribute(xml, name);
    return text.isEmpty() ? defaultValue : text.toUInt();
}

float FloatAttribute(const QXmlStreamReader& xml, QLatin1String name, float defaultValue)
{
    const QString text = TextAttribute(xml, name);
    return text.isEmpty() ? defaultValue : text.toFloat();
}

quint32 BitsAttribute(const QXmlStreamReader& xml, QLatin1String name)
{
    const qint64 value = TextAttribute(xml, name).toLongLong();
    const bool isInRange =
        value >= std::numeric_limits<qint32>::min() && value <= std::numeric_limits<quint32>::max();
    return isInRange ? static_cast<quint32>(value) : 0;
}

QString ToXmlText(const QString& text)
{
    QString xmlText;
    xmlText.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        if (unit.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            xmlText.append(unit).append(text.at(++i));
        } else if (unit.isSurrogate()) {
            xmlText.append(QChar(QChar::ReplacementCharacter));
        } else if (IsXmlCharacter(unit)) {
            xmlText.append(unit);
        }
    }
    return xmlText;
}

void WriteTextAttribute(QXmlStreamWriter& xml, QLatin1String name, const QString& value)
{
    xml.writeAttribute(name, ToXmlText(value));
}
