#include "ui/ProjectSaving.h"

#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectDocument.h"
#include "app/ProjectFile.h"
#include "app/ProjectSettings.h"
#include "canvas/MainScene.h"
#include "document/Document.h"
#include "document/Formulas.h"
#include "document/LiveLayers.h"
#include "document/edits/LayerEdits.h"
#include "document/versions/VersionStore.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "ui/DockLayers.h"
#include "ui/DockTerTypes.h"
#include "ui/FileDialogs.h"
#include "ui/ProjectNotices.h"
#include "ui/ProjectWork.h"
#include "ui/QuillmapWindow.h"

#include <algorithm>
#include <utility>

namespace {

const ProjectSettings& Settings()
{
    return ProjectSettings::Instance();
}

} // namespace

ProjectSaving::ProjectSaving(const EditorParts& parts, ProjectWork& work, ProjectNotices& notices,
                             std::function<void()> showVersions)
    : m_parts(parts)
    , m_work(work)
    , m_notices(notices)
    , m_showVersions(std::move(showVersions))
{
}

ProjectSaving::~ProjectSaving() = default;

bool ProjectSaving::Save()
{
    if (m_work.IsBusy()) {
        return false;
    }
    const QString path = AskForFile(&m_parts.window, FilePurpose::SaveProject);
    return !path.isEmpty() && SaveTo(path);
}

bool ProjectSaving::QuickSave()
{
    const QString path = m_parts.document.Path();
    if (path.isEmpty()) {
        return Save();
    }
    return !m_work.IsBusy() && SaveTo(path);
}

bool ProjectSaving::SaveTo(const QString& path)
{
    // Half a stroke in the files would belong to no state of the history.
    m_parts.scene.LoseMouse();
    m_parts.document.Live().Finish();
    const ProjectWork::Scope saving(m_work, ProjectWork::Kind::Saving);
    const Layer* current = m_parts.document.CurrentLayer();
    ProjectParts parts{current ? current->row() : -1,
                       [this](QXmlStreamWriter& xml) { m_parts.document.GetBrush().WriteXml(xml); },
                       [this] {
                           m_parts.window.SetTitle(Settings().Name());
                           LogInfo(QStringLiteral("Saving project '%1'...").arg(Settings().Name()));
                           m_parts.document.Layers().RenameForSaving(
                               [this](Layer& layer, const QString& name) {
                                   m_parts.document.Do(Edits::Rename(layer, name));
                               });
                       },
                       m_parts.document.Layers(),
                       m_parts.document.Types(),
                       [this] { return m_parts.document.LayerFormulas().Records(); }};
    VersionStore versions;
    const VersionStore::Kept kept = versions.KeepBeforeSave(
        path, m_parts.document.Layers().NamesForSaving(), m_parts.document.Files());
    const bool isSaved = SaveProjectTo(path, parts);
    versions.Prune();
    if (isSaved) {
        m_notices.ShowReplaced(kept.replaced, kept.isWhole, m_showVersions);
    }
    m_notices.ShowUnkept(kept.problem);
    m_parts.window.SetTitle(Settings().Name());
    if (isSaved) {
        m_parts.document.SetPath(Settings().ProjectFilePath());
        m_notices.FollowSave();
    }
    if (isSaved && Settings().IsModified()) {
        // A bitmap could not be written, so the files are those of no state of the history.
        m_parts.document.NoteChange();
    } else if (isSaved) {
        m_parts.document.SetSaved();
    }
    return isSaved;
}

void ProjectSaving::SaveAll()
{
    const bool hasLayers = m_parts.layers.HasLayers();
    m_notices.FollowSaveAll(hasLayers || m_work.IsBusy());
    if (hasLayers && Save()) {
        SaveMap();
        ExportTypes(false);
        LogInfo(QStringLiteral("Save done"));
    }
}

void ProjectSaving::SaveMap()
{
    if (m_parts.layers.HasLayers()) {
        m_parts.document.Live().Finish();
        const ProjectWork::Scope saving(m_work, ProjectWork::Kind::Saving);
        m_parts.layers.SaveMap(Settings().MapPath());
    }
}

void ProjectSaving::ExportTypes(bool checkedOnly)
{
    const ProjectWork::Scope saving(m_work, ProjectWork::Kind::Saving);
    OutputGroup group;
    const QVector<TerritoryType*> types = m_parts.document.Types().Types();
    const auto ticked = std::count_if(types.begin(), types.end(), [](const TerritoryType* type) {
        return type->checkState() == Qt::Checked;
    });
    m_notices.FollowExport(checkedOnly, static_cast<int>(ticked), types.size());
    const bool areMade =
        checkedOnly ? m_parts.terTypes.ExportChecked() : m_parts.terTypes.ExportAll();
    if (!group.Commit() || !areMade) {
        LogError(QStringLiteral("Failed to export territory types."));
    } else if (checkedOnly) {
        LogSuccess(QStringLiteral("Selected territory types succesfully exported."));
    } else {
        LogSuccess(QStringLiteral("Territory types succesfully exported."));
    }
}
