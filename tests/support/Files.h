#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVector>

/// The whole file; null when it cannot be read.
QByteArray ReadBytes(const QString& path);
/// The bytes of every file below the folder, hidden ones too, by its path in there. Folders are in
/// it with a slash behind the name and no bytes.
QMap<QString, QByteArray> FilesBelow(const QString& folder);
/// Creates the file's folder too. Stops the program when the file cannot be written.
void WriteBytes(const QString& path, const QByteArray& bytes);

/// 32 bits of each value, the lowest byte first.
QByteArray Ints(const QVector<qint64>& values);
