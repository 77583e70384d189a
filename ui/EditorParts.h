#pragma once

class BrushDock;
class Document;
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

/// The parts of the editor's window, for the classes that carry out its actions. The window owns
/// all of them.
struct EditorParts
{
    Document& document;
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
