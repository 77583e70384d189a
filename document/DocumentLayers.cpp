#include "document/Document.h"

#include "document/Formulas.h"

// What the user sets of layers and territories that is no edit: which one is current, locked or
// shown alone.

void Document::SetCurrentLayer(Layer* layer)
{
    if (layer == m_currentLayer) {
        return;
    }
    m_currentLayer = layer;
    emit CurrentLayerChanged();
    if (layer && m_soloLayer) {
        SetSoloLayer(layer);
    }
}

void Document::SetLocked(const Layer& layer, bool isLocked)
{
    if (isLocked == IsLocked(layer)) {
        return;
    }
    if (isLocked) {
        m_lockedIds.insert(layer.Id());
    } else {
        m_lockedIds.remove(layer.Id());
    }
    emit LayerMarksChanged(m_layers.LayerById(layer.Id()));
}

QString Document::WhyPixelsStay(const Layer& layer) const
{
    if (IsLocked(layer)) {
        return tr("Layer '%1' is locked; Ctrl+L unlocks it.").arg(layer.text());
    }
    return m_formulas->IsLive(layer)
               ? tr("Layer '%1' follows its formula; Layer > Live detaches it.").arg(layer.text())
               : QString();
}

void Document::SetSoloLayer(Layer* layer)
{
    if (layer != m_soloLayer) {
        m_soloLayer = layer;
        emit LayerMarksChanged(nullptr);
    }
}

bool Document::IsShown(const Layer& layer) const
{
    return m_soloLayer ? m_soloLayer == &layer : layer.IsVisible();
}

void Document::SetRowMarks(const LayerList::RowMarks& marks)
{
    m_layers.SetRowMarks(marks);
}

void Document::SetCurrentTerritory(Territory* territory)
{
    m_currentTerritory = territory;
    if (territory && m_soloTerritory) {
        SetSoloTerritory(territory);
    }
}

void Document::SetSoloTerritory(Territory* territory)
{
    if (territory != m_soloTerritory) {
        m_soloTerritory = territory;
        emit SoloTerritoryChanged();
    }
}
