#pragma once

#include <QString>
#include <QXmlStreamReader>

#include <functional>

class QXmlStreamWriter;

/// Calls write with a stream writer and returns the text on one line.
QString XmlText(const std::function<void(QXmlStreamWriter&)>& write);

/// A reader of a text, on the text's first start element.
class ElementReader : public QXmlStreamReader
{
public:
    explicit ElementReader(const QString& text);
};
