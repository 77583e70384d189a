#include "app/Finding.h"

void AddFinding(Findings& findings, const FindingSpot& spot, const char* rule, Severity severity,
                const QString& text, const char* advice, FindingPart part)
{
    findings.append({QString::fromLatin1(rule), severity, spot.place, text,
                     QString::fromLatin1(advice), spot.subject, part});
}

QString QuotedName(const QString& name)
{
    return QLatin1Char('\'') + name + QLatin1Char('\'');
}
