#include "tests/support/LayerLists.h"

#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/Masks.h"
#include "tests/support/Models.h"

#include <QStandardItemModel>
#include <QXmlStreamWriter>

Layer* AddLayer(LayerList& layers, const QImage& mask, quint32 usageFlags, quint32 valueFlags)
{
    auto* layer = new Layer(usageFlags, valueFlags, &layers, QStringLiteral("layer"));
    layer->SetImage(mask, Qt::red);
    layers.AddLayer(layer);
    return layer;
}

Layer* AddLayer(LayerList& layers, const QString& name, const QStringList& art)
{
    auto* layer = new Layer(1, 2, &layers, name);
    layer->SetImage(MaskFromArt(art), Qt::white);
    layers.AddLayer(layer);
    return layer;
}

QStringList NamesOf(const LayerList& layers)
{
    return RowTexts(*layers.model());
}

QString WrittenLayers(LayerList& layers)
{
    QString text;
    QXmlStreamWriter xml(&text);
    layers.WriteXml(xml);
    return text;
}
