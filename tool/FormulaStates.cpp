#include "tool/FormulaStates.h"

#include "app/Ids.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/Targa.h"
#include "layers/raster/Mask.h"
#include "layers/raster/MaskFingerprint.h"
#include "tool/Interruption.h"
#include "tool/LayerBitmap.h"
#include "tool/ProjectData.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <memory>

namespace {

/// The layers that formulas name. They stand in a list without their pixels, because the
/// dependencies and the fingerprints of the masks are all that is needed.
class NamedLayers
{
public:
    NamedLayers(const ProjectData& project, const FormulaRecords& records)
    {
        QSet<QString> names;
        for (const FormulaRecord& record : records) {
            names.insert(record.layer);
            for (const FormulaRecord::Operand& operand : record.operands) {
                names.insert(operand.name);
            }
        }
        for (int i = 0; i < project.layers.size(); ++i) {
            const LayerData& layer = project.layers.at(i);
            if (names.contains(layer.name) && !m_ids.contains(layer.name)) {
                Add(project, layer, i);
            }
        }
    }

    const LayerList& List() const { return m_list; }
    Layer* Find(const QString& name) const { return m_list.LayerById(m_ids.value(name, -1)); }
    /// The layer's index in the project.
    int IndexOf(int id) const { return m_indexes.value(id); }
    quint64 Fingerprint(int id) const { return m_fingerprints.value(id); }

    /// Gives the layer of the record its code. A layer that is missing gets an id that no layer
    /// has.
    void TakeFormula(const FormulaRecord& record)
    {
        if (Layer* layer = Find(record.layer)) {
            Formula formula{record.operation, {}, record.metres};
            for (const FormulaRecord::Operand& operand : record.operands) {
                const Layer* other = Find(operand.name);
                formula.operands.append(other ? other->Id() : NextId<Layer>());
            }
            layer->StoreCode(formula.Code());
        }
    }

private:
    /// Leaves a layer out that the editor would leave out.
    void Add(const ProjectData& project, const LayerData& data, int index)
    {
        if (Interruption::HasCome() ||
            LayerBitmap(project, data).GetProblem() != LayerBitmap::Problem::None) {
            return;
        }
        const QImage mask = LoadTarga(project.BitmapPath(data), project.layerSize);
        if (mask.isNull()) {
            return;
        }
        auto layer = std::make_unique<Layer>(0U, 0U, &m_list, data.name);
        layer->SetImage(raster::BlankMask({1, 1}), Qt::white);
        m_ids.insert(data.name, layer->Id());
        m_indexes.insert(layer->Id(), index);
        m_fingerprints.insert(layer->Id(), raster::MaskFingerprint().Of(mask));
        m_list.AddLayer(std::move(layer));
    }

    LayerList m_list;
    QHash<QString, int> m_ids;
    QHash<int, int> m_indexes;
    QHash<int, quint64> m_fingerprints;
};

FormulaStatus OwnStatus(const NamedLayers& layers, const FormulaRecord& record, int id,
                        const Formula& formula)
{
    FormulaStatus status;
    status.isBroken =
        std::any_of(formula.operands.begin(), formula.operands.end(),
                    [&layers](int operand) { return !layers.List().LayerById(operand); });
    if (status.isBroken) {
        return status;
    }
    FormulaFacts known{record.fingerprint, {}, false};
    for (const FormulaRecord::Operand& operand : record.operands) {
        known.operands.append(operand.fingerprint);
    }
    FormulaFacts present{layers.Fingerprint(id), {}, false};
    for (const int operand : formula.operands) {
        present.operands.append(layers.Fingerprint(operand));
    }
    return Compared(known, present);
}

} // namespace

FormulaStates::FormulaStates(const ProjectData& project)
{
    const QString path = FormulaPath(project.path);
    m_fileName = QFileInfo(path).fileName();
    const FormulaReading reading = ReadFormulaFile(path);
    m_fault = reading.fault;
    // Without a size there is no mask to compare.
    if (!reading.records.empty() && project.LayerSizeError().isEmpty()) {
        Compare(project, reading.records);
    }
}

void FormulaStates::Compare(const ProjectData& project, const FormulaRecords& records)
{
    NamedLayers layers(project, records);
    QHash<int, const FormulaRecord*> recordOf;
    for (const FormulaRecord& record : records) {
        layers.TakeFormula(record);
        if (const Layer* layer = layers.Find(record.layer)) {
            recordOf.insert(layer->Id(), &record);
        }
    }
    const FormulaGraph graph(layers.List());
    const QHash<int, FormulaStatus> statuses =
        StatusesOf(graph, [&](int id, const Formula& formula) {
            return OwnStatus(layers, *recordOf.value(id), id, formula);
        });
    for (auto it = statuses.begin(); it != statuses.end(); ++it) {
        m_states.insert(layers.IndexOf(it.key()), it->State());
    }
}
