#pragma once

#include <QObject>

class QWidget;

/// Counts how often a widget is painted while this object exists.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget* widget);

    int Count() const { return m_count; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int m_count = 0;
};
