#include "app/WriteAll.h"

#include <QFileDevice>

bool WriteAll(QFileDevice& device, const void* bytes, qint64 count)
{
    // A disk that gets full takes a part, and tells what is wrong only when asked to take more.
    const char* rest = static_cast<const char*>(bytes);
    while (count > 0) {
        const qint64 taken = device.write(rest, count);
        if (taken <= 0) {
            return false;
        }
        rest += taken;
        count -= taken;
    }
    return true;
}

bool CopyAll(QFileDevice& from, QFileDevice& to)
{
    constexpr qint64 blockSize = 1 << 20;
    for (qint64 left = from.size() - from.pos(); left > 0;) {
        const QByteArray block = from.read(qMin(left, blockSize));
        if (block.isEmpty() || !WriteAll(to, block.constData(), block.size())) {
            return false;
        }
        left -= block.size();
    }
    return true;
}

bool FlushAll(QFileDevice& device)
{
    // The first flush may write a part without an error; the second one then tells what is wrong.
    return device.flush() || device.flush();
}
