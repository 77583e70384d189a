#pragma once

#include "document/Edit.h"

#include <QImage>
#include <QString>

#include <memory>

class AreaFlagTypes;
class LayerList;
class QStandardItem;

/// The edits of layers, one for each user action.
namespace Edits {

/// A white layer with the mask at the end of the list.
std::unique_ptr<Edit> AddPaintedLayer(LayerList& list, const QImage& mask);
/// isLive: whether it follows what it is made of.
std::unique_ptr<Edit> AddComputedLayer(LayerList& list, const QString& name, const QString& code,
                                       const QImage& mask, bool isLive = false);
/// Two layers that follow this one, as its next rows: a ring of the width around it, which is
/// shown, and below it the layer grown by that width, of which the ring is made. grown: the mask of
/// the latter. Null without memory.
std::unique_ptr<Edit> AddLiveRing(Layer& layer, int metres, const QImage& grown);
/// A layer like this one under a free name, as the next row. Null without memory.
std::unique_ptr<Edit> DuplicateLayer(Layer& layer);
std::unique_ptr<Edit> RemoveLayer(Layer& layer);
/// Adds what is set in the layer to the other one, and removes the layer. Null when there is no
/// memory to undo it, and for masks of different sizes.
std::unique_ptr<Edit> MergeLayers(Layer& layer, Layer& into);
/// Gives the layer the mask; text: what the user did. Null without a mask, and when there is no
/// memory to undo it.
std::unique_ptr<Edit> ChangePixels(const QString& text, Layer& layer, const QImage& mask);
/// Gives all pixels of the layer the value. Null when there is no memory to undo it.
std::unique_ptr<Edit> FillLayer(const QString& text, Layer& layer, uchar value);
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
std::unique_ptr<Edit> ShowAllLayers(const LayerList& list);
/// Renames a layer, a territory type or a territory.
std::unique_ptr<Edit> Rename(QStandardItem& item, const QString& name);
/// Replaces the flag types of the project; flags that named others are reset on request.
std::unique_ptr<Edit> ImportFlagTypes(const LayerList& list, const AreaFlagTypes& types,
                                      bool resetsFlags);

} // namespace Edits
