#pragma once

#include <QImage>
#include <QSize>

#include <functional>

namespace raster {

enum class TargaError
{
    None,
    /// The file has an image identification or a colour map.
    TypeMismatch,
    /// The pixels are no grey values.
    ColourFormat,
    /// The image has another size than the one asked for.
    WrongSize,
    /// No image of that size can be made, or there is no memory for it.
    NoImage,
};

struct TargaResult
{
    QImage mask;
    TargaError error;
};

enum class TargaPacking
{
    Raw,
    RunLength,
};

constexpr int TargaHeaderSize = 18;

/// Whether DecodeTarga would refuse a file with these first bytes; looks at the header alone.
TargaError CheckTargaHeader(const uchar* file, qint64 byteCount, QSize size);

/// The most bytes that a file of a mask of this size needs, however it is packed. Bytes behind
/// them are of no use to the reader.
qint64 TargaMaxBytes(QSize size);

/// Reads an 8-bit greyscale file, raw or run-length, either row order, of exactly this size in
/// pixels. Bytes that the file is too short for are 0 in the header; in raw data they keep those of
/// the row before (0 in the first), in run-length data the last pixel read goes on to the end.
/// Packets may cross row ends; what runs past the last pixel is cut off.
TargaResult DecodeTarga(const uchar* file, qint64 byteCount, QSize size);

/// Takes the next bytes of a file, in order; false when they could not be written.
using ByteSink = std::function<bool(const char* bytes, qint64 count)>;

/// Writes a Format_Indexed8 image with no side above MaxMaskLength, rows from the top and without
/// padding; run-length data holds run packets alone, also for single pixels. Stops with false when
/// the sink does.
bool EncodeTarga(const QImage& mask, TargaPacking packing, const ByteSink& sink);

} // namespace raster
