#include "tests/support/ProjectFixture.h"

ProjectFixture::ProjectFixture(QSize layerSize, QSize worldSize)
    : m_settingsBefore(ProjectSettings::Instance())
{
    if (!m_folder.isValid()) {
        qFatal("Cannot create a temporary folder.");
    }
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetFlagTypes({});
    settings.SetBackgroundFile({});
    settings.SetFileName(QStringLiteral("project.xml"));
    settings.SetName(QStringLiteral("project"));
    settings.SetDir(QDir(m_folder.path()));
    settings.SetBackgroundColor(QColor());
    settings.SetSizes(layerSize.width(), layerSize.height(), worldSize.width(), worldSize.height());
    settings.SetModified(false);
}

ProjectFixture::~ProjectFixture()
{
    ProjectSettings::Instance() = m_settingsBefore;
}

QString ProjectFixture::Path(const QString& fileName) const
{
    return m_folder.filePath(fileName);
}
