#include "tests/support/FailingDisk.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <sys/resource.h>

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
