#pragma once

#include <QPoint>
#include <QSize>
#include <QVector>

#include <optional>
#include <vector>

namespace raster {

/// The offsets (dx, dy) of a disc, boundary circle included: row by row all those with
/// radius * radius >= dx * dx + dy * dy, compared as 32-bit floats; (0, 0) alone for a radius of 0
/// and below or one that is no number. The list takes 25 bytes times the square of the radius;
/// std::bad_alloc tells that there is no memory for it or that a vector cannot hold it, which is so
/// from a radius of about 9240 on. DiscShape serves these.
QVector<QPoint> Disc(float radius);

/// The same disc as its chords, which take memory in proportion to the picture's longest side: what
/// reaches further than that side is cut off, because it can change nothing.
class DiscShape
{
public:
    /// The disc of Disc(radius); an infinite radius covers every picture.
    DiscShape(float radius, QSize picture);

    /// The disc that the offsets are, in whatever order; nothing when they are any other shape.
    static std::optional<DiscShape> FromOffsets(const QVector<QPoint>& offsets, QSize picture);

    /// The largest offset along an axis, at most the picture's longest side less one.
    int Radius() const { return static_cast<int>(m_halfChords.size()) - 1; }
    /// The largest offset along one axis at a distance of 0 to Radius() along the other.
    int HalfChord(int distance) const { return m_halfChords[static_cast<std::size_t>(distance)]; }
    /// True when every pixel of that picture, which is the one that the disc was made for, has all
    /// others in reach.
    bool Covers(QSize picture) const;

private:
    explicit DiscShape(std::vector<int> halfChords);

    std::vector<int> m_halfChords;
};

} // namespace raster
