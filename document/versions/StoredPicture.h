#pragma once

#include "document/StoredProject.h"
#include "document/versions/ProjectOutline.h"

#include <QImage>

/// A small picture of a stored project's visible layers, made layer by layer, because reading a
/// large one takes a while.
class StoredPicture
{
public:
    /// length: the longer side in pixels.
    StoredPicture(const StoredProject& stored, int length);

    /// Draws the next layer. False when all are drawn.
    bool Step();
    /// What is drawn so far. Each pixel shows the layer pixel under its centre.
    const QImage& Image() const { return m_image; }

private:
    StoredProject m_stored;
    ProjectOutline m_outline;
    QImage m_image;
    /// How many layers are left; the lowest is drawn first.
    int m_left;
};
