#include "layers/raster/MaskDelta.h"

#include "layers/raster/Mask.h"
#include "layers/raster/MaskTile.h"
#include "layers/raster/SpillFile.h"

#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <utility>

namespace raster {

namespace {

constexpr int RecordHeader = 4;
constexpr int FileHeader = 16;

/// Where a tile lies in a mask.
struct Place
{
    Place(const QImage& mask, int number)
        : rect(TileRect(mask.size(), number))
        , stride(mask.bytesPerLine())
        , offset(rect.y() * stride + rect.x())
    {
    }

    QRect rect;
    qint64 stride;
    qint64 offset;
};

bool IsPacked(const TileRecords::Record& record, const MaskTile& tile)
{
    uchar packed[MaxPackedTile];
    const int length = PackTile(tile, packed);
    return length == record.length && std::memcmp(packed, record.packed, length) == 0;
}

/// The pixels of that size in which two tiles differ; they differ in one at least.
QRect Difference(const MaskTile& a, const MaskTile& b, QSize size)
{
    const auto width = static_cast<std::size_t>(size.width());
    int left = TileSide;
    int right = -1;
    int top = TileSide;
    int bottom = -1;
    for (int y = 0; y < size.height(); ++y) {
        const uchar* rowA = a.pixels + y * TileSide;
        const uchar* rowB = b.pixels + y * TileSide;
        if (std::memcmp(rowA, rowB, width) == 0) {
            continue;
        }
        top = std::min(top, y);
        bottom = y;
        const auto first = std::mismatch(rowA, rowA + width, rowB).first - rowA;
        left = std::min(left, static_cast<int>(first));
        for (int x = size.width() - 1; x > right; --x) {
            if (rowA[x] != rowB[x]) {
                right = x;
            }
        }
    }
    return {QPoint(left, top), QPoint(right, bottom)};
}

/// Exchanges tiles of a mask one by one.
class Exchange
{
public:
    explicit Exchange(QImage& mask)
        : m_mask(mask)
        , m_pixels(Unshare(mask) ? mask.bits() : nullptr)
    {
    }

    bool IsPossible() const { return m_pixels != nullptr; }
    /// False when there is no memory; the tile is not exchanged then.
    bool Tile(const TileRecords::Record& record)
    {
        const Place place(m_mask, record.number);
        uchar* packed = m_others.Room();
        if (!packed) {
            return false;
        }
        MaskTile tile;
        tile.Load(m_pixels + place.offset, place.stride, place.rect.size());
        const int length = PackTile(tile, packed);
        if (length != record.length || std::memcmp(packed, record.packed, length) != 0) {
            AddChange(tile, record, place.rect);
            StoreTile(record.packed, place.rect, m_pixels, place.stride);
        }
        m_others.Append(record.number, length);
        return true;
    }
    void TakeBack()
    {
        m_others.ForEach([this](const TileRecords::Record& record) {
            const Place place(m_mask, record.number);
            StoreTile(record.packed, place.rect, m_pixels, place.stride);
            return true;
        });
    }
    TileRecords TakeOthers()
    {
        m_others.Squeeze();
        return std::move(m_others);
    }
    const QRect& Changed() const { return m_changed; }

private:
    void AddChange(const MaskTile& tile, const TileRecords::Record& record, const QRect& rect)
    {
        if (m_changed.contains(rect)) {
            return;
        }
        MaskTile next;
        UnpackTile(record.packed, next.pixels, TileSide);
        m_changed |= Difference(tile, next, rect.size()).translated(rect.topLeft());
    }

    const QImage& m_mask;
    uchar* m_pixels;
    TileRecords m_others;
    QRect m_changed;
};

} // namespace

/// The part of a file that has the tiles.
class MaskDelta::Spilled
{
public:
    Spilled(std::shared_ptr<SpillFile> file, qint64 length)
        : m_file(std::move(file))
        , m_offset(m_file->Take(length))
        , m_length(length)
    {
    }
    ~Spilled() { m_file->GiveBack(m_offset, m_length); }
    Q_DISABLE_COPY(Spilled)

    /// Standing where the part begins; null when the file fails.
    QIODevice* Device() const { return m_file->DeviceAt(m_offset); }

private:
    std::shared_ptr<SpillFile> m_file;
    qint64 m_offset;
    qint64 m_length;
};

MaskDelta::MaskDelta() = default;
MaskDelta::~MaskDelta() = default;
MaskDelta::MaskDelta(MaskDelta&& other) noexcept = default;
MaskDelta& MaskDelta::operator=(MaskDelta&& other) noexcept = default;

std::optional<MaskDelta> MaskDelta::Between(const QImage& before, const QImage& after)
{
    MaskDelta delta;
    if (!SameGeometry(before, after) || !delta.IsOf(before)) {
        return {};
    }
    const int count = TileCount(before.size());
    for (int number = 0; number < count; ++number) {
        const QRect rect = TileRect(before.size(), number);
        bool isEqual = true;
        for (int y = rect.top(); y <= rect.bottom() && isEqual; ++y) {
            isEqual =
                std::memcmp(before.constScanLine(y) + rect.x(), after.constScanLine(y) + rect.x(),
                            static_cast<std::size_t>(rect.width())) == 0;
        }
        if (!isEqual && !delta.Keep(before, number)) {
            return {};
        }
    }
    delta.m_size = before.size();
    delta.m_records.Squeeze();
    return delta;
}

std::optional<MaskDelta> MaskDelta::Present(const QImage& mask) const
{
    if (m_spilled) {
        QIODevice* device = m_spilled->Device();
        const auto fetched = device ? Read(*device, m_size) : std::nullopt;
        return fetched ? fetched->Present(mask) : std::nullopt;
    }
    MaskDelta present;
    const bool isKept =
        IsOf(mask) && m_records.ForEach([&present, &mask](const TileRecords::Record& record) {
            return present.Keep(mask, record.number);
        });
    if (!isKept) {
        return {};
    }
    present.m_size = mask.size();
    present.m_records.Squeeze();
    return present;
}

bool MaskDelta::Touch(const QImage& mask, const QRect& rect)
{
    const QRect part = rect & mask.rect();
    if (part.isEmpty()) {
        return true;
    }
    if (!IsOf(mask) || !Fetch()) {
        return false;
    }
    const bool hasLookup = !m_lookup.empty() && mask.size() == m_size;
    m_size = mask.size();
    if (!hasLookup && !MakeLookup()) {
        return false;
    }
    const int columns = TileColumns(m_size);
    for (int row = part.top() / TileSide; row <= part.bottom() / TileSide; ++row) {
        for (int column = part.left() / TileSide; column <= part.right() / TileSide; ++column) {
            const int number = row * columns + column;
            quint64& word = m_lookup[static_cast<std::size_t>(number / 64)];
            const quint64 bit = quint64(1) << (number % 64);
            if ((word & bit) != 0) {
                continue;
            }
            if (!Keep(mask, number)) {
                return false;
            }
            word |= bit;
        }
    }
    return true;
}

bool MaskDelta::DropUnchanged(const QImage& mask)
{
    if (IsOf(mask) && Fetch()) {
        m_records.Filter([&mask](const TileRecords::Record& record) {
            const Place place(mask, record.number);
            MaskTile tile;
            tile.Load(mask.constBits() + place.offset, place.stride, place.rect.size());
            return !IsPacked(record, tile);
        });
        std::vector<quint64>().swap(m_lookup);
    }
    return !IsEmpty();
}

bool MaskDelta::IsEmpty() const
{
    return m_records.IsEmpty() && !m_spilled;
}

std::optional<QRect> MaskDelta::Swap(QImage& mask)
{
    if (IsEmpty()) {
        return QRect();
    }
    if (!IsOf(mask) || !Fetch()) {
        return {};
    }
    Exchange exchange(mask);
    if (!exchange.IsPossible()) {
        return {};
    }
    if (!m_records.ForEach([&exchange](const auto& record) { return exchange.Tile(record); })) {
        exchange.TakeBack();
        return {};
    }
    m_records = exchange.TakeOthers();
    return exchange.Changed();
}

qint64 MaskDelta::ByteCount() const
{
    const std::size_t own =
        sizeof *this + m_lookup.capacity() * sizeof(quint64) + (m_spilled ? sizeof *m_spilled : 0);
    return static_cast<qint64>(own) + m_records.ByteCount();
}

bool MaskDelta::SpillTo(const std::shared_ptr<SpillFile>& file)
{
    if (m_records.IsEmpty()) {
        return true;
    }
    auto spilled = std::make_unique<Spilled>(file, FileHeader + m_records.Length());
    QIODevice* device = spilled->Device();
    if (!device || !Write(*device)) {
        return false;
    }
    m_records = TileRecords();
    std::vector<quint64>().swap(m_lookup);
    m_spilled = std::move(spilled);
    return true;
}

bool MaskDelta::Write(QIODevice& to) const
{
    if (m_spilled) {
        QIODevice* device = m_spilled->Device();
        const auto fetched = device ? Read(*device, m_size) : std::nullopt;
        return fetched && fetched->Write(to);
    }
    uchar header[FileHeader];
    qToLittleEndian(static_cast<quint32>(m_size.width()), header);
    qToLittleEndian(static_cast<quint32>(m_size.height()), header + 4);
    qToLittleEndian(static_cast<quint64>(m_records.Length()), header + 8);
    return to.write(reinterpret_cast<const char*>(header), FileHeader) == FileHeader &&
           m_records.Write(to);
}

std::optional<MaskDelta> MaskDelta::Read(QIODevice& from, QSize size)
{
    uchar header[FileHeader];
    if (!IsMaskSize(size) || from.read(reinterpret_cast<char*>(header), FileHeader) != FileHeader ||
        qFromLittleEndian<quint32>(header) != static_cast<quint32>(size.width()) ||
        qFromLittleEndian<quint32>(header + 4) != static_cast<quint32>(size.height())) {
        return {};
    }
    const auto length = qFromLittleEndian<quint64>(header + 8);
    const qint64 limit = qint64(TileCount(size)) * (RecordHeader + MaxPackedTile);
    MaskDelta delta;
    delta.m_size = size;
    if (length > static_cast<quint64>(limit) ||
        !delta.m_records.Read(from, static_cast<qint64>(length)) || !delta.IsSound()) {
        return {};
    }
    return delta;
}

bool MaskDelta::Keep(const QImage& mask, int number)
{
    uchar* packed = m_records.Room();
    if (!packed) {
        return false;
    }
    const Place place(mask, number);
    MaskTile tile;
    tile.Load(mask.constBits() + place.offset, place.stride, place.rect.size());
    m_records.Append(number, PackTile(tile, packed));
    return true;
}

/// True for a mask that the kept tiles can be from.
bool MaskDelta::IsOf(const QImage& mask) const
{
    return mask.format() == QImage::Format_Indexed8 && (IsEmpty() || mask.size() == m_size);
}

/// False when a tile is there twice, or is none of the mask's.
bool MaskDelta::MakeLookup()
{
    const int count = TileCount(m_size);
    m_lookup.assign(static_cast<std::size_t>((count + 63) / 64), 0);
    return m_records.ForEach([this, count](const TileRecords::Record& record) {
        if (record.number < 0 || record.number >= count) {
            return false;
        }
        quint64& word = m_lookup[static_cast<std::size_t>(record.number / 64)];
        const quint64 bit = quint64(1) << (record.number % 64);
        const bool isNew = (word & bit) == 0;
        word |= bit;
        return isNew;
    });
}

/// True for tiles that Keep makes, each once.
bool MaskDelta::IsSound()
{
    const bool areNumbersSound = MakeLookup();
    std::vector<quint64>().swap(m_lookup);
    return areNumbersSound && m_records.ForEach([this](const TileRecords::Record& record) {
        MaskTile whole;
        UnpackTile(record.packed, whole.pixels, TileSide);
        MaskTile tile;
        tile.Load(whole.pixels, TileSide, TileRect(m_size, record.number).size());
        return IsPacked(record, tile);
    });
}

bool MaskDelta::Fetch()
{
    if (!m_spilled) {
        return true;
    }
    QIODevice* device = m_spilled->Device();
    auto fetched = device ? Read(*device, m_size) : std::nullopt;
    if (!fetched) {
        return false;
    }
    m_records = std::move(fetched->m_records);
    m_spilled.reset();
    return true;
}

} // namespace raster
