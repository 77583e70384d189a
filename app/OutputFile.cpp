#include "app/OutputFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

std::unique_ptr<QFileDevice> MakeDevice(const QString& path)
{
    const QFileInfo target(path);
    if (path.isEmpty() || (target.exists() && !target.isFile())) {
        // A save file would put a regular file in the place of a device node, and would take no
        // name for one until the commit.
        return std::make_unique<QFile>(path);
    }
    auto file = std::make_unique<QSaveFile>(path);
    file->setDirectWriteFallback(true);
    return file;
}

} // namespace

OutputFile::OutputFile(const QString& path)
    : m_device(MakeDevice(path))
{
}

OutputFile::~OutputFile() = default;

bool OutputFile::Open(QIODevice::OpenMode flags)
{
    return m_device->open(QIODevice::WriteOnly | flags);
}

bool OutputFile::Write(const char* bytes, qint64 count)
{
    m_isWhole = m_isWhole && m_device->write(bytes, count) == count;
    return m_isWhole;
}

bool OutputFile::Commit()
{
    m_isWhole = m_isWhole && m_device->flush();
    if (auto* saveFile = qobject_cast<QSaveFile*>(m_device.get())) {
        if (!m_isWhole) {
            saveFile->cancelWriting();
        }
        return saveFile->commit() && m_isWhole;
    }
    m_device->close();
    return m_isWhole && m_device->error() == QFileDevice::NoError;
}
