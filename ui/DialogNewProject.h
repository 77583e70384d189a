#pragma once

#include <QDialog>
#include <QString>

#include <memory>

namespace Ui {
class DialogNewProject;
}

/// Asks for the sizes and files of a new project.
class DialogNewProject : public QDialog
{
    Q_OBJECT

public:
    explicit DialogNewProject(QWidget* parent = nullptr);
    ~DialogNewProject() override;
    Q_DISABLE_COPY(DialogNewProject)

    /// Pixels.
    int LayerSize() const;
    /// Metres.
    int WorldSize() const;
    /// Both may be empty.
    QString BackgroundPath() const;
    QString AreaFlagsPath() const;
    /// Not empty once the dialog was accepted.
    QString ProjectPath() const;

public slots:
    void LoadBgImageDialog();
    void ImportAreaFlagsDialog();
    /// Appends ".xml" to the chosen file's name unless it ends with that.
    void SaveProjectDialog();
    void ConfirmDialog();
    void CloseDialog();

private:
    void ShowFolderNotice();

    std::unique_ptr<Ui::DialogNewProject> m_ui;
    /// The folder that the notice is about.
    QString m_folder;
};
