#include "ui/LayerComposition.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/tools/PaintTools.h"

LayerComposition::LayerComposition(Document& document, MainView& view)
    : m_document(document)
    , m_view(view)
{
    const RowModel* model = document.Layers().model();
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) { ForgetRows(first, last); });
    connect(model, &QAbstractItemModel::rowsRemoved, this, &LayerComposition::ForgetPictures);
    connect(&document, &Document::PixelsAboutToChange, this,
            [this](Layer* layer) { m_view.Scene()->ReleasePixels(*layer); });
    connect(&document, &Document::LayerChanged, this, &LayerComposition::Follow);
    connect(&document, &Document::Painted, this, [this](const Layer* layer, const QRect& rect) {
        if (layer != m_document.CurrentLayer()) {
            ReplacePixels(*layer, rect);
        }
    });
    connect(&document, &Document::LayerMarksChanged, this, &LayerComposition::FollowSolo);
}

/// Direct edits update the map themselves; changes by undo and redo are shown here.
void LayerComposition::Follow(Layer* layer, Document::LayerAspect aspect, const QRect& rect)
{
    MainScene& scene = *m_view.Scene();
    const bool isCurrent = layer == m_document.CurrentLayer();
    switch (aspect) {
    case Document::LayerAspect::Pixels:
        if (!isCurrent) {
            ReplacePixels(*layer, rect);
        } else if (scene.CurrentLayer() != layer) {
            scene.ReloadPixels(*layer);
            scene.ShowPainted(rect);
        }
        break;
    case Document::LayerAspect::Flags:
    case Document::LayerAspect::Name:
        break;
    default:
        if (!m_document.CurrentLayer()) {
            // Its layer was removed. While a layer only moves, its shape stays.
            scene.GetPaintTools()->Leave();
        }
        if (m_document.IsTravelling()) {
            Recompose();
        }
    }
}

/// For a layer that is not being edited.
void LayerComposition::ReplacePixels(const Layer& layer, const QRect& rect)
{
    MainScene& scene = *m_view.Scene();
    const bool isLost = scene.CurrentLayer() != m_document.CurrentLayer();
    if (!scene.ReplacePixels(layer, rect) && (isLost || m_document.IsShown(layer))) {
        Recompose();
    }
}

/// A row that is locked shows what it showed before.
void LayerComposition::FollowSolo()
{
    if (m_document.SoloLayer() != m_solo) {
        m_solo = m_document.SoloLayer();
        const bool isEnabled = m_view.isEnabled();
        Recompose();
        m_view.setEnabled(isEnabled);
    }
}

void LayerComposition::ForgetRows(int first, int last)
{
    for (int row = first; row <= last; ++row) {
        Layer* layer = m_document.Layers().LayerAt(row);
        if (layer && m_view.Scene()->CurrentLayer() == layer) {
            m_view.Scene()->ChangeLayer(nullptr);
        }
        if (layer && m_document.CurrentLayer() == layer) {
            m_document.SetCurrentLayer(nullptr);
        }
    }
}

/// Removes the picture of the last layer, because an empty list is never composed.
void LayerComposition::ForgetPictures()
{
    if (m_document.Layers().IsEmpty()) {
        m_view.Scene()->ClearCurrent();
        m_view.Scene()->ClearLayers();
    }
}

void LayerComposition::Recompose()
{
    if (m_document.Layers().IsEmpty()) {
        return;
    }
    MainScene& scene = *m_view.Scene();
    Layer* current = m_document.CurrentLayer();
    if (current) {
        scene.ChangeLayer(current);
    } else {
        scene.ClearCurrent();
    }
    scene.ClearLayers();
    const QVector<Layer*> layers = m_document.Layers().Layers();
    for (Layer* layer : layers) {
        if (layer != current && m_document.IsShown(*layer)) {
            scene.AddLayer(layer);
        }
    }
    m_view.setEnabled(true);
}
