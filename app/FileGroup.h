#pragma once

#include "app/HiddenFile.h"

#include <QString>

#include <map>
#include <memory>
#include <system_error>
#include <vector>

class GroupRecord;

/// Hidden files that take their places together: either all do, or all old ones are as they were.
/// If the program is killed, the next run that reads or writes in one of the folders finishes or
/// undoes the replacement.
class FileGroup
{
public:
    FileGroup();
    /// What is not in its place is thrown away.
    ~FileGroup();
    Q_DISABLE_COPY(FileGroup)

    /// Makes the file that is to take the place, which has its folder. All files that were added
    /// before are finished. Null after a failure, which Error tells.
    QFile* Add(const QString& place);
    /// Takes a finished file over, which may have been made by other means. It keeps its
    /// permissions. Where the old file cannot be replaced, its bytes are overwritten last. After a
    /// failure the file is still the caller's, and the group is without it.
    std::error_code Take(HiddenFile& file, const QString& place);
    /// False after a failure.
    bool Commit();

    std::error_code Error() const { return m_error; }
    /// The place that Error is about.
    QString FailedPlace() const { return m_failedPlace; }

private:
    struct File
    {
        QString place;
        /// Null once it is in its workplace.
        std::unique_ptr<HiddenFile> file;
    };
    struct Workplace
    {
        QString path;
        std::shared_ptr<void> lock;
    };

    bool Fail(const QString& place, const std::error_code& error);
    std::error_code MakeWorkplace(const QString& folder);
    std::error_code HandOver(HiddenFile& file, const QString& place, bool mayOverwrite);
    bool HandOver(File& file);
    bool HandOverAll();

    std::vector<File> m_files;
    /// By their folders.
    std::map<QString, Workplace> m_workplaces;
    /// Null before the first workplace.
    std::unique_ptr<GroupRecord> m_record;
    std::error_code m_error;
    QString m_failedPlace;
};
