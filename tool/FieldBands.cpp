#include "tool/FieldBands.h"

#include "app/Names.h"
#include "layers/raster/ComposeFields.h"
#include "layers/raster/Mask.h"
#include "tool/Console.h"
#include "tool/InputFiles.h"

#include <QFileInfo>
#include <QtEndian>

using raster::BitFieldRaster;

namespace {

constexpr int BandRows = raster::TargaBands::BandRows;
constexpr qint64 MapHeaderBytes = 16;

int BitCount(int flagTypeCount)
{
    return static_cast<int>(raster::NextPowerOfTwo(static_cast<quint32>(flagTypeCount)));
}

/// For the masks of a band.
constexpr int MaskBytes = 1 << 22;

void AddWords(BitFieldRaster& fields, const BitFieldRaster& more)
{
    for (qint64 i = 0; i < fields.WordCount(); ++i) {
        fields.Words()[i] |= more.Words()[i];
    }
}

} // namespace

int FieldBands::BandCount() const
{
    const bool hasFields = m_usageBits != 0 || m_valueBits != 0;
    return hasFields && !m_size.isEmpty() ? (m_size.height() + BandRows - 1) / BandRows : 0;
}

int FieldBands::Rows(int band) const
{
    return qMin(BandRows, m_size.height() - band * BandRows);
}

BitFieldRaster FieldBands::UsageRaster(int band) const
{
    return {m_usageBits, m_size.width(), Rows(band)};
}

BitFieldRaster FieldBands::ValueRaster(int band) const
{
    return {m_valueBits, m_size.width(), Rows(band)};
}

bool ProjectFields::Open(const ProjectData& project)
{
    m_path = project.path;
    m_size = project.layerSize;
    m_worldSize = project.worldSize;
    if (!raster::IsMaskSize(m_size)) {
        Console::PrintError(m_path, QStringLiteral("layers cannot have %1x%2 pixels.")
                                        .arg(m_size.width())
                                        .arg(m_size.height()));
        return false;
    }
    if (!project.flagTypes.FitMap()) {
        Console::PrintError(
            m_path, QStringLiteral("an area map holds at most %1 usage and %1 value flag types.")
                        .arg(AreaFlagTypes::MaxCount));
        return false;
    }
    m_usageBits = BitCount(project.flagTypes.usages.size());
    m_valueBits = BitCount(project.flagTypes.values.size());
    return AddBitmaps(project);
}

bool ProjectFields::AddBitmaps(const ProjectData& project)
{
    bool isGood = true;
    for (const LayerData& layer : project.layers) {
        if (LeadsUpward(layer.name)) {
            Console::PrintError(m_path,
                                QStringLiteral("the bitmap of layer %1 lies outside the project.")
                                    .arg(Console::Quoted(layer.name)));
            isGood = false;
            continue;
        }
        auto bitmap = std::make_unique<LayerBitmap>(project.BitmapPath(layer), m_size);
        if (bitmap->GetProblem() != LayerBitmap::Problem::None) {
            Console::PrintError(project.BitmapPath(layer), bitmap->Error());
            isGood = false;
        }
        m_bitmaps.push_back({layer.usageFlags, layer.valueFlags, std::move(bitmap)});
    }
    return isGood;
}

bool ProjectFields::Read(int band, BitFieldRaster& usages, BitFieldRaster& values)
{
    // As many layers at once as their masks take little memory.
    const auto groupSize =
        static_cast<std::size_t>(qMax(1, MaskBytes / (m_size.width() * BandRows)));
    for (std::size_t begin = 0; begin < m_bitmaps.size(); begin += groupSize) {
        QVector<raster::FlaggedMask> masks;
        const std::size_t end = qMin(begin + groupSize, m_bitmaps.size());
        for (std::size_t i = begin; i < end; ++i) {
            const FlaggedBitmap& flagged = m_bitmaps[i];
            if (!flagged.HasFlags() || flagged.bitmap->IsClear(band)) {
                continue;
            }
            masks.append({flagged.bitmap->Band(band), flagged.usageFlags, flagged.valueFlags});
            if (masks.last().mask.isNull()) {
                Console::PrintError(m_path, QStringLiteral("there is no memory for a layer."));
                return false;
            }
        }
        if (begin == 0) {
            raster::ComposeFields(masks, usages, values);
            continue;
        }
        BitFieldRaster moreUsages = UsageRaster(band);
        BitFieldRaster moreValues = ValueRaster(band);
        raster::ComposeFields(masks, moreUsages, moreValues);
        AddWords(usages, moreUsages);
        AddWords(values, moreValues);
    }
    return true;
}

qint64 MapFields::SectionBytes(int bits) const
{
    const qint64 wordsPerRow = bits == 0 ? 0 : m_size.width() / (32 / bits);
    return 4 + 4 * wordsPerRow * m_size.height();
}

QString MapFields::Open(const QString& path)
{
    m_file.setFileName(path);
    QString error = OpenInput(m_file, QIODevice::Unbuffered);
    if (!error.isEmpty()) {
        return error;
    }
    const auto readInt = [this](qint64 offset) {
        qint32 value = 0;
        m_file.seek(offset);
        const bool isRead =
            m_file.read(reinterpret_cast<char*>(&value), sizeof value) == qint64(sizeof value);
        return isRead ? qFromLittleEndian(value) : 0;
    };
    const qint64 byteCount = m_file.size();
    if (byteCount < MapHeaderBytes + 8) {
        return QStringLiteral("is too short for an area map.");
    }
    m_size = {readInt(0), readInt(4)};
    m_worldSize = {readInt(8), readInt(12)};
    m_usageBits = readInt(MapHeaderBytes);
    error = SectionError(m_usageBits);
    if (!error.isEmpty()) {
        return error;
    }
    const qint64 valueOffset = MapHeaderBytes + SectionBytes(m_usageBits);
    m_valueBits = readInt(valueOffset);
    error = SectionError(m_valueBits);
    const qint64 expected = valueOffset + (error.isEmpty() ? SectionBytes(m_valueBits) : 0);
    if (error.isEmpty() && byteCount != expected) {
        error =
            QStringLiteral("is no area map: %1 bytes instead of %2.").arg(byteCount).arg(expected);
    }
    return error;
}

QString MapFields::SectionError(int bits) const
{
    if (bits != 0 && !raster::IsFieldSize(bits)) {
        return QStringLiteral("is no area map: %1 bits per pixel.").arg(bits);
    }
    if (!raster::IsMaskSize(m_size)) {
        return QStringLiteral("is no area map: %1x%2 pixels.")
            .arg(m_size.width())
            .arg(m_size.height());
    }
    return {};
}

bool MapFields::ReadSection(qint64 offset, int band, BitFieldRaster& fields)
{
    const qint64 wordCount = fields.WordCount();
    if (wordCount == 0) {
        return true;
    }
    m_file.seek(offset + 4 + 4 * fields.WordsPerRow() * band * BandRows);
    if (m_file.read(reinterpret_cast<char*>(fields.Words()), 4 * wordCount) != 4 * wordCount) {
        Console::PrintError(m_file.fileName(), QStringLiteral("cannot be read."));
        return false;
    }
    qFromLittleEndian<quint32>(fields.Words(), wordCount, fields.Words());
    return true;
}

bool MapFields::Read(int band, BitFieldRaster& usages, BitFieldRaster& values)
{
    return ReadSection(MapHeaderBytes, band, usages) &&
           ReadSection(MapHeaderBytes + SectionBytes(m_usageBits), band, values);
}
