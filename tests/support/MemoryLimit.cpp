#include "tests/support/MemoryLimit.h"

#include "tests/support/Files.h"

#include <QByteArrayList>

#include <sys/resource.h>
#include <unistd.h>

namespace {

quint64 UsedAddressSpace()
{
    const QByteArray pageCount = ReadBytes(QStringLiteral("/proc/self/statm")).split(' ').value(0);
    return pageCount.toULongLong() * static_cast<quint64>(sysconf(_SC_PAGESIZE));
}

} // namespace

MemoryLimit::MemoryLimit(quint64 byteCount)
{
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    m_limitBefore = limit.rlim_cur;
    limit.rlim_cur = UsedAddressSpace() + byteCount;
    if (setrlimit(RLIMIT_AS, &limit) != 0) {
        qFatal("Cannot limit the address space.");
    }
}

MemoryLimit::~MemoryLimit()
{
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = m_limitBefore;
    setrlimit(RLIMIT_AS, &limit);
}
