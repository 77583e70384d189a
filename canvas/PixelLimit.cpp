#include "canvas/PixelLimit.h"

namespace {

template <typename Pixel>
void PutBackRow(Pixel* part, const Pixel* before, const uchar* limit, int count, bool isInside)
{
    for (int x = 0; x < count; ++x) {
        if ((limit[x] != 0) != isInside) {
            part[x] = before[x];
        }
    }
}

} // namespace

void PixelLimit::PutBack(QImage& part, QPoint origin, const QImage& before) const
{
    constexpr int depthOfMasks = 8;
    for (int y = 0; y < part.height(); ++y) {
        const int row = origin.y() + y;
        const uchar* limit = m_mask.constScanLine(row) + origin.x();
        if (part.depth() == depthOfMasks) {
            PutBackRow(part.scanLine(y), before.constScanLine(row) + origin.x(), limit,
                       part.width(), m_isInside);
        } else {
            PutBackRow(reinterpret_cast<QRgb*>(part.scanLine(y)),
                       reinterpret_cast<const QRgb*>(before.constScanLine(row)) + origin.x(), limit,
                       part.width(), m_isInside);
        }
    }
}
