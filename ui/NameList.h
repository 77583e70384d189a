#pragma once

#include <QString>
#include <QStringList>

/// The names in one line, such as "Lake, Coast"; only the first of many, and then how many more
/// there are: "A, B, C, D, E and 12 more".
QString NameList(const QStringList& names);
