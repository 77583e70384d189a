#include "tool/LayerBitmap.h"

#include "tool/InputFiles.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using raster::TargaError;

namespace {

/// Files up to this size are kept, as long as all that are kept take no more than the second.
constexpr qint64 KeptFileBytes = 1 << 20;
constexpr qint64 KeptBytes = 12 << 20;

qint64& BytesKept()
{
    static qint64 count = 0;
    return count;
}

class KeptFile
{
public:
    explicit KeptFile(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
        BytesKept() += m_bytes.size();
    }
    ~KeptFile() { BytesKept() -= m_bytes.size(); }
    Q_DISABLE_COPY(KeptFile)

    qint64 Read(qint64 offset, uchar* to, qint64 count) const
    {
        const qint64 present = qBound<qint64>(0, m_bytes.size() - offset, count);
        std::copy_n(m_bytes.constData() + offset, present, reinterpret_cast<char*>(to));
        return present;
    }

private:
    QByteArray m_bytes;
};

qint64 ReadFile(const QString& path, qint64 offset, uchar* to, qint64 count)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || !file.seek(offset)) {
        return 0;
    }
    return file.read(reinterpret_cast<char*>(to), count);
}

QString SizeText(QSize size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

} // namespace

LayerBitmap::LayerBitmap(const QString& path, QSize size)
    : m_path(path)
{
    if (!QFileInfo::exists(path)) {
        Refuse(Problem::Missing, QStringLiteral("does not exist."));
        return;
    }
    QFile file(path);
    const QString error = OpenInput(file, QIODevice::Unbuffered);
    if (!error.isEmpty()) {
        Refuse(Problem::Unreadable, error);
        return;
    }
    const qint64 byteCount = file.size();
    const raster::ByteReader reader = MakeReader(file);
    m_size = raster::TargaSize(reader);
    auto bands = std::make_unique<raster::TargaBands>(reader, byteCount, m_size);
    if (bands->Error() != TargaError::None) {
        Refuse(Problem::Unreadable,
               bands->Error() == TargaError::NoImage
                   ? QStringLiteral("is a bitmap without pixels.")
                   : QStringLiteral("is no greyscale TGA file without colour map."));
    } else if (!size.isEmpty() && m_size != size) {
        Refuse(
            Problem::WrongSize,
            QStringLiteral("has %1 pixels instead of %2.").arg(SizeText(m_size), SizeText(size)));
    } else {
        m_bands = std::move(bands);
    }
}

void LayerBitmap::Refuse(Problem problem, const QString& error)
{
    m_problem = problem;
    m_error = error;
}

raster::ByteReader LayerBitmap::MakeReader(QFile& file)
{
    const qint64 size = file.size();
    if (size <= KeptFileBytes && BytesKept() + size <= KeptBytes) {
        const auto kept = std::make_shared<KeptFile>(file.read(size));
        return [kept](qint64 offset, uchar* to, qint64 count) {
            return kept->Read(offset, to, count);
        };
    }
    return [path = m_path](qint64 offset, uchar* to, qint64 count) {
        return ReadFile(path, offset, to, count);
    };
}
