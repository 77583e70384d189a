// Layer bitmaps.

#include "fuzzing/support/Fuzz.h"
#include "layers/raster/TargaCodec.h"

#include <QByteArray>

namespace {

/// The size in the header if it is small, otherwise a different one.
QSize SizeFor(const std::uint8_t* bytes, std::size_t count)
{
    constexpr int limit = 64;
    const auto side = [&](std::size_t at) {
        const int length = at + 1 < count ? bytes[at] | bytes[at + 1] << 8 : 0;
        return length <= limit ? length : limit;
    };
    return {side(12), side(14)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    const QSize size = SizeFor(bytes, count);
    const raster::TargaResult read = raster::DecodeTarga(bytes, static_cast<qint64>(count), size);
    Require((read.error == raster::TargaError::None) == !read.mask.isNull(),
            "an error with a mask, or none without");
    if (read.mask.isNull()) {
        return 0;
    }
    Require(read.mask.size() == size, "a mask of another size");
    for (const auto packing : {raster::TargaPacking::Raw, raster::TargaPacking::RunLength}) {
        QByteArray written;
        raster::EncodeTarga(read.mask, packing, [&written](const char* more, qint64 length) {
            written.append(more, static_cast<int>(length));
            return true;
        });
        Require(written.size() <= raster::TargaMaxBytes(size), "more bytes than promised");
        const raster::TargaResult again = raster::DecodeTarga(
            reinterpret_cast<const uchar*>(written.constData()), written.size(), size);
        Require(again.mask == read.mask, "another mask than was written");
    }
    return 0;
}
