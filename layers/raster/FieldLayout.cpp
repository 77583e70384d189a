#include "layers/raster/FieldLayout.h"

namespace raster {

quint32 NextPowerOfTwo(quint32 n)
{
    if (n == 0) {
        return 0;
    }
    // Smears the highest set bit of n - 1 to the right (Warren, Hacker's Delight, 2002).
    n -= 1;
    for (const int shift : {1, 2, 4, 8, 16}) {
        n |= n >> shift;
    }
    return n + 1;
}

bool IsFieldSize(qint64 bits)
{
    return bits > 0 && bits <= 32 && NextPowerOfTwo(static_cast<quint32>(bits)) == bits;
}

int FieldBits(int flagTypeCount)
{
    return static_cast<int>(NextPowerOfTwo(static_cast<quint32>(flagTypeCount)));
}

} // namespace raster
