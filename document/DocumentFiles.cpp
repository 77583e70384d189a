#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "layers/FormulaFile.h"

#include <QDir>
#include <QFileInfo>

// How a document begins, and how files replace what it holds.

namespace {

ProjectSettings& Settings()
{
    return ProjectSettings::Instance();
}

} // namespace

void Document::Begin(QSize layerSize, QSize worldSize, const QDir& folder)
{
    ProjectSettings& settings = Settings();
    SetPlace(folder, QString());
    settings.SetName(QString());
    settings.SetFlagTypes({});
    settings.SetBackgroundFile(QString());
    settings.SetBackgroundColor(QColor::fromRgba(ProjectSettings::DefaultBackground));
    settings.SetSizes(layerSize.width(), layerSize.height(), worldSize.width(), worldSize.height());
}

void Document::SetPlace(const QDir& folder, const QString& fileName)
{
    Settings().SetDir(folder);
    Settings().SetFileName(fileName);
}

void Document::SetPath(const QString& path)
{
    m_path = path;
    if (path.isEmpty()) {
        m_files.Clear();
    } else {
        m_files.ClearStamps();
        NoteFiles(path);
    }
    emit FilesNoted();
}

void Document::NoteFiles(const QString& path)
{
    m_files.Note(path);
    if (QFileInfo::exists(FormulaPath(path))) {
        m_files.Note(FormulaPath(path));
    }
    const QVector<Layer*> layers = m_layers.Layers();
    for (const Layer* layer : layers) {
        m_files.Note(Settings().LayerPath(layer->text()));
    }
    if (!Settings().BackgroundFile().isEmpty()) {
        m_files.Note(Settings().BackgroundPath());
    }
}

void Document::SetPath(const QString& path, const QStringList& files)
{
    m_path = path;
    m_files.ClearStamps();
    for (const QString& file : files) {
        m_files.Note(file);
    }
    emit FilesNoted();
}

void Document::SetName(const QString& name)
{
    Settings().SetName(name);
}

bool Document::Read(ProjectReader& reader, const MaskSource& masks)
{
    const bool wasModified = Settings().IsModified();
    const Brush brushBefore = m_brush;
    const bool isRead =
        reader.Read({[this](QXmlStreamReader& xml) { m_brush.ReadXml(xml); },
                     [&](QXmlStreamReader& xml) { return m_layers.ReadXml(xml, masks); },
                     [this](QXmlStreamReader& xml) { return m_types.Read(xml, m_zoneScene); }});
    if (!isRead) {
        Settings().SetModified(wasModified);
        m_brush = brushBefore;
    }
    return isRead;
}

bool Document::ReadMap(QIODevice& map)
{
    const ProjectSettings& settings = Settings();
    QSize layerSize = settings.LayerSize();
    QSize worldSize(settings.WorldWidth(), settings.WorldHeight());
    const bool isRead = m_layers.ImportMap(map);
    if (isRead) {
        layerSize = settings.LayerSize();
        worldSize = {settings.WorldWidth(), settings.WorldHeight()};
    }
    Settings().SetSizes(layerSize.width(), layerSize.height(), worldSize.width(),
                        worldSize.height());
    return isRead;
}
