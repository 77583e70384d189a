#include "document/KnownFiles.h"

#include <QDateTime>
#include <QFileInfo>

KnownFiles::Stamp KnownFiles::StampOf(const QString& path)
{
    const QFileInfo file(path);
    Stamp stamp;
    if (file.isFile()) {
        stamp.length = file.size();
        stamp.time = file.lastModified().toMSecsSinceEpoch();
    }
    return stamp;
}

void KnownFiles::Clear()
{
    m_stamps.clear();
    m_own.clear();
}

void KnownFiles::Note(const QString& path)
{
    m_own.insert(path);
    m_stamps.insert(path, StampOf(path));
}

bool KnownFiles::HasChanged(const QString& path) const
{
    const auto known = m_stamps.find(path);
    return known != m_stamps.end() && StampOf(path) != *known;
}
