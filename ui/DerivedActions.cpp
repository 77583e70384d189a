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
#include <QSet>

#include <algorithm>
#include <utility>

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

/// The layers, which are in order, that are not up to date, or will not be when those before are
/// computed anew. takesEdited(layer, isStale) tells for each layer that was edited by hand whether
/// it is one of them; stale ones would be out of date without the edits.
template <typename TakesEdited>
QVector<Layer*> DerivedActions::Outdated(const QVector<int>& order, TakesEdited takesEdited) const
{
    const Formulas& formulas = m_parts.document.LayerFormulas();
    const FormulaGraph graph = formulas.Graph();
    QVector<Layer*> outdated;
    QSet<int> ids;
    for (const int id : order) {
        Layer* layer = m_parts.document.Layers().LayerById(id);
        const QVector<int>& operands = graph.FormulaOf(id)->operands;
        const FormulaState state = formulas.StateOf(*layer);
        const bool isStale = formulas.IsStale(*layer) ||
                             std::any_of(operands.begin(), operands.end(),
                                         [&ids](int operand) { return ids.contains(operand); });
        const bool mayChange = state != FormulaState::Broken && !m_parts.document.IsLocked(*layer);
        if (mayChange && (state == FormulaState::Edited ? takesEdited(*layer, isStale) : isStale)) {
            outdated.append(layer);
            ids.insert(id);
        }
    }
    return outdated;
}

/// Tells of broken and locked layers, which are not computed; false when there are none.
bool DerivedActions::TellRefused(const QVector<int>& ids) const
{
    const Formulas& formulas = m_parts.document.LayerFormulas();
    QStringList refused;
    for (const int id : ids) {
        const Layer& layer = *m_parts.document.Layers().LayerById(id);
        if (formulas.StateOf(layer) == FormulaState::Broken) {
            refused.append(tr("'%1' (%2)").arg(layer.text(), formulas.WhyBroken(layer)));
        } else if (m_parts.document.IsLocked(layer) &&
                   formulas.StateOf(layer) != FormulaState::UpToDate) {
            refused.append(tr("'%1' (it is locked)").arg(layer.text()));
        }
    }
    if (!refused.isEmpty()) {
        LogError(tr("Cannot be updated: %1.").arg(refused.join(QStringLiteral(", "))));
    }
    return !refused.isEmpty();
}

/// What is to be computed so that these layers are up to date, operands first. The user is asked
/// once whether hand edits may go. An operand that was edited by hand counts as painted, unless
/// what it is made of has changed.
QVector<Layer*> DerivedActions::AskOutdated(const QVector<int>& ids) const
{
    const QVector<int> order = m_parts.document.LayerFormulas().Graph().InOrder(ids);
    QSet<int> edited;
    QStringList editedNames;
    const QVector<Layer*> outdated = Outdated(order, [&](const Layer& layer, bool isStale) {
        if (!isStale && !ids.contains(layer.Id())) {
            return false;
        }
        edited.insert(layer.Id());
        editedNames.append(layer.text());
        return true;
    });
    const QString question = tr("These layers were edited by hand: %1.\n\nAre you sure you want to "
                                "compute them anew? The edits will be lost.");
    if (edited.isEmpty() || AskYesNo(&m_parts.window, tr("Update layers"),
                                     question.arg(editedNames.join(QStringLiteral(", "))))) {
        return outdated;
    }
    return Outdated(order, [](const Layer&, bool) { return false; });
}

/// Carries out an edit that computes the layers. Those without memory for that stay as they are.
void DerivedActions::Compute(std::unique_ptr<Edit> edit, const QVector<Layer*>& layers) const
{
    const WaitCursor wait;
    m_parts.document.Do(std::move(edit));
    QStringList failed;
    for (const Layer* layer : layers) {
        if (!m_parts.document.LayerFormulas().IsInStep(*layer)) {
            failed.append(layer->text());
        }
    }
    for (const QString& name : qAsConst(failed)) {
        LogError(Document::tr("There is no memory to compute layer '%1'.").arg(name));
    }
}

void DerivedActions::UpdateLayers(const QVector<int>& ids)
{
    Document& document = m_parts.document;
    if (!document.CanTravel() || ids.isEmpty() || RefuseCycle(ids)) {
        return;
    }
    document.Live().Finish();
    const QVector<Layer*> layers = AskOutdated(ids);
    if (!layers.isEmpty()) {
        Compute(Edits::UpdateLayers(layers), layers);
    }
    if (!TellRefused(document.LayerFormulas().Graph().InOrder(ids)) && layers.isEmpty()) {
        LogInfo(tr("There is nothing to update."));
    }
}

void DerivedActions::Update()
{
    if (const Layer* layer = m_parts.document.CurrentLayer()) {
        UpdateLayers({layer->Id()});
    }
}

void DerivedActions::UpdateAll()
{
    UpdateLayers(m_parts.document.LayerFormulas().Graph().Computed());
}

void DerivedActions::SetLive(bool isLive)
{
    Document& document = m_parts.document;
    Layer* layer = document.CurrentLayer();
    if (layer && document.CanTravel() && isLive != document.LayerFormulas().IsLive(*layer)) {
        if (!isLive) {
            document.Live().Finish();
            document.Do(Edits::DetachLayer(*layer));
        } else if (!RefuseCycle({layer->Id()}) && !TellRefused({layer->Id()})) {
            const QVector<Layer*> layers = AskOutdated({layer->Id()});
            const bool staysEdited = !layers.contains(layer) && document.LayerFormulas().StateOf(
                                                                    *layer) == FormulaState::Edited;
            // Only a layer that has the pixels of its formula can follow.
            if (!staysEdited) {
                Compute(Edits::MakeLayerLive(*layer, layers), layers);
            }
        }
    }
    ShowState();
}
