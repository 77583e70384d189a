#include "document/journal/SessionLock.h"

#include "document/journal/JournalFolder.h"
#include "platform/Files.h"

#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryFile>

namespace {

bool HasLocks(const QString& folder)
{
    QTemporaryFile file(folder + QStringLiteral("/XXXXXX"));
    return file.open() && platform::TryLock(file.fileName());
}

} // namespace

SessionLock::SessionLock(const QString& projectPath)
{
    const QString folder = journal::DataFolder(QStringLiteral("open"));
    if (projectPath.isEmpty() || folder.isEmpty() || journal::MakePrivate(folder)) {
        return;
    }
    const QByteArray key = journal::SamePath(projectPath).toUtf8();
    const QByteArray hash = QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex();
    m_path = folder + QLatin1Char('/') + QString::fromLatin1(hash);
    // The session that had the lock may remove the file just now.
    constexpr int attempts = 10;
    for (int i = 0; i < attempts && !m_lock; ++i) {
        QFile file(m_path);
        const bool isMade = journal::OpenNew(file);
        file.close();
        m_lock = platform::TryLock(m_path);
        if (!m_lock && !isMade && QFile::exists(m_path)) {
            break;
        }
    }
    if (m_lock) {
        m_state = State::Held;
    } else if (HasLocks(folder)) {
        m_state = State::Taken;
    }
}

SessionLock::~SessionLock()
{
    if (m_lock) {
        QFile::remove(m_path);
    }
}
