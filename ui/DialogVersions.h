#pragma once

#include "document/versions/StoredPicture.h"
#include "document/versions/Version.h"

#include <QDialog>
#include <QTimer>
#include <QVector>

#include <memory>
#include <optional>

class VersionStore;

namespace Ui {
class DialogVersions;
}

/// Lists the earlier versions of projects, and lets the user choose one to be opened, or copy its
/// files.
class DialogVersions : public QDialog
{
    Q_OBJECT

public:
    /// path: the open project's; its versions come first. It may be empty.
    DialogVersions(const VersionStore& store, const QString& path, QWidget* parent = nullptr);
    ~DialogVersions() override;
    Q_DISABLE_COPY(DialogVersions)

    /// The selected version; null when there is none. The user wants it opened when the dialog is
    /// accepted.
    const Version* Selected() const;

private:
    void AddRow(const Version& version);
    void ShowSelected();
    void BeginPicture(const Version& version);
    void DrawPicture();
    void CopyFiles();

    std::unique_ptr<Ui::DialogVersions> m_ui;
    /// One for each row.
    QVector<Version> m_versions;
    std::optional<StoredPicture> m_picture;
    QTimer m_drawing;
};
