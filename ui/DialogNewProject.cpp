#include "ui/DialogNewProject.h"

#include "app/ProjectReader.h"
#include "ui/FileDialogs.h"
#include "ui/widgets/LimitFont.h"
#include "ui/widgets/WheelFocus.h"
#include "ui_DialogNewProject.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>

namespace {

/// What shows that there is a project in the folder; empty if there is none.
QString ProjectIn(const QDir& folder)
{
    // Looking into very many documents would take too long while the user types.
    constexpr int mostDocuments = 100;
    const QStringList documents =
        folder.entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name).mid(0, mostDocuments);
    for (const QString& document : documents) {
        if (IsProjectDocument(folder.filePath(document))) {
            return document;
        }
    }
    const int bitmaps = QDir(folder.filePath(QStringLiteral("layers")))
                            .entryList({QStringLiteral("*.tga")}, QDir::Files)
                            .size();
    if (bitmaps == 0) {
        return {};
    }
    return bitmaps == 1 ? DialogNewProject::tr("1 layer")
                        : DialogNewProject::tr("%1 layers").arg(bitmaps);
}

} // namespace

DialogNewProject::DialogNewProject(QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogNewProject>())
{
    m_ui->setupUi(this);
    LimitFont(*this);
    TakeWheelOnlyWithFocus(m_ui->spinLayerSizeX);
    TakeWheelOnlyWithFocus(m_ui->spinWorldSizeX);
    connect(m_ui->btnSelectWorldImg, &QPushButton::clicked, this,
            &DialogNewProject::LoadBgImageDialog);
    connect(m_ui->btnSelectAreaFlags, &QPushButton::clicked, this,
            &DialogNewProject::ImportAreaFlagsDialog);
    connect(m_ui->btnSaveProject, &QPushButton::clicked, this,
            &DialogNewProject::SaveProjectDialog);
    connect(m_ui->txtProjectName, &QLineEdit::textChanged, this,
            &DialogNewProject::ShowFolderNotice);
    m_ui->lblFolderNotice->hide();
    connect(m_ui->btnOk, &QPushButton::clicked, this, &DialogNewProject::ConfirmDialog);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &DialogNewProject::CloseDialog);
}

DialogNewProject::~DialogNewProject() = default;

int DialogNewProject::LayerSize() const
{
    return m_ui->spinLayerSizeX->value();
}

int DialogNewProject::WorldSize() const
{
    return m_ui->spinWorldSizeX->value();
}

QString DialogNewProject::BackgroundPath() const
{
    return m_ui->txtWorldImage->text();
}

QString DialogNewProject::AreaFlagsPath() const
{
    return m_ui->txtAreaFlagsFile->text();
}

QString DialogNewProject::ProjectPath() const
{
    return m_ui->txtProjectName->text();
}

void DialogNewProject::LoadBgImageDialog()
{
    const QString path = AskForFile(this, FilePurpose::BackgroundPicture);
    if (!path.isEmpty()) {
        m_ui->txtWorldImage->setText(path);
    }
}

void DialogNewProject::ImportAreaFlagsDialog()
{
    const QString path = AskForFile(this, FilePurpose::AreaFlagTypes);
    if (!path.isEmpty()) {
        m_ui->txtAreaFlagsFile->setText(path);
    }
}

void DialogNewProject::SaveProjectDialog()
{
    const QString chosen = AskForFile(this, FilePurpose::SaveProject);
    if (chosen.isEmpty()) {
        return;
    }
    const QString suffix = QStringLiteral(".xml");
    const QString path = chosen.endsWith(suffix) ? chosen : chosen + suffix;
    // The file dialog has asked about the chosen file, but not about the one with the suffix.
    const bool isAnother = path != chosen && QFileInfo::exists(path);
    const QString text = tr("%1 already exists.\nDo you want to replace it?");
    if (isAnother && !AskYesNo(this, tr("Save"), text.arg(QFileInfo(path).fileName()))) {
        return;
    }
    m_ui->txtProjectName->setText(path);
}

void DialogNewProject::ShowFolderNotice()
{
    const QString folder =
        ProjectPath().isEmpty() ? QString() : QFileInfo(ProjectPath()).absolutePath();
    if (folder != m_folder) {
        m_folder = folder;
        const QString project = folder.isEmpty() ? QString() : ProjectIn(QDir(folder));
        m_ui->lblFolderNotice->setText(tr("Folder in use: %1").arg(project));
        m_ui->lblFolderNotice->setToolTip(
            QStringLiteral("<qt>%1</qt>")
                .arg(tr("The folder holds another project: %1. Projects in one folder share the "
                        "bitmaps of layers with the same name.")
                         .arg(project.toHtmlEscaped())));
        m_ui->lblFolderNotice->setVisible(!project.isEmpty());
    }
}

void DialogNewProject::ConfirmDialog()
{
    const QFileInfo file(ProjectPath());
    if (ProjectPath().isEmpty()) {
        QMessageBox::warning(this, windowTitle(), tr("No project file selected"));
    } else if (file.exists() && !file.isWritable()) {
        QMessageBox::warning(this, windowTitle(), tr("Selected project file cannot be saved"));
    } else {
        accept();
    }
}

void DialogNewProject::CloseDialog()
{
    reject();
}
