#pragma once

#include "tool/FieldBands.h"
#include "tool/LayerBitmap.h"
#include "tool/Report.h"

#include <QImage>
#include <QVector>

/// Where two areas of one size differ.
struct PixelDifference
{
    qint64 onlyA = 0;
    qint64 onlyB = 0;
    /// Pixels that are set in both, in different ways.
    qint64 changed = 0;
    /// The smallest rectangle around all of them, in image rows from the top.
    int left = 0;
    int top = 0;
    int right = -1;
    int bottom = -1;

    bool IsEmpty() const { return onlyA + onlyB + changed == 0; }
    /// The pixel differs; whether it is set in A and in B.
    void Add(int x, int y, bool isInA, bool isInB);
    Report ToReport(const QString& place) const;
};

/// Both bitmaps are good and of one size. False after a printed error.
bool CompareBitmaps(const LayerBitmap& a, const LayerBitmap& b, PixelDifference& difference);

/// Compares the fields of two maps of one size, flag by flag.
class FieldComparison
{
public:
    /// With a picture in which the pixels that differ have colours, where one is wanted.
    FieldComparison(FieldBands& a, FieldBands& b, bool doPaint);

    /// False after a printed error.
    bool Run();
    /// By bit.
    const QVector<PixelDifference>& Usages() const { return m_usages; }
    const QVector<PixelDifference>& Values() const { return m_values; }
    /// Red: flags only in A; blue: only in B; magenta: of both; grey: the same flags; black: none.
    /// Null when there was no memory for it.
    const QImage& Picture() const { return m_picture; }

private:
    void CompareRow(const FieldBand& a, const FieldBand& b, int row, int y);
    void PaintPixel(int x, int y, quint64 a, quint64 b);

    FieldBands& m_a;
    FieldBands& m_b;
    QVector<PixelDifference> m_usages;
    QVector<PixelDifference> m_values;
    QImage m_picture;
};
