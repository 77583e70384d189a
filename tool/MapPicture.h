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
    /// At least one pixel of the picture shows it.
    bool isSeen = false;
};

/// A picture of a map in any size. Each of its pixels shows the layer pixel under its centre. Later
/// drawing covers earlier drawing.
class MapPicture
{
public:
    /// The picture is dark grey at first. All bitmaps and fields that are drawn must have
    /// layerSize.
    MapPicture(QSize layerSize, QSize size);

    bool IsNull() const { return m_image.isNull(); }
    const QImage& Image() const { return m_image; }

    void DrawPicture(const QImage& picture);
    /// Draws the colour, with its alpha, over everything.
    void Cover(const QColor& color);
    /// Draws the set pixels as the editor shows them. Returns false after printing an error.
    bool DrawMask(const LayerBitmap& bitmap, const QColor& color);
    /// Draws the flags and marks those that some pixel shows. Returns false after printing an
    /// error.
    bool DrawFlags(FieldBands& fields, QVector<ShownFlag>& flags);
    /// Draws the zones of the visible territories as the editor shows them.
    void DrawZones(const TerritoryTypeList& types);
    /// Draws the legend of the flags' colours in the top left corner. Draws nothing if it would
    /// cover more than a quarter of the picture.
    void DrawLegend(const QVector<ShownFlag>& flags);

private:
    /// A row of the picture, and the row of the band that it shows.
    struct ShownRow
    {
        int y;
        int bandRow;
    };
    std::vector<ShownRow> RowsOf(int band) const;

    QSize m_layerSize;
    QImage m_image;
    /// The layers' column for each column of the picture.
    std::vector<int> m_columns;
};
