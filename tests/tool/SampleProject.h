#pragma once

#include "tests/support/Program.h"

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

class QProcess;

/// A small valid project in a temporary folder, which tests can break, and functions that run the
/// tool on it.
class SampleProject
{
public:
    SampleProject();

    /// The path of a file in the project's folder.
    QString Path(const QString& fileName) const { return m_folder.filePath(fileName); }
    /// Replaces text in the document, which must contain it.
    void Replace(const QByteArray& before, const QByteArray& after);
    /// Writes the bitmap of a layer, with one character a pixel as in MaskFromArt.
    void Paint(const QString& layer, const QStringList& rows) const;

    /// Runs the tool in the project's folder.
    ProgramRun Run(const QStringList& arguments) const;
    /// The same, after a shell command that limits the tool.
    ProgramRun RunLimited(const QString& limit, const QStringList& arguments) const;
    /// The same without waiting for its end.
    void Start(QProcess& process, const QString& limit, const QStringList& arguments) const;

private:
    QTemporaryDir m_folder;
    QByteArray m_document;
};

/// Lets each of the commands read a file with these bytes (null bytes mean that there is no file),
/// and fails the test unless all end with 3 and this line.
void CheckIsUnreadable(const QStringList& commands, const QString& file, const QByteArray& bytes,
                       const QString& error);
