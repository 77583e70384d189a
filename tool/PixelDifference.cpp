#include "tool/PixelDifference.h"

#include "layers/raster/Mask.h"
#include "tool/Progress.h"

#include <algorithm>

using raster::BitFieldRaster;

namespace {

constexpr int FlagCount = 32;

enum PictureIndex : uchar
{
    NoFlags,
    SameFlags,
    OnlyA,
    OnlyB,
    Both,
};

const QVector<QRgb>& PictureColors()
{
    static const QVector<QRgb> colors = {0xFF000000, 0xFF808080, 0xFFFF0000, 0xFF0060FF,
                                         0xFFFF00FF};
    return colors;
}

bool AreRowsEqual(const BitFieldRaster& a, const BitFieldRaster& b, int row)
{
    if (a.WordCount() == 0 && b.WordCount() == 0) {
        return true;
    }
    const quint32* words = a.Words() + row * a.WordsPerRow();
    return a.WordCount() == b.WordCount() && a.Bits() == b.Bits() &&
           std::equal(words, words + a.WordsPerRow(), b.Words() + row * b.WordsPerRow());
}

void AddFields(QVector<PixelDifference>& differences, int x, int y, quint32 a, quint32 b)
{
    for (quint32 different = a ^ b; different != 0; different &= different - 1) {
        const auto bit = static_cast<int>(qCountTrailingZeroBits(different));
        differences[bit].Add(x, y, (a >> bit & 1U) != 0, (b >> bit & 1U) != 0);
    }
}

} // namespace

void PixelDifference::Add(int x, int y, bool isInA, bool isInB)
{
    const bool isFirst = IsEmpty();
    (isInA && isInB ? changed : isInA ? onlyA : onlyB) += 1;
    left = isFirst ? x : qMin(left, x);
    right = isFirst ? x : qMax(right, x);
    top = isFirst ? y : qMin(top, y);
    bottom = isFirst ? y : qMax(bottom, y);
    if (isFirst || y < first.y() || (y == first.y() && x < first.x())) {
        first = {x, y};
    }
}

Report PixelDifference::ToReport(const QString& place) const
{
    Report report;
    report.Add(QStringLiteral("place"), place);
    report.Add(QStringLiteral("only-a"), onlyA);
    report.Add(QStringLiteral("only-b"), onlyB);
    if (changed > 0) {
        report.Add(QStringLiteral("changed"), changed);
    }
    report.Add(QStringLiteral("left"), left);
    report.Add(QStringLiteral("top"), top);
    report.Add(QStringLiteral("right"), right);
    report.Add(QStringLiteral("bottom"), bottom);
    return report;
}

Report PixelDifference::ToReportWithFirst(const QString& place) const
{
    Report report = ToReport(place);
    report.Add(QStringLiteral("first-x"), first.x());
    report.Add(QStringLiteral("first-y"), first.y());
    return report;
}

bool CompareBitmaps(const LayerBitmap& a, const LayerBitmap& b, PixelDifference& difference)
{
    int bottom = a.Size().height();
    for (int band = 0; band < a.BandCount(); ++band) {
        const QImage rowsA = a.Band(band);
        const QImage rowsB = b.Band(band);
        if (rowsA.isNull() || rowsB.isNull()) {
            return false;
        }
        bottom -= rowsA.height();
        for (int row = 0; row < rowsA.height(); ++row) {
            const uchar* pixelsA = rowsA.constScanLine(row);
            const uchar* pixelsB = rowsB.constScanLine(row);
            if (std::equal(pixelsA, pixelsA + rowsA.width(), pixelsB)) {
                continue;
            }
            for (int x = 0; x < rowsA.width(); ++x) {
                if (pixelsA[x] != pixelsB[x]) {
                    difference.Add(x, bottom + row, pixelsA[x] != raster::MaskClear,
                                   pixelsB[x] != raster::MaskClear);
                }
            }
        }
    }
    return true;
}

FieldComparison::FieldComparison(FieldBands& a, FieldBands& b, bool doPaint)
    : m_a(a)
    , m_b(b)
    , m_usages(FlagCount)
    , m_values(FlagCount)
{
    if (doPaint) {
        m_picture = raster::BlankMask(a.Size());
        m_picture.setColorTable(PictureColors());
    }
}

bool FieldComparison::Run()
{
    // One of the two may have no fields, and then no bands.
    const int bandCount = qMax(m_a.BandCount(), m_b.BandCount());
    Progress progress(QStringLiteral("Comparing"), bandCount);
    for (int band = 0; band < bandCount; ++band) {
        const std::optional<FieldBand> a = m_a.Read(band);
        const std::optional<FieldBand> b = a ? m_b.Read(band) : std::nullopt;
        if (!b) {
            return false;
        }
        const int rows = m_a.Rows(band);
        for (int row = 0; row < rows; ++row) {
            const int fileRow = band * raster::TargaBands::BandRows + row;
            CompareRow(*a, *b, row, m_a.Size().height() - 1 - fileRow);
        }
        progress.Step();
    }
    return true;
}

void FieldComparison::CompareRow(const FieldBand& a, const FieldBand& b, int row, int y)
{
    const bool isEqual =
        AreRowsEqual(a.usages, b.usages, row) && AreRowsEqual(a.values, b.values, row);
    if (isEqual && m_picture.isNull()) {
        return;
    }
    for (int x = 0; x < m_a.Size().width(); ++x) {
        const quint32 usageA = a.usages.Get(x, row);
        const quint32 usageB = b.usages.Get(x, row);
        const quint32 valueA = a.values.Get(x, row);
        const quint32 valueB = b.values.Get(x, row);
        AddFields(m_usages, x, y, usageA, usageB);
        AddFields(m_values, x, y, valueA, valueB);
        AddPixel(x, y, quint64(valueA) << 32 | usageA, quint64(valueB) << 32 | usageB);
    }
}

void FieldComparison::AddPixel(int x, int y, quint64 a, quint64 b)
{
    if (a != b) {
        m_all.Add(x, y, (a & ~b) != 0, (b & ~a) != 0);
    }
    if (!m_picture.isNull()) {
        PaintPixel(x, y, a, b);
    }
}

void FieldComparison::PaintPixel(int x, int y, quint64 a, quint64 b)
{
    PictureIndex index = a != 0 ? SameFlags : NoFlags;
    if ((a & ~b) != 0 && (b & ~a) != 0) {
        index = Both;
    } else if (a != b) {
        index = (a & ~b) != 0 ? OnlyA : OnlyB;
    }
    m_picture.scanLine(y)[x] = index;
}
