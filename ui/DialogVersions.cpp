#include "ui/DialogVersions.h"

#include "app/Log.h"
#include "document/StoredProject.h"
#include "document/versions/VersionStore.h"
#include "ui/FileDialogs.h"
#include "ui/NameList.h"
#include "ui_DialogVersions.h"

#include <QDir>
#include <QHeaderView>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardItemModel>

namespace {

/// Pixels of the longer side.
constexpr int PictureLength = 160;

QString KindText(VersionKind kind)
{
    switch (kind) {
    case VersionKind::Saved:
        return DialogVersions::tr("saved");
    case VersionKind::Discarded:
        return DialogVersions::tr("discarded");
    case VersionKind::Replaced:
        return DialogVersions::tr("replaced");
    }
    Q_UNREACHABLE();
}

QString TimeText(const Version& version, const QString& format)
{
    return version.Time().toLocalTime().toString(format);
}

QString NameText(const Version& version)
{
    return version.Name().isEmpty() ? DialogVersions::tr("Unsaved") : version.Name();
}

QString Description(const Version& version)
{
    const QString time = TimeText(version, QStringLiteral("HH:mm"));
    QStringList bitmaps = version.Bitmaps();
    bitmaps.replaceInStrings(QRegularExpression(QStringLiteral("\\.tga$")), QString());
    switch (version.Kind()) {
    case VersionKind::Saved:
        return DialogVersions::tr("The project on disk until the save at %1.").arg(time);
    case VersionKind::Discarded:
        return DialogVersions::tr("Unsaved work that was discarded at %1.").arg(time);
    case VersionKind::Replaced:
        return DialogVersions::tr("Bitmaps that a save replaced at %1: %2.")
            .arg(time, NameList(bitmaps));
    }
    Q_UNREACHABLE();
}

} // namespace

DialogVersions::DialogVersions(const VersionStore& store, const QString& path, QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogVersions>())
    , m_versions(store.Versions(path))
{
    m_ui->setupUi(this);
    auto* model = new QStandardItemModel(this);
    model->setHorizontalHeaderLabels({tr("Time"), tr("Kind"), tr("Size"), tr("Project")});
    m_ui->viewVersions->setModel(model);
    for (const Version& version : qAsConst(m_versions)) {
        AddRow(version);
    }
    m_ui->viewVersions->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_ui->lblNoVersions->setVisible(m_versions.isEmpty());
    m_ui->viewVersions->setVisible(!m_versions.isEmpty());
    connect(m_ui->viewVersions->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &DialogVersions::ShowSelected);
    connect(m_ui->viewVersions, &QTreeView::doubleClicked, this, &QDialog::accept);
    connect(m_ui->btnOpenCopy, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_ui->btnCopyFiles, &QPushButton::clicked, this, &DialogVersions::CopyFiles);
    connect(m_ui->btnClose, &QPushButton::clicked, this, &QDialog::reject);
    connect(&m_drawing, &QTimer::timeout, this, &DialogVersions::DrawPicture);
    m_ui->viewVersions->setCurrentIndex(model->index(0, 0));
    m_ui->viewVersions->setFocus();
    ShowSelected();
}

DialogVersions::~DialogVersions() = default;

void DialogVersions::AddRow(const Version& version)
{
    auto* size = new QStandardItem(QLocale::c().formattedDataSize(version.Bytes(), 1));
    // The rows of this list are no part of the project.
    size->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter); // NOLINT
    const QList<QStandardItem*> row{
        new QStandardItem(TimeText(version, QStringLiteral("yyyy-MM-dd HH:mm:ss"))),
        new QStandardItem(KindText(version.Kind())), size, new QStandardItem(NameText(version))};
    for (QStandardItem* item : row) {
        item->setEditable(false); // NOLINT
        // A path may look like markup.
        const QString tip = QStringLiteral("<span>%1</span>").arg(version.Path().toHtmlEscaped());
        item->setToolTip(tip); // NOLINT
    }
    static_cast<QStandardItemModel*>(m_ui->viewVersions->model())->appendRow(row);
}

const Version* DialogVersions::Selected() const
{
    const int row = m_ui->viewVersions->currentIndex().row();
    return row < 0 ? nullptr : &m_versions[row];
}

void DialogVersions::ShowSelected()
{
    const Version* version = Selected();
    m_ui->btnOpenCopy->setEnabled(version);
    m_ui->btnCopyFiles->setEnabled(version && version->HasFiles());
    m_ui->lblVersionText->setText(version ? Description(*version) : QString());
    m_ui->lblVersionPicture->clear();
    m_drawing.stop();
    if (version) {
        BeginPicture(*version);
    }
}

void DialogVersions::BeginPicture(const Version& version)
{
    const QImage kept = version.Picture();
    if (kept.isNull()) {
        m_picture.emplace(version.Stored(), PictureLength);
        m_drawing.start(0);
    } else {
        m_ui->lblVersionPicture->setPixmap(QPixmap::fromImage(kept));
    }
}

void DialogVersions::DrawPicture()
{
    const bool isDone = !m_picture->Step();
    m_ui->lblVersionPicture->setPixmap(QPixmap::fromImage(m_picture->Image()));
    if (isDone) {
        m_drawing.stop();
        Selected()->KeepPicture(m_picture->Image());
    }
}

void DialogVersions::CopyFiles()
{
    const Version* version = Selected();
    const QString folder = AskForFolder(this, tr("Copy files to"));
    if (folder.isEmpty()) {
        return;
    }
    const QString name =
        NameText(*version) + TimeText(*version, QStringLiteral(" yyyy-MM-dd HH.mm.ss"));
    const QString made = QDir(folder).filePath(name);
    const QString problem = version->CopyFilesTo(made);
    if (problem.isEmpty()) {
        LogSuccess(tr("Earlier version copied to folder '%1'.").arg(made));
    } else {
        QMessageBox::warning(this, tr("Copy files to"),
                             tr("The files could not be copied to '%1'.\n\n%2").arg(made, problem));
    }
}
