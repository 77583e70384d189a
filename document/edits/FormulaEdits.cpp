#include "document/edits/FormulaEdits.h"

#include "document/Document.h"
#include "document/Formulas.h"
#include "document/LiveLayers.h"
#include "document/edits/EditGroup.h"
#include "document/edits/PaintMask.h"

#include <optional>
#include <utility>

namespace {

QString Text(const char* text)
{
    return Document::tr(text);
}

enum class Note
{
    /// The layer was computed just now.
    Computed,
    Live,
    Detached,
};

/// Changes what is known of a computed layer. Whether it follows its operands is decided anew by
/// the next LiveLayers::Settle.
class ChangeFacts : public Edit
{
public:
    ChangeFacts(Layer& layer, Note note)
        : Edit(QString())
        , m_layer(&layer)
        , m_note(note)
    {
    }

protected:
    void Do(Document& document) override
    {
        Formulas& formulas = document.LayerFormulas();
        document.Live().Finish();
        if (!m_isKnown) {
            m_isKnown = true;
            m_before = formulas.FactsOf(*m_layer);
            m_after = m_note == Note::Computed ? formulas.PresentFacts(*m_layer)
                                               : m_before.value_or(formulas.PresentFacts(*m_layer));
            m_after.isLive =
                m_note == Note::Live || (m_note == Note::Computed && m_before && m_before->isLive);
        }
        formulas.SetFacts(*m_layer, m_after);
    }
    void Undo(Document& document) override
    {
        // A layer that ceases to follow keeps its pixels, which have to be those that it had when
        // this was carried out.
        document.Live().Finish();
        document.LayerFormulas().SetFacts(*m_layer, m_before);
    }

private:
    Layer* m_layer;
    Note m_note;
    bool m_isKnown = false;
    std::optional<FormulaFacts> m_before;
    FormulaFacts m_after;
};

/// Computes a layer from what its operands are when it is carried out first.
class ComputeLayer : public Edit
{
public:
    explicit ComputeLayer(Layer& layer)
        : Edit(QString())
        , m_layer(&layer)
        , m_facts(layer, Note::Computed)
    {
    }

    bool Holds(const Edit& other) const override
    {
        return Edit::Holds(other) || (m_paint && m_paint->Holds(other));
    }

protected:
    void Do(Document& document) override
    {
        if (!m_isComputed) {
            m_isComputed = true;
            Compute(document);
        }
        if (m_hasMemory && (!m_paint || DoPart(*m_paint, document))) {
            DoPart(m_facts, document);
        } else if (m_hasMemory) {
            Fail();
        }
        document.Live().Settle();
    }
    void Undo(Document& document) override
    {
        if (m_hasMemory) {
            UndoPart(m_facts, document);
            if (m_paint && !UndoPart(*m_paint, document)) {
                DoPart(m_facts, document);
                Fail();
            }
            // The parts before this one change the operands: whether the layer follows them is
            // decided first.
            document.Live().Settle();
        }
    }

private:
    void Compute(Document& document)
    {
        // Live layers among the operands follow what parts before this one changed.
        document.Live().Finish();
        const std::optional<Formula> formula = ParseFormula(m_layer->Code());
        const auto computation =
            formula ? Computation::Of(document.Layers(), *formula) : std::nullopt;
        const QImage mask = computation ? computation->Within(m_layer->Image().rect()) : QImage();
        auto paint =
            mask.isNull() ? nullptr : std::make_unique<PaintMask>(QString(), *m_layer, mask);
        m_hasMemory = paint && paint->IsRecorded();
        if (m_hasMemory && paint->Changes()) {
            m_paint = std::move(paint);
        }
    }

    Layer* m_layer;
    ChangeFacts m_facts;
    bool m_isComputed = false;
    bool m_hasMemory = false;
    /// Null when the pixels are already those of the formula.
    std::unique_ptr<PaintMask> m_paint;
};

void AddUpdates(EditGroup& group, const QVector<Layer*>& layers)
{
    for (Layer* layer : layers) {
        group.Add(std::make_unique<ComputeLayer>(*layer));
    }
}

} // namespace

std::unique_ptr<Edit> Edits::UpdateLayers(const QVector<Layer*>& layers)
{
    const QString text = layers.size() == 1 ? Text("Update layer %1").arg(layers.first()->text())
                                            : Text("Update %1 layers").arg(layers.size());
    auto group = std::make_unique<EditGroup>(text);
    AddUpdates(*group, layers);
    if (!layers.isEmpty()) {
        group->SetPlace(layers.constLast());
    }
    return group;
}

std::unique_ptr<Edit> Edits::MakeLayerLive(Layer& layer, const QVector<Layer*>& updateFirst)
{
    auto group = std::make_unique<EditGroup>(Text("Make layer %1 live").arg(layer.text()));
    AddUpdates(*group, updateFirst);
    group->Add(std::make_unique<ChangeFacts>(layer, Note::Live));
    group->SetPlace(&layer);
    return group;
}

std::unique_ptr<Edit> Edits::DetachLayer(Layer& layer)
{
    auto group = std::make_unique<EditGroup>(Text("Detach layer %1").arg(layer.text()));
    group->Add(std::make_unique<ChangeFacts>(layer, Note::Detached));
    group->SetPlace(&layer);
    return group;
}

std::unique_ptr<Edit> Edits::NoteComputed(Layer& layer)
{
    return std::make_unique<ChangeFacts>(layer, Note::Computed);
}
