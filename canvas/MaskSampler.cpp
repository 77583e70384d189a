#include "canvas/MaskSampler.h"

#include "layers/raster/Mask.h"

#include <QPainter>

#include <algorithm>
#include <cstring>

namespace {

/// The number of pixels that are tested together to skip clear stretches.
constexpr int ChunkSize = 32;

bool IsClear(const uchar* pixels)
{
    quint64 words[ChunkSize / sizeof(quint64)];
    std::memcpy(words, pixels, ChunkSize);
    return (words[0] | words[1] | words[2] | words[3]) == 0;
}

/// color times alpha / 255, for all four channels, rounded as QPainter rounds it (Blinn, 1994).
QRgb Multiplied(QRgb color, uint alpha)
{
    uint low = (color & 0x00FF00FFU) * alpha;
    low = (low + ((low >> 8) & 0x00FF00FFU) + 0x00800080U) >> 8;
    uint high = ((color >> 8) & 0x00FF00FFU) * alpha;
    high = high + ((high >> 8) & 0x00FF00FFU) + 0x00800080U;
    return (low & 0x00FF00FFU) | (high & 0xFF00FF00U);
}

void BlendBeneath(QRgb* target, const uchar* mask, int count, QRgb color)
{
    for (int i = 0; i < count; ++i) {
        const QRgb below = Multiplied(color, 255U - (target[i] >> 24));
        target[i] += mask[i] == raster::MaskSet ? below : 0U;
    }
}

/// A picture of one row whose opaque pixels tell their own place.
QImage MakeRamp(int length, QImage::Format format)
{
    QImage ramp(length, 1, format);
    auto* pixels = reinterpret_cast<QRgb*>(ramp.bits());
    for (int i = 0; i < length; ++i) {
        pixels[i] = 0xFF000000U | static_cast<QRgb>(i);
    }
    return ramp;
}

const QImage& Ramp(int length, QImage::Format format)
{
    static QImage opaque;
    static QImage translucent;
    QImage& ramp = format == QImage::Format_RGB32 ? opaque : translucent;
    if (ramp.width() != length) {
        ramp = MakeRamp(length, format);
    }
    return ramp;
}

} // namespace

MaskSampler::Axis MaskSampler::MakeAxis(qreal scale, qreal offset, int size, int begin, int count,
                                        bool isScaled, QImage::Format format)
{
    // No mask is longer, whatever the size of the map says.
    const QImage& ramp = Ramp(std::min(size, raster::MaxMaskLength), format);
    QImage places(std::max(count, 1), 1, QImage::Format_ARGB32_Premultiplied);
    if (places.isNull()) {
        return {};
    }
    places.fill(Qt::transparent);
    QPainter painter(&places);
    // The other axis needs just one row. It is scaled if and only if the whole picture is, because
    // QPainter draws pictures that are only translated in another way.
    const qreal across = isScaled ? 2 : 1;
    painter.setTransform(QTransform(scale, 0, 0, across, offset - begin, 0));
    painter.drawImage(0, 0, ramp);
    painter.end();

    Axis axis;
    const auto* pixels = reinterpret_cast<const QRgb*>(places.constBits());
    while (axis.first < count && pixels[axis.first] == 0) {
        ++axis.first;
    }
    for (int i = axis.first; i < count && pixels[i] != 0; ++i) {
        axis.pixels.push_back(static_cast<int>(pixels[i] & 0x00FFFFFFU));
        axis.end = std::max(axis.end, axis.pixels.back() + 1);
    }
    axis.isContiguous = !axis.pixels.empty() &&
                        axis.pixels.back() - axis.pixels.front() + 1 == int(axis.pixels.size()) &&
                        std::is_sorted(axis.pixels.begin(), axis.pixels.end());
    return axis;
}

MaskSampler::MaskSampler(const QTransform& toDevice, QSize size, const QRect& device,
                         QImage::Format format)
    : m_deviceSize(device.size())
{
    const bool isScaled = toDevice.type() == QTransform::TxScale;
    m_columns = MakeAxis(toDevice.m11(), toDevice.dx(), size.width(), device.x(), device.width(),
                         isScaled, format);
    m_rows = MakeAxis(toDevice.m22(), toDevice.dy(), size.height(), device.y(), device.height(),
                      isScaled, format);
}

void MaskSampler::GatherRow(uchar* target, const QImage& mask, int row, int begin, int end) const
{
    const uchar* pixels = mask.constScanLine(row);
    const int width = mask.width();
    std::transform(m_columns.pixels.begin() + begin, m_columns.pixels.begin() + end, target,
                   [pixels, width](int column) {
                       return column < width ? pixels[column] : raster::MaskClear;
                   });
}

void MaskSampler::DrawBeneath(QImage& target, const QImage& mask, QRgb color) const
{
    const auto columns = static_cast<int>(m_columns.pixels.size());
    if (columns == 0) {
        return;
    }
    const bool isAsItIs = m_columns.isContiguous && m_columns.end <= mask.width();
    std::vector<uchar> gathered(m_columns.pixels.size());
    int gatheredRow = -1;
    for (std::size_t i = 0; i < m_rows.pixels.size(); ++i) {
        const int row = m_rows.pixels[i];
        if (row >= mask.height()) {
            continue;
        }
        if (!isAsItIs && row != gatheredRow) {
            GatherRow(gathered.data(), mask, row, 0, columns);
            gatheredRow = row;
        }
        const uchar* pixels =
            isAsItIs ? mask.constScanLine(row) + m_columns.pixels.front() : gathered.data();
        auto* line = reinterpret_cast<QRgb*>(target.scanLine(m_rows.first + static_cast<int>(i)));
        DrawRowBeneath(line + m_columns.first, pixels, color);
    }
}

void MaskSampler::DrawRowBeneath(QRgb* target, const uchar* mask, QRgb color) const
{
    const auto count = static_cast<int>(m_columns.pixels.size());
    int x = 0;
    for (; x + ChunkSize <= count; x += ChunkSize) {
        if (!IsClear(mask + x)) {
            BlendBeneath(target + x, mask + x, ChunkSize, color);
        }
    }
    BlendBeneath(target + x, mask + x, count - x, color);
}

QImage MaskSampler::Sampled(const QImage& mask) const
{
    QImage sampled = raster::BlankMask(m_deviceSize);
    if (!sampled.isNull()) {
        SampleInto(sampled, mask, sampled.rect());
    }
    return sampled;
}

void MaskSampler::SampleInto(QImage& target, const QImage& mask, const QRect& part) const
{
    const QSize sampled(static_cast<int>(m_columns.pixels.size()),
                        static_cast<int>(m_rows.pixels.size()));
    const QRect within = part & QRect({m_columns.first, m_rows.first}, sampled);
    const int begin = within.left() - m_columns.first;
    for (int y = within.top(); y <= within.bottom(); ++y) {
        const int row = m_rows.pixels[static_cast<std::size_t>(y - m_rows.first)];
        uchar* line = target.scanLine(y) + within.left();
        if (row < mask.height()) {
            GatherRow(line, mask, row, begin, begin + within.width());
        } else {
            std::fill_n(line, within.width(), raster::MaskClear);
        }
    }
}

QImage MaskSampler::SampledPicture(const QImage& picture, const std::vector<int>& columns,
                                   const std::vector<int>& rows) const
{
    QImage sampled(m_deviceSize, QImage::Format_ARGB32_Premultiplied);
    if (sampled.isNull()) {
        return {};
    }
    sampled.fill(Qt::transparent);
    std::vector<int> places(m_columns.pixels.size());
    std::transform(m_columns.pixels.begin(), m_columns.pixels.end(), places.begin(),
                   [&columns](int pixel) { return columns[static_cast<std::size_t>(pixel)]; });
    // The fourth byte of opaque pictures may hold anything.
    const QRgb opaque = picture.format() == QImage::Format_RGB32 ? 0xFF000000U : 0U;
    for (std::size_t i = 0; i < m_rows.pixels.size(); ++i) {
        const int row = rows[static_cast<std::size_t>(m_rows.pixels[i])];
        auto* line = reinterpret_cast<QRgb*>(sampled.scanLine(m_rows.first + static_cast<int>(i)));
        line += m_columns.first;
        if (i > 0 && row == rows[static_cast<std::size_t>(m_rows.pixels[i - 1])]) {
            std::copy_n(line - sampled.width(), places.size(), line);
            continue;
        }
        const auto* from =
            row < 0 ? nullptr : reinterpret_cast<const QRgb*>(picture.constScanLine(row));
        std::transform(places.begin(), places.end(), line, [from, opaque](int place) {
            return opaque | (from && place >= 0 ? from[place] : 0U);
        });
    }
    return sampled;
}
