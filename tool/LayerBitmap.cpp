#include "tool/LayerBitmap.h"

#include "app/Names.h"
#include "layers/BitmapState.h"
#include "tool/Console.h"
#include "tool/InputFiles.h"
#include "tool/Interruption.h"
#include "tool/ProjectData.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

/// The bytes of files up to KeptFileBytes are kept in memory, up to KeptBytes in all.
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
        if (Interruption::HasCome()) {
            return 0;
        }
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
    if (Interruption::HasCome() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ||
        !file.seek(offset)) {
        return 0;
    }
    return file.read(reinterpret_cast<char*>(to), count);
}

} // namespace

LayerBitmap::LayerBitmap(const QString& path, QSize size)
    : m_path(path)
{
    Open(size);
}

LayerBitmap::LayerBitmap(const ProjectData& project, const LayerData& layer)
    : m_path(project.BitmapPath(layer))
{
    if (LeadsUpward(layer.name)) {
        Refuse(Problem::Outside, QStringLiteral("lies outside the project."));
    } else {
        Open(project.LayerSizeError().isEmpty() ? project.layerSize : QSize());
    }
}

void LayerBitmap::Open(QSize size)
{
    if (!QFileInfo::exists(m_path)) {
        Refuse(Problem::Missing, QStringLiteral("does not exist."));
        return;
    }
    QFile file(m_path);
    const QString error = OpenInput(file, QIODevice::Unbuffered);
    if (!error.isEmpty()) {
        Refuse(Problem::Unreadable, error);
        return;
    }
    const qint64 byteCount = file.size();
    const raster::ByteReader reader = MakeReader(file);
    m_size = raster::TargaSize(reader);
    auto bands = std::make_unique<raster::TargaBands>(reader, byteCount, m_size);
    const BitmapState state = BitmapStateOf(*bands, m_size, size);
    if (state.fault == BitmapFault::None) {
        m_bands = std::move(bands);
    } else {
        Refuse(state.fault == BitmapFault::WrongSize ? Problem::WrongSize : Problem::Unreadable,
               state.error);
    }
}

QImage LayerBitmap::Band(int band) const
{
    QImage rows = m_bands ? m_bands->Decode(band) : QImage();
    if (rows.isNull()) {
        PrintFailure();
    }
    return rows;
}

bool LayerBitmap::CountPixels(raster::PixelCounts& counts) const
{
    const bool isCounted = m_bands && m_bands->CountPixels(counts);
    if (!isCounted) {
        PrintFailure();
    }
    return isCounted;
}

void LayerBitmap::PrintProblem() const
{
    Console::PrintError(m_path, m_error);
}

void LayerBitmap::PrintFailure() const
{
    if (!m_bands) {
        PrintProblem();
        return;
    }
    Console::PrintError(m_path, m_bands->HasFailed()
                                    ? QStringLiteral("cannot be read.")
                                    : QStringLiteral("there is no memory for it."));
}

void LayerBitmap::WarnIfCutOff() const
{
    if (IsCutOff()) {
        Console::PrintError(m_path,
                            QStringLiteral("ends before its last pixel, and its rest is filled."));
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
