#pragma once

#include <QString>

#include <mutex>
#include <utility>
#include <vector>

/// What the worker tells of one journal. Both threads use it.
class JournalNews
{
public:
    struct News
    {
        bool hasFailed = false;
        QString error;
        bool wasCopied = false;
        /// Layers whose files changed before they were copied.
        std::vector<int> changed;
    };

    void Begin(const QString& folder)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_folder = folder;
    }
    QString Folder() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_folder;
    }
    void Fail(const QString& error)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_hasFailed = true;
        m_news.hasFailed = true;
        m_news.error = error;
    }
    bool HasFailed() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_hasFailed;
    }
    void Copied(int layerId, bool wasCopied)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (wasCopied) {
            m_news.wasCopied = true;
        } else {
            m_news.changed.push_back(layerId);
        }
    }
    News Take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return std::exchange(m_news, {});
    }

private:
    mutable std::mutex m_mutex;
    QString m_folder;
    bool m_hasFailed = false;
    News m_news;
};
