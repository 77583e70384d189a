#include "tests/support/XmlText.h"

#include <QXmlStreamWriter>

QString XmlText(const std::function<void(QXmlStreamWriter&)>& write)
{
    QString text;
    QXmlStreamWriter xml(&text);
    write(xml);
    // Closes the last empty element.
    xml.writeCharacters({});
    return text;
}

ElementReader::ElementReader(const QString& text)
    : QXmlStreamReader(text)
{
    readNextStartElement();
}
