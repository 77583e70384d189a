#include "document/versions/VersionLimits.h"

#include <QDate>
#include <QSet>
#include <QSettings>

VersionLimits VersionLimits::FromSettings()
{
    QSettings settings(QStringLiteral("Halvern Works"), QStringLiteral("Tarvo Tools"));
    settings.beginGroup(QStringLiteral("Versions"));
    VersionLimits limits;
    limits.keep = settings.value(QStringLiteral("keep"), limits.keep).toInt();
    limits.days = settings.value(QStringLiteral("days"), limits.days).toInt();
    limits.maxBytes = settings.value(QStringLiteral("maxBytes"), limits.maxBytes).toLongLong();
    return limits;
}

QVector<bool> VersionLimits::Stays(const QVector<QDateTime>& times, const QDateTime& now) const
{
    QVector<bool> stays;
    QSet<QDate> seen;
    for (const QDateTime& time : times) {
        const QDate day = time.toLocalTime().date();
        const bool isLastOfDay = !seen.contains(day);
        seen.insert(day);
        const bool isRecent = day.daysTo(now.toLocalTime().date()) < days;
        stays.append(stays.size() < keep || (isLastOfDay && isRecent));
    }
    return stays;
}
