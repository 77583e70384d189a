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

/// Where an image lies within a layer. The default is an image of the whole layer.
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
    /// Of the whole layer. Needed only for brushes of one pixel: it settles how their lines are
    /// rounded where they cross the border.
    QSize layerSize;
};

/// The round tool that paints and erases layer masks: its settings, and dabs and stroke segments in
/// 32-bit images. Nothing is antialiased, so a painted pixel has exactly the paint colour, by which
/// the layer's mask knows it.
///
/// Positions are layer pixels.
class Brush
{
public:
    /// Of the cursor on the map, not of what is painted.
    const QColor& Color() const { return m_color; }
    const QColor& OutlineColor() const { return m_outlineColor; }
    /// What dabs and segments paint: the current layer's colour.
    const QColor& PaintColor() const { return m_paintColor; }
    /// The centre of the next dab.
    const QPointF& Position() const { return m_position; }
    /// Of the cursor's outline, in pixels.
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

    /// The image may be a part of the layer: it gets the pixels that an image of the whole layer
    /// would get there, provided that the part is the PatchRect of the operation. Positions that
    /// are no finite numbers draw nothing.
    void PaintDab(QImage& image, const BrushPatch& patch = {}) const;
    void EraseDab(QImage& image, const BrushPatch& patch = {}) const;
    void PaintSegment(QImage& image, const QPointF& from, const QPointF& to,
                      const BrushPatch& patch = {}) const;
    void EraseSegment(QImage& image, const QPointF& from, const QPointF& to,
                      const BrushPatch& patch = {}) const;

    /// The layer pixels that a dab or a segment may touch, two more on each side, also beyond the
    /// layer's border. Empty for positions that are no finite numbers.
    QRect DabRect() const;
    QRect SegmentRect(const QPointF& from, const QPointF& to) const;
    /// The part of a layer that an operation touching the given pixels is to be drawn into; empty
    /// when it touches none of them. A smaller part, or one beyond the border, would clip the shape
    /// elsewhere than the whole layer does, which can move single pixels of its edge. Shapes beyond
    /// 32767 pixels are clipped by other rules in the whole, so they need the whole layer.
    static QRect PatchRect(const QRect& touched, const QSize& layerSize);

    /// The reader stands on the start element "brush".
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
