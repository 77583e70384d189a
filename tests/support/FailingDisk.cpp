#include "tests/support/FailingDisk.h"

#include <QFile>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <string_view>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::atomic<bool> doRenamesFail{false};
std::atomic<bool> areUnnamedFilesMissing{false};
/// How many changes of names are left to be made before the process ends; negative for ever.
std::atomic<int> stepsLeft{-1};

void TakeStep()
{
    if (stepsLeft >= 0 && stepsLeft-- == 0) {
        _exit(DeadExitCode);
    }
}

} // namespace

// These stand in for the C library's functions in every program that uses this file.

extern "C" int rename(const char* from, const char* to) noexcept
{
    TakeStep();
    if (doRenamesFail) {
        errno = EIO;
        return -1;
    }
    return renameat(AT_FDCWD, from, AT_FDCWD, to);
}

extern "C" int linkat(int fromFolder, const char* from, int toFolder, const char* to,
                      int flags) noexcept
{
    TakeStep();
    return static_cast<int>(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

extern "C" int link(const char* from, const char* to) noexcept
{
    TakeStep();
    return static_cast<int>(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

extern "C" int unlink(const char* path) noexcept
{
    TakeStep();
    return unlinkat(AT_FDCWD, path, 0);
}

extern "C" int rmdir(const char* path) noexcept
{
    TakeStep();
    return unlinkat(AT_FDCWD, path, AT_REMOVEDIR);
}

extern "C" int mkdir(const char* path, mode_t mode) noexcept
{
    TakeStep();
    return mkdirat(AT_FDCWD, path, mode);
}

extern "C" int faccessat(int folder, const char* path, int mode, int flags) noexcept
{
    // Files without names are given them by way of this folder.
    if (areUnnamedFilesMissing && std::string_view(path) == "/proc/self/fd") {
        errno = ENOENT;
        return -1;
    }
    return static_cast<int>(syscall(SYS_faccessat2, folder, path, mode, flags));
}

/// What a killed process wrote is there without it; only machines that stop need it.
extern "C" int fsync(int /*file*/)
{
    return 0;
}

void DieBeforeStep(int number)
{
    stepsLeft = number;
}

bool IsKilled(int number, const std::function<bool()>& run)
{
    const pid_t child = fork();
    if (child == 0) {
        DieBeforeStep(number);
        const bool isDone = run();
        DieBeforeStep(-1);
        _exit(isDone ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (code != 0 && code != DeadExitCode) {
        qFatal("A step failed.");
    }
    return code == DeadExitCode;
}

NoUnnamedFiles::NoUnnamedFiles()
{
    areUnnamedFilesMissing = true;
}

NoUnnamedFiles::~NoUnnamedFiles()
{
    areUnnamedFilesMissing = false;
}

FileSizeLimit::FileSizeLimit(quint64 byteCount)
{
    // A write beyond the limit must fail instead of ending the program.
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

FolderOfMode::FolderOfMode(const QString& path, mode_t mode)
    : m_path(QFile::encodeName(path))
    , m_userBefore(geteuid())
{
    constexpr uid_t nobody = 65534;
    if (chmod(m_path.constData(), mode) != 0 || (m_userBefore == 0 && seteuid(nobody) != 0)) {
        qFatal("Cannot change the permissions of a folder.");
    }
}

FolderOfMode::~FolderOfMode()
{
    if (seteuid(m_userBefore) != 0 || chmod(m_path.constData(), 0700) != 0) {
        qFatal("Cannot give a folder its permissions back.");
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

void FillUp(const QString& folder)
{
    QFile filler(folder + QStringLiteral("/filler"));
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        qFatal("Cannot fill a disk.");
    }
    while (filler.write(QByteArray(1024, 'x')) == 1024) {}
}
