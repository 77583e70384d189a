#pragma once

#include <QLatin1String>
#include <QString>

#include <functional>
#include <vector>

class QXmlStreamReader;
class QXmlStreamWriter;

/// Reads one element. A handler that returns false stops the walk.
struct XmlHandler
{
    QLatin1String element;
    std::function<bool(QXmlStreamReader&)> start;
    std::function<void()> end = {};
};

using XmlHandlers = std::vector<XmlHandler>;

/// Reads tokens up to the end element named until, the end of the document or an error of the
/// reader. Start and end elements go to their handlers; all other tokens are skipped. Without until
/// the whole document is read. Returns false only if a handler stopped the walk.
bool WalkXml(QXmlStreamReader& xml, const XmlHandlers& handlers, QLatin1String until = {});

/// These return an attribute of the start element that the reader is on. The default is for an
/// attribute that is absent or empty; one that cannot be parsed gives 0.
QString TextAttribute(const QXmlStreamReader& xml, QLatin1String name);
int IntAttribute(const QXmlStreamReader& xml, QLatin1String name, int defaultValue);
quint32 UIntAttribute(const QXmlStreamReader& xml, QLatin1String name, quint32 defaultValue);
float FloatAttribute(const QXmlStreamReader& xml, QLatin1String name, float defaultValue);
/// A set of 32 bits, read from a signed or unsigned number. Negative numbers keep their bit
/// pattern.
quint32 BitsAttribute(const QXmlStreamReader& xml, QLatin1String name);

/// The text without the characters that XML 1.0 does not allow even when escaped: control
/// characters other than tab and line ends, U+FFFE and U+FFFF. Half of a surrogate pair becomes
/// U+FFFD. A document with such characters, which users may paste into a name, could not be loaded.
QString ToXmlText(const QString& text);
/// Writes an attribute of the current element, with the value as ToXmlText returns it.
void WriteTextAttribute(QXmlStreamWriter& xml, QLatin1String name, const QString& value);
