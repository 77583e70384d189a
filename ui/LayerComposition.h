#pragma once

#include "app/Tracked.h"
#include "layers/Layer.h"

#include <QHash>
#include <QObject>

class LayerList;
class MainView;

/// Keeps which layers the map shows: those whose boxes are checked, and above them the current one.
/// Layers are removed here before they are destroyed.
class LayerComposition : public QObject
{
    Q_OBJECT

public:
    LayerComposition(const LayerList& layers, MainView& view);

    Layer* Current() const { return m_current; }
    void SetCurrent(Layer* layer) { m_current = layer; }

    /// Shows or hides the layer according to its check mark.
    void Follow(Layer* layer);
    void Clear() { m_visible.clear(); }
    /// Adds every checked layer of the list.
    void Fill();
    /// Composes the map, with the first row of the list on top. Does nothing for an empty list.
    void Recompose();

private:
    void ForgetRows(int first, int last);
    void ForgetPictures();

    const LayerList& m_layers;
    MainView& m_view;
    QHash<int, Layer*> m_visible;
    Tracked<Layer> m_current;
};
