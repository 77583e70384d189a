#include "ui/ZoneSheets.h"

#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/edits/EditGroup.h"
#include "document/edits/ZoneEdits.h"
#include "territories/SheetPlan.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "territories/ZoneSheet.h"
#include "ui/FileDialogs.h"
#include "ui/dialogs/DialogRefusedRows.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileInfo>

#include <map>
#include <utility>

namespace {

QString Text(const char* text)
{
    return QCoreApplication::translate("ZoneSheets", text);
}

/// The territories and zones that a plan names by their places in the records.
class PlannedZones
{
public:
    explicit PlannedZones(const Document& document)
        : m_types(document.Types().Types())
    {
    }

    Territory* At(const TerritoryPlace& place) const
    {
        return m_types.at(static_cast<int>(place.type))
            ->Territories()
            .at(static_cast<int>(place.territory));
    }
    Zone* At(const TerritoryPlace& place, std::size_t zone)
    {
        QList<Zone*>& zones = m_zones[{place.type, place.territory}];
        if (zones.isEmpty()) {
            zones = At(place)->Zones().values();
        }
        return zones[static_cast<int>(zone)];
    }

private:
    QVector<TerritoryType*> m_types;
    std::map<std::pair<std::size_t, std::size_t>, QList<Zone*>> m_zones;
};

QString ResultText(std::size_t changed, std::size_t added)
{
    return changed + added == 0 ? Text("The rows say what the project says already.")
                                : Text("%1 zones changed, %2 added.")
                                      .arg(static_cast<qulonglong>(changed))
                                      .arg(static_cast<qulonglong>(added));
}

void AddTo(EditGroup& group, std::unique_ptr<Edit> edit)
{
    if (edit->Changes()) {
        group.SetPlace(edit->Place());
        group.Add(std::move(edit));
    }
}

} // namespace

ZoneSheets::ZoneSheets(Document& document, QWidget& parent)
    : m_document(document)
    , m_parent(parent)
{
}

void ZoneSheets::Copy(const std::vector<ZoneRow>& rows)
{
    QApplication::clipboard()->setText(WriteSheet(rows, SheetFormat::Tabs));
}

QString ZoneSheets::Paste(const std::function<bool(const Zone&)>& mayChange)
{
    return Take(ReadSheet(QApplication::clipboard()->text()), Text("Paste %1"), mayChange);
}

/// step: the text of the step, with a place for "20 zones".
QString ZoneSheets::Take(const ZoneSheet& sheet, const QString& step,
                         const std::function<bool(const Zone&)>& mayChange)
{
    if (!m_document.CanTravel()) {
        return {};
    }
    const WorldScale scale(ProjectSettings::Instance());
    SheetPlan plan = PlanSheet(m_document.Types().Records(), scale, sheet, ZoneValues::OfNewZone());
    PlannedZones planned(m_document);
    std::vector<Edits::ZoneChange> changes;
    for (const SheetChange& change : plan.changes) {
        Zone* zone = planned.At(change.territory, change.zone);
        if (mayChange && !mayChange(*zone)) {
            const Territory& territory = *zone->Holder();
            plan.refusals.push_back(
                {0, Text("zone %1 of '%2' / '%3' is not shown: the filter hides it")
                        .arg(change.zone + 1)
                        .arg(territory.GetType()->text(), territory.text())});
        }
        changes.push_back({zone, change.values, change.place});
    }
    if (plan.IsRefused()) {
        DialogRefusedRows(plan.refusals, &m_parent).exec();
        return {};
    }
    std::vector<Edits::NewZone> additions;
    for (const SheetAddition& addition : plan.additions) {
        additions.push_back({planned.At(addition.territory), addition.values, addition.place});
    }
    const std::size_t count = changes.size() + additions.size();
    if (count > 0) {
        const QString name = step.arg(Edits::ZonesText(static_cast<int>(count)));
        auto group = std::make_unique<EditGroup>(name);
        AddTo(*group, Edits::ChangeZones(name, changes));
        AddTo(*group, Edits::AddZones(name, additions));
        m_document.Do(std::move(group));
    }
    return ResultText(changes.size(), additions.size());
}

void ZoneSheets::Import()
{
    if (!m_document.CanTravel()) {
        return;
    }
    const QString path = AskForFile(&m_parent, FilePurpose::ZonesImport);
    if (path.isEmpty()) {
        return;
    }
    QFile file(path);
    // Opening a pipe would wait for a writer, maybe for ever.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        LogError(Text("Failed to open file '%1' for reading.").arg(path));
        return;
    }
    const QString result = Take(ReadSheetFile(file), Text("Import %1"), {});
    if (!result.isEmpty()) {
        LogSuccess(result);
    }
}

void ZoneSheets::Export()
{
    if (!m_document.CanTravel()) {
        return;
    }
    const QString path = AskForFile(&m_parent, FilePurpose::ZonesExport);
    if (path.isEmpty()) {
        return;
    }
    const WorldScale scale(ProjectSettings::Instance());
    const std::vector<ZoneRow> rows = ZoneRows(m_document.Types().Records(), scale);
    OutputFile file(path);
    if (file.Open() && file.Write(WriteSheet(rows, SheetFormat::Csv).toUtf8()) && file.Commit()) {
        LogSuccess(
            Text("%1 zones exported to '%2'.").arg(static_cast<qulonglong>(rows.size())).arg(path));
    } else {
        LogError(Text("Could not write '%1': %2").arg(path, file.ErrorString()));
    }
}
