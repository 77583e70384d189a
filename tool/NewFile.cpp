#include "tool/NewFile.h"

bool NewFile::Open()
{
    return m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

bool NewFile::WriteAt(qint64 offset, const void* bytes, qint64 count)
{
    if (!m_file.seek(offset)) {
        return false;
    }
    // A disk that gets full takes a part, and tells what is wrong only when asked to take more.
    const char* rest = static_cast<const char*>(bytes);
    while (count > 0) {
        const qint64 taken = m_file.write(rest, count);
        if (taken <= 0) {
            return false;
        }
        rest += taken;
        count -= taken;
    }
    return true;
}
