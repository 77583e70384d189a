#pragma once

#include "app/FileGroup.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <memory>

/// Several files of one folder that take their places together, with the folders that they need and
/// the messages of what goes wrong. Links are written through, and a file keeps the permissions of
/// the one that it replaces.
class OutputSet
{
public:
    explicit OutputSet(const QString& folder);
    /// Throws away what is not in its place, and removes the folders made for it.
    ~OutputSet();
    Q_DISABLE_COPY(OutputSet)

    /// The path that the file will have.
    QString Target(const QString& name) const;
    /// Makes a file and its folders. name: its path below the folder. The files that were added
    /// before are complete then. Null after a printed error.
    QFile* Add(const QString& name);
    /// Installs the files. False after a printed error or an interruption; then the old files stay.
    bool Commit();

private:
    bool MakeFolder(const QString& path);

    QString m_folder;
    std::unique_ptr<FileGroup> m_files;
    /// What to call the file of each place in messages.
    QHash<QString, QString> m_targets;
    /// In the order in which they were made.
    QStringList m_madeFolders;
    bool m_isDone = false;
};
