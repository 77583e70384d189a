#include "document/FileWatch.h"

#include "document/Document.h"

#include <QFileInfo>

#include <algorithm>

namespace {

constexpr int QuietMilliseconds = 1000;

void NoteAll(KnownFiles& files, const QStringList& paths)
{
    for (const QString& path : paths) {
        files.Note(path);
    }
}

/// The paths as the watcher names them, without "..".
QStringList Cleaned(QStringList paths)
{
    for (QString& path : paths) {
        path = QFileInfo(path).absoluteFilePath();
    }
    return paths;
}

bool HasAnyChanged(const KnownFiles& files)
{
    const QStringList paths = files.Paths();
    return std::any_of(paths.begin(), paths.end(),
                       [&files](const QString& path) { return files.HasChanged(path); });
}

/// The files that are there, and all folders above the files: a file or a folder that is replaced,
/// or comes back, is seen only from the folder that it is in.
QStringList PathsToWatch(const QStringList& files)
{
    QStringList paths;
    for (const QString& path : files) {
        QFileInfo file(path);
        while (!paths.contains(file.absoluteFilePath())) {
            // What cannot be read cannot be watched, and would be asked for again and again.
            if (file.isReadable()) {
                paths.append(file.absoluteFilePath());
            }
            if (file.isRoot()) {
                break;
            }
            file.setFile(file.absolutePath());
        }
    }
    return paths;
}

} // namespace

FileWatch::FileWatch(const Document& document)
    : m_document(document)
{
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(QuietMilliseconds);
    connect(&m_quiet, &QTimer::timeout, this, &FileWatch::Look);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &FileWatch::NoteFile);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &FileWatch::NoteFolder);
    connect(&document, &Document::FilesNoted, this, &FileWatch::Begin);
    Begin();
}

void FileWatch::Begin()
{
    m_quiet.stop();
    m_seen.Clear();
    m_told = m_document.Files();
    Watch();
    if (HasAnyChanged(m_told)) {
        // They were written before the watch began.
        NoteFolder();
    }
}

void FileWatch::Watch()
{
    const QStringList old = m_watcher.files() + m_watcher.directories();
    if (!old.isEmpty()) {
        m_watcher.removePaths(old);
    }
    const QStringList paths = PathsToWatch(m_document.Files().Paths());
    if (!paths.isEmpty()) {
        m_watcher.addPaths(paths);
    }
}

void FileWatch::NoteFile(const QString& path)
{
    m_seen.Note(path);
    m_quiet.start();
}

/// Something changed in a folder, maybe none of the files. A folder where other programs are always
/// busy must not put the look off for ever.
void FileWatch::NoteFolder()
{
    if (!m_quiet.isActive()) {
        NoteAll(m_seen, Cleaned(m_document.Files().Paths()));
        m_quiet.start();
    }
}

void FileWatch::Look()
{
    // The folders may be other ones by now.
    Watch();
    const QStringList paths = m_document.Files().Paths();
    if (m_document.IsBusy() || HasAnyChanged(m_seen)) {
        NoteAll(m_seen, Cleaned(paths));
        m_quiet.start();
        return;
    }
    emit Rested();
    if (!HasAnyChanged(m_told)) {
        return;
    }
    NoteAll(m_told, paths);
    ForeignChanges changes;
    for (const QString& path : paths) {
        if (m_document.Files().HasChanged(path)) {
            (QFileInfo(path).isFile() ? changes.changed : changes.removed).append(path);
        }
    }
    emit Changed(changes);
}
