#include "tests/support/MaskEdit.h"

#include "layers/raster/Mask.h"
#include "tests/support/Masks.h"

#include <cstring>

namespace {

QRect RandomRect(Random& random, QSize size)
{
    const QPoint corner(random.Between(-20, size.width()), random.Between(-20, size.height()));
    return {corner,
            QSize(1 + random.Below(size.width() + 40), 1 + random.Below(size.height() + 40))};
}

} // namespace

QImage PaddedMask(Random& random, const QImage& mask)
{
    const int stride = (mask.width() + 3 + 4 * random.Below(5)) & ~3;
    auto* memory = new QByteArray(stride * mask.height(), '\x5A');
    for (int y = 0; y < mask.height(); ++y) {
        std::memcpy(memory->data() + y * stride, mask.constScanLine(y),
                    static_cast<std::size_t>(mask.width()));
    }
    QImage padded(
        reinterpret_cast<uchar*>(memory->data()), mask.width(), mask.height(), stride,
        QImage::Format_Indexed8, [](void* bytes) { delete static_cast<QByteArray*>(bytes); },
        memory);
    padded.setColorTable(raster::GreyTable());
    return padded;
}

QImage CopyOf(const QImage& mask)
{
    QImage copy = raster::UnfilledCopy(mask);
    for (int y = 0; y < mask.height(); ++y) {
        std::memcpy(copy.scanLine(y), mask.constScanLine(y),
                    static_cast<std::size_t>(mask.width()));
    }
    return copy;
}

void ChangeMask(Random& random, QImage& mask, const QRect& rect)
{
    const QRect part = rect & mask.rect();
    const int kind = random.Below(3);
    const auto a = static_cast<uchar>(random.Below(2) == 0 ? 255 : random.Below(256));
    const auto b = static_cast<uchar>(random.Below(2) == 0 ? 0 : random.Below(256));
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            const auto any = static_cast<uchar>(random.Below(256));
            mask.scanLine(y)[x] = kind == 0 ? a : kind == 1 ? (any % 2 == 0 ? a : b) : any;
        }
    }
}

MaskEdit::MaskEdit(Random& random, const QImage& start, int steps)
    : before(CopyOf(start))
    , mask(start)
{
    for (int i = 0; i < steps; ++i) {
        const QRect rect = RandomRect(random, mask.size());
        isTouched = delta.Touch(mask, rect) && isTouched;
        ChangeMask(random, mask, rect);
    }
    after = CopyOf(mask);
}

MaskEdit RandomMaskEdit(Random& random, QSize size)
{
    return {random, RandomMask(random, size), 1 + random.Below(4)};
}
