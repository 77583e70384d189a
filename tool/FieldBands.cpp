#include "tool/FieldBands.h"

#include "layers/raster/ComposeFields.h"
#include "layers/raster/Mask.h"
#include "tool/Console.h"
#include "tool/InputFiles.h"
#include "tool/Interruption.h"

#include <QtEndian>

using raster::BitFieldRaster;

namespace {

constexpr int BandRows = raster::TargaBands::BandRows;
constexpr qint64 MapHeaderBytes = 16;

/// Memory for the masks of a band, in bytes.
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

std::optional<FieldBand> FieldBands::MakeBand(int band) const
{
    FieldBand fields{{m_usageBits, m_size.width(), Rows(band)},
                     {m_valueBits, m_size.width(), Rows(band)}};
    if (!fields.usages.IsValid() || !fields.values.IsValid()) {
        Console::PrintError(m_path, QStringLiteral("there is no memory for its flags."));
        return {};
    }
    return fields;
}

std::optional<FieldBand> FieldBands::Read(int band)
{
    std::optional<FieldBand> fields = MakeBand(band);
    if (!fields || Interruption::HasCome() || !Fill(band, *fields)) {
        return {};
    }
    return fields;
}

bool ProjectFields::Open(const ProjectData& project, CutOffBitmaps cutOff)
{
    m_path = project.path;
    m_size = project.layerSize;
    m_worldSize = project.worldSize;
    const QString sizeError = project.LayerSizeError();
    if (!sizeError.isEmpty()) {
        Console::PrintError(m_path, sizeError);
        return false;
    }
    if (!project.flagTypes.FitMap()) {
        Console::PrintError(
            m_path, QStringLiteral("an area map holds at most %1 usage and %1 value flag types.")
                        .arg(AreaFlagTypes::MaxCount));
        return false;
    }
    m_usageBits = raster::FieldBits(project.flagTypes.usages.size());
    m_valueBits = raster::FieldBits(project.flagTypes.values.size());
    return AddBitmaps(project, cutOff);
}

bool ProjectFields::AddBitmaps(const ProjectData& project, CutOffBitmaps cutOff)
{
    bool areGood = true;
    for (const LayerData& layer : project.layers) {
        auto bitmap = std::make_unique<LayerBitmap>(project, layer);
        if (bitmap->GetProblem() != LayerBitmap::Problem::None) {
            bitmap->PrintProblem();
            areGood = false;
        } else if (cutOff == CutOffBitmaps::Fill) {
            bitmap->WarnIfCutOff();
        } else if (bitmap->IsCutOff()) {
            Console::PrintError(project.BitmapPath(layer),
                                QStringLiteral("ends before its last pixel."));
            areGood = false;
        }
        m_bitmaps.push_back({layer.usageFlags, layer.valueFlags, std::move(bitmap)});
    }
    return areGood;
}

bool ProjectFields::Fill(int band, FieldBand& fields)
{
    // Groups of layers whose masks fit into MaskBytes, but at least one layer.
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
                return false;
            }
        }
        if (begin == 0) {
            raster::ComposeFields(masks, fields.usages, fields.values);
            continue;
        }
        std::optional<FieldBand> more = MakeBand(band);
        if (!more) {
            return false;
        }
        raster::ComposeFields(masks, more->usages, more->values);
        AddWords(fields.usages, more->usages);
        AddWords(fields.values, more->values);
    }
    return true;
}

qint64 MapFields::SectionBytes(int bits) const
{
    const raster::FieldLayout layout(bits, m_size.width());
    return 4 + 4 * layout.WordsPerRow() * m_size.height();
}

bool MapFields::Open(const QString& path)
{
    const QString error = TryOpen(path);
    if (!error.isEmpty()) {
        Console::PrintError(path, error);
    }
    return error.isEmpty();
}

QString MapFields::TryOpen(const QString& path)
{
    m_path = path;
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
        return QStringLiteral("is no area map: %1 pixels.").arg(SizeText(m_size));
    }
    return {};
}

bool MapFields::ReadPixel(QPoint pixel, std::optional<quint32>& usage,
                          std::optional<quint32>& value)
{
    const qint64 valueOffset = MapHeaderBytes + SectionBytes(m_usageBits);
    return !Interruption::HasCome() &&
           (!usage || ReadField(MapHeaderBytes, m_usageBits, pixel, *usage)) &&
           (!value || ReadField(valueOffset, m_valueBits, pixel, *value));
}

bool MapFields::ReadField(qint64 offset, int bits, QPoint pixel, quint32& field)
{
    const raster::FieldLayout layout(bits, m_size.width());
    const qint64 row = m_size.height() - 1 - pixel.y();
    quint32 word = 0;
    m_file.seek(offset + 4 + 4 * (row * layout.WordsPerRow() + layout.WordAt(pixel.x())));
    if (m_file.read(reinterpret_cast<char*>(&word), sizeof word) != qint64(sizeof word)) {
        Console::PrintError(m_file.fileName(), QStringLiteral("cannot be read."));
        return false;
    }
    field = layout.FieldIn(qFromLittleEndian(word), pixel.x());
    return true;
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

bool MapFields::Fill(int band, FieldBand& fields)
{
    return ReadSection(MapHeaderBytes, band, fields.usages) &&
           ReadSection(MapHeaderBytes + SectionBytes(m_usageBits), band, fields.values);
}
