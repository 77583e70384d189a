#pragma once

#include <QtGlobal>

constexpr quint64 AMebibyte = 1 << 20;

/// While this object exists, this process gets at most this many more bytes of address space. Large
/// allocations fail, small ones do not.
class MemoryLimit
{
public:
    explicit MemoryLimit(quint64 byteCount);
    ~MemoryLimit();
    Q_DISABLE_COPY(MemoryLimit)

private:
    quint64 m_limitBefore;
};

/// The resident memory of this process in bytes.
quint64 ResidentMemory();
