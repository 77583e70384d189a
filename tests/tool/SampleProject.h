#pragma once

#include "tests/support/Program.h"

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

class QProcess;

/// A small good project in a folder of its own, which tests break, and runs of the tool beside it.
class SampleProject
{
public:
    SampleProject();

    /// Of a file in the project's folder.
    QString Path(const QString& fileName) const { return m_folder.filePath(fileName); }
    /// Replaces text in the document, which must hold it.
    void Replace(const QByteArray& before, const QByteArray& after);
    /// Writes the bitmap of a layer, of one character a pixel as MaskFromArt has it.
    void Paint(const QString& layer, const QStringList& rows) const;

    /// Runs the tool in the project's folder.
    ProgramRun Run(const QStringList& arguments) const;
    /// The same behind a command of the shell that takes something away from the tool.
    ProgramRun RunLimited(const QString& limit, const QStringList& arguments) const;
    /// The same without waiting for its end.
    void Start(QProcess& process, const QString& limit, const QStringList& arguments) const;

private:
    QTemporaryDir m_folder;
    QByteArray m_document;
};

/// Has each of the commands read a file with these bytes (no file is written when they are null),
/// and fails the test unless all end with 3 and this line.
void CheckIsUnreadable(const QStringList& commands, const QString& file, const QByteArray& bytes,
                       const QString& error);
