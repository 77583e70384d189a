#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include <functional>
#include <vector>

namespace raster {

/// A number that tells masks apart: equal masks have equal numbers on every machine, and masks that
/// differ have, but for one case in 2^64, different ones. It is kept while its mask changes: only
/// tiles that were touched are read again.
class MaskFingerprint
{
public:
    /// These pixels (may reach beyond the border), this tile or all pixels changed, or may have.
    void Touch(const QRect& rect);
    void TouchTile(int number);
    void TouchAll();

    /// The number of the mask, which is the same one each time, as it is now. 0 only for a mask
    /// that is no Format_Indexed8 image.
    quint64 Of(const QImage& mask);
    /// Reads what Of would read, until isTimeUp says so, which is asked after each tile. Returns
    /// whether nothing is left to read.
    bool Read(const QImage& mask, const std::function<bool()>& isTimeUp);

private:
    void Begin(QSize size);
    void ReadTile(const QImage& mask, std::size_t number);

    QSize m_size;
    /// By the tiles' numbers.
    std::vector<quint64> m_hashes;
    std::vector<bool> m_isTouched;
    bool m_isAnyTouched = false;
    quint64 m_sum = 0;
};

/// The 64-bit hash xxHash of count bytes, which are a multiple of 32 and at least 32.
quint64 Hash64(const uchar* bytes, int count, quint64 seed);

} // namespace raster
