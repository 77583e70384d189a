#pragma once

#include <QLabel>

/// Tells in a tool bar how many problems the project has: "3 problems", with an icon. It keeps its
/// width, so that the tool bar does not move.
class ProblemBadge : public QLabel
{
    Q_OBJECT

public:
    explicit ProblemBadge(QWidget* parent = nullptr);

    /// isUpToDate: whether the counts are about the present project. Until then, a count of 0 is
    /// not shown as a result.
    void SetCounts(int errors, int warnings, bool isUpToDate);

    /// "No problems", "1 problem", "3 problems".
    static QString TextFor(int count);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    void Clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    int m_errors = 0;
    int m_warnings = 0;
    bool m_isUpToDate = true;
};
