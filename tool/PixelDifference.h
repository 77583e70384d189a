#pragma once

#include "tool/FieldBands.h"
#include "tool/LayerBitmap.h"
#include "tool/Report.h"

#include <QImage>
#include <QPoint>
#include <QVector>

/// Where two areas of the same size differ.
struct PixelDifference
{
    qint64 onlyA = 0;
    qint64 onlyB = 0;
    /// Pixels that are set in both, but with different values.
    qint64 changed = 0;
    /// The smallest rectangle around all differing pixels; rows count from the top of the image.
    int left = 0;
    int top = 0;
    int right = -1;
    int bottom = -1;
    /// The first pixel that differs, row by row from the top, each from the left.
    QPoint first = {-1, -1};

    bool IsEmpty() const { return onlyA + onlyB + changed == 0; }
    /// Adds a pixel that differs.
    void Add(int x, int y, bool isInA, bool isInB);
    Report ToReport(const QString& place) const;
    /// The same with the first pixel.
    Report ToReportWithFirst(const QString& place) const;
};

/// Both bitmaps must be without a problem and of the same size. Returns false after printing an
/// error.
bool CompareBitmaps(const LayerBitmap& a, const LayerBitmap& b, PixelDifference& difference);

/// Compares the fields of two maps of the same size, flag by flag.
class FieldComparison
{
public:
    /// doPaint: also makes a picture in which differing pixels are coloured.
    FieldComparison(FieldBands& a, FieldBands& b, bool doPaint);

    /// Returns false after printing an error.
    bool Run();
    /// By bit.
    const QVector<PixelDifference>& Usages() const { return m_usages; }
    const QVector<PixelDifference>& Values() const { return m_values; }
    /// Over all flags.
    const PixelDifference& All() const { return m_all; }
    /// Red: a flag only in A; blue: a flag only in B; magenta: both of these; grey: the same flags;
    /// black: no flags. Null if there was no memory for it.
    const QImage& Picture() const { return m_picture; }

private:
    void CompareRow(const FieldBand& a, const FieldBand& b, int row, int y);
    void AddPixel(int x, int y, quint64 a, quint64 b);
    void PaintPixel(int x, int y, quint64 a, quint64 b);

    FieldBands& m_a;
    FieldBands& m_b;
    QVector<PixelDifference> m_usages;
    QVector<PixelDifference> m_values;
    PixelDifference m_all;
    QImage m_picture;
};
