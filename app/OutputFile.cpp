#include "app/OutputFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

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
    if (inPlace && !m_isWhole) {
        m_openError = QString::fromLocal8Bit(std::strerror(errno));
    }
    return m_isWhole;
}

bool OutputFile::Write(const char* bytes, qint64 count)
{
    // A disk that gets full takes a part, and tells what is wrong only when asked to take more.
    while (m_isWhole && count > 0) {
        const qint64 taken = m_device->write(bytes, count);
        m_isWhole = taken > 0;
        bytes += taken;
        count -= taken;
    }
    return m_isWhole;
}

bool OutputFile::Flush()
{
    // The same as for writing.
    return m_device->flush() || m_device->flush();
}

QString OutputFile::ErrorString() const
{
    return m_openError.isEmpty() ? m_device->errorString() : m_openError;
}

bool OutputFile::Commit()
{
    m_isWhole = m_isWhole && Flush();
    if (auto* saveFile = qobject_cast<QSaveFile*>(m_device.get())) {
        if (!m_isWhole) {
            saveFile->cancelWriting();
        }
        return saveFile->commit() && m_isWhole;
    }
    m_device->close();
    return m_isWhole && m_device->error() == QFileDevice::NoError;
}
