#pragma once

#include <QString>

/// A bar on the standard error for as long as it lives, when that is a terminal, the tool is not
/// quiet and no other one lives.
class Progress
{
public:
    /// total: how many steps there will be.
    Progress(const QString& what, int total);
    ~Progress();
    Q_DISABLE_COPY(Progress)

    void Step();

private:
    void Draw() const;

    QString m_what;
    int m_total;
    int m_done = 0;
    int m_shownPercent = -1;
    bool m_isShown;
};
