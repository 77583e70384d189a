#pragma once

#include <QElapsedTimer>
#include <QObject>

class Document;

/// Tells the document where one gesture of the user's ends and the next one begins: at each press
/// of a mouse button, when another control gets the focus, and when wheel or keys rest for a second
/// on a slider.
class Gestures : public QObject
{
public:
    explicit Gestures(Document& document);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Document& m_document;
    QElapsedTimer m_lastTurn;
};
