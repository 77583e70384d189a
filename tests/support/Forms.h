#pragma once

#include <QIcon>
#include <QObject>
#include <QString>
#include <QVariant>

/// The root itself or its descendant of that name; null when there is none, or more than one.
QObject* FormObject(QObject& root, const QString& name);

/// One row of a form's table: that the object is of the class and, where a property is named, that
/// it has the value. Fails the running test with what is wrong.
void CheckForm(QObject& root, const QString& name, const QString& className,
               const QByteArray& property = {}, const QVariant& value = {});

/// Whether the icon shows, at 16 and 24 pixels, the picture of that path in the resources.
bool ShowsIcon(const QIcon& icon, const QString& path);
