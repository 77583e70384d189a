#include "layers/raster/RunningMaximum.h"

#include <algorithm>
#include <vector>

namespace raster {
namespace {

/// The maxima of all windows of a row whose length is a power of two. Two of them cover a window of
/// any length up to twice that, so a chord of any length costs the same (Urbach and Wilkinson,
/// 2008).
class WindowMaxima
{
public:
    WindowMaxima(int width, int longestHalf)
        : m_width(width)
        , m_margin(longestHalf)
        , m_maxima(static_cast<std::size_t>(width + 2 * longestHalf))
        , m_longer(m_maxima.size())
    {
    }

    void SetRow(const uchar* pixels, uchar flip)
    {
        m_length = 1;
        std::fill(m_maxima.begin(), m_maxima.end(), uchar(0));
        uchar* __restrict row = m_maxima.data() + m_margin;
        for (int x = 0; x < m_width; ++x) {
            row[x] = pixels[x] ^ flip;
        }
    }

    /// Makes the windows as long as a chord needs. Chords must come in ascending order.
    void GrowFor(int half)
    {
        const auto size = static_cast<int>(m_maxima.size());
        while (2 * m_length <= 2 * half + 1) {
            const uchar* maxima = m_maxima.data();
            uchar* __restrict longer = m_longer.data();
            const int count = std::max(size - m_length, 0);
            for (int i = 0; i < count; ++i) {
                longer[i] = std::max(maxima[i], maxima[i + m_length]);
            }
            m_maxima.swap(m_longer);
            m_length *= 2;
        }
    }

    /// Merges the maxima of the windows x - half to x + half into both rows.
    void AddChord(int half, uchar* __restrict above, uchar* __restrict below) const
    {
        const uchar* left = m_maxima.data() + m_margin - half;
        const uchar* right = m_maxima.data() + m_margin + half + 1 - m_length;
        for (int x = 0; x < m_width; ++x) {
            const uchar largest = std::max(left[x], right[x]);
            above[x] = std::max(above[x], largest);
            below[x] = std::max(below[x], largest);
        }
    }

    void AddChord(int half, uchar* __restrict row) const
    {
        const uchar* left = m_maxima.data() + m_margin - half;
        const uchar* right = m_maxima.data() + m_margin + half + 1 - m_length;
        for (int x = 0; x < m_width; ++x) {
            row[x] = std::max(row[x], std::max(left[x], right[x]));
        }
    }

private:
    int m_width;
    int m_margin;
    int m_length = 1;
    /// Pixels outside the picture count as 0. Windows that would end beyond the margin are not
    /// kept.
    std::vector<uchar> m_maxima;
    std::vector<uchar> m_longer;
};

} // namespace

void DilateByRunningMaxima(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result)
{
    const int width = mask.width();
    const int height = mask.height();
    uchar* pixels = result.bits();
    const std::ptrdiff_t stride = result.bytesPerLine();
    for (int y = 0; y < height; ++y) {
        std::fill_n(pixels + y * stride, width, uchar(0));
    }
    WindowMaxima windows(width, std::min(disc.HalfChord(0), width - 1));
    for (int y = 0; y < height; ++y) {
        windows.SetRow(mask.constScanLine(y), flip);
        for (int dy = std::min(disc.Radius(), height - 1); dy >= 0; --dy) {
            const int half = std::min(disc.HalfChord(dy), width - 1);
            const bool hasAbove = dy > 0 && y - dy >= 0;
            const bool hasBelow = y + dy < height;
            windows.GrowFor(half);
            if (hasAbove && hasBelow) {
                windows.AddChord(half, pixels + (y - dy) * stride, pixels + (y + dy) * stride);
            } else if (hasAbove || hasBelow) {
                windows.AddChord(half, pixels + (hasAbove ? y - dy : y + dy) * stride);
            }
        }
    }
    for (int y = 0; y < height && flip != 0; ++y) {
        uchar* row = pixels + y * stride;
        std::transform(row, row + width, row, [flip](uchar pixel) { return pixel ^ flip; });
    }
}

} // namespace raster
