#pragma once

#include <QImage>
#include <QPoint>

/// The pixels of a layer that painting may change: those that are set in another mask, or those
/// that are clear there. Set means not 0.
class PixelLimit
{
public:
    /// All pixels.
    PixelLimit() = default;
    /// mask: of the layer's size. A mask that is about to be painted keeps its pixels for the limit
    /// as they are now.
    PixelLimit(const QImage& mask, bool isInside)
        : m_mask(mask)
        , m_isInside(isInside)
    {
    }

    /// False when all pixels may be changed.
    bool IsOn() const { return !m_mask.isNull(); }
    const QImage& Mask() const { return m_mask; }
    bool IsInside() const { return m_isInside; }

    /// Puts back the pixels that may not be changed. part shows the layer from the origin on,
    /// before is the whole layer. Both have the same format, of 8 or of 32 bits a pixel.
    void PutBack(QImage& part, QPoint origin, const QImage& before) const;

private:
    QImage m_mask;
    bool m_isInside = true;
};
