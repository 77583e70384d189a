#pragma once

#include "layers/raster/BitFieldRaster.h"
#include "tool/LayerBitmap.h"
#include "tool/ProjectData.h"

#include <QFile>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

/// Of each field of a map section for so many flag types.
int MapBits(int flagTypeCount);

/// The fields of some rows of an area map, with words in the machine's order.
struct FieldBand
{
    raster::BitFieldRaster usages;
    raster::BitFieldRaster values;
};

/// The fields of an area map, whole or still to be composed, a band of rows at a time: as many rows
/// as raster::TargaBands has, from the bottom of the map as in its file.
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
    /// Of a field; 0 where the section has none.
    int UsageBits() const { return m_usageBits; }
    int ValueBits() const { return m_valueBits; }
    int BandCount() const;
    int Rows(int band) const;

    /// Nothing after a printed error, and after an interruption.
    std::optional<FieldBand> Read(int band);

protected:
    /// Rasters of the band without any flag; nothing after a printed error.
    std::optional<FieldBand> MakeBand(int band) const;
    /// Fills rasters from MakeBand; false after a printed error.
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
    /// What to do about bitmaps that end before their last pixel.
    enum class CutOffBitmaps
    {
        /// An error.
        Refuse,
        /// Said, and filled as the editor does.
        Fill,
    };

    /// False after a printed error: when the layers have no size that a map can hold, there are too
    /// many flag types, or a bitmap cannot be read.
    bool Open(const ProjectData& project, CutOffBitmaps cutOff);
    /// That of the project's layer of this index.
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

    /// One a layer.
    std::vector<FlaggedBitmap> m_bitmaps;
};

/// The fields of a map file.
class MapFields : public FieldBands
{
public:
    /// False after a printed error.
    bool Open(const QString& path);
    /// What is wrong with the file as a map; empty when it is open.
    QString TryOpen(const QString& path);

protected:
    bool Fill(int band, FieldBand& fields) override;

private:
    /// What is wrong with a section of so many bits per pixel.
    QString SectionError(int bits) const;
    qint64 SectionBytes(int bits) const;
    bool ReadSection(qint64 offset, int band, raster::BitFieldRaster& fields);

    QFile m_file;
};
