#pragma once

#include <QtGlobal>

constexpr quint64 AMebibyte = 1 << 20;

/// While it lives, this process gets no more than this many bytes of address space on top of what
/// it has: large allocations fail, small ones do not.
class MemoryLimit
{
public:
    explicit MemoryLimit(quint64 byteCount);
    ~MemoryLimit();
    Q_DISABLE_COPY(MemoryLimit)

private:
    quint64 m_limitBefore;
};

/// How many bytes of this process's memory exist at the moment.
quint64 ResidentMemory();
