#include "tool/DerivedLayers.h"

#include "app/Names.h"
#include "app/OutputFile.h"
#include "layers/Layer.h"
#include "layers/Targa.h"
#include "layers/raster/MaskFingerprint.h"
#include "tool/Commands.h"
#include "tool/Interruption.h"
#include "tool/Progress.h"
#include "tool/ProjectData.h"

#include <QFileInfo>

#include <algorithm>

namespace {

const LayerData* FindLayer(const ProjectData& project, const QString& name)
{
    const auto found = std::find_if(project.layers.begin(), project.layers.end(),
                                    [&name](const LayerData& layer) { return layer.name == name; });
    return found == project.layers.end() ? nullptr : &*found;
}

} // namespace

const FormulaRecord* DerivedLayers::RecordOf(const QString& name) const
{
    const auto found =
        std::find_if(m_records.begin(), m_records.end(),
                     [&name](const FormulaRecord& record) { return record.layer == name; });
    return found == m_records.end() ? nullptr : &*found;
}

std::optional<ToolExit> DerivedLayers::Open(const ProjectData& project, const QStringList& names)
{
    m_project = &project;
    m_formulaPath = FormulaPath(project.path);
    const FormulaReading reading = ReadFormulaFile(m_formulaPath);
    if (!reading.fault.isEmpty()) {
        Console::PrintError(m_formulaPath, reading.fault + QLatin1Char('.'));
        return ToolExit::Unreadable;
    }
    m_records = reading.records;
    if (const auto exit = ChooseLayers(names)) {
        return exit;
    }
    if (!m_chosen.isEmpty() && !project.LayerSizeError().isEmpty()) {
        Console::PrintError(project.path, project.LayerSizeError());
        return ToolExit::Unreadable;
    }
    const auto exit = LoadNeeded();
    return exit ? exit : RefuseCycle();
}

std::optional<ToolExit> DerivedLayers::ChooseLayers(const QStringList& names)
{
    for (const QString& name : names) {
        const bool isLayer = FindLayer(*m_project, name);
        if (!isLayer || !RecordOf(name)) {
            return UsageError(QStringLiteral("derive"),
                              (isLayer ? QStringLiteral("layer %1 has no formula.")
                                       : QStringLiteral("there is no layer %1."))
                                  .arg(Console::Quoted(name)));
        }
    }
    m_chosen = names;
    for (const FormulaRecord& record : m_records) {
        // Formulas of layers that are gone mean nothing.
        if (names.isEmpty() && FindLayer(*m_project, record.layer)) {
            m_chosen.append(record.layer);
        }
    }
    return {};
}

/// Loads the chosen layers and all that they are made of.
std::optional<ToolExit> DerivedLayers::LoadNeeded()
{
    QStringList needed = m_chosen;
    for (int i = 0; i < needed.size(); ++i) {
        const QString name = needed.at(i);
        if (!m_list.LayerByName(name) && !Load(name)) {
            return ToolExit::Unreadable;
        }
        const FormulaRecord* record = RecordOf(name);
        for (int k = 0; record && k < record->operands.size(); ++k) {
            const QString& operand = record->operands.at(k).name;
            if (!FindLayer(*m_project, operand)) {
                Console::PrintError(m_project->path,
                                    QStringLiteral("layer %1 is broken: its operand %2 is missing.")
                                        .arg(Console::Quoted(name), Console::Quoted(operand)));
                return ToolExit::Unreadable;
            }
            if (!needed.contains(operand)) {
                needed.append(operand);
            }
        }
    }
    for (const QString& name : qAsConst(needed)) {
        if (const FormulaRecord* record = RecordOf(name)) {
            Formula formula{record->operation, {}, record->metres};
            for (const FormulaRecord::Operand& operand : record->operands) {
                formula.operands.append(m_list.LayerByName(operand.name)->Id());
            }
            m_list.LayerByName(name)->StoreCode(formula.Code());
        }
    }
    m_graph = FormulaGraph(m_list);
    return {};
}

/// False after a printed error.
bool DerivedLayers::Load(const QString& name)
{
    const QString path = m_project->BitmapPath(*FindLayer(*m_project, name));
    const Console::CurrentFile current(path);
    if (LeadsUpward(name)) {
        Console::PrintError(path, QStringLiteral("lies outside the project."));
        return false;
    }
    const QImage mask = Interruption::HasCome() ? QImage() : LoadTarga(path);
    if (mask.isNull()) {
        Console::PrintError(path, QFileInfo::exists(path) ? QStringLiteral("cannot be read.")
                                                          : QStringLiteral("does not exist."));
        return false;
    }
    auto layer = std::make_unique<Layer>(0U, 0U, &m_list, name);
    layer->SetImage(mask, Qt::white);
    m_list.AddLayer(std::move(layer));
    return true;
}

std::optional<ToolExit> DerivedLayers::RefuseCycle() const
{
    const QVector<int> cycle = m_graph.FindCycle(m_graph.Computed());
    if (cycle.isEmpty()) {
        return {};
    }
    Console::PrintError(
        m_formulaPath,
        QStringLiteral("layers are made of one another: %1.").arg(ChainText(m_list, cycle)));
    return ToolExit::Unreadable;
}

FormulaFacts DerivedLayers::PresentFacts(const Layer& layer) const
{
    const auto fingerprint = [](const Layer& each) {
        return raster::MaskFingerprint().Of(each.Image());
    };
    FormulaFacts facts;
    facts.result = fingerprint(layer);
    for (const int id : m_graph.FormulaOf(layer.Id())->operands) {
        facts.operands.append(fingerprint(*m_list.LayerById(id)));
    }
    return facts;
}

void DerivedLayers::ForEachOutdated(
    const std::function<void(const QString& name, FormulaState)>& take) const
{
    const auto statuses = StatusesOf(m_graph, [this](int id, const Formula& /*formula*/) {
        const Layer& layer = *m_list.LayerById(id);
        const FormulaRecord& record = *RecordOf(layer.text());
        FormulaFacts known{record.fingerprint, {}, false};
        for (const FormulaRecord::Operand& operand : record.operands) {
            known.operands.append(operand.fingerprint);
        }
        return Compared(known, PresentFacts(layer));
    });
    const QVector<int> order = m_graph.InOrder(m_graph.Computed());
    for (const int id : order) {
        const FormulaState state = statuses.value(id).State();
        if (state != FormulaState::UpToDate) {
            take(m_list.LayerById(id)->text(), state);
        }
    }
}

bool DerivedLayers::Compute()
{
    const QVector<int> order = m_graph.InOrder(m_graph.Computed());
    Progress progress(QStringLiteral("Computing"), order.size());
    for (const int id : order) {
        Layer* layer = m_list.LayerById(id);
        const auto computation = Computation::Of(m_list, *m_graph.FormulaOf(id));
        const QImage mask = computation && !Interruption::HasCome()
                                ? computation->Within(layer->Image().rect())
                                : QImage();
        if (mask.isNull()) {
            Console::PrintError(m_project->path,
                                QStringLiteral("there is no memory to compute layer %1.")
                                    .arg(Console::Quoted(layer->text())));
            return false;
        }
        if (mask != layer->Image()) {
            layer->TakePaintedMask(mask);
            m_changed.append(layer);
        }
        progress.Step();
    }
    return true;
}

bool DerivedLayers::Write(const std::function<void(const QString& path)>& take) const
{
    OutputGroup group;
    QStringList paths;
    for (const Layer* layer : m_changed) {
        paths.append(m_project->BitmapPath(*FindLayer(*m_project, layer->text())));
        const Console::CurrentFile current(paths.constLast());
        if (!SaveTarga(paths.constLast(), layer->Image(), true)) {
            return false;
        }
    }
    FormulaRecords records = m_records;
    for (FormulaRecord& record : records) {
        const Layer* layer = m_list.LayerByName(record.layer);
        if (layer && m_graph.FormulaOf(layer->Id())) {
            const FormulaFacts facts = PresentFacts(*layer);
            record.fingerprint = facts.result;
            for (int i = 0; i < record.operands.size(); ++i) {
                record.operands[i].fingerprint = facts.operands.at(i);
            }
        }
    }
    const QByteArray text = FormulaDocument(records);
    OutputFile file(m_formulaPath);
    if (text != FormulaDocument(m_records)) {
        paths.append(m_formulaPath);
        if (!file.Open(QIODevice::Text) || !file.Write(text) || !file.Commit()) {
            Console::PrintError(m_formulaPath,
                                QStringLiteral("cannot be written: %1.").arg(file.ErrorString()));
            return false;
        }
    }
    if (Interruption::HasCome() || !group.Commit()) {
        Console::PrintError(
            m_project->path,
            QStringLiteral("its layers cannot be written: %1.").arg(group.ErrorString()));
        return false;
    }
    for (const QString& path : qAsConst(paths)) {
        take(path);
    }
    return true;
}
