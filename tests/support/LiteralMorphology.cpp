#include "tests/support/LiteralMorphology.h"

#include "layers/raster/Mask.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace literal {
namespace {

uchar Farthest(Step step)
{
    return step == Step::Dilate ? raster::MaskSet : raster::MaskClear;
}

void Choose(Step step, uchar candidate, uchar& chosen)
{
    chosen = step == Step::Dilate ? std::max(chosen, candidate) : std::min(chosen, candidate);
}

uchar NeighbourAt(Step step, const QImage& mask, const QVector<QPoint>& offsets, QPoint pixel)
{
    auto chosen = static_cast<uchar>(~Farthest(step));
    for (const QPoint& offset : offsets) {
        const QPoint target = pixel + offset;
        if (mask.rect().contains(target)) {
            Choose(step, mask.constScanLine(target.y())[target.x()], chosen);
        }
        if (chosen == Farthest(step)) {
            break;
        }
    }
    return chosen;
}

} // namespace

bool IsInDisc(float radius, qint64 dx, qint64 dy)
{
    if (!(radius > 0)) {
        return dx == 0 && dy == 0;
    }
    return radius * radius >= static_cast<float>(dx * dx + dy * dy);
}

QVector<QPoint> Disc(float radius)
{
    QVector<QPoint> offsets;
    const int last = radius > 0 ? static_cast<int>(std::ceil(radius)) : 0;
    for (int dy = -last; dy <= last; ++dy) {
        for (int dx = -last; dx <= last; ++dx) {
            if (IsInDisc(radius, dx, dy)) {
                offsets.append(QPoint(dx, dy));
            }
        }
    }
    return offsets;
}

QImage Apply(Step step, const QImage& mask, const QVector<QPoint>& offsets)
{
    QImage result = mask.copy();
    for (int y = 0; y < mask.height(); ++y) {
        uchar* row = result.scanLine(y);
        for (int x = 0; x < mask.width(); ++x) {
            row[x] = NeighbourAt(step, mask, offsets, QPoint(x, y));
        }
    }
    return result;
}

QImage Apply(Step step, const QImage& mask, float radius)
{
    const int width = mask.width();
    const int height = mask.height();
    std::vector<bool> isInDisc;
    for (int dy = 0; dy < height; ++dy) {
        for (int dx = 0; dx < width; ++dx) {
            isInDisc.push_back(IsInDisc(radius, dx, dy));
        }
    }
    QImage result = mask.copy();
    result.fill(static_cast<uchar>(~Farthest(step)));
    for (int y = 0; y < height; ++y) {
        const uchar* from = mask.constScanLine(y);
        for (int x = 0; x < width; ++x) {
            if (from[x] == static_cast<uchar>(~Farthest(step))) {
                continue;
            }
            for (int toY = 0; toY < height; ++toY) {
                uchar* to = result.bits() + std::ptrdiff_t(toY) * result.bytesPerLine();
                const auto discRow = isInDisc.begin() + std::ptrdiff_t(std::abs(toY - y)) * width;
                for (int toX = 0; toX < width; ++toX) {
                    if (discRow[std::abs(toX - x)]) {
                        Choose(step, from[x], to[toX]);
                    }
                }
            }
        }
    }
    return result;
}

} // namespace literal
