#pragma once

#include "canvas/BrushDock.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"

#include <QEvent>
#include <QPoint>

/// Sends a mouse event with the left button, at a pixel of the viewport.
void SendMouse(MainView& view, QEvent::Type type, QPoint position, Qt::MouseButtons buttons);

/// A view of 1200 x 800 pixels, offscreen, with a project of one size. There is one canvas at a
/// time, and none outlives the application.
struct Canvas
{
    /// side: of the map in layer pixels. The world has 15360 metres a side.
    explicit Canvas(int side);

    /// All have equal land-like shapes.
    void AddLayers(int count);
    void ShowLayers(int first);
    /// Zooms at the middle of the map.
    void SetZoom(double zoom);
    void Mouse(QEvent::Type type, QPoint position, Qt::MouseButtons buttons)
    {
        SendMouse(view, type, position, buttons);
    }
    MainScene* scene() { return view.Scene(); }

    Document document;
    LayerList& layers = document.Layers();
    BrushDock dock{document.GetBrush()};
    MainView view;
};
