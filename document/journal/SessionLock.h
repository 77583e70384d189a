#pragma once

#include <QString>

#include <memory>

/// Tells other sessions that this one has a project open: a file in the application's data folder,
/// locked until this object is destroyed or the process ends in whatever way. It works without
/// changes, too, and leaves nothing in the project's folder.
class SessionLock
{
public:
    enum class State
    {
        /// This session has it.
        Held,
        /// Another session has the project open.
        Taken,
        /// There is no project, no folder for the lock, or no locks on its disk.
        Impossible,
    };

    /// Links in the path are followed, so that they lead to the same lock.
    explicit SessionLock(const QString& projectPath);
    ~SessionLock();
    Q_DISABLE_COPY(SessionLock)

    State GetState() const { return m_state; }

private:
    QString m_path;
    std::shared_ptr<void> m_lock;
    State m_state = State::Impossible;
};
