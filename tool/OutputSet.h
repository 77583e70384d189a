#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

#include <map>
#include <memory>

/// Several files of one folder that take their places together: they are made in hidden folders
/// beside them, and until all are in place the old ones can be put back. Links are written through,
/// and a file keeps the permissions of the one that it replaces.
class OutputSet
{
public:
    explicit OutputSet(const QString& folder);
    /// Removes what is not in place, and the folders made for it.
    ~OutputSet();
    Q_DISABLE_COPY(OutputSet)

    /// Where the file will be.
    QString Target(const QString& name) const;
    /// Where the file, which is named as below the folder, is to be made; creates the folders for
    /// it. Empty after a printed error.
    QString Add(const QString& name);
    /// Puts the files in their places; false after a printed error or an interruption, and then all
    /// is as it was.
    bool Commit();

private:
    struct File
    {
        /// For messages.
        QString target;
        /// The target, or what a link in its place leads to.
        QString place;
        QString made;
        /// Where the old file is meanwhile; empty when there is none.
        QString old;
        bool isPlaced = false;
    };

    bool MakeFolder(const QString& path);
    /// Empty after a printed error.
    QString Workplace(const QString& folder);
    bool Place(File& file);
    void PutBack();

    QString m_folder;
    /// By the folder that they are in.
    std::map<QString, std::unique_ptr<QTemporaryDir>> m_workplaces;
    /// In the order in which they were made.
    QStringList m_madeFolders;
    QVector<File> m_files;
    bool m_isDone = false;
};
