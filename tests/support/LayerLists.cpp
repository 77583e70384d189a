#include "tests/support/LayerLists.h"

#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/Models.h"

#include <QStandardItemModel>

Layer* AddLayer(LayerList& layers, const QImage& mask, quint32 usageFlags, quint32 valueFlags,
                const QString& name)
{
    auto* layer = new Layer(usageFlags, valueFlags, &layers, name);
    layer->SetImage(mask, Qt::red);
    layers.AddLayer(layer);
    return layer;
}

QStringList NamesOf(const LayerList& layers)
{
    return RowTexts(*layers.model());
}
