#pragma once

#include <QString>

/// Shows a progress bar on the standard error while the object exists. Shows nothing if the
/// standard error is not a terminal, if the tool is quiet, or while another bar exists.
class Progress
{
public:
    /// total: the number of steps.
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
