#pragma once

#include <QStringList>

class Layer;
class LayerList;
class QImage;

/// A new layer with this picture, in red, as the last one of the list.
Layer* AddLayer(LayerList& layers, const QImage& mask, quint32 usageFlags, quint32 valueFlags);
/// A white one with the flags 1 and 2 and the mask that this art is.
Layer* AddLayer(LayerList& layers, const QString& name,
                const QStringList& art = {QStringLiteral("....."), QStringLiteral(".....")});

/// In row order.
QStringList NamesOf(const LayerList& layers);

/// The list's part of a project's document, whose bitmaps are saved with it.
QString WrittenLayers(LayerList& layers);
