#include "app/OutputFile.h"

#include "app/WriteAll.h"
#include "platform/Files.h"

#include <QDir>
#include <QFileInfo>

namespace {

/// A device or a pipe would be replaced by a regular file. A folder is among them, as it cannot be
/// opened in that way either.
bool IsNoRegularFile(const QString& path)
{
    const QFileInfo target(path);
    return target.exists() && !target.isFile();
}

QString WithRealFolder(const QString& path)
{
    const QFileInfo info(path);
    const QString folder = QFileInfo(info.path()).canonicalFilePath();
    return folder.isEmpty() ? QString() : QDir(folder).filePath(info.fileName());
}

QString Text(const std::error_code& error)
{
    return error ? QString::fromLocal8Bit(error.message().c_str()) : QString();
}

/// The innermost group.
thread_local FileGroup* currentGroup = nullptr;

} // namespace

OutputGroup::OutputGroup()
    : m_outer(currentGroup)
{
    currentGroup = &m_files;
}

OutputGroup::~OutputGroup()
{
    currentGroup = m_outer;
}

bool OutputGroup::Commit()
{
    currentGroup = m_outer;
    return m_files.Commit();
}

QString OutputGroup::ErrorString() const
{
    return Text(m_files.Error());
}

std::error_code PutInPlace(HiddenFile& file, const QString& place)
{
    return currentGroup ? currentGroup->Take(file, place) : file.Replace(place);
}

QString FollowedPath(const QString& path)
{
    constexpr int maxLinks = 40;
    QString followed = WithRealFolder(path);
    for (int i = 0; i < maxLinks && QFileInfo(followed).isSymLink(); ++i) {
        followed = WithRealFolder(QFileInfo(followed).symLinkTarget());
    }
    return followed;
}

OutputFile::OutputFile(const QString& path)
    : m_path(path)
    , m_isDevice(IsNoRegularFile(path))
    , m_device(path)
{
}

OutputFile::~OutputFile() = default;

bool OutputFile::Take(const std::error_code& error)
{
    if (error && m_error.isEmpty()) {
        m_error = Text(error);
    }
    return !error;
}

std::error_code OutputFile::OpenHidden()
{
    m_place = m_path.isEmpty() ? QString() : FollowedPath(m_path);
    if (m_place.isEmpty()) {
        return std::make_error_code(std::errc::no_such_file_or_directory);
    }
    const QFileInfo place(m_place);
    if (place.exists() && !place.isWritable()) {
        return std::make_error_code(std::errc::permission_denied);
    }
    std::error_code error = m_hidden.Open(place.path());
    if (IsRefusal(error) && CanBeOverwritten(m_place)) {
        m_isElsewhere = true;
        error = m_hidden.Open(QDir::tempPath());
    }
    return error;
}

bool OutputFile::Open(QIODevice::OpenMode flags)
{
    m_isWhole = Take(m_isDevice ? platform::OpenDevice(m_device) : OpenHidden());
    if (m_isWhole) {
        Device().setTextModeEnabled(flags.testFlag(QIODevice::Text));
    }
    return m_isWhole;
}

bool OutputFile::Write(const char* bytes, qint64 count)
{
    if (m_isWhole && !WriteAll(Device(), bytes, count)) {
        m_isWhole = false;
        m_error = Device().errorString();
    }
    return m_isWhole;
}

std::error_code OutputFile::PutInPlace()
{
    std::error_code error;
    if (!m_isElsewhere) {
        if (QFileInfo::exists(m_place)) {
            m_hidden.SetPermissionsOf(m_place);
        }
        error = ::PutInPlace(m_hidden, m_place);
    }
    const bool isOverwritten = m_isElsewhere || (IsRefusal(error) && CanBeOverwritten(m_place));
    return isOverwritten ? m_hidden.Overwrite(m_place) : error;
}

bool OutputFile::Commit()
{
    if (m_isWhole && !FlushAll(Device())) {
        m_isWhole = false;
        m_error = Device().errorString();
    }
    if (m_isDevice) {
        m_device.close();
        m_isWhole = m_isWhole && m_device.error() == QFileDevice::NoError;
    } else {
        m_isWhole = m_isWhole && Take(PutInPlace());
    }
    return m_isWhole;
}
