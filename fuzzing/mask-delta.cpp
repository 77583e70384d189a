// Kept tiles of a mask.

#include "fuzzing/support/Fuzz.h"
#include "layers/raster/Mask.h"
#include "layers/raster/MaskDelta.h"

#include <QBuffer>

namespace {

/// The size in the first bytes, if it is small, else one that the bytes do not have.
QSize SizeFor(const std::uint8_t* bytes, std::size_t count)
{
    constexpr int limit = 200;
    const auto side = [&](std::size_t at) {
        const int length = at + 1 < count ? bytes[at] | bytes[at + 1] << 8 : 0;
        return length <= limit ? length : limit;
    };
    return {side(0), side(4)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    QByteArray input(reinterpret_cast<const char*>(bytes), static_cast<int>(count));
    QBuffer from(&input);
    from.open(QIODevice::ReadOnly);
    const QSize size = SizeFor(bytes, count);
    std::optional<raster::MaskDelta> delta = raster::MaskDelta::Read(from, size);
    if (!delta) {
        return 0;
    }
    QBuffer to;
    to.open(QIODevice::WriteOnly);
    Require(delta->Write(to) && input.startsWith(to.data()), "other bytes than were read");
    QImage mask = raster::BlankMask(size);
    const std::optional<QRect> there = delta->Swap(mask);
    Require(there && mask.rect().contains(*there) == !there->isEmpty(), "a change elsewhere");
    const std::optional<QRect> back = delta->Swap(mask);
    Require(back == there && mask == raster::BlankMask(size), "another mask than before");
    return 0;
}
