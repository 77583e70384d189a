#pragma once

#include <QIODevice>
#include <QString>
#include <QStringList>

#include <functional>

class QFile;
class QXmlStreamReader;

/// Opens a file to be read, unless it is a folder, a pipe or a device. What is wrong with it; empty
/// when it is open.
QString OpenInput(QFile& file, QIODevice::OpenMode flags = QIODevice::NotOpen);

/// Walks a document to its end, handing each start element to the function, which may read on from
/// there. What is wrong with the document; empty when nothing is.
QString WalkDocument(QFile& file, const std::function<void(QXmlStreamReader&)>& takeElement);

/// True, after a printed error, when to write the target would overwrite a file that is read: one
/// of the inputs, by whatever name or link.
bool IsInput(const QString& target, const QStringList& inputs);
