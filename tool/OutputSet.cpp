#include "tool/OutputSet.h"

#include "tool/Console.h"
#include "tool/Interruption.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

/// Replaces an existing file, unlike the toolkit's.
bool Rename(const QString& from, const QString& to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

/// A second name for the old file, so that the first one is there all the time; where links are not
/// supported the file is moved.
bool KeepOld(const QString& from, const QString& to)
{
    return link(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0 ||
           Rename(from, to);
}

QString LastError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// Without links in its folders, behind which ".." would be misread; empty without the folder.
QString WithRealFolder(const QString& path)
{
    const QFileInfo info(path);
    const QString folder = QFileInfo(info.path()).canonicalFilePath();
    return folder.isEmpty() ? QString() : folder + QLatin1Char('/') + info.fileName();
}

/// What a link leads to, whether or not that exists; empty when its folder does not.
QString Followed(const QString& path)
{
    constexpr int maxLinks = 40;
    QString followed = WithRealFolder(path);
    for (int i = 0; i < maxLinks && QFileInfo(followed).isSymLink(); ++i) {
        followed = WithRealFolder(QFileInfo(followed).symLinkTarget());
    }
    return followed;
}

} // namespace

OutputSet::OutputSet(const QString& folder)
    : m_folder(folder)
{
}

OutputSet::~OutputSet()
{
    m_workplaces.clear();
    for (int i = m_isDone ? 0 : m_madeFolders.size(); i > 0; --i) {
        QDir().rmdir(m_madeFolders.at(i - 1));
    }
}

QString OutputSet::Target(const QString& name) const
{
    const QString path = QDir(m_folder).filePath(name);
    // Behind a link ".." leads elsewhere than to the folder that the link is in.
    return m_folder.contains(QLatin1String("..")) ? path : QDir::cleanPath(path);
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
    constexpr mode_t everything = 0777;
    if (!QFileInfo(path).isDir()) {
        if (mkdir(QFile::encodeName(path).constData(), everything) != 0) {
            Console::PrintError(
                path, QStringLiteral("the folder cannot be created: %1.").arg(LastError()));
            return false;
        }
        m_madeFolders.append(path);
    }
    return true;
}

QString OutputSet::Workplace(const QString& folder)
{
    std::unique_ptr<QTemporaryDir>& workplace = m_workplaces[folder];
    if (!workplace) {
        workplace = std::make_unique<QTemporaryDir>(folder + QStringLiteral("/.quillmap-XXXXXX"));
    }
    if (!workplace->isValid()) {
        Console::PrintError(folder, QStringLiteral("nothing can be written into the folder: %1.")
                                        .arg(workplace->errorString()));
        return {};
    }
    return workplace->path();
}

QString OutputSet::Add(const QString& name)
{
    File file;
    file.target = Target(name);
    if (!MakeFolder(QFileInfo(file.target).path())) {
        return {};
    }
    file.place = Followed(file.target);
    const QFileInfo info(file.place);
    if (file.place.isEmpty()) {
        Console::PrintError(
            file.target,
            QStringLiteral("cannot be written: it leads to a folder that does not exist."));
        return {};
    }
    if (info.exists() && !info.isFile()) {
        Console::PrintError(file.target, QStringLiteral("cannot be written: it is no file."));
        return {};
    }
    const QString workplace = Workplace(info.path());
    if (workplace.isEmpty()) {
        return {};
    }
    file.made = QStringLiteral("%1/new-%2").arg(workplace).arg(m_files.size());
    if (info.exists()) {
        file.old = QStringLiteral("%1/old-%2").arg(workplace).arg(m_files.size());
    }
    m_files.append(file);
    return file.made;
}

bool OutputSet::Place(File& file)
{
    bool isKept = true;
    if (!file.old.isEmpty()) {
        QFile::setPermissions(file.made, QFile::permissions(file.place));
        isKept = KeepOld(file.place, file.old);
    }
    file.isPlaced = isKept && Rename(file.made, file.place);
    if (!file.isPlaced) {
        Console::PrintError(file.target, QStringLiteral("cannot be written: %1.").arg(LastError()));
    }
    return file.isPlaced;
}

void OutputSet::PutBack()
{
    // From the last on: links may lead two of them to one place.
    for (int i = m_files.size(); i > 0; --i) {
        const File& file = m_files.at(i - 1);
        if (!file.old.isEmpty()) {
            // Nothing happens where the old one was not kept yet.
            Rename(file.old, file.place);
        } else if (file.isPlaced) {
            QFile::remove(file.place);
        }
    }
}

bool OutputSet::Commit()
{
    for (File& file : m_files) {
        if (Interruption::HasCome() || !Place(file)) {
            PutBack();
            return false;
        }
    }
    m_isDone = true;
    return true;
}
