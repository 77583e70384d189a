#pragma once

#include "document/KnownFiles.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QStringList>
#include <QTimer>

class Document;

/// What other programs did to the files of the open project.
struct ForeignChanges
{
    /// Absolute paths: the document, bitmaps of layers and the background picture.
    QStringList changed;
    /// Files that no longer exist.
    QStringList removed;

    bool IsEmpty() const { return changed.isEmpty() && removed.isEmpty(); }
};

/// Watches the files of the open project and their folders. It tells what other programs did once
/// the files have been quiet for a second, and never while the hand is at work or the program reads
/// or writes files itself. The document's Files() say what the files were like before.
class FileWatch : public QObject
{
    Q_OBJECT

public:
    /// The document outlives the watch.
    explicit FileWatch(const Document& document);

signals:
    /// Something was written in a watched folder, and the project's files have been quiet since. It
    /// may have been another file.
    void Rested();
    /// Files changed again since the last signal. Empty when they are back as they were.
    void Changed(const ForeignChanges& changes);

private:
    void Begin();
    void Watch();
    void NoteFile(const QString& path);
    void NoteFolder();
    void Look();

    const Document& m_document;
    QFileSystemWatcher m_watcher;
    QTimer m_quiet;
    /// The files as they were when one of them changed last.
    KnownFiles m_seen;
    /// The files as they were when their changes were told.
    KnownFiles m_told;
};
