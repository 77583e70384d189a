#pragma once

class BrushDock;
class DockLayerProps;
class DockLayers;
class DockStatus;
class DockTerTypeProps;
class DockTerTypes;
class MainScene;
class MainView;
class QuillmapWindow;

namespace Ui {
class QuillmapWindowClass;
}

/// What the editor's window is made of, for those who run its actions. The window owns all of it.
struct EditorParts
{
    QuillmapWindow& window;
    Ui::QuillmapWindowClass& form;
    MainView& view;
    MainScene& scene;
    BrushDock& brush;
    DockLayers& layers;
    DockLayerProps& layerProps;
    DockStatus& status;
    DockTerTypes& terTypes;
    DockTerTypeProps& terTypeProps;
};
