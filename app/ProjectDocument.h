#pragma once

#include "app/ProjectSettings.h"
#include "layers/FormulaFile.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/TerritoryRecords.h"

#include <functional>
#include <vector>

class QIODevice;
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
    /// Gives the formulas of the computed layers, after the layers have been written; empty when
    /// whoever saves knows nothing of formulas.
    std::function<FormulaRecords()> formulas = {};
};

/// The same as plain values of one moment, which another thread may write.
struct ProjectValues
{
    int selectedRow = -1;
    ProjectSettings settings;
    std::function<void(QXmlStreamWriter&)> writeBrush;
    std::vector<LayerRecord> layers;
    std::vector<TypeRecord> types;
    FormulaRecords formulas = {};
};

/// Writes the document, and every layer's bitmap below the project's folder. Returns how many
/// bitmaps could not be written.
int WriteProjectDocument(QXmlStreamWriter& xml, const ProjectParts& parts);
/// Writes the document alone: no bitmap, no message, and names as they are. Formulas, if there are
/// any, stand at its end.
void WriteProjectText(QXmlStreamWriter& xml, const ProjectValues& values);
/// Reads a document as the editor does, but for the bitmaps: layers without one are there too. What
/// the editor does not know is lost, as in its own saves. A document without a brush has none
/// afterwards either. Formulas are not read; they have a file of their own. Also sets the
/// process-wide ProjectSettings, which must hold no flag types if the document may hold none. The
/// device must be open and seekable.
ProjectValues ReadProjectText(QIODevice& device);
