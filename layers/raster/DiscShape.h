#pragma once

#include <QSize>

#include <vector>

namespace raster {

/// A disc as its chords: the offsets (dx, dy) with radius * radius >= dx * dx + dy * dy, compared
/// as 32-bit floats, boundary circle included; (0, 0) alone for a radius of 0 and below or one that
/// is no number. Takes memory in proportion to the picture's longest side: what reaches further
/// than that side is cut off, because it can change nothing.
class DiscShape
{
public:
    /// The radius is in pixels; an infinite one covers every picture.
    DiscShape(float radius, QSize picture);

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
