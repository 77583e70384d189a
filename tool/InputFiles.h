#pragma once

#include <QIODevice>
#include <QString>
#include <QStringList>

class QFile;

/// Opens a file to be read, unless it is a folder, a pipe or a device. What is wrong with it; empty
/// when it is open.
QString OpenInput(QFile& file, QIODevice::OpenMode flags = QIODevice::NotOpen);

/// True, after a printed error, when to write the target would overwrite a file that is read: one
/// of the inputs, by whatever name or link.
bool IsInput(const QString& target, const QStringList& inputs);
