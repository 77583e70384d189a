#pragma once

#include "canvas/BrushDock.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"

#include <QEvent>
#include <QPoint>

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
    /// At a pixel of the viewport.
    void Mouse(QEvent::Type type, QPoint position, Qt::MouseButtons buttons);
    MainScene* scene() { return view.Scene(); }

    Document document;
    LayerList& layers = document.Layers();
    BrushDock dock{document.GetBrush()};
    MainView view;
};
