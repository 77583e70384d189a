#include "layers/BitmapState.h"

#include "app/InputFile.h"
#include "layers/raster/TargaBands.h"
#include "layers/rules/SettingsRules.h"

#include <QDir>
#include <QFile>
#include <QSet>

using raster::TargaError;

namespace {

const QString Ending = QStringLiteral(".tga");

} // namespace

BitmapState BitmapStateOf(const raster::TargaBands& bands, QSize found, QSize size)
{
    if (bands.HasFailed()) {
        return {BitmapFault::Unreadable, QStringLiteral("cannot be read."), false};
    }
    if (bands.Error() == TargaError::NoImage) {
        return {BitmapFault::Unreadable, QStringLiteral("is a bitmap without pixels."), false};
    }
    if (bands.Error() != TargaError::None) {
        return {BitmapFault::Unreadable,
                QStringLiteral("is no greyscale TGA file without colour map."), false};
    }
    if (!size.isEmpty() && found != size) {
        return {BitmapFault::WrongSize,
                QStringLiteral("has %1 pixels instead of %2.").arg(SizeText(found), SizeText(size)),
                false};
    }
    return {BitmapFault::None, {}, bands.IsCutOff()};
}

BitmapState ReadBitmapState(const QString& path, QSize size,
                            const std::function<bool()>& isCancelled)
{
    QFile file(path);
    const QString error = OpenForReading(file, QIODevice::Unbuffered);
    if (!error.isEmpty()) {
        return {file.exists() ? BitmapFault::Unreadable : BitmapFault::Missing, error, false};
    }
    const raster::ByteReader read = [&](qint64 offset, uchar* to, qint64 count) {
        return !isCancelled() && file.seek(offset) ? file.read(reinterpret_cast<char*>(to), count)
                                                   : 0;
    };
    const QSize found = raster::TargaSize(read);
    return BitmapStateOf(raster::TargaBands(read, file.size(), found), found, size);
}

QStringList OrphanBitmaps(const QString& folder, const QStringList& layers)
{
    QSet<QString> wanted;
    for (const QString& layer : layers) {
        wanted.insert(layer + Ending);
    }
    QStringList orphans;
    const QStringList files =
        QDir(folder).entryList({QLatin1Char('*') + Ending}, QDir::Files | QDir::Hidden, QDir::Name);
    for (const QString& file : files) {
        if (!wanted.contains(file)) {
            orphans.append(file);
        }
    }
    return orphans;
}
