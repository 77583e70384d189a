#include "tool/OutputSet.h"

#include "tool/Console.h"
#include "tool/Interruption.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace {

/// Replaces an existing file, unlike the toolkit's.
bool Rename(const QString& from, const QString& to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

OutputSet::OutputSet(const QString& folder)
    : m_folder(QDir::cleanPath(folder))
{
}

OutputSet::~OutputSet()
{
    m_workplace.reset();
    for (int i = m_isDone ? 0 : m_madeFolders.size(); i > 0; --i) {
        QDir().rmdir(m_madeFolders.at(i - 1));
    }
}

QString OutputSet::Target(const QString& name) const
{
    return QDir::cleanPath(QDir(m_folder).filePath(name));
}

bool OutputSet::MakeFolder(const QString& path)
{
    const QString parent = QFileInfo(path).path();
    if (QFileInfo(path).isDir() || parent == path) {
        return true;
    }
    if (!MakeFolder(parent)) {
        return false;
    }
    if (!QDir().mkdir(path)) {
        Console::PrintError(path, QStringLiteral("the folder cannot be created."));
        return false;
    }
    m_madeFolders.append(path);
    return true;
}

bool OutputSet::Open()
{
    if (!MakeFolder(m_folder)) {
        return false;
    }
    m_workplace = std::make_unique<QTemporaryDir>(
        QDir(m_folder).filePath(QStringLiteral(".quillmap-XXXXXX")));
    if (!m_workplace->isValid()) {
        Console::PrintError(m_folder, QStringLiteral("nothing can be written into the folder: %1.")
                                          .arg(m_workplace->errorString()));
        return false;
    }
    return true;
}

bool OutputSet::Place(const QString& name)
{
    const QString target = Target(name);
    const QFileInfo info(target);
    if (!MakeFolder(info.path())) {
        return false;
    }
    Placed placed{target, {}};
    if (info.exists() || info.isSymLink()) {
        if (!info.isFile() && !info.isSymLink()) {
            Console::PrintError(target, QStringLiteral("cannot be written: it is no file."));
            return false;
        }
        placed.old = m_workplace->filePath(QStringLiteral("old-%1").arg(m_placed.size()));
        if (!Rename(target, placed.old)) {
            Console::PrintError(target, QStringLiteral("cannot be replaced."));
            return false;
        }
    }
    m_placed.append(placed);
    if (!Rename(m_workplace->filePath(name), target)) {
        Console::PrintError(target, QStringLiteral("cannot be written."));
        return false;
    }
    return true;
}

void OutputSet::PutBack()
{
    for (const Placed& placed : qAsConst(m_placed)) {
        if (placed.old.isEmpty()) {
            QFile::remove(placed.target);
        } else {
            Rename(placed.old, placed.target);
        }
    }
}

bool OutputSet::Commit(const QStringList& names)
{
    for (const QString& name : names) {
        if (Interruption::HasCome() || !Place(name)) {
            PutBack();
            return false;
        }
    }
    m_isDone = true;
    return true;
}
