#pragma once

#include <QString>
#include <QStringList>

/// Texts about a project that are kept in the user's settings, by the path of the project's
/// document, and never in the project. Each group holds a list for each project.
namespace ProjectNotes {

/// Empty when there are none.
QStringList Read(const QString& group, const QString& path);
/// Replaces the list; an empty one leaves nothing behind.
void Write(const QString& group, const QString& path, const QStringList& texts);

} // namespace ProjectNotes
