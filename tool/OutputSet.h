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
    /// Makes a file, which is named as below the folder, and the folders for it. The files added
    /// before are finished. Null after a printed error.
    QFile* Add(const QString& name);
    /// Puts the files in their places; false after a printed error or an interruption, and then all
    /// is as it was.
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
