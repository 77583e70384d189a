#pragma once

#include <QIcon>
#include <QObject>
#include <QString>
#include <QVariant>

/// The root or its descendant of that name. Null if there is none or more than one.
QObject* FormObject(QObject& root, const QString& name);

/// Checks one row of a form's table: the object has the class and, if a property is given, the
/// property has the value. Fails the running test otherwise.
void CheckForm(QObject& root, const QString& name, const QString& className,
               const QByteArray& property = {}, const QVariant& value = {});

/// Whether the icon shows, at 16 and 24 pixels, the picture of that path in the resources.
bool ShowsIcon(const QIcon& icon, const QString& path);
