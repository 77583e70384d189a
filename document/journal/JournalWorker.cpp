#include "document/journal/JournalWorker.h"

#include <utility>

namespace {

constexpr qint64 MaxBytes = qint64(64) << 20;

} // namespace

JournalWorker::~JournalWorker()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
    }
    m_hasWork.notify_one();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void JournalWorker::Post(Job job, qint64 bytes)
{
    Begin(m_jobs, {std::move(job), bytes});
}

void JournalWorker::PostIdle(Job job)
{
    Begin(m_idleJobs, {std::move(job), 0});
}

void JournalWorker::Begin(std::deque<Entry>& queue, Entry entry)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_bytes += entry.bytes;
        queue.push_back(std::move(entry));
    }
    m_hasWork.notify_one();
    if (!m_thread.joinable()) {
        m_thread = std::thread([this] { Run(); });
    }
}

void JournalWorker::Drop()
{
    std::deque<Entry> jobs;
    std::deque<Entry> idleJobs;
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const Entry& entry : m_jobs) {
        m_bytes -= entry.bytes;
    }
    jobs.swap(m_jobs);
    idleJobs.swap(m_idleJobs);
}

bool JournalWorker::HasRoom() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_bytes < MaxBytes;
}

void JournalWorker::WaitForRoom()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_hasDone.wait(lock, [this] { return m_bytes < MaxBytes; });
}

void JournalWorker::Wait()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_hasDone.wait(lock, [this] { return m_jobs.empty() && m_idleJobs.empty() && !m_isWorking; });
}

void JournalWorker::Run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_hasWork.wait(lock,
                       [this] { return !m_jobs.empty() || !m_idleJobs.empty() || m_isEnding; });
        std::deque<Entry>& queue = m_jobs.empty() ? m_idleJobs : m_jobs;
        if (queue.empty()) {
            return;
        }
        Entry entry = std::move(queue.front());
        queue.pop_front();
        m_isWorking = true;
        lock.unlock();
        entry.job(m_writer);
        entry.job = nullptr;
        lock.lock();
        m_isWorking = false;
        m_bytes -= entry.bytes;
        m_hasDone.notify_all();
    }
}
