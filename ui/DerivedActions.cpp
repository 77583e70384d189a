#include "ui/DerivedActions.h"

#include "app/Log.h"
#include "document/Document.h"
#include "document/Formulas.h"
#include "document/LiveLayers.h"
#include "document/edits/FormulaEdits.h"
#include "layers/Layer.h"
#include "ui/FileDialogs.h"
#include "ui/QuillmapWindow.h"
#include "ui_QuillmapWindow.h"

#include <QApplication>

namespace {

/// Shows that the program is at work.
class WaitCursor
{
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY(WaitCursor)
};

} // namespace

DerivedActions::DerivedActions(const EditorParts& parts)
    : m_parts(parts)
{
    const Ui::QuillmapWindowClass& form = parts.form;
    connect(form.actionLayerUpdate, &QAction::triggered, this, &DerivedActions::Update);
    connect(form.actionLayersUpdateAll, &QAction::triggered, this, &DerivedActions::UpdateAll);
    connect(form.actionLayerLive, &QAction::triggered, this, &DerivedActions::SetLive);
    const Document& document = parts.document;
    connect(&document, &Document::CurrentLayerChanged, this, &DerivedActions::ShowState);
    connect(&document, &Document::LayerMarksChanged, this, &DerivedActions::ShowState);
    connect(&document, &Document::HistoryChanged, this, &DerivedActions::ShowState);
    ShowState();
}

void DerivedActions::ShowState()
{
    const Ui::QuillmapWindowClass& form = m_parts.form;
    const Document& document = m_parts.document;
    const Layer* layer = document.CurrentLayer();
    const bool canEdit = document.CanTravel();
    const bool isComputed = layer && ParseFormula(layer->Code());
    form.actionLayerUpdate->setEnabled(canEdit && isComputed);
    form.actionLayerLive->setEnabled(canEdit && isComputed);
    form.actionLayerLive->setChecked(isComputed && document.LayerFormulas().IsLive(*layer));
    form.actionLayersUpdateAll->setEnabled(canEdit && document.LayerFormulas().HasAny());
}

/// Tells of layers that depend on one another; false when there are none.
bool DerivedActions::RefuseCycle(const QVector<int>& ids) const
{
    const QVector<int> cycle = m_parts.document.LayerFormulas().Graph().FindCycle(ids);
    if (!cycle.isEmpty()) {
        LogError(tr("These layers are made of one another and cannot be updated: %1.")
                     .arg(ChainText(m_parts.document.Layers(), cycle)));
    }
    return !cycle.isEmpty();
}

/// What is to be computed so that these layers are up to date, operands first. The user is asked
/// whether hand edits may go; those that may not are left out. An operand that was edited by hand
/// is one of these layers only if what it is made of has changed. Nothing when a broken layer
/// among the given ones was told of.
std::optional<QVector<Layer*>> DerivedActions::Outdated(const QVector<int>& ids, bool isAll) const
{
    const Formulas& formulas = m_parts.document.LayerFormulas();
    const QVector<int> order = formulas.Graph().InOrder(ids);
    QVector<Layer*> outdated;
    QVector<Layer*> edited;
    QStringList editedNames;
    QStringList broken;
    for (const int id : order) {
        Layer* layer = m_parts.document.Layers().LayerById(id);
        const FormulaState state = formulas.StateOf(*layer);
        if (state == FormulaState::Broken) {
            broken.append(tr("'%1' (%2)").arg(layer->text(), formulas.WhyBroken(*layer)));
        } else if (state == FormulaState::Edited &&
                   (isAll || ids.contains(id) || formulas.IsStale(*layer))) {
            edited.append(layer);
            editedNames.append(layer->text());
            outdated.append(layer);
        } else if (state == FormulaState::OutOfDate) {
            outdated.append(layer);
        }
    }
    const QString question = tr("These layers were edited by hand: %1.\n\nAre you sure you want to "
                                "compute them anew? The edits will be lost.");
    if (!edited.isEmpty() && !AskYesNo(&m_parts.window, tr("Update layers"),
                                       question.arg(editedNames.join(QStringLiteral(", "))))) {
        for (Layer* layer : qAsConst(edited)) {
            outdated.removeOne(layer);
        }
    }
    if (!broken.isEmpty()) {
        LogError(tr("Cannot be updated: %1.").arg(broken.join(QStringLiteral(", "))));
        if (!isAll) {
            return {};
        }
    }
    return outdated;
}

void DerivedActions::UpdateLayers(const QVector<int>& ids, bool isAll)
{
    Document& document = m_parts.document;
    if (!document.CanTravel() || ids.isEmpty() || RefuseCycle(ids)) {
        return;
    }
    document.Live().Finish();
    document.LayerFormulas().TellChanges();
    const std::optional<QVector<Layer*>> layers = Outdated(ids, isAll);
    if (!layers) {
        return;
    }
    if (layers->isEmpty()) {
        LogInfo(tr("There is nothing to update."));
        return;
    }
    const WaitCursor wait;
    document.Do(Edits::UpdateLayers(*layers));
}

void DerivedActions::Update()
{
    if (const Layer* layer = m_parts.document.CurrentLayer()) {
        UpdateLayers({layer->Id()}, false);
    }
}

void DerivedActions::UpdateAll()
{
    UpdateLayers(m_parts.document.LayerFormulas().Graph().Computed(), true);
}

void DerivedActions::SetLive(bool isLive)
{
    Document& document = m_parts.document;
    Layer* layer = document.CurrentLayer();
    if (layer && document.CanTravel() && isLive != document.LayerFormulas().IsLive(*layer)) {
        if (!isLive) {
            document.Live().Finish();
            document.Do(Edits::DetachLayer(*layer));
        } else if (!RefuseCycle({layer->Id()})) {
            const std::optional<QVector<Layer*>> layers = Outdated({layer->Id()}, false);
            const bool isEdited = layers && !layers->contains(layer) &&
                                  document.LayerFormulas().StateOf(*layer) == FormulaState::Edited;
            // Without a layer that has the pixels of its formula there is nothing to follow from.
            if (layers && !isEdited) {
                const WaitCursor wait;
                document.Do(Edits::MakeLayerLive(*layer, *layers));
            }
        }
    }
    ShowState();
}
