#include "tests/support/MemoryLimit.h"

#include "tests/support/Files.h"

#include <QByteArrayList>

#include <sys/resource.h>
#include <unistd.h>

namespace {

/// One of the page counts of this process, in bytes.
quint64 CountedMemory(int index)
{
    const QByteArray counts = ReadBytes(QStringLiteral("/proc/self/statm"));
    return counts.split(' ').value(index).toULongLong() *
           static_cast<quint64>(sysconf(_SC_PAGESIZE));
}

quint64 UsedAddressSpace()
{
    return CountedMemory(0);
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

quint64 ResidentMemory()
{
    return CountedMemory(1);
}
