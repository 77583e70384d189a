#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <system_error>

/// What is to be done with files that take their places together, on the disk before the first of
/// them does. Each folder that one of them goes to has a hidden folder in it, a workplace, with the
/// new file N as "new-N", and the one that it replaces as "old-N" from that moment on. The first
/// workplace, the main one, holds the record: "record" while the new files are to get to their
/// places, "undo" while the old ones are to get back. Without a record nothing is to be done. The
/// other workplaces lead to the main one by a file "main".
class GroupRecord
{
public:
    explicit GroupRecord(const QString& mainWorkplace)
        : m_main(mainWorkplace)
    {
    }

    /// The next file: it is in the workplace, and takes this name in the folder of the workplace.
    void Add(const QString& workplace, const QString& name);
    /// Where the next file is to be made, in its workplace.
    QString NextFile(const QString& workplace) const;
    QStringList Workplaces() const;

    const QString& Main() const { return m_main; }

    /// From now on whoever finds the workplaces goes on from here.
    std::error_code Write() const;
    /// Whether there is something to be done.
    bool IsWritten() const;
    /// What a killed program wrote. False when there is nothing, or nothing that it would write.
    bool Read();

    /// Puts all files in their places, or all old ones back when that fails; what was done before
    /// by another one is not done again. Then removes the record, and returns whether it is gone.
    bool Carry();
    /// The number of the file that did not get to its place and why; -1 when none failed.
    int FailedFile() const { return m_failedFile; }
    std::error_code Error() const { return m_error; }

private:
    struct File
    {
        QString workplace;
        QString name;
        /// Whether there was a file in its place.
        bool doesReplace;
    };

    QString Place(int number) const;
    QString Made(int number) const;
    QString Old(int number) const;
    std::error_code PutInPlace(int number) const;
    bool PutBack(int number) const;
    bool PlaceAll();
    bool UndoAll() const;

    QString m_main;
    QVector<File> m_files;
    bool m_isUndone = false;
    int m_failedFile = -1;
    std::error_code m_error;
};

/// The workplace that one leads to; itself when it is the main one.
QString MainWorkplace(const QString& workplace);
/// Makes a workplace lead to the main one.
std::error_code LeadTo(const QString& mainWorkplace, const QString& workplace);
/// Removes what a program makes in a workplace, and the folder when nothing else is in it.
void RemoveWorkplace(const QString& workplace);
