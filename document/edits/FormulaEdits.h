#pragma once

#include "document/Edit.h"

#include <QVector>

#include <memory>

class Document;

/// The edits of the formulas of computed layers, one for each user action.
namespace Edits {

/// Computes the layers anew by their formulas, in this order; one step. Layers without memory for
/// that stay as they are.
std::unique_ptr<Edit> UpdateLayers(const QVector<Layer*>& layers);
/// Lets the layer follow its operands from now on. updateFirst: layers that are computed anew
/// before, in this order, so that all is up to date then.
std::unique_ptr<Edit> MakeLayerLive(Layer& layer, const QVector<Layer*>& updateFirst);
/// Lets the layer keep its pixels.
std::unique_ptr<Edit> DetachLayer(Layer& layer);

/// Notes that the layer was computed just now; a part of the edit that computes it.
std::unique_ptr<Edit> NoteComputed(Layer& layer);

} // namespace Edits
