#pragma once

#include <QIODevice>

#include <functional>

class LayerList;
class QXmlStreamWriter;
class TerritoryTypeList;

/// What a project document is made of, in the order in which it is written.
struct ProjectParts
{
    /// The row of the layer that is selected in the editor; -1 when none is.
    int selectedRow = -1;
    /// Writes the "brush" element; empty to leave it out.
    std::function<void(QXmlStreamWriter&)> writeBrush;
    /// Called when "global" and "brush" are written and the layers are about to be.
    std::function<void()> beforeLayers;
    LayerList& layers;
    const TerritoryTypeList& types;
};

/// Writes the document, and with it every layer's bitmap below the project's folder. Returns how
/// many of the bitmaps could not be written.
int WriteProjectDocument(QXmlStreamWriter& xml, const ProjectParts& parts);
