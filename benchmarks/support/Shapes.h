#pragma once

#include <QImage>
#include <QSize>

#include <vector>

/// A mask of land-like shapes with ragged edges, about a third of it set; value noise over five
/// octaves (Perlin, 1985), the same for the same seed.
QImage NaturalMask(QSize size, quint32 seed);

/// A piece of such shapes, 2048 pixels a side, repeated until a mask of that side is full; side is
/// a multiple of 2048. Made much faster than large shapes.
QImage RepeatedNaturalMask(int side);

/// The layers of the example project, 2048 x 2048 pixels each, in the order of their names.
std::vector<QImage> ExampleMasks();

/// Every second pixel set: the worst case of run lengths.
QImage CheckerboardMask(QSize size);

/// Copies the pixels into a second buffer that stays warm. This measures the speed of the memory.
void CopyPixels(const QImage& mask);

/// Reads every byte of the mask once and returns their sum.
quint64 ReadPixels(const QImage& mask);
