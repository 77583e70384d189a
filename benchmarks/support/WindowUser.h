#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QTimer>

class QuillmapWindow;

/// Ticks while the program responds to its user, and keeps the longest pause.
class Pulse : public QObject
{
public:
    Pulse();

    void Tick() { m_longest = qMax(m_longest, m_sinceTick.restart()); }
    void Reset();
    qint64 LongestMilliseconds() const { return m_longest; }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceTick;
    qint64 m_longest = 0;
};

/// Loads as a user does, with the file dialog. The time and the pulse begin when the file has been
/// chosen.
double LoadSeconds(QuillmapWindow& window, const QString& path, Pulse* pulse = nullptr);
