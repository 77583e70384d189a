#pragma once

#include <QIODevice>

#include <functional>

class LayerList;
class QXmlStreamWriter;
class TerritoryTypeList;

/// The parts of a project document, in the order in which they are written.
struct ProjectParts
{
    /// The row of the layer that is selected in the editor; -1 for none.
    int selectedRow = -1;
    /// Writes the "brush" element; empty to leave it out.
    std::function<void(QXmlStreamWriter&)> writeBrush;
    /// Called after "global" and "brush" have been written, before the layers.
    std::function<void()> beforeLayers;
    LayerList& layers;
    const TerritoryTypeList& types;
};

/// Writes the document, and every layer's bitmap below the project's folder. Returns how many
/// bitmaps could not be written.
int WriteProjectDocument(QXmlStreamWriter& xml, const ProjectParts& parts);
