#pragma once

#include "document/journal/JournalFormat.h"

#include <QString>

#include <memory>
#include <optional>
#include <system_error>

class QFile;

/// Private folders and files in the application's data folder. Links in them are never followed.
namespace journal {

/// A folder in the application's data folder, whether or not it exists; empty where the system has
/// no place for the application's data.
QString DataFolder(const QString& name);
/// Where the path leads, so that the same file has the same path.
QString SamePath(const QString& path);
/// Makes the folder and those above it that are missing, each for this user only. It may exist.
std::error_code MakePrivate(const QString& folder);
/// The same, but fails with file_exists when there is something.
std::error_code MakeNewPrivate(const QString& folder);

/// Makes a file for this user only, for reading and writing without a buffer. Fails when there is
/// something.
bool OpenNew(QFile& file);
/// Opens a regular file for reading; fails for a link, a pipe and the like.
bool OpenPlain(QFile& file);
/// The content of a regular file that is not longer; nothing for any other.
std::optional<QByteArray> ReadPlain(const QString& path, qint64 maxLength);
/// The SHA-1 hash of the rest of the file; null when it cannot be read.
QByteArray HashRest(QFile& file);
/// What the session file of a journal folder says; nothing when it is no such file.
std::optional<JournalHeader> ReadHeader(const QString& folder);

/// Removes the files that a journal has, the lock, and the folder. After a kill in between, the
/// rest of the journal restores nothing. False when something is left.
bool RemoveFolder(const QString& folder, std::shared_ptr<void> lock);
/// Moves the folder of a journal to a path where there is nothing yet, also to another disk. The
/// lock does not go along. When it fails, the folder stays, and the lock is given up.
std::error_code MoveFolder(const QString& folder, const QString& target,
                           std::shared_ptr<void> lock);

} // namespace journal
