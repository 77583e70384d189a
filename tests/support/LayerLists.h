#pragma once

#include <QStringList>

class Layer;
class LayerList;
class QImage;

/// A new layer with this picture, in red, as the last one of the list.
Layer* AddLayer(LayerList& layers, const QImage& mask, quint32 usageFlags, quint32 valueFlags,
                const QString& name = QStringLiteral("layer"));

/// In row order.
QStringList NamesOf(const LayerList& layers);
