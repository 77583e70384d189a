#pragma once

#include <QIODevice>
#include <QString>
#include <QStringList>

#include <functional>

class QFile;
class QXmlStreamReader;

/// As OpenForReading, after finishing what a killed save left there.
QString OpenInput(QFile& file, QIODevice::OpenMode flags = QIODevice::NotOpen);

/// Reads a document to its end and calls the function for each start element. The function may read
/// further. Returns what is wrong with the document; empty if nothing is.
QString WalkDocument(QFile& file, const std::function<void(QXmlStreamReader&)>& takeElement);

/// Returns true after printing an error if the target is the same file as one of the inputs, under
/// any name or link.
bool IsInput(const QString& target, const QStringList& inputs);
