#pragma once

#include "layers/raster/BitFieldRaster.h"
#include "tool/LayerBitmap.h"
#include "tool/ProjectData.h"

#include <QFile>
#include <QPoint>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

/// The fields of some rows of an area map, with words in the machine's order.
struct FieldBand
{
    raster::BitFieldRaster usages;
    raster::BitFieldRaster values;
};

/// The fields of an area map, read from its file or composed from layers, one band of rows at a
/// time. Bands have as many rows as those of raster::TargaBands and count from the bottom of the
/// map.
class FieldBands
{
public:
    virtual ~FieldBands() = default;
    FieldBands() = default;
    Q_DISABLE_COPY(FieldBands)

    /// Pixels.
    QSize Size() const { return m_size; }
    /// Metres.
    QSize WorldSize() const { return m_worldSize; }
    /// The bits of a field; 0 for an empty section.
    int UsageBits() const { return m_usageBits; }
    int ValueBits() const { return m_valueBits; }
    int BandCount() const;
    int Rows(int band) const;

    /// Returns nothing after printing an error, and after an interruption.
    std::optional<FieldBand> Read(int band);

protected:
    /// Rasters for the band, without any flag set. Returns nothing after printing an error.
    std::optional<FieldBand> MakeBand(int band) const;
    /// Fills rasters from MakeBand. Returns false after printing an error.
    virtual bool Fill(int band, FieldBand& fields) = 0;

    QString m_path;
    QSize m_size;
    QSize m_worldSize;
    int m_usageBits = 0;
    int m_valueBits = 0;
};

/// The fields that a project's layers make.
class ProjectFields : public FieldBands
{
public:
    /// What to do with bitmaps that end before their last pixel.
    enum class CutOffBitmaps
    {
        /// An error.
        Refuse,
        /// Print a warning, and fill up the pixels as the editor does.
        Fill,
    };

    /// Returns false after printing an error: if a map cannot have the size of the layers, if there
    /// are too many flag types, or if a bitmap cannot be read.
    bool Open(const ProjectData& project, CutOffBitmaps cutOff);
    /// The bitmap of the project's layer with this index.
    const LayerBitmap& Bitmap(int layer) const
    {
        return *m_bitmaps[static_cast<std::size_t>(layer)].bitmap;
    }

protected:
    bool Fill(int band, FieldBand& fields) override;

private:
    bool AddBitmaps(const ProjectData& project, CutOffBitmaps cutOff);

    struct FlaggedBitmap
    {
        quint32 usageFlags;
        quint32 valueFlags;
        bool HasFlags() const { return (usageFlags | valueFlags) != 0; }
        std::unique_ptr<LayerBitmap> bitmap;
    };

    /// One for each layer.
    std::vector<FlaggedBitmap> m_bitmaps;
};

/// The fields of a map file.
class MapFields : public FieldBands
{
public:
    /// Returns false after printing an error.
    bool Open(const QString& path);
    /// Returns what is wrong with the map; empty if it was opened.
    QString TryOpen(const QString& path);

    /// Replaces each value that there is by the field of a layer pixel in that section, which must
    /// hold the pixel. Returns false after printing an error, and after an interruption.
    bool ReadPixel(QPoint pixel, std::optional<quint32>& usage, std::optional<quint32>& value);

protected:
    bool Fill(int band, FieldBand& fields) override;

private:
    /// Returns what is wrong with a section of so many bits per pixel; empty if nothing is.
    QString SectionError(int bits) const;
    qint64 SectionBytes(int bits) const;
    bool ReadField(qint64 offset, int bits, QPoint pixel, quint32& field);
    bool ReadSection(qint64 offset, int band, raster::BitFieldRaster& fields);

    QFile m_file;
};
