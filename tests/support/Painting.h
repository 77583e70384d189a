#pragma once

#include "canvas/tools/PaintTools.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"
#include "ui/LayerComposition.h"

#include <QByteArray>
#include <QColor>

/// A canvas in Paint mode whose current layer is "Forest", with one set rectangle, and whose map
/// follows the history. The brush is 10 pixels wide.
class Painting : public CanvasFixture
{
public:
    static constexpr QSize LayerSize{200, 160};
    static constexpr QRect Wood{20, 20, 60, 50};

    explicit Painting(QSize size = LayerSize);

    PaintTools& Tools() { return *Scene().GetPaintTools(); }
    /// Gives the layer pixels of all values.
    void AddGreys();
    /// The pixels as they are; a copy of the image would only share them.
    QByteArray Pixels() const;
    int StepCount() { return document.History().count(); }
    /// Whether the map shows the layer as it is.
    bool ShowsLayer() { return PictureOf(*ItemAt(CurrentZ)) == layer->Pixmap().toImage(); }
    void PaintStroke(QPointF from, QPointF to, Qt::MouseButton button = Qt::LeftButton,
                     Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    Layer* layer;

private:
    LayerComposition m_composition;
};
