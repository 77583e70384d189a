#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVector>

/// The content of the file; null if it cannot be read.
QByteArray ReadBytes(const QString& path);
/// The bytes of every file below the folder, by relative path, including hidden files. Folders have
/// a slash at the end and no bytes.
QMap<QString, QByteArray> FilesBelow(const QString& folder);
/// Creates the file's folder too. Aborts if the file cannot be written.
void WriteBytes(const QString& path, const QByteArray& bytes);
/// Makes what a program leaves in the folder that is killed just before it puts a file in its
/// place.
void LeaveKilledSave(const QString& folder, const QString& name, const QByteArray& bytes);

/// 32 bits of each value, the lowest byte first.
QByteArray Ints(const QVector<qint64>& values);
