#include "tool/OutputSet.h"

#include "app/OutputFile.h"
#include "platform/Files.h"
#include "tool/Console.h"
#include "tool/Interruption.h"

#include <QDir>
#include <QFileInfo>

namespace {

QString Text(const std::error_code& error)
{
    return QString::fromLocal8Bit(error.message().c_str());
}

} // namespace

OutputSet::OutputSet(const QString& folder)
    : m_folder(folder)
    , m_files(std::make_unique<FileGroup>())
{
}

OutputSet::~OutputSet()
{
    m_files.reset();
    for (int i = m_isDone ? 0 : m_madeFolders.size(); i > 0; --i) {
        QDir().rmdir(m_madeFolders.at(i - 1));
    }
}

QString OutputSet::Target(const QString& name) const
{
    const QString path = QDir(m_folder).filePath(name);
    // ".." after a link does not lead to the folder that contains the link.
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
    if (!QFileInfo(path).isDir()) {
        std::error_code error;
        if (!std::filesystem::create_directory(platform::ToPath(path), error)) {
            Console::PrintError(
                path, QStringLiteral("the folder cannot be created: %1.").arg(Text(error)));
            return false;
        }
        m_madeFolders.append(path);
    }
    return true;
}

QFile* OutputSet::Add(const QString& name)
{
    const QString target = Target(name);
    if (!MakeFolder(QFileInfo(target).path())) {
        return nullptr;
    }
    const QString place = FollowedPath(target);
    const QFileInfo info(place);
    if (place.isEmpty()) {
        Console::PrintError(
            target, QStringLiteral("cannot be written: it leads to a folder that does not exist."));
        return nullptr;
    }
    if (info.exists() && !info.isFile()) {
        Console::PrintError(target, QStringLiteral("cannot be written: it is no file."));
        return nullptr;
    }
    m_targets[place] = target;
    QFile* file = m_files->Add(place);
    if (!file) {
        Console::PrintError(info.path(),
                            QStringLiteral("nothing can be written into the folder: %1.")
                                .arg(Text(m_files->Error())));
    }
    return file;
}

bool OutputSet::Commit()
{
    if (Interruption::HasCome()) {
        return false;
    }
    m_isDone = m_files->Commit();
    if (!m_isDone) {
        const QString place = m_files->FailedPlace();
        Console::PrintError(m_targets.value(place, place),
                            QStringLiteral("cannot be written: %1.").arg(Text(m_files->Error())));
    }
    return m_isDone;
}
