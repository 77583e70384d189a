#pragma once

#include <QString>
#include <QStringList>

/// What a name or a reason that comes from a file shows in a text of the window: in one line, and
/// when it is longer than so many characters, its beginning. Files may hold line ends and texts of
/// any length, and a long word makes the window wide.
QString ShortText(const QString& text, int length = 40);

/// The names in one line, such as "Lake, Coast", each as a ShortText; only the first of many, and
/// then how many more there are: "A, B, C, D, E and 12 more".
QString NameList(const QStringList& names);
