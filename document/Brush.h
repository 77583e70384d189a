#pragma once

#include <QColor>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

class QImage;
class QXmlStreamReader;
class QXmlStreamWriter;

/// The part of a layer that an image shows. The default is the whole layer.
struct BrushPatch
{
    BrushPatch() = default;
    BrushPatch(const QPoint& topLeft, const QSize& wholeSize = {})
        : origin(topLeft)
        , layerSize(wholeSize)
    {
    }

    /// The layer pixel at the image's top left corner.
    QPoint origin;
    /// The size of the whole layer. Only needed for brushes of one pixel, whose lines are rounded
    /// at the layer's border.
    QSize layerSize;
};

/// The round brush that paints and erases layer masks. It holds the settings, and draws dabs and
/// stroke segments into 32-bit images. Nothing is antialiased: painted pixels have exactly the
/// paint colour, so that the layer's mask can be made from them.
///
/// Positions are layer pixels.
class Brush
{
public:
    /// The colour of the cursor on the map, not of the painted pixels.
    const QColor& Color() const { return m_color; }
    const QColor& OutlineColor() const { return m_outlineColor; }
    /// The colour that dabs and segments paint: that of the current layer.
    const QColor& PaintColor() const { return m_paintColor; }
    /// The centre of the next dab.
    const QPointF& Position() const { return m_position; }
    /// The width of the cursor's outline in pixels.
    int OutlineWidth() const { return m_outlineWidth; }
    bool HasOutline() const { return m_hasOutline; }
    /// Half the size.
    float Radius() const { return m_radius; }
    /// The diameter in layer pixels.
    int Size() const { return m_size; }

    void SetColor(const QColor& color) { m_color = color; }
    void SetOutlineColor(const QColor& color) { m_outlineColor = color; }
    void SetPaintColor(const QColor& color) { m_paintColor = color; }
    void SetPosition(const QPointF& position) { m_position = position; }
    void SetOutlineWidth(int width) { m_outlineWidth = width; }
    void SetOutline(bool hasOutline) { m_hasOutline = hasOutline; }
    void SetSize(int size);

    /// The image may be a part of the layer. It then gets the same pixels as an image of the whole
    /// layer, provided that the part is the PatchRect of the operation. Infinite and NaN positions
    /// draw nothing.
    void PaintDab(QImage& image, const BrushPatch& patch = {}) const;
    void EraseDab(QImage& image, const BrushPatch& patch = {}) const;
    void PaintSegment(QImage& image, const QPointF& from, const QPointF& to,
                      const BrushPatch& patch = {}) const;
    void EraseSegment(QImage& image, const QPointF& from, const QPointF& to,
                      const BrushPatch& patch = {}) const;

    /// The layer pixels that a dab or a segment may touch, with a margin of two pixels. May extend
    /// beyond the layer. Empty for infinite and NaN positions.
    QRect DabRect() const;
    QRect SegmentRect(const QPointF& from, const QPointF& to) const;
    /// The part of a layer into which an operation that touches these pixels must be drawn; empty
    /// if it touches no pixel of the layer. A smaller part, or one beyond the border, would clip
    /// the shape at another place than the whole layer does, which can move single pixels of the
    /// edge. Shapes beyond 32767 pixels are clipped by other rules and need the whole layer.
    static QRect PatchRect(const QRect& touched, const QSize& layerSize);

    /// The reader must be on the start tag of "brush".
    void ReadXml(QXmlStreamReader& xml);
    /// Position and paint colour are not stored.
    void WriteXml(QXmlStreamWriter& xml) const;

private:
    QRectF Ellipse() const;

    QColor m_color = Qt::white;
    QColor m_outlineColor = Qt::black;
    QColor m_paintColor = Qt::white;
    QPointF m_position;
    int m_outlineWidth = 1;
    bool m_hasOutline = true;
    float m_radius = 16.0F;
    int m_size = 32;
};
