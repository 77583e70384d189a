#pragma once

#include "tool/FieldBands.h"
#include "tool/LayerBitmap.h"

#include <QColor>
#include <QImage>
#include <QSize>
#include <QVector>

#include <vector>

class TerritoryTypeList;

/// A flag to be shown, and how.
struct ShownFlag
{
    QString name;
    bool isUsage = true;
    int bit = 0;
    QColor color;
    /// Some pixel of the picture shows it.
    bool isSeen = false;
};

/// A picture of a map at a size of its own: each of its pixels shows the layer pixel below its
/// middle. What is drawn later covers what was drawn before.
class MapPicture
{
public:
    /// Filled with dark grey. layerSize is that of all that is drawn.
    MapPicture(QSize layerSize, QSize size);

    bool IsNull() const { return m_image.isNull(); }
    const QImage& Image() const { return m_image; }

    void DrawPicture(const QImage& picture);
    /// color with its alpha over everything.
    void Cover(const QColor& color);
    /// The pixels that are set, as the editor shows them. False after a printed error.
    bool DrawMask(const LayerBitmap& bitmap, const QColor& color);
    /// False after a printed error. Marks the flags that are seen.
    bool DrawFlags(FieldBands& fields, QVector<ShownFlag>& flags);
    /// The zones of the visible territories, as the editor shows them.
    void DrawZones(const TerritoryTypeList& types);
    /// What the flags' colours mean, in the top left corner; nothing where that would cover more
    /// than a quarter of the picture.
    void DrawLegend(const QVector<ShownFlag>& flags);

private:
    /// Of the rows of a band, those of the picture that show them, and the row of the band each.
    struct ShownRow
    {
        int y;
        int bandRow;
    };
    std::vector<ShownRow> RowsOf(int band) const;

    QSize m_layerSize;
    QImage m_image;
    /// For each column of the picture that of the layers.
    std::vector<int> m_columns;
};
