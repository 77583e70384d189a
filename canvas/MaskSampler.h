#pragma once

#include <QImage>
#include <QRect>
#include <QSize>
#include <QTransform>

#include <vector>

/// Draws masks at the resolution of the screen, without making 32-bit pictures of whole masks.
///
/// It finds out with QPainter which layer pixel falls on which device pixel: it draws pictures of
/// one row and one column whose pixel values are their own coordinates. So the result equals, pixel
/// for pixel, that of drawing the whole pictures with QPainter, at any scale.
class MaskSampler
{
public:
    /// toDevice maps layer pixels to device pixels and must not rotate or shear; size is the
    /// pictures' in layer pixels, device the device pixels that are wanted. Masks may have other
    /// sizes: they lie in the picture's top left corner, and what lies beyond them is clear.
    /// format is that of the pictures, Format_RGB32 or Format_ARGB32_Premultiplied: QPainter rounds
    /// places in opaque pictures in another way.
    MaskSampler(const QTransform& toDevice, QSize size, const QRect& device,
                QImage::Format format = QImage::Format_ARGB32_Premultiplied);

    static bool CanSample(const QTransform& toDevice)
    {
        return toDevice.type() <= QTransform::TxScale;
    }

    /// Draws color beneath the pixels of the target where the mask is 255 (destination over; Porter
    /// and Duff, 1984). color is premultiplied. The target is a Format_ARGB32_Premultiplied image
    /// of the device rectangle's size.
    void DrawBeneath(QImage& target, const QImage& mask, QRgb color) const;
    /// Returns a mask of the device rectangle's size; null without memory.
    QImage Sampled(const QImage& mask) const;
    /// Samples a part of the device rectangle anew. target is what Sampled returns.
    void SampleInto(QImage& target, const QImage& mask, const QRect& part) const;

    /// A picture of the device rectangle's size, in Format_ARGB32_Premultiplied and transparent
    /// beside the picture; null when there is no memory. The 32-bit picture may have any size:
    /// columns and rows say which of its pixels each layer pixel shows. Where they are negative, a
    /// translucent picture is transparent and an opaque one black.
    QImage SampledPicture(const QImage& picture, const std::vector<int>& columns,
                          const std::vector<int>& rows) const;

private:
    /// The mask's pixels for these places of m_columns.
    void GatherRow(uchar* target, const QImage& mask, int row, int begin, int end) const;
    void DrawRowBeneath(QRgb* target, const uchar* mask, QRgb color) const;

    /// The layer pixel for each device column and row. Device pixels outside the picture are left
    /// out.
    struct Axis
    {
        int first = 0;
        std::vector<int> pixels;
        /// One more than the largest of them.
        int end = 0;
        bool isContiguous = false;
    };
    static Axis MakeAxis(qreal scale, qreal offset, int size, int begin, int count, bool isScaled,
                         QImage::Format format);

    QSize m_deviceSize;
    Axis m_columns;
    Axis m_rows;
};
