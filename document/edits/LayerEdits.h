#pragma once

#include "document/Edit.h"

#include <QImage>
#include <QString>

#include <memory>

class AreaFlagTypes;
class LayerList;
class QStandardItem;

/// What users do with layers, each as the edit that does it.
namespace Edits {

/// A white layer with the mask at the end of the list.
std::unique_ptr<Edit> AddPaintedLayer(LayerList& list, const QImage& mask);
std::unique_ptr<Edit> AddComputedLayer(LayerList& list, const QString& name, const QString& code,
                                       const QImage& mask);
std::unique_ptr<Edit> RemoveLayer(Layer& layer);
/// row: in the list without the layer.
std::unique_ptr<Edit> MoveLayer(Layer& layer, int row);
/// Gives a computed layer another name, code and mask. Null masks leave code and mask as they are.
/// Null when there is no memory to undo it.
std::unique_ptr<Edit> ModifyLayer(Layer& layer, const QString& name, const QString& code,
                                  const QImage& mask);
std::unique_ptr<Edit> SetLayerFlags(Layer& layer, quint32 usageFlags, quint32 valueFlags);
/// Keeps the alpha.
std::unique_ptr<Edit> SetLayerColor(Layer& layer, const QColor& color);
/// alpha: 0 to 255.
std::unique_ptr<Edit> SetLayerOpacity(Layer& layer, int alpha);
std::unique_ptr<Edit> SetLayerVisible(Layer& layer, bool isVisible);
std::unique_ptr<Edit> HideAllLayers(const LayerList& list);
/// Of a layer, a territory type or a territory.
std::unique_ptr<Edit> Rename(QStandardItem& item, const QString& name);
/// Replaces the flag types of the project; flags that named others are reset on request.
std::unique_ptr<Edit> ImportFlagTypes(const LayerList& list, const AreaFlagTypes& types,
                                      bool resetsFlags);

} // namespace Edits
