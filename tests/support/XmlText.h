#pragma once

#include <QString>
#include <QXmlStreamReader>

#include <functional>

class QXmlStreamWriter;

/// What write puts into a stream writer, on one line.
QString XmlText(const std::function<void(QXmlStreamWriter&)>& write);

/// A reader of a text that stands on the text's first start element.
class ElementReader : public QXmlStreamReader
{
public:
    explicit ElementReader(const QString& text);
};
