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
    /// The pixels are not grey values.
    ColourFormat,
    /// The image has another size than required.
    WrongSize,
    /// An image cannot have that size, or there is no memory for it.
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

/// The error with which DecodeTarga would refuse a file with these first bytes. Checks the header
/// only.
TargaError CheckTargaHeader(const uchar* file, qint64 byteCount, QSize size);

/// The most bytes that a file of a mask of this size can need. The reader ignores any bytes after
/// these.
qint64 TargaMaxBytes(QSize size);

/// Reads an 8-bit greyscale file, raw or run-length, either row order, of exactly this size in
/// pixels. If the file is too short, missing header bytes are 0, missing raw bytes repeat the row
/// before (0 in the first row), and missing run-length data repeats the last pixel. Packets may
/// cross row ends; a packet that is too long is cut off.
TargaResult DecodeTarga(const uchar* file, qint64 byteCount, QSize size);

/// Writes the next bytes of a file, in order. Returns false if they could not be written.
using ByteSink = std::function<bool(const char* bytes, qint64 count)>;

/// Writes a Format_Indexed8 image with no side above MaxMaskLength. Rows go from the top, without
/// padding. Run-length data holds only run packets, even for single pixels. Stops and returns false
/// when the sink returns false.
bool EncodeTarga(const QImage& mask, TargaPacking packing, const ByteSink& sink);

} // namespace raster
