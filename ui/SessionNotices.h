#pragma once

#include "document/journal/SessionLock.h"
#include "ui/EditorParts.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QThreadPool>
#include <QTimer>

#include <memory>

class Journal;
class JournalReader;
class ProjectActions;

/// Notices about the work of this session and of others: unsaved work that a session left when it
/// died, at the start and while this one runs; that the project is open in another window; and that
/// this session's own work cannot be kept safe.
class SessionNotices : public QObject
{
    Q_OBJECT

public:
    SessionNotices(const EditorParts& parts, ProjectActions& actions, Journal& journal);
    ~SessionNotices() override;

private:
    void Look();
    void LookForDeadSessions();
    void FollowPath();
    void LockProject();
    void ShowOtherEditor();
    void Offer(const QString& folder, const JournalReader& journal);
    bool Restore(const QString& folder);
    bool Discard(const QString& folder);
    void ShowFailure(const QString& reason);

    EditorParts m_parts;
    ProjectActions& m_actions;
    Journal& m_journal;
    QTimer m_timer;
    /// The journals that were offered, are being checked, or cannot be read.
    QSet<QString> m_seen;
    std::unique_ptr<SessionLock> m_lock;
    QString m_lockedPath;
    /// Reads the journals that were found. Its end waits for that, so it is the last member.
    QThreadPool m_checks;
};
