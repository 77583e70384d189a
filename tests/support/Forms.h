#pragma once

#include <QIcon>
#include <QObject>
#include <QString>

/// The form as a text: a line for each named object, "Class name: property value, ...", and its
/// children below it, indented. Left out are properties that a new object of Qt's class has too,
/// and what depends on fonts or on the platform. Docks in a window are not entered.
QString FormText(const QObject& root);

/// The path in the resources of the picture that the icon shows at 16 and 24 pixels. Empty for no
/// icon, "another picture" for one that is not in the resources.
QString IconPath(const QIcon& icon);
