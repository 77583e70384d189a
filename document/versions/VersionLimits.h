#pragma once

#include <QDateTime>
#include <QVector>

/// How many earlier versions are kept, and for how long.
struct VersionLimits
{
    /// The newest ones of each project.
    int keep = 20;
    /// Of older ones, the last one of each day is kept for so many days.
    int days = 30;
    /// What all versions of all projects together may take on the disk. The newest one may take
    /// more by itself.
    qint64 maxBytes = qint64(1) << 30;

    /// The user's: the keys "keep", "days" and "maxBytes" of the group "Versions" in the
    /// application's settings. A missing key has the value above.
    static VersionLimits FromSettings();

    /// Whether nothing is kept at all.
    bool IsOff() const { return maxBytes <= 0 || (keep <= 0 && days <= 0); }
    /// Which versions of one project stay, for their times, the newest first.
    QVector<bool> Stays(const QVector<QDateTime>& times, const QDateTime& now) const;
};
