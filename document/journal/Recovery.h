#pragma once

#include <QString>
#include <QStringList>

#include <memory>

/// The journals of this user: those of dead sessions, which can be restored, and those of living
/// ones. Links in the folder are not followed.
namespace Recovery {

/// The folder that holds the journals, whether or not it exists; empty where the system has no
/// place for the application's data.
QString Folder();

/// The folders of journals whose sessions have ended, the newest change first. Does not read their
/// logs, so JournalReader may refuse some. What a killed session left before its first commit is
/// removed.
QStringList DeadJournals();

/// Keeps other sessions from a journal of a dead session. Null when another one holds it, or when
/// the folder is no journal.
std::shared_ptr<void> Lock(const QString& folder);
/// Removes the journal of a dead session. Only files that a journal has are removed, from a folder
/// directly in Folder(). lock: from Lock(). False when something is left.
bool Discard(const QString& folder, std::shared_ptr<void> lock);
inline bool Discard(const QString& folder)
{
    return Discard(folder, Lock(folder));
}

} // namespace Recovery
