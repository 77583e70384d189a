#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <system_error>

/// A plan, stored on disk, for replacing several files together. It is written before the first
/// file is replaced, so that another run can finish or undo it. Each target folder contains a
/// hidden folder, a workplace. There the new file N is "new-N", and the file that it replaced is
/// "old-N". The first workplace, the main one, holds the plan. The plan is called "record" while
/// new files are being installed, and "undo" while old files are being restored. Without a plan
/// there is nothing to do. The other workplaces name the main one in a file "main".
class GroupRecord
{
public:
    explicit GroupRecord(const QString& mainWorkplace)
        : m_main(mainWorkplace)
    {
    }

    /// The next file: it is in the workplace, and takes this name in the folder of the workplace.
    /// mayOverwrite: where the old file cannot be replaced, its bytes are overwritten.
    void Add(const QString& workplace, const QString& name, bool mayOverwrite);
    /// Where the next file is to be made, in its workplace.
    QString NextFile(const QString& workplace) const;
    QStringList Workplaces() const;

    const QString& Main() const { return m_main; }
    bool IsEmpty() const { return m_files.isEmpty(); }
    /// Where a file goes.
    QString Place(int number) const;

    /// After this, any run that finds the workplaces can finish the job.
    std::error_code Write() const;
    /// Whether there is something to be done.
    bool IsWritten() const;
    /// Reads the plan of a killed program. False if there is none or if it is malformed.
    bool Read();

    /// Installs all files, or restores all old ones when that fails. Steps that an earlier run
    /// completed are skipped. Files to be overwritten come last, because their old bytes cannot be
    /// restored. Then removes the plan, and returns whether it is gone.
    bool Carry();
    /// The place of the file that could not be installed, and why; empty when none failed.
    const QString& FailedPlace() const { return m_failedPlace; }
    std::error_code Error() const { return m_error; }

private:
    struct File
    {
        QString workplace;
        QString name;
        /// Whether there was a file in its place.
        bool doesReplace;
        bool mayOverwrite;
    };

    QString Made(int number) const;
    QString Old(int number) const;
    std::error_code PutInPlace(int number) const;
    std::error_code Overwrite(int number) const;
    bool PutBack(int number) const;
    bool HasFailed(int number, const std::error_code& error);
    bool PlaceAll();
    bool IsUntouched() const;
    bool UndoAll() const;

    QString m_main;
    QVector<File> m_files;
    bool m_isUndone = false;
    QString m_failedPlace;
    std::error_code m_error;
};

/// The workplace that one leads to; itself when it is the main one.
QString MainWorkplace(const QString& workplace);
/// Makes a workplace lead to the main one.
std::error_code LeadTo(const QString& mainWorkplace, const QString& workplace);
/// Removes what a program makes in a workplace, and the folder when nothing else is in it.
void RemoveWorkplace(const QString& workplace);
