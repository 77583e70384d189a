#include "tests/support/ProjectFixture.h"

ProjectFixture::ProjectFixture(QSize layerSize, QSize worldSize)
    : m_settingsBefore(ProjectSettings::Instance())
{
    if (!m_folder.isValid()) {
        qFatal("Cannot create a temporary folder.");
    }
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.areaFlagTypes = {};
    settings.backgroundFile.clear();
    settings.projectFileName = QStringLiteral("project.xml");
    settings.projectName = QStringLiteral("project");
    settings.projectDir = QDir(m_folder.path());
    settings.backgroundColor = QColor();
    settings.SetSizes(layerSize.width(), layerSize.height(), worldSize.width(), worldSize.height());
    settings.modified = false;
}

ProjectFixture::~ProjectFixture()
{
    ProjectSettings::Instance() = m_settingsBefore;
}

QString ProjectFixture::Path(const QString& fileName) const
{
    return m_folder.filePath(fileName);
}
