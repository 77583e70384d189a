#pragma once

#include <QLatin1String>
#include <QString>

#include <functional>
#include <vector>

class QXmlStreamReader;
class QXmlStreamWriter;

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

/// The text without the characters that no XML 1.0 document can hold, however they are escaped:
/// controls other than tab and line ends, U+FFFE and U+FFFF. Half a surrogate pair becomes U+FFFD.
/// Pasted into a name they would make a document that cannot be loaded.
QString ToXmlText(const QString& text);
/// Writes an attribute of the element begun last, its value made to XML text.
void WriteTextAttribute(QXmlStreamWriter& xml, QLatin1String name, const QString& value);
