#pragma once

#include <QDateTime>
#include <QLabel>
#include <QTimer>

/// Tells at the right of the menu bar for how long changes have not been saved: "● 3 min". It is
/// hidden while there are none.
class UnsavedMark : public QLabel
{
    Q_OBJECT

public:
    explicit UnsavedMark(QWidget* parent = nullptr);

    /// The time of the oldest unsaved change; an invalid one hides the mark.
    void SetSince(const QDateTime& since);

    /// What it shows at this age in seconds. A negative one, after the clock was set back, counts
    /// as none.
    static QString TextFor(qint64 seconds);

private:
    void ShowAge();

    QDateTime m_since;
    QTimer m_nextMinute;
};
