#pragma once

#include "document/Document.h"
#include "tests/support/ProjectFixture.h"

#include <QGraphicsScene>
#include <QWidget>

class Layer;
class Territory;
class TerritoryType;

/// A document that can be edited, without a window of the editor: the type "Deer" with the
/// territory "North", and no layers yet. The history begins after that.
class DocumentFixture
{
public:
    /// Of layers, in pixels, and of the world, in metres. Tiles at the right and at the bottom of a
    /// mask are cut off.
    static constexpr int Side = 200;

    DocumentFixture();
    Q_DISABLE_COPY(DocumentFixture)

    /// Adds a blank layer as the last one.
    Layer* AddLayer();
    /// Fills the rectangle with the value, as a step.
    void Fill(Layer& layer, const QRect& rect, uchar value);

private:
    /// Layers and territories have check boxes and names while there is a window.
    QWidget m_window;

public:
    ProjectFixture project{QSize(Side, Side), QSize(Side, Side)};
    QGraphicsScene scene{0, 0, Side, Side};
    Document document;
    TerritoryType* type = nullptr;
    Territory* territory = nullptr;
};
