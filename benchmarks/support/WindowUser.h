#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QTimer>

class QuillmapWindow;

/// Ticks while the program answers to its user, and remembers the longest silence.
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

/// Loads as the user does, by the file dialog; the time begins when the file was chosen, and with
/// it the pulse.
double LoadSeconds(QuillmapWindow& window, const QString& path, Pulse* pulse = nullptr);
