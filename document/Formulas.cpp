#include "document/Formulas.h"

#include "app/Ids.h"
#include "app/Log.h"
#include "document/Document.h"
#include "document/LiveLayers.h"
#include "layers/raster/MaskDelta.h"

#include <algorithm>

Formulas::Formulas(Document& document)
    : m_document(document)
{
    connect(&document, &Document::LayerChanged, this,
            [this](Layer* layer, Document::LayerAspect aspect, const QRect& rect) {
                Follow(layer, static_cast<int>(aspect), rect);
            });
    connect(&document, &Document::Painted, this, [this](Layer* layer, const QRect& rect) {
        Follow(layer, static_cast<int>(Document::LayerAspect::Pixels), rect);
    });
    connect(&document, &Document::AboutToClear, this, &Formulas::Forget);
}

void Formulas::Follow(Layer* layer, int aspect, const QRect& rect)
{
    const bool isRows = aspect == static_cast<int>(Document::LayerAspect::Rows);
    if (aspect == static_cast<int>(Document::LayerAspect::Pixels)) {
        const auto fingerprint = m_fingerprints.find(layer->Id());
        if (fingerprint != m_fingerprints.end()) {
            // The rectangle may be the whole mask, which takes long to read.
            if (const raster::MaskDelta* tiles = m_document.ChangedTiles()) {
                tiles->ForEachTile([&](int tile) { fingerprint->TouchTile(tile); });
            } else {
                fingerprint->Touch(rect);
            }
        }
        NoteChange();
    } else if (isRows || aspect == static_cast<int>(Document::LayerAspect::Name)) {
        m_names.insert(layer->Id(), layer->text());
        NoteChange();
        if (isRows && layer->model() && !layer->Code().isEmpty() &&
            !m_facts.contains(layer->Id()) && ParseFormula(layer->Code())) {
            m_facts.insert(layer->Id(), PresentFacts(*layer));
        }
    }
}

void Formulas::Forget()
{
    m_facts.clear();
    m_fingerprints.clear();
    m_names.clear();
    NoteChange();
}

void Formulas::NoteChange()
{
    m_areStatusesKnown = false;
    m_mayHaveChanged = true;
}

void Formulas::TellChanges()
{
    if (m_mayHaveChanged) {
        m_mayHaveChanged = false;
        if (HasAny()) {
            emit m_document.LayerMarksChanged(nullptr);
        }
    }
}

bool Formulas::HasAny() const
{
    const QVector<Layer*> layers = m_document.Layers().Layers();
    return std::any_of(layers.begin(), layers.end(),
                       [](const Layer* layer) { return !layer->Code().isEmpty(); });
}

FormulaGraph Formulas::Graph() const
{
    return FormulaGraph(m_document.Layers());
}

quint64 Formulas::FingerprintOf(const Layer& layer) const
{
    return m_fingerprints[layer.Id()].Of(layer.Image());
}

QString Formulas::NameOf(int id) const
{
    const Layer* layer = m_document.Layers().LayerById(id);
    return layer ? layer->text() : m_names.value(id, Document::tr("a layer"));
}

FormulaFacts Formulas::PresentFacts(const Layer& layer) const
{
    FormulaFacts facts;
    const std::optional<Formula> formula = ParseFormula(layer.Code());
    facts.result = FingerprintOf(layer);
    for (int i = 0; formula && i < formula->operands.size(); ++i) {
        const Layer* operand = m_document.Layers().LayerById(formula->operands.at(i));
        facts.operands.append(operand ? FingerprintOf(*operand) : 0);
    }
    return facts;
}

std::optional<FormulaFacts> Formulas::FactsOf(const Layer& layer) const
{
    const auto found = m_facts.constFind(layer.Id());
    if (found == m_facts.cend()) {
        return {};
    }
    FormulaFacts facts = *found;
    if (m_document.Live().IsFollowing(layer)) {
        facts = PresentFacts(layer);
        facts.isLive = true;
        if (m_document.Live().IsPending(layer)) {
            facts.operands.fill(0);
        }
    }
    return facts;
}

void Formulas::SetFacts(const Layer& layer, const std::optional<FormulaFacts>& facts)
{
    if (facts) {
        m_facts.insert(layer.Id(), *facts);
    } else {
        m_facts.remove(layer.Id());
    }
    m_document.Live().Reconsider(layer);
    NoteChange();
    if (m_document.IsApplying()) {
        emit m_document.FormulaChanged();
    }
}

bool Formulas::IsInStep(const Layer& layer) const
{
    const auto facts = m_facts.constFind(layer.Id());
    if (facts == m_facts.cend()) {
        return false;
    }
    const FormulaFacts present = PresentFacts(layer);
    return present.result == facts->result && present.operands == facts->operands &&
           !present.operands.contains(0);
}

bool Formulas::IsWaiting(const Layer& layer) const
{
    const auto facts = m_facts.constFind(layer.Id());
    if (facts == m_facts.cend() || facts->operands.isEmpty()) {
        return false;
    }
    // FactsOf has no operands for a layer that waits.
    const QVector<quint64> none(facts->operands.size(), 0);
    // Operands may be missing: undo brings them back.
    return facts->operands == none && PresentFacts(layer).result == facts->result;
}

bool Formulas::ReadMasks(const std::function<bool()>& isTimeUp) const
{
    const FormulaGraph graph = Graph();
    for (const int computed : graph.Computed()) {
        const QVector<int> ids = QVector<int>{computed} + graph.FormulaOf(computed)->operands;
        for (const int id : ids) {
            const Layer* layer = m_document.Layers().LayerById(id);
            if (layer && !m_fingerprints[id].Read(layer->Image(), isTimeUp)) {
                return false;
            }
        }
    }
    return true;
}

FormulaStatus Formulas::StatusOf(const Layer& layer, const Formula& formula) const
{
    FormulaStatus status;
    status.isBroken = std::any_of(formula.operands.begin(), formula.operands.end(),
                                  [this](int id) { return !m_document.Layers().LayerById(id); });
    if (m_document.Live().IsFollowing(layer)) {
        status.isStale = m_document.Live().IsPending(layer);
    } else if (!status.isBroken) {
        const FormulaFacts present = PresentFacts(layer);
        status = Compared(m_facts.value(layer.Id(), present), present);
    }
    return status;
}

const QHash<int, FormulaStatus>& Formulas::Statuses() const
{
    if (m_areStatusesKnown) {
        return m_statuses;
    }
    m_statuses = StatusesOf(Graph(), [this](int id, const Formula& formula) {
        return StatusOf(*m_document.Layers().LayerById(id), formula);
    });
    m_areStatusesKnown = true;
    return m_statuses;
}

FormulaState Formulas::StateOf(const Layer& layer) const
{
    const QHash<int, FormulaStatus>& statuses = Statuses();
    const auto status = statuses.constFind(layer.Id());
    return status == statuses.cend() ? FormulaState::None : status->State();
}

bool Formulas::IsStale(const Layer& layer) const
{
    return Statuses().value(layer.Id()).isStale;
}

bool Formulas::IsLive(const Layer& layer) const
{
    return m_facts.value(layer.Id()).isLive && ParseFormula(layer.Code());
}

QString Formulas::WhyBroken(const Layer& layer) const
{
    const std::optional<Formula> formula = ParseFormula(layer.Code());
    QStringList missing;
    for (int i = 0; formula && i < formula->operands.size(); ++i) {
        const int id = formula->operands.at(i);
        if (!m_document.Layers().LayerById(id)) {
            missing.append(NameOf(id));
        }
    }
    missing.removeDuplicates();
    if (missing.isEmpty()) {
        return {};
    }
    return (missing.size() == 1 ? Document::tr("%1 is missing") : Document::tr("%1 are missing"))
        .arg(missing.join(Document::tr(" and ")));
}

QString Formulas::Describe(const Layer& layer) const
{
    const FormulaState state = StateOf(layer);
    const std::optional<Formula> formula = ParseFormula(layer.Code());
    if (state == FormulaState::None || !formula) {
        return {};
    }
    QStringList names;
    for (const int id : formula->operands) {
        names.append(NameOf(id));
    }
    QStringList parts = {formula->Words(names)};
    if (state == FormulaState::Broken) {
        parts.append(WhyBroken(layer));
    }
    parts.append(StateText(state));
    return parts.join(QStringLiteral(", "));
}

QHash<int, QString> Formulas::NamesInFile() const
{
    const QVector<Layer*> layers = m_document.Layers().Layers();
    const QStringList names = m_document.Layers().NamesForSaving();
    QHash<int, QString> byId;
    for (int i = 0; i < layers.size(); ++i) {
        byId.insert(layers[i]->Id(), names[i]);
    }
    return byId;
}

FormulaRecords Formulas::Records() const
{
    FormulaRecords records;
    const FormulaGraph graph = Graph();
    const QHash<int, QString> names = NamesInFile();
    for (const int id : graph.Computed()) {
        const Formula& formula = *graph.FormulaOf(id);
        const Layer& layer = *m_document.Layers().LayerById(id);
        const FormulaFacts facts = FactsOf(layer).value_or(PresentFacts(layer));
        FormulaRecord record;
        record.layer = names.value(id);
        record.operation = formula.operation;
        record.metres = formula.metres;
        record.fingerprint = facts.result;
        record.isLive = facts.isLive;
        for (int i = 0; i < formula.operands.size(); ++i) {
            const int operand = formula.operands.at(i);
            record.operands.append(
                {names.contains(operand) ? names.value(operand) : NameOf(operand),
                 facts.operands.value(i)});
        }
        records.push_back(record);
    }
    return records;
}

/// Layers that the project does not have get ids that no layer will ever have.
int Formulas::IdOf(const QHash<QString, int>& ids, const QString& name)
{
    const auto found = ids.constFind(name);
    if (found != ids.cend()) {
        return *found;
    }
    const int missing = m_names.key(name, -1);
    if (missing >= 0 && !m_document.Layers().LayerById(missing)) {
        return missing;
    }
    const int id = NextId<Layer>();
    m_names.insert(id, name);
    return id;
}

void Formulas::Read(const FormulaReading& reading, const QString& fileName)
{
    if (!reading.fault.isEmpty()) {
        LogError(
            Document::tr("The formulas in '%1' cannot be used: %2.").arg(fileName, reading.fault));
        return;
    }
    QHash<QString, int> ids;
    const QHash<int, QString> names = NamesInFile();
    for (auto name = names.cbegin(); name != names.cend(); ++name) {
        ids.insert(name.value(), name.key());
    }
    const QVector<Layer*> layers = m_document.Layers().Layers();
    for (const Layer* layer : layers) {
        if (!ids.contains(layer->text())) {
            ids.insert(layer->text(), layer->Id());
        }
    }
    for (const FormulaRecord& record : reading.records) {
        Layer* layer = m_document.Layers().LayerById(ids.value(record.layer, -1));
        if (!layer) {
            continue;
        }
        Formula formula{record.operation, {}, record.metres};
        FormulaFacts facts{record.fingerprint, {}, record.isLive};
        for (const FormulaRecord::Operand& operand : record.operands) {
            formula.operands.append(IdOf(ids, operand.name));
            facts.operands.append(operand.fingerprint);
        }
        layer->StoreCode(formula.Code());
        SetFacts(*layer, facts);
    }
    const FormulaGraph graph = Graph();
    const QVector<int> cycle = graph.FindCycle(graph.Computed());
    m_document.Live().Settle();
    if (!cycle.isEmpty()) {
        LogError(Document::tr("In '%1', layers are made of one another: %2.")
                     .arg(fileName, ChainText(m_document.Layers(), cycle)));
    }
}
