#include "ui/LayerActions.h"

#include "app/Log.h"
#include "document/Document.h"
#include "document/LiveLayers.h"
#include "document/edits/LayerEdits.h"
#include "layers/raster/Mask.h"
#include "layers/raster/SetOperations.h"
#include "ui/DockLayers.h"
#include "ui/LayerComposition.h"
#include "ui/QuillmapWindow.h"
#include "ui/dialogs/DialogGrowLayer.h"
#include "ui/dialogs/DialogMergeLayer.h"
#include "ui_QuillmapWindow.h"

#include <initializer_list>
#include <utility>

LayerActions::LayerActions(const EditorParts& parts, LayerComposition& composition)
    : m_parts(parts)
    , m_composition(composition)
{
    ConnectActions();
    const Document& document = parts.document;
    connect(&document, &Document::CurrentLayerChanged, this, &LayerActions::ShowState);
    connect(&document, &Document::LayerMarksChanged, this, &LayerActions::ShowState);
    connect(&document, &Document::HistoryChanged, this, &LayerActions::ShowState);
    ShowState();
}

/// Qt also triggers actions that are disabled, when code asks for it.
template <typename Deed>
void LayerActions::Connect(QAction* action, Deed deed)
{
    connect(action, &QAction::triggered, this, [this, action, deed](bool isOn) {
        if (action->isEnabled()) {
            deed(isOn);
        }
        ShowState();
    });
}

void LayerActions::ConnectActions()
{
    const Ui::QuillmapWindowClass& form = m_parts.form;
    Document& document = m_parts.document;
    Connect(form.actionLayerDuplicate, [this](bool) { Duplicate(); });
    Connect(form.actionLayerFill, [this](bool) { Fill(tr("Fill %1"), raster::MaskSet); });
    Connect(form.actionLayerClear, [this](bool) { Fill(tr("Clear %1"), raster::MaskClear); });
    Connect(form.actionLayerInvert, [this](bool) { Invert(); });
    Connect(form.actionLayerGrow, [this](bool) { Grow(true); });
    Connect(form.actionLayerShrink, [this](bool) { Grow(false); });
    Connect(form.actionLayerRing, [this](bool) { AddRing(); });
    Connect(form.actionLayerMerge, [this](bool) { Merge(); });
    Connect(form.actionLayerUp, [this](bool) { m_parts.layers.MoveCurrent(true); });
    Connect(form.actionLayerDown, [this](bool) { m_parts.layers.MoveCurrent(false); });
    Connect(form.actionLayerLock,
            [&document](bool isOn) { document.SetLocked(*document.CurrentLayer(), isOn); });
    Connect(form.actionLayerSolo, [&document](bool isOn) {
        document.SetSoloLayer(isOn ? document.CurrentLayer() : nullptr);
    });
    Connect(form.actionLayersShowAll, [this](bool) { ShowAll(); });
    Connect(form.actionLayerFilter, [this](bool) {
        m_parts.window.ShowLayers(true);
        m_parts.layers.raise();
        m_parts.layers.FocusFilter();
    });
}

void LayerActions::ShowState()
{
    const Ui::QuillmapWindowClass& form = m_parts.form;
    const Document& document = m_parts.document;
    const Layer* layer = document.CurrentLayer();
    const bool canEdit = document.CanTravel();
    for (QAction* action :
         {form.actionLayerDuplicate, form.actionLayerFill, form.actionLayerClear,
          form.actionLayerInvert, form.actionLayerGrow, form.actionLayerShrink, form.actionLayerUp,
          form.actionLayerDown, form.actionLayerLock, form.actionLayerRing}) {
        action->setEnabled(canEdit && layer);
    }
    const int count = document.Layers().model()->rowCount();
    form.actionLayerMerge->setEnabled(canEdit && layer && count > 1);
    form.actionLayerSolo->setEnabled(canEdit && (layer || document.SoloLayer()));
    form.actionLayersShowAll->setEnabled(canEdit && count > 0);
    form.actionLayerFilter->setEnabled(canEdit);
    form.actionLayerLock->setChecked(layer && document.IsLocked(*layer));
    form.actionLayerSolo->setChecked(document.SoloLayer());
}

/// The current layer. Null when there is none, and when its pixels must stay, which is told.
Layer* LayerActions::Editable()
{
    Layer* layer = m_parts.document.CurrentLayer();
    const QString why = layer ? m_parts.document.WhyPixelsStay(*layer) : QString();
    if (!why.isEmpty()) {
        LogInfo(why);
        return nullptr;
    }
    return layer;
}

/// edit: null when there was no memory for it.
void LayerActions::Do(const Layer& layer, std::unique_ptr<Edit> edit)
{
    if (edit) {
        m_parts.document.Do(std::move(edit));
    } else {
        LogError(QStringLiteral("There is no memory to change layer '%1'.").arg(layer.text()));
    }
}

void LayerActions::Duplicate()
{
    Layer* layer = m_parts.document.CurrentLayer();
    if (!layer) {
        return;
    }
    const LayerList& list = m_parts.document.Layers();
    const int count = list.model()->rowCount();
    Do(*layer, Edits::DuplicateLayer(*layer));
    if (list.model()->rowCount() > count) {
        m_parts.layers.ShowNew(*list.LayerAt(layer->row() + 1));
        m_composition.Recompose();
    }
}

void LayerActions::Fill(const QString& text, uchar value)
{
    if (Layer* layer = Editable()) {
        Do(*layer, Edits::FillLayer(text.arg(layer->text()), *layer, value));
    }
}

void LayerActions::Invert()
{
    if (Layer* layer = Editable()) {
        Do(*layer, Edits::ChangePixels(tr("Invert %1").arg(layer->text()), *layer,
                                       raster::Complement(layer->Image())));
    }
}

void LayerActions::Grow(bool doesGrow)
{
    Layer* layer = Editable();
    if (!layer) {
        return;
    }
    using Purpose = DialogGrowLayer::Purpose;
    DialogGrowLayer dialog(m_parts.document.Layers(), *layer,
                           doesGrow ? Purpose::Grow : Purpose::Shrink, &m_parts.window);
    if (dialog.exec() == QDialog::Accepted) {
        const QString text = doesGrow ? tr("Grow %1 by %2 m") : tr("Shrink %1 by %2 m");
        Do(*layer, Edits::ChangePixels(text.arg(layer->text(), QString::number(dialog.Metres())),
                                       *layer, dialog.Mask()));
    }
}

/// The current layer stays the current one, so that the user goes on painting it.
void LayerActions::AddRing()
{
    Layer* layer = m_parts.document.CurrentLayer();
    if (!layer) {
        return;
    }
    // The dialog's thread reads the mask, which may be that of a live layer.
    m_parts.document.Live().Finish();
    const LayerList& list = m_parts.document.Layers();
    DialogGrowLayer dialog(list, *layer, DialogGrowLayer::Purpose::Ring, &m_parts.window);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const int count = list.model()->rowCount();
    Do(*layer, Edits::AddLiveRing(*layer, dialog.Metres(), dialog.Mask()));
    if (list.model()->rowCount() > count) {
        m_parts.layers.Reveal(*list.LayerAt(layer->row() + 1));
        m_composition.Recompose();
    }
}

void LayerActions::Merge()
{
    Layer* layer = Editable();
    if (!layer) {
        return;
    }
    DialogMergeLayer dialog(m_parts.document, *layer, &m_parts.window);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    Layer* into = dialog.Target();
    Do(*layer, Edits::MergeLayers(*layer, *into));
    if (!layer->model()) {
        m_parts.layers.ShowNew(*into);
        m_composition.Recompose();
    }
}

void LayerActions::ShowAll()
{
    m_parts.document.SetSoloLayer(nullptr);
    m_parts.document.Do(Edits::ShowAllLayers(m_parts.document.Layers()));
    m_composition.Recompose();
}
