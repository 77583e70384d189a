#pragma once

#include <QLatin1String>
#include <QString>

#include <functional>
#include <vector>

class QXmlStreamReader;

/// What a reader does with one element. A handler that returns false stops the walk.
struct XmlHandler
{
    QLatin1String element;
    std::function<bool(QXmlStreamReader&)> start;
    std::function<void()> end = {};
};

using XmlHandlers = std::vector<XmlHandler>;

/// Reads tokens, handing start and end elements to their handlers and passing over the rest, until
/// the end element named until, the end of the document or an error of the reader. Without until
/// the whole document is walked. False only when a handler stopped the walk.
bool WalkXml(QXmlStreamReader& xml, const XmlHandlers& handlers, QLatin1String until = {});

/// The attributes of the start element that the reader stands on. The default stands for an
/// attribute that is absent or empty; one that cannot be parsed gives 0.
QString TextAttribute(const QXmlStreamReader& xml, QLatin1String name);
int IntAttribute(const QXmlStreamReader& xml, QLatin1String name, int defaultValue);
quint32 UIntAttribute(const QXmlStreamReader& xml, QLatin1String name, quint32 defaultValue);
float FloatAttribute(const QXmlStreamReader& xml, QLatin1String name, float defaultValue);
/// A set of 32 bits, written signed or unsigned; negative numbers keep their bit pattern.
quint32 BitsAttribute(const QXmlStreamReader& xml, QLatin1String name);
