#include "layers/AreaMap.h"

#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/ComposeFields.h"
#include "layers/raster/Mask.h"
#include "layers/raster/SplitFields.h"

#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

using raster::BitFieldRaster;

namespace {

bool WriteInt(OutputFile& file, qint32 value)
{
    const qint32 bytes = qToLittleEndian(value);
    return file.Write(reinterpret_cast<const char*>(&bytes), sizeof bytes);
}

BitFieldRaster SectionRaster(int flagTypeCount)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    return {raster::FieldBits(flagTypeCount), settings.LayerWidth(), settings.LayerHeight()};
}

bool WriteSection(OutputFile& file, int flagTypeCount, BitFieldRaster& fields)
{
    if (!WriteInt(file, raster::FieldBits(flagTypeCount))) {
        return false;
    }
    const qint64 wordCount = fields.WordCount();
    if (wordCount == 0) {
        return true;
    }
    qToLittleEndian<quint32>(fields.Words(), wordCount, fields.Words());
    return file.Write(reinterpret_cast<const char*>(fields.Words()), 4 * wordCount);
}

bool WriteMap(OutputFile& file, const LayerList& layers)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    for (const int size : {settings.LayerWidth(), settings.LayerHeight(), settings.WorldWidth(),
                           settings.WorldHeight()}) {
        if (!WriteInt(file, size)) {
            return false;
        }
    }
    const int usageCount = settings.FlagTypes().usages.size();
    const int valueCount = settings.FlagTypes().values.size();
    BitFieldRaster usages = SectionRaster(usageCount);
    BitFieldRaster values = SectionRaster(valueCount);
    if (!usages.IsValid() || !values.IsValid()) {
        return false;
    }
    raster::ComposeFields(FlaggedMasks(layers), usages, values);
    return WriteSection(file, usageCount, usages) && WriteSection(file, valueCount, values);
}

/// A map holds at most 32 flags of a kind.
bool CheckFlagTypes()
{
    const bool doFit = ProjectSettings::Instance().FlagTypes().FitMap();
    if (!doFit) {
        LogError(QStringLiteral("An area map holds at most %1 usage and %1 value flag types.")
                     .arg(AreaFlagTypes::MaxCount));
    }
    return doFit;
}

/// False if the layer size is too large for a map with flags. The sizes may come from a broken
/// file. Without flag types, and with sizes of 0 and below, a map has no fields, so every size is
/// allowed.
bool CheckLayerSize()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const AreaFlagTypes& types = settings.FlagTypes();
    const bool isWritable = (types.usages.isEmpty() && types.values.isEmpty()) ||
                            settings.LayerSize().isEmpty() ||
                            raster::IsMaskSize(settings.LayerSize());
    if (!isWritable) {
        LogError(QStringLiteral("An area map with flag types cannot have %1x%2 pixels.")
                     .arg(settings.LayerWidth())
                     .arg(settings.LayerHeight()));
    }
    return isWritable;
}

/// Reads one integer of the header. If the device is too short, value does not change.
bool ReadInt(QIODevice& device, qint32& value)
{
    qint32 bytes = 0;
    const qint64 count = device.read(reinterpret_cast<char*>(&bytes), sizeof bytes);
    if (count == sizeof bytes) {
        value = qFromLittleEndian(bytes);
    }
    return count >= 0;
}

/// Reads up to wordCount words block by block, because a header may announce more words than the
/// file has, and a sparse file may have more words than fit into memory.
class WordReader
{
public:
    WordReader(QIODevice& device, qint64 wordCount)
        : m_device(device)
        , m_wanted(4 * wordCount)
        , m_words(static_cast<std::size_t>(qMin(wordCount, BlockWords)))
    {
    }

    raster::WordBlock Next()
    {
        auto* bytes = reinterpret_cast<char*>(m_words.data());
        const qint64 room = qMin(4 * BlockWords, m_wanted);
        qint64 used = 0;
        while (used < room) {
            const qint64 count = m_device.read(bytes + used, room - used);
            if (count <= 0) {
                m_wanted = used;
                break;
            }
            used += count;
        }
        m_wanted -= used;
        const qint64 wordCount = (used + 3) / 4;
        std::fill(bytes + used, bytes + 4 * wordCount, '\0');
        qFromLittleEndian<quint32>(m_words.data(), wordCount, m_words.data());
        return {m_words.data(), wordCount};
    }

private:
    static constexpr qint64 BlockWords = 1 << 18;

    QIODevice& m_device;
    /// Bytes left to read.
    qint64 m_wanted;
    std::vector<quint32> m_words;
};

enum class FlagKind
{
    Usage,
    Value,
};

void AddFlagLayer(LayerList& layers, const raster::FlagMask& flagMask, FlagKind kind,
                  const QString& name)
{
    const quint32 flag = 1U << flagMask.flag;
    const quint32 usageFlags = kind == FlagKind::Usage ? flag : 0;
    const quint32 valueFlags = kind == FlagKind::Value ? flag : 0;
    auto layer = std::make_unique<Layer>(usageFlags, valueFlags, &layers, name);
    layer->SetImage(flagMask.mask, Qt::white);
    layers.AddLayer(std::move(layer));
}

void ImportSection(LayerList& layers, QIODevice& device, FlagKind kind,
                   const QVector<QString>& names)
{
    qint32 bits = 0;
    if (!ReadInt(device, bits) || bits == 0) {
        return;
    }
    if (!raster::IsFieldSize(bits)) {
        LogError(
            QStringLiteral("The area map has an invalid number of bits per pixel: %1.").arg(bits));
        return;
    }
    const QSize size = ProjectSettings::Instance().LayerSize();
    if (!raster::IsMaskSize(size)) {
        LogError(QStringLiteral("The area map has an invalid size: %1x%2 pixels.")
                     .arg(size.width())
                     .arg(size.height()));
        return;
    }
    const qint64 wordsPerRow = size.width() / (32 / bits);
    WordReader reader(device, wordsPerRow * size.height());
    const raster::SplitResult result =
        raster::SplitFields({[&reader] { return reader.Next(); }, bits, size}, names.size());
    for (const raster::FlagMask& flagMask : result.masks) {
        AddFlagLayer(layers, flagMask, kind, names.at(flagMask.flag));
    }
    if (result.missingCount > 0) {
        LogError(QStringLiteral("There is no memory for %1 layers of the area map.")
                     .arg(result.missingCount));
    }
}

} // namespace

QVector<raster::FlaggedMask> FlaggedMasks(const LayerList& layers)
{
    QVector<raster::FlaggedMask> masks;
    const QVector<Layer*> all = layers.Layers();
    masks.reserve(all.size());
    for (const Layer* layer : all) {
        masks.append({layer->Image(), layer->UsageFlags(), layer->ValueFlags()});
    }
    return masks;
}

bool SaveAreaMap(const LayerList& layers, const QString& path)
{
    if (!CheckFlagTypes() || !CheckLayerSize()) {
        return false;
    }
    OutputFile file(path);
    if (!file.Open(QIODevice::Text)) {
        LogError(QStringLiteral("Failed to open file '%1' for writing.").arg(path));
        return false;
    }
    LogInfo(QStringLiteral("Processing binary map ..."));
    if (!WriteMap(file, layers) || !file.Commit()) {
        return false;
    }
    LogSuccess(QStringLiteral("Zone binary map saved to file '%1'.").arg(path));
    return true;
}

bool ImportAreaMap(LayerList& layers, QIODevice& device)
{
    if (!CheckFlagTypes()) {
        return false;
    }
    LogInfo(QStringLiteral("Importing map, please wait ..."));
    qint32 layerWidth = -1;
    qint32 layerHeight = -1;
    qint32 worldWidth = -1;
    qint32 worldHeight = -1;
    for (qint32* size : {&layerWidth, &layerHeight, &worldWidth, &worldHeight}) {
        if (!ReadInt(device, *size)) {
            return false;
        }
    }
    // The scale factors stay those of the former sizes until the caller sets the sizes.
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetSizesOnly(layerWidth, layerHeight, worldWidth, worldHeight);
    ImportSection(layers, device, FlagKind::Usage, settings.FlagTypes().usages);
    ImportSection(layers, device, FlagKind::Value, settings.FlagTypes().values);
    LogInfo(QStringLiteral("Import done"));
    return true;
}
