#pragma once

#include <QImage>
#include <QRect>
#include <QSize>
#include <QTransform>

#include <vector>

/// Draws masks at the resolution of the screen without making their 32-bit pictures.
///
/// Which pixel of a picture falls on which device pixel is asked of QPainter itself, with pictures
/// of one row and one column whose pixels are their own coordinates. So the result equals, pixel
/// for pixel, what QPainter makes of the whole pictures, at any scale.
class MaskSampler
{
public:
    /// toDevice maps layer pixels to device pixels and must not rotate or shear; size is the
    /// pictures' in layer pixels, device the device pixels that are wanted. Masks may have other
    /// sizes: they lie in the picture's top left corner, and what lies beyond them is clear.
    MaskSampler(const QTransform& toDevice, QSize size, const QRect& device);

    static bool CanSample(const QTransform& toDevice)
    {
        return toDevice.type() <= QTransform::TxScale;
    }

    /// Draws color, which is premultiplied, beneath what the target holds (destination over; Porter
    /// and Duff, 1984) where the mask is 255. The target is a Format_ARGB32_Premultiplied image of
    /// the device rectangle's size.
    void DrawBeneath(QImage& target, const QImage& mask, QRgb color) const;
    /// A mask of the device rectangle's size; null when there is no memory.
    QImage Sampled(const QImage& mask) const;

private:
    /// The mask's pixels for all device columns.
    void GatherRow(uchar* target, const QImage& mask, int row) const;
    void DrawRowBeneath(QRgb* target, const uchar* mask, QRgb color) const;

    /// The layer pixel for each device column and row; those outside the picture are left out.
    struct Axis
    {
        int first = 0;
        std::vector<int> pixels;
        /// Beyond the greatest of them.
        int end = 0;
        bool isContiguous = false;
    };
    static Axis MakeAxis(qreal scale, qreal offset, int size, int begin, int count, bool isScaled);

    QSize m_deviceSize;
    Axis m_columns;
    Axis m_rows;
};
