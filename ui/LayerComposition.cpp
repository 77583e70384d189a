#include "ui/LayerComposition.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "layers/LayerList.h"

#include <QStandardItemModel>

LayerComposition::LayerComposition(const LayerList& layers, MainView& view)
    : m_layers(layers)
    , m_view(view)
{
    connect(layers.model(), &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) { ForgetRows(first, last); });
    connect(layers.model(), &QAbstractItemModel::rowsRemoved, this,
            &LayerComposition::ForgetPictures);
}

void LayerComposition::ForgetRows(int first, int last)
{
    for (int row = first; row <= last; ++row) {
        Layer* layer = m_layers.LayerAt(row);
        if (!layer) {
            continue;
        }
        m_visible.remove(layer->Id());
        if (m_view.Scene()->CurrentLayer() == layer) {
            m_view.Scene()->ChangeLayer(nullptr);
        }
        if (m_current == layer) {
            m_current = nullptr;
        }
    }
}

/// Removes the picture of the last layer, because an empty list is never composed.
void LayerComposition::ForgetPictures()
{
    if (m_layers.IsEmpty()) {
        m_view.Scene()->ClearCurrent();
        m_view.Scene()->ClearLayers();
    }
}

void LayerComposition::Follow(Layer* layer)
{
    if (layer->IsVisible()) {
        m_visible.insert(layer->Id(), layer);
    } else {
        m_visible.remove(layer->Id());
    }
}

void LayerComposition::Fill()
{
    m_visible.clear();
    m_layers.VisibleLayers(m_visible);
}

void LayerComposition::Recompose()
{
    if (m_layers.IsEmpty()) {
        return;
    }
    MainScene& scene = *m_view.Scene();
    const Layer* current = m_current;
    if (current) {
        scene.ChangeLayer(m_current);
    } else {
        scene.ClearCurrent();
    }
    scene.ClearLayers();
    const QVector<Layer*> layers = m_layers.Layers();
    for (Layer* layer : layers) {
        if (layer != current && m_visible.contains(layer->Id())) {
            scene.AddLayer(layer);
        }
    }
    m_view.setEnabled(true);
}
