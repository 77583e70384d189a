#pragma once

#include "tests/support/CanvasFixture.h"

#include <QPoint>
#include <QPointF>
#include <QSignalSpy>

/// A view of a map of 1000 pixels a side, which is larger than the view, with the mouse over it.
/// There are no scroll bars, as in the window.
class MovedCanvas : public CanvasFixture
{
public:
    /// Where the mouse is at first, in view pixels.
    static constexpr QPoint MousePixel{90, 210};

    MovedCanvas();

    void MoveTo(QPoint pixel, Qt::MouseButtons buttons = Qt::NoButton);
    /// Pinches a touch pad: the zoom grows by this share.
    void Pinch(QPointF pixel, double value, Qt::NativeGestureType gesture = Qt::ZoomNativeGesture);
    /// Turns a wheel, or moves two fingers, in both directions at once.
    void TurnBoth(QPoint pixels, QPoint angle, Qt::ScrollPhase phase);
    QPoint Middle() const { return view.viewport()->rect().center(); }

    /// Rulers, label and markers tell what the transform says, with the mouse at this pixel.
    void VerifyAgreement(QPoint mouse = MousePixel);
    /// The label tells this scene position.
    void VerifyLabel(QPointF place);
    /// The scene position is at the pixel.
    void VerifyPlace(QPoint pixel, QPointF place) const;

    /// What the view has told of the mouse.
    QSignalSpy moved;
};
