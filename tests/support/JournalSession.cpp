#include "tests/support/JournalSession.h"

#include "layers/raster/Mask.h"
#include "layers/raster/MaskTile.h"
#include "tests/support/Files.h"
#include "tests/support/Masks.h"
#include "tests/support/TargaFiles.h"

#include <QtGlobal>

namespace {

constexpr char DataVariable[] = "XDG_DATA_HOME";

QByteArray StateBytes(const JournalHeader& header, const QByteArray& text,
                      const QVector<QImage>& masks)
{
    QByteArray state = header.path.toUtf8() + '|' + header.name.toUtf8() + '|' + text + '|' +
                       Ints({header.layerSize.width(), header.layerSize.height(), masks.size()});
    for (const QImage& mask : masks) {
        state += mask.isNull() ? QByteArray("missing") : '=' + Indices(mask);
    }
    return state;
}

} // namespace

DataFolder::DataFolder()
    : m_before(qgetenv(DataVariable))
{
    qputenv(DataVariable, m_folder.path().toUtf8());
}

DataFolder::~DataFolder()
{
    qputenv(DataVariable, m_before);
}

QByteArray StateOf(const JournalReader& reader)
{
    QVector<QImage> masks;
    for (int row = 0; row < reader.LayerCount(); ++row) {
        masks.append(reader.Mask(row));
    }
    return StateBytes({reader.ProjectPath(), {}, reader.ProjectName(), reader.LayerSize()},
                      reader.Text(), masks);
}

std::optional<QByteArray> RestoredState(const QString& folder)
{
    const auto reader = JournalReader::Open(folder);
    return reader ? std::make_optional(StateOf(*reader)) : std::nullopt;
}

JournalSession::JournalSession(QSize layerSize, const QString& path)
    : m_header{path, {}, QStringLiteral("highlands"), layerSize}
{
}

bool JournalSession::Begin()
{
    return m_writer.Begin(m_header);
}

bool JournalSession::AddBlankLayer()
{
    m_masks.insert(m_nextId, raster::BlankMask(m_header.layerSize));
    return m_writer.AddBlankBase(m_nextId++);
}

bool JournalSession::AddLayerFile(const QString& path, const QImage& mask)
{
    WriteBytes(path, Encoded(mask, raster::TargaPacking::RunLength));
    m_masks.insert(m_nextId, mask);
    m_files.insert(m_nextId, path);
    return m_writer.AddBaseFile(m_nextId++, path, KnownFiles::StampOf(path));
}

bool JournalSession::CopyLayerFile(int layerId, const QString& path)
{
    bool wasCopied = false;
    return m_writer.AddBaseCopy(layerId, path, KnownFiles::StampOf(path), &wasCopied) && wasCopied;
}

bool JournalSession::Paint(int layerId, const QImage& mask)
{
    QImage& present = m_masks[layerId];
    for (int number = 0; number < raster::TileCount(mask.size()); ++number) {
        const QRect rect = raster::TileRect(mask.size(), number);
        if (present.copy(rect) == mask.copy(rect)) {
            continue;
        }
        raster::MaskTile tile;
        tile.Load(mask.constScanLine(rect.y()) + rect.x(), mask.bytesPerLine(), rect.size());
        uchar packed[raster::MaxPackedTile];
        const int length = raster::PackTile(tile, packed);
        if (!m_writer.AddTile(layerId, number, packed, length)) {
            return false;
        }
    }
    present = mask;
    return true;
}

bool JournalSession::Commit(const QByteArray& text)
{
    QVector<int> ids;
    QVector<QImage> masks;
    // Rows are not in the order of ids.
    for (auto it = m_masks.end(); it != m_masks.begin();) {
        --it;
        ids.append(it.key());
        masks.append(it.value());
    }
    if (!m_writer.Commit(text.isNull() ? nullptr : &text, ids)) {
        return false;
    }
    m_text = text.isNull() ? m_text : text;
    m_states.append(StateBytes(m_header, m_text, masks));
    m_lengths.append(m_writer.Length());
    return true;
}

bool JournalSession::Act(Random& random, const QString& folder)
{
    const QString file = QStringLiteral("%1/%2.tga").arg(folder).arg(m_nextId);
    const auto text = [&random] { return QByteArray::number(random.Bits()) + "<a/>"; };
    const int action = m_states.isEmpty() ? 0 : m_masks.isEmpty() ? 1 : random.Below(12);
    if (action == 0) {
        return Commit(text());
    }
    if (action == 1) {
        return AddBlankLayer();
    }
    if (action == 2) {
        return AddLayerFile(file, RandomMask(random, m_header.layerSize));
    }
    if (action == 3) {
        return Commit(QByteArray());
    }
    if (action == 4) {
        return m_writer.Compact();
    }
    const int layerId = *std::next(m_masks.keyBegin(), random.Below(m_masks.size()));
    if (action == 5 && m_files.contains(layerId)) {
        return CopyLayerFile(layerId, m_files.value(layerId));
    }
    if (action == 6 && m_masks.size() > 3) {
        m_masks.remove(layerId);
        return true;
    }
    return Paint(layerId, RandomMask(random, m_header.layerSize));
}
