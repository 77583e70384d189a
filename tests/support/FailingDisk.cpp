#include "tests/support/FailingDisk.h"

#include <QFile>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::atomic<bool> doRenamesFail{false};

} // namespace

/// Stands in for the C library's function in every program that uses RenamesFail.
extern "C" int rename(const char* from, const char* to) noexcept
{
    if (doRenamesFail) {
        errno = EIO;
        return -1;
    }
    return renameat(AT_FDCWD, from, AT_FDCWD, to);
}

FileSizeLimit::FileSizeLimit(quint64 byteCount)
{
    // A write beyond the limit shall fail instead of ending the program.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    m_limitBefore = limit.rlim_cur;
    limit.rlim_cur = byteCount;
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) {
        qFatal("Cannot limit the size of files.");
    }
}

FileSizeLimit::~FileSizeLimit()
{
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = m_limitBefore;
    setrlimit(RLIMIT_FSIZE, &limit);
}

RenamesFail::RenamesFail()
{
    doRenamesFail = true;
}

RenamesFail::~RenamesFail()
{
    doRenamesFail = false;
}

ReadOnlyFolder::ReadOnlyFolder(const QString& path)
    : m_path(QFile::encodeName(path))
    , m_userBefore(geteuid())
{
    constexpr uid_t nobody = 65534;
    if (chmod(m_path.constData(), 0555) != 0 || (m_userBefore == 0 && seteuid(nobody) != 0)) {
        qFatal("Cannot make a folder read-only.");
    }
}

ReadOnlyFolder::~ReadOnlyFolder()
{
    if (seteuid(m_userBefore) != 0 || chmod(m_path.constData(), 0700) != 0) {
        qFatal("Cannot make a folder writable again.");
    }
}

SmallDisk::SmallDisk(const QString& folder, int byteCount)
    : m_folder(QFile::encodeName(folder))
{
    const QByteArray options = "size=" + QByteArray::number(byteCount);
    m_isThere = mount("tmpfs", m_folder.constData(), "tmpfs", 0, options.constData()) == 0;
}

SmallDisk::~SmallDisk()
{
    if (m_isThere) {
        umount2(m_folder.constData(), MNT_DETACH);
    }
}
