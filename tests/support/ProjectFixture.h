#pragma once

#include "app/ProjectSettings.h"

#include <QSize>
#include <QString>
#include <QTemporaryDir>

/// An empty project in a temporary folder. Its destructor restores the former settings.
class ProjectFixture
{
public:
    /// Layer size in pixels, world size in metres.
    explicit ProjectFixture(QSize layerSize = {16, 16}, QSize worldSize = {15360, 15360});
    ~ProjectFixture();
    Q_DISABLE_COPY(ProjectFixture)

    /// The path of a file in the project's folder.
    QString Path(const QString& fileName) const;

private:
    ProjectSettings m_settingsBefore;
    QTemporaryDir m_folder;
};
