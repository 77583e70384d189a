#pragma once

#include <QPointF>
#include <QSize>

class EditorUser;
class QDir;
class QString;

// Pictures of the docks that the menus Project, Zones and Go show. Each function leaves the window
// as it was, at the size WindowSize.

constexpr QSize WindowSize(1060, 740);
constexpr int PatienceMilliseconds = 30000;

void Load(EditorUser& user, const QString& project);

/// A dock that follows the mouse in the map. place: where the mouse is, in scene units.
void ShowMapDock(EditorUser& user, const char* action, const char* name, QPointF place,
                 const QDir& pictures, const QString& picture);
void ShowZoneTable(EditorUser& user, const QDir& pictures);
/// The dock Numbers, and the colours of creatures.
void ShowNumbers(EditorUser& user, const QDir& pictures);
/// Writes a copy of the example's document with mistakes and loads it.
void ShowProblems(EditorUser& user, const QDir& example, const QDir& pictures);
