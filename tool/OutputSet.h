#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

#include <memory>

/// Several files of one folder that take their places together: they are made in a folder beside
/// them, and until all are in place the old ones can be put back.
class OutputSet
{
public:
    explicit OutputSet(const QString& folder);
    /// Removes what is not in place, and the folders made for it.
    ~OutputSet();
    Q_DISABLE_COPY(OutputSet)

    /// Creates the folder; false after a printed error.
    bool Open();
    /// Where the files are to be made.
    QString Workplace() const { return m_workplace->path(); }
    /// Where the file will be, for messages.
    QString Target(const QString& name) const;
    /// Puts the files, which are named as below the folder, in their places; false after a printed
    /// error, and then all is as it was.
    bool Commit(const QStringList& names);

private:
    bool MakeFolder(const QString& path);
    bool Place(const QString& name);
    void PutBack();

    QString m_folder;
    std::unique_ptr<QTemporaryDir> m_workplace;
    /// In the order in which they were made.
    QStringList m_madeFolders;
    struct Placed
    {
        QString target;
        /// Where the old file is; empty when there was none.
        QString old;
    };
    QVector<Placed> m_placed;
    bool m_isDone = false;
};
