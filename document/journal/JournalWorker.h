#pragma once

#include "document/journal/JournalWriter.h"

#include <QtGlobal>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

/// Writes journals on a thread of its own, in the order in which the jobs are posted. No function
/// but those named Wait waits for the disk.
class JournalWorker
{
public:
    using Job = std::function<void(JournalWriter&)>;

    JournalWorker() = default;
    /// Waits for the jobs that are left.
    ~JournalWorker();
    Q_DISABLE_COPY(JournalWorker)

    /// bytes: the memory that the job holds.
    void Post(Job job, qint64 bytes = 0);
    /// For jobs that have time until there are no others.
    void PostIdle(Job job);
    /// Forgets the jobs that have not begun.
    void Drop();

    /// Whether the jobs hold less than 64 MiB.
    bool HasRoom() const;
    void WaitForRoom();
    /// Until all jobs are done, idle ones too.
    void Wait();

private:
    struct Entry
    {
        Job job;
        qint64 bytes = 0;
    };

    void Begin(std::deque<Entry>& queue, Entry entry);
    void Run();

    mutable std::mutex m_mutex;
    /// There are jobs, or no more will come.
    std::condition_variable m_hasWork;
    /// A job is done.
    std::condition_variable m_hasDone;
    std::deque<Entry> m_jobs;
    std::deque<Entry> m_idleJobs;
    qint64 m_bytes = 0;
    bool m_isWorking = false;
    bool m_isEnding = false;
    JournalWriter m_writer;
    /// Runs from the first job on.
    std::thread m_thread;
};
