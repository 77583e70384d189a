#include "app/OutputFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// A save file would put a regular file in the place of a device node, and would take no name for
/// one until the commit.
bool IsWrittenInPlace(const QString& path)
{
    const QFileInfo target(path);
    return path.isEmpty() || (target.exists() && !target.isFile());
}

std::unique_ptr<QFileDevice> MakeDevice(const QString& path)
{
    if (IsWrittenInPlace(path)) {
        return std::make_unique<QFile>(path);
    }
    return std::make_unique<QSaveFile>(path);
}

/// Opening a pipe that nobody reads would wait for a reader, maybe for ever; here it fails. Writing
/// waits as usual.
bool OpenWithoutWaiting(QFile& file, QIODevice::OpenMode mode)
{
    const QByteArray path = QFile::encodeName(file.fileName());
    const int descriptor = open(path.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const int flags = fcntl(descriptor, F_GETFL);
    if (fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) == 0 &&
        file.open(descriptor, mode, QFileDevice::AutoCloseHandle)) {
        return true;
    }
    close(descriptor);
    return false;
}

} // namespace

OutputFile::OutputFile(const QString& path)
    : m_device(MakeDevice(path))
{
}

OutputFile::~OutputFile() = default;

bool OutputFile::Open(QIODevice::OpenMode flags)
{
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | flags;
    auto* inPlace = qobject_cast<QFile*>(m_device.get());
    m_isWhole = inPlace ? OpenWithoutWaiting(*inPlace, mode) : m_device->open(mode);
    return m_isWhole;
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
