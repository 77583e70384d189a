#include "document/ReplacedBitmaps.h"

#include <QDir>
#include <QFileInfo>

namespace {

QFileInfoList BitmapsIn(const QString& folder)
{
    return QDir(folder).entryInfoList({QStringLiteral("*.tga")}, QDir::Files | QDir::Hidden);
}

} // namespace

void ReplacedBitmaps::SetOwn(const QStringList& paths)
{
    m_own.clear();
    for (const QString& path : paths) {
        m_own.insert(QFileInfo(path).canonicalFilePath());
    }
}

void ReplacedBitmaps::BeforeSave(const QString& documentPath)
{
    m_folder = QFileInfo(documentPath).absoluteDir().filePath(QStringLiteral("layers"));
    m_before.Clear();
    const QFileInfoList bitmaps = BitmapsIn(m_folder);
    for (const QFileInfo& bitmap : bitmaps) {
        m_before.Note(bitmap.absoluteFilePath());
    }
}

QStringList ReplacedBitmaps::AfterSave()
{
    QStringList replaced;
    const QFileInfoList bitmaps = BitmapsIn(m_folder);
    for (const QFileInfo& bitmap : bitmaps) {
        const QString path = bitmap.absoluteFilePath();
        const bool wasThere = m_before.Knows(path);
        if (wasThere && !m_before.HasChanged(path)) {
            continue;
        }
        const QString file = bitmap.canonicalFilePath();
        if (wasThere && !m_own.contains(file)) {
            replaced.append(bitmap.completeBaseName());
        }
        m_own.insert(file);
    }
    return replaced;
}
