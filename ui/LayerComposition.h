#pragma once

#include "app/Tracked.h"
#include "layers/Layer.h"

#include <QHash>
#include <QObject>

class LayerList;
class MainView;

/// Which layers the map shows: those whose boxes are checked, and over them the one that is being
/// painted. A layer leaves both before it is destroyed.
class LayerComposition : public QObject
{
    Q_OBJECT

public:
    LayerComposition(const LayerList& layers, MainView& view);

    Layer* Current() const { return m_current; }
    void SetCurrent(Layer* layer) { m_current = layer; }

    /// Follows the layer's check mark.
    void Follow(Layer* layer);
    void Clear() { m_visible.clear(); }
    /// Takes every checked layer of the list.
    void Fill();
    /// Shows all this on the map, the first row of the list on top; nothing for an empty list.
    void Recompose();

private:
    void ForgetRows(int first, int last);
    void ForgetPictures();

    const LayerList& m_layers;
    MainView& m_view;
    QHash<int, Layer*> m_visible;
    Tracked<Layer> m_current;
};
