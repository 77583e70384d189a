#pragma once

#include <QByteArray>
#include <QString>

/// The whole file; null when it cannot be read.
QByteArray ReadBytes(const QString& path);
/// Creates the file's folder too. Stops the program when the file cannot be written.
void WriteBytes(const QString& path, const QByteArray& bytes);
