#pragma once

#include "ui/EditorParts.h"

class InteractionModes;
class LayerComposition;

/// Shows the open project in the parts of the window, and none in them while it is loaded.
class ProjectDisplay
{
public:
    ProjectDisplay(const EditorParts& parts, LayerComposition& composition,
                   InteractionModes& modes);

    /// Enables the actions and widgets that need an open project.
    void EnableEditing(bool isEnabled);
    /// Disables what shows the project, and shows that work is under way.
    void BeginLoading();
    void EndLoading();
    /// The map, and the layer in this row as the current one; none for a row that is not there.
    void Show(int selectedRow);
    /// Shows the project's picture, or none.
    void ShowBackground();
    void ShowBackgroundColor();

private:
    void ShowWorld();
    void SelectLayer(int row);

    EditorParts m_parts;
    LayerComposition& m_composition;
    InteractionModes& m_modes;
};
