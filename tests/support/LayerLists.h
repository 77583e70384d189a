#pragma once

#include <QStringList>

class Layer;
class LayerList;
class QImage;

/// A new layer with this picture, in red, as the last one of the list.
Layer* AddLayer(LayerList& layers, const QImage& mask, quint32 usageFlags, quint32 valueFlags);
/// A white layer with the flags 1 and 2 and the mask of this art.
Layer* AddLayer(LayerList& layers, const QString& name,
                const QStringList& art = {QStringLiteral("....."), QStringLiteral(".....")});

/// In row order.
QStringList NamesOf(const LayerList& layers);

/// Saves the list and its bitmaps, and returns its part of the document.
QString WrittenLayers(LayerList& layers);
