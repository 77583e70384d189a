#pragma once

#include <QString>
#include <QStringList>

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

/// Removes the journal of a dead session. Only files that a journal has are removed, from a folder
/// directly in Folder(). False when something is left.
bool Discard(const QString& folder);
/// Moves the journal of a dead session to a path where there is nothing yet; folders above it are
/// made. When it fails, the journal stays.
bool MoveTo(const QString& folder, const QString& target);

/// Whether a living session has unsaved changes of the project. ownFolder: the caller's journal,
/// which does not count.
bool IsBeingEdited(const QString& projectPath, const QString& ownFolder = {});

} // namespace Recovery
