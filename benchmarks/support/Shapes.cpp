#include "benchmarks/support/Shapes.h"

#include "layers/raster/Mask.h"
#include "layers/raster/TargaCodec.h"

#include <QDir>
#include <QFile>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <vector>

namespace {

float LatticeValue(int x, int y, quint32 seed)
{
    quint32 h =
        seed + static_cast<quint32>(x) * 0x9E3779B1U + static_cast<quint32>(y) * 0x85EBCA77U;
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12)) * 0x297A2D39U;
    return static_cast<float>((h ^ (h >> 15)) & 0xFFFFU) / 65535.0F;
}

float Noise(float x, float y, quint32 seed)
{
    const auto x0 = static_cast<int>(x);
    const auto y0 = static_cast<int>(y);
    const float fx = x - static_cast<float>(x0);
    const float fy = y - static_cast<float>(y0);
    const float sx = fx * fx * (3 - 2 * fx);
    const float sy = fy * fy * (3 - 2 * fy);
    const float top = LatticeValue(x0, y0, seed) * (1 - sx) + LatticeValue(x0 + 1, y0, seed) * sx;
    const float bottom =
        LatticeValue(x0, y0 + 1, seed) * (1 - sx) + LatticeValue(x0 + 1, y0 + 1, seed) * sx;
    return top * (1 - sy) + bottom * sy;
}

float Height(int x, int y, int width, quint32 seed)
{
    float height = 0;
    float amplitude = 0.5F;
    float frequency = 5.0F / static_cast<float>(width);
    for (quint32 octave = 0; octave < 5; ++octave) {
        height += amplitude * Noise(static_cast<float>(x) * frequency,
                                    static_cast<float>(y) * frequency, seed + octave);
        amplitude *= 0.5F;
        frequency *= 2.1F;
    }
    return height;
}

} // namespace

QImage NaturalMask(QSize size, quint32 seed)
{
    constexpr float threshold = 0.54F;
    QImage mask = raster::BlankMask(size);
    for (int y = 0; y < size.height(); ++y) {
        uchar* row = mask.scanLine(y);
        for (int x = 0; x < size.width(); ++x) {
            row[x] =
                Height(x, y, size.width(), seed) > threshold ? raster::MaskSet : raster::MaskClear;
        }
    }
    return mask;
}

QImage RepeatedNaturalMask(int side)
{
    constexpr int pieceSide = 2048;
    static const QImage piece = NaturalMask({pieceSide, pieceSide}, 7);
    QImage mask = raster::BlankMask({side, side});
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; x += pieceSide) {
            std::memcpy(mask.scanLine(y) + x, piece.constScanLine(y % pieceSide), pieceSide);
        }
    }
    return mask;
}

std::vector<QImage> ExampleMasks()
{
    constexpr QSize size(2048, 2048);
    const QDir folder(QStringLiteral(BENCH_EXAMPLE "/layers"));
    const QStringList names = folder.entryList({QStringLiteral("*.tga")}, QDir::Files, QDir::Name);
    std::vector<QImage> masks;
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly)) {
            const QByteArray bytes = file.readAll();
            const auto* begin = reinterpret_cast<const uchar*>(bytes.constData());
            masks.push_back(raster::DecodeTarga(begin, bytes.size(), size).mask);
        }
    }
    return masks;
}

QImage CheckerboardMask(QSize size)
{
    QImage mask = raster::BlankMask(size);
    for (int y = 0; y < size.height(); ++y) {
        uchar* row = mask.scanLine(y);
        for (int x = 0; x < size.width(); ++x) {
            row[x] = (x + y) % 2 != 0 ? raster::MaskSet : raster::MaskClear;
        }
    }
    return mask;
}

void CopyPixels(const QImage& mask)
{
    static std::vector<uchar> copy;
    copy.resize(static_cast<std::size_t>(mask.sizeInBytes()));
    std::memcpy(copy.data(), mask.constBits(), copy.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
}

quint64 ReadPixels(const QImage& mask)
{
    const uchar* bytes = mask.constBits();
    quint64 sum = 0;
    const qsizetype count = mask.sizeInBytes();
    for (qsizetype i = 0; i + 8 <= count; i += 8) {
        quint64 word = 0;
        std::memcpy(&word, bytes + i, sizeof word);
        sum += word;
    }
    return sum;
}
