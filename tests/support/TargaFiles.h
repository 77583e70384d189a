#pragma once

#include "layers/raster/TargaCodec.h"

#include <QByteArray>

constexpr char RawType = 3;
constexpr char RunLengthType = 11;
/// Row orders, as the header's last byte has them.
constexpr char TopDown = 0x20;
constexpr char BottomUp = 0;

/// The header of a file of 8-bit grey values. Sides above 65535 keep their lowest 16 bits.
QByteArray TargaHeader(char imageType, QSize size, char descriptor = TopDown);

/// The whole file.
QByteArray Encoded(const QImage& mask, raster::TargaPacking packing);
raster::TargaResult Decoded(const QByteArray& file, QSize size);
