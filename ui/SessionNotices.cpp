#include "ui/SessionNotices.h"

#include "document/Document.h"
#include "document/StoredProject.h"
#include "document/journal/Journal.h"
#include "document/journal/JournalReader.h"
#include "document/journal/Recovery.h"
#include "ui/FileDialogs.h"
#include "ui/NameList.h"
#include "ui/ProjectActions.h"
#include "ui/QuillmapWindow.h"
#include "ui/widgets/NoticeBar.h"
#include "ui_QuillmapWindow.h"

#include <QFileInfo>
#include <QLocale>

#include <optional>
#include <utility>

namespace {

/// A session that dies while this one runs is found after at most this time.
constexpr int LookMilliseconds = 3000;

const QString RestoredKey = QStringLiteral("restored");
const QString UnsafeKey = QStringLiteral("unsafe");
const QString OtherEditorKey = QStringLiteral("other editor");

/// The key of the notice about a dead session's journal.
QString KeyOf(const QString& folder)
{
    return QStringLiteral("journal ") + folder;
}

/// "14:32", or "21 Nov 2026 14:32" for another day than today.
QString TimeText(const QDateTime& time)
{
    const bool isToday = time.date() == QDate::currentDate();
    return QLocale::c().toString(time, isToday ? QStringLiteral("HH:mm")
                                               : QStringLiteral("d MMM yyyy HH:mm"));
}

QString NameText(const QString& name)
{
    return QStringLiteral("'%1'").arg(ShortText(name));
}

QString WhoseText(const JournalReader& journal)
{
    const bool isNew = journal.ProjectName().isEmpty();
    return isNew ? QStringLiteral("a project without a name") : NameText(journal.ProjectName());
}

} // namespace

SessionNotices::SessionNotices(const EditorParts& parts, ProjectActions& actions, Journal& journal)
    : m_parts(parts)
    , m_actions(actions)
    , m_journal(journal)
{
    connect(&journal, &Journal::Failed, this, &SessionNotices::ShowFailure);
    const auto withdrawFailure = [this] { m_parts.form.barNotice->Withdraw(UnsafeKey); };
    connect(&parts.document, &Document::HistoryBegan, this, withdrawFailure);
    connect(&parts.document, &Document::Saved, this, withdrawFailure);
    connect(&parts.document, &Document::AboutToClear, this,
            [this] { m_parts.form.barNotice->Withdraw(RestoredKey); });
    connect(&parts.document, &Document::FilesNoted, this, &SessionNotices::FollowPath);
    m_checks.setMaxThreadCount(1);
    connect(&m_timer, &QTimer::timeout, this, &SessionNotices::Look);
    m_timer.start(LookMilliseconds);
    QTimer::singleShot(0, this, &SessionNotices::Look);
}

SessionNotices::~SessionNotices() = default;

void SessionNotices::Look()
{
    LookForDeadSessions();
    if (m_lock && m_lock->GetState() == SessionLock::State::Taken) {
        // The other one may have ended.
        LockProject();
    }
}

void SessionNotices::LookForDeadSessions()
{
    const QStringList folders = Recovery::DeadJournals();
    const QSet<QString> present(folders.begin(), folders.end());
    const QSet<QString> gone = QSet<QString>(m_seen).subtract(present);
    for (const QString& folder : gone) {
        // Another session restored or discarded it.
        m_seen.remove(folder);
        m_parts.form.barNotice->Withdraw(KeyOf(folder));
    }
    for (const QString& folder : folders) {
        if (m_seen.contains(folder)) {
            continue;
        }
        m_seen.insert(folder);
        // A log may be so long that the window would not answer meanwhile.
        m_checks.start([this, folder] {
            const std::optional<JournalReader> journal = JournalReader::Open(folder);
            const bool isEmpty = !journal && JournalReader::IsUncommitted(folder);
            const auto follow = [this, folder, journal, isEmpty] {
                if (journal) {
                    Offer(folder, *journal);
                } else if (isEmpty) {
                    Recovery::Discard(folder);
                }
            };
            QMetaObject::invokeMethod(this, follow, Qt::QueuedConnection);
        });
    }
}

void SessionNotices::Offer(const QString& folder, const JournalReader& journal)
{
    if (!m_seen.contains(folder)) {
        // Another session took it during the check.
        return;
    }
    Notice notice;
    notice.key = KeyOf(folder);
    notice.text = QStringLiteral("Unsaved work on %1, last change %2, was found.")
                      .arg(WhoseText(journal), TimeText(journal.LastChange()));
    notice.buttons = {
        {QStringLiteral("btnNoticeRestore"), tr("Restore"), [=] { return Restore(folder); }},
        {QStringLiteral("btnNoticeLater"), tr("Later"), [] { return true; }},
        {QStringLiteral("btnNoticeDiscard"), tr("Discard"), [=] { return Discard(folder); }},
    };
    m_parts.form.barNotice->Show(notice);
}

/// Opens the work of a dead session. Its journal goes when this session has one of its own.
bool SessionNotices::Restore(const QString& folder)
{
    std::shared_ptr<void> lock = Recovery::Lock(folder);
    if (!lock) {
        // Another session is at it.
        return true;
    }
    QString reason;
    const std::optional<JournalReader> journal = JournalReader::Open(folder, &reason);
    const StoredProject stored = journal ? journal->Stored() : StoredProject();
    if (stored.text.isEmpty()) {
        m_parts.form.barNotice->Show(
            {RestoredKey,
             QStringLiteral("The unsaved work cannot be restored: %1").arg(reason.simplified()),
             {}});
        return true;
    }
    const bool hasChanged = !journal->ProjectPath().isEmpty() && journal->HasProjectChanged();
    // The question would let the timer find the journal locked.
    m_timer.stop();
    const bool isOpened = m_actions.OpenStored(stored, hasChanged);
    m_timer.start();
    if (!isOpened) {
        return false;
    }
    if (hasChanged) {
        m_parts.form.barNotice->Show(
            {RestoredKey,
             QStringLiteral(
                 "The files of %1 changed meanwhile, or are gone. The restored work has no "
                 "file yet.")
                 .arg(WhoseText(*journal)),
             {}});
    }
    if (m_parts.document.Layers().LeftOut().isEmpty() && m_journal.Flush()) {
        Recovery::Discard(folder, std::move(lock));
    }
    return true;
}

bool SessionNotices::Discard(const QString& folder)
{
    const bool isWanted =
        AskYesNo(&m_parts.window, tr("Discard unsaved work"),
                 tr("The unsaved work that was found will be lost.\n\nAre you sure you want to "
                    "discard it?"));
    if (isWanted) {
        Recovery::Discard(folder);
    }
    return isWanted;
}

void SessionNotices::ShowFailure(const QString& reason)
{
    m_parts.form.barNotice->Show(
        {UnsafeKey,
         QStringLiteral("Unsaved work is not kept safe from a crash: %1").arg(reason.simplified()),
         {}});
}

void SessionNotices::FollowPath()
{
    // A project that is opened for viewing only is disabled after it was loaded.
    QTimer::singleShot(0, this, [this] {
        const bool isEdited = m_parts.form.actionSave->isEnabled();
        const QString path = isEdited ? m_parts.document.Path() : QString();
        if (path != m_lockedPath) {
            m_lockedPath = path;
            LockProject();
            ShowOtherEditor();
        }
    });
}

void SessionNotices::LockProject()
{
    // Release our lock first, because it would block the new one.
    m_lock.reset();
    m_lock = std::make_unique<SessionLock>(m_lockedPath);
    if (m_lock->GetState() != SessionLock::State::Taken) {
        m_parts.form.barNotice->Withdraw(OtherEditorKey);
    }
}

void SessionNotices::ShowOtherEditor()
{
    if (m_lock->GetState() == SessionLock::State::Taken) {
        m_parts.form.barNotice->Show(
            {OtherEditorKey,
             QStringLiteral("%1 is open in another window, too. The one that saves last replaces "
                            "what the other one saved.")
                 .arg(NameText(QFileInfo(m_lockedPath).completeBaseName())),
             {}});
    }
}
